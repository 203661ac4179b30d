// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/table_reader.hpp"

#include "kit/exchange/problem.hpp"
#include "kit/exchange/row_fingerprint.hpp"
#include "kit/exchange/table_columns.hpp"
#include "kit/fields/tables.hpp"
#include "kit/text/quoted.hpp"

#include <veldra/exceptions.hpp>
#include <veldra/kit/fields.hpp>
#include <veldra/kit/kinds.hpp>
#include <veldra/kit/numbers.hpp>
#include <veldra/kit/text.hpp>

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <optional>
#include <set>
#include <tuple>
#include <utility>

namespace veldra::kit {

namespace {

using Row = TableRow;

constexpr std::size_t rows_at_once = 512;
constexpr std::size_t cells_at_once = 1 << 20;

[[noreturn]] void fail_in_heading(const TableSource& table, const std::string& heading,
                                  const std::string& sentence) {
  const auto found = std::find(table.headings.begin(), table.headings.end(), heading);
  const auto place = static_cast<std::size_t>(found - table.headings.begin());
  fail_in(*table.sheet, {table.heading_line, place}, sentence);
}

[[noreturn]] void fail_heading(const TableSource& table, const std::string& heading,
                               const std::vector<std::string>& headings) {
  fail_in_heading(
      table, heading,
      absence_of("column", heading, {}) + choice_of(heading, headings, headings.size()));
}

bool begins_with(const std::string& text, const std::string& beginning) {
  return text.compare(0, beginning.size(), beginning) == 0;
}

/// What stands in brackets behind a heading; empty for nothing.
std::pair<std::string, std::string> without_unit(const std::string& heading) {
  const auto open = heading.rfind(" [");
  if (open == std::string::npos || heading.back() != ']') return {heading, ""};
  return {trimmed(heading.substr(0, open)), heading.substr(open + 2, heading.size() - open - 3)};
}

bool is_number_only(const std::string& text) { return number_in(text).has_value(); }

/// The text of a number, or of several, with a unit behind each that has none.
std::string with_unit(const std::string& text, const std::string& unit) {
  std::string result;
  std::string part;
  for (const char character : text + ";") {
    if (character != ';') {
      part += character;
      continue;
    }
    if (!result.empty()) result += ";";
    result += is_number_only(part) ? trimmed(part) + " " + unit : part;
    part.clear();
  }
  return result;
}

/// Calls `work` with the rows of a table, so many at a time.
template <class Work>
void for_each_part(const TableSource& table, Work work) {
  const auto reading = table.sheet->rows();
  Row row;
  reading->next(row);  // the headings
  std::vector<Row> rows;
  std::size_t cells = 0;
  while (reading->next(row)) {
    rows.push_back(row);
    cells += row.cells.size();
    if (rows.size() < rows_at_once && cells < cells_at_once) continue;
    work(rows);
    rows.clear();
    cells = 0;
  }
  if (!rows.empty()) work(rows);
}

const std::string& cell_at(const Row& row, std::size_t column) {
  static const std::string nothing;
  return column < row.cells.size() ? row.cells[column] : nothing;
}

/// The place of a column; nothing for none.
std::optional<std::size_t> column_of(const TableSource& table, const std::string& heading) {
  for (std::size_t i = 0; i < table.headings.size(); ++i) {
    if (without_unit(table.headings[i]).first == heading) return i;
  }
  return std::nullopt;
}

/// The place of the column of a field, or of a custom property of that name, which may be that of
/// the quantity that it holds; nothing for none.
std::optional<std::size_t> column_of_field(const TableSource& table, const std::string& key,
                                           const std::string& kind) {
  for (const auto& qualifier : {std::string(), kind + ":", std::string("all:")}) {
    const auto heading = property_prefix + qualifier + key;
    const auto found = std::find(table.headings.begin(), table.headings.end(), heading);
    if (found != table.headings.end()) {
      return static_cast<std::size_t>(found - table.headings.begin());
    }
  }
  const auto quantity = quantity_held_by(key);
  return column_of(table, quantity.empty() ? key : quantity);
}

/// A column at the beginning of a sentence, where the place of a problem does not tell it.
std::string called_column(const TableSource& table, const TablePlace& place) {
  if (!place.column || table.sheet->is_workbook()) return {};
  return fmt::format("column {}: ", quoted(table.headings[*place.column]));
}

/// Programs that edit workbooks keep so many digits of a number.
bool is_rounded(const std::string& cell, const std::string& stored) {
  const auto number = number_in(cell);
  const auto other = number_in(stored);
  return number && other && fmt::format("{:.15g}", *number) == fmt::format("{:.15g}", *other);
}

/// The place of the column of fingerprints. Those of another library tell nothing.
std::optional<std::size_t> fingerprint_column(const TableSource& table, const Library& library) {
  const auto found = std::find(table.headings.begin(), table.headings.end(),
                               fingerprint_heading_of(library.guid().utf8()));
  if (!table.sheet->is_workbook() || found == table.headings.end()) return std::nullopt;
  return static_cast<std::size_t>(found - table.headings.begin());
}

bool is_fingerprint(const TableSource& table, const std::string& heading) {
  return table.sheet->is_workbook() && without_unit(heading).first == fingerprint_heading;
}

template <class T>
String code_of(const T&) {
  return {};
}

template <>
String code_of(const Material& material) {
  return material.has_code() ? material.code() : String();
}

/// Finds the stored objects of a kind by their names and codes.
template <class T>
class StoredIds {
 public:
  explicit StoredIds(const Library& library) {
    library.for_each<T>([&](const std::shared_ptr<T>& object) {
      ids_.insert(object->id());
      by_name_.emplace(object->name(), object->id());
      const auto code = code_of(*object);
      if (!code.empty()) by_code_.emplace(code, object->id());
      return true;
    });
  }

