// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/row_checks.hpp"

#include "store/finding.hpp"
#include "store/kinds.hpp"

#include <algorithm>
#include <map>
#include <utility>

namespace veldra {

namespace {

/// A table of objects and their kind.
struct ObjectTable {
  ObjectType type;
  const char* name;
};

/// Rows that belong to objects: those of the objects' own table, or of one that refers to it.
struct Rows {
  ObjectTable owner;
  std::string table;
  std::string key;  ///< the column with the id of the object
};

/// What is listed in an order, and where.
struct List {
  Rows rows;
  std::string items;
};

/// The text with the values in place of their names in braces.
std::string filled(std::string text, const std::map<std::string, std::string>& values) {
  for (const auto& value : values) {
    const std::string name = "{" + value.first + "}";
    for (std::size_t at = 0; (at = text.find(name, at)) != std::string::npos;) {
      text.replace(at, name.size(), value.second);
      at += value.second.size();
    }
  }
  return text;
}

/// Tells of the objects for which `query`, which gives `key` and `sentence`, has a sentence. Rows
/// whose objects are not there are found as broken references.
RowCheck of_objects(const Rows& rows, const std::string& query) {
  const std::string whole = R"sql(
      SELECT o."id", o."name", r.sentence
        FROM ({query}) AS r CROSS JOIN "{owner}" AS o ON o."id" = r.key
       WHERE r.sentence IS NOT NULL AND o."id" BETWEEN 1 AND 4294967295
       LIMIT 100)sql";
  return {rows.owner.type,
          {rows.owner.name, rows.table},
          filled(whole, {{"query", query}, {"owner", rows.owner.name}})};
}

/// Tells what the cases, which are the inside of CASE ... END, say of each row.
RowCheck of_each_row(const Rows& rows, const std::string& cases) {
  const std::string query =
      R"sql(SELECT "{key}" AS key, CASE {cases} END AS sentence FROM "{table}")sql";
  return of_objects(rows,
                    filled(query, {{"key", rows.key}, {"cases", cases}, {"table", rows.table}}));
}

// The file.

RowCheck wrong_identity() {
  return {ObjectType{},
          {"Meta"},
          R"sql(SELECT '"Meta" has ' || count(*) || ' rows instead of one'
                  FROM "Meta" HAVING count(*) <> 1)sql"};
}

RowCheck wrong_version() {
  return {ObjectType{},
          {"schema_version"},
          R"sql(SELECT '"schema_version" has ' || count(*)
                       || ' rows with the version of the library instead of one'
                  FROM "schema_version" WHERE "name" = '' HAVING count(*) <> 1)sql"};
}

// Ids.

RowCheck impossible_ids(const ObjectTable& objects) {
  const std::string query = R"sql(
      SELECT 'The {kind} "' || "name" || '" has the id ' || substr(quote("id"), 1, 40)
             || ', which no object can have'
        FROM "{table}"
       WHERE "id" IS NULL OR "id" NOT BETWEEN 1 AND 4294967295
       LIMIT 100)sql";
  return {ObjectType{},
          {objects.name},
          filled(query, {{"kind", singular_of(objects.type)}, {"table", objects.name}})};
}

RowCheck strange_sequence(const ObjectTable& objects) {
  const std::string query = R"sql(
      SELECT 'The last id of "{table}" is noted as ' || substr(quote(seq), 1, 40)
             || ', which is no whole number'
        FROM sqlite_sequence
       WHERE name = '{table}' AND typeof(seq) <> 'integer'
       LIMIT 100)sql";
  return {ObjectType{}, {"sqlite_sequence"}, filled(query, {{"table", objects.name}})};
}

/// The largest id is nobody's, see `RowWriter`.
RowCheck used_up_ids(const ObjectTable& objects) {
  const std::string query = R"sql(
      WITH last(id) AS (SELECT max("id") FROM "{table}"
                        UNION ALL
                        SELECT seq FROM sqlite_sequence WHERE name = '{table}')
      SELECT 'No id is left for "{table}": the last one was ' || max(id)
        FROM last
       WHERE typeof(id) = 'integer'
      HAVING max(id) >= 4294967294)sql";
  return {
      ObjectType{}, {objects.name, "sqlite_sequence"}, filled(query, {{"table", objects.name}})};
}

// Texts.

