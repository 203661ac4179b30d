// SPDX-License-Identifier: GPL-2.0-or-later
#include "table.hpp"

#include <cstdio>
#include <string>

namespace veldra_bench {

namespace {

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

Table::Table() {
  std::printf("%-26s %-6s %10s %10s %7s %7s  %-12s %s\n", "work", "unit", "veldra", "plain",
              "ratio", "cpu", "target", "syncs");
}

void Table::add(const std::string& work, const Figures& figures) {
  std::printf("%-26s %-6s %10.2f %10.2f %7.2f %7s  %-12s %s\n", work.c_str(), figures.unit,
              figures.veldra, figures.plain, figures.ratio,
              optional_ratio(figures.processor_ratio).c_str(),
              target(figures.target, figures.ratio).c_str(),
              waits(figures.veldra_syncs, figures.plain_syncs).c_str());
  std::fflush(stdout);
}

void Table::add_failure(const std::string& work, const std::string& reason) {
  all_sound_ = false;
  std::printf("%-26s %s\n", work.c_str(), reason.c_str());
  std::fflush(stdout);
}

}  // namespace veldra_bench
