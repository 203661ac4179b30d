// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/kit/error.hpp>

namespace veldra::kit {

Error::~Error() = default;

}  // namespace veldra::kit
