// SPDX-License-Identifier: GPL-2.0-or-later
//
// What new objects cost. A program of its own, because it counts every allocation.

#include "support/names.hpp"
#include "support/valgrind.hpp"

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>
#include <utility>

namespace {

std::size_t allocations = 0;

// Not inlined, because tools that watch memory replace them one by one: what a replaced `new` gives
// must not reach a `delete` of ours.
#define VELDRA_NOT_INLINED __attribute__((noinline))

void* allocate(std::size_t size) {
  ++allocations;
  void* const memory = std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

}  // namespace

VELDRA_NOT_INLINED void* operator new(std::size_t size) { return allocate(size); }
VELDRA_NOT_INLINED void* operator new[](std::size_t size) { return allocate(size); }
VELDRA_NOT_INLINED void operator delete(void* memory) noexcept { std::free(memory); }
VELDRA_NOT_INLINED void operator delete[](void* memory) noexcept { std::free(memory); }
VELDRA_NOT_INLINED void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
VELDRA_NOT_INLINED void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }

namespace veldra_tests {
namespace {

class AllocationsTest : public testing::Test {
 protected:
  void SetUp() override {
    if (runs_under_valgrind()) GTEST_SKIP() << "allocations cannot be counted here";
  }
};

template <class Work>
std::size_t allocations_of(const Work& work) {
  const std::size_t before = allocations;
  work();
  return allocations - before;
}

TEST_F(AllocationsTest, are_counted_in_the_library_as_well) {
  EXPECT_EQ(allocations_of([] { delete new int; }), 1u);
  EXPECT_GE(allocations_of([] { Material::create(); }), 1u);
  EXPECT_GE(allocations_of([] { const String text("Oak"); }), 1u);
}

TEST_F(AllocationsTest, an_empty_text_costs_none) {
  const unsigned short* const no_text = nullptr;
  const char* const no_utf8 = nullptr;
  EXPECT_EQ(allocations_of([&] {
              const String by_default;
              const String of_null(no_text);
              const String of_null_utf8(no_utf8);
              const String of_no_units(by_default.c_str());
              const String of_no_bytes("");
              const String copy(by_default);
              String target;
              target = by_default;
            }),
            0u);
}

TEST_F(AllocationsTest, moving_a_text_costs_none) {
  String text("A text of some length that fits into no small buffer");
  EXPECT_EQ(allocations_of([&] {
              String moved(std::move(text));
              text = std::move(moved);
            }),
            0u);
}

TEST_F(AllocationsTest, comparing_texts_costs_none) {
  const String left("A text of some length that fits into no small buffer");
  const String right(left);
  bool equal = false;
  EXPECT_EQ(allocations_of([&] { equal = left == right && !(left < right); }), 0u);
  EXPECT_TRUE(equal);
}

TEST_F(AllocationsTest, a_material_of_defaults_costs_two_at_most) {
  std::shared_ptr<Material> material;
  EXPECT_LE(allocations_of([&] { material = Material::create(); }), 2u);
  EXPECT_LE(allocations_of([&] { material = Material::create(String()); }), 2u);
}

TEST_F(AllocationsTest, a_name_costs_one_more) {
  const String name("Oak");
  std::shared_ptr<Material> material;
  EXPECT_LE(allocations_of([&] { material = Material::create(name); }), 3u);
}

TEST_F(AllocationsTest, setting_empty_texts_costs_none) {
  const auto material = Material::create();
  const String empty;
  EXPECT_EQ(allocations_of([&] {
              material->name(empty);
              material->description(empty);
              material->comments(empty);
              material->code(empty);
              material->url(empty);
              material->surface_pattern(veldra::Pattern(2.0, 45.0, true));
            }),
            0u);
}

TEST_F(AllocationsTest, access_costs_none) {
  const auto material = Material::create("Oak");
  material->addTag(veldra::Tag::create("Wood"));
  material->custom_value("Colour", "Brown");
  material->thicknesses(veldra::toModify).insert(22.0);
  const auto composition = Composition::create("Wall");
  composition->appendLayer({material, Material::Function::Structure, 22.0});
  std::size_t seen = 0;
  EXPECT_EQ(allocations_of([&] {
              seen += material->tags().size() + material->custom_values().size() +
                      material->thicknesses().size() + material->tags(veldra::toModify).size();
              seen += composition->layers().size() + composition->layer(0).material()->id();
              seen += !material->name().empty();
            }),
            0u);
  EXPECT_EQ(seen, 6u);
}

TEST_F(AllocationsTest, a_clone_of_defaults_costs_two_at_most) {
  const auto material = Material::create();
  std::shared_ptr<Material> clone;
  EXPECT_LE(allocations_of([&] { clone = material->clone(); }), 2u);
}

}  // namespace
}  // namespace veldra_tests
