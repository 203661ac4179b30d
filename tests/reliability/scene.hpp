// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_RELIABILITY_SCENE_HPP
#define VELDRA_TESTS_RELIABILITY_SCENE_HPP

#include "support/recording_reactor.hpp"
#include "support/temporary.hpp"

#include <veldra/veldra.hpp>

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <tuple>
#include <vector>

namespace veldra_tests {

/// What the library's file is before an operation.
enum class Start { Missing, Empty, Version150201, Version150301, Current };

/// The objects that operations work on: what `Scene::prepare` made of them.
struct Objects {
  std::shared_ptr<veldra::Tag> tag;
  std::shared_ptr<veldra::Layer> layer;
  std::shared_ptr<veldra::MaterialType> type;
  std::shared_ptr<veldra::CustomProperty> property;
  std::shared_ptr<veldra::Material> material;
  std::shared_ptr<veldra::Composition> composition;
};

/// What an operation gave of one kind: a single object, a list.
template <class T>
struct Found {
  std::shared_ptr<T> object;
  std::vector<std::shared_ptr<T>> list;
};

/// A library file and a second one to copy from, in a folder of their own.
///
/// Both have the composition "Wall" with all that it refers to, "spare" objects of every kind that
/// nothing refers to, and assets; the second, which is in inches, has the composition "Roof" also,
/// and other values under the same names.
class Scene {
 public:
  /// `vfs` is put before the paths of the libraries: empty, or such as "faultvfs://".
  Scene(Start start, const std::string& vfs);

  /// Opens both libraries. Their reactors are `reactor`.
  void open();

  /// Opens the library, creating it if need be.
  void create();

  /// Closes the libraries and lets all objects go.
  void close();

  const std::string& path() const { return path_; }
  const std::string& source_path() const { return source_path_; }
  const TemporaryFolder& folder() const { return folder_; }
  veldra::String name() const { return (vfs_ + path_).c_str(); }

  /// Writes a backup of the library, taken when it was another one, and gives its name.
  veldra::String write_backup() const;

  /// The path of that, whether it is there or not.
  std::string backup_path() const { return folder_ / "backup.lib"; }

  /// All values and identities of the objects in memory.
  std::string objects_state() const;

  /// The id of each of them, whether it is dirty and whose it is; the same in every scene.
  std::string identities() const;

  /// What the handle says of the library's locale and region; empty when there is none.
  std::string settings() const;

  /// Whether there is a file and something in it.
  bool has_file() const;

  /// All rows of the library's file; empty when there are none, or no file.
  std::string rows() const;
  std::string source_rows() const;

  std::shared_ptr<veldra::Library> library;
  std::shared_ptr<veldra::Library> source;
  RecordingReactor reactor;  ///< uses existing objects unless it is told otherwise
  Objects objects;

  // What operations need beside objects; made before the faults begin.
  std::set<unsigned> ids;
  std::set<veldra::ObjectKey> keys;
  std::map<veldra::ObjectKey, bool> removed;
  veldra::String text;
  veldra::IdMapping known{nullptr};  ///< what a mapping has before an operation gets a copy of it

  // What an operation has read or given back.
  template <class T>
  Found<T>& found() {
    return std::get<Found<T>>(found_);
  }
  unsigned long long number = 0;
  veldra::IdMapping mapping{nullptr};
  std::vector<veldra::String> findings;

  /// What the operation was to read: objects, lists, a number.
  std::string read_text() const;

  /// All that was read and given back, and what the reactor was told of objects, as a text. Without
  /// `removed`, and without `findings`: SQLite tells of a page that cannot be read as of a damaged
  /// one.
  std::string found_text() const;

  /// Forgets what `found_text` tells, and the findings.
  void forget_found();

 private:
  std::string mapping_text() const;

  std::tuple<Found<veldra::Tag>, Found<veldra::Layer>, Found<veldra::MaterialType>,
             Found<veldra::CustomProperty>, Found<veldra::Material>, Found<veldra::Composition>>
      found_;
  TemporaryFolder folder_;
  std::string vfs_;
  std::string path_;
  std::string source_path_;
};

/// Something that a host does with libraries.
struct Operation {
  enum class Kind {
    Opening,  ///< opens `Scene::library`, which is closed before
    Making,   ///< the same, and brings the file to the current version
    Reading,
    Writing,   ///< in one transaction
    Merging,   ///< the same, which finds that all is there and writes nothing
    Holding,   ///< several operations in one transaction of the host, which sets the region too
    Removing,  ///< in one transaction
    RemovingSeveral,  ///< in as many transactions as there are objects
    Purging,          ///< the same, of all objects that nothing refers to
    Replacing,        ///< all contents, in one transaction; the reactor is told of no object
    Setting           ///< of the metadata, which the handle keeps also when writing them fails
  };

  std::string name;
  Kind kind;
  Start start;
  std::function<void(Scene&)> prepare;
  std::function<void(Scene&)> run;
};

/// Every operation of a library, in all its forms but those that only drop the results.
const std::vector<Operation>& operations();

const Operation& operation_named(const char* name);

/// Those that write.
std::vector<Operation> writing_operations();

}  // namespace veldra_tests

#endif
