# SPDX-License-Identifier: GPL-2.0-or-later
"""Libraries, their collections and transactions."""

from __future__ import annotations

import os
from collections.abc import Iterable, Iterator, Mapping, Sequence
from contextlib import contextmanager
from importlib import import_module
from types import TracebackType
from typing import Any, Callable, Generic, NamedTuple, Optional, TypeVar, Union, overload

from veldra import _veldra
from veldra._enums import FileKind, Key, Kind, KindLike, Unit, kind_of
from veldra._errors import CannotOpen, Closed, NotFound, SameFile, SourceError, SourceMissing
from veldra._files import Path as Path, ending_of, write_whole
from veldra._objects import CLASSES
from veldra._plan import Copied as Copied, Plan, Source, copied
from veldra._reactor import Answer, Reactor
from veldra._tables import Table, columns_of_frame

T = TypeVar("T", bound="_veldra._Object")
B = TypeVar("B", bound="_Block")
Progress = Optional[Callable[[], None]]
OnConflict = Union[str, Callable[["Library", Kind, str], Answer], None]
Thing = Union["_veldra._Object", Key]

_BATCH = 512


class Finding(NamedTuple):
    """A defect in the file of a library. `object` is None for the file as a whole."""

    object: Optional[Key]
    name: str
    sentence: str


class Recognition(NamedTuple):
    """What a file is, and the version of its schema (0 if it says none)."""

    kind: FileKind
    version: int


class Format(NamedTuple):
    """A format of files that `read` or `Library.write` know, and the usual endings of its files."""

    name: str
    endings: list[str]
    readable: bool
    writable: bool


class Written(NamedTuple):
    """What became of the objects of a library that was written.

    `written` counts them by the classes of the format. Of `not_written` the format has no place
    for, and `missing` it demands and the objects lack: the class, the field and how often.
    `problems` are sentences about objects that are written otherwise than they are, or not at all.
    """

    written: dict[str, int]
    not_written: list[tuple[str, str, int]]
    missing: list[tuple[str, str, int]]
    problems: list[str]

    @property
    def whole(self) -> bool:
        """Whether the file says all that the library does."""
        return not (self.not_written or self.missing or self.problems)


class Selection(Generic[T], Sequence[T]):
    """Objects that were found, by their ids: they are read when they are asked for, in batches.

    Those that have been removed meanwhile are left out when going through it, and raise `NotFound`
    by their place.
    """

    def __init__(self, collection: Collection[T], ids: list[int]) -> None:
        self._collection = collection
        self._ids = ids

    def ids(self) -> list[int]:
        """The ids, ascending."""
        return list(self._ids)

    def __len__(self) -> int:
        return len(self._ids)

    def __iter__(self) -> Iterator[T]:
        return self._collection._in_batches(self._ids)

    @overload
    def __getitem__(self, index: int) -> T: ...
    @overload
    def __getitem__(self, index: slice) -> Selection[T]: ...
    def __getitem__(self, index: Union[int, slice]) -> Union[T, Selection[T]]:
        if isinstance(index, slice):
            return Selection(self._collection, self._ids[index])
        return self._collection.by_id(self._ids[index])

    def __repr__(self) -> str:
        return f"<{len(self)} of {self._collection!r}>"


