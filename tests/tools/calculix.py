#!/usr/bin/env python3
"""Solves models with CalculiX, imports the results with the program zrfx, and compares value by value
what the ZRFx file holds, read with nothing but Python's own modules, with the texts that the solver
wrote. Exit code 77 says that the test was left out.

    calculix.py --zrfx PROGRAM element he20     a solved unit element keeps shape, order and stresses
    calculix.py --zrfx PROGRAM text DECK        a model; also "binary", with binary output, and
                                                "followed", imported while the solver runs
    calculix.py --zrfx PROGRAM references       reference results of Debian's calculix-ccx-test; all of
                                                them with NUO_LONG_TESTS=1
    calculix.py --zrfx PROGRAM statistics       ten of them as numpy computes extremes and means
    calculix.py --zrfx PROGRAM decks            solves the package's 355 decks, with NUO_LONG_TESTS=1
"""

import argparse
import collections
import concurrent.futures
import gzip
import importlib.util
import itertools
import json
import math
import os
import pathlib
import shutil
import struct
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as ElementTree
import zipfile

PACKAGE = pathlib.Path("/usr/share/doc/calculix-ccx-test/examples/test")
LEFT_OUT = 77
IS_LONG = os.environ.get("NUO_LONG_TESTS") == "1"
UNDEFINED = 2.99e38

# ---- What the solver wrote

Step = collections.namedtuple("Step", "value analysis number parameters")
Result = collections.namedtuple("Result", "step name components values")


def numbers(line, start, count):
    return [float(line[i:i + 12]) for i in range(start, start + 12 * count, 12)]


def read_frd(path):
    """Nodes by id, elements (type, material, nodes) by id, and the list of results."""
    nodes, elements, results, parameters = {}, {}, [], ""
    lines = iter(path.read_text(errors="replace").splitlines())
    for line in lines:
        if line[:6] == "    2C":
            for line in itertools.takewhile(lambda text: text[:3] != " -3", lines):
                nodes[int(line[3:13])] = numbers(line, 13, 3)
        elif line[:6] == "    3C":
            for line in itertools.takewhile(lambda text: text[:3] != " -3", lines):
                if line[:3] == " -1":
                    own = []
                    elements[int(line[3:13])] = (int(line[13:18]), line[23:28].strip(), own)
                else:
                    own += [int(line[i:i + 10]) for i in range(3, len(line.rstrip()), 10)]
        elif line[:10] == "    1PSTEP":
            parameters = line[36:]
        elif line[:6] == "  100C":
            results.append(read_result(line, lines, parameters))
    return nodes, elements, results


def read_result(head, lines, parameters):
    step = Step(float(head[12:24]), int(head[56:58]), head[58:63], parameters)
    line = next(lines)
    name, components, values = line[5:13].strip(), [], {}
    for _ in range(int(line[13:18])):
        line = next(lines)
        if line[33:38].strip() in ("", "0"):
            components.append(line[5:13].strip())
    for line in itertools.takewhile(lambda text: text[:3] != " -3", lines):
        if line[:3] == " -1":
            own = values[int(line[3:13])] = []
        own += numbers(line, 13, min(6, len(components) - len(own)))
    return Result(step, name, components, values)


def read_dat(path, title):
    """The tables of a .dat file whose titles begin so: lists of lines of numbers."""
    tables, table = [], None
    for line in path.read_text().splitlines():
        words = line.split()
        if words and words[0][0].isalpha():
            if line.strip().lower().startswith(title):
                table = []
                tables.append(table)
            elif table:
                table = None
        elif words and table is not None and words[0].lstrip("-")[0].isdigit():
            table.append([float(word) for word in words])
    return tables


# ---- What the file holds


