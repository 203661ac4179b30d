// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/workbook_file.hpp"

#include "kit/exchange/workbook_proof.hpp"
#include "kit/text/quoted.hpp"

#include <fmt/format.h>

#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <ctime>

namespace veldra::kit {

namespace {

/// The same for every workbook, so that the same library gives the same bytes.
constexpr std::time_t made_at = 1'577'836'800;  // the first of January 2020

/// The name by which the library opens a file in memory.
std::string path_of(int descriptor) { return fmt::format("/proc/self/fd/{}", descriptor); }

}  // namespace

void require_written(lxw_error result) {
  if (result == LXW_NO_ERROR) return;
  throw Error(fmt::format("the workbook cannot be written: {}", lxw_strerror(result)));
}

WorkbookFile::WorkbookFile() : descriptor_(::memfd_create("workbook", MFD_CLOEXEC)) {
  if (descriptor_ < 0) throw Error("there is no memory for the workbook");
  lxw_workbook_options options{};
  options.constant_memory = LXW_TRUE;
  workbook_ = workbook_new_opt(path_of(descriptor_).c_str(), &options);
  if (workbook_ == nullptr) throw Error("there is no memory for the workbook");
  lxw_doc_properties properties{};
  properties.created = made_at;
  workbook_set_properties(workbook_, &properties);
  heading_ = workbook_add_format(workbook_);
  format_set_bold(heading_);
  format_set_bottom(heading_, LXW_BORDER_THIN);
  text_ = workbook_add_format(workbook_);
  format_set_num_format(text_, "@");
}

WorkbookFile::~WorkbookFile() {
  if (workbook_ != nullptr) lxw_workbook_free(workbook_);
  if (descriptor_ >= 0) ::close(descriptor_);
}

lxw_worksheet* WorkbookFile::add_sheet(const std::string& name) {
  auto* sheet = workbook_add_worksheet(workbook_, name.c_str());
  if (sheet == nullptr) throw Error(fmt::format("a sheet cannot be called {}", quoted(name)));
  rows_.push_back(0);
  return sheet;
}

void WorkbookFile::finish(const TextSink& sink) {
  auto* workbook = workbook_;
  workbook_ = nullptr;
  require_written(workbook_close(workbook));
  if (!is_whole_workbook(path_of(descriptor_), rows_)) {
    throw Error("the workbook cannot be written: the disk for temporary files seems to be full");
  }
  ::lseek(descriptor_, 0, SEEK_SET);
  std::array<char, 1 << 16> part{};
  for (;;) {
    const auto size = ::read(descriptor_, part.data(), part.size());
    if (size < 0) throw Error("the workbook cannot be read back");
    if (size == 0) return;
    sink({part.data(), static_cast<std::size_t>(size)});
  }
}

}  // namespace veldra::kit