  /// 0 for none.
  unsigned by_id(const std::string& text) const {
    const auto number = number_in(text);
    if (!number || *number < 1 || *number > 4294967295.0) return 0;
    const auto id = static_cast<unsigned>(*number);
    return static_cast<double>(id) == *number && ids_.count(id) > 0 ? id : 0;
  }
  unsigned by_name(const String& name) const { return found(by_name_, name); }
  unsigned by_code(const String& code) const { return found(by_code_, code); }

 private:
  static unsigned found(const std::map<String, unsigned>& ids, const String& text) {
    const auto entry = ids.find(text);
    return entry != ids.end() ? entry->second : 0;
  }

  std::set<unsigned> ids_;
  std::map<String, unsigned> by_name_;
  std::map<String, unsigned> by_code_;
};

/// Everything that tables say, put into a library in memory.
class TableSet {
 public:
  TableSet(std::vector<TableSource>& tables, std::shared_ptr<const Library> library,
           const Progress& progress)
      : tables_(tables),
        library_(std::move(library)),
        progress_(progress),
        states_(Library::create(":memory:", library_->unit(), "")),
        mapping_(states_.get()) {
    states_->purge<MaterialType>();
  }

  /// Materials come before the layers that name them, and layers before the indices of layers.
  void read() {
    for (auto& table : of(TableKind::Materials)) Objects<Material>(*this, *table).read();
    for (auto& table : of(TableKind::Compositions)) Objects<Composition>(*this, *table).read();
    for (auto& table : of(TableKind::Layers)) read_layers(*table);
    for (auto& table : of(TableKind::Compositions)) {
      Objects<Composition>(*this, *table).read_indices();
    }
    for (const auto& [key, place] : changed_) {
      if (key.type == ObjectType::Material) tell_doubts<Material>(key.id, place);
      if (key.type == ObjectType::Composition) tell_doubts<Composition>(key.id, place);
    }
  }

  void give(Sources& sources) {
    sources.library = states_;
    sources.states_of = std::move(states_of_);
    sources.origins = std::move(origins_);
  }

 private:
  /// Where a table says something of an object.
  struct Place {
    TableSource* table;
    unsigned line;
    std::vector<unsigned> layers;  ///< the lines of its layers, of a table of these
  };

  /// The line and column of a number. Rows of layers have no other numbers than theirs.
  template <class T>
  static TablePlace place_of(const NumberFault& fault, const Place& place) {
    const bool is_of_layers = !place.layers.empty();
    if (is_of_layers != (fault.layer > 0)) return {place.line, {}};
    return {is_of_layers ? place.layers.at(fault.layer - 1) : place.line,
            column_of_field(*place.table, fault.field, singular_of(ObjectTraits<T>::type))};
  }

  /// Numbers that nobody changed may be as they are.
  template <class T>
  void tell_doubts(unsigned id, const Place& place) {
    const auto object = states_->get<T>(id);
    const auto name = object->name().utf8();
    for (const auto& fault : number_faults(*object)) {
      const auto cell = place_of<T>(fault, place);
      add_problem(*place.table, cell, name,
                  fmt::format("{}{} {}: {}", called_column(*place.table, cell),
                              singular_of(ObjectTraits<T>::type), quoted(name), fault.sentence));
      place.table->report->problems.back().doubt = true;
    }
  }

