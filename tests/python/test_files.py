"""Models written and read, value by value; failures; memory; threads."""

import concurrent.futures
import csv
import gc
import io
import logging
import subprocess
import sys
import zipfile

import numpy as np
import pytest
from conftest import HEXAHEDRON, QUADS, TIMES, XYZ, values, write_plate

import zrfx
from zrfx import _arrays, errors


@pytest.mark.parametrize("options", [{}, {"level": 0}, {"password": "öpen"}, {"vendor": "V", "application": "A"}])
def test_a_model_is_read_as_it_was_written(tmp_path, tool, options):
    path = write_plate(tmp_path / "plate.zrfx", **options)
    assert zrfx.is_zrfx(path) and zrfx.is_encrypted(path) == ("password" in options)
    with zrfx.open(path, options.get("password")) as f:
        m = f.models["Plate"]
        for key in options.keys() - {"password"}:
            assert f.settings[key] == options[key]
        assert (m.simulation, m.solution, m.description) == ("structural", "transient", "A bar on a plate")
        assert np.array_equal(m.nodes.xyz, XYZ) and m.nodes.ids.tolist() == list(range(101, 113))
        assert np.array_equal(m.parts["Bar"].elements["hexahedron"], HEXAHEDRON)
        assert np.array_equal(m.parts["Plate"].elements["quad"], QUADS)
        assert [(p.id, p.name, p.elements.ids.tolist()) for p in m.parts.values()] == [
            (10, "Bar", [1]), (20, "Plate", [2, 3])]
        assert m.times.tolist() == list(TIMES) and m.states.groups[0].states == [1, 2]
        u, s, pe = m.results.values()
        assert (u.kind, u.on, u.unit, u.scale, s.components[3]) == ("displacement", "nodes", "mm", 5, "xy")
        for k, time in enumerate(TIMES):
            assert np.array_equal(u.at(time=time), values(12, 3, seed=k))
            assert np.array_equal(s.at(k), values(16, 6, seed=k))
            assert np.array_equal(s.at(k, part="Plate"), values(16, 6, seed=k)[8:])
        assert np.array_equal(pe.at(1), [np.nan, 1, np.nan], equal_nan=True)
        assert pe.at(1, undefined="mask").mask.tolist() == [True, False, True]
        assert (pe.at(1, undefined="keep")[[0, 2]] >= 2.99e38).all()
        assert u.history(node=103)[:, 1].tolist() == [values(12, 3, seed=k)[2, 1] for k in range(3)]
        assert np.array_equal(s.history(element=3, states=[0, -1])[1], values(16, 6, seed=2)[12:])
        assert m.sets["Right"].mask("Plate").tolist() == [False, True]
        assert m.sets["Right"].parts["Plate"].tolist() == [1]
        assert {name: own.tolist() for name, own in m.sets["Left"].parts.items()} == {"Bar": [0], "Plate": [0]}
    if "password" not in options:
        tool("check", path)


@pytest.mark.parametrize("name, states, numbers", [("thermomech", 3, 10000), ("fricloop", 39, 5000)])
def test_a_real_import_equals_what_the_program_prints(imported, tool, name, states, numbers):
    path = imported(name)

    def table(block, id, skip):
        rows = list(csv.reader(io.StringIO(tool("cat", path, "--csv", "--database", 0, "--block", f"{block}:{id}"))))
        return np.array([row[skip:] for row in rows[1:]], dtype=np.float32)

    compared = 0
    with zrfx.open(path) as f:
        m, = f.models.values()
        assert np.array_equal(m.nodes.xyz, table("Nodes", 1, 1))
        for part in m.parts.values():
            for nodes in part.elements.values():
                assert np.array_equal(nodes, table("Elements", part.elements.block_id, 2))
        for result in m.results.values():
            for state in result.states:
                block, = result._blocks[state.id]
                field, = result.fields(state)
                printed = table("ResultValues", block, 0 if field.items is None else 1)
                assert np.array_equal(field.values.reshape(printed.shape), printed)
                compared += printed.size
    assert len(m.states) >= states and compared > numbers


