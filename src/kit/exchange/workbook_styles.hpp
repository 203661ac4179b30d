// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_WORKBOOK_STYLES_HPP
#define VELDRA_KIT_EXCHANGE_WORKBOOK_STYLES_HPP

#include "kit/exchange/xml_document.hpp"

#include <string>
#include <vector>

namespace veldra::kit {

/// Which styles of a workbook show numbers as dates, by their indices.
std::vector<bool> date_styles(const XmlDocument& styles);

/// The date for which a number of days stands, such as "2024-02-29" or "2024-02-29T12:00:00"; the
/// number itself where it stands for none.
std::string date_text(double days, bool from_1904);

}  // namespace veldra::kit

#endif
