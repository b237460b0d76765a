"""A source for VTK: times, selected results, a displaced shape; and one state for other programs."""

import transient_run  # noqa: F401
from vtkmodules.vtkFiltersGeometry import vtkCompositeDataGeometryFilter

import zrfx
import zrfx.vtk

reader = zrfx.vtk.Reader("transient_run.zrfx")
reader.GetResultSelection().DisableArray("PEEQ")
reader.SetDisplacementFactor(10)
surface = vtkCompositeDataGeometryFilter()
surface.SetInputConnection(reader.GetOutputPort())
for time in reader.GetTimes():
    surface.UpdateTimeStep(time)
    print(time, surface.GetOutput().GetBounds())
reader.Close()

with zrfx.open("transient_run.zrfx") as f:
    blocks = f.models["Impact"].to_vtk(-1)  # pyvista.wrap(blocks)
zrfx.vtk.write(blocks, "from_vtk.zrfx")
