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
///
/// Errors of the database come as exceptions of other families too. A host that does not want to
/// know the families catches everything and asks `error_kind` and `error_text`.
class VELDRA_EXPORT Exception {
 public:
  /// Destroys the exception.
  virtual ~Exception();

  /// A fixed English sentence about the error, as a UTF-16 text that ends with 0. Never null and
  /// never translated. Valid as long as the program runs.
  virtual const unsigned short* what() const = 0;
};

/// A failure of the database, or of the runtime below the library, for which there is no other
/// exception.
class VELDRA_EXPORT UnknownError : public Exception {
 public:
  /// Destroys the exception.
  ~UnknownError() override;

  /// "Unkown error", spelled so for all time: hosts may compare it.
  const unsigned short* what() const override;
};

/// A failure of the database with a result code of SQLite. Thrown where `UnknownError` is
/// documented.
class VELDRA_EXPORT DatabaseError : public UnknownError {
 public:
  /// Makes an exception with a result code of SQLite.
  explicit DatabaseError(int code);

  /// Destroys the exception.
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
  /// Copies the exception with the name of the file.
  FileError(const FileError& other);

  /// Takes over the name of the file.
  FileError& operator=(const FileError& other);

  /// Destroys the exception.
  ~FileError() override;

  /// The name of the file as it was passed to the function that has thrown. Valid as long as the
  /// exception.
  const String& filename() const noexcept;

 protected:
  /// Makes an exception about a file.
  explicit FileError(const String& filename);

 private:
  String filename_;
};

/// The file is no library where an existing one is asked for: it is empty, it is another database,
/// or it does not say its version or its identity.
class VELDRA_EXPORT NotALibrary : public FileError {
 public:
  /// Makes an exception about a file.
  explicit NotALibrary(const String& filename);

  /// Destroys the exception.
  ~NotALibrary() override;

  /// A sentence without the name of the file.
  const unsigned short* what() const override;
};

/// There is a file of the name under which a new one was to be written.
class VELDRA_EXPORT FileExists : public FileError {
 public:
  /// Makes an exception about a file.
  explicit FileExists(const String& filename);

  /// Destroys the exception.
  ~FileExists() override;

  /// A sentence without the name of the file.
  const unsigned short* what() const override;
};

/// The file is a library with another GUID than the one that is to be restored from it.
class VELDRA_EXPORT OtherLibrary : public FileError {
 public:
  /// Makes an exception about a file.
  explicit OtherLibrary(const String& filename);

  /// Destroys the exception.
  ~OtherLibrary() override;

  /// A sentence without the name of the file.
  const unsigned short* what() const override;
};

/// The file is that of the library itself, where another one is asked for.
class VELDRA_EXPORT SameFile : public FileError {
 public:
  /// Makes an exception about a file.
  explicit SameFile(const String& filename);

  /// Destroys the exception.
  ~SameFile() override;

  /// A sentence without the name of the file.
  const unsigned short* what() const override;
};

/// `Library::interrupt` has ended the running operation, whose changes were taken back.
class VELDRA_EXPORT Interrupted : public Exception {
 public:
  /// Destroys the exception.
  ~Interrupted() override;

  /// A fixed sentence.
  const unsigned short* what() const override;
};

/// The library was opened for reading only, or its file can only be read, and a change was asked
/// for.
class VELDRA_EXPORT LibraryReadOnly : public Exception {
 public:
  /// Destroys the exception.
  ~LibraryReadOnly() override;

  /// "Library is read only"
  const unsigned short* what() const override;
};

/// The library has no object of that id.
class VELDRA_EXPORT ObjectNotFound : public Exception {
 public:
  /// Destroys the exception.
  ~ObjectNotFound() override;

  /// "Object not found"
  const unsigned short* what() const override;
};

/// A custom value was set through a property that is for another kind of object.
class VELDRA_EXPORT InappropriateCustomProperty : public Exception {
 public:
  /// Destroys the exception.
  ~InappropriateCustomProperty() override;

  /// "Inappropriate custom property"
  const unsigned short* what() const override;
};

/// The root of the exceptions about objects that would contradict each other.
class VELDRA_EXPORT ConsistencyError : public Exception {
 public:
  /// Destroys the exception.
  ~ConsistencyError() override;
};

/// The object cannot be removed, because another object refers to it. `Library::referrers` names
/// those objects.
class VELDRA_EXPORT ObjectInUse : public ConsistencyError {
 public:
  /// Destroys the exception.
  ~ObjectInUse() override;

  /// "Object is still referenced by other object"
  const unsigned short* what() const override;
};

/// The object cannot be saved, because another object has the same name, or the same code.
class VELDRA_EXPORT ObjectNotUnique : public ConsistencyError {
 public:
  /// Makes an exception without a text, as for a name that is taken.
  ObjectNotUnique();

  /// Makes an exception with a text.
  explicit ObjectNotUnique(const String& text);

  /// Copies the exception with its text.
  ObjectNotUnique(const ObjectNotUnique& other);

  /// Takes over the text.
  ObjectNotUnique& operator=(const ObjectNotUnique& other);

  /// Destroys the exception.
  ~ObjectNotUnique() override;

  /// "An other object with the same values exists"
  const unsigned short* what() const override;

  /// The column with the value that is taken: "Material.code" for a code, empty for a name. Valid
  /// as long as the exception.
  const String& text() const noexcept;

 private:
  String text_;
};

}  // namespace veldra

#endif
