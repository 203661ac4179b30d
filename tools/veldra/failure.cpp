// SPDX-License-Identifier: GPL-2.0-or-later
#include "failure.hpp"

#include "process/interruption.hpp"
#include "process/size_limit.hpp"
#include "text.hpp"

#include <fmt/format.h>

#include <cxxabi.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <map>
#include <memory>
#include <new>
#include <typeinfo>
#include <vector>

namespace veldra_tool {

namespace {

std::string name_of(const std::type_info& type) {
  int status = 0;
  const std::unique_ptr<char, decltype(&std::free)> name(
      abi::__cxa_demangle(type.name(), nullptr, nullptr, &status), &std::free);
  return status == 0 ? name.get() : "";
}

/// The class of an exception and those that it derives from, the most derived first.
std::vector<std::string> classes_of(const std::exception& error) {
  std::vector<std::string> names;
  const std::type_info* type = &typeid(error);
  while (type != nullptr) {
    names.push_back(name_of(*type));
    const auto* derived = dynamic_cast<const abi::__si_class_type_info*>(type);
    type = derived != nullptr ? derived->__base_type : nullptr;
  }
  return names;
}

/// A cause of failures, and what is said of it.
struct Cause {
  int code;
  const char* sentence;
};

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

/// Of the failures of the disk one is a lack of memory.
constexpr const char* disk_without_memory = "10 (3082)";

/// The exceptions of the persistence runtime and of utf8-cpp are told by the names of their
/// classes: the runtime's headers are of an older C++ than this program, and the library's
/// interface does not need them.
const std::map<std::string, const char*>& causes_by_class() {
  static const std::map<std::string, const char*> causes{
      {"odb::timeout", held},
      {"odb::deadlock", held},
      {"odb::connection_lost", any_cause},
      {"odb::unknown_schema_version", "the library was made by a version that is not known here"},
      {"odb::no_type_info", "the library has an asset of a kind that is not known here"},
      {"odb::object_not_persistent",
       "the library does not say what library it is; 'veldra check' tells more"},
      {"odb::transaction_already_finalized",
       "the disk is full or has failed, or there is not enough memory"},
      {"utf8::invalid_utf8", "the library has a text that is not UTF-8"},
      {"utf8::invalid_utf16", "a text has half of a character"},
      {"utf8::invalid_code_point", "a text has a character that does not exist"},
      {"utf8::not_enough_room", "the library has a text that is not UTF-8"},
      {"std::bad_alloc", no_memory}};
  return causes;
}

std::string database_sentence(const std::exception& error) {
  const std::string text = error.what();  // the code comes first
  const int code = std::atoi(text.c_str());
  if (code == full && text.find(ids_have_run_out) != std::string::npos) {
    return "the library has no id left for another object of a kind";
  }
  if (text.compare(0, std::strlen(disk_without_memory), disk_without_memory) == 0) return no_memory;
  return sentence_of_database(code);
}

std::string sentence_of_unique(const veldra::ObjectNotUnique& error) {
  const std::string column = error.text().utf8();
  if (column == "Material.code") return "a material has a code that another material has already";
  if (column.empty()) return "an object has a name that another one has already";
  return fmt::format("two objects have the same value of {}", printable(column));
}

}  // namespace

std::string sentence_of_database(int code) {
  if (code == failed_disk && size_limit_was_met()) return too_large;
  const auto* const cause =
      std::find_if(std::begin(database_causes), std::end(database_causes),
                   [&](const Cause& candidate) { return candidate.code == code; });
  return cause != std::end(database_causes) ? cause->sentence : any_cause;
}

std::string sentence_of(const std::exception& error) {
  for (const auto& name : classes_of(error)) {
    if (name == "odb::transaction_already_finalized" && size_limit_was_met()) return too_large;
    if (name == "odb::sqlite::database_exception") return database_sentence(error);
    const auto found = causes_by_class().find(name);
    if (found != causes_by_class().end()) return found->second;
  }
  return any_cause;
}

std::string sentence_of(const veldra::Exception& error) {
  if (const auto* const failed = dynamic_cast<const veldra::DatabaseError*>(&error)) {
    return sentence_of_database(failed->code());
  }
  if (const auto* const clash = dynamic_cast<const veldra::ObjectNotUnique*>(&error)) {
    return sentence_of_unique(*clash);
  }
  if (dynamic_cast<const veldra::LibraryReadOnly*>(&error)) return "the library can only be read";
  if (dynamic_cast<const veldra::ObjectInUse*>(&error)) return "the object is in use";
  if (dynamic_cast<const veldra::ObjectNotFound*>(&error)) {
    return "an object has gone while it was used";
  }
  if (dynamic_cast<const veldra::NotALibrary*>(&error)) return "this is not a veldra library";
  if (dynamic_cast<const veldra::InappropriateCustomProperty*>(&error)) {
    return "a custom property is for objects of another kind";
  }
  return "the library cannot be changed";
}

bool lies_in_the_file(const std::exception& error) {
  constexpr int codes[] = {1, 11, 20, 26};
  for (const auto& name : classes_of(error)) {
    if (name == "odb::sqlite::database_exception") {
      const int code = std::atoi(error.what());
      return std::find(std::begin(codes), std::end(codes), code) != std::end(codes);
    }
    if (name == "odb::no_type_info" || name == "odb::object_not_persistent") return true;
    if (name == "utf8::exception") return true;
  }
  return false;
}

bool is_held_by_others(const std::exception& error) { return sentence_of(error) == held; }

void rethrow_for(const std::string& file) {
  try {
    throw;
  } catch (const Failure&) {
    throw;
  } catch (const LibraryFailure& failure) {
    throw failure_of(file, failure.what());
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const veldra::Interrupted&) {
    throw Stopped();
  } catch (const veldra::Exception& error) {
    stop_if_asked();
    throw failure_of(file, sentence_of(error));
  } catch (const std::exception& error) {
    stop_if_asked();
    throw failure_of(file, sentence_of(error));
  }
}

Failure failure_of(const std::string& file, const std::string& sentence) {
  return Failure(fmt::format("{}: {}", in_quotes(file), sentence));
}

std::string in_quotes(const std::string& text) { return fmt::format("'{}'", printable(text)); }

}  // namespace veldra_tool