class Collection(Generic[T]):
    """The objects of one kind in a library.

    >>> import veldra
    >>> with veldra.create(":memory:") as library:
    ...     _ = library.save(veldra.Material("Brick", conductivity=0.5))
    ...     _ = library.save(veldra.Material("Wool", conductivity=0.035))
    ...     library.materials["Brick"].conductivity
    ...     [material.name for material in library.materials.where("conductivity < 0.05")]
    ...     len(library.materials), "Stone" in library.materials
    0.5
    ['Wool']
    (2, False)
    """

    def __init__(self, library: Library, kind: Kind) -> None:
        self._library = library
        self._kind = kind

    @property
    def library(self) -> Library:
        """The library that has them."""
        return self._library

    @property
    def kind(self) -> Kind:
        """The kind of the objects."""
        return self._kind

    def has_field(self, name: str) -> bool:
        """Whether there is a field of that name; those of custom properties count."""
        return self._library._has_field(self._kind.value, name)

    def __len__(self) -> int:
        return self._library._count(self._kind.value)

    def __bool__(self) -> bool:
        return len(self) > 0

    def __iter__(self) -> Iterator[T]:
        return self._in_batches(self._library._ids(self._kind.value))

    def _in_batches(self, ids: list[int]) -> Iterator[T]:
        for start in range(0, len(ids), _BATCH):
            yield from self._library._batch(self._kind.value, ids[start : start + _BATCH])

    def __getitem__(self, name: str) -> T:
        """The object of a name. Raises `NotFound`, which is a `KeyError`, with the nearest."""
        found = self.get(name)
        if found is not None:
            return found
        near = self._library._nearest(self._kind.value, name)
        hint = f"; did you mean {' or '.join(repr(each) for each in near)}?" if near else ""
        raise self._missing(name, f"{self._kind.words} {name!r}{hint}")

    def _has_id(self, id: int) -> bool:
        return self._library._by_id(self._kind.value, id) is not None

    @overload
    def get(self, name: str, default: None = None) -> Optional[T]: ...
    @overload
    def get(self, name: str, default: T) -> T: ...
    def get(self, name: str, default: Optional[T] = None) -> Optional[T]:
        """The object of a name, or `default`. Of custom properties of one name it is any."""
        if not isinstance(name, str):
            raise TypeError(f"a name is a str, not {name!r}; by_id takes an id")
        found = self._library._by_name(self._kind.value, name)
        return default if found is None else found

    def __contains__(self, name: object) -> bool:
        """Whether there is an object of this name, or this object is one of these."""
        if isinstance(name, CLASSES[self._kind]):
            own: Any = name
            return own.library is self._library and self._has_id(own.id)
        return isinstance(name, str) and self.get(name) is not None

    def by_id(self, id: int) -> T:
        """The object with an id. Raises `NotFound`."""
        if not isinstance(id, int):
            raise TypeError(f"an id is an int, not {id!r}")
        found = self._library._by_id(self._kind.value, id) if 0 <= id < 2**32 else None
        if found is not None:
            return found  # type: ignore[no-any-return]
        key = Key(self._kind, id)
        raise self._missing(key, str(key))

    def _missing(self, object: Union[str, Key], words: str) -> NotFound:
        error = NotFound(f"'{self._library.file}' has no {words}")
        error.file = self._library.file
        error.object = object
        return error

    def ids(self) -> list[int]:
        """The ids of all objects, ascending, also of those that cannot be read."""
        return self._library._ids(self._kind.value)

    def names(self) -> dict[int, str]:
        """The names of all objects by their ids, also of those that cannot be read.

        Reads no object, and so is the quickest way to a list to choose from.

        >>> import veldra
        >>> with veldra.create(":memory:") as library:
        ...     brick = library.save(veldra.Material("Brick"))
        ...     library.materials.names() == {brick.id: "Brick"}
        True
        """
        return self._library._names(self._kind.value)

    def unreadable(self) -> list[int]:
        """The ids of objects that cannot be read, as something to which they refer is missing."""
        return self._library._unreadable(self._kind.value)

    def unreferenced(self) -> list[int]:
        """The ids of objects to which no object refers."""
        return self._library._unreferenced(self._kind.value)

    def where(self, filter: str) -> Selection[T]:
        """The objects that a filter selects, such as "U < 0.2 and tag = Roof".

        Raises `FilterError` and `UnknownField`.
        """
        return Selection(self, self._library._where(self._kind.value, filter))

    def search(self, pattern: str) -> Selection[T]:
        """The objects whose whole names match a pattern in which "%" stands for any text, and "_"
        for any character. ASCII letters match in either case.
        """
        return Selection(self, self._library._search(self._kind.value, pattern))

    def columns(self, fields: Optional[Sequence[str]] = None) -> dict[str, list[Any]]:
        """The values of fields of all objects, by the names of the fields; all fields for None.

        Raises `UnknownField`.
        """
        return self._library._columns(self._kind.value, _names(fields))

    def to_pandas(self, fields: Optional[Sequence[str]] = None) -> Any:
        """The same as a `pandas.DataFrame`. Raises `ImportError` where there is no pandas.

        Numbers are float64, with NaN for what is missing; whole numbers are int64, and yes and no
        are bool, where every object has one. All else are objects, with None for what is missing.
        """
        arrays = self._library._arrays(self._kind.value, _names(fields))
        return import_module("pandas").DataFrame(arrays)

    def __repr__(self) -> str:
        return f"<{self._kind.words} objects of {self._library!r}>"


class _Block:
    """The `with` that a library gives; `_begin` and `_end` are called at its ends."""

    def __enter__(self: B) -> B:
        self._begin()
        return self

    def __exit__(
        self,
        kind: Optional[type[BaseException]],
        error: Optional[BaseException],
        trace: Optional[TracebackType],
    ) -> None:
        self._end(failed=kind is not None)

    def _begin(self) -> None:
        pass

    def _end(self, *, failed: bool) -> None:
        raise NotImplementedError


