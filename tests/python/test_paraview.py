"""ParaView's plugin under VTK alone: with the package and without it the same, and the same as the package says."""

import sys

import numpy as np
import pytest
from conftest import ROOT, XYZ, values, write_plate

import zrfx

pytest.importorskip("vtkmodules.vtkFiltersPython")
from vtkmodules.util.numpy_support import vtk_to_numpy  # noqa: E402

sys.path.insert(0, str(ROOT / "python/paraview"))
import ZrfxReader  # noqa: E402


@pytest.fixture(params=["alone", "with the package"])
def make(request, monkeypatch):
    monkeypatch.setattr(ZrfxReader, "zrfx", zrfx if request.param == "with the package" else None)

    def make(path, factor=0):
        reader = ZrfxReader.ZrfxReader()
        reader.SetFileName(str(path))
        reader.SetDisplacementFactor(factor)
        reader.UpdateInformation()
        return reader

    return make


def contents(blocks):
    """Everything in the blocks, by name of part and array."""
    found = {}
    for i in range(blocks.GetNumberOfBlocks()):
        grid, name = blocks.GetBlock(i), blocks.GetMetaData(i).Get(blocks.NAME())
        found[name, "points"] = vtk_to_numpy(grid.GetPoints().GetData())
        found[name, "cells"] = vtk_to_numpy(grid.GetCells().GetConnectivityArray())
        for data in (grid.GetPointData(), grid.GetCellData()):
            for k in range(data.GetNumberOfArrays()):
                found[name, data.GetArrayName(k)] = vtk_to_numpy(data.GetArray(k))
    return found


def assert_same(found, expected):
    for key in expected:
        assert np.allclose(found[key], expected[key], equal_nan=True), key


@pytest.mark.parametrize("options", [{}, {"binary": False}, {"level": 0}])
def test_what_the_plugin_gives_is_what_the_package_gives(tmp_path, make, options):
    path = write_plate(tmp_path / "plate.zrfx", **options)
    reader = make(path, factor=3)
    reader.UpdateTimeStep(0.2)
    found = contents(reader.GetOutputDataObject(0))
    with zrfx.open(path) as f:
        assert_same(found, contents(f.models["Plate"].to_vtk(1, compact=True, displacement=3)))
    assert found["Plate", "set Right"].tolist() == [0, 1] and found["Bar", "set Right"].tolist() == [0]


@pytest.mark.parametrize("name", ["thermomech", "artery3"])
def test_real_models_are_read(imported, make, name):
    path = imported(name)
    reader = make(path)
    with zrfx.open(path) as f:
        m, = f.models.values()
        reader.UpdateTimeStep(m.times[-1])
        assert_same(contents(reader.GetOutputDataObject(0)), contents(m.to_vtk(compact=True)))


def test_polyhedrons_ids_and_changes_are_read(tmp_path, make):
    box = [[0, 2, 3, 1], [4, 5, 7, 6], [0, 1, 5, 4], [2, 6, 7, 3], [0, 4, 6, 2], [1, 3, 7, 5]]
    with zrfx.create(tmp_path / "a.zrfx") as f:
        m = f.add_model("M")
        m.set_nodes([(i & 1, i >> 1 & 1, i >> 2) for i in range(8)], ids=range(20, 28))
        m.add_part("Box", {"polyhedron": [box], "vertex": [[1]]})
        m.add_part("Lines", {"line": [[20, 27]]}, by_ids=True)
        r = m.add_result("R")
        for time in range(2):
            m.add_state(time=time).write(r, [7.5], nodes=m.nodes, items=[22])
        m.states[1].set_part("Lines", {"line": [[21, 22]]}, by_ids=True)
    reader = make(tmp_path / "a.zrfx")
    with zrfx.open(tmp_path / "a.zrfx") as f:
        for k in range(2):
            reader.UpdateTimeStep(k)
            assert_same(contents(reader.GetOutputDataObject(0)), contents(f.models["M"].to_vtk(k, compact=True)))
    assert reader.GetOutputDataObject(0).GetBlock(0).GetCell(0).GetNumberOfFaces() == 6


def test_ranks_share_the_elements_and_a_solver_is_followed(plate, make):
    reader = make(plate)
    reader.UpdatePiece(1, 2, 0)
    found = contents(reader.GetOutputDataObject(0))
    assert found["Plate", "ElementId"].tolist() == [3] and len(found["Plate", "points"]) == 4
    with zrfx.append(plate) as f:
        f.models["Plate"].add_state(time=0.9)["DISP"] = values(12, 3, seed=9)
    reader.Reload()
    reader.UpdateInformation()
    reader.UpdateTimeStep(0.9)
    found = contents(reader.GetOutputDataObject(0))
    assert reader.GetTimestepValues()[-1] == 0.9
    assert all(row in values(12, 3, seed=9) for row in found["Bar", "DISP"]) and len(XYZ) == 12


def test_an_encrypted_file_needs_the_package(tmp_path, monkeypatch):
    monkeypatch.setattr(ZrfxReader, "zrfx", None)
    path = write_plate(tmp_path / "secret.zrfx", password="a")
    with pytest.raises(OSError, match="encrypted"):
        ZrfxReader.PlainModel(path)
    monkeypatch.setenv("ZRFX_PASSWORD", "a")
    monkeypatch.setattr(ZrfxReader, "zrfx", zrfx)
    assert ZrfxReader.PackageModel(path).parts == ["Bar", "Plate"]
