"""Arrays and cells of VTK, on the memory of arrays of numpy where VTK can take them as they are."""

from __future__ import annotations

import dataclasses
from typing import Any, List, Sequence, Tuple

import numpy as np
from vtkmodules.util.numpy_support import numpy_to_vtk
from vtkmodules.vtkCommonCore import vtkIdList, vtkIdTypeArray
from vtkmodules.vtkCommonDataModel import vtkCellArray

from ._mesh import Elements

POLYHEDRON = 42
_COMPONENTS = {3: ("X", "Y", "Z"), 6: ("XX", "YY", "ZZ", "XY", "YZ", "XZ")}


def shared(values: Any, name: str = "") -> Any:
    """An array of VTK on the memory of one of numpy, which it keeps alive."""
    contiguous = np.ascontiguousarray(values)
    array = numpy_to_vtk(contiguous, deep=0)
    _keep(array, contiguous)
    if name:
        array.SetName(name)
    if contiguous.ndim > 1:
        for i, component in enumerate(_COMPONENTS.get(contiguous.shape[1], ())):
            array.SetComponentName(i, component)
    return array


def _keep(array: Any, memory: Any) -> None:
    array.AddObserver("DeleteEvent", lambda *_: memory)


def cell_array(offsets: Any, connectivity: Any) -> Any:
    """Cells on the memory of arrays; one number of nodes can stand for the offsets. VTK makes arrays of its own on
    that memory, which are those to keep it."""
    cells = vtkCellArray()
    cells.SetData(offsets if isinstance(offsets, int) else shared(offsets), shared(connectivity))
    _keep(cells.GetConnectivityArray(), connectivity)
    if not isinstance(offsets, int):
        _keep(cells.GetOffsetsArray(), offsets)
    return cells


def global_ids(ids: Any, name: str) -> Any:
    array = numpy_to_vtk(ids.astype(np.int64), deep=1, array_type=vtkIdTypeArray().GetDataType())
    array.SetName(name)
    return array


class Cells:
    """A range of the elements of a part, as VTK takes them."""

    def __init__(self, elements: Elements, index: List[Any], rows: slice) -> None:
        self.runs: List[Tuple[int, Any]] = []  # type and connectivity, for polyhedrons lists of faces
        first = 0
        for group, nodes in zip(elements.groups, index):
            own = slice(max(rows.start - first, 0), max(rows.stop - first, 0))
            first += len(group)
            if group.polyhedrons is not None:
                self.runs.append((POLYHEDRON, dataclasses.replace(group, nodes=nodes).faces()[own]))
            else:
                self.runs.append((group.kind.vtk, nodes[own]))

    def nodes(self) -> Any:
        """The nodes of all cells, cell after cell."""
        flat = [np.concatenate([_corners(cell) for cell in data] or [np.zeros(0, int)]) if kind == POLYHEDRON
                else data.ravel() for kind, data in self.runs]
        return np.concatenate(flat or [np.zeros(0, int)])

    def compacted(self) -> Tuple[Any, Cells]:
        """The nodes in use, and the cells by positions among them."""
        used = np.unique(self.nodes())
        return used, self._mapped(lambda nodes: np.searchsorted(used, nodes))

    def exploded(self) -> Cells:
        """The cells with points of their own, in the order of :meth:`nodes`."""
        cells, first = Cells.__new__(Cells), 0
        cells.runs = []
        for kind, data in self.runs:
            if kind == POLYHEDRON:
                own: Any = []
                for cell in data:
                    corners = _corners(cell)
                    own.append([(np.searchsorted(corners, face) + first).tolist() for face in cell])
                    first += len(corners)
            else:
                own = np.arange(first, first + data.size, dtype=np.int32).reshape(data.shape)
                first += data.size
            cells.runs.append((kind, own))
        return cells

    def _mapped(self, position: Any) -> Cells:
        cells = Cells.__new__(Cells)
        cells.runs = [(kind, [[position(face).tolist() for face in cell] for cell in data] if kind == POLYHEDRON
                       else position(data).astype(np.int32)) for kind, data in self.runs]
        return cells

    def add_to(self, grid: Any) -> None:
        runs = [(kind, data) for kind, data in self.runs if len(data)]
        if any(kind == POLYHEDRON for kind, _ in runs):
            self._insert(grid, runs)
            return
        if len(runs) == 1:
            kind, data = runs[0]
            grid.SetCells(kind, cell_array(data.shape[1], np.ascontiguousarray(data.ravel())))
        elif runs:
            sizes = np.concatenate([np.full(len(data), data.shape[1], np.int32) for _, data in runs])
            offsets = np.concatenate([[0], np.cumsum(sizes)]).astype(np.int32)
            cells = cell_array(offsets, np.concatenate([data.ravel() for _, data in runs]))
            kinds = np.concatenate([np.full(len(data), kind, np.uint8) for kind, data in runs])
            grid.SetCells(shared(kinds), cells)

    @staticmethod
    def _insert(grid: Any, runs: List[Tuple[int, Any]]) -> None:
        grid.Allocate(sum(len(data) for _, data in runs))
        for kind, data in runs:
            for cell in data:
                if kind != POLYHEDRON:
                    grid.InsertNextCell(kind, len(cell), [int(node) for node in cell])
                    continue
                stream = vtkIdList()
                for number in (len(cell), *(n for face in cell for n in (len(face), *face))):
                    stream.InsertNextId(number)
                grid.InsertNextCell(POLYHEDRON, stream)


def _corners(cell: Sequence[Sequence[int]]) -> Any:
    return np.unique(np.concatenate([np.asarray(face) for face in cell]))
