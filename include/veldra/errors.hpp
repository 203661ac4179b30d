// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_ERRORS_HPP
#define VELDRA_ERRORS_HPP

#include <veldra/export.hpp>

#include <exception>
#include <string>

namespace veldra {

/// What went wrong, for hosts that do not want the headers of the persistence runtime:
///
///     try {
///       office->save(oak);
///     } catch (...) {
///       if (veldra::error_kind() == veldra::ErrorKind::Busy) return try_again_later();
///       report(veldra::error_text());
///     }
///
/// The numbers never change.
enum class ErrorKind : int {
  Other = 0,           ///< no error, none of the library's, or one without a kind of its own
  Busy = 1,            ///< another program or handle holds the file
  ReadOnly = 2,        ///< the library, or its file, can only be read
  Full = 3,            ///< the disk is full, or no id is left
  Damaged = 4,         ///< the file is damaged, or has an object of an unknown kind
  NotALibrary = 5,     ///< the file is no library
  UnknownVersion = 6,  ///< the file was made by a version that is not known
  NotFound = 7,        ///< an object is not there
  InUse = 8,           ///< another object refers to the object
  NotUnique = 9,       ///< another object has the value
  MalformedText = 10,  ///< a text is not UTF-8, or has half of a character
  OutOfMemory = 11,    ///< memory ran out
  Interrupted = 12,    ///< `Library::interrupt` ended the operation
  Transaction = 13     ///< a transaction is open that must not be, or has ended by itself
};

/// The kind of an error; of the one that is being handled, unless another is given.
/// `ErrorKind::Other` for none.
VELDRA_EXPORT ErrorKind error_kind(std::exception_ptr error = std::current_exception()) noexcept;

/// The result code of SQLite behind an error, extended where it is known, such as 2067 for a
/// violated unique index, or 516 for a transaction that has ended by itself; 0 where there is none.
VELDRA_EXPORT int error_code(std::exception_ptr error = std::current_exception()) noexcept;

/// What the error says of itself, in UTF-8: for logs, not for users. Empty for none, and for errors
/// that are neither of the library's classes nor derived from `std::exception`.
///
/// Throws `std::bad_alloc`.
VELDRA_EXPORT std::string error_text(std::exception_ptr error = std::current_exception());

}  // namespace veldra

#endif
