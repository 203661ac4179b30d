# SPDX-License-Identifier: GPL-2.0-or-later
"""What files hold, and what is to become of it in a library."""

from __future__ import annotations

from html import escape
from typing import TYPE_CHECKING, Any, Callable, NamedTuple, Optional

from veldra import _veldra
from veldra._enums import Key, Status

if TYPE_CHECKING:
    from veldra._library import Library


class Copied(NamedTuple):
    """What stands in a destination for an object of a source, and how it came there."""

    source: Key
    result: Key
    status: Status


def copied(entries: list[Any]) -> list[Copied]:
    """What an operation of the extension has made."""
    return [Copied(before, after, Status(status)) for before, after, status in entries]


class Change(NamedTuple):
    """A field of which the stored object has another value than that of the source."""

    field: str
    before: Any
    after: Any


class Entry(NamedTuple):
    """What is to become of one object of a source.

    `decision` is "added", "equal", "tagged", "kept", "changed", "renamed" or "undecided"; `result`
    the name under which the library has it then; `clashes` the names of those with which it
    clashes.
    """

    source: Key
    name: str
    decision: str
    result: str
    changes: list[Change]
    clashes: list[str]


class Source:
    """What was read from files: a library in memory, and for each file a report.

    A report says under "read" and "skipped" how many objects of each class, under "problems" what
    was wrong, and under "not_kept" which fields a library has no place for.
    """

    def __init__(
        self,
        library: Library,
        reports: list[dict[str, Any]],
        states: Optional[dict[tuple[int, int], int]] = None,
    ) -> None:
        self.library = library
        self.reports = reports
        # Which stored object each of a table is another state of.
        self.states = states or {}

    def __repr__(self) -> str:
        files = ", ".join(repr(report["file"]) for report in self.reports)
        return (
            f"<veldra.Source {files}: {len(self.library.materials)} materials, "
            f"{len(self.library.compositions)} compositions>"
        )


class Plan:
    """What is to become of each object of a source in a library (`Library.plan`).

    >>> import veldra
    >>> supplier = veldra.create(":memory:")
    >>> _ = supplier.save(veldra.Material("Brick", type="Masonry"))
    >>> office = veldra.create(":memory:")
    >>> plan = office.plan(supplier)
    >>> [entry.decision for entry in plan if entry.name == "Brick"]
    ['added']
    >>> _ = plan.apply()
    >>> "Brick" in office.materials
    True
    """

    def __init__(
        self,
        library: Library,
        source: Library,
        on_clash: str,
        decisions: dict[Key, str],
        states: dict[tuple[int, int], int],
        progress: Optional[Callable[[], None]],
    ) -> None:
        self._library = library
        self._source = source
        self._on_clash = on_clash
        self._decisions = decisions
        self._states = states
        plain = {(key.kind.value, key.id): decision for key, decision in decisions.items()}
        self._plan = _veldra._plan(library, source, on_clash, plain, states, progress)
        self._entries = [
            Entry(key, name, decision, result, [Change(*change) for change in changes], clashes)
            for key, name, decision, result, changes, clashes in self._plan._entries()
        ]

    @property
    def entries(self) -> list[Entry]:
        """What is to become of each object."""
        return list(self._entries)

    def __iter__(self) -> Any:
        return iter(self._entries)

    def __len__(self) -> int:
        return len(self._entries)

    @property
    def decided(self) -> bool:
        """Whether nothing is undecided."""
        return self._plan.decided

    @property
    def changes_anything(self) -> bool:
        """Whether applying it would write anything."""
        return self._plan.changes_anything

    def counts(self) -> dict[str, int]:
        """How many objects there are of each decision."""
        result: dict[str, int] = {}
        for entry in self._entries:
            result[entry.decision] = result.get(entry.decision, 0) + 1
        return result

    def decide(self, decisions: dict[Key, str]) -> Plan:
        """A plan in which some objects of the source, by their keys, have another `on_clash`."""
        for key in decisions:
            if not isinstance(key, Key):
                raise TypeError(f"a veldra.Key is needed, not {key!r}")
        both = {**self._decisions, **decisions}
        return Plan(self._library, self._source, self._on_clash, both, self._states, None)

    def apply(self, *, progress: Optional[Callable[[], None]] = None) -> list[Copied]:
        """Does what was planned: all of it, or nothing. Returns what stands for each object.

        Within a `Library.transaction` it is a part of that.

        Raises `PlanError` if something is undecided, or has changed since the plan was made.
        """
        return copied(self._plan._apply(progress))

    def _rows(self) -> list[tuple[str, str, str, str]]:
        return [
            (
                entry.decision,
                entry.source.kind.words,
                entry.name,
                _remark(entry),
            )
            for entry in self._entries
        ]

    def __str__(self) -> str:
        counts = ", ".join(f"{count} {decision}" for decision, count in self.counts().items())
        rows = self._rows()
        widths = [max((len(row[i]) for row in rows), default=0) for i in range(3)]
        lines = [
            "  ".join([*(part.ljust(width) for part, width in zip(row, widths)), row[3]]).rstrip()
            for row in rows
        ]
        return "\n".join([*lines, counts or "nothing"])

    def _repr_html_(self) -> str:
        rows = "".join(
            "<tr>" + "".join(f"<td>{escape(part)}</td>" for part in row) + "</tr>"
            for row in self._rows()
        )
        return (
            "<table><tr><th>decision</th><th>kind</th><th>name</th><th></th></tr>"
            f"{rows}</table>"
        )

    def __repr__(self) -> str:
        return f"<veldra.Plan of {len(self)} objects for {self._library!r}>"


def _remark(entry: Entry) -> str:
    if entry.clashes:
        return "clashes with " + ", ".join(repr(name) for name in entry.clashes)
    if entry.result and entry.result != entry.name:
        return f"as {entry.result!r}"
    changes = [f"{each.field}: {each.before!r} -> {each.after!r}" for each in entry.changes]
    return "; ".join(changes)
