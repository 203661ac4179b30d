# SPDX-License-Identifier: GPL-2.0-or-later
"""Libraries, their collections and transactions."""

from __future__ import annotations

import os
from collections.abc import Iterable, Iterator, Sequence
from importlib import import_module
from types import TracebackType
from typing import Any, Callable, Generic, NamedTuple, Optional, TypeVar, Union, overload

from veldra import _veldra
from veldra._enums import FileKind, Key, Kind, KindLike, Status, Unit, kind_of
from veldra._errors import CannotOpen, NotFound
from veldra._plan import Plan, Source
from veldra._reactor import Answer, Reactor

T = TypeVar("T", bound="_veldra._Object")
Path = Union[str, bytes, "os.PathLike[str]", "os.PathLike[bytes]"]
OnConflict = Union[str, Callable[["Library", Kind, str], Answer], None]
Thing = Union["_veldra._Object", Key]

_BATCH = 512


class Finding(NamedTuple):
    """A defect in the file of a library. `object` is None for the file as a whole."""

    object: Optional[Key]
    name: str
    sentence: str


class Copied(NamedTuple):
    """What stands in a destination for an object of a source, and how it came there."""

    source: Key
    result: Key
    status: Status


class Recognition(NamedTuple):
    """What a file is, and the version of its schema (0 if it says none)."""

    kind: FileKind
    version: int


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
    def kind(self) -> Kind:
        """The kind of the objects."""
        return self._kind

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
        kind = self._kind.name.lower().replace("_", " ")
        error = NotFound(f"'{self._library.file}' has no {kind} {name!r}{hint}")
        error.file = self._library.file
        error.object = name
        raise error

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
        return isinstance(name, str) and self.get(name) is not None

    def by_id(self, id: int) -> T:
        """The object with an id. Raises `NotFound`."""
        if not isinstance(id, int):
            raise TypeError(f"an id is an int, not {id!r}")
        found = self._library._by_id(self._kind.value, id) if 0 <= id < 2**32 else None
        if found is not None:
            return found  # type: ignore[no-any-return]
        key = Key(self._kind, id)
        error = NotFound(f"'{self._library.file}' has no {key}")
        error.file = self._library.file
        error.object = key
        raise error

    def ids(self) -> list[int]:
        """The ids of all objects, ascending, also of those that cannot be read."""
        return self._library._ids(self._kind.value)

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
        names = None if fields is None else list(fields)
        return self._library._columns(self._kind.value, names)

    def to_pandas(self, fields: Optional[Sequence[str]] = None) -> Any:
        """The same as a `pandas.DataFrame`. Raises `ImportError` where there is no pandas."""
        return import_module("pandas").DataFrame(self.columns(fields))

    def __repr__(self) -> str:
        return f"<{self._kind.name.lower().replace('_', ' ')} objects of {self._library!r}>"


class Transaction:
    """Several operations on a library of which either all are done or none (`Library.transaction`)."""

    def __init__(self, library: Library) -> None:
        self._library = library

    def __enter__(self) -> Transaction:
        self._library._begin_transaction()
        return self

    def __exit__(
        self,
        kind: Optional[type[BaseException]],
        error: Optional[BaseException],
        trace: Optional[TracebackType],
    ) -> None:
        if kind is None:
            self._library._commit()
        else:
            self._library._roll_back()


class Snapshot:
    """One state of a library for several reads (`Library.snapshot`)."""

    def __init__(self, library: Library) -> None:
        self._library = library

    def __enter__(self) -> Snapshot:
        self._library._begin_snapshot()
        return self

    def __exit__(
        self,
        kind: Optional[type[BaseException]],
        error: Optional[BaseException],
        trace: Optional[TracebackType],
    ) -> None:
        self._library._end_snapshot()


class Library(_veldra._Library):
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

    def __enter__(self) -> Library:
        return self

    def __exit__(
        self,
        kind: Optional[type[BaseException]],
        error: Optional[BaseException],
        trace: Optional[TracebackType],
    ) -> None:
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
            return self._remove_id(object.kind.value, object.id)
        return self._remove(object)

    def purge(self, kinds: Optional[Iterable[KindLike]] = None) -> list[Key]:
        """Removes all objects of the kinds to which no object refers, and returns their keys.

        Nothing refers to compositions: to purge them is to remove them all. So None stands for all
        kinds but these.
        """
        if kinds is None:
            kinds = [kind for kind in Kind if kind not in (Kind.ASSET, Kind.COMPOSITION)]
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
        library = source.library if isinstance(source, Source) else source
        entries = self._copy(library, keys, on_conflict)
        return [Copied(before, after, Status(status)) for before, after, status in entries]

    def check(self) -> list[Finding]:
        """The defects of the whole file; none of a sound one."""
        return [Finding(*finding) for finding in super().check()]

    def referrers(self, object: Thing) -> list[Key]:
        """The keys of the objects that refer to an object."""
        return self._referrers(*_plain_key(object))

    def plan(
        self,
        source: Union[Source, Library],
        *,
        on_clash: str = "fail",
        progress: Optional[Callable[[], None]] = None,
    ) -> Plan:
        """Finds out what would become of each object of `source` here, and does nothing yet.

        `on_clash` decides about names that are taken by others: "fail" (somebody decides first),
        "use", "overwrite" or "rename". `progress` is called now and then; what it raises ends the
        work.
        """
        library = source.library if isinstance(source, Source) else source
        return Plan(self, library, on_clash, {}, progress)

    def __repr__(self) -> str:
        closed = " (closed)" if self.closed else ""
        return f"<veldra.Library {self.file!r}{closed}>"


def _plain_key(object: Thing) -> tuple[int, int]:
    if isinstance(object, Key):
        return object.kind.value, object.id
    return object.kind.value, object.id


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
    *paths: Path, unit: Union[Unit, str] = Unit.MILLIMETRES, on_clash: str = "fail"
) -> Source:
    """Reads files of other formats, such as epJSON, IDF and JSON, as one source for `plan`.

    `on_clash` decides about objects of two files that differ under one name.

    Raises `SourceError`.
    """
    library, reports = _veldra._read(list(paths), Unit(unit).value, on_clash)
    return Source(Library(library), reports)
