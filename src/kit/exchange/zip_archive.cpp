// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/zip_archive.hpp"

#include "kit/exchange/problem.hpp"
#include "kit/text/quoted.hpp"

#include <fmt/format.h>

#include <minizip/unzip.h>

#include <algorithm>
#include <array>
#include <cstring>

namespace veldra::kit {

namespace {

constexpr std::size_t most_bytes = std::size_t{1} << 30;
constexpr std::size_t most_times = 100;
constexpr std::size_t most_files = 20000;

/// What is read of an archive is in memory twice: as a text and taken apart.
constexpr std::size_t most_bytes_of_file = std::size_t{256} << 20;

/// The bytes of an archive as the library reads a file.
struct Bytes {
  const std::string* bytes;
  ZPOS64_T place;
};

Bytes& of(voidpf stream) { return *static_cast<Bytes*>(stream); }

voidpf open_bytes(voidpf bytes, const void*, int) {
  return new Bytes{static_cast<const std::string*>(bytes), 0};
}

uLong read_bytes(voidpf, voidpf stream, void* target, uLong size) {
  auto& from = of(stream);
  const auto left = from.place < from.bytes->size() ? from.bytes->size() - from.place : 0;
  const auto taken = std::min<std::size_t>(size, left);
  if (taken == 0) return 0;
  std::memcpy(target, from.bytes->data() + from.place, taken);
  from.place += taken;
  return taken;
}

uLong write_nothing(voidpf, voidpf, const void*, uLong) { return 0; }

ZPOS64_T place_in_bytes(voidpf, voidpf stream) { return of(stream).place; }

long seek_bytes(voidpf, voidpf stream, ZPOS64_T offset, int origin) {
  auto& from = of(stream);
  ZPOS64_T begin = 0;
  if (origin == ZLIB_FILEFUNC_SEEK_CUR) begin = from.place;
  if (origin == ZLIB_FILEFUNC_SEEK_END) begin = from.bytes->size();
  if (begin + offset > from.bytes->size()) return -1;
  from.place = begin + offset;
  return 0;
}

int close_bytes(voidpf, voidpf stream) {
  delete &of(stream);
  return 0;
}

int no_error(voidpf, voidpf) { return 0; }

/// Names are paths within the archive.
bool leads_out(const std::string& name) {
  if (name.empty() || name.front() == '/') return true;
  if (name.find('\\') != std::string::npos || name.find(':') != std::string::npos) return true;
  return ("/" + name + "/").find("/../") != std::string::npos;
}

}  // namespace

ZipArchive::ZipArchive(const std::string& bytes, const std::string& file)
    : bytes_(bytes), file_(file) {
  zlib_filefunc64_def functions{};
  functions.zopen64_file = open_bytes;
  functions.zread_file = read_bytes;
  functions.zwrite_file = write_nothing;
  functions.ztell64_file = place_in_bytes;
  functions.zseek64_file = seek_bytes;
  functions.zclose_file = close_bytes;
  functions.zerror_file = no_error;
  functions.opaque = const_cast<std::string*>(&bytes_);
  archive_ = unzOpen2_64("", &functions);
  if (archive_ == nullptr) refuse("this is a broken archive (ZIP)");
  try {
    list();
  } catch (...) {
    unzClose(archive_);
    throw;
  }
}

ZipArchive::~ZipArchive() { unzClose(archive_); }

void ZipArchive::refuse(const std::string& sentence) const { fail_at(file_, 0, sentence); }

void ZipArchive::list() {
  std::size_t total = 0;
  for (int result = unzGoToFirstFile(archive_); result != UNZ_END_OF_LIST_OF_FILE;
       result = unzGoToNextFile(archive_)) {
    if (result != UNZ_OK) refuse("this is a broken archive (ZIP)");
    take_entry(total);
  }
}

void ZipArchive::take_entry(std::size_t& total) {
  unz_file_info64 info{};
  std::array<char, 1024> name{};
  const bool known = unzGetCurrentFileInfo64(archive_, &info, name.data(), name.size() - 1, nullptr,
                                             0, nullptr, 0) == UNZ_OK;
  if (!known || info.size_filename >= name.size()) refuse("this is a broken archive (ZIP)");
  const std::string text(name.data(), info.size_filename);
  if (leads_out(text)) {
    refuse(fmt::format("the archive has a file {}, whose name leads out of it", quoted(text)));
  }
  if ((info.flag & 1) != 0) refuse("the archive is encrypted, and is not read");
  if (info.uncompressed_size > most_bytes - total) {
    refuse("the archive would take more than 1 GiB, and is not read");
  }
  total += info.uncompressed_size;
  if (total / most_times > bytes_.size()) {
    refuse(fmt::format("the archive would take more than {} times its size, and is not read",
                       most_times));
  }
  if (sizes_.size() == most_files)
    refuse(fmt::format("the archive has more than {} files", most_files));
  if (!sizes_.emplace(text, info.uncompressed_size).second) {
    refuse(fmt::format("the archive has the file {} twice", quoted(text)));
  }
}

std::string ZipArchive::content_of(const std::string& name) const {
  const auto size = sizes_.find(name);
  if (size == sizes_.end()) refuse(fmt::format("the archive lacks the file {}", quoted(name)));
  if (size->second > most_bytes_of_file) {
    refuse(fmt::format("the file {} of the archive is larger than 256 MiB, and is not read",
                       quoted(name)));
  }
  const auto broken = fmt::format("the file {} of the archive is broken", quoted(name));
  if (unzLocateFile(archive_, name.c_str(), 1) != UNZ_OK) refuse(broken);
  if (unzOpenCurrentFile(archive_) != UNZ_OK) refuse(broken);
  // One byte more tells a file that is longer than it says.
  std::string content(size->second + 1, '\0');
  std::size_t place = 0;
  int taken = 1;
  while (taken > 0 && place < content.size()) {
    const auto wanted = std::min<std::size_t>(content.size() - place, 1 << 20);
    taken = unzReadCurrentFile(archive_, content.data() + place, static_cast<unsigned>(wanted));
    if (taken > 0) place += static_cast<std::size_t>(taken);
  }
  const bool whole = unzCloseCurrentFile(archive_) == UNZ_OK;
  if (taken < 0 || !whole || place != size->second) refuse(broken);
  content.resize(place);
  return content;
}

}  // namespace veldra::kit
