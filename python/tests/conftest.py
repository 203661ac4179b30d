# SPDX-License-Identifier: GPL-2.0-or-later
from collections.abc import Iterator
from pathlib import Path

import pytest

import veldra


@pytest.fixture
def file(tmp_path: Path) -> Path:
    return tmp_path / "office.lib"


@pytest.fixture
def library(file: Path) -> Iterator[veldra.Library]:
    with veldra.create(file) as created:
        yield created


@pytest.fixture
def supplier() -> Iterator[veldra.Library]:
    with veldra.create(":memory:", unit="in") as created:
        created.save(veldra.Material("Brick", thicknesses=[4]))
        yield created
