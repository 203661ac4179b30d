# SPDX-License-Identifier: GPL-2.0-or-later
"""Opening, collections, and what a library does as a whole."""

import gc
import pickle
import sqlite3
import sys
import types
from contextlib import closing
from pathlib import Path
from typing import Any, Callable

import pytest

import veldra


def fill(library: veldra.Library, count: int) -> None:
    with library.transaction():
        for number in range(count):
            library.save(veldra.Material(f"M{number}", conductivity=number / 1000))


def test_a_library_is_made_and_opened_by_a_path(file: Path) -> None:
    with veldra.create(file, unit="in", guid="3c6c7ea1-3c5b-4d5a-9b3f-2d1c4b5a6978") as made:
        assert made.unit is veldra.Unit.INCHES
        assert made.file == str(file)
    with veldra.open(str(file), read_only=True) as opened:
        assert opened.guid == "3c6c7ea1-3c5b-4d5a-9b3f-2d1c4b5a6978"
        assert opened.read_only
    with veldra.open(bytes(file)) as opened:
        assert not opened.read_only


def test_a_file_that_is_missing_is_an_os_error_with_its_name(tmp_path: Path) -> None:
    with pytest.raises(veldra.CannotOpen) as error:
        veldra.open(tmp_path / "missing.lib")
    assert isinstance(error.value, FileNotFoundError)
    assert isinstance(error.value, veldra.FileMissing)
    assert error.value.file == str(tmp_path / "missing.lib")
    assert str(error.value) == f"'{tmp_path}/missing.lib': there is no such file"
    assert not (tmp_path / "missing.lib").exists()


def test_another_file_is_no_library(tmp_path: Path) -> None:
    text = tmp_path / "notes.txt"
    text.write_text("no library at all, and long enough to be taken for something else\n" * 20)
    with pytest.raises(veldra.NotALibrary) as error:
        veldra.open(text)
    assert error.value.file == str(text)
    assert veldra.recognise(text).kind is veldra.FileKind.OTHER


def test_files_are_recognised_without_being_changed(file: Path) -> None:
    assert veldra.recognise(file) == (veldra.FileKind.MISSING, 0)
    veldra.create(file).close()
    assert veldra.recognise(file) == (veldra.FileKind.LIBRARY, 150302)


def test_locale_and_region_are_written_at_once(file: Path) -> None:
    with veldra.create(file) as library:
        library.locale = "de_CH"
        library.region = "Ostschweiz"
    with veldra.open(file) as library:
        assert (library.locale, library.region) == ("de_CH", "Ostschweiz")


def test_a_name_that_is_not_there_suggests_the_nearest(library: veldra.Library) -> None:
    library.save(veldra.Material("Brick"))
    with pytest.raises(KeyError, match="did you mean 'Brick'") as error:
        library.materials["Birck"]
    assert isinstance(error.value, veldra.NotFound)
    assert error.value.object == "Birck"
    assert library.materials.get("Birck") is None
    assert "Brick" in library.materials
    assert "Birck" not in library.materials
    assert 7 not in library.materials


def test_an_id_that_is_not_there_is_named(library: veldra.Library) -> None:
    with pytest.raises(veldra.NotFound, match="material 7"):
        library.materials.by_id(7)


@pytest.mark.parametrize("id", [-1, 2**32, 2**80])
def test_no_object_has_a_number_that_is_no_id(library: veldra.Library, id: int) -> None:
    with pytest.raises(veldra.NotFound):
        library.materials.by_id(id)


def test_names_and_ids_are_not_confused(library: veldra.Library) -> None:
    wrong: Any = library.materials
    with pytest.raises(TypeError, match="by_id"):
        wrong[1]
    with pytest.raises(TypeError, match="by_id"):
        wrong.get(1)
    with pytest.raises(TypeError, match="an id is an int, not 'Brick'"):
        wrong.by_id("Brick")


def test_a_folder_is_no_file_that_can_be_opened(tmp_path: Path) -> None:
    with pytest.raises(veldra.CannotOpen) as error:
        veldra.create(tmp_path)
    assert not isinstance(error.value, FileNotFoundError)
    assert error.value.file == str(tmp_path)


def test_iteration_gives_more_than_a_batch_in_the_order_of_ids(library: veldra.Library) -> None:
    fill(library, 1100)
    names = [material.name for material in library.materials]
    assert names == [f"M{number}" for number in range(1100)]
    assert len(library.materials) == 1100
    assert library.materials.ids() == sorted(library.materials.ids())


