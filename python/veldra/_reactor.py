# SPDX-License-Identifier: GPL-2.0-or-later
"""How a library asks and tells its host."""

from __future__ import annotations

from typing import TYPE_CHECKING, NamedTuple, Union

from veldra._enums import Key, Kind

if TYPE_CHECKING:
    from veldra._library import Library


class Rename(NamedTuple):
    """The answer to a clash: the object is saved under this name."""

    name: str


Answer = Union[str, Rename]


class Reactor:
    """Is told of changes to a library, and decides about clashes of names and about removals.

    Derive from it, override what is of interest, and set `Library.reactor`. What a function raises
    comes out of the call on the library as it is; of those before `type_changed` it takes the
    changes of the call back.

    >>> class Counting(Reactor):
    ...     saved = 0
    ...     def object_saved(self, library, key):
    ...         self.saved += 1
    >>> import veldra
    >>> with veldra.create(":memory:") as library:
    ...     library.reactor = Counting()
    ...     _ = library.save(veldra.Tag("exterior"))
    ...     library.reactor.saved
    1
    """

    def resolve_name_conflict(self, library: Library, kind: Kind, name: str) -> Answer:
        """Decides about a material or composition that is saved under a name that is taken.

        Returns "fail", "use" (it becomes the stored one), "overwrite", "rename" (to a free name),
        or `Rename(name)`. "fail" raises `NotUnique`, as does a `Rename` to the same name.
        """
        return "fail"

    def object_saved(self, library: Library, key: Key) -> None:
        """An object was inserted or updated. May read from the library, and not write."""

    def may_remove(self, library: Library, key: Key) -> bool:
        """Whether an object may be removed."""
        return True

    def object_removed(self, library: Library, key: Key) -> None:
        """An object was deleted. May read from the library, and not write."""

    def type_changed(self, library: Library, kind: Kind) -> None:
        """An operation that has ended has changed objects of the kind. Everything is allowed."""

    def library_changed(self, library: Library) -> None:
        """An operation that has ended has changed something. Everything is allowed."""
