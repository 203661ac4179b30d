// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/written.hpp"

#include "support/builders.hpp"

#include <gmock/gmock.h>

#include <minizip/zip.h>

#include <cstdio>
#include <map>
#include <random>
#include <regex>

#include "support/temporary.hpp"

namespace veldra_tests {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

using Files = std::vector<std::pair<std::string, std::string>>;

/// An archive as any program makes one.
std::string archive_of(const Files& files, const char* password = nullptr) {
  const TemporaryFolder folder;
  const auto path = folder / "a.zip";
  auto* archive = zipOpen64(path.c_str(), APPEND_STATUS_CREATE);
  for (const auto& [name, content] : files) {
    const auto sum = crc32(0, reinterpret_cast<const Bytef*>(content.data()),
                           static_cast<unsigned>(content.size()));
    zipOpenNewFileInZip3_64(archive, name.c_str(), nullptr, nullptr, 0, nullptr, 0, nullptr,
                            Z_DEFLATED, 9, 0, -MAX_WBITS, DEF_MEM_LEVEL, Z_DEFAULT_STRATEGY,
                            password, sum, 0);
    zipWriteInFileInZip(archive, content.data(), static_cast<unsigned>(content.size()));
    zipCloseFileInZip(archive);
  }
  zipClose(archive, nullptr);
  return read_file(path);
}

/// A sheet, and how the workbook knows it.
struct Sheet {
  std::string name;
  std::string content;  ///< rows
  std::string state{};
  std::string behind{};  ///< the rows
};

Files files_of(const std::vector<Sheet>& sheets, const std::string& shared = "",
               const std::string& styles = "", const std::string& properties = "") {
  Files files;
  std::string list;
  std::string relations;
  const std::string office = "http://schemas.openxmlformats.org/officeDocument/2006/relationships/";
  const auto relation = [&](const std::string& id, const std::string& type,
                            const std::string& target) {
    return "<Relationship Id='" + id + "' Type='" + office + type + "' Target='" + target + "'/>";
  };
  int number = 0;
  for (const auto& sheet : sheets) {
    const auto digits = std::to_string(++number);
    list += "<sheet name='" + sheet.name + "' sheetId='" + digits + "' state='" +
            (sheet.state.empty() ? "visible" : sheet.state) + "' r:id='r" + digits + "'/>";
    relations += relation("r" + digits, "worksheet", "sheets/" + digits + ".xml");
    files.emplace_back(
        "xl/sheets/" + digits + ".xml",
        "<worksheet><sheetData>" + sheet.content + "</sheetData>" + sheet.behind + "</worksheet>");
  }
  relations += relation("s", "sharedStrings", "/xl/shared.xml");
  relations += relation("t", "styles", "styles.xml");
  files.emplace_back("xl/shared.xml", "<sst>" + shared + "</sst>");
  files.emplace_back("xl/styles.xml", "<styleSheet>" + styles + "</styleSheet>");
  files.emplace_back("xl/workbook.xml",
                     "<workbook>" + properties + "<sheets>" + list + "</sheets></workbook>");
  files.emplace_back("xl/_rels/workbook.xml.rels",
                     "<Relationships>" + relations + "</Relationships>");
  files.emplace_back(
      "_rels/.rels",
      "<Relationships>" + relation("r", "officeDocument", "xl/workbook.xml") + "</Relationships>");
  return files;
}

std::string text_cell(const std::string& text) {
  return "<c t='inlineStr'><is><t xml:space='preserve'>" + text + "</t></is></c>";
}

std::string row_of(const std::vector<std::string>& cells) {
  std::string row = "<row>";
  for (const auto& cell : cells) row += cell.compare(0, 2, "<c") == 0 ? cell : text_cell(cell);
  return row + "</row>";
}

std::string workbook_of(const std::vector<Sheet>& sheets) { return archive_of(files_of(sheets)); }

class Workbook : public Test {
 protected:
  static std::string written(const Library& library) { return written_as("XLSX", library).text; }

  kit::Sources read(const std::string& bytes) const {
    return kit::read_tables({kit::Source("x.xlsx", bytes)}, library_, {});
  }

