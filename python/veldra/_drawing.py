# SPDX-License-Identifier: GPL-2.0-or-later
"""Drawings of build-ups."""

from __future__ import annotations

from collections.abc import Iterable
from typing import Optional

from veldra import _veldra
from veldra._files import Path, ending_of, write_whole


class Drawing:
    """Sections through build-ups to scale, with layers and figures (`draw`).

    It shows itself in notebooks.
    """

    def __init__(self, svg: str, title: str, locale: str) -> None:
        self._svg = svg
        self._title = title
        self._locale = locale

    @property
    def svg(self) -> str:
        """The drawing as an SVG document."""
        return self._svg

    @property
    def title(self) -> str:
        """The names of the build-ups."""
        return self._title

    def save(self, path: Path, format: Optional[str] = None) -> None:
        """Writes the drawing: as "svg", "html" or "pdf", by default as the ending of the name says.

        A PDF needs librsvg; without it `InvalidValue` is raised. Raises `ValueError` for another
        format, and `OSError`.
        """
        wanted = format or ending_of(path)
        if wanted == "svg":
            content = self._svg.encode()
        elif wanted == "html":
            content = _veldra._page(self._svg, self._title, self._locale).encode()
        elif wanted == "pdf":
            content = _veldra._pdf(self._svg, self._title)
        else:
            raise ValueError(f"{wanted!r} is none of 'svg', 'html' and 'pdf'")
        write_whole(path, content)

    def _repr_svg_(self) -> str:
        return self._svg

    def __repr__(self) -> str:
        return f"<veldra.Drawing of {self._title!r}>"


def draw(
    compositions: Iterable[_veldra.Composition],
    *,
    locale: Optional[str] = None,
    lying: Optional[bool] = None,
    type: Optional[str] = None,
    boundary: str = "",
) -> Drawing:
    """Draws sections through build-ups on one sheet, one below the other.

    `locale` is by default that of their library: German where it begins with "de", else English.
    Walls stand and others lie, unless `lying` says it; `type` ("wall", "floor", "roof" or "other")
    has them drawn as if they were of that type. `boundary` is that of `Composition.u_value`.

    Raises `InvalidValue` for build-ups of libraries of different units.
    """
    drawn = list(compositions)
    for each in drawn:
        if not isinstance(each, _veldra.Composition):
            raise TypeError(f"a veldra.Composition is needed, not {each!r}")
    if locale is None:
        libraries = [each.library for each in drawn]
        locale = libraries[0].locale if libraries and libraries[0] is not None else ""
    svg = _veldra._draw(drawn, locale, lying, type, boundary)
    return Drawing(svg, ", ".join(each.name for each in drawn), locale)


def section(
    self: _veldra.Composition,
    *,
    locale: Optional[str] = None,
    lying: Optional[bool] = None,
    type: Optional[str] = None,
    boundary: str = "",
) -> Drawing:
    """A section to scale, with layers and figures (`draw`), which shows itself in notebooks."""
    return draw([self], locale=locale, lying=lying, type=type, boundary=boundary)