  template <class T>
  struct ReadColumn {
    std::size_t place;
    const Field<T>* field = nullptr;
    std::shared_ptr<const CustomProperty> property;  ///< one that the library lacks
    std::string unit;                                ///< where it is another than the field's own
  };

  std::vector<TableSource*> of(TableKind kind) {
    std::vector<TableSource*> result;
    for (auto& table : tables_) {
      if (table.kind == kind) result.push_back(&table);
    }
    return result;
  }

  static void add_problem(const TableSource& table, const TablePlace& place,
                          const std::string& object, const std::string& sentence) {
    table.report->problems.push_back(table.sheet->problem(place, object, sentence));
  }

  template <class T>
  StoredIds<T>& stored() {
    auto& ids = std::get<std::unique_ptr<StoredIds<T>>>(stored_);
    if (!ids) ids = std::make_unique<StoredIds<T>>(*library_);
    return *ids;
  }

  /// The objects of one table.
  template <class T>
  class Objects {
   public:
    Objects(TableSet& set, TableSource& table)
        : set_(set),
          table_(table),
          fields_(*set.library_),
          built_in_(set.library_->unit()),
          kind_(singular_of(ObjectTraits<T>::type)) {
      find_columns();
    }

    void read() {
      if (fingerprint_) find_untouched();
      for_each_part(table_, [this](const std::vector<Row>& rows) { read_part(rows); });
    }

    /// What can only be read when the layers are there.
    void read_indices() {
      if constexpr (std::is_same_v<T, Composition>) {
        for_each_part(table_, [this](const std::vector<Row>& rows) {
          for (const Row& row : rows) read_indices(row);
        });
      }
    }

   private:
    static bool is_index(const Field<T>& field) {
      return field.key == "first_core_layer" || field.key == "last_core_layer" ||
             field.key == "structural_layer";
    }

    void find_columns() {
      known_ = table_columns(fields_, set_.library_->unit(), set_.library_->guid().utf8());
      fingerprint_ = fingerprint_column(table_, *set_.library_);
      for (std::size_t i = 0; i < table_.headings.size(); ++i) {
        const auto& heading = table_.headings[i];
        if (heading == kind_heading || is_fingerprint(table_, heading)) continue;
        if (without_unit(heading).first == "id") {
          take_id(i, heading);
        } else {
          take_column(i, heading, known_);
        }
      }
      // The core must be able to shrink before it moves.
      std::stable_sort(columns_.begin(), columns_.end(), [](const auto& one, const auto& other) {
        const auto is_last = [](const ReadColumn<T>& column) {
          return column.field != nullptr && column.field->key == "last_core_layer";
        };
        return is_last(one) && !is_last(other);
      });
    }

    /// Ids of another library mean other objects.
    void take_id(std::size_t place, const std::string& heading) {
      const auto library = without_unit(heading).second;
      if (library.empty() || heading == id_heading(set_.library_->guid().utf8())) id_ = place;
    }

    void take_column(std::size_t place, const std::string& heading,
                     const std::vector<TableColumn<T>>& known) {
      ReadColumn<T> column;
      column.place = place;
      for (const auto& each : known) {
        if (each.heading == heading) column.field = each.field;
      }
      if (column.field == nullptr && begins_with(heading, property_prefix)) {
        take_property(heading.substr(std::string(property_prefix).size()), column);
      } else if (column.field == nullptr) {
        take_field(heading, known, column);
      }
      if (column.field != nullptr && column.field->origin != Origin::Custom) {
        column.field = built_in_.find(column.field->name());
      }
      if (is_field(column, "name")) name_ = place;
      if (is_field(column, "code")) code_ = place;
      require_once(heading, column);
      columns_.push_back(std::move(column));
    }

    static bool is_field(const ReadColumn<T>& column, const char* key) {
      return column.field != nullptr && column.field->origin == Origin::Stored &&
             column.field->key == key;
    }

    void require_once(const std::string& heading, const ReadColumn<T>& column) {
      if (column.field == nullptr || seen_.insert(column.field).second) return;
      fail_in_heading(table_, heading,
                      fmt::format("the column {} means a field that another column means, too",
                                  quoted(heading)));
    }

