#include "failure.hpp"

#include "text.hpp"

#include <veldra/veldra.hpp>

#include <fmt/format.h>

#include <cxxabi.h>

#include <cstdlib>
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

/// What the database says, by its result code, which leads its message.
std::string database_sentence(const std::exception& error) {
  static const std::map<int, const char*> sentences{
      {5, "another program holds the library"},
      {6, "another program holds the library"},
      {8, "the library can only be read"},
      {10, "the disk failed while the library was read or written"},
      {11, "the library is damaged"},
      {13, "the disk is full"},
      {14, "the file cannot be opened"},
      {19, "the library refuses a value, because others depend on it"},
      {26, "the file is not a library"}};
  const auto found = sentences.find(std::atoi(error.what()));
  return found != sentences.end() ? found->second : "the library cannot be used";
}

/// The exceptions of the persistence runtime and of utf8-cpp are told by the names of their
/// classes: the runtime's headers are of an older C++ than this program, and the library's
/// interface does not need them.
std::string sentence(const std::exception& error) {
  static const std::map<std::string, const char*> sentences{
      {"odb::timeout", "another program holds the library"},
      {"odb::unknown_schema_version", "the library was made by a version that is not known here"},
      {"odb::no_type_info", "the library has an asset of a kind that is not known here"},
      {"odb::object_not_persistent", "the file is not a library, or it is incomplete"},
      {"utf8::invalid_utf8", "the library has a text that is not UTF-8"},
      {"utf8::invalid_utf16", "a text has half of a character"},
      {"utf8::invalid_code_point", "a text has a character that does not exist"},
      {"utf8::not_enough_room", "the library has a text that is not UTF-8"},
      {"std::bad_alloc", "there is not enough memory"}};
  for (const auto& name : classes_of(error)) {
    if (name == "odb::sqlite::database_exception") return database_sentence(error);
    const auto found = sentences.find(name);
    if (found != sentences.end()) return found->second;
  }
  return "the library cannot be used";
}

std::string sentence(const veldra::ObjectNotUnique& error) {
  const std::string column = error.text().utf8();
  if (column == "Material.code") return "a material has a code that another material has already";
  if (column.empty()) return "an object has a name that another one has already";
  return fmt::format("two objects have the same value of {}", column);
}

}  // namespace

void rethrow_for(const std::string& file) {
  const auto failure = [&](const std::string& text) {
    return Failure(fmt::format("{}: {}", in_quotes(file), text));
  };
  try {
    throw;
  } catch (const Failure&) {
    throw;
  } catch (const veldra::LibraryReadOnly&) {
    throw failure("the library can only be read");
  } catch (const veldra::ObjectInUse&) {
    throw failure("the object is in use");
  } catch (const veldra::ObjectNotFound&) {
    throw failure("an object has gone while it was used");
  } catch (const veldra::ObjectNotUnique& error) {
    throw failure(sentence(error));
  } catch (const veldra::Exception&) {
    throw failure("the library cannot be changed");
  } catch (const std::exception& error) {
    throw failure(sentence(error));
  }
}

std::string in_quotes(const std::string& text) {
  return fmt::format("'{}'", is_utf8(text) ? printable(text) : printable(from_latin1(text)));
}

}  // namespace veldra_tool
