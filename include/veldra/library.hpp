// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_LIBRARY_HPP
#define VELDRA_LIBRARY_HPP

#include <veldra/composition.hpp>
#include <veldra/criteria.hpp>
#include <veldra/exceptions.hpp>
#include <veldra/id_mapping.hpp>

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <vector>

namespace veldra {

/// An open library file: a catalogue of materials and compositions in one SQLite database.
///
///     auto library = veldra::Library::create("walls.lib", veldra::Unit::Millimetres, "");
///
///     auto brick = veldra::Material::create("Brick");
///     library->save(brick);
///
///     std::vector<std::shared_ptr<veldra::Material>> found;
///     library->search(found, "%brick%");
///
/// In the functions below `T` stands for `Tag`, `MaterialType`, `Layer`, `CustomProperty`,
/// `Material` or `Composition`.
///
/// Lifetime:
/// - The file is open until the last `std::shared_ptr` to the handle is released. Objects do not
///   keep it open; a `Snapshot` and a `Transaction` do.
/// - Objects that are read are copies in memory: to read one twice gives two objects, and neither
///   shows what is written later.
///
/// Transactions: every function that writes does all of its work or none. Exceptions to that are
/// the removal of several objects, which takes them one by one, and the failures that a function
/// names. A `Transaction` joins several calls into one.
///
/// Errors: the library has exceptions of its own (`Exception`) and lets those of the layers below
/// it pass. `error_kind` tells all of them apart without the headers of those layers. In the lists
/// below "a database error" stands for:
///
/// - `odb::timeout` (`ErrorKind::Busy`): the file was held by others for more than 5 seconds. A
///   host may try again; nothing has happened. `interrupt` ends the wait sooner.
/// - `odb::sqlite::database_exception`: SQLite failed, by lack of space (`ErrorKind::Full`), in a
///   file that can only be read (`ErrorKind::ReadOnly`) or is damaged (`ErrorKind::Damaged`), or
///   for another reason (`error_code`).
/// - `odb::transaction_already_finalized` (`ErrorKind::Transaction`): the `Transaction` or
///   `Snapshot` of this handle has ended by itself.
/// - `odb::no_type_info` (`ErrorKind::Damaged`): the file has an asset of an unknown kind.
/// - `odb::exception`: the base of these, for all other failures of the runtime.
/// - `utf8::exception` (`ErrorKind::MalformedText`): a text in the file is not UTF-8, or a text of
///   an object or a file name is not UTF-16.
/// - `std::bad_alloc` (`ErrorKind::OutOfMemory`): memory ran out.
/// - `Interrupted` (`ErrorKind::Interrupted`): `interrupt` was called meanwhile.
///
/// After an exception the file is as it was before the call, and so is every object in memory. A
/// function that differs says so. `typeChanged` and `libraryChanged` of the `Reactor` differ too:
/// an exception that comes from them leaves everything done.
///
/// Thread rule:
/// - One thread at a time uses a library and its objects. `interrupt` alone may be called from any
///   thread.
/// - Different threads may use different handles at the same time, also on the same file. While one
///   of them writes, the others wait.
/// - One thread at a time opens files, whatever these are: by `create`, `open`, `openExisting`,
///   `recognise`, `backup` or `restoreFrom`. Closing a handle is free.
/// - To copy from a library, or to save one of its objects elsewhere, is to use that library too.
///
/// Limits:
/// - The library runs on Linux on amd64.
/// - Network file systems: a file is safe only where locks (`fcntl`) work across machines. Where
///   they do not, two programs can write at once and damage the file. Then one machine at a time
///   may have the file open.
/// - A handle belongs to the process that opened it. After `fork` the child neither uses the handle
///   nor destroys it; it opens the file anew.
/// - The file of an open library must not be deleted, renamed or replaced.
/// - A name or a text has up to about a billion bytes, a pattern of `search` 50,000.
class VELDRA_EXPORT Library : public std::enable_shared_from_this<Library> {
 public:
  /// The way in which a library notifies its host of changes, and lets it decide about clashes of
  /// names and about removals. Derive from it, override the functions of interest, and install an
  /// object by `setReactor`.
  ///
  ///     class Renaming : public veldra::Library::Reactor {
  ///      public:
  ///       int resolveNameConflict(veldra::Library&, veldra::ObjectType,
  ///                               veldra::String& name) override {
  ///         name = veldra::String((name.utf8() + " (supplier)").c_str());
  ///         return Rename;
  ///       }
  ///     };
  ///
  /// `resolveNameConflict`, `objectSaved`, `mayRemove` and `objectRemoved` are called within the
  /// transaction of the operation. There:
  ///
  /// - Reading from the same library is allowed, and sees the changes of the operation so far.
  /// - Everything is allowed on other libraries.
  /// - A write on the same library throws `odb::already_in_transaction`. The operation goes on if
  ///   the reactor catches it.
  /// - The host may release the objects that it passed to the operation.
  /// - The host must not change an object that is being saved.
  /// - An exception ends the operation, takes its changes back, and reaches its caller.
  ///
  /// `typeChanged` and `libraryChanged` are called after the operation has ended, also if its
  /// changes were taken back. There:
  ///
  /// - Everything is allowed on every library.
  /// - An exception reaches the caller of the operation, but its changes stay, and the remaining
  ///   notifications are left out. The exception is dropped if the operation itself has failed, or
  ///   its transaction was rolled back.
  ///
  /// All calls come from the thread that has called the library.
  class VELDRA_EXPORT Reactor {
   public:
    /// The answers to a name that is taken.
    enum Decision : int {
      /// The object takes the id and the values of the stored one. Its own values are lost.
      UseExisting = 1,
      /// The object takes the id of the stored one and overwrites it. If it had an id, the object
      /// that is stored under that one stays as it is.
      Overwrite = 2,
      /// The object is saved under the changed name.
      Rename = 3
    };

