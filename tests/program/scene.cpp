// SPDX-License-Identifier: GPL-2.0-or-later
#include "program/scene.hpp"

#include "support/database.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <regex>
#include <stdexcept>

namespace veldra_tests {

namespace {

namespace fs = std::filesystem;

constexpr const char* office = R"({"format": "veldra", "version": 1,
  "library": {"unit": "mm", "locale": "de_AT", "region": "AT"},
  "tags": ["alt", "innen"], "layers": ["Schraffur", "Wand"],
  "custom_properties": [{"name": "Lieferant", "object_type": "material"}],
  "materials": [
    {"name": "Kalkputz", "type": "Masonry", "code": "K1", "tags": ["innen"],
     "cut_layer": "Schraffur", "custom_values": {"Lieferant": "Hofer"}},
    {"name": "Ziegel", "type": "Masonry", "thicknesses": [250, 380]},
    {"name": "Lehm", "type": "Earth", "tags": ["innen"]},
    {"name": "Kork", "type": "Wood", "description": "Liegt auf Lager"}],
  "compositions": [
    {"name": "Ziegelwand", "type": "wall", "entity_layer": "Wand",
     "layers": [{"material": "Kalkputz", "thickness": 15}, {"material": "Ziegel", "thickness": 250},
                {"material": "Kalkputz", "thickness": 15}]},
    {"name": "Lehmwand", "type": "wall", "layers": [{"material": "Lehm", "thickness": 120}]}]})";

constexpr const char* site = R"({"format": "veldra", "version": 1, "library": {"unit": "in"},
  "materials": [{"name": "Kies", "type": "Stone"}, {"name": "Beton", "type": "Concrete"}],
  "compositions": [{"name": "Bodenplatte", "type": "floor",
                    "layers": [{"material": "Beton", "thickness": 8}]}]})";

constexpr const char* walls = R"({"format": "veldra", "version": 1,
  "library": {"unit": "mm", "locale": "de_AT", "region": "AT"},
  "tags": ["neu"], "layers": ["Decke"],
  "materials": [
    {"name": "Estrich", "type": "Concrete", "code": "E1", "tags": ["neu"]},
    {"name": "Holzfaser", "type": "Wood", "thicknesses": [40, 60]}],
  "compositions": [
    {"name": "Decke", "type": "floor", "entity_layer": "Decke",
     "layers": [{"material": "Estrich", "thickness": 60},
                {"material": "Holzfaser", "thickness": 40}]}]})";

/// What the editor makes of two objects of the office.
constexpr const char* edited = R"({"format": "veldra", "version": 1, "library": {"unit": "mm"},
  "materials": [{"name": "Presskork", "type": "Wood", "description": "Liegt auf Lager"}],
  "compositions": [
    {"name": "Lehmwand", "type": "wall", "layers": [{"material": "Lehm", "thickness": 120},
                                                    {"material": "Ziegel", "thickness": 380}]}]})";

constexpr const char* glass = R"(Version, 9.4;
Material, Floatglas, Smooth, 0.006, 1.0, 2500, 750, 0.9, 0.5, 0.5;
Material, Gipsplatte, Smooth, 0.0125, 0.25, 850, 1000, 0.9, 0.5, 0.5;
Construction, Trennwand, Gipsplatte, Floatglas, Gipsplatte;
)";

constexpr const char* gbxml = R"(<?xml version="1.0" encoding="UTF-8"?>
<gbXML xmlns="http://www.gbxml.org/schema" lengthUnit="Meters" useSIUnitsForResults="true">
  <Construction id="c"><Name>Spundwand</Name><LayerId layerIdRef="l"/></Construction>
  <Layer id="l"><MaterialId materialIdRef="m"/></Layer>
  <Material id="m"><Name>Fichte</Name><Thickness unit="Meters">0.03</Thickness>
    <Conductivity unit="WPerMeterK">0.12</Conductivity></Material>
</gbXML>
)";

void write(const TemporaryFolder& folder, const std::string& name, const std::string& text) {
  write_file(folder / name, text);
  ::chmod((folder / name).c_str(), 0640);
}

/// Files of others, the names of which a program could give its own.
void write_decoys(const TemporaryFolder& folder) {
  for (const char* name :
       {"new.json.unfinished", "old.json.unfinished", "new.lib.unfinished", "new.lib.tmp",
        "old.json.tmp", ".veldra-abcdef.tmp", ".veldra-abcdef.tmp-journal", "other.lib-journal",
        "office.json-journal", "office.lib.bak", "new.lib~", "notes.txt", "temporary-notes.txt"}) {
    write(folder, name, std::string("what somebody keeps in ") + name + "\n");
  }
}

void must_run(const TemporaryFolder& folder, const Arguments& arguments) {
  const Ending run = Process(folder.path(), arguments, {"TMPDIR=" + folder.path()}).wait();
  if (run.status != 0) throw std::runtime_error(arguments.front() + ": " + run.err);
}

void make(const TemporaryFolder& folder, const std::string& library, const std::string& source) {
  write(folder, "source.json", source);
  must_run(folder, {"import", library, "source.json"});
  fs::remove(folder / "source.json");
}

