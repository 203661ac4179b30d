// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/asset_reference.hpp"

#include "store/mapping-odb.hpp"

#include <odb/exceptions.hxx>
#include <odb/sqlite/polymorphic-object-statements.hxx>
#include <odb/sqlite/statement-cache.hxx>
#include <odb/sqlite/transaction.hxx>

namespace veldra {

namespace {

template <class T>
using Mapping = odb::access::object_traits_impl<T, odb::id_sqlite>;

/// The kind that the row of an asset names. Throws `odb::object_not_persistent` without a row.
std::string named_kind(unsigned long long id) {
  auto& statements = odb::sqlite::transaction::current().connection().statement_cache();
  std::string kind;
  Mapping<Asset>::discriminator_(statements.find_object<Asset>(), id, &kind);
  return kind;
}

template <class T>
std::shared_ptr<T> load_asset(odb::database& database, unsigned long long id) {
  if (const auto met = Session::_cache_find<Asset>(database, id)) {
    const auto asset = std::dynamic_pointer_cast<T>(met);
    if (asset == nullptr) throw odb::no_type_info();
    return asset;
  }
  // Loading asks for the kind too, makes what the row names, and takes it for a `T`.
  if (named_kind(id) != Mapping<T>::info.discriminator) throw odb::no_type_info();
  return static_cast<odb::sqlite::database&>(database).load<T>(id);
}

}  // namespace

template <class T>
AssetReference<T>::AssetReference(odb::database& database, unsigned long long id)
    : asset_(load_asset<T>(database, id)) {}

template class AssetReference<StructuralAsset>;
template class AssetReference<ThermalAsset>;

}  // namespace veldra
