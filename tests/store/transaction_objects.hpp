// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_STORE_TRANSACTION_OBJECTS_HPP
#define VELDRA_TESTS_STORE_TRANSACTION_OBJECTS_HPP

#include "store/copying_fixture.hpp"
#include "store/transaction_calls.hpp"

#include <memory>
#include <string>

namespace veldra_tests {

/// What becomes of the host's objects.
class TransactionObjects : public CopyingTest {
 protected:
  /// After a rollback the file and the object are as before, and the same can be done again, to
  /// stay.
  template <class T, class Call>
  void expect_to_be_taken_back(const std::shared_ptr<T>& object, const Call& call) {
    const std::string file = rows();
    const std::string state = state_of(object);
    for (int i = 0; i != 2; ++i) {
      roll_back(*library, [&] {
        call();
        EXPECT_EQ(rows(), file);
      });
      ASSERT_EQ(rows(), file);
      ASSERT_EQ(state_of(object), state);
    }
    commit(*library, call);
    EXPECT_NE(rows(), file);
    EXPECT_EQ(damage(path), "");
  }

  /// The object and all that it refers to is clean and stands in the library as it is.
  template <class T>
  void expect_stored(const std::shared_ptr<T>& object) {
    EXPECT_EQ(object->library(), library);
    EXPECT_EQ(state_of(object).find(", dirty"), std::string::npos);
    EXPECT_EQ(state_of(object).find(", id 0,"), std::string::npos);
    const auto read = library->get<T>(object->id());
    ASSERT_TRUE(read);
    EXPECT_EQ(values_of(read), values_of(object));
  }
};

}  // namespace veldra_tests

#endif
