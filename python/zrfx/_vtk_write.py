"""Data sets of VTK written as models."""

from __future__ import annotations

from typing import Any, Dict, Iterable, List, NamedTuple, Optional, Tuple

import numpy as np
from vtkmodules.util.numpy_support import vtk_to_numpy
from vtkmodules.vtkCommonCore import vtkIdList
from vtkmodules.vtkCommonDataModel import vtkCompositeDataSet
from vtkmodules.vtkFiltersCore import vtkAppendFilter

from . import _file
from ._mesh import Nodes, Part
from ._model import Model
from ._results import result_of_data
from ._vtk_cells import POLYHEDRON
from .elements import BY_VTK
from .errors import InvalidArgumentError

#: Types that ZRFx knows by another, and the order of its nodes.
_OTHER_TYPES = {8: (9, [0, 1, 3, 2]), 11: (12, [0, 1, 3, 2, 4, 5, 7, 6])}


def from_vtk(data: Any, file: _file.File, name: str = "Model", time: float = 0.0) -> Model:
    """Writes a data set of VTK as a model of a file that is open for writing, and gives the model. Composite data
    sets become a part for each leaf, structured and poly data unstructured. Arrays with 1, 3, 6 or 9 components are
    results, global ids the ids."""
    model = file.add_model(name)
    _add_state(model, [_add_part(model, part, grid) for part, grid in _leaves(data)], _leaves(data), time)
    return model


def write(data: Any, path: Any, name: str = "Model", time: float = 0.0, **options: Any) -> None:
    """Writes a data set of VTK, or a sequence of pairs of time and data set with one mesh, as a file; options are
    those of :func:`zrfx.create`."""
    steps = list(data) if isinstance(data, Iterable) else [(time, data)]
    with _file.create(path, **options) as file:
        model = file.add_model(name, solution="transient" if len(steps) > 1 else "linear_static")
        parts = [_add_part(model, part, grid) for part, grid in _leaves(steps[0][1])]
        for own, each in steps:
            _add_state(model, parts, _leaves(each), own)


class _Written(NamedTuple):
    part: Part
    nodes: Nodes
    order: Any  # the cells as they were, in the order of the elements


def _leaves(data: Any, name: str = "") -> List[Tuple[str, Any]]:
    """Names and unstructured grids."""
    if data is None:
        return []
    if hasattr(data, "GetNumberOfBlocks"):
        found = []
        for i in range(data.GetNumberOfBlocks()):
            own = data.GetMetaData(i).Get(vtkCompositeDataSet.NAME()) if data.HasMetaData(i) else None
            found += _leaves(data.GetBlock(i), own or f"Block {i}")
        return found
    if data.GetClassName() == "vtkUnstructuredGrid":
        return [(name or "Part 1", data)]
    append = vtkAppendFilter()
    append.AddInputData(data)
    append.Update()
    return [(name or "Part 1", append.GetOutput())]


def _add_part(model: Model, name: str, grid: Any) -> _Written:
    node_ids = grid.GetPointData().GetGlobalIds()
    points = vtk_to_numpy(grid.GetPoints().GetData()) if grid.GetPoints() else np.zeros((0, 3))
    nodes = model.add_nodes(points, ids=None if node_ids is None else vtk_to_numpy(node_ids))
    kinds, cells = vtk_to_numpy(grid.GetCellTypesArray()), grid.GetCells()
    offsets = vtk_to_numpy(cells.GetOffsetsArray())
    connectivity = vtk_to_numpy(cells.GetConnectivityArray())
    elements: Dict[str, Any] = {}
    order = []
    for kind in kinds[np.sort(np.unique(kinds, return_index=True)[1])]:
        rows = np.flatnonzero(kinds == kind)
        own, permutation = _OTHER_TYPES.get(int(kind), (int(kind), slice(None)))
        if own not in BY_VTK:
            raise InvalidArgumentError(f"ZRFx has no elements for cells of VTK's type {kind}")
        if own == POLYHEDRON:
            found: Any = [_faces(grid, int(row)) for row in rows]
        else:
            size = BY_VTK[own].nodes
            found = connectivity[offsets[rows][:, None] + np.arange(size)][:, permutation]
        known = elements.get(BY_VTK[own].name)
        elements[BY_VTK[own].name] = found if known is None else np.concatenate([known, found])
        order.append((BY_VTK[own].name, rows))
    rows = np.concatenate([rows for name in elements for kind, rows in order if kind == name] or [np.zeros(0, int)])
    ids = grid.GetCellData().GetGlobalIds()
    own_ids = None if ids is None else vtk_to_numpy(ids)[rows]
    return _Written(model.add_part(name, elements, ids=own_ids, nodes=nodes), nodes, rows)


def _faces(grid: Any, cell: int) -> List[List[int]]:
    stream = vtkIdList()
    grid.GetFaceStream(cell, stream)
    numbers = [stream.GetId(i) for i in range(stream.GetNumberOfIds())]
    faces, at = [], 1
    for _ in range(numbers[0]):
        faces.append(numbers[at + 1:at + 1 + numbers[at]])
        at += 1 + numbers[at]
    return faces


def _add_state(model: Model, parts: List[_Written], leaves: List[Tuple[str, Any]], time: float) -> None:
    state = model.add_state(time=time)
    for written, (_, grid) in zip(parts, leaves):
        for on, data in (("nodes", grid.GetPointData()), ("elements", grid.GetCellData())):
            for i in range(data.GetNumberOfArrays()):
                array = data.GetArray(i)
                width = 0 if array is None or array is data.GetGlobalIds() else array.GetNumberOfComponents()
                values = None if width == 0 else _values(vtk_to_numpy(array), width)
                if values is None:
                    continue
                result = result_of_data(model, data.GetArrayName(i), values, on)
                if on == "nodes":
                    state.write(result, values, nodes=written.nodes)
                else:
                    state.write(result, values[written.order], part=written.part)


def _values(values: Any, width: int) -> Optional[Any]:
    if width == 9:
        return values[:, [0, 4, 8, 1, 5, 2]]
    if width == 1:
        return values.reshape(len(values))
    return values if width in (3, 6) else None
