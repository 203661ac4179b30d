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

/// An open library file.
///
///     auto library = veldra::Library::create("walls.lib", veldra::Unit::Millimetres, "");
///
///     auto brick = veldra::Material::create("Brick");
///     library->save(brick);
///
///     std::vector<std::shared_ptr<veldra::Material>> found;
///     library->search(found, "%brick%");
///
/// The file is open until the last `std::shared_ptr` to the handle goes; objects do not keep it
/// open. Every operation that writes is one transaction: it is done in full, or not at all;
/// `Transaction` makes one of several. What is read is a snapshot in memory: two reads give two
/// objects.
///
/// `T` stands for `Tag`, `MaterialType`, `Layer`, `CustomProperty`, `Material` and `Composition`.
///
/// Errors. What the library itself has to say is thrown as `veldra::Exception`. Errors of the
/// database pass as the exceptions of the persistence runtime (`odb::exception`, derived from
/// `std::exception`) out of opening, reading, saving and copying, and translated into
/// `veldra::Exception` out of removal, purging and the setters of `Library`. A file that another
/// process holds is waited for up to 5 seconds; then reading, saving and copying throw
/// `odb::timeout`. Text that is not UTF-8 in the file, or not UTF-16 in an object or in the name of
/// a file, raises the exceptions of utf8-cpp. An operation that `interrupt` has ended throws
/// `Interrupted`. After a throw the file is as it was, and so is every object in memory, unless the
/// reactor threw when all was done (`Reactor`) or the function says otherwise.
///
/// Thread rule: but for `interrupt`, a library and its objects are used from one thread at a time.
/// Different libraries may be used in different threads, but `create`, `open` and `openExisting`
/// are called from one thread at a time, whatever the file. Copying, and saving an object of
/// another library, use that library as well.
class VELDRA_EXPORT Library : public std::enable_shared_from_this<Library> {
 public:
  /// What a library tells its host, and asks it. Override what is of interest.
  ///
  /// `resolveNameConflict`, `objectSaved`, `mayRemove` and `objectRemoved` are called within the
  /// transaction of the operation. Reading from the same library is allowed there and sees what
  /// the operation has done so far, and so is anything on other libraries; starting a write on the
  /// same library throws `odb::already_in_transaction`. The host may let go there what it passed to
  /// the operation, but must not change an object that is being saved. What one of the four throws
  /// ends the operation and reaches its caller.
  ///
  /// `typeChanged` and `libraryChanged` are called when the operation has ended, also when the
  /// changes were taken back; there everything is allowed. What they throw reaches the caller too,
  /// but what was done stays, and the calls still to come are left out. It is dropped when the
  /// operation had failed, or the transaction was rolled back.
  class VELDRA_EXPORT Reactor {
   public:
    /// The answers to a name that is taken.
    enum Decision : int {
      /// The object takes the id and the values of the stored one; its own values are lost.
      UseExisting = 1,
      /// The object takes the id of the stored one and overwrites it. If it had an id, what is
      /// stored under that stays as it is.
      Overwrite = 2,
      /// The object is saved under the name as it was changed.
      Rename = 3
    };

    virtual ~Reactor() = 0;

    /// Asked when the name of a material or composition that is being saved is taken. Returns one
    /// of the decisions; for `Rename` it has changed `name`. Any other number asks again, without
    /// end. By default throws `ObjectNotUnique`.
    ///
    /// Nobody is asked about a code that is taken: saving throws `ObjectNotUnique` with the text
    /// "Material.code". Where a name and a code are both taken, the database tells of the code
    /// first. A host looks before it saves whether another material has the code
    /// (`Material::clear_code`).
    virtual int resolveNameConflict(Library& library, ObjectType type, String& name);

    /// Told of each object that was inserted or updated; taken back if the operation fails later.
    virtual void objectSaved(Library& library, const ObjectKey& key);

    /// Asked before each removal, also of an object that is in use or not there; anything but 0
    /// refuses it. By default returns 0.
    virtual int mayRemove(Library& library, const ObjectKey& key);