/// NULL where there must be none is told with the damage.
std::string wrong_text(const std::string& column) {
  return filled(R"sql(
      WHEN typeof("{column}") NOT IN ('text', 'null') THEN 'its "{column}" is no text'
      WHEN instr("{column}", char(0)) THEN 'its "{column}" has a zero byte inside')sql",
                {{"column", column}});
}

RowCheck wrong_texts(const FileSchema& expected, const Rows& rows) {
  std::string cases;
  for (const auto& column : expected.find(rows.table)->columns) {
    if (column.second == "TEXT") cases += wrong_text(column.first);
  }
  return of_each_row(rows, cases);
}

// Numbers. NaN is stored as NULL.

/// `what` is an expression.
std::string wrong_number(const std::string& column, const std::string& what) {
  return filled(R"sql(
      WHEN typeof("{column}") NOT IN ('real', 'integer', 'null')
        THEN {what} || ' is no number: ' || substr(quote("{column}"), 1, 40)
      WHEN "{column}" NOT BETWEEN -1.7976931348623157e308 AND 1.7976931348623157e308
        THEN {what} || ' is infinite'
      WHEN "{column}" < 0
        THEN {what} || ' is negative: ' || printf('%.15g', "{column}"))sql",
                {{"column", column}, {"what", what}});
}

std::string unknown_number(const std::string& column, const std::string& what) {
  return filled(R"sql( WHEN "{column}" IS NULL THEN {what} || ' is not known')sql",
                {{"column", column}, {"what", what}});
}

/// Layers are counted from 1 for people.
RowCheck wrong_layer_thicknesses(const Rows& layers) {
  const std::string what = R"sql('the thickness of ' ||
      iif(typeof("index") = 'integer' AND "index" >= 0, 'layer ' || ("index" + 1), 'a layer'))sql";
  return of_each_row(
      layers, unknown_number("value_thickness", what) + wrong_number("value_thickness", what));
}

RowCheck wrong_material_thicknesses(const Rows& thicknesses) {
  const std::string what = "'a thickness'";
  return of_each_row(thicknesses, unknown_number("value", what) + wrong_number("value", what));
}

RowCheck wrong_conductivities(const Rows& assets) {
  const std::string column = "thermal_conductivity";
  const std::string what = "'the thermal conductivity'";
  return of_each_row(assets, unknown_number(column, what) + wrong_number(column, what));
}

/// Without a variable layer nobody asks how thin it may be.
RowCheck wrong_variable_layers(const Rows& compositions) {
  const std::string least = "variable_layer_min_thickness";
  const std::string what = "'the least thickness of the variable layer'";
  return of_each_row(compositions, wrong_number(least, what) +
                                       wrong_number("variable_layer_max_thickness",
                                                    "'the greatest thickness of the variable "
                                                    "layer'") +
                                       R"sql( WHEN "variable_layer" IS NULL THEN NULL)sql" +
                                       unknown_number(least, what));
}

RowCheck wrong_composition_types(const Rows& compositions) {
  return of_each_row(compositions, R"sql(
      WHEN "type" NOT IN (1, 2, 4, 128)
        THEN 'its type is none of 1, 2, 4 and 128: ' || substr(quote("type"), 1, 40))sql");
}

// Positions.

RowCheck strange_positions(const List& list) {
  const std::string cases = R"sql(
      WHEN typeof("index") <> 'integer'
        THEN 'a position in its {items} is no whole number: ' || substr(quote("index"), 1, 40)
      WHEN "index" < 0
        THEN 'a position in its {items} is negative: ' || "index")sql";
  return of_each_row(list.rows, filled(cases, {{"items", list.items}}));
}

/// Whole lists are looked at first, so that few rows are sorted.
RowCheck doubled_positions(const List& list) {
  const std::string query = R"sql(
      SELECT "object_id" AS key,
             count(*) || ' of its {items} have the position ' || "index" AS sentence
        FROM "{table}"
       WHERE typeof("index") = 'integer'
         AND "object_id" IN (SELECT "object_id" FROM "{table}" GROUP BY "object_id"
                             HAVING count(*) > count(DISTINCT "index"))
       GROUP BY "object_id", "index"
      HAVING count(*) > 1)sql";
  return of_objects(list.rows, filled(query, {{"items", list.items}, {"table", list.rows.table}}));
}

