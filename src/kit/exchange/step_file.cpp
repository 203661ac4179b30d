// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/step_file.hpp"

#include "kit/exchange/problem.hpp"
#include "kit/exchange/step_scan.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

namespace veldra::kit {

namespace {

constexpr auto npos = std::string_view::npos;
constexpr unsigned greatest_depth = 100;
constexpr std::size_t longest_string = std::size_t{1} << 20;

/// Goes through the text of a file, statement by statement.
class StepScanner {
 public:
  StepScanner(const std::string& file, std::string_view text) : file_(file), text_(text) {}

  unsigned line() const { return line_; }

  [[noreturn]] void fail(const std::string& sentence) const { fail_at(file_, line_, sentence); }

  /// The word that the next statement begins with; empty if it begins with none.
  std::string_view word() {
    skip_margin();
    return step_scan::word_at(text_.substr(place_));
  }

  void take(std::string_view word) { place_ += word.size(); }

  bool take_if(char wanted) {
    skip_margin();
    if (place_ >= text_.size() || text_[place_] != wanted) return false;
    ++place_;
    return true;
  }

  void expect(char wanted) {
    if (!take_if(wanted)) fail(fmt::format("'{}' is expected", wanted));
  }

  std::uint64_t number() {
    std::uint64_t number = 0;
    const char* const begin = text_.data() + place_;
    const auto result = std::from_chars(begin, text_.data() + text_.size(), number);
    if (result.ec != std::errc()) fail("an instance has no number, or one that is too large");
    place_ += static_cast<std::size_t>(result.ptr - begin);
    return number;
  }

  /// What stands before the semicolon that ends the statement, which is passed.
  std::string_view rest_of_statement() {
    const std::size_t begin = place_;
    unsigned depth = 0;
    unsigned lines = 0;
    while (true) {
      const auto next = text_.find_first_of("'();/\n", place_);
      if (next == npos) fail("the file ends within an instance; it seems to be cut off");
      place_ = next + 1;
      switch (text_[next]) {
        case '\n':
          ++lines;
          break;
        case '(':
          if (++depth > greatest_depth) fail("lists stand too deeply within lists");
          break;
        case ')':
          if (depth-- == 0) fail("a parenthesis is closed that is not open");
          break;
        case ';':
          if (depth > 0) fail("a parenthesis is not closed");
          line_ += lines;
          return text_.substr(begin, next - begin);
        case '\'':
          pass(step_scan::behind_string(text_, next), next, "a string does not end", lines);
          if (place_ - next > longest_string) fail("a string is longer than 1 MiB");
          break;
        default:
          if (next + 1 >= text_.size() || text_[next + 1] != '*') break;
          pass(step_scan::behind_comment(text_, next), next, "a comment does not end", lines);
      }
    }
  }

 private:
  void pass(std::size_t behind, std::size_t begin, const char* sentence, unsigned& lines) {
    if (behind == npos) fail(sentence);
    lines += lines_in(begin, behind);
    place_ = behind;
  }

  unsigned lines_in(std::size_t begin, std::size_t end) const {
    const auto part = text_.substr(begin, end - begin);
    return static_cast<unsigned>(std::count(part.begin(), part.end(), '\n'));
  }

  void skip_margin() {
    const auto behind = step_scan::behind_margin(text_, place_);
    if (behind == npos) fail("a comment does not end");
    line_ += lines_in(place_, behind);
    place_ = behind;
  }

  const std::string& file_;
  std::string_view text_;
  std::size_t place_ = 0;
  unsigned line_ = 1;
};

/// Reads the sections of a file.
class SectionReader {
 public:
  SectionReader(StepScanner& scanner, StepFile::Wanted wanted)
      : scanner_(scanner), wanted_(wanted) {}

  void read() {
    while (next_word() != "HEADER") {
    }
    for (auto word = next_word(); word != "ENDSEC"; word = next_word()) {
      if (word == "FILE_SCHEMA") read_schema();
    }
    for (auto word = next_word(); word != "END"; word = next_word()) {
      if (word != "DATA") continue;
      while (!take_end()) read_instance();
    }
  }

  std::string schema;
  std::vector<StepInstance> instances;