class Model:
    """Database 0 of a ZRFx file."""

    def __init__(self, path):
        self.archive = zipfile.ZipFile(path)
        assert self.archive.testzip() is None
        toc = [(self.tag(e), e.get("ID"), e.get("File")) for e in self.xml("Database-TOC.xml")]
        roots = {(kind, int(number)): self.xml(name.split("\\", 1)[1]) for kind, number, name in toc}
        record = self.children(roots["Nodes", 1], "File")[0]
        self.ids = self.array(record.get("IDs"), "i")
        xyz = self.array(record.get("Filename"), "f")
        self.nodes = {node: xyz[3 * i:3 * i + 3] for i, node in enumerate(self.ids)}
        self.states = [(e.get("RefType"), float(e.get("RefValue"))) for e in roots["StateInfo", 1]]
        parts = {e.get("BlockID"): e.get("PartID") for e in roots["Geometry", 1].iter()
                 if self.tag(e) == "Elements"}
        self.elements = {}
        for (kind, number), root in roots.items():
            if kind == "Elements":
                self.read_elements(root, parts[str(number)])
        self.types, self.values = {}, {}
        for (kind, _), root in roots.items():
            if kind == "Results":
                self.read_result(root, roots)

    @staticmethod
    def tag(element):
        return element.tag.split("}")[-1]

    def children(self, element, name):
        return [e for e in element if self.tag(e) == name]

    def xml(self, name):
        return ElementTree.fromstring(self.archive.read("Database000\\" + name))

    def array(self, name, code):
        data = self.archive.read("Database000\\" + name + ".dat")
        return struct.unpack(f"<{len(data) // 4}{code}", data)

    def read_elements(self, root, part):
        for group in self.children(root, "ElementGroup"):
            record = self.children(group, "File")[0]
            ids = self.array(record.get("IDs"), "i")
            nodes = self.array(record.get("Filename"), "i")
            size = len(nodes) // len(ids)
            for i, number in enumerate(ids):
                own = [self.ids[node - 1] for node in nodes[size * i:size * (i + 1)]]
                self.elements[number] = (group.get("Type"), part, own)

    def read_result(self, root, roots):
        """values[state, name of the result in the .frd file, component][node]"""
        attributes = {e.get("Name"): e.get("Value") for e in self.children(root, "Attribute")}
        source, components = attributes["source"], attributes["components"].split(" ")
        if len(components) not in (1, 3, 6):  # a name with blanks
            components = [attributes["components"]]
        self.types[source, tuple(components)] = root.get("ResultType")
        for state in self.children(root, "State"):
            values = roots["ResultValues", int(state[0][0].text)]
            record = self.children(values, "File")[0]
            numbers = self.array(record.get("Filename"), "f")
            ids = self.array(record.get("IDs"), "i") if record.get("IDs") else self.ids
            assert len(numbers) == len(ids) * len(components)
            for c, component in enumerate(components):
                self.values[int(state.get("ID")), source, component] = dict(
                    zip(ids, numbers[c::len(components)]))


# ---- Comparisons


def is_near(a, b, relative):
    return a == b or abs(a - b) <= relative * max(abs(a), abs(b)) + 1e-30


def to_float(value):
    try:
        return struct.unpack("f", struct.pack("f", value))[0]
    except OverflowError:
        return math.inf


def check(what, is_right):
    if not is_right:
        raise AssertionError(what)


def compare(frd, model, relative=0.0):
    """Every number of a .frd text is in the model, and nothing else is."""
    nodes, elements, results = frd
    check("node ids", list(nodes) == list(model.ids))
    for node, xyz in nodes.items():
        check(f"node {node}", all(is_near(to_float(a), b, relative)
                                  for a, b in zip(xyz, model.nodes[node])))
    check("element ids", sorted(elements) == sorted(model.elements))
    for number, (_, material, own) in elements.items():
        _, part, ours = model.elements[number]
        check(f"nodes of element {number}", sorted(ours) == sorted(own))
        check(f"part of element {number}", part == material or not material.isdigit())
    compared, state, seen, last = 0, 0, set(), None
    for result in results:
        if result.step != last or result.name in seen:
            state, seen, last = state + 1, set(), result.step
        seen.add(result.name)
        kind = {0: "LoadCase", 1: "Time", 2: "Frequency", 3: "LoadCase", 4: "Other"}
        check(f"state {state}", model.states[state - 1][0] == kind[result.step.analysis] and
              to_float(result.step.value) == to_float(model.states[state - 1][1]))
        for c, component in enumerate(result.components):
            found = model.values.pop((state, result.name, component))
            expected = {node: own[c] for node, own in result.values.items() if node in nodes}
            check(f"nodes of {result.name}", found.keys() == expected.keys())
            for node, value in expected.items():
                value = to_float(value) if math.isfinite(value) else UNDEFINED
                check(f"state {state}, {result.name}, {component}, node {node}: {value!r} became "
                      f"{found[node]!r}", is_near(value, found[node], relative) or
                      value == found[node] >= UNDEFINED or not math.isfinite(value))
                compared += 1
    check("values of unknown origin", not model.values)
    return compared


