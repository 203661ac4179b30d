// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_WRITERS_HPP
#define VELDRA_KIT_EXCHANGE_WRITERS_HPP

#include <veldra/kit/exchange.hpp>

namespace veldra::kit {

// How a library is written in each format; see `write`.

WriteReport write_catalogue(const Library& library, const TextSink& sink, const WriteRules& rules);
WriteReport write_epjson(const Library& library, const TextSink& sink, const WriteRules& rules);
WriteReport write_gbxml(const Library& library, const TextSink& sink, const WriteRules& rules);
WriteReport write_honeybee(const Library& library, const TextSink& sink, const WriteRules& rules);
WriteReport write_idf(const Library& library, const TextSink& sink, const WriteRules& rules);
WriteReport write_ifc(const Library& library, const TextSink& sink, const WriteRules& rules);
WriteReport write_table(const Library& library, const TextSink& sink, const WriteRules& rules);

WriteReport write_workbook(const Library& library, const TextSink& sink, const WriteRules& rules);

}  // namespace veldra::kit

#endif
