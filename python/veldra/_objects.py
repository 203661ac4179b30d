# SPDX-License-Identifier: GPL-2.0-or-later
"""Completes the classes of objects: a property for each field, and the views."""

from __future__ import annotations

from typing import Any, Callable, Iterable, NamedTuple, Optional

from veldra import _veldra
from veldra._enums import CompositionType, Kind, function_of
from veldra._drawing import section
from veldra._errors import Closed
from veldra._views import CustomValues, Layers, Tags, Thicknesses

CLASSES = {
    Kind.TAG: _veldra.Tag,
    Kind.LAYER: _veldra.Layer,
    Kind.MATERIAL_TYPE: _veldra.MaterialType,
    Kind.PROPERTY: _veldra.CustomProperty,
    Kind.MATERIAL: _veldra.Material,
    Kind.COMPOSITION: _veldra.Composition,
}


class Field(NamedTuple):
    """What is known of a field without an object. `type` is the class of its values."""

    name: str
    label: str
    unit: str
    type: str
    aliases: tuple[str, ...]
    unique: bool
    writable: bool


def attribute_of(name: str) -> str:
    """The attribute of a field: "thermal_asset.density" is `thermal_asset_density`."""
    return name.replace(".", "_")


def _documentation(field: Field) -> str:
    text = field.label[:1].upper() + field.label[1:]
    if field.unit:
        text += f", in {field.unit}"
    text += "." if field.writable else ". Can only be read."
    return text


_CONVERSIONS: dict[tuple[Kind, str], Callable[[Any], Any]] = {
    (Kind.MATERIAL, "function"): function_of,
    (Kind.COMPOSITION, "type"): CompositionType,
    (Kind.PROPERTY, "object_type"): lambda kind: kind or None,
}


def _converting(read: Callable[[Any], Any], convert: Callable[[Any], Any]) -> Callable[[Any], Any]:
    def get(self: Any) -> Any:
        return convert(read(self))

    return get


def _viewing(view: Any, read: Callable[[Any], Any], write: Any) -> Callable[[Any], Any]:
    def get(self: Any) -> Any:
        return view(self, read, write)

    return get


def _set_layers(self: _veldra.Composition, layers: Iterable[Any]) -> None:
    Layers(self)[:] = list(layers)


def _set_custom_values(self: Any, values: Any) -> None:
    wanted = dict(values)
    view = CustomValues(self)
    view.update(wanted)
    for name in set(view) - set(wanted):
        del view[name]


def _property(kind: Kind, field: Field, read: Callable[[Any], Any], write: Any) -> property:
    get = read
    if field.name == "tags":
        get = _viewing(Tags, read, write)
    elif field.name == "thicknesses":
        get = _viewing(Thicknesses, read, write)
    elif field.name == "layers":
        get, write = Layers, _set_layers
    elif (kind, field.name) in _CONVERSIONS:
        get = _converting(read, _CONVERSIONS[kind, field.name])
    return property(get, write, doc=_documentation(field))


def _complete(kind: Kind, made: Any) -> None:
    made.fields = ()
    taken: set[str] = set()
    for row in _veldra._fields_of(kind.value):
        field = Field(
            row["name"],
            row["label"],
            row["unit"],
            row["type"],
            tuple(row["aliases"]),
            row["unique"],
            row["write"] is not None,
        )
        setattr(made, attribute_of(field.name), _property(kind, field, row["read"], row["write"]))
        taken.add(attribute_of(field.name))
        made.fields += (field,)
    # Figures are known by short names, such as U.
    for field in made.fields:
        for alias in () if field.writable else field.aliases:
            if alias not in taken:
                setattr(made, alias, getattr(made, attribute_of(field.name)))
                taken.add(alias)
    made.__module__ = "veldra"
    made.__doc__ = _DOCUMENTATION[kind]
    made.kind = kind
    made.save = _save


def _save(self: Any, *, on_conflict: Any = None) -> Any:
    """Saves the object into its own library (`Library.save`).

    Raises `Closed` if it belongs to none that is open, and what `Library.save` raises.
    """
    library = self.library
    if library is None:
        raise Closed(f"{self} belongs to no open library: save it by Library.save")
    return library.save(self, on_conflict=on_conflict)


