// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_KIT_HPP
#define VELDRA_KIT_KIT_HPP

/// @file
/// Everything that the kit offers to programs around a library, as C++17 or later.

#include <veldra/kit/clash.hpp>
#include <veldra/kit/compare.hpp>
#include <veldra/kit/drawing.hpp>
#include <veldra/kit/error.hpp>
#include <veldra/kit/exchange.hpp>
#include <veldra/kit/fields.hpp>
#include <veldra/kit/kinds.hpp>
#include <veldra/kit/numbers.hpp>
#include <veldra/kit/physics.hpp>
#include <veldra/kit/physics_moisture.hpp>
#include <veldra/kit/physics_solve.hpp>
#include <veldra/kit/physics_storage.hpp>
#include <veldra/kit/plan.hpp>
#include <veldra/kit/plan_file.hpp>
#include <veldra/kit/progress.hpp>
#include <veldra/kit/reactor_guard.hpp>
#include <veldra/kit/select.hpp>
#include <veldra/kit/text.hpp>
#include <veldra/kit/value.hpp>

#endif
