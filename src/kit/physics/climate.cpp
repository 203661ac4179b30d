// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/kit/error.hpp>
#include <veldra/kit/physics_moisture.hpp>
#include <veldra/kit/text.hpp>

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <sstream>

namespace veldra::kit {

namespace {

using Cells = std::vector<std::string>;

[[noreturn]] void refuse(std::size_t line, const std::string& sentence) {
  throw Error(fmt::format("line {} of the climate: {}", line, sentence));
}

Cells cells_of(const std::string& line) {
  Cells cells;
  std::istringstream parts(line + ",");
  for (std::string cell; std::getline(parts, cell, ',');) cells.push_back(trimmed(cell));
  return cells;
}

/// Spreadsheets put a mark in front of UTF-8.
std::string without_mark(const std::string& text) {
  const std::string mark = "\xEF\xBB\xBF";
  return text.compare(0, mark.size(), mark) == 0 ? text.substr(mark.size()) : text;
}

/// Reads the rows of a table whose titles are known.
class Reader {
 public:
  explicit Reader(std::optional<int> room_class) : room_class_(room_class) {
    if (room_class && (*room_class < 1 || *room_class > 5)) {
      throw Error(fmt::format("{} is no room class from 1 to 5", *room_class));
    }
  }

  physics::Climate read(const std::string& text) {
    if (text.find('\0') != std::string::npos) throw Error("the climate is no text");
    std::istringstream lines(without_mark(text));
    for (std::string line; std::getline(lines, line);) {
      ++line_;
      if (trimmed(line).empty() || trimmed(line).front() == '#') continue;
      if (columns_.empty()) {
        read_titles(cells_of(line));
      } else {
        read_month(cells_of(line));
      }
    }
    for (std::size_t month = 0; month < 12; ++month) {
      if (!known_[month]) throw Error(fmt::format("the climate has no month {}", month + 1));
    }
    return climate_;
  }

 private:
  void read_titles(const Cells& titles) {
    static const Cells known{"month", "outside_temperature", "outside_humidity",
                             "inside_temperature", "inside_humidity"};
    if (titles.size() == 1 && titles.front().find(';') != std::string::npos) {
      refuse(line_, "columns have commas between them, and numbers a point");
    }
    for (std::size_t i = 0; i < titles.size(); ++i) {
      if (std::find(known.begin(), known.end(), titles[i]) == known.end()) {
        refuse(line_, fmt::format("'{}' is no column of a climate", titles[i]));
      }
      if (!columns_.emplace(titles[i], i).second) {
        refuse(line_, fmt::format("the column '{}' is there twice", titles[i]));
      }
    }
    for (const auto& title : known) {
      if (columns_.count(title) == 0 && title != "inside_humidity") {
        refuse(line_, fmt::format("the column '{}' is missing", title));
      }
    }
  }

  double number(const Cells& cells, const std::string& column, double least, double greatest) {
    const auto place = columns_.at(column);
    const auto text = place < cells.size() ? cells[place] : std::string();
    const auto value = number_in(text);
    if (!value || *value < least || *value > greatest) {
      refuse(line_, fmt::format("'{}' is no {} from {} to {}", text, column, least, greatest));
    }
    return *value;
  }

  bool has_inside_humidity(const Cells& cells) const {
    const auto place = columns_.find("inside_humidity");
    return place != columns_.end() && place->second < cells.size() && !cells[place->second].empty();
  }

  void read_month(const Cells& cells) {
    if (cells.size() > columns_.size()) {
      refuse(line_, fmt::format("{} values for {} columns; numbers have a point", cells.size(),
                                columns_.size()));
    }
    const auto month = static_cast<std::size_t>(number(cells, "month", 1, 12)) - 1;
    if (known_[month]) refuse(line_, fmt::format("month {} is there twice", month + 1));
    known_[month] = true;
    auto& air = climate_[month];
    air.outside_temperature = number(cells, "outside_temperature", -80, 60);
    air.inside_temperature = number(cells, "inside_temperature", -80, 60);
    air.outside_humidity = number(cells, "outside_humidity", 0, 100) / 100;
    if (has_inside_humidity(cells)) {
      air.inside_humidity = number(cells, "inside_humidity", 1, 100) / 100;
    } else {
      air.inside_humidity = humidity_by_class(air);
    }
  }

  double humidity_by_class(const physics::MonthClimate& air) const {
    if (!room_class_) {
      refuse(line_, "there is no inside_humidity; state it, or a room class from 1 to 5");
    }
    const double outdoors =
        air.outside_humidity * physics::saturation_pressure(air.outside_temperature);
    const double indoors = outdoors + physics::vapour_excess(*room_class_, air.outside_temperature);
    return std::clamp(indoors / physics::saturation_pressure(air.inside_temperature), 0.01, 1.0);
  }

  std::optional<int> room_class_;
  std::size_t line_ = 0;
  std::map<std::string, std::size_t> columns_;
  std::array<bool, 12> known_{};
  physics::Climate climate_;
};

}  // namespace

physics::Climate climate_from_csv(const std::string& text, std::optional<int> room_class) {
  return Reader(room_class).read(text);
}

}  // namespace veldra::kit
