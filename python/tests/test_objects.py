# SPDX-License-Identifier: GPL-2.0-or-later
"""Objects: fields, views, copies."""

import copy
import math
import pickle
from typing import Any

import pytest

import veldra

ALL = [
    veldra.Material("x"),
    veldra.Composition("x"),
    veldra.Tag("x"),
    veldra.Layer("x"),
    veldra.MaterialType("x"),
    veldra.CustomProperty("x"),
]


@pytest.mark.parametrize("made", ALL, ids=lambda made: type(made).__name__)
def test_every_field_is_an_attribute(made: Any) -> None:
    assert len(made.fields) >= 2
    for field in made.fields:
        attribute = field.name.replace(".", "_")
        value = getattr(made, attribute)
        assert isinstance(getattr(type(made), attribute).__doc__, str)
        if field.writable:
            setattr(made, attribute, value)
            assert getattr(made, attribute) == value
        else:
            with pytest.raises(AttributeError):
                setattr(made, attribute, value)


@pytest.mark.parametrize("made", ALL, ids=lambda made: type(made).__name__)
def test_other_attributes_are_refused(made: Any) -> None:
    with pytest.raises(AttributeError):
        made.colour_of_the_sky = "blue"


@pytest.mark.parametrize("made", ALL, ids=lambda made: type(made).__name__)
def test_pickling_is_refused_with_a_sentence(made: Any) -> None:
    with pytest.raises(TypeError, match="cannot be pickled: it belongs to a library"):
        pickle.dumps(made)
    with pytest.raises(TypeError, match="cannot be pickled"):
        made.__reduce__()


@pytest.mark.parametrize("made", ALL, ids=lambda made: type(made).__name__)
def test_a_copy_is_equal_and_another_object(made: Any) -> None:
    for copied in (copy.copy(made), copy.deepcopy(made)):
        assert copied is not made
        assert copied == made
        assert copied.id == 0
    assert made != "x"


@pytest.mark.parametrize("made", ALL, ids=lambda made: type(made).__name__)
def test_objects_have_no_hash_as_they_change(made: Any) -> None:
    with pytest.raises(TypeError, match="unhashable"):
        hash(made)


def test_repr_has_name_and_id(library: veldra.Library) -> None:
    brick = veldra.Material("Brick 'old'")
    assert repr(brick) == """<veldra.Material new "Brick 'old'">"""
    library.save(brick)
    assert repr(brick) == """<veldra.Material 1 "Brick 'old'">"""
    assert str(brick) == """material 'Brick 'old''"""


def test_values_of_each_kind_come_back(library: veldra.Library) -> None:
    brick = veldra.Material(
        "Brick",
        code="B-1",
        type="Masonry",
        function=veldra.Function.STRUCTURE,
        allow_custom_thickness=False,
        shading_color=veldra.Color(0.5, 0.25, 0.125),
        cut_pattern=veldra.Pattern("Concrete", 2.0, 45.0, True),
        surface_pattern_alignment=(1, -2),
        cut_layer="A-WALL",
        conductivity=0.5,
        tags=("a", "b"),
        thicknesses={12.5, 10},
        custom_values={"Fire class": "A1"},
    )
    library.save(brick)
    read = library.materials["Brick"]
    assert read == brick
    assert read.type == "Masonry"
    assert read.function is veldra.Function.STRUCTURE
    assert read.allow_custom_thickness is False
    assert read.shading_color == veldra.Color(0.5, 0.25, 0.125, 1.0)
    assert read.cut_pattern == veldra.Pattern("Concrete", 2.0, 45.0, True)
    assert read.surface_pattern is None
    assert read.surface_pattern_alignment == (1.0, -2.0)
    assert read.cut_layer == "A-WALL"
    assert read.conductivity == 0.5
    assert read.custom_values["Thermal conductivity [W/(m K)]"] == "0.5"
    assert read.tags == ["a", "b"]
    assert list(read.thicknesses) == [10.0, 12.5]
    assert library.layers["A-WALL"].name == "A-WALL"


def test_none_clears_what_can_be_absent() -> None:
    brick = veldra.Material("Brick", code="B-1", conductivity=0.5, type="Masonry")
    brick.code = brick.conductivity = brick.type = None
    assert (brick.code, brick.conductivity, brick.type) == (None, None, None)
    with pytest.raises(veldra.FieldError, match="name"):
        brick.name = None  # type: ignore[assignment]


