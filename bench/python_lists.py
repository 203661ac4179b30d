#!/usr/bin/python3
# SPDX-License-Identifier: GPL-2.0-or-later
"""Lists materials in Python, beside sqlite3 of the standard library and beside the same list in C++.

    PYTHONPATH=build/release/python/package bench/python_lists.py [<materials> [<veldra_list_file>]]

All of them read one file and take turns. Without the program (`ninja -C build/release
veldra_list_file`) there is no line of C++; without pandas there are none of data frames. Figures are
processor times, which hold also on a machine with other work, and the least of several rounds; each
ratio is to the line that it names.
"""

import gc
import importlib
import importlib.util
import sqlite3
import subprocess
import sys
import tempfile
import time
from collections.abc import Callable
from pathlib import Path
from typing import Any

import veldra

ROUNDS = 5
SQLITE = "sqlite3, one table"
CPLUSPLUS = "C++, whole objects"
NO_ATTRIBUTE = "objects, no attribute"
THREE_ATTRIBUTES = "objects, three attributes"
FRAME = "data frame of all fields"
PANDAS = "pandas alone, the same arrays"
SIDES = {SQLITE: "sqlite3", CPLUSPLUS: "C++"}  # by what they are called in ratios
BY_HAND = """
    SELECT Material.id, Material.name, Material.description, Material.manufacturer FROM Material
"""
IMPORT = """
import time
began = time.process_time()
import veldra
print(time.process_time() - began)
"""


def sample(file: Path, count: int) -> None:
    with veldra.create(file) as library, library.transaction():
        for number in range(count):
            library.save(
                veldra.Material(
                    f"Material {number}",
                    description=f"description of {number}",
                    manufacturer="maker",
                    density=1000 + number % 1000,
                    thicknesses=[50, 100],
                    tags=[f"tag {number % 7}"],
                )
            )


def milliseconds(work: Callable[[], Any]) -> float:
    start = time.process_time()
    kept = work()
    taken = time.process_time() - start
    del kept
    return taken * 1000


def best(work: Callable[[], float]) -> float:
    return min(work() for _ in range(ROUNDS))


def in_turns(works: dict[str, Callable[[], float]]) -> dict[str, float]:
    """The least figure of each work; they take turns, so that none has a quieter machine."""
    rounds = [{name: work() for name, work in works.items()} for _ in range(ROUNDS)]
    return {name: min(each[name] for each in rounds) for name in works}


def by_objects(file: Path) -> list[tuple[str, str, str]]:
    with veldra.open(file, read_only=True) as library:
        return [(each.name, each.description, each.manufacturer) for each in library.materials]


def by_columns(file: Path) -> list[tuple[str, str, str]]:
    with veldra.open(file, read_only=True) as library:
        columns = library.materials.columns(["name", "description", "manufacturer"])
        return list(zip(*columns.values()))


def by_hand(file: Path) -> list[tuple[str, str, str]]:
    database = sqlite3.connect(file)
    try:
        rows = database.execute(BY_HAND).fetchall()
        return [(name, description, manufacturer) for _, name, description, manufacturer in rows]
    finally:
        database.close()


def without_attributes(file: Path) -> int:
    with veldra.open(file, read_only=True) as library:
        return sum(1 for _ in library.materials)


def all_columns(file: Path) -> dict[str, list[Any]]:
    with veldra.open(file, read_only=True) as library:
        return library.materials.columns()


def frame(file: Path) -> Any:
    with veldra.open(file, read_only=True) as library:
        return library.to_pandas("materials")


def frame_works(file: Path) -> dict[str, Callable[[], float]]:
    """A data frame of all fields, and what pandas alone takes for its columns."""
    if importlib.util.find_spec("pandas") is None:
        return {}
    pandas = importlib.import_module("pandas")
    of_arrays = frame(file)
    arrays = {name: of_arrays[name].to_numpy() for name in of_arrays}
    lists = all_columns(file)
    gc.collect()
    gc.freeze()  # while the other works make objects, nobody is to go through these
    return {
        FRAME: lambda: milliseconds(lambda: frame(file)),
        PANDAS: lambda: milliseconds(lambda: pandas.DataFrame(arrays)),
        "pandas alone, from lists": lambda: milliseconds(lambda: pandas.DataFrame(lists)),
    }


def of_cplusplus(program: str, file: Path) -> float:
    command = [program, str(file), "1"]
    return float(subprocess.run(command, capture_output=True, text=True, check=True).stdout)


def import_time() -> float:
    command = [sys.executable, "-c", IMPORT]
    return float(subprocess.run(command, capture_output=True, check=True).stdout) * 1000


def tell(work: str, figure: float, beside: dict[str, float]) -> None:
    ratios = ", ".join(f"{figure / other:.2f} x {name}" for name, other in beside.items())
    print(f"{work:32}{figure:10.1f} ms   {ratios}".rstrip())


def main() -> None:
    count = int(sys.argv[1]) if len(sys.argv) > 1 else 10_000
    with tempfile.TemporaryDirectory() as folder:
        file = Path(folder) / "bench.lib"
        sample(file, count)
        if not sorted(by_objects(file)) == sorted(by_columns(file)) == sorted(by_hand(file)):
            sys.exit("the three lists differ")
        works: dict[str, Callable[[], float]] = {SQLITE: lambda: milliseconds(lambda: by_hand(file))}
        if len(sys.argv) > 2:
            works[CPLUSPLUS] = lambda: of_cplusplus(sys.argv[2], file)
        works |= {
            NO_ATTRIBUTE: lambda: milliseconds(lambda: without_attributes(file)),
            THREE_ATTRIBUTES: lambda: milliseconds(lambda: by_objects(file)),
            "columns of three attributes": lambda: milliseconds(lambda: by_columns(file)),
            "columns of all fields": lambda: milliseconds(lambda: all_columns(file)),
        }
        figures = in_turns(works | frame_works(file))
    print(f"{count} materials")
    beside: dict[str, float] = {}
    for work, figure in figures.items():
        tell(work, figure, beside)
        if work in SIDES:
            beside[SIDES[work]] = figure
    if PANDAS in figures and CPLUSPLUS in figures:
        own = figures[FRAME] - figures[PANDAS]
        print(f"a data frame takes {own / figures[CPLUSPLUS]:.2f} x C++, and what pandas takes")
    attributes = figures[THREE_ATTRIBUTES] - figures[NO_ATTRIBUTE]
    print(f"an attribute takes {attributes / count / 3 * 1000:.2f} us")
    print(f"import takes {best(import_time):.1f} ms")


main()
