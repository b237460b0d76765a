"""Meshes and results from and to the formats of meshio; time series."""

import meshio
import numpy as np
import transient_run  # noqa: F401

import zrfx
import zrfx.meshio  # registers the format

mesh = meshio.read("transient_run.zrfx")  # the last state
meshio.write("transient_run.vtu", mesh)
meshio.write("back.zrfx", meshio.read("transient_run.vtu"))

with zrfx.meshio.TimeSeriesReader("transient_run.zrfx") as reader:
    points, cells = reader.read_points_cells()
    for k in range(reader.num_steps):
        time, point_data, cell_data = reader.read_data(k)
        print(time, np.abs(point_data["DISP"]).max(), list(cell_data))

with zrfx.create("several.zrfx") as f:  # several meshes in one file
    zrfx.from_meshio(mesh, f, "Deformed")
    zrfx.from_meshio(meshio.Mesh(points, cells), f, "Plain")
