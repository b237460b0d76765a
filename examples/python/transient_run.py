"""A solver's run: two parts, displacements on nodes, stresses on the nodes of elements, a state at a time."""

import numpy as np

import zrfx

xyz = np.array([(i % 3 * 0.5, i // 3 % 2, i // 6) for i in range(12)], dtype=np.float32)
nid = np.arange(101, 113, dtype=np.int32)

with zrfx.create("transient_run.zrfx", level=1) as f:  # after an exception nothing is left behind
    m = f.add_model("Impact", simulation="structural", solution="transient")
    m.set_nodes(xyz, ids=nid)
    m.add_part("Bar", {"hexahedron": [[0, 1, 4, 3, 6, 7, 10, 9]]}, ids=[1])
    m.add_part("Plate", {"quad": [[1, 2, 5, 4], [7, 8, 11, 10]]}, ids=[2, 3])
    u = m.add_result("DISP", kind="displacement", on="nodes", unit="mm")
    s = m.add_result("STRESS", kind="tensor", on="element_nodes", unit="MPa")
    p = m.add_result("PEEQ", kind="scalar", on="elements")
    for time in (0.1, 0.2, 0.3):
        state = m.add_state(time=time)
        state[u] = xyz * np.float32(time)
        state[s] = {"Bar": np.full((8, 6), 5 * time), "Plate": np.full((8, 6), 7 * time)}
        state[p] = {"Plate": [0.001 * time, np.nan]}  # NaN: no value; the bar has none either
        f.flush()  # from here on the state is safe, and readers see it
    m.add_set("Clamped", {"Plate": [2]}, by_ids=True)
