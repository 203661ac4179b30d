// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/workbook_reader.hpp"

#include "kit/exchange/problem.hpp"
#include "kit/exchange/row_fingerprint.hpp"
#include "kit/exchange/workbook_names.hpp"
#include "kit/exchange/workbook_styles.hpp"
#include "kit/exchange/zip_archive.hpp"
#include "kit/text/quoted.hpp"

#include <veldra/kit/text.hpp>

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <limits>
#include <map>
#include <set>

namespace veldra::kit {

namespace {

using pugi::xml_node;

/// What all cells may take together: many may refer to one long text.
constexpr std::size_t most_bytes_of_cells = std::size_t{256} << 20;

constexpr TableStyle plain_style{',', '.'};

std::string folder_of(const std::string& path) {
  const auto slash = path.rfind('/');
  return slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
}

/// The place of a part that another one refers to.
std::string place_of(const std::string& target, const std::string& folder) {
  return !target.empty() && target.front() == '/' ? target.substr(1) : folder + target;
}

/// The place that a reference such as "C5" names; nothing for none.
std::optional<TablePlace> place_in(const std::string& reference) {
  std::size_t column = 0;
  std::size_t i = 0;
  for (; i < reference.size() && reference[i] >= 'A' && reference[i] <= 'Z'; ++i) {
    column = column * 26 + static_cast<std::size_t>(reference[i] - 'A' + 1);
    if (column > (1 << 20)) return std::nullopt;
  }
  unsigned line = 0;
  const char* end = reference.data() + reference.size();
  const auto result = std::from_chars(reference.data() + i, end, line);
  if (column == 0 || result.ec != std::errc() || result.ptr != end || line == 0)
    return std::nullopt;
  return TablePlace{line, column - 1};
}

class SheetRows : public TableRows {
 public:
  explicit SheetRows(const WorkbookSheet& sheet) : sheet_(sheet) {}

  bool next(TableRow& row) override {
    if (next_ == sheet_.content.size()) return false;
    const auto& from = sheet_.content[next_++];
    row.line = from.line;
    row.fault = from.fault;
    row.fault_column = from.fault_column;
    row.cells.clear();
    for (const auto& cell : from.cells) {
      if (row.cells.size() <= cell.column) row.cells.resize(cell.column + 1);
      row.cells[cell.column] = *cell.text;
    }
    return true;
  }

 private:
  const WorkbookSheet& sheet_;
  std::size_t next_ = 0;
};

/// Reads the parts of one workbook.
class WorkbookReader {
 public:
  WorkbookReader(const std::string& bytes, const std::string& file)
      : archive_(bytes, file), file_(file) {}

  WorkbookSheets read() {
    const auto workbook = workbook_part();
    const auto content = archive_.content_of(workbook);
    const XmlDocument document(content, file_);
    from_1904_ = document.root().child("workbookPr").attribute("date1904").as_bool();
    const auto parts = relations_of(workbook);
    read_shared_texts(parts);
    read_styles(parts);
    for (const auto& sheet : document.root().child("sheets").children()) {
      if (sheet.type() == pugi::node_element) read_sheet(document, sheet, parts);
    }
    return std::move(sheets_);
  }

 private:
  struct Part {
    std::string type;  ///< the last word of what it is
    std::string place;
  };

  using Parts = std::map<std::string, Part>;  ///< by identifier

  std::string workbook_part() const {
    for (const auto& [id, part] : relations_of("")) {
      if (part.type == "officeDocument") return part.place;
    }
    return "xl/workbook.xml";
  }

  /// What a part of the archive refers to; references to other files are left alone.
  Parts relations_of(const std::string& place) const {
    const auto folder = folder_of(place);
    const auto list = fmt::format("{}_rels/{}.rels", folder, place.substr(folder.size()));
    Parts parts;
    if (!archive_.has(list)) return parts;
    const auto content = archive_.content_of(list);
    const XmlDocument document(content, file_);
    for (const auto& relation : document.root().children()) {
      if (std::string(relation.attribute("TargetMode").value()) == "External") continue;
      const std::string type = relation.attribute("Type").value();
      const auto slash = type.rfind('/');
      parts[relation.attribute("Id").value()] = {
          slash == std::string::npos ? type : type.substr(slash + 1),
          place_of(relation.attribute("Target").value(), folder)};
    }
    return parts;
  }