    /// Destroys the reactor. The library never does.
    virtual ~Reactor() = 0;

    /// Decides about a material or composition that is being saved under a name that is taken.
    /// Returns one of the decisions. For `Rename`, the function has changed `name`; it may look for
    /// a free one in `library`. For a new name that is taken as well it is called again, with that
    /// name. After any other number it is called again too, without end.
    ///
    /// The default throws `ObjectNotUnique`.
    ///
    /// A code that is taken is not decided here: saving throws `ObjectNotUnique` with the text
    /// "Material.code", also if the name is taken as well. A host that wants to save nevertheless
    /// looks before whether another material has the code, and calls `Material::clear_code`.
    virtual int resolveNameConflict(Library& library, ObjectType type, String& name);

    /// Notifies of an object that was inserted or updated. The change is taken back if the
    /// operation fails later. The default does nothing.
    virtual void objectSaved(Library& library, const ObjectKey& key);

    /// Decides about the removal of an object: 0 allows it, any other number refuses it. Called
    /// before each removal, also of an object that is in use or does not exist. The default returns
    /// 0.
    virtual int mayRemove(Library& library, const ObjectKey& key);

    /// Notifies of an object that was deleted, before the deletion is committed. If the commit
    /// finds a reference to the object, the object stays, and the operation reports so by its
    /// result or by an exception. The default does nothing.
    virtual void objectRemoved(Library& library, const ObjectKey& key);

    /// Notifies of an operation that has changed something, once at its end, after `typeChanged`.
    /// Comes also if a commit has refused a removal of which `objectRemoved` had notified. The
    /// default does nothing.
    virtual void libraryChanged(Library& library);

    /// Notifies of a kind of objects that an operation has changed: at its end, once for each kind,
    /// in ascending order. The default does nothing.
    virtual void typeChanged(Library& library, ObjectType type);

    /// Is never called.
    virtual void reserved();
  };

  /// @name Opening
  /// @{

  /// Opens the library in the file `filename`, or makes a new one in a file that is missing or
  /// empty.
  ///
  /// A new library has:
  ///
  /// - the unit `unit`, which never changes;
  /// - the GUID `guid`, if that is the text of a GUID; a random one, if `guid` is empty; and else
  ///   one that is derived from the text, always the same for the same text;
  /// - thirteen material types, whose names the host may translate (`Translations`);
  /// - no locale and no region.
  ///
  /// An existing library keeps its contents, and `unit` and `guid` are ignored. A file of an older
  /// version is migrated to the current one.
  ///
  /// Caution: a database that does not say its version counts as empty. Its tables are lost where
  /// they have the names of those of a library. `openExisting` never makes a new library.
  ///
  /// Names of files:
  /// - "memdb:///walls" opens the path "/walls" through the SQLite VFS "memdb".
  /// - ":memory:" is a library in memory that ends with its handle.
  ///
  /// Random GUIDs come from a generator of the process, which takes its seed from the operating
  /// system when the first one is made. Processes that are forked after that make the same GUIDs.
  ///
  /// Throws; the texts of the first two begin with the name of the file:
  /// - `odb::sqlite::database_exception`: the file cannot be opened or made, its name is empty, or
  ///   it is no database (`ErrorKind::NotALibrary`).
  /// - `odb::unknown_schema_version` (`ErrorKind::UnknownVersion`): the version is not known.
  /// - `odb::object_not_persistent` (`ErrorKind::NotFound`): the file does not say its identity.
  /// - any other database error (`Library`).
  ///
  /// The file is then as it was, and a new one is empty. If only the last step has failed, which
  /// reads the identity, the file may be a new library, or be migrated, already.
  static std::shared_ptr<Library> create(const String& filename, Unit unit, const String& guid);

  /// Opens the library in the existing file `filename`. An empty file becomes a new library in
  /// millimetres with a random GUID. A file of an older version is migrated.
  ///
  /// With `readOnly` the library refuses all changes. The file must be writable nevertheless if it
  /// is empty or of an older version. Without `readOnly`, a file that can only be read is opened as
  /// well: `Library::readOnly()` tells.
  ///
  /// Throws:
  /// - `odb::sqlite::database_exception`: also if there is no such file.
  /// - all else as `create`.
  static std::shared_ptr<Library> open(const String& filename, bool readOnly);

  /// The answer of `recognise`.
  struct Recognition {
    /// The kinds of files.
    enum class Kind : int {
      Missing = 0,          ///< There is no such file.
      Empty = 1,            ///< It has no tables: `create` and `open` make a library of it.
      Library = 2,          ///< It is a library of the current version.
      OlderLibrary = 3,     ///< It is a library that opening brings to the current version.
      NewerLibrary = 4,     ///< It is a library of a version to come.
      UnknownVersion = 5,   ///< It is a library, and its statement of its version means nothing.
      WithoutVersion = 6,   ///< It has the tables of a library and does not say its version.
      OtherDatabase = 7,    ///< It is a database of another program.
      Damaged = 8,          ///< It is a database that cannot be read.
      Other = 9,            ///< It is no database: another file, a folder, a device.
      NeedsRecovery = 10,   ///< A journal or log belongs to it that cannot be applied here.
      WithoutIdentity = 11  ///< It has the tables of a library and does not say which one it is.
    };

