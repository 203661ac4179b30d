// SPDX-License-Identifier: GPL-2.0-or-later
#include "reliability/scene.hpp"

#include "support/builders.hpp"
#include "support/catalogues.hpp"
#include "support/database.hpp"
#include "support/description.hpp"
#include "support/names.hpp"
#include "support/rows.hpp"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <numeric>

namespace veldra_tests {

namespace {

const char* const guid = "0c6b1e0e-3e0a-4a54-9a3d-0f6f0f2b7a11";

void save_spares(Library& library) {
  library.save(named<Tag>("spare tag"));
  library.save(named<Layer>("spare layer"));
  library.save(named<MaterialType>("spare type"));
  library.save(named<CustomProperty>("spare property"));
  library.save(full_material("spare material"));
  library.save(full_composition("spare composition"));
}

void give_assets(const std::string& path) {
  PlainDatabase database(path);
  put_structural_asset(database, "1");
  put_thermal_asset(database, "2");
  database.execute("UPDATE Material SET structural_id=1, thermal_id=2 WHERE name='Wall core'");
}

void make_library(const std::string& path) {
  auto library = Library::create(path.c_str(), Unit::Millimetres, guid);
  library->save(full_composition("Wall"));
  save_spares(*library);
  library.reset();
  give_assets(path);
}

void make_source(const std::string& path) {
  auto library = Library::create(path.c_str(), Unit::Inches, guid);
  library->save(full_without_codes<Composition>("Roof"));
  auto wall = full_without_codes<Composition>("Wall");
  wall->comments("of the source");
  library->save(wall);
  library.reset();
  give_assets(path);
}

// The same library at another time.
void make_backup(const std::string& path) {
  make_library(path);
  auto library = Library::open(path.c_str(), false);
  library->remove<Composition>(library->get<Composition>("spare composition")->id());
  library->save(full_composition("Floor"));
}

std::string made_by(const std::function<void(const std::string&)>& make) {
  const TemporaryFolder folder;
  const std::string path = folder / "made.lib";
  make(path);
  return read_file(path);
}

std::string make_older(int version) {
  return made_by([version](const std::string& path) {
    make_old_file(path, version);
    fill_old_file(path, version);
  });
}

const std::string& bytes_of(Start start) {
  static const std::string current = made_by(make_library);
  static const std::string version_150201 = make_older(150201);
  static const std::string version_150301 = make_older(150301);
  static const std::string nothing;
  switch (start) {
    case Start::Current:
      return current;
    case Start::Version150201:
      return version_150201;
    case Start::Version150301:
      return version_150301;
    default:
      return nothing;
  }
}

const std::string& source_bytes() {
  static const std::string bytes = made_by(make_source);
  return bytes;
}

const std::string& backup_bytes() {
  static const std::string bytes = made_by(make_backup);
  return bytes;
}

template <class T>
void describe(std::string& text, const std::shared_ptr<T>& object) {
  if (object) text += state_of(object);
}

template <class T>
void identify(std::string& text, const Scene& scene, const std::shared_ptr<T>& object) {
  if (!object) return;
  text += kind_name(veldra::ObjectTraits<T>::type) + " " + std::to_string(object->id());
  if (object->isDirty()) text += ", dirty";
  if (object->library() == nullptr) text += ", of no library";
  if (object->library() == scene.source) text += ", of the source";
  text += "\n";
}

template <class T>
void describe_values(std::string& text, const Found<T>& found) {
  if (found.object) text += values_of(found.object);
  text += std::to_string(found.list.size()) + " in a list\n";
  for (const auto& object : found.list) text += values_of(object);
}

std::string text_of(const ObjectKey& key) {
  return std::to_string(static_cast<int>(key.type)) + "/" + std::to_string(key.id);
}

// What all handles of a file say of it, whenever they were opened.
std::string text_of(const Library& library) {
  return library.guid().utf8() + ", unit " + std::to_string(static_cast<int>(library.unit())) +
         ", version " + std::to_string(library.version()) +
         (library.readOnly() ? ", read-only\n" : "\n");
}

bool is_of_a_written_object(const std::string& call) {
  return call.compare(0, 6, "saved ") == 0 || call.compare(0, 8, "removed ") == 0;
}

}  // namespace

Scene::Scene(Start start, const std::string& vfs)
    : vfs_(vfs), path_(folder_ / "walls.lib"), source_path_(folder_ / "supplier.lib") {
  reactor.decision = RecordingReactor::UseExisting;
  write_file(source_path_, source_bytes());
  if (start != Start::Missing) write_file(path_, bytes_of(start));
}

void Scene::open() {
  library = Library::open(name(), false);
  library->setReactor(&reactor);
  source = Library::open((vfs_ + source_path_).c_str(), true);
}

veldra::String Scene::write_backup() const {
  write_file(backup_path(), backup_bytes());
  return (vfs_ + backup_path()).c_str();
}

void Scene::create() { library = Library::create(text, Unit::Inches, guid); }

void Scene::close() {
  objects = Objects();
  forget_found();
  library.reset();
  source.reset();
}

std::string Scene::objects_state() const {
  std::string text;
  describe(text, objects.tag);
  describe(text, objects.layer);
  describe(text, objects.type);
  describe(text, objects.property);
  describe(text, objects.material);
  describe(text, objects.composition);
  return text;
}

std::string Scene::identities() const {
  std::string text;
  identify(text, *this, objects.tag);
  identify(text, *this, objects.layer);
  identify(text, *this, objects.type);
  identify(text, *this, objects.property);
  identify(text, *this, objects.material);
  identify(text, *this, objects.composition);
  return text;
}

std::string Scene::settings() const {
  return library ? library->locale().utf8() + ", " + library->region().utf8() : std::string();
}

bool Scene::has_file() const {
  return std::filesystem::exists(path_) && std::filesystem::file_size(path_) != 0;
}

std::string Scene::rows() const { return has_file() ? dump(path_) : std::string(); }

std::string Scene::source_rows() const { return dump(source_path_); }

std::string Scene::read_text() const {
  std::string text = std::to_string(number) + "\n";
  std::apply([&text](const auto&... found) { (describe_values(text, found), ...); }, found_);
  return text;
}

std::string Scene::found_text() const {
  std::string text = (library ? text_of(*library) : "") + read_text() + mapping_text();
  for (const std::string& call : reactor.calls()) {
    if (is_of_a_written_object(call)) text += call + "\n";
  }
  return text;
}

// The order of the entries is that of the addresses of libraries, which is not the same each time.
std::string Scene::mapping_text() const {
  std::set<std::string> lines;
  for (const auto& entry : mapping) {
    const Library* from = entry.first.source;
    const std::string of = from == nullptr ? "new" : from == library.get() ? "own" : "foreign";
    lines.insert(of + " " + text_of(entry.first.key) + " is " + std::to_string(entry.second.id) +
                 ", " + std::to_string(static_cast<int>(entry.second.status)) + "\n");
  }
  return std::accumulate(lines.begin(), lines.end(), std::string());
}

void Scene::forget_found() {
  found_ = {};
  number = 0;
  mapping = veldra::IdMapping(nullptr);
  findings.clear();
  reactor.forget();
}

}  // namespace veldra_tests
