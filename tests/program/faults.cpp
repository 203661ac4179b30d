// SPDX-License-Identifier: GPL-2.0-or-later
#include "program/faults.hpp"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <new>
#include <stdexcept>

namespace veldra_tests {

namespace {

/// The linker takes a blank in the name of what it loads first for its end.
constexpr const char* preloaded = "faults.so";

const char* name_of(Trouble trouble) {
  switch (trouble) {
    case Trouble::Error:
      return "error";
    case Trouble::ShortWrite:
      return "short write";
    case Trouble::FullDisk:
      return "full disk";
    case Trouble::Kill:
      return "SIGKILL";
    case Trouble::Interrupt:
      return "SIGINT";
    case Trouble::Pause:
      return "SIGSTOP";
    default:
      return "no memory";
  }
}

void* map_new_file(const std::string& path) {
  const int descriptor = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  void* memory = MAP_FAILED;
  if (::ftruncate(descriptor, sizeof(FaultPlan)) == 0) {
    memory = ::mmap(nullptr, sizeof(FaultPlan), PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
  }
  ::close(descriptor);
  if (memory == MAP_FAILED) throw std::runtime_error("no plan " + path);
  return memory;
}

}  // namespace

std::string Fault::text() const {
  std::string text = name_of(trouble);
  if (error != 0) text += std::string(" '") + std::strerror(error) + "'";
  return text + (lasting ? " from " : " at ") + std::to_string(point);
}

SharedPlan::SharedPlan(const Fault& fault, const std::string& folder)
    : plan_(new (map_new_file(folder_ / "plan")) FaultPlan) {
  plan_->trouble = fault.trouble;
  plan_->error = fault.error;
  plan_->point = fault.point;
  plan_->lasting = fault.lasting;
  plan_->only = fault.only;
  if (folder.size() >= sizeof plan_->folder) throw std::runtime_error("too long: " + folder);
  std::strcpy(plan_->folder, folder.c_str());
  std::filesystem::create_symlink(VELDRA_FAULTS, folder_ / preloaded);
}

SharedPlan::~SharedPlan() { ::munmap(plan_, sizeof *plan_); }

std::vector<std::string> SharedPlan::environment() const {
  // Those of the address sanitizer, which wants to come first and looks for leaks with calls that
  // cannot be diverted.
  return {"LD_PRELOAD=" + folder_ / preloaded,
          std::string(FaultPlan::variable) + "=" + folder_ / "plan",
          "ASAN_OPTIONS=verify_asan_link_order=0:detect_leaks=0:exitcode=99"};
}

std::string SharedPlan::text() const {
  std::string text = "call " + std::to_string(plan_->number);
  if (plan_->descriptor >= 0) text += " descriptor " + std::to_string(plan_->descriptor);
  if (plan_->path[0] != '\0') text += std::string(" ") + plan_->path;
  if (plan_->second[0] != '\0') text += std::string(" -> ") + plan_->second;
  return text;
}

}  // namespace veldra_tests
