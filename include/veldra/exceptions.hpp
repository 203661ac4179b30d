// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_EXCEPTIONS_HPP
#define VELDRA_EXCEPTIONS_HPP

#include <veldra/export.hpp>
#include <veldra/string.hpp>

namespace veldra {

/// The root of the library's own exceptions. It is not derived from `std::exception`:
///
///     try {
///       library->remove<veldra::Material>(id);
///     } catch (const veldra::ObjectInUse&) {
///       // a composition still has a layer of it
///     } catch (const veldra::Exception& error) {
///       report(veldra::String(error.what()).utf8());
///     }
class VELDRA_EXPORT Exception {
 public:
  virtual ~Exception();

  /// What happened, as a UTF-16 text that ends with 0 and lives as long as the program.
  /// Never translated.
  virtual const unsigned short* what() const = 0;
};

/// A failure of the database or of its runtime that no other exception names.
class VELDRA_EXPORT UnknownError : public Exception {
 public:
  ~UnknownError() override;
  const unsigned short* what() const override;
};

/// A failure of the database whose cause is known. Thrown where `UnknownError` is documented.
class VELDRA_EXPORT DatabaseError : public UnknownError {
 public:
  /// `code` is a result code of SQLite.
  explicit DatabaseError(int code);
  ~DatabaseError() override;

  /// The primary result code of SQLite, such as 13 for a full disk or 5 for a file that another
  /// program holds.
  int code() const noexcept;

 private:
  int code_;
};

/// The root of the exceptions about a file.
class VELDRA_EXPORT FileError : public Exception {
 public:
  FileError(const FileError& other);
  FileError& operator=(const FileError& other);
  ~FileError() override;

  /// The name of the file as it was given. Lives as long as the exception.
  const String& filename() const noexcept;

 protected:
  explicit FileError(const String& filename);

 private:
  String filename_;
};

/// An existing library was asked for, and the file holds none: it is empty, another database, or
/// does not say its version or which library it is.
class VELDRA_EXPORT NotALibrary : public FileError {
 public:
  explicit NotALibrary(const String& filename);
  ~NotALibrary() override;
  const unsigned short* what() const override;
};

/// A new file was to be written, and there is one of that name.
class VELDRA_EXPORT FileExists : public FileError {
 public:
  explicit FileExists(const String& filename);
  ~FileExists() override;
  const unsigned short* what() const override;
};

/// The file is not one of the same library: its GUID is another one.
class VELDRA_EXPORT OtherLibrary : public FileError {
 public:
  explicit OtherLibrary(const String& filename);
  ~OtherLibrary() override;
  const unsigned short* what() const override;
};

/// The running operation was ended by `Library::interrupt` and taken back.
class VELDRA_EXPORT Interrupted : public Exception {
 public:
  ~Interrupted() override;
  const unsigned short* what() const override;
};

/// A change was asked of a library that is open for reading only.
class VELDRA_EXPORT LibraryReadOnly : public Exception {
 public:
  ~LibraryReadOnly() override;
  const unsigned short* what() const override;
};

/// An object that was named by its id is not in the library.
class VELDRA_EXPORT ObjectNotFound : public Exception {
 public:
  ~ObjectNotFound() override;
  const unsigned short* what() const override;
};

/// A value was set through a custom property that is meant for another kind of object.
class VELDRA_EXPORT InappropriateCustomProperty : public Exception {
 public:
  ~InappropriateCustomProperty() override;
  const unsigned short* what() const override;
};

/// The root of the exceptions about objects that would contradict each other.
class VELDRA_EXPORT ConsistencyError : public Exception {
 public:
  ~ConsistencyError() override;
};

/// An object cannot be removed, because another one refers to it.
class VELDRA_EXPORT ObjectInUse : public ConsistencyError {
 public:
  ~ObjectInUse() override;
  const unsigned short* what() const override;
};

/// An object cannot be saved, because another one has the same value where values are unique.
class VELDRA_EXPORT ObjectNotUnique : public ConsistencyError {
 public:
  ObjectNotUnique();
  explicit ObjectNotUnique(const String& text);
  ObjectNotUnique(const ObjectNotUnique& other);
  ObjectNotUnique& operator=(const ObjectNotUnique& other);
  ~ObjectNotUnique() override;

  const unsigned short* what() const override;

  /// What clashes, such as "Material.code"; empty where nothing more is known. Lives as long as
  /// the exception.
  const String& text() const noexcept;

 private:
  String text_;
};

}  // namespace veldra

#endif
