// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_IMPORT_SHARED_OBJECTS_HPP
#define VELDRA_TOOL_IMPORT_SHARED_OBJECTS_HPP

#include <veldra/veldra.hpp>

#include <map>
#include <memory>
#include <utility>

namespace veldra_tool {

/// The small objects that many materials and compositions of an import refer to, one for each
/// name, so that each is written once.
class SharedObjects {
 public:
  std::shared_ptr<veldra::Tag> tag(const veldra::String& name);
  std::shared_ptr<veldra::MaterialType> type(const veldra::String& name);
  std::shared_ptr<veldra::Layer> layer(const veldra::String& name);
  std::shared_ptr<veldra::CustomProperty> property(const veldra::String& name,
                                                   veldra::ObjectType owner);

  /// Saves those that nothing refers to as well.
  void save_all(veldra::Library& library) const;

 private:
  std::map<veldra::String, std::shared_ptr<veldra::Tag>> tags_;
  std::map<veldra::String, std::shared_ptr<veldra::MaterialType>> types_;
  std::map<veldra::String, std::shared_ptr<veldra::Layer>> layers_;
  std::map<std::pair<veldra::ObjectType, veldra::String>, std::shared_ptr<veldra::CustomProperty>>
      properties_;
};

}  // namespace veldra_tool

#endif
