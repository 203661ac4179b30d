// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/ifc_model.hpp"
#include "kit/kit_names.hpp"

#include "support/builders.hpp"

#include <gmock/gmock.h>

#include <functional>
#include <random>

namespace veldra_tests {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::size_t million = 1000000;

std::string numbered(std::size_t first, std::size_t count, const std::string& behind) {
  std::string text;
  for (std::size_t i = first; i < first + count; ++i) {
    text += "#" + std::to_string(i) + "=" + behind;
  }
  return text;
}

const std::string wall =
    "#1=IFCMATERIAL('A',$,$);\n#2=IFCMATERIALLAYER(#1,1.,$,$,$,$,$);\n"
    "#3=IFCMATERIALLAYERSET((#2),'W',$);\n";

kit::Sources read(const std::string& instances) {
  return kit::read_together({{"house.ifc", ifc_model(instances)}}, {});
}

std::string error_in(const std::string& instances) {
  return error_of([&] { read(instances); });
}

TEST(HostileIfc, may_have_a_million_instances_of_other_classes) {
  const auto sources = read(wall + numbered(10, million, "IFCCARTESIANPOINT((0.,0.,1.));\n"));
  EXPECT_EQ(sources.library->count<Composition>(), 1U);
}

TEST(HostileIfc, may_have_a_million_fields) {
  const auto sources = read(wall + "#9=IFCMATERIAL('B',$" + repeated(",$", million) + ");\n");
  EXPECT_EQ(sources.library->count<Material>(), 2U);
}

TEST(HostileIfc, may_have_endless_lines_and_blanks_and_comments) {
  const auto sources = read(wall + repeated("\n", million) + repeated("/* ' */", million) +
                            "#9=IFCMATERIAL(" + repeated("/**/", million) + "'B'" +
                            repeated("/**/", million) + repeated(" ", million) + ",$,$);\n");
  EXPECT_EQ(sources.library->count<Material>(), 2U);
}

TEST(HostileIfc, is_refused_for_lists_in_lists_without_end) {
  EXPECT_THAT(
      error_in(wall + "#9=IFCMATERIAL(" + repeated("(", million) + repeated(")", million) + ");\n"),
      HasSubstr("line 11: lists stand too deeply within lists"));
  EXPECT_THAT(error_in(wall + "#9=IFCREAL(" + repeated("IFCREAL(", million) + ");\n"),
              HasSubstr("line 11: lists stand too deeply within lists"));
}

TEST(HostileIfc, is_refused_for_strings_that_are_too_long_or_do_not_end) {
  EXPECT_THAT(error_in(wall + "#9=IFCMATERIAL('" + std::string(2 * million, 'x') + "',$,$);\n"),
              HasSubstr("line 11: a string is longer than 1 MiB"));
  EXPECT_THAT(error_in(wall + "#9=IFCMATERIAL('" + repeated("''", 5 * million) + ",$,$);\n"),
              HasSubstr("line 11: a string does not end"));
}

TEST(HostileIfc, may_have_escapes_that_do_not_end) {
  const auto digits = repeated("00E4", 1000);
  const auto sources = read("#1=IFCMATERIAL('a\\X2\\" + digits + "',$,$);\n#2=IFCMATERIAL('b" +
                            repeated("\\X2\\00E4", 1000) + "',$,$);\n#3=IFCMATERIAL('c\\',$,$);\n");
  EXPECT_NE(sources.library->get<Material>(text("a\\X2\\" + digits)), nullptr);
  EXPECT_EQ(sources.library->count<Material>(), 3U);
}

TEST(HostileIfc, tells_a_set_with_more_layers_than_any_build_up_has) {
  const auto sources = read(
      "#1=IFCMATERIAL('A',$,$);\n#2=IFCMATERIALLAYER(#1,1.,$,$,$,$,$);\n"
      "#3=IFCMATERIALLAYERSET((#2" +
      repeated(",#2", million) + "),'W',$);\n");
  EXPECT_EQ(sources.library->count<Composition>(), 0U);
  EXPECT_EQ(sources.reports[0].problems.back().sentence, "layer set 'W': it has 1000001 layers");
}

TEST(HostileIfc, may_refer_to_itself) {
  const auto sources = read(R"(#1=IFCMATERIAL('A',$,$);
#2=IFCMATERIALLAYER(#2,1.,$,$,$,$,$);
#3=IFCMATERIALLAYERSET((#3,#2),'W',$);
#4=IFCUNITASSIGNMENT((#5,#4,#8));
#5=IFCCONVERSIONBASEDUNIT(#5,.LENGTHUNIT.,'X',#6);
#6=IFCMEASUREWITHUNIT(IFCREAL(2.),#5);
#8=IFCDERIVEDUNIT((#9),.MASSUNIT.,$);
#9=IFCDERIVEDUNITELEMENT(#8,2);
#10=IFCMATERIALDEFINITIONREPRESENTATION($,$,(#11),#1);
#11=IFCSTYLEDREPRESENTATION($,$,$,(#11,#12));
#12=IFCSTYLEDITEM($,(#12,#11),$);
#13=IFCRELDEFINESBYTYPE('g',$,$,$,(#13),#13);
#14=IFCRELASSOCIATESMATERIAL('h',$,$,$,(#14,#15),#3);
#15=IFCWALLTYPE('i',$,'T',$,$,(#15),$,$,$,.STANDARD.);
#16=IFCMATERIALPROPERTIES('P',$,(#16),#1);
)");
  EXPECT_EQ(sources.library->count<Material>(), 1U);
  EXPECT_EQ(sources.library->count<Composition>(), 0U);
}

TEST(HostileIfc, may_have_units_and_styles_in_long_chains) {
  std::string units = "#1=IFCUNITASSIGNMENT((#10));\n";
  for (unsigned i = 10; i < 20000; i += 2) {
    units += "#" + std::to_string(i) + "=IFCCONVERSIONBASEDUNIT($,.LENGTHUNIT.,'X',#" +
             std::to_string(i + 1) + ");\n#" + std::to_string(i + 1) +
             "=IFCMEASUREWITHUNIT(IFCREAL(2.),#" + std::to_string(i + 2) + ");\n";
  }
  std::string styles =
      "#100000=IFCMATERIAL('A',$,$);\n"
      "#100001=IFCMATERIALDEFINITIONREPRESENTATION($,$,(#100002),#100000);\n";
  for (unsigned i = 100002; i < 120000; ++i) {
    styles += "#" + std::to_string(i) + "=IFCSTYLEDREPRESENTATION($,$,$,(";
    for (unsigned j = 1; j < 20; ++j) styles += "#" + std::to_string(i + j) + ",";
    styles += "#" + std::to_string(i) + "));\n";
  }
  EXPECT_EQ(read(units + styles).library->count<Material>(), 1U);
}

TEST(HostileIfc, is_refused_for_large_instances_that_are_referred_to_over_and_over) {
  const std::string sentence = "are referred to far too often";
  const std::string large(million, 'x');
  std::string sets;
  for (unsigned i = 10; i < 1000; ++i) {
    sets += "#" + std::to_string(i) + "=IFCMATERIALPROPERTIES('s" + std::to_string(i) +
            "',$,(#2),#1);\n";
  }
  EXPECT_THAT(error_in("#1=IFCMATERIAL('A',$,$);\n#2=IFCPROPERTYSINGLEVALUE('p',$,IFCTEXT('" +
                       large + "'),$);\n" + sets),
              HasSubstr(sentence));
  EXPECT_THAT(error_in(wall + "#4=IFCCLASSIFICATIONREFERENCE($,$,'" + large +
                       "',$,$,$);\n#5=IFCEXTERNALREFERENCERELATIONSHIP($,$,#4,(#1" +
                       repeated(",#1", 1000) + "));\n"),
              HasSubstr(sentence));
  EXPECT_THAT(error_in(wall + "#4=IFCWALL('" + large +
                       "',$,'n',$,$,$,$,$,$);\n#5=IFCRELASSOCIATESMATERIAL('g',$,$,$,(#4" +
                       repeated(",#4", 1000) + "),#3);\n"),
              HasSubstr(sentence));
  EXPECT_THAT(error_in("#1=IFCMATERIAL('A',$,$);\n#2=IFCPROPERTYSINGLEVALUE('p',$,IFCREAL(1.),$);\n"
                       "#3=IFCMATERIALPROPERTIES('" +
                       large + "',$,(#2" + repeated(",#2", 1000) + "),#1);\n"),
              HasSubstr(sentence));
}

TEST(HostileIfc, may_have_many_properties_of_one_material) {
  std::string properties;
  std::string list;
  for (unsigned i = 10; i < 20000; ++i) {
    const auto number = std::to_string(i);
    properties += "#" + number + "=IFCPROPERTYSINGLEVALUE('p" + number + "',$,IFCREAL(1.),$);\n";
    list += (list.empty() ? "#" : ",#") + number;
  }
  const auto sources = read("#1=IFCMATERIAL('A',$,$);\n#2=IFCMATERIALPROPERTIES('s',$,(" + list +
                            "),#1);\n" + properties);
  EXPECT_THAT(sources.library->get<Material>(text("A"))->custom_values(), SizeIs(19990));
}

/// Whatever a file holds, it comes in or ends with a sentence.
TEST(HostileIfc, with_changed_bytes_ends_with_a_sentence) {
  const auto whole = ifc_model(std::string(ifc_millimetres) + wall + R"(
#4=IFCMATERIALPROPERTIES('Pset_MaterialThermal',$,(#5),#1);
#5=IFCPROPERTYSINGLEVALUE('ThermalConductivity',$,IFCTHERMALCONDUCTIVITYMEASURE(0.8),$);
#6=IFCMATERIALPROPERTIES('veldra',$,(#7,#8),#1);
#7=IFCPROPERTYSINGLEVALUE('thicknesses',$,IFCTEXT('1;2'),$);
#8=IFCPROPERTYSINGLEVALUE('shading_color',$,IFCTEXT('0.1;0.2;0.3;1'),$);
#9=IFCWALLTYPE('g',$,'T\X2\00E4\X0\',$,$,(#10),$,$,$,.STANDARD.);
#10=IFCPROPERTYSET('h',$,'veldra',$,(#11,#12));
#11=IFCPROPERTYSINGLEVALUE('structural_layer',$,IFCREAL(0.),$);
#12=IFCPROPERTYSINGLEVALUE('layer functions',$,IFCTEXT('1'),$);
#13=IFCRELASSOCIATESMATERIAL('i',$,$,$,(#9),#3);
)");
  std::mt19937 random(7);
  static const std::string bytes = "#=(),;'$*./\\X0123456789ETFu\n -";
  for (unsigned round = 0; round < 2000; ++round) {
    auto changed = whole;
    for (unsigned change = 0; change < 1 + round % 4; ++change) {
      const auto place = random() % changed.size();
      switch (random() % 3) {
        case 0:
          changed[place] = bytes[random() % bytes.size()];
          break;
        case 1:
          changed.erase(place, 1 + random() % 5);
          break;
        default:
          changed.insert(place, changed.substr(random() % changed.size(), random() % 30));
      }
    }
    try {
      kit::read_together({{"house.ifc", changed}}, {});
    } catch (const kit::Error& error) {
      EXPECT_THAT(error.what(), HasSubstr("'house.ifc'")) << changed;
    }
  }
}

TEST(HostileIfc, tells_own_values_that_are_none) {
  const auto sources = read(wall + R"(
#6=IFCMATERIALPROPERTIES('veldra',$,(#7,#8),#1);
#7=IFCPROPERTYSINGLEVALUE('thicknesses',$,IFCTEXT('thick'),$);
#8=IFCPROPERTYSINGLEVALUE('mark',$,IFCTEXT('7'),$);
#9=IFCWALLTYPE('g',$,'T',$,$,(#10),$,$,$,.STANDARD.);
#10=IFCPROPERTYSET('h',$,'veldra',$,(#11,#12));
#11=IFCPROPERTYSINGLEVALUE('structural_layer',$,IFCREAL(1.),$);
#12=IFCPROPERTYSINGLEVALUE('layer functions',$,IFCTEXT('1e99'),$);
#13=IFCRELASSOCIATESMATERIAL('i',$,$,$,(#9),#3);
)");
  std::vector<std::string> sentences;
  for (const auto& problem : sources.reports[0].problems) {
    EXPECT_TRUE(problem.doubt) << "the objects come in";
    sentences.push_back(problem.sentence);
  }
  ASSERT_THAT(sentences, SizeIs(4)) << "and the unit of lengths";
  EXPECT_THAT(sentences[1], HasSubstr("material 'A': "));
  EXPECT_THAT(sentences[2], HasSubstr("layer set 'W': '1' is no layer for 'structural_layer'"));
  EXPECT_THAT(sentences[3], HasSubstr("layer set 'W': '1e99' is no function of a layer"));
  EXPECT_EQ(sources.library->get<Material>(text("A"))->mark(), text("7"));
}

}  // namespace
}  // namespace veldra_tests