class Transaction(_Block):
    """Several operations on a library of which either all are done or none (`Library.transaction`)."""

    def __init__(self, library: Library) -> None:
        self._library = library

    def _begin(self) -> None:
        self._library._begin_transaction()

    def _end(self, *, failed: bool) -> None:
        if failed:
            self._library._roll_back()
        else:
            self._library._commit()


class Snapshot(_Block):
    """One state of a library for several reads (`Library.snapshot`)."""

    def __init__(self, library: Library) -> None:
        self._library = library

    def _begin(self) -> None:
        self._library._begin_snapshot()

    def _end(self, *, failed: bool) -> None:
        self._library._end_snapshot()


class Library(_Block, _veldra._Library):
    """An open library file, which `open`, `create` and `read` give.

    Closing: at the end of `with`, by `close`, or with the last reference. Objects live on, keep
    their values, and then belong to no library; a call on the library raises `Closed`.

    Threads: one at a time uses a library and its objects; another one gets `ThreadError`. The
    thread that has begun a transaction or a snapshot also ends it.

    Every call that touches the file may raise `Busy`, `Full`, `ReadOnly`, `Damaged`,
    `TransactionError` and `Interrupted`. Ctrl-C ends a call, and its changes are taken back.
    """

    def __init__(self, opened: _veldra._Library) -> None:
        super().__init__(opened)

    def _begin(self) -> None:
        if self.closed:
            error = Closed(f"'{self.file}': the library is closed")
            error.file = self.file
            raise error

    def _end(self, *, failed: bool) -> None:
        self.close()

    @property
    def unit(self) -> Unit:
        """The unit of all thicknesses."""
        return Unit(self._unit)

    @property
    def reactor(self) -> Optional[Reactor]:
        """Who is told of changes and decides about clashes; None for nobody."""
        return self._reactor  # type: ignore[no-any-return]

    @reactor.setter
    def reactor(self, reactor: Optional[Reactor]) -> None:
        if reactor is not None and not isinstance(reactor, Reactor):
            raise TypeError(f"a veldra.Reactor is needed, not {reactor!r}")
        self._reactor = reactor

    @property
    def materials(self) -> Collection[_veldra.Material]:
        """The materials."""
        return Collection(self, Kind.MATERIAL)

    @property
    def compositions(self) -> Collection[_veldra.Composition]:
        """The build-ups."""
        return Collection(self, Kind.COMPOSITION)

    @property
    def material_types(self) -> Collection[_veldra.MaterialType]:
        """The categories of materials."""
        return Collection(self, Kind.MATERIAL_TYPE)

    @property
    def layers(self) -> Collection[_veldra.Layer]:
        """The drawing layers."""
        return Collection(self, Kind.LAYER)

    @property
    def properties(self) -> Collection[_veldra.CustomProperty]:
        """The custom properties."""
        return Collection(self, Kind.PROPERTY)

    @property
    def tags(self) -> Collection[_veldra.Tag]:
        """The tags."""
        return Collection(self, Kind.TAG)

    def collection(self, kind: KindLike) -> Collection[Any]:
        """The objects of a kind: `collection("materials")`."""
        return Collection(self, kind_of(kind))

    def to_pandas(self, kind: KindLike, fields: Optional[Sequence[str]] = None) -> Any:
        """The objects of a kind as a `pandas.DataFrame` (`Collection.to_pandas`)."""
        return self.collection(kind).to_pandas(fields)

    def transaction(self) -> Transaction:
        """Joins the operations in a `with` into one: it is committed at the end of the block, and
        rolled back on an exception.

        >>> import veldra
        >>> with veldra.create(":memory:") as library:
        ...     try:
        ...         with library.transaction():
        ...             _ = library.save(veldra.Tag("exterior"))
        ...             raise ValueError("no")
        ...     except ValueError:
        ...         len(library.tags)
        0
        """
        return Transaction(self)

    def snapshot(self) -> Snapshot:
        """Reads in a `with` see one state. Others cannot commit meanwhile: keep it short."""
        return Snapshot(self)

    def save(self, object: T, *, on_conflict: OnConflict = None) -> T:
        """Saves an object after those to which it refers, and returns the one that stands for it.

        That is the object itself, or a saved copy if it belongs to another library. `on_conflict`
        decides about a name that is taken: "fail", "use", "overwrite", "rename", or a function of
        the library, the kind and the name that returns one of these or `Rename(name)`. None leaves
        it to the reactor.

        Raises `NotUnique`, `NotFound`, and `Closed` for an object of a library that was closed.
        """
        return self._save(object, on_conflict)  # type: ignore[no-any-return]

    def remove(self, object: Thing) -> bool:
        """Removes an object, or that of a key. Returns False if the reactor has refused.

        Raises `InUse` and `NotFound`.
        """
        if isinstance(object, Key):
            return self._remove_id(*_plain_key(object))
        return self._remove(object)

    def purge(self, kinds: Optional[Iterable[KindLike]] = None) -> list[Key]:
        """Removes all objects of the kinds to which no object refers, and returns their keys.

        Nothing refers to compositions: to purge them is to remove them all. So None stands for all
        kinds but these.
        """
        if kinds is None:
            kinds = [kind for kind in Kind if kind not in (Kind.ASSET, Kind.COMPOSITION)]
        if isinstance(kinds, str):
            raise TypeError(f"kinds are a list of kinds, not {kinds!r}")
        return self._purge([kind_of(kind).value for kind in kinds])

    def copy(
        self,
        source: Union[Source, Library],
        objects: Optional[Iterable[Thing]] = None,
        *,
        on_conflict: OnConflict = None,
    ) -> list[Copied]:
        """Copies objects of another library, or all for None, with those to which they refer.

        Thicknesses are converted. `on_conflict` is that of `save`. Nothing is copied if it raises.
        """
        keys = None if objects is None else [_plain_key(each) for each in objects]
        return copied(self._copy(_library_of(source), keys, on_conflict))

    def check(self) -> list[Finding]:
        """The defects of the whole file; none of a sound one."""
        return [Finding(*finding) for finding in super().check()]

    def referrers(self, object: Thing) -> list[Key]:
        """The keys of the objects that refer to an object."""
        return self._referrers(*_plain_key(object))

    def read_tables(
        self, *paths: Path, separator: str = "", decimal: str = "", progress: Progress = None
    ) -> Source:
        """Reads tables (CSV) of what the objects of this library are to be, as a source for `plan`.

        A row is the object of its id, code or name, or a new one; an empty cell clears a field.
        The signs between cells and within numbers are found if they are not given. A row that
        cannot be read is left out, and is among the problems of the report.

        Raises `SourceMissing` and `SourceError`.
        """
        with _missing_told(paths):
            return _source(self._read_tables(list(paths), separator, decimal, progress))

    def plan_columns(
        self,
        kind: KindLike,
        columns: Mapping[str, Sequence[Any]],
        *,
        on_clash: str = "fail",
        progress: Progress = None,
    ) -> Plan:
        """A plan for materials or compositions to become what columns of values say.

        It is the way back of `Collection.columns`: each place in the columns is the object of its
        "id", or of its "name" where there is no column of ids, or a new one; None clears a field.
        Only columns in which something differs from the library count.

        >>> import veldra
        >>> with veldra.create(":memory:") as library:
        ...     _ = library.save(veldra.Material("Brick", density=1400))
        ...     columns = library.materials.columns(["id", "density"])
        ...     columns["density"] = [1600 for density in columns["density"]]
        ...     _ = library.plan_columns("materials", columns).apply()
        ...     library.materials["Brick"].density
        1600.0

        Raises `UnknownField`, `FieldError`, `TypeError` for a value of another class, and
        `SourceError` for rows that make no sense.
        """
        table = Table(self.collection(kind), columns)
        source = _source(self._read_table("columns.csv", table.text(), progress))
        for report in source.reports:
            if report["problems"]:
                raise SourceError("; ".join(report["problems"]))
        return self.plan(source, on_clash=on_clash, progress=progress)

    def plan_from_pandas(
        self, kind: KindLike, frame: Any, *, on_clash: str = "fail", progress: Progress = None
    ) -> Plan:
        """The same of a `pandas.DataFrame`, such as one of `to_pandas` that was changed. What is not
        there, such as NaN, clears a field.
        """
        columns = columns_of_frame(frame)
        return self.plan_columns(kind, columns, on_clash=on_clash, progress=progress)

    def write(
        self,
        path: Path,
        format: Optional[str] = None,
        *,
        select: Optional[Iterable[Thing]] = None,
        table: str = "materials",
        separator: str = ",",
        decimal: str = ".",
        progress: Progress = None,
    ) -> Written:
        """Writes the library in a format (`formats`), by default that of the ending of the name.

        `select` are the objects to be written, with those to which they refer; None stands for
        all. Ids and GlobalIds are those of this library then, too; assets are left out and told.
        Of CSV `table` says which one: "materials", "compositions" or "layers" (of compositions),
        and the signs may be others. `progress` is called now and then; what it raises ends the
        work, and no file is written.

        Raises `InvalidValue` for a format that cannot be written, `SameFile`, and `OSError`.
        """
        if os.path.exists(self.file) and os.path.exists(path) and os.path.samefile(self.file, path):
            raise SameFile(f"'{self.file}': the file is that of the library itself")
        keys = None if select is None else [_plain_key(each) for each in select]
        content, written, not_written, missing, problems = self._write(
            format or ending_of(path), keys, table, separator, decimal, progress
        )
        write_whole(path, content)
        return Written(written, not_written, missing, problems)

    def plan(
        self,
        source: Union[Source, Library],
        *,
        on_clash: str = "fail",
        progress: Progress = None,
    ) -> Plan:
        """Finds out what would become of each object of `source` here, and does nothing yet.

        `on_clash` decides about names that are taken by others: "fail" (somebody decides first),
        "use", "overwrite" or "rename". `progress` is called now and then; what it raises ends the
        work.
        """
        states = source.states if isinstance(source, Source) else {}
        return Plan(self, _library_of(source), on_clash, {}, states, progress)

    def __repr__(self) -> str:
        closed = " (closed)" if self.closed else ""
        return f"<veldra.Library {self.file!r}{closed}>"


