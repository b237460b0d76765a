#!/usr/bin/env python3
"""Imports files of gmsh with the program zrfx, and compares what the ZRFx file holds, read with nothing
but Python's own modules, with what was written; real models with what meshio reads, where it is
installed.

    gmsh_test.py PROGRAM GmshTest     small files
    gmsh_test.py PROGRAM MeshioTest   real models; exit code 77 says that there is no meshio
"""

import pathlib
import subprocess
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True  # the sources stay as they are
import calculix

ZRFX = sys.argv.pop(1)
MODELS = pathlib.Path(__file__).resolve().parents[2] / "examples/models"
UNDEFINED = calculix.to_float(2.99e38)
ELEMENT_NODES = {"Beam_3": "01", "Triangle_6": "01 12 20", "Quad_8": "01 12 23 30",
                 "Quad_9": "01 12 23 30 0123", "Tetrahedron_10": "01 12 20 03 13 23",
                 "Hexahedron_20": "01 12 23 30 45 56 67 74 04 15 26 37",
                 "Pentahedron_15": "01 12 20 34 45 53 03 14 25",
                 "Pyramid_13": "01 12 23 30 04 14 24 34"}
PYRAMID = calculix.QUAD + [(0.5, 0.5, 1)]
HEX_EDGES = "01 03 04 12 15 23 26 37 45 47 56 67"
WEDGE_EDGES = "01 02 03 12 14 25 34 35 45"
PYRAMID_EDGES = "01 03 04 12 14 23 24 34"

# The number of the type, ours, its corners and, as gmsh orders them, the corners between which the
# other nodes lie.
TYPES = [
    (15, "Point", calculix.HEX[:1], ""), (1, "Beam", calculix.BEAM, ""),
    (2, "Triangle", calculix.TRIANGLE, ""), (3, "Quad", calculix.QUAD, ""),
    (4, "Tetrahedron", calculix.TET, ""), (5, "Hexahedron", calculix.HEX, ""),
    (6, "Pentahedron", calculix.WEDGE, ""), (7, "Pyramid", PYRAMID, ""),
    (8, "Beam_3", calculix.BEAM, "01"), (9, "Triangle_6", calculix.TRIANGLE, "01 12 20"),
    (16, "Quad_8", calculix.QUAD, "01 12 23 30"), (10, "Quad_9", calculix.QUAD, "01 12 23 30 0123"),
    (11, "Tetrahedron_10", calculix.TET, "01 12 02 03 23 13"),
    (17, "Hexahedron_20", calculix.HEX, HEX_EDGES),
    (12, "Hexahedron_20", calculix.HEX,
     HEX_EDGES + " 0123 0145 0347 1256 2367 4567 01234567"),
    (18, "Pentahedron_15", calculix.WEDGE, WEDGE_EDGES),
    (13, "Pentahedron_15", calculix.WEDGE, WEDGE_EDGES + " 0143 0253 1254"),
    (19, "Pyramid_13", PYRAMID, PYRAMID_EDGES), (14, "Pyramid_13", PYRAMID, PYRAMID_EDGES + " 0123")]


def section(name, *lines):
    return "\n".join([f"${name}", *map(str, lines), f"$End{name}", ""])


def words(*numbers):
    return " ".join(map(str, numbers))


def head(version):
    return section("MeshFormat", f"{version} 0 8")


def mesh2(nodes, elements, names=()):
    """Of version 2: nodes by id; elements by id as (type, group, entity, nodes)."""
    return (head(2.2) + section("PhysicalNames", len(names), *names) +
            section("Nodes", len(nodes), *(words(n, *xyz) for n, xyz in nodes.items())) +
            section("Elements", len(elements),
                    *(words(e, kind, 2, group, entity, *own)
                      for e, (kind, group, entity, own) in elements.items())))


