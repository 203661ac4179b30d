// SPDX-License-Identifier: GPL-2.0-or-later
#include "measuring.hpp"

#include "counters.hpp"

#include <time.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <stdexcept>
#include <vector>

namespace veldra_bench {

namespace {

/// The value below which that part of the values lies.
double quantile(std::vector<double> values, double part) {
  const auto place =
      static_cast<std::ptrdiff_t>(part * static_cast<double>(values.size() - 1) + .5);
  std::nth_element(values.begin(), values.begin() + place, values.end());
  return values[static_cast<std::size_t>(place)];
}

double median(const std::vector<double>& values) { return quantile(values, 0.5); }

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
  Side side;
  std::vector<double> seconds = {};
  std::vector<double> processor_seconds = {};
  std::vector<double> syncs = {};

  void measure() {
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

/// Half of the distance between the quartiles of the rounds' ratios.
double spread(const std::vector<double>& ours, const std::vector<double>& other) {
  std::vector<double> ratios(ours.size());
  std::transform(ours.begin(), ours.end(), other.begin(), ratios.begin(),
                 [](double left, double right) { return left / right; });
  return (quantile(ratios, 0.75) - quantile(ratios, 0.25)) / 2;
}

Compared compare(const Rounds& ours, const Rounds& other, double microseconds) {
  if (!other.side) return {};
  const double taken = median(other.seconds);
  return {true, taken * microseconds, median(ours.seconds) / taken,
          spread(ours.seconds, other.seconds),
          median(ours.processor_seconds) / median(other.processor_seconds)};
}

std::uint64_t value_of(const Side& side) {
  Digest digest;
  side(&digest);
  return digest.value();
}

bool all_do_the_same(const Work& work) {
  work.prepare();
  const std::uint64_t expected = value_of(work.veldra);
  const auto same = [expected](const Side& side) { return !side || value_of(side) == expected; };
  if (!same(work.plain) || !same(work.fewest) || !same(work.shared)) return false;
  const Otherwise& otherwise = work.otherwise;
  if (!otherwise.side) return true;
  return value_of(otherwise.side) == expected || !otherwise.does_the_same;
}

/// Each side that there is, beginning with another one in each round.
void take_turns(std::vector<Rounds>& sides, std::size_t round) {
  for (std::size_t i = 0; i != sides.size(); ++i) {
    Rounds& rounds = sides[(round + i) % sides.size()];
    if (rounds.side) rounds.measure();
  }
}

Figures figures_of(const std::vector<Rounds>& sides, double items) {
  const Rounds& veldra = sides[0];
  const Rounds& plain = sides[1];
  const double microseconds = 1e6 / items;
  Figures figures;
  figures.veldra = median(veldra.seconds) * microseconds;
  figures.veldra_processor = median(veldra.processor_seconds) * microseconds;
  figures.plain = compare(veldra, plain, microseconds);
  figures.fewest = compare(veldra, sides[2], microseconds);
  figures.shared = compare(veldra, sides[3], microseconds);
  figures.otherwise = compare(veldra, sides[4], microseconds);
  figures.veldra_syncs = median(veldra.syncs) / items;
  figures.plain_syncs = plain.side ? median(plain.syncs) / items : 0;
  return figures;
}

}  // namespace

Figures measure(const TimedWork& timed, int rounds, Workshop& workshop) {
  const Work work = timed.make(workshop);
  if (!all_do_the_same(work)) throw std::runtime_error("the sides did not do the same");
  std::vector<Rounds> sides = {
      {work.veldra}, {work.plain}, {work.fewest}, {work.shared}, {work.otherwise.side}};
  const int count = std::max(rounds / timed.rounds_divisor, 1);
  for (int round = 0; round != count; ++round) {
    work.prepare();
    take_turns(sides, static_cast<std::size_t>(round));
  }
  Figures figures = figures_of(sides, timed.items(workshop));
  if (work.otherwise.side) figures.otherwise_name = work.otherwise.name;
  return figures;
}

Figures measure(const MemoryWork& work, int, Workshop& workshop) {
  const Memory memory = work.measure(workshop);
  Figures figures;
  figures.unit = work.unit;
  figures.veldra = memory.amount;
  figures.plain = {true, memory.reference, memory.amount / memory.reference};
  return figures;
}

}  // namespace veldra_bench
