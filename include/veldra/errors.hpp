// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_ERRORS_HPP
#define VELDRA_ERRORS_HPP

#include <veldra/export.hpp>

#include <exception>
#include <string>

namespace veldra {

/// The kinds of errors, so that a host can tell them apart without the headers of the layers below
/// the library, in every language standard from C++14 on:
///
///     try {
///       office->save(oak);
///     } catch (...) {
///       switch (veldra::error_kind()) {
///         case veldra::ErrorKind::Busy: return try_again_later();
///         case veldra::ErrorKind::Full: return ask_for_space();
///         default: return report(veldra::error_text());
///       }
///     }
///
/// The numbers never change. Kinds may be added: treat an unknown number as `Other`.
///
/// `Other` has no remedy of its own for: a file that cannot be opened or made (`error_code() &
/// 0xFF` is 14), `FileExists`, `OtherLibrary`, `SameFile`, `InappropriateCustomProperty`, and all
/// failures of the disk but a full one.
enum class ErrorKind : int {
  Other = 0,           ///< no error, an error of the host, or one without a kind of its own
  Busy = 1,            ///< another program, or another handle, holds the file; try again later
  ReadOnly = 2,        ///< the library was opened for reading, or its file can only be read
  Full = 3,            ///< the disk is full, or no id is left
  Damaged = 4,         ///< the file is damaged, or has an object of an unknown kind
  NotALibrary = 5,     ///< the file is no library
  UnknownVersion = 6,  ///< the file was made by a release that this one does not know
  NotFound = 7,        ///< an object is not in the library
  InUse = 8,           ///< another object refers to the object
  NotUnique = 9,       ///< another object has the name or the code
  MalformedText = 10,  ///< a text is not UTF-8, or has a surrogate without its partner
  OutOfMemory = 11,    ///< memory ran out
  Interrupted = 12,    ///< `Library::interrupt` ended the operation
  Transaction = 13     ///< a transaction is open that must not be, or has ended by itself
};

/// The kind of an error: of the exception that is being handled, or of the one that is given.
/// `ErrorKind::Other` if there is none.
///
/// Knows the exceptions of the library, of the persistence runtime and of utf8-cpp, and
/// `std::bad_alloc`.
VELDRA_EXPORT ErrorKind error_kind(std::exception_ptr error = std::current_exception()) noexcept;

/// The result code of SQLite behind an error: of the exception that is being handled, or of the one
/// that is given. 0 if there is none.
///
/// The code is the extended one where it is known, such as 2067 for a violated unique index, or 516
/// for a transaction that has ended by itself; `code & 0xFF` is the primary one.
VELDRA_EXPORT int error_code(std::exception_ptr error = std::current_exception()) noexcept;

/// The text of an error in UTF-8: of the exception that is being handled, or of the one that is
/// given. The text is for logs, not for users.
///
/// Empty if there is no exception, and for an exception that is neither of the library's classes
/// nor derived from `std::exception`.
///
/// Throws: `std::bad_alloc`.
VELDRA_EXPORT std::string error_text(std::exception_ptr error = std::current_exception());

}  // namespace veldra

#endif
