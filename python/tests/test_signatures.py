# SPDX-License-Identifier: GPL-2.0-or-later
"""Every signature of the stubs is called with what it takes and with what it does not take.

The signatures are read from the stub, so that none can be forgotten: one for which no arguments are
known here makes a test fail.
"""

import ast
import ctypes
import gc
import sys
from collections.abc import Callable, Iterator
from dataclasses import dataclass
from pathlib import Path
from typing import Any, Optional

import pytest

import veldra
from veldra import _veldra

STUB = ast.parse((Path(veldra.__file__).parent / "_veldra.pyi").read_text(encoding="utf-8"))
LEFT_OUT = {"_Attribute", "_Meta"}  # only there for type checkers
NOTHING = object()


@dataclass
class Signature:
    """A function of the stub; `owner` is the name of its class, empty for none."""

    owner: str
    node: ast.FunctionDef

    def __str__(self) -> str:
        return f"{self.owner}.{self.node.name}" if self.owner else self.node.name

    def parameters(self) -> list[tuple[str, str, bool]]:
        """Name, type, and whether it is given by name."""
        arguments = self.node.args
        plain = arguments.args[1:] if self.owner else arguments.args
        described = [(each, False) for each in plain]
        described += [(each, True) for each in arguments.kwonlyargs]
        return [
            (each.arg, ast.unparse(each.annotation) if each.annotation else "", by_name)
            for each, by_name in described
        ]

    def required(self) -> int:
        """How many arguments cannot be left out; those by name can be."""
        arguments = self.node.args
        return len(arguments.args) - len(arguments.defaults) - (1 if self.owner else 0)

    def result(self) -> str:
        return ast.unparse(self.node.returns) if self.node.returns else ""


def classes() -> Iterator[ast.ClassDef]:
    for node in STUB.body:
        if isinstance(node, ast.ClassDef) and node.name not in LEFT_OUT:
            yield node


def is_property(node: ast.FunctionDef) -> bool:
    return any(ast.unparse(each) == "property" for each in node.decorator_list)


def functions() -> list[Signature]:
    found = [Signature("", node) for node in STUB.body if isinstance(node, ast.FunctionDef)]
    for owner in classes():
        for node in owner.body:
            if isinstance(node, ast.FunctionDef) and not is_property(node):
                found.append(Signature(owner.name, node))
    return found


def attributes() -> list[tuple[str, str, str, bool]]:
    """Class, name, type, and whether it can be set."""
    found = []
    for owner in classes():
        for node in owner.body:
            if isinstance(node, ast.FunctionDef) and is_property(node) and node.returns:
                found.append((owner.name, node.name, ast.unparse(node.returns), False))
            if isinstance(node, ast.AnnAssign) and isinstance(node.target, ast.Name):
                text = ast.unparse(node.annotation)
                if not text.startswith("ClassVar"):
                    found.append((owner.name, node.target.id, text, True))
    return found