    /// The kind of the file.
    Kind kind;

    /// The version of the file's schema; 0 if it says none.
    unsigned long long version;
  };

  /// Says of which kind a file is, and makes no library of it. `filename` is one as for `create`.
  ///
  /// The file is opened for reading. After a crash of another program, SQLite may have to finish
  /// that program's work first: it takes back a transaction that was not committed, or brings the
  /// contents of a log into the file. Where that cannot be done, as in a folder that can only be
  /// read, the answer is `NeedsRecovery`. Nothing else is written.
  ///
  /// The file is not read to its end: a library with damage further on is recognised as a library.
  ///
  /// Throws:
  /// - `odb::sqlite::database_exception`: the name is empty, or the file exists and cannot be read.
  /// - any other database error (`Library`).
  static Recognition recognise(const String& filename);

  /// Opens the library in the existing file `filename`, as `open` does, but never makes a new
  /// library. The file is examined on the connection that opens it, under the same lock.
  ///
  /// Throws:
  /// - `NotALibrary`: the file is empty, does not say its version or its identity, or is a database
  ///   of another program. It stays as it is.
  /// - all else as `open`.
  static std::shared_ptr<Library> openExisting(const String& filename, bool readOnly);

  /// Handles do not copy: they are shared by `std::shared_ptr`.
  Library(const Library&) = delete;

  /// Handles are not assigned.
  Library& operator=(const Library&) = delete;

  /// Closes the file.
  ~Library();

  /// @}

  /// @name The library itself
  /// @{

  /// The name that was passed to `create`, `open` or `openExisting`. Valid as long as the handle.
  const String& filename() const noexcept;

  /// The identity of the library: 36 characters, hexadecimal in lower case with hyphens. It stays
  /// the same in copies of the file.
  const String& guid() const noexcept;

  /// The unit of all thicknesses in the library. It never changes, but by `restoreFrom` from
  /// another library.
  Unit unit() const noexcept;

  /// The locale of the texts in the library, such as "de_CH": a note for hosts, empty at first. As
  /// it was when the library was opened, or set by this handle; values that other handles have set
  /// since do not show.
  const String& locale() const noexcept;

  /// The region for which the library is meant, such as "Ostschweiz": a note for hosts, empty at
  /// first. As it was when the library was opened, or set by this handle.
  const String& region() const noexcept;

  /// Sets the locale and writes locale and region to the file at once. A region that another handle
  /// has set since this one was opened is overwritten. The reactor is not notified.
  ///
  /// Throws; the file is then as it was, while this handle keeps the new value:
  /// - `LibraryReadOnly`: the library can only be read.
  /// - `ObjectInUse`: a constraint of the file forbids it.
  /// - `ObjectNotFound`: the file does not say its identity any more.
  /// - `odb::already_in_transaction`: within a call of the reactor, a `Snapshot` or a `for_each`.
  /// - `utf8::invalid_utf16`: the text is not UTF-16.
  /// - `UnknownError` (`DatabaseError` with a result code): any other failure of the database, such
  ///   as a file that others hold for more than 5 seconds.
  /// - `Interrupted`, `std::bad_alloc`.
  void locale(const String& locale);

  /// Sets the region and writes locale and region to the file at once. A locale that another handle
  /// has set since this one was opened is overwritten. The reactor is not notified.
  ///
  /// Throws: as `locale(locale)`.
  void region(const String& region);

  /// The version of the file's schema: 150302.
  unsigned long long version() const noexcept;

  /// Whether changes are refused: the library was opened so, or its file can only be read.
  bool readOnly() const;

  /// Installs a reactor; null installs the default one, which refuses names that are taken and
  /// allows every removal.
  ///
  /// Lifetime: the reactor stays the host's. It must live until it is replaced or the library is
  /// closed.
  void setReactor(Reactor* reactor);

  /// @}

  /// @name Checking and keeping
  /// @{

  /// A defect in the file of a library.
  struct VELDRA_EXPORT Finding {
    /// The object with the defect.
    ///
    /// - Kind 0, `ObjectType{}`: the file as a whole.
    /// - Id 0: all objects of the kind. They must not be read, since reading throws or never ends:
    ///   a table of theirs, or of an object to which they refer, is missing, lacks a column, or is
    ///   no table.
    ObjectKey object;

    /// The name of the object; empty if it has none, and where no single object is meant.
    String name;

    /// The defect, as a sentence in English. For an object it begins in lower case, so that it can
    /// follow the name of the object.
    String sentence;
  };

