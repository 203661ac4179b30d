// SPDX-License-Identifier: GPL-2.0-or-later
// Random filters over random materials, beside a plain evaluation that knows neither fields nor the
// parser nor Unicode's rules: the words are of a few forms that are written down here.
#include "kit/kit_names.hpp"
#include "support/library_fixture.hpp"

#include <cstdlib>
#include <random>

namespace veldra_tests {
namespace {

struct Word {
  const char* written;
  const char* form;
};

const std::vector<Word> words{{"Ziegel", "ziegel"}, {"ZIEGEL", "ziegel"},  {"Änder", "ander"},
                              {"ander", "ander"},   {"Straße", "strasse"}, {"STRASSE", "strasse"},
                              {"egel", "egel"},     {"an", "an"}};

std::string form_of(const std::string& written) {
  for (const Word& word : words) {
    if (written == word.written) return word.form;
  }
  return written;
}

/// What the plain evaluation knows of a material.
struct Plain {
  std::string name;
  std::string maker;  ///< empty for none
  std::vector<std::string> tags;
  std::set<double> thicknesses;
  std::optional<double> conductivity;
  bool flexible = true;
};

/// A filter as text, and whether a material does.
struct Case {
  std::string text;
  std::function<bool(const Plain&)> holds;
};

class RandomFilters {
 public:
  explicit RandomFilters(unsigned seed) : random_(seed) {}

  Plain material(unsigned number) {
    Plain plain;
    plain.name = "m" + std::to_string(number);
    if (below(3) > 0) plain.maker = word();
    for (unsigned i = below(3); i > 0; --i) plain.tags.push_back(word());
    for (unsigned i = below(3); i > 0; --i) plain.thicknesses.insert(10.0 * (1 + below(5)));
    if (below(2) > 0) plain.conductivity = 0.1 * (1 + below(5));
    plain.flexible = below(2) > 0;
    return plain;
  }

  Case filter(unsigned depth) {
    const unsigned kind = depth == 0 ? 3 : below(5);
    if (kind == 0) return joined(depth, " and ", [](bool a, bool b) { return a && b; });
    if (kind == 1) return joined(depth, " or ", [](bool a, bool b) { return a || b; });
    if (kind != 2) return comparison();
    const auto part = filter(depth - 1);
    return {"not (" + part.text + ")", [part](const Plain& each) { return !part.holds(each); }};
  }

 private:
  unsigned below(unsigned limit) { return static_cast<unsigned>(random_() % limit); }
  std::string word() { return words[below(static_cast<unsigned>(words.size()))].written; }

  template <class Join>
  Case joined(unsigned depth, const char* word, Join join) {
    const auto left = filter(depth - 1);
    const auto right = filter(depth - 1);
    return {"(" + left.text + ")" + word + "(" + right.text + ")",
            [=](const Plain& each) { return join(left.holds(each), right.holds(each)); }};
  }

  Case comparison() {
    switch (below(6)) {
      case 0:
        return of_texts("manufacturer", [](const Plain& each) {
          return each.maker.empty() ? std::vector<std::string>() : std::vector{each.maker};
        });
      case 1:
        return of_texts("tag", [](const Plain& each) { return each.tags; });
      case 2:
        return of_numbers("thickness", "mm", 10, [](const Plain& each) {
          return std::vector<double>(each.thicknesses.begin(), each.thicknesses.end());
        });
      case 3:
        return of_numbers("conductivity", "W/(m K)", 0.1, [](const Plain& each) {
          return each.conductivity ? std::vector{*each.conductivity} : std::vector<double>();
        });
      case 4: {
        const bool yes = below(2) > 0;
        return {std::string("allow_custom_thickness = ") + (yes ? "yes" : "no"),
                [yes](const Plain& each) { return each.flexible == yes; }};
      }
      default:
        return {"manufacturer is empty", [](const Plain& each) { return each.maker.empty(); }};
    }
  }