def test_iteration_holds_one_batch(library: veldra.Library) -> None:
    fill(library, 2000)

    def held() -> int:
        return sum(isinstance(each, veldra.Material) for each in gc.get_objects())

    most = 0
    references = []
    for number, material in enumerate(library.materials):
        references.append(sys.getrefcount(material))
        if number % 100 == 0:
            most = max(most, held())
    assert most <= 2 * 512
    assert max(references) <= 4


def test_objects_may_be_saved_and_removed_while_going_through_them(
    library: veldra.Library,
) -> None:
    fill(library, 300)
    with library.transaction():
        for material in library.materials:
            if material.id % 2:
                library.remove(material)
            else:
                material.comments = "kept"
                material.save()
    assert len(library.materials) == 150
    assert {material.comments for material in library.materials} == {"kept"}


def test_filters_select_by_fields(library: veldra.Library) -> None:
    fill(library, 100)
    found = library.materials.where("conductivity < 0.005 and name ~ m")
    assert len(found) == 5
    assert [material.name for material in found[1:3]] == ["M1", "M2"]
    assert found[-1].name == "M4"
    assert library.materials.where("name = M7").ids() == [library.materials["M7"].id]


def test_a_filter_that_makes_no_sense_tells_the_place(library: veldra.Library) -> None:
    with pytest.raises(veldra.FilterError) as error:
        library.materials.where("conductivity <")
    assert error.value.position > 0
    with pytest.raises(veldra.UnknownField, match="conductivity"):
        library.materials.where("conductvity < 1")


def test_search_takes_a_pattern(library: veldra.Library) -> None:
    fill(library, 12)
    assert [material.name for material in library.materials.search("m1_")] == ["M10", "M11"]
    assert len(library.materials.search("%")) == 12
    assert len(library.materials.search("")) == 0


def test_columns_have_the_fields_that_are_asked_for(library: veldra.Library) -> None:
    fill(library, 3)
    assert library.materials.columns(["name", "conductivity"]) == {
        "name": ["M0", "M1", "M2"],
        "conductivity": [0.0, 0.001, 0.002],
    }
    everything = library.materials.columns()
    assert set(everything) > {"id", "name", "tags", "density"}
    with pytest.raises(veldra.UnknownField):
        library.materials.columns(["weight"])


def test_a_data_frame_is_made_of_the_columns(
    library: veldra.Library, monkeypatch: pytest.MonkeyPatch
) -> None:
    pytest.importorskip("numpy")
    library.save(veldra.Material("Brick", custom_values={"Fire class": "A1"}))
    pandas = types.ModuleType("pandas")
    setattr(pandas, "DataFrame", lambda columns: ("frame", columns))
    monkeypatch.setitem(sys.modules, "pandas", pandas)
    kind, columns = library.to_pandas("materials", ["name", "Fire class"])
    assert kind == "frame"
    assert {name: list(values) for name, values in columns.items()} == {
        "name": ["Brick"],
        "Fire class": ["A1"],
    }


def test_pandas_is_not_loaded_with_the_package() -> None:
    assert "pandas" not in sys.modules


def test_saving_returns_the_object_that_stands_for_it(
    library: veldra.Library, supplier: veldra.Library
) -> None:
    brick = veldra.Material("Stone")
    assert library.save(brick) is brick
    assert not brick.dirty
    foreign = supplier.materials["Brick"]
    copy = library.save(foreign)
    assert copy is not foreign
    assert copy.library is library
    assert foreign.library is supplier
    assert list(copy.thicknesses) == [pytest.approx(101.6)]


@pytest.mark.parametrize(
    ("policy", "names", "comments"),
    [
        ("use", ["Brick"], "old"),
        ("overwrite", ["Brick"], "new"),
        ("rename", ["Brick", "Brick (2)"], "old"),
        (lambda library, kind, name: "rename", ["Brick", "Brick (2)"], "old"),
        (
            lambda library, kind, name: veldra.Rename(f"{name} of {kind.name}"),
            ["Brick", "Brick of MATERIAL"],
            "old",
        ),
    ],
)
def test_clashes_are_decided_by_a_policy_or_a_function(
    library: veldra.Library, policy: object, names: list[str], comments: str
) -> None:
    library.save(veldra.Material("Brick", comments="old"))
    library.save(veldra.Material("Brick", comments="new"), on_conflict=policy)  # type: ignore[arg-type]
    assert [material.name for material in library.materials] == names
    assert library.materials["Brick"].comments == comments


