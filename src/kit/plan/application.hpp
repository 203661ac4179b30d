// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_PLAN_APPLICATION_HPP
#define VELDRA_KIT_PLAN_APPLICATION_HPP

#include <veldra/kit/fields.hpp>
#include <veldra/kit/plan.hpp>
#include <veldra/veldra.hpp>

#include <map>
#include <memory>
#include <set>
#include <string>

namespace veldra::kit {

/// Does what a plan says, within a transaction of its caller. Changes come before additions, as
/// they may give names and codes up that are added.
class Application {
 public:
  Application(const Plan& plan, Library& destination, const Progress& progress);

  IdMapping run();

 private:
  using Entries = std::map<unsigned, const PlanEntry*>;  ///< by the ids of the stored objects

  void assign_existing();
  void add_named();
  template <class T>
  void change();
  template <class T>
  void change(T& stored, const PlanEntry& entry, const Fields<T>& fields);
  void give_up_codes(const Entries& entries);
  template <class T>
  void give_up_names(const Entries& entries);
  template <class T>
  void add();
  template <class T>
  void copy(const std::set<unsigned>& ids);
  template <class T>
  void give_new_names(const std::set<unsigned>& ids);
  template <class T>
  void tag();
  std::shared_ptr<Tag> tag_named(const std::string& name);
  template <class T>
  Entries stored_of(Decision decision) const;
  template <class T, class Work>
  void for_each_of(const Entries& entries, Work work);

  const Plan& plan_;
  Library& destination_;
  const Progress& progress_;
  IdMapping mapping_;
  std::map<std::string, std::shared_ptr<Tag>> tags_;
};

}  // namespace veldra::kit

#endif
