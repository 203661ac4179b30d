// SPDX-License-Identifier: GPL-2.0-or-later
#include "program/commands.hpp"

#include <stdexcept>

namespace veldra_tests {

namespace {

const std::vector<Command> readers = {
    {"info", {"info", "office.lib"}},
    {"list", {"list", "office.lib", "materials"}},
    {"list as JSON", {"list", "office.lib", "compositions", "--json"}},
    {"show", {"show", "office.lib", "composition", "Ziegelwand"}},
    {"where-used", {"where-used", "office.lib", "material", "Kalkputz"}},
    {"calc", {"calc", "office.lib", "Ziegelwand", "--target-u", "5", "--layer", "1"}, {}, 3},
    {"check", {"check", "office.lib"}},
    {"export", {"export", "office.lib"}},
    {"export of much", {"export", "much.lib"}},
    {"export as CSV", {"export", "office.lib", "--format", "csv"}},
    {"export of an object as IFC",
     {"export", "office.lib", "composition:Ziegelwand", "--format", "ifc"}},
    {"export as gbXML", {"export", "office.lib", "--format", "gbxml"}, {}, 3},
    {"draw", {"draw", "office.lib", "Ziegelwand", "Lehmwand"}},
    {"purge, tried", {"purge", "office.lib", "materials", "tags", "--dry-run"}},
    {"apply, tried", {"apply", "plan.json", "office.lib", "--dry-run"}},
    {"import, tried", {"import", "office.lib", "walls.json", "--dry-run"}},
    {"edit, tried", {"edit", "office.lib", "material:Kork", "composition:Lehmwand", "--dry-run"}},
};

const std::vector<Command> writers = {
    {"create",
     {"create", "new.lib", "--guid", "office", "--locale", "de_AT", "--region", "AT"},
     "new.lib"},
    {"import into a new library", {"import", "new.lib", "walls.json", "glass.idf"}, "new.lib"},
    {"import into a library", {"import", "office.lib", "walls.json"}, "office.lib"},
    {"import of two sources", {"import", "site.lib", "walls.json", "glass.idf"}, "site.lib"},
    {"import of IFC", {"import", "office.lib", "site.ifc"}, "office.lib"},
    {"import of gbXML", {"import", "office.lib", "site.gbxml"}, "office.lib"},
    {"import of a workbook", {"import", "office.lib", "site.xlsx"}, "office.lib"},
    {"export as a workbook", {"export", "office.lib", "-o", "new.xlsx"}, "new.xlsx"},
    {"export to a new file", {"export", "office.lib", "-o", "new.json"}, "new.json"},
    {"export over a file", {"export", "office.lib", "-o", "old.json", "--force"}, "old.json"},
    {"export over what a link leads to",
     {"export", "office.lib", "-o", "link.json", "--force"},
     "old.json"},
    {"draw to a new file", {"draw", "office.lib", "Ziegelwand", "-o", "new.svg"}, "new.svg"},
    {"draw over a file",
     {"draw", "office.lib", "Ziegelwand", "-o", "old.svg", "--force"},
     "old.svg"},
    {"copy",
     {"copy", "office.lib", "site.lib", "composition:Ziegelwand", "material:Kork"},
     "site.lib"},
    {"copy through a link", {"copy", "site.lib", "link", "composition:Bodenplatte"}, "office.lib"},
    {"copy of everything", {"copy", "site.lib", "office.lib", "--all"}, "office.lib"},
    {"import into a plan",
     {"import", "office.lib", "walls.json", "--plan", "new.json"},
     "new.json"},
    {"apply", {"apply", "plan.json", "office.lib"}, "office.lib"},
    {"apply with a backup",
     {"apply", "plan.json", "office.lib", "--backup", "kept.lib"},
     "office.lib",
     0,
     "kept.lib"},
    {"set", {"set", "office.lib", "material:Kork", "manufacturer=Eiche"}, "office.lib"},
    {"edit", {"edit", "office.lib", "material:Kork", "composition:Lehmwand"}, "office.lib"},
    {"edit with a backup",
     {"edit", "office.lib", "material:Kork", "composition:Lehmwand", "--backup", "kept.lib"},
     "office.lib",
     0,
     "kept.lib"},
    {"rename", {"rename", "office.lib", "composition:Ziegelwand", "Wand"}, "office.lib"},
    {"layers", {"layers", "office.lib", "Ziegelwand", "add", "Kork", "40"}, "office.lib"},
    {"remove", {"remove", "office.lib", "materials", "Kork"}, "office.lib"},
    {"remove of some", {"remove", "office.lib", "materials", "Kork", "Ziegel"}, "office.lib", 3},
    {"purge", {"purge", "office.lib", "materials", "types", "tags"}, "office.lib"},
    {"purge of compositions",
     {"purge", "office.lib", "compositions", "materials", "--yes"},
     "office.lib"},
    {"import with a backup",
     {"import", "office.lib", "walls.json", "--backup", "kept.lib"},
     "office.lib",
     0,
     "kept.lib"},
    {"remove with a backup",
     {"remove", "office.lib", "materials", "Kork", "--backup", "kept.lib"},
     "office.lib",
     0,
     "kept.lib"},
    {"restore", {"restore", "--force", "site.lib", "office.lib"}, "site.lib"},
    {"restore with a backup",
     {"restore", "--force", "site.lib", "office.lib", "--backup", "kept.lib"},
     "site.lib",
     0,
     "kept.lib"},
};

std::vector<Command> all() {
  std::vector<Command> result = readers;
  result.insert(result.end(), writers.begin(), writers.end());
  return result;
}

}  // namespace

const std::vector<Command>& commands() {
  static const std::vector<Command> result = all();
  return result;
}

const std::vector<Command>& writing_commands() { return writers; }

const Command& command_named(const std::string& name) {
  for (const Command& command : commands()) {
    if (command.name == name) return command;
  }
  throw std::invalid_argument(name);
}

}  // namespace veldra_tests