@pytest.mark.parametrize("policy", [None, "fail", lambda *given: veldra.Rename("Brick")])
def test_a_name_that_is_taken_names_the_object(library: veldra.Library, policy: object) -> None:
    library.save(veldra.Material("Brick"))
    other = veldra.Material("Brick")
    with pytest.raises(veldra.NotUnique, match="material 'Brick'.*same name") as error:
        library.save(other, on_conflict=policy)  # type: ignore[arg-type]
    assert error.value.object is other
    assert error.value.file == library.file
    assert other.id == 0
    assert other.dirty


def test_an_unknown_policy_is_refused_before_anything_is_done(library: veldra.Library) -> None:
    with pytest.raises(ValueError, match="'clobber'"):
        library.save(veldra.Material("Brick"), on_conflict="clobber")
    assert len(library.materials) == 0


def test_a_policy_holds_for_one_call(library: veldra.Library) -> None:
    library.save(veldra.Material("Brick"))
    library.save(veldra.Material("Brick"), on_conflict="use")
    with pytest.raises(veldra.NotUnique):
        library.save(veldra.Material("Brick"))


def test_what_is_in_use_is_not_removed(library: veldra.Library) -> None:
    brick = library.save(veldra.Material("Brick"))
    wall = library.save(veldra.Composition("Wall", layers=[(brick, 240)]))
    with pytest.raises(veldra.InUse) as error:
        library.remove(brick)
    assert error.value.object is brick
    assert library.referrers(brick) == [veldra.Key(veldra.Kind.COMPOSITION, wall.id)]
    assert library.remove(wall)
    assert library.remove(veldra.Key(veldra.Kind.MATERIAL, brick.id))
    with pytest.raises(veldra.NotFound):
        library.remove(brick)


def test_purging_leaves_compositions_unless_they_are_named(library: veldra.Library) -> None:
    brick = library.save(veldra.Material("Brick"))
    library.save(veldra.Material("Stone"))
    library.save(veldra.Composition("Wall", layers=[(brick, 240)]))
    assert library.purge(["materials"]) == [veldra.Key(veldra.Kind.MATERIAL, 2)]
    library.purge()
    assert len(library.compositions) == 1
    assert len(library.material_types) == 1
    library.purge([veldra.Kind.COMPOSITION])
    assert len(library.compositions) == 0
    with pytest.raises(ValueError, match="'walls'"):
        library.purge(["walls"])


def test_copying_tells_what_stands_for_what(
    library: veldra.Library, supplier: veldra.Library
) -> None:
    copied = library.copy(supplier, [supplier.materials["Brick"]])
    brick = next(each for each in copied if each.source.kind is veldra.Kind.MATERIAL)
    assert brick.status is veldra.Status.INSERTED
    assert library.materials.by_id(brick.result.id).name == "Brick"
    library.copy(supplier, on_conflict="rename")
    assert "Brick (2)" in library.materials


def test_a_backup_is_restored(library: veldra.Library, tmp_path: Path) -> None:
    library.save(veldra.Material("Brick"))
    backup = tmp_path / "backup.lib"
    library.backup(backup)
    with pytest.raises(veldra.FileExists) as error:
        library.backup(backup)
    assert isinstance(error.value, FileExistsError)
    assert error.value.file == str(backup)
    library.remove(library.materials["Brick"])
    library.restore_from(backup)
    assert "Brick" in library.materials
    with pytest.raises(veldra.SameFile):
        library.restore_from(library.file)
    with veldra.create(tmp_path / "other.lib"):
        pass
    with pytest.raises(veldra.OtherLibrary):
        library.restore_from(tmp_path / "other.lib")


def test_a_sound_file_has_no_findings(library: veldra.Library) -> None:
    assert library.check() == []


def test_findings_name_the_object(library: veldra.Library) -> None:
    library.save(veldra.Material("Brick", thicknesses=[10.0]))
    library.save(veldra.Composition("Wall", layers=[(library.materials["Brick"], 1.0)]))
    with closing(sqlite3.connect(library.file)) as database:  # the module takes no such thickness
        database.execute("UPDATE Composition_layers SET value_thickness = -1.0")
        database.commit()
    (finding,) = library.check()
    assert finding.object == veldra.Key(veldra.Kind.COMPOSITION, 1)
    assert finding.name == "Wall"
    assert "negative" in finding.sentence


