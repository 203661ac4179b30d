#include "store/mapping-odb.hpp"
#include "store/statement.hpp"

#include <odb/exceptions.hxx>
#include <odb/sqlite/transaction.hxx>

namespace odb {

namespace {

template <class T>
std::shared_ptr<T> find_asset(database& database, unsigned id, const char* name) {
  veldra::Statement row(sqlite::transaction::current().connection(),
                        "SELECT \"Asset\".\"typeid\" FROM \"Asset\" WHERE \"Asset\".\"id\"=?");
  row.bind(1, id);
  if (!row.next()) return nullptr;
  if (row.text(0) != name) throw no_type_info();
  return object_traits_impl<T, id_sqlite>::find(database, id);
}

}  // namespace

template <>
std::shared_ptr<veldra::StructuralAsset> database::find_<veldra::StructuralAsset, id_sqlite>(
    const unsigned& id) {
  return find_asset<veldra::StructuralAsset>(*this, id, "veldra::StructuralAsset");
}

template <>
std::shared_ptr<veldra::ThermalAsset> database::find_<veldra::ThermalAsset, id_sqlite>(
    const unsigned& id) {
  return find_asset<veldra::ThermalAsset>(*this, id, "veldra::ThermalAsset");
}

}  // namespace odb
