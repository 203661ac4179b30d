// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_OBJECT_ARGUMENTS_HPP
#define VELDRA_TOOL_OBJECT_ARGUMENTS_HPP

#include <veldra/veldra.hpp>

#include <CLI/CLI.hpp>

#include <set>
#include <string>
#include <vector>

namespace veldra_tool {

/// What "KIND:OBJECT" says.
struct NamedObject {
  veldra::ObjectType kind{};
  std::string object;
};

/// Whether a text begins as "KIND:OBJECT" does.
bool names_object(const std::string& text);

/// What such texts say, or a kind and the objects behind it: "KIND OBJECT...", as far as the next
/// kind. Throws a `CLI::ParseError` for any other one.
NamedObject named_object(const std::string& text);
std::vector<NamedObject> named_objects(const std::vector<std::string>& texts);

/// How several objects are named, for the help of commands.
std::string objects_help();

/// A kind and objects of it, or objects as KIND:OBJECT, of commands that have an argument for each.
struct ObjectsOfKind {
  std::string kind;                  ///< or the first KIND:OBJECT
  std::vector<std::string> objects;  ///< what stands behind it

  /// Throws a `CLI::ParseError`.
  std::vector<NamedObject> named() const;

  /// The same of one alone.
  NamedObject single() const;
};

/// Adds the argument for the kind, in place of which KIND:OBJECT may stand.
void add_kind_of_object(CLI::App& command, std::string& kind);

/// Adds both arguments; `what` says what the objects are.
void add_objects_of_kind(CLI::App& command, ObjectsOfKind& objects, const std::string& what);

/// The keys of such objects. Throws `LibraryFailure` as `find_object`.
std::set<veldra::ObjectKey> keys_of(const veldra::Library& library,
                                    const std::vector<NamedObject>& objects);

/// Which objects a command is about: those that are named, or those of a kind that a filter
/// selects.
struct Selection {
  std::vector<NamedObject> objects;
  veldra::ObjectType kind{};
  std::string filter;
  bool filtered = false;

  bool is_empty() const { return objects.empty() && !filtered; }
};

/// Adds the option that makes a `Selection` a filtered one; `filtered` is left to the callback.
CLI::Option* add_selection(CLI::App& command, Selection& selection);

/// Takes from texts what a selection is made of, and leaves what stands behind it: the objects, or
/// the kind of a filtered one. Throws a `CLI::ParseError` where there is nothing of it.
void take_selection(std::vector<std::string>& texts, Selection& selection);

/// Throws `LibraryFailure` as `find_object`, and `kit::Error` for a filter that makes no sense.
std::set<veldra::ObjectKey> keys_of(const veldra::Library& library, const Selection& selection);

}  // namespace veldra_tool

#endif
