#ifndef VELDRA_TESTS_SUPPORT_LIBRARY_FIXTURE_HPP
#define VELDRA_TESTS_SUPPORT_LIBRARY_FIXTURE_HPP

#include "support/names.hpp"
#include "support/temporary.hpp"

#include <sys/stat.h>

#include <memory>
#include <string>

namespace veldra_tests {

/// A test with the path of a library file, which does not exist yet, in a folder of its own.
class LibraryFixture : public testing::Test {
 protected:
  const std::string& path() const { return path_; }
  const TemporaryFolder& folder() const { return folder_; }

  std::shared_ptr<veldra::Library> create(veldra::Unit unit = veldra::Unit::Millimetres,
                                          const veldra::String& guid = veldra::String()) const {
    return veldra::Library::create(path_.c_str(), unit, guid);
  }

  std::shared_ptr<veldra::Library> open() const {
    return veldra::Library::open(path_.c_str(), false);
  }

  std::shared_ptr<veldra::Library> open_read_only() const {
    return veldra::Library::open(path_.c_str(), true);
  }

  /// Creates the library and closes it.
  void create_and_close() const { create(); }

  /// Makes the file one that others than the superuser can only read.
  void protect_the_file() const {
    ASSERT_EQ(::chmod(path_.c_str(), 0444), 0);
    ASSERT_EQ(::chmod(folder_.path().c_str(), 0755), 0);
  }

 private:
  TemporaryFolder folder_;
  std::string path_ = folder_ / "walls.lib";
};

}  // namespace veldra_tests

#endif