@pytest.mark.parametrize(
    ("field", "value"),
    [
        ("name", 7),
        ("conductivity", "0.5"),
        ("conductivity", True),
        ("function", 1.5),
        ("function", "structure"),
        ("allow_custom_thickness", 1),
        ("tags", "exterior"),
        ("tags", [1]),
        ("thicknesses", 3),
        ("shading_color", (1, 2)),
        ("cut_pattern", "Concrete"),
        ("surface_pattern_alignment", 5),
        ("custom_values", {"a": 1}),
    ],
)
def test_a_value_of_another_type_is_refused_and_changes_nothing(field: str, value: object) -> None:
    brick = veldra.Material("Brick")
    before = copy.copy(brick)
    with pytest.raises(TypeError):
        setattr(brick, field, value)
    assert brick == before


@pytest.mark.parametrize("value", [-1, math.nan, math.inf])
def test_a_number_that_nothing_can_measure_names_field_and_object(value: float) -> None:
    brick = veldra.Material("Brick")
    with pytest.raises(veldra.FieldError, match="conductivity") as error:
        brick.conductivity = value
    assert error.value.field == "conductivity"
    assert error.value.object is brick
    with pytest.raises(veldra.FieldError):
        brick.thicknesses = [value]


def test_an_unknown_field_of_a_new_object_is_a_type_error() -> None:
    with pytest.raises(TypeError, match="'conductvity'"):
        veldra.Material("Brick", conductvity=0.5)


@pytest.mark.parametrize(
    "text", ["\ud800", "a\udfffb", "zero\0inside"], ids=["high", "low", "zero"]
)
def test_a_text_that_no_file_can_hold_is_a_clear_error(
    library: veldra.Library, text: str
) -> None:
    with pytest.raises(veldra.MalformedText, match="surrogate|zero"):
        veldra.Material(text)
    brick = veldra.Material("Brick")
    with pytest.raises(veldra.MalformedText):
        brick.comments = text
    with pytest.raises(veldra.MalformedText):
        brick.tags = [text]
    with pytest.raises(veldra.MalformedText):
        brick.custom_values[text] = "1"
    with pytest.raises(veldra.MalformedText):
        library.materials.get(text)
    with pytest.raises(veldra.MalformedText):
        library.locale = text
    with pytest.raises(veldra.MalformedText):
        veldra.create(text)


@pytest.mark.parametrize("text", ["Ziegel", "Глина", "煉瓦", "\U0001f9f1", "e\u0301", " "])
def test_any_other_text_comes_back(library: veldra.Library, text: str) -> None:
    library.save(veldra.Material(text, comments=text))
    assert library.materials[text].comments == text


def test_tags_are_sorted_and_mark_dirty(library: veldra.Library) -> None:
    brick = library.save(veldra.Material("Brick", tags=["b", "C", "a"]))
    brick.tags.sort()
    assert brick.tags == ["C", "a", "b"] and brick.dirty
    brick.tags.sort(key=str.lower, reverse=True)
    assert brick.tags == ["C", "b", "a"]


def test_custom_values_are_joined_as_dictionaries_are() -> None:
    brick = veldra.Material("Brick", custom_values={"Fire class": "A1", "Source": "old"})
    assert brick.custom_values | {"Source": "new"} == {"Fire class": "A1", "Source": "new"}
    assert {"Source": "new"} | brick.custom_values == {"Source": "old", "Fire class": "A1"}
    brick.custom_values |= {"Source": "new"}
    assert dict(brick.custom_values) == {"Fire class": "A1", "Source": "new"}
    with pytest.raises(TypeError):
        brick.custom_values | ["Source"]  # type: ignore[operator]


def test_tags_write_through_and_mark_dirty(library: veldra.Library) -> None:
    brick = library.save(veldra.Material("Brick", tags=["a"]))
    assert not brick.dirty
    brick.tags.append("b")
    assert brick.dirty
    brick.tags += ["c"]
    brick.tags[0] = "z"
    del brick.tags[1]
    brick.tags.insert(1, "y")
    brick.tags.remove("c")
    assert brick.tags == ["z", "y"]
    assert brick.tags[::-1] == ["y", "z"]
    brick.save()
    assert list(library.materials["Brick"].tags) == ["z", "y"]


