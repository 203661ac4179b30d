#ifndef VELDRA_STORE_SAVE_OPERATION_HPP
#define VELDRA_STORE_SAVE_OPERATION_HPP

#include "store/library_impl.hpp"
#include "store/transactions.hpp"
#include "store/undo_log.hpp"

#include <veldra/library.hpp>

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <unordered_set>

namespace veldra {

/// One transaction that saves objects with all that they refer to. Unless it is committed, the file
/// and the objects are as they were before.
class SaveOperation {
 public:
  /// What becomes of the objects that saving gives: the caller hands them on, or only the rows
  /// matter. Then objects that stand for others carry their id and name and nothing else.
  enum class Results { Wanted, Discarded };

  SaveOperation(Library& library, IdMapping& mapping, Results results);

  /// Saves an object, and first what it refers to, and returns the object that stands for it.
  template <class T>
  std::shared_ptr<T> save(const std::shared_ptr<T>& object);

  void commit();

 private:
  // An object that is being saved, and where its changes are logged, if they are.
  template <class T>
  struct Working {
    std::shared_ptr<T> object;
    UndoLog* log;
  };

  template <class T>
  Working<T> working_object(const std::shared_ptr<T>& object, const Library* source);
  template <class T>
  std::shared_ptr<T> whole(const std::shared_ptr<T>& object, const Library& source);
  template <class T>
  Working<T> remembered(const std::shared_ptr<T>& object);

  // Objects of this library that stand for an object of another one.
  template <class T>
  std::shared_ptr<T> mapped(const T& object, unsigned id);
  template <class T>
  std::shared_ptr<T> stand_in(const T& object, unsigned id);
  template <class T>
  bool is_there(unsigned id);

  // What an object refers to.
  template <class T>
  void save_references(const Working<T>&) {}
  void save_references(const Working<Material>& working);
  void save_references(const Working<Composition>& working);
  template <class T>
  std::shared_ptr<T> save_reference(const std::shared_ptr<T>& reference);
  template <class Record>
  void save_tags(Record& record, UndoLog* log);
  template <class Record>
  void save_properties(Record& record, UndoLog* log);
  template <class T>
  void drop_foreign_asset(std::shared_ptr<T>& asset, UndoLog* log);

  // Rows.
  template <class T>
  IdMapping::Status write(const Working<T>& working);
  template <class T>
  void insert(T& object);
  template <class T>
  IdMapping::Status update(T& object);
  IdMapping::Status update(Tag& tag);

  // Violated uniqueness. True: a stored object stands for the object now; false: try again.
  template <class T>
  bool resolve(const Working<T>& working, const std::string& message);
  bool resolve(const Working<Material>& working, const std::string& message);
  bool resolve(const Working<Composition>& working, const std::string& message);
  template <class T>
  bool decide(const Working<T>& working, const std::string& message);
  template <class T>
  unsigned stored_id(const T& object);
  template <class T>
  void become_stored(const Working<T>& working, unsigned id);

  template <class T>
  void bind(T& object);

  Library& library_;
  LibraryAccess::Impl& impl_;
  IdMapping& mapping_;
  Results results_;
  UndoLogs logs_{1};
  WriteTransaction transaction_;
  std::unordered_set<std::uint64_t> there_;  // keys of mapped objects that are known to be stored
  std::unordered_map<unsigned, std::shared_ptr<CustomProperty>> properties_;  // stand-ins by id
};

}  // namespace veldra

#endif