  std::vector<std::string> take(const std::string& bytes,
                                kit::OnClash on_clash = kit::OnClash::Overwrite) {
    const auto sources = read(bytes);
    kit::PlanRules rules;
    rules.states_of = sources.states_of;
    rules.on_clash = on_clash;
    Library::Transaction transaction(*library_);
    const kit::Plan plan(sources.library, *library_, rules);
    changes_ = plan.changes_anything();
    decided_ = plan.is_decided();
    if (decided_) plan.apply(*library_);
    transaction.commit();
    std::vector<std::string> problems;
    for (const auto& problem : sources.reports[0].problems) problems.push_back(problem.text());
    return problems;
  }

  std::string refusal(const std::string& bytes) const {
    return error_of([&] { read(bytes); });
  }

  std::shared_ptr<Material> material(const std::string& name) const {
    return library_->get<Material>(text(name));
  }

  std::string custom(const std::string& name, const char* property) const {
    const auto value = material(name)->custom_value(text(property));
    return value.null() ? "none" : value.get().utf8();
  }

  void fill() {
    library_->save(full_material("Oak"));
    library_->save(full_composition("Wall"));
    const auto odd = with_custom("=odd, \"quoted\" & <b> \nmore", "Price [EUR]", "1.5");
    odd->custom_value(text("Number"), text("0.50"));
    odd->custom_value(text("Escape"), text("_x0041_ \x01 \xEF\xBF\xBF"));
    odd->custom_value(text("Long [m]"), text("0.12345678901234568"));
    odd->thicknesses(toModify) = {0.1, 12.5, 1e-7};
    odd->manufacturer(text("'s"));
    odd->comments(text(" blanks "));
    odd->code(text("007"));
    library_->save(odd);
  }

  std::shared_ptr<Library> library_ = Library::create(":memory:", Unit::Millimetres, "");
  bool changes_ = false;
  bool decided_ = false;
};

TEST_F(Workbook, that_nobody_changed_changes_nothing) {
  fill();
  EXPECT_THAT(take(written(*library_)), IsEmpty());
  EXPECT_FALSE(changes_);
}

TEST_F(Workbook, brings_all_that_it_holds_into_another_library) {
  fill();
  const auto bytes = written(*library_);
  const auto before = fields_of(*library_);
  library_ = Library::create(":memory:", Unit::Millimetres, "");
  EXPECT_THAT(take(bytes), ElementsAre(HasSubstr("the variable layer 6 is none of its 4 layers")));
  EXPECT_EQ(fields_of(*library_), before);
}

TEST_F(Workbook, is_written_the_same_again) {
  fill();
  EXPECT_EQ(written(*library_), written(*library_));
}

TEST_F(Workbook, of_any_objects_reads_back_to_the_same) {
  std::mt19937 random(5);
  const auto number = [&](unsigned below) { return static_cast<unsigned>(random() % below); };
  for (int round = 0; round < 20; ++round) {
    library_ = Library::create(":memory:", Unit::Millimetres, "");
    std::vector<std::shared_ptr<Material>> materials;
    for (unsigned i = 0; i < 1 + number(20); ++i) {
      auto each = with_custom("m" + std::to_string(i), "Density [kg/m3]",
                              std::to_string(std::ldexp(random(), -static_cast<int>(number(40)))));
      for (unsigned n = number(3); n > 0; --n) {
        each->thicknesses(toModify).insert(std::ldexp(random(), -static_cast<int>(number(60))));
      }
      if (number(2) == 0) each->description(text("=" + std::to_string(random())));
      library_->save(each);
      materials.push_back(each);
    }
    for (unsigned i = 0; i < number(5); ++i) {
      const auto wall = Composition::create(text("w/" + std::to_string(i)));
      for (unsigned n = number(6); n > 0; --n) {
        wall->appendLayer({materials[number(static_cast<unsigned>(materials.size()))],
                           Material::Function::Structure,
                           std::ldexp(random(), -static_cast<int>(number(50)))});
      }
      library_->save(wall);
    }
    const auto bytes = written(*library_);
    const auto before = fields_of(*library_);
    library_ = Library::create(":memory:", Unit::Millimetres, "");
    take(bytes);
    EXPECT_EQ(fields_of(*library_), before);
    if (HasFailure()) return;
  }
}

TEST_F(Workbook, leaves_out_what_a_cell_cannot_hold_and_says_so) {
  const auto long_text = Material::create(text("Long"));
  long_text->description(text(std::string(32768, 'x')));
  library_->save(long_text);
  const auto controls = Material::create(text("Controls"));
  controls->description(text("a\x02z"));
  library_->save(controls);
  const auto whole = written_as("XLSX", *library_);
  EXPECT_THAT(whole.report.problems,
              ElementsAre("material 'Controls': 'description' has control characters, which stand "
                          "in the cell as escapes",
                          "material 'Long' is not written: its 'description' has 32768 characters, "
                          "of which a cell takes 32767"));
  EXPECT_THAT(take(whole.text), IsEmpty());
  EXPECT_EQ(material("Long")->description().utf8().size(), 32768U);
  EXPECT_EQ(material("Controls")->description(), text("a\x02z"));
}

TEST_F(Workbook, changes_what_a_person_changed) {
  library_->save(with_custom("Brick", "Fire class", "A1"));
  EXPECT_THAT(take(workbook_of(
                  {{"materials",
                    row_of({"name", "manufacturer", "property:Fire class", "thicknesses [cm]"}) +
                        row_of({"Brick", "Works", "<c/>", "<c><v>11.5</v></c>"})}})),
              IsEmpty());
  EXPECT_EQ(material("Brick")->manufacturer(), text("Works"));
  EXPECT_EQ(custom("Brick", "Fire class"), "none");
  EXPECT_EQ(material("Brick")->thicknesses(), (std::set<double>{115}));
}

/// The rows of the library with one cell of a material edited in each.
class EditedWorkbook : public Workbook {
 protected:
  EditedWorkbook() {
    library_->save(with_custom("Brick", "Fire class", "A1"));
    library_->save(with_custom("Wool", "Fire class", "A2"));
    const auto wall = Composition::create(text("Wall"));
    wall->appendLayer({material("Brick"), Material::Function::None, 100});
    library_->save(wall);
    headings_ = {"id [" + library_->guid().utf8() + "]",
                 "fingerprint [" + library_->guid().utf8() + "]", "name", "mark"};
  }