    void take_property(const std::string& rest, ReadColumn<T>& column) {
      auto name = rest;
      auto kind = ObjectTraits<T>::type;
      for (const auto& [word, meant] : {std::pair<std::string, ObjectType>(kind_ + ":", kind),
                                        std::pair<std::string, ObjectType>("all:", ObjectType{})}) {
        if (!begins_with(rest, word) || rest.size() == word.size()) continue;
        kind = meant;
        name = rest.substr(word.size());
      }
      for (const char* group : {"custom_values.", "common_custom_values."}) {
        if (column.field == nullptr) column.field = fields_.find(group + rest);
        if (column.field != nullptr && column.field->name() != group + rest) column.field = nullptr;
      }
      if (column.field != nullptr) return;
      if (name.empty())
        fail_in_heading(table_, property_prefix + rest, "a custom property has no name");
      column.property = CustomProperty::create(library_text(name), kind);
    }

    void take_field(const std::string& heading, const std::vector<TableColumn<T>>& known,
                    ReadColumn<T>& column) {
      const auto [name, unit] = without_unit(heading);
      const auto* field = fields_.find(name);
      const bool fits = field != nullptr && field->writable() &&
                        (has_column(*field) || field->origin == Origin::Quantity);
      if (!fits) {
        std::vector<std::string> headings{kind_heading};
        for (const auto& each : known) headings.push_back(each.heading);
        fail_heading(table_, heading, headings);
      }
      column.field = field;
      if (unit.empty()) return;
      column.unit = unit;
      if (!unit_factor(unit, field->measure, set_.library_->unit())) {
        fail_in_heading(table_, heading,
                        fmt::format("the column {}: {} is no unit of {}", quoted(heading),
                                    quoted(unit), field->key));
      }
    }

    /// Rows that nobody changed are about their objects before all others are, so that a changed
    /// copy of one, which has the same id, is not taken for it wherever it stands.
    void find_untouched() {
      for_each_part(table_, [this](const std::vector<Row>& rows) {
        for (const Row& row : rows) {
          if (!is_untouched(row)) continue;
          untouched_.insert(row.line);
          const unsigned id = set_.stored<T>().by_id(text_at(row, id_));
          if (id != 0) set_.rows_.insert({ObjectTraits<T>::type, id});
        }
      });
    }

    void read_part(const std::vector<Row>& rows) {
      std::vector<unsigned> ids;
      ids.reserve(rows.size());
      for (const Row& row : rows) ids.push_back(id_of(row));
      std::vector<std::shared_ptr<T>> found;
      set_.library_->get(found, std::set<unsigned>(ids.begin(), ids.end()));
      std::map<unsigned, std::shared_ptr<T>> by_id;
      for (auto& object : found) by_id[object->id()] = std::move(object);
      for (std::size_t i = 0; i < rows.size(); ++i) {
        read_row(rows[i], ids[i] != 0 ? by_id[ids[i]] : nullptr);
        if (set_.progress_) set_.progress_();
      }
    }

    std::string text_at(const Row& row, const std::optional<std::size_t>& place) const {
      return place ? text_of_cell(cell_at(row, *place), table_.style) : std::string();
    }

    /// The stored object that a row is about; 0 for none.
    unsigned id_of(const Row& row) const {
      auto& stored = set_.stored<T>();
      unsigned id = stored.by_id(text_at(row, id_));
      const auto lookup = [&](const std::optional<std::size_t>& place, auto find) {
        const auto text = text_at(row, place);
        const bool usable = !text.empty() && is_utf8(text) && text.find('\0') == std::string::npos;
        if (id == 0 && usable) id = (stored.*find)(library_text(text));
      };
      lookup(code_, &StoredIds<T>::by_code);
      lookup(name_, &StoredIds<T>::by_name);
      return id;
    }

    std::string called(const Row& row, const std::shared_ptr<T>& object) const {
      const auto name = text_at(row, name_);
      if (!name.empty()) return name;
      return object && object->id() != 0 ? object->name().utf8() : std::string();
    }

    void tell(const Row& row, const std::string& name, const std::string& sentence) {
      const auto what = name.empty() ? "a " + kind_ : fmt::format("{} {}", kind_, quoted(name));
      add_problem(table_, {row.line, at_}, name, fmt::format("{}: {}", what, sentence));
    }

