// SPDX-License-Identifier: GPL-2.0-or-later
#include "otherwise.hpp"
#include "work.hpp"

#include <cstdlib>
#include <stdexcept>

// Works for which a program might keep one document instead of a library.

namespace veldra_bench {

namespace {

using veldra::Composition;
using veldra::Library;
using veldra::Material;

template <class T>
void read_all(const Library& library, Digest* digest) {
  std::vector<std::shared_ptr<T>> list;
  library.get(list);
  if (digest == nullptr) return;
  for (const auto& object : list) add(*digest, *object);
}

template <class T>
void read_all_named(const Library& library) {
  std::vector<std::shared_ptr<T>> list;
  library.get(list);
}

template <class List>
void add_all(Digest* digest, const List& list) {
  if (digest == nullptr) return;
  for (std::size_t i = 0; i != list.size; ++i) add(*digest, list.items[i]);
}

void read_bulk(plain_library* library, plain_sharing sharing, Digest* digest) {
  plain_bulk materials = plain_bulk_materials(library, sharing);
  add_all(digest, materials.materials);
  plain_free_bulk(&materials);
  plain_bulk compositions = plain_bulk_compositions(library, sharing);
  add_all(digest, compositions.compositions);
  plain_free_bulk(&compositions);
}

void load_by_statements(plain_library* library, Digest* digest) {
  plain_materials materials = plain_all_materials(library);
  add_all(digest, materials);
  plain_free_materials(&materials);
  plain_compositions compositions = plain_all_compositions(library);
  add_all(digest, compositions);
  plain_free_compositions(&compositions);
}

void load_veldra(const Library& library, Digest* digest) {
  read_all_named<veldra::Tag>(library);
  read_all_named<veldra::MaterialType>(library);
  read_all_named<veldra::Layer>(library);
  read_all_named<veldra::CustomProperty>(library);
  read_all<Material>(library, digest);
  read_all<Composition>(library, digest);
}

void load_json(const std::string& path, Digest* digest) {
  const Document document = read_json(path);
  if (digest == nullptr) return;
  add_materials(*digest, document);
  add_compositions(*digest, document);
}

/// The sample as a document in a file.
std::string document_file(Workshop& workshop) {
  const std::string path = workshop.fresh("document.json");
  write_json(document_of(workshop.sample().path()), path);
  return path;
}

Work load_everything(Workshop& workshop) {
  const std::shared_ptr<Library> library = open_veldra(workshop.sample().path());
  const std::shared_ptr<plain_library> plain = open_plain(workshop.sample().path());
  Work work{[library](Digest* digest) { load_veldra(*library, digest); },
            [plain](Digest* digest) { load_by_statements(plain.get(), digest); }};
  work.fewest = [plain](Digest* digest) { read_bulk(plain.get(), PLAIN_OWN_COPIES, digest); };
  work.shared = [plain](Digest* digest) { read_bulk(plain.get(), PLAIN_SHARED, digest); };
  if (!has_json()) return work;
  const std::string path = document_file(workshop);
  work.otherwise = {"a JSON document", [path](Digest* digest) { load_json(path, digest); }};
  return work;
}

/// One material is changed, and that is saved.
class OneEdit {
 public:
  explicit OneEdit(Workshop& workshop)
      : pair_(copies_of(workshop, workshop.sample().path())),
        maps_(workshop.sample().maps()),
        plain_material_(sample_material(number)),
        id_(plain_mapped(&maps_.materials, number)),
        material_(pair_->veldra->get<Material>(id_)) {
    if (!has_json()) return;
    path_ = document_file(workshop);
    document_ = read_json(path_);
  }
  OneEdit(const OneEdit&) = delete;
  OneEdit& operator=(const OneEdit&) = delete;
  ~OneEdit() {
    plain_free_material(&plain_material_);
    plain_free_maps(&maps_);
  }

  void prepare() {
    const std::string comments = "Edited " + std::to_string(++edits_);
    material_->comments(comments.c_str());
    std::free(plain_material_.comments);
    plain_material_.comments = plain_utf16(comments.c_str());
    if (has_json()) record_of(document_).comments = comments;
  }

  void veldra(Digest* digest) {
    pair_->veldra->save(material_);
    if (digest != nullptr) add(*digest, *pair_->veldra->get<Material>(id_));
  }

  void plain(Digest* digest) {
    plain_update_material(pair_->plain.get(), &plain_material_, &maps_);
    if (digest == nullptr) return;
    plain_material stored;
    plain_get_material(pair_->plain.get(), id_, &stored);
    add(*digest, stored);
    plain_free_material(&stored);
  }

  void document(Digest* digest) {
    write_json(document_, path_);
    if (digest == nullptr) return;
    Document stored = read_json(path_);
    add_material(*digest, stored, record_of(stored));
  }

 private:
  enum : unsigned { number = 7 };

  MaterialRecord& record_of(Document& document) const {
    for (MaterialRecord& record : document.materials) {
      if (record.id == id_) return record;
    }
    throw std::logic_error("the document lacks a material");
  }

  std::unique_ptr<Pair> pair_;
  plain_maps maps_;
  plain_material plain_material_;
  unsigned id_;
  std::shared_ptr<Material> material_;
  std::string path_;
  Document document_;
  int edits_ = 0;
};

Work save_one_edit(Workshop& workshop) {
  auto edit = std::make_shared<OneEdit>(workshop);
  Work work{[edit](Digest* digest) { edit->veldra(digest); },
            [edit](Digest* digest) { edit->plain(digest); }, [edit] { edit->prepare(); }};
  if (has_json()) {
    work.otherwise = {"a JSON document", [edit](Digest* digest) { edit->document(digest); }};
  }
  return work;
}

unsigned one(const Workshop&) { return 1; }

}  // namespace

std::vector<TimedWork> document_works() {
  return {
      {"load_everything", "all materials and compositions, and what they refer to", 0, one,
       load_everything, 2},
      {"save_one_edit", "a changed material in a library or a document", 0, one, save_one_edit},
  };
}

}  // namespace veldra_bench
