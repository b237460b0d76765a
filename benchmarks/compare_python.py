#!/usr/bin/env python3
"""What reading and writing through Python costs beyond C++ (PythonPeer.cpp), and beside h5py, on one model:
TMPDIR=/dev/shm PYTHONPATH=build/release/python benchmarks/compare_python.py. Large arrays, and many small blocks.

Each figure is CPU time of one thread in a process of its own. Processes take turns, in another order in every other
round; medians are shown. On a disk the system's share changes by more than what is measured."""

import argparse
import pathlib
import statistics
import subprocess
import sys
import tempfile
import time

import numpy as np

ROOT = pathlib.Path(__file__).resolve().parents[1]
PEER = ROOT / "build/release/benchmarks/PythonPeer"


def hexahedrons(edge):
    corner = np.arange(edge ** 3, dtype=np.int32).reshape(edge, edge, edge)[:-1, :-1, :-1].ravel()
    return corner[:, None] + np.array([0, 1, edge + 1, edge, edge ** 2, edge ** 2 + 1, edge ** 2 + edge + 1,
                                       edge ** 2 + edge], np.int32)


def make_data(folder, edge):
    """Coordinates of a block with some noise, and moves that are smooth but for noise of 1e-4."""
    random = np.random.default_rng(1)
    grid = np.stack(np.meshgrid(*[np.arange(edge)] * 3, indexing="ij"), -1).reshape(-1, 3)[:, ::-1]
    noise = 1 + 1e-4 * random.standard_normal((2, *grid.shape))
    (grid * noise[0]).astype(np.float32).tofile(folder / "coordinates.bin")
    (np.sin(grid * 0.05) * noise[1]).astype(np.float32).tofile(folder / "values.bin")
    hexahedrons(edge).tofile(folder / "elements.bin")


def load(folder):
    return (np.fromfile(folder / "coordinates.bin", np.float32).reshape(-1, 3),
            np.fromfile(folder / "elements.bin", np.int32).reshape(-1, 8),
            np.fromfile(folder / "values.bin", np.float32).reshape(-1, 3))


def write_zrfx(path, count, level, folder):
    import zrfx

    xyz, elements, values = load(folder)
    with zrfx.create(path, level=level, threads=1) as f:
        m = f.add_model("M", solution="transient")
        m.set_nodes(xyz)
        m.add_part("P", {"hexahedron": elements})
        u = m.add_result("DISP", "displacement")
        start = time.process_time()
        for i in range(count):
            m.add_state(time=i)[u] = values
        m._write_lists(is_last=True)
        return time.process_time() - start


def read_zrfx(path, count, level, folder, undefined="keep"):
    import zrfx

    with zrfx.open(path, threads=1) as f:
        u = next(iter(f.models.values())).results["DISP"]
        u.times
        start = time.process_time()
        for i in range(count):
            u.at(i, undefined=undefined)
        return time.process_time() - start


def write_h5py(path, count, level, folder):
    import h5py

    xyz, elements, values = load(folder)
    packing = {"compression": "gzip", "compression_opts": level} if level else {}
    with h5py.File(path, "w", libver="latest") as f:
        f.create_dataset("xyz", data=xyz, **packing)
        f.create_dataset("hexahedron", data=elements, **packing)
        start = time.process_time()
        for i in range(count):
            f.create_dataset(f"DISP/{i}", data=values, **packing).attrs["time"] = i
        f.flush()
        return time.process_time() - start


def read_h5py(path, count, level, folder):
    import h5py

    with h5py.File(path) as f:
        start = time.process_time()
        for i in range(count):
            f[f"DISP/{i}"][()]
        return time.process_time() - start


WAYS = {"zrfx": (write_zrfx, read_zrfx), "zrfx, NaN": (None, lambda *task: read_zrfx(*task, undefined="nan")),
        "h5py": (write_h5py, read_h5py)}


def run_cpp(operation, path, count, level, folder, nodes):
    command = [PEER, operation, path, nodes, count, level, folder]
    return float(subprocess.run([*map(str, command)], check=True, capture_output=True, text=True).stdout)


def run_python(way, operation, path, count, level, folder):
    command = [sys.executable, __file__, "--one", way, operation, path, count, level, folder]
    return float(subprocess.run([*map(str, command)], check=True, capture_output=True, text=True).stdout)


def measure(edge, count, level, rounds, folder):
    """Medians by way and operation, in seconds for one block."""
    make_data(folder, edge)
    found = {}
    for turn in range(rounds):
        for operation in ("write", "read"):
            ways = [way for way in ("C++", *WAYS) if way == "C++" or WAYS[way][operation == "read"]]
            for way in ways if turn % 2 else reversed(ways):
                path = folder / way.split(",")[0].replace("zrfx", "a.zrfx").replace("C++", "b.zrfx")
                taken = (run_cpp(operation, path, count, level, folder, edge ** 3) if way == "C++"
                         else run_python(way, operation, path, count, level, folder))
                found.setdefault((way, operation), []).append(taken / count)
    return {key: statistics.median(each) for key, each in found.items()}, found


def excess(found, way, operation):
    """The median of the differences from C++ within a round."""
    return statistics.median(a - b for a, b in zip(found[way, operation], found["C++", operation]))


#: Nodes along an edge, level, blocks.
CASES = [("12 MB a block", 100, 0, 20, "ms", 1e3), ("12 MB a block", 100, 1, 6, "ms", 1e3),
         ("12 MB a block", 100, 5, 6, "ms", 1e3), *(("1.5 kB a block", 5, level, 4000, "us", 1e6) for level in (0, 1, 5))]


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--rounds", type=int, default=9)
    parser.add_argument("--one", nargs=6, help=argparse.SUPPRESS)
    arguments = parser.parse_args()
    if arguments.one:
        way, operation, path, count, level, folder = arguments.one
        task = path, int(count), int(level), pathlib.Path(folder)
        print(WAYS[way][operation == "read"](*task))
        return
    print(f"{'':24}{'level':>6}" + "".join(f"{way:>12}" for way in ("C++", *WAYS)) + "   beyond C++")
    with tempfile.TemporaryDirectory() as name:
        for title, edge, level, count, unit, scale in CASES:
            medians, found = measure(edge, count, level, arguments.rounds, pathlib.Path(name))
            for operation in ("write", "read"):
                figures = "".join(f"{scale * medians[way, operation]:12.2f}" if (way, operation) in medians
                                  else f"{'':12}" for way in ("C++", *WAYS))
                beyond = excess(found, "zrfx", operation)
                share = 100 * beyond / medians["C++", operation]
                print(f"{operation + ', ' + title:24}{level:6}{figures}   {1e6 * beyond:.1f} us, {share:.1f} % ({unit})",
                      flush=True)


if __name__ == "__main__":
    main()
