# SPDX-License-Identifier: GPL-2.0-or-later
"""Tables, columns and data frames: the way back into a library goes through a plan."""

import gc
from pathlib import Path
from typing import Any

import pytest

import veldra


@pytest.fixture
def office(library: veldra.Library) -> veldra.Library:
    for name, density in (("Brick", 1400), ("Slate", None), ("Wool", 60)):
        library.save(veldra.Material(name, density=density, tags=["old", "a;b"]))
    library.materials["Brick"].custom_values["Fire class"] = "A1"
    brick = library.materials["Brick"]
    brick.custom_values["Fire class"] = "A1"
    brick.thicknesses = [115, 240]
    brick.shading_color = veldra.Color(1, 2, 3)
    brick.surface_pattern = veldra.Pattern("Concrete", 2)
    brick.save()
    return library


def changes_of(plan: veldra.Plan) -> dict[str, list[str]]:
    return {
        entry.name: [change.field for change in entry.changes]
        for entry in plan
        if entry.source.kind is veldra.Kind.MATERIAL and entry.decision != "equal"
    }


def test_a_table_that_is_written_and_read_changes_nothing(
    office: veldra.Library, tmp_path: Path
) -> None:
    office.write(tmp_path / "materials.csv")
    source = office.read_tables(tmp_path / "materials.csv")
    assert source.reports[0]["problems"] == []
    assert not office.plan(source).changes_anything


def test_what_somebody_changes_in_a_table_changes_in_the_library(
    office: veldra.Library, tmp_path: Path
) -> None:
    table = tmp_path / "materials.csv"
    table.write_text("kind;name;density\nmaterial;Brick;1500,5\nmaterial;Render;1800\n")
    plan = office.plan(office.read_tables(table, separator=";", decimal=","))
    assert changes_of(plan) == {
        "Brick": ["custom_values.Density [kg/m3]"],
        "Render": [],
    }
    plan.apply()
    assert office.materials["Brick"].density == 1500.5
    assert office.materials["Render"].density == 1800


def test_rows_that_cannot_be_read_are_told(office: veldra.Library, tmp_path: Path) -> None:
    table = tmp_path / "materials.csv"
    table.write_text("kind,name,density\nmaterial,Brick,heavy\nmaterial,Wool,70\n")
    source = office.read_tables(table)
    (problem,) = source.reports[0]["problems"]
    assert "line 2" in problem and "heavy" in problem
    office.plan(source).apply()
    assert office.materials["Wool"].density == 70


def test_a_table_is_not_read_like_other_files(tmp_path: Path) -> None:
    table = tmp_path / "materials.csv"
    table.write_text("kind,name,density\nmaterial,Brick,1400\n")
    with pytest.raises(veldra.SourceError, match="this is a table"):
        veldra.read(table)


def test_columns_that_go_back_as_they_came_change_nothing(office: veldra.Library) -> None:
    for fields in (None, ["id", "density"], ["name", "density"]):
        plan = office.plan_columns("materials", office.materials.columns(fields))
        assert not plan.changes_anything, fields


def test_one_of_several_columns_for_a_figure_may_change(office: veldra.Library) -> None:
    columns = office.materials.columns()
    assert {"density", "Density [kg/m3]", "id"} <= set(columns)
    columns["density"][columns["name"].index("Brick")] = 1600
    office.plan_columns("materials", columns).apply()
    assert office.materials["Brick"].density == 1600


def test_values_of_every_class_go_back(office: veldra.Library) -> None:
    columns = office.materials.columns(
        ["id", "tags", "thicknesses", "shading_color", "surface_pattern", "allow_custom_thickness"]
    )
    place = columns["id"].index(office.materials["Wool"].id)
    columns["tags"][place] = ["x; y", "'z"]
    columns["thicknesses"][place] = [12.5, 100]
    columns["shading_color"][place] = veldra.Color(9, 8, 7)
    columns["surface_pattern"][place] = veldra.Pattern("Wood", 3, 45, True)
    columns["allow_custom_thickness"][place] = not columns["allow_custom_thickness"][place]
    wanted = not office.materials["Wool"].allow_custom_thickness
    office.plan_columns("materials", columns).apply()
    wool = office.materials["Wool"]
    assert wool.tags == ["x; y", "'z"] and sorted(wool.thicknesses) == [12.5, 100]
    assert wool.shading_color == veldra.Color(9, 8, 7)
    assert wool.surface_pattern == veldra.Pattern("Wood", 3, 45, True)
    assert wool.allow_custom_thickness is wanted