def test_thicknesses_write_through_and_mark_dirty(library: veldra.Library) -> None:
    oak = library.save(veldra.Material("Oak", thicknesses=[22]))
    oak.thicknesses.add(16)
    assert oak.dirty
    oak.thicknesses.discard(22)
    oak.thicknesses.discard(99)
    assert set(oak.thicknesses) == {16.0}
    assert 16 in oak.thicknesses
    assert oak.thicknesses | {1.0} == {1.0, 16.0}
    oak.save()
    assert list(library.materials["Oak"].thicknesses) == [16.0]


def test_custom_values_write_through_and_mark_dirty(library: veldra.Library) -> None:
    brick = library.save(veldra.Material("Brick"))
    brick.custom_values["Fire class"] = "A1"
    assert brick.dirty
    brick.custom_values.update({"Origin": "local"})
    del brick.custom_values["Origin"]
    with pytest.raises(KeyError):
        del brick.custom_values["Origin"]
    with pytest.raises(KeyError):
        brick.custom_values["Origin"]
    brick.save()
    assert dict(library.materials["Brick"].custom_values) == {"Fire class": "A1"}
    assert library.properties["Fire class"].object_type == "material"
    brick.custom_values = {"Other": "1"}
    assert dict(brick.custom_values) == {"Other": "1"}


def wall_of(*names: str) -> veldra.Composition:
    return veldra.Composition(
        "Wall", layers=[(veldra.Material(name), index + 1) for index, name in enumerate(names)]
    )


def names_of(wall: veldra.Composition) -> list[str]:
    return [layer.material.name for layer in wall.layers]


def test_layers_are_a_list_with_slices() -> None:
    wall = wall_of("a", "b", "c", "d")
    assert len(wall.layers) == 4
    assert wall.layers[-1].material.name == "d"
    assert [layer.thickness for layer in wall.layers[1:3]] == [2.0, 3.0]
    del wall.layers[1]
    assert names_of(wall) == ["a", "c", "d"]
    wall.layers[1:2] = [(veldra.Material("x"), 10), (veldra.Material("y"), 20)]
    assert names_of(wall) == ["a", "x", "y", "d"]
    wall.layers.insert(0, veldra.CompositionLayer(veldra.Material("first"), 5))
    wall.layers.insert(-1, (veldra.Material("last but one"), 5))
    assert names_of(wall) == ["first", "a", "x", "y", "last but one", "d"]
    del wall.layers[::2]
    assert names_of(wall) == ["a", "y", "d"]
    wall.layers.move(2, 0)
    assert names_of(wall) == ["d", "a", "y"]
    wall.layers.pop()
    wall.layers.reverse()
    assert names_of(wall) == ["a", "d"]
    wall.layers.clear()
    assert names_of(wall) == []


@pytest.mark.parametrize("index", [4, -5])
def test_a_layer_that_is_not_there_is_an_index_error(index: int) -> None:
    wall = wall_of("a", "b", "c", "d")
    with pytest.raises(IndexError):
        wall.layers[index]
    with pytest.raises(IndexError):
        del wall.layers[index]


def test_a_layer_that_is_held_moves_with_the_others_and_outlives_its_place() -> None:
    wall = wall_of("a", "b", "c", "d")
    layer = wall.layers[2]
    assert wall.layers[2] is layer
    wall.layers.insert(0, (veldra.Material("first"), 1))
    wall.layers.move(1, 4)
    del wall.layers[0]
    assert names_of(wall) == ["b", "c", "d", "a"]
    layer.thickness = 30
    assert wall.layers[1].thickness == 30.0
    wall.layers.remove(layer)
    assert names_of(wall) == ["b", "d", "a"]
    layer.thickness = 40
    assert (layer.material.name, layer.thickness) == ("c", 40.0)
    assert [each.thickness for each in wall.layers] == [2.0, 4.0, 1.0]


def test_layers_are_exchanged_as_in_a_list() -> None:
    wall = wall_of("a", "b", "c")
    wall.layers[0], wall.layers[2] = wall.layers[2], wall.layers[0]
    assert names_of(wall) == ["c", "b", "a"]


def test_a_layer_writes_through_and_marks_dirty(library: veldra.Library) -> None:
    wall = library.save(wall_of("a", "b"))
    layer = wall.layers[1]
    assert not wall.dirty
    layer.thickness = 240
    assert wall.dirty
    layer.function = veldra.Function.STRUCTURE
    layer.material = library.save(veldra.Material("other"))
    wall.save()
    read = library.compositions["Wall"].layers[1]
    assert (read.thickness, read.function, read.material.name) == (240.0, 1, "other")
    assert read.function is veldra.Function.STRUCTURE
    alone = layer.copy()
    alone.thickness = 1
    assert layer.thickness == 240.0
    assert alone != layer


