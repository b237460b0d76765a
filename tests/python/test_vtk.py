"""VTK: what a pipeline gets, shared with the library's memory, and what it writes."""

import gc

import numpy as np
import pytest
from conftest import HEXAHEDRON, TIMES, XYZ, values

import zrfx

pytest.importorskip("vtkmodules.vtkFiltersPython")
import zrfx.vtk  # noqa: E402
from vtkmodules.util.numpy_support import vtk_to_numpy  # noqa: E402
from vtkmodules.vtkCommonCore import vtkPoints  # noqa: E402
from vtkmodules.vtkCommonDataModel import vtkImageData, vtkUnstructuredGrid  # noqa: E402
from vtkmodules.vtkFiltersExtraction import vtkExtractSelection  # noqa: E402
from vtkmodules.vtkFiltersVerdict import vtkCellSizeFilter  # noqa: E402

CUBE = np.array([(i & 1, i >> 1 & 1, i >> 2) for i in range(8)], np.float32)
BOX = [[0, 2, 3, 1], [4, 5, 7, 6], [0, 1, 5, 4], [2, 6, 7, 3], [0, 4, 6, 2], [1, 3, 7, 5]]


def arrays(data):
    return {data.GetArrayName(i): vtk_to_numpy(data.GetArray(i)) for i in range(data.GetNumberOfArrays())}


@pytest.mark.parametrize("options", [{}, {"compact": True}, {"explode": True}, {"piece": (0, 1), "compact": True}])
def test_a_state_has_parts_results_and_ids(model, options):
    blocks = model.to_vtk(1, **options)
    assert [blocks.GetMetaData(i).Get(blocks.NAME()) for i in range(2)] == ["Bar", "Plate"]
    bar, plate = blocks.GetBlock(0), blocks.GetBlock(1)
    cell = bar.GetCell(0)
    assert np.array_equal([cell.GetPoints().GetPoint(i) for i in range(8)], XYZ[HEXAHEDRON[0]])
    disp = arrays(bar.GetPointData())["DISP"]
    assert np.array_equal([disp[cell.GetPointId(i)] for i in range(8)], values(12, 3, seed=1)[HEXAHEDRON[0]])
    stress = values(16, 6, seed=1)[8:]
    if options.get("explode"):
        assert np.array_equal(arrays(plate.GetPointData())["STRESS"], stress)
    else:
        assert np.allclose(arrays(plate.GetCellData())["STRESS"], stress.reshape(2, 4, 6).mean(axis=1))
        assert 112 in vtk_to_numpy(plate.GetPointData().GetGlobalIds())
    assert np.array_equal(arrays(plate.GetCellData())["PE"], [1, np.nan], equal_nan=True)
    assert vtk_to_numpy(plate.GetCellData().GetGlobalIds()).tolist() == [2, 3]
    assert plate.GetCellData().GetArray("STRESS" if not options.get("explode") else "PE") is not None


def test_arrays_are_shared_and_live_as_long_as_vtk_needs_them(plate):
    with zrfx.open(plate) as f:
        m = f.models["Plate"]
        nodes, elements = m.nodes, m.parts["Bar"].elements
        grid = m.to_vtk().GetBlock(0)
        assert np.shares_memory(vtk_to_numpy(grid.GetPoints().GetData()), nodes.xyz)
        assert np.shares_memory(vtk_to_numpy(grid.GetCells().GetConnectivityArray()), elements["hexahedron"])
    copy = vtkUnstructuredGrid()
    copy.ShallowCopy(grid)
    del nodes, elements, m, f, grid
    gc.collect()
    noise = [np.full(24, 7, np.int32) for _ in range(1000)]
    assert [copy.GetCell(0).GetPointId(i) for i in range(8)] == HEXAHEDRON[0].tolist() and len(noise) == 1000


def test_the_reader_gives_times_and_what_is_selected(plate):
    reader = zrfx.vtk.Reader(str(plate))
    reader.UpdateInformation()
    information = reader.GetOutputInformation(0)
    assert list(information.Get(reader.GetExecutive().TIME_STEPS())) == list(TIMES)
    reader.GetResultSelection().DisableArray("STRESS")
    reader.GetPartSelection().DisableArray("Plate")
    reader.SetDisplacementFactor(2)
    for k, time in enumerate(TIMES):
        reader.UpdateTimeStep(time)
        blocks = reader.GetOutputDataObject(0)
        bar = blocks.GetBlock(0)
        assert blocks.GetBlock(1) is None and blocks.GetInformation().Get(blocks.DATA_TIME_STEP()) == time
        assert np.allclose(vtk_to_numpy(bar.GetPoints().GetData()), XYZ + 2 * values(12, 3, seed=k))
        assert list(arrays(bar.GetCellData())) == ["ElementId", "PE"]
    with zrfx.append(plate) as f:
        f.models["Plate"].add_state(time=0.9)["DISP"] = values(12, 3, seed=9)
    reader.Refresh()
    reader.UpdateInformation()
    assert reader.GetTimes()[-1] == 0.9
    reader.UpdateTimeStep(0.9)
    assert np.allclose(vtk_to_numpy(reader.GetOutputDataObject(0).GetBlock(0).GetPoints().GetData()),
                       XYZ + 2 * values(12, 3, seed=9))


