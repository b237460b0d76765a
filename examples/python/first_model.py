"""The smallest useful model: two quads, written and read back."""

import numpy as np

import zrfx

with zrfx.create("first_model.zrfx") as f:
    m = f.add_model("Plate")
    m.set_nodes(np.array([(i % 3, i // 3, 0) for i in range(6)], dtype=np.float32))
    m.add_part("Skin", {"quad": np.array([[0, 1, 4, 3], [1, 2, 5, 4]], dtype=np.int32)})

with zrfx.open("first_model.zrfx") as f:
    m = f.models["Plate"]
    print(len(m.nodes), "nodes,", m.parts["Skin"].elements)