  /// Examines the whole file and appends its defects to `findings`. A sound file, of whichever
  /// version it was made, has none.
  ///
  ///     std::vector<veldra::Library::Finding> findings;
  ///     library->check(findings);
  ///     for (const auto& finding : findings) std::cerr << finding.sentence.utf8() << "\n";
  ///
  /// Defects of the schema are tables, columns, keys, indexes, triggers and views that are missing
  /// or do not belong there. A view or the like in the place of a table is a defect and is not
  /// read. Other defects are:
  ///
  /// - damage that SQLite's check of integrity finds, and references to rows that are missing;
  /// - an identity or a version of the file that is missing or is there twice;
  /// - ids that no object can have, and sequences of ids that are used up or are no whole numbers;
  /// - texts with a zero byte inside, and values of other types in the place of texts;
  /// - positions in lists of tags and of layers that are doubled, negative or leave gaps;
  /// - thicknesses that are negative, infinite or NaN. NaN is sound as the least thickness of a
  ///   variable layer that is not set;
  /// - conductivities of assets that are negative, infinite or NaN;
  /// - types of compositions other than those of `Composition::Type`.
  ///
  /// Of damage, of references and of each other defect of rows the first 100 are appended. Whether
  /// the values of an object fit each other is not examined.
  ///
  /// Throws, and leaves `findings` as it is: a database error (`Library`). A page that cannot be
  /// read gives such an error or a finding.
  void check(std::vector<Finding>& findings) const;

  /// Examines the whole file, and appends its defects as sentences that name the objects, such as
  /// `composition 3 "Wall": the thickness of layer 2 is negative: -1`.
  ///
  /// Throws: as the other `check`.
  void check(std::vector<String>& findings) const;

  /// Writes a copy of the library into the new file `filename`, a name as for `create`. The copy is
  /// a library with the same contents, the same GUID and the same rights of access.
  ///
  ///     library->backup("walls-2026-11-22.lib");
  ///
  /// To replace an older backup, write the new one under another name and rename it.
  ///
  /// - The copy is one state of the library, also while others write. Others that want to commit
  ///   wait for its end.
  /// - The copy is on the disk when the function returns.
  /// - Pages are copied as they are, damaged ones too.
  /// - A library with a log (WAL) gives a copy with a log, which needs a folder that can be
  ///   written.
  /// - A program that is killed meanwhile leaves an unfinished file with its journal, `filename`
  ///   with "-journal" behind it. Opened, it is an empty file. Remove both together.
  ///
  /// Throws; no new file is left then:
  /// - `FileExists`: there is a file of that name. It stays as it is.
  /// - `odb::already_in_transaction`: this handle is writing, or has a `Transaction`.
  /// - `odb::sqlite::database_exception`: the file cannot be made, or the disk is full.
  /// - any other database error (`Library`).
  void backup(const String& filename) const;

  /// Replaces all contents of the library by those of the library in the file `filename`, in one
  /// transaction, its unit, locale and region included. The file is one that `backup` has written,
  /// or any other library.
  ///
  /// - The file must have the GUID that the library has. With `otherLibrary` it may have another
  ///   one, which the library has then.
  /// - The file is looked through before: a damaged one is refused, and one that lacks a table.
  /// - The contents of an older version are migrated on the way.
  /// - The file itself is only read. SQLite may have to finish the work of a program that has
  ///   crashed there, as for `recognise`.
  /// - Objects in memory stay as they are, with ids that may now belong to other objects. Read them
  ///   anew.
  /// - Other handles on the file of the library read the new contents, but keep the GUID and the
  ///   unit that they have read when they were opened. After a restoration from another library,
  ///   close them and open the file anew.
  /// - What other programs keep in the file of the library goes.
  /// - The reactor is notified that all kinds have changed.
  ///
  /// Throws; the library is then as it was:
  /// - `NotALibrary`: the file is no library, as for `openExisting`.
  /// - `OtherLibrary`: the file has another GUID.
  /// - `SameFile`: the file is that of this library, under whatever name.
  /// - `odb::sqlite::database_exception`: also if the file is damaged (`ErrorKind::Damaged`), keeps
  ///   its texts in another encoding than the library, or has pages of another size than a library
  ///   with a log or in memory.
  /// - `LibraryReadOnly`: this library can only be read.
  /// - `odb::already_in_transaction`: this handle is reading or writing: it has a `Snapshot` or a
  ///   `Transaction`, or the call comes from a reactor or a `for_each`.
  /// - all else as `open`, for either file.
  void restoreFrom(const String& filename, bool otherLibrary = false);

  /// Ends the operation that is running on this handle, which then throws `Interrupted` and has its
  /// changes taken back. Does nothing if none is running.
  ///
  /// May be called from another thread and from a signal handler, as long as the handle lives.
  ///
  /// - It ends: reading, saving, removing, purging, copying (on the source or the destination),
  ///   `check`, `backup`, `restoreFrom`, `Transaction::commit`, and waiting for a file that others
  ///   hold.
  /// - Of several objects that are removed by one call, those that were removed before stay
  /// removed.
  /// - Within a `Transaction` the earlier operations stay, unless the transaction has ended by
  ///   itself (`Transaction::commit`).
  /// - An operation that is nearly complete may return as usual.
  void interrupt() noexcept;

  /// @}

  /// @name Reading
  /// Objects that are read belong to this library and are clean.
  ///
  /// - Lists append to `out`, in the order in which the database gives the objects. Custom
  ///   properties come in the order of their names.
  /// - An object that cannot be read whole, since an object to which it refers is not in the file,
  ///   counts as not there. `ids` and `unreadable` have it.
  /// @{

  /// Reads the object with an id. Empty if there is none, and for id 0.
  ///
  /// Throws: a database error (`Library`).
  template <class T>
  std::shared_ptr<T> get(unsigned id) const;

