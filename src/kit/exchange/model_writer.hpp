// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_MODEL_WRITER_HPP
#define VELDRA_KIT_EXCHANGE_MODEL_WRITER_HPP

#include "kit/exchange/mapping.hpp"
#include "kit/exchange/source_model.hpp"

#include <veldra/kit/exchange.hpp>

#include <functional>
#include <string>

namespace veldra::kit {

/// What a format of materials and constructions can hold.
struct ModelFormat {
  const char* name;                ///< for sentences
  const MaterialClasses& classes;  ///< those of its materials
  bool ignores_case;               ///< names that differ in case only are one
  bool has_identifiers;            ///< objects have identifiers beside their names
  std::size_t most_layers;         ///< of a construction

  /// The name with what the format cannot hold replaced; empty if nothing is left.
  std::string (*name_for)(const std::string& name);

  /// Whether the format can hold a value of a field of a material.
  HoldsField holds;

  /// The same for a field of a construction that a library has no place for.
  bool (*holds_of_construction)(const ConstructionClass& described, const std::string& key,
                                const std::string& value);

  /// Where the values of a material and not its class tell the reader what it is: what they tell.
  const MaterialClass& (*read_as)(const SourceMaterial& material) = nullptr;

  bool has_transmittances = false;  ///< constructions state them

  /// Whether objects can have a text as their description; null where they have none.
  bool (*holds_description)(const std::string& text) = nullptr;
};

/// Takes the objects of a library as a format has them: materials class by class, each class by
/// name, and then constructions by name.
struct ModelSink {
  std::function<void(const SourceMaterial&)> material;
  std::function<void(const SourceConstruction&)> construction;
};

/// Gives a library to a sink. Values that would not come back, were they read again, are told in
/// the report: each object is mapped back, and compared field by field.
WriteReport write_model(const Library& library, const ModelFormat& format, const ModelSink& sink,
                        const Progress& progress);

/// The same to a writer, which takes each object and then the end.
template <class Writer>
WriteReport write_model_to(Writer& writer, const Library& library, const ModelFormat& format,
                           const Progress& progress) {
  const ModelSink sink{[&](const SourceMaterial& material) { writer.write(material); },
                       [&](const SourceConstruction& construction) { writer.write(construction); }};
  auto report = write_model(library, format, sink, progress);
  writer.end();
  return report;
}

}  // namespace veldra::kit

#endif
