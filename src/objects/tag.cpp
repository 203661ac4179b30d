// SPDX-License-Identifier: GPL-2.0-or-later
#include "objects/handle_members.hpp"
#include "objects/tag_impl.hpp"

namespace veldra {

VELDRA_HANDLE_MEMBERS(Tag)
VELDRA_NAMED_MEMBERS(Tag)

bool operator==(const std::vector<std::shared_ptr<Tag>>& left,
                const std::vector<std::shared_ptr<Tag>>& right) {
  return left.size() == right.size() &&
         std::equal(left.begin(), left.end(), right.begin(), same_or_equal_names<Tag>);
}

bool operator!=(const std::vector<std::shared_ptr<Tag>>& left,
                const std::vector<std::shared_ptr<Tag>>& right) {
  return !(left == right);
}

}  // namespace veldra