    /// Told of each object that was deleted, before that is committed. Then it may still turn out
    /// that something refers to the object: it stays, as the operation's result or exception says.
    virtual void objectRemoved(Library& library, const ObjectKey& key);

    /// Told once at the end of an operation that changed something, after `typeChanged`. Also when
    /// the removal of an object was refused at its commit, of which `objectRemoved` had told.
    virtual void libraryChanged(Library& library);

    /// Told at the end of an operation, once for each kind that it changed, in ascending order.
    virtual void typeChanged(Library& library, ObjectType type);

    /// Not called.
    virtual void reserved();
  };

  /// Opens the library in the file `filename`; a missing or empty file becomes a new library. A
  /// database that does not say its version counts as empty, and loses tables of the same names.
  ///
  /// A new library has the unit, no locale, no region, and thirteen material types, whose names
  /// the host may translate (`Translations`). Its GUID is `guid` if that is the text of one; a
  /// random one if `guid` is empty; and else one that is derived from the text, always the same
  /// for the same text. An existing library stays what it is, and `unit` and `guid` are ignored; a
  /// file of an older version is brought to the current one.
  ///
  /// A name such as "memdb:///walls" opens "/walls" through the SQLite VFS "memdb". ":memory:" is a
  /// library in memory, which goes with its handle.
  ///
  /// A handle belongs to the process that opened it: after `fork` the child must neither use it nor
  /// let it go, and opens the file anew. Random GUIDs come from a generator of the process, which
  /// takes its seed from the operating system when the first one is made; processes that were
  /// forked after that make the same ones.
  ///
  /// Throws what the persistence runtime throws: with the file in its text, when the file cannot
  /// be opened or is no database (`odb::sqlite::database_exception`) or has an unknown version
  /// (`odb::unknown_schema_version`); when it is held by others (`odb::timeout`); when it does not
  /// say what library it is (`odb::object_not_persistent`). An empty name, or an empty path behind
  /// "://", cannot be opened. The file is then as it was, and a new
  /// one remains empty, unless only the reading at the end failed, as for a file that does not say
  /// what library it is: then it is new, or of the current version, already.
  static std::shared_ptr<Library> create(const String& filename, Unit unit, const String& guid);

  /// Opens the library in the existing file `filename`; an empty file becomes a new library in
  /// millimetres with a random GUID. Throws as `create` does, also when there is no such file.
  ///
  /// With `readOnly` the library refuses all changes. An empty file becomes a new library and one
  /// of an older version is brought to the current one all the same, so these must be writable.
  static std::shared_ptr<Library> open(const String& filename, bool readOnly);

  /// What `recognise` says of a file.
  struct Recognition {
    enum class Kind : int {
      Missing = 0,          ///< There is no such file.
      Empty = 1,            ///< It has no tables: `create` and `open` make a library of it.
      Library = 2,          ///< It is a library of the current version.
      OlderLibrary = 3,     ///< It is a library that opening brings to the current version.
      NewerLibrary = 4,     ///< It is a library of a version to come.
      UnknownVersion = 5,   ///< It is a library, and what it says of its version means nothing.
      WithoutVersion = 6,   ///< It has the tables of a library and does not say its version.
      OtherDatabase = 7,    ///< It is a database of another program.
      Damaged = 8,          ///< It is a database that cannot be read.
      Other = 9,            ///< It is no database: another file, a folder, a device.
      NeedsRecovery = 10,   ///< A journal or log belongs to it that cannot be applied here.
      WithoutIdentity = 11  ///< It has the tables of a library and does not say which one it is.
    };

    Kind kind;

    /// The version of its schema where it says one, else 0.
    unsigned long long version;
  };

  /// Says what a file is, and makes no library of it. `filename` is one as for `create`.
  ///
  /// The file is opened for reading. If it needs what only a connection that writes can do, as
  /// after a crash, SQLite is let do that: it takes back what was not committed, or brings into the
  /// file what is in its log. Where that cannot be done, as in a folder that can only be read, the
  /// answer is `NeedsRecovery`. Nothing else is written.
  ///
  /// Not all of the file is read: one that is damaged further on counts as a library.
  ///
  /// Throws `odb::timeout` when the file is held by others for over 5 seconds, and
  /// `odb::sqlite::database_exception` when the name is empty, or the file is there and cannot be
  /// read.
  static Recognition recognise(const String& filename);

