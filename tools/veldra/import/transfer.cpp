#include "import/transfer.hpp"

#include "opening.hpp"
#include "progress.hpp"
#include "reactor_guard.hpp"
#include "text.hpp"

namespace veldra_tool {

namespace {

using veldra::ObjectType;

/// Ends a transaction that is to be taken back.
struct EndOfPretence {};

/// The last tag in the order of names, and tags are the last kind that is copied: when it is
/// saved, everything else was.
const veldra::String& last_tag() {
  static const veldra::String name("\xF4\x8F\xBF\xBD\xF4\x8F\xBF\xBD end of the import");
  return name;
}

template <class T>
void save_all(const IncomingObjects<T>& objects, veldra::Library& staging, Progress& progress) {
  for (const auto& incoming : objects.all()) {
    staging.save(incoming.object);
    progress.step();
  }
}

template <class T>
void ignore_tags_of_origin(const IncomingObjects<T>& objects, ConflictReactor& reactor) {
  for (const auto& incoming : objects.all()) {
    if (!incoming.tagged_by_origin) continue;
    reactor.ignore_all_tags(veldra::ObjectTraits<T>::type, incoming.object->name());
  }
}

template <class T>
void count_outcomes(const IncomingObjects<T>& objects, const veldra::Library& staging,
                    const ConflictReactor& reactor, const veldra::IdMapping& mapping,
                    std::map<Outcome, unsigned> SourceReport::*counts, ImportReport& report) {
  constexpr auto type = veldra::ObjectTraits<T>::type;
  for (const auto& incoming : objects.all()) {
    veldra::IdMapping::Value value;
    if (!mapping.compute({veldra::ObjectKey(type, incoming.object->id()), &staging}, value)) {
      continue;
    }
    const auto outcome = reactor.outcome(type, incoming.object->name(), value.status);
    ++(report[incoming.source].*counts)[outcome];
  }
}

std::set<veldra::String> library_texts(const std::vector<std::string>& texts) {
  std::set<veldra::String> result;
  for (const auto& text : texts) result.insert(library_text(text));
  return result;
}

}  // namespace

void transfer(const ImportSet& set, const std::shared_ptr<veldra::Library>& library,
              OnConflict policy, const std::vector<std::string>& tags, Effect effect,
              ImportReport& report) {
  const auto staging = create_staging_library(library->unit());
  Progress progress("importing");
  set.shared().save_all(*staging);
  save_all(set.materials(), *staging, progress);
  save_all(set.compositions(), *staging, progress);
  if (effect == Effect::Pretend) staging->save(veldra::Tag::create(last_tag()));

  veldra::IdMapping mapping(library.get());
  ConflictReactor reactor(policy, *staging, mapping);
  reactor.ignore_tags(library_texts(tags));
  ignore_tags_of_origin(set.materials(), reactor);
  ignore_tags_of_origin(set.compositions(), reactor);
  reactor.on_saved([&](veldra::Library& destination, const veldra::ObjectKey& key) {
    progress.step();
    if (effect != Effect::Pretend || key.type != ObjectType::Tag) return;
    if (destination.get<veldra::Tag>(key.id)->name() == last_tag()) throw EndOfPretence();
  });
  try {
    const ReactorGuard guard(*library, reactor);
    library->copyAll(staging, mapping);
  } catch (const EndOfPretence&) {
  }
  count_outcomes(set.materials(), *staging, reactor, mapping, &SourceReport::materials, report);
  count_outcomes(set.compositions(), *staging, reactor, mapping, &SourceReport::compositions,
                 report);
}

}  // namespace veldra_tool
