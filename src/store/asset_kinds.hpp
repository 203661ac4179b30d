#ifndef VELDRA_STORE_ASSET_KINDS_HPP
#define VELDRA_STORE_ASSET_KINDS_HPP

#include <veldra/asset.hpp>

#include <odb/database.hxx>

// How references to assets are loaded. The mapping makes the object that the row of an asset names
// and takes it for the kind that the reference wants; here the row is asked first, and another kind
// raises `odb::no_type_info`.

namespace odb {

template <>
std::shared_ptr<veldra::StructuralAsset> database::find_<veldra::StructuralAsset, id_sqlite>(
    const unsigned& id);

template <>
std::shared_ptr<veldra::ThermalAsset> database::find_<veldra::ThermalAsset, id_sqlite>(
    const unsigned& id);

}  // namespace odb

#endif
