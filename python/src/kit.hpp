// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_PYTHON_KIT_HPP
#define VELDRA_PYTHON_KIT_HPP

#include "use.hpp"

#include <veldra/kit/clash.hpp>

#include <memory>
#include <string>

namespace veldra::python {

using Handle = std::shared_ptr<LibraryHandle>;

/// Throws `ValueError`: there is no such word.
kit::OnClash on_clash_named(const std::string& name);

}  // namespace veldra::python

#endif
