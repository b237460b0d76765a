"""Parts of arrays, progress, digits, threads and checks."""

import zipfile

import numpy as np
import pytest
from conftest import TIMES, XYZ, values

import zrfx
from zrfx import errors

BOX = [[0, 2, 3, 1], [4, 5, 7, 6], [0, 1, 5, 4], [2, 6, 7, 3], [0, 4, 6, 2], [1, 3, 7, 5]]
RANGES = [slice(None), slice(0, 0), slice(1, 2), slice(2, 50), slice(-2, None)]


def write_mixed(path, **options):
    """Types in a row, polyhedrons, nodes by ids, values on everything, some for a few items only."""
    with zrfx.create(path, **options) as f:
        m = f.add_model("M")
        m.set_nodes([(i & 1, i >> 1 & 1, i >> 2) for i in range(8)], ids=range(20, 28))
        m.add_part("Mixed", {"triangle": [[0, 1, 2], [1, 2, 3]], "quad": [[0, 1, 3, 2]]}, ids=[5, 6, 7])
        m.add_part("Box", {"polyhedron": [BOX, BOX], "vertex": [[1]]})
        m.add_part("Lines", {"line": [[20, 27], [21, 22]]}, by_ids=True)
        results = [m.add_result(on, "vector", on) for on in ("nodes", "elements", "element_nodes", "surfaces")]
        for time in (1, 2):
            state = m.add_state(time=time)
            for result in results:
                count = sum(m._item_count(result.on, target) for target in m._targets(result.on, state.id))
                state[result] = values(count, 3, seed=time)
            state.write(m.add_result(f"Few {time}"), [1, 2], part="Mixed", items=[22, 25])
    return path


@pytest.mark.parametrize("options", [{}, {"level": 0}, {"binary": False}, {"password": "a"}])
@pytest.mark.parametrize("rows", RANGES, ids=str)
def test_a_range_is_that_of_the_whole_array(tmp_path, options, rows):
    path = write_mixed(tmp_path / "a.zrfx", **options)
    with zrfx.open(path, options.get("password")) as f:
        m = f.models["M"]
        nodes = m.read_nodes(rows)
        assert np.array_equal(nodes.xyz, m.nodes.xyz[rows]) and np.array_equal(nodes.ids, m.nodes.ids[rows])
        for part in m.parts.values():
            own, whole = part.read_elements(rows), part.elements
            first, stop, _ = rows.indices(whole.count)
            assert (own.count, own.first, own.by_ids) == (max(stop - first, 0), first, whole.by_ids)
            assert own.first_node == whole.node_counts()[:first].sum()
            assert cells(own) == cells(whole)[rows]
            assert (own.ids is None) == (whole.ids is None)
            assert whole.ids is None or own.ids.tolist() == whole.ids[rows].tolist()
            for result in m.results.values():
                if result.on == "nodes" or result.name in ("elements", "element_nodes", "surfaces"):
                    assert np.array_equal(result.at(rows=rows, part=part), result.at(part=part)[rows], equal_nan=True)
        for result in m.results.values():
            assert np.array_equal(result.at(0, rows=rows), result.at(0)[rows], equal_nan=True), result
        with pytest.raises(ValueError, match="step"):
            m.read_nodes(slice(0, 8, 2))


def cells(elements):
    """The nodes of each element."""
    return [np.ravel(sum(nodes, []) if group.polyhedrons else nodes).tolist() for group in elements.groups
            for nodes in (group.faces() if group.polyhedrons else group.nodes)]


def test_values_of_a_part_are_found_without_those_of_others(plate, tmp_path):
    path = tmp_path / "damaged.zrfx"
    with zipfile.ZipFile(plate) as source, zipfile.ZipFile(path, "w") as copy:
        for name in source.namelist():
            # Values and nodes of the bar, of the first state: no data in them fits.
            is_lost = name.endswith((".dat",)) and ("ResultValues0002" in name or "Nodes0001" in name)
            copy.writestr(name, b"" if is_lost else source.read(name))
    with zrfx.open(path) as f:
        m = f.models["Plate"]
        stress = m.results["STRESS"]
        with pytest.raises(errors.DamagedError):
            stress.at(0, part="Bar")
        assert np.array_equal(stress.at(0, part="Plate"), values(16, 6)[8:])
        assert np.array_equal(stress.at(1, rows=slice(4, 12)), values(16, 6, seed=1)[4:12])
        assert stress.history(element=3).shape == (3, 4, 6)
        assert m.results["PE"].at(0, rows=slice(1, 3), undefined="mask").mask.tolist() == [False, True]
        assert len(m.results) == 3 and m.check() == []