RowCheck gaps(const List& list) {
  const std::string query = R"sql(
      SELECT key, 'none of its {items} has the position '
                  || (SELECT min(place)
                        FROM (SELECT "index" AS position,
                                     dense_rank() OVER (ORDER BY "index") - 1 AS place
                                FROM "{table}"
                               WHERE "object_id" = key AND typeof("index") = 'integer'
                                 AND "index" >= 0)
                       WHERE position <> place)
                  || ', but one has ' || last AS sentence
        FROM (SELECT "object_id" AS key, max("index") AS last
                FROM "{table}"
               WHERE typeof("index") = 'integer' AND "index" >= 0
               GROUP BY "object_id"
              HAVING max("index") >= count(DISTINCT "index")))sql";
  return of_objects(list.rows, filled(query, {{"items", list.items}, {"table", list.rows.table}}));
}

// The tables.

template <class T>
constexpr ObjectTable table_of() {
  return {ObjectTraits<T>::type, Kind<T>::table};
}

constexpr ObjectTable assets = table_of<Asset>();
constexpr ObjectTable materials = table_of<Material>();
constexpr ObjectTable compositions = table_of<Composition>();

/// In the order of the numbers of the kinds.
std::vector<ObjectTable> object_tables() {
  std::vector<ObjectTable> tables{assets};
  for_each_kind(
      [&tables](auto kind) { tables.push_back(table_of<typename decltype(kind)::type>()); });
  std::sort(tables.begin(), tables.end(),
            [](const ObjectTable& a, const ObjectTable& b) { return a.type < b.type; });
  return tables;
}

Rows own_rows(const ObjectTable& objects) { return {objects, objects.name, "id"}; }

Rows rows_with_owners(const ObjectTable& owner, const std::string& table) {
  return {owner, table, "object_id"};
}

bool has_texts(const FileSchema::Table& table) {
  return std::any_of(table.columns.begin(), table.columns.end(),
                     [](const std::pair<const std::string, std::string>& column) {
                       return column.second == "TEXT";
                     });
}

/// The tables that hold a part of objects, such as "Material_tags", each with what it lists.
std::vector<List> parts_of_objects(const FileSchema& expected) {
  std::vector<List> parts;
  for (const ObjectTable& objects : object_tables()) {
    const std::string beginning = std::string(objects.name) + "_";
    for (const auto& each : expected.tables) {
      const std::string& name = each.second.name;
      if (name.compare(0, beginning.size(), beginning) != 0) continue;
      parts.push_back({rows_with_owners(objects, name), name.substr(beginning.size())});
    }
  }
  return parts;
}

/// The second half of an asset has its id.
Rows half_of_assets(const std::string& table) { return {assets, table, "id"}; }

using RowChecks = std::vector<RowCheck>;

void add_ids(RowChecks& checks) {
  for (const ObjectTable& objects : object_tables()) {
    checks.push_back(impossible_ids(objects));
    checks.push_back(strange_sequence(objects));
    checks.push_back(used_up_ids(objects));
  }
}

void add_texts(RowChecks& checks, const FileSchema& expected) {
  std::vector<Rows> tables{half_of_assets("StructuralAsset"), half_of_assets("ThermalAsset")};
  for (const List& part : parts_of_objects(expected)) {
    if (has_texts(*expected.find(part.rows.table))) tables.push_back(part.rows);
  }
  for (const ObjectTable& objects : object_tables()) tables.push_back(own_rows(objects));
  for (const Rows& rows : tables) checks.push_back(wrong_texts(expected, rows));
}

void add_numbers(RowChecks& checks) {
  checks.push_back(wrong_layer_thicknesses(rows_with_owners(compositions, "Composition_layers")));
  checks.push_back(wrong_material_thicknesses(rows_with_owners(materials, "Material_thicknesses")));
  checks.push_back(wrong_variable_layers(own_rows(compositions)));
  checks.push_back(wrong_composition_types(own_rows(compositions)));
  checks.push_back(wrong_conductivities(half_of_assets("StructuralAsset")));
  checks.push_back(wrong_conductivities(half_of_assets("ThermalAsset")));
}

void add_positions(RowChecks& checks, const FileSchema& expected) {
  for (const List& list : parts_of_objects(expected)) {
    if (expected.find(list.rows.table)->columns.count("index") == 0) continue;
    checks.push_back(strange_positions(list));
    checks.push_back(doubled_positions(list));
    checks.push_back(gaps(list));
  }
}

}  // namespace

std::vector<RowCheck> row_checks(const FileSchema& expected) {
  RowChecks checks{wrong_identity(), wrong_version()};
  add_ids(checks);
  add_texts(checks, expected);
  add_positions(checks, expected);
  add_numbers(checks);
  return checks;
}

}  // namespace veldra
