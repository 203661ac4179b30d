// SPDX-License-Identifier: GPL-2.0-or-later
#include "arguments.hpp"
#include "failure.hpp"
#include "files/output_file.hpp"
#include "host.hpp"
#include "process/interruption.hpp"
#include "process/last_resort.hpp"
#include "process/size_limit.hpp"
#include "process/standard_streams.hpp"
#include "process/writing.hpp"
#include "text.hpp"

#include <fmt/format.h>

#include <unistd.h>

#include <cerrno>
#include <initializer_list>
#include <new>
#include <sstream>
#include <string_view>

namespace veldra_tool {

namespace {

constexpr std::string_view done = "what was asked for is done, but ";

/// Needs no memory, as there may be none.
Status complain(std::initializer_list<std::string_view> parts, Status status) noexcept {
  say(error_mark());
  for (const auto part : parts) say(part);
  say("\n");
  return status;
}

/// What happened in place of the end of the command. What is done by then stays done.
Status give_up(const Host& host, std::string_view sentence) noexcept {
  say(host.notes);
  if (!host.done) return complain({sentence}, Status::Failed);
  return complain({done, "then: ", sentence}, Status::Findings);
}

Status refuse(const std::string& sentence, const std::string& command) {
  say(fmt::format("{}{}\n'{} --help' tells more.\n", error_mark(), printable(sentence), command));
  return Status::WrongUse;
}

/// What the arguments are wrong about, for the command that they begin with.
Status refuse(const Host& host, const CLI::ParseError& error) {
  const auto commands = host.arguments.get_subcommands();
  return refuse(sentence_of(host.arguments, error),
                commands.empty() ? "veldra" : "veldra " + commands.front()->get_name());
}

/// Help, or what else the arguments wish to see in place of a command.
void tell(Host& host, const CLI::Success& wish) {
  std::ostringstream text;
  host.arguments.exit(wish, text, text);
  host.output.write(text.str());
}

Status stopped() noexcept {
  say_stopped();
  return Status::Failed;
}

/// Gives 0, or the number of the error. Some file systems say only at the end that they did not
/// take everything.
int write_output(const Spool& output) noexcept {
  const int error = output.copy_to(STDOUT_FILENO);
  if (error != 0 || output.empty()) return error;
  return ::close(STDOUT_FILENO) == 0 || errno == EINTR ? 0 : errno;
}

/// Tells what the command had to say, now that it holds nothing any more.
Status report(const Host& host) {
  const int error = write_output(host.output);
  const bool is_done = host.done && host.status != Status::Failed;
  if (error == 0 || is_done) say(host.notes);
  if (error == 0) return host.status;
  if (error == EINTR && !is_done) return stopped();
  const char* sentence = "standard output cannot be written: ";
  if (!is_done) return complain({sentence, text_of_error(error)}, Status::Failed);
  return complain({done, sentence, text_of_error(error)}, Status::Findings);
}

Status run_command(Host& host, int count, char** values) {
  try {
    require_no_library_as_standard_output();
    host.arguments.parse(count, values);
  } catch (const CLI::Success& wish) {  // such as help
    tell(host, wish);
  } catch (const CLI::ParseError& error) {
    return refuse(host, error);
  } catch (const Failure& failure) {
    return give_up(host, failure.what());
  } catch (const Stopped&) {
    if (host.done) return give_up(host, "interrupted");
    say(host.notes);
    return stopped();
  } catch (const std::bad_alloc&) {
    return give_up(host, "there is not enough memory");
  } catch (const std::exception&) {
    return give_up(host, "something went wrong that was not to be expected");
  }
  return report(host);
}

Status run(int count, char** values) {
  Host host;
  if (count < 2) return refuse("a command is missing", "veldra");
  const std::string first = values[1];
  if (first.compare(0, 1, "-") != 0 && !host.has_command(first)) {
    return refuse(fmt::format("there is no command {}", in_quotes(first)), "veldra");
  }
  return run_command(host, count, values);
}

/// Nothing gets past this, and nothing here needs memory.
Status run_safely(int count, char** values) noexcept {
  try {
    return run(count, values);
  } catch (const std::bad_alloc&) {
    say(no_memory);
  } catch (...) {
    say(unexpected);
  }
  return Status::Failed;
}

}  // namespace

}  // namespace veldra_tool

int main(int count, char** values) {
  veldra_tool::occupy_standard_streams();
  veldra_tool::catch_signals();
  veldra_tool::notice_size_limit();
  return static_cast<int>(veldra_tool::run_safely(count, values));
}
