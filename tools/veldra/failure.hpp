#ifndef VELDRA_TOOL_FAILURE_HPP
#define VELDRA_TOOL_FAILURE_HPP

#include <functional>
#include <stdexcept>
#include <string>

namespace veldra_tool {

/// Why a command did not work: one sentence for people.
class Failure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Throws the exception that is being handled again as a `Failure` that names the file. A
/// `Failure` passes as it is.
[[noreturn]] void rethrow_for(const std::string& file);

/// Runs work on a library file; what goes wrong comes out as a `Failure` that names the file.
template <class Work>
auto working_on(const std::string& file, Work work) {
  try {
    return work();
  } catch (...) {
    rethrow_for(file);
  }
}

/// A file name as it stands in messages.
std::string in_quotes(const std::string& text);

}  // namespace veldra_tool

#endif
