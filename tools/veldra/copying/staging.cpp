// SPDX-License-Identifier: GPL-2.0-or-later
#include "copying/staging.hpp"

#include "failure.hpp"
#include "files/path.hpp"
#include "kit.hpp"
#include "opening.hpp"
#include "parts.hpp"

namespace veldra_tool {

namespace {

void add_assets(const veldra::Library& library, const std::set<unsigned>& ids,
                AssetCounts& counts) {
  std::vector<std::shared_ptr<veldra::Material>> materials;
  library.get(materials, ids);
  for (const auto& material : materials) {
    const unsigned count =
        (material->structuralAsset() ? 1U : 0U) + (material->thermalAsset() ? 1U : 0U);
    if (count > 0) counts[material->name().utf8()] = count;
  }
}

AssetCounts assets_in(const veldra::Library& library) {
  AssetCounts counts;
  in_parts<veldra::Material>(
      library, [&](const std::set<unsigned>& ids) { add_assets(library, ids, counts); });
  return counts;
}

void copy_all(const veldra::Library& source, veldra::Library& staging) {
  staging.copyAll(source.shared_from_this());
}

/// The pages of a library as they are, which takes a small part of the time of copying its objects.
/// Null where they cannot be had: those of a file that is damaged anywhere, or of another kind than
/// those of new files.
std::shared_ptr<veldra::Library> pages_of(const std::string& file) {
  const auto unit = open_library(file, Access::Read)->unit();
  auto library = watched(veldra::Library::create(":memory:", unit, ""));
  try {
    library->restoreFrom(kit::library_text(library_path(file)), true);
  } catch (...) {
    if (!lies_in_the_file()) throw;
    library.reset();
  }
  return library;
}

/// Whether the exception that is being handled may come from the objects that were read.
bool may_lie_in_objects() {
  return lies_in_the_file() || veldra::error_kind() == veldra::ErrorKind::NotUnique;
}

}  // namespace

Staging Staging::of_everything(const std::string& source) {
  Staging result;
  result.source_ = source;
  result.library_ = working_on(source, [&] { return pages_of(source); });
  if (!result.library_) return of_objects(source, copy_all);
  result.are_pages_ = true;
  result.assets_ = working_on(source, [&] { return assets_in(*result.library_); });
  return result;
}

Staging Staging::of(const std::string& source, const std::vector<NamedObject>& wanted) {
  return of_objects(source, [&](const veldra::Library& library, veldra::Library& staging) {
    staging.copy(library.shared_from_this(), keys_of(library, wanted));
  });
}

Staging Staging::of_objects(const std::string& source, const Choose& choose) {
  Staging result;
  result.source_ = source;
  reading_one_state(source, [&](const veldra::Library& library) {
    result.library_ = create_staging_library(library.unit());
    choose(library, *result.library_);
    result.library_->locale(library.locale());
    result.library_->region(library.region());
    result.assets_ = assets_in(library);
  });
  return result;
}

bool Staging::reading(const std::function<bool()>& read) const {
  // Copied object by object, they were read before.
  const auto blame_source = [this] {
    if (are_pages_) of_objects(source_, copy_all);
  };
  try {
    return read();
  } catch (const kit::PlanError&) {
    blame_source();
    throw;
  } catch (...) {
    if (may_lie_in_objects()) blame_source();
    throw;
  }
}

}  // namespace veldra_tool
