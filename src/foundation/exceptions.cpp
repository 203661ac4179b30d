// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/exceptions.hpp>

#include "foundation/constant_text.hpp"

namespace veldra {

Exception::~Exception() = default;
UnknownError::~UnknownError() = default;
DatabaseError::~DatabaseError() = default;
FileError::~FileError() = default;
NotALibrary::~NotALibrary() = default;
FileExists::~FileExists() = default;
OtherLibrary::~OtherLibrary() = default;
SameFile::~SameFile() = default;
Interrupted::~Interrupted() = default;
LibraryReadOnly::~LibraryReadOnly() = default;
ObjectNotFound::~ObjectNotFound() = default;
InappropriateCustomProperty::~InappropriateCustomProperty() = default;
ConsistencyError::~ConsistencyError() = default;
ObjectInUse::~ObjectInUse() = default;

const unsigned short* UnknownError::what() const {
  // The spelling is part of the interface: hosts compare it.
  static constexpr auto text = constant_text("Unkown error");
  return text.units;
}

DatabaseError::DatabaseError(int code) : code_(code) {}

int DatabaseError::code() const noexcept { return code_; }

FileError::FileError(const String& filename) : filename_(filename) {}
FileError::FileError(const FileError& other) = default;
FileError& FileError::operator=(const FileError& other) = default;

const String& FileError::filename() const noexcept { return filename_; }

NotALibrary::NotALibrary(const String& filename) : FileError(filename) {}

const unsigned short* NotALibrary::what() const {
  static constexpr auto text = constant_text("The file is not a library");
  return text.units;
}

FileExists::FileExists(const String& filename) : FileError(filename) {}

const unsigned short* FileExists::what() const {
  static constexpr auto text = constant_text("The file exists already");
  return text.units;
}

OtherLibrary::OtherLibrary(const String& filename) : FileError(filename) {}

const unsigned short* OtherLibrary::what() const {
  static constexpr auto text = constant_text("The file is another library");
  return text.units;
}

SameFile::SameFile(const String& filename) : FileError(filename) {}

const unsigned short* SameFile::what() const {
  static constexpr auto text = constant_text("The file is that of the library itself");
  return text.units;
}

const unsigned short* Interrupted::what() const {
  static constexpr auto text = constant_text("The operation was interrupted");
  return text.units;
}

const unsigned short* LibraryReadOnly::what() const {
  static constexpr auto text = constant_text("Library is read only");
  return text.units;
}

const unsigned short* ObjectNotFound::what() const {
  static constexpr auto text = constant_text("Object not found");
  return text.units;
}

const unsigned short* InappropriateCustomProperty::what() const {
  static constexpr auto text = constant_text("Inappropriate custom property");
  return text.units;
}

const unsigned short* ObjectInUse::what() const {
  static constexpr auto text = constant_text("Object is still referenced by other object");
  return text.units;
}

ObjectNotUnique::ObjectNotUnique() = default;
ObjectNotUnique::ObjectNotUnique(const String& text) : text_(text) {}
ObjectNotUnique::ObjectNotUnique(const ObjectNotUnique& other) = default;
ObjectNotUnique& ObjectNotUnique::operator=(const ObjectNotUnique& other) = default;
ObjectNotUnique::~ObjectNotUnique() = default;

const unsigned short* ObjectNotUnique::what() const {
  static constexpr auto text = constant_text("An other object with the same values exists");
  return text.units;
}

const String& ObjectNotUnique::text() const noexcept { return text_; }

}  // namespace veldra