  /// Opens the library in the existing file `filename`, as `open` does, and makes no library of
  /// what is none. That is decided on the connection that opens it, under the same lock.
  ///
  /// Throws `NotALibrary` for a file that is empty, that does not say its version or which library
  /// it is, or that is a database of another program; these stay as they are. Throws as `open` does
  /// for all else.
  static std::shared_ptr<Library> openExisting(const String& filename, bool readOnly);

  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;
  ~Library();

  /// The name that was given to `create` or `open`.
  const String& filename() const noexcept;

  /// The identity of the library: 36 characters, hexadecimal in lower case with hyphens.
  const String& guid() const noexcept;

  /// The unit of all thicknesses in the library. It never changes.
  Unit unit() const noexcept;

  /// The locale of the texts in the library, and the region that it is meant for. As read when the
  /// library was opened; what other handles set since does not show.
  const String& locale() const noexcept;
  const String& region() const noexcept;

  /// Sets the value and writes both to the file at once, as this handle knows them: what another
  /// handle has set since is overwritten. The reactor is not told.
  ///
  /// Throws `LibraryReadOnly`, `ObjectInUse` when a constraint of the file forbids it,
  /// `ObjectNotFound` when the file does not say any more what library it is,
  /// `odb::already_in_transaction` within an operation's call of the reactor, `utf8::invalid_utf16`
  /// for text that is not UTF-16, and `UnknownError` for any other failure of the database. The
  /// file is then as it was, while this handle keeps the new value.
  void locale(const String& locale);
  void region(const String& region);

  /// The version of the file's schema: 150302.
  unsigned long long version() const noexcept;

  /// Whether changes are refused: the library was opened so, or the file can only be read.
  bool readOnly() const;

  /// Installs the reactor that is asked and told from now on; null installs the default one. It
  /// stays the host's and must live until it is replaced or the library closes.
  void setReactor(Reactor* reactor);

  /// Something that is wrong with the file of a library.
  struct VELDRA_EXPORT Finding {
    /// What it is about. Kind 0, `ObjectType{}`: the file as a whole. Id 0: all objects of the
    /// kind, which must not be read, because a table that they lie in, or what they refer to, is
    /// missing, lacks a column, or is something else than a table: reading throws, or never ends.
    ObjectKey object;

    /// The name of the object; empty if it has none, and where no single object is meant.
    String name;

    /// What is wrong. On an object it begins in lower case, to follow the object's name.
    String sentence;
  };

  /// Examines the file and appends what is wrong with it; nothing for a sound one, whichever
  /// version it was made by. Reads all of the file.
  ///
  /// The schema is looked at first. Found are tables, columns, keys, indexes, triggers and views
  /// that are missing or do not belong there. What stands in the place of a table and is none, such
  /// as a view, is told and not read. Then, of what can be read:
  ///
  /// - damage, as SQLite's check of integrity tells of it, and references to what is not there;
  /// - an identity or a version of the file that is missing or there twice;
  /// - ids that no object can have, and sequences of ids that are used up or no whole numbers;
  /// - texts with a zero byte inside, and values in their places that are no texts;
  /// - positions in lists of tags and of layers that are doubled, negative or leave gaps;
  /// - thicknesses that are negative, infinite or NaN, but for the least thickness of a variable
  ///   layer that is not there; conductivities of assets that are so;
  /// - types of compositions other than those of `Composition::Type`.
  ///
  /// Of damage, of references and of each sort of rows the first 100 are told. Whether values fit
  /// each other is not looked at.
  ///
  ///     std::vector<veldra::Library::Finding> findings;
  ///     library->check(findings);
  ///     for (const auto& finding : findings) std::cerr << finding.sentence.utf8() << "\n";
  ///
  /// What cannot be read of the file is told of as damage, or `odb::exception` is thrown; then
  /// `findings` is as it was.
  void check(std::vector<Finding>& findings) const;

  /// The same as sentences that name the objects, such as
  /// `composition 3 "Wall": the thickness of layer 2 is negative: -1`.
  void check(std::vector<String>& findings) const;