  /// The XML of a sheet of a workbook.
  static std::string sheet_in(const std::string& bytes, unsigned number) {
    const TemporaryFolder folder;
    const auto path = folder / "x.xlsx";
    write_file(path, bytes);
    const auto command = "unzip -p '" + std::string(path) + "' xl/worksheets/sheet" +
                         std::to_string(number) + ".xml";
    std::string sheet;
    FILE* out = popen(command.c_str(), "r");
    for (int c = fgetc(out); c != EOF; c = fgetc(out)) sheet += static_cast<char>(c);
    pclose(out);
    return sheet;
  }

  /// The rows of a sheet, the headings first.
  static std::vector<std::string> rows_in(const std::string& sheet) {
    std::vector<std::string> rows;
    for (auto at = sheet.find("<row "); at != std::string::npos; at = sheet.find("<row ", at + 1)) {
      const std::string end = "</row>";
      rows.push_back(sheet.substr(at, sheet.find(end, at) + end.size() - at));
    }
    return rows;
  }

  /// Rows of a sheet in that order, whatever their places were.
  static std::string in_order(const std::vector<std::string>& rows) {
    static const std::regex place(" r=\"([A-Z]*)[0-9]+\"");
    std::string sheet;
    for (std::size_t i = 0; i < rows.size(); ++i) {
      sheet += std::regex_replace(rows[i], place, " r=\"$01" + std::to_string(i + 1) + "\"");
    }
    return sheet;
  }

  /// The fingerprint that an export has for what a row of a sheet begins with.
  std::string fingerprint_of(const std::string& name, unsigned sheet_number = 1) const {
    const auto sheet = sheet_in(written(*library_), sheet_number);
    const std::regex pattern("<t>([0-9a-f]{16})</t></is></c><c [^>]*><is><t>" + name + "<");
    std::smatch match;
    return std::regex_search(sheet, match, pattern) ? match[1].str() : std::string();
  }

  std::string row(const std::string& name, const std::string& fingerprint,
                  const std::string& mark) const {
    return row_of(
        {"<c><v>" + std::to_string(material(name)->id()) + "</v></c>", fingerprint, name, mark});
  }

  static constexpr unsigned sheet_of_wall = 3;  ///< behind materials and compositions

  /// A workbook in which the first layer of the wall is as thick as somebody wanted.
  std::string with_layer(const std::string& fingerprint, const char* thickness) const {
    const auto known = "fingerprint [" + library_->guid().utf8() + "]";
    return workbook_of(
        {{"Wall", row_of({known, "composition", "position", "material", "thickness [mm]"}) +
                      row_of({fingerprint, "Wall", "<c><v>1</v></c>", "Brick",
                              "<c><v>" + std::string(thickness) + "</v></c>"})}});
  }

