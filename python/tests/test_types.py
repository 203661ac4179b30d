# SPDX-License-Identifier: GPL-2.0-or-later
"""Every function that people call takes what its annotations say, and refuses other types.

The functions are found in the package, so that none can be forgotten: one for which no arguments are
known here makes a test fail. Those of the extension are called by test_signatures.py.
"""

import enum
import inspect
from collections.abc import Callable, Iterator
from pathlib import Path
from typing import Any

import pytest

import veldra
from veldra import _veldra, _views

NOTHING = object()


class Scene:
    """A library with something in it."""

    def __init__(self, folder: Path) -> None:
        self.folder = folder
        self.file = folder / "office.lib"
        self.library = veldra.create(self.file)
        self.other = veldra.create(":memory:")
        self.other.save(veldra.Material("Stone", density=2000))
        self.brick = self.library.save(veldra.Material("Brick", density=1400, tags=["a"]))
        self.wall = self.library.save(
            veldra.Composition("Wall", type="wall", layers=[(self.brick, 240), (self.brick, 115)])
        )
        self.library.backup(folder / "backup.lib")
        self.library.write(folder / "office.json")
        self.library.write(folder / "office.csv")
        self.materials = self.library.materials
        self.key = veldra.Key(veldra.Kind.MATERIAL, self.brick.id)

    def layer(self) -> veldra.CompositionLayer:
        return veldra.CompositionLayer(self.brick, 10)

    def reactor(self) -> veldra.Reactor:
        return veldra.Reactor()

    def plan(self) -> veldra.Plan:
        return self.library.plan(self.other)

    def frame(self) -> Any:
        pytest.importorskip("pandas")
        return self.library.to_pandas("materials", ["name", "density"])


def progress() -> None:
    pass


# What each function is called with, by the names of its parameters.
Arguments = dict[str, Any]
CALLS: dict[str, Callable[[Scene], Arguments]] = {
    "open": lambda s: {"path": s.folder / "backup.lib", "read_only": True},
    "create": lambda s: {"path": s.folder / "new.lib", "unit": "in", "guid": ""},
    "read": lambda s: {
        "paths": s.folder / "office.json",
        "unit": veldra.Unit.INCHES,
        "on_clash": "use",
        "progress": progress,
    },
    "recognise": lambda s: {"path": s.file},
    "formats": lambda s: {},
    "draw": lambda s: {
        "compositions": [s.wall],
        "locale": "de",
        "lying": False,
        "type": "wall",
        "boundary": "",
    },
    "Drawing.save": lambda s: {"path": s.folder / "wall.svg", "format": "svg"},
    "Collection.has_field": lambda s: {"name": "density"},
    "Collection.get": lambda s: {"name": "Brick", "default": None},
    "Collection.by_id": lambda s: {"id": s.brick.id},
    "Collection.ids": lambda s: {},
    "Collection.names": lambda s: {},
    "Collection.unreadable": lambda s: {},
    "Collection.unreferenced": lambda s: {},
    "Collection.where": lambda s: {"filter": "density > 1"},
    "Collection.search": lambda s: {"pattern": "B%"},
    "Collection.columns": lambda s: {"fields": ["name"]},
    "Collection.to_pandas": lambda s: {"fields": ["name"]},
    "Collection.__getitem__": lambda s: {"name": "Brick"},
    "Selection.ids": lambda s: {},
    "Selection.__getitem__": lambda s: {"index": 0},
    "Library.close": lambda s: {},
    "Library.interrupt": lambda s: {},
    "Library.check": lambda s: {},
    "Library.backup": lambda s: {"path": s.folder / "another.lib"},
    "Library.restore_from": lambda s: {"path": s.folder / "backup.lib", "other_library": False},
    "Library.collection": lambda s: {"kind": "materials"},
    "Library.to_pandas": lambda s: {"kind": "materials", "fields": ["name"]},
    "Library.transaction": lambda s: {},
    "Library.snapshot": lambda s: {},
    "Library.save": lambda s: {"object": veldra.Tag("new"), "on_conflict": "use"},
    "Library.remove": lambda s: {"object": s.wall},
    "Library.purge": lambda s: {"kinds": ["tags"]},
    "Library.copy": lambda s: {"source": s.other, "objects": [s.key], "on_conflict": "rename"},
    "Library.referrers": lambda s: {"object": s.key},
    "Library.read_tables": lambda s: {
        "paths": s.folder / "office.csv",
        "separator": ",",
        "decimal": ".",
        "progress": progress,
    },
    "Library.plan_columns": lambda s: {
        "kind": "materials",
        "columns": {"name": ["Brick"], "density": [1500.0]},
        "on_clash": "overwrite",
        "progress": progress,
    },
    "Library.plan_from_pandas": lambda s: {
        "kind": "materials",
        "frame": s.frame(),
        "on_clash": "overwrite",
        "progress": progress,
    },
    "Library.write": lambda s: {
        "path": s.folder / "written.csv",
        "format": "csv",
        "select": [s.brick],
        "table": "materials",
        "separator": ";",
        "decimal": ",",
        "progress": progress,
    },
    "Library.plan": lambda s: {"source": s.other, "on_clash": "use", "progress": progress},
    "Plan.counts": lambda s: {},
    "Plan.decide": lambda s: {"decisions": {s.key: "use"}},
    "Plan.apply": lambda s: {"progress": progress},
    "CompositionLayer": lambda s: {"material": s.brick, "thickness": 5.0, "function": 1},
    "CompositionLayer.copy": lambda s: {},
    "Tags.sort": lambda s: {"key": str.lower, "reverse": True},
    "Tags.insert": lambda s: {"index": 0, "value": "b"},
    "Tags.__getitem__": lambda s: {"index": 0},
    "Tags.__setitem__": lambda s: {"index": 0, "value": "b"},
    "Tags.__delitem__": lambda s: {"index": 0},
    "Thicknesses.add": lambda s: {"value": 5.0},
    "Thicknesses.discard": lambda s: {"value": 5.0},
    "CustomValues.__getitem__": lambda s: {"name": "Density [kg/m3]"},
    "CustomValues.__setitem__": lambda s: {"name": "Fire class", "value": "A1"},
    "CustomValues.__delitem__": lambda s: {"name": "Density [kg/m3]"},
    "Layers.insert": lambda s: {"index": 0, "value": s.layer()},
    "Layers.move": lambda s: {"source": 0, "to": 1},
    "Layers.__getitem__": lambda s: {"index": 0},
    "Layers.__setitem__": lambda s: {"index": 0, "value": (s.brick, 5)},
    "Layers.__delitem__": lambda s: {"index": 0},
    "Tag": lambda s: {"name": "b"},
    "Layer": lambda s: {"name": "b"},
    "MaterialType": lambda s: {"name": "b"},
    "CustomProperty": lambda s: {"name": "b", "object_type": "material"},
    "Material": lambda s: {"name": "b", "density": 5.0},
    "Composition": lambda s: {"name": "b", "layers": [s.layer()]},
}
for made in ("Tag", "Layer", "MaterialType", "CustomProperty", "Material", "Composition"):
    CALLS[f"{made}.save"] = lambda s: {"on_conflict": "use"}