  static const Part* part_of_type(const Parts& parts, const std::string& type) {
    const auto found = std::find_if(parts.begin(), parts.end(),
                                    [&](const auto& entry) { return entry.second.type == type; });
    return found != parts.end() ? &found->second : nullptr;
  }

  void read_shared_texts(const Parts& parts) {
    const auto* part = part_of_type(parts, "sharedStrings");
    if (part == nullptr) return;
    const auto content = archive_.content_of(part->place);
    const XmlDocument document(content, file_);
    for (const auto& item : document.root().children("si")) {
      shared_texts_.push_back(kept(cell_of_text(text_in(document, item), plain_style)));
    }
  }

  void read_styles(const Parts& parts) {
    const auto* part = part_of_type(parts, "styles");
    if (part == nullptr) return;
    const auto content = archive_.content_of(part->place);
    date_styles_ = date_styles(XmlDocument(content, file_));
  }

  static std::shared_ptr<const std::string> kept(std::string text) {
    return std::make_shared<const std::string>(std::move(text));
  }

  /// A text may be of several runs, each in a font of its own.
  static std::string text_in(const XmlDocument& document, const xml_node& item) {
    std::string text;
    for (const auto& child : item.children()) {
      const std::string name = child.name();
      if (name == "t") text += document.whole_text_of(child);
      if (name == "r") text += document.whole_text_of(child.child("t"));
    }
    return without_cell_escapes(text);
  }

  void leave_out(const std::string& name, const std::string& reason) {
    sheets_.left_out.push_back(
        {file_, 0, "", fmt::format("the sheet {} {}, and is left out", quoted(name), reason)});
  }

  void read_sheet(const XmlDocument& document, const xml_node& sheet, const Parts& parts) {
    const auto name = document.text_of(sheet, sheet.attribute("name"));
    if (name == lists_sheet) return;
    const std::string state = sheet.attribute("state").value();
    if (!state.empty() && state != "visible") return leave_out(name, "is hidden");
    const auto part = parts.find(sheet.attribute("r:id").value());
    if (part == parts.end() || part->second.type != "worksheet") {
      return leave_out(name, "is no table");
    }
    const auto content = archive_.content_of(part->second.place);
    const XmlDocument cells(content, file_, XmlDocument::most_parts_of_small,
                            fmt::format("the sheet {}", quoted(name)));
    auto table = std::make_shared<WorkbookSheet>(file_, name);
    read_cells(cells, *table);
    if (table->content.empty()) return;
    if (!is_own(table->content.front())) {
      return leave_out(name, "has none of the headings of a table of this program");
    }
    if (cells.root().child("mergeCells").child("mergeCell")) {
      return leave_out(name, "has merged cells");
    }
    sheets_.tables.push_back(std::move(table));
  }

  /// Sheets of others may stand beside those of this program.
  static bool is_own(const SheetRow& headings) {
    std::set<std::string> names;
    for (const auto& cell : headings.cells) {
      const auto heading = trimmed(*cell.text);
      names.insert(heading.substr(0, heading.find(" [")));
    }
    const auto has = [&](const char* name) { return names.count(name) > 0; };
    return has("name") || has("id") || has("code") || has(kind_heading) ||
           has(fingerprint_heading) || (has("composition") && has("position"));
  }

  void read_cells(const XmlDocument& document, WorkbookSheet& sheet) {
    unsigned line = 0;
    for (const auto& node : document.root().child("sheetData").children("row")) {
      const unsigned given = node.attribute("r").as_uint();
      if (given != 0 && given <= line) fail_in(sheet, {given, {}}, "the rows are not in order");
      line = given != 0 ? given : line + 1;
      SheetRow row;
      row.line = line;
      read_row(document, node, sheet, row);
      if (!row.cells.empty() || !row.fault.empty()) sheet.content.push_back(std::move(row));
    }
  }

