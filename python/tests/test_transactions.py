# SPDX-License-Identifier: GPL-2.0-or-later
"""Transactions, snapshots and plans."""

from pathlib import Path

import pytest

import veldra


def test_a_transaction_is_committed_at_its_end(file: Path) -> None:
    with veldra.create(file) as library:
        with library.transaction():
            library.save(veldra.Material("Brick"))
            library.locale = "de_CH"
            with veldra.open(file) as other:
                assert "Brick" not in other.materials
    with veldra.open(file) as library:
        assert "Brick" in library.materials
        assert library.locale == "de_CH"


def test_an_exception_rolls_back_and_comes_out_unchanged(library: veldra.Library) -> None:
    stone = library.save(veldra.Material("Stone"))
    brick = veldra.Material("Brick")
    error = LookupError("mine")
    with pytest.raises(LookupError) as raised:
        with library.transaction():
            library.save(brick)
            assert brick.id != 0
            library.remove(stone)
            raise error
    assert raised.value is error
    assert len(library.materials) == 1
    assert (brick.id, brick.dirty, brick.library) == (0, True, None)
    assert stone.library is library
    library.save(brick)
    assert "Brick" in library.materials


def test_a_second_transaction_is_refused_and_the_first_goes_on(library: veldra.Library) -> None:
    with library.transaction():
        library.save(veldra.Material("Brick"))
        with pytest.raises(veldra.TransactionError):
            with library.transaction():
                pass
        with pytest.raises(veldra.TransactionError):
            with library.snapshot():
                pass
        with pytest.raises(veldra.TransactionError):
            library.close()
        library.save(veldra.Material("Stone"))
    assert len(library.materials) == 2


def test_a_snapshot_sees_one_state(file: Path, library: veldra.Library) -> None:
    library.save(veldra.Material("Brick"))
    with library.snapshot():
        assert len(library.materials) == 1
        assert len(library.materials.where("name = Brick")) == 1
        assert library.materials.columns(["name"]) == {"name": ["Brick"]}
        with pytest.raises(veldra.TransactionError):
            library.save(veldra.Material("Stone"))
        with pytest.raises(veldra.TransactionError):
            with library.transaction():
                pass
    library.save(veldra.Material("Stone"))
    assert len(library.materials) == 2


def test_a_plan_names_each_object_and_changes_nothing(
    library: veldra.Library, supplier: veldra.Library
) -> None:
    library.save(veldra.Material("Brick", comments="ours"))
    plan = library.plan(supplier)
    entry = next(each for each in plan if each.name == "Brick")
    assert entry.decision == "undecided"
    assert entry.clashes == ["Brick"]
    assert "comments" in [change.field for change in entry.changes]
    assert not plan.decided
    assert "Brick" in str(plan)
    assert "<td>Brick</td>" in plan._repr_html_()
    assert sum(plan.counts().values()) == len(plan)
    with pytest.raises(veldra.PlanError, match="Brick"):
        plan.apply()
    assert library.materials["Brick"].comments == "ours"


@pytest.mark.parametrize(
    ("on_clash", "names", "comments"),
    [
        ("use", ["Brick"], "ours"),
        ("overwrite", ["Brick"], ""),
        ("rename", ["Brick", "Brick (2)"], "ours"),
    ],
)
def test_a_plan_is_applied_by_its_rules(
    library: veldra.Library,
    supplier: veldra.Library,
    on_clash: str,
    names: list[str],
    comments: str,
) -> None:
    library.save(veldra.Material("Brick", comments="ours"))
    copied = library.plan(supplier).decide(
        {veldra.Key(veldra.Kind.MATERIAL, supplier.materials["Brick"].id): on_clash}
    )
    assert copied.decided
    library.plan(supplier, on_clash=on_clash).apply()
    assert library.materials["Brick"].comments == comments
    assert len(library.materials) == len(names)
    assert len(library.materials.where("thickness >= 101 mm")) == (0 if on_clash == "use" else 1)


def test_a_plan_is_refused_when_its_objects_have_changed(
    library: veldra.Library, supplier: veldra.Library
) -> None:
    brick = library.save(veldra.Material("Brick", comments="ours"))
    plan = library.plan(supplier, on_clash="overwrite")
    brick.comments = "changed"
    brick.save()
    with pytest.raises(veldra.PlanError, match="changed since"):
        plan.apply()
    assert library.materials["Brick"].comments == "changed"


def test_a_plan_is_part_of_a_transaction(
    library: veldra.Library, supplier: veldra.Library
) -> None:
    with pytest.raises(LookupError):
        with library.transaction():
            library.plan(supplier).apply()
            assert "Brick" in library.materials
            raise LookupError
    assert len(library.materials) == 0


def test_progress_ends_a_plan_and_leaves_the_library_as_it_was(
    library: veldra.Library, supplier: veldra.Library
) -> None:
    error = StopIteration("enough")

    def stop() -> None:
        raise error

    with pytest.raises(StopIteration) as raised:
        library.plan(supplier, progress=stop)
    assert raised.value is error
    plan = library.plan(supplier)
    with pytest.raises(StopIteration):
        plan.apply(progress=stop)
    assert len(library.materials) == 0


def test_the_reactor_stays_when_a_plan_has_been_applied(
    library: veldra.Library, supplier: veldra.Library
) -> None:
    saved = []

    class Recording(veldra.Reactor):
        def object_saved(self, library: veldra.Library, key: veldra.Key) -> None:
            saved.append(key)

    library.reactor = Recording()
    library.plan(supplier).apply()
    before = len(saved)
    library.save(veldra.Tag("later"))
    assert len(saved) == before + 1


EPJSON = """{"Version": {"Version 1": {"version_identifier": "23.1"}},
 "Material": {"Brick": {"roughness": "Rough", "thickness": 0.1, "conductivity": 0.5,
   "density": 1500, "specific_heat": 900}},
 "Construction": {"Wall": {"outside_layer": "Brick"}}}"""


def test_a_file_of_another_format_comes_in_by_a_plan(
    library: veldra.Library, tmp_path: Path
) -> None:
    path = tmp_path / "supplier.epJSON"
    path.write_text(EPJSON)
    source = veldra.read(path)
    assert source.reports[0]["format"] == "epJSON"
    assert len(source.library.materials) == 1
    assert "1 materials, 1 compositions" in repr(source)
    copied = library.plan(source).apply()
    assert len(copied) >= 2
    wall = library.compositions["Wall"]
    assert wall.layers[0].thickness == pytest.approx(100)
    assert library.materials["Brick"].conductivity == 0.5
    assert {entry.decision for entry in library.plan(source)} == {"equal"}


def test_a_source_that_cannot_be_read_names_file_and_line(tmp_path: Path) -> None:
    path = tmp_path / "broken.epJSON"
    path.write_text(EPJSON.replace('"Rough",', '"Rough"'))
    with pytest.raises(veldra.SourceError, match="broken.epJSON") as error:
        veldra.read(path)
    assert error.value.file == str(path)
    assert error.value.line == 2
    with pytest.raises(veldra.SourceError, match="absent"):
        veldra.read(tmp_path / "absent.idf")
