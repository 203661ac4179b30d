// SPDX-License-Identifier: GPL-2.0-or-later
#include "arguments.hpp"
#include "failure.hpp"
#include "host.hpp"
#include "kinds.hpp"
#include "lookup.hpp"
#include "object_arguments.hpp"
#include "opening.hpp"
#include "process/confirmation.hpp"
#include "progress.hpp"
#include "removal.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace veldra_tool {

namespace {

constexpr std::size_t most_without_asking = 20;  ///< objects that are named

struct RemoveArguments {
  std::string file;
  ObjectsOfKind texts;
  std::vector<NamedObject> objects;
  bool dry_run = false;
  bool yes = false;
  bool json = false;
};

struct PurgeArguments {
  std::string file;
  std::vector<veldra::ObjectType> kinds;
  bool dry_run = false;
  bool yes = false;
  bool json = false;
};

/// All of them must be there before the first one goes.
std::vector<Candidate> named_candidates(const veldra::Library& library,
                                        const RemoveArguments& arguments) {
  std::vector<Candidate> result;
  std::set<veldra::ObjectKey> keys;
  for (const auto& named : arguments.objects) {
    with_class_of(named.kind, [&](auto of) {
      const auto object = find_object<typename decltype(of)::type>(library, named.object);
      const veldra::ObjectKey key(named.kind, object->id());
      if (keys.insert(key).second) result.push_back({key, object->name().utf8()});
    });
  }
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
  const kit::ReactorGuard guard(library, progress);
  std::map<veldra::ObjectKey, bool> results;
  removal(results);
  enter_results(objects, results);
}

/// What goes when nothing changes: which objects of which library.
struct Removal {
  veldra::String library;
  std::vector<Candidate> objects;
};

/// Asks before much goes, and sees to it that nothing else goes than what was told.
class Consent {
 public:
  explicit Consent(const std::string& file) : file_(file) {}

  /// Throws `Failure` when nobody agrees that this is removed; nobody is asked about nothing.
  void obtain(Removal removal) {
    told_ = std::move(removal);
    if (told_.objects.empty()) return;
    const auto counts = text_of(counts_of(told_.objects));
    if (!somebody_can_be_asked()) {
      throw failure(fmt::format("this would remove {}; --yes says that it shall", counts));
    }
    if (!confirmed(fmt::format("veldra: {}: this removes {}. Go on?", in_quotes(file_), counts))) {
      throw failure("nothing is removed");
    }
  }

  /// Throws `Failure` when it is something else by now.
  void require_still(const Removal& removal) const {
    const auto because = [this](const std::string& sentence) {
      return failure("nothing is removed, because " + sentence);
    };
    if (removal.library != told_.library) throw because("another library is there by now");
    const auto now = counts_of(removal.objects);
    const auto told = counts_of(told_.objects);
    if (now != told) {
      throw because(fmt::format("by now it would be {}, and not {}", text_of(now), text_of(told)));
    }
    if (!same_objects(removal.objects, told_.objects)) {
      throw because("by now it would be other objects");
    }
  }

 private:
  /// Both lists are made in the same way, and so have the same order.
  static bool same_objects(const std::vector<Candidate>& left,
                           const std::vector<Candidate>& right) {
    const auto same = [](const Candidate& one, const Candidate& other) {
      return one.key == other.key && one.name == other.name;
    };
    return std::equal(left.begin(), left.end(), right.begin(), right.end(), same);
  }

  Failure failure(const std::string& sentence) const {
    return Failure(fmt::format("{}: {}", in_quotes(file_), sentence));
  }

