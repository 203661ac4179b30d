// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_CLASH_HPP
#define VELDRA_KIT_CLASH_HPP

namespace veldra::kit {

/// What is to become of an object that comes in where another one, which differs, has its name.
enum class OnClash : int {
  Fail = 0,       ///< nothing may be done before somebody has decided
  Use = 1,        ///< the one that is there is taken as it is
  Overwrite = 2,  ///< the one that is there gets the values of the one that comes in
  Rename = 3      ///< the one that comes in gets another name
};

}  // namespace veldra::kit

#endif
