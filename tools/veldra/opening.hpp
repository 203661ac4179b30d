#ifndef VELDRA_TOOL_OPENING_HPP
#define VELDRA_TOOL_OPENING_HPP

#include <veldra/veldra.hpp>

#include <memory>
#include <string>

namespace veldra_tool {

enum class Access { Read, Write };

/// Opens a library file. Throws `Failure` when there is none, and never makes a library of a file
/// that is none.
std::shared_ptr<veldra::Library> open_library(const std::string& file, Access access);

/// Makes a library file; throws `Failure` when there is a file of that name.
std::shared_ptr<veldra::Library> create_library(const std::string& file, veldra::Unit unit,
                                                const std::string& guid);

/// A library in memory, without any object.
std::shared_ptr<veldra::Library> create_staging_library(veldra::Unit unit);

/// Whether two names lead to one file.
bool same_file(const std::string& left, const std::string& right);

bool file_exists(const std::string& file);

}  // namespace veldra_tool

#endif