class Scene:
    """A library with something in it, and what calls take."""

    def __init__(self, folder: Path) -> None:
        self.folder = folder
        self.library = veldra.create(":memory:")
        self.source = veldra.create(":memory:")
        self.source.save(veldra.Material("Stone", density=2000))
        self.brick = self.library.save(veldra.Material("Brick", density=1400))
        self.wall = self.library.save(
            veldra.Composition("Wall", type="wall", layers=[(self.brick, 240), (self.brick, 115)])
        )
        self.library.save(veldra.CustomProperty("Fire class"))
        self.count = 0

    def owner(self, name: str) -> Any:
        """An object of a class, or the class where objects are made otherwise."""
        if name == "_Library":
            return self.library
        if name == "_Plan":
            return _veldra._plan(self.library, self.source, "fail", {}, {}, None)
        if name in ("_Object", "Material"):
            return self.brick
        return self.wall if name == "Composition" else getattr(veldra, name)("x")

    def special(self, name: str) -> Optional[list[Any]]:
        """Arguments that follow neither from types nor from names."""
        self.count += 1
        layer = (self.brick, 10.0, 0)
        known: dict[str, Callable[[], list[Any]]] = {
            "_read": lambda: [[str(self.folder / "source.json")], "mm", "fail", None],
            "_Library._read_tables": lambda: [[str(self.folder / "table.csv")], "", "", None],
            "_Library._table_column": lambda: [veldra.Kind.MATERIAL.value, "density", [1400.0, None]],
            "_Library.__init__": lambda: [_veldra._create(":memory:", "mm", "")],
            "_Library.backup": lambda: [str(self.folder / f"{id(self)} {self.count}.lib")],
            "_Library._copy": lambda: [self.source, None, None],
            "_Library._remove_all": lambda: [[(veldra.Kind.MATERIAL.value, self.source_id())]],
            "_Library._remove": lambda: [self.library.save(veldra.Tag(f"tag {self.count}"))],
            "_Library._remove_id": lambda: [
                veldra.Kind.TAG.value,
                self.library.save(veldra.Tag(f"tag {self.count} by id")).id,
            ],
            "_Library._purge": lambda: [[veldra.Kind.TAG.value]],
            "_page": lambda: ["<svg></svg>", "Wall", "de"],
            "Material._set_custom_value": lambda: ["Fire class", "A1"],
            "Composition._set_custom_value": lambda: ["Fire class", "A1"],
            "Composition._set_layer": lambda: [0, layer],
            "Composition._insert_layer": lambda: [0, layer],
        }
        if name == "_Library.restore_from":
            return [self.backup(), False]
        return known[name]() if name in known else None

    def backup(self) -> str:
        path = self.folder / f"backup {id(self)} {self.count}.lib"
        self.library.backup(path)
        return str(path)

    def source_id(self) -> int:
        return self.library.save(veldra.Material(f"Slate {self.count}")).id


BY_NAME: dict[str, Any] = {
    "boundary": "",
    "content": "kind,name\nmaterial,Brick\n",
    "decimal": ".",
    "filter": "density > 1",
    "format": "csv",
    "guid": "",
    "index": 0,
    "kind": veldra.Kind.MATERIAL.value,
    "id": 1,
    "locale": "de",
    "memo": {},
    "name": "Brick",
    "on_clash": "fail",
    "on_conflict": None,
    "other": None,
    "pattern": "%",
    "protocol": 4,
    "read_only": True,
    "separator": ",",
    "svg": "<svg xmlns='http://www.w3.org/2000/svg' width='9mm' height='9mm'></svg>",
    "table": "materials",
    "title": "Wall",
    "to": 1,
    "type": None,
    "unit": "mm",
    "value": "A1",
}


def right(scene: Scene, signature: Signature) -> list[Any]:
    special = scene.special(str(signature))
    if special is not None:
        return special
    by_type: dict[str, Any] = {
        "Path": str(scene.folder / "office.lib"),
        "_Library": scene.library,
        "Composition": scene.wall,
        "list[Composition]": [scene.wall],
        "list[int]": [scene.brick.id],
        "int": 0,
    }
    result = []
    for name, kind, _ in signature.parameters():
        if name in BY_NAME:
            result.append(BY_NAME[name])
        elif kind.startswith("dict["):
            result.append({})
        elif kind.startswith("Optional["):
            result.append(None)
        elif kind == "Any" and name == "object":
            result.append(scene.brick)
        else:
            assert kind in by_type, f"no value is known for {name} of {signature}"
            result.append(by_type[kind])
    return result