  void read_row(const XmlDocument& document, const xml_node& node, const WorkbookSheet& sheet,
                SheetRow& row) {
    std::size_t next = 0;
    for (const auto& cell : node.children("c")) {
      const std::string reference = cell.attribute("r").value();
      const auto place = place_in(reference);
      if (!reference.empty() && !place) {
        fail_in(sheet, {row.line, {}}, fmt::format("there is no cell {}", quoted(reference)));
      }
      const auto column = place ? *place->column : next;
      if (column < next) fail_in(sheet, {row.line, column}, "the cells are not in order");
      next = column + 1;
      const auto text = read_cell(document, cell, row, column);
      if (!text || text->empty()) continue;
      if (column >= TableScanner::most_cells) {
        fail_in(sheet, {row.line, column},
                fmt::format("the row has more than {} cells", TableScanner::most_cells));
      }
      count_bytes(*text);
      row.cells.push_back({column, text});
    }
  }

  void count_bytes(const std::string& text) {
    constexpr std::size_t least = 32;
    bytes_ += text.size() + least;
    if (bytes_ <= most_bytes_of_cells) return;
    fail_at(file_, 0, fmt::format("the cells take more than {} MiB", most_bytes_of_cells >> 20));
  }

  /// The text of a cell; null for none, or where the row has got a fault.
  std::shared_ptr<const std::string> read_cell(const XmlDocument& document, const xml_node& cell,
                                               SheetRow& row, std::size_t column) {
    const std::string type = cell.attribute("t").value();
    const auto fault = [&](const std::string& sentence) -> std::shared_ptr<const std::string> {
      if (row.fault.empty()) row.fault_column = column;
      if (row.fault.empty()) row.fault = sentence;
      return nullptr;
    };
    if (type == "inlineStr") {
      return kept(cell_of_text(text_in(document, cell.child("is")), plain_style));
    }
    const auto text = document.whole_text_of(cell.child("v"));
    const bool is_formula_text = type == "str" && cell.child("v");
    if (trimmed(text).empty() && !is_formula_text) {
      return cell.child("f") ? fault("the formula has no stored value") : nullptr;
    }
    if (type == "s") return shared_text(text, fault);
    if (type == "e") return fault(fmt::format("the cell has the error {}", quoted(text)));
    if (type == "b") return kept(trimmed(text) == "1" ? "yes" : "no");
    if (type == "str" || type == "d") {
      return kept(cell_of_text(without_cell_escapes(text), plain_style));
    }
    const auto number = number_in(text);
    if (!number) return fault(fmt::format("{} is not a number", quoted(text)));
    const auto style = cell.attribute("s").as_uint();
    const bool is_date = style < date_styles_.size() && date_styles_[style];
    return kept(is_date ? date_text(*number, from_1904_) : exact_number(*number));
  }

  template <class Fault>
  std::shared_ptr<const std::string> shared_text(const std::string& index,
                                                 const Fault& fault) const {
    const auto number = number_in(index);
    const bool known =
        number && *number >= 0 && *number < static_cast<double>(shared_texts_.size());
    if (!known) return fault(fmt::format("there is no text {}", quoted(index)));
    return shared_texts_[static_cast<std::size_t>(*number)];
  }

  ZipArchive archive_;
  const std::string& file_;
  bool from_1904_ = false;
  std::vector<std::shared_ptr<const std::string>> shared_texts_;
  std::vector<bool> date_styles_;
  std::size_t bytes_ = 0;
  WorkbookSheets sheets_;
};

}  // namespace

std::unique_ptr<TableRows> WorkbookSheet::rows() const {
  return std::make_unique<SheetRows>(*this);
}

SourceProblem WorkbookSheet::problem(const TablePlace& place, const std::string& object,
                                     const std::string& sentence) const {
  if (place.line == 0) {
    return {file_, 0, object, fmt::format("sheet {}: {}", quoted(name_), sentence)};
  }
  const auto address = cell_address(name_, place.column.value_or(0), place.line);
  return {file_, 0, object, fmt::format("{}: {}", address, sentence)};
}

WorkbookSheets read_workbook(const std::string& bytes, const std::string& file) {
  return WorkbookReader(bytes, file).read();
}

}  // namespace veldra::kit