class Workshop:
    def __init__(self, zrfx, folder):
        self.zrfx, self.folder = zrfx, pathlib.Path(folder)

    def solve(self, name, folder=None, seconds=120):
        """Whether the solver ended well."""
        environment = dict(os.environ, OMP_NUM_THREADS="1")
        try:
            return subprocess.run(["ccx", name], cwd=folder or self.folder, env=environment,
                                  stdin=subprocess.DEVNULL, capture_output=True,
                                  timeout=seconds).returncode == 0
        except subprocess.TimeoutExpired:
            return False

    def run(self, *arguments):
        return subprocess.run([self.zrfx, *map(str, arguments)], capture_output=True, text=True)

    def imported(self, frd, output=None):
        """The model of a file that is imported without fault and passes the check."""
        output = output or self.folder / (frd.name + ".zrfx")
        for run in (self.run("import", frd, output), self.run("check", output)):
            check(f"{frd.name}: {run.args[1]}: {run.stdout[-500:]}{run.stderr[-500:]}",
                  run.returncode == 0)
        return Model(output)


# ---- One element

HEX = [(0, 0, 0), (1, 0, 0), (1, 1, 0), (0, 1, 0), (0, 0, 1), (1, 0, 1), (1, 1, 1), (0, 1, 1)]
WEDGE = [(0, 0, 0), (1, 0, 0), (0, 1, 0), (0, 0, 1), (1, 0, 1), (0, 1, 1)]
TET = [(0, 0, 0), (1, 0, 0), (0, 1, 0), (0, 0, 1)]
QUAD, TRIANGLE, BEAM = HEX[:4], WEDGE[:3], HEX[:2]

# In the order of the .frd types: the solver's type, ours, the corners, and the mid-side nodes as pairs
# of corners, in the order that the solver's input and the ZRFx format have in common. The format has
# the corners of a wedge in another order.
ELEMENTS = {
    "he8": ("C3D8", "Hexahedron", HEX, ""), "pe6": ("C3D6", "Pentahedron", WEDGE, ""),
    "te4": ("C3D4", "Tetrahedron", TET, ""),
    "he20": ("C3D20", "Hexahedron_20", HEX, "01 12 23 30 45 56 67 74 04 15 26 37"),
    "pe15": ("C3D15", "Pentahedron_15", WEDGE, "01 12 20 34 45 53 03 14 25"),
    "te10": ("C3D10", "Tetrahedron_10", TET, "01 12 20 03 13 23"),
    "tr3": ("S3", "Triangle", TRIANGLE, ""), "tr6": ("S6", "Triangle_6", TRIANGLE, "01 12 20"),
    "qu4": ("S4", "Quad", QUAD, ""), "qu8": ("S8", "Quad_8", QUAD, "01 12 23 30"),
    "be2": ("B31", "Beam", BEAM, ""), "be3": ("B32", "Beam_3", BEAM, "01")}

# A displacement gradient without symmetry, and the stresses of Hooke's law: xx yy zz xy yz zx.
GRADIENT = [[1e-3, 2e-4, 5e-4], [0, -2e-3, 3e-4], [1e-4, 0, 4e-3]]
YOUNG, POISSON = 1000.0, 0.25


def hooke():
    strain = [[(GRADIENT[i][j] + GRADIENT[j][i]) / 2 for j in range(3)] for i in range(3)]
    shear = YOUNG / (2 * (1 + POISSON))
    volume = POISSON * YOUNG / ((1 + POISSON) * (1 - 2 * POISSON)) * sum(
        strain[i][i] for i in range(3))
    pairs = [(0, 0), (1, 1), (2, 2), (0, 1), (1, 2), (2, 0)]
    return [2 * shear * strain[i][j] + (volume if i == j else 0) for i, j in pairs]


def middle(a, b):
    return [(p + q) / 2 for p, q in zip(a, b)]


