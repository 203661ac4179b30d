// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/lost_values.hpp"
#include "kit/exchange/objects_by_name.hpp"
#include "kit/exchange/row_fingerprint.hpp"
#include "kit/exchange/table_columns.hpp"
#include "kit/exchange/workbook_file.hpp"
#include "kit/exchange/workbook_names.hpp"
#include "kit/exchange/writers.hpp"
#include "kit/exchange/written_identity.hpp"
#include "kit/text/quoted.hpp"

#include <veldra/kit/kinds.hpp>
#include <veldra/kit/text.hpp>

#include <fmt/format.h>

#include <algorithm>
#include <map>

namespace veldra::kit {

namespace {

constexpr std::size_t most_columns = 10000;
constexpr unsigned rows_for_more = 1000;  ///< behind those that are there

/// What stands in a cell.
struct WrittenCell {
  std::string text;
  bool as_number = false;
};

/// Whether a text is a number that comes back from a cell as the same text. Cells are written with
/// 16 digits.
bool is_cell_number(const std::string& text) {
  const auto number = number_in(text);
  return number && exact_number(*number) == text &&
         number_in(fmt::format("{:.16g}", *number)) == number;
}

/// A custom property with a unit has numbers.
bool has_numbers(const FieldDescription& field) {
  switch (field.kind) {
    case Value::Kind::WholeNumber:
    case Value::Kind::Number:
    case Value::Kind::Numbers:
      return true;
    default:
      return field.origin == Origin::Custom && !field.key.empty() && field.key.back() == ']';
  }
}

bool has_controls(const std::string& text) { return with_cell_escapes(text) != text; }

bool is_too_long(const std::string& text) {
  return utf16_size(with_cell_escapes(text)) > longest_cell_text;
}

/// A column of a sheet.
struct SheetColumn {
  std::string heading;
  bool numbers = false;
  bool hidden = false;
  std::string list{};   ///< the range of what its cells may be; empty for anything
  bool strict = false;  ///< nothing else may stand there
};

/// Writes the cells of one sheet.
class SheetWriter {
 public:
  SheetWriter(WorkbookFile& file, const std::string& name, std::vector<SheetColumn> columns)
      : file_(file), sheet_(file.add_sheet(name)), columns_(std::move(columns)) {
    if (columns_.size() > most_columns) {
      throw Error(fmt::format("a sheet would have {} columns, of which it takes {}",
                              columns_.size(), most_columns));
    }
    for (std::size_t i = 0; i < columns_.size(); ++i) set_column(i);
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      write(i, {columns_[i].heading, false}, file.heading_format());
    }
    next_row();
  }

  void add_row(const std::vector<WrittenCell>& cells) {
    if (row_ == LXW_ROW_MAX) {
      throw Error(fmt::format("a sheet takes {} rows, and there are more", LXW_ROW_MAX));
    }
    for (std::size_t i = 0; i < cells.size(); ++i) write(i, cells[i], nullptr);
    next_row();
  }

  /// Freezes the headings and the columns up to one, and adds filters and drop-downs.
  void finish(std::size_t frozen) {
    worksheet_freeze_panes(sheet_, 1, static_cast<lxw_col_t>(frozen));
    worksheet_set_landscape(sheet_);
    require_written(worksheet_repeat_rows(sheet_, 0, 0));
    const auto last = static_cast<lxw_col_t>(columns_.size() - 1);
    require_written(worksheet_autofilter(sheet_, 0, 0, std::max<lxw_row_t>(row_ - 1, 1), last));
    for (std::size_t i = 0; i < columns_.size(); ++i) add_choices(i);
  }

  void hide() { worksheet_hide(sheet_); }

 private:
  void next_row() {
    if (has_cells_) file_.count_row(*sheet_);
    has_cells_ = false;
    ++row_;
  }

  static bool is_name(const std::string& heading) {
    return heading == "name" || heading == "composition" || heading == "material";
  }

  void set_column(std::size_t index) {
    const auto& column = columns_[index];
    lxw_row_col_options options{};
    options.hidden = column.hidden ? LXW_TRUE : LXW_FALSE;
    const auto place = static_cast<lxw_col_t>(index);
    constexpr double least = 10;
    constexpr double most = 40;
    const double least_of_names = is_name(column.heading) ? 30 : least;
    const auto width =
        std::clamp(static_cast<double>(column.heading.size()) + 3, least_of_names, most);
    require_written(worksheet_set_column_opt(
        sheet_, place, place, width, column.numbers ? nullptr : file_.text_format(), &options));
  }