  /// Reads the object with a name, which must be equal code unit by code unit. Empty if there is
  /// none, and for an empty name. Of several custom properties of one name, for different kinds of
  /// object, it reads any.
  ///
  /// Throws: a database error (`Library`).
  template <class T>
  std::shared_ptr<T> get(const String& name) const;

  /// Reads the objects with the ids `ids`, and appends them to `out`. Ids that are not there are
  /// skipped. No ids select nothing.
  ///
  /// Throws, and leaves `out` as it is: a database error (`Library`).
  template <class T>
  void get(std::vector<std::shared_ptr<T>>& out, const std::set<unsigned>& ids) const;

  /// Reads all objects of the kind, and appends them to `out`. For large libraries see `for_each`.
  ///
  /// Throws, and leaves `out` as it is: a database error (`Library`).
  template <class T>
  void get(std::vector<std::shared_ptr<T>>& out) const;

  /// Reads the objects that the criteria select, and appends them to `out`.
  ///
  /// Throws, and leaves `out` as it is: a database error (`Library`).
  template <class T>
  void get(std::vector<std::shared_ptr<T>>& out,
           const typename CriteriaOf<T>::type& criteria) const;

  /// Reads the objects whose names match `text`, and appends them to `out`.
  ///
  /// `text` is a pattern of SQL's LIKE for the whole name: "%" stands for any text, "_" for any
  /// character. ASCII letters match in either case. An empty text matches nothing.
  ///
  /// Throws, and leaves `out` as it is: a database error (`Library`).
  template <class T>
  void search(std::vector<std::shared_ptr<T>>& out, const String& text) const;

  /// Reads the objects whose names match `text` and that the criteria select, and appends them to
  /// `out`. The pattern is that of the other `search`. Criteria of defaults select every object.
  ///
  /// Throws, and leaves `out` as it is: a database error (`Library`).
  template <class T>
  void search(std::vector<std::shared_ptr<T>>& out, const String& text,
              const typename CriteriaOf<T>::type& criteria) const;

  /// Counts the objects of the kind. Reads no object.
  ///
  /// Throws: a database error (`Library`).
  template <class T>
  unsigned long long count() const;

  /// Counts the objects that the criteria select. Reads no object.
  ///
  /// Throws: a database error (`Library`).
  template <class T>
  unsigned long long count(const typename CriteriaOf<T>::type& criteria) const;

  /// The ids of all objects of the kind, also of those that cannot be read whole. Reads no object.
  ///
  /// Throws: a database error (`Library`).
  template <class T>
  std::set<unsigned> ids() const;

  /// The ids of the objects that the criteria select, also of those that cannot be read whole.
  /// Reads no object.
  ///
  /// Throws: a database error (`Library`).
  template <class T>
  std::set<unsigned> ids(const typename CriteriaOf<T>::type& criteria) const;

  /// The names of all objects of the kind by their ids, also of those that cannot be read whole.
  /// Reads no object, and so is the quickest way to a list to choose from, or to the ids of many
  /// names.
  ///
  ///     for (const auto& each : library->names<veldra::Material>()) {
  ///       menu.add(each.second, each.first);
  ///     }
  ///
  /// - Custom properties for different kinds of object may share a name.
  /// - A name that is not UTF-8 ends it with an exception, as it ends a list (`unreadable`).
  /// - Memory: some 80 bytes for each object, and its name.
  ///
  /// Throws: a database error (`Library`).
  template <class T>
  std::map<unsigned, String> names() const;

  /// The ids of the objects of the kind that cannot be read, for one of these reasons:
  ///
  /// - an object to which it refers is missing,
  /// - a text is not UTF-8,
  /// - an asset is of an unknown kind.
  ///
  /// Reads all objects of the kind, one after another.
  ///
  /// Throws: a database error (`Library`).
  template <class T>
  std::set<unsigned> unreadable() const;

  /// Calls `visit` with each object of the kind, in the order of a list, until `visit` returns
  /// false. Returns whether all objects were visited.
  ///
  /// Objects that refer to something missing are left out. One with a text that is not UTF-8, or
  /// with an asset of an unknown kind, ends it with an exception, as for a list (`unreadable`).
  ///
  ///     library->for_each<veldra::Material>([&](const std::shared_ptr<veldra::Material>& each) {
  ///       sheet.add(each->name());
  ///       return !sheet.full();
  ///     });
  ///
  /// - All objects are of one state of the library, as in a `Snapshot`. Others that want to commit
  ///   wait for the end.
  /// - Memory: at most 64 objects at once, besides those that `visit` keeps, and 4 bytes for each
  ///   object that is selected.
  /// - `visit` may read from the library, also by `for_each`, and may release its last pointer.
  /// - In `visit`, a write to the library, the beginning of a `Snapshot` or `Transaction`, and the
  ///   `commit` of one throw `odb::already_in_transaction` and change nothing. To change objects,
  ///   collect their ids, and change them after the function has returned.
  ///
  /// Throws:
  /// - the exceptions of `visit`.
  /// - a database error (`Library`).
  template <class T>
  bool for_each(const std::function<bool(const std::shared_ptr<T>&)>& visit) const;

  /// Calls `visit` with each object that the criteria select. All else is as in the other
  /// `for_each`, the exceptions included.
  template <class T>
  bool for_each(const typename CriteriaOf<T>::type& criteria,
                const std::function<bool(const std::shared_ptr<T>&)>& visit) const;

