// SPDX-License-Identifier: GPL-2.0-or-later
//
// What must hold of every library, whatever it has: random ones, each of which comes again with its
// number in VELDRA_SEED.

#include "reliability/both_ways.hpp"
#include "reliability/soak.hpp"
#include "support/builders.hpp"
#include "support/contents.hpp"
#include "support/library_fixture.hpp"
#include "support/recording_reactor.hpp"

#include <cmath>
#include <random>
#include <set>
#include <sstream>

namespace veldra_tests {

namespace {

// Objects with random values that refer to each other.
class RandomObjects {
 public:
  explicit RandomObjects(unsigned seed) : random_(seed) {}

  unsigned below(unsigned end) { return static_cast<unsigned>(random_() % end); }

  void save_in(Library& library) {
    const unsigned materials = below(8);
    for (unsigned n = 0; n != materials; ++n) {
      materials_.push_back(material("material " + std::to_string(n)));
      library.save(materials_.back());
    }
    const unsigned compositions = below(4);
    for (unsigned n = 0; n != compositions; ++n) {
      library.save(composition("composition " + std::to_string(n)));
    }
    library.save(named<Tag>(name()));
    library.save(named<Layer>(name()));
    library.save(named<MaterialType>(name()));
    library.save(named<CustomProperty>(name()));
  }

 private:
  std::string name() {
    static const char* const names[] = {
        "oak",  "OAK", "\xC3\xA4", "\xE7\x9F\xB3", "\xF0\x9F\xA7\xB1",
        "it's", "50%", " ",        "Generic"};
    return names[below(std::size(names))];
  }

  String text() {
    std::string text;
    for (unsigned parts = below(4); parts != 0; --parts) text += name();
    return text.c_str();
  }

  // Of every order of magnitude that lengths have, and a few that they do not.
  double length() {
    if (below(8) == 0) return below(3) * 0.5;
    return std::ldexp(1.0 + random_() / 4294967296.0, static_cast<int>(below(24)) - 8);
  }

  template <class T>
  void fill_shared(T& object, ObjectType kind) {
    object.description(text());
    object.comments(text());
    for (unsigned tags = below(4); tags != 0; --tags) object.addTag(named<Tag>(name()));
    for (unsigned values = below(3); values != 0; --values) {
      object.custom_value(CustomProperty::create(name().c_str(), kind), text());
    }
  }

  std::shared_ptr<Material> material(const std::string& name_of_material) {
    auto material = named<Material>(name_of_material);
    fill_shared(*material, ObjectType::Material);
    if (below(2) == 0) material->code((name_of_material + " code").c_str());
    if (below(2) == 0) material->type(named<MaterialType>(name()));
    if (below(2) == 0) material->cut_layer(named<Layer>(name()));
    for (unsigned n = below(4); n != 0; --n) material->thicknesses(toModify).insert(length());
    material->allow_custom_thickness(below(2) == 0);
    material->shading_color({length(), length(), length(), length()});
    material->surface_pattern_alignment({length(), -length()});
    material->cut_pattern({veldra::Pattern::Type::Lines, text(), length(), length()});
    return material;
  }

  std::shared_ptr<Composition> composition(const std::string& name_of_composition) {
    auto composition = named<Composition>(name_of_composition);
    fill_shared(*composition, ObjectType::Composition);
    if (below(2) == 0) composition->entity_layer(named<Layer>(name()));
    const unsigned layers = materials_.empty() ? 0 : below(5);
    for (unsigned n = 0; n != layers; ++n) {
      const auto& material = materials_[below(static_cast<unsigned>(materials_.size()))];
      composition->appendLayer({material, static_cast<Material::Function>(below(4)), length()});
    }
    if (layers != 0) composition->last_core_layer(below(layers));
    composition->variable_layer_min_thickness(length());
    if (below(2) == 0) composition->variable_layer_max_thickness(length());
    if (below(2) == 0) composition->variable_layer(below(5));
    return composition;
  }

  std::mt19937 random_;
  std::vector<std::shared_ptr<Material>> materials_;
};

class AnyLibrary : public LibraryFixture {
 protected:
  // Calls `check` with many random objects.
  template <class Check>
  static void for_many(const std::string& what, Check check) {
    const unsigned first = number_from_environment("VELDRA_SEED", 1);
    const unsigned cases = number_or(30, 10000);
    for (unsigned seed = first; seed != first + cases && !HasFailure(); ++seed) {
      SCOPED_TRACE("VELDRA_SEED=" + std::to_string(seed));
      RandomObjects objects(seed);
      check(objects);
    }
    report_figure("random libraries, " + what, cases);
  }

  static std::shared_ptr<Library> in_memory(Unit unit) {
    return Library::create(":memory:", unit, "");
  }

  static Unit any_unit(RandomObjects& objects) {
    return objects.below(2) == 0 ? Unit::Millimetres : Unit::Inches;
  }

  // Calls `call` with every object of the library.
  template <class Call>
  static void for_each_object(const Library& library, Call call) {
    for (const auto& object : all_of<Tag>(library)) call(object);
    for (const auto& object : all_of<Layer>(library)) call(object);
    for (const auto& object : all_of<MaterialType>(library)) call(object);
    for (const auto& object : all_of<CustomProperty>(library)) call(object);
    for (const auto& object : all_of<Material>(library)) call(object);
    for (const auto& object : all_of<Composition>(library)) call(object);
  }

