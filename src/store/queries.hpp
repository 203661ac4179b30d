// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_STORE_QUERIES_HPP
#define VELDRA_STORE_QUERIES_HPP

#include "store/database.hpp"
#include "store/reference_columns.hpp"

#include <veldra/criteria.hpp>

#include <map>
#include <set>
#include <vector>

namespace veldra {

// Questions about the tables of a kind, within a transaction. Ids come in the order of the
// database; those of custom properties in the order of the names. A row whose id no object can
// have, 0 or one that is too wide, is none of ours and neither listed nor counted.

template <class T>
std::vector<unsigned> all_ids(Database& database);

/// The names by the ids.
template <class T>
std::map<unsigned, String> all_names(Database& database);

/// Those of the ids that are there.
template <class T>
std::vector<unsigned> existing_ids(Database& database, const std::set<unsigned>& ids);

template <class T>
std::vector<unsigned> selected_ids(Database& database,
                                   const typename CriteriaOf<T>::type& criteria);

/// Those whose names match `pattern` as well, which is not empty.
template <class T>
std::vector<unsigned> matching_ids(Database& database, const String& pattern,
                                   const typename CriteriaOf<T>::type& criteria);

/// The id of the object with that name; 0 for none.
template <class T>
unsigned id_of_name(Database& database, const String& name);

/// The same among the custom properties for a kind of object.
unsigned id_of_property(Database& database, const String& name, ObjectType type);

/// The ids of the materials that the layers of those compositions refer to, ascending, each once.
std::vector<unsigned> layer_material_ids(Database& database, const std::vector<unsigned>& ids);

/// The ids of the objects that refer to the one with that id by that column.
std::vector<unsigned> referring_ids(Database& database, const ReferenceColumn& column, unsigned id);

/// The ids that rows refer to as those of objects of the kind, ascending, each once.
template <class T>
std::vector<unsigned> referred_ids(Database& database);

/// The ids of the objects that no row refers to.
template <class T>
std::vector<unsigned> unreferenced_ids(Database& database);

/// How many there are.
template <class T>
unsigned long long count_all(Database& database);

template <class T>
unsigned long long count_selected(Database& database, const typename CriteriaOf<T>::type& criteria);

}  // namespace veldra

#endif
