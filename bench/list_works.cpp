// SPDX-License-Identifier: GPL-2.0-or-later
#include "otherwise.hpp"
#include "work.hpp"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

namespace veldra_bench {

namespace {

using veldra::Composition;
using veldra::Library;
using veldra::Material;
using veldra::String;

template <class T>
struct PlainKind;

template <>
struct PlainKind<Material> {
  using List = plain_materials;
  static void free(List* list) { plain_free_materials(list); }
  static const List& in(const plain_bulk& bulk) { return bulk.materials; }
};

template <>
struct PlainKind<Composition> {
  using List = plain_compositions;
  static void free(List* list) { plain_free_compositions(list); }
  static const List& in(const plain_bulk& bulk) { return bulk.compositions; }
};

template <class List>
void add_all(Digest& digest, const List& list) {
  for (std::size_t i = 0; i != list.size; ++i) add(digest, list.items[i]);
}

/// One list, as the three kinds of sides read it.
template <class T>
struct Query {
  std::function<void(const Library&, std::vector<std::shared_ptr<T>>&)> veldra;
  std::function<typename PlainKind<T>::List(plain_library*)> plain;
  std::function<plain_bulk(plain_library*, plain_sharing)> bulk;
};

template <class T>
struct VeldraList {
  VeldraList(const std::string& path, const Query<T>& query)
      : library(open_veldra(path)), query(query) {}

  void read() { query.veldra(*library, list); }
  void add_to(Digest& digest) const {
    for (const auto& object : list) add(digest, *object);
  }
  void clear() {
    list.clear();
    list.shrink_to_fit();
  }

  std::shared_ptr<Library> library;
  Query<T> query;
  std::vector<std::shared_ptr<T>> list;
};

template <class T>
struct PlainList {
  PlainList(const std::string& path, const Query<T>& query)
      : library(open_plain(path)), query(query) {}
  PlainList(const PlainList&) = delete;
  PlainList& operator=(const PlainList&) = delete;
  ~PlainList() { clear(); }

  void read() { list = query.plain(library.get()); }
  void add_to(Digest& digest) const { add_all(digest, list); }
  void clear() {
    PlainKind<T>::free(&list);
    list = {};
  }

  PlainLibrary library;
  Query<T> query;
  typename PlainKind<T>::List list{};
};

template <class T>
struct BulkList {
  BulkList(const std::string& path, const Query<T>& query, plain_sharing sharing)
      : library(open_plain(path)), query(query), sharing(sharing) {}
  BulkList(const BulkList&) = delete;
  BulkList& operator=(const BulkList&) = delete;
  ~BulkList() { clear(); }

  void read() { bulk = query.bulk(library.get(), sharing); }
  void add_to(Digest& digest) const { add_all(digest, PlainKind<T>::in(bulk)); }
  void clear() {
    plain_free_bulk(&bulk);
    bulk = {};
  }

  PlainLibrary library;
  Query<T> query;
  plain_sharing sharing;
  plain_bulk bulk{};
};

/// All materials as SQLiteCpp reads them.
struct SqliteCppList {
  explicit SqliteCppList(const std::string& path) : reader(sqlitecpp_reader(path)) {
    const PlainLibrary library = open_plain(path);
    plain_materials listed = plain_all_materials(library.get());
    for (std::size_t i = 0; i != listed.size; ++i) places[listed.items[i].id] = i;
    plain_free_materials(&listed);
  }

  void read() { document = reader->read(); }
  /// In the order of the library's list.
  void add_to(Digest& digest) const {
    Document listed = document;
    std::sort(listed.materials.begin(), listed.materials.end(),
              [this](const MaterialRecord& left, const MaterialRecord& right) {
                return places.at(left.id) < places.at(right.id);
              });
    add_materials(digest, listed);
  }
  void clear() { document = {}; }

  std::unique_ptr<MaterialReader> reader;
  std::map<unsigned, std::size_t> places;
  Document document;
};

/// A list of one side.
struct Way {
  std::function<void()> read;
  std::function<void(Digest*)> add_to;
  std::function<void()> clear;
};

template <class List, class... Arguments>
Way way_of(Arguments&&... arguments) {
  auto list = std::make_shared<List>(std::forward<Arguments>(arguments)...);
  return {[list] { list->read(); },
          [list](Digest* digest) {
            if (digest != nullptr) list->add_to(*digest);
          },
          [list] { list->clear(); }};
}

/// The sides of a list, in the order of those of a work.
struct Ways {
  std::vector<Way> all;
  const char* otherwise = "";  ///< the name of the fifth, where there is one

