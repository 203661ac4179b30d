#include "store/replica.hpp"

#include "objects/asset_impl.hpp"
#include "objects/custom_property_impl.hpp"
#include "objects/layer_impl.hpp"
#include "objects/material_impl.hpp"
#include "objects/material_type_impl.hpp"
#include "objects/object_access.hpp"
#include "objects/tag_impl.hpp"

namespace veldra {

namespace {

/// A second handle with the same record, which refers to the same objects.
template <class T>
std::shared_ptr<T> shallow(const T& object) {
  const auto copy = ObjectAccess::make<T>();
  ObjectAccess::impl(*copy) = ObjectAccess::impl(object);
  return copy;
}

template <class T>
void replicate(std::shared_ptr<T>& reference) {
  if (reference != nullptr) reference = std::static_pointer_cast<T>(replica(*reference));
}

template <class T>
std::shared_ptr<T> replica_with_tags(const T& object) {
  const auto copy = shallow(object);
  for (auto& tag : ObjectAccess::impl(*copy).tags) replicate(tag);
  return copy;
}

}  // namespace

std::shared_ptr<Tag> replica(const Tag& tag) { return shallow(tag); }
std::shared_ptr<Layer> replica(const Layer& layer) { return shallow(layer); }
std::shared_ptr<MaterialType> replica(const MaterialType& type) { return shallow(type); }

std::shared_ptr<CustomProperty> replica(const CustomProperty& property) {
  return shallow(property);
}

std::shared_ptr<Asset> replica(const Asset& asset) {
  if (asset.isKindOf(AssetType::Structural)) {
    return replica_with_tags(static_cast<const StructuralAsset&>(asset));
  }
  return replica_with_tags(static_cast<const ThermalAsset&>(asset));
}

std::shared_ptr<Material> replica(const Material& material) {
  const auto copy = replica_with_tags(material);
  auto& record = ObjectAccess::impl(*copy);
  replicate(record.type);
  replicate(record.cut_layer);
  replicate(record.structural_asset);
  replicate(record.thermal_asset);
  for (auto& value : record.custom_values) replicate(ObjectAccess::property(value.first));
  return copy;
}

}  // namespace veldra
