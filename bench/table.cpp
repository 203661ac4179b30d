// SPDX-License-Identifier: GPL-2.0-or-later
#include "table.hpp"

#include <cstdio>
#include <string>

namespace veldra_bench {

namespace {

double counter(const benchmark::BenchmarkReporter::Run& run, const char* name) {
  const auto found = run.counters.find(name);
  return found == run.counters.end() ? 0.0 : found->second.value;
}

std::string optional_ratio(double ratio) {
  if (ratio == 0) return "";
  char text[40];
  std::snprintf(text, sizeof text, "%.2f", ratio);
  return text;
}

std::string target(double limit, double ratio) {
  if (limit == 0) return "";
  char text[40];
  std::snprintf(text, sizeof text, "%.2f%s", limit, ratio > limit ? " missed" : "");
  return text;
}

std::string waits(double ours, double plain) {
  if (ours == 0 && plain == 0) return "";
  char text[40];
  std::snprintf(text, sizeof text, "%.3g / %.3g", ours, plain);
  return text;
}

}  // namespace

bool Table::ReportContext(const Context&) {
  std::printf("%-26s %-6s %10s %10s %7s %7s  %-12s %s\n", "work", "unit", "veldra", "plain",
              "ratio", "cpu", "target", "syncs");
  return true;
}

void Table::ReportRuns(const std::vector<Run>& runs) {
  for (const Run& run : runs) {
    const std::string& name = run.run_name.function_name;
    if (run.error_occurred) {
      all_sound_ = false;
      std::printf("%-26s %s\n", name.c_str(), run.error_message.c_str());
      continue;
    }
    const double ratio = counter(run, "ratio");
    std::printf("%-26s %-6s %10.2f %10.2f %7.2f %7s  %-12s %s\n", name.c_str(),
                counter(run, "memory") != 0 ? "bytes" : "us", counter(run, "veldra"),
                counter(run, "plain"), ratio,
                optional_ratio(counter(run, "processor_ratio")).c_str(),
                target(counter(run, "target"), ratio).c_str(),
                waits(counter(run, "veldra_syncs"), counter(run, "plain_syncs")).c_str());
    std::fflush(stdout);
  }
}

}  // namespace veldra_bench
