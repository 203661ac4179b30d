// SPDX-License-Identifier: GPL-2.0-or-later
#include "failure.hpp"

#include "process/interruption.hpp"
#include "process/size_limit.hpp"
#include "text.hpp"

#include <fmt/format.h>
#include <utf8.h>

#include <algorithm>
#include <iterator>
#include <new>

namespace veldra_tool {

namespace {

/// A cause of failures, and what is said of it.
struct Cause {
  int code;
  const char* sentence;
};

/// A result code without what extends it.
int primary(int code) { return code & 0xFF; }

constexpr int refused = 1;
constexpr int value_of_another_kind = 20;

constexpr const char* held = "another program holds the library";
constexpr const char* no_memory = "there is not enough memory";
constexpr const char* any_cause = "the library cannot be used";

/// The result codes of SQLite that can come out of the library.
constexpr Cause database_causes[] = {
    {1,
     "the database in the file refuses what a library must be able to do; 'veldra check' may "
     "tell more"},
    {3, "the file may not be used"},
    {4, "the work on the library was broken off"},
    {5, held},
    {6, held},
    {7, no_memory},
    {8, "the library can only be read"},
    {9, "the work on the library was broken off"},
    {10, "the disk failed while the library was read or written"},
    {11, "the library is damaged"},
    {13, "the disk is full"},
    {14, "the file cannot be opened"},
    {15, held},
    {17, "another program changed the tables of the library meanwhile"},
    {18, "a text is too long for a library"},
    {19, "the library refuses a value, because others depend on it"},
    {20, "the library has a value where one of another kind belongs"},
    {22, "the file is too large for this system"},
    {23, "the file may not be used"},
    {26, "this is not a veldra library"}};

/// A file that may not grow counts as a disk that has failed.
constexpr int failed_disk = 10;
constexpr const char* too_large = "the file would get larger than is allowed";

/// The runtime uses the code of a full disk for ids that have run out as well.
constexpr int full = 13;
constexpr const char* ids_have_run_out = "no id is left";

/// What is said of a transaction that the database has ended by itself.
constexpr int ended_by_itself = 516;
constexpr const char* lost_transaction =
    "the disk is full or has failed, or there is not enough memory";

/// What is said of the exception that is being handled, by its kind.
std::string sentence_of_kind() {
  const int code = veldra::error_code();
  if (code == ended_by_itself) return size_limit_was_met() ? too_large : lost_transaction;
  if (code == full && veldra::error_text().find(ids_have_run_out) != std::string::npos) {
    return "the library has no id left for another object of a kind";
  }
  switch (veldra::error_kind()) {
    case veldra::ErrorKind::OutOfMemory:
      return no_memory;
    case veldra::ErrorKind::UnknownVersion:
      return "the library was made by a version that is not known here";
    case veldra::ErrorKind::Damaged:
      if (code == 0) return "the library has an asset of a kind that is not known here";
      break;
    case veldra::ErrorKind::NotFound:
      return "the library does not say what library it is; 'veldra check' tells more";
    default:
      break;
  }
  return code == 0 ? any_cause : sentence_of_database(code);
}

std::string sentence_of_unique(const veldra::ObjectNotUnique& error) {
  const std::string column = error.text().utf8();
  if (column == "Material.code") return "a material has a code that another material has already";
  if (column.empty()) return "an object has a name that another one has already";
  return fmt::format("two objects have the same value of {}", printable(column));
}

}  // namespace

std::string sentence_of_database(int result) {
  const int code = primary(result);
  if (code == failed_disk && size_limit_was_met()) return too_large;
  const auto* const cause =
      std::find_if(std::begin(database_causes), std::end(database_causes),
                   [&](const Cause& candidate) { return candidate.code == code; });
  return cause != std::end(database_causes) ? cause->sentence : any_cause;
}

std::string sentence_of_error() {
  try {
    throw;
  } catch (const veldra::DatabaseError& error) {
    return sentence_of_database(error.code());
  } catch (const veldra::ObjectNotUnique& error) {
    return sentence_of_unique(error);
  } catch (const veldra::LibraryReadOnly&) {
    return "the library can only be read";
  } catch (const veldra::ObjectInUse&) {
    return "the object is in use";
  } catch (const veldra::ObjectNotFound&) {
    return "an object has gone while it was used";
  } catch (const veldra::NotALibrary&) {
    return "this is not a veldra library";
  } catch (const veldra::InappropriateCustomProperty&) {
    return "a custom property is for objects of another kind";
  } catch (const veldra::Exception&) {
    return "the library cannot be changed";
  } catch (const utf8::invalid_utf16&) {
    return "a text has half of a character";
  } catch (const utf8::invalid_code_point&) {
    return "a text has a character that does not exist";
  } catch (const utf8::exception&) {
    return "the library has a text that is not UTF-8";
  } catch (...) {
    return sentence_of_kind();
  }
}

bool lies_in_the_file() {
  switch (veldra::error_kind()) {
    case veldra::ErrorKind::Damaged:
    case veldra::ErrorKind::NotALibrary:
    case veldra::ErrorKind::NotFound:
    case veldra::ErrorKind::MalformedText:
      return true;
    default:
      break;
  }
  const int code = primary(veldra::error_code());
  return code == refused || code == value_of_another_kind;
}

bool is_held_by_others() { return veldra::error_kind() == veldra::ErrorKind::Busy; }

void rethrow_for(const std::string& file) {
  try {
    throw;
  } catch (const Failure&) {
    throw;
  } catch (const LibraryFailure& failure) {
    throw failure_of(file, failure.what());
  } catch (const kit::SourceError& error) {
    throw Failure(printable(error.what()));
  } catch (const kit::Error& error) {
    throw failure_of(file, printable(error.what()));
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const Stopped&) {
    throw;
  } catch (const veldra::Interrupted&) {
    throw Stopped();
  } catch (...) {
    stop_if_asked();
    throw failure_of(file, sentence_of_error());
  }
}

Failure failure_of(const std::string& file, const std::string& sentence) {
  return Failure(fmt::format("{}: {}", in_quotes(file), sentence));
}

std::string in_quotes(const std::string& text) { return fmt::format("'{}'", printable(text)); }

}  // namespace veldra_tool