def test_a_material_of_a_layer_is_the_object_that_was_given() -> None:
    brick = veldra.Material("Brick")
    wall = veldra.Composition("Wall", layers=[(brick, 240)])
    assert wall.layers[0].material is brick
    with pytest.raises(TypeError, match="veldra.Material"):
        wall.layers[0].material = "Brick"  # type: ignore[assignment]


def test_inserting_moves_the_core_with_its_layers() -> None:
    wall = wall_of("render", "wool", "brick", "plaster")
    wall.last_core_layer = 2
    wall.first_core_layer = 1
    wall.structural_layer = 2
    wall.layers.insert(0, (veldra.Material("paint"), 1))
    assert (wall.first_core_layer, wall.structural_layer, wall.last_core_layer) == (2, 3, 3)
    with pytest.raises(veldra.FieldError, match="layers"):
        wall.last_core_layer = 9


def test_the_type_of_a_composition_is_an_enumeration() -> None:
    wall = veldra.Composition("Wall", type="wall")
    assert wall.type is veldra.CompositionType.WALL
    wall.type = veldra.CompositionType.ROOF
    assert wall.type == "roof"
    with pytest.raises(veldra.FieldError, match="wall"):
        wall.type = "wal"


def test_figures_follow_from_the_layers() -> None:
    brick = veldra.Material("Brick", conductivity=0.5, density=1000)
    wall = veldra.Composition("Wall", type="wall", layers=[(brick, 250)])
    assert wall.U == pytest.approx(1 / (0.13 + 0.5 + 0.04))
    assert wall.u_value() == wall.U
    assert wall.R == pytest.approx(0.67)
    assert wall.mass == pytest.approx(250)
    assert wall.thickness == wall.total_thickness == 250.0
    assert wall.u_value(boundary="upward, outdoors") == pytest.approx(1 / (0.1 + 0.5 + 0.04))
    with pytest.raises(veldra.InvalidValue, match="sideways"):
        wall.u_value(boundary="sideways")
    with pytest.raises(AttributeError):
        wall.U = 0.2  # type: ignore[misc]


def test_figures_are_in_the_unit_of_the_library() -> None:
    with veldra.create(":memory:", unit="in") as library:
        brick = veldra.Material("Brick", conductivity=0.5)
        wall = library.save(veldra.Composition("Wall", type="wall", layers=[(brick, 10)]))
        assert wall.heat()["layers"][0]["resistance"] == pytest.approx(0.254 / 0.5)
        assert wall.U == pytest.approx(1 / (0.17 + 0.254 / 0.5))


def test_a_figure_that_is_not_known_says_why() -> None:
    wall = wall_of("a")
    assert wall.U is None
    assert wall.u_value() is None
    heat = wall.heat()
    assert heat["faults"]
    assert heat["layers"][0]["resistance"] is None


def test_a_deep_copy_belongs_to_no_library(library: veldra.Library) -> None:
    with veldra.create(":memory:") as other:
        wall = other.save(
            veldra.Composition(
                "Wall",
                layers=[(veldra.Material("Brick", type="Masonry", tags=["t"], cut_layer="L"), 1)] * 2,
                custom_values={"Fire class": "A1"},
                entity_layer="E",
            )
        )
        wall = other.compositions["Wall"]
    copied = copy.deepcopy(wall)
    assert copied == wall
    assert copied.layers[0].material is copied.layers[1].material
    library.save(copied)
    assert library.compositions["Wall"] == wall
    assert library.materials["Brick"].type == "Masonry"


def test_a_property_is_for_a_kind(library: veldra.Library) -> None:
    library.save(veldra.CustomProperty("Fire class", "composition"))
    library.save(veldra.CustomProperty("Any", None))
    assert library.properties["Fire class"].object_type == "composition"
    assert library.properties["Any"].object_type is None
    with pytest.raises(ValueError, match="'tag'"):
        veldra.CustomProperty("x", "tag")


def test_an_object_without_a_value_is_refused(library: veldra.Library) -> None:
    class Early(veldra.Material):
        def __init__(self) -> None:
            self.comments = "before the base"

    with pytest.raises(TypeError, match="__init__"):
        Early()
    for made in ALL:
        empty = type(made).__new__(type(made))
        uses: list[Any] = [repr, lambda it: it.name, lambda it: it.save(), copy.copy, library.save]
        for use in uses:
            with pytest.raises(TypeError):
                use(empty)
    with pytest.raises(TypeError, match="__init__"):
        veldra.Library.__new__(veldra.Library).check()


