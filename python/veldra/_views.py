# SPDX-License-Identifier: GPL-2.0-or-later
"""Lists and the like of an object, which write through to it and mark it dirty."""

from __future__ import annotations

from _thread import allocate_lock
from collections.abc import Iterable, Iterator, Mapping, MutableMapping, MutableSequence, MutableSet
from math import isfinite
from typing import Any, Callable, Optional, Union, overload
from weakref import WeakValueDictionary

from veldra import _veldra
from veldra._enums import Function, function_of
from veldra._errors import FieldError

Owner = Union["_veldra.Material", "_veldra.Composition"]
_Parts = tuple["_veldra.Material", float, int]


class Tags(MutableSequence[str]):
    """The names of the tags of an object, in an order that is kept.

    >>> import veldra
    >>> brick = veldra.Material("Brick", tags=["exterior"])
    >>> brick.tags.append("facade")
    >>> brick.tags
    ['exterior', 'facade']
    """

    __slots__ = ("_owner", "_read", "_write")

    def __init__(
        self, owner: Any, read: Callable[[Any], list[str]], write: Callable[[Any, list[str]], None]
    ) -> None:
        self._owner = owner
        self._read = read
        self._write = write

    def _all(self) -> list[str]:
        return self._read(self._owner)

    @overload
    def __getitem__(self, index: int) -> str: ...
    @overload
    def __getitem__(self, index: slice) -> list[str]: ...
    def __getitem__(self, index: Union[int, slice]) -> Union[str, list[str]]:
        return self._all()[index]

    def __setitem__(self, index: Any, value: Any) -> None:
        entries = self._all()
        entries[index] = value
        self._write(self._owner, entries)

    def __delitem__(self, index: Union[int, slice]) -> None:
        entries = self._all()
        del entries[index]
        self._write(self._owner, entries)

    def __len__(self) -> int:
        return len(self._all())

    def __iter__(self) -> Iterator[str]:
        return iter(self._all())

    def insert(self, index: int, value: str) -> None:
        """Puts a tag before the one at `index`."""
        entries = self._all()
        entries.insert(index, value)
        self._write(self._owner, entries)

    def sort(
        self, *, key: Optional[Callable[[str], Any]] = None, reverse: bool = False
    ) -> None:
        """Brings the tags into the order of their names, or of what `key` makes of these."""
        self._write(self._owner, sorted(self._all(), key=key or str, reverse=reverse))

    def __eq__(self, other: object) -> bool:
        if not isinstance(other, (Tags, list, tuple)):
            return NotImplemented
        return self._all() == list(other)

    __hash__ = None  # type: ignore[assignment]

    def __repr__(self) -> str:
        return repr(self._all())


class Thicknesses(MutableSet[float]):
    """The thicknesses in which a material is offered, ascending, in the unit of the library.

    >>> import veldra
    >>> oak = veldra.Material("Oak", thicknesses=[22, 16])
    >>> oak.thicknesses.add(27)
    >>> oak.thicknesses
    {16.0, 22.0, 27.0}
    """

    __slots__ = ("_owner", "_read", "_write")

    def __init__(
        self,
        owner: Any,
        read: Callable[[Any], list[float]],
        write: Callable[[Any, list[float]], None],
    ) -> None:
        self._owner = owner
        self._read = read
        self._write = write

    @classmethod
    def _from_iterable(cls, iterable: Iterable[Any]) -> set[Any]:
        return set(iterable)

    def _all(self) -> list[float]:
        return self._read(self._owner)

    def __contains__(self, value: object) -> bool:
        return value in self._all()

    def __iter__(self) -> Iterator[float]:
        return iter(self._all())

    def __len__(self) -> int:
        return len(self._all())

    def add(self, value: float) -> None:
        """Adds a thickness."""
        self._write(self._owner, [*self._all(), value])

    def discard(self, value: float) -> None:
        """Removes a thickness, if it is there."""
        self._write(self._owner, [entry for entry in self._all() if entry != value])

    def __repr__(self) -> str:
        return "{" + ", ".join(repr(entry) for entry in self._all()) + "}"


class CustomValues(MutableMapping[str, str]):
    """The values of custom properties that an object has, by the names of the properties.

    A property that is not in the library is made when the object is saved.

    >>> import veldra
    >>> brick = veldra.Material("Brick")
    >>> brick.custom_values["Fire class"] = "A1"
    >>> dict(brick.custom_values)
    {'Fire class': 'A1'}
    """

    __slots__ = ("_owner",)

    def __init__(self, owner: Owner) -> None:
        self._owner = owner

    def __getitem__(self, name: str) -> str:
        return self._owner._custom_values()[name]

    def __setitem__(self, name: str, value: str) -> None:
        if not isinstance(name, str) or not isinstance(value, str):
            raise TypeError(
                f"a custom property and its value are a str each, not {name!r} and {value!r}"
            )
        self._owner._set_custom_value(name, value)

    def __delitem__(self, name: str) -> None:
        if name not in self:
            raise KeyError(name)
        self._owner._clear_custom_value(name)

    def __iter__(self) -> Iterator[str]:
        return iter(self._owner._custom_values())

    def __len__(self) -> int:
        return len(self._owner._custom_values())

    def __or__(self, other: Mapping[str, str]) -> dict[str, str]:
        """A dictionary of these values and of others, which count where both have one."""
        return {**self, **other} if isinstance(other, Mapping) else NotImplemented

    def __ror__(self, other: Mapping[str, str]) -> dict[str, str]:
        return {**other, **self} if isinstance(other, Mapping) else NotImplemented

    def __ior__(self, other: Mapping[str, str]) -> CustomValues:
        """Sets others beside these values."""
        self.update(other)
        return self

    def __repr__(self) -> str:
        return repr(self._owner._custom_values())


