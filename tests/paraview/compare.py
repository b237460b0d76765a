"""Compares what render.py wrote for numbers of ranks: compare.py FOLDER REFERENCE OTHER...

Pictures are the same but for pixels at edges, ranges and counts are the same. The more ranks, the less memory each
takes for the model."""

import json
import pathlib
import sys

import numpy as np
from vtkmodules.util.numpy_support import vtk_to_numpy
from vtkmodules.vtkIOImage import vtkPNGReader

folder, (reference, *others) = pathlib.Path(sys.argv[1]), sys.argv[2:]


def picture(name):
    reader = vtkPNGReader()
    reader.SetFileName(str(folder / f"{name}.png"))
    reader.Update()
    return vtk_to_numpy(reader.GetOutput().GetPointData().GetScalars()).astype(int)


def told(name):
    """What there is, and the memory of the ranks."""
    found = json.loads((folder / f"{name}.json").read_text())
    return found, found.pop("memory")


expected, (alone,) = told(reference)
print(f"{reference}: {expected['cells']} cells, {alone:.0f} MB")
assert np.ptp(picture(reference)) > 100, "an empty picture"
for other in others:
    changed = np.abs(picture(other) - picture(reference)).max(axis=1) > 40
    found, memory = told(other)
    print(f"{other}: {100 * changed.mean():.3f} % of the pixels differ, {len(memory)} ranks, "
          f"up to {max(memory):.0f} MB each")
    assert found == expected, "other ranges"
    assert changed.mean() < 0.002, "another picture"
    assert len(memory) == 1 or max(memory) < alone * (0.5 + 0.5 / len(memory)), "memory does not fall"
