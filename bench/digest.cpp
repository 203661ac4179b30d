// SPDX-License-Identifier: GPL-2.0-or-later
#include "digest.hpp"

#include <sqlite3.h>

#include <cmath>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <vector>

namespace veldra_bench {

namespace {

enum class Ids { Count, DoNotCount };

/// Adds up what comes in any order.
class Sum {
 public:
  void add(const Digest& digest) { value_ += digest.value() * 0x9E3779B97F4A7C15u; }
  std::uint64_t value() const { return value_; }

 private:
  std::uint64_t value_ = 0;
};

class Objects {
 public:
  Objects(Digest& digest, Ids ids) : digest_(digest), ids_(ids) {}

  void id(unsigned id) {
    if (ids_ == Ids::Count) digest_.add(std::uint64_t{id});
  }

  template <class T>
  void named(const std::shared_ptr<T>& object) {
    if (object == nullptr) return named(plain_named{0, nullptr});
    id(object->id());
    digest_.add(object->name().c_str());
  }

  void named(const plain_named& object) {
    id(object.id);
    digest_.add(object.name);
  }

  void color(const veldra::Color& color) {
    digest_.add(color.red);
    digest_.add(color.green);
    digest_.add(color.blue);
    digest_.add(color.alpha);
  }

  void color(const plain_color& color) {
    this->color(veldra::Color(color.red, color.green, color.blue, color.alpha));
  }

  void pattern(const veldra::Pattern& pattern, const veldra::Color& pattern_color) {
    digest_.add(static_cast<std::uint64_t>(pattern.type));
    digest_.add(pattern.name.c_str());
    digest_.add(pattern.scale);
    digest_.add(pattern.angle);
    digest_.add(std::uint64_t{pattern.cross});
    color(pattern_color);
  }

  void pattern(const plain_pattern& pattern) {
    digest_.add(static_cast<std::uint64_t>(pattern.type));
    digest_.add(pattern.name);
    digest_.add(pattern.scale);
    digest_.add(pattern.angle);
    digest_.add(static_cast<std::uint64_t>(pattern.cross));
    color(pattern.color);
  }

  template <class Owner>
  void values(const veldra::CustomValued<Owner>& owner) {
    Sum sum;
    for (const auto& value : owner.custom_values()) {
      const veldra::CustomProperty& property = *value.first;
      sum.add(value_digest(property.id(), property.name().c_str(),
                           static_cast<int>(property.object_type()), value.second.c_str()));
    }
    digest_.add(sum.value());
  }

  void values(const plain_values& values) {
    Sum sum;
    for (std::size_t i = 0; i != values.size; ++i) {
      const plain_property& property = values.items[i].property;
      sum.add(
          value_digest(property.id, property.name, property.object_type, values.items[i].value));
    }
    digest_.add(sum.value());
  }

  void number(double number) { digest_.add(std::isnan(number) ? -1.0 : number); }

  template <class Kind>
  void asset_texts(const Kind& asset) {
    id(asset.id());
    for (const veldra::String* text : {&asset.name(), &asset.description(), &asset.subclass()}) {
      digest_.add(text->c_str());
    }
    tags(asset);
  }

  void asset(const std::shared_ptr<veldra::StructuralAsset>& asset) {
    if (asset == nullptr) return;
    asset_texts(*asset);
    for (const double value :
         {asset->density(), asset->specific_heat(), asset->thermal_conductivity()}) {
      number(value);
    }
  }

  void asset(const std::shared_ptr<veldra::ThermalAsset>& asset) {
    if (asset == nullptr) return;
    asset_texts(*asset);
    digest_.add(asset->source().c_str());
    for (const double value : {asset->density(), asset->specific_heat(),
                               asset->thermal_conductivity(), asset->emissivity()}) {
      number(value);
    }
  }

  void asset(const plain_asset* asset, bool thermal) {
    if (asset == nullptr) return;
    id(asset->id);
    for (const plain_text text : {asset->name, asset->description, asset->subclass}) {
      digest_.add(text);
    }
    tags(asset->tags);
    if (thermal) digest_.add(asset->source);
    for (const double value : {asset->density, asset->specific_heat, asset->thermal_conductivity}) {
      number(value);
    }
    if (thermal) number(asset->emissivity);
  }

  template <class Owner>
  void tags(const veldra::Tagged<Owner>& owner) {
    for (const auto& tag : owner.tags()) named(tag);
  }

