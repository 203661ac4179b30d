// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_STORE_SAVER_HPP
#define VELDRA_STORE_SAVER_HPP

#include "store/library_impl.hpp"
#include "store/row_writer.hpp"
#include "store/taken_values.hpp"
#include "store/transactions.hpp"

#include <veldra/library.hpp>

#include <memory>

namespace veldra {

/// One transaction that saves objects with all that they refer to. Unless it is committed, the file
/// and the objects are as they were before. For whom it saves, and what becomes of the objects, is
/// the policy's: `HostSaving` or `CopySaving`.
template <class Policy>
class Saver {
 public:
  Saver(Library& library, IdMapping& mapping);

  /// Saves an object, and first what it refers to, and returns the object that stands for it. Null
  /// for null, and for an object whose entry in the mapping names one that is gone.
  template <class T>
  std::shared_ptr<T> save(const std::shared_ptr<T>& object);

  void commit();

 private:
  template <class Record>
  class ReferenceSaving;

  template <class T>
  std::shared_ptr<T> copy_of(const std::shared_ptr<T>& object, const Library& source);
  template <class T>
  void save_references(T& object);
  template <class T>
  IdMapping::Status write(T& object);
  template <class T>
  bool carry_out(const Verdict& verdict, T& object);

  Library& library_;
  LibraryAccess::Impl& impl_;
  IdMapping& mapping_;
  Policy policy_;  // before the transaction: objects are undone after the file
  WriteTransaction transaction_;
  RowWriter rows_;
  TakenValues taken_values_;
};

}  // namespace veldra

#endif
