"""A part that loses an element during the run, and a rigid body that turns."""

import numpy as np

import zrfx

quarter = np.array([[0, -1, 0, 0], [1, 0, 0, 0], [0, 0, 1, 0], [0, 0, 0, 1]])

with zrfx.create("changing_mesh.zrfx") as f:
    m = f.add_model("Crack", solution="explicit_dynamic")
    m.set_nodes([(i % 3, i // 3, 0) for i in range(6)])
    m.add_part("Skin", {"quad": [[0, 1, 4, 3], [1, 2, 5, 4]]}, ids=[1, 2])
    m.add_part("Tool", {"line": [[0, 5]]})
    damage = m.add_result("DAMAGE", on="elements")
    turn = m.add_transformation("Turn")
    first = m.add_state(time=0)
    first[damage] = {"Skin": [0.1, 0.9]}
    second = m.add_state(time=1)
    second.set_part("Skin", {"quad": [[0, 1, 4, 3]]}, ids=[1])  # from this state on
    second[damage] = {"Skin": [0.2]}
    second[turn] = {"Tool": quarter}

with zrfx.open("changing_mesh.zrfx") as f:
    m = f.models["Crack"]
    for state in m.states:
        print(state.value, m.parts["Skin"].elements_at(state), m.results["DAMAGE"].at(state, part="Skin"))
    print(m.transformations["Turn"].at(m.states[1])["Tool"][:2, :2])
