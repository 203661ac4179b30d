# SPDX-License-Identifier: GPL-2.0-or-later
"""The exceptions of the package. All of them are derived from `Error`."""

from __future__ import annotations

from typing import Any, Optional


class Error(Exception):
    """The base of all exceptions of the package.

    `file` is the name of the file that it is about, `object` the object or the key of one, and
    `code` the result code of SQLite behind it. They are None, None and 0 where that is not known.
    """

    file: Optional[str] = None
    object: Any = None
    code: int = 0


class Busy(Error):
    """Another program, or another handle, has held the file for more than 5 seconds."""


class ReadOnly(Error):
    """The library was opened for reading, or its file can only be read."""


class Full(Error):
    """The disk is full, or no id is left."""


class InUse(Error):
    """Another object refers to the object (`Library.referrers`)."""


class NotUnique(Error):
    """Another object has the name or the code."""


class NotFound(Error, KeyError):
    """There is no such object."""

    __str__ = Exception.__str__


class Damaged(Error):
    """The file is damaged."""


class NotALibrary(Error):
    """The file is no library."""


class UnknownVersion(Error):
    """The file was made by a release that this one does not know."""


class MalformedText(Error, ValueError):
    """A text has a surrogate without its partner, or a zero character; or it is not UTF-8."""


class Interrupted(Error):
    """`Library.interrupt` has ended the operation, whose changes were taken back."""


class TransactionError(Error):
    """A transaction or a snapshot is open that must not be, or has ended by itself."""


class Closed(Error, ValueError):
    """The library is closed, or that of an object is."""


class ThreadError(Error, RuntimeError):
    """Another thread uses the library or the object at this moment."""


class CannotOpen(Error, OSError):
    """The file cannot be opened or made."""

    __str__ = Exception.__str__


class FileMissing(CannotOpen, FileNotFoundError):
    """There is no such file, or no such folder."""

    __str__ = Exception.__str__


class FileExists(Error, FileExistsError):
    """There is a file of the name under which a new one was to be written."""

    __str__ = Exception.__str__


class OtherLibrary(Error):
    """The file is a library with another GUID."""


class SameFile(Error):
    """The file is that of the library itself."""


class InvalidValue(Error, ValueError):
    """Something was asked for that makes no sense; the base of the ones below."""


class FieldError(InvalidValue):
    """A field cannot have the value. `field` is its name."""

    field: str = ""


class UnknownField(InvalidValue):
    """There is no field of that name."""


class FilterError(InvalidValue):
    """A filter makes no sense. `position` is the place, in characters from 1."""

    position: int = 0


class SourceError(InvalidValue):
    """A file to be read is malformed. `line` is the place, from 1; 0 for the file as a whole."""

    line: int = 0


class SourceMissing(SourceError, FileMissing):
    """A file to be read is not there."""

    __str__ = Exception.__str__


class PlanError(InvalidValue):
    """A plan cannot be applied: something is undecided, or has changed since it was made."""