def call(scene: Scene, signature: Signature, arguments: list[Any]) -> Any:
    parameters = signature.parameters()
    by_name = {
        name: value for (name, _, named), value in zip(parameters, arguments) if named
    }
    plain = arguments[: len(arguments) - len(by_name)]
    if not signature.owner:
        return getattr(_veldra, signature.node.name)(*plain, **by_name)
    owner = scene.owner(signature.owner)
    if signature.node.name == "__init__":
        return type(owner)(*plain, **by_name)
    # What only makes sense within something.
    within = {"_commit": "_begin_transaction", "_roll_back": "_begin_transaction"}
    within["_end_snapshot"] = "_begin_snapshot"
    if signature.node.name in within:
        getattr(owner, within[signature.node.name])()
    result = getattr(owner, signature.node.name)(*plain, **by_name)
    if signature.node.name == "_begin_transaction":
        owner._roll_back()
    if signature.node.name == "_begin_snapshot":
        owner._end_snapshot()
    return False if result is NotImplemented else result  # as `==` has it


# These raise whatever they are given: that is what they are for.
REFUSING = {"__reduce__", "__reduce_ex__"}
FUNCTIONS = [each for each in functions() if str(each) != "_Plan.__init__"]
IDS = [str(each) for each in FUNCTIONS]


# What the stub has short names for.
SHORT = {
    ast.unparse(node.targets[0]): ast.unparse(node.value)
    for node in STUB.body
    if isinstance(node, ast.Assign)
}


def conforms(value: Any, described: str) -> bool:
    """Whether a value may be what the stub describes; the parts of lists and tuples are looked at."""
    node = ast.parse(described, mode="eval").body
    return matches(value, node)


def matches(value: Any, node: ast.expr) -> bool:
    plain = {"str": str, "int": int, "bool": bool, "float": float, "bytes": bytes}
    if isinstance(node, ast.Constant) and node.value is None:
        return value is None
    if isinstance(node, ast.Name):
        if node.id in plain:
            return type(value) is plain[node.id] or isinstance(value, plain[node.id])
        if node.id in SHORT:
            return conforms(value, SHORT[node.id])
        return node.id in ("Any", "Self") or type(value).__name__ == node.id
    assert isinstance(node, ast.Subscript), ast.unparse(node)
    outer = ast.unparse(node.value)
    parts = node.slice.elts if isinstance(node.slice, ast.Tuple) else [node.slice]
    if outer == "Optional":
        return value is None or matches(value, parts[0])
    if outer == "Union":
        return any(matches(value, part) for part in parts)
    if outer == "list":
        return isinstance(value, list) and all(matches(each, parts[0]) for each in value)
    if outer == "dict":
        return isinstance(value, dict) and all(matches(each, parts[1]) for each in value.values())
    if outer == "tuple":
        return (
            isinstance(value, tuple)
            and len(value) == len(parts)
            and all(matches(each, part) for each, part in zip(value, parts))
        )
    assert outer == "_Attribute", outer
    return matches(value, parts[0])


@pytest.fixture(scope="module")
def folder(tmp_path_factory: pytest.TempPathFactory) -> Path:
    made = tmp_path_factory.mktemp("files")
    (made / "table.csv").write_text("kind,name\nmaterial,Brick\n")
    with veldra.create(made / "office.lib") as library:
        library.save(veldra.Material("Stone"))
        library.write(made / "source.json")
    return made


@pytest.fixture
def scene(folder: Path) -> Scene:
    return Scene(folder)


def test_the_stub_is_read() -> None:
    assert len(FUNCTIONS) > 70
    assert len(attributes()) > 80


@pytest.mark.parametrize("signature", FUNCTIONS, ids=IDS)
def test_what_is_described_can_be_called(scene: Scene, signature: Signature) -> None:
    arguments = right(scene, signature)
    if signature.node.name in REFUSING:
        with pytest.raises(TypeError, match="cannot be pickled"):
            call(scene, signature, arguments)
        return
    result = call(scene, signature, arguments)
    if signature.node.name != "__init__":
        assert conforms(result, signature.result()), (result, signature.result())