def element_deck(frd_type):
    name, _, corners, middles = ELEMENTS[frd_type]
    points = corners + [middle(corners[int(p[0])], corners[int(p[1])]) for p in middles.split()]
    points = [[1 + 2 * x, 1 + 3 * y, 1 + 4 * z] for x, y, z in points]
    numbers = [10 + 7 * i for i in range(len(points))]
    lines = ["*NODE, NSET=N"] + [f"{n}, " + ", ".join(map(str, p)) for n, p in zip(numbers, points)]
    if name == "B32":  # whose middle stands between its ends
        numbers, points = [[items[i] for i in (0, 2, 1)] for items in (numbers, points)]
    lines += [f"*ELEMENT, TYPE={name}, ELSET=E", "5, " + ", ".join(map(str, numbers[:10])) +
              ("," if len(numbers) > 10 else "")]
    if len(numbers) > 10:
        lines.append(", ".join(map(str, numbers[10:])))
    lines += ["*MATERIAL, NAME=M", "*ELASTIC", f"{YOUNG}, {POISSON}"]
    lines += {"S": ["*SHELL SECTION, ELSET=E, MATERIAL=M", "0.1"],
              "B": ["*BEAM SECTION, ELSET=E, MATERIAL=M, SECTION=RECT", "0.1, 0.1", "0, 0, 1"],
              "C": ["*SOLID SECTION, ELSET=E, MATERIAL=M"]}[name[0]]
    lines += ["*STEP", "*STATIC", "*BOUNDARY"]
    for n, p in zip(numbers, points):
        moved = [sum(GRADIENT[i][j] * p[j] for j in range(3)) for i in range(3)]
        lines += [f"{n}, {i + 1}, {i + 1}, {u:.9g}" for i, u in enumerate(moved)]
        if name[0] == "B":
            lines.append(f"{n}, 4, 4, 0.")
    output = ", OUTPUT=2D" if name[0] in "SB" else ""
    lines += [f"*NODE FILE{output}", "U", f"*EL FILE{output}", "S", "*EL PRINT, ELSET=E", "S",
              "*END STEP"]
    return "\n".join(lines) + "\n"


def volume_of(corners):
    """By the tetrahedrons between the first corner and the others, for the shapes above."""
    a, b, c, d = (corners[i] for i in {8: (0, 1, 3, 4), 6: (0, 2, 1, 3), 4: (0, 1, 2, 3)}[len(corners)])
    u, v, w = ([p - q for p, q in zip(x, a)] for x in (b, c, d))
    cross = [u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2], u[0] * v[1] - u[1] * v[0]]
    return sum(p * q for p, q in zip(cross, w))


def check_element(shop, frd_type):
    name, our_type, corners, middles = ELEMENTS[frd_type]
    (shop.folder / "element.inp").write_text(element_deck(frd_type))
    check("the solver failed", shop.solve("element"))
    frd = read_frd(shop.folder / "element.frd")
    model = shop.imported(shop.folder / "element.frd")
    check("type in the .frd file", frd[1][5][0] == list(ELEMENTS).index(frd_type) + 1)
    kind, _, nodes = model.elements[5]
    check(f"type {kind}", kind == our_type)
    points = [model.nodes[node] for node in nodes]
    check("nodes", len(points) == len(corners) + len(middles.split()))
    for pair, point in zip(middles.split(), points[len(corners):]):
        expected = middle(points[int(pair[0])], points[int(pair[1])])
        check(f"node between {pair}", all(is_near(a, b, 1e-5) for a, b in zip(point, expected)))
    if name[0] == "C":
        check("volume", volume_of(points[:len(corners)]) > 0)
        check_stresses(shop, model)
    elif name[0] == "S":
        x, y = ([p[i] for p in points[:len(corners)]] for i in (0, 1))
        check("sense", sum(x[i - 1] * y[i] - x[i] * y[i - 1] for i in range(len(x))) > 0)
    else:
        check("ends", points[0][0] < points[1][0])
    print(frd_type, compare(frd, model), "values")


def check_stresses(shop, model):
    """They are the same everywhere: at the nodes, in the .dat text, and by Hooke's law."""
    names = ["SXX", "SYY", "SZZ", "SXY", "SYZ", "SZX"]
    check("tensor", model.types["STRESS", tuple(names)] == "Tensor")
    check("displacement", model.types["DISP", ("D1", "D2", "D3")] == "Displacement")
    printed = read_dat(shop.folder / "element.dat", "stresses")[0]
    check("stresses in the .dat file", len(printed) > 0)
    for component, name, column in zip(hooke(), names, (2, 3, 4, 5, 7, 6)):
        for stress in model.values[1, "STRESS", name].values():
            check(f"{name} is {stress}, not {component}", abs(stress - component) < 1e-3)
        for line in printed:
            check(f"{name} in the .dat file", abs(line[column] - component) < 1e-3)


# ---- Models


