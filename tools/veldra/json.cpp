// SPDX-License-Identifier: GPL-2.0-or-later
#include "json.hpp"

#include "kinds.hpp"

namespace veldra_tool {

Json number_to_json(double number) { return value_to_json(number); }

Json value_to_json(const kit::Value& value) { return Json::parse(kit::json_of(value)); }

Json to_json(const veldra::Material& material) { return Json::parse(kit::json_of(material)); }

Json to_json(const veldra::Composition& composition) {
  return Json::parse(kit::json_of(composition));
}

Json to_json(const veldra::CustomProperty& property) { return Json::parse(kit::json_of(property)); }

Json settings_to_json(const veldra::Library& library) {
  Json json = Json::object();
  json["unit"] = name_of(library.unit());
  json["locale"] = library.locale().utf8();
  json["region"] = library.region().utf8();
  return json;
}

Json key_to_json(const veldra::ObjectKey& key, const std::string& name) {
  Json json = Json::object();
  json["kind"] = singular_of(key.type);
  json["id"] = key.id;
  json["name"] = name;
  return json;
}

std::string json_text(const Json& json) {
  return kit::without_controls_in_json(json.dump(2)) + "\n";
}

void print_json(Spool& output, const Json& json) { output.write(json_text(json)); }

}  // namespace veldra_tool