  /// The keys of the objects that refer to an object, as the file has them: compositions of a
  /// material, materials of a tag, and so on, assets too. The object itself need not exist. Reads
  /// no object.
  ///
  ///     for (const auto& key : library->referrers({veldra::ObjectType::Material, brick->id()})) {
  ///       const auto user = library->get<veldra::Composition>(key.id);  // all are compositions
  ///       if (user) print(user->name());                                // unless it is unreadable
  ///     }
  ///
  /// Searches whole tables, each time: for many objects ask `unreferenced`. Rows that belong to no
  /// object are not asked, although they keep what they refer to from being removed.
  ///
  /// Throws: a database error (`Library`).
  std::set<ObjectKey> referrers(const ObjectKey& key) const;

  /// The ids of the objects of the kind to which no object refers. `purge<T>` removes these, if the
  /// reactor allows it. Reads no object.
  ///
  /// Throws: a database error (`Library`).
  template <class T>
  std::set<unsigned> unreferenced() const;

  /// @}

  /// @name Saving
  /// @{

  /// Saves an object, after the objects to which it refers, in one transaction. Returns the object
  /// that stands for it in this library.
  ///
  /// The library of the object decides what happens:
  ///
  /// - No library, or this one, and dirty: the object is inserted if its id is 0, and updated
  ///   otherwise. It then belongs to this library, is clean, and is returned.
  /// - No library, or this one, and clean: nothing happens, also not to the objects to which it
  ///   refers. It is returned.
  /// - Another library: the object stays as it is. A copy is saved, in the unit of this library,
  ///   and returned.
  ///
  /// Objects to which it refers (tags, material type, drawing layer, custom properties, materials
  /// of layers) are saved by the same rules. Assets are never saved; a reference to an asset of
  /// another library is dropped.
  ///
  /// A name may be taken by another object of the kind:
  ///
  /// - A new tag, material type, drawing layer or custom property becomes the stored object of that
  ///   name.
  /// - A material type, drawing layer or custom property with an id throws `ObjectNotUnique`.
  /// - For a material or a composition the `Reactor` decides.
  ///
  /// A material without a type gets the type "Generic" (`Translations`). A tag with an id is never
  /// written.
  ///
  /// An empty pointer gives an empty one. That call, and one in which nothing happens, take no
  /// lock: they wait for nobody, and are allowed on a library that can only be read, within a call
  /// of the reactor and within a `Snapshot`.
  ///
  /// Throws:
  /// - `ObjectNotUnique`: a name (without text) or a code (with text) is taken, and the reactor has
  ///   not decided otherwise.
  /// - `ObjectNotFound`: an object with an id is no longer in the file.
  /// - the exceptions of the reactor.
  /// - `odb::already_in_transaction`: within a call of the reactor, a `Snapshot` or a `for_each`.
  /// - `odb::sqlite::database_exception` (`ErrorKind::ReadOnly`): the library can only be read.
  /// - any other database error (`Library`).
  ///
  /// The file and all objects are then as they were, unless the exception came from `typeChanged`
  /// or `libraryChanged`.
  template <class T>
  std::shared_ptr<T> save(const std::shared_ptr<T>& object);

  /// Saves an object as `save(object)` does, and enters each object that is saved into `mapping`,
  /// which must be one into this library. This is not checked.
  ///
  /// An object of another library that has an entry already is not saved again:
  ///
  /// - The object of the entry is read and returned; the result is empty if it is gone by now.
  /// - A reference to it becomes a reference to the object of the entry. If that is gone, the call
  ///   throws `ObjectNotFound`.
  ///
  /// An object without a library is entered under a null library and its id, so that all new
  /// objects of a kind share one key with the id 0.
  ///
  /// Throws: as `save(object)`. Entries stay then, and also when the transaction is rolled back
  /// later (`IdMapping`).
  template <class T>
  std::shared_ptr<T> save(const std::shared_ptr<T>& object, IdMapping& mapping);

  /// @}

  /// @name Removing
  /// An object is removed only if no object in the library refers to it and the reactor allows it.
  /// Each object is removed in a transaction of its own, unless the host has a `Transaction`.
  ///
  /// Within a `Transaction`, several objects are removed in a time that grows with their number.
  /// Without one, the database searches the file for each object. Within one, `objectRemoved`
  /// usually notifies of removed objects only, and not of those that then turn out to be referred
  /// to.
  /// @{

  /// Removes one object. Returns whether it was removed: false if the reactor has refused, or
  /// `object` is empty.
  ///
  /// The object in memory keeps its id and belongs to no library any more. To store it again, save
  /// its `clone()`. To save the object itself does nothing while it is clean, and throws
  /// `ObjectNotFound` when it is dirty.
  ///
  /// An object whose library was closed is removed by its id (`Object::id`).
  ///
  /// Throws:
  /// - `ObjectInUse`: another object refers to it.
  /// - `ObjectNotFound`: the library has no such object, or the object belongs to another library.
  /// - `LibraryReadOnly`: the library can only be read.
  /// - the exceptions of the reactor.
  /// - `odb::already_in_transaction`: within a call of the reactor, a `Snapshot` or a `for_each`.
  /// - `UnknownError` (`DatabaseError` with a result code): any other failure of the database, such
  ///   as a file that others hold for more than 5 seconds.
  /// - `Interrupted`, `std::bad_alloc`.
  template <class T>
  bool remove(const std::shared_ptr<T>& object);

