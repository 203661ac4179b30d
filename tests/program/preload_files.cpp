// SPDX-License-Identifier: GPL-2.0-or-later
#include "program/preload.hpp"
#include "program/preload_calls.hpp"
#include "program/preload_deeds.hpp"
#include "program/preload_system.hpp"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstring>

namespace veldra_tests {

namespace {

/// Whether each descriptor is of a file in the folder.
bool in_folder[most_descriptors] = {};

/// How much the files in the folder have grown, less what was removed.
long grown = 0;

template <class... Arguments>
long system_call(long number, Arguments... arguments) {
  return perform({number, {(long)arguments...}});
}

bool is_in_folder(const char* path, const SystemCall& call, int folder) {
  if (path == nullptr || *path == '\0') return false;
  if (*path != '/') {
    // The program runs in the folder.
    if (folder < 0 || static_cast<int>(call.arguments[folder]) == AT_FDCWD) return true;
    const long descriptor = call.arguments[folder];
    return is_known(descriptor) && in_folder[descriptor];
  }
  const char* const whole = plan()->folder;
  const std::size_t length = std::strlen(whole);
  return std::strncmp(path, whole, length) == 0 && (path[length] == '/' || path[length] == '\0');
}

/// What is said on standard output is of the same disk; standard error is beside all this.
bool is_output(const CallForm& form, long descriptor) {
  return descriptor == STDOUT_FILENO &&
         (form.group == Group::Write || form.group == Group::Sync || form.group == Group::Close);
}

bool is_ours(const CallForm& form, const SystemCall& call) {
  if (form.group == Group::CurrentFolder) return true;
  if (is_in_folder(path_of(form, call), call, form.folder)) return true;
  if (is_in_folder(second_path_of(form, call), call, form.second_folder)) return true;
  const long descriptor = descriptor_of(form, call);
  return is_known(descriptor) && (in_folder[descriptor] || is_output(form, descriptor));
}

// Writing in part.

unsigned long length_of_write(const SystemCall& call) {
  switch (call.number) {
    case SYS_writev:
    case SYS_pwritev: {
      const auto* parts = reinterpret_cast<const iovec*>(call.arguments[1]);
      unsigned long length = 0;
      for (long i = 0; i != call.arguments[2]; ++i) length += parts[i].iov_len;
      return length;
    }
    case SYS_sendfile:
      return static_cast<unsigned long>(call.arguments[3]);
    case SYS_copy_file_range:
      return static_cast<unsigned long>(call.arguments[4]);
    case SYS_fallocate:
      return 0;
    default:
      return static_cast<unsigned long>(call.arguments[2]);
  }
}

long write_first_of(const SystemCall& call, unsigned long length) {
  SystemCall shorter = call;
  switch (call.number) {
    case SYS_writev:
    case SYS_pwritev: {
      // Of the first part only, which is short enough a write, too.
      const iovec first = *reinterpret_cast<const iovec*>(call.arguments[1]);
      const iovec part{first.iov_base, first.iov_len < length ? first.iov_len : length};
      shorter.arguments[1] = reinterpret_cast<long>(&part);
      shorter.arguments[2] = 1;
      return perform(shorter);
    }
    case SYS_sendfile:
      shorter.arguments[3] = static_cast<long>(length);
      break;
    case SYS_copy_file_range:
      shorter.arguments[4] = static_cast<long>(length);
      break;
    default:
      shorter.arguments[2] = static_cast<long>(length);
  }
  return perform(shorter);
}

// A disk that is full.

long size_of(long descriptor) {
  struct stat status;
  if (system_call(SYS_fstat, descriptor, &status) != 0 || !S_ISREG(status.st_mode)) return -1;
  return status.st_size;
}

/// How much goes from the disk with this name; a link to a link counts as what it leads to.
long size_under(long folder, const char* path) {
  struct stat status;
  if (system_call(SYS_newfstatat, folder, path, &status, 0) != 0) return 0;
  return S_ISREG(status.st_mode) && status.st_nlink == 1 ? status.st_size : 0;
}

long end_of_write(const SystemCall& call, long descriptor, long size) {
  const long length = static_cast<long>(length_of_write(call));
  if (call.number == SYS_pwrite64 || call.number == SYS_pwritev) return call.arguments[3] + length;
  if (call.number == SYS_fallocate) return call.arguments[2] + call.arguments[3];
  const bool at_end = (system_call(SYS_fcntl, descriptor, F_GETFL) & O_APPEND) != 0;
  return (at_end ? size : system_call(SYS_lseek, descriptor, 0, SEEK_CUR)) + length;
}

void note_growth(FaultPlan& plan, long bytes) {
  grown += bytes;
  if (grown > static_cast<long>(plan.calls)) plan.calls = static_cast<unsigned long>(grown);
}

long write_on_full_disk(FaultPlan& plan, const CallForm& form, const SystemCall& call) {
  const long descriptor = descriptor_of(form, call);
  const long size = size_of(descriptor);
  if (size < 0) return perform(call);
  const long end = end_of_write(call, descriptor, size);
  const long growth = end > size ? end - size : 0;
  const long room = static_cast<long>(plan.point) - 1 - grown;
  if (plan.point == 0 || growth <= room) {
    const long result = perform(call);
    const long now = size_of(descriptor);
    if (now > size) note_growth(plan, now - size);
    return result;
  }
  plan.fired = true;
  const long fitting = static_cast<long>(length_of_write(call)) - (growth - (room > 0 ? room : 0));
  if (fitting <= 0) return -ENOSPC;
  const long result = write_first_of(call, static_cast<unsigned long>(fitting));
  const long now = size_of(descriptor);
  if (now > size) note_growth(plan, now - size);
  return result;
}

long on_full_disk(FaultPlan& plan, const CallForm& form, const SystemCall& call) {
  const auto path = path_of(form, call);
  const long folder = form.folder < 0 ? AT_FDCWD : call.arguments[form.folder];
  const long second_folder = form.second_folder < 0 ? AT_FDCWD : call.arguments[form.second_folder];
  long freed = 0;
  switch (form.group) {
    case Group::Write:
      return write_on_full_disk(plan, form, call);
    case Group::Open:
      if (empties_file(call)) freed = size_under(folder, path);
      break;
    case Group::Remove:
      freed = size_under(folder, path);
      break;
    case Group::Rename:
      if (second_path_of(form, call) != nullptr) {
        freed = size_under(second_folder, second_path_of(form, call));
      }
      break;
    case Group::Truncate:
      freed = form.descriptor < 0 ? 0 : size_of(call.arguments[0]) - call.arguments[1];
      break;
    default:
      break;
  }
  const long result = perform(call);
  if (result >= 0 && freed > 0) grown -= freed;
  return result;
}

// What goes wrong.

void keep_text(char (&copy)[256], const char* text) {
  std::size_t length = 0;
  while (text != nullptr && text[length] != '\0' && length != sizeof copy - 1) {
    copy[length] = text[length];
    ++length;
  }
  copy[length] = '\0';
}

void note_fault(FaultPlan& plan, const CallForm& form, const SystemCall& call) {
  if (plan.fired.exchange(true)) return;
  plan.number = static_cast<int>(call.number);
  plan.descriptor = descriptor_of(form, call);
  keep_text(plan.path, path_of(form, call));
  keep_text(plan.second, second_path_of(form, call));
}

void raise_here(int signal) {
  system_call(SYS_tgkill, system_call(SYS_getpid), system_call(SYS_gettid), signal);
}

long fail(const CallForm& form, const SystemCall& call, int error) {
  // The descriptor is gone all the same.
  if (form.group == Group::Close) perform(call);
  return -error;
}

long die(const CallForm& form, const SystemCall& call) {
  const unsigned long length = form.group == Group::Write ? length_of_write(call) : 0;
  if (length > 1) write_first_of(call, length / 2);
  system_call(SYS_kill, system_call(SYS_getpid), SIGKILL);
  return -EIO;
}

long trouble(FaultPlan& plan, const CallForm& form, const SystemCall& call) {
  const bool has_error = possible_error(form, call, EIO) != 0;
  const bool meant = plan.only < 0 || plan.only == call.number;
  const int error = meant ? possible_error(form, call, plan.error) : 0;
  switch (plan.trouble) {
    case Trouble::Error:
      if (error == 0 || !is_due(plan)) return perform(call);
      note_fault(plan, form, call);
      return fail(form, call, error);
    case Trouble::ShortWrite:
      if (form.group != Group::Write || length_of_write(call) < 2 || !is_due(plan)) {
        return perform(call);
      }
      note_fault(plan, form, call);
      return write_first_of(call, length_of_write(call) / 2);
    case Trouble::Kill:
      if (!has_error || !is_due(plan)) return perform(call);
      note_fault(plan, form, call);
      return die(form, call);
    case Trouble::Interrupt:
      if (!has_error || !is_due(plan)) return perform(call);
      note_fault(plan, form, call);
      raise_here(SIGINT);
      return perform(call);
    case Trouble::Pause:
      if (!has_error || !meant || !is_due(plan)) return perform(call);
      note_fault(plan, form, call);
      raise_here(SIGSTOP);
      return perform(call);
    case Trouble::FullDisk:
      return on_full_disk(plan, form, call);
    default:
      return perform(call);
  }
}

// Which descriptors are of files in the folder.

bool duplicates(const CallForm& form, const SystemCall& call) {
  if (form.group == Group::Duplicate) return true;
  return call.number == SYS_fcntl &&
         (call.arguments[1] == F_DUPFD || call.arguments[1] == F_DUPFD_CLOEXEC);
}

void follow(const FaultPlan& plan, const CallForm& form, const SystemCall& call, bool ours,
            long result) {
  if (form.group == Group::Open && is_known(result)) {
    in_folder[result] = ours;
    name_descriptor(plan, result, path_of(form, call));
  }
  if (form.group == Group::Close && is_known(call.arguments[0])) {
    in_folder[call.arguments[0]] = false;
  }
  if (duplicates(form, call) && is_known(result)) {
    in_folder[result] = ours;
    name_as(result, call.arguments[0]);
  }
}

// Who waits for a lock that will never be given need not be waited for: time itself goes on.

std::atomic<long> skipped_nanoseconds{0};

bool is_in_vain(const FaultPlan& plan, const CallForm& form) {
  return form.group == Group::Sleep && plan.trouble == Trouble::Error && plan.lasting && plan.fired;
}

long skip(const SystemCall& sleep) {
  const long place = sleep.arguments[sleep.number == SYS_nanosleep ? 0 : 2];
  const auto& time = *reinterpret_cast<const timespec*>(place);
  skipped_nanoseconds += time.tv_sec * 1000000000 + time.tv_nsec;
  return 0;
}

long on_file_call(const SystemCall& call) {
  FaultPlan* const current = plan();
  const CallForm* const form = form_of(call.number);
  if (current == nullptr || form == nullptr) return perform(call);
  if (is_in_vain(*current, *form)) return skip(call);
  const bool ours = is_ours(*form, call);
  const long result = ours ? trouble(*current, *form, call) : perform(call);
  if (ours && result >= 0) note_deed(*current, *form, call);
  follow(*current, *form, call, ours, result);
  return result;
}

}  // namespace

bool divert_file_calls() {
  long numbers[most_descriptors];
  for (unsigned i = 0; i != call_form_count; ++i) numbers[i] = call_forms[i].number;
  return divert_calls(numbers, call_form_count, on_file_call);
}

}  // namespace veldra_tests

// Of all clocks, as nobody compares two.
extern "C" __attribute__((visibility("default"))) int clock_gettime(clockid_t clock,
                                                                    timespec* time) noexcept {
  const long error = veldra_tests::system_call(SYS_clock_gettime, clock, time);
  if (error != 0) {
    errno = static_cast<int>(-error);
    return -1;
  }
  const long nanoseconds = time->tv_nsec + veldra_tests::skipped_nanoseconds;
  time->tv_sec += nanoseconds / 1000000000;
  time->tv_nsec = nanoseconds % 1000000000;
  return 0;
}
