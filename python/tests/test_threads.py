# SPDX-License-Identifier: GPL-2.0-or-later
"""Threads, signals and references."""

import gc
import os
import signal
import subprocess
import sys
import threading
import time
from pathlib import Path
from typing import Callable

import pytest

import veldra


class Waiting(veldra.Reactor):
    """Stops within the first object that is saved until it is let go."""

    def __init__(self) -> None:
        self.inside = threading.Event()
        self.go_on = threading.Event()

    def object_saved(self, library: veldra.Library, key: veldra.Key) -> None:
        self.inside.set()
        assert self.go_on.wait(30)


def test_a_library_in_use_by_another_thread_is_refused(file: Path) -> None:
    with veldra.create(file) as library, veldra.create(":memory:") as other:
        stone = library.save(veldra.Material("Stone"))
        brick = veldra.Material("Brick")
        wall = veldra.Composition("Wall", layers=[(brick, 240)])
        another = veldra.Composition("Another", layers=[(brick, 240)])
        reactor = Waiting()
        library.reactor = reactor
        saving = threading.Thread(target=library.save, args=(wall,))
        saving.start()
        assert reactor.inside.wait(30)
        try:
            calls: list[Callable[[], object]] = [
                lambda: len(library.materials),
                lambda: library.save(veldra.Material("Third")),
                lambda: library.guid,
                lambda: stone.name,
                lambda: setattr(stone, "comments", "x"),
                lambda: wall.name,
                lambda: wall.layers.clear(),
                lambda: brick.name,
                lambda: another.U,
                lambda: other.copy(library),
                lambda: other.save(stone),
                lambda: other.plan(library),
                library.close,
            ]
            for call in calls:
                with pytest.raises(veldra.ThreadError):
                    call()
            other.save(veldra.Material("Free"))
        finally:
            reactor.go_on.set()
            saving.join()
        assert wall.name == "Wall"
        assert len(library.materials) == 2


def test_the_thread_that_began_a_transaction_ends_it(library: veldra.Library) -> None:
    errors: list[BaseException] = []

    def use() -> None:
        calls: list[Callable[[], object]] = [library._commit, lambda: len(library.tags)]
        for call in calls:
            try:
                call()
            except veldra.ThreadError as error:
                errors.append(error)

    with library.transaction():
        library.save(veldra.Tag("a"))
        thread = threading.Thread(target=use)
        thread.start()
        thread.join()
    assert len(errors) == 2
    assert len(library.tags) == 1