    void read_row(const Row& row, std::shared_ptr<T> object) {
      ++table_.report->read[kind_];
      at_.reset();
      if (untouched_.count(row.line) > 0) return;
      const auto name = called(row, object);
      const unsigned id = object ? object->id() : 0;
      bool changes = !object;
      try {
        require_row(row);
        require_there(row, object);
        const bool clashes = object && has_changed_since(row, *object);
        if (id != 0 && !set_.rows_.insert({ObjectTraits<T>::type, id}).second) {
          throw Error(another_row());
        }
        if (!object && name.empty()) throw Error("the name is missing");
        if (!object) object = T::create(library_text(name));
        for (const auto& column : columns_) {
          if (column.field != nullptr && is_index(*column.field)) continue;
          if (set_cell(*object, row, column)) changes = true;
        }
        at_.reset();
        if (clashes) tell_clash(row, *object, id);
        const unsigned state = set_.save(object, clashes ? 0 : id, table_, row.line);
        if (changes) set_.changed_[{ObjectTraits<T>::type, state}] = {&table_, row.line, {}};
      } catch (const Error& error) {
        return tell(row, name, error.what());
      } catch (const ObjectNotUnique& taken) {
        return tell(row, name, taken.text().empty() ? "its name is taken" : "its code is taken");
      }
    }

    /// Copies have what stands in hidden columns, too.
    std::string another_row() const {
      const std::string sentence = "another row is about the same object";
      return fingerprint_ ? sentence + "; a new one has neither id nor fingerprint" : sentence;
    }

    std::string fingerprint_in(const Row& row) const { return text_at(row, fingerprint_); }

    /// Whether a row of a workbook says what it said when it was written. What became of its object
    /// since is nobody's wish to undo.
    bool is_untouched(const Row& row) const {
      const auto fingerprint = fingerprint_in(row);
      if (fingerprint.empty() || !row.fault.empty()) return false;
      NamedCells cells;
      for (std::size_t i = 0; i < table_.headings.size(); ++i) {
        const auto& heading = table_.headings[i];
        const bool own = heading == kind_heading || without_unit(heading).first == "id" ||
                         is_fingerprint(table_, heading);
        if (!own) cells[heading] = text_at(row, i);
      }
      return fingerprint_of_row(cells) == fingerprint;
    }

    void require_there(const Row& row, const std::shared_ptr<T>& object) const {
      if (object || fingerprint_in(row).empty() || text_at(row, id_).empty()) return;
      throw Error("it has been removed from the library since the table was written");
    }

    bool has_changed_since(const Row& row, const T& object) const {
      const auto fingerprint = fingerprint_in(row);
      return !fingerprint.empty() && fingerprint_of_row(cells_of(object, known_)) != fingerprint;
    }

    /// Two people have changed an object. It comes in like one of another library, so that somebody
    /// decides; for that it must have the name of the stored one.
    void tell_clash(const Row& row, const T& object, unsigned id) {
      const std::string sentence = "it has changed in the library since the table was written";
      if (set_.stored<T>().by_name(object.name()) != id) {
        throw Error(sentence + ", and one of both has another name");
      }
      tell(row, object.name().utf8(), sentence);
      table_.report->problems.back().doubt = true;
    }

    void require_row(const Row& row) {
      if (!row.fault.empty()) at_ = row.fault_column;
      if (!row.fault.empty()) throw Error(row.fault);
      const auto kind = column_of(table_, kind_heading);
      if (kind && trimmed(cell_at(row, *kind)) != kind_) {
        throw Error(fmt::format("the row is of another kind, {}", quoted(cell_at(row, *kind))));
      }
      for (std::size_t i = table_.headings.size(); i < row.cells.size(); ++i) {
        if (!row.cells[i].empty()) throw Error("the row has more cells than the table has columns");
      }
      for (std::size_t i = 0; i < table_.headings.size(); ++i) {
        if (table_.headings[i].empty() && !cell_at(row, i).empty()) {
          throw Error("a cell stands in a column without a heading");
        }
      }
    }

    /// A cell that says what is there leaves it, whatever it is. Gives whether it says something
    /// else.
    bool set_cell(T& object, const Row& row, const ReadColumn<T>& column) {
      at_ = column.place;
      const auto& cell = cell_at(row, column.place);
      if (column.property) {
        if (cell.empty()) return false;
        object.custom_value(column.property, library_text(text_of_cell(cell, table_.style)));
        return true;
      }
      const auto& field = *column.field;
      const auto stored = cell_of(field, field.get(object), table_.style);
      const bool says_the_same =
          cell == stored || (table_.sheet->is_workbook() && is_rounded(cell, stored));
      if (column.unit.empty() && says_the_same) return false;
      auto text = text_of_cell(field, cell, table_.style);
      if (!column.unit.empty()) text = with_unit(text, column.unit);
      field.set(object, value_from_text(field, text, set_.library_->unit()));
      return true;
    }

