"""Lists what is in a file, and uses its arrays in place."""

import numpy as np
import transient_run  # noqa: F401  (writes the file)

import zrfx

with zrfx.open("transient_run.zrfx") as f:
    for name, model in f.models.items():
        print(name, model.solution, model.times)
        for result in model.results.values():
            print(" ", result.name, result.kind, result.on, result.unit, result.times)

    m = f.models["Impact"]
    xyz = m.nodes.xyz  # (n, 3), a read-only view that outlives the file
    hexa = m.parts["Bar"].elements["hexahedron"]  # (n, 8) positions in xyz
    stress = m.results["STRESS"].at(time=0.2)  # rows of all parts, one after the other
    plate = m.results["STRESS"].at(-1, part="Plate")
    strain = m.results["PEEQ"].at(0, undefined="mask")  # NaN where undefined, unless asked otherwise
    buffer = np.empty((12, 3))
    m.results["DISP"].read_into(buffer, state=-1)
    tip = m.results["DISP"].history(node=112)  # (states, 3)
    clamped = m.results["PEEQ"].at(0, part="Plate")[m.sets["Clamped"].mask("Plate")]

print(xyz[hexa[0]].mean(axis=0), stress.shape, plate.shape, strain, tip[:, 0], clamped)
