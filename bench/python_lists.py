#!/usr/bin/python3
# SPDX-License-Identifier: GPL-2.0-or-later
"""Lists materials with three attributes in Python, beside sqlite3 of the standard library.

    PYTHONPATH=build/release/python/package bench/python_lists.py [<materials> [<veldra_bench>]]

With the benchmarks of C++ it also tells the list in C++, of as many materials. Times are the best
of several rounds, in milliseconds; each ratio is to the line that it names.
"""

import re
import sqlite3
import subprocess
import sys
import tempfile
import time
from pathlib import Path
from typing import Any, Callable, Optional

import veldra

ROUNDS = 5
BY_HAND = """
    SELECT Material.id, Material.name, Material.description, Material.manufacturer FROM Material
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
        start = time.perf_counter()
        work()
        times.append(time.perf_counter() - start)
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


def of_cplusplus(program: str, count: int) -> Optional[float]:
    """What veldra_bench prints for the list of all materials, for each, in milliseconds for all."""
    command = [program, "--filter=^all_materials$", f"--materials={count}", f"--rounds={ROUNDS}"]
    printed = subprocess.run(command, capture_output=True, text=True, check=True).stdout
    found = re.search(r"^all_materials\s+(ns|us|ms|s)\s+([\d.]+)", printed, re.MULTILINE)
    factors = {"ns": 1e-6, "us": 1e-3, "ms": 1.0, "s": 1e3}
    return float(found.group(2)) * factors[found.group(1)] * count if found else None


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
        hand = best(lambda: by_hand(file))
        figures = {
            "objects, no attribute": best(lambda: without_attributes(file)),
            "objects, three attributes": best(lambda: by_objects(file)),
            "columns of three attributes": best(lambda: by_columns(file)),
        }
    print(f"{count} materials")
    beside = {"sqlite3": hand}
    tell("sqlite3, one table", hand, {})
    listed = of_cplusplus(sys.argv[2], count) if len(sys.argv) > 2 else None
    if listed is not None:
        beside["C++"] = listed
        tell("C++, whole objects", listed, {"sqlite3": hand})
    for work, figure in figures.items():
        tell(work, figure, beside)
    attributes = figures["objects, three attributes"] - figures["objects, no attribute"]
    print(f"an attribute takes {attributes / count / 3 * 1000:.2f} us")


main()
