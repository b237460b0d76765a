"""Writes a block of hexahedrons in three parts, large enough that memory can be seen: make_block.py FILE EDGE"""

import sys

import numpy as np

import zrfx

path, edge = sys.argv[1], int(sys.argv[2])
n = edge + 1
z, y, x = np.meshgrid(*[np.arange(n, dtype=np.float32)] * 3, indexing="ij")
xyz = np.stack([x.ravel(), y.ravel(), z.ravel()], 1)
corner = (np.arange(n ** 3, dtype=np.int32).reshape(n, n, n)[:-1, :-1, :-1]).ravel()
hexahedrons = corner[:, None] + np.array([0, 1, n + 1, n, n * n, n * n + 1, n * n + n + 1, n * n + n], np.int32)

with zrfx.create(path, level=1) as f:
    m = f.add_model("Block", solution="transient")
    m.set_nodes(xyz, ids=np.arange(1, n ** 3 + 1))
    for i, elements in enumerate(np.array_split(hexahedrons, 3)):
        m.add_part(f"Part {i + 1}", {"hexahedron": elements})
    displacement = m.add_result("DISP", "displacement", "nodes")
    stress = m.add_result("STRESS", "tensor", "nodes")
    for time in (0.5, 1):
        state = m.add_state(time=time)
        state[displacement] = xyz * np.float32(0.01 * time)
        state[stress] = np.sin(0.05 * xyz[:, [0, 1, 2, 0, 1, 2]] * np.float32(time) + np.arange(6, dtype=np.float32))
