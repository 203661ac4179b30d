// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/bulk_reading.hpp"

#include "objects/description.hpp"
#include "objects/object_access.hpp"
#include "store/kinds.hpp"
#include "store/mapping-odb.hpp"
#include "store/rows_of_many.hpp"

#include <odb/exceptions.hxx>
#include <odb/sqlite/exceptions.hxx>

#include <sqlite3.h>
#include <utf8.h>

#include <algorithm>
#include <iterator>
#include <limits>
#include <tuple>
#include <utility>

namespace veldra {

namespace {

template <class T>
using Mapping = odb::access::object_traits_impl<T, odb::id_sqlite>;

/// The rows of the objects themselves.
template <class T>
struct ObjectRows {
  using Image = typename Mapping<T>::image_type;

  static constexpr std::size_t columns = Mapping<T>::column_count;

  static constexpr const char* statement = Mapping<T>::find_statement;

  static void bind(odb::sqlite::bind* binds, Image& image) {
    Mapping<T>::bind(binds, image, odb::sqlite::statement_select);
  }

  static void grow(Image& image, bool* truncated) { Mapping<T>::grow(image, truncated); }
};

/// The rows of a container, as the mapping describes it.
template <class Container>
struct ContainerRows {
  using Image = typename Container::data_image_type;

  static constexpr std::size_t columns = Container::data_column_count - Container::id_column_count;

  static constexpr const char* statement = Container::select_statement;

  static void bind(odb::sqlite::bind* binds, Image& image) {
    Container::bind(binds, nullptr, 0, image);
  }

  static void grow(Image& image, bool* truncated) { Container::grow(image, truncated); }
};

/// A container of the objects of a kind: how the mapping describes it, and where it is.
template <class Container, class Record>
struct KeptIn {
  typename Container::container_type Record::*member;
};

template <class Container, class Record>
constexpr KeptIn<Container, Record> kept_in(typename Container::container_type Record::*member) {
  return {member};
}

// The containers of each kind. That none is forgotten is checked below.

template <class T>
constexpr auto containers(OfKind<T>) {
  return std::make_tuple();
}

constexpr auto containers(OfKind<Material>) {
  using Values = MaterialValues;
  return std::make_tuple(kept_in<Mapping<Material>::tags_traits>(&Values::tags),
                         kept_in<Mapping<Material>::thicknesses_traits>(&Values::thicknesses),
                         kept_in<Mapping<Material>::custom_values_traits>(&Values::custom_values));
}

constexpr auto containers(OfKind<Composition>) {
  using Values = CompositionValues;
  using Rows = Mapping<Composition>;
  return std::make_tuple(kept_in<Rows::tags_traits>(&Values::tags),
                         kept_in<Rows::layers_traits>(&Values::layers),
                         kept_in<Rows::custom_values_traits>(&Values::custom_values));
}

/// Whether a member has rows of its own.
template <class Role, class How, class Record, class Field>
constexpr bool is_container(Member<Role, How, Record, Field>*) {
  return std::is_base_of<Role, OneOf<References, ValuesByProperty, LayersOfMaterials>>::value ||
         std::is_same<Field, std::set<double>>::value;
}

template <class... Members>
constexpr std::size_t containers_among(std::tuple<Members...>*) {
  std::size_t count = 0;
  const bool found[] = {false, is_container(static_cast<Members*>(nullptr))...};
  for (const bool is_one : found) count += is_one ? 1 : 0;
  return count;
}

template <class... Values>
constexpr std::size_t described_containers(DescribedBy<Values...>) {
  std::size_t count = 0;
  const std::size_t counts[] = {
      0, containers_among(static_cast<decltype(Values::members())*>(nullptr))...};
  for (const std::size_t one : counts) count += one;
  return count;
}

/// Fills one container of many objects.
template <class T>
class ContainerReader {
 public:
  virtual ~ContainerReader() = default;
  virtual void open(const std::vector<unsigned>& ids) = 0;
  virtual void read(T& object) = 0;
  virtual void close() noexcept = 0;
};

template <class T, class Container, class Record>
class ReaderOf : public ContainerReader<T> {
 public:
  ReaderOf(Database& database, KeptIn<Container, Record> kept)
      : database_(database), member_(kept.member), rows_(database.only_connection()) {
    functions_.select_ = &take;
  }

  void open(const std::vector<unsigned>& ids) override { rows_.open(ids); }
  void close() noexcept override { rows_.close(); }

  void read(T& object) override {
    id_ = object.id();
    former_place_ = std::numeric_limits<long long>::min();
    const bool has_any = rows_.go_to(id_);
    load(ObjectAccess::impl(object).*member_, has_any);
  }

 private:
  using Loading = typename Container::container_traits_type;

  template <class Values>
  void load(Values& values, bool has_any) {
    Loading::load(values, has_any, functions_);
  }

  /// A list grows in a place of its own, and has no room to spare in the object.
  template <class Value>
  void load(std::vector<Value>& values, bool has_any) {
    Loading::load(growing_, has_any, functions_);
    values = {std::make_move_iterator(growing_.begin()), std::make_move_iterator(growing_.end())};
    growing_.clear();
  }

  // What the container asks for each of its values, until there are no more.

  template <class Value>
  static bool take(Value& value, void* reader) {
    return static_cast<ReaderOf*>(reader)->take_row(value);
  }

  template <class Key, class Value>
  static bool take(Key& key, Value& value, void* reader) {
    return static_cast<ReaderOf*>(reader)->take_row(key, value);
  }

