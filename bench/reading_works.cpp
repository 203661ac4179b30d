// SPDX-License-Identifier: GPL-2.0-or-later
#include "work.hpp"

namespace veldra_bench {

namespace {

using veldra::Composition;
using veldra::Library;
using veldra::Material;
using veldra::String;

/// The sample, open on both sides, and numbers drawn for both.
struct Reading {
  Reading(const Sample& sample, unsigned draws, unsigned upto)
      : veldra(open_veldra(sample.path())), plain(open_plain(sample.path())) {
    Lottery lottery;
    for (unsigned i = 0; i != draws; ++i) ids.push_back(lottery.draw(1, upto));
    for (const unsigned id : ids) names.emplace_back(sample_material_name(id).c_str());
  }

  std::shared_ptr<Library> veldra;
  PlainLibrary plain;
  std::vector<unsigned> ids;
  std::vector<String> names;
};

void add_and_free(Digest* digest, plain_material& material) {
  if (digest != nullptr) add(*digest, material);
  plain_free_material(&material);
}

void add_and_free(Digest* digest, plain_composition& composition) {
  if (digest != nullptr) add(*digest, composition);
  plain_free_composition(&composition);
}

template <class T>
void get_by_id(const Library& library, unsigned id, Digest* digest) {
  const auto object = library.get<T>(id);
  if (digest != nullptr) add(*digest, *object);
}

unsigned draws(const Workshop& workshop) { return workshop.materials() / 5; }

Work materials_by_id(Workshop& workshop) {
  auto reading =
      std::make_shared<Reading>(workshop.sample(), draws(workshop), workshop.materials());
  return {[reading](Digest* digest) {
            for (const unsigned id : reading->ids)
              get_by_id<Material>(*reading->veldra, id, digest);
          },
          [reading](Digest* digest) {
            for (const unsigned id : reading->ids) {
              plain_material material;
              plain_get_material(reading->plain.get(), id, &material);
              add_and_free(digest, material);
            }
          }};
}

Work materials_by_name(Workshop& workshop) {
  auto reading =
      std::make_shared<Reading>(workshop.sample(), draws(workshop), workshop.materials());
  return {[reading](Digest* digest) {
            for (const String& name : reading->names) {
              const auto material = reading->veldra->get<Material>(name);
              if (digest != nullptr) add(*digest, *material);
            }
          },
          [reading](Digest* digest) {
            for (const String& name : reading->names) {
              plain_material material;
              plain_get_material_by_name(reading->plain.get(), name.c_str(), &material);
              add_and_free(digest, material);
            }
          }};
}

unsigned composition_draws(const Workshop& workshop) { return workshop.materials() / 25; }

Work compositions_by_id(Workshop& workshop) {
  auto reading = std::make_shared<Reading>(workshop.sample(), composition_draws(workshop),
                                           workshop.sample().compositions());
  return {[reading](Digest* digest) {
            for (const unsigned id : reading->ids) {
              get_by_id<Composition>(*reading->veldra, id, digest);
            }
          },
          [reading](Digest* digest) {
            for (const unsigned id : reading->ids) {
              plain_composition composition;
              plain_get_composition(reading->plain.get(), id, &composition);
              add_and_free(digest, composition);
            }
          }};
}

enum { counts = 20 };

unsigned count_items(const Workshop&) { return counts; }

/// A side that asks for a count again and again.
template <class Ask>
Side counting_side(Ask ask) {
  return [ask](Digest* digest) {
    for (int i = 0; i != counts; ++i) {
      const std::uint64_t count = ask();
      if (digest != nullptr) digest->add(count);
    }
  };
}

template <class Veldra, class Plain, class Leanest>
Work counting(Workshop& workshop, Veldra veldra, Plain plain, Leanest leanest) {
  auto reading = std::make_shared<Reading>(workshop.sample(), 0, 1);
  Work work{counting_side([reading, veldra] { return veldra(*reading->veldra); }),
            counting_side([reading, plain] { return plain(reading->plain.get()); })};
  work.fewest = counting_side([reading, leanest] { return leanest(reading->plain.get()); });
  return work;
}

Work count_materials(Workshop& workshop) {
  return counting(
      workshop, [](const Library& library) { return library.count<Material>(); },
      plain_count_materials, plain_lean_count_materials);
}

Work count_compositions(Workshop& workshop) {
  return counting(
      workshop, [](const Library& library) { return library.count<Composition>(); },
      plain_count_compositions, plain_lean_count_compositions);
}

Work count_types(Workshop& workshop) {
  veldra::CompositionCriteria criteria;
  criteria.types = 1 | 4;
  return counting(
      workshop, [criteria](const Library& library) { return library.count<Composition>(criteria); },
      [](plain_library* library) { return plain_count_compositions_of(library, 1, 4); },
      [](plain_library* library) { return plain_lean_count_compositions_of(library, 1, 4); });
}

Work count_tagged(Workshop& workshop) {
  const String tag(sample_tag_name(7).c_str());
  const String other(sample_tag_name(31).c_str());
  veldra::MaterialCriteria criteria;
  criteria.tags = {tag, other};
  return counting(
      workshop, [criteria](const Library& library) { return library.count<Material>(criteria); },
      [tag, other](plain_library* library) {
        return plain_count_materials_with(library, tag.c_str(), other.c_str());
      },
      [tag, other](plain_library* library) {
        return plain_lean_count_materials_with(library, tag.c_str(), other.c_str());
      });
}

enum { asked_referrers = 20 };

/// What refers to a material, which is searched for in all layers.
Work referrers(Workshop& workshop) {
  auto reading =
      std::make_shared<Reading>(workshop.sample(), asked_referrers, workshop.materials());
  const auto side = [reading](auto count) -> Side {
    return [reading, count](Digest* digest) {
      for (const unsigned id : reading->ids) {
        const std::uint64_t found = count(id);
        if (digest != nullptr) digest->add(found);
      }
    };
  };
  return {side([reading](unsigned id) {
            return reading->veldra->referrers({veldra::ObjectType::Material, id}).size();
          }),
          side([reading](unsigned id) { return plain_count_referrers(reading->plain.get(), id); })};
}

}  // namespace

std::vector<TimedWork> reading_works() {
  return {
      {"get_material_by_id", "a material by its id, ids at random", 1.1, draws, materials_by_id},
      {"get_material_by_name", "a material by its name, names at random", 1.1, draws,
       materials_by_name},
      {"get_composition_by_id", "a composition by its id, ids at random", 0, composition_draws,
       compositions_by_id},
      {"count_materials", "a count of all materials", 1.1, count_items, count_materials},
      {"count_compositions", "a count of all compositions", 1.1, count_items, count_compositions},
      {"count_by_type", "a count of the compositions of two types", 1.05, count_items, count_types},
      {"count_by_tags", "a count of the materials with one of two tags", 0.3, count_items,
       count_tagged},
      {"referrers", "what refers to a material, materials at random", 0,
       [](const Workshop&) { return unsigned{asked_referrers}; }, referrers},
  };
}

}  // namespace veldra_bench