CALLS["Composition.u_value"] = CALLS["Composition.heat"] = lambda s: {"boundary": "outdoors"}
CALLS["Composition.section"] = lambda s: {
    "locale": "de",
    "lying": True,
    "type": "roof",
    "boundary": "",
}

# On what the functions of a class are called.
OWNERS: dict[str, Callable[[Scene], Any]] = {
    "Drawing": lambda s: s.wall.section(),
    "Collection": lambda s: s.materials,
    "Selection": lambda s: s.materials.where("density > 1"),
    "Library": lambda s: s.library,
    "Plan": lambda s: s.plan(),
    "CompositionLayer": lambda s: s.wall.layers[0],
    "Tags": lambda s: s.brick.tags,
    "Thicknesses": lambda s: s.brick.thicknesses,
    "CustomValues": lambda s: s.brick.custom_values,
    "Layers": lambda s: s.wall.layers,
    "Material": lambda s: s.brick,
    "Composition": lambda s: s.wall,
    "Tag": lambda s: s.library.tags["a"],
    "Layer": lambda s: s.library.save(veldra.Layer("A-WALL")),
    "MaterialType": lambda s: s.library.material_types["Generic"],
    "CustomProperty": lambda s: s.library.properties["Density [kg/m3]"],
}

# Parts that are wrong, where something of the right type can have them.
WRONG_PARTS: dict[str, list[Any]] = {
    "compositions": [[NOTHING], [None]],
    "columns": [[], {"name": NOTHING}, {NOTHING: ["Brick"]}],
    "decisions": [{NOTHING: "use"}, {"Brick": "use"}],
    "fields": [[NOTHING]],
    "frame": [{"name": ["Brick"]}],
    "kinds": [[NOTHING], [7]],
    "layers": [[NOTHING], [(NOTHING, 1)]],
    "object": [None, "Brick", ("material", 1)],
    "objects": [[NOTHING], ["Brick"], [("material", 1)]],
    "select": [[NOTHING], ["Brick"]],
    "source": [None, "office.lib"],
}