def _plain_key(object: Thing) -> tuple[int, int]:
    if not isinstance(object, (Key, *CLASSES.values())):
        raise TypeError(f"an object or a veldra.Key is needed, not {object!r}")
    return object.kind.value, object.id


def _library_of(source: Union[Source, Library]) -> Library:
    library = source.library if isinstance(source, Source) else source
    if not isinstance(library, Library):
        raise TypeError(
            f"a veldra.Library or a veldra.Source is needed, not {source!r}: "
            "veldra.open opens a library, and veldra.read reads other files"
        )
    return library


def _names(fields: Optional[Sequence[str]]) -> Optional[list[str]]:
    if isinstance(fields, (str, bytes)):
        raise TypeError(f"fields are a list of names, not {fields!r}")
    return None if fields is None else list(fields)


def open(path: Path, *, read_only: bool = False) -> Library:
    """Opens an existing library. A file of an older version is migrated.

    Raises `CannotOpen`, which is an `OSError`, `NotALibrary` and `UnknownVersion`.
    """
    return Library(_veldra._open(path, read_only))


def create(path: Path, *, unit: Union[Unit, str] = Unit.MILLIMETRES, guid: str = "") -> Library:
    """Makes a library in a file that is missing or empty, or opens the one that is there.

    `unit` is that of all thicknesses, "mm" or "in". Without a GUID it gets a random one. The path
    ":memory:" makes a library that ends with its handle.

    Raises `CannotOpen`, `NotALibrary` and `UnknownVersion`.
    """
    return Library(_veldra._create(path, Unit(unit).value, guid))


