# SPDX-License-Identifier: GPL-2.0-or-later
"""The examples of the docstrings and of the page run, and types are as they are described."""

import doctest
import importlib
import json
import os
import pkgutil
import re
import subprocess
import sys
from pathlib import Path

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


def test_everything_that_people_use_is_described() -> None:
    for name, used in vars(veldra).items():
        if name.startswith("_") or not callable(used):
            continue
        assert used.__doc__, name
        for member, function in vars(used).items() if isinstance(used, type) else ():
            if member.startswith("_") or not callable(function):
                continue
            assert function.__doc__, f"{name}.{member}"


def blocks_of(page: str, language: str) -> list[str]:
    return re.findall(rf"^```{language}\n(.*?)^```$", page, re.MULTILINE | re.DOTALL)


@pytest.mark.parametrize("name", ["python.md", "python-recipes.md"])
def test_a_page_shows_what_its_programs_print(name: str, tmp_path: Path) -> None:
    page = (SOURCES / "docs" / name).read_text(encoding="utf-8")
    programs, shown = blocks_of(page, "python"), blocks_of(page, "text")
    assert len(programs) == len(shown) >= 6
    separator = "=" * 8
    script = tmp_path / "tutorial.py"
    script.write_text(f"\nprint('{separator}')\n".join(programs), encoding="utf-8")
    result = subprocess.run(
        [sys.executable, script], cwd=tmp_path, capture_output=True, text=True, timeout=60
    )
    assert result.stderr == ""
    assert result.stdout.split(separator + "\n") == shown


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
    assert re.fullmatch(r"an attribute takes -?[\d.]+ us", printed[-1])


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


def test_package_and_tests_pass_a_strict_type_checker(tmp_path: Path) -> None:
    tests = [str(path) for path in sorted(TESTS.glob("*.py"))]
    for what in (["-p", "veldra"], tests):
        type_checker("mypy", "--config-file", TESTS / "mypy.ini", "--cache-dir", tmp_path, *what)
