// SPDX-License-Identifier: GPL-2.0-or-later
#include "program/preload_calls.hpp"

#include <fcntl.h>
#include <sys/syscall.h>

#include <cerrno>

namespace veldra_tests {

namespace {

constexpr CallForm on_file(long number, Group group) { return {number, group, 0, -1, -1, -1, -1}; }

constexpr CallForm on_path(long number, Group group) { return {number, group, -1, -1, 0, -1, -1}; }

constexpr CallForm on_path_in_folder(long number, Group group) {
  return {number, group, -1, 0, 1, -1, -1};
}

/// How a file is opened, for each call that does.
long opening_flags(const SystemCall& call) {
  switch (call.number) {
    case SYS_open:
      return call.arguments[1];
    case SYS_openat:
      return call.arguments[2];
    case SYS_creat:
      return O_WRONLY | O_CREAT | O_TRUNC;
    default:
      return 0;
  }
}

bool has_space_error(const CallForm& form, const SystemCall& call) {
  switch (form.group) {
    case Group::Open:
      return makes_file(call);
    case Group::Write:
    case Group::Rename:
    case Group::MakeFolder:
      return true;
    default:
      return false;
  }
}

bool has_permission_error(const CallForm& form) {
  switch (form.group) {
    case Group::Open:
    case Group::Remove:
    case Group::Rename:
    case Group::Look:
    case Group::Lock:
    case Group::CurrentFolder:
    case Group::Change:
    case Group::MakeFolder:
      return true;
    default:
      return false;
  }
}

bool has_memory_error(const CallForm& form) {
  switch (form.group) {
    case Group::Open:
    case Group::Read:
    case Group::Remove:
    case Group::Rename:
    case Group::Look:
    case Group::CurrentFolder:
    case Group::Change:
    case Group::MakeFolder:
      return true;
    default:
      return false;
  }
}

/// The kernel, or the file system, may be too old.
bool may_be_missing(const SystemCall& call, int error) {
  return error == ENOSYS ? call.number == SYS_renameat2
                         : (opening_flags(call) & O_TMPFILE) == O_TMPFILE;
}

bool has_no_errors(const CallForm& form, const SystemCall& call) {
  if (form.group == Group::Lock) return !is_file_lock(call);
  return form.group == Group::Duplicate || form.group == Group::Sleep;
}

const char* text_argument(const SystemCall& call, int index) {
  return index < 0 ? nullptr : reinterpret_cast<const char*>(call.arguments[index]);
}

}  // namespace

// Sorted by what they do.
const CallForm call_forms[] = {
    on_path(SYS_open, Group::Open),
    on_path_in_folder(SYS_openat, Group::Open),
    on_path(SYS_creat, Group::Open),
    on_file(SYS_read, Group::Read),
    on_file(SYS_pread64, Group::Read),
    on_file(SYS_readv, Group::Read),
    on_file(SYS_preadv, Group::Read),
    on_file(SYS_getdents64, Group::Read),
    on_file(SYS_write, Group::Write),
    on_file(SYS_pwrite64, Group::Write),
    on_file(SYS_writev, Group::Write),
    on_file(SYS_pwritev, Group::Write),
    on_file(SYS_sendfile, Group::Write),
    on_file(SYS_fallocate, Group::Write),
    {SYS_copy_file_range, Group::Write, 2, -1, -1, -1, -1},
    on_file(SYS_fsync, Group::Sync),
    on_file(SYS_fdatasync, Group::Sync),
    on_file(SYS_syncfs, Group::Sync),
    on_file(SYS_ftruncate, Group::Truncate),
    on_path(SYS_truncate, Group::Truncate),
    on_path(SYS_unlink, Group::Remove),
    on_path_in_folder(SYS_unlinkat, Group::Remove),
    on_path(SYS_rmdir, Group::Remove),
    {SYS_rename, Group::Rename, -1, -1, 0, -1, 1},
    {SYS_renameat, Group::Rename, -1, 0, 1, 2, 3},
    {SYS_renameat2, Group::Rename, -1, 0, 1, 2, 3},
    {SYS_link, Group::Rename, -1, -1, 0, -1, 1},
    {SYS_linkat, Group::Rename, -1, 0, 1, 2, 3},
    {SYS_symlink, Group::Rename, -1, -1, 1, -1, -1},
    {SYS_symlinkat, Group::Rename, -1, 1, 2, -1, -1},
    on_file(SYS_fcntl, Group::Lock),
    on_file(SYS_flock, Group::Lock),
    on_path(SYS_stat, Group::Look),
    on_path(SYS_lstat, Group::Look),
    on_file(SYS_fstat, Group::Look),
    on_path_in_folder(SYS_newfstatat, Group::Look),
    on_path_in_folder(SYS_statx, Group::Look),
    on_path(SYS_access, Group::Look),
    on_path_in_folder(SYS_faccessat, Group::Look),
    on_path_in_folder(SYS_faccessat2, Group::Look),
    on_path(SYS_readlink, Group::Look),
    on_path_in_folder(SYS_readlinkat, Group::Look),
    on_path(SYS_statfs, Group::Look),
    on_file(SYS_fstatfs, Group::Look),
    {SYS_getcwd, Group::CurrentFolder, -1, -1, -1, -1, -1},
    on_path(SYS_chmod, Group::Change),
    on_file(SYS_fchmod, Group::Change),
    on_path_in_folder(SYS_fchmodat, Group::Change),
    on_path(SYS_chown, Group::Change),
    on_path(SYS_lchown, Group::Change),
    on_file(SYS_fchown, Group::Change),
    on_path_in_folder(SYS_fchownat, Group::Change),
    on_path_in_folder(SYS_utimensat, Group::Change),
    on_file(SYS_close, Group::Close),
    on_path(SYS_mkdir, Group::MakeFolder),
    on_path_in_folder(SYS_mkdirat, Group::MakeFolder),
    on_file(SYS_dup, Group::Duplicate),
    on_file(SYS_dup2, Group::Duplicate),
    on_file(SYS_dup3, Group::Duplicate),
    {SYS_nanosleep, Group::Sleep, -1, -1, -1, -1, -1},
    {SYS_clock_nanosleep, Group::Sleep, -1, -1, -1, -1, -1},
};
const unsigned call_form_count = sizeof call_forms / sizeof call_forms[0];

const CallForm* form_of(long number) {
  for (const CallForm& form : call_forms) {
    if (form.number == number) return &form;
  }
  return nullptr;
}

int possible_error(const CallForm& form, const SystemCall& call, int wanted) {
  if (has_no_errors(form, call)) return 0;
  switch (wanted) {
    case ENOSPC:
      return has_space_error(form, call) ? ENOSPC : 0;
    case EACCES:
      return has_permission_error(form) ? EACCES : 0;
    case ENOMEM:
      return has_memory_error(form) ? ENOMEM : 0;
    case ENOSYS:
    case EOPNOTSUPP:
      return may_be_missing(call, wanted) ? wanted : 0;
    default:
      return form.group == Group::CurrentFolder ? ENOENT : wanted;
  }
}

const char* path_of(const CallForm& form, const SystemCall& call) {
  return text_argument(call, form.path);
}

const char* second_path_of(const CallForm& form, const SystemCall& call) {
  return text_argument(call, form.second_path);
}

int descriptor_of(const CallForm& form, const SystemCall& call) {
  const char* path = path_of(form, call);
  // Without a name, it is the descriptor itself that is meant.
  if (path != nullptr && *path == '\0' && form.folder >= 0) {
    return static_cast<int>(call.arguments[form.folder]);
  }
  return form.descriptor < 0 ? -1 : static_cast<int>(call.arguments[form.descriptor]);
}

bool is_file_lock(const SystemCall& call) {
  if (call.number == SYS_flock) return true;
  switch (call.arguments[1]) {
    case F_GETLK:
    case F_SETLK:
    case F_SETLKW:
    case F_OFD_GETLK:
    case F_OFD_SETLK:
    case F_OFD_SETLKW:
      return true;
    default:
      return false;
  }
}

bool makes_file(const SystemCall& call) {
  return (opening_flags(call) & O_CREAT) != 0 || (opening_flags(call) & O_TMPFILE) == O_TMPFILE;
}

bool empties_file(const SystemCall& call) { return (opening_flags(call) & O_TRUNC) != 0; }

}  // namespace veldra_tests
