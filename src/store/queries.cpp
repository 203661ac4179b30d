// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/queries.hpp"

#include "foundation/encoding.hpp"
#include "store/kinds.hpp"
#include "store/views-odb.hpp"

#include <algorithm>
#include <array>
#include <cassert>
#include <iterator>
#include <limits>
#include <memory>
#include <string>
#include <unordered_set>

namespace veldra {

namespace {

using Query = odb::sqlite::query_base;

/// How many values one list in a statement may have. SQLite's own limit for a statement may be as
/// low as 999.
const std::size_t list_limit = 500;

std::string quoted(const std::string& name) { return "\"" + name + "\""; }

/// The rows that a query looks at.
struct Rows {
  std::string from;
  std::string name;      ///< by which the table of the objects is known in them
  std::string distinct;  ///< where an object may have several of them

  std::string column(const std::string& of_object) const {
    return quoted(name) + "." + quoted(of_object);
  }
};

/// One for each object of a kind.
template <class T>
Rows objects() {
  return {quoted(Kind<T>::table), Kind<T>::table, ""};
}

/// One for each tag of an object, for conditions on the names of the tags.
template <class T>
Rows tagged_objects() {
  const std::string table = Kind<T>::table;
  const std::string tags = quoted("Object_" + table + "_tags");
  return {quoted(table) + " AS \"Object\" LEFT JOIN " + quoted(table + "_tags") + " AS " + tags +
              " ON " + tags + ".\"object_id\"=\"Object\".\"id\"" + " LEFT JOIN \"Tag\" ON " + tags +
              ".\"tag_id\"=\"Tag\".\"id\"",
          "Object", "DISTINCT "};
}

/// A query for the numbers `what` of those rows that meet a condition.
Query select(const std::string& what, const Rows& rows, const Query& condition) {
  return Query("SELECT " + what + " FROM " + rows.from + " WHERE ") + condition;
}

Query selecting_ids(const Rows& rows, const Query& condition) {
  return select(rows.distinct + rows.column("id"), rows, condition);
}

/// All but those with impossible ids, which lie at both ends of the index: looking at each id on
/// the way would take its time.
Query counting_all(const Rows& rows) {
  const std::string count = "SELECT count(*) FROM " + rows.from;
  const std::string id = rows.column("id");
  return Query("SELECT (" + count + ")-(" + count + " WHERE " + id + "<1)-(" + count + " WHERE " +
               id + ">4294967295)");
}

/// The same of those that meet a condition.
Query counting(const Rows& rows, const Query& condition) {
  const std::string count = "SELECT count(*) FROM " + rows.from + " WHERE ";
  const std::string id = rows.column("id");
  return Query("SELECT (" + count) + condition + (")-(" + count + id + "<1 AND (") + condition +
         ("))-(" + count + id + ">4294967295 AND (") + condition + "))";
}

/// The same where the condition finds the objects by their ids, and should be evaluated once only.
Query counting_once(const Rows& rows, const Query& condition) {
  const Query possible(rows.column("id") + " BETWEEN 1 AND 4294967295");
  return select("count(*)", rows, possible && condition);
}

template <class Value>
Query compare(const std::string& left, const char* operation, const Value& value) {
  return Query(left + operation) + Query::_val(value);
}

/// Holds for every row, and disappears when another condition is joined to it.
Query no_condition() { return Query(true); }

/// "column IN (?, ?, ...)" for a part of a list.
template <class Iterator>
Query in_list(const std::string& column, Iterator begin, Iterator end) {
  Query list(column + " IN (");
  for (Iterator value = begin; value != end; ++value) {
    if (value != begin) list += ",";
    list += Query::_val(*value);
  }
  return list + ")";
}

template <class List>
Query in_list(const std::string& column, const List& list) {
  return in_list(column, list.begin(), list.end());
}

/// The same as one comparison after another; the list is not empty. `parameter` says how a value
/// becomes one of the query.
template <class List, class Parameter>
Query equals_one_of(const std::string& column, const List& list, Parameter parameter) {
  Query any;
  for (const auto& value : list) {
    const Query equal = Query(column + "=") + parameter(value);
    any = any.empty() ? equal : any || equal;
  }
  return any;
}

template <class List>
Query equals_one_of(const std::string& column, const List& list) {
  return equals_one_of(column, list, [](const auto& value) { return Query::_val(value); });
}

/// Calls `part` with the list cut into parts that a statement can take.
template <class List, class Part>
void in_parts(const List& list, Part part) {
  for (auto begin = list.begin(); begin != list.end();) {
    auto end = begin;
    for (std::size_t n = 0; n != list_limit && end != list.end(); ++n) ++end;
    part(begin, end);
    begin = end;
  }
}

// What the criteria of each kind say: the values that a column may have, and the names of tags.

/// No values leave the choice open.
struct Choice {
  const char* column = "";
  std::vector<unsigned> values;
};

Choice choice_of(const MaterialTypeCriteria&) { return {}; }
Choice choice_of(const LayerCriteria&) { return {}; }
Choice choice_of(const TagCriteria&) { return {}; }

Choice choice_of(const CustomPropertyCriteria& criteria) {
  if (criteria.object_type == ObjectType{}) return {};
  return {"object_type", {static_cast<unsigned>(criteria.object_type)}};
}

Choice choice_of(const MaterialCriteria& criteria) {
  if (criteria.type == nullptr) return {};
  return {"type", {criteria.type->id()}};
}

Choice choice_of(const CompositionCriteria& criteria) {
  Choice choice{"type", {}};
  for (unsigned bit = 1; bit != 0; bit <<= 1) {
    if ((criteria.types & bit) != 0) choice.values.push_back(bit);
  }
  return choice;
}

Query condition_of(const Choice& choice, const Rows& rows) {
  return choice.values.empty() ? no_condition()
                               : equals_one_of(rows.column(choice.column), choice.values);
}

using TagNames = std::set<std::string>;

TagNames utf8(const std::set<String>& texts) {
  TagNames names;
  for (const String& text : texts) names.insert(text.utf8());
  return names;
}

TagNames tags_of(const MaterialTypeCriteria&) { return {}; }
TagNames tags_of(const LayerCriteria&) { return {}; }
TagNames tags_of(const TagCriteria&) { return {}; }
TagNames tags_of(const CustomPropertyCriteria&) { return {}; }

TagNames tags_of(const MaterialCriteria& criteria) { return utf8(criteria.tags); }
TagNames tags_of(const CompositionCriteria& criteria) { return utf8(criteria.tags); }

const char* const tag_name = "\"Tag\".\"name\"";

/// Holds for the objects that have one of the tags, which are known by their ids.
template <class T>
Query has_tag(const Rows& rows, const std::vector<long long>& tags) {
  // One comparison after another is faster than looking into a list, as long as they are few.
  constexpr std::size_t few = 8;
  const std::string table = quoted(std::string(Kind<T>::table) + "_tags");
  return Query(rows.column("id") + " IN (SELECT \"object_id\" FROM " + table + " WHERE ") +
         (tags.size() > few ? in_list("\"tag_id\"", tags) : equals_one_of("\"tag_id\"", tags)) +
         ")";
}

template <class T>
Query in_order(const Query& query) {
  if (*Kind<T>::listed_by == 0) return query;
  return query + ("ORDER BY " + objects<T>().column(Kind<T>::listed_by));
}

/// Whether an object can have the id.
bool is_possible(unsigned long long id) {
  return id != 0 && id <= std::numeric_limits<unsigned>::max();
}

/// Appends those ids that an object can have.
void append_ids(Database& database, const Query& query, std::vector<unsigned>& ids) {
  assert(database.is_current());
  for (const QueriedNumber& row : database.query<QueriedNumber>(odb::query<QueriedNumber>(query))) {
    if (is_possible(row.value)) ids.push_back(static_cast<unsigned>(row.value));
  }
}

/// Appends those of `more` that `ids` does not have yet.
void append_new(std::vector<unsigned>& ids, const std::vector<unsigned>& more) {
  std::unordered_set<unsigned> known(ids.begin(), ids.end());
  std::copy_if(more.begin(), more.end(), std::back_inserter(ids),
               [&known](unsigned id) { return known.insert(id).second; });
}

/// Brings the ids into ascending order, each once.
void sort_out(std::vector<unsigned>& ids) {
  std::sort(ids.begin(), ids.end());
  ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
}

template <class T>
Query full_condition(const typename CriteriaOf<T>::type& criteria, const std::string& pattern,
                     const Rows& rows) {
  const Query condition = condition_of(choice_of(criteria), rows);
  return pattern.empty() ? condition : condition && compare(rows.column("name"), " LIKE ", pattern);
}

/// The ids of the objects that have one of the tags, which are not empty, and meet `condition`.
std::vector<unsigned> ids_of_tagged(Database& database, const Rows& rows, const TagNames& tags,
                                    const Query& condition) {
  std::vector<unsigned> ids;
  in_parts(tags, [&](auto begin, auto end) {
    std::vector<unsigned> part;
    append_ids(database, selecting_ids(rows, condition && in_list(tag_name, begin, end)), part);
    append_new(ids, part);
  });
  return ids;
}

/// The ids of the objects that criteria and pattern select; an empty pattern selects all.
template <class T>
std::vector<unsigned> ids_of(Database& database, const typename CriteriaOf<T>::type& criteria,
                             const std::string& pattern) {
  const TagNames tags = tags_of(criteria);
  const Rows rows = tags.empty() ? objects<T>() : tagged_objects<T>();
  const Query condition = full_condition<T>(criteria, pattern, rows);
  if (!tags.empty()) return ids_of_tagged(database, rows, tags, condition);

  std::vector<unsigned> ids;
  append_ids(database, in_order<T>(selecting_ids(rows, condition)), ids);
  return ids;
}

unsigned long long number(Database& database, const Query& query) {
  assert(database.is_current());
  return database.query_value<QueriedNumber>(odb::query<QueriedNumber>(query)).value;
}

/// The ids of the tags of those names, also those that are too wide for an object: rows refer to
/// them all the same.
std::vector<long long> tag_ids(Database& database, const TagNames& names) {
  const Query query = selecting_ids(objects<Tag>(), in_list(tag_name, names));
  std::vector<long long> ids;
  for (const QueriedNumber& row : database.query<QueriedNumber>(odb::query<QueriedNumber>(query))) {
    ids.push_back(static_cast<long long>(row.value));
  }
  return ids;
}

// Queries that are asked again and again are prepared once and kept by the connection, which finds
// them by a name that must live as long: a text for each query and kind.

struct Parameters {
  std::string name;
  int type = 0;
  std::vector<unsigned> values;  ///< as many as when the query was prepared
};

/// The query of that name. It reads `parameters` when it is executed.
template <class Make>
odb::prepared_query<QueriedNumber> prepared(Database& database, const std::string& name,
                                            Parameters*& parameters, Make make_query) {
  assert(database.is_current());
  auto& connection = database.only_connection();
  auto query = connection.lookup_query<QueriedNumber>(name.c_str(), parameters);
  if (query) return query;
  std::unique_ptr<Parameters> own(new Parameters);
  parameters = own.get();
  query = connection.prepare_query<QueriedNumber>(name.c_str(),
                                                  odb::query<QueriedNumber>(make_query(*own)));
  connection.cache_query(query, std::move(own));
  return query;
}

unsigned first_id(odb::prepared_query<QueriedNumber> query) {
  auto rows = query.execute(false);
  const auto row = rows.begin();
  if (row == rows.end() || row->value > std::numeric_limits<unsigned>::max()) return 0;
  return static_cast<unsigned>(row->value);
}

}  // namespace

template <class T>
std::vector<unsigned> all_ids(Database& database) {
  return ids_of<T>(database, {}, {});
}

template <class T>
std::map<unsigned, String> all_names(Database& database) {
  assert(database.is_current());
  const Rows rows = objects<T>();
  const Query query = select(rows.column("id") + "," + rows.column("name"), rows, no_condition()) +
                      ("ORDER BY " + rows.column("id"));
  std::map<unsigned, String> names;
  for (const QueriedName& row : database.query<QueriedName>(odb::query<QueriedName>(query))) {
    if (!is_possible(row.id)) continue;
    String name;
    StringAccess::assign(name, row.name.data(), row.name.size());
    names.emplace_hint(names.end(), static_cast<unsigned>(row.id), std::move(name));
  }
  return names;
}

template <class T>
std::vector<unsigned> existing_ids(Database& database, const std::set<unsigned>& ids) {
  std::vector<unsigned> existing;
  // Every part would come in its order, but not the whole.
  if (*Kind<T>::listed_by != 0 && ids.size() > list_limit) {
    existing = all_ids<T>(database);
    const auto other = [&ids](unsigned id) { return ids.count(id) == 0; };
    existing.erase(std::remove_if(existing.begin(), existing.end(), other), existing.end());
    return existing;
  }
  const Rows rows = objects<T>();
  in_parts(ids, [&](auto begin, auto end) {
    append_ids(database, in_order<T>(selecting_ids(rows, in_list(rows.column("id"), begin, end))),
               existing);
  });
  return existing;
}

template <class T>
std::vector<unsigned> selected_ids(Database& database,
                                   const typename CriteriaOf<T>::type& criteria) {
  return ids_of<T>(database, criteria, {});
}

template <class T>
std::vector<unsigned> matching_ids(Database& database, const String& pattern,
                                   const typename CriteriaOf<T>::type& criteria) {
  return ids_of<T>(database, criteria, pattern.utf8());
}

template <class T>
unsigned id_of_name(Database& database, const String& name) {
  static const std::string own_name = std::string("id by name: ") + Kind<T>::table;
  Parameters* parameters = nullptr;
  const auto query = prepared(database, own_name, parameters, [](const Parameters& values) {
    const Rows rows = objects<T>();
    return selecting_ids(rows, Query(rows.column("name") + "=") + Query::_ref(values.name));
  });
  parameters->name = name.utf8();
  return first_id(query);
}

unsigned id_of_property(Database& database, const String& name, ObjectType type) {
  static const std::string own_name = "id by name and kind of object";
  Parameters* parameters = nullptr;
  const auto query = prepared(database, own_name, parameters, [](const Parameters& values) {
    const Rows rows = objects<CustomProperty>();
    return selecting_ids(rows, Query(rows.column("object_type") + "=") + Query::_ref(values.type) +
                                   ("AND " + rows.column("name") + "=") + Query::_ref(values.name));
  });
  parameters->name = name.utf8();
  parameters->type = static_cast<int>(type);
  return first_id(query);
}

std::vector<unsigned> layer_material_ids(Database& database, const std::vector<unsigned>& ids) {
  const Rows layers{quoted("Composition_layers"), "Composition_layers", ""};
  std::vector<unsigned> materials;
  in_parts(ids, [&](auto begin, auto end) {
    append_ids(database,
               select(layers.column("value_material_id"), layers,
                      in_list(layers.column("object_id"), begin, end)),
               materials);
  });
  sort_out(materials);
  return materials;
}

std::vector<unsigned> referring_ids(Database& database, const ReferenceColumn& column,
                                    unsigned id) {
  const Rows rows{quoted(column.table), column.table, "DISTINCT "};
  const std::string key = rows.column(column.key);
  const Query refers(rows.column(column.column) + "=" + std::to_string(id));
  const Query is_of_an_object(key + " IN (SELECT \"id\" FROM " + quoted(column.owners) + ")");
  std::vector<unsigned> ids;
  append_ids(database, select(rows.distinct + key, rows, refers && is_of_an_object), ids);
  return ids;
}

template <class T>
std::vector<unsigned> referred_ids(Database& database) {
  std::vector<unsigned> ids;
  for (const ReferenceColumn& reference : reference_columns()) {
    if (reference.to != ObjectTraits<T>::type) continue;
    const Rows rows{quoted(reference.table), reference.table, ""};
    const std::string column = rows.column(reference.column);
    append_ids(database, select(column, rows, Query(column + " IS NOT NULL")), ids);
  }
  sort_out(ids);
  return ids;
}

template <class T>
std::vector<unsigned> unreferenced_ids(Database& database) {
  std::string referred;
  for (const ReferenceColumn& column : reference_columns()) {
    if (column.to != ObjectTraits<T>::type) continue;
    const std::string name = quoted(column.column);
    referred += (referred.empty() ? "SELECT " : " UNION ALL SELECT ") + name + " FROM " +
                quoted(column.table) + " WHERE " + name + " IS NOT NULL";
  }
  if (referred.empty()) return all_ids<T>(database);
  const Rows rows = objects<T>();
  std::vector<unsigned> ids;
  append_ids(database, selecting_ids(rows, Query(rows.column("id") + " NOT IN (" + referred + ")")),
             ids);
  return ids;
}

template <class T>
unsigned long long count_all(Database& database) {
  static const std::string own_name = std::string("count: ") + Kind<T>::table;
  Parameters* none = nullptr;
  auto query = prepared(database, own_name, none,
                        [](const Parameters&) { return counting_all(objects<T>()); });
  return query.execute_value().value;
}

/// The names of the queries that count objects by so many values of a column.
template <class T>
const std::string& name_of_count(std::size_t values) {
  constexpr std::size_t most = std::numeric_limits<unsigned>::digits;
  static const auto names = [] {
    std::array<std::string, most + 1> all;
    for (std::size_t i = 0; i != all.size(); ++i) {
      all[i] = std::string("count by ") + std::to_string(i) + ": " + Kind<T>::table;
    }
    return all;
  }();
  return names[values];
}

template <class T>
unsigned long long count_chosen(Database& database, const Choice& choice) {
  Parameters* parameters = nullptr;
  auto query = prepared(
      database, name_of_count<T>(choice.values.size()), parameters, [&choice](Parameters& own) {
        own.values = choice.values;
        const Rows rows = objects<T>();
        return counting(rows,
                        equals_one_of(rows.column(choice.column), own.values,
                                      [](const unsigned& value) { return Query::_ref(value); }));
      });
  std::copy(choice.values.begin(), choice.values.end(), parameters->values.begin());
  return query.execute_value().value;
}

template <class T>
unsigned long long count_selected(Database& database,
                                  const typename CriteriaOf<T>::type& criteria) {
  const TagNames names = tags_of(criteria);
  // In parts, an object could be counted with several of them.
  if (names.size() > list_limit) return selected_ids<T>(database, criteria).size();
  const Choice choice = choice_of(criteria);
  if (!names.empty()) {
    const std::vector<long long> tags = tag_ids(database, names);
    if (tags.empty()) return 0;
    const Rows rows = objects<T>();
    return number(database,
                  counting_once(rows, condition_of(choice, rows) && has_tag<T>(rows, tags)));
  }
  return choice.values.empty() ? count_all<T>(database) : count_chosen<T>(database, choice);
}

#define VELDRA_INSTANTIATE(T)                                                            \
  template std::vector<unsigned> all_ids<T>(Database&);                                  \
  template std::map<unsigned, String> all_names<T>(Database&);                           \
  template std::vector<unsigned> existing_ids<T>(Database&, const std::set<unsigned>&);  \
  template std::vector<unsigned> selected_ids<T>(Database&, const CriteriaOf<T>::type&); \
  template std::vector<unsigned> matching_ids<T>(Database&, const String&,               \
                                                 const CriteriaOf<T>::type&);            \
  template unsigned id_of_name<T>(Database&, const String&);                             \
  template std::vector<unsigned> referred_ids<T>(Database&);                             \
  template std::vector<unsigned> unreferenced_ids<T>(Database&);                         \
  template unsigned long long count_all<T>(Database&);                                   \
  template unsigned long long count_selected<T>(Database&, const CriteriaOf<T>::type&);

VELDRA_FOR_EACH_KIND(VELDRA_INSTANTIATE)

}  // namespace veldra