def test_nothing_clears_a_field(office: veldra.Library) -> None:
    plan = office.plan_columns(
        "materials", {"name": ["Brick"], "density": [None], "custom_values.Fire class": [None]}
    )
    plan.apply()
    assert office.materials["Brick"].density is None
    assert "Fire class" not in office.materials["Brick"].custom_values


def test_a_property_that_the_library_lacks_is_made(office: veldra.Library) -> None:
    office.plan_columns(
        "materials", {"name": ["Brick", "Wool"], "custom_values.Origin": ["'local'", None]}
    ).apply()
    assert office.materials["Brick"].custom_values["Origin"] == "'local'"
    assert "Origin" not in office.materials["Wool"].custom_values


def test_a_row_without_an_id_is_a_new_object(office: veldra.Library) -> None:
    brick = office.materials["Brick"].id
    office.plan_columns(
        "materials", {"id": [brick, None], "name": ["Clinker", "Tile"], "density": [1400, 2000]}
    ).apply()
    assert office.materials["Clinker"].id == brick
    assert office.materials["Tile"].density == 2000


def test_columns_of_build_ups_go_back(office: veldra.Library) -> None:
    office.save(veldra.Composition("Wall", layers=[(office.materials["Brick"], 240)]))
    columns = office.compositions.columns()
    assert not office.plan_columns("compositions", columns).changes_anything
    columns["comments"] = ["checked"]
    office.plan_columns("compositions", columns).apply()
    assert office.compositions["Wall"].comments == "checked"
    assert office.compositions["Wall"].layers[0].thickness == 240


WRONG: list[tuple[dict[str, list[Any]], type[Exception], str]] = [
    ({"density": [1]}, ValueError, "'id' or 'name'"),
    ({"name": ["Brick", "Wool"], "density": [1]}, ValueError, "not equally long"),
    ({"name": ["Brick"], "weight of it": [1]}, veldra.UnknownField, "weight of it"),
    ({"name": ["Brick"], "density": ["heavy"]}, TypeError, "density takes a float"),
    ({"name": ["Brick"], "density": [-1]}, veldra.FieldError, "0 or greater"),
    ({"name": ["Brick"], "comments": ["\ud800"]}, veldra.MalformedText, "surrogate"),
    ({"name": ["Brick"], "custom_values.New": [1]}, TypeError, "is a str, not 1"),
    ({"name": [None], "density": [1]}, veldra.SourceError, "the name is missing"),
    ({"name": ["Brick", "Brick"], "density": [1, 2]}, veldra.SourceError, "the same object"),
]


@pytest.mark.parametrize(("columns", "error", "sentence"), WRONG)
def test_columns_that_make_no_sense_are_refused(
    office: veldra.Library, columns: Any, error: type[Exception], sentence: str
) -> None:
    with pytest.raises(error, match=sentence):
        office.plan_columns("materials", columns)
    assert office.materials["Brick"].density == 1400


def test_what_can_only_be_read_cannot_change(office: veldra.Library) -> None:
    office.save(veldra.Composition("Wall", layers=[(office.materials["Brick"], 240)]))
    with pytest.raises(veldra.SourceError, match="total_thickness"):
        office.plan_columns("compositions", {"name": ["Wall"], "total_thickness": [5]})


def test_tables_are_of_materials_and_compositions(office: veldra.Library) -> None:
    with pytest.raises(ValueError, match="of materials or of compositions"):
        office.plan_columns("tags", {"name": ["old"]})


def test_a_frame_goes_back_as_it_came(office: veldra.Library) -> None:
    pytest.importorskip("pandas")
    frame = office.to_pandas("materials")
    assert not office.plan_from_pandas("materials", frame).changes_anything


def test_what_changes_in_a_frame_changes_in_the_library(office: veldra.Library) -> None:
    pandas = pytest.importorskip("pandas")
    frame = office.to_pandas("materials").set_index("name", drop=False)
    frame.loc["Wool", "density"] *= 2
    frame.loc["Brick", "density"] = float("nan")
    frame.loc["Slate", "allow_custom_thickness"] = True
    new = pandas.DataFrame({"name": ["Render"], "density": [1800.0], "function": [1]})
    office.plan_from_pandas("materials", pandas.concat([frame, new])).apply()
    assert office.materials["Wool"].density == 120
    assert office.materials["Brick"].density is None
    assert office.materials["Slate"].allow_custom_thickness
    assert office.materials["Render"].density == 1800
    assert office.materials["Render"].function == veldra.Function.STRUCTURE


