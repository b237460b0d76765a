"""One more state in a file that is there; what is in it is neither read nor rewritten."""

import transient_run  # noqa: F401

import zrfx

with zrfx.append("transient_run.zrfx") as f:
    m = f.models["Impact"]
    state = m.add_state(time=0.4)
    state["DISP"] = m.nodes.xyz * 0.5

with zrfx.open("transient_run.zrfx") as f:
    print(f.models["Impact"].results["DISP"].times)
