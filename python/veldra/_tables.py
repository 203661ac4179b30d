# SPDX-License-Identifier: GPL-2.0-or-later
"""Columns of values, and what they say of the objects of a library."""

from __future__ import annotations

import csv
import io
from collections.abc import Mapping, Sequence
from typing import TYPE_CHECKING, Any

from veldra._enums import Kind

if TYPE_CHECKING:
    from veldra._library import Collection, Library

_OWN = "custom_values."


def columns_of_frame(frame: Any) -> dict[str, list[Any]]:
    """The columns of a `pandas.DataFrame`, with None for what is not there."""
    if not (hasattr(frame, "columns") and hasattr(frame, "iloc")):
        raise TypeError(f"a pandas.DataFrame is needed, not {frame!r}")
    result = {}
    for name in frame.columns:
        column = frame[name].astype(object)
        result[str(name)] = column.where(column.notna(), None).tolist()
    return result


class Table:
    """The text of a table that says what the objects of a collection are to be.

    It has the columns alone in which something differs from the library: a figure that somebody has
    changed stands in several of them, and the others would take it back.
    """

    def __init__(self, collection: Collection[Any], columns: Mapping[str, Sequence[Any]]) -> None:
        self._library: Library = collection.library
        self._kind = collection.kind
        if self._kind not in (Kind.MATERIAL, Kind.COMPOSITION):
            raise ValueError("tables are of materials or of compositions")
        if not isinstance(columns, Mapping):
            raise TypeError(f"columns are a dict of lists by the names of fields, not {columns!r}")
        self._columns = {name: list(values) for name, values in columns.items()}
        if len({len(values) for values in self._columns.values()}) > 1:
            raise ValueError("the columns are not equally long")
        named = [name for name in ("id", "name") if name in self._columns]
        if not named:
            raise ValueError("a column 'id' or 'name' has to say which objects the rows are")
        self._by = named[0]
        new = [each for each in self._columns if _is_new_property(each, collection)]
        self._present = collection.columns([each for each in self._columns if each not in new])

    def _differs(self, name: str) -> bool:
        values = self._columns[name]
        before = self._present.get(name)
        if before is None:
            return any(value is not None for value in values)
        present = dict(zip(self._present[self._by], before))
        objects = self._columns[self._by]
        return any(present.get(each) != value for each, value in zip(objects, values))

    def _column(self, name: str) -> tuple[str, list[str]]:
        values = self._columns[name]
        if name == "layers":
            raise ValueError("layers have a table of their own (Library.read_tables)")
        if name not in self._present:
            return f"property:{name[len(_OWN):]}", [_guarded(value) for value in values]
        whole = [_whole(value) for value in values]
        return self._library._table_column(self._kind.value, name, whole)

    def text(self) -> str:
        """The rows, as CSV with commas and points."""
        taken = [
            self._column(name)
            for name in self._columns
            if name in ("id", "name") or self._differs(name)
        ]
        output = io.StringIO(newline="")
        rows = csv.writer(output, quoting=csv.QUOTE_ALL)
        rows.writerow(["kind", *(heading for heading, _ in taken)])
        kind = self._kind.name.lower()
        for cells in zip(*(cells for _, cells in taken)):
            rows.writerow([kind, *cells])
        return output.getvalue()


def _is_new_property(name: str, collection: Collection[Any]) -> bool:
    return name.startswith(_OWN) and not collection.has_field(name)


def _whole(value: Any) -> Any:
    """Where something is missing in a column, whole numbers have become floating ones."""
    return int(value) if isinstance(value, float) and value.is_integer() else value


def _guarded(value: Any) -> str:
    if value is None:
        return ""
    if not isinstance(value, str):
        raise TypeError(f"the value of a custom property is a str, not {value!r}")
    return f"'{value}" if value.startswith("'") else value