  /// Another person makes the first layer of the wall so thick.
  void set_thickness(double thickness) {
    const auto wall = library_->get<Composition>(text("Wall"));
    wall->layer(0, toModify) = {material("Brick"), Material::Function::None, thickness};
    wall->save();
  }

  double thickness_of(const std::string& name) const {
    return library_->get<Composition>(text(name))->layers().at(0).thickness();
  }

  void set_mark(const std::string& name, const char* mark) {
    const auto object = material(name);
    object->mark(text(mark));
    object->save();
  }

  std::vector<std::string> headings_;
};

TEST_F(EditedWorkbook, overwrites_what_is_as_it_was_written) {
  const auto was = fingerprint_of("Brick");
  ASSERT_FALSE(was.empty());
  EXPECT_THAT(take(workbook_of({{"materials", row_of(headings_) + row("Brick", was, "mine")}})),
              IsEmpty());
  EXPECT_EQ(material("Brick")->mark(), text("mine"));
}

TEST_F(EditedWorkbook, clashes_with_what_another_person_has_changed_since) {
  const auto was = fingerprint_of("Brick");
  set_mark("Brick", "theirs");
  const auto bytes = workbook_of({{"materials", row_of(headings_) + row("Brick", was, "mine")}});
  EXPECT_THAT(take(bytes, kit::OnClash::Fail),
              ElementsAre("'x.xlsx': materials!A2: material 'Brick': it has changed in the library "
                          "since the table was written"));
  EXPECT_FALSE(decided_);
  EXPECT_EQ(material("Brick")->mark(), text("theirs"));
  take(bytes, kit::OnClash::Use);
  EXPECT_EQ(material("Brick")->mark(), text("theirs"));
  take(bytes, kit::OnClash::Overwrite);
  EXPECT_EQ(material("Brick")->mark(), text("mine"));
}

TEST_F(EditedWorkbook, clashes_with_layers_that_another_person_has_changed_since) {
  const auto was = fingerprint_of("Wall", sheet_of_wall);
  ASSERT_FALSE(was.empty());
  const auto bytes = with_layer(was, "250");
  set_thickness(300);
  EXPECT_THAT(take(bytes, kit::OnClash::Fail),
              ElementsAre("'x.xlsx': Wall!A2: layers of 'Wall': they have changed in the library "
                          "since the table was written"));
  EXPECT_FALSE(decided_);
  EXPECT_EQ(thickness_of("Wall"), 300);
  take(bytes, kit::OnClash::Use);
  EXPECT_EQ(thickness_of("Wall"), 300);
  take(bytes, kit::OnClash::Rename);
  EXPECT_EQ(thickness_of("Wall"), 300);
  EXPECT_EQ(thickness_of("Wall (2)"), 250);
  take(bytes, kit::OnClash::Overwrite);
  EXPECT_EQ(thickness_of("Wall"), 250);
}

TEST_F(EditedWorkbook, does_not_clash_with_layers_that_are_as_both_want_them) {
  const auto bytes = with_layer(fingerprint_of("Wall", sheet_of_wall), "250");
  set_thickness(250);
  EXPECT_THAT(take(bytes, kit::OnClash::Fail), IsEmpty());
  EXPECT_FALSE(changes_);
}

TEST_F(EditedWorkbook, leaves_out_layers_that_clash_under_a_name_that_the_stored_has_not) {
  const auto was = fingerprint_of("Wall", sheet_of_wall);
  const auto known = library_->guid().utf8();
  const auto wall = library_->get<Composition>(text("Wall"));
  const auto bytes = workbook_of(
      {{"compositions", row_of({"id [" + known + "]", "name"}) +
                            row_of({"<c><v>" + std::to_string(wall->id()) + "</v></c>", "Roof"})},
       {"Wall", row_of({"fingerprint [" + known + "]", "composition", "position", "material",
                        "thickness [mm]"}) +
                    row_of({was, "Roof", "<c><v>1</v></c>", "Brick", "<c><v>250</v></c>"})}});
  set_thickness(300);
  EXPECT_THAT(take(bytes, kit::OnClash::Fail),
              ElementsAre("'x.xlsx': Wall!A2: layers of 'Roof': they have changed in the library "
                          "since the table was written, and the composition has another name in "
                          "one of both"));
  EXPECT_EQ(thickness_of("Roof"), 300);
}

TEST_F(EditedWorkbook, of_a_part_of_a_library_changes_it) {
  const auto wool = key_of<Material>(*library_, "Wool");
  const auto bytes = part_written_as("XLSX", *library_, {wool}).text;
  EXPECT_THAT(take(bytes), IsEmpty());
  EXPECT_FALSE(changes_);
  EXPECT_NE(wool.id, 1U) << "in a library of its own it is the first";
  const auto sheet = sheet_in(bytes, 1);
  EXPECT_THAT(sheet, HasSubstr("<v>" + std::to_string(wool.id) + "</v>"));
  EXPECT_THAT(sheet, HasSubstr(fingerprint_of("Wool")));
  for (const char* heading : {"id [", "fingerprint ["}) {
    EXPECT_THAT(sheet, HasSubstr(heading + library_->guid().utf8() + "]"));
  }
}

TEST_F(EditedWorkbook, leaves_alone_what_only_another_person_has_changed) {
  const auto bytes = written(*library_);
  set_mark("Brick", "theirs");
  const auto wall = library_->get<Composition>(text("Wall"));
  wall->appendLayer({material("Wool"), Material::Function::None, 5});
  wall->save();
  library_->remove<Material>(std::set<unsigned>{});
  EXPECT_THAT(take(bytes), IsEmpty());
  EXPECT_FALSE(changes_);
  EXPECT_EQ(material("Brick")->mark(), text("theirs"));
}

TEST_F(EditedWorkbook, does_not_take_a_changed_copy_of_a_row_for_the_row) {
  const auto rows = rows_in(sheet_in(written(*library_), 1));
  ASSERT_EQ(rows.size(), 3U);
  auto copy = rows[1];
  copy.replace(copy.find("Brick"), 5, "Other");
  for (const auto& order : {std::vector<std::string>{rows[0], copy, rows[1], rows[2]},
                            std::vector<std::string>{rows[0], rows[1], rows[2], copy}}) {
    EXPECT_THAT(take(workbook_of({{"materials", in_order(order)}})),
                ElementsAre(HasSubstr("material 'Other': another row is about the same object; a "
                                      "new one has neither id nor fingerprint")));
    EXPECT_FALSE(changes_);
    EXPECT_NE(material("Brick"), nullptr);
    EXPECT_EQ(material("Other"), nullptr);
  }
}

TEST_F(EditedWorkbook, does_not_bring_back_what_was_removed) {
  const auto was = fingerprint_of("Wool");
  const auto bytes = workbook_of({{"materials", row_of(headings_) + row("Wool", was, "mine")}});
  const auto untouched = written(*library_);
  library_->remove<Material>(std::set<unsigned>{material("Wool")->id()});
  EXPECT_THAT(take(bytes),
              ElementsAre("'x.xlsx': materials!A2: material 'Wool': it has been removed from the "
                          "library since the table was written"));
  EXPECT_THAT(take(untouched), IsEmpty());
  EXPECT_EQ(material("Wool"), nullptr);
}

TEST_F(Workbook, names_the_cell_in_each_error) {
  library_->save(Material::create(text("A")));
  EXPECT_THAT(
      take(workbook_of(
          {{"materials",
            row_of({"name", "thicknesses [mm]", "mark"}) + row_of({"A", "thick", "m"}) +
                row_of({"B", "<c><v>1</v></c>", "<c t='e'><v>#REF!</v></c>"}) +
                row_of({"C", "<c><f>1+1</f></c>"}) + row_of({"<c/>", "<c><v>1</v></c>"})},
           {"My layers", row_of({"composition", "position", "material"}) +
                             row_of({"W", "<c><v>1.5</v></c>", "A"})}})),
      ElementsAre(HasSubstr("'x.xlsx': materials!B2: material 'A': "),
                  "'x.xlsx': materials!C3: material 'B': the cell has the error '#REF!'",
                  "'x.xlsx': materials!B4: material 'C': the formula has no stored value",
                  "'x.xlsx': materials!A5: a material: the name is missing",
                  "'x.xlsx': 'My layers'!B2: layers of 'W': the position must be a whole number "
                  "from 1"));
  EXPECT_THAT(
      refusal(workbook_of({{"materials", row_of({"name", "colour"}) + row_of({"A", "b"})}})),
      HasSubstr("'x.xlsx': materials!B1: there is no column 'colour'"));
}

TEST_F(Workbook, names_the_cell_of_a_wrong_layer) {
  EXPECT_THAT(
      take(workbook_of({{"materials", row_of({"name"}) + row_of({"A"})},
                        {"compositions",
                         row_of({"name", "type"}) + row_of({"V", "wall"}) + row_of({"W", "wall"})},
                        {"layers", row_of({"composition", "position", "material"}) +
                                       row_of({"V", "1", "A"}) + row_of({"W", "1", "A"}) +
                                       row_of({"W", "2", "nope"}) + row_of({"V", "3", "A"})}})),
      ElementsAre("'x.xlsx': layers!B5: layers of 'V': a position is missing",
                  "'x.xlsx': layers!C4: layers of 'W': there is no material 'nope'"));
}

TEST_F(Workbook, names_the_cell_of_each_doubtful_number) {
  EXPECT_THAT(
      take(workbook_of(
          {{"materials", row_of({"name", "property:Thermal conductivity [W/(m K)]",
                                 "thicknesses [mm]", "property:material:Solar absorptance [-]"}) +
                             row_of({"A", "0", "0", "1.5"}) + row_of({"B", "1", "5"})},
           {"compositions", row_of({"name", "type", "property:Precipitation [mm/d]"}) +
                                row_of({"W", "wall", "-3"}) + row_of({"V", "wall"})},
           {"layers", row_of({"composition", "position", "thickness [mm]", "material"}) +
                          row_of({"W", "2", "0", "A"}) + row_of({"V", "1", "5", "A"}) +
                          row_of({"W", "1", "3", "A"})}})),
      ElementsAre("'x.xlsx': materials!B2: material 'A': its thermal conductivity is not greater "
                  "than 0: '0'",
                  "'x.xlsx': materials!D2: material 'A': its 'Solar absorptance [-]' is greater "
                  "than 1: '1.5'",
                  "'x.xlsx': materials!C2: material 'A': the thickness 0 is not greater than 0",
                  "'x.xlsx': layers!C2: composition 'W': the thickness 0 of layer 2 is not greater "
                  "than 0"));
}

TEST_F(Workbook, may_have_cells_of_all_types) {
  const auto files =
      files_of({{"materials",
                 row_of({"name", "description", "comments", "cost", "keynote", "label",
                         "allow_custom_thickness", "mark"}) +
                     "<row r='3'><c r='A3' t='s'><v>0</v></c><c r='B3' t='s'><v>1</v></c>"
                     "<c r='C3' s='1'><v>45351</v></c><c r='D3'><f>SUM(1,2)</f><v>3</v></c>"
                     "<c r='E3' t='str'><f>A1</f><v>text</v></c><c r='F3' s='2'><v>45351.75</v></c>"
                     "<c r='G3' t='b'><v>1</v></c><c r='H3' t='d'><v>2024-03-01</v></c></row>"}},
               "<si><t>A</t></si><si><r><t>two </t></r><r><rPr/><t>runs_x0041_</t></r></si>",
               "<numFmts><numFmt numFmtId='164' formatCode='yyyy\\-mm\\-dd hh:mm'/></numFmts>"
               "<cellXfs><xf numFmtId='0'/><xf numFmtId='14'/><xf numFmtId='164'/></cellXfs>");
  EXPECT_THAT(take(archive_of(files)), IsEmpty());
  const auto a = material("A");
  ASSERT_NE(a, nullptr);
  EXPECT_EQ(a->description(), text("two runsA"));
  EXPECT_EQ(a->comments(), text("2024-02-29"));
  EXPECT_EQ(a->cost(), text("3"));
  EXPECT_EQ(a->keynote(), text("text"));
  EXPECT_EQ(a->label(), text("2024-02-29T18:00:00"));
  EXPECT_EQ(a->mark(), text("2024-03-01"));
}

TEST_F(Workbook, may_have_sheets_of_others) {
  const auto rows = row_of({"name"}) + row_of({"A"});
  EXPECT_THAT(
      take(workbook_of({{"Notes", row_of({"Dear colleague"})},
                        {"Empty", ""},
                        {"Old", rows, "hidden"},
                        {"Merged", rows, "", "<mergeCells><mergeCell ref='A1:B1'/></mergeCells>"},
                        {"veldra lists", row_of({"list 1"}), "hidden"},
                        {"materials", row_of({"name"}) + row_of({"B"})}})),
      ElementsAre(
          "'x.xlsx': the sheet 'Notes' has none of the headings of a table of this program, "
          "and is left out",
          "'x.xlsx': the sheet 'Old' is hidden, and is left out",
          "'x.xlsx': the sheet 'Merged' has merged cells, and is left out"));
  EXPECT_EQ(library_->count<Material>(), 1U);
}

TEST_F(Workbook, that_is_no_good_archive_gives_a_sentence) {
  const auto good = files_of({{"materials", row_of({"name"}) + row_of({"A"})}});
  const auto with = [&](const std::string& name, const std::string& content) {
    auto files = good;
    files.emplace_back(name, content);
    return refusal(archive_of(files));
  };
  for (const char* name : {"../evil", "/etc/passwd", "a/../../b", "c:\\x", "a\\b"}) {
    EXPECT_THAT(with(name, "x"), HasSubstr("whose name leads out of it")) << name;
  }
  EXPECT_THAT(with("xl/workbook.xml", "<workbook/>"), HasSubstr("'xl/workbook.xml' twice"));
  EXPECT_EQ(with("big", std::string(3 << 20, 'x')),
            "'x.xlsx': the archive would take more than 100 times its size, and is not read");
  EXPECT_THAT(refusal(archive_of(good, "secret")), HasSubstr("the archive is encrypted"));
  const auto whole = archive_of(good);
  for (std::size_t size = 8; size < whole.size(); size += 37) {
    EXPECT_THAT(refusal(whole.substr(0, size)), StartsWith("'x.xlsx': "));
  }
  for (const auto& [file, sentence] :
       {std::pair("xl/workbook.xml", "lacks the file"), std::pair("xl/sheets/1.xml", "lacks")}) {
    Files files;
    for (const auto& each : good) {
      if (each.first != file) files.push_back(each);
    }
    files.emplace_back("xl/workbook.old", "");
    EXPECT_THAT(refusal(archive_of(files)), HasSubstr(sentence)) << file;
  }
}

TEST_F(Workbook, that_is_damaged_anywhere_gives_a_sentence_or_is_read) {
  fill();
  const auto bytes = written(*library_);
  std::mt19937 random(7);
  for (int round = 0; round < 200; ++round) {
    auto damaged = bytes;
    for (int i = 0; i < 3; ++i) damaged[random() % damaged.size()] = static_cast<char>(random());
    try {
      read(damaged);
    } catch (const kit::Error& error) {
      EXPECT_THAT(error.what(), StartsWith("'x.xlsx': "));
    }
  }
}

TEST_F(Workbook, that_has_a_large_sheet_gives_a_sentence) {
  auto files = files_of({{"materials", row_of({"name"}) + row_of({"A"}), "",
                          "<!--" + std::string(std::size_t{257} << 20, ' ') + "-->"}});
  std::mt19937 random(7);
  std::string noise(3 << 20, ' ');  // without which the whole would be too small for its content
  for (char& byte : noise) byte = static_cast<char>(random());
  files.emplace_back("noise", noise);
  EXPECT_EQ(
      refusal(archive_of(files)),
      "'x.xlsx': the file 'xl/sheets/1.xml' of the archive is larger than 256 MiB, and is not "
      "read");
}

TEST_F(Workbook, that_takes_too_much_gives_a_sentence) {
  std::string shared_row = "<row>";
  for (int i = 0; i < 9000; ++i) shared_row += "<c t='s'><v>0</v></c>";
  shared_row += "</row>";
  std::string noise;
  std::mt19937 random(1);
  for (int i = 0; i < 400'000; ++i) noise += static_cast<char>('a' + random() % 26);
  auto files =
      files_of({{"materials", row_of({"name"}) + shared_row}}, "<si><t>" + noise + "</t></si>");
  EXPECT_EQ(refusal(archive_of(files)), "'x.xlsx': the cells take more than 256 MiB");
  files = files_of({{"materials", repeated("<c/>", 5'000'001)}}, "<si><t>" + noise + "</t></si>");
  EXPECT_EQ(refusal(archive_of(files)),
            "'x.xlsx': the sheet 'materials' has more than 5000000 elements, attributes and texts");
  EXPECT_THAT(refusal(workbook_of(
                  {{"materials", row_of({"name"}) + "<row><c r='XFD2'><v>1</v></c></row>"}})),
              HasSubstr("materials!XFD2: the row has more than 10000 cells"));
}

}  // namespace
}  // namespace veldra_tests
