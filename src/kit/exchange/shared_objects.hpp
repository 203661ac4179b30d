// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_SHARED_OBJECTS_HPP
#define VELDRA_KIT_EXCHANGE_SHARED_OBJECTS_HPP

#include <veldra/library.hpp>

#include <map>
#include <memory>
#include <utility>

namespace veldra::kit {

/// The small objects that many materials and compositions of an import refer to, one for each
/// name, so that each is written once.
class SharedObjects {
 public:
  std::shared_ptr<Tag> tag(const String& name);
  std::shared_ptr<MaterialType> type(const String& name);
  std::shared_ptr<Layer> layer(const String& name);
  std::shared_ptr<CustomProperty> property(const String& name, ObjectType owner);

  /// Saves those that nothing refers to as well.
  void save_all(Library& library) const;

 private:
  std::map<String, std::shared_ptr<Tag>> tags_;
  std::map<String, std::shared_ptr<MaterialType>> types_;
  std::map<String, std::shared_ptr<Layer>> layers_;
  std::map<std::pair<ObjectType, String>, std::shared_ptr<CustomProperty>> properties_;
};

}  // namespace veldra::kit

#endif
