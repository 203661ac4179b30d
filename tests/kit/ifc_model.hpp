// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_KIT_IFC_MODEL_HPP
#define VELDRA_TESTS_KIT_IFC_MODEL_HPP

#include <string>

namespace veldra_tests {

/// The text of an IFC model with these instances.
inline std::string ifc_model(const std::string& instances, const std::string& schema = "IFC4") {
  return "ISO-10303-21;\nHEADER;\n"
         "FILE_DESCRIPTION(('ViewDefinition [ReferenceView]'),'2;1');\n"
         "FILE_NAME('house.ifc','2024-05-01T12:00:00',('A. Nother'),('Office'),'','','');\n"
         "FILE_SCHEMA(('" +
         schema + "'));\nENDSEC;\nDATA;\n" + instances + "ENDSEC;\nEND-ISO-10303-21;\n";
}

/// The instances that make millimetres the unit of length.
constexpr const char* ifc_millimetres =
    "#900=IFCPROJECT('1xS3BCk291UvhgP2a6eflL',$,'House',$,$,$,$,$,#901);\n"
    "#901=IFCUNITASSIGNMENT((#902,#903));\n"
    "#902=IFCSIUNIT(*,.LENGTHUNIT.,.MILLI.,.METRE.);\n"
    "#903=IFCSIUNIT(*,.MASSUNIT.,.KILO.,.GRAM.);\n";

}  // namespace veldra_tests

#endif
