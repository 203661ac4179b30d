# SPDX-License-Identifier: GPL-2.0-or-later
"""The wheel of what is built: it holds all that it needs, and works in an environment of its own."""

import os
import re
import shutil
import subprocess
import sys
import zipfile
from collections.abc import Iterator
from pathlib import Path
from typing import Any

import pytest

SCRIPT = Path(__file__).parents[2] / "scripts" / "wheel"
BUILD = os.environ.get("VELDRA_BUILD_FOLDER", "")

pytestmark = pytest.mark.skipif(
    not BUILD or shutil.which("patchelf") is None,
    reason="patchelf and the build folder are needed",
)

CLEAN = {"PATH": "/usr/bin:/bin", "LANG": "C.UTF-8"}

PROGRAM = """
import sys, veldra, sqlite3
with veldra.create(":memory:") as library:
    brick = veldra.Material("Brick", conductivity=0.5)
    wall = library.save(veldra.Composition("Wall", type="wall", layers=[(brick, 240)]))
    assert round(wall.U, 3) == 1.538, wall.U
    assert "Brick" in wall.section().svg
    library.write(sys.argv[1])
assert len(veldra.read(sys.argv[1]).library.materials) == 1
sqlite3.connect(":memory:").execute("select 1")
print(veldra.__version__)
for line in open("/proc/self/maps"):
    print(line.split(maxsplit=5)[-1].strip())
"""


def run(*command: Any) -> str:
    result = subprocess.run(
        [str(part) for part in command], env=CLEAN, capture_output=True, text=True, timeout=300
    )
    assert result.returncode == 0, result.stdout + result.stderr
    return result.stdout


@pytest.fixture(scope="module")
def wheel(tmp_path_factory: pytest.TempPathFactory) -> Path:
    folder = tmp_path_factory.mktemp("wheel")
    run(SCRIPT, "--of", BUILD, folder)
    (made,) = folder.iterdir()
    return made


@pytest.fixture(scope="module")
def unpacked(wheel: Path, tmp_path_factory: pytest.TempPathFactory) -> Path:
    folder = tmp_path_factory.mktemp("unpacked")
    zipfile.ZipFile(wheel).extractall(folder)
    return folder


def objects_in(unpacked: Path) -> Iterator[tuple[Path, str]]:
    for path in sorted(unpacked.rglob("*.so*")):
        yield path, run("readelf", "-d", path)


def test_the_name_tells_release_and_interpreter(wheel: Path) -> None:
    version = f"cp{sys.version_info.major}{sys.version_info.minor}"
    assert re.fullmatch(rf"veldra-\d+\.\d+\.\d+-{version}-{version}-linux_\w+\.whl", wheel.name)


def test_package_types_and_libraries_are_in_it(unpacked: Path) -> None:
    package = unpacked / "veldra"
    sources = Path(__file__).parents[1] / "veldra"
    for source in sources.glob("*.py*"):
        assert (package / source.name).read_bytes() == source.read_bytes()
    assert (package / "py.typed").exists()
    names = {path.name.split(".so")[0] for path in (package / "_libraries").iterdir()}
    assert {"libveldra", "libveldra-kit", "libodb-2", "libodb-sqlite-2", "libsqlite3"} <= {
        re.sub(r"(-2)\.\d+$", r"\1", name) for name in names
    }
    assert not names & {"libc", "libm", "libstdc++", "libgcc_s"}


def test_everything_that_is_needed_is_beside_it_or_everywhere(unpacked: Path) -> None:
    everywhere = re.compile(r"lib(c|m|dl|pthread|rt|stdc\+\+|gcc_s)\.so\.|ld-linux")
    there = {path.name for path in (unpacked / "veldra" / "_libraries").iterdir()}
    found = 0
    for path, dynamic in objects_in(unpacked):
        found += 1
        for name in re.findall(r"\(NEEDED\).*\[(.*)\]", dynamic):
            assert name in there or everywhere.match(name), f"{path.name} needs {name}"
        (run_path,) = re.findall(r"\((?:RUNPATH|RPATH)\).*\[(.*)\]", dynamic)
        inside = path.parent.name == "_libraries"
        assert run_path == ("$ORIGIN" if inside else "$ORIGIN/_libraries")
    assert found == len(there) + 1


def test_the_licences_of_all_parts_are_in_it(unpacked: Path) -> None:
    (information,) = unpacked.glob("*.dist-info")
    licences = {path.name for path in information.iterdir()}
    assert {"LICENSE", "GPL-2.0-or-later.txt"} <= licences
    for library in (unpacked / "veldra" / "_libraries").iterdir():
        if library.name.startswith("libveldra"):
            continue
        stem = library.name.split(".so")[0]
        assert any(name.startswith(stem) for name in licences), stem


def test_no_place_of_the_build_is_in_it(unpacked: Path) -> None:
    for path in unpacked.rglob("*"):
        if path.is_file():
            assert os.fsencode(os.path.realpath(BUILD)) not in path.read_bytes(), path.name


def test_it_works_in_an_environment_of_its_own(wheel: Path, tmp_path: Path) -> None:
    environment = tmp_path / "environment"
    run(sys.executable, "-m", "venv", environment)
    run(environment / "bin" / "pip", "install", "--no-index", "--no-deps", wheel)
    program = tmp_path / "program.py"
    program.write_text(PROGRAM)
    lines = run(environment / "bin" / "python", "-I", program, tmp_path / "a.json").splitlines()
    assert lines[0] in wheel.name
    ours = {line for line in lines if re.search(r"/lib(veldra|odb|sqlite3|fmt|md|utf8proc)", line)}
    assert len(ours) >= 7
    assert all(line.startswith(str(environment)) for line in ours), ours
