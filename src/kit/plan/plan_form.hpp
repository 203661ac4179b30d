// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_PLAN_PLAN_FORM_HPP
#define VELDRA_KIT_PLAN_PLAN_FORM_HPP

#include <veldra/kit/plan.hpp>

#include <string>
#include <utility>

/// What plan files are made of, for those who write and read them.
namespace veldra::kit::plan_form {

constexpr const char* name = "veldra plan";
constexpr int version = 1;

/// In place of the fingerprint of what is not there.
constexpr const char* absent = "absent";

/// Of other objects there is nothing to decide: they are nothing but their names.
inline bool has_entry(ObjectType kind) {
  return kind == ObjectType::Material || kind == ObjectType::Composition;
}

/// Decisions as somebody writes them.
constexpr std::pair<Decision, const char*> words[] = {{Decision::Add, "add"},
                                                      {Decision::Equal, "equal"},
                                                      {Decision::Tag, "tag"},
                                                      {Decision::Keep, "keep"},
                                                      {Decision::Change, "change"},
                                                      {Decision::Rename, "rename"},
                                                      {Decision::Undecided, "undecided"}};

inline std::string word_of(Decision decision) {
  for (const auto& [each, word] : words) {
    if (each == decision) return word;
  }
  return {};
}

}  // namespace veldra::kit::plan_form

#endif