  /// Removes the object with an id. Returns false if the reactor has refused.
  ///
  /// Throws: as `remove(object)`.
  template <class T>
  bool remove(unsigned id);

  /// Removes those of the objects that can be removed, in ascending order of their ids, and enters
  /// each into `result`: true if it was removed, false if it is still there. An entry that is there
  /// already stays as it is.
  ///
  /// Throws: as `remove(object)`, but for `ObjectInUse`. Objects that were removed before stay
  /// removed.
  template <class T>
  void remove(const std::set<unsigned>& ids, std::map<ObjectKey, bool>& result);

  /// Removes those of the objects that can be removed, without a report.
  ///
  /// Throws: as `remove(ids, result)`.
  template <class T>
  void remove(const std::set<unsigned>& ids);

  /// Removes those of the objects of several kinds that can be removed, kind by kind, so that an
  /// object is removed before those to which it refers: compositions, materials, material types,
  /// drawing layers, custom properties, tags. `result` is that of `remove(ids, result)`. Keys of
  /// assets are skipped.
  ///
  /// Throws: as `remove(ids, result)`.
  void remove(const std::set<ObjectKey>& keys, std::map<ObjectKey, bool>& result);

  /// Removes those of the objects of several kinds that can be removed, without a report.
  ///
  /// Throws: as `remove(ids, result)`.
  void remove(const std::set<ObjectKey>& keys);

  /// Removes every object of the kind to which no object refers, and enters each object of the kind
  /// into `result`, as `remove(ids, result)` does.
  ///
  /// Caution: nothing ever refers to a composition. To purge compositions is to remove all of them.
  ///
  /// Throws: as `remove(ids, result)`.
  template <class T>
  void purge(std::map<ObjectKey, bool>& result);

  /// Removes every object of the kind to which no object refers, without a report. Purging
  /// compositions removes all of them.
  ///
  /// Throws: as `remove(ids, result)`.
  template <class T>
  void purge();

  /// Purges several kinds, in the order of `remove(keys, result)`, so that an object to which only
  /// purged objects refer is purged as well. Kinds that cannot be removed are skipped.
  ///
  /// Throws: as `remove(ids, result)`.
  void purge(const std::set<ObjectType>& kinds, std::map<ObjectKey, bool>& result);

  /// Purges several kinds without a report.
  ///
  /// Throws: as `remove(ids, result)`.
  void purge(const std::set<ObjectType>& kinds);

  /// Purges all six kinds. As no object refers to compositions, this leaves nothing of them but:
  ///
  /// - objects whose removal the reactor has refused, and those to which they refer;
  /// - the tags of assets.
  ///
  /// Throws: as `remove(ids, result)`.
  void purge(std::map<ObjectKey, bool>& result);

  /// Purges all six kinds without a report.
  ///
  /// Throws: as `remove(ids, result)`.
  void purge();

  /// @}

  /// @name Copying
  /// Called on the destination. Objects of `source` are saved here by the rules of `save`, in one
  /// transaction:
  ///
  /// - The objects to which they refer are copied with them, but no assets.
  /// - Thicknesses are converted to the unit of this library.
  /// - The reactor of this library decides about names that are taken.
  /// - The source is only read. An empty source copies nothing, and ids that the source does not
  ///   have are skipped.
  ///
  /// The source is read in parts and is not locked in between. An object that is removed from it
  /// meanwhile is not copied; an object that was read is copied with everything to which it refers.
  /// Hold a `Snapshot` of the source to copy one state of it.
  ///
  /// Memory grows by the entries of the mapping and by one entry for each object that is saved.
  /// @{

  /// Copies the objects with the ids `ids`, and enters each object that is saved into `mapping`.
  /// Objects that have an entry already are not copied again. This library as the source copies and
  /// enters nothing.
  ///
  /// Throws: as `save(object)`. Nothing of the copy stays then, unless the exception came from
  /// `typeChanged` or `libraryChanged`. Entries of the mapping stay (`IdMapping`).
  template <class T>
  void copy(const std::shared_ptr<const Library>& source, const std::set<unsigned>& ids,
            IdMapping& mapping);

  /// Copies the objects with the ids `ids`, with a mapping of its own.
  ///
  /// Throws: as `copy(source, ids, mapping)`.
  template <class T>
  void copy(const std::shared_ptr<const Library>& source, const std::set<unsigned>& ids);

  /// Copies objects of several kinds, and enters each object that is saved into `mapping`. This
  /// library as the source copies nothing, and enters every key as one that stands for itself.
  ///
  /// Throws: as `copy(source, ids, mapping)`.
  void copy(const std::shared_ptr<const Library>& source, const std::set<ObjectKey>& keys,
            IdMapping& mapping);

  /// Copies objects of several kinds, with a mapping of its own.
  ///
  /// Throws: as `copy(source, ids, mapping)`.
  void copy(const std::shared_ptr<const Library>& source, const std::set<ObjectKey>& keys);

  /// Copies all objects of the six kinds, and enters each into `mapping`. This library as the
  /// source copies and enters nothing.
  ///
  /// Throws: as `copy(source, ids, mapping)`.
  void copyAll(const std::shared_ptr<const Library>& source, IdMapping& mapping);

  /// Copies all objects of the six kinds, with a mapping of its own.
  ///
  /// Throws: as `copy(source, ids, mapping)`.
  void copyAll(const std::shared_ptr<const Library>& source);