def test_figures_of_a_frame_are_numbers(office: veldra.Library) -> None:
    pytest.importorskip("pandas")
    frame = office.to_pandas("materials", ["name", "density"])
    assert frame["density"].sum() == 1460
    assert frame["density"].dtype.kind == "f"


def test_colours_and_points_of_each_object_are_its_own(office: veldra.Library) -> None:
    red, blue = veldra.Color(1, 0, 0), veldra.Color(0, 0, 1)
    for name, color, point in (("Brick", red, 1), ("Slate", blue, 2), ("Wool", red, 1)):
        material = office.materials[name]
        material.shading_color = color
        material.surface_pattern_alignment = veldra.Point(point, 0)
        material.save()
    columns = office.materials.columns(["shading_color", "surface_pattern_alignment"])
    assert columns["shading_color"] == [red, blue, red]
    assert [point.x for point in columns["surface_pattern_alignment"]] == [1, 2, 1]


def everything(office: veldra.Library) -> None:
    wall = veldra.Composition("Wall", layers=[(office.materials["Brick"], 240)], type="wall")
    wall.custom_values["Code"] = "W1"
    office.save(wall)
    brick = office.materials["Brick"]
    brick.cut_layer = "Walls"
    brick.save()


@pytest.mark.parametrize("kind", [kind for kind in veldra.Kind if kind is not veldra.Kind.ASSET])
def test_a_frame_says_what_the_columns_do(office: veldra.Library, kind: veldra.Kind) -> None:
    pandas = pytest.importorskip("pandas")
    everything(office)
    columns = office.collection(kind).columns()
    frame = office.to_pandas(kind)
    assert list(frame.columns) == list(columns) and len(frame) == len(columns["name"]) > 0
    for name, values in columns.items():
        for value, shown in zip(values, frame[name]):
            if value is None:
                assert shown is None or shown != shown, name
            else:
                assert shown == value, name
        assert frame[name].dtype == pandas.Series(values).dtype or values == [None] * len(values), name


def test_figures_that_no_object_has_are_numbers_as_well(office: veldra.Library) -> None:
    pytest.importorskip("pandas")
    frame = office.to_pandas("materials", ["conductivity", "allow_custom_thickness", "id", "code"])
    assert frame["conductivity"].isna().all()
    assert [dtype.kind for dtype in frame.dtypes] == ["f", "b", "i", "O"]
    assert (frame["conductivity"] > 0).sum() == 0


def test_an_empty_frame_has_the_types_of_a_full_one(office: veldra.Library) -> None:
    pytest.importorskip("pandas")
    fields = ["name", "density", "function", "allow_custom_thickness", "tags"]
    full = office.to_pandas("materials", fields)
    with veldra.create(":memory:") as other:
        empty = other.to_pandas("materials", fields)
    assert len(empty) == 0
    assert list(empty.dtypes) == list(full.dtypes)


def test_a_frame_can_be_changed(office: veldra.Library) -> None:
    pytest.importorskip("pandas")
    frame = office.to_pandas("materials")
    frame.loc[0, "density"] = 5.0
    frame.loc[1, "name"] = "Schist"
    frame["tags"][2].append("new")
    assert (frame["density"][0], frame["name"][1], frame["tags"][2][-1]) == (5.0, "Schist", "new")


def test_lists_of_objects_that_have_the_same_are_their_own(office: veldra.Library) -> None:
    pytest.importorskip("pandas")
    for tags in (office.materials.columns(["tags"])["tags"], office.to_pandas("materials")["tags"]):
        tags[0].append("only here")
        assert [len(each) for each in tags] == [3, 2, 2]


def test_reading_columns_leaves_the_search_for_garbage_as_it_was(office: veldra.Library) -> None:
    for enabled in (False, True):
        (gc.enable if enabled else gc.disable)()
        office.materials.columns()
        assert gc.isenabled() is enabled


def test_equal_texts_of_columns_take_memory_once(library: veldra.Library) -> None:
    with library.transaction():
        for number in range(10):
            library.save(veldra.Material(f"M{number}", manufacturer="maker and sons"))
    columns = library.materials.columns(["name", "manufacturer"])
    assert len(set(columns["name"])) == 10
    assert len({id(text) for text in columns["manufacturer"]}) == 1


def test_a_zero_below_zero_stays_one(library: veldra.Library) -> None:
    for name, density in (("A", 0.0), ("B", -0.0)):
        library.save(veldra.Material(name, density=density))
    read = library.materials.columns(["density"])["density"]
    assert [str(each) for each in read] == ["0.0", "-0.0"]
