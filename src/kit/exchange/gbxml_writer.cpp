// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/gbxml_fields.hpp"
#include "kit/exchange/gbxml_model.hpp"
#include "kit/exchange/model_writer.hpp"
#include "kit/exchange/writers.hpp"
#include "kit/text/xml.hpp"

#include <veldra/kit/text.hpp>

#include <fmt/format.h>

#include <limits>
#include <map>

namespace veldra::kit {

namespace {

/// Characters that XML has no way to write: the controls, and two that are none.
bool is_forbidden(std::string_view text, std::size_t place) {
  const auto byte = static_cast<unsigned char>(text[place]);
  if (byte < 0x20) return byte != '\t' && byte != '\n';
  return text.compare(place, 3, "\xEF\xBF\xBE") == 0 || text.compare(place, 3, "\xEF\xBF\xBF") == 0;
}

bool can_be_content(const std::string& text) {
  if (text.empty() || trimmed(text) != text) return false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (is_forbidden(text, i)) return false;
  }
  return true;
}

std::string name_in_gbxml(const std::string& name) {
  std::string result;
  for (std::size_t i = 0; i < name.size(); ++i) {
    const bool forbidden = is_forbidden(name, i);
    result += forbidden ? '_' : name[i];
    if (forbidden && static_cast<unsigned char>(name[i]) == 0xef) i += 2;
  }
  return trimmed(result);
}

/// Readers take line ends and tabs of attributes for blanks.
std::string escaped(const std::string& text) {
  return escaped_in_xml(text, [](char byte) {
    const bool is_read_otherwise = byte == '\t' || byte == '\n';
    return is_read_otherwise ? fmt::format("&#{};", static_cast<int>(byte)) : std::string(1, byte);
  });
}

bool holds(const MaterialClass& described, const std::string& key, const std::string& value) {
  if (!can_be_content(value)) return false;
  for (const auto& field : described.fields) {
    if (field.key == key) return true;
  }
  return gbxml_field(key).has_value();
}

bool holds_of_construction(const ConstructionClass&, const std::string& key,
                           const std::string& value) {
  return can_be_content(value) && gbxml_field(key).has_value();
}

std::string element(const std::string& name, const std::string& content,
                    const std::string& attributes = "") {
  return fmt::format("    <{0}{1}>{2}</{0}>\n", name, attributes, escaped(content));
}

std::string element_of_number(const std::string& name, const std::string& number) {
  return element(name, number, fmt::format(" unit=\"{}\"", gbxml_si_unit(name).name));
}

std::string description(const std::string& text) {
  return text.empty() ? std::string() : element("Description", text);
}

/// Elements that a library has no place for, each with its attributes.
std::string further_elements(const FieldsNotKept& fields) {
  struct Element {
    std::string content;
    std::string attributes;
  };
  std::map<std::pair<std::string, unsigned>, Element> elements;
  for (const auto& [key, value] : fields) {
    const auto field = gbxml_field(key);
    auto& target = elements[{field->element, field->number}];
    if (field->attribute.empty()) {
      target.content = value;
    } else {
      target.attributes += fmt::format(" {}=\"{}\"", field->attribute, escaped(value));
    }
  }
  std::string text;
  for (const auto& [key, each] : elements)
    text += element(key.first, each.content, each.attributes);
  return text;
}

/// Writes a document. A material has a layer of its own, to which constructions refer.
class DocumentWriter {
 public:
  explicit DocumentWriter(const TextSink& sink) : sink_(sink) {
    sink_(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<gbXML xmlns=\"http://www.gbxml.org/schema\" version=\"6.01\" temperatureUnit=\"C\" "
        "lengthUnit=\"Meters\" areaUnit=\"SquareMeters\" volumeUnit=\"CubicMeters\" "
        "useSIUnitsForResults=\"true\">\n");
  }

  void write(const SourceMaterial& material) {
    const auto number = layers_.size() + 1;
    layers_[material.name] = number;
    std::string text = fmt::format("  <Material id=\"material-{}\">\n", number);
    text += element("Name", material.name) + description(material.description);
    for (const auto& field : material.described->fields) {
      const auto value = material.values.find(field.key);
      if (value == material.values.end()) continue;
      text += element_of_number(gbxml_element_of(field), value->second);
    }
    text += further_elements(material.not_kept) + "  </Material>\n";
    text += fmt::format(
        "  <Layer id=\"layer-{0}\">\n    <MaterialId materialIdRef=\"material-{0}\"/>\n"
        "  </Layer>\n",
        number);
    sink_(text);
  }

  void write(const SourceConstruction& construction) {
    std::string text = fmt::format("  <Construction id=\"construction-{}\">\n", ++constructions_);
    text += element("Name", construction.name) + description(construction.description);
    if (!construction.transmittance.empty()) {
      text += element_of_number(gbxml_transmittance, construction.transmittance);
    }
    for (const auto& layer : construction.layers) {
      text += fmt::format("    <LayerId layerIdRef=\"layer-{}\"/>\n", layers_.at(layer));
    }
    sink_(text + further_elements(construction.not_kept) + "  </Construction>\n");
  }

  void end() { sink_("</gbXML>\n"); }

 private:
  const TextSink& sink_;
  std::map<std::string, std::size_t> layers_;  ///< their numbers, by the name of the material
  std::size_t constructions_ = 0;
};

}  // namespace

WriteReport write_gbxml(const Library& library, const TextSink& sink, const WriteRules& rules) {
  static const ModelFormat format{"gbXML",
                                  gbxml_classes(),
                                  false,
                                  false,
                                  std::numeric_limits<std::size_t>::max(),
                                  name_in_gbxml,
                                  holds,
                                  holds_of_construction,
                                  gbxml_class_of,
                                  true,
                                  can_be_content};
  DocumentWriter writer(sink);
  return write_model_to(writer, library, format, rules.progress);
}

}  // namespace veldra::kit
