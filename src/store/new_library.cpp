// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/new_library.hpp"

#include "foundation/translated.hpp"
#include "store/guid.hpp"
#include "store/mapping-odb.hpp"

namespace veldra {

void fill(Database& database, const NewLibrary& contents) {
  Meta meta;
  meta.guid = make_guid(contents.guid);
  meta.unit = contents.unit;
  database.persist(meta);

  for (const char* name : {"Ceramic", "Concrete", "Earth", "Generic", "Glass", "Liquid", "Masonry",
                           "Metal", "Paint", "Plastic", "Stone", "Textile", "Wood"}) {
    database.persist(*MaterialType::create(translated(name)));
  }
}

}  // namespace veldra
