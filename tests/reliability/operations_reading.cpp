// SPDX-License-Identifier: GPL-2.0-or-later
#include "reliability/operation_parts.hpp"

#include <cstdio>

namespace veldra_tests {

namespace {

using Kind = Operation::Kind;

Operation reading(const std::string& name, Step prepare, Step run) {
  return operation_on_current(Kind::Reading, name, std::move(prepare), std::move(run));
}

template <class T>
Operation get_by_id(const Examples<T>& of) {
  return reading(
      std::string("get by id a ") + of.kind,
      [of](Scene& scene) { scene.ids = {id_of<T>(*scene.library, of.stored)}; },
      [](Scene& scene) { scene.found<T>().object = scene.library->get<T>(*scene.ids.begin()); });
}

template <class T>
Operation get_by_name(const Examples<T>& of) {
  return reading(
      std::string("get by name a ") + of.kind, [of](Scene& scene) { scene.text = of.stored; },
      [](Scene& scene) { scene.found<T>().object = scene.library->get<T>(scene.text); });
}

template <class T>
Operation get_by_ids(const Examples<T>& of) {
  return reading(
      std::string("get by ids each ") + of.kind,
      [of](Scene& scene) {
        scene.ids = {id_of<T>(*scene.library, of.stored), id_of<T>(*scene.library, of.spare), 999};
      },
      [](Scene& scene) { scene.library->get<T>(scene.found<T>().list, scene.ids); });
}

template <class T>
Operation get_all(const Examples<T>& of) {
  return reading(std::string("get every ") + of.kind, nothing,
                 [](Scene& scene) { scene.library->get<T>(scene.found<T>().list); });
}

template <class T>
Operation ids(const Examples<T>& of) {
  return reading(std::string("ids of each ") + of.kind, nothing,
                 [](Scene& scene) { scene.number = scene.library->ids<T>().size(); });
}

template <class T>
Operation unreferenced(const Examples<T>& of) {
  return reading(std::string("each unreferenced ") + of.kind, nothing,
                 [](Scene& scene) { scene.number = scene.library->unreferenced<T>().size(); });
}

template <class T>
Operation visit(const Examples<T>& of) {
  return reading(std::string("visit each ") + of.kind, nothing, [](Scene& scene) {
    std::vector<std::shared_ptr<T>> seen;
    scene.library->for_each<T>([&seen](const std::shared_ptr<T>& object) {
      seen.push_back(object);
      return true;
    });
    scene.found<T>().list = std::move(seen);
  });
}

void choose_pattern(Scene& scene) { scene.text = "Wall%"; }

template <class T>
Operation search(const Examples<T>& of) {
  return reading(std::string("search each ") + of.kind, choose_pattern,
                 [](Scene& scene) { scene.library->search<T>(scene.found<T>().list, scene.text); });
}

template <class T>
Operation count(const Examples<T>& of) {
  return reading(std::string("count each ") + of.kind, nothing,
                 [](Scene& scene) { scene.number = scene.library->count<T>(); });
}

// Reading with criteria, which are made when it begins. A type among them is told by its id.

void prepare_criteria(Scene& scene) {
  choose_pattern(scene);
  scene.objects.type = scene.library->get<MaterialType>("Wall core type");
}

MaterialCriteria of_one_type(const Scene& scene) {
  MaterialCriteria criteria;
  criteria.type = scene.objects.type;
  return criteria;
}

MaterialCriteria of_one_type_with_tags(const Scene& scene) {
  MaterialCriteria criteria = of_one_type(scene);
  criteria.tags = {"Wall core tag 1", "Wall core tag 2", "Wall inside tag 2"};
  return criteria;
}

// More than one statement takes.
MaterialCriteria with_many_tags(const Scene&) {
  MaterialCriteria criteria;
  criteria.tags = {"Wall core tag 1", "Wall inside tag 2"};
  for (int n = 0; n != 500; ++n) criteria.tags.insert(std::to_string(n).c_str());
  return criteria;
}

CompositionCriteria of_any_type_with_tags(const Scene&) {
  CompositionCriteria criteria;
  criteria.types = 0xff;
  criteria.tags = {"Wall tag 1"};
  return criteria;
}

CustomPropertyCriteria for_materials(const Scene&) {
  CustomPropertyCriteria criteria;
  criteria.object_type = ObjectType::Material;
  return criteria;
}

template <class T>
using Criteria = typename CriteriaOf<T>::type (*)(const Scene&);

template <class T>
Operation get_selected(const std::string& what, Criteria<T> criteria) {
  return reading("get " + what, prepare_criteria, [criteria](Scene& scene) {
    scene.library->get<T>(scene.found<T>().list, criteria(scene));
  });
}

template <class T>
Operation search_selected(const std::string& what, Criteria<T> criteria) {
  return reading("search " + what, prepare_criteria, [criteria](Scene& scene) {
    scene.library->search<T>(scene.found<T>().list, scene.text, criteria(scene));
  });
}

template <class T>
Operation count_selected(const std::string& what, Criteria<T> criteria) {
  return reading("count " + what, prepare_criteria, [criteria](Scene& scene) {
    scene.number = scene.library->count<T>(criteria(scene));
  });
}

template <class T>
std::vector<Operation> selecting(const std::string& what, Criteria<T> criteria) {
  return {get_selected<T>(what, criteria), search_selected<T>(what, criteria),
          count_selected<T>(what, criteria)};
}

// More than one statement takes.
void choose_many_ids(Scene& scene) {
  for (unsigned id = 1; id <= 501; ++id) scene.ids.insert(id);
}

void get_many_properties(Scene& scene) {
  scene.library->get<CustomProperty>(scene.found<CustomProperty>().list, scene.ids);
}

void name_the_library(Scene& scene) { scene.text = scene.library->filename(); }

void recognise(Scene& scene) {
  scene.number = static_cast<unsigned long long>(Library::recognise(scene.text).kind) + 1;
}

void check(Scene& scene) { scene.library->check(scene.findings); }

void read_in_a_snapshot(Scene& scene) {
  std::vector<std::shared_ptr<Composition>> compositions;
  std::vector<std::shared_ptr<Material>> materials;
  const Library::Snapshot snapshot(*scene.library);
  scene.library->get(compositions);
  scene.library->get(materials);
  scene.number = scene.library->count<Tag>();
  scene.found<Composition>().list = std::move(compositions);
  scene.found<Material>().list = std::move(materials);
}

void choose_a_tag(Scene& scene) {
  scene.keys = {{ObjectType::Tag, id_of<Tag>(*scene.library, of_tags.stored)}};
}

void find_referrers(Scene& scene) {
  scene.number = scene.library->referrers(*scene.keys.begin()).size();
}

void find_unreadable(Scene& scene) {
  scene.number = scene.library->unreadable<Composition>().size() + 1;
}

// Of another name each time: while files cannot be deleted, one that was not finished stays.
void back_up(Scene& scene) {
  static int last = 0;
  const std::string number = std::to_string(++last);
  scene.library->backup((scene.name().utf8() + number).c_str());
  scene.number = 1;
  std::remove((scene.path() + number).c_str());
}

std::vector<Operation> reading_otherwise() {
  return {reading("get many properties by their ids", choose_many_ids, get_many_properties),
          count_selected<Material>("materials with one of many tags", with_many_tags),
          reading("check", nothing, check),
          reading("several in a snapshot", nothing, read_in_a_snapshot),
          reading("recognise", name_the_library, recognise),
          reading("referrers", choose_a_tag, find_referrers),
          reading("unreadable", nothing, find_unreadable),
          reading("back up", nothing, back_up)};
}

}  // namespace

std::vector<Operation> reading_operations() {
  return joined({for_each_kind([](const auto& of) { return get_by_id(of); }),
                 for_each_kind([](const auto& of) { return get_by_name(of); }),
                 for_each_kind([](const auto& of) { return get_by_ids(of); }),
                 for_each_kind([](const auto& of) { return get_all(of); }),
                 for_each_kind([](const auto& of) { return search(of); }),
                 for_each_kind([](const auto& of) { return count(of); }),
                 for_each_kind([](const auto& of) { return ids(of); }),
                 for_each_kind([](const auto& of) { return unreferenced(of); }),
                 for_each_kind([](const auto& of) { return visit(of); }),
                 selecting<Material>("materials of a type", of_one_type),
                 selecting<Material>("materials of a type with tags", of_one_type_with_tags),
                 selecting<Composition>("compositions of types with tags", of_any_type_with_tags),
                 selecting<CustomProperty>("properties for materials", for_materials),
                 reading_otherwise()});
}

}  // namespace veldra_tests
