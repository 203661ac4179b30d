# SPDX-License-Identifier: GPL-2.0-or-later
"""Drawings of build-ups, and the files that they are saved in."""

import ctypes.util
import xml.etree.ElementTree as xml
from pathlib import Path

import pytest

import veldra

TEXT = "{http://www.w3.org/2000/svg}text"


@pytest.fixture
def wall(library: veldra.Library) -> veldra.Composition:
    brick = veldra.Material("Brick", conductivity=0.5)
    wool = veldra.Material("Wool <soft>", conductivity=0.035)
    return library.save(
        veldra.Composition("Outer wall", type="wall", layers=[(wool, 160), (brick, 175)])
    )


def texts_of(drawing: veldra.Drawing) -> list[str]:
    return [each.text or "" for each in xml.fromstring(drawing.svg).iter(TEXT)]


def test_a_section_shows_its_layers_and_figures(wall: veldra.Composition) -> None:
    texts = texts_of(wall.section())
    assert {"Outer wall", "Brick", "Wool <soft>", "160", "175", "total thickness"} <= set(texts)
    assert f"U = {wall.U:.2f} W/(m²K)" in texts


def test_a_section_shows_itself_in_notebooks(wall: veldra.Composition) -> None:
    section = wall.section()
    assert section._repr_svg_() == section.svg
    assert section.title == "Outer wall"
    assert repr(section) == "<veldra.Drawing of 'Outer wall'>"


def test_the_language_is_that_of_the_library_unless_it_is_said(
    library: veldra.Library, wall: veldra.Composition
) -> None:
    assert "total thickness" in texts_of(wall.section())
    assert "Gesamtdicke" in texts_of(wall.section(locale="de_AT"))
    library.locale = "de_DE"
    assert "Gesamtdicke" in texts_of(wall.section())
    assert "total thickness" in texts_of(wall.section(locale="en_GB"))


def test_rules_change_the_drawing(wall: veldra.Composition) -> None:
    drawings = {
        wall.section().svg,
        wall.section(lying=True).svg,
        wall.section(type="floor").svg,
        wall.section(boundary="horizontal, ground").svg,
    }
    assert len(drawings) == 4
    assert wall.section(lying=False).svg == wall.section().svg


def test_rules_that_make_no_sense_are_refused(wall: veldra.Composition) -> None:
    with pytest.raises(ValueError, match="'ceiling' is none of 'wall', 'floor', 'roof'"):
        wall.section(type="ceiling")
    with pytest.raises(veldra.InvalidValue, match="moon"):
        wall.section(boundary="moon")


def test_a_build_up_of_no_library_is_drawn_in_millimetres() -> None:
    floor = veldra.Composition("Floor", layers=[(veldra.Material("Screed"), 60)])
    assert "thicknesses in millimetres" in " ".join(texts_of(floor.section()))


def test_a_sheet_has_all_build_ups_in_their_order(wall: veldra.Composition) -> None:
    other = veldra.Composition("Roof", type="roof", layers=[(veldra.Material("Slate"), 8)])
    texts = texts_of(veldra.draw([other, wall]))
    assert texts.index("Roof") < texts.index("Outer wall")
    assert veldra.draw([other, wall]).title == "Roof, Outer wall"


def test_a_sheet_has_one_unit(wall: veldra.Composition, supplier: veldra.Library) -> None:
    inches = supplier.save(
        veldra.Composition("Partition", layers=[(supplier.materials["Brick"], 4)])
    )
    assert "thicknesses in inches" in " ".join(texts_of(inches.section()))
    with pytest.raises(veldra.InvalidValue, match="of libraries of one unit"):
        veldra.draw([wall, inches])


def test_a_sheet_of_nothing_is_a_drawing_of_nothing() -> None:
    assert texts_of(veldra.draw([])) == []


def test_a_drawing_is_saved_as_its_ending_says(wall: veldra.Composition, tmp_path: Path) -> None:
    section = wall.section()
    section.save(tmp_path / "wall.svg")
    assert (tmp_path / "wall.svg").read_text(encoding="utf-8") == section.svg
    section.save(str(tmp_path / "wall.HTML"))
    page = (tmp_path / "wall.HTML").read_text(encoding="utf-8")
    assert page.startswith("<!DOCTYPE html>") and "<title>Outer wall</title>" in page
    section.save(tmp_path / "wall", format="svg")
    assert (tmp_path / "wall").read_bytes() == (tmp_path / "wall.svg").read_bytes()
    assert sorted(path.name for path in tmp_path.glob("*wall*")) == ["wall", "wall.HTML", "wall.svg"]


def test_a_format_that_there_is_not_is_refused(wall: veldra.Composition, tmp_path: Path) -> None:
    for name in ("wall.png", "wall"):
        with pytest.raises(ValueError, match="is none of 'svg', 'html' and 'pdf'"):
            wall.section().save(tmp_path / name)
        assert not (tmp_path / name).exists()


def test_a_folder_that_is_not_there_is_an_os_error(
    wall: veldra.Composition, tmp_path: Path
) -> None:
    with pytest.raises(FileNotFoundError):
        wall.section().save(tmp_path / "missing" / "wall.svg")


def test_a_pdf_needs_librsvg(wall: veldra.Composition, tmp_path: Path) -> None:
    if ctypes.util.find_library("rsvg-2") is None:
        with pytest.raises(veldra.InvalidValue, match="a PDF needs"):
            wall.section().save(tmp_path / "wall.pdf")
        assert not (tmp_path / "wall.pdf").exists()
        return
    wall.section().save(tmp_path / "wall.pdf")
    assert (tmp_path / "wall.pdf").read_bytes().startswith(b"%PDF-")


def test_a_file_that_cannot_be_replaced_stays_as_it_was(
    wall: veldra.Composition, tmp_path: Path, monkeypatch: pytest.MonkeyPatch
) -> None:
    file = tmp_path / "wall.svg"
    file.write_text("before")

    def refuse(self: Path, target: Path) -> Path:
        raise PermissionError("not today")

    monkeypatch.setattr(Path, "replace", refuse)
    with pytest.raises(PermissionError, match="not today"):
        wall.section().save(file)
    assert file.read_text() == "before"
    assert list(tmp_path.glob(".*")) == []


def test_a_link_stays_a_link(wall: veldra.Composition, tmp_path: Path) -> None:
    (tmp_path / "link.svg").symlink_to(tmp_path / "drawn.svg")
    wall.section().save(tmp_path / "link.svg")
    assert (tmp_path / "link.svg").is_symlink()
    assert (tmp_path / "drawn.svg").read_text(encoding="utf-8") == wall.section().svg


def test_a_folder_that_is_missing_is_told_with_the_name_that_was_given(tmp_path: Path) -> None:
    (tmp_path / "file").write_text("")
    for folder, error in (("missing", FileNotFoundError), ("file", NotADirectoryError)):
        file = tmp_path / folder / "wall.svg"
        with pytest.raises(error) as told:
            veldra.Composition("Wall").section().save(file)
        assert told.value.filename == str(file) and told.value.filename2 is None
    assert [each.name for each in tmp_path.iterdir()] == ["file"]