def recognise(path: Path) -> Recognition:
    """Says what a file is, and makes no library of it."""
    kind, version = _veldra._recognise(path)
    return Recognition(FileKind(kind), version)


def read(
    *paths: Path,
    unit: Union[Unit, str] = Unit.MILLIMETRES,
    on_clash: str = "fail",
    progress: Progress = None,
) -> Source:
    """Reads files of other formats, such as epJSON, IDF and JSON, as one source for `plan`.

    `on_clash` decides about objects of two files that differ under one name. `progress` is called
    now and then; what it raises ends the work.

    Raises `SourceMissing`, and `SourceError`, also for tables (`Library.read_tables`).
    """
    with _missing_told(paths):
        return _source(_veldra._read(list(paths), Unit(unit).value, on_clash, progress))


def formats() -> list[Format]:
    """The formats that `read` and `Library.write` know."""
    return [Format(*parts) for parts in _veldra._formats()]


@contextmanager
def _missing_told(paths: Iterable[Path]) -> Iterator[None]:
    """Raises `SourceMissing` where a file could not be read as it is not there."""
    try:
        yield
    except SourceError:
        for path in paths:
            if not os.path.lexists(path):
                error = SourceMissing(f"'{os.fsdecode(path)}': there is no such file")
                error.file = os.fsdecode(path)
                raise error from None
        raise


def _source(read: tuple[_veldra._Library, list[dict[str, Any]], dict[tuple[int, int], int]]) -> Source:
    library, reports, states = read
    return Source(Library(library), reports, states)
