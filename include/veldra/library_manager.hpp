// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_LIBRARY_MANAGER_HPP
#define VELDRA_LIBRARY_MANAGER_HPP

#include <veldra/library.hpp>

#include <map>
#include <memory>

namespace veldra {

/// Shares the handles of open libraries between the parts of an application: asked twice for a
/// file name, it gives the same handle for as long as somebody holds it. It holds none itself.
///
/// Names are compared as they are written, so that two spellings of one path are two handles.
///
/// Thread rule: none of it is synchronised, the making of `instance()` included.
class VELDRA_EXPORT LibraryManager {
 public:
  /// The manager of the process, made without a reactor on the first call.
  static LibraryManager& instance();

  /// A manager of its own. The reactor, if any, is installed into every library that the manager
  /// opens or creates; it stays the host's and must outlive those libraries or be replaced.
  LibraryManager();
  explicit LibraryManager(Library::Reactor* reactor);
  LibraryManager(const LibraryManager&) = delete;
  LibraryManager& operator=(const LibraryManager&) = delete;

  /// The libraries live on with their holders, and keep the reactor.
  ~LibraryManager();

  /// The open library of that name, whatever its unit and GUID; else that of `Library::create`,
  /// which throws as it says.
  std::shared_ptr<Library> create(const String& filename, Unit unit, const String& guid);

  /// The open library of that name, whether it is read-only or not; else that of `Library::open`,
  /// which throws as it says.
  std::shared_ptr<Library> open(const String& filename, bool readOnly);

  /// Installs the reactor into the libraries of the manager that are open, and into those that it
  /// opens later; null installs the default one.
  void setReactor(Library::Reactor* reactor);

 private:
  std::shared_ptr<Library> find(const String& filename) const;
  std::shared_ptr<Library> enter(const String& filename, std::shared_ptr<Library> library);

  std::map<String, std::weak_ptr<Library>> libraries_;
  Library::Reactor* reactor_;
};

}  // namespace veldra

#endif
