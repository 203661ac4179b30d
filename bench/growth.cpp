// SPDX-License-Identifier: GPL-2.0-or-later
#include "growth.hpp"

#include "measuring.hpp"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <iterator>
#include <map>
#include <stdexcept>
#include <string>

namespace veldra_bench {

namespace {

/// Lists are read in batches: a list of a million objects is not what a program holds.
const char* const names[] = {"each_material",
                             "each_composition",
                             "search_materials",
                             "count_materials",
                             "count_by_tags",
                             "get_material_by_id",
                             "save_one_material",
                             "save_into_full",
                             "copy_all",
                             "purge_materials",
                             "check",
                             "referrers"};

const double most_growth = 1.2;

/// The plain program object by object, or with the fewest statements where that takes too long.
const Compared& looked_at(const Figures& figures) {
  return figures.plain.exists ? figures.plain : figures.fewest;
}

/// The figures of each work, and what failed.
struct Series {
  std::map<std::string, Figures> figures;
  std::map<std::string, std::string> failures;
};

void measure_work(const TimedWork& work, int rounds, Workshop& workshop, Series& series) {
  try {
    series.figures[work.name] = measure(work, rounds, workshop);
  } catch (const std::exception& error) {
    series.failures[work.name] = error.what();
  } catch (const veldra::Exception& error) {
    series.failures[work.name] = veldra::String(error.what()).utf8();
  }
}

Series measure_all(const std::vector<TimedWork>& works, unsigned materials, int rounds,
                   const std::string& folder) {
  const std::string own = folder + "/" + std::to_string(materials);
  std::filesystem::create_directory(own);
  Series series;
  {
    Workshop workshop(own, materials);
    for (const TimedWork& work : works) {
      std::fprintf(stderr, "%s of %u materials\n", work.name, materials);
      measure_work(work, rounds, workshop, series);
    }
  }
  std::filesystem::remove_all(own);
  return series;
}

void print_grown(const TimedWork& work, const Figures& small, const Figures& large) {
  const Compared& from = looked_at(small);
  const Compared& to = looked_at(large);
  const double grown = to.ratio / from.ratio;
  std::printf("%-20s %12.2f %8s %8s %12.2f %8s %8s %7.2f%s\n", work.name, small.veldra,
              ratio_text(from.ratio).c_str(), ratio_text(small.fewest.ratio).c_str(), large.veldra,
              ratio_text(to.ratio).c_str(), ratio_text(large.fewest.ratio).c_str(), grown,
              grown > most_growth ? " missed" : "");
}

/// Returns whether there is nothing to print.
bool print_failure(const char* work, const Series& series) {
  const auto failure = series.failures.find(work);
  if (failure == series.failures.end()) return true;
  std::printf("%-20s %s\n", work, failure->second.c_str());
  return false;
}

}  // namespace

std::vector<TimedWork> growing_works(const std::vector<TimedWork>& works) {
  const auto grows = [](const TimedWork& work) {
    return std::find(std::begin(names), std::end(names), std::string(work.name)) != std::end(names);
  };
  std::vector<TimedWork> growing;
  std::copy_if(works.begin(), works.end(), std::back_inserter(growing), grows);
  return growing;
}

bool measure_growth(const std::vector<TimedWork>& works, const Growth& growth,
                    const std::string& folder) {
  const Series small = measure_all(works, growth.from, growth.rounds, folder);
  const Series large = measure_all(works, growth.to, std::max(growth.rounds / 3, 1), folder);
  std::printf("%-20s %12s %8s %8s %12s %8s %8s %7s (at most %.2f)\n", "work",
              ("us, " + std::to_string(growth.from)).c_str(), "ratio", "fewest",
              ("us, " + std::to_string(growth.to)).c_str(), "ratio", "fewest", "grown",
              most_growth);
  bool all_ran = true;
  for (const TimedWork& work : works) {
    const bool ran = print_failure(work.name, small) && print_failure(work.name, large);
    if (ran) print_grown(work, small.figures.at(work.name), large.figures.at(work.name));
    all_ran = all_ran && ran;
  }
  return all_ran;
}

}  // namespace veldra_bench