  /// Writes a copy of the library into the new file `filename`, which is a name as for `create`. It
  /// is a library of the same contents and GUID, with the same rights of access.
  ///
  /// The copy is one state, also while others write; those who want to commit wait for its end. It
  /// is synced to the disk when the function returns. A program that is killed meanwhile leaves an
  /// empty file, perhaps with its journal. Pages are copied as they are, damaged ones too.
  ///
  /// Throws `FileExists` when there is a file of that name, which stays as it is;
  /// `odb::already_in_transaction` while this handle writes or has a `Transaction`;
  /// `odb::sqlite::database_exception` when the file cannot be made or the disk is full, and
  /// `odb::exception` for all else. No file is left then.
  void backup(const String& filename) const;

  /// Replaces all contents of the library by those of the library in the file `filename`, in one
  /// transaction: a file that `backup` has written, or any other of the same GUID. One of an older
  /// version is brought to the current one on the way. The file `filename` is only read; what a
  /// crash left behind there is taken back (`recognise`).
  ///
  /// With `otherLibrary` the GUID may be another one. The library has the GUID, unit, locale and
  /// region of that file then.
  ///
  /// Objects in memory stay as they are and keep their ids, which may belong to others now: read
  /// them anew. The reactor is told that all kinds have changed.
  ///
  /// Throws `NotALibrary` as `openExisting` does; `OtherLibrary` when the GUID is another one;
  /// `LibraryReadOnly`; `odb::already_in_transaction` while this handle reads or writes
  /// (`Snapshot`, `Transaction`, a call of the reactor); `odb::timeout` when one of the files is
  /// held by others for over 5 seconds; and what `open` throws for all else. The library is then as
  /// it was.
  void restoreFrom(const String& filename, bool otherLibrary = false);

  /// Ends the operation that is running on this handle: it throws `Interrupted` and is taken back.
  /// Does nothing while none is running. May be called from another thread and from a signal
  /// handler, for as long as the handle lives.
  ///
  /// It reaches reading, saving, removing, purging, copying (called on the source or the
  /// destination), `check`, `backup`, `restoreFrom`, the end of a `Transaction`, and waiting for a
  /// file that others hold. Of several objects that are removed without a `Transaction`, those that
  /// went before stay removed. Within a `Transaction` the other operations stay, unless it has
  /// ended by itself
  /// (`Transaction::commit`). An operation that is as good as done may still return.
  void interrupt() noexcept;

  // Reading. Objects that are read belong to this library and are clean. Lists append to `out`,
  // in the order in which the database gives the objects; custom properties come in the order of
  // their names. An object that cannot be read whole, because something that it refers to is not
  // in the file, counts as not there.
  //
  // Throw odb::exception and the exceptions of utf8-cpp, and then leave `out` as it was.

  /// The object with that id or name; empty when there is none, and for id 0 or an empty name. Of
  /// several custom properties of one name, for different kinds, it gives any.
  template <class T>
  std::shared_ptr<T> get(unsigned id) const;
  template <class T>
  std::shared_ptr<T> get(const String& name) const;

  /// The objects with those ids; an id that is not there is skipped, and no ids select nothing.
  template <class T>
  void get(std::vector<std::shared_ptr<T>>& out, const std::set<unsigned>& ids) const;

  /// All objects of the kind, or those that the criteria select.
  template <class T>
  void get(std::vector<std::shared_ptr<T>>& out) const;
  template <class T>
  void get(std::vector<std::shared_ptr<T>>& out,
           const typename CriteriaOf<T>::type& criteria) const;

  /// The objects whose names match `text`, a pattern of SQL's LIKE: "%" stands for any text, "_"
  /// for any character; ASCII letters match in either case. An empty text matches nothing. Criteria
  /// that ask for nothing select every object whose name matches.
  template <class T>
  void search(std::vector<std::shared_ptr<T>>& out, const String& text) const;
  template <class T>
  void search(std::vector<std::shared_ptr<T>>& out, const String& text,
              const typename CriteriaOf<T>::type& criteria) const;

