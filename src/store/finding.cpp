// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/finding.hpp"

#include "store/kinds.hpp"

#include <utf8.h>

#include <iterator>

namespace veldra {

namespace {

String well_formed(const std::string& text) {
  std::string bytes;
  utf8::replace_invalid(text.begin(), text.end(), std::back_inserter(bytes));
  String result;
  result.utf8(bytes);
  return result;
}

std::string subject_of(const Library::Finding& finding) {
  if (finding.object.id == 0) return plural_of(finding.object.type);
  const std::string subject =
      singular_of(finding.object.type) + " " + std::to_string(finding.object.id);
  return finding.name.empty() ? subject : subject + " \"" + finding.name.utf8() + "\"";
}

}  // namespace

Library::Finding make_finding(const ObjectKey& object, const std::string& name,
                              const std::string& sentence) {
  Library::Finding finding;
  finding.object = object;
  finding.name = well_formed(name);
  finding.sentence = well_formed(sentence);
  return finding;
}

Library::Finding finding_of_file(const std::string& sentence) {
  return make_finding({}, {}, sentence);
}

String told(const Library::Finding& finding) {
  if (finding.object.type == ObjectType{}) return finding.sentence;
  return String((subject_of(finding) + ": " + finding.sentence.utf8()).c_str());
}

namespace {

/// What people call a kind, as `name` takes it from the table of the kinds.
template <class Name>
std::string called(ObjectType type, Name name) {
  std::string result = name(Kind<Asset>());
  for_each_kind([&](auto kind) {
    using T = typename decltype(kind)::type;
    if (ObjectTraits<T>::type == type) result = name(Kind<T>());
  });
  return result;
}

}  // namespace

std::string singular_of(ObjectType type) {
  return called(type, [](auto kind) { return decltype(kind)::singular; });
}

std::string plural_of(ObjectType type) {
  return called(type, [](auto kind) { return decltype(kind)::plural; });
}

}  // namespace veldra