    void read_indices(const Row& row) {
      const auto found = set_.composition_rows_.find({&table_, row.line});
      if (found == set_.composition_rows_.end()) return;
      const auto object = set_.states_->template get<T>(found->second);
      try {
        for (const auto& column : columns_) {
          if (column.field != nullptr && is_index(*column.field)) set_cell(*object, row, column);
        }
      } catch (const Error& error) {
        return tell(row, object->name().utf8(), error.what());
      }
      set_.states_->save(object);
    }

    TableSet& set_;
    TableSource& table_;
    Fields<T> fields_;    ///< with the custom properties of the library
    Fields<T> built_in_;  ///< that make what they name
    std::string kind_;
    std::vector<ReadColumn<T>> columns_;
    std::set<const void*> seen_;
    std::vector<TableColumn<T>> known_;
    std::optional<std::size_t> id_;
    std::optional<std::size_t> fingerprint_;
    std::set<unsigned> untouched_;   ///< the lines of rows that nobody changed
    std::optional<std::size_t> at_;  ///< the column of the cell that is being read
    std::optional<std::size_t> code_;
    std::optional<std::size_t> name_;
  };

  template <class T>
  unsigned save(const std::shared_ptr<T>& object, unsigned id, const TableSource& table,
                unsigned line) {
    const auto state = states_->save(object, mapping_);
    const ObjectKey key{ObjectTraits<T>::type, state->id()};
    if (id != 0) states_of_[key] = id;
    origins_[key] = {table.index, line, object->name().utf8(), false, false};
    if constexpr (std::is_same_v<T, Composition>) {
      composition_rows_[{&table, line}] = state->id();
    }
    return state->id();
  }

  /// A layer as its row has it.
  struct LayerRow {
    Row row;
    std::string material;
    std::optional<double> thickness;
    std::optional<int> function;
  };

  using LayersByPosition = std::map<unsigned, LayerRow>;

  void read_layers(TableSource& table) {
    for (const auto& heading : table.headings) {
      if (!is_fingerprint(table, heading)) require_layer_heading(table, heading);
    }
    std::map<std::string, LayersByPosition> layers;
    std::set<std::string> broken;
    for_each_part(table, [&](const std::vector<Row>& rows) {
      for (const Row& row : rows) take_layer(table, row, layers, broken);
    });
    for (const auto& [name, rows] : layers) {
      if (broken.count(name) == 0) set_layers(table, name, rows);
      if (progress_) progress_();
    }
  }

  void require_layer_heading(const TableSource& table, const std::string& heading) const {
    const auto known = layer_headings(library_->unit());
    const auto bare = without_unit(heading).first;
    const bool found = std::any_of(known.begin(), known.end(), [&](const std::string& each) {
      return each == heading || (without_unit(each).first == bare && bare == "thickness");
    });
    if (!found) fail_heading(table, heading, known);
  }

  void take_layer(TableSource& table, const Row& row,
                  std::map<std::string, LayersByPosition>& layers, std::set<std::string>& broken) {
    ++table.report->read[layer_kind];
    layer_at_.reset();
    const auto text_at = [&](const char* heading) {
      const auto place = column_of(table, heading);
      layer_at_ = place;
      return place ? text_of_cell(cell_at(row, *place), table.style) : std::string();
    };
    const auto name = text_at("composition");
    try {
      if (!row.fault.empty()) layer_at_ = row.fault_column;
      if (!row.fault.empty()) throw Error(row.fault);
      if (name.empty()) throw Error("the composition is missing");
      const auto position = number_in(text_at("position"));
      if (!position || *position < 1 || *position > 1e6 || *position != std::floor(*position)) {
        throw Error("the position must be a whole number from 1");
      }
      LayerRow layer{row, text_at("material"), {}, {}};
      if (layer.material.empty()) throw Error("the material is missing");
      read_numbers(table, layer);
      if (!layers[name].emplace(static_cast<unsigned>(*position), layer).second) {
        throw Error(fmt::format("the position {} is there twice", *position));
      }
    } catch (const Error& error) {
      broken.insert(name);
      tell_layer(table, {row.line, layer_at_}, name, error.what());
    }
  }