def test_every_kind_of_block_is_kept(tmp_path, tool):
    path = tmp_path / "kinds.zrfx"
    cube = np.array([(i & 1, i >> 1 & 1, i >> 2) for i in range(8)], float)
    box = [[0, 2, 3, 1], [4, 5, 7, 6], [0, 1, 5, 4], [2, 6, 7, 3], [0, 4, 6, 2], [1, 3, 7, 5]]
    motion = np.array([[0, -1, 0, 2], [1, 0, 0, 0], [0, 0, 1, 0], [0, 0, 0, 1]])
    with zrfx.create(path, binary=False) as f:
        m = f.add_model("Kinds", simulation="multibody", solution="other_solution")
        m.set_nodes(cube, ids=range(10, 18))
        m.add_part("Box", {"polyhedron": [box], "vertex": [[3]]}, ids={"polyhedron": [7], "vertex": [8]})
        m.add_part("By id", {"line": [[10, 17]]}, ids=[9], by_ids=True)
        own = m.add_nodes(cube + 5)
        m.add_part("Other", {"tetra": [[0, 1, 2, 4]]}, ids=[1], nodes=own, geometry=1)
        r = m.add_result("V", "vector", strain="engineering", attributes={"note": "n"}, relative=True)
        flux = m.add_result("FLUX", on="surfaces")
        body = m.add_transformation("Motion")
        for frequency in (1, 2):
            state = m.add_state(frequency=frequency)
            state.write(r, [[1, 2, 3]], items=[12], nodes=m.nodes)
            state.write(flux, np.arange(4), part="Other")
            state[body] = {"Box": motion}
        m.states[1].set_part("By id", {"line": [[10, 11], [11, 12]]}, ids=[9, 10], by_ids=True)
        m.add_state(frequency=3)
        for case, view in (("Front", zrfx.ViewSettings().perspective_camera((0, 0, 9), (0, 0, 0), (0, 1, 0))
                            .fringes(r.id, (0, 1)).part(1, color=(1, 0, 0), opacity=0.5, style="line")),
                           ("None", None)):
            shown = f.add_case(case, m, description="<p>ä</p>", properties=view)
        shown.snapshot = np.full((8, 6, 3), 128, np.uint8)
        shown.images["steel"] = np.arange(18, dtype=np.uint8).reshape(2, 3, 3)
        shown.derived_disabled = True
        f.texts["notes"] = "Träger\n"
    with zrfx.open(path) as f:
        m = f.models["Kinds"]
        assert m.parts["Box"].elements["polyhedron"] == [box]
        assert m.parts["Box"].elements.ids.tolist() == [7, 8]
        assert m.parts["Other"].geometry == 1 and m.parts["Other"].nodes.xyz.min() == 5
        assert [m.parts["By id"].elements_at(s)["line"].tolist() for s in m.states] == [
            [[10, 17]], [[10, 11], [11, 12]], [[10, 11], [11, 12]]]
        assert [(s.kind, s.value) for s in m.states] == [("frequency", 1), ("frequency", 2), ("frequency", 3)]
        r = m.results["V"]
        assert (r.strain, r.relative, r.attributes) == ("engineering", True, {"note": "n"})
        assert r.at(0).shape == (16, 3) and r.at(0)[2].tolist() == [1, 2, 3] and np.isnan(r.at(0)).sum() == 45
        assert m.results["FLUX"].at(part="Other").tolist() == [0, 1, 2, 3]
        assert np.array_equal(m.transformations["Motion"].at(m.states[1])["Box"], motion)
        front, other = f.cases.values()
        part = dict(front.properties)["part_settings"]
        assert part["color"] == zrfx.Color(1, 0, 0) and part["draw_style"] == "line"
        assert front.model is m and front.snapshot is None and other.properties == []
        assert abs(other.snapshot.astype(int) - 128).max() < 3 and other.snapshot.shape == (8, 6, 3)
        assert other.images["steel"].shape == (2, 3, 3) and other.derived_disabled
        assert (other.description, dict(f.texts)) == ("<p>ä</p>", {"notes": "Träger\n"})
    tool("check", path)


def test_elements_of_a_type_of_others_are_kept_as_they_are(plate, tmp_path):
    with zipfile.ZipFile(plate) as source, zipfile.ZipFile(tmp_path / "shell.zrfx", "w") as copy:
        for name in source.namelist():
            copy.writestr(name, source.read(name).replace(b'Type="Quad"', b'Type="Shell"'))
    with zrfx.open(tmp_path / "shell.zrfx") as f:
        m = f.models["Plate"]
        elements = m.parts["Plate"].elements
        assert np.array_equal(elements["unknown"], QUADS) and elements.count == 2
        assert np.array_equal(m.results["STRESS"].history(element=3)[0], values(16, 6)[12:])


