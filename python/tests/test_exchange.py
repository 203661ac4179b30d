# SPDX-License-Identifier: GPL-2.0-or-later
"""Other formats: what is written reads back, and what is lost is told."""

import json
import os
from pathlib import Path

import pytest

import veldra


@pytest.fixture
def office(library: veldra.Library) -> veldra.Library:
    brick = veldra.Material("Brick", conductivity=0.5, density=1400, specific_heat=900)
    wool = veldra.Material("Wool", conductivity=0.035, density=60, tags=["insulation"])
    library.save(veldra.Composition("Wall", type="wall", layers=[(wool, 160), (brick, 175)]))
    library.save(veldra.Material("Slate"))
    return library


def test_formats_are_listed_with_their_endings() -> None:
    by_name = {format.name: format for format in veldra.formats()}
    assert by_name["veldra"].readable and by_name["veldra"].writable
    assert by_name["veldra"].endings == ["json"]
    assert not by_name["OpenStudio standards"].writable
    assert "csv" in by_name["CSV"].endings
    assert {"epJSON", "IDF"} <= set(by_name)


def test_what_is_written_as_json_reads_back_to_the_same(
    office: veldra.Library, tmp_path: Path
) -> None:
    written = office.write(tmp_path / "office.json")
    assert written.whole
    source = veldra.read(tmp_path / "office.json")
    assert not office.plan(source).changes_anything
    assert len(source.library.materials) == 3


def test_the_format_is_that_of_the_ending_or_the_one_that_is_said(
    office: veldra.Library, tmp_path: Path
) -> None:
    office.write(str(tmp_path / "office.epJSON"))
    office.write(os.fsencode(tmp_path / "same"), "epJSON")
    text = (tmp_path / "office.epJSON").read_bytes()
    assert text == (tmp_path / "same").read_bytes()
    assert "Brick" in json.loads(text)["Material"]


def test_what_a_format_has_no_place_for_is_told(office: veldra.Library, tmp_path: Path) -> None:
    written = office.write(tmp_path / "office.epJSON")
    assert not written.whole
    assert written.written["Material"] == 2
    assert ("material", "tags", 1) in written.not_written
    assert any("Slate" in problem for problem in written.problems)


def test_selected_objects_are_written_with_those_to_which_they_refer(
    office: veldra.Library, tmp_path: Path
) -> None:
    office.locale = "de_AT"
    office.write(tmp_path / "a.json", select=office.compositions.where("type = wall"))
    part = json.loads((tmp_path / "a.json").read_text(encoding="utf-8"))
    assert [each["name"] for each in part["materials"]] == ["Brick", "Wool"]
    assert [each["name"] for each in part["compositions"]] == ["Wall"]
    assert part["library"]["locale"] == "de_AT"
    assert part["material_types"] == ["Generic"]

    key = veldra.Key(veldra.Kind.MATERIAL, office.materials["Slate"].id)
    office.write(tmp_path / "b.json", select=[key])
    part = json.loads((tmp_path / "b.json").read_text(encoding="utf-8"))
    assert [each["name"] for each in part["materials"]] == ["Slate"]


def test_objects_keep_their_ids_whatever_is_written_beside_them(
    office: veldra.Library, tmp_path: Path
) -> None:
    slate = office.materials["Slate"]
    office.write(tmp_path / "a.csv", select=[slate])
    text = (tmp_path / "a.csv").read_text(encoding="utf-8")
    assert f"id [{office.guid}]" in text
    (tmp_path / "a.csv").write_text(text.replace("Slate", "Schist"), encoding="utf-8")
    office.plan(office.read_tables(tmp_path / "a.csv")).apply()
    assert office.materials["Schist"].id == slate.id


def test_tables_have_their_signs(office: veldra.Library, tmp_path: Path) -> None:
    written = office.write(
        tmp_path / "layers.csv", table="layers", separator=";", decimal=",", progress=None
    )
    assert written.written == {"layer": 2}
    lines = (tmp_path / "layers.csv").read_text(encoding="utf-8").splitlines()
    assert lines[1].startswith("layer;Wall;1;Wool;160;")
    with pytest.raises(ValueError, match="';;' is not one sign"):
        office.write(tmp_path / "layers.csv", separator=";;")


def test_a_format_that_cannot_be_written_leaves_no_file(
    office: veldra.Library, tmp_path: Path
) -> None:
    for name, format in (("a.docx", None), ("a", None), ("a.json", "docx")):
        with pytest.raises(veldra.InvalidValue, match="there is no format"):
            office.write(tmp_path / name, format)
        assert not (tmp_path / name).exists()
    with pytest.raises(veldra.InvalidValue, match="no table 'walls'"):
        office.write(tmp_path / "a.csv", table="walls")
    assert not (tmp_path / "a.csv").exists()


def test_a_library_is_never_written_over_itself(office: veldra.Library, file: Path) -> None:
    before = file.read_bytes()
    with pytest.raises(veldra.SameFile):
        office.write(file, "json")
    assert file.read_bytes() == before


def test_progress_is_called_for_each_object_and_ends_the_writing(
    office: veldra.Library, tmp_path: Path
) -> None:
    calls: list[int] = []
    office.write(tmp_path / "a.csv", progress=lambda: calls.append(1))
    assert len(calls) == 3

    def stop() -> None:
        raise LookupError("enough")

    (tmp_path / "b.csv").write_text("before")
    with pytest.raises(LookupError, match="enough"):
        office.write(tmp_path / "b.csv", progress=stop)
    assert (tmp_path / "b.csv").read_text() == "before"


def test_progress_ends_the_reading(office: veldra.Library, tmp_path: Path) -> None:
    office.write(tmp_path / "a.json")
    calls: list[int] = []
    veldra.read(tmp_path / "a.json", progress=lambda: calls.append(1))
    assert len(calls) == 4

    def stop() -> None:
        raise LookupError("enough")

    with pytest.raises(LookupError, match="enough"):
        veldra.read(tmp_path / "a.json", progress=stop)


def test_a_library_is_written_within_its_transaction(
    office: veldra.Library, tmp_path: Path
) -> None:
    with office.transaction():
        office.save(veldra.Material("Render"))
        office.write(tmp_path / "a.json")
    assert "Render" in (tmp_path / "a.json").read_text(encoding="utf-8")


def test_a_closed_library_cannot_be_written(office: veldra.Library, tmp_path: Path) -> None:
    office.close()
    with pytest.raises(veldra.Closed):
        office.write(tmp_path / "a.json")


def test_a_file_that_is_not_there_is_missing(library: veldra.Library, tmp_path: Path) -> None:
    missing = tmp_path / "missing.json"
    for read in (veldra.read, library.read_tables):
        with pytest.raises(FileNotFoundError, match="there is no such file") as told:
            read(missing)
        assert isinstance(told.value, veldra.SourceMissing) and told.value.file == str(missing)
    with pytest.raises(veldra.SourceError):
        veldra.read(tmp_path)