 private:
  /// The word of the next statement; what stands behind it is the rest.
  std::string_view next_word() {
    const auto word = scanner_.word();
    if (word.empty()) scanner_.fail("the file does not end as a STEP file does; is it cut off?");
    scanner_.take(word);
    rest_ = scanner_.rest_of_statement();
    return word;
  }

  void read_schema() {
    StepValue(rest_).for_each([this](const StepValue& list) {
      list.for_each([this](const StepValue& name) {
        if (schema.empty()) schema = name.text().value_or("");
      });
    });
  }

  bool take_end() {
    const auto word = scanner_.word();
    if (word != "ENDSEC") return false;
    scanner_.rest_of_statement();
    return true;
  }

  /// `#12=IFCWALL(...);`, or `#12=(A(...)B(...));`, of which nothing is wanted here.
  void read_instance() {
    StepInstance instance;
    if (!scanner_.take_if('#')) scanner_.fail("an instance such as '#1=...;' is expected");
    instance.line = scanner_.line();
    instance.number = scanner_.number();
    scanner_.expect('=');
    instance.keyword = scanner_.word();
    scanner_.take(instance.keyword);
    const auto rest = step_scan::without_margins(scanner_.rest_of_statement());
    const bool has_values = rest.size() > 1 && rest.front() == '(' && rest.back() == ')';
    if (!has_values) scanner_.fail("an instance has no values in parentheses");
    if (!wanted_(instance.keyword)) return;
    instance.values = rest.substr(1, rest.size() - 2);
    instances.push_back(instance);
  }

  StepScanner& scanner_;
  StepFile::Wanted wanted_;
  std::string_view rest_;
};

}  // namespace

StepFields::StepFields(std::string_view values) {
  for (auto& field : fields_) {
    if (values.empty()) break;
    field = StepValue::take(values);
  }
}

StepFile::StepFile(const std::string& file, std::string_view text, Wanted wanted)
    : file_(file), most_read_(8 * text.size() + (std::size_t{16} << 20)) {
  StepScanner scanner(file, text);
  SectionReader reader(scanner, wanted);
  reader.read();
  schema_ = std::move(reader.schema);
  instances_ = std::move(reader.instances);
  sort_instances();
}

/// Files have their instances in order as a rule.
void StepFile::sort_instances() {
  const auto before = [](const StepInstance& left, const StepInstance& right) {
    return left.number < right.number;
  };
  if (!std::is_sorted(instances_.begin(), instances_.end(), before)) {
    std::stable_sort(instances_.begin(), instances_.end(), before);
  }
  for (std::size_t i = 1; i < instances_.size(); ++i) {
    if (instances_[i].number != instances_[i - 1].number) continue;
    fail_at(file_, instances_[i].line,
            fmt::format("there is another instance #{}", instances_[i].number));
  }
  for (const auto& instance : instances_) by_keyword_[instance.keyword].push_back(&instance);
}

const std::vector<const StepInstance*>& StepFile::all(std::string_view keyword) const {
  static const std::vector<const StepInstance*> none;
  const auto found = by_keyword_.find(keyword);
  return found != by_keyword_.end() ? found->second : none;
}

const StepInstance* StepFile::find(std::uint64_t number) const {
  const auto found = std::lower_bound(
      instances_.begin(), instances_.end(), number,
      [](const StepInstance& instance, std::uint64_t wanted) { return instance.number < wanted; });
  return found != instances_.end() && found->number == number ? &*found : nullptr;
}

const StepInstance* StepFile::find(const StepValue& reference) const {
  const auto number = reference.reference();
  return number ? find(*number) : nullptr;
}

const StepInstance* StepFile::find(const StepValue& reference, std::string_view keyword) const {
  const auto* found = find(reference);
  return found != nullptr && found->keyword == keyword ? found : nullptr;
}

StepFields StepFile::fields_of(const StepInstance& instance) const {
  charge(instance, instance.values.size());
  return StepFields(instance.values);
}

void StepFile::charge(const StepInstance& instance, std::size_t size) const {
  read_ += size;
  if (read_ <= most_read_) return;
  fail_at(file_, instance.line,
          fmt::format("instances such as #{} are referred to far too often", instance.number));
}

}  // namespace veldra::kit