# The layers of compositions that are held, by the composition, which they keep alive, and the index.
_known: WeakValueDictionary[tuple[int, int], CompositionLayer] = WeakValueDictionary()
_lock = allocate_lock()


def _held(owner: _veldra.Composition) -> list[CompositionLayer]:
    return [layer for (of, _), layer in list(_known.items()) if of == id(owner)]


def _reindex(owner: _veldra.Composition, index_of: Callable[[int], Optional[int]]) -> None:
    """Lets the layers that are held follow a change of order; None detaches one before it."""
    with _lock:
        layers = _held(owner)
        for layer in layers:
            del _known[id(owner), layer._index]
        for layer in layers:
            index = index_of(layer._index)
            if index is None:
                layer._detach()
            else:
                layer._index = index
                _known[id(owner), index] = layer


class CompositionLayer:
    """One layer of a build-up: a material, a thickness in the unit of the library, and a role.

    One that comes from `Composition.layers` is a part of the composition: what is set there is set
    in it, and it moves with the others. One that is removed or replaced keeps its values and stands
    alone, as does one that `copy()` gives.

    >>> import veldra
    >>> wall = veldra.Composition("Wall")
    >>> wall.layers.append(CompositionLayer(veldra.Material("Brick"), 175))
    >>> wall.layers[0].thickness = 240
    >>> wall.layers
    [<veldra.CompositionLayer 'Brick' 240.0>]
    """

    __slots__ = ("_owner", "_index", "_parts", "__weakref__")

    def __init__(
        self, material: _veldra.Material, thickness: float, function: int = Function.NONE
    ) -> None:
        if not isinstance(material, _veldra.Material):
            raise TypeError(f"a layer needs a veldra.Material, not {material!r}")
        self._owner: Optional[_veldra.Composition] = None
        self._index = 0
        self._parts = (material, _thickness_of(thickness), _number_of_function(function))

    @classmethod
    def _at(cls, owner: _veldra.Composition, index: int) -> CompositionLayer:
        with _lock:
            known = _known.get((id(owner), index))
            if known is not None:
                return known
            self = cls.__new__(cls)
            self._owner = owner
            self._index = index
            _known[id(owner), index] = self
            return self

    def _detach(self) -> None:
        self._parts = self._get()
        self._owner = None

    def _get(self) -> _Parts:
        return self._parts if self._owner is None else self._owner._layer(self._index)

    def _set(self, parts: _Parts) -> None:
        if self._owner is None:
            self._parts = parts
        else:
            self._owner._set_layer(self._index, parts)

    @property
    def material(self) -> _veldra.Material:
        """The material."""
        return self._get()[0]

    @material.setter
    def material(self, material: _veldra.Material) -> None:
        if not isinstance(material, _veldra.Material):
            raise TypeError(f"a layer needs a veldra.Material, not {material!r}")
        self._set((material, *self._get()[1:]))

    @property
    def thickness(self) -> float:
        """The thickness in the unit of the library."""
        return self._get()[1]

    @thickness.setter
    def thickness(self, thickness: float) -> None:
        material, _, function = self._get()
        self._set((material, _thickness_of(thickness), function))

    @property
    def function(self) -> int:
        """The role: a `Function`, or another number of the host's own."""
        return function_of(self._get()[2])

    @function.setter
    def function(self, function: int) -> None:
        self._set((*self._get()[:2], _number_of_function(function)))

    def copy(self) -> CompositionLayer:
        """A layer with the same values that belongs to no composition."""
        result = CompositionLayer.__new__(CompositionLayer)
        result._owner = None
        result._index = 0
        result._parts = self._get()
        return result

    def __eq__(self, other: object) -> bool:
        if not isinstance(other, CompositionLayer):
            return NotImplemented
        return self._get() == other._get()

    __hash__ = None  # type: ignore[assignment]

    def __repr__(self) -> str:
        material, thickness, _ = self._get()
        name = material.name if material is not None else None
        return f"<veldra.CompositionLayer {name!r} {thickness}>"