def test_classes_of_a_host_are_saved_as_what_they_are(library: veldra.Library) -> None:
    class Brick(veldra.Material):
        def __init__(self) -> None:
            super().__init__("Brick", conductivity=0.5)
            self.price = 3

    brick = library.save(Brick())
    assert brick.price == 3
    assert library.materials["Brick"] == brick


WRONG_LAYERS: list[tuple[Any, type[Exception], str]] = [
    ({"thickness": -1}, veldra.FieldError, "'-1' is no value for 'thickness'"),
    ({"thickness": math.nan}, veldra.FieldError, "0 or greater"),
    ({"thickness": math.inf}, veldra.FieldError, "0 or greater"),
    ({"thickness": "5"}, TypeError, "thickness takes a float, not '5'"),
    ({"thickness": True}, TypeError, "thickness takes a float, not True"),
    ({"function": "structure"}, TypeError, "function takes an int, .* not 'structure'"),
    ({"function": 1.5}, TypeError, "function takes an int"),
    ({"function": 2**40}, veldra.FieldError, "out of range"),
]


@pytest.mark.parametrize(("wrong", "error", "sentence"), WRONG_LAYERS)
def test_a_layer_takes_no_value_that_a_field_would_not(
    wrong: dict[str, Any], error: type[Exception], sentence: str
) -> None:
    brick = veldra.Material("Brick")
    wall = veldra.Composition("Wall", layers=[(brick, 240, 1)])
    arguments: dict[str, Any] = {"material": brick, "thickness": 1, **wrong}
    with pytest.raises(error, match=sentence):
        veldra.CompositionLayer(**arguments)
    ((name, value),) = wrong.items()
    with pytest.raises(error, match=sentence):
        setattr(wall.layers[0], name, value)
    assert (wall.layers[0].thickness, wall.layers[0].function) == (240, 1)


@pytest.mark.parametrize("wrong", [veldra.Material("Brick"), "Brick", 5, (), (1, 2, 3, 4), None])
def test_what_is_no_layer_is_told_so(wrong: Any) -> None:
    wall = veldra.Composition("Wall")
    with pytest.raises(TypeError, match="a layer is a veldra.CompositionLayer, or a tuple"):
        wall.layers.append(wrong)
    assert len(wall.layers) == 0


def test_a_composition_whose_layers_are_gone_is_as_a_new_one() -> None:
    brick = veldra.Material("Brick")
    wall = veldra.Composition("Wall", layers=[(brick, 1), (brick, 2)])
    wall.last_core_layer = 1
    wall.structural_layer = 1
    wall.layers.clear()
    indices = ("first_core_layer", "last_core_layer", "structural_layer")
    assert [getattr(wall, each) for each in indices] == [0, 0, 0]
    wall.layers = [(brick, 1), (brick, 2)]
    assert [getattr(wall, each) for each in indices] == [0, 0, 0]


@pytest.mark.parametrize(("name", "value"), [("Year", 1990), (5, "x"), ("Year", None)])
def test_a_custom_value_is_a_text(name: Any, value: Any) -> None:
    brick = veldra.Material("Brick")
    with pytest.raises(TypeError, match="a custom property and its value are a str each"):
        brick.custom_values[name] = value
    assert not brick.custom_values


def test_numbers_of_numpy_are_numbers() -> None:
    numpy = pytest.importorskip("numpy")
    brick = veldra.Material("Brick")
    brick.function = numpy.int64(1)
    brick.density = numpy.float32(1400)
    brick.allow_custom_thickness = numpy.bool_(False)
    brick.thicknesses = numpy.array([115, 240])
    assert (brick.function, brick.density, brick.allow_custom_thickness) == (1, 1400, False)
    wall = veldra.Composition("Wall", layers=[(brick, numpy.float64(115), numpy.int32(1))])
    assert (wall.layers[0].thickness, wall.layers[0].function) == (115, 1)


@pytest.mark.parametrize("kind", [veldra.Material, veldra.Composition, veldra.CustomProperty])
def test_an_object_without_a_name_is_told_by_its_class(kind: Any) -> None:
    with pytest.raises(TypeError, match=rf"^{kind.__name__}\.__init__\(\) missing 1 .*'name'"):
        kind()