def check_model(shop, source, variant):
    """The deck as it is, or with binary output, against the .frd text of the deck as it is; or what was
    imported while the solver ran."""
    for extra in source.parent.glob("*.msh"):
        shutil.copy(extra, shop.folder)
    deck = source.read_text()
    (shop.folder / "text.inp").write_text(deck)
    text, output = shop.folder / "text.frd", shop.folder / "out.zrfx"
    if variant == "followed":
        follower = subprocess.Popen([shop.zrfx, "import", "--follow", "--timeout", "60", text, output])
    check("the solver failed", shop.solve("text"))
    if variant == "followed":
        check("following failed", follower.wait() == 0 and
              shop.run("check", output).returncode == 0)
        model = Model(output)
    elif variant == "binary":
        binary = deck.replace("*NODE FILE", "*NODE OUTPUT").replace("*EL FILE", "*ELEMENT OUTPUT")
        (shop.folder / "binary.inp").write_text(binary)
        check("the solver failed", shop.solve("binary"))
        model = shop.imported(shop.folder / "binary.frd")
    else:
        model = shop.imported(text)
    check_against_dat(shop.folder / "text.dat", model)
    print(source.stem, compare(read_frd(text), model, 1e-5 if variant == "binary" else 0), "values")


def check_against_dat(dat, model):
    modes = [line for table in read_dat(dat, "e i g e n v a l u e")[:1] for line in table]
    frequencies = [value for kind, value in model.states if kind == "Frequency"]
    check("frequencies", len(modes) == len(frequencies))
    for mode, frequency in zip(modes, frequencies):
        check(f"mode {mode[0]}", is_near(mode[3], frequency, 1e-6))
    for title, names in (("displacements", ("D1", "D2", "D3")), ("temperatures", ("T",))):
        source = "DISP" if len(names) == 3 else "NDTEMP"
        tables = read_dat(dat, title)
        check(title, len(tables) in (0, len(model.states)))
        for state, table in enumerate(tables, 1):
            check(title, len(table) == len(model.ids))
            for node, *values in table:
                for name, value in zip(names, values):
                    found = model.values[state, source, name][int(node)]
                    check(f"{name} of node {node}: {value} became {found}",
                          is_near(value, found, 1e-5))


# ---- Debian's tests


def check_references(shop):
    for source in sorted(PACKAGE.glob("*.frd.ref*")):
        data = source.read_bytes()
        text = gzip.decompress(data) if source.suffix == ".gz" else data
        if len(text) > 10**6 and not IS_LONG:
            continue
        path = shop.folder / (source.name.split(".")[0] + ".frd")
        path.write_bytes(text)
        print(path.stem, compare(read_frd(path), shop.imported(path)), "values")


def expected_statistics(values):
    """Of rows of three or six components, by the names that the program has for the quantities."""
    import numpy
    names = "x y z" if values.shape[1] == 3 else "xx yy zz xy yz zx"
    quantities = dict(zip(names.split(), values.T))
    if values.shape[1] == 3:
        return quantities | {"magnitude": numpy.linalg.norm(values, axis=1)}
    xx, yy, zz, xy, yz, zx = values.T
    matrices = numpy.stack([xx, xy, zx, xy, yy, yz, zx, yz, zz], axis=1).reshape(-1, 3, 3)
    principal = numpy.linalg.eigvalsh(matrices)[:, ::-1]
    deviators = matrices - numpy.trace(matrices, axis1=1, axis2=2)[:, None, None] / 3 * numpy.eye(3)
    quantities |= {f"principal_{i + 1}": principal[:, i] for i in range(3)}
    return quantities | {"von_mises": numpy.sqrt(1.5 * (deviators ** 2).sum(axis=(1, 2))),
                         "maximum_shear": (principal[:, 0] - principal[:, 2]) / 2}


def check_result_statistics(found, result):
    import numpy
    nodes = numpy.array(list(result.values))
    values = numpy.array(list(result.values.values())).astype(numpy.float32).astype(float)
    scale = abs(values).max()
    for quantity, expected in expected_statistics(values).items():
        own = found[quantity]
        place = f"{result.name}, {quantity}"
        check(f"number of {place}", own["count"] == len(nodes))
        check(f"mean of {place}", abs(own["mean"] - expected.mean()) <= 1e-6 * scale)
        for name, extreme in (("min", expected.min()), ("max", expected.max())):
            check(f"{name} of {place}", abs(own[name]["value"] - extreme) <= 2e-6 * scale)
            [at] = expected[nodes == own[name]["node"]]
            check(f"node of the {name} of {place}", abs(at - extreme) <= 2e-6 * scale)


