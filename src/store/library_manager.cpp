// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/library_manager.hpp>

namespace veldra {

LibraryManager& LibraryManager::instance() {
  static LibraryManager manager;
  return manager;
}

LibraryManager::LibraryManager() : LibraryManager(nullptr) {}
LibraryManager::LibraryManager(Library::Reactor* reactor) : reactor_(reactor) {}
LibraryManager::~LibraryManager() = default;

std::shared_ptr<Library> LibraryManager::create(const String& filename, Unit unit,
                                                const String& guid) {
  const auto library = find(filename);
  return library != nullptr ? library : enter(filename, Library::create(filename, unit, guid));
}

std::shared_ptr<Library> LibraryManager::open(const String& filename, bool readOnly) {
  const auto library = find(filename);
  return library != nullptr ? library : enter(filename, Library::open(filename, readOnly));
}

void LibraryManager::setReactor(Library::Reactor* reactor) {
  for (const auto& entry : libraries_) {
    if (const auto library = entry.second.lock()) library->setReactor(reactor);
  }
  reactor_ = reactor;
}

std::shared_ptr<Library> LibraryManager::find(const String& filename) const {
  const auto entry = libraries_.find(filename);
  return entry == libraries_.end() ? nullptr : entry->second.lock();
}

std::shared_ptr<Library> LibraryManager::enter(const String& filename,
                                               std::shared_ptr<Library> library) {
  libraries_[filename] = library;
  library->setReactor(reactor_);
  return library;
}

}  // namespace veldra
