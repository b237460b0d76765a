"""meshio: round trips through its own formats, orders of nodes, sets, parts, times."""

import numpy as np
import pytest
from conftest import TIMES, XYZ, values

import zrfx
from zrfx import errors

meshio = pytest.importorskip("meshio")
import zrfx.meshio  # noqa: E402

CUBE = np.array([(0, 0, 0), (1, 0, 0), (1, 1, 0), (0, 1, 0), (0, 0, 1), (1, 0, 1), (1, 1, 1), (0, 1, 1)], float)
CORNERS = {  # In the order of VTK.
    "line": CUBE[:2], "triangle": CUBE[:3], "quad": CUBE[:4], "tetra": CUBE[[0, 1, 2, 4]],
    "pyramid": np.vstack([CUBE[:4], [(0.5, 0.5, 1)]]), "wedge": CUBE[[0, 2, 1, 4, 6, 5]], "hexahedron": CUBE}
EDGES = {"line3": "01", "triangle6": "01 12 20", "quad8": "01 12 23 30", "tetra10": "01 12 20 03 13 23",
         "pyramid13": "01 12 23 30 04 14 24 34", "wedge15": "01 12 20 34 45 53 03 14 25",
         "hexahedron20": "01 12 23 30 45 56 67 74 04 15 26 37"}


def corners_of(kind):
    return CORNERS[kind.rstrip("0123456789")]


def nodes_of(kind):
    """The places of the nodes of an element of a type, by the corners that its edges join."""
    corners = corners_of(kind)
    middles = [corners[[int(a), int(b)]].mean(axis=0) for a, b in EDGES.get(kind, "").split()]
    return np.array([*corners, *middles])


# The formats of meshio that can hold a type, besides these three.
EVERY = ["vtk", "vtu", "xdmf"]
LINEAR = "avsucd gmsh hmf med medit nastran netgen permas"
CARRIERS = {"line": LINEAR + " abaqus h5m mdpa ply tecplot", "triangle": LINEAR + " dolfin-xml obj off ply stl ugrid wkt",
            "quad": LINEAR + " abaqus mdpa obj ply tecplot", "pyramid": LINEAR + " flac3d su2 ugrid",
            "tetra": LINEAR + " abaqus cgns dolfin-xml flac3d h5m mdpa su2 tecplot tetgen ugrid",
            "wedge": LINEAR + " abaqus flac3d mdpa su2 ugrid", "line3": "gmsh", "triangle6": "gmsh",
            "hexahedron": LINEAR + " abaqus flac3d mdpa su2 tecplot ugrid", "tetra10": "abaqus gmsh",
            "hexahedron20": "abaqus gmsh"}


@pytest.mark.parametrize("kind", [*CORNERS, *EDGES])
def test_elements_keep_their_shape_in_the_formats_of_meshio(tmp_path, kind):
    places = nodes_of(kind)
    with zrfx.create(tmp_path / "a.zrfx") as f:
        m = f.add_model("M")
        m.set_nodes(places, ids=np.arange(len(places)) + 5)
        m.add_part("P", {kind: np.arange(len(places))[None]}, ids=[9])
        m.add_state(time=0)[m.add_result("T")] = values(len(places))
    for format in EVERY + CARRIERS.get(kind, "").split():
        suffix, = [end for end, formats in meshio._helpers.extension_to_filetypes.items() if format in formats][:1]
        mesh = meshio.read(tmp_path / "a.zrfx")
        if format not in EVERY:  # The others take no data that is whole numbers.
            mesh.cell_data, mesh.point_data, mesh.cell_sets = {}, {}, {}
        meshio.write(tmp_path / f"b{suffix}", mesh, format)
        meshio.write(tmp_path / "c.zrfx", meshio.read(tmp_path / f"b{suffix}", format))
        with zrfx.open(tmp_path / "c.zrfx") as f:
            m = f.models["Model"]
            elements = next(iter(m.parts.values())).elements
            assert np.allclose(m.nodes.xyz[elements[kind][0]], places), format
            if format in ("vtu", "xdmf"):
                assert m.nodes.ids[0] == 5 and elements.ids.tolist() == [9]
                assert np.array_equal(m.results["T"].at(), values(len(places)))