def write_large(path, **options):
    with zrfx.create(path, **options) as f:
        m = f.add_model("M")
        m.set_nodes(values(400_000, 3))
        m.add_part("P", {"vertex": [[0]]})
        for time in (1, 2):
            m.add_state(time=time)[m.add_result(f"R{time}")] = values(400_000, seed=time)
    return path


def use(operation, path, progress):
    if operation == "write":
        write_large(path.with_name("b.zrfx"), progress=progress)
    elif operation == "append":
        with zrfx.append(path, progress=progress) as f:
            f.models["M"].add_nodes(values(400_000, 3))
    else:
        with zrfx.open(path, progress=progress) as f:
            result = f.models["M"].results["R1"]
            return result.at() if operation == "read" else result.history(index=5, progress=progress)


@pytest.mark.parametrize("operation", ["open and read", "read", "write", "append", "history"])
def test_progress_is_shown_and_can_stop(tmp_path, operation):
    path, seen = write_large(tmp_path / "a.zrfx", level=1), []
    use(operation, path, seen.append)
    assert len(seen) > 2 and all(0 <= fraction <= 1 for fraction in seen) and max(seen) > 0.99
    with pytest.raises(errors.CancelledError, match="progress callback"):
        use(operation, path, lambda fraction: False)
    with pytest.raises(ZeroDivisionError):
        use(operation, path, lambda fraction: 1 / 0)
    use(operation, path, lambda fraction: None)  # only False stops


def test_a_callback_uses_other_files_and_not_its_own(tmp_path, plate):
    path = write_large(tmp_path / "a.zrfx", level=1)
    with zrfx.open(path) as f:
        sums = []

        def other(fraction):
            with zrfx.open(plate, progress=lambda own: None) as beside:
                sums.append(beside.models["Plate"].results["DISP"].at().sum())

        f.progress = other
        f.models["M"].results["R1"].at()
        assert len(sums) > 1 and len(set(sums)) == 1
        f.progress = lambda fraction: f.models["M"].results["R2"].at()
        with pytest.raises(RuntimeError, match="cannot use the file that calls it"):
            f.models["M"].results["R1"].at()
        f.progress = None
        assert np.array_equal(f.models["M"].results["R1"].at(), values(400_000, seed=1))


@pytest.mark.parametrize("threads", [1, 2])
def test_digits_are_those_asked_for(tmp_path, threads):
    data = values(100_000, 3)
    with zrfx.create(tmp_path / "a.zrfx", digits=4, threads=threads) as f:
        m = f.add_model("M")
        m.set_nodes(data)
        m.add_part("P", {"vertex": [[0]]})
        state = m.add_state(time=1)
        state[m.add_result("R", "vector")] = data
        state[m.add_result("Coarse", "vector", digits=2)] = data
    with zrfx.open(tmp_path / "a.zrfx", threads=threads) as f:
        m = f.models["M"]
        assert np.array_equal(m.nodes.xyz, data) and [r.digits for r in m.results.values()] == [4, 2]
        for name, limit in (("R", 0.5e-4), ("Coarse", 0.5e-2)):
            error = np.abs(m.results[name].at() / data - 1).max()
            assert limit / 20 < error <= limit


def test_check_tells_what_does_not_fit(plate):
    with zrfx.append(plate) as f:
        m = f.models["Plate"]
        assert m.check() == []
        m.set_nodes(np.vstack([XYZ, XYZ]))
        findings = m.check()
        assert len(findings) == len(TIMES) and all("24" in each and "12" in each for each in findings)
        for state in m.states:
            state["DISP"] = values(24, 3)
        assert m.check() == []
