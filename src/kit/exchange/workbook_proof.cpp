// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/workbook_proof.hpp"

#include <fmt/format.h>

#include <minizip/unzip.h>

#include <array>
#include <memory>

namespace veldra::kit {

namespace {

constexpr const char* beginning_of_row = "<row ";

struct Closing {
  void operator()(void* archive) const { unzClose(archive); }
};

/// What a part of an archive consists of, seen piece by piece.
class Part {
 public:
  void add(const char* bytes, std::size_t size) {
    const auto known = text_.size();
    text_.append(bytes, size);
    const std::string row = beginning_of_row;
    const auto first = known < row.size() ? 0 : known - row.size() + 1;
    for (auto at = text_.find(row, first); at != std::string::npos; at = text_.find(row, at + 1)) {
      ++rows_;
    }
    constexpr std::size_t longest_end = 100;
    if (text_.size() > longest_end) text_.erase(0, text_.size() - longest_end);
  }

  std::size_t rows() const { return rows_; }

  /// Behind the end there may be a line break.
  bool ends_with(const std::string& end) const {
    const auto place = text_.rfind(end);
    return place != std::string::npos &&
           text_.find_first_not_of('\n', place + end.size()) == std::string::npos;
  }

 private:
  std::string text_;  ///< the end of what was seen
  std::size_t rows_ = 0;
};

/// The part of an archive that is chosen. Throws nothing: what cannot be read has no end.
Part chosen_part(void* archive) {
  Part part;
  if (unzOpenCurrentFile(archive) != UNZ_OK) return {};
  std::array<char, 1 << 16> bytes{};
  for (;;) {
    const auto size = unzReadCurrentFile(archive, bytes.data(), bytes.size());
    if (size < 0) part = {};
    if (size <= 0) break;
    part.add(bytes.data(), static_cast<std::size_t>(size));
  }
  return unzCloseCurrentFile(archive) == UNZ_OK ? part : Part();
}

bool has_whole_part(void* archive, const std::string& name, const std::string& end) {
  return unzLocateFile(archive, name.c_str(), 1) == UNZ_OK && chosen_part(archive).ends_with(end);
}

bool has_whole_sheet(void* archive, std::size_t index, std::size_t rows) {
  const auto name = fmt::format("xl/worksheets/sheet{}.xml", index + 1);
  if (unzLocateFile(archive, name.c_str(), 1) != UNZ_OK) return false;
  const auto part = chosen_part(archive);
  return part.rows() == rows && part.ends_with("</worksheet>");
}

}  // namespace

bool is_whole_workbook(const std::string& path, const std::vector<std::size_t>& rows) {
  const std::unique_ptr<void, Closing> archive(unzOpen64(path.c_str()));
  if (!archive) return false;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (!has_whole_sheet(archive.get(), i, rows[i])) return false;
  }
  constexpr std::pair<const char*, const char*> others[] = {
      {"[Content_Types].xml", "</Types>"},   {"_rels/.rels", "</Relationships>"},
      {"docProps/app.xml", "</Properties>"}, {"docProps/core.xml", "</cp:coreProperties>"},
      {"xl/styles.xml", "</styleSheet>"},    {"xl/theme/theme1.xml", "</a:theme>"},
      {"xl/workbook.xml", "</workbook>"},    {"xl/_rels/workbook.xml.rels", "</Relationships>"}};
  for (const auto& [name, end] : others) {
    if (!has_whole_part(archive.get(), name, end)) return false;
  }
  return true;
}

}  // namespace veldra::kit
