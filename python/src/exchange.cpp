// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit.hpp"
#include "objects.hpp"
#include "text.hpp"
#include "values.hpp"

#include <veldra/kit/exchange.hpp>
#include <veldra/kit/fields.hpp>

#include <pybind11/stl.h>

#include <fstream>
#include <sstream>
#include <utility>

namespace veldra::python {

namespace {

std::string content_of(const std::string& file) {
  std::ifstream stream(file, std::ios::binary);
  std::ostringstream content;
  if (!stream || !(content << stream.rdbuf())) {
    throw kit::SourceError({file, 0, "", "it cannot be read"});
  }
  return content.str();
}

py::list fields_as_python(const std::vector<kit::FieldNotKept>& fields) {
  py::list result;
  for (const auto& field : fields) {
    result.append(
        py::make_tuple(as_python(field.object_class), as_python(field.field), field.count));
  }
  return result;
}

py::dict report_of(const kit::SourceReport& report) {
  py::dict result;
  result["file"] = as_python(report.file);
  result["format"] = as_python(report.format);
  result["read"] = report.read;
  result["skipped"] = report.skipped;
  py::list problems;
  for (const auto& problem : report.problems) problems.append(as_python(problem.text()));
  result["problems"] = problems;
  result["not_kept"] = fields_as_python(kit::fields_not_kept(report));
  return result;
}

/// The library, a report for each file, and which stored object each of the library is another
/// state of.
py::tuple parts_of(const kit::Sources& sources, const std::string& name) {
  py::list reports;
  for (const auto& report : sources.reports) reports.append(report_of(report));
  py::dict states;
  for (const auto& [key, stored] : sources.states_of) {
    states[py::make_tuple(static_cast<int>(key.type), key.id)] = stored;
  }
  return py::make_tuple(std::make_shared<LibraryHandle>(sources.library, name), reports, states);
}

std::vector<kit::Source> opened(const std::vector<FileName>& files) {
  std::vector<kit::Source> result;
  result.reserve(files.size());
  for (const auto& file : files) result.emplace_back(file.utf8, content_of(file.utf8));
  return result;
}

kit::Progress progress_of(const py::object& report) {
  return [&report] { look_for_signals(report); };
}

py::tuple read(const std::vector<FileName>& files, const std::string& unit,
               const std::string& on_clash, const py::object& progress) {
  kit::SourceRules rules;
  rules.unit = unit == "in" ? Unit::Inches : Unit::Millimetres;
  rules.on_clash = on_clash_named(on_clash);
  rules.progress = progress_of(progress);
  const Use nothing({});
  const std::string first = files.empty() ? "" : files.front().utf8;
  return parts_of(
      run_opening(nothing, {first, {}}, [&] { return kit::read_together(opened(files), rules); }),
      first);
}

/// A sign of a table; of an empty text `none`.
char sign_of(const Text& text, char none) {
  if (text.utf8.empty()) return none;
  if (text.utf8.size() == 1) return text.utf8[0];
  throw py::value_error("'" + text.utf8 + "' is not one sign");
}

kit::TableRules table_rules(const Text& separator, const Text& decimal, const py::object& report) {
  return {sign_of(separator, '\0'), sign_of(decimal, '\0'), progress_of(report)};
}

py::tuple read_tables(LibraryHandle& self, const std::vector<FileName>& files,
                      const Text& separator, const Text& decimal, const py::object& progress) {
  const auto rules = table_rules(separator, decimal, progress);
  const Use use({&self});
  return parts_of(run_opening(use, {self.file, {}},
                              [&] { return kit::read_tables(opened(files), self.library, rules); }),
                  self.file);
}

/// The same of a table that is no file; `name` is for messages.
py::tuple read_table(LibraryHandle& self, const Text& name, const Text& content,
                     const py::object& progress) {
  const kit::TableRules rules{',', '.', progress_of(progress)};
  const Use use({&self});
  return parts_of(
      run_opening(use, {self.file, {}},
                  [&] {
                    return kit::read_tables({{name.utf8, content.utf8}}, self.library, rules);
                  }),
      self.file);
}

/// The text of a value of a field in a table.
std::string cell_of(const kit::FieldDescription& field, const py::handle& given) {
  const auto value = value_for(field, given);
  const auto text = field.is_position ? kit::field_text(field, value) : kit::value_text(value);
  const bool guarded = !text.empty() && text[0] == '\'';
  return guarded ? "'" + text : text;
}

/// The heading of a field in a table. A custom property may share its name with one that all kinds
/// have.
template <class T>
std::string heading_of(const kit::Fields<T>& fields, const kit::Field<T>& field) {
  if (field.origin != kit::Origin::Custom) return field.key;
  const bool common = field.group == "common_custom_values";
  const auto* other =
      fields.find((common ? "custom_values." : "common_custom_values.") + field.key);
  if (other == nullptr || other->origin != kit::Origin::Custom) return "property:" + field.key;
  return "property:" + (common ? "all" : std::string(kit::singular_of(ObjectTraits<T>::type))) +
         ":" + field.key;
}

/// Heading and cells of values of a field.
py::tuple table_column(LibraryHandle& self, int kind, const Text& name, const py::list& values) {
  const Use use({&self});
  return kit::with_class_of(static_cast<ObjectType>(kind), [&](auto of) {
    using T = typename decltype(of)::type;
    const auto fields = run(use, {self.file, {}}, [&] { return kit::Fields<T>(*self.library); });
    const auto& field = fields.at(name.utf8);
    py::list cells;
    for (const auto& value : values) cells.append(as_python(cell_of(field, value)));
    return py::make_tuple(as_python(heading_of(fields, field)), cells);
  });
}

const kit::Format& format_named(const std::string& name) {
  const auto* format = kit::find_format(name);
  if (format != nullptr) return *format;
  throw kit::Error("there is no format '" + name + "'");
}

/// What was written of the library, or of the objects with keys, and the parts of the report.
py::tuple write(LibraryHandle& self, const Text& format, const std::optional<Keys>& keys,
                const std::string& table, const Text& separator, const Text& decimal,
                const py::object& progress) {
  const kit::WriteRules rules{table, sign_of(separator, ','), sign_of(decimal, '.'),
                              progress_of(progress)};
  const Use use({&self});
  std::string text;
  const auto report = run(use, {self.file, {}}, [&] {
    std::unique_ptr<Library::Snapshot> one_state;
    if (!self.is_bound()) one_state = std::make_unique<Library::Snapshot>(*self.library);
    const auto sink = [&](std::string_view part) { text += part; };
    const auto& known = format_named(format.utf8);
    if (!keys) return kit::write(*self.library, known, sink, rules);
    return kit::write(*self.library, as_keys(*keys), known, sink, rules);
  });
  py::list problems;
  for (const auto& problem : report.problems) problems.append(as_python(problem));
  return py::make_tuple(py::bytes(text), report.written, fields_as_python(report.not_written),
                        fields_as_python(report.missing), problems);
}

py::list formats() {
  py::list result;
  for (const auto& format : kit::formats()) {
    result.append(py::make_tuple(format.name, format.endings, format.readable, format.writable));
  }
  return result;
}

}  // namespace

void bind_exchange(py::module_& module,
                   py::class_<LibraryHandle, std::shared_ptr<LibraryHandle>>& library) {
  module.def("_read", &read, py::arg("files"), py::arg("unit"), py::arg("on_clash"),
             py::arg("progress"));
  module.def("_formats", &formats);
  library.def("_read_tables", &read_tables);
  library.def("_read_table", &read_table);
  library.def("_table_column", &table_column);
  library.def("_write", &write);
}

}  // namespace veldra::python
