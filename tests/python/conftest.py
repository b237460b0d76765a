"""What the tests of the package share."""

import os
import pathlib
import subprocess
import sys

import numpy as np
import pytest

import zrfx

ROOT = pathlib.Path(__file__).resolve().parents[2]
TIMES = (0.1, 0.2, 0.4)
XYZ = np.array([(i % 3 * 0.5, i // 3 % 2, i // 6) for i in range(12)], np.float32)
HEXAHEDRON = np.array([[0, 1, 4, 3, 6, 7, 10, 9]], np.int32)
QUADS = np.array([[1, 2, 5, 4], [7, 8, 11, 10]], np.int32)


def values(*shape, seed=0):
    return np.random.default_rng(seed).random(shape, np.float32)


def write_plate(path, **options):
    """Two parts, three states, results on nodes, elements and the nodes of elements."""
    with zrfx.create(path, **options) as f:
        m = f.add_model("Plate", solution="transient", description="A bar on a plate")
        m.set_nodes(XYZ, ids=np.arange(101, 113))
        m.add_part("Bar", {"hexahedron": HEXAHEDRON}, ids=[1], id=10)
        m.add_part("Plate", {"quad": QUADS}, ids=[2, 3], id=20)
        u = m.add_result("DISP", "displacement", unit="mm", scale=5)
        s = m.add_result("STRESS", "tensor", "element_nodes", unit="MPa")
        m.add_result("PE", on="elements")
        for k, time in enumerate(TIMES):
            state = m.add_state(time=time)
            state[u] = values(12, 3, seed=k)
            state[s] = values(16, 6, seed=k)
            state["PE"] = {"Plate": np.ma.masked_greater(np.array([k, 9.0]), 8)}
        m.group_states("First step", m.states[:2])
        m.add_set("Right", {"Plate": [3]}, by_ids=True)
        m.add_set("Left", {"Plate": np.array([True, False]), "Bar": [0]})
    return path


@pytest.fixture
def plate(tmp_path):
    return write_plate(tmp_path / "plate.zrfx")


@pytest.fixture
def model(plate):
    with zrfx.open(plate) as f:
        yield f.models["Plate"]


@pytest.fixture(scope="session")
def tool():
    """Runs the program zrfx and gives what it prints."""
    program = os.environ.get("ZRFX_PROGRAM")
    if not program:
        pytest.skip("needs the program zrfx")

    def run(*arguments):
        return subprocess.run([program, *map(str, arguments)], check=True, capture_output=True, text=True).stdout

    return run


@pytest.fixture
def imported(tmp_path, tool):
    """Imports a reference result of CalculiX."""
    sys.path.insert(0, str(ROOT / "tests/tools"))
    import calculix

    def run(name):
        source = next(calculix.PACKAGE.glob(name + ".frd.ref*"), None)
        if source is None:
            pytest.skip("needs calculix-ccx-test")
        frd = tmp_path / (name + ".frd")
        frd.write_bytes(calculix.gzip.decompress(source.read_bytes()) if source.suffix == ".gz"
                        else source.read_bytes())
        tool("import", frd, tmp_path / (name + ".zrfx"))
        return tmp_path / (name + ".zrfx")

    return run
