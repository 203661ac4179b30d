// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_ZIP_ARCHIVE_HPP
#define VELDRA_KIT_EXCHANGE_ZIP_ARCHIVE_HPP

#include <map>
#include <string>

namespace veldra::kit {

/// A ZIP archive in memory. Nothing of it is unpacked before somebody asks for it.
class ZipArchive {
 public:
  /// Reads the list of what is in an archive; its bytes must outlive it. Throws `SourceError`: it
  /// is broken or encrypted, has names that lead out of it, or would take more than 100 times its
  /// size or 1 GiB.
  ZipArchive(const std::string& bytes, const std::string& file);
  ZipArchive(const ZipArchive&) = delete;
  ZipArchive& operator=(const ZipArchive&) = delete;
  ~ZipArchive();

  bool has(const std::string& name) const { return sizes_.count(name) > 0; }

  /// What one of its files holds. Throws `SourceError`: there is none of that name, or it is
  /// broken.
  std::string content_of(const std::string& name) const;

 private:
  void list();
  void take_entry(std::size_t& total);
  [[noreturn]] void refuse(const std::string& sentence) const;

  const std::string& bytes_;
  std::string file_;
  void* archive_ = nullptr;
  std::map<std::string, std::size_t> sizes_;
};

}  // namespace veldra::kit

#endif