  const std::string& file_;
  Removal told_;
};

/// Those of some objects that nothing keeps from going.
Removal predicted(const veldra::Library& library, std::vector<Candidate> objects) {
  predict_removal(objects, library);
  objects.erase(std::remove_if(objects.begin(), objects.end(),
                               [](const Candidate& object) { return !object.removed; }),
                objects.end());
  return {library.guid(), std::move(objects)};
}

std::size_t count_of_removed(const std::vector<Candidate>& candidates) {
  return static_cast<std::size_t>(
      std::count_if(candidates.begin(), candidates.end(),
                    [](const Candidate& candidate) { return candidate.removed; }));
}

void print_prediction(const RemoveArguments& arguments, Host& host) {
  reading(arguments.file, [&](const veldra::Library& library) {
    auto objects = named_candidates(library, arguments);
    predict_removal(objects, library);
    print_candidates(host.output, objects, arguments.json, "would go");
  });
}

void remove(const RemoveArguments& arguments, Host& host) {
  if (arguments.dry_run) return print_prediction(arguments, host);
  Consent consent(arguments.file);
  const bool many = arguments.objects.size() > most_without_asking && !arguments.yes;
  const auto removal = [&](const veldra::Library& library) {
    auto objects = named_candidates(library, arguments);
    if (objects.size() <= most_without_asking) objects.clear();
    return predicted(library, std::move(objects));
  };
  if (many) consent.obtain(reading(arguments.file, removal));
  changing(host, arguments.file, [&](veldra::Library& library) {
    if (many) consent.require_still(removal(library));
    auto objects = named_candidates(library, arguments);
    std::set<veldra::ObjectKey> keys;
    for (const auto& object : objects) keys.insert(object.key);
    remove_all(library, objects, [&](auto& results) { library.remove(keys, results); });
    print_candidates(host.output, objects, arguments.json, "removed");
    const auto removed = count_of_removed(objects);
    if (removed < objects.size()) host.status = Status::Findings;
    if (removed > 0) return;
    host.status = Status::Failed;
    host.notes += fmt::format("veldra: {}: nothing is removed, because all of it is in use\n",
                              in_quotes(arguments.file));
  });
}

void print_prediction(const std::string& file, const std::set<veldra::ObjectType>& kinds, bool json,
                      Host& host) {
  reading(file, [&](const veldra::Library& library) {
    auto objects = candidates(library, kinds);
    predict_removal(objects, library);
    print_purged(host.output, objects, json, "would go");
  });
}

void purge(const PurgeArguments& arguments, Host& host) {
  if (arguments.kinds.empty()) {
    throw CLI::ValidationError("KIND", "say what to purge: " + kind_choices());
  }
  const std::set<veldra::ObjectType> kinds(arguments.kinds.begin(), arguments.kinds.end());
  if (arguments.dry_run) return print_prediction(arguments.file, kinds, arguments.json, host);
  Consent consent(arguments.file);
  const bool much = kinds.count(veldra::ObjectType::Composition) > 0 && !arguments.yes;
  // Without a composition there is nothing to ask for, nor to compare.
  const auto removal = [&](const veldra::Library& library) {
    if (library.count<veldra::Composition>() == 0) return predicted(library, {});
    return predicted(library, candidates(library, kinds));
  };
  if (much) consent.obtain(reading(arguments.file, removal));
  changing(host, arguments.file, [&](veldra::Library& library) {
    if (much) consent.require_still(removal(library));
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
  add_objects_of_kind(command, arguments->texts, "The objects, each");
  command.add_flag("--dry-run", arguments->dry_run, "Tell what would go, and remove nothing");
  add_yes(command, arguments->yes,
          fmt::format("Do not ask; without it, or an answer on a terminal, no more than {} are "
                      "removed at once",
                      most_without_asking));
  add_backup(command, host);
  add_json(command, arguments->json);
  add_example(command, "veldra remove office.lib materials 'Solid brick' 17",
              "some of the objects stay because they are in use, and 1 when all do");
  command.callback([arguments, &host] {
    arguments->objects = arguments->texts.named();
    remove(*arguments, host);
  });
}

void add_purge(Host& host) {
  auto& command = *host.arguments.add_subcommand(
      "purge", "Remove the objects of some kinds that nothing refers to");
  const auto arguments = std::make_shared<PurgeArguments>();
  add_file(command, arguments->file);
  add_kinds(command, arguments->kinds);
  command.add_flag("--dry-run", arguments->dry_run, "Tell what would go, and remove nothing");
  add_yes(command, arguments->yes,
          "Do not ask; without it, or an answer on a terminal, no compositions are removed, to "
          "which nothing ever refers");
  add_backup(command, host);
  add_json(command, arguments->json);
  add_example(command, "veldra purge office.lib materials tags --dry-run");
  command.callback([arguments, &host] { purge(*arguments, host); });
}

}  // namespace veldra_tool
