// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/library_part.hpp"

#include "kit/exchange/lost_values.hpp"
#include "kit/exchange/objects_by_name.hpp"

namespace veldra::kit {

namespace {

std::vector<FieldNotKept> assets_of(const Library& library, const std::vector<unsigned>& ids) {
  FieldCounts counts;
  for_each_listed<Material>(
      library, ids, [](unsigned id) { return id; },
      [&](const Material& material, std::size_t) {
        count_assets(built_in_fields<Material>(), material, counts);
      });
  return counts.fields();
}

}  // namespace

LibraryPart::LibraryPart(const Library& whole, const std::set<ObjectKey>& keys)
    : part_(Library::create(":memory:", whole.unit(), "")), whole_{whole.guid(), {}} {
  part_->purge<MaterialType>();
  part_->locale(whole.locale());
  part_->region(whole.region());
  IdMapping mapping(part_.get());
  part_->copy(whole.shared_from_this(), keys, mapping);
  std::vector<unsigned> materials;
  for (const auto& [source, copied] : mapping) {
    whole_.ids[{source.key.type, copied.id}] = source.key.id;
    if (source.key.type == ObjectType::Material) materials.push_back(source.key.id);
  }
  left_behind_ = assets_of(whole, materials);
}

}  // namespace veldra::kit