def test_threads_use_libraries_of_their_own_on_one_file(file: Path) -> None:
    veldra.create(file).close()
    errors: list[BaseException] = []

    def save(first: int) -> None:
        try:
            for number in range(first, first + 20):
                with veldra.open(file) as library:
                    library.save(veldra.Tag(f"tag {number}"))
        except BaseException as error:
            errors.append(error)

    threads = [threading.Thread(target=save, args=(100 * number,)) for number in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert errors == []
    with veldra.open(file) as library:
        assert len(library.tags) == 80


def test_the_lock_of_the_interpreter_is_free_while_a_call_waits(file: Path) -> None:
    with veldra.create(file) as library, veldra.open(file) as other:
        done: list[object] = []

        def write() -> None:
            try:
                done.append(other.save(veldra.Tag("b")))
            except veldra.Error as error:
                done.append(error)

        with library.transaction():
            library.save(veldra.Tag("a"))
            thread = threading.Thread(target=write)
            thread.start()
            began = time.monotonic()
            while time.monotonic() < began + 0.3:
                pass
            assert thread.is_alive()
        thread.join()
        assert isinstance(done[0], veldra.Tag)


def test_another_thread_interrupts_a_call_that_waits(file: Path) -> None:
    with veldra.create(file) as library, veldra.open(file) as other:
        with library.transaction():
            library.save(veldra.Tag("a"))
            stopping = threading.Timer(0.2, other.interrupt)
            stopping.start()
            with pytest.raises(veldra.Interrupted):
                other.save(veldra.Tag("b"))
            stopping.join()
        assert len(other.tags) == 1


# Shells start what runs in the background with Ctrl-C ignored.
CONTROL_C = """
import signal
signal.signal(signal.SIGINT, signal.default_int_handler)
"""

INTERRUPTED = CONTROL_C + """
import os, sys, threading, time
import veldra

library = veldra.open(sys.argv[1])
other = veldra.open(sys.argv[1])
library.save(veldra.Tag("before"))
with library.transaction():
    library.save(veldra.Tag("held"))
    threading.Timer(0.3, os.kill, (os.getpid(), signal.SIGINT)).start()
    began = time.monotonic()
    try:
        other.save(veldra.Tag("waits"))
    except KeyboardInterrupt:
        print("interrupted", time.monotonic() - began < 3)
    assert signal.getsignal(signal.SIGINT) is signal.default_int_handler
print(len(other.tags))
"""


def run(program: str, *arguments: str) -> str:
    return subprocess.run(
        [sys.executable, "-c", program, *arguments],
        capture_output=True,
        text=True,
        timeout=60,
        check=True,
    ).stdout


def test_control_c_ends_a_call_and_takes_it_back(file: Path) -> None:
    veldra.create(file).close()
    assert run(INTERRUPTED, str(file)) == "interrupted True\n2\n"


LONG = CONTROL_C + """
import os, sys, threading
import veldra

library = veldra.create(":memory:")
with library.transaction():
    for number in range(3000):
        library.save(veldra.Material(f"M{number}"))
target = veldra.create(sys.argv[1])
threading.Timer(0.05, os.kill, (os.getpid(), signal.SIGINT)).start()
try:
    if sys.argv[2] == "copy":
        with target.transaction():
            while True:
                target.copy(library, on_conflict="overwrite")
    else:
        while True:
            target.plan(library)
except KeyboardInterrupt:
    print("interrupted", len(target.materials))
"""


@pytest.mark.parametrize("work", ["copy", "plan"])
def test_control_c_ends_long_work_and_leaves_nothing_of_it(file: Path, work: str) -> None:
    assert run(LONG, str(file), work) == "interrupted 0\n"


def test_the_package_is_imported_quickly() -> None:
    program = """
import sys, time
began = time.process_time()
import veldra
print(time.process_time() - began)
print("pandas" in sys.modules, "numpy" in sys.modules)
"""
    took, loaded = min(run(program).splitlines() for _ in range(5))
    assert float(took) < 0.05
    assert loaded == "False False"


def memory() -> int:
    with open("/proc/self/statm") as file:
        return int(file.read().split()[1]) * os.sysconf("SC_PAGE_SIZE")


def use_everything(library: veldra.Library, supplier: veldra.Library) -> None:
    brick = veldra.Material("Brick", tags=["a"], thicknesses=[1], conductivity=0.5)
    for field in brick.fields:
        getattr(brick, field.name.replace(".", "_"))
    wall = veldra.Composition("Wall", type="wall", layers=[(brick, 240)])
    wall.layers[0].thickness = 1
    wall.heat()
    try:
        with library.transaction():
            library.save(wall, on_conflict="overwrite")
            list(library.materials)
            library.materials.where("name = Brick")[0]
            library.materials.columns()
            library.copy(supplier, on_conflict="rename")
            library.plan(supplier, on_clash="rename").apply()
            library.referrers(brick)
            library.remove(wall)
            raise LookupError
    except LookupError:
        pass
    calls: list[Callable[[], object]] = [
        lambda: library.materials["Absent"],
        lambda: library.materials.where("U <"),
        lambda: setattr(brick, "conductivity", -1),
        lambda: veldra.Material("\ud800"),
    ]
    for call in calls:
        with pytest.raises(veldra.Error):
            call()
    with veldra.create(":memory:") as other:
        other.reactor = veldra.Reactor()
        other.save(veldra.Tag("a"))


def test_nothing_is_left_behind_by_loops(
    library: veldra.Library, supplier: veldra.Library
) -> None:
    for _ in range(20):
        use_everything(library, supplier)
    gc.collect()
    objects, size = len(gc.get_objects()), memory()
    for _ in range(60):
        use_everything(library, supplier)
    gc.collect()
    assert len(gc.get_objects()) - objects < 30
    assert memory() - size < 4_000_000


def test_counts_of_references_do_not_grow(library: veldra.Library) -> None:
    brick = library.save(veldra.Material("Brick"))
    reactor = veldra.Reactor()
    before = [sys.getrefcount(each) for each in (brick, library, reactor, None)]
    for _ in range(1000):
        library.reactor = reactor
        brick.library
        brick.comments = "x"
        brick.code
        library.save(brick)
        brick == brick
        library.materials.get("absent")
        library.reactor = None
    after = [sys.getrefcount(each) for each in (brick, library, reactor, None)]
    assert all(abs(now - then) < 20 for now, then in zip(after, before))


@pytest.mark.parametrize("seed", range(3))
def test_no_call_with_any_arguments_ends_the_process(tmp_path: Path, seed: int) -> None:
    calls = Path(__file__).parent / "random_calls.py"
    result = subprocess.run(
        [sys.executable, "-X", "faulthandler", calls, str(seed), "4", tmp_path],
        capture_output=True,
        text=True,
        timeout=120,
        cwd=tmp_path,
    )
    assert (result.returncode, result.stderr) == (0, "")
