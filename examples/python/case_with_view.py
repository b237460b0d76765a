"""How a model is to be shown: camera, colours, a description, a picture, a texture."""

import numpy as np
import transient_run  # noqa: F401

import zrfx

picture = np.full((64, 64, 3), 180, dtype=np.uint8)  # height, width, RGB

with zrfx.append("transient_run.zrfx") as f:
    m = f.models["Impact"]
    bar = m.parts["Bar"]
    view = (zrfx.ViewSettings()
            .perspective_camera(eye=(3, -4, 3), target=(0.5, 0.5, 0.5), up=(0, 0, 1))
            .fringes(m.results["STRESS"].id, range=(0, 3))
            .displacements(m.results["DISP"].id, [bar.id])
            .part(bar.id, color=zrfx.Color(1, 0.5, 0), style="surface_mesh"))
    case = f.add_case("Stresses", m, description="<p>After the impact.</p>", snapshot=picture, properties=view)
    case.images["steel"] = picture
    f.texts["notes"] = "Made by an example."

with zrfx.open("transient_run.zrfx") as f:
    case = f.cases["Stresses"]
    for kind, values in case.properties:  # settings that ViewSettings does not know go the same way
        print(kind, values)
    assert case.snapshot is not None and case.snapshot.shape == (64, 64, 3)
