// SPDX-License-Identifier: GPL-2.0-or-later
//
// Measures how long the kit reads files of other programs, beside what must be done at least:
// taking IDF apart into fields, and what the library for IFC takes that programs use otherwise.
//
//   veldra_source_speed [--megabytes=100] [--rounds=5]
//
// The files are made here: surfaces with their corners, or walls with their geometry, and for each
// 20th byte materials and build-ups. The sides take turns; what is told are medians of processor
// times and of ratios.
#include <veldra/kit/exchange.hpp>

#include "ifc_model_reader.hpp"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace {

/// A file and how many materials and build-ups it has.
struct Made {
  std::string text;
  std::size_t objects = 0;
  std::size_t instances = 0;  ///< of IFC
};

constexpr std::size_t part_of_materials = 20;  // one byte of so many

std::string idf_material(std::size_t number) {
  const auto digits = std::to_string(number);
  const auto name = "Material " + digits;
  return "Material,\n  " + name + ",  !- Name\n  MediumRough,  !- Roughness\n  0." + digits +
         "1,  !- Thickness {m}\n  0.81,  !- Conductivity {W/m-K}\n  1800,  !- Density {kg/m3}\n"
         "  920;  !- Specific Heat {J/kg-K}\n\nConstruction,\n  Build-up " +
         digits + ",  !- Name\n  " + name + ",  !- Outside Layer\n  " + name + ";  !- Layer 2\n\n";
}

std::string idf_surface(std::size_t number) {
  const auto digits = std::to_string(number);
  std::string text = "BuildingSurface:Detailed,\n  Surface " + digits +
                     ",  !- Name\n  Wall,  !- Surface Type\n  Build-up 1,  !- Construction Name\n"
                     "  Zone " +
                     digits + ",  !- Zone Name\n  Outdoors,  !- Boundary Condition\n";
  for (int corner = 1; corner <= 12; ++corner) {
    text += "  " + std::to_string(corner) + "." + digits + ",  !- Vertex " +
            std::to_string(corner) + " X-coordinate {m}\n  2.5,  !- Y\n  3.25" +
            (corner == 12 ? ";" : ",") + "  !- Z\n";
  }
  return text + "\n";
}

Made make_idf(std::size_t bytes) {
  Made made{"Version, 9.4;\n\n"};
  std::size_t of_materials = 0;
  for (std::size_t number = 1; made.text.size() < bytes; ++number) {
    if (of_materials * part_of_materials < made.text.size()) {
      const auto material = idf_material(number);
      of_materials += material.size();
      made.text += material;
      made.objects += 2;
    }
    made.text += idf_surface(number);
  }
  return made;
}

/// Writes instances one after the other.
class Instances {
 public:
  explicit Instances(Made& made) : made_(made) {}

  std::string add(const std::string& instance) {
    const auto number = "#" + std::to_string(++made_.instances);
    made_.text += number + "=" + instance + ";\n";
    return number;
  }

 private:
  Made& made_;
};

std::size_t add_ifc_material(Instances& instances, std::size_t number) {
  const auto digits = std::to_string(number);
  const auto material = instances.add("IFCMATERIAL('Material " + digits + "',$,$)");
  const auto property =
      instances.add("IFCPROPERTYSINGLEVALUE('MassDensity',$,IFCMASSDENSITYMEASURE(1800.),$)");
  instances.add("IFCMATERIALPROPERTIES('Pset_MaterialCommon',$,(" + property + ")," + material +
                ")");
  const auto layer = instances.add("IFCMATERIALLAYER(" + material + ",0.24,$,$,$,$,$)");
  instances.add("IFCMATERIALLAYERSET((" + layer + "," + layer + "),'Build-up " + digits + "',$)");
  return 2;
}

void add_ifc_wall(Instances& instances, std::size_t number) {
  const auto digits = std::to_string(number);
  std::string points;
  for (int corner = 0; corner < 8; ++corner) {
    points += (corner > 0 ? "," : "") + instances.add("IFCCARTESIANPOINT((" + digits + "." +
                                                      std::to_string(corner) + ",2.5,3.25))");
  }
  const auto line = instances.add("IFCPOLYLINE((" + points + "))");
  const auto shape = instances.add("IFCSHAPEREPRESENTATION($,'Axis','Curve2D',(" + line + "))");
  const auto whole = instances.add("IFCPRODUCTDEFINITIONSHAPE($,$,(" + shape + "))");
  instances.add("IFCWALL('0YvctVUKr0kugbFTf53O9L',$,'Wall " + digits + "',$,$,$," + whole +
                ",$,$)");
}