  template <class Of>
  Case of_texts(const std::string& field, Of of) {
    using Compare = bool (*)(const std::string&, const std::string&);
    static const std::vector<std::pair<std::string, Compare>> by{
        {"~",
         [](const std::string& a, const std::string& b) {
           return form_of(a).find(form_of(b)) != std::string::npos;
         }},
        {"~~",
         [](const std::string& a, const std::string& b) { return a.find(b) != std::string::npos; }},
        {"=", [](const std::string& a, const std::string& b) { return form_of(a) == form_of(b); }},
        {"==", [](const std::string& a, const std::string& b) { return a == b; }},
        {"<", [](const std::string& a, const std::string& b) { return form_of(a) < form_of(b); }},
        {">=", [](const std::string& a, const std::string& b) { return form_of(a) >= form_of(b); }},
        {"!=",
         [](const std::string& a, const std::string& b) { return form_of(a) == form_of(b); }}};
    return compared(field, by, word(), "'", "'", of);
  }

  template <class Of>
  Case of_numbers(const std::string& field, const std::string& unit, double step, Of of) {
    using Compare = bool (*)(double, double);
    static const std::vector<std::pair<std::string, Compare>> by{
        {"=", [](double a, double b) { return std::abs(a - b) < 1e-9; }},
        {"<", [](double a, double b) { return a < b - 1e-9; }},
        {"<=", [](double a, double b) { return a <= b + 1e-9; }},
        {">", [](double a, double b) { return a > b + 1e-9; }},
        {">=", [](double a, double b) { return a >= b - 1e-9; }},
        {"!=", [](double a, double b) { return std::abs(a - b) < 1e-9; }}};
    const double number = step * (1 + below(5));
    return compared(field, by, number, "", below(2) > 0 ? " " + unit : "", of);
  }

  static std::string written(const std::string& value) { return value; }
  static std::string written(double value) { return kit::exact_number(value); }

  template <class Operators, class T, class Of>
  Case compared(const std::string& field, const Operators& operators, const T& value,
                const std::string& before, const std::string& behind, Of of) {
    const auto& [name, compare] = operators[below(static_cast<unsigned>(operators.size()))];
    const bool none = name == "!=";
    return {field + " " + name + " " + before + written(value) + behind,
            [=, compare = compare](const Plain& each) {
              const auto list = of(each);
              const bool any = std::any_of(list.begin(), list.end(),
                                           [&](const T& entry) { return compare(entry, value); });
              return !list.empty() && any != none;
            }};
  }

  std::mt19937 random_;
};

std::shared_ptr<Material> made_of(const Plain& plain) {
  const auto material = Material::create(text(plain.name));
  material->manufacturer(text(plain.maker));
  for (const auto& tag : plain.tags) material->addTag(Tag::create(text(tag)));
  material->thicknesses(toModify) = plain.thicknesses;
  if (plain.conductivity) {
    material->custom_value(kit::property::conductivity,
                           text(kit::exact_number(*plain.conductivity)));
  }
  material->allow_custom_thickness(plain.flexible);
  return material;
}

using KitFilterModel = LibraryFixture;

TEST_F(KitFilterModel, selects_what_a_plain_evaluation_selects) {
  const char* wanted = std::getenv("VELDRA_TEST_SEED");
  const unsigned seed =
      wanted ? static_cast<unsigned>(std::strtoul(wanted, nullptr, 10)) : std::random_device()();
  SCOPED_TRACE("VELDRA_TEST_SEED=" + std::to_string(seed));
  RandomFilters filters(seed);
  const auto library = create();
  for (const Word& word : words) library->save(Tag::create(word.written));
  std::vector<std::pair<Plain, std::shared_ptr<Material>>> materials;
  for (unsigned number = 0; number < 40; ++number) {
    const auto plain = filters.material(number);
    materials.emplace_back(plain, library->save(made_of(plain)));
  }
  const kit::Fields<Material> fields(*library);
  std::size_t selected = 0;
  for (int round = 0; round < 2000 && !HasFailure(); ++round) {
    const auto filter = filters.filter(4);
    const kit::Filter<Material> selects(filter.text, fields);
    for (const auto& [plain, material] : materials) {
      EXPECT_EQ(selects(*material), filter.holds(plain)) << plain.name << ": " << filter.text;
      selected += filter.holds(plain) ? 1 : 0;
    }
  }
  EXPECT_GT(selected, 1000U);  // the filters do not select nothing
}

}  // namespace
}  // namespace veldra_tests