  void write(std::size_t index, const WrittenCell& cell, lxw_format* format) {
    if (cell.text.empty()) return;
    has_cells_ = true;
    const auto place = static_cast<lxw_col_t>(index);
    if (cell.as_number) {
      return require_written(
          worksheet_write_number(sheet_, row_, place, *number_in(cell.text), format));
    }
    auto* shown = format != nullptr || columns_[index].numbers ? format : file_.text_format();
    require_written(
        worksheet_write_string(sheet_, row_, place, with_cell_escapes(cell.text).c_str(), shown));
  }

  void add_choices(std::size_t index) {
    const auto& column = columns_[index];
    if (column.list.empty()) return;
    lxw_data_validation choices{};
    choices.validate = LXW_VALIDATION_TYPE_LIST_FORMULA;
    choices.value_formula = columns_[index].list.data();
    choices.error_type =
        column.strict ? LXW_VALIDATION_ERROR_TYPE_STOP : LXW_VALIDATION_ERROR_TYPE_INFORMATION;
    const auto place = static_cast<lxw_col_t>(index);
    const auto last = std::min<lxw_row_t>(row_ + rows_for_more, LXW_ROW_MAX - 1);
    require_written(worksheet_data_validation_range(sheet_, 1, place, last, place, &choices));
  }

  WorkbookFile& file_;
  lxw_worksheet* sheet_;
  std::vector<SheetColumn> columns_;
  lxw_row_t row_ = 0;
  bool has_cells_ = false;  ///< the row that is being written
};

/// The lists of what cells may be, each in a column of the sheet that nobody sees.
class ChoiceLists {
 public:
  /// The range of a list; empty where there is nothing to choose from.
  std::string range_of(const std::vector<std::string>& choices) {
    const bool fits = !choices.empty() && choices.size() < LXW_ROW_MAX &&
                      std::none_of(choices.begin(), choices.end(), is_too_long);
    if (!fits) return {};
    const auto known = std::find(lists_.begin(), lists_.end(), choices);
    const auto place = static_cast<std::size_t>(known - lists_.begin());
    if (known == lists_.end()) lists_.push_back(choices);
    const auto letters = column_letters(place);
    return fmt::format("='{}'!${}$2:${}${}", lists_sheet, letters, letters, choices.size() + 1);
  }

  void write(WorkbookFile& file) const {
    if (lists_.empty()) return;
    std::vector<SheetColumn> columns;
    std::size_t longest = 0;
    for (const auto& list : lists_) {
      columns.push_back({fmt::format("list {}", columns.size() + 1)});
      longest = std::max(longest, list.size());
    }
    SheetWriter sheet(file, lists_sheet, columns);
    for (std::size_t row = 0; row < longest; ++row) {
      std::vector<WrittenCell> cells;
      for (const auto& list : lists_) cells.push_back({row < list.size() ? list[row] : ""});
      sheet.add_row(cells);
    }
    sheet.hide();
  }

 private:
  std::vector<std::vector<std::string>> lists_;
};

/// Writes one library.
class WorkbookWriter {
 public:
  WorkbookWriter(const Library& library, const WriteRules& rules)
      : library_(library), rules_(rules), identity_(library, rules) {}

  WriteReport write(const TextSink& sink) {
    write_objects<Material>("materials");
    write_objects<Composition>("compositions");
    write_layers();
    lists_.write(file_);
    file_.finish(sink);
    report_.not_written = lost_.fields();
    return std::move(report_);
  }

 private:
  template <class T>
  void write_objects(const char* name) {
    const Fields<T> fields(library_);
    const auto columns = table_columns(fields, library_.unit(), identity_.guid());
    SheetWriter sheet(file_, name, sheet_columns(columns));
    const auto kind = singular_of(ObjectTraits<T>::type);
    for_each_by_name<T>(library_, [&](const T& object, std::size_t) {
      const auto texts = cells_of(object, columns);
      const bool taken = can_be_written(kind, object.name().utf8(), texts);
      if (taken) {
        sheet.add_row(row_of(object, columns, texts));
        count_assets(fields, object, lost_);
        ++report_.written[kind];
      }
      if (rules_.progress) rules_.progress();
    });
    constexpr std::size_t frozen = 3;  // id, fingerprint and name
    sheet.finish(frozen);
  }

  template <class T>
  std::vector<SheetColumn> sheet_columns(const std::vector<TableColumn<T>>& columns) {
    std::vector<SheetColumn> result;
    for (const auto& column : columns) {
      const auto& field = *column.field;
      if (field.origin == Origin::Derived) {
        result.push_back({column.heading, true, true});
        result.push_back({fingerprint_heading_of(identity_.guid()), false, true});
        continue;
      }
      SheetColumn sheet{column.heading, has_numbers(field)};
      take_choices(field, sheet);
      result.push_back(std::move(sheet));
    }
    return result;
  }

