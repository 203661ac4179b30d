// SPDX-License-Identifier: GPL-2.0-or-later
#include "foundation/virtual_slots.hpp"
#include "objects/field_test.hpp"
#include "objects/stored_objects.hpp"
#include "support/names.hpp"

#include <cmath>
#include <limits>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

namespace veldra_tests {
namespace {

constexpr double not_a_number = std::numeric_limits<double>::quiet_NaN();

template <class T, class = void>
struct IsSaveable : std::false_type {};
template <class T>
struct IsSaveable<T, decltype(std::declval<T&>().save(), void())> : std::true_type {};

template <class T, class = void>
struct IsCloneable : std::false_type {};
template <class T>
struct IsCloneable<T, decltype(std::declval<T&>().clone(), void())> : std::true_type {};

template <class T>
constexpr bool is_made_by_the_library_only() {
  return !std::is_default_constructible<T>::value && !std::is_copy_constructible<T>::value &&
         !std::is_move_constructible<T>::value && !std::is_copy_assignable<T>::value &&
         !IsSaveable<T>::value && !IsCloneable<T>::value;
}

static_assert(IsSaveable<Material>::value && IsCloneable<Material>::value, "");
static_assert(is_made_by_the_library_only<Asset>(), "");
static_assert(is_made_by_the_library_only<StructuralAsset>(), "");
static_assert(is_made_by_the_library_only<ThermalAsset>(), "");
static_assert(std::has_virtual_destructor<Asset>::value, "");
static_assert(std::is_convertible<StructuralAsset*, Asset*>::value, "");
static_assert(std::is_convertible<ThermalAsset*, Asset*>::value, "");
static_assert(std::is_base_of<std::enable_shared_from_this<Asset>, Asset>::value, "");
static_assert(
    std::is_base_of<std::enable_shared_from_this<StructuralAsset>, StructuralAsset>::value, "");
static_assert(std::is_base_of<std::enable_shared_from_this<ThermalAsset>, ThermalAsset>::value, "");

template <class T>
std::vector<int> kinds_of(const T& asset) {
  std::vector<int> kinds;
  for (int kind = -3; kind != 20; ++kind) {
    if (asset.isKindOf(AssetType(kind))) kinds.push_back(kind);
  }
  return kinds;
}

TEST(AssetTest, a_plain_asset_is_of_no_kind) {
  EXPECT_EQ(kinds_of(Bare<Asset>()), std::vector<int>());
}

TEST(AssetTest, a_structural_asset_is_of_its_kind_only) {
  EXPECT_EQ(kinds_of(Bare<StructuralAsset>()), std::vector<int>({5}));
}

TEST(AssetTest, a_thermal_asset_is_of_its_kind_only) {
  EXPECT_EQ(kinds_of(Bare<ThermalAsset>()), std::vector<int>({1}));
}

TEST(AssetTest, the_kind_is_told_through_the_base) {
  const StoredObjects stored;
  const std::shared_ptr<Asset> structural = stored.get<StructuralAsset>();
  const std::shared_ptr<Asset> thermal = stored.get<ThermalAsset>();
  EXPECT_EQ(kinds_of(*structural), std::vector<int>({5}));
  EXPECT_EQ(kinds_of(*thermal), std::vector<int>({1}));
}

template <class T>
bool is_kind_of_by_slot(const T& asset, AssetType type) {
  const Asset* const base = &asset;
  const auto is_kind_of = virtual_slot<bool(const Asset*, AssetType)>(base, 0);
  return is_kind_of(base, type);
}

TEST(AssetTest, the_kind_is_in_the_first_slot) {
  EXPECT_FALSE(is_kind_of_by_slot(Bare<Asset>(), AssetType::Structural));
  EXPECT_FALSE(is_kind_of_by_slot(Bare<Asset>(), AssetType::Thermal));
  EXPECT_TRUE(is_kind_of_by_slot(Bare<StructuralAsset>(), AssetType::Structural));
  EXPECT_FALSE(is_kind_of_by_slot(Bare<StructuralAsset>(), AssetType::Thermal));
  EXPECT_TRUE(is_kind_of_by_slot(Bare<ThermalAsset>(), AssetType::Thermal));
  EXPECT_FALSE(is_kind_of_by_slot(Bare<ThermalAsset>(), AssetType::Structural));
}

class EndingAsset : public Bare<Asset> {
 public:
  explicit EndingAsset(int& ended) : ended_(ended) {}
  ~EndingAsset() override { ++ended_; }

