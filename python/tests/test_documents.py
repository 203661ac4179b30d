# SPDX-License-Identifier: GPL-2.0-or-later
"""The examples of the docstrings and of the page run, and types are as they are described."""

import doctest
import importlib
import inspect
import json
import os
import pkgutil
import re
import subprocess
import sys
from collections.abc import Iterator
from enum import Enum
from pathlib import Path
from typing import Any

import pytest

import veldra

PACKAGE = Path(veldra.__file__).parent
TESTS = Path(__file__).parent
SOURCES = TESTS.parents[1]
TUTORIAL = SOURCES / "examples" / "python" / "tutorial.py"
MODULES = [name for _, name, _ in pkgutil.iter_modules([str(PACKAGE)]) if name != "_veldra"]


@pytest.mark.parametrize("name", ["", *MODULES])
def test_the_examples_of_docstrings_give_what_they_show(name: str) -> None:
    module = importlib.import_module(f"veldra.{name}" if name else "veldra")
    assert doctest.testmod(module).failed == 0


def test_there_are_examples_of_what_people_use() -> None:
    for used in (
        veldra,
        veldra.Material,
        veldra.Composition,
        veldra.Collection,
        veldra.Library.transaction,
        veldra.Plan,
        veldra.Reactor,
    ):
        assert ">>>" in (used.__doc__ or ""), used


def members_of(used: type) -> Iterator[tuple[str, Any]]:
    """Functions and properties that are made here, also those of bases and of the extension."""
    for name in dir(used):
        owner = next((each for each in used.__mro__ if name in vars(each)), None)
        if owner is not None and name[0] != "_" and owner.__module__.startswith("veldra"):
            yield name, inspect.getattr_static(used, name)


def test_everything_that_people_use_is_described() -> None:
    for name, used in vars(veldra).items():
        if name.startswith("_") or not callable(used):
            continue
        assert used.__doc__, name
        # What the parts of exceptions and tuples, and the values of enumerations mean, their classes say.
        if not isinstance(used, type) or issubclass(used, (Exception, tuple, Enum)):
            continue
        for member, described in members_of(used):
            if member not in ("fields", "kind"):
                assert inspect.getdoc(described), f"{name}.{member}"


def blocks_of(page: str, language: str) -> list[str]:
    return re.findall(rf"^```{language}\n(.*?)^```$", page, re.MULTILINE | re.DOTALL)


PAGES = ["python.md", "python-recipes.md"]
SEPARATOR = "=" * 8


def script_of(page: str, folder: Path) -> Path:
    """All programs of a page as one script that prints a line between them."""
    text = (SOURCES / "docs" / page).read_text(encoding="utf-8")
    script = folder / page.replace("-", "_").replace(".md", "_page.py")
    programs = blocks_of(text, "python")
    script.write_text(f"\nprint('{SEPARATOR}')\n".join(programs), encoding="utf-8")
    return script


@pytest.fixture(scope="module")
def fonts(tmp_path_factory: pytest.TempPathFactory) -> dict[str, str]:
    """An environment in which matplotlib knows its fonts: it says so when it has to look for them."""
    environment = {**os.environ, "MPLCONFIGDIR": str(tmp_path_factory.mktemp("matplotlib"))}
    command = [sys.executable, "-c", "import matplotlib.font_manager"]
    subprocess.run(command, env=environment, timeout=120, check=True)
    return environment


@pytest.mark.parametrize("name", PAGES)
def test_a_page_shows_what_its_programs_print(
    name: str, tmp_path: Path, fonts: dict[str, str]
) -> None:
    shown = blocks_of((SOURCES / "docs" / name).read_text(encoding="utf-8"), "text")
    assert len(shown) >= 6
    script = script_of(name, tmp_path)
    result = subprocess.run(
        [sys.executable, script],
        cwd=tmp_path,
        env=fonts,
        capture_output=True,
        text=True,
        timeout=120,
    )
    assert result.stderr == ""
    assert result.stdout.split(SEPARATOR + "\n") == shown
    if name == "python-recipes.md":
        assert "Wall of the annexe" in (tmp_path / "u-values.svg").read_text(encoding="utf-8")