def test_parts_sets_and_results_come_back(plate, tmp_path, tool):
    mesh = meshio.read(plate)
    assert np.array_equal(mesh.points, XYZ) and list(mesh.cell_sets) == ["Bar", "Plate", "Right", "Left"]
    assert np.allclose(mesh.cell_data["STRESS"][1][0], values(16, 6, seed=2)[8:12].mean(axis=0))
    with zrfx.create(tmp_path / "back.zrfx") as f:
        zrfx.from_meshio(mesh, f, "Plate")
    with zrfx.open(tmp_path / "back.zrfx") as f:
        m = f.models["Plate"]
        assert [(p.id, p.name, p.elements.ids.tolist()) for p in m.parts.values()] == [
            (10, "Bar", [1]), (20, "Plate", [2, 3])]
        assert m.sets["Right"].parts["Plate"].tolist() == [1] and m.results["DISP"].kind == "displacement"
        assert np.array_equal(m.results["DISP"].at(), values(12, 3, seed=2))
        assert np.array_equal(m.results["PE"].at(), [np.nan, 2, np.nan], equal_nan=True)
    tool("check", tmp_path / "back.zrfx")


def test_polyhedrons_pass_through_vtu(tmp_path):
    box = [[0, 3, 2, 1], [4, 5, 6, 7], [0, 1, 5, 4], [3, 7, 6, 2], [0, 4, 7, 3], [1, 2, 6, 5]]
    with zrfx.create(tmp_path / "a.zrfx") as f:
        m = f.add_model("M")
        m.set_nodes(CUBE)
        m.add_part("P", {"polyhedron": [box]})
    meshio.write(tmp_path / "b.vtu", meshio.read(tmp_path / "a.zrfx"))
    meshio.write(tmp_path / "c.zrfx", meshio.read(tmp_path / "b.vtu"))
    with zrfx.open(tmp_path / "c.zrfx") as f:
        faces, = next(iter(f.models["Model"].parts.values())).elements["polyhedron"]
        assert {tuple(face) for face in faces} == {tuple(face) for face in box}


def test_data_of_other_shapes_is_fitted_or_left_out(tmp_path, caplog):
    matrix = np.arange(9.0).reshape(3, 3)
    mesh = meshio.Mesh(XYZ[:4, :2], [("quad", [[0, 1, 3, 2]]), ("vertex", [[0]])], point_sets={"Fixed": [0]}, point_data={
        "flow": np.ones((4, 2)), "M": np.array([matrix] * 4), "odd": np.ones((4, 5)), "u": np.ones((4, 3))})
    zrfx.meshio.write(tmp_path / "a.zrfx", mesh, level=0)
    with zrfx.open(tmp_path / "a.zrfx") as f:
        results = f.models["Model"].results
        assert results["flow"].at()[0].tolist() == [1, 1, 0] and results["u"].kind == "displacement"
        assert results["M"].at()[0].tolist() == [0, 4, 8, 2, 6, 4] and list(results) == ["flow", "M", "u"]
    assert "Fixed" in caplog.text and "odd is left out" in caplog.text
    with pytest.raises(errors.InvalidArgumentError, match="'polygon'"):
        zrfx.meshio.write(tmp_path / "b.zrfx", meshio.Mesh(XYZ, [("polygon", [[0, 1, 3, 2, 4]])]))
    assert not (tmp_path / "b.zrfx").exists()


def test_time_series_are_read_and_written(plate, tmp_path):
    with zrfx.meshio.TimeSeriesReader(plate) as reader, \
            zrfx.meshio.TimeSeriesWriter(tmp_path / "b.zrfx", level=0) as writer:
        writer.write_points_cells(*reader.read_points_cells())
        for k in range(reader.num_steps):
            writer.write_data(*reader.read_data(k))
    with zrfx.open(tmp_path / "b.zrfx") as f:
        m = f.models["Model"]
        assert m.times.tolist() == list(TIMES)
        assert all(np.array_equal(m.results["DISP"].at(k), values(12, 3, seed=k)) for k in range(3))