/// Nothing is synced for real there, and the tests wear out no disk.
void prefer_memory() {
  if (fs::is_directory("/dev/shm")) ::setenv("TMPDIR", "/dev/shm", 0);
}

/// What each scene is a copy of.
const TemporaryFolder& original() {
  static const std::unique_ptr<TemporaryFolder> folder = [] {
    prefer_memory();
    auto made = std::make_unique<TemporaryFolder>();
    make(*made, "office.lib", office);
    make(*made, "site.lib", site);
    write(*made, "walls.json", walls);
    write(*made, "glass.idf", glass);
    write(*made, "site.gbxml", gbxml);
    for (const char* other : {"site.ifc", "site.xlsx"})
      must_run(*made, {"export", "site.lib", "-o", other});
    write(*made, "edited.json", edited);
    must_run(*made, {"import", "office.lib", "walls.json", "--plan", "plan.json"});
    write(*made, "old.json", "what was exported last year\n");
    write(*made, "old.svg", "what was drawn last year\n");
    fs::create_symlink("old.json", *made / "link.json");
    fs::create_symlink("office.lib", *made / "link");
    write_decoys(*made);
    fs::create_directory(*made / "temporary");
    return made;
  }();
  return *folder;
}

const TemporaryFolder& much() {
  static const std::unique_ptr<TemporaryFolder> folder = [] {
    auto made = std::make_unique<TemporaryFolder>();
    std::string materials;
    for (const char* name : {"Kies", "Sand", "Ton"}) {
      materials += std::string(materials.empty() ? "" : ",") + R"({"name": ")" + name +
                   R"(", "type": "Earth", "comments": ")" + std::string(400000, 'x') + "\"}";
    }
    make(*made, "much.lib",
         R"({"format": "veldra", "version": 1, "library": {"unit": "mm"}, "materials": [)" +
             materials + "]}");
    return made;
  }();
  return *folder;
}

/// A new library has an identity of its own, by chance.
std::string without_identity(const std::string& rows) {
  static const std::regex identity("(Meta: \\S+ )'[0-9a-f]{8}(-[0-9a-f]{4}){3}-[0-9a-f]{12}'");
  return std::regex_replace(rows, identity, "$1");
}

/// Each scene has a folder of its own, by chance as well.
std::string without_folder(std::string text, const std::string& folder) {
  for (auto place = text.find(folder); place != std::string::npos; place = text.find(folder)) {
    text.replace(place, folder.size(), "FOLDER");
  }
  return text;
}

std::string library_text(const std::string& path) {
  try {
    if (fs::file_size(path) == 0) return "damaged: nothing in it\n";
    const std::string found = damage(path);
    const std::string rows = dump(path);
    const bool is_new = path.find("new.lib") != std::string::npos;
    return (found.empty() ? "" : "damaged: " + found) + (is_new ? without_identity(rows) : rows);
  } catch (const std::exception& error) {
    return std::string("damaged: ") + error.what() + "\n";
  }
}

std::string file_text(const std::string& path) {
  struct stat status {};
  if (::lstat(path.c_str(), &status) != 0) return "gone";
  if (S_ISLNK(status.st_mode)) return "a link to " + fs::read_symlink(path).string();
  return "mode " + std::to_string(status.st_mode & 07777) + "\n" + read_file(path);
}

}  // namespace

Scene::Scene(const Arguments& arguments) : folder_((original(), TemporaryFolder())) {
  fs::copy(original().path(), folder_.path(),
           fs::copy_options::recursive | fs::copy_options::copy_symlinks);
  if (std::count(arguments.begin(), arguments.end(), "much.lib") != 0) {
    fs::copy(much() / "much.lib", folder_ / "much.lib");
  }
}

std::unique_ptr<Process> Scene::start(const Arguments& arguments, const SharedPlan* plan) const {
  std::vector<std::string> environment{"TMPDIR=" + folder_ / "temporary", "LC_ALL=C.UTF-8",
                                       "VISUAL=", "EDITOR=cp edited.json"};
  if (plan != nullptr) {
    for (const auto& entry : plan->environment()) environment.push_back(entry);
  }
  return std::make_unique<Process>(folder_.path(), arguments, environment);
}

Ending Scene::run(const Arguments& arguments, const SharedPlan* plan) const {
  return start(arguments, plan)->wait();
}

void Scene::remove(const std::string& name) const { fs::remove(folder_ / name); }

std::vector<std::string> Scene::names() const {
  std::vector<std::string> names;
  for (const auto& entry : fs::recursive_directory_iterator(folder_.path())) {
    if (entry.is_directory()) continue;
    names.push_back(entry.path().string().substr(folder_.path().size() + 1));
  }
  std::sort(names.begin(), names.end());
  return names;
}

Contents Scene::contents() const {
  Contents contents;
  for (const auto& name : names()) {
    if (is_library(name)) contents[name] = library_text(folder_ / name);
  }
  for (const auto& name : names()) {
    if (is_library(name)) continue;
    contents[name] = without_folder(file_text(folder_ / name), folder_.path());
  }
  return contents;
}

bool is_library(const std::string& name) {
  return name.size() > 4 && name.compare(name.size() - 4, 4, ".lib") == 0;
}

}  // namespace veldra_tests
