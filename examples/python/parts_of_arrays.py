"""A few items of a large model: only the pieces of the file that hold them are unpacked."""

import transient_run  # noqa: F401

import zrfx

with zrfx.open("transient_run.zrfx") as f:
    m = f.models["Impact"]
    print(m.read_nodes(slice(-2, None)).xyz)
    print(m.parts["Plate"].read_elements(slice(1, 2))["quad"])
    stress = m.results["STRESS"]
    print(stress.at(time=0.2, part="Plate", rows=slice(0, 4)))
    print(stress.history(element=1, progress=lambda done: print(f"{done:.0%}")).shape)
    print("\n".join(m.check()) or "all fits together")