Made make_ifc(std::size_t bytes) {
  Made made{
      "ISO-10303-21;\nHEADER;\nFILE_DESCRIPTION((''),'2;1');\n"
      "FILE_NAME('','2020-01-01T00:00:00',(''),(''),'','','');\nFILE_SCHEMA(('IFC4'));\nENDSEC;\n"
      "DATA;\n"};
  Instances instances(made);
  std::size_t of_materials = 0;
  for (std::size_t number = 1; made.text.size() < bytes; ++number) {
    const auto before = made.text.size();
    if (of_materials * part_of_materials < before) {
      made.objects += add_ifc_material(instances, number);
      of_materials += made.text.size() - before;
    }
    add_ifc_wall(instances, number);
  }
  made.text += "ENDSEC;\nEND-ISO-10303-21;\n";
  return made;
}

std::string trimmed(std::string_view text) {
  constexpr std::string_view blanks = " \t\r\n";
  const auto begin = text.find_first_not_of(blanks);
  if (begin == std::string_view::npos) return {};
  return std::string(text.substr(begin, text.find_last_not_of(blanks) - begin + 1));
}

/// Takes IDF apart into objects and these into fields, and no more; gives how many materials and
/// build-ups there are.
std::size_t scan_idf(const std::string& text) {
  std::size_t found = 0;
  std::vector<std::string> fields;
  std::string field;
  for (std::size_t place = 0; place < text.size(); ++place) {
    const char character = text[place];
    if (character == '!') {
      place = std::min(text.find('\n', place), text.size());
    } else if (character == ',' || character == ';') {
      fields.push_back(trimmed(field));
      field.clear();
      if (character == ',') continue;
      if (fields.front() == "Material" || fields.front() == "Construction") ++found;
      fields.clear();
    } else {
      field += character;
    }
  }
  return found;
}

void require(bool holds, const char* sentence) {
  if (!holds) throw std::runtime_error(sentence);
}

/// The reading of the kit; once also what it gives.
void read_with_kit(std::string text) {
  require(veldra::kit::Source("a", std::move(text)).has_objects(), "the kit reads nothing");
}

void require_all_read(const Made& made) {
  const auto sources = veldra::kit::read_together({{"a", made.text}}, {});
  std::size_t read = 0;
  for (const auto& [name, count] : sources.reports[0].read) read += count;
  require(read == made.objects, "the kit does not read all objects");
}

double processor_seconds(const std::function<void()>& work) {
  const auto begin = std::clock();
  work();
  return static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
}

double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

void compare(const char* name, const Made& made, double limit, int rounds, const char* other_name,
             const std::function<void(std::string&)>& other) {
  require_all_read(made);
  std::vector<double> kit;
  std::vector<double> others;
  std::vector<double> ratios;
  for (int round = 0; round < rounds; ++round) {
    auto text = made.text;
    kit.push_back(processor_seconds([&] { read_with_kit(std::move(text)); }));
    text = made.text;
    others.push_back(processor_seconds([&] { other(text); }));
    ratios.push_back(kit.back() / others.back());
  }
  std::printf("%s, %zu MB, %zu materials and build-ups: %.2f s; %s: %.2f s; ratio %.2f of %.1f%s\n",
              name, made.text.size() / 1'000'000, made.objects, median(kit), other_name,
              median(others), median(ratios), limit, median(ratios) > limit ? " missed" : "");
}

/// A whole number behind the name of an option.
int number_of(const std::string& argument, const std::string& option, int otherwise) {
  if (argument.compare(0, option.size(), option) != 0) return otherwise;
  return std::atoi(argument.c_str() + option.size());
}

int run(int argc, char** argv) {
  int megabytes = 100;
  int rounds = 5;
  for (int i = 1; i < argc; ++i) {
    megabytes = number_of(argv[i], "--megabytes=", megabytes);
    rounds = number_of(argv[i], "--rounds=", rounds);
  }
  require(megabytes > 0 && rounds > 0, "--megabytes and --rounds are numbers from 1");
  const auto bytes = static_cast<std::size_t>(megabytes) * 1'000'000;
  const auto idf = make_idf(bytes);
  compare("IDF", idf, 2, rounds, "taking it apart", [&](const std::string& text) {
    require(scan_idf(text) == idf.objects, "the sides find different objects");
  });
  const auto ifc = make_ifc(bytes);
  if (!veldra_bench::has_ifc_model_reader()) {
    std::printf("IFC is not measured, as IfcPlusPlus is missing\n");
    return 0;
  }
  compare("IFC", ifc, 1.2, rounds, "loadModelFromString", [&](std::string& text) {
    require(veldra_bench::entities_in_ifc(text) == ifc.instances,
            "IfcPlusPlus reads other entities");
  });
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run(argc, argv);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
