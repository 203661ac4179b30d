// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/errors.hpp>
#include <veldra/exceptions.hpp>

#include <odb/exceptions.hxx>
#include <odb/sqlite/exceptions.hxx>

#include <sqlite3.h>
#include <utf8.h>

#include <new>

namespace veldra {

namespace {

/// The kind of a result code of SQLite, primary or extended.
ErrorKind kind_of_code(int code) {
  switch (code) {
    case SQLITE_CONSTRAINT_UNIQUE:
    case SQLITE_CONSTRAINT_PRIMARYKEY:
      return ErrorKind::NotUnique;
    case SQLITE_CONSTRAINT_FOREIGNKEY:
      return ErrorKind::InUse;
    case SQLITE_IOERR_NOMEM:
      return ErrorKind::OutOfMemory;
    default:
      break;
  }
  switch (code & 0xFF) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
    case SQLITE_PROTOCOL:
      return ErrorKind::Busy;
    case SQLITE_READONLY:
      return ErrorKind::ReadOnly;
    case SQLITE_FULL:
      return ErrorKind::Full;
    case SQLITE_CORRUPT:
      return ErrorKind::Damaged;
    case SQLITE_NOTADB:
      return ErrorKind::NotALibrary;
    case SQLITE_NOMEM:
      return ErrorKind::OutOfMemory;
    case SQLITE_INTERRUPT:
      return ErrorKind::Interrupted;
    default:
      return ErrorKind::Other;
  }
}

struct Known {
  ErrorKind kind;
  int code;
};

Known of_code(int code) { return {kind_of_code(code), code}; }
Known of_kind(ErrorKind kind) { return {kind, 0}; }

/// Of the library's own family. Throws what is none of it.
Known own_error(const std::exception_ptr& error) {
  try {
    std::rethrow_exception(error);
  } catch (const DatabaseError& own) {
    return of_code(own.code());
  } catch (const veldra::NotALibrary&) {
    return of_kind(ErrorKind::NotALibrary);
  } catch (const veldra::Interrupted&) {
    return of_kind(ErrorKind::Interrupted);
  } catch (const LibraryReadOnly&) {
    return of_kind(ErrorKind::ReadOnly);
  } catch (const ObjectNotFound&) {
    return of_kind(ErrorKind::NotFound);
  } catch (const ObjectInUse&) {
    return of_kind(ErrorKind::InUse);
  } catch (const ObjectNotUnique&) {
    return of_kind(ErrorKind::NotUnique);
  } catch (const Exception&) {
    return of_kind(ErrorKind::Other);
  }
}

/// Of the runtime's, of texts and of memory.
Known other_error(const std::exception_ptr& error) {
  try {
    std::rethrow_exception(error);
  } catch (const odb::sqlite::database_exception& database) {
    return of_code(database.extended_error());
  } catch (const odb::timeout&) {
    return of_code(SQLITE_BUSY);
  } catch (const odb::deadlock&) {
    return of_code(SQLITE_LOCKED);
  } catch (const odb::object_not_persistent&) {
    return of_kind(ErrorKind::NotFound);
  } catch (const odb::no_type_info&) {
    return of_kind(ErrorKind::Damaged);
  } catch (const odb::unknown_schema_version&) {
    return of_kind(ErrorKind::UnknownVersion);
  } catch (const odb::already_in_transaction&) {
    return of_kind(ErrorKind::Transaction);
  } catch (const odb::transaction_already_finalized&) {
    return {ErrorKind::Transaction, SQLITE_ABORT_ROLLBACK};
  } catch (const utf8::exception&) {
    return of_kind(ErrorKind::MalformedText);
  } catch (const std::bad_alloc&) {
    return of_kind(ErrorKind::OutOfMemory);
  } catch (...) {
    return of_kind(ErrorKind::Other);
  }
}

Known known(const std::exception_ptr& error) noexcept {
  if (error == nullptr) return of_kind(ErrorKind::Other);
  try {
    return own_error(error);
  } catch (...) {
    return other_error(error);
  }
}

}  // namespace

ErrorKind error_kind(std::exception_ptr error) noexcept { return known(error).kind; }

int error_code(std::exception_ptr error) noexcept { return known(error).code; }

std::string error_text(std::exception_ptr error) {
  if (error == nullptr) return {};
  try {
    std::rethrow_exception(error);
  } catch (const Exception& own) {
    return String(own.what()).utf8();
  } catch (const std::exception& other) {
    return other.what();
  } catch (...) {
    return {};
  }
}

}  // namespace veldra
