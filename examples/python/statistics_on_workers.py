"""Statistics over all states in two worker processes, each of which opens the file by itself."""

from distributed import Client, LocalCluster

import zrfx


def main() -> None:
    import transient_run  # noqa: F401  (writes the file, once: the workers import this one)

    with zrfx.open("transient_run.zrfx") as f:
        stress = f.models["Impact"].results["STRESS"].to_dask()  # a chunk for each state and part
    with LocalCluster(n_workers=2, threads_per_worker=1, dashboard_address=None) as cluster, Client(cluster):
        print(stress.mean(axis=0).compute().shape, stress.max().compute())


if __name__ == "__main__":
    main()