  void tags(const plain_tags& tags) {
    for (std::size_t i = 0; i != tags.size; ++i) named(tags.items[i]);
  }

  void material(const veldra::Material& material) {
    id(material.id());
    for (const veldra::String* text :
         {&material.name(), &material.description(), &material.comments(), &material.code(),
          &material.cost(), &material.keynote(), &material.label(), &material.manufacturer(),
          &material.mark(), &material.model(), &material.url(), &material.classification(),
          &material.appearance()}) {
      digest_.add(text->c_str());
    }
    named(material.type());
    named(material.cut_layer());
    digest_.add(std::uint64_t{material.shading_use_appearance()});
    color(material.shading_color());
    pattern(material.surface_pattern(), material.surface_pattern_color());
    digest_.add(material.surface_pattern_alignment().x);
    digest_.add(material.surface_pattern_alignment().y);
    pattern(material.cut_pattern(), material.cut_pattern_color());
    digest_.add(static_cast<std::uint64_t>(material.function()));
    digest_.add(std::uint64_t{material.allow_custom_thickness()});
    asset(material.structuralAsset());
    asset(material.thermalAsset());
    tags(material);
    for (const double thickness : material.thicknesses()) digest_.add(thickness);
    values(material);
  }

  void material(const plain_material& material) {
    id(material.id);
    for (const plain_text text :
         {material.name, material.description, material.comments, material.code, material.cost,
          material.keynote, material.label, material.manufacturer, material.mark, material.model,
          material.url, material.classification, material.appearance}) {
      digest_.add(text);
    }
    named(material.type);
    named(material.cut_layer);
    digest_.add(static_cast<std::uint64_t>(material.shading_use_appearance));
    color(material.shading_color);
    pattern(material.surface_pattern);
    digest_.add(material.alignment_x);
    digest_.add(material.alignment_y);
    pattern(material.cut_pattern);
    digest_.add(static_cast<std::uint64_t>(material.function));
    digest_.add(static_cast<std::uint64_t>(material.allow_custom_thickness));
    asset(material.structural, false);
    asset(material.thermal, true);
    tags(material.tags);
    for (std::size_t i = 0; i != material.thicknesses.size; ++i) {
      digest_.add(material.thicknesses.items[i]);
    }
    values(material.values);
  }

  void composition(const veldra::Composition& composition) {
    id(composition.id());
    digest_.add(composition.name().c_str());
    digest_.add(composition.description().c_str());
    digest_.add(composition.comments().c_str());
    digest_.add(static_cast<std::uint64_t>(composition.type()));
    named(composition.entity_layer());
    digest_.add(std::uint64_t{composition.first_core_layer()});
    digest_.add(std::uint64_t{composition.last_core_layer()});
    digest_.add(std::uint64_t{composition.structural_layer()});
    digest_.add(std::uint64_t{composition.has_variable_layer()});
    digest_.add(std::uint64_t{composition.variable_layer()});
    digest_.add(composition.variable_layer_min_thickness());
    digest_.add(std::uint64_t{composition.has_variable_layer_max_thickness()});
    digest_.add(composition.variable_layer_max_thickness());
    tags(composition);
    for (const auto& layer : composition.layers()) {
      material(*layer.material());
      digest_.add(static_cast<std::uint64_t>(layer.function()));
      digest_.add(layer.thickness());
    }
    values(composition);
  }

  void composition(const plain_composition& composition) {
    id(composition.id);
    digest_.add(composition.name);
    digest_.add(composition.description);
    digest_.add(composition.comments);
    digest_.add(static_cast<std::uint64_t>(composition.type));
    named(composition.entity_layer);
    digest_.add(std::uint64_t{composition.first_core_layer});
    digest_.add(std::uint64_t{composition.last_core_layer});
    digest_.add(std::uint64_t{composition.structural_layer});
    digest_.add(static_cast<std::uint64_t>(composition.has_variable_layer));
    digest_.add(std::uint64_t{composition.variable_layer});
    digest_.add(composition.variable_layer_min_thickness);
    digest_.add(static_cast<std::uint64_t>(composition.has_variable_layer_max_thickness));
    digest_.add(composition.variable_layer_max_thickness);
    tags(composition.tags);
    for (std::size_t i = 0; i != composition.layers.size; ++i) {
      material(*composition.layers.items[i].material);
      digest_.add(static_cast<std::uint64_t>(composition.layers.items[i].function));
      digest_.add(composition.layers.items[i].thickness);
    }
    values(composition.values);
  }

