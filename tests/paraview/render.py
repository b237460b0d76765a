"""Runs in pvpython or pvbatch: reads a file by the plugin, renders a state, and tells what there is.

    pvbatch render.py PLUGIN FILE OUTPUT TIME ARRAY COMPONENT FACTOR ELEVATION [HOST]

OUTPUT.png is the picture; OUTPUT.json has the times, the number of cells, the ranges of all arrays, and the memory
that each rank took for reading, in MB. With HOST, which is this machine, a pvserver there reads and renders.
"""

import json
import pathlib
import re
import sys

from paraview import simple

plugin, path, output, time, array, component, factor, elevation, *host = sys.argv[1:]
time = float(time)
SIZE = [640, 480]


def peak_memory():
    """Of each rank, in kB, by process."""
    found = {}
    for status in pathlib.Path("/proc").glob("[0-9]*/status"):
        text = status.read_text()
        if re.search(r"Name:\s+" + ("pvserver" if host else "pv(batch|python)"), text):
            found[status.parent.name] = int(re.search(r"VmHWM:\s+(\d+)", text).group(1))
    return found


def ranges(data):
    found = {}
    for name in data.keys():
        own = data[name]
        found[name] = [own.GetRange(i) for i in range(own.GetNumberOfComponents())]
    return found


def show(reader):
    view = simple.GetActiveViewOrCreate("RenderView")
    view.ViewSize = SIZE
    view.OrientationAxesVisibility = 0
    view.UseColorPaletteForBackground = 0
    view.Background = [1, 1, 1]
    shown = simple.Show(reader, view)
    shown.Representation = "Surface With Edges" if reader.GetDataInformation().GetNumberOfCells() < 5000 else "Surface"
    simple.ColorBy(shown, ("POINTS", array) if component == "-" else ("POINTS", array, component))
    shown.RescaleTransferFunctionToDataRange(False, True)
    shown.SetScalarBarVisibility(view, True)
    bar = simple.GetScalarBar(simple.GetColorTransferFunction(array), view)
    bar.TitleColor = bar.LabelColor = [0, 0, 0]
    view.ResetActiveCameraToPositiveZ()
    view.GetActiveCamera().Azimuth(30)
    view.GetActiveCamera().Elevation(float(elevation))
    simple.ResetCamera(view)
    simple.SaveScreenshot(output + ".png", view, ImageResolution=SIZE)


if host:
    simple.Connect(*host)
before = peak_memory()
simple.LoadPlugin(plugin, remote=bool(host), ns=globals())
reader = ZRFxReader(FileName=path, DisplacementFactor=float(factor))  # noqa: F821  the plugin's own
times = reader.TimestepValues
times = list(times) if hasattr(times, "__len__") else [times]
simple.GetAnimationScene().UpdateAnimationUsingDataTimeSteps()
simple.GetAnimationScene().AnimationTime = time
simple.UpdatePipeline(time, reader)
after = peak_memory()
show(reader)
with open(output + ".json", "w") as told:
    json.dump({"times": times, "cells": reader.GetDataInformation().GetNumberOfCells(),
               "points": ranges(reader.PointData), "cells' values": ranges(reader.CellData),
               "memory": [(after[rank] - before[rank]) / 1024 for rank in before]}, told)
