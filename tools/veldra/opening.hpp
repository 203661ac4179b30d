// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_OPENING_HPP
#define VELDRA_TOOL_OPENING_HPP

#include "failure.hpp"
#include "host.hpp"
#include "process/interruption.hpp"

#include <veldra/veldra.hpp>

#include <memory>
#include <string>

namespace veldra_tool {

enum class Access {
  Read,
  Write,
  Any  ///< writing where that is possible
};

/// Opens a library file. Throws `Failure` when there is none, and never makes a library of a file
/// that is none.
std::shared_ptr<veldra::Library> open_library(const std::string& file, Access access);

/// Opens a library that the command is about to change, of which there may be a backup before.
std::shared_ptr<veldra::Library> open_to_change(Host& host, const std::string& file);

/// The same handle, at whose work signals end.
std::shared_ptr<veldra::Library> watched(std::shared_ptr<veldra::Library> library);

/// A library in memory, without any object.
std::shared_ptr<veldra::Library> create_staging_library(veldra::Unit unit);

/// What a file is. Throws `Failure` when that cannot be found out.
veldra::Library::Recognition::Kind recognised(const std::string& file);

/// Why a file of that kind cannot be opened; empty for libraries.
std::string why_not_a_library(veldra::Library::Recognition::Kind kind);

/// Whether two names lead to one file.
bool same_file(const std::string& left, const std::string& right);

/// Whether there is anything of that name, be it a link that leads nowhere.
bool file_exists(const std::string& file);

/// Throws the `Failure` of something that shall be made where there is something of that name.
[[noreturn]] void refuse_as_there(const std::string& file);

/// Tells from now on, when the program stops, that a library is as it was, or that both are.
void tell_as_it_was(const std::string& file);
void tell_as_they_were(const std::string& file, const std::string& other);

/// Runs `read` on one state of a library that is closed afterwards, so that nobody who writes waits
/// longer than reading takes.
template <class Read>
auto reading_one_state(const std::string& file, Read read, Access access = Access::Read) {
  return working_on(file, [&] {
    const auto library = open_library(file, access);
    const veldra::Library::Snapshot snapshot(*library);
    return read(*library);
  });
}

/// The same for a command that works on nothing else.
template <class Read>
auto reading(const std::string& file, Read read, Access access = Access::Read) {
  tell_as_it_was(file);
  return reading_one_state(file, read, access);
}

/// Runs `change`, which changes a library, so that all of it is done or nothing. It also says what
/// is to be said, because when the changes are kept nothing must fail any more. A backup that is
/// wanted is of the library just before, and in its place when the changes are kept.
template <class Change>
void change_as_a_whole(Host& host, veldra::Library& library, Change change) {
  veldra::Library::Transaction transaction(library);
  forbid_sudden_end();
  host.backup.make();
  change();
  stop_if_asked();
  if (host.status != Status::Failed) host.backup.put_into_place();
  transaction.commit();
  host.done = host.status != Status::Failed;
}

/// The same with a library that is opened for it and passed to `change`.
template <class Change>
void changing(Host& host, const std::string& file, Change change) {
  tell_as_it_was(file);
  working_on(file, [&] {
    const auto library = open_to_change(host, file);
    change_as_a_whole(host, *library, [&] { change(*library); });
  });
}

}  // namespace veldra_tool

#endif