  /// How many objects of the kind there are, or the criteria select.
  template <class T>
  unsigned long long count() const;
  template <class T>
  unsigned long long count(const typename CriteriaOf<T>::type& criteria) const;

  /// The ids of the objects of the kind, or of those that the criteria select. An object that
  /// cannot be read whole is among them.
  template <class T>
  std::set<unsigned> ids() const;
  template <class T>
  std::set<unsigned> ids(const typename CriteriaOf<T>::type& criteria) const;

  /// The ids of the objects of the kind that are there and cannot be read: something that they
  /// refer to is missing, a text is not UTF-8, or an asset is of an unknown kind. Reads all objects
  /// of the kind.
  template <class T>
  std::set<unsigned> unreadable() const;

  /// Calls `visit` with each object of the kind, or with those that the criteria select, in the
  /// order of a list, until it returns false. Objects that cannot be read whole are left out.
  /// Returns whether it went through to the end.
  ///
  ///     library->for_each<veldra::Material>([&](const std::shared_ptr<veldra::Material>& each) {
  ///       sheet.add(each->name());
  ///       return !sheet.full();
  ///     });
  ///
  /// All of it is one state of the library, as in a `Snapshot`; others that want to commit wait.
  /// No more than 64 objects are in memory at once, besides those that `visit` keeps, and 4 bytes
  /// for each object that is selected.
  ///
  /// `visit` may read from the library, `for_each` included. A write to the library, the beginning
  /// of a `Snapshot` or `Transaction`, and the `commit` of one throw
  /// `odb::already_in_transaction` there and change nothing. It may let the library go. What it
  /// throws passes.
  template <class T>
  bool for_each(const std::function<bool(const std::shared_ptr<T>&)>& visit) const;
  template <class T>
  bool for_each(const typename CriteriaOf<T>::type& criteria,
                const std::function<bool(const std::shared_ptr<T>&)>& visit) const;

  /// The objects that refer to an object, assets among them, as the file says; the object itself
  /// need not be there. Reads no object.
  std::set<ObjectKey> referrers(const ObjectKey& key) const;

  /// The ids of the objects of the kind that nothing refers to: those that `purge` would remove,
  /// if the reactor let it. Reads no object.
  template <class T>
  std::set<unsigned> unreferenced() const;

  // Saving.

  /// Saves an object, and first what it refers to, in one transaction. One that belongs to no
  /// library, or to this one, and is not dirty is left alone with all that it refers to; one of
  /// another library is copied, dirty or not.
  ///
  /// An object that belongs to no library, or to this one, is saved itself: it is inserted when
  /// its id is 0 and updated otherwise, belongs to this library and is clean afterwards, and is
  /// returned. An object of another library stays as it is; a copy of it is saved, in the unit of
  /// this library, and returned. So are the tags, material types, drawing layers, custom
  /// properties and materials that it refers to; assets are not saved, and a reference to an asset
  /// of another library is dropped.
  ///
  /// A new tag, material type, drawing layer or custom property whose name is taken becomes the
  /// stored object of that name; one that has an id is refused (`ObjectNotUnique`). For a material
  /// or composition the reactor decides. A material without a type gets the type "Generic". A tag
  /// that has an id is never written again.
  ///
  /// Returns empty for an empty pointer. That, and saving what is left alone, takes no lock: it
  /// waits for nobody, and works also on a library that can only be read, within an operation's
  /// call of the reactor and within a `Snapshot`.
  ///
  /// Throws `ObjectNotUnique` when a name (without text) or a code (with text) is taken and the
  /// reactor did not decide otherwise, `ObjectNotFound` when an object with an id is not in the
  /// file any more, what the reactor throws, and `odb::exception` for all else; among them
  /// `odb::sqlite::database_exception` for a read-only library. After a throw the file and all
  /// objects are as they were, unless it came from `typeChanged` or `libraryChanged`.
  template <class T>
  std::shared_ptr<T> save(const std::shared_ptr<T>& object);