 private:
  Digest value_digest(unsigned property, const unsigned short* name, int object_type,
                      const unsigned short* text) const {
    Digest digest;
    if (ids_ == Ids::Count) digest.add(std::uint64_t{property});
    digest.add(name);
    digest.add(static_cast<std::uint64_t>(object_type));
    digest.add(text);
    return digest;
  }

  Digest& digest_;
  Ids ids_;
};

class Rows {
 public:
  explicit Rows(const std::string& path) {
    if (sqlite3_open_v2(path.c_str(), &database_, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK) {
      throw std::runtime_error("cannot open " + path);
    }
  }
  Rows(const Rows&) = delete;
  Rows& operator=(const Rows&) = delete;
  ~Rows() { sqlite3_close(database_); }

  template <class Visit>
  void each(const std::string& text, Visit visit) const {
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(database_, text.c_str(), -1, &statement, nullptr);
    while (sqlite3_step(statement) == SQLITE_ROW) visit(statement);
    if (sqlite3_finalize(statement) != SQLITE_OK) {
      throw std::runtime_error(sqlite3_errmsg(database_));
    }
  }

 private:
  sqlite3* database_ = nullptr;
};

void add_row(Digest& digest, sqlite3_stmt* row) {
  for (int i = 0; i != sqlite3_column_count(row); ++i) {
    digest.add(static_cast<std::uint64_t>(sqlite3_column_type(row, i)));
    digest.add(static_cast<const unsigned short*>(sqlite3_column_text16(row, i)));
  }
}

}  // namespace

void Digest::add(std::uint64_t number) {
  value_ = (value_ ^ number) * 1099511628211u;
  value_ ^= value_ >> 29;
}

void Digest::add(double number) {
  std::uint64_t bits = 0;
  std::memcpy(&bits, &number, sizeof bits);
  add(bits);
}

void Digest::add(const unsigned short* text) {
  for (; text != nullptr && *text != 0; ++text) add(std::uint64_t{*text});
  add(std::uint64_t{0x10000});
}

void add(Digest& digest, const veldra::Material& material) {
  Objects(digest, Ids::Count).material(material);
}

void add(Digest& digest, const plain_material& material) {
  Objects(digest, Ids::Count).material(material);
}

void add(Digest& digest, const veldra::Composition& composition) {
  Objects(digest, Ids::Count).composition(composition);
}

void add(Digest& digest, const plain_composition& composition) {
  Objects(digest, Ids::Count).composition(composition);
}

std::uint64_t digest_of_rows(const std::string& path) {
  const Rows rows(path);
  std::vector<std::string> tables;
  rows.each(
      "SELECT name FROM sqlite_master WHERE type='table' AND name NOT IN ('Meta',"
      " 'sqlite_sequence') ORDER BY name",
      [&](sqlite3_stmt* row) {
        tables.emplace_back(reinterpret_cast<const char*>(sqlite3_column_text(row, 0)));
      });
  Digest digest;
  for (const std::string& table : tables) {
    rows.each("SELECT rowid, * FROM \"" + table + "\" ORDER BY rowid",
              [&](sqlite3_stmt* row) { add_row(digest, row); });
  }
  return digest.value();
}

namespace {

void add_material(void* sum, const plain_material* material) {
  Digest digest;
  Objects(digest, Ids::DoNotCount).material(*material);
  static_cast<Sum*>(sum)->add(digest);
}

void add_composition(void* sum, const plain_composition* composition) {
  Digest digest;
  Objects(digest, Ids::DoNotCount).composition(*composition);
  static_cast<Sum*>(sum)->add(digest);
}

}  // namespace

std::uint64_t digest_of_objects(const std::string& path) {
  Sum sum;
  plain_library* library = plain_open(path.c_str());
  plain_each_material(library, add_material, &sum);
  plain_each_composition(library, add_composition, &sum);
  plain_close(library);

  const Rows rows(path);
  for (const char* text : {"SELECT name FROM Tag", "SELECT name FROM Layer",
                           "SELECT name FROM MaterialType", "SELECT name FROM CustomProperty"}) {
    rows.each(text, [&](sqlite3_stmt* row) {
      Digest digest;
      add_row(digest, row);
      sum.add(digest);
    });
  }
  return sum.value();
}

}  // namespace veldra_bench