class Layers(MutableSequence[CompositionLayer]):
    """The layers of a composition, from the outside to the inside.

    Inserting and removing moves the indices of the core with the layers. A slice gives a list of
    its layers. Layers can be given as `CompositionLayer`, or as a tuple of its arguments.
    """

    __slots__ = ("_owner",)

    def __init__(self, owner: _veldra.Composition) -> None:
        self._owner = owner

    def _position(self, index: int) -> int:
        count = len(self)
        position = index + count if index < 0 else index
        if not 0 <= position < count:
            raise IndexError(f"there is no layer {index}: the composition has {count}")
        return position

    @overload
    def __getitem__(self, index: int) -> CompositionLayer: ...
    @overload
    def __getitem__(self, index: slice) -> list[CompositionLayer]: ...
    def __getitem__(
        self, index: Union[int, slice]
    ) -> Union[CompositionLayer, list[CompositionLayer]]:
        if isinstance(index, slice):
            return [self[each] for each in range(*index.indices(len(self)))]
        return CompositionLayer._at(self._owner, self._position(index))

    def __setitem__(self, index: Any, value: Any) -> None:
        if isinstance(index, slice):
            self._replace(index, [_as_layer(each) for each in value])
        else:
            self._put(self._position(index), _as_layer(value))

    def _put(self, position: int, layer: _Parts) -> None:
        before = self._owner._layer(position)
        self._owner._set_layer(position, layer)
        with _lock:
            held = _known.pop((id(self._owner), position), None)
            if held is not None:
                held._owner = None
                held._parts = before

    def _take_out(self, position: int) -> None:
        _reindex(self._owner, lambda at: None if at == position else at)
        self._owner._remove_layer(position)
        _reindex(self._owner, lambda at: at - (at > position))

    def _put_in(self, position: int, layer: _Parts) -> None:
        self._owner._insert_layer(position, layer)
        _reindex(self._owner, lambda at: at + (at >= position))

    def _replace(self, index: slice, layers: list[_Parts]) -> None:
        start, _, step = index.indices(len(self))
        positions = range(*index.indices(len(self)))
        if step != 1 and len(positions) != len(layers):
            raise ValueError(f"{len(layers)} layers cannot take the place of {len(positions)}")
        for position, layer in zip(positions, layers):
            self._put(position, layer)
        for position in reversed(positions[len(layers) :]):
            self._take_out(position)
        for offset in range(len(positions), len(layers)):
            self._put_in(start + offset, layers[offset])

    def __delitem__(self, index: Union[int, slice]) -> None:
        if isinstance(index, slice):
            for position in sorted(range(*index.indices(len(self))), reverse=True):
                self._take_out(position)
        else:
            self._take_out(self._position(index))

    def __len__(self) -> int:
        return self._owner._layer_count()

    def insert(self, index: int, value: Any) -> None:
        """Puts a layer before the one at `index`."""
        count = len(self)
        position = max(0, index + count) if index < 0 else min(index, count)
        self._put_in(position, _as_layer(value))

    def move(self, source: int, to: int) -> None:
        """Moves the layer at `source` so that it stands at `to`, and the indices with it."""
        source, to = self._position(source), self._position(to)
        self._owner._move_layer(source, to)
        order = list(range(len(self)))
        order.insert(to, order.pop(source))
        _reindex(self._owner, order.index)

    def __eq__(self, other: object) -> bool:
        if not isinstance(other, (Layers, list, tuple)):
            return NotImplemented
        return list(self) == list(other)

    __hash__ = None  # type: ignore[assignment]

    def __repr__(self) -> str:
        return repr(list(self))


def _as_layer(value: Any) -> _Parts:
    """The parts of a layer that is given as such, or as a tuple."""
    if isinstance(value, CompositionLayer):
        return value._get()
    if not isinstance(value, (tuple, list)) or len(value) not in (2, 3):
        raise TypeError(
            "a layer is a veldra.CompositionLayer, or a tuple of material, thickness and, if it has "
            f"one, function, not {value!r}"
        )
    return CompositionLayer(*value)._get()


def _thickness_of(value: Any) -> float:
    """A thickness that somebody gives. The library has whatever stands in its file."""
    if isinstance(value, (str, bytes, bool)) or not hasattr(value, "__float__"):
        raise TypeError(f"thickness takes a float, not {value!r}")
    number = float(value)
    if not (number >= 0 and isfinite(number)):
        raise _refusal("thickness", value, "it must be a number, 0 or greater")
    return number


def _number_of_function(value: Any) -> int:
    if isinstance(value, bool) or not hasattr(value, "__index__"):
        raise TypeError(f"function takes an int, such as veldra.Function.STRUCTURE, not {value!r}")
    number: int = value.__index__()
    if not -(2**31) <= number < 2**31:
        raise _refusal("function", value, "the number is out of range")
    return number


def _refusal(field: str, value: Any, allowed: str) -> FieldError:
    error = FieldError(f"'{value}' is no value for '{field}': {allowed}")
    error.field = field
    return error