 private:
  int& ended_;
};

TEST(AssetTest, the_destructor_is_in_the_slots_after_the_kind) {
  int ended = 0;
  Asset* const asset = new EndingAsset(ended);
  const auto end_and_free = virtual_slot<void(Asset*)>(asset, 2);
  end_and_free(asset);
  EXPECT_EQ(ended, 1);
}

template <class T>
void expect_bare(const T& asset) {
  EXPECT_EQ(asset.id(), 0u);
  EXPECT_TRUE(asset.name().empty());
  EXPECT_TRUE(asset.description().empty());
  EXPECT_TRUE(asset.tags().empty());
  EXPECT_EQ(asset.library(), nullptr);
  EXPECT_FALSE(asset.isDirty());
}

TEST(AssetTest, starts_clean_and_empty) {
  expect_bare(Bare<Asset>());
  const Bare<StructuralAsset> structural;
  expect_bare(structural);
  EXPECT_TRUE(structural.subclass().empty());
  const Bare<ThermalAsset> thermal;
  expect_bare(thermal);
  EXPECT_TRUE(thermal.subclass().empty());
  EXPECT_TRUE(thermal.source().empty());
}

TEST(AssetTest, a_read_asset_is_clean_and_bound) {
  const StoredObjects stored;
  const auto structural = stored.get<StructuralAsset>();
  EXPECT_EQ(structural->id(), 101u);
  EXPECT_EQ(structural->library(), stored.library());
  EXPECT_FALSE(structural->isDirty());
  const auto thermal = stored.get<ThermalAsset>();
  EXPECT_EQ(thermal->id(), 102u);
  EXPECT_EQ(thermal->library(), stored.library());
  EXPECT_FALSE(thermal->isDirty());
}

TEST(AssetTest, a_read_asset_does_not_know_the_pointer_that_holds_it) {
  const StoredObjects stored;
  const auto structural = stored.get<StructuralAsset>();
  const auto thermal = stored.get<ThermalAsset>();
  EXPECT_THROW(static_cast<Asset&>(*structural).shared_from_this(), std::bad_weak_ptr);
  EXPECT_THROW(static_cast<Asset&>(*thermal).shared_from_this(), std::bad_weak_ptr);
}

TEST(AssetTest, a_read_asset_has_the_values_of_its_rows) {
  const StoredObjects stored;
  const auto structural = stored.get<StructuralAsset>();
  EXPECT_EQ(structural->name().utf8(), "Stored");
  EXPECT_EQ(structural->description().utf8(), "Described");
  EXPECT_EQ(structural->subclass().utf8(), "Wood");
  EXPECT_EQ(structural->density(), 700.5);
  EXPECT_EQ(structural->specific_heat(), 1600.25);
  EXPECT_EQ(structural->thermal_conductivity(), 0.18);
  const auto thermal = stored.get<ThermalAsset>();
  EXPECT_EQ(thermal->source().utf8(), "Tables");
  EXPECT_EQ(thermal->density(), 700.5);
  EXPECT_EQ(thermal->emissivity(), 0.9);
  EXPECT_EQ(thermal->specific_heat(), 1600.25);
  EXPECT_EQ(thermal->thermal_conductivity(), 0.18);
}

TEST(AssetTest, assets_of_equal_values_are_equal_whatever_they_are_called) {
  const StoredObjects stored;
  const auto material = stored.get<Material>();
  const auto twin = stored.library()->get<Material>(StoredObjects::twin_id);
  ASSERT_NE(material->structuralAsset()->id(), twin->structuralAsset()->id());
  EXPECT_TRUE(*material->structuralAsset() == *twin->structuralAsset());
  EXPECT_FALSE(*material->structuralAsset() != *twin->structuralAsset());
  ASSERT_NE(material->thermalAsset()->id(), twin->thermalAsset()->id());
  EXPECT_TRUE(*material->thermalAsset() == *twin->thermalAsset());
  EXPECT_FALSE(*material->thermalAsset() != *twin->thermalAsset());
}

TEST(AssetTest, assets_of_different_libraries_are_equal_by_value) {
  const StoredObjects here;
  const StoredObjects there;
  EXPECT_TRUE(*here.get<StructuralAsset>() == *there.get<StructuralAsset>());
  EXPECT_TRUE(*here.get<ThermalAsset>() == *there.get<ThermalAsset>());
}

const std::vector<Field<StructuralAsset>> structural_fields = {
    VELDRA_FIELD_THAT_IS(No, StructuralAsset, name, String("Other")),
    VELDRA_FIELD_THAT_IS(No, StructuralAsset, description, String("Other")),
    VELDRA_FIELD(StructuralAsset, subclass, String("wood")),
    VELDRA_FIELD(StructuralAsset, density, 700.75),
    VELDRA_FIELD(StructuralAsset, specific_heat, -1.0),
    VELDRA_FIELD(StructuralAsset, thermal_conductivity, 0.0),
};

const std::vector<Field<ThermalAsset>> thermal_fields = {
    VELDRA_FIELD_THAT_IS(No, ThermalAsset, name, String("Other")),
    VELDRA_FIELD_THAT_IS(No, ThermalAsset, description, String("Other")),
    VELDRA_FIELD(ThermalAsset, subclass, String()),
    VELDRA_FIELD(ThermalAsset, source, String("Measured")),
    VELDRA_FIELD(ThermalAsset, density, 700.75),
    VELDRA_FIELD(ThermalAsset, emissivity, 0.90000000000000013),
    VELDRA_FIELD(ThermalAsset, specific_heat, -1.0),
    VELDRA_FIELD(ThermalAsset, thermal_conductivity, 0.0),
};

class StructuralAssetFieldTest : public FieldTest<StructuralAsset> {};
VELDRA_FIELD_TESTS(StructuralAssetFieldTest, StructuralAsset, structural_fields);

class ThermalAssetFieldTest : public FieldTest<ThermalAsset> {};
VELDRA_FIELD_TESTS(ThermalAssetFieldTest, ThermalAsset, thermal_fields);

TEST(AssetTest, tags_do_not_count_in_comparisons) {
  const StoredObjects stored;
  const auto structural = stored.get<StructuralAsset>();
  structural->tags(veldra::toModify).clear();
  EXPECT_TRUE(*structural == *stored.get<StructuralAsset>());
  const auto thermal = stored.get<ThermalAsset>();
  thermal->tags(veldra::toModify).clear();
  EXPECT_TRUE(*thermal == *stored.get<ThermalAsset>());
}

TEST(AssetTest, an_empty_text_equals_a_missing_one_and_leaves_it_clean) {
  Bare<StructuralAsset> structural;
  structural.name("");
  structural.description("");
  structural.subclass("");
  EXPECT_FALSE(structural.isDirty());
  Bare<ThermalAsset> thermal;
  thermal.name("");
  thermal.description("");
  thermal.subclass("");
  thermal.source("");
  EXPECT_FALSE(thermal.isDirty());
}

/// Sets a number that is NaN already, which the asset that was read last has in all numbers, and
/// one that is not.
template <class T>
void expect_nan_to_make_it_dirty(double (T::*get)() const, void (T::*set)(double)) {
  StoredObjects stored;
  for (const std::shared_ptr<T>& asset : {stored.get<T>(), stored.get_without_numbers<T>()}) {
    ASSERT_FALSE(asset->isDirty());
    (asset.get()->*set)(not_a_number);
    EXPECT_TRUE(asset->isDirty());
    EXPECT_TRUE(std::isnan((asset.get()->*get)()));
    EXPECT_FALSE(*asset == *asset);
    EXPECT_TRUE(*asset != *asset);
  }
}

TEST(AssetTest, a_nan_makes_it_dirty_each_time_and_unequal_to_itself) {
  expect_nan_to_make_it_dirty(&StructuralAsset::density, &StructuralAsset::density);
  expect_nan_to_make_it_dirty(&StructuralAsset::specific_heat, &StructuralAsset::specific_heat);
  expect_nan_to_make_it_dirty(&StructuralAsset::thermal_conductivity,
                              &StructuralAsset::thermal_conductivity);
  expect_nan_to_make_it_dirty(&ThermalAsset::density, &ThermalAsset::density);
  expect_nan_to_make_it_dirty(&ThermalAsset::emissivity, &ThermalAsset::emissivity);
  expect_nan_to_make_it_dirty(&ThermalAsset::specific_heat, &ThermalAsset::specific_heat);
  expect_nan_to_make_it_dirty(&ThermalAsset::thermal_conductivity,
                              &ThermalAsset::thermal_conductivity);
}

}  // namespace
}  // namespace veldra_tests
