#include "arguments.hpp"
#include "failure.hpp"
#include "host.hpp"
#include "kinds.hpp"
#include "lookup.hpp"
#include "opening.hpp"
#include "progress.hpp"
#include "reactor_guard.hpp"
#include "removal.hpp"

namespace veldra_tool {

namespace {

struct RemoveArguments {
  std::string file;
  veldra::ObjectType kind{};
  std::vector<std::string> objects;
  bool json = false;
};

struct PurgeArguments {
  std::string file;
  std::vector<veldra::ObjectType> kinds;
  bool dry_run = false;
  bool json = false;
};

/// All of them must be there before the first one goes.
std::vector<Candidate> named_candidates(const veldra::Library& library,
                                        const RemoveArguments& arguments) {
  std::vector<Candidate> result;
  std::set<unsigned> ids;
  with_class_of(arguments.kind, [&](auto of) {
    using T = typename decltype(of)::type;
    for (const auto& text : arguments.objects) {
      const auto object = find_object<T>(library, text);
      if (!ids.insert(object->id()).second) continue;
      result.push_back({veldra::ObjectKey(arguments.kind, object->id()), object->name().utf8()});
    }
  });
  return result;
}

/// Sees how far a removal is.
class RemovalProgress : public veldra::Library::Reactor {
 public:
  int mayRemove(veldra::Library&, const veldra::ObjectKey&) override {
    progress_.step();
    return 0;
  }

 private:
  Progress progress_{"removing"};
};

/// Removes objects by `removal` and enters what became of each.
template <class Removal>
void remove_all(veldra::Library& library, std::vector<Candidate>& objects, Removal removal) {
  RemovalProgress progress;
  const ReactorGuard guard(library, progress);
  std::map<veldra::ObjectKey, bool> results;
  removal(results);
  enter_results(objects, results);
}

bool any_removed(const std::vector<Candidate>& candidates) {
  return std::any_of(candidates.begin(), candidates.end(),
                     [](const Candidate& candidate) { return candidate.removed; });
}

void remove(const RemoveArguments& arguments, Host& host) {
  changing(host, arguments.file, [&](veldra::Library& library) {
    auto objects = named_candidates(library, arguments);
    std::set<veldra::ObjectKey> keys;
    for (const auto& object : objects) keys.insert(object.key);
    remove_all(library, objects, [&](auto& results) { library.remove(keys, results); });
    print_candidates(host.output, objects, arguments.json, "removed");
    if (!any_removed(objects)) host.status = Status::Failed;
  });
}

void purge(const PurgeArguments& arguments, Host& host) {
  const auto& wanted = arguments.kinds.empty() ? all_kinds() : arguments.kinds;
  const std::set<veldra::ObjectType> kinds(wanted.begin(), wanted.end());
  if (arguments.dry_run) {
    return reading(arguments.file, [&](const veldra::Library& library) {
      auto objects = candidates(library, kinds);
      predict_purge(objects, library);
      print_purged(host.output, objects, arguments.json, "would go");
    });
  }
  changing(host, arguments.file, [&](veldra::Library& library) {
    auto objects = candidates(library, kinds);
    remove_all(library, objects, [&](auto& results) { library.purge(kinds, results); });
    print_purged(host.output, objects, arguments.json, "removed");
  });
}

}  // namespace

void add_remove(Host& host) {
  auto& command = *host.arguments.add_subcommand(
      "remove", "Remove objects of a kind; those that others refer to stay");
  const auto arguments = std::make_shared<RemoveArguments>();
  add_file(command, arguments->file);
  add_kind(command, arguments->kind);
  command.add_option("OBJECT", arguments->objects, "The names of the objects, or their ids")
      ->required()
      ->type_name("");
  add_json(command, arguments->json);
  add_example(command, "veldra remove office.lib materials 'Solid brick' 17");
  command.callback([arguments, &host] { remove(*arguments, host); });
}

void add_purge(Host& host) {
  auto& command = *host.arguments.add_subcommand(
      "purge", "Remove everything that nothing refers to, compositions included");
  const auto arguments = std::make_shared<PurgeArguments>();
  add_file(command, arguments->file);
  add_kinds(command, arguments->kinds);
  command.add_flag("--dry-run", arguments->dry_run, "Tell what would go, and remove nothing");
  add_json(command, arguments->json);
  add_example(command, "veldra purge office.lib materials tags --dry-run");
  command.callback([arguments, &host] { purge(*arguments, host); });
}

}  // namespace veldra_tool
