// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_EDITED_OBJECTS_HPP
#define VELDRA_TOOL_EDITED_OBJECTS_HPP

#include "json.hpp"
#include "kit.hpp"

#include <veldra/veldra.hpp>

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace veldra_tool {

/// Materials and compositions of a library as a JSON text that somebody edits.
class EditedObjects {
 public:
  /// Reads the objects. Throws `LibraryFailure` for those of other kinds.
  EditedObjects(const veldra::Library& library, const std::set<veldra::ObjectKey>& keys);

  bool empty() const { return objects_.empty(); }

  /// The text, in the form that `veldra export` writes.
  const std::string& text() const { return text_; }

  /// What a text says that was made of it.
  struct States {
    kit::Sources sources;
    kit::PlanRules rules;  ///< say of which stored object each is another state
  };

  /// Reads the text in a file of that name. An object is the one of its name; those whose names
  /// are new are the missing ones in their order. Materials of layers may be any of the library.
  ///
  /// Throws `Failure`, `LibraryFailure` or `kit::SourceError`: the text is malformed, has more or
  /// fewer objects, or an object in the library is not as it was.
  States states_in(const std::string& file, const std::string& text,
                   const veldra::Library& library) const;

 private:
  struct Object {
    veldra::ObjectKey key;
    std::string name;
    std::string fingerprint;
  };
  using Objects = std::vector<const Object*>;

  template <class T>
  void read(const veldra::Library& library, unsigned id, Json& document);
  template <class T>
  bool is_as_it_was(const veldra::Library& library, const Object& object) const;
  void require_same_state(const veldra::Library& library) const;
  void assign(const std::string& file, veldra::ObjectType kind, States& states) const;

  std::vector<Object> objects_;
  std::string text_;
};

}  // namespace veldra_tool

#endif