  template <class Step>
  void each(Step step) const {
    for (const Way& way : all) step(way);
  }
};

template <class T>
Ways ways_of(const std::string& path, const Query<T>& query) {
  return {{way_of<VeldraList<T>>(path, query), way_of<PlainList<T>>(path, query),
           way_of<BulkList<T>>(path, query, PLAIN_OWN_COPIES),
           way_of<BulkList<T>>(path, query, PLAIN_SHARED)}};
}

template <class MakeSide>
Work work_of(const Ways& ways, MakeSide side) {
  Work work{side(ways.all[0]), side(ways.all[1])};
  work.fewest = side(ways.all[2]);
  work.shared = side(ways.all[3]);
  if (ways.all.size() == 5) work.otherwise = {ways.otherwise, side(ways.all[4])};
  return work;
}

/// The lists are freed when the next round is prepared: what is measured is the reading.
Work reading(const Ways& ways) {
  Work work = work_of(ways, [](const Way& way) -> Side {
    return [way](Digest* digest) {
      way.read();
      way.add_to(digest);
    };
  });
  work.prepare = [ways] { ways.each([](const Way& way) { way.clear(); }); };
  return work;
}

Work reading_and_freeing(const Ways& ways) {
  return work_of(ways, [](const Way& way) -> Side {
    return [way](Digest* digest) {
      way.read();
      way.add_to(digest);
      way.clear();
    };
  });
}

Work freeing(const Ways& ways) {
  Work work = work_of(ways, [](const Way& way) -> Side {
    return [way](Digest* digest) {
      way.add_to(digest);
      way.clear();
    };
  });
  work.prepare = [ways] {
    ways.each([](const Way& way) {
      way.clear();
      way.read();
    });
  };
  return work;
}

Query<Material> every_material() {
  return {[](const Library& library, auto& list) { library.get(list); }, plain_all_materials,
          plain_bulk_materials};
}

Query<Composition> every_composition() {
  return {[](const Library& library, auto& list) { library.get(list); }, plain_all_compositions,
          plain_bulk_compositions};
}

Query<Material> found_materials(const char* pattern) {
  const String text(pattern);
  return {[text](const Library& library, auto& list) { library.search(list, text); },
          [text](plain_library* library) { return plain_search_materials(library, text.c_str()); },
          [text](plain_library* library, plain_sharing sharing) {
            return plain_bulk_search(library, text.c_str(), sharing);
          }};
}

std::set<unsigned> drawn_ids(std::size_t count, unsigned upto) {
  Lottery lottery;
  std::set<unsigned> ids;
  while (ids.size() != count) ids.insert(lottery.draw(1, upto));
  return ids;
}

/// A few ids, which one statement can name.
Query<Material> few_ids(const Workshop& workshop) {
  const auto set = drawn_ids(PLAIN_ID_SET, std::max(workshop.materials(), 2u * PLAIN_ID_SET));
  const std::vector<unsigned> ids(set.begin(), set.end());
  return {[set](const Library& library, auto& list) { library.get(list, set); },
          [ids](plain_library* library) { return plain_materials_of(library, ids.data()); },
          [ids](plain_library* library, plain_sharing sharing) {
            return plain_bulk_materials_of(library, ids.data(), sharing);
          }};
}

/// Half of all ids.
Query<Material> many_ids(const Workshop& workshop) {
  const auto set = drawn_ids(workshop.materials() / 2, workshop.materials());
  const std::vector<unsigned> ids(set.begin(), set.end());
  return {
      [set](const Library& library, auto& list) { library.get(list, set); },
      [ids](plain_library* library) { return plain_each_of_ids(library, ids.data(), ids.size()); },
      [ids](plain_library* library, plain_sharing sharing) {
        return plain_bulk_of_ids(library, ids.data(), ids.size(), sharing);
      }};
}

/// The materials with one of ten tags, which is half of them.
Query<Material> tagged_materials() {
  veldra::MaterialCriteria criteria;
  for (unsigned i = 1; i <= PLAIN_TAG_SET; ++i) criteria.tags.insert(sample_tag_name(i).c_str());
  const std::vector<String> names(criteria.tags.begin(), criteria.tags.end());
  const auto texts = [names] {
    std::vector<const std::uint16_t*> texts;
    for (const String& name : names) texts.push_back(name.c_str());
    return texts;
  };
  return {
      [criteria](const Library& library, auto& list) { library.get(list, criteria); },
      [texts](plain_library* library) { return plain_materials_tagged(library, texts().data()); },
      [texts](plain_library* library, plain_sharing sharing) {
        return plain_bulk_materials_tagged(library, texts().data(), sharing);
      }};
}

Ways material_ways(Workshop& workshop) {
  const std::string& path = workshop.sample().path();
  Ways ways = ways_of(path, every_material());
  ways.otherwise = "SQLiteCpp";
  if (has_sqlitecpp()) ways.all.push_back(way_of<SqliteCppList>(path));
  return ways;
}

Ways composition_ways(Workshop& workshop) {
  return ways_of(workshop.sample().path(), every_composition());
}

Work all_materials(Workshop& workshop) { return reading(material_ways(workshop)); }

Work all_materials_and_free(Workshop& workshop) {
  return reading_and_freeing(material_ways(workshop));
}

Work freeing_materials(Workshop& workshop) { return freeing(material_ways(workshop)); }

Work all_compositions(Workshop& workshop) { return reading(composition_ways(workshop)); }

Work all_compositions_and_free(Workshop& workshop) {
  return reading_and_freeing(composition_ways(workshop));
}

Work freeing_compositions(Workshop& workshop) { return freeing(composition_ways(workshop)); }

/// Compared with what the library takes for the same materials without assets.
Work with_assets(Workshop& workshop) {
  Ways ways = ways_of(workshop.sample_with_assets().path(), every_material());
  ways.all.push_back(way_of<VeldraList<Material>>(workshop.sample().path(), every_material()));
  ways.otherwise = "without assets";
  Work work = reading(ways);
  work.otherwise.does_the_same = false;
  return work;
}

Work search(Workshop& workshop) {
  return reading_and_freeing(ways_of(workshop.sample().path(), found_materials("%mineral%")));
}

Work search_many(Workshop& workshop) {
  return reading_and_freeing(ways_of(workshop.sample().path(), found_materials("%e%0%")));
}

Work id_set(Workshop& workshop) {
  return reading_and_freeing(ways_of(workshop.sample().path(), few_ids(workshop)));
}

Work id_set_many(Workshop& workshop) {
  return reading_and_freeing(ways_of(workshop.sample().path(), many_ids(workshop)));
}

Work criteria_many(Workshop& workshop) {
  return reading_and_freeing(ways_of(workshop.sample().path(), tagged_materials()));
}

template <class Plain>
void add_visited(void* digest, const Plain* object) {
  if (digest != nullptr) add(*static_cast<Digest*>(digest), *object);
}

/// Objects one after another, none of which is kept.
template <class T, class Plain>
Work visiting(Workshop& workshop,
              void (*each)(plain_library*, void (*)(void*, const Plain*), void*),
              void (*bulk_each)(plain_library*, void (*)(void*, const Plain*), void*)) {
  const std::string path = workshop.sample().path();
  const std::shared_ptr<Library> library = open_veldra(path);
  const std::shared_ptr<plain_library> plain = open_plain(path);
  Work work{[library](Digest* digest) {
              library->for_each<T>([digest](const std::shared_ptr<T>& object) {
                if (digest != nullptr) add(*digest, *object);
                return true;
              });
            },
            [plain, each](Digest* digest) { each(plain.get(), add_visited<Plain>, digest); }};
  work.fewest = [plain, bulk_each](Digest* digest) {
    bulk_each(plain.get(), add_visited<Plain>, digest);
  };
  return work;
}

Work each_material(Workshop& workshop) {
  return visiting<Material, plain_material>(workshop, plain_each_material,
                                            plain_bulk_each_material);
}

Work each_composition(Workshop& workshop) {
  return visiting<Composition, plain_composition>(workshop, plain_each_composition,
                                                  plain_bulk_each_composition);
}

unsigned one(const Workshop&) { return 1; }

unsigned every_material_of(const Workshop& workshop) { return workshop.materials(); }

unsigned every_composition_of(const Workshop& workshop) { return workshop.compositions(); }

}  // namespace

std::vector<TimedWork> list_works() {
  const auto fewest = [](double limit) { return Target(limit, Against::Fewest); };
  return {
      {"all_materials", "a list of all materials, per material", fewest(1.0), every_material_of,
       all_materials},
      {"all_materials_freed", "the same with the freeing of the list", fewest(2.0),
       every_material_of, all_materials_and_free},
      {"freeing_materials", "the freeing alone", 0, every_material_of, freeing_materials},
      {"all_compositions", "a list of all compositions, per composition", fewest(0.55),
       every_composition_of, all_compositions},
      {"all_compositions_freed", "the same with the freeing of the list", fewest(1.0),
       every_composition_of, all_compositions_and_free},
      {"freeing_compositions", "the freeing alone", 0, every_composition_of, freeing_compositions},
      {"materials_with_assets",
       "a list of all materials, each with two of a few assets",
       {1.2, Against::Otherwise},
       every_material_of,
       with_assets},
      {"each_material", "all materials one after another, per material", 0, every_material_of,
       each_material},
      {"each_composition", "all compositions one after another, per composition", 0,
       every_composition_of, each_composition},
      {"search_materials", "a search that finds one material of 40, per search", 1.1, one, search},
      {"search_many", "a search that finds most materials, per search", fewest(2.0), one,
       search_many},
      {"id_set", "the materials of 100 ids, per query", 1.1, one, id_set},
      {"id_set_many", "the materials of half of all ids, per query", fewest(2.0), one, id_set_many},
      {"criteria_many", "the materials with one of ten tags, about half, per query", fewest(2.0),
       one, criteria_many},
  };
}

}  // namespace veldra_bench