  // The library, new, with the objects.
  std::shared_ptr<Library> library_with(RandomObjects& objects) const {
    std::remove(path.c_str());
    auto library = create(any_unit(objects));
    objects.save_in(*library);
    return library;
  }
};

TEST_F(AnyLibrary, saved_as_it_was_loaded_writes_nothing) {
  for_many("saved again", [this](RandomObjects& objects) {
    const auto library = library_with(objects);
    const std::string before = read_file(path);
    for_each_object(*library, [&](const auto& object) { library->save(object); });
    EXPECT_TRUE(read_file(path) == before);
  });
}

TEST_F(AnyLibrary, listed_is_the_same_as_read_one_by_one) {
  for_many("read both ways", [](RandomObjects& objects) {
    const auto library = in_memory(any_unit(objects));
    objects.save_in(*library);
    for (const BothWays& read : read_both_ways(*library)) {
      EXPECT_EQ(read.listed, read.one_by_one) << read.kind;
    }
  });
}

// Tags are never written again.
void change_and_change_back(Tag&) {}

template <class T>
void change_and_change_back(T& object) {
  const String name = object.name();
  object.name("another name");
  object.name(name);
  EXPECT_TRUE(object.isDirty());
}

// All rows, whatever their order in the file.
std::multiset<std::string> sorted_rows(const std::string& path) {
  std::istringstream lines(dump(path));
  std::multiset<std::string> rows;
  for (std::string line; std::getline(lines, line);) rows.insert(line);
  return rows;
}

TEST_F(AnyLibrary, saved_with_the_values_that_it_has_keeps_its_rows) {
  for_many("written again", [this](RandomObjects& objects) {
    const auto library = library_with(objects);
    const auto before = sorted_rows(path);
    for_each_object(*library, [&](const auto& object) {
      change_and_change_back(*object);
      library->save(object);
    });
    EXPECT_EQ(sorted_rows(path), before);
  });
}

TEST_F(AnyLibrary, copied_by_way_of_another_one_is_the_same_as_copied) {
  for_many("copied on", [](RandomObjects& objects) {
    const auto source = in_memory(any_unit(objects));
    objects.save_in(*source);
    const Unit unit = any_unit(objects);
    // One conversion is as good as another, two are not the same as one.
    const auto between = in_memory(objects.below(2) == 0 ? unit : source->unit());
    const auto destination = in_memory(unit);
    const auto at_once = in_memory(unit);

    between->copyAll(source);
    destination->copyAll(between);
    at_once->copyAll(source);

    EXPECT_EQ(contents_of(*destination), contents_of(*at_once));
  });
}

// Expects lengths that are the same but for rounding, and makes them the same.
void expect_close(double length, double original) {
  EXPECT_LE(std::abs(length - original), 1e-12 * std::abs(original)) << original;
}

void align_lengths(Material& material, const Material& original) {
  ASSERT_EQ(material.thicknesses().size(), original.thicknesses().size());
  auto expected = original.thicknesses().begin();
  for (const double thickness : material.thicknesses()) expect_close(thickness, *expected++);
  material.thicknesses(toModify) = original.thicknesses();
}

void align_lengths(Composition& composition, const Composition& original) {
  ASSERT_EQ(composition.layers().size(), original.layers().size());
  for (std::size_t n = 0; n != original.layers().size(); ++n) {
    const auto& layer = original.layers()[n];
    auto& changed = composition.layer(n, toModify);
    expect_close(changed.thickness(), layer.thickness());
    changed.thickness(layer.thickness());
    changed.material(layer.material());
  }
  expect_close(composition.variable_layer_min_thickness(), original.variable_layer_min_thickness());
  composition.variable_layer_min_thickness(original.variable_layer_min_thickness());
  if (!original.has_variable_layer_max_thickness()) return;
  expect_close(composition.variable_layer_max_thickness(), original.variable_layer_max_thickness());
  composition.variable_layer_max_thickness(original.variable_layer_max_thickness());
}

template <class T>
void expect_same_but_for_rounding(const Library& library, const Library& original) {
  for (const auto& expected : all_of<T>(original)) {
    const auto object = library.get<T>(expected->name());
    ASSERT_TRUE(object);
    align_lengths(*object, *expected);
    EXPECT_EQ(values_of(object), values_of(expected));
  }
  EXPECT_EQ(library.count<T>(), original.count<T>());
}

TEST_F(AnyLibrary, converted_and_back_keeps_its_lengths) {
  for_many("converted and back", [](RandomObjects& objects) {
    const auto original = in_memory(any_unit(objects));
    objects.save_in(*original);
    const auto other =
        in_memory(original->unit() == Unit::Inches ? Unit::Millimetres : Unit::Inches);
    const auto back = in_memory(original->unit());

    other->copyAll(original);
    back->copyAll(other);

    expect_same_but_for_rounding<Material>(*back, *original);
    expect_same_but_for_rounding<Composition>(*back, *original);
  });
}

TEST_F(AnyLibrary, purged_twice_is_the_same_as_purged) {
  for_many("purged twice", [this](RandomObjects& objects) {
    const auto library = library_with(objects);
    const unsigned rest = objects.below(4);
    RecordingReactor reactor;
    // Every third, always the same ones.
    reactor.on_may_remove = [rest](Library&, const ObjectKey& key) {
      return key.id % 3 == rest ? 1 : 0;
    };
    library->setReactor(&reactor);
    std::set<ObjectType> kinds;
    for (const ObjectType kind :
         {ObjectType::Tag, ObjectType::MaterialType, ObjectType::Material, ObjectType::Composition,
          ObjectType::CustomProperty, ObjectType::Layer}) {
      if (objects.below(3) != 0) kinds.insert(kind);
    }

    library->purge(kinds);
    const std::string once = read_file(path);
    std::map<ObjectKey, bool> result;
    library->purge(kinds, result);

    for (const auto& entry : result) EXPECT_FALSE(entry.second);
    EXPECT_TRUE(read_file(path) == once);
    library->setReactor(nullptr);
  });
}

}  // namespace

}  // namespace veldra_tests