  static void tell_layer(const TableSource& table, const TablePlace& place, const std::string& name,
                         const std::string& sentence) {
    const auto what =
        name.empty() ? std::string("a layer") : fmt::format("layers of {}", quoted(name));
    add_problem(table, place, name, fmt::format("{}: {}", what, sentence));
  }

  /// As other lengths, but that none may be given.
  static FieldDescription layer_thickness() {
    const FieldDescription& length =
        built_in_fields<Composition>().at("variable_layer_max_thickness");
    FieldDescription field = length;
    field.key = "thickness";
    return field;
  }

  void read_numbers(const TableSource& table, LayerRow& layer) {
    static const auto length = layer_thickness();
    static const auto& whole = built_in_fields<Material>().at("function");
    if (const auto place = column_of(table, "thickness")) {
      layer_at_ = place;
      auto text = text_of_cell(length, cell_at(layer.row, *place), table.style);
      const auto unit = without_unit(table.headings[*place]).second;
      if (!unit.empty()) text = with_unit(text, unit);
      const auto value = value_from_text(length, text, library_->unit());
      layer.thickness = value.is_nothing() ? 0 : value.as<double>();
    }
    if (const auto place = column_of(table, "function")) {
      layer_at_ = place;
      const auto text = text_of_cell(whole, cell_at(layer.row, *place), table.style);
      const auto value = value_from_text(whole, text, library_->unit());
      layer.function = value.is_nothing() ? 0 : static_cast<int>(value.as<long long>());
    }
  }

  /// The composition as the tables have it so far, or as the library has it, and the id of the
  /// stored one of which that is a state; 0 for none.
  std::shared_ptr<Composition> composition_named(const std::string& text, unsigned& id) {
    const auto name = library_text(text);
    id = 0;
    if (auto state = states_->get<Composition>(name)) {
      const auto of = states_of_.find({ObjectType::Composition, state->id()});
      if (of != states_of_.end()) id = of->second;
      return state;
    }
    id = stored<Composition>().by_name(name);
    return id != 0 ? library_->get<Composition>(id) : nullptr;
  }

  std::shared_ptr<const Material> material_named(const std::string& text) {
    const auto name = library_text(text);
    if (auto state = states_->get<Material>(name)) return state;
    const unsigned id = stored<Material>().by_name(name);
    if (id == 0) throw Error(fmt::format("there is no material {}", quoted(text)));
    return library_->get<Material>(id);
  }

  static std::vector<unsigned> lines_of(const LayersByPosition& rows) {
    std::vector<unsigned> lines;
    lines.reserve(rows.size());
    for (const auto& [position, layer] : rows) lines.push_back(layer.row.line);
    return lines;
  }

  /// What rows of layers say, as `cells_of_layers` says it.
  static NamedCells cells_of_rows(const TableSource& table, const LayersByPosition& rows) {
    NamedCells cells;
    for (const auto& [position, layer] : rows) {
      for (std::size_t i = 0; i < table.headings.size(); ++i) {
        const auto& heading = table.headings[i];
        const bool place = heading == kind_heading || heading == "composition" ||
                           heading == "position" || is_fingerprint(table, heading);
        if (place) continue;
        add_layer_cell(cells, position, heading, text_of_cell(cell_at(layer.row, i), table.style));
      }
    }
    return cells;
  }

  /// What the layers were when they were written; empty where that is not known.
  std::string fingerprint_in(const TableSource& table, const LayersByPosition& rows) const {
    const auto column = fingerprint_column(table, *library_);
    if (!column) return {};
    for (const auto& [position, layer] : rows) {
      const auto& fingerprint = cell_at(layer.row, *column);
      if (!fingerprint.empty()) return fingerprint;
    }
    return {};
  }

  /// Whether the layers of a stored composition are others than those that were written.
  bool has_changed_since(unsigned id, const std::string& fingerprint) const {
    if (fingerprint.empty() || id == 0) return false;
    const auto stored = library_->get<Composition>(id);
    return fingerprint_of_row(cells_of_layers(*stored, library_->unit())) != fingerprint;
  }

  /// Two people have changed the layers of a composition. It comes in like one of another library,
  /// so that somebody decides; for that it must have the name of the stored one.
  void tell_clash(const TableSource& table, unsigned line, const std::string& name,
                  const Composition& composition, unsigned id) {
    const std::string sentence = "they have changed in the library since the table was written";
    if (stored<Composition>().by_name(composition.name()) != id) {
      throw Error(sentence + ", and the composition has another name in one of both");
    }
    tell_layer(table, {line, {}}, name, sentence);
    table.report->problems.back().doubt = true;
  }