def mesh4(nodes, elements, names=(), entities="0 0 0 0"):
    """The same of version 4.1, where groups are those of the entities: (type, dimension, entity, nodes)."""
    blocks = [f"{dimension} {entity} {kind} 1\n{e} {words(*own)}"
              for e, (kind, dimension, entity, own) in elements.items()]
    positions = "\n".join(words(*xyz) for xyz in nodes.values())
    return (head(4.1) + section("PhysicalNames", len(names), *names) + section("Entities", entities) +
            section("Nodes", words(1, len(nodes), 1, max(nodes)), f"3 1 0 {len(nodes)}",
                    *nodes, positions) +
            section("Elements", words(len(blocks), len(blocks), 1, max(elements)), *blocks))


def view(kind, name, components, rows, step=0, time=0.0, partition=()):
    return section(kind, 1, f'"{name}"', 1, time, 3 + len(partition), step, components, len(rows),
                   *partition, *(words(item, *row) for item, row in rows.items()))


class Model(calculix.Model):
    """Results at nodes and elements by state and name: the values of an item, or of each node of it."""

    def __init__(self, path):
        self.blocks, self.mappings = {}, {}
        super().__init__(path)

    def read_elements(self, root, part):
        before = len(self.elements)
        super().read_elements(root, part)
        self.blocks[root.get("ID")] = list(self.elements)[before:]

    def read_result(self, root, roots):
        name, mapping = root.get("Name"), root.get("ResultMapping")
        self.types[name], self.mappings[name] = root.get("ResultType"), mapping
        for state in self.children(root, "State"):
            found = self.values[int(state.get("ID")), name] = {}
            for number in state[0]:
                self.read_values(roots["ResultValues", int(number.text)], mapping, found)

    def read_values(self, root, mapping, found):
        record, size = self.children(root, "File")[0], int(root.get("NumDimensions"))
        numbers = self.array(record.get("Filename"), "f")
        rows = iter([numbers[i:i + size] for i in range(0, len(numbers), size)])
        items = self.ids if mapping == "Node" else self.blocks[root.get("MapToBlockID")]
        if record.get("IDs"):
            items = self.array(record.get("IDs"), "i")
        for item in items:
            is_at_nodes = mapping == "ElementNode"
            found[item] = ([next(rows) for _ in self.elements[item][2]] if is_at_nodes
                           else next(rows))
        assert next(rows, None) is None

    def sets(self):
        """Ids by name."""
        sets = {}
        for entry in self.archive.namelist():
            if "\\Set\\" in entry and entry.endswith(".xml"):
                root = self.xml(entry.split("\\", 1)[1])
                sets[root.get("Name")] = sorted(
                    item for group in self.children(root, "Items")
                    for item in self.array(self.children(group, "File")[0].get("Filename"), "i"))
        return sets

    def parts(self):
        """Names by id."""
        return {int(e.get("PartID")): e.get("PartName")
                for e in self.xml("GeometryInfo\\GeometryInfo0001.xml").iter()
                if self.tag(e) == "Part"}


class ImportTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.msh = pathlib.Path(folder.name) / "a.MSH"
        self.out = pathlib.Path(folder.name) / "a.zrfx"

    def zrfx(self, *arguments):
        return subprocess.run([ZRFX, *map(str, arguments)], capture_output=True, text=True)

    def imported(self, text, notes=()):
        """The model of a sound file, which passes the check of volumes and references."""
        self.msh.write_text(text)
        run = self.zrfx("import", self.msh, self.out)
        self.assertEqual((run.returncode, run.stderr), (0, ""))
        self.assertEqual(run.stdout.splitlines()[1:], list(notes))
        run = self.zrfx("check", self.out)
        self.assertEqual(run.returncode, 0, run.stdout)
        return Model(self.out)