# What any value is fine for: what is given back, and what a set and a dictionary have or have not.
ANYTHING = {
    ("Collection.get", "default"),
    ("Thicknesses.discard", "value"),
    ("CustomValues.__getitem__", "name"),
    ("CustomValues.__delitem__", "name"),
}

DUNDERS = {"__getitem__", "__setitem__", "__delitem__"}
# Hosts call nothing of what they override, and these are made by other calls alone.
LEFT_OUT = {"Reactor", "Source", "Written"}


def has_functions(used: Any) -> bool:
    return (
        inspect.isclass(used)
        and not issubclass(used, (BaseException, enum.Enum))
        and not (issubclass(used, tuple) and used.__name__ in vars(veldra))
        and used.__name__ not in LEFT_OUT
    )


def classes() -> Iterator[type]:
    yield from (used for name, used in vars(veldra).items() if name[0] != "_" and has_functions(used))
    yield from (_views.Tags, _views.Thicknesses, _views.CustomValues, _views.Layers)


def functions() -> Iterator[str]:
    for name, used in vars(veldra).items():
        if name[0] != "_" and callable(used) and not inspect.isclass(used):
            yield name
    for owner in classes():
        names = list(vars(owner))
        if owner is veldra.Library:
            names += vars(_veldra._Library)
        for name in dict.fromkeys(names):
            if callable(getattr(owner, name)) and (name[0] != "_" or name in DUNDERS):
                yield f"{owner.__name__}.{name}"


def call(scene: Scene, name: str, arguments: Arguments) -> Any:
    """Calls by position what must be given so, and the rest by name."""
    owner, _, member = name.rpartition(".")
    used = getattr(OWNERS[owner](scene), member) if owner else getattr(veldra, name)
    rest = dict(arguments)
    plain = [rest.pop("paths")] if "paths" in rest else []
    if name.endswith("__"):
        plain, rest = list(rest.values()), {}
    return used(*plain, **rest)


@pytest.fixture
def scene(tmp_path: Path) -> Scene:
    return Scene(tmp_path)


def test_every_function_has_arguments_here() -> None:
    found = list(functions())
    assert len(found) > 60
    assert sorted(set(found) - set(CALLS)) == []


def test_no_function_here_is_gone() -> None:
    classes_of_objects = {"CompositionLayer", "CustomProperty", "Tag", "Layer", "MaterialType"}
    classes_of_objects |= {"Material", "Composition"}
    assert sorted(set(CALLS) - set(functions()) - classes_of_objects) == []


@pytest.mark.parametrize("name", CALLS)
def test_it_takes_what_its_annotations_say(scene: Scene, name: str) -> None:
    call(scene, name, CALLS[name](scene))


@pytest.mark.parametrize("name", CALLS)
def test_it_refuses_other_types(scene: Scene, name: str) -> None:
    arguments = CALLS[name](scene)
    for parameter in arguments:
        if (name, parameter) in ANYTHING:
            continue
        for wrong in [NOTHING, *WRONG_PARTS.get(parameter, [])]:
            with pytest.raises((TypeError, ValueError)):
                call(scene, name, {**arguments, parameter: wrong})


@pytest.mark.parametrize("name", CALLS)
def test_it_refuses_arguments_that_it_does_not_know(scene: Scene, name: str) -> None:
    arguments = CALLS[name](scene)
    with pytest.raises(TypeError):
        call(scene, name, {**arguments, "no_such_argument": 1})


def attributes() -> Iterator[tuple[str, str]]:
    """What can be set, besides the fields of objects."""
    for owner in classes():
        for name, used in vars(owner).items():
            can_be_set = isinstance(used, property) and used.fset is not None
            if can_be_set and owner in (veldra.Library, veldra.CompositionLayer):
                yield owner.__name__, name


def test_there_are_attributes_that_can_be_set() -> None:
    assert {("Library", "reactor"), ("CompositionLayer", "thickness")} <= set(attributes())


@pytest.mark.parametrize(("owner", "name"), attributes())
def test_attributes_refuse_other_types(scene: Scene, owner: str, name: str) -> None:
    used = OWNERS[owner](scene)
    before = getattr(used, name)
    with pytest.raises(TypeError):
        setattr(used, name, NOTHING)
    assert getattr(used, name) == before
