"""A reader beside a running solver, here another thread, which sees each state when it is flushed."""

import threading
import time

import numpy as np

import zrfx

writer = zrfx.create("follow_solver.zrfx")
model = writer.add_model("Model", solution="transient")
model.set_nodes(np.zeros((4, 3), np.float32))
model.add_part("Part", {"quad": [[0, 1, 2, 3]]})
temperature = model.add_result("TEMP")
model.add_state(time=0)[temperature] = np.zeros(4)
writer.flush()


def solve() -> None:
    for step in range(1, 6):
        model.add_state(time=step)[temperature] = np.full(4, 10.0 * step)
        writer.flush()
        time.sleep(0.01)
    writer.close()


solver = threading.Thread(target=solve)
solver.start()
with zrfx.open("follow_solver.zrfx") as f:
    m = f.models["Model"]
    while len(m.states) < 6:
        if f.refresh():
            print(m.times[-1], m.results["TEMP"].at().max())
solver.join()
