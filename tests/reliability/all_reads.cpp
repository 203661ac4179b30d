// SPDX-License-Identifier: GPL-2.0-or-later
#include "reliability/all_reads.hpp"

#include "support/builders.hpp"
#include "support/database.hpp"
#include "support/description.hpp"
#include "support/names.hpp"

#include <algorithm>
#include <functional>
#include <set>

namespace veldra_tests {

namespace {

/// Runs calls and keeps what they threw.
class Calls {
 public:
  void operator()(const std::string& name, const std::function<void()>& call) {
    results_.push_back({name, thrown_by(call)});
  }

  std::vector<ReadResult> results() const { return results_; }

 private:
  std::vector<ReadResult> results_;
};

template <class T>
void look_at(const std::shared_ptr<T>& object) {
  if (object == nullptr) return;
  values_of(object);
  const auto clone = object->clone();
  (void)(*clone == *object);
}

template <class T>
void look_at(const std::vector<std::shared_ptr<T>>& objects) {
  for (const auto& object : objects) look_at(object);
}

template <class T>
void read_kind(const Library& library, Calls& calls, const std::string& kind) {
  std::vector<std::shared_ptr<T>> found;
  calls(kind + " count", [&] { library.count<T>(); });
  calls(kind + " all", [&] { library.get<T>(found); });
  calls(kind + " look", [&] { look_at(found); });
  calls(kind + " search", [&] {
    std::vector<std::shared_ptr<T>> matching;
    library.search<T>(matching, "%a%");
    look_at(matching);
  });
  calls(kind + " ids", [&] {
    std::vector<std::shared_ptr<T>> some;
    library.get<T>(some, std::set<unsigned>{0, 1, 2, 3, 4, 4294967295u});
    look_at(some);
  });
  for (const unsigned id : {0u, 1u, 2u, 3u, 4u, 4294967295u}) {
    calls(kind + " " + std::to_string(id), [&] { look_at(library.get<T>(id)); });
  }
  for (const char* name :
       {"Wall", "Wall core", "Wall layer", "Wall tag 1", "spare property", "x"}) {
    calls(kind + " " + name, [&] { look_at(library.get<T>(String(name))); });
  }
}

template <class T>
void read_selected(const Library& library, Calls& calls, const std::string& what,
                   const typename veldra::CriteriaOf<T>::type& criteria) {
  calls("count " + what, [&] { library.count<T>(criteria); });
  calls("get " + what, [&] {
    std::vector<std::shared_ptr<T>> found;
    library.get<T>(found, criteria);
    look_at(found);
  });
  calls("search " + what, [&] {
    std::vector<std::shared_ptr<T>> found;
    library.search<T>(found, "%", criteria);
    look_at(found);
  });
}

bool is_one_of(const Thrown& thrown, const std::set<std::string>& types) {
  return types.count(thrown.type) != 0;
}

// Saving asks about names again for as long as the answer is no decision; a host that gives up is
// one that throws.
class Patience : public Library::Reactor {
 public:
  int resolveNameConflict(Library& library, ObjectType type, String& name) override {
    if (++asked_ < 4) return UseExisting;
    return Reactor::resolveNameConflict(library, type, name);
  }

 private:
  int asked_ = 0;
};

}  // namespace

std::vector<ReadResult> read_everything(const Library& library) {
  Calls calls;
  read_kind<Tag>(library, calls, "tag");
  read_kind<Layer>(library, calls, "layer");
  read_kind<MaterialType>(library, calls, "type");
  read_kind<CustomProperty>(library, calls, "property");
  read_kind<Material>(library, calls, "material");
  read_kind<Composition>(library, calls, "composition");

  MaterialCriteria tagged_materials;
  tagged_materials.tags = {"Wall core tag 1", "x"};
  CompositionCriteria tagged_walls;
  tagged_walls.types = 0xff;
  tagged_walls.tags = {"Wall tag 1"};
  CustomPropertyCriteria of_materials;
  of_materials.object_type = ObjectType::Material;
  read_selected<Material>(library, calls, "tagged materials", tagged_materials);
  read_selected<Composition>(library, calls, "tagged compositions", tagged_walls);
  read_selected<CustomProperty>(library, calls, "properties of materials", of_materials);
  calls("check", [&] {
    std::vector<String> findings;
    library.check(findings);
  });
  return calls.results();
}

std::vector<ReadResult> write_everything(Library& library) {
  Patience patience;
  library.setReactor(&patience);
  Calls calls;
  calls("save a composition", [&] { library.save(full_composition("probe")); });
  calls("save a composition again", [&] { library.save(full_composition("Wall")); });
  calls("save a layer", [&] { library.save(named<Layer>("probe layer")); });
  calls("set the locale", [&] { library.locale("de-CH"); });
  calls("remove", [&] { library.remove<Material>(1u); });
  calls("purge", [&] { library.purge(); });
  calls("save a tag", [&] { library.save(named<Tag>("probe")); });
  library.setReactor(nullptr);
  return calls.results();
}

bool counts_as_empty(const std::string& path) {
  bool has_version = false;
  const Thrown thrown = thrown_by([&] {
    PlainDatabase database(path);
    const Rows tables =
        database.query("SELECT 1 FROM sqlite_master WHERE name='schema_version' COLLATE NOCASE");
    has_version =
        !tables.empty() && !database.query("SELECT 1 FROM schema_version WHERE name=''").empty();
  });
  return thrown == "" && !has_version;
}

bool is_documented_for_reading(const Thrown& thrown) {
  return is_one_of(
      thrown, {"", "odb::sqlite::database_exception", "odb::no_type_info", "utf8::invalid_utf8"});
}

bool is_documented_for_opening(const Thrown& thrown) {
  return is_documented_for_reading(thrown) ||
         is_one_of(thrown, {"odb::unknown_schema_version", "odb::object_not_persistent"});
}

bool is_documented_for_writing(const Thrown& thrown) {
  return is_documented_for_reading(thrown) ||
         is_one_of(thrown, {"odb::object_already_persistent", "odb::object_not_persistent",
                            "veldra::ObjectNotUnique", "veldra::ObjectNotFound",
                            "veldra::ObjectInUse", "veldra::UnknownError"});
}

}  // namespace veldra_tests