  /// The same with a mapping into this library, which is not checked. An object of another library
  /// that is in the mapping is not saved again: the object that stands for it is read and returned,
  /// empty when it is gone by now; a reference to one that is gone throws `ObjectNotFound`.
  ///
  /// All that is saved is entered, what belongs to no library under a null library and its id, so
  /// that all new objects of a kind share the key with id 0. Entries stay when the call throws, or
  /// its transaction is rolled back, but their ids may be given to other objects then: go on with a
  /// mapping as it was before.
  template <class T>
  std::shared_ptr<T> save(const std::shared_ptr<T>& object, IdMapping& mapping);

  // Removing. An object goes only if nothing in the library refers to it and the reactor does not
  // refuse. Each object is a transaction of its own.
  //
  // Throw `LibraryReadOnly`, `ObjectNotFound` when there is no such object, `UnknownError` for any
  // other failure of the database, and what the reactor throws. What was removed before stays
  // removed.

  /// Removes one object. Returns false when the reactor refused, or `object` is empty. The object
  /// in memory keeps its id and belongs to no library any more. To store it again, save its
  /// `clone()`: saving the object itself writes nothing while it is clean, and throws
  /// `ObjectNotFound` when it is dirty.
  ///
  /// Throws `ObjectInUse` when another object refers to it; `ObjectNotFound` also when the object
  /// belongs to another library. One whose library was closed goes by its id (`Object::id`).
  template <class T>
  bool remove(const std::shared_ptr<T>& object);
  template <class T>
  bool remove(unsigned id);

  /// Removes the objects that can go, in ascending order of their ids. `result` gets an entry for
  /// each, unless it has one: true, the object was removed; false, it is still there.
  template <class T>
  void remove(const std::set<unsigned>& ids, std::map<ObjectKey, bool>& result);
  template <class T>
  void remove(const std::set<unsigned>& ids);

  /// The same for objects of several kinds: compositions, materials, material types, drawing
  /// layers, custom properties, tags, so that what refers goes before what it refers to.
  void remove(const std::set<ObjectKey>& keys, std::map<ObjectKey, bool>& result);
  void remove(const std::set<ObjectKey>& keys);

  /// Removes every object of the kind, of the kinds, or of all six kinds that nothing refers to,
  /// kind by kind in the order above. `result` gets an entry for each object of these kinds.
  ///
  /// Nothing ever refers to a composition, so purging compositions removes all of them, and
  /// `purge()` with them all that only they used: of the six kinds it leaves nothing but what the
  /// reactor keeps, what that refers to, and the tags of assets.
  template <class T>
  void purge(std::map<ObjectKey, bool>& result);
  template <class T>
  void purge();
  void purge(const std::set<ObjectType>& kinds, std::map<ObjectKey, bool>& result);
  void purge(const std::set<ObjectType>& kinds);
  void purge(std::map<ObjectKey, bool>& result);
  void purge();

  // Copying, called on the destination. Saves objects of `source` here by the rules of `save`, in
  // one transaction: what they refer to comes along, thicknesses are converted to the unit of this
  // library, and the reactor of this library decides about names that are taken. The source is
  // only read. An empty source, and ids that it does not have, copy nothing.
  //
  // The source is read in parts, and not locked in between. What goes from it meanwhile is left
  // out; what was read is copied, with all that it refers to. Hold a `Snapshot` of the source to
  // copy one state of it. Memory grows by the mapping and one entry for each saved object, and not
  // otherwise with the size of the source.
  //
  // Throw as `save` does; then nothing of the copy stays, but for the same exception, and the
  // mapping is to be replaced as there.

  template <class T>
  void copy(const std::shared_ptr<const Library>& source, const std::set<unsigned>& ids,
            IdMapping& mapping);
  template <class T>
  void copy(const std::shared_ptr<const Library>& source, const std::set<unsigned>& ids);

  /// The same for objects of several kinds. Copying from this very library writes nothing and
  /// enters every key as standing for itself.
  void copy(const std::shared_ptr<const Library>& source, const std::set<ObjectKey>& keys,
            IdMapping& mapping);
  void copy(const std::shared_ptr<const Library>& source, const std::set<ObjectKey>& keys);

  /// Copies all objects of the six kinds.
  void copyAll(const std::shared_ptr<const Library>& source, IdMapping& mapping);
  void copyAll(const std::shared_ptr<const Library>& source);