@pytest.mark.parametrize("signature", FUNCTIONS, ids=IDS)
def test_other_types_and_numbers_of_arguments_are_refused(
    scene: Scene, signature: Signature
) -> None:
    arguments = right(scene, signature)
    parameters = signature.parameters()
    if signature.node.args.kwarg is None:
        with pytest.raises(TypeError):
            call(scene, signature, [NOTHING, *arguments])
    if signature.required() > 0:
        with pytest.raises(TypeError):
            call(scene, signature, arguments[: signature.required() - 1])
    for place, (name, kind, _) in enumerate(parameters):
        # Equality takes anything, and it does not matter how nothing is pickled or copied.
        if kind in ("object", "dict[int, Any]") or name == "protocol":
            continue
        for value in [NOTHING, *absent_values(kind)]:
            wrong = [*arguments[:place], value, *arguments[place + 1 :]]
            with pytest.raises(TypeError):
                call(scene, signature, wrong)


def absent_values(kind: str) -> list[Any]:
    """None, and a list of None, where they are not of the type; what is no bool is taken as one."""
    if kind.startswith("Optional[") or kind in ("Any", "bool", "OnConflict"):
        return []
    has_parts = kind.startswith("list[") and kind != "list[Any]"
    return [None, [None]] if has_parts else [None]


@pytest.mark.parametrize(("owner", "name", "kind", "writable"), attributes())
def test_attributes_are_of_their_types(
    scene: Scene, owner: str, name: str, kind: str, writable: bool
) -> None:
    used = scene.owner(owner)
    assert conforms(getattr(used, name), kind), getattr(used, name)
    if kind == "Any":
        return
    with pytest.raises(TypeError if writable else AttributeError):
        setattr(used, name, NOTHING)


class Heap(ctypes.Structure):
    _fields_ = [(name, ctypes.c_size_t) for name in "a b c d e f g used h i".split()]


def heap_in_use() -> int:
    """The bytes that C and C++ hold."""
    mallinfo = ctypes.CDLL(None).mallinfo2
    mallinfo.restype = Heap
    return int(mallinfo().used)


def growth_of(work: Callable[[], Any], loops: int) -> tuple[float, float]:
    """How many blocks of Python and bytes of C++ each call leaves behind.

    Caches fill and are emptied now and then, so it is the least of several rounds that counts.
    """
    blocks, used = [], []
    for _ in range(4):
        for _ in range(loops):
            work()
        gc.collect()
        blocks.append(sys.getallocatedblocks())
        used.append(heap_in_use())
    return least_step(blocks) / loops, least_step(used) / loops


def leaks(work: Callable[[], Any]) -> bool:
    """Whether each call leaves something behind. What a few calls seem to leave, as a cache has
    grown, many do not.
    """
    for loops in (12, 200):
        blocks, used = growth_of(work, loops)
        if blocks < 0.5 and used < 200:
            return False
    return True


def least_step(figures: list[int]) -> int:
    return min(after - before for before, after in zip(figures, figures[1:]))


# What each call adds to the library or to its object stays.
ADDING = {"Composition._insert_layer", "_Library._remove_all", "_Library._copy"}


@pytest.mark.parametrize(
    "signature", [each for each in FUNCTIONS if str(each) not in ADDING],
    ids=[each for each in IDS if each not in ADDING],
)
def test_no_call_leaves_anything_behind(scene: Scene, signature: Signature) -> None:
    def work() -> None:
        try:
            call(scene, signature, right(scene, signature))
        except (TypeError, IndexError, veldra.Error):
            pass

    assert not leaks(work)


@pytest.mark.parametrize("signature", FUNCTIONS, ids=IDS)
def test_no_refusal_leaves_anything_behind(scene: Scene, signature: Signature) -> None:
    arguments = [NOTHING] * len(right(scene, signature))

    def work() -> None:
        try:
            call(scene, signature, arguments)
        except (TypeError, IndexError, veldra.Error):
            pass

    assert not leaks(work)


def test_a_leak_would_be_seen() -> None:
    kept: list[Any] = []
    assert leaks(lambda: kept.append(object()))
    mallocs = ctypes.CDLL(None)
    mallocs.malloc.restype = ctypes.c_void_p
    assert leaks(lambda: mallocs.malloc(ctypes.c_size_t(1000)))
