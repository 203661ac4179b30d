// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_LIBRARY_MANAGER_HPP
#define VELDRA_LIBRARY_MANAGER_HPP

#include <veldra/library.hpp>

#include <map>
#include <memory>

namespace veldra {

/// Shares the handles of open libraries between the parts of an application. A manager that is
/// asked twice for a file name returns the same handle for as long as the application holds it.
///
///     auto office = veldra::LibraryManager::instance().open("office.lib", false);
///     auto same = veldra::LibraryManager::instance().open("office.lib", false);  // one handle
///
/// - File names are compared as they are written: two spellings of one path give two handles.
/// - A manager keeps no library open. A library closes with the last pointer of the application.
///
/// Thread rule: nothing in a manager is synchronised, the first call of `instance()` included.
class VELDRA_EXPORT LibraryManager {
 public:
  /// The manager of the process. The first call makes it, without a reactor.
  static LibraryManager& instance();

  /// Makes a manager that shares no handles with others, without a reactor.
  LibraryManager();

  /// Makes a manager that installs `reactor` into every library that it opens or creates; null
  /// means the default reactor.
  ///
  /// Lifetime: the reactor stays the host's. It must outlive those libraries or be replaced in
  /// them.
  explicit LibraryManager(Library::Reactor* reactor);

  /// Managers do not copy: a library has one reactor.
  LibraryManager(const LibraryManager&) = delete;

  /// Managers are not assigned.
  LibraryManager& operator=(const LibraryManager&) = delete;

  /// Destroys the manager. Its libraries stay open for those who hold them, and keep the reactor.
  ~LibraryManager();

  /// Returns the open library of that name, whatever its unit and GUID. If there is none, opens or
  /// makes one by `Library::create` and installs the reactor of the manager into it.
  ///
  /// Throws: the exceptions of `Library::create`.
  std::shared_ptr<Library> create(const String& filename, Unit unit, const String& guid);

  /// Returns the open library of that name, whether it is read-only or not. If there is none, opens
  /// it by `Library::open` and installs the reactor of the manager into it.
  ///
  /// Throws: the exceptions of `Library::open`.
  std::shared_ptr<Library> open(const String& filename, bool readOnly);

  /// Installs `reactor` into the libraries of the manager that are open, and into those that it
  /// opens later. Null installs the default reactor.
  ///
  /// Lifetime: the reactor stays the host's. It must outlive those libraries or be replaced in
  /// them.
  void setReactor(Library::Reactor* reactor);

 private:
  std::shared_ptr<Library> find(const String& filename) const;
  std::shared_ptr<Library> enter(const String& filename, std::shared_ptr<Library> library);

  std::map<String, std::weak_ptr<Library>> libraries_;
  Library::Reactor* reactor_;
};

}  // namespace veldra

#endif
