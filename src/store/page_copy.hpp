// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_STORE_PAGE_COPY_HPP
#define VELDRA_STORE_PAGE_COPY_HPP

#include "store/database.hpp"

namespace veldra {

/// Makes `to` the same database as `from`, page by page, in one transaction of `to`, which must
/// have none. Where `from` has one, its state is copied. Stops when the operation on `running` is
/// interrupted.
void copy_pages(Database& from, Database& to, Database& running);

}  // namespace veldra

#endif