def test_pieces_share_the_elements_out(plate):
    pieces = []
    for rank in range(2):
        reader = zrfx.vtk.Reader(str(plate))
        reader.UpdatePiece(rank, 2, 0)
        pieces.append(reader.GetOutputDataObject(0).GetBlock(1))
    assert [piece.GetNumberOfCells() for piece in pieces] == [1, 1] and pieces[0].GetNumberOfPoints() == 4
    assert [vtk_to_numpy(piece.GetCellData().GetGlobalIds()).tolist() for piece in pieces] == [[2], [3]]


def test_sets_select_cells(model):
    extract = vtkExtractSelection()
    extract.SetInputData(0, model.to_vtk())
    extract.SetInputData(1, zrfx.vtk.selection(model, "Right"))
    extract.Update()
    found = extract.GetOutput().GetBlock(1)
    assert vtk_to_numpy(found.GetCellData().GetGlobalIds()).tolist() == [3]


@pytest.mark.parametrize("options", [{}, {"compact": True}, {"explode": True}])
def test_polyhedrons_and_mixed_runs_have_their_volume(tmp_path, options):
    with zrfx.create(tmp_path / "a.zrfx") as f:
        m = f.add_model("M")
        m.set_nodes(np.vstack([CUBE + 9, CUBE, CUBE + 3]))
        m.add_part("P", {"polyhedron": [[[n + 8 for n in face] for face in BOX]], "tetra": [[16, 17, 18, 20]]})
        m.add_part("Q", {"tetra": [[8, 9, 10, 12]], "wedge": [[8, 10, 9, 12, 14, 13]], "vertex": [[0]]})
    with zrfx.open(tmp_path / "a.zrfx") as f:
        blocks = f.models["M"].to_vtk(**options)
    zrfx.vtk.write(blocks, tmp_path / "b.zrfx")
    with zrfx.open(tmp_path / "b.zrfx") as f:
        for data in (blocks, f.models["Model"].to_vtk()):
            volumes = []
            for i in range(2):
                sizes = vtkCellSizeFilter()
                sizes.SetInputData(data.GetBlock(i))
                sizes.Update()
                volumes.append(arrays(sizes.GetOutput().GetCellData())["Volume"])
            assert np.allclose(volumes[0], [1, 1 / 6]) and np.allclose(np.abs(volumes[1]), [1 / 6, 1 / 2, 0])


def test_what_vtk_made_is_written(plate, tmp_path, tool):
    with zrfx.open(plate) as f:
        m = f.models["Plate"]
        zrfx.vtk.write([(t, m.to_vtk(k)) for k, t in enumerate(TIMES)], tmp_path / "b.zrfx", "Back", level=0)
    with zrfx.open(tmp_path / "b.zrfx") as f:
        m = f.models["Back"]
        assert m.times.tolist() == list(TIMES) and list(m.parts) == ["Bar", "Plate"]
        assert np.array_equal(m.results["DISP"].at(1, part="Plate"), values(12, 3, seed=1))
        assert m.parts["Plate"].elements.ids.tolist() == [2, 3] and m.parts["Bar"].nodes.ids[0] == 101
        assert m.results["DISP"].kind == "displacement" and m.results["STRESS"].kind == "tensor"
    tool("check", tmp_path / "b.zrfx")


def test_structured_data_is_written_as_hexahedrons(tmp_path, tool):
    image = vtkImageData()
    image.SetDimensions(3, 2, 2)
    zrfx.vtk.write(image, tmp_path / "b.zrfx")
    with zrfx.open(tmp_path / "b.zrfx") as f:
        assert f.models["Model"].parts["Part 1"].elements["hexahedron"].shape == (2, 8)
    tool("check", tmp_path / "b.zrfx")
    line = vtkUnstructuredGrid()
    line.SetPoints(vtkPoints())
    line.GetPoints().InsertNextPoint(0, 0, 0)
    line.InsertNextCell(7, 3, [0, 0, 0])
    with pytest.raises(ValueError, match="type 7"):
        zrfx.vtk.write(line, tmp_path / "c.zrfx")
