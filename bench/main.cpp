// SPDX-License-Identifier: GPL-2.0-or-later
//
// Measures the library beside a plain SQLite program that does the same work (plain_sqlite.h).
// Each line of the table that it prints is one of these works:
//
// work                     measures
// get_material_by_id       a material by its id, ids at random
// get_material_by_name     a material by its name, names at random
// get_composition_by_id    a composition by its id, ids at random
// all_materials            a list of all materials, per material
// all_materials_freed      the same with the freeing of the list
// all_compositions         a list of all compositions, per composition
// all_compositions_freed   the same with the freeing of the list
// search_materials         a search that finds one material of 40, per search
// id_set                   the materials of 100 ids, per query
// count_materials          a count of all materials
// count_compositions       a count of all compositions
// count_by_type            a count of the compositions of two types
// count_by_tags            a count of the materials with one of two tags
// save_new_materials       new materials with all they refer to, in one transaction, per material
// save_one_material        a new material in a transaction of its own
// update_one_material      a changed material in a transaction of its own
// open_file                opening and closing a current library
// create_file              making a new library and closing it
// remove_unused_tags       200 unused tags one by one, per tag
// refused_removals         50 tags that are in use, per refusal
// purge                    everything, of a tenth of the materials, per material and composition
// copy_all                 a library into an empty one of the other unit, per material and
//                          composition
// memory_all_materials     bytes at most while all materials are read; beside it, of the materials
//                          themselves
// memory_all_compositions  the same for compositions
// size_of_material         bytes of a material in a list of all
// size_of_composition      bytes of a composition in a list of all
//
// Times include freeing what was read, but for the lists of everything. Both sides work on files of
// the same contents and take turns, a round each, so that what else the machine does meets both;
// the figures are medians of the rounds. Before the first round that counts, both do the work once
// and must have read the same values, or left the same rows. The syncs are the waits for the disk
// per item of each side.

#include "counters.hpp"
#include "table.hpp"
#include "work.hpp"

#include <stdlib.h>
#include <time.h>

#include <algorithm>
#include <chrono>
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
  bool copy_memory = false;
};

const char usage[] =
    "\nveldra_bench [options]\n"
    "  --filter=EXPRESSION  only the works in whose names it is found, a regular expression\n"
    "  --list               prints the names of the works that would be measured\n"
    "  --materials=N        size of the libraries (10000)\n"
    "  --rounds=N           rounds of each work (9; fewer for what takes long)\n"
    "  --folder=PATH        where the files are made (the folder for temporary files)\n"
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
    } else if (argument == "--copy-memory") {
      options.copy_memory = true;
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

double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

double processor_time() {
  timespec time{};
  ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

/// Has the C library put together what was freed so far, so that no side does it for the other.
void settle_heap() {
  volatile std::size_t large = 64 * 1024;
  std::free(std::malloc(large));
}

/// What the rounds of one side took.
struct Rounds {
  std::vector<double> seconds;
  std::vector<double> processor_seconds;
  std::vector<double> syncs;

  void measure(const Work::Side& side) {
    settle_heap();
    const unsigned long syncs_before = veldra_bench::syncs();
    const double processor_start = processor_time();
    const auto start = std::chrono::steady_clock::now();
    side(nullptr);
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    seconds.push_back(taken.count());
    processor_seconds.push_back(processor_time() - processor_start);
    syncs.push_back(static_cast<double>(veldra_bench::syncs() - syncs_before));
  }
};

bool both_do_the_same(const Work& work) {
  Digest veldra;
  Digest plain;
  work.prepare();
  work.veldra(&veldra);
  work.plain(&plain);
  return veldra.value() == plain.value();
}

Figures measure(const TimedWork& timed, const Options& options, Workshop& workshop) {
  const Work work = timed.make(workshop);
  if (!both_do_the_same(work)) throw std::runtime_error("the two sides did not do the same");
  Rounds veldra;
  Rounds plain;
  bool plain_first = false;
  for (int rounds = std::max(options.rounds / timed.rounds_divisor, 1); rounds != 0; --rounds) {
    work.prepare();
    if (plain_first) plain.measure(work.plain);
    veldra.measure(work.veldra);
    if (!plain_first) plain.measure(work.plain);
    plain_first = !plain_first;
  }
  const double items = timed.items(workshop);
  const double microseconds = 1e6 / items;
  return {"us",
          median(veldra.seconds) * microseconds,
          median(plain.seconds) * microseconds,
          median(veldra.seconds) / median(plain.seconds),
          timed.target,
          median(veldra.processor_seconds) / median(plain.processor_seconds),
          median(veldra.syncs) / items,
          median(plain.syncs) / items};
}

Figures measure(const MemoryWork& work, const Options&, Workshop& workshop) {
  const Bytes bytes = work.measure(workshop);
  return {"bytes", bytes.bytes, bytes.reference, bytes.bytes / bytes.reference, work.target};
}

std::vector<TimedWork> timed_works() {
  std::vector<TimedWork> works;
  for (const auto& part :
       {reading_works(), saving_works(), file_works(), removing_works(), copying_works()}) {
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

Works chosen_works(const std::string& filter) {
  try {
    const std::regex expression(filter, std::regex::extended);
    Works works{chosen(timed_works(), expression), chosen(memory_works(), expression)};
    if (works.timed.empty() && works.memory.empty()) {
      throw UsageError("no work has '" + filter + "' in its name");
    }
    return works;
  } catch (const std::regex_error&) {
    throw UsageError("'" + filter + "' is no regular expression");
  }
}

/// A failure of one work is told in its line, and the others run.
template <class AnyWork>
void measure_all(const std::vector<AnyWork>& works, const Options& options, Workshop& workshop,
                 Table& table) {
  for (const AnyWork& work : works) {
    try {
      table.add(work.name, measure(work, options, workshop));
    } catch (const std::exception& error) {
      table.add_failure(work.name, error.what());
    } catch (const veldra::Exception& error) {
      table.add_failure(work.name, veldra::String(error.what()).utf8());
    }
  }
}

template <class AnyWork>
void print_line(const AnyWork& work) {
  char target[16] = "";
  if (work.target != 0) std::snprintf(target, sizeof target, "%.2f", work.target);
  std::printf("%-26s %-8s %s\n", work.name, target, work.measures);
}

void print_legend() {
  std::printf("%-26s %-8s %s\n", "work", "target", "measures");
  for (const TimedWork& work : timed_works()) print_line(work);
  for (const MemoryWork& work : memory_works()) print_line(work);
}

int measure(const Options& options, const Works& works) {
  const WorkFolder folder(options.folder);
  Workshop workshop(folder.path(), options.materials);
  if (options.copy_memory) return copy_within_memory(workshop) ? 0 : 1;

  print_legend();
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
  const Works works = chosen_works(options.filter);
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
