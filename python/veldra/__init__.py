# SPDX-License-Identifier: GPL-2.0-or-later
"""Catalogues of building materials and build-ups in single-file libraries.

>>> import veldra
>>> with veldra.create(":memory:", unit="mm") as library:
...     brick = library.save(veldra.Material("Brick", conductivity=0.5))
...     wall = veldra.Composition("Wall", type="wall", layers=[(brick, 240)])
...     _ = library.save(wall)
...     [(each.name, round(each.U, 2)) for each in library.compositions]
[('Wall', 1.54)]
"""

from veldra._enums import (
    CompositionType as CompositionType,
    FileKind as FileKind,
    Function as Function,
    Key as Key,
    Kind as Kind,
    Status as Status,
    Unit as Unit,
)
from veldra._errors import (
    Busy as Busy,
    CannotOpen as CannotOpen,
    Closed as Closed,
    Damaged as Damaged,
    Error as Error,
    FieldError as FieldError,
    FileExists as FileExists,
    FileMissing as FileMissing,
    FilterError as FilterError,
    Full as Full,
    Interrupted as Interrupted,
    InUse as InUse,
    InvalidValue as InvalidValue,
    MalformedText as MalformedText,
    NotALibrary as NotALibrary,
    NotFound as NotFound,
    NotUnique as NotUnique,
    OtherLibrary as OtherLibrary,
    PlanError as PlanError,
    ReadOnly as ReadOnly,
    SameFile as SameFile,
    SourceError as SourceError,
    SourceMissing as SourceMissing,
    ThreadError as ThreadError,
    TransactionError as TransactionError,
    UnknownField as UnknownField,
    UnknownVersion as UnknownVersion,
)
from veldra._drawing import Drawing as Drawing, draw as draw
from veldra._values import Color as Color, Pattern as Pattern, Point as Point
from veldra._veldra import (
    Composition as Composition,
    CustomProperty as CustomProperty,
    Layer as Layer,
    Material as Material,
    MaterialType as MaterialType,
    Tag as Tag,
    __version__ as __version__,
)
from veldra._views import CompositionLayer as CompositionLayer
from veldra._reactor import Reactor as Reactor, Rename as Rename
from veldra._plan import Change as Change, Entry as Entry, Plan as Plan, Source as Source
from veldra._library import (
    Collection as Collection,
    Copied as Copied,
    Finding as Finding,
    Format as Format,
    Library as Library,
    Recognition as Recognition,
    Selection as Selection,
    Written as Written,
    create as create,
    formats as formats,
    open as open,
    read as read,
    recognise as recognise,
)
from veldra import _objects

_objects.complete()