  void take_choices(const FieldDescription& field, SheetColumn& column) {
    auto choices = field.choices;
    if (field.kind == Value::Kind::YesNo) choices = {"no", "yes"};
    column.strict = !choices.empty();
    if (choices.empty() && field.names && field.kind == Value::Kind::Text) choices = field.names();
    column.list = lists_.range_of(choices);
  }

  template <class T>
  std::vector<WrittenCell> row_of(const T& object, const std::vector<TableColumn<T>>& columns,
                                  const NamedCells& texts) const {
    std::vector<WrittenCell> cells;
    for (const auto& column : columns) {
      const auto& field = *column.field;
      if (field.origin == Origin::Derived) {
        cells.push_back({fmt::format("{}", identity_.id_of(object)), true});
        cells.push_back({fingerprint_of_row(texts)});
        continue;
      }
      const auto& text = texts.at(column.heading);
      cells.push_back({text, has_numbers(field) && is_cell_number(text)});
    }
    return cells;
  }

  /// A row without a cell would say that the field is empty, and so an object that a cell cannot
  /// hold is left out as a whole.
  bool can_be_written(const std::string& kind, const std::string& name, const NamedCells& texts) {
    for (const auto& [heading, text] : texts) {
      if (is_too_long(text)) {
        report_.problems.push_back(
            fmt::format("{} {} is not written: its {} has {} characters, of which a cell takes {}",
                        kind, quoted(name), quoted(heading), utf16_size(text), longest_cell_text));
        return false;
      }
      if (has_controls(text)) {
        report_.problems.push_back(
            fmt::format("{} {}: {} has control characters, which stand in the cell as escapes",
                        kind, quoted(name), quoted(heading)));
      }
    }
    return true;
  }

  void write_layers() {
    material_names_ = lists_.range_of(names_of_materials());
    SheetNames names;
    const bool apart = library_.count<Composition>() <= most_layer_sheets;
    std::unique_ptr<SheetWriter> common;
    if (!apart) common = std::make_unique<SheetWriter>(file_, "layers", columns_of_layers());
    for_each_by_name<Composition>(library_, [&](const Composition& composition, std::size_t) {
      if (composition.layers().empty()) return;
      const auto cells = cells_of_layers(composition, library_.unit());
      const auto name = composition.name().utf8();
      if (!can_be_written("layers of composition", name, cells) || is_too_long(name)) return;
      if (!apart) return write_layers(composition, fingerprint_of_row(cells), *common);
      SheetWriter sheet(file_, names.take(name), columns_of_layers());
      write_layers(composition, fingerprint_of_row(cells), sheet);
      sheet.finish(frozen_of_layers);
    });
    if (common) common->finish(frozen_of_layers);
  }

  static constexpr std::size_t frozen_of_layers = 3;  ///< fingerprint, composition and position

  std::vector<std::string> names_of_materials() const {
    std::vector<std::string> names;
    for_each_by_name<Material>(library_, [&](const Material& material, std::size_t) {
      names.push_back(material.name().utf8());
    });
    return names;
  }

  std::vector<SheetColumn> columns_of_layers() const {
    const auto headings = layer_headings(library_.unit());
    std::vector<SheetColumn> columns{{fingerprint_heading_of(identity_.guid()), false, true}};
    for (std::size_t i = 1; i < headings.size(); ++i) {
      const bool names = headings[i] == "composition" || headings[i] == "material";
      columns.push_back({headings[i], !names});
      if (headings[i] == "material") columns.back().list = material_names_;
    }
    return columns;
  }

  void write_layers(const Composition& composition, const std::string& fingerprint,
                    SheetWriter& sheet) {
    for (std::size_t i = 0; i < composition.layers().size(); ++i) {
      const auto texts = layer_texts(composition, i);
      std::vector<WrittenCell> cells{{fingerprint}};
      for (std::size_t j = 1; j < texts.size(); ++j) {
        const bool names = j == 1 || j == first_layer_cell;
        cells.push_back({texts[j], !names && is_cell_number(texts[j])});
      }
      sheet.add_row(cells);
      ++report_.written[layer_kind];
    }
  }

  const Library& library_;
  const WriteRules& rules_;
  WrittenIdentity identity_;
  WorkbookFile file_;
  ChoiceLists lists_;
  std::string material_names_;  ///< the range of their names
  FieldCounts lost_;
  WriteReport report_;
};

}  // namespace

WriteReport write_workbook(const Library& library, const TextSink& sink, const WriteRules& rules) {
  return WorkbookWriter(library, rules).write(sink);
}

}  // namespace veldra::kit