  void set_layers(TableSource& table, const std::string& name, const LayersByPosition& rows) {
    const unsigned line = rows.begin()->second.row.line;
    const auto fingerprint = fingerprint_in(table, rows);
    const bool untouched =
        !fingerprint.empty() && fingerprint_of_row(cells_of_rows(table, rows)) == fingerprint;
    if (untouched) return;
    TablePlace at{line, {}};
    try {
      unsigned id = 0;
      const auto composition = composition_named(name, id);
      if (!composition) throw Error("there is no such composition");
      require_positions(table, rows, at);
      const auto materials = materials_of(table, rows, at);
      const bool changes = replace_layers(*composition, rows, materials);
      const bool clashes = changes && has_changed_since(id, fingerprint);
      if (clashes) tell_clash(table, line, name, *composition, id);
      table.report->layers += static_cast<unsigned>(rows.size());
      const bool is_state = composition->library().get() == states_.get();
      if (is_state) states_->save(composition);
      const unsigned state = is_state ? composition->id() : save(composition, id, table, line);
      if (clashes) states_of_.erase({ObjectType::Composition, state});
      if (changes) changed_[{ObjectType::Composition, state}] = {&table, line, lines_of(rows)};
    } catch (const Error& error) {
      tell_layer(table, at, name, error.what());
    }
  }

  /// Each layer stands behind the one before it. `at` becomes the cell of one that does not.
  static void require_positions(const TableSource& table, const LayersByPosition& rows,
                                TablePlace& at) {
    unsigned expected = 0;
    for (const auto& [position, layer] : rows) {
      if (position == ++expected) continue;
      at = {layer.row.line, column_of(table, "position")};
      throw Error("a position is missing");
    }
  }

  using MaterialsByName = std::map<std::string, std::shared_ptr<const Material>>;

  /// The materials of layers. `at` becomes the cell of one that is not there.
  MaterialsByName materials_of(const TableSource& table, const LayersByPosition& rows,
                               TablePlace& at) {
    const auto before = at;
    const auto column = column_of(table, "material");
    MaterialsByName materials;
    for (const auto& [position, layer] : rows) {
      at = {layer.row.line, column};
      materials[layer.material] = material_named(layer.material);
    }
    at = before;
    return materials;
  }

  /// What a row does not say stays as the layer in its place has it. Gives whether anything
  /// changes.
  static bool replace_layers(Composition& composition, const LayersByPosition& rows,
                             const MaterialsByName& materials) {
    Value::Layers values;
    for (const auto& [position, row] : rows) {
      const auto& before = composition.layers();
      const bool stands = position <= before.size();
      LayerValue value{row.material, 0, 0};
      if (stands) value.thickness = before[position - 1].thickness();
      if (stands) value.function = static_cast<int>(before[position - 1].function());
      if (row.thickness) value.thickness = *row.thickness;
      if (row.function) value.function = *row.function;
      values.push_back(value);
    }
    static const auto& field = built_in_fields<Composition>().at("layers");
    if (field.get(composition) == Value(values)) return false;
    field.set(composition, values);
    for (std::size_t i = 0; i < values.size(); ++i) {
      composition.layer(i, toModify) = {materials.at(values[i].material),
                                        static_cast<Material::Function>(values[i].function),
                                        values[i].thickness};
    }
    return true;
  }

  std::vector<TableSource>& tables_;
  std::shared_ptr<const Library> library_;
  const Progress& progress_;
  std::shared_ptr<Library> states_;  ///< the objects as the tables want them
  IdMapping mapping_;                ///< from the library into that one
  std::tuple<std::unique_ptr<StoredIds<Material>>, std::unique_ptr<StoredIds<Composition>>> stored_;
  std::map<ObjectKey, unsigned> states_of_;
  std::map<ObjectKey, SourceObject> origins_;
  std::map<ObjectKey, Place> changed_;
  std::optional<std::size_t> layer_at_;  ///< the column of the cell of a layer that is being read
  std::set<ObjectKey> rows_;             ///< stored objects that rows are about
  std::map<std::pair<const TableSource*, unsigned>, unsigned> composition_rows_;
};

}  // namespace

Sources read_tables(std::vector<TableSource>& tables, const std::shared_ptr<const Library>& library,
                    const Progress& progress) {
  Sources result;
  TableSet set(tables, library, progress);
  set.read();
  set.give(result);
  return result;
}

}  // namespace veldra::kit