  /// @}

  /// One state of a library for several reads.
  ///
  ///     const veldra::Library::Snapshot snapshot(*office);
  ///     office->get(materials);
  ///     office->get(compositions);  // refers to no material that is not among them
  ///
  /// As long as it lives:
  ///
  /// - All reads through the handle see the state at its beginning, whatever others write.
  /// - The library stays open.
  /// - Others can begin to write, but cannot commit: they wait for its end, and after 5 seconds
  ///   they get `odb::timeout`. Keep it short, and destroy it before waiting for anybody.
  /// - A write through the handle, a `Transaction` and a second snapshot throw
  ///   `odb::already_in_transaction`. The snapshot goes on.
  ///
  /// A snapshot that begins within a `Transaction`, or within a call of the reactor, is a part of
  /// that and ends with it: it sees the changes so far, and writing is allowed as without it.
  ///
  /// A snapshot ends by itself when the disk cannot be read, or memory runs out, within a read.
  /// Reads then throw `odb::transaction_already_finalized` until the object is destroyed.
  class VELDRA_EXPORT Snapshot {
   public:
    /// Begins a snapshot.
    ///
    /// Throws:
    /// - `odb::already_in_transaction`: the library has a snapshot already, or the call comes from
    ///   a `for_each`.
    /// - any other database error (`Library`).
    explicit Snapshot(const Library& library);

    /// Snapshots do not copy.
    Snapshot(const Snapshot&) = delete;

    /// Snapshots are not assigned.
    Snapshot& operator=(const Snapshot&) = delete;

    /// Ends the snapshot.
    ~Snapshot();

   private:
    class Impl;

    std::unique_ptr<Impl> impl_;
  };

  /// Several operations on one library of which either all are done or none.
  ///
  ///     veldra::Library::Transaction transaction(*office);
  ///     office->purge<veldra::Tag>();
  ///     office->copyAll(supplier);
  ///     office->region("Ostschweiz");
  ///     transaction.commit();
  ///
  /// Without the last line, or if an exception comes before it, nothing has happened.
  ///
  /// As long as it lives, every operation on the handle is a part of it:
  ///
  /// - Each operation is still done in full or not at all, but for the removal of several objects,
  ///   of which those before a failure stay removed. A host may catch the exception of one
  ///   and go on with others.
  /// - Each operation sees the changes of the earlier ones.
  /// - `typeChanged` and `libraryChanged` are called once, at its end, also if it is rolled back.
  /// - The library stays open.
  ///
  /// Other programs, and other handles on the same file:
  ///
  /// - They see the file as it was before, and wait when they want to write.
  /// - They wait for reading too while it commits, and from the moment when its changes outgrow
  ///   SQLite's cache of 2 megabytes.
  /// - After 5 seconds of waiting they get `odb::timeout`. Keep it short.
  ///
  /// When it is rolled back, these are as they were before it:
  ///
  /// - the file, and the library's locale and region;
  /// - the id, the library and the dirty mark of each object that was saved or removed in it;
  /// - the references that saving has replaced in such an object. A list in which objects of
  ///   another library were replaced goes back as a whole;
  /// - all values of an object that has taken those of a stored one.
  ///
  /// These are not taken back:
  ///
  /// - values that the host has set in an object after it was saved. The object is dirty then;
  /// - objects that were read in it;
  /// - entries of mappings, which may name ids that do not exist any more.
  ///
  /// It keeps the objects that were saved or removed in memory until its end.
  class VELDRA_EXPORT Transaction {
   public:
    /// Begins a transaction.
    ///
    /// Throws:
    /// - `LibraryReadOnly`: the library can only be read.
    /// - `odb::already_in_transaction`: the library has a transaction or a `Snapshot` already, or
    ///   the call comes from a reactor within an operation, or from a `for_each`.
    /// - any other database error (`Library`).
    explicit Transaction(Library& library);

    /// Transactions do not copy.
    Transaction(const Transaction&) = delete;

    /// Transactions are not assigned.
    Transaction& operator=(const Transaction&) = delete;

    /// Ends the transaction, and rolls it back unless it was committed. Must not be called from a
    /// reactor within an operation.
    ~Transaction();

    /// Ends the transaction and keeps its changes.
    ///
    /// A transaction may have ended by itself: when the disk was full or could not be read, or
    /// memory ran out, within an operation. Then `commit`, reading and saving throw
    /// `odb::transaction_already_finalized`, and removal, purging and the setters of `Library`
    /// throw `UnknownError`, until the object is destroyed.
    ///
    /// Throws; all changes are rolled back then:
    /// - `odb::transaction_already_finalized`: the transaction has ended before, by `commit` or by
    ///   itself.
    /// - `odb::timeout`: others were reading for more than 5 seconds.
    /// - any other database error (`Library`).
    ///
    /// Throws, and the transaction goes on:
    /// - `odb::already_in_transaction`: the call comes from a reactor within an operation, or from
    ///   a `for_each`.
    ///
    /// Throws, and all changes are kept:
    /// - the exceptions of `typeChanged` and `libraryChanged`.
    void commit();

   private:
    class Impl;

    std::unique_ptr<Impl> impl_;
  };

 private:
  friend class LibraryAccess;
  class Impl;

  explicit Library(std::unique_ptr<Impl> impl);

  std::unique_ptr<Impl> impl_;
};

}  // namespace veldra

#endif
