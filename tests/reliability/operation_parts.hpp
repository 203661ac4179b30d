// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_RELIABILITY_OPERATION_PARTS_HPP
#define VELDRA_TESTS_RELIABILITY_OPERATION_PARTS_HPP

#include "reliability/scene.hpp"
#include "support/names.hpp"

#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace veldra_tests {

// What the operations of a library are made of.

using Step = std::function<void(Scene&)>;

inline void nothing(Scene&) {}

inline Operation operation_on_current(Operation::Kind kind, const std::string& name, Step prepare,
                                      Step run) {
  return {name, kind, Start::Current, std::move(prepare), std::move(run)};
}

/// The member of `Objects` that is worked on.
template <class T>
using Member = std::shared_ptr<T> Objects::*;

/// The objects of a kind that operations are about.
template <class T>
struct Examples {
  const char* kind;
  Member<T> member;
  const char* spare;    ///< nothing refers to it
  const char* stored;   ///< something may refer to it
  const char* foreign;  ///< only the source has it
};

inline const Examples<Tag> of_tags = {"tag", &Objects::tag, "spare tag", "Wall tag 1",
                                      "Roof tag 1"};
inline const Examples<Layer> of_layers = {"layer", &Objects::layer, "spare layer", "Wall layer",
                                          "Roof layer"};
inline const Examples<MaterialType> of_types = {"material type", &Objects::type, "spare type",
                                                "Wall core type", "Roof core type"};
inline const Examples<CustomProperty> of_properties = {"property", &Objects::property,
                                                       "spare property", "Wall core property 1",
                                                       "Roof core property 1"};
inline const Examples<Material> of_materials = {"material", &Objects::material, "spare material",
                                                "Wall core", "Roof core"};
inline const Examples<Composition> of_compositions = {"composition", &Objects::composition,
                                                      "spare composition", "Wall", "Roof"};

/// What `make` makes of the examples of each kind.
template <class Make>
std::vector<Operation> for_each_kind(Make make) {
  return {make(of_tags),       make(of_layers),    make(of_types),
          make(of_properties), make(of_materials), make(of_compositions)};
}

/// Looked up by another handle: that of the operation is to prepare its statements while it runs.
template <class T>
unsigned id_of(const Library& library, const char* name) {
  return Library::open(library.filename(), true)->get<T>(name)->id();
}

/// Calls with a mapping of its own, since entries stay when it throws.
template <class Call>
void with_mapping(Scene& scene, Call call) {
  IdMapping mapping = scene.known;
  call(mapping);
  scene.mapping = std::move(mapping);
}

/// The object of the source that is called `foreign` is the one that is called `stored`.
template <class T>
void map_to_stored(Scene& scene, ObjectType type, const Examples<T>& of) {
  scene.known.assign({{type, id_of<T>(*scene.source, of.foreign)}, scene.source.get()},
                     {id_of<T>(*scene.library, of.stored), IdMapping::Existing});
}

// Steps that several operations begin with.

void change_material(Scene& scene);
void choose_roof(Scene& scene);
void map_references(Scene& scene);

std::vector<Operation> joined(const std::vector<std::vector<Operation>>& groups);

/// Operations that write, by their names and steps.
std::vector<Operation> writing(const std::vector<std::tuple<const char*, Step, Step>>& operations);

// The groups that `operations` is made of.

std::vector<Operation> saving_operations();
std::vector<Operation> removing_operations();
std::vector<Operation> copying_operations();
std::vector<Operation> reading_operations();

}  // namespace veldra_tests

#endif
