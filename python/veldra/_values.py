# SPDX-License-Identifier: GPL-2.0-or-later
"""Values of fields that have several parts."""

from __future__ import annotations

from typing import NamedTuple


class Color(NamedTuple):
    """A colour of four components, each usually from 0 to 1. With `alpha` 0 it is none."""

    red: float = 0.0
    green: float = 0.0
    blue: float = 0.0
    alpha: float = 1.0


class Pattern(NamedTuple):
    """A hatch. None stands for no hatch. Scale and angle are in units of the host."""

    name: str = ""
    scale: float = 1.0
    angle: float = 0.0
    cross: bool = False


class Point(NamedTuple):
    """A point of the plane, in the host's unit."""

    x: float = 0.0
    y: float = 0.0
