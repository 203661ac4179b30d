// SPDX-License-Identifier: GPL-2.0-or-later
#include "table.hpp"

#include <cstdio>

namespace veldra_bench {

namespace {

std::string number(const char* format, double value) {
  char text[40];
  std::snprintf(text, sizeof text, format, value);
  return text;
}

/// Time, ratio and spread, and the ratio of the processor times.
std::string cells(const Compared& side) {
  char text[80];
  if (!side.exists) {
    std::snprintf(text, sizeof text, " |%30s", "");
  } else {
    const std::string spread = side.spread == 0 ? "" : "+-" + number("%.2f", side.spread);
    std::snprintf(text, sizeof text, " |%11.2f %6s%-6s %5s", side.taken,
                  ratio_text(side.ratio).c_str(), spread.c_str(),
                  ratio_text(side.processor_ratio).c_str());
  }
  return text;
}

std::string head(const char* name) {
  char text[80];
  std::snprintf(text, sizeof text, " |%11s %6s%-6s %5s", name, "ratio", "+-", "cpu");
  return text;
}

std::string text_of(const Target& target, const Figures& figures) {
  const Compared& side = compared(figures, target.against);
  if (target.limit == 0 || !side.exists) return "";
  return number("%.2f", target.limit) + (side.ratio > target.limit ? " missed" : "");
}

std::string waits(double ours, double plain) {
  if (ours == 0 && plain == 0) return "";
  return number("%.3g", ours) + " / " + number("%.3g", plain);
}

void print(const std::string& work, const std::string& rest) {
  const std::string line = work.size() < 26 ? work + std::string(26 - work.size(), ' ') : work;
  std::string text = line + " " + rest;
  text.erase(text.find_last_not_of(' ') + 1);
  std::puts(text.c_str());
  std::fflush(stdout);
}

}  // namespace

const Compared& compared(const Figures& figures, Against against) {
  switch (against) {
    case Against::Fewest:
      return figures.fewest;
    case Against::Otherwise:
      return figures.otherwise;
    case Against::Statements:
      break;
  }
  return figures.plain;
}

std::string ratio_text(double ratio) {
  if (ratio == 0) return "";
  return number(ratio < 0.1 ? "%.2g" : "%.2f", ratio);
}

Table::Table() {
  char text[80];
  std::snprintf(text, sizeof text, "%-5s %11s %11s", "unit", "veldra", "cpu");
  print("work", text + head("statements") + head("fewest") + head("shared") + head("otherwise") +
                    " | target       syncs      otherwise is");
}

void Table::add(const std::string& work, const Figures& figures, const Target& target) {
  char start[80];
  const std::string processor =
      figures.veldra_processor == 0 ? "" : number("%.2f", figures.veldra_processor);
  std::snprintf(start, sizeof start, "%-5s %11.2f %11s", figures.unit, figures.veldra,
                processor.c_str());
  char end[200];
  std::snprintf(end, sizeof end, " | %-12s %-10s %s", text_of(target, figures).c_str(),
                waits(figures.veldra_syncs, figures.plain_syncs).c_str(),
                figures.otherwise_name.c_str());
  print(work, start + cells(figures.plain) + cells(figures.fewest) + cells(figures.shared) +
                  cells(figures.otherwise) + end);
}

void Table::add_failure(const std::string& work, const std::string& reason) {
  all_sound_ = false;
  print(work, reason);
}

}  // namespace veldra_bench
