# SPDX-License-Identifier: GPL-2.0-or-later
"""Enumerations, and the keys of objects."""

from __future__ import annotations

from enum import Enum, IntEnum, StrEnum
from typing import NamedTuple, Union


class Unit(StrEnum):
    """The unit of all thicknesses in a library."""

    MILLIMETRES = "mm"
    INCHES = "in"


class Kind(Enum):
    """The kinds of objects."""

    TAG = 1
    ASSET = 2
    MATERIAL_TYPE = 3
    MATERIAL = 4
    COMPOSITION = 5
    PROPERTY = 6
    LAYER = 7

    @property
    def words(self) -> str:
        """As it is called in sentences, such as "material type"."""
        return self.name.lower().replace("_", " ")


class Function(IntEnum):
    """The role of a material, or of a layer, in a build-up. Other numbers are the host's own."""

    NONE = 0
    STRUCTURE = 1


class CompositionType(StrEnum):
    """The kind of building part."""

    WALL = "wall"
    FLOOR = "floor"
    ROOF = "roof"
    OTHER = "other"


class FileKind(Enum):
    """What a file is (`recognise`)."""

    MISSING = 0
    EMPTY = 1
    LIBRARY = 2
    OLDER_LIBRARY = 3
    NEWER_LIBRARY = 4
    UNKNOWN_VERSION = 5
    WITHOUT_VERSION = 6
    OTHER_DATABASE = 7
    DAMAGED = 8
    OTHER = 9
    NEEDS_RECOVERY = 10
    WITHOUT_IDENTITY = 11


class Status(Enum):
    """How an object of a destination was found or made."""

    INSERTED = 0
    EXISTING = 1
    UPDATED = 2


class Key(NamedTuple):
    """Names an object within one library by its kind and its id."""

    kind: Kind
    id: int

    def __str__(self) -> str:
        return f"{self.kind.words} {self.id}"


KindLike = Union[Kind, str]

_KINDS = {
    "tag": Kind.TAG,
    "tags": Kind.TAG,
    "material_type": Kind.MATERIAL_TYPE,
    "material_types": Kind.MATERIAL_TYPE,
    "material": Kind.MATERIAL,
    "materials": Kind.MATERIAL,
    "composition": Kind.COMPOSITION,
    "compositions": Kind.COMPOSITION,
    "property": Kind.PROPERTY,
    "properties": Kind.PROPERTY,
    "layer": Kind.LAYER,
    "layers": Kind.LAYER,
}


def kind_of(kind: KindLike) -> Kind:
    """The kind that somebody means, in singular or plural: "material", "materials".

    Raises `ValueError` for anything that is none of the six.
    """
    if isinstance(kind, Kind) and kind is not Kind.ASSET:
        return kind
    if isinstance(kind, str) and kind in _KINDS:
        return _KINDS[kind]
    raise ValueError(f"{kind!r} is no kind of objects: {', '.join(list(_KINDS)[1::2])}")


def function_of(number: int) -> int:
    """The role of that number, or the number itself where it is the host's own."""
    return Function(number) if number in (0, 1) else number
