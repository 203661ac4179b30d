// SPDX-License-Identifier: GPL-2.0-or-later
#include "work.hpp"

#include <sqlite3.h>

namespace veldra_bench {

namespace {

enum { opened_files = 50, created_files = 10 };

void add_guid(Digest* digest, const unsigned short* guid) {
  if (digest != nullptr) digest->add(guid);
}

Work open_file(Workshop& workshop) {
  const std::string path = workshop.sample().path();
  return {[path](Digest* digest) {
            for (int i = 0; i != opened_files; ++i) {
              const auto library = open_veldra(path);
              add_guid(digest, library->guid().c_str());
            }
          },
          [path](Digest* digest) {
            for (int i = 0; i != opened_files; ++i) {
              const auto library = open_plain(path);
              add_guid(digest, plain_guid(library.get()));
            }
          }};
}

/// The statements that made a library file.
std::vector<std::string> catalogue_of(const std::string& path) {
  std::vector<std::string> texts;
  sqlite3* database = nullptr;
  sqlite3_open(path.c_str(), &database);
  sqlite3_exec(
      database,
      "SELECT sql FROM sqlite_master WHERE sql NOT NULL AND name <> 'sqlite_sequence'"
      " ORDER BY rowid",
      [](void* list, int, char** values, char**) {
        static_cast<std::vector<std::string>*>(list)->emplace_back(values[0]);
        return 0;
      },
      &texts, nullptr);
  sqlite3_close(database);
  return texts;
}

class Creating {
 public:
  explicit Creating(Workshop& workshop)
      : workshop_(workshop), texts_(catalogue_of(workshop.sample().path())) {
    for (const std::string& text : texts_) catalogue_.push_back(text.c_str());
    catalogue_.push_back(nullptr);
  }

  void prepare() {
    veldra_paths_.clear();
    plain_paths_.clear();
    for (int i = 0; i != created_files; ++i) {
      veldra_paths_.push_back(workshop_.fresh("veldra-" + std::to_string(i) + ".lib"));
      plain_paths_.push_back(workshop_.fresh("plain-" + std::to_string(i) + ".lib"));
    }
  }

  void veldra(Digest* digest) {
    for (const std::string& path : veldra_paths_) {
      veldra::Library::create(path.c_str(), veldra::Unit::Millimetres, "new");
    }
    add_rows(digest, veldra_paths_.front());
  }

  void plain(Digest* digest) {
    for (const std::string& path : plain_paths_) {
      PlainLibrary(plain_create(path.c_str(), catalogue_.data()));
    }
    add_rows(digest, plain_paths_.front());
  }

 private:
  Workshop& workshop_;
  std::vector<std::string> texts_;
  std::vector<const char*> catalogue_;
  std::vector<std::string> veldra_paths_;
  std::vector<std::string> plain_paths_;
};

Work create_file(Workshop& workshop) {
  auto creating = std::make_shared<Creating>(workshop);
  return {[creating](Digest* digest) { creating->veldra(digest); },
          [creating](Digest* digest) { creating->plain(digest); },
          [creating] { creating->prepare(); }};
}

/// The whole file, which is sound.
Work check_file(Workshop& workshop) {
  const auto library = open_veldra(workshop.sample().path());
  const std::shared_ptr<plain_library> plain = open_plain(workshop.sample().path());
  const auto add = [](Digest* digest, std::size_t findings) {
    if (digest != nullptr) digest->add(std::uint64_t{findings});
  };
  return {[library, add](Digest* digest) {
            std::vector<veldra::Library::Finding> findings;
            library->check(findings);
            add(digest, findings.size());
          },
          [plain, add](Digest* digest) { add(digest, plain_check(plain.get())); }};
}

}  // namespace

std::vector<TimedWork> file_works() {
  return {
      {"open_file", "opening and closing a current library", 1.5,
       [](const Workshop&) { return unsigned{opened_files}; }, open_file},
      {"create_file", "making a new library and closing it", 1.5,
       [](const Workshop&) { return unsigned{created_files}; }, create_file},
      {"check", "a check of the whole file; beside it, that of SQLite and of its foreign keys", 0,
       [](const Workshop&) { return 1u; }, check_file, 3},
  };
}

}  // namespace veldra_bench
