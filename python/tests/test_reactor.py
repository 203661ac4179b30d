# SPDX-License-Identifier: GPL-2.0-or-later
"""What a library asks and tells."""

import traceback
from typing import Any

import pytest

import veldra


class Recording(veldra.Reactor):
    def __init__(self) -> None:
        self.calls: list[Any] = []

    def object_saved(self, library: veldra.Library, key: veldra.Key) -> None:
        self.calls.append(("saved", library, key))

    def may_remove(self, library: veldra.Library, key: veldra.Key) -> bool:
        self.calls.append(("may remove", library, key))
        return key.id != 2

    def object_removed(self, library: veldra.Library, key: veldra.Key) -> None:
        self.calls.append(("removed", library, key))

    def type_changed(self, library: veldra.Library, kind: veldra.Kind) -> None:
        self.calls.append(("type", library, kind))

    def library_changed(self, library: veldra.Library) -> None:
        self.calls.append(("library", library))


def tag(number: int) -> veldra.Key:
    return veldra.Key(veldra.Kind.TAG, number)


def test_a_reactor_is_told_of_each_step(library: veldra.Library) -> None:
    reactor = Recording()
    library.reactor = reactor
    assert library.reactor is reactor
    first = library.save(veldra.Tag("a"))
    second = library.save(veldra.Tag("b"))
    assert reactor.calls[:3] == [
        ("saved", library, tag(1)),
        ("type", library, veldra.Kind.TAG),
        ("library", library),
    ]
    del reactor.calls[:]
    assert library.remove(first)
    assert not library.remove(second)
    assert reactor.calls == [
        ("may remove", library, tag(1)),
        ("removed", library, tag(1)),
        ("type", library, veldra.Kind.TAG),
        ("library", library),
        ("may remove", library, tag(2)),
    ]
    library.reactor = None
    assert library.remove(second)


def test_only_a_reactor_is_one(library: veldra.Library) -> None:
    with pytest.raises(TypeError, match="veldra.Reactor"):
        library.reactor = "told"  # type: ignore[assignment]


class Mine(Exception):
    pass


@pytest.mark.parametrize("name", ["object_saved", "resolve_name_conflict"])
def test_what_a_reactor_raises_comes_out_unchanged_and_takes_back(
    library: veldra.Library, name: str
) -> None:
    library.save(veldra.Material("Brick"))
    error = Mine("no")

    def raise_mine(self: Any, *given: Any) -> Any:
        raise error

    library.reactor = type("Raising", (veldra.Reactor,), {name: raise_mine})()
    other = veldra.Material("Brick" if name == "resolve_name_conflict" else "Stone")
    with pytest.raises(Mine) as raised:
        library.save(other)
    assert raised.value is error
    assert raised.value.__cause__ is None
    assert "raise_mine" in "".join(traceback.format_tb(error.__traceback__))
    assert other.id == 0
    library.reactor = None
    assert len(library.materials) == 1


@pytest.mark.parametrize("name", ["may_remove", "object_removed"])
def test_what_is_raised_at_a_removal_comes_out_and_keeps_the_object(
    library: veldra.Library, name: str
) -> None:
    library.save(veldra.Tag("a"))

    def raise_mine(self: Any, *given: Any) -> Any:
        raise Mine(name)

    library.reactor = type("Raising", (veldra.Reactor,), {name: raise_mine})()
    with pytest.raises(Mine, match=name):
        library.remove(library.tags["a"])
    with pytest.raises(Mine, match=name):
        with library.transaction():
            library.remove(library.tags["a"])
    library.reactor = None
    assert "a" in library.tags


@pytest.mark.parametrize("name", ["type_changed", "library_changed"])
def test_what_is_raised_at_the_end_comes_out_and_everything_stays(
    library: veldra.Library, name: str
) -> None:
    def raise_mine(self: Any, *given: Any) -> Any:
        raise Mine(name)

    library.reactor = type("Raising", (veldra.Reactor,), {name: raise_mine})()
    with pytest.raises(Mine, match=name):
        library.save(veldra.Tag("a"))
    with pytest.raises(Mine, match=name):
        with library.transaction():
            library.save(veldra.Tag("b"))
    assert len(library.tags) == 2


def test_a_reactor_reads_and_does_not_write(library: veldra.Library) -> None:
    seen: list[Any] = []

    class Reading(veldra.Reactor):
        def object_saved(self, library: veldra.Library, key: veldra.Key) -> None:
            seen.append(library.tags.by_id(key.id).name)
            for write in (
                lambda: library.save(veldra.Tag("inside")),
                lambda: library.transaction().__enter__(),
                library.close,
            ):
                with pytest.raises(veldra.TransactionError):
                    write()

    library.reactor = Reading()
    library.save(veldra.Tag("outside"))
    assert seen == ["outside"]
    assert len(library.tags) == 1


def test_an_object_that_is_being_saved_must_not_change(library: veldra.Library) -> None:
    brick = veldra.Material("Brick", type="Masonry")

    class Changing(veldra.Reactor):
        def object_saved(self, library: veldra.Library, key: veldra.Key) -> None:
            assert brick.name == "Brick"
            brick.name = "Other"

    library.reactor = Changing()
    with pytest.raises(veldra.Error, match="is being saved"):
        library.save(brick)
    assert brick.name == "Brick"
    assert brick.id == 0


def test_a_function_that_decides_may_raise(library: veldra.Library) -> None:
    library.save(veldra.Material("Brick"))

    def refuse(library: veldra.Library, kind: veldra.Kind, name: str) -> str:
        raise Mine(f"{kind.name} {name}")

    with pytest.raises(Mine, match="MATERIAL Brick"):
        library.save(veldra.Material("Brick"), on_conflict=refuse)
    with pytest.raises(ValueError, match="'perhaps'"):
        library.save(veldra.Material("Brick"), on_conflict=lambda *given: "perhaps")
    with pytest.raises(TypeError, match="veldra.Rename"):
        undecided: Any = lambda *given: None  # noqa: E731
        library.save(veldra.Material("Brick"), on_conflict=undecided)
    assert len(library.materials) == 1


def test_a_keyboard_interrupt_in_a_reactor_rolls_back(library: veldra.Library) -> None:
    class Interrupting(veldra.Reactor):
        def object_saved(self, library: veldra.Library, key: veldra.Key) -> None:
            raise KeyboardInterrupt

    library.reactor = Interrupting()
    with pytest.raises(KeyboardInterrupt):
        library.save(veldra.Tag("a"))
    assert len(library.tags) == 0
