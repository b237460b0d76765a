"""pandas, xarray and dask: the same numbers, read late."""

import numpy as np
import pytest
from conftest import TIMES, values

import zrfx

xarray = pytest.importorskip("xarray")
pandas = pytest.importorskip("pandas")
distributed = pytest.importorskip("distributed")


def test_a_table_has_ids_and_times_as_index(model):
    steps = []
    table = model.results["DISP"].to_dataframe(progress=steps.append)
    assert steps == [1 / 3, 2 / 3, 1] and table.attrs["unit"] == "mm"
    assert table.loc[2, 0.2, 105].tolist() == values(12, 3, seed=1)[4].tolist()
    stress = model.results["STRESS"].to_dataframe(states=[-1])
    assert stress.index.names == ["state", "time", "element", "node"]
    assert stress.xs((3, 111), level=("element", "node"))["zx"].item() == values(16, 6, seed=2)[15, 5]
    assert model.results["PE"].to_dataframe().dropna().index.to_flat_index().tolist() == [
        (1, 0.1, 2), (2, 0.2, 2), (3, 0.4, 2)]


@pytest.mark.parametrize("chunks", [None, {}, {"state": 2}])
def test_a_dataset_is_read_when_it_is_used(plate, chunks):
    with xarray.open_dataset(plate, engine="zrfx", chunks=chunks) as data:
        assert dict(data.sizes) == {"state": 3, "node": 12, "component": 3, "element_node": 16,
                                    "tensor_component": 6, "element": 3}
        assert data.time.values.tolist() == list(TIMES) and data.DISP.attrs["units"] == "mm"
        assert data.part.values.tolist() == ["Bar", "Plate", "Plate"] and data.x.sel(node=103) == 1
        one = data.DISP.sel(node=[103, 101], state=3, component="z")
        assert one.values.tolist() == values(12, 3, seed=2)[[2, 0], 2].tolist()
        assert data.STRESS.isel(state=slice(0, 3, 2))[1, 5:7, -1].values.tolist() == values(16, 6, seed=2)[5:7, 5].tolist()
        assert data.DISP[:, 4].values.tolist() == [values(12, 3, seed=k)[4].tolist() for k in range(3)]
        assert data.DISP[1, -1].values.tolist() == values(12, 3, seed=1)[11].tolist()
        assert float(data.PE.max()) == 2 and int(data.PE.isnull().sum()) == 6


def test_a_result_that_is_not_in_each_state_has_gaps(plate):
    with zrfx.append(plate) as f:
        f.models["Plate"].add_state(time=1)["DISP"] = values(12, 3)
    with xarray.open_dataset(plate, engine="zrfx", drop_variables="STRESS") as data:
        assert list(data) == ["DISP", "PE"] and data.PE.isel(state=3).isnull().all()
        assert np.array_equal(data.DISP[3], values(12, 3))


def test_worker_processes_open_the_file_themselves(plate):
    with zrfx.open(plate) as f:
        lazily = f.models["Plate"].results["STRESS"].to_dask()
    assert lazily.chunks == ((1, 1, 1), (8, 8), (6,))
    with distributed.LocalCluster(n_workers=2, threads_per_worker=1, dashboard_address=None) as cluster, \
            distributed.Client(cluster):
        expected = np.stack([values(16, 6, seed=k) for k in range(3)])
        assert np.allclose(lazily.mean(axis=0).compute(), expected.mean(axis=0))
        assert np.array_equal(lazily.max(axis=(0, 2)).compute(), expected.max(axis=(0, 2)))
