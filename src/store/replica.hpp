#ifndef VELDRA_STORE_REPLICA_HPP
#define VELDRA_STORE_REPLICA_HPP

#include <veldra/composition.hpp>

#include <memory>

namespace veldra {

/// A second object for the same row, as if it had been read again: with id and library, clean or
/// dirty as the first, and with replicas of all that it refers to.
std::shared_ptr<Tag> replica(const Tag& tag);
std::shared_ptr<Layer> replica(const Layer& layer);
std::shared_ptr<MaterialType> replica(const MaterialType& type);
std::shared_ptr<CustomProperty> replica(const CustomProperty& property);
std::shared_ptr<Asset> replica(const Asset& asset);
std::shared_ptr<Material> replica(const Material& material);

}  // namespace veldra

#endif