  template <class... Values>
  bool take_row(Values&... values) {
    require_order(functions_);
    Container::init(values..., rows_.row(), &database_);
    rows_.next();
    return rows_.go_to(id_);
  }

  /// Values with places lie in the file in their order, unless another program has put them there.
  template <class Index, class Value>
  void require_order(const odb::ordered_functions<Index, Value>&) {
    const long long place = rows_.whole_number(1);
    if (place <= former_place_) throw NotInBulk();
    former_place_ = place;
  }

  template <class Functions>
  void require_order(const Functions&) {}

  Database& database_;
  typename Container::container_type Record::*member_;
  RowsOfMany<ContainerRows<Container>> rows_;
  typename Container::functions_type functions_{this};
  typename Container::container_type growing_;
  unsigned id_ = 0;
  long long former_place_ = 0;
};

template <class T>
using ContainerReaders = std::vector<std::unique_ptr<ContainerReader<T>>>;

template <class T, class Container, class Record>
std::unique_ptr<ContainerReader<T>> reader_of(Database& database,
                                              KeptIn<Container, Record> container) {
  return std::make_unique<ReaderOf<T, Container, Record>>(database, container);
}

template <class T, class Containers, std::size_t... Index>
ContainerReaders<T> readers_of(Database& database, const Containers& containers,
                               std::index_sequence<Index...>) {
  ContainerReaders<T> readers;
  const int in_order[] = {
      0, (readers.push_back(reader_of<T>(database, std::get<Index>(containers))), 0)...};
  static_cast<void>(in_order);
  return readers;
}

/// Whether an id comes again: other programs may have given it to two rows. Each is then read as
/// the first of them.
bool is_repetitive(const std::vector<unsigned>& ids) {
  return std::adjacent_find(ids.begin(), ids.end()) != ids.end();
}

/// Ends the reading of rows, however it ends.
template <class Rows>
class RowsOpen {
 public:
  explicit RowsOpen(Rows& rows) : rows_(rows) {}
  RowsOpen(const RowsOpen&) = delete;
  RowsOpen& operator=(const RowsOpen&) = delete;
  ~RowsOpen() { rows_.close(); }

 private:
  Rows& rows_;
};

}  // namespace

/// The statements, and the rows that they are at.
template <class T>
class BulkReading<T>::Statements {
 public:
  explicit Statements(Database& database)
      : database_(database), objects_(database.only_connection()), containers_(readers(database)) {}

  std::vector<std::shared_ptr<T>> read(const std::vector<unsigned>& ids) {
    auto objects = read_objects(ids);
    for (const auto& container : containers_) {
      const RowsOpen<ContainerReader<T>> open(*container);
      container->open(ids);
      for (const auto& object : objects) {
        database_.stop_if_interrupted();
        container->read(*object);
      }
    }
    return objects;
  }

 private:
  static ContainerReaders<T> readers(Database& database) {
    constexpr auto kept = containers(OfKind<T>());
    constexpr std::size_t count = std::tuple_size<decltype(containers(OfKind<T>()))>::value;
    static_assert(count == described_containers(PartsOf<T>()), "each container is to be read");
    return readers_of<T>(database, kept, std::make_index_sequence<count>());
  }

  std::vector<std::shared_ptr<T>> read_objects(const std::vector<unsigned>& ids) {
    std::vector<std::shared_ptr<T>> objects;
    objects.reserve(ids.size());
    const RowsOpen<RowsOfMany<ObjectRows<T>>> open(objects_);
    objects_.open(ids);
    for (const unsigned id : ids) {
      database_.stop_if_interrupted();
      if (!objects_.go_to(id)) throw NotInBulk();
      objects.push_back(ObjectAccess::make<T>());
      Mapping<T>::init(*objects.back(), objects_.row(), &database_);
    }
    return objects;
  }

  Database& database_;
  RowsOfMany<ObjectRows<T>> objects_;
  ContainerReaders<T> containers_;
};

template <class T>
BulkReading<T>::BulkReading(Database& database) : database_(database) {}

template <class T>
BulkReading<T>::~BulkReading() = default;

template <class T>
bool BulkReading<T>::is_worth_it(const std::vector<unsigned>& ids) {
  constexpr std::size_t fewest = 2;
  constexpr std::size_t fewest_of_list = 16;
  if (ids.empty() || is_repetitive(ids)) return false;
  return ids.size() >= (is_dense(ids) ? fewest : fewest_of_list);
}

template <class T>
std::vector<std::shared_ptr<T>> BulkReading<T>::read(const std::vector<unsigned>& ids) {
  std::vector<std::shared_ptr<T>> objects;
  if (!is_worth_it(ids)) return objects;
  as_far_as_sound([&] {
    if (statements_ == nullptr) statements_ = std::make_unique<Statements>(database_);
    objects = statements_->read(ids);
  });
  return objects;
}

void as_far_as_sound(const std::function<void()>& read) {
  try {
    read();
  } catch (const NotInBulk&) {
  } catch (const odb::object_not_persistent&) {
  } catch (const odb::no_type_info&) {
  } catch (const utf8::exception&) {
  } catch (const odb::sqlite::database_exception& error) {
    // Damage, or columns that are not there. All else concerns every object.
    if (error.error() != SQLITE_CORRUPT && error.error() != SQLITE_ERROR) throw;
  }
}

#define VELDRA_INSTANTIATE(T) template class BulkReading<T>;

VELDRA_FOR_EACH_KIND(VELDRA_INSTANTIATE)

}  // namespace veldra
