# SPDX-License-Identifier: GPL-2.0-or-later
"""Calls what there is with what does not belong there, for some seconds.

    random_calls.py <seed> <seconds> <folder>

Anything that is raised is fine; a crash is not, and nor is what a person cannot understand. Prints
how many calls there were.
"""

import os
import random
import sys
import time
from pathlib import Path
from typing import Any, Callable

import veldra

chance = random.Random(int(sys.argv[1]))
folder = Path(sys.argv[3])
os.chdir(folder)  # some texts become files


class Moody(veldra.Reactor):
    """Now and then raises or refuses."""

    def object_saved(self, library: veldra.Library, key: veldra.Key) -> None:
        if chance.random() < 0.1:
            raise LookupError("saved")

    def may_remove(self, library: veldra.Library, key: veldra.Key) -> bool:
        return chance.random() < 0.8

    def type_changed(self, library: veldra.Library, kind: veldra.Kind) -> None:
        if chance.random() < 0.1:
            raise LookupError("changed")


ARGUMENTS: list[Any] = [
    *(None, True, 0, 1, -1, 2**31, 2**63, 2**70, 1.5, float("nan"), float("inf")),
    *("", "Brick", "\ud800", "a\0b", "wall", "mm", "rename", "overwrite", "use", "materials"),
    *(b"x", [], [1], ["a"], (), ("a", 1), {}, {"a": "b"}, object(), slice(0, 2), Exception),
    *(lambda *given: "rename", lambda *given: 1 / 0, Moody(), veldra.Rename("z")),
    *(veldra.Kind.MATERIAL, veldra.Key(veldra.Kind.MATERIAL, 1), veldra.Unit.INCHES),
    *(veldra.Color(1, 1, 1), veldra.Pattern("Concrete")),
]

MAKERS: list[Callable[[], Any]] = [
    lambda: veldra.create(":memory:", unit=chance.choice(["mm", "in"])),
    lambda: veldra.create(folder / f"{chance.randrange(3)}.lib"),
    lambda: veldra.Material(chance.choice(["Brick", "Stone"]), conductivity=0.5),
    lambda: veldra.Composition("Wall", layers=[(veldra.Material("Brick"), 1)]),
    lambda: veldra.Tag("exterior"),
    lambda: veldra.CustomProperty("Fire class"),
    lambda: veldra.CompositionLayer(veldra.Material("Wool"), 2),
]

# What makes objects without a value, as everywhere in Python, or tuples that fill the memory.
LEFT_OUT = {"__class__", "__init__", "__new__", "__setattr__", "__setstate__", "__init_subclass__"}
LEFT_OUT |= {"__mul__", "__rmul__"}


def step(used: Any, others: list[Any]) -> list[Any]:
    """Uses one attribute, and returns what came of it."""
    name = chance.choice([each for each in dir(used) if each not in LEFT_OUT])
    if chance.random() < 0.15 and not name.startswith("_"):
        setattr(used, name, chance.choice(ARGUMENTS + others))
        return []
    result = getattr(used, name)
    if callable(result):
        count = chance.choice([0, 1, 1, 1, 2, 2, 3])
        result = result(*chance.choices(ARGUMENTS + others * 2, k=count))
    if hasattr(result, "__next__"):
        return [each for _, each in zip(range(3), result)]
    return [result]


def is_ours(thing: Any) -> bool:
    module = type(thing).__module__
    return module.startswith("veldra") and module != "veldra._enums"


def main() -> None:
    things: list[Any] = []
    steps = 0
    end = time.monotonic() + float(sys.argv[2])
    while time.monotonic() < end:
        if len(things) < 10 or chance.random() < 0.02:
            things.append(chance.choice(MAKERS)())
        if len(things) > 60:
            del things[chance.randrange(len(things))]
        steps += 1
        try:
            things += filter(is_ours, step(chance.choice(things), things))
        except SystemError:
            raise
        except Exception:
            continue
    print("figure: random calls of Python:", steps)


main()
