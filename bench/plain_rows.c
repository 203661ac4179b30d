// SPDX-License-Identifier: GPL-2.0-or-later
#include "plain_internal.h"

#include <math.h>
#include <string.h>

/* The columns of a row from the left to the right. */
typedef struct {
  sqlite3_stmt* row;
  int column;
} columns;

unsigned id_at(sqlite3_stmt* row, int column) {
  return (unsigned)sqlite3_column_int64(row, column);
}

plain_text text_at(sqlite3_stmt* row, int column) {
  const char* utf8 = (const char*)sqlite3_column_text(row, column);
  if (utf8 == NULL) return NULL;
  return plain_decode(utf8, (size_t)sqlite3_column_bytes(row, column));
}

static plain_text next_text(columns* at) { return text_at(at->row, at->column++); }

static unsigned next_id(columns* at) { return id_at(at->row, at->column++); }

static int next_int(columns* at) { return sqlite3_column_int(at->row, at->column++); }

static double next_real(columns* at) { return sqlite3_column_double(at->row, at->column++); }

static int next_is_null(const columns* at) {
  return sqlite3_column_type(at->row, at->column) == SQLITE_NULL;
}

static double next_real_or_nan(columns* at) {
  const int missing = next_is_null(at);
  const double number = next_real(at);
  return missing ? NAN : number;
}

static plain_color next_color(columns* at) {
  plain_color color;
  color.red = next_real(at);
  color.green = next_real(at);
  color.blue = next_real(at);
  color.alpha = next_real(at);
  return color;
}

static plain_pattern next_pattern(columns* at) {
  plain_pattern pattern;
  pattern.type = next_int(at);
  pattern.name = next_text(at);
  pattern.scale = next_real(at);
  pattern.angle = next_real(at);
  pattern.cross = next_int(at);
  pattern.color = next_color(at);
  return pattern;
}

plain_named named_of(sqlite3_stmt* row) {
  columns at = {row, 0};
  plain_named named;
  named.id = next_id(&at);
  named.name = next_text(&at);
  return named;
}

plain_property property_of(sqlite3_stmt* row) {
  columns at = {row, 0};
  plain_property property;
  property.id = next_id(&at);
  property.name = next_text(&at);
  property.object_type = next_int(&at);
  return property;
}

void fill_asset(sqlite3_stmt* row, plain_asset* asset) {
  columns at = {row, 0};
  memset(asset, 0, sizeof *asset);
  asset->id = next_id(&at);
  asset->name = next_text(&at);
  asset->description = next_text(&at);
  asset->subclass = next_text(&at);
  asset->source = next_text(&at);
  asset->density = next_real_or_nan(&at);
  asset->emissivity = next_real_or_nan(&at);
  asset->specific_heat = next_real_or_nan(&at);
  asset->thermal_conductivity = next_real_or_nan(&at);
}

void fill_material(sqlite3_stmt* row, plain_material* material) {
  columns at = {row, 0};
  memset(material, 0, sizeof *material);
  material->id = next_id(&at);
  material->name = next_text(&at);
  material->description = next_text(&at);
  material->type.id = next_id(&at);
  material->comments = next_text(&at);
  material->code = next_text(&at);
  material->cost = next_text(&at);
  material->keynote = next_text(&at);
  material->label = next_text(&at);
  material->manufacturer = next_text(&at);
  material->mark = next_text(&at);
  material->model = next_text(&at);
  material->url = next_text(&at);
  material->classification = next_text(&at);
  material->shading_use_appearance = next_int(&at);
  material->shading_color = next_color(&at);
  material->surface_pattern = next_pattern(&at);
  material->alignment_x = next_real(&at);
  material->alignment_y = next_real(&at);
  material->cut_pattern = next_pattern(&at);
  material->cut_layer.id = next_id(&at);
  material->appearance = next_text(&at);
  material->structural_id = next_id(&at);
  material->thermal_id = next_id(&at);
  material->function = next_int(&at);
  material->allow_custom_thickness = next_int(&at);
}

void fill_composition(sqlite3_stmt* row, plain_composition* composition) {
  columns at = {row, 0};
  memset(composition, 0, sizeof *composition);
  composition->id = next_id(&at);
  composition->name = next_text(&at);
  composition->description = next_text(&at);
  composition->type = next_int(&at);
  composition->entity_layer.id = next_id(&at);
  composition->comments = next_text(&at);
  composition->first_core_layer = next_id(&at);
  composition->last_core_layer = next_id(&at);
  composition->structural_layer = next_id(&at);
  composition->has_variable_layer = !next_is_null(&at);
  composition->variable_layer = next_id(&at);
  composition->variable_layer_min_thickness = next_real(&at);
  composition->has_variable_layer_max_thickness = !next_is_null(&at);
  composition->variable_layer_max_thickness = next_real(&at);
}