def test_a_library_for_reading_refuses_changes(file: Path) -> None:
    veldra.create(file).close()
    with veldra.open(file, read_only=True) as library:
        with pytest.raises(veldra.ReadOnly):
            library.save(veldra.Material("Brick"))
        with pytest.raises(veldra.ReadOnly):
            with library.transaction():
                pass


def test_a_closed_library_says_so(file: Path) -> None:
    library = veldra.create(file)
    materials = library.materials
    brick = library.save(veldra.Material("Brick"))
    library.close()
    library.close()
    assert library.closed
    assert "closed" in repr(library)
    calls: list[Callable[[], object]] = [
        lambda: len(materials),
        lambda: materials.get("Brick"),
        lambda: list(materials),
        lambda: library.save(veldra.Material("Stone")),
        lambda: library.remove(brick),
        library.check,
        lambda: library.unit,
        lambda: library.guid,
        lambda: library.backup("x"),
        lambda: library.transaction().__enter__(),
        lambda: library.plan(library),
    ]
    for call in calls:
        with pytest.raises(veldra.Closed) as error:
            call()
        assert isinstance(error.value, ValueError)
        assert error.value.file == str(file)


def test_objects_live_on_when_their_library_is_closed(file: Path) -> None:
    with veldra.create(file) as library:
        brick = library.save(veldra.Material("Brick", type="Masonry"))
        wall = library.save(veldra.Composition("Wall", layers=[(brick, 240)]))
    assert brick.name == "Brick"
    assert brick.library is None
    assert wall.layers[0].material.name == "Brick"
    brick.comments = "changed"
    with veldra.open(file) as again:
        for orphan in (brick, wall, veldra.Composition("Another", layers=[(brick, 1)])):
            with pytest.raises(veldra.Closed, match="deepcopy"):
                again.save(orphan)
        with pytest.raises(veldra.Closed):
            brick.save()


def test_a_library_closes_with_its_last_reference(file: Path) -> None:
    library = veldra.create(file)
    brick = library.save(veldra.Material("Brick"))
    del library
    gc.collect()
    assert brick.library is None


def test_a_library_cannot_be_pickled(library: veldra.Library) -> None:
    with pytest.raises(TypeError, match="name of its file"):
        pickle.dumps(library)
    with pytest.raises(TypeError, match="cannot be pickled"):
        pickle.dumps(library.plan(library))


def test_an_object_knows_its_library_by_identity(library: veldra.Library) -> None:
    brick = library.save(veldra.Material("Brick"))
    assert brick.library is library
    assert library.materials["Brick"].library is library


def test_an_object_is_in_its_own_collection(
    library: veldra.Library, supplier: veldra.Library
) -> None:
    brick = library.save(veldra.Material("Brick"))
    assert brick in library.materials and library.materials["Brick"] in library.materials
    assert brick not in supplier.materials and brick not in library.compositions
    assert veldra.Material("Brick") not in library.materials
    library.remove(brick)
    assert brick not in library.materials


def test_one_name_is_no_list_of_fields(library: veldra.Library) -> None:
    for ask in (library.materials.columns, library.materials.to_pandas):
        with pytest.raises(TypeError, match="fields are a list of names, not 'name'"):
            ask("name")


def test_a_library_that_is_closed_is_not_entered_again(file: Path) -> None:
    library = veldra.create(file)
    library.close()
    with pytest.raises(veldra.Closed) as told:
        with library:
            pytest.fail("entered")
    assert told.value.file == str(file)


def test_a_path_is_no_source(library: veldra.Library, file: Path) -> None:
    for work in (library.plan, library.copy):
        with pytest.raises(TypeError, match="veldra.open opens a library"):
            work(str(file))  # type: ignore[operator]


def test_what_is_no_text_is_told_so(library: veldra.Library) -> None:
    calls: list[Callable[[Any], Any]] = [
        library.materials.where,
        library.materials.search,
        veldra.Tag,
        lambda wrong: setattr(library, "locale", wrong),
        lambda wrong: veldra.Composition("Wall").u_value(boundary=wrong),
    ]
    for call in calls:
        with pytest.raises(TypeError, match="^a str is needed, not int$"):
            call(5)


def test_one_kind_is_no_list_of_kinds(library: veldra.Library) -> None:
    with pytest.raises(TypeError, match="kinds are a list of kinds, not 'tags'"):
        library.purge("tags")