class GmshTest(ImportTest):
    def test_elements_get_the_order_of_nodes_of_the_library(self):
        for kind, name, corners, others in TYPES:
            points = corners + [tuple(sum(corners[int(c)][i] for c in group) / len(group)
                                      for i in range(3)) for group in others.split()]
            nodes = {7 + 3 * i: point for i, point in enumerate(points)}
            dimension = 0 if kind == 15 else 1 if "Beam" in name else 3
            if name.split("_")[0] in ("Triangle", "Quad"):
                dimension = 2
            rows = {4: [len(nodes), *nodes]}
            for mesh in (mesh2(nodes, {4: (kind, 1, 1, nodes)}),
                         mesh4(nodes, {4: (kind, dimension, 1, nodes)})):
                with self.subTest(type=kind, version=mesh[12:15]):
                    model = self.imported(mesh + view("ElementNodeData", "node", 1, rows))
                    found, _, own = model.elements[4]
                    self.assertEqual(found, name)
                    self.assertEqual([row[0] for row in model.values[1, "node"][4]], own)
                    places = [model.nodes[node] for node in own]
                    middles = ELEMENT_NODES.get(name, "").split()
                    self.assertEqual(len(places), len(corners) + len(middles))
                    for group, place in zip(middles, places[len(corners):]):
                        for i in range(3):
                            self.assertAlmostEqual(place[i] * len(group),
                                                   sum(places[int(c)][i] for c in group), 5)

    SQUARES = {n: (n // 2, n % 2, 0) for n in range(8)}  # three beside each other

    def square(self, i, group=1, entity=1):
        return (3, group, entity, [2 * i, 2 * i + 2, 2 * i + 3, 2 * i + 1])

    def test_groups_become_parts_and_sets(self):
        boundary = {20: (1, 0, 4, [0, 2]), 21: (1, 2, 5, [2, 4]), 22: (1, 1, 6, [4, 6])}
        model = self.imported(
            mesh2(self.SQUARES, {1: self.square(0, 1), 2: self.square(1, 2), 3: self.square(2, 0, 9)} |
                  boundary, ['1 2 "held"', '2 2 "steel plate"']),
            ["1 element of the boundary that are in no physical group were left out"])
        self.assertEqual(model.parts(), {1: "Physical surface 1", 2: "steel plate", 9: "Surface 9",
                                         3: "Physical curve 1", 4: "held"})
        self.assertEqual({e: part for e, (_, part, _) in model.elements.items()},
                         {1: "1", 2: "2", 3: "9", 22: "3", 21: "4"})
        entities = "0 0 2 0\n1 0 0 0 1 1 0 2 5 -6 0\n2 0 0 0 1 1 0 1 6 0"
        model = self.imported(
            mesh4(self.SQUARES, {1: (3, 2, 1, [0, 2, 3, 1]), 2: (3, 2, 2, [2, 4, 5, 3]),
                                 3: (1, 1, 3, [0, 2])}, ['2 6 "all"'], entities),
            ["1 element of the boundary that are in no physical group were left out"])
        self.assertEqual(model.parts(), {5: "Physical surface 5", 6: "all"})
        self.assertEqual(model.sets(), {"all": [1, 2]})

    def test_views_become_results_in_states(self):
        mesh = mesh2(self.SQUARES, {e: self.square(e - 1, 1 + e // 3) for e in (1, 2, 3)})
        tensor = [1, 2, 3, 4, 5, 6, 7, 8, 9]
        everywhere = {n: [n] for n in self.SQUARES}
        model = self.imported(
            mesh + view("NodeData", "T", 1, everywhere, 0, 0.0) +
            view("NodeData", "T", 1, {3: [1.5], 99: [0]}, 1, 0.5) +
            view("NodeData", "Displacement field", 3, {3: [1, 2, "1e-60"], 2: [0, "nan", 0]}, 1, 0.5) +
            view("ElementData", "T", 1, {3: [30], 1: [10], 2: [20]}) +
            view("ElementData", "S", 9, {2: tensor}) + view("ElementData", "S", 9, {1: tensor}) +
            view("ElementNodeData", "V", 3, {2: [4, *range(12)]}) +
            view("NodeData", "P", 1, {1: [1]}, partition=(1,)) +
            view("NodeData", "P", 1, {2: [2]}, partition=(2,)) + section("Periodic", 0),
            ["1 value that are no finite numbers became undefined",
             "1 node with values that are not in the mesh were left out",
             "S: of the 9 components the 6 of the symmetric part were kept",
             "S 2: of the 9 components the 6 of the symmetric part were kept"])
        self.assertEqual(model.states, [("Time", 0.0), ("Time", 0.5)])
        self.assertEqual(
            {name: (model.types[name], model.mappings[name]) for name in model.types},
            {"T": ("Scalar", "Node"), "Displacement field": ("Displacement", "Node"),
             "T (elements)": ("Scalar", "Element"), "S": ("Tensor", "Element"),
             "S 2": ("Tensor", "Element"), "V": ("Vector", "ElementNode"), "P": ("Scalar", "Node")})
        symmetric = (1, 5, 9, 3, 7, 5)
        rows = [(0, 1, 2), (3, 4, 5), (6, 7, 8), (9, 10, 11)]
        self.assertEqual(model.values, {
            (1, "T"): {n: (n,) for n in self.SQUARES}, (2, "T"): {3: (1.5,)},
            (2, "Displacement field"): {3: (1, 2, 0), 2: (0, UNDEFINED, 0)},
            (1, "T (elements)"): {1: (10,), 2: (20,), 3: (30,)}, (1, "S"): {2: symmetric},
            (1, "S 2"): {1: symmetric}, (1, "V"): {1: 4 * [3 * (UNDEFINED,)], 2: rows},
            (1, "P"): {1: (1,), 2: (2,)}})

    def test_faulty_views_are_left_out(self):
        mesh = mesh2(self.SQUARES, {1: self.square(0)})
        good = view("NodeData", "good", 1, {1: [1]})
        bad = mesh + view("ElementNodeData", "few", 1, {1: [2, 5, 6]}) + good
        self.imported(bad, ["1 element with values that are not in the mesh, or not those of their "
                            "nodes, were left out"])
        self.msh.write_text(mesh + view("NodeData", "bad", 2, {1: [1, 2]}) + good)
        run = self.zrfx("import", self.msh, self.out)
        self.assertEqual(run.returncode, 1)
        self.assertEqual(run.stderr, f'zrfx: {self.msh}: line 30: $NodeData "bad": it has 2 components, '
                                     "which must be 1, 3 or 9\n")
        self.assertEqual(list(Model(self.out).types), ["good"])

    def test_mesh_cannot_be_followed(self):
        self.msh.write_text(mesh2(self.SQUARES, {1: self.square(0)}))
        run = self.zrfx("import", "--follow", self.msh, self.out)
        self.assertEqual((run.returncode, run.stderr),
                         (2, f"zrfx: {self.msh}: files of this format cannot be followed\n"))


class MeshioTest(ImportTest):
    def test_models_are_what_meshio_reads(self):
        try:
            import meshio
        except ImportError:
            self.skipTest("python3-meshio is not installed")
        for name, versions in (("plate_with_hole", ("gmsh22", "gmsh")), ("heat_sink", ("gmsh22",))):
            mesh = meshio.read(MODELS / f"{name}.msh", "abaqus")
            mesh.point_data = {"T": mesh.points[:, 0] / 3}
            numbers = [[i + 1] * len(block.data) for i, block in enumerate(mesh.cells)]
            mesh.cell_data = {"gmsh:physical": numbers, "gmsh:geometrical": numbers,
                              "E": [block.data[:, 0] / 7.0 for block in mesh.cells]}
            for version in versions:
                with self.subTest(model=name, version=version):
                    meshio.write(self.msh, mesh, version, binary=False)
                    self.compare(meshio.read(self.msh, "gmsh"), self.imported(self.msh.read_text()))

    def compare(self, mesh, model):
        single = calculix.to_float
        self.assertEqual(list(model.nodes.values()),
                         [tuple(map(single, xyz)) for xyz in mesh.points.tolist()])
        own = [row for block in mesh.cells for row in block.data.tolist()]
        self.assertEqual([element[2] for element in model.elements.values()],
                         [[node + 1 for node in row] for row in own])
        self.assertEqual([row[0] for row in model.values[1, "T"].values()],
                         list(map(single, mesh.point_data["T"].tolist())))
        self.assertEqual([model.values[1, "E"][element][0] for element in model.elements],
                         [single(value) for block in mesh.cell_data["E"] for value in block.tolist()])


if __name__ == "__main__":
    result = unittest.main(exit=False).result
    is_left_out = result.testsRun == len(result.skipped)
    sys.exit(1 if not result.wasSuccessful() else calculix.LEFT_OUT if is_left_out else 0)