def run_script(*command: object, folder: Path) -> str:
    result = subprocess.run(
        [sys.executable, *map(str, command)], cwd=folder, capture_output=True, text=True, timeout=60
    )
    assert result.returncode == 0, result.stderr
    return result.stdout


def test_the_tutorial_runs_as_a_script(tmp_path: Path) -> None:
    printed = run_script(TUTORIAL, folder=tmp_path)
    assert printed.splitlines()[-1] == "220 mm: U = 0.143 W/(m2 K)"
    with veldra.open(tmp_path / "tutorial.lib") as library:
        assert sorted(each.name for each in library.materials) == [
            "Brick",
            "Clay plaster",
            "Mineral wool",
            "Plaster",
        ]


def test_the_tutorial_is_a_notebook_with_pictures(tmp_path: Path) -> None:
    notebook = tmp_path / "tutorial.ipynb"
    run_script(SOURCES / "scripts" / "notebook", TUTORIAL, notebook, folder=tmp_path)
    cells = json.loads(notebook.read_text(encoding="utf-8"))["cells"]
    script = TUTORIAL.read_text(encoding="utf-8")
    code = ["".join(cell["source"]) for cell in cells if cell["cell_type"] == "code"]
    assert len(code) == script.count("\n# %%\n") and all(each in script for each in code)
    shown = [output for cell in cells for output in cell.get("outputs", [])]
    forms = {kind: "".join(text) for each in shown for kind, text in each.get("data", {}).items()}
    assert "Outer wall" in forms["image/svg+xml"] and forms["image/svg+xml"].endswith("</svg>\n")
    assert "<td>Clay plaster</td>" in forms["text/html"]


def test_a_notebook_whose_cell_raises_is_not_made(tmp_path: Path) -> None:
    script = tmp_path / "wrong.py"
    script.write_text("# %%\nimport veldra\n# %%\nveldra.open('missing.lib')\n")
    with pytest.raises(AssertionError, match="FileMissing"):
        run_script(
            SOURCES / "scripts" / "notebook", script, tmp_path / "wrong.ipynb", folder=tmp_path
        )
    assert not (tmp_path / "wrong.ipynb").exists()


def test_the_benchmark_tells_ratios(tmp_path: Path) -> None:
    printed = run_script(SOURCES / "bench" / "python_lists.py", 20, folder=tmp_path).splitlines()
    assert printed[0] == "20 materials"
    assert re.search(r"three attributes +[\d.]+ ms +[\d.]+ x sqlite3$", printed[3])
    assert re.fullmatch(r"an attribute takes -?[\d.]+ us", printed[-2])
    assert re.fullmatch(r"import takes [\d.]+ ms", printed[-1])


def type_checker(*arguments: object) -> None:
    pytest.importorskip("mypy")
    result = subprocess.run(
        [sys.executable, "-m", *map(str, arguments)],
        env={**os.environ, "MYPYPATH": str(PACKAGE.parent)},
        cwd=TESTS,
        capture_output=True,
        text=True,
        timeout=300,
    )
    assert result.returncode == 0, result.stdout + result.stderr


def test_the_stubs_agree_with_what_runs() -> None:
    type_checker("mypy.stubtest", "--mypy-config-file", TESTS / "mypy.ini", "veldra")


def test_everything_passes_a_strict_type_checker(tmp_path: Path) -> None:
    tests = sorted(TESTS.glob("*.py"))
    examples = sorted(SOURCES.glob("examples/python/*.py"))
    pages = [script_of(name, tmp_path) for name in PAGES]
    scripts = [SOURCES / "bench" / "python_lists.py", SOURCES / "scripts" / "notebook"]
    assert TUTORIAL in examples and Path(__file__) in tests
    # Scripts are checked one by one, as each of them is the main program.
    whats: list[list[object]] = [["-p", "veldra"], [*tests]]
    whats += [[each] for each in [*examples, *pages, *scripts]]
    for what in whats:
        type_checker("mypy", "--config-file", TESTS / "mypy.ini", "--cache-dir", tmp_path, *what)
