#include "store/save_operation.hpp"

#include "foundation/translated.hpp"
#include "store/kinds.hpp"
#include "store/loading.hpp"
#include "store/queries.hpp"
#include "store/statement.hpp"
#include "store/unit_conversion.hpp"

#include <odb/exceptions.hxx>
#include <odb/sqlite/exceptions.hxx>

#include <sqlite3.h>

#include <algorithm>
#include <limits>

namespace veldra {

namespace {

/// Whether a unique value is taken. Told by the code: texts may come from triggers in the file, and
/// other violated constraints are no conflicts.
bool is_conflict(const odb::sqlite::database_exception& error) {
  return error.extended_error() == SQLITE_CONSTRAINT_UNIQUE ||
         error.extended_error() == SQLITE_CONSTRAINT_PRIMARYKEY;
}

bool ends_with(const std::string& text, const std::string& end) {
  return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

String last_word(const std::string& text) {
  String word;
  word.utf8(text.substr(text.rfind(' ') + 1));
  return word;
}

/// Sets a field, undoably where there is a log.
template <class Value>
void set(UndoLog* log, Value& field, Value value) {
  if (log == nullptr) {
    field = std::move(value);
  } else {
    log->set(field, std::move(value));
  }
}

template <class List>
void set_list(UndoLog* log, List& field, List list) {
  if (log == nullptr) {
    field = std::move(list);
  } else {
    log->set_list(field, std::move(list));
  }
}

template <class T>
void set_reference(UndoLog* log, std::shared_ptr<T>& field, std::shared_ptr<T> saved) {
  if (field != saved) set(log, field, std::move(saved));
}

/// Whether two lists point to the same objects.
template <class T>
bool same_objects(const std::vector<std::shared_ptr<T>>& left,
                  const std::vector<std::shared_ptr<T>>& right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end());
}

bool ids_are_left(Database& database, const char* table) {
  Statement row(database.connection_in_use(), "SELECT seq FROM sqlite_sequence WHERE name = ?1");
  row.bind(1, table);
  return !row.next() || row.integer(0) != std::numeric_limits<long long>::max();
}

std::uint64_t packed(ObjectType type, unsigned id) {
  return static_cast<std::uint64_t>(type) << 32 | id;
}

}  // namespace

SaveOperation::SaveOperation(Library& library, IdMapping& mapping, Results results)
    : library_(library),
      impl_(LibraryAccess::impl(library)),
      mapping_(mapping),
      results_(results),
      transaction_(*impl_.database) {}

void SaveOperation::commit() { transaction_.commit(logs_); }

template <class T>
std::shared_ptr<T> SaveOperation::save(const std::shared_ptr<T>& object) {
  if (object == nullptr) return nullptr;
  impl_.database->stop_if_interrupted();
  constexpr ObjectType type = ObjectTraits<T>::type;
  const std::shared_ptr<Library> source = object->library();
  const IdMapping::Key key({type, object->id()}, source.get());
  const bool foreign = source != nullptr && source.get() != &library_;
  IdMapping::Value known;
  if (foreign && mapping_.compute(key, known)) return mapped(*object, known.id);

  const Working<T> working = working_object(object, foreign ? source.get() : nullptr);
  auto status = IdMapping::Existing;
  if (working.object->isDirty()) {
    save_references(working);
    status = write(working);
  }
  const unsigned id = working.object->id();
  mapping_.assign(key, {id, status});
  if (results_ == Results::Discarded) there_.insert(packed(type, id));
  if (status != IdMapping::Existing) {
    impl_.reactor->objectSaved(library_, {type, id});
    transaction_.require_running();
    impl_.changed.insert(type);
  }
  return working.object;
}

template <class T>
SaveOperation::Working<T> SaveOperation::working_object(const std::shared_ptr<T>& object,
                                                        const Library* source) {
  if (source != nullptr) {
    const auto copy = whole(object, *source)->clone();
    convert_lengths(*copy, source->unit(), library_.unit());
    // Nobody ever has a copy that is discarded.
    if (results_ == Results::Discarded) return {copy, nullptr};
    return remembered(copy);
  }
  return object->isDirty() ? remembered(object) : Working<T>{object, &logs_.front()};
}

/// What was in the mapping when it was fetched for a copy has its id only, and so no name. It comes
/// here when the reactor has removed the entry since.
template <class T>
std::shared_ptr<T> SaveOperation::whole(const std::shared_ptr<T>& object, const Library& source) {
  if (results_ == Results::Wanted || !object->name().empty()) return object;
  ReadTransaction transaction(LibraryAccess::database(source));
  const auto read = load<T>(source, object->id());
  if (read == nullptr) throw ObjectNotFound();
  return read;
}

template <class T>
SaveOperation::Working<T> SaveOperation::remembered(const std::shared_ptr<T>& object) {
  UndoLog& log = logs_.front();
  log.remember(object, ObjectAccess::impl(*object));
  return {object, &log};
}

template <class T>
std::shared_ptr<T> SaveOperation::mapped(const T& object, unsigned id) {
  return results_ == Results::Wanted ? load<T>(library_, id) : stand_in(object, id);
}

template <class T>
std::shared_ptr<T> SaveOperation::stand_in(const T& object, unsigned id) {
  if (!is_there<T>(id)) return nullptr;
  const auto copy = ObjectAccess::make<T>();
  ObjectRecord& record = ObjectAccess::impl(*copy);
  record.id = id;
  record.name = object.name();
  return copy;
}

/// The values of an owner are kept by the name of their property, which may be another one here.
template <>
std::shared_ptr<CustomProperty> SaveOperation::stand_in(const CustomProperty&, unsigned id) {
  std::shared_ptr<CustomProperty>& property = properties_[id];
  if (property == nullptr) property = load<CustomProperty>(library_, id);
  return property;
}

/// An entry of a mapping that the caller kept may name an object that is gone by now.
template <class T>
bool SaveOperation::is_there(unsigned id) {
  const auto key = packed(ObjectTraits<T>::type, id);
  if (there_.count(key) != 0) return true;
  if (load<T>(library_, id) == nullptr) return false;
  there_.insert(key);
  return true;
}

template <class T>
std::shared_ptr<T> SaveOperation::save_reference(const std::shared_ptr<T>& reference) {
  // Objects refer to const objects, since they must not change what others share with them.
  using Object = std::remove_const_t<T>;
  const auto saved = save(std::const_pointer_cast<Object>(reference));
  if (saved == nullptr && reference != nullptr) throw ObjectNotFound();
  return saved;
}

template <class Record>
void SaveOperation::save_tags(Record& record, UndoLog* log) {
  auto tags = record.tags;
  for (auto& tag : tags) tag = save_reference(tag);
  if (!same_objects(tags, record.tags)) set_list(log, record.tags, std::move(tags));
}

template <class Record>
void SaveOperation::save_properties(Record& record, UndoLog* log) {
  // The reactor may change those of the object while the properties are saved.
  const auto former = record.custom_values;
  std::vector<std::shared_ptr<const CustomProperty>> properties;
  properties.reserve(former.size());
  for (const auto& value : former) properties.push_back(value.first);
  auto saved = properties;
  for (auto& property : saved) property = save_reference(property);
  if (same_objects(saved, properties)) return;

  // A property that a mapping names may have been renamed since, so the order is made anew.
  std::map<CustomPropertyKey, String> values;
  auto property = saved.begin();
  for (const auto& value : former) values.emplace(*property++, value.second);
  set_list(log, record.custom_values, std::move(values));
}

/// The id of an asset of another library means nothing in this file.
template <class T>
void SaveOperation::drop_foreign_asset(std::shared_ptr<T>& asset, UndoLog* log) {
  if (asset == nullptr) return;
  const auto source = asset->library();
  if (source != nullptr && source.get() != &library_) set_reference<T>(log, asset, nullptr);
}

void SaveOperation::save_references(const Working<Material>& working) {
  auto& record = ObjectAccess::impl(*working.object);
  save_tags(record, working.log);
  auto type = record.type;
  if (type == nullptr) type = MaterialType::create(translated("Generic"));
  set_reference(working.log, record.type, save_reference(type));
  set_reference(working.log, record.cut_layer, save_reference(record.cut_layer));
  save_properties(record, working.log);
  drop_foreign_asset(record.structural_asset, working.log);
  drop_foreign_asset(record.thermal_asset, working.log);
}

void SaveOperation::save_references(const Working<Composition>& working) {
  auto& record = ObjectAccess::impl(*working.object);
  save_properties(record, working.log);
  save_tags(record, working.log);
  set_reference(working.log, record.entity_layer, save_reference(record.entity_layer));

  auto layers = record.layers;
  bool same = true;
  for (auto& layer : layers) {
    const auto saved = save_reference(layer.material());
    same = same && saved == layer.material();
    layer.material(saved);
  }
  if (!same) set_list(working.log, record.layers, std::move(layers));
}

template <class T>
IdMapping::Status SaveOperation::write(const Working<T>& working) {
  T& object = *working.object;
  for (;;) {
    std::string message;
    try {
      auto status = IdMapping::Inserted;
      if (object.id() == 0) {
        insert(object);
      } else {
        status = update(object);
      }
      bind(object);
      return status;
    } catch (const odb::sqlite::database_exception& error) {
      if (!is_conflict(error)) throw;
      message = error.message();
    }
    if (resolve(working, message)) return IdMapping::Existing;
  }
}

/// The largest id is nobody's: rows whose ids are too large have it when they are read. SQLite says
/// of the end of its own, larger range what it says of a full disk.
template <class T>
void SaveOperation::insert(T& object) {
  try {
    impl_.database->persist(object);
    if (object.id() != std::numeric_limits<unsigned>::max()) return;
  } catch (const odb::sqlite::database_exception& error) {
    if (error.error() != SQLITE_FULL || ids_are_left(*impl_.database, Kind<T>::table)) throw;
  }
  throw odb::sqlite::database_exception(SQLITE_FULL, SQLITE_FULL, "no id is left");
}

template <class T>
IdMapping::Status SaveOperation::update(T& object) {
  try {
    impl_.database->update(object);
  } catch (const odb::object_not_persistent&) {
    throw ObjectNotFound();
  }
  return IdMapping::Updated;
}

/// A tag that has a row is never written again.
IdMapping::Status SaveOperation::update(Tag&) { return IdMapping::Existing; }

/// Kinds that are nothing but their unique values: the stored object is the same one.
template <class T>
bool SaveOperation::resolve(const Working<T>& working, const std::string&) {
  T& object = *working.object;
  const unsigned id = object.id() == 0 ? stored_id(object) : 0;
  if (id == 0) throw ObjectNotUnique();
  ObjectAccess::impl(object).id = id;
  bind(object);
  return true;
}

bool SaveOperation::resolve(const Working<Material>& working, const std::string& message) {
  return decide(working, message);
}

bool SaveOperation::resolve(const Working<Composition>& working, const std::string& message) {
  return decide(working, message);
}

template <class T>
bool SaveOperation::decide(const Working<T>& working, const std::string& message) {
  if (!ends_with(message, ".name")) throw ObjectNotUnique(last_word(message));

  auto& record = ObjectAccess::impl(*working.object);
  String name = record.name;
  const int decision = impl_.reactor->resolveNameConflict(library_, ObjectTraits<T>::type, name);
  transaction_.require_running();
  if (decision == Library::Reactor::Rename) {
    set(working.log, record.name, std::move(name));
    return false;
  }
  const bool use = decision == Library::Reactor::UseExisting;
  if (!use && decision != Library::Reactor::Overwrite) return false;

  const unsigned id = stored_id(*working.object);
  if (id == 0) throw ObjectNotUnique();
  if (use) {
    become_stored(working, id);
  } else {
    // The stored object with these values is this object with the stored one's id.
    record.id = id;
  }
  return use;
}

template <class T>
unsigned SaveOperation::stored_id(const T& object) {
  return id_of_name<T>(*impl_.database, object.name());
}

template <>
unsigned SaveOperation::stored_id(const CustomProperty& property) {
  return id_of_property(*impl_.database, property.name(), property.object_type());
}

template <class T>
void SaveOperation::become_stored(const Working<T>& working, unsigned id) {
  auto& record = ObjectAccess::impl(*working.object);
  if (results_ == Results::Wanted) {
    if (working.log != nullptr) working.log->remember_values(record);
    impl_.database->load(id, *working.object);
    link(*working.object, impl_.self);
  }
  record.id = id;
  bind(*working.object);
}

template <class T>
void SaveOperation::bind(T& object) {
  ObjectRecord& record = ObjectAccess::impl(object);
  record.library = impl_.self;
  record.dirty = false;
}

#define VELDRA_INSTANTIATE(T) \
  template std::shared_ptr<T> SaveOperation::save<T>(const std::shared_ptr<T>&);

VELDRA_FOR_EACH_KIND(VELDRA_INSTANTIATE)

}  // namespace veldra
