#include "store/queries.hpp"

#include "store/kinds.hpp"

#include <algorithm>
#include <iterator>
#include <limits>
#include <type_traits>
#include <unordered_set>

namespace veldra {

namespace {

using Condition = odb::sqlite::query_base;

/// How many values one list in a statement may have. SQLite's own limit may be as low as 999.
const std::size_t list_limit = 500;

std::string column(const char* table, const char* name) {
  return std::string("\"") + table + "\".\"" + name + "\"";
}

template <class Value>
Condition compare(const std::string& left, const char* operation, const Value& value) {
  return Condition(left + operation) + Condition::_val(value);
}

/// Holds for every row, and disappears when another condition is joined to it.
Condition no_condition() { return Condition(true); }

/// "column IN (?, ?, ...)" for a part of a list.
template <class Iterator>
Condition in_list(const std::string& column, Iterator begin, Iterator end) {
  Condition list(column + " IN (");
  for (Iterator value = begin; value != end; ++value) {
    if (value != begin) list += ",";
    list += Condition::_val(*value);
  }
  return list + ")";
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

// The conditions of the criteria other than tags, on the table or alias `table`.

template <class Criteria>
Condition condition_of(const Criteria&, const char*) {
  return no_condition();
}

Condition condition_of(const CustomPropertyCriteria& criteria, const char* table) {
  if (criteria.object_type == ObjectType{}) return no_condition();
  return compare(column(table, "object_type"), "=", static_cast<int>(criteria.object_type));
}

Condition condition_of(const MaterialCriteria& criteria, const char* table) {
  if (criteria.type == nullptr) return no_condition();
  return compare(column(table, "type"), "=", criteria.type->id());
}

Condition condition_of(const CompositionCriteria& criteria, const char* table) {
  if (criteria.types == 0) return no_condition();
  Condition any_type;
  for (unsigned bit = 1; bit != 0; bit <<= 1) {
    if ((criteria.types & bit) == 0) continue;
    const Condition type = compare(column(table, "type"), "=", bit);
    any_type = any_type.empty() ? type : any_type || type;
  }
  return any_type;
}

template <class Criteria>
std::set<std::string> tags_of(const Criteria&) {
  return {};
}

std::set<std::string> utf8(const std::set<String>& texts) {
  std::set<std::string> result;
  for (const String& text : texts) result.insert(text.utf8());
  return result;
}

std::set<std::string> tags_of(const MaterialCriteria& criteria) { return utf8(criteria.tags); }
std::set<std::string> tags_of(const CompositionCriteria& criteria) { return utf8(criteria.tags); }

template <class T>
Condition ordered(const Condition& condition) {
  return condition;
}

template <>
Condition ordered<CustomProperty>(const Condition& condition) {
  return condition + ("ORDER BY " + column("CustomProperty", "name"));
}

/// Appends the ids that the view gives. An id that is too large for an object is none of ours.
template <class View>
void append_ids(Database& database, const Condition& condition, std::vector<unsigned>& ids) {
  odb::result<View> rows = database.query<View>(odb::query<View>(condition));
  for (const View& row : rows) {
    if (row.value != 0 && row.value <= std::numeric_limits<unsigned>::max()) {
      ids.push_back(static_cast<unsigned>(row.value));
    }
  }
}

/// Appends those of `more` that `ids` does not have yet.
void append_new(std::vector<unsigned>& ids, const std::vector<unsigned>& more) {
  std::unordered_set<unsigned> known(ids.begin(), ids.end());
  std::copy_if(more.begin(), more.end(), std::back_inserter(ids),
               [&known](unsigned id) { return known.insert(id).second; });
}

Condition name_condition(const char* table, const std::string& pattern) {
  if (pattern.empty()) return no_condition();
  return compare(column(table, "name"), " LIKE ", pattern);
}

template <class T>
Condition full_condition(const typename CriteriaOf<T>::type& criteria, const char* table,
                         const std::string& pattern) {
  return condition_of(criteria, table) && name_condition(table, pattern);
}

/// The ids of the objects that have one of the tags, which are not empty, and meet `condition`.
template <class T>
std::vector<unsigned> tagged_ids(Database& database, const std::set<std::string>& tags,
                                 const Condition& condition) {
  std::vector<unsigned> ids;
  in_parts(tags, [&](auto begin, auto end) {
    std::vector<unsigned> part;
    append_ids<typename Kind<T>::TaggedId>(
        database, condition && in_list(column("Tag", "name"), begin, end), part);
    append_new(ids, part);
  });
  return ids;
}

template <class T>
std::vector<unsigned> ids_of(Database& database, const typename CriteriaOf<T>::type& criteria,
                             const std::string& pattern, WithoutTags) {
  std::vector<unsigned> ids;
  append_ids<typename Kind<T>::Id>(
      database, ordered<T>(full_condition<T>(criteria, Kind<T>::table, pattern)), ids);
  return ids;
}

template <class T>
std::vector<unsigned> ids_of(Database& database, const typename CriteriaOf<T>::type& criteria,
                             const std::string& pattern, WithTags) {
  const auto tags = tags_of(criteria);
  if (tags.empty()) return ids_of<T>(database, criteria, pattern, WithoutTags());
  return tagged_ids<T>(database, tags, full_condition<T>(criteria, tagged_alias, pattern));
}

template <class View>
unsigned long long count(Database& database, const Condition& condition) {
  return database.query_value<View>(odb::query<View>(condition)).value;
}

template <class T>
unsigned long long count_of(Database& database, const typename CriteriaOf<T>::type& criteria,
                            WithoutTags) {
  return count<typename Kind<T>::Count>(database, condition_of(criteria, Kind<T>::table));
}

template <class T>
unsigned long long count_of(Database& database, const typename CriteriaOf<T>::type& criteria,
                            WithTags) {
  const auto tags = tags_of(criteria);
  if (tags.empty()) return count_of<T>(database, criteria, WithoutTags());
  const Condition condition = condition_of(criteria, tagged_alias);
  // In parts, an object could be counted with several of them.
  if (tags.size() > list_limit) return tagged_ids<T>(database, tags, condition).size();
  return count<typename Kind<T>::TaggedCount>(
      database, condition && in_list(column("Tag", "name"), tags.begin(), tags.end()));
}

// Queries that are asked again and again are prepared once and kept by the connection.

struct Parameters {
  std::string name;
  int type = 0;
};

/// The prepared query of that purpose and kind. It reads `parameters` when it is executed.
template <class T, class View, class Make>
odb::prepared_query<View> prepared(Database& database, const char* purpose, Parameters*& parameters,
                                   Make make_condition) {
  // The connection keeps the pointer to the name.
  static const std::string name = std::string(purpose) + Kind<T>::table;
  auto& connection = database.connection_in_use();
  auto query = connection.lookup_query<View>(name.c_str(), parameters);
  if (query) return query;
  std::unique_ptr<Parameters> own(new Parameters);
  parameters = own.get();
  query =
      connection.prepare_query<View>(name.c_str(), odb::query<View>(make_condition(*parameters)));
  connection.cache_query(query, std::move(own));
  return query;
}

template <class View>
unsigned first_id(odb::prepared_query<View> query) {
  auto rows = query.execute(false);
  const auto row = rows.begin();
  if (row == rows.end() || row->value > std::numeric_limits<unsigned>::max()) return 0;
  return static_cast<unsigned>(row->value);
}

}  // namespace

template <class T>
std::vector<unsigned> all_ids(Database& database) {
  return ids_of<T>(database, {}, {}, WithoutTags());
}

template <class T>
std::vector<unsigned> existing_ids(Database& database, const std::set<unsigned>& ids) {
  std::vector<unsigned> existing;
  // Every part comes in the order of the names, but not the whole.
  if (std::is_same<T, CustomProperty>::value && ids.size() > list_limit) {
    existing = all_ids<T>(database);
    const auto other = [&ids](unsigned id) { return ids.count(id) == 0; };
    existing.erase(std::remove_if(existing.begin(), existing.end(), other), existing.end());
    return existing;
  }
  in_parts(ids, [&](auto begin, auto end) {
    append_ids<typename Kind<T>::Id>(
        database, ordered<T>(in_list(column(Kind<T>::table, "id"), begin, end)), existing);
  });
  return existing;
}

template <class T>
std::vector<unsigned> selected_ids(Database& database,
                                   const typename CriteriaOf<T>::type& criteria) {
  return ids_of<T>(database, criteria, {}, typename Kind<T>::Tagging());
}

template <class T>
std::vector<unsigned> matching_ids(Database& database, const String& pattern,
                                   const typename CriteriaOf<T>::type& criteria) {
  return ids_of<T>(database, criteria, pattern.utf8(), typename Kind<T>::Tagging());
}

template <class T>
unsigned id_of_name(Database& database, const String& name) {
  Parameters* parameters = nullptr;
  auto query = prepared<T, typename Kind<T>::Id>(
      database, "id by name: ", parameters, [](const Parameters& values) {
        return Condition(column(Kind<T>::table, "name") + "=") + Condition::_ref(values.name);
      });
  parameters->name = name.utf8();
  return first_id(query);
}

unsigned id_of_property(Database& database, const String& name, ObjectType type) {
  Parameters* parameters = nullptr;
  auto query = prepared<CustomProperty, CustomPropertyId>(
      database, "id by name and type: ", parameters, [](const Parameters& values) {
        const char* table = Kind<CustomProperty>::table;
        return Condition(column(table, "object_type") + "=") + Condition::_ref(values.type) +
               ("AND " + column(table, "name") + "=") + Condition::_ref(values.name);
      });
  parameters->name = name.utf8();
  parameters->type = static_cast<int>(type);
  return first_id(query);
}

std::vector<unsigned> layer_material_ids(Database& database, const std::vector<unsigned>& ids) {
  std::vector<unsigned> materials;
  in_parts(ids, [&](auto begin, auto end) {
    append_ids<LayerMaterialId>(
        database, in_list(column("Composition_layers", "object_id"), begin, end), materials);
  });
  std::sort(materials.begin(), materials.end());
  materials.erase(std::unique(materials.begin(), materials.end()), materials.end());
  return materials;
}

template <class T>
unsigned long long count_all(Database& database) {
  Parameters* none = nullptr;
  auto query = prepared<T, typename Kind<T>::Count>(
      database, "count: ", none, [](const Parameters&) { return no_condition(); });
  return query.execute_value().value;
}

template <class T>
unsigned long long count_selected(Database& database,
                                  const typename CriteriaOf<T>::type& criteria) {
  return count_of<T>(database, criteria, typename Kind<T>::Tagging());
}

#define VELDRA_INSTANTIATE(T)                                                            \
  template std::vector<unsigned> all_ids<T>(Database&);                                  \
  template std::vector<unsigned> existing_ids<T>(Database&, const std::set<unsigned>&);  \
  template std::vector<unsigned> selected_ids<T>(Database&, const CriteriaOf<T>::type&); \
  template std::vector<unsigned> matching_ids<T>(Database&, const String&,               \
                                                 const CriteriaOf<T>::type&);            \
  template unsigned id_of_name<T>(Database&, const String&);                             \
  template unsigned long long count_all<T>(Database&);                                   \
  template unsigned long long count_selected<T>(Database&, const CriteriaOf<T>::type&);

VELDRA_FOR_EACH_KIND(VELDRA_INSTANTIATE)

}  // namespace veldra
