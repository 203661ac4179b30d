// SPDX-License-Identifier: GPL-2.0-or-later
//
// Measures the library beside plain SQLite programs that do the same work (plain_sqlite.h), and
// beside what a program would use otherwise. Each line of the table that it prints is one work;
// `--help` says what each of them measures.
//
// The sides of a work are:
//
// veldra      the library
// statements  the plain program, object by object, with a statement for each reference
// fewest      the plain program with the fewest statements; each object has copies of its own
// shared      the same, where what several objects refer to is in memory once
// otherwise   SQLiteCpp, one JSON document, or another work of the library to compare with
//
// Beside the time of each side stand how many times as much the library took, by how much the
// rounds differ in that, and the same ratio of the processor times. Times include freeing what was
// read, but for the lists of everything. All sides work on files of the same contents and take
// turns, a round each, so that what else the machine does meets them all; the figures are medians
// of the rounds. Before the first round that counts, each side does the work once and must have
// read the same values, or left the same rows. The syncs are the waits for the disk per item, of
// the library and of the plain program.

#include "growth.hpp"
#include "measuring.hpp"
#include "otherwise.hpp"
#include "table.hpp"
#include "work.hpp"

#include <stdlib.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <regex>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace veldra_bench {
namespace {

struct Options {
  unsigned materials = 10000;
  int rounds = 9;
  std::string folder;
  std::string filter;
  bool help = false;
  bool list = false;
  bool large = false;
  bool copy_memory = false;
  unsigned growth = 0;  ///< 0: not asked for
};

const char usage[] =
    "\nveldra_bench [options]\n"
    "  --filter=EXPRESSION  only the works in whose names it is found, a regular expression\n"
    "  --list               prints the names of the works that would be measured\n"
    "  --materials=N        size of the libraries (10000)\n"
    "  --rounds=N           rounds of each work (9; fewer for what takes long)\n"
    "  --folder=PATH        where the files are made (the folder for temporary files)\n"
    "  --large              also what takes minutes\n"
    "  --growth[=N]         how the ratios change up to N materials (1000000)\n"
    "  --copy-memory        measures only how much memory copying a library takes\n";

/// The arguments are wrong, or nothing is to be measured.
struct UsageError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

bool value_of(std::string_view argument, std::string_view option, std::string& value) {
  if (argument.substr(0, option.size()) != option) return false;
  value = argument.substr(option.size());
  return true;
}

unsigned number_of(std::string_view option, const std::string& value) {
  std::size_t end = 0;
  unsigned long number = 0;
  try {
    number = std::stoul(value, &end);
  } catch (const std::logic_error&) {
  }
  if (end == 0 || end != value.size() || number == 0 || number > 100'000'000) {
    throw UsageError(std::string(option) + " takes a number above 0, not '" + value + "'");
  }
  return static_cast<unsigned>(number);
}

Options parse(int count, char** arguments) {
  Options options;
  for (int i = 1; i != count; ++i) {
    const std::string_view argument = arguments[i];
    std::string value;
    if (value_of(argument, "--materials=", value)) {
      options.materials = number_of("--materials", value);
    } else if (value_of(argument, "--rounds=", value)) {
      options.rounds = static_cast<int>(number_of("--rounds", value));
    } else if (value_of(argument, "--folder=", value)) {
      options.folder = value;
    } else if (value_of(argument, "--filter=", value)) {
      options.filter = value;
    } else if (value_of(argument, "--growth=", value)) {
      options.growth = number_of("--growth", value);
    } else if (argument == "--growth") {
      options.growth = 1'000'000;
    } else if (argument == "--copy-memory") {
      options.copy_memory = true;
    } else if (argument == "--large") {
      options.large = true;
    } else if (argument == "--list") {
      options.list = true;
    } else if (argument == "--help") {
      options.help = true;
    } else {
      throw UsageError("no option " + std::string(argument));
    }
  }
  return options;
}

/// A folder of this run, which goes with all that is in it.
class WorkFolder {
 public:
  explicit WorkFolder(const std::string& parent) {
    path_ = (parent.empty() ? std::filesystem::temp_directory_path().string() : parent) +
            "/veldra-bench-XXXXXX";
    if (::mkdtemp(&path_[0]) == nullptr) throw std::runtime_error("no folder " + path_);
  }
  WorkFolder(const WorkFolder&) = delete;
  WorkFolder& operator=(const WorkFolder&) = delete;
  ~WorkFolder() { std::filesystem::remove_all(path_); }

  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

std::vector<TimedWork> timed_works() {
  std::vector<TimedWork> works;
  for (const auto& part : {reading_works(), list_works(), saving_works(), file_works(),
                           removing_works(), copying_works(), document_works()}) {
    works.insert(works.end(), part.begin(), part.end());
  }
  return works;
}

/// The works in whose names the expression is found.
template <class AnyWork>
std::vector<AnyWork> chosen(std::vector<AnyWork> works, const std::regex& expression) {
  const auto left_out = [&expression](const AnyWork& work) {
    return !std::regex_search(work.name, expression);
  };
  works.erase(std::remove_if(works.begin(), works.end(), left_out), works.end());
  return works;
}

struct Works {
  std::vector<TimedWork> timed;
  std::vector<MemoryWork> memory;
};

/// Those that there are for the options, whatever their names.
Works offered_works(const Options& options) {
  Works works{timed_works(), memory_works()};
  if (options.growth != 0) return {growing_works(works.timed), {}};
  const auto left_out = [&options](const TimedWork& work) { return work.large && !options.large; };
  works.timed.erase(std::remove_if(works.timed.begin(), works.timed.end(), left_out),
                    works.timed.end());
  return works;
}

Works chosen_works(const Options& options) {
  try {
    const std::regex expression(options.filter, std::regex::extended);
    const Works offered = offered_works(options);
    Works works{chosen(offered.timed, expression), chosen(offered.memory, expression)};
    if (works.timed.empty() && works.memory.empty()) {
      throw UsageError("no work has '" + options.filter + "' in its name");
    }
    return works;
  } catch (const std::regex_error&) {
    throw UsageError("'" + options.filter + "' is no regular expression");
  }
}

/// A failure of one work is told in its line, and the others run.
template <class AnyWork>
void measure_all(const std::vector<AnyWork>& works, const Options& options, Workshop& workshop,
                 Table& table) {
  for (const AnyWork& work : works) {
    try {
      table.add(work.name, measure(work, options.rounds, workshop), work.target);
    } catch (const std::exception& error) {
      table.add_failure(work.name, error.what());
    } catch (const veldra::Exception& error) {
      table.add_failure(work.name, veldra::String(error.what()).utf8());
    }
  }
}

/// Which other side a target is about.
char letter(Against against) {
  switch (against) {
    case Against::Fewest:
      return 'f';
    case Against::Otherwise:
      return 'o';
    case Against::Statements:
      break;
  }
  return 's';
}

template <class AnyWork>
void print_line(const AnyWork& work) {
  char target[16] = "";
  if (work.target.limit != 0) {
    std::snprintf(target, sizeof target, "%.2f %c", work.target.limit, letter(work.target.against));
  }
  std::printf("%-26s %-8s %s\n", work.name, target, work.measures);
}

void print_legend() {
  std::printf("Targets: s against statements, f against fewest, o against otherwise.\n\n");
  std::printf("%-26s %-8s %s\n", "work", "target", "measures");
  for (const TimedWork& work : timed_works()) print_line(work);
  for (const MemoryWork& work : memory_works()) print_line(work);
}

/// What is missing where the benchmarks were built.
void print_left_out() {
  if (!has_sqlitecpp()) std::puts("\nBuilt without SQLiteCpp, which is left out.");
  if (!has_json()) std::puts("\nBuilt without JSON for Modern C++, which is left out.");
}

int measure(const Options& options, const Works& works) {
  const WorkFolder folder(options.folder);
  if (options.growth != 0) {
    const Growth growth = {options.materials, options.growth, options.rounds};
    return measure_growth(works.timed, growth, folder.path()) ? 0 : 1;
  }
  Workshop workshop(folder.path(), options.materials);
  if (options.copy_memory) return copy_within_memory(workshop) ? 0 : 1;

  print_legend();
  print_left_out();
  std::printf("\n%u materials, %d rounds\n\n", options.materials, options.rounds);
  Table table;
  measure_all(works.timed, options, workshop, table);
  measure_all(works.memory, options, workshop, table);
  return table.all_sound() ? 0 : 1;
}

void print_names(const Works& works) {
  for (const TimedWork& work : works.timed) std::puts(work.name);
  for (const MemoryWork& work : works.memory) std::puts(work.name);
}

int main(int count, char** arguments) {
  const Options options = parse(count, arguments);
  if (options.help) {
    print_legend();
    std::fputs(usage, stdout);
    return 0;
  }
  const Works works = chosen_works(options);
  if (options.list) {
    print_names(works);
    return 0;
  }
  return measure(options, works);
}

}  // namespace
}  // namespace veldra_bench

int main(int count, char** arguments) {
  try {
    return veldra_bench::main(count, arguments);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "veldra_bench: %s\n", error.what());
    return 2;
  }
}
