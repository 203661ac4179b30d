// SPDX-License-Identifier: GPL-2.0-or-later
#include "program/preload_deeds.hpp"

#include <sys/syscall.h>

#include <cstddef>
#include <cstring>
#include <initializer_list>

namespace veldra_tests {

namespace {

char descriptor_names[most_descriptors][128] = {"standard input", "standard output"};

/// A path in the folder, as it is called below that.
const char* name_below(const FaultPlan& plan, const char* path) {
  const std::size_t length = std::strlen(plan.folder);
  if (std::strncmp(path, plan.folder, length) != 0) return path;
  return path[length] == '/' ? path + length + 1 : ".";
}

const char* name_of_file(const FaultPlan& plan, const CallForm& form, const SystemCall& call) {
  const int descriptor = descriptor_of(form, call);
  if (is_known(descriptor)) return descriptor_names[descriptor];
  const char* const path = path_of(form, call);
  return path != nullptr ? name_below(plan, path) : "";
}

const char* deed_of(const CallForm& form, const SystemCall& call) {
  switch (form.group) {
    case Group::Open:
      return makes_file(call) ? "make" : empties_file(call) ? "cut" : nullptr;
    case Group::Write:
      return "write";
    case Group::Sync:
      return "sync";
    case Group::Truncate:
      return "cut";
    case Group::Remove:
      return "remove";
    case Group::Rename:
      return call.number == SYS_link || call.number == SYS_linkat ? "link" : "rename";
    default:
      return nullptr;
  }
}

std::size_t append(char* line, std::size_t length, std::size_t room, const char* text) {
  while (*text != '\0' && length != room) line[length++] = *text++;
  return length;
}

}  // namespace

void note_deed(FaultPlan& plan, const CallForm& form, const SystemCall& call) {
  const char* const deed = deed_of(form, call);
  if (deed == nullptr) return;
  char line[600];
  std::size_t length = append(line, 0, sizeof line, deed);
  for (const char* name : {name_of_file(plan, form, call), second_path_of(form, call)}) {
    if (name == nullptr) continue;
    length = append(line, length, sizeof line, " ");
    length = append(line, length, sizeof line, name_below(plan, name));
  }
  length = append(line, length, sizeof line, "\n");
  char* const end = plan.deeds + plan.deeds_length;
  if (plan.deeds_length >= length && std::memcmp(end - length, line, length) == 0) return;
  if (plan.deeds_length + length >= sizeof plan.deeds) return;
  std::memcpy(end, line, length);
  plan.deeds_length += static_cast<unsigned>(length);
}

void name_descriptor(const FaultPlan& plan, long descriptor, const char* path) {
  char(&name)[128] = descriptor_names[descriptor];
  name[append(name, 0, sizeof name - 1, name_below(plan, path))] = '\0';
}

void name_as(long descriptor, long other) {
  if (!is_known(other)) return;
  std::memmove(descriptor_names[descriptor], descriptor_names[other], sizeof descriptor_names[0]);
}

}  // namespace veldra_tests
