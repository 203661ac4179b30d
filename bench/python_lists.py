#!/usr/bin/python3
# SPDX-License-Identifier: GPL-2.0-or-later
"""Lists materials in Python, beside sqlite3 of the standard library and beside the same list in C++.

    PYTHONPATH=build/release/python/package bench/python_lists.py [<materials> [<veldra_list_file>]]

All of them read one file. Without the program (`ninja -C build/release veldra_list_file`) there is
no line of C++; without pandas there are none of data frames. Figures are processor times, which
hold also on a machine with other work, and the least of several rounds; each ratio is to the line
that it names.
"""

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


def best(work: Callable[[], Any]) -> float:
    times = []
    for _ in range(ROUNDS):
        start = time.process_time()
        work()
        times.append(time.process_time() - start)
    return min(times) * 1000


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


def frame_figures(file: Path) -> dict[str, float]:
    """A data frame of all fields, and what pandas alone takes for its columns."""
    if importlib.util.find_spec("pandas") is None:
        return {}
    pandas = importlib.import_module("pandas")
    columns = all_columns(file)
    return {
        "data frame of all fields": best(lambda: frame(file)),
        "pandas alone, its columns": best(lambda: pandas.DataFrame(columns)),
    }


def of_cplusplus(program: str, file: Path) -> float:
    command = [program, str(file), str(ROUNDS)]
    return float(subprocess.run(command, capture_output=True, text=True, check=True).stdout)


def import_time() -> float:
    command = [sys.executable, "-c", IMPORT]
    printed = [subprocess.run(command, capture_output=True, check=True).stdout for _ in range(ROUNDS)]
    return min(map(float, printed)) * 1000


def tell(work: str, figure: float, beside: dict[str, float]) -> None:
    ratios = ", ".join(f"{figure / other:.2f} x {name}" for name, other in beside.items())
    print(f"{work:32}{figure:10.1f} ms   {ratios}".rstrip())


def main() -> None:
    count = int(sys.argv[1]) if len(sys.argv) > 1 else 10_000
    beside: dict[str, float] = {}
    with tempfile.TemporaryDirectory() as folder:
        file = Path(folder) / "bench.lib"
        sample(file, count)
        if not sorted(by_objects(file)) == sorted(by_columns(file)) == sorted(by_hand(file)):
            sys.exit("the three lists differ")
        beside["sqlite3"] = best(lambda: by_hand(file))
        if len(sys.argv) > 2:
            beside["C++"] = of_cplusplus(sys.argv[2], file)
        figures = {
            "objects, no attribute": best(lambda: without_attributes(file)),
            "objects, three attributes": best(lambda: by_objects(file)),
            "columns of three attributes": best(lambda: by_columns(file)),
            "columns of all fields": best(lambda: all_columns(file)),
        }
        figures |= frame_figures(file)
    print(f"{count} materials")
    tell("sqlite3, one table", beside["sqlite3"], {})
    if "C++" in beside:
        tell("C++, whole objects", beside["C++"], {"sqlite3": beside["sqlite3"]})
    for work, figure in figures.items():
        tell(work, figure, beside)
    attributes = figures["objects, three attributes"] - figures["objects, no attribute"]
    print(f"an attribute takes {attributes / count / 3 * 1000:.2f} us")
    print(f"import takes {import_time():.1f} ms")


main()
