// SPDX-License-Identifier: GPL-2.0-or-later
#include "work.hpp"

#include <algorithm>
#include <set>

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

template <class T>
void add_list(Digest* digest, const std::vector<std::shared_ptr<T>>& objects) {
  if (digest == nullptr) return;
  for (const auto& object : objects) add(*digest, *object);
}

void add_and_free(Digest* digest, plain_material& material) {
  if (digest != nullptr) add(*digest, material);
  plain_free_material(&material);
}

void add_and_free(Digest* digest, plain_composition& composition) {
  if (digest != nullptr) add(*digest, composition);
  plain_free_composition(&composition);
}

template <class List>
void add_all(Digest* digest, const List& list) {
  if (digest == nullptr) return;
  for (std::size_t i = 0; i != list.size; ++i) add(*digest, list.items[i]);
}

void add_list_and_free(Digest* digest, plain_materials materials) {
  add_all(digest, materials);
  plain_free_materials(&materials);
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

/// Lists of everything, which are freed when the next round is prepared: what is measured is the
/// reading.
template <class T, class PlainList>
struct Lists : Reading {
  Lists(const Sample& sample, void (*free)(PlainList*)) : Reading(sample, 0, 1), free(free) {}
  ~Lists() { clear(); }

  void clear() {
    list.clear();
    free(&plain_list);
    plain_list = PlainList{};
  }

  void (*free)(PlainList*);
  std::vector<std::shared_ptr<T>> list;
  PlainList plain_list{};
};

template <class T, class PlainList>
Work list_all(Workshop& workshop, PlainList (*read)(plain_library*), void (*free)(PlainList*)) {
  auto lists = std::make_shared<Lists<T, PlainList>>(workshop.sample(), free);
  return {[lists](Digest* digest) {
            lists->veldra->get(lists->list);
            add_list(digest, lists->list);
          },
          [lists, read](Digest* digest) {
            lists->plain_list = read(lists->plain.get());
            add_all(digest, lists->plain_list);
          },
          [lists] { lists->clear(); }};
}

/// The same with the freeing of what was read.
Work and_free(Work work) {
  return {[work](Digest* digest) {
            work.veldra(digest);
            work.prepare();
          },
          [work](Digest* digest) {
            work.plain(digest);
            work.prepare();
          }};
}

Work all_materials(Workshop& workshop) {
  return list_all<Material>(workshop, plain_all_materials, plain_free_materials);
}

Work all_compositions(Workshop& workshop) {
  return list_all<Composition>(workshop, plain_all_compositions, plain_free_compositions);
}

Work all_materials_and_free(Workshop& workshop) { return and_free(all_materials(workshop)); }

Work all_compositions_and_free(Workshop& workshop) { return and_free(all_compositions(workshop)); }

Work search(Workshop& workshop) {
  auto reading = std::make_shared<Reading>(workshop.sample(), 0, 1);
  const String pattern("%mineral%");
  return {[reading, pattern](Digest* digest) {
            std::vector<std::shared_ptr<Material>> list;
            reading->veldra->search(list, pattern);
            add_list(digest, list);
          },
          [reading, pattern](Digest* digest) {
            add_list_and_free(digest,
                              plain_search_materials(reading->plain.get(), pattern.c_str()));
          }};
}

std::set<unsigned> drawn_id_set(unsigned upto) {
  Lottery lottery;
  std::set<unsigned> ids;
  while (ids.size() != PLAIN_ID_SET) ids.insert(lottery.draw(1, std::max(upto, 2u * PLAIN_ID_SET)));
  return ids;
}

Work id_set(Workshop& workshop) {
  auto reading = std::make_shared<Reading>(workshop.sample(), 0, 1);
  const std::set<unsigned> set = drawn_id_set(workshop.materials());
  const std::vector<unsigned> list(set.begin(), set.end());
  return {[reading, set](Digest* digest) {
            std::vector<std::shared_ptr<Material>> found;
            reading->veldra->get(found, set);
            add_list(digest, found);
          },
          [reading, list](Digest* digest) {
            add_list_and_free(digest, plain_materials_of(reading->plain.get(), list.data()));
          }};
}

enum { counts = 20 };

unsigned count_items(const Workshop&) { return counts; }

/// Asks both sides for a count again and again.
template <class Veldra, class Plain>
Work counting(Workshop& workshop, Veldra veldra, Plain plain) {
  auto reading = std::make_shared<Reading>(workshop.sample(), 0, 1);
  return {[reading, veldra](Digest* digest) {
            for (int i = 0; i != counts; ++i) {
              const std::uint64_t count = veldra(*reading->veldra);
              if (digest != nullptr) digest->add(count);
            }
          },
          [reading, plain](Digest* digest) {
            for (int i = 0; i != counts; ++i) {
              const std::uint64_t count = plain(reading->plain.get());
              if (digest != nullptr) digest->add(count);
            }
          }};
}

Work count_materials(Workshop& workshop) {
  return counting(
      workshop, [](const Library& library) { return library.count<Material>(); },
      plain_count_materials);
}

Work count_compositions(Workshop& workshop) {
  return counting(
      workshop, [](const Library& library) { return library.count<Composition>(); },
      plain_count_compositions);
}

Work count_types(Workshop& workshop) {
  veldra::CompositionCriteria criteria;
  criteria.types = 1 | 4;
  return counting(
      workshop, [criteria](const Library& library) { return library.count<Composition>(criteria); },
      [](plain_library* library) { return plain_count_compositions_of(library, 1, 4); });
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
      });
}

unsigned one(const Workshop&) { return 1; }

unsigned all_of_the_materials(const Workshop& workshop) { return workshop.materials(); }

unsigned all_of_the_compositions(const Workshop& workshop) { return workshop.compositions(); }

}  // namespace

std::vector<TimedWork> reading_works() {
  return {
      {"get_material_by_id", "a material by its id, ids at random", 1.2, draws, materials_by_id},
      {"get_material_by_name", "a material by its name, names at random", 1.2, draws,
       materials_by_name},
      {"get_composition_by_id", "a composition by its id, ids at random", 0, composition_draws,
       compositions_by_id},
      {"all_materials", "a list of all materials, per material", 0.9, all_of_the_materials,
       all_materials},
      {"all_materials_freed", "the same with the freeing of the list", 0.9, all_of_the_materials,
       all_materials_and_free},
      {"all_compositions", "a list of all compositions, per composition", 0.6,
       all_of_the_compositions, all_compositions},
      {"all_compositions_freed", "the same with the freeing of the list", 0.6,
       all_of_the_compositions, all_compositions_and_free},
      {"search_materials", "a search that finds one material of 40, per search", 1.1, one, search},
      {"id_set", "the materials of 100 ids, per query", 1.1, one, id_set},
      {"count_materials", "a count of all materials", 1.1, count_items, count_materials},
      {"count_compositions", "a count of all compositions", 1.1, count_items, count_compositions},
      {"count_by_type", "a count of the compositions of two types", 1.1, count_items, count_types},
      {"count_by_tags", "a count of the materials with one of two tags", 1.1, count_items,
       count_tagged},
  };
}

}  // namespace veldra_bench