  /// One state of a library for several reads.
  ///
  ///     const veldra::Library::Snapshot snapshot(*office);
  ///     office->get(materials);
  ///     office->get(compositions);  // refers to no material that is not among them
  ///
  /// While it lives, all that is read through the handle is the state at its beginning, whatever
  /// others write. It keeps the library open.
  ///
  /// Others can begin to write and cannot commit: they wait for its end, and after 5 seconds they
  /// get `odb::timeout`. So keep it short, and let it go before waiting for anybody.
  ///
  /// A write through the handle, a `Transaction` and a second snapshot throw
  /// `odb::already_in_transaction` meanwhile, and leave the snapshot alone. Begun within a
  /// `Transaction`, or within an operation's call of the reactor, it is a part of that and ends
  /// with it: it sees what was done there, and writing is allowed as it is without the snapshot.
  ///
  /// When the disk could not be read or memory ran out within a read, the snapshot has ended: what
  /// is read throws `odb::transaction_already_finalized` until the object is destroyed.
  class VELDRA_EXPORT Snapshot {
   public:
    /// Begins. Throws `odb::already_in_transaction` when the library has a snapshot already,
    /// `odb::timeout` when the file is held by others for over 5 seconds, and `odb::exception` for
    /// all else.
    explicit Snapshot(const Library& library);
    Snapshot(const Snapshot&) = delete;
    Snapshot& operator=(const Snapshot&) = delete;

    /// Ends.
    ~Snapshot();

   private:
    class Impl;

    std::unique_ptr<Impl> impl_;
  };

  /// Several operations on one library that are done together or not at all.
  ///
  ///     veldra::Library::Transaction transaction(*office);
  ///     office->purge<veldra::Tag>();
  ///     office->copyAll(supplier);
  ///     office->region("Ostschweiz");
  ///     transaction.commit();
  ///
  /// Without the last line, or when something throws before it, nothing has happened.
  ///
  /// While it lasts, every operation on the handle is a part of it. Each is still done in full or
  /// not at all, so that a host may catch what an operation throws and go on with others, and sees
  /// what the former ones have done. `typeChanged` and `libraryChanged` are called once, at its
  /// end, also when it is rolled back. It keeps the library open.
  ///
  /// Others, also other handles on the same file, see the file as it was and wait when they want to
  /// write. While it commits, and from when its changes outgrow SQLite's cache of 2 megabytes, they
  /// wait for reading as well; after 5 seconds they get `odb::timeout`. So keep it short.
  ///
  /// Rolled back, the file is as it was before. So are the library's locale and region, and the
  /// id, the library and the dirty flag of each object that was saved or removed within the
  /// transaction, and what saving replaced in it; such an object is kept in memory until then. What
  /// the host has changed in it since stays changed, and it is dirty then; but a list in which
  /// foreign objects were replaced goes back as a whole, and so do all values of an object for
  /// which the stored one was used. What was read within the transaction stays as it was read, and
  /// entries of mappings stay: they may name ids that were taken back.
  class VELDRA_EXPORT Transaction {
   public:
    /// Begins. Throws `LibraryReadOnly`; `odb::timeout` when the file is held by others for over 5
    /// seconds; `odb::already_in_transaction` when the library has a transaction already, or within
    /// an operation's call of the reactor; and `odb::exception` for all else.
    explicit Transaction(Library& library);
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    /// Rolls back, unless it was committed. Not to be called within an operation's call of the
    /// reactor.
    ~Transaction();

    /// Ends the transaction and keeps what was done in it.
    ///
    /// Throws `odb::transaction_already_finalized` when it has ended before: by `commit`, or by
    /// itself, when the disk was full or could not be read or memory ran out within an operation.
    /// In the latter case reading and saving throw the same, and removal, purging and the setters
    /// `UnknownError`, until the object is destroyed. Throws `odb::timeout` when others keep
    /// reading for over 5 seconds, and `odb::exception` for all else. All is rolled back then.
    ///
    /// Within an operation's call of the reactor it throws `odb::already_in_transaction` and goes
    /// on. What the reactor throws when it is told of the changes passes; they are kept.
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
