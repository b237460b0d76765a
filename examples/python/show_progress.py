"""A bar of tqdm while a large file is written and read; False from the callback would stop it."""

import numpy as np
from tqdm import tqdm

import zrfx

values = np.random.default_rng(1).random((300_000, 3), np.float32)
with tqdm(total=1, bar_format="{desc} {percentage:3.0f} %|{bar}|") as bar:

    def show(fraction: float) -> None:
        bar.update(fraction - bar.n)

    with zrfx.create("show_progress.zrfx", progress=show) as f:  # threads= and digits= belong here, too
        m = f.add_model("Model")
        bar.set_description("nodes")
        m.set_nodes(values)
        m.add_part("Part", {"vertex": [[0]]})
        bar.set_description("closing")
    with zrfx.open("show_progress.zrfx", progress=show) as f:
        m = f.models["Model"]
        bar.set_description("reading")
        print(m.nodes.xyz.mean(axis=0))

try:
    zrfx.open("show_progress.zrfx", progress=lambda fraction: False)
except zrfx.CancelledError as error:
    print(error)
