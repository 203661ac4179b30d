// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/guid.hpp"

#include "foundation/encoding.hpp"

#include <boost/uuid/name_generator_sha1.hpp>
#include <boost/uuid/random_generator.hpp>
#include <boost/uuid/string_generator.hpp>
#include <boost/uuid/uuid.hpp>
#include <boost/uuid/uuid_io.hpp>

#include <stdexcept>
#include <string>
#include <vector>

namespace veldra {

namespace {

using boost::uuids::uuid;

uuid random_guid() {
  // Seeded from the random source of the operating system.
  static boost::uuids::random_generator_mt19937 generator;
  return generator();
}

uuid guid_of_name(const String& name) {
  static const boost::uuids::name_generator_sha1 generator(
      boost::uuids::string_generator()("4b7009ef-0317-4504-a674-282d1b5bb08f"));

  // Four bytes for each code unit, the least significant first. All GUIDs that were ever made from
  // names depend on it.
  std::vector<unsigned char> bytes;
  bytes.reserve(4 * text_length(name.c_str()));
  for (const unsigned short* unit = name.c_str(); *unit != 0; ++unit) {
    bytes.insert(bytes.end(), {static_cast<unsigned char>(*unit & 0xFF),
                               static_cast<unsigned char>(*unit >> 8), 0, 0});
  }
  return generator(bytes.data(), bytes.size());
}

uuid parse_or_make(const String& text) {
  if (text.empty()) return random_guid();
  try {
    // The text need not be well-formed to be a name, so it is not decoded.
    const unsigned short* units = text.c_str();
    return boost::uuids::string_generator()(std::wstring(units, units + text_length(units)));
  } catch (const std::runtime_error&) {
    return guid_of_name(text);
  }
}

}  // namespace

String make_guid(const String& text) {
  return String(boost::uuids::to_string(parse_or_make(text)).c_str());
}

}  // namespace veldra
