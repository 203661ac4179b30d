// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_EDITING_HPP
#define VELDRA_TOOL_EDITING_HPP

#include "failure.hpp"
#include "kinds.hpp"
#include "lookup.hpp"
#include "planned_change.hpp"
#include "process/interruption.hpp"
#include "text.hpp"

#include <veldra/kit/numbers.hpp>
#include <veldra/veldra.hpp>

#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <type_traits>
#include <vector>

namespace veldra_tool {

/// Whether objects of a class are more than their names.
template <class T>
constexpr bool is_built =
    std::is_same_v<T, veldra::Material> || std::is_same_v<T, veldra::Composition>;

/// Throws `LibraryFailure` where an object other than the one with that id has the name.
template <class T>
void require_free_name(const veldra::Library& library, const T& object, unsigned id) {
  for (const auto& other : objects_named<T>(library, object.name().utf8())) {
    if constexpr (std::is_same_v<T, veldra::CustomProperty>) {
      if (other->object_type() != object.object_type()) continue;
    }
    if (other->id() == id) continue;
    throw LibraryFailure(fmt::format("the library has a {} {} already",
                                     singular_of(veldra::ObjectTraits<T>::type),
                                     in_quotes(object.name().utf8())));
  }
}

/// Tells what becomes of objects that were edited, those of which the source of a plan has other
/// states, and of others that something was `made` of. What edited objects refer to comes along,
/// and is the same.
void tell_edited(const kit::Plan& plan, const veldra::IdMapping& mapping,
                 const std::vector<kit::PlanEntry>& made, const PlanArguments& arguments,
                 Host& host);

/// Runs `work` on one of some objects; of several, what goes wrong comes out as a `LibraryFailure`
/// that names the object.
template <class T, class Work>
void naming_object(const T& object, std::size_t count, Work work) {
  if (count == 1) return work();
  const auto name = object.name().utf8();
  const auto refuse = [&](const std::string& sentence) {
    throw LibraryFailure(fmt::format("{} {}: {}", singular_of(veldra::ObjectTraits<T>::type),
                                     in_quotes(name), sentence));
  };
  try {
    work();
  } catch (const kit::Error& error) {
    refuse(printable(error.what()));
  } catch (const LibraryFailure& failure) {
    refuse(failure.what());
  }
}

/// What is wrong with the values of an object, in sentences that go on behind its name.
template <class T>
std::vector<std::string> faults_of(const T& object) {
  if constexpr (is_built<T>) {
    return kit::wrong_numbers(object);
  } else {
    return {};
  }
}

/// Throws `LibraryFailure`, which names the object, for a fault that it did not have before: what
/// nobody could compute with is not let in by hand.
template <class T>
void require_sound(const T& object, const std::vector<std::string>& before) {
  for (const auto& fault : faults_of(object)) {
    if (std::find(before.begin(), before.end(), fault) != before.end()) continue;
    throw LibraryFailure(fmt::format("{} {}: {}", singular_of(veldra::ObjectTraits<T>::type),
                                     in_quotes(object.name().utf8()), printable(fault)));
  }
}

/// Objects of a library that are changed, or made, by hand: collects them, and carries all out at
/// once. The caller holds the transaction of the library.
class Editing {
 public:
  Editing(std::shared_ptr<veldra::Library> library, const PlanArguments& arguments, Host& host);

  veldra::Library& library() { return *library_; }

  /// Changes each of some objects by `change_of(kit::ClassOf<T>)(object)`.
  template <class ChangeOf>
  void change_each(const std::set<veldra::ObjectKey>& keys, ChangeOf change_of);

  /// Takes an object that was read from the library, and has changed in memory since.
  template <class T>
  void change(const std::shared_ptr<T>& object);

  /// Takes an object that the library does not have yet.
  template <class T>
  void add(const std::shared_ptr<T>& object);

  /// Notes what was done in the library already.
  void note(kit::PlanEntry entry) { made_.push_back(std::move(entry)); }

  /// Tells what becomes of all, and does it unless it is a dry run. Gives whether anything is to be
  /// kept.
  bool carry_out(const std::function<void()>& remark = {});

 private:
  template <class T>
  void rename(T& object);

  std::shared_ptr<veldra::Library> library_;
  std::shared_ptr<veldra::Library> states_;  ///< as they are to be, in memory
  veldra::IdMapping mapping_;                ///< from the library into that one
  kit::PlanRules rules_;
  std::vector<kit::PlanEntry> made_;
  const PlanArguments& arguments_;
  Host& host_;
};

/// Runs `edit(editing)`, which gives whether its changes are to be kept, on a library file.
void edit_library(const std::string& file, const PlanArguments& arguments, Host& host,
                  const std::function<bool(Editing&)>& edit);

template <class ChangeOf>
void Editing::change_each(const std::set<veldra::ObjectKey>& keys, ChangeOf change_of) {
  constexpr std::size_t part_size = 512;
  std::map<veldra::ObjectType, std::set<unsigned>> ids;
  for (const auto& key : keys) ids[key.type].insert(key.id);
  for (const auto& [kind, wanted] : ids) {
    with_class_of(kind, [&, &all = wanted](auto of) {
      using T = typename decltype(of)::type;
      auto change_one = change_of(of);
      for (auto next = all.begin(); next != all.end();) {
        std::set<unsigned> part;
        for (; next != all.end() && part.size() < part_size; ++next) part.insert(*next);
        std::vector<std::shared_ptr<T>> objects;
        library_->get(objects, part);
        for (const auto& object : objects) {
          stop_if_asked();
          const auto faults = faults_of(*object);
          naming_object(*object, keys.size(), [&] { change_one(*object); });
          require_sound(*object, faults);
          change(object);
        }
      }
    });
  }
}

template <class T>
void Editing::change(const std::shared_ptr<T>& object) {
  if constexpr (is_built<T>) {
    const auto state = states_->save(object, mapping_);
    rules_.states_of[{veldra::ObjectTraits<T>::type, state->id()}] = object->id();
  } else {
    rename(*object);
  }
}

/// Of what is nothing but its name no state can be told apart.
template <class T>
void Editing::rename(T& object) {
  const auto stored = library_->get<T>(object.id());
  const auto old_name = stored->name().utf8();
  const auto new_name = object.name().utf8();
  require_free_name(*library_, object, object.id());
  kit::PlanEntry entry{};
  entry.source = {veldra::ObjectTraits<T>::type, object.id()};
  entry.name = old_name;
  entry.result = new_name;
  entry.stored = object.id();
  entry.decision = old_name == new_name ? kit::Decision::Equal : kit::Decision::Change;
  if (old_name != new_name) entry.changes.push_back({"name", old_name, new_name});
  library_->save(object.shared_from_this());
  note(std::move(entry));
}

template <class T>
void Editing::add(const std::shared_ptr<T>& object) {
  require_free_name(*library_, *object, 0);
  require_sound(*object, {});
  states_->save(object, mapping_);
}

}  // namespace veldra_tool

#endif
