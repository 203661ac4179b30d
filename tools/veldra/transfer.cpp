#include "transfer.hpp"

#include "reactor_guard.hpp"
#include "text.hpp"

#include <string>

namespace veldra_tool {

namespace {

/// Ends a transaction that is to be taken back.
struct EndOfPretence {};

/// The last tag in the order of names, and tags are the last kind that is copied: when it is
/// saved, everything else was. The library must not have it, or it would not be saved.
veldra::String last_tag(const veldra::Library& library) {
  const std::string last = "\xF4\x8F\xBF\xBD";
  std::string name = last + last + " end of the pretence";
  while (library.get<veldra::Tag>(library_text(name))) name += last;
  return library_text(name);
}

}  // namespace

void transfer(const std::shared_ptr<veldra::Library>& staging,
              const std::shared_ptr<veldra::Library>& library, ConflictReactor& reactor,
              veldra::IdMapping& mapping, Effect effect, Progress& progress) {
  const auto last = last_tag(*library);
  if (effect == Effect::Pretend) staging->save(veldra::Tag::create(last));
  reactor.settle_codes(*library);
  reactor.on_saved([&](veldra::Library& destination, const veldra::ObjectKey& key) {
    progress.step();
    if (effect != Effect::Pretend || key.type != veldra::ObjectType::Tag) return;
    if (destination.get<veldra::Tag>(key.id)->name() == last) throw EndOfPretence();
  });
  try {
    const ReactorGuard guard(*library, reactor);
    library->copyAll(staging, mapping);
  } catch (const EndOfPretence&) {
    return;
  }
  // One call of the library is one transaction, and it asks about names only: where the code is
  // taken as well, the database tells of the code and the whole copy fails. So a material that
  // overwrites the one of its own code is copied without it and gets it back afterwards. Should
  // the program be killed in between, the same import once more puts the code in its place.
  reactor.restore_codes(*library);
}

}  // namespace veldra_tool
