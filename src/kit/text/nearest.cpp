// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/kit/text.hpp>

#include "kit/text/characters.hpp"
#include "kit/text/list.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <numeric>
#include <set>

namespace veldra::kit {

namespace {

/// The number of letters to insert, remove, replace or exchange with their neighbours that turn a
/// text into another one, or into any part of it.
std::size_t distance(const std::u32string& wanted, const std::u32string& name, bool any_part) {
  std::vector<std::size_t> before;
  std::vector<std::size_t> above(name.size() + 1, 0);
  std::vector<std::size_t> row(name.size() + 1);
  if (!any_part) std::iota(above.begin(), above.end(), 0);
  for (std::size_t i = 1; i <= wanted.size(); ++i) {
    row[0] = i;
    for (std::size_t j = 1; j <= name.size(); ++j) {
      const std::size_t replaced = wanted[i - 1] == name[j - 1] ? 0 : 1;
      row[j] = std::min({above[j] + 1, row[j - 1] + 1, above[j - 1] + replaced});
      const bool exchanged =
          i > 1 && j > 1 && wanted[i - 1] == name[j - 2] && wanted[i - 2] == name[j - 1];
      if (exchanged) row[j] = std::min(row[j], before[j - 2] + 1);
    }
    before = above;
    std::swap(above, row);
  }
  return any_part ? *std::min_element(above.begin(), above.end()) : above.back();
}

/// A part of a name needs some letters, or it would be a part of most names.
constexpr std::size_t shortest_part = 3;

/// Nobody mistypes a longer one.
constexpr std::size_t longest_name = 200;

}  // namespace

Nearest::Nearest(const std::string& wanted, std::size_t most)
    : wanted_(folded_characters(wanted).value_or(std::u32string())), most_(most) {}

void Nearest::offer(const std::string& name) {
  const auto characters = folded_characters(name);
  if (!characters || wanted_.size() > longest_name || characters->size() > longest_name) return;
  const std::size_t as_a_whole = distance(wanted_, *characters, false);
  if (as_a_whole <= wanted_.size() / 3) return keep({as_a_whole, name});
  const std::size_t as_a_part = distance(wanted_, *characters, true);
  // What is only mistyped goes before what is incomplete.
  if (wanted_.size() >= shortest_part && as_a_part <= wanted_.size() / 5) {
    keep({wanted_.size() + as_a_part, name});
  }
}

void Nearest::keep(Found found) {
  const auto place = std::upper_bound(
      found_.begin(), found_.end(), found,
      [](const Found& left, const Found& right) { return left.distance < right.distance; });
  found_.insert(place, std::move(found));
  if (found_.size() > most_) found_.pop_back();
}

std::vector<std::string> Nearest::names() const {
  std::vector<std::string> names;
  names.reserve(found_.size());
  for (const Found& found : found_) names.push_back(found.name);
  return names;
}

std::vector<std::string> nearest(const std::string& wanted, const std::vector<std::string>& names) {
  Nearest search(wanted);
  for (const std::string& name : names) search.offer(name);
  return search.names();
}

std::string suggestion(const std::vector<std::string>& names) {
  if (names.empty()) return {};
  std::string text = "; did you mean ";
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (i > 0) text += i + 1 == names.size() ? " or " : ", ";
    text += fmt::format("'{}'", names[i]);
  }
  return text + "?";
}

std::string list_of(const std::vector<std::string>& names, std::size_t most) {
  std::string text;
  for (std::size_t i = 0; i < std::min(names.size(), most); ++i) {
    text += (text.empty() ? "" : ", ") + names[i];
  }
  if (names.size() > most) text += fmt::format(" and {} more", names.size() - most);
  return text;
}

/// All names, those first that are most like the one that is wanted.
static std::vector<std::string> nearest_first(const std::string& wanted,
                                              const std::vector<std::string>& names,
                                              std::size_t most) {
  Nearest search(wanted, most);
  for (const auto& name : names) search.offer(name);
  auto result = search.names();
  const std::set<std::string> near(result.begin(), result.end());
  for (const auto& name : names) {
    if (near.count(name) == 0) result.push_back(name);
  }
  return result;
}

std::string choice_of(const std::string& wanted, const std::vector<std::string>& names,
                      std::size_t most) {
  if (names.empty()) return {};
  const std::string question = suggestion(nearest(wanted, names));
  const auto shown = names.size() > most ? nearest_first(wanted, names, most) : names;
  return fmt::format("{} there {} {}", question.empty() ? ";" : question,
                     names.size() == 1 ? "is" : "are", list_of(shown, most));
}

}  // namespace veldra::kit