_DOCUMENTATION = {
    Kind.TAG: "A word by which materials and compositions are found. It cannot be renamed.",
    Kind.LAYER: "A drawing layer: a named sheet of a drawing.",
    Kind.MATERIAL_TYPE: 'A category of materials, such as "Wood".',
    Kind.PROPERTY: "A property that the users of a library have made up.",
    Kind.MATERIAL: """A building material.

    Thicknesses are in the unit of the library; `conductivity` is in W/(m K), `density` in kg/m3.
    Keyword arguments set fields.

    >>> import veldra
    >>> brick = veldra.Material("Brick", conductivity=0.5, manufacturer="Ziegelwerk")
    >>> brick
    <veldra.Material new 'Brick'>
    >>> brick.conductivity
    0.5
    """,
    Kind.COMPOSITION: """A build-up of layers: a wall, a floor or a roof.

    Keyword arguments set fields. Thicknesses are in the unit of the library.

    >>> import veldra
    >>> brick = veldra.Material("Brick", conductivity=0.5)
    >>> wall = veldra.Composition("Wall", type="wall", layers=[(brick, 240)])
    >>> wall.total_thickness
    240.0
    >>> round(wall.U, 3)
    1.538
    """,
}


def _initialiser(made: Any) -> Callable[..., None]:
    plain = made.__init__

    def __init__(self: Any, name: str, **fields: Any) -> None:
        plain(self, name)
        # These replace all, and quantities are among them.
        if "custom_values" in fields:
            self.custom_values = fields.pop("custom_values")
        for field, value in fields.items():
            if not isinstance(getattr(made, field, None), property):
                raise TypeError(f"a veldra.{made.__name__} has no field {field!r}")
            setattr(self, field, value)

    __init__.__qualname__ = f"{made.__name__}.__init__"
    return __init__


def _property_initialiser(made: Any) -> Callable[..., None]:
    plain = made.__init__

    def __init__(self: Any, name: str, object_type: Optional[str] = "material") -> None:
        kinds = {None: 0, "material": Kind.MATERIAL.value, "composition": Kind.COMPOSITION.value}
        if not isinstance(object_type, (str, type(None))):
            raise TypeError(f"an object type is a str or None, not {object_type!r}")
        if object_type not in kinds:
            raise ValueError(f"{object_type!r} is none of 'material', 'composition' and None")
        plain(self, name, kinds[object_type])

    __init__.__qualname__ = f"{made.__name__}.__init__"
    return __init__


def u_value(self: _veldra.Composition, *, boundary: str = "") -> Optional[float]:
    """The transmittance in W/(m2 K) after ISO 6946; None where a layer is not known (`heat`).

    `boundary` says what the build-up borders on, such as "upward, outdoors" or
    "horizontal, ground, interior"; what it leaves open is as the composition states, or by its
    type.

    Raises `InvalidValue` for a word that means nothing.
    """
    result: Optional[float] = self.heat(boundary=boundary)["u_value"]
    return result


def heat(self: _veldra.Composition, *, boundary: str = "") -> dict[str, Any]:
    """The heat flow through the build-up after ISO 6946, with all that was assumed.

    `u_value` is in W/(m2 K), `resistance`, `outside` and `inside` (of the surfaces) and those of
    `layers` in m2 K/W; `notes` says what was assumed, and `faults` why there is no figure.

    Raises `InvalidValue` for a word of `boundary` (`u_value`) that means nothing.
    """
    return _veldra._heat(self, boundary)


def complete() -> None:
    """Completes all classes. Called once, when the package is imported."""
    classes: dict[Kind, Any] = dict(CLASSES)
    for kind, made in classes.items():
        _complete(kind, made)
    for kind in (Kind.MATERIAL, Kind.COMPOSITION):
        made = classes[kind]
        made.__init__ = _initialiser(made)
        made.custom_values = property(
            CustomValues, _set_custom_values, doc="The values of custom properties."
        )
    made = classes[Kind.PROPERTY]
    made.__init__ = _property_initialiser(made)
    made = classes[Kind.COMPOSITION]
    made.u_value = u_value
    made.heat = heat
    made.section = section