def test_states_are_appended_and_followed(plate):
    reader = zrfx.open(plate)
    m = reader.models["Plate"]
    with zrfx.append(plate) as f:
        writer = f.models["Plate"]
        state = writer.add_state(time=0.8, name="Last")
        state["DISP"] = values(12, 3, seed=8)
        writer.states[0]["DISP"] = values(12, 3, seed=9)  # replaces what is there
        f.flush()
        assert reader.refresh() and m.states.names[-1] == "Last" and not reader.refresh()
        assert np.array_equal(m.results["DISP"].at(), values(12, 3, seed=8))
        assert np.array_equal(m.results["DISP"].at(0), values(12, 3, seed=9))
        assert len(m.results["DISP"].fields(0)) == 1
    reader.close()


def test_views_share_memory_are_read_only_and_outlive_the_file(plate, tmp_path):
    f = zrfx.open(plate)
    m = f.models["Plate"]
    views = [m.nodes.xyz, m.nodes.ids, m.parts["Bar"].elements["hexahedron"], m.results["DISP"].at(0)]
    assert all(isinstance(view.base.obj, zrfx._core.Array) for view in views)  # the library's memory
    assert _arrays.floats(XYZ) is XYZ and _arrays.ints(QUADS) is QUADS  # what is written is the caller's
    copies = [view.copy() for view in views]
    f.close()
    del f, m
    gc.collect()
    for view, copy in zip(views, copies):
        assert not view.flags.writeable and np.array_equal(view, copy)
        with pytest.raises(ValueError):
            view[0] = 0


def test_files_are_dropped_after_an_exception(plate, tmp_path):
    def fail(opened):
        with opened as f:
            f.texts["half"] = "done"
            raise RuntimeError("the solver failed")

    for open, path in ((zrfx.create, tmp_path / "new.zrfx"), (zrfx.append, plate), (zrfx.create, plate)):
        with pytest.raises(RuntimeError, match="the solver failed"):
            fail(open(path))
    assert not (tmp_path / "new.zrfx").exists() and list(tmp_path.iterdir()) == [plate]
    with zrfx.open(plate) as f:
        assert len(f.texts) == 0 and len(f.models["Plate"].states) == 3