def check_statistics(shop):
    """Ten results with displacements and stresses, as numpy computes them."""
    count = 0
    for source in sorted(PACKAGE.glob("*.frd.ref.gz"), key=lambda path: -path.stat().st_size):
        path = shop.folder / (source.name.split(".")[0] + ".frd")
        path.write_bytes(gzip.decompress(source.read_bytes()))
        _, _, results = read_frd(path)
        chosen = [r for r in results if r.name in ("DISP", "STRESS", "TOSTRAIN") and
                  r.step == results[-1].step]
        are_finite = all(math.isfinite(v) for r in chosen for row in r.values.values() for v in row)
        are_plain = len({r.name for r in chosen}) == len(chosen) > 1
        if path.stat().st_size > 3 * 10**6 or not are_finite or not are_plain:
            continue
        output = shop.folder / "out.zrfx"
        shop.imported(path, output)
        shown = shop.run("stats", output, "--json", "--state", "last")
        check(shown.stderr, shown.returncode == 0)
        found = {}
        for entry in json.loads(shown.stdout)["statistics"]:
            found.setdefault(entry["result"], {})[entry["quantity"]] = entry
        for result in chosen:
            check_result_statistics(found[result.name], result)
        print(path.stem, [f"{r.name}: {len(r.values)}" for r in chosen])
        count += 1
        if count == 10:
            return
    check(f"only {count} results", False)


def check_deck(shop, source, name):
    """A line on what came of a deck; a failure is raised."""
    with tempfile.TemporaryDirectory(dir=shop.folder) as work:
        folder = pathlib.Path(work)
        for other in source.iterdir():
            (folder / other.name).symlink_to(other)
        is_solved = shop.solve(name, folder)
        frd, output = folder / (name + ".frd"), folder / "out.zrfx"
        if not frd.exists():
            return "no results"
        run = shop.run("import", frd, output)
        is_whole = frd.read_bytes().rstrip().endswith(b" 9999")
        check(f"{name}: exit code {run.returncode}: {run.stderr}",
              run.returncode == (0 if is_whole and output.exists() else 1))
        check(f"{name}: no reason is given", run.returncode == 0 or frd.name in run.stderr)
        if not output.exists():
            return "refused: " + run.stderr.strip().split(": ", 2)[-1]
        with_deck = folder / "deck.zrfx"
        shop.run("import", frd, with_deck, "--deck", folder / (name + ".inp"))
        for file in (output, with_deck):
            checked = shop.run("check", file)
            check(f"{name}: {checked.stdout}{checked.stderr}", checked.returncode == 0)
        values = compare(read_frd(frd), Model(output)) if is_whole else 0
        return f"{values} values" if is_solved else f"what the failing solver wrote, {values} values"


def check_decks(shop):
    source = shop.folder / "decks"
    source.mkdir()
    for path in PACKAGE.iterdir():
        if path.suffix == ".gz":
            (source / path.stem).write_bytes(gzip.decompress(path.read_bytes()))
        else:
            shutil.copy(path, source)
    names = sorted(path.stem for path in source.glob("*.inp"))
    outcomes, failures = collections.Counter(), []
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        runs = {name: pool.submit(check_deck, shop, source, name) for name in names}
    for name, run in runs.items():
        try:
            outcome = run.result()
            outcomes["imported" if "values" in outcome else outcome] += 1
        except Exception as error:  # each deck is judged by itself
            outcome = f"FAILED: {error!r}"
            failures.append(name)
        print(f"{name}: {outcome}")
    print(dict(outcomes), "failed:", failures)
    check("decks failed", not failures)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--zrfx", required=True)
    parser.add_argument("what", choices=["element", "text", "binary", "followed", "references",
                                         "statistics", "decks"])
    parser.add_argument("name", nargs="?")
    given = parser.parse_args()
    needs_package = given.what in ("references", "statistics", "decks")
    if not shutil.which("ccx") or needs_package and not PACKAGE.is_dir():
        sys.exit(LEFT_OUT)
    if given.what == "statistics" and not importlib.util.find_spec("numpy"):
        sys.exit(LEFT_OUT)
    if given.what == "decks" and not IS_LONG:
        sys.exit(LEFT_OUT)
    with tempfile.TemporaryDirectory() as folder:
        shop = Workshop(os.path.abspath(given.zrfx), folder)
        if given.what == "element":
            check_element(shop, given.name)
        elif given.what == "references":
            check_references(shop)
        elif given.what == "statistics":
            check_statistics(shop)
        elif given.what == "decks":
            check_decks(shop)
        else:
            check_model(shop, pathlib.Path(given.name).resolve(), given.what)


if __name__ == "__main__":
    main()
