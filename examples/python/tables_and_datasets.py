"""Tables of pandas and datasets of xarray, with ids and times."""

import transient_run  # noqa: F401
import xarray
from tqdm import tqdm

import zrfx

with zrfx.open("transient_run.zrfx") as f:
    result = f.models["Impact"].results["DISP"]
    with tqdm(total=1) as bar:
        table = result.to_dataframe(progress=lambda done: bar.update(done - bar.n))
print(table.groupby("time")["x"].max())

with xarray.open_dataset("transient_run.zrfx", engine="zrfx") as data:  # a state is read when it is used
    print(data.DISP.sel(node=112, component="x").values)
    print(data.STRESS.isel(state=-1).max().item(), data.STRESS.attrs["units"])