def damaged(plate):
    data = plate.read_bytes()
    plate.write_bytes(data[:len(data) // 2])
    return plate


def text_file(plate):
    plate.write_text("Hello")
    return plate


@pytest.mark.parametrize("kind, python_kind, code, text, fail", [
    (errors.NotFoundError, FileNotFoundError, "NOT_FOUND", "none.zrfx", lambda p: zrfx.open(p.parent / "none.zrfx")),
    (errors.NotZrfxError, OSError, "NO_ZRFX_FILE", "plate", lambda p: zrfx.open(text_file(p))),
    (errors.PasswordNeededError, errors.PasswordError, "PASSWORD_NEEDED", "password",
     lambda p: zrfx.open(write_plate(p, password="a"))),
    (errors.WrongPasswordError, errors.PasswordError, "WRONG_PASSWORD", "plate",
     lambda p: zrfx.open(write_plate(p, password="a"), "b")),
    (errors.LockedError, OSError, "IN_USE", "plate", lambda p: [zrfx.append(p), zrfx.append(p)]),
    (errors.ReadOnlyError, OSError, "READ_ONLY", "reading", lambda p: zrfx.open(p).add_model("M")),
    (errors.InvalidArgumentError, ValueError, "INVALID_ARGUMENT", "name", lambda p: zrfx.append(p).add_model("")),
    (errors.IncompleteError, OSError, "INCOMPLETE", "state info", lambda p: _empty_model(p)),
    (KeyError, KeyError, None, "'Plate'", lambda p: zrfx.open(p).models["Plaet"]),
    (KeyError, KeyError, None, "0.1 to 0.4", lambda p: _result(p).at(time=0.3)),
    (IndexError, IndexError, None, "3 states", lambda p: _result(p).at(3)),
    (KeyError, KeyError, None, "node 7", lambda p: _result(p).history(node=7)),
])
def test_failures_are_exceptions_that_tell_the_cause(plate, kind, python_kind, code, text, fail):
    with pytest.raises(kind, match=text) as caught:
        fail(plate)
    assert isinstance(caught.value, python_kind)
    assert code is None or caught.value.code == code


def _empty_model(path):
    with zrfx.append(path) as f:
        f.add_model("Empty")


def _result(path):
    return zrfx.open(path).models["Plate"].results["DISP"]


@pytest.mark.parametrize("kind, text, write", [
    (ValueError, r"\(n, 3\)", lambda m: m.set_nodes(np.zeros(12))),
    (ValueError, "as many ids", lambda m: m.set_nodes(XYZ, ids=[1])),
    (ValueError, "8 nodes, not 4", lambda m: m.add_part("P", {"hexahedron": QUADS})),
    (ValueError, "vertex, line", lambda m: m.add_part("P", {"hexa": QUADS})),
    (OverflowError, "32 bits", lambda m: m.add_part("P", {"quad": QUADS.astype(np.int64) << 40})),
    (TypeError, "whole numbers", lambda m: m.add_part("P", {"quad": QUADS + 0.5})),
    (errors.ZrfxError, "negative", lambda m: m.add_part("P", {"quad": QUADS - 9})),
    (ValueError, "scalar, vector", lambda m: m.add_result("R", "matrix")),
    (ValueError, "12 nodes, not for 11", lambda m: m.states[0].__setitem__("DISP", np.zeros((11, 3)))),
    (ValueError, "shape", lambda m: m.states[0].__setitem__("DISP", np.zeros(12))),
    (ValueError, "id 2", lambda m: m.add_state(id=2)),
    (ValueError, "camera, ", lambda m: m.file.cases["C"].__setattr__("properties", [("camera", {"eye": 1})])),
])
def test_data_that_does_not_fit_is_refused(plate, kind, text, write):
    with zrfx.append(plate) as f:
        m = f.models["Plate"]
        f.add_case("C", m)
        with pytest.raises(kind, match=text if "camera" not in text else ""):
            write(m)
    with zrfx.open(plate) as f:
        assert [part.id for part in f.models["Plate"].parts.values()] == [10, 20]


def test_messages_go_to_logging_and_raised_ones_only_as_debug(plate, caplog):
    with caplog.at_level(logging.DEBUG, "zrfx"):
        zrfx.append(plate).add_model("Dropped")
        gc.collect()
        with pytest.raises(errors.NotFoundError):
            zrfx.open("none.zrfx")
    levels = {record.levelname for record in caplog.records if "none.zrfx" in record.getMessage()}
    assert levels == {"DEBUG"}
    assert "WARNING" in {record.levelname for record in caplog.records}


def test_threads_share_a_file_and_run_beside_a_reading(plate, tmp_path):
    with zrfx.open(plate) as f, concurrent.futures.ThreadPoolExecutor(8) as pool:
        u = f.models["Plate"].results["DISP"]
        read = list(pool.map(lambda i: u.at(i % 3), range(200)))
        assert all(np.array_equal(array, values(12, 3, seed=i % 3)) for i, array in enumerate(read))
    with zrfx.create(tmp_path / "threads.zrfx", level=1) as f, concurrent.futures.ThreadPoolExecutor(8) as pool:
        m = f.add_model("M")
        m.set_nodes(XYZ)
        m.add_part("P", {"quad": QUADS})
        r = m.add_result("R")
        states = [m.add_state(time=i) for i in range(100)]
        list(pool.map(lambda state: state.write(r, np.full(12, state.value)), states))
    with zrfx.open(tmp_path / "threads.zrfx") as f:
        assert [a[5] for a in map(f.models["M"].results["R"].at, range(100))] == list(range(100))


def test_the_interpreter_runs_on_while_a_file_is_written(tmp_path):
    big = np.random.default_rng(1).random((2_000_000, 3), np.float32)
    with zrfx.create(tmp_path / "big.zrfx", level=9) as f, concurrent.futures.ThreadPoolExecutor(1) as pool:
        m = f.add_model("M")
        writing = pool.submit(m.set_nodes, big)
        turns = 0
        while not writing.done():
            turns += 1
        f.abandon()
    assert turns > 1000


def test_a_process_that_ends_with_open_files_ends_well(plate):
    script = f"import zrfx; f = zrfx.append({str(plate)!r}); m = f.add_model('M'); x = f.models['Plate'].nodes.xyz"
    done = subprocess.run([sys.executable, "-c", script], capture_output=True, text=True)
    assert done.returncode == 0 and "Traceback" not in done.stderr, done.stderr
