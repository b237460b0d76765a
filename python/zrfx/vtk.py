"""ZRFx in VTK: :class:`Reader`, a source for pipelines; :func:`to_vtk`, one state for pyvista; :func:`write`.

A model becomes a vtkMultiBlockDataSet with a named vtkUnstructuredGrid for each part. Coordinates, connectivity and
values are shared with the library's memory where VTK can take them as they are: parts then hold all nodes of their
block. User ids are global ids; undefined values are NaN. Tensors have six components, named XX to XZ.
"""

from __future__ import annotations

import dataclasses
from typing import Any, Dict, Iterable, List, NamedTuple, Optional, Sequence, Tuple, Union

import numpy as np
from vtkmodules.util.numpy_support import numpy_to_vtk, vtk_to_numpy
from vtkmodules.util.vtkAlgorithm import VTKPythonAlgorithmBase
from vtkmodules.vtkCommonCore import vtkDataArraySelection, vtkIdList, vtkIdTypeArray, vtkPoints
from vtkmodules.vtkCommonDataModel import (vtkCellArray, vtkCompositeDataSet, vtkDataObject, vtkMultiBlockDataSet,
                                           vtkSelection, vtkSelectionNode, vtkUnstructuredGrid)
from vtkmodules.vtkCommonExecutionModel import vtkAlgorithm, vtkStreamingDemandDrivenPipeline
from vtkmodules.vtkFiltersCore import vtkAppendFilter

from . import _file
from ._items import element_means
from ._mesh import Elements, Nodes, Part
from ._model import Model
from ._results import Result, result_of_data
from ._states import State
from .elements import BY_VTK
from .errors import InvalidArgumentError

_COMPONENTS = {3: ("X", "Y", "Z"), 6: ("XX", "YY", "ZZ", "XY", "YZ", "XZ")}
_POLYHEDRON = 42
#: Types that ZRFx knows by another, and the order of its nodes.
_OTHER_TYPES = {8: (9, [0, 1, 3, 2]), 11: (12, [0, 1, 3, 2, 4, 5, 7, 6])}


class Options(NamedTuple):
    """How grids are made.

    ``displacement`` moves nodes by so many times the displacement result. ``explode`` gives each element points of
    its own, so that results on the nodes of elements are kept; otherwise they are cell data, the mean of the
    element. ``compact`` leaves out nodes that a part does not use, which copies the others. ``results`` and
    ``parts`` name those wanted; all by default. ``piece`` is a share of the elements, and the number of shares.
    """

    displacement: float = 0.0
    explode: bool = False
    compact: bool = False
    results: Optional[Sequence[str]] = None
    parts: Optional[Sequence[str]] = None
    piece: Tuple[int, int] = (0, 1)


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


def _cell_array(offsets: Any, connectivity: Any) -> Any:
    """Cells on the memory of arrays; one number of nodes can stand for the offsets. VTK makes arrays of its own on
    that memory, which are those to keep it."""
    cells = vtkCellArray()
    cells.SetData(offsets if isinstance(offsets, int) else shared(offsets), shared(connectivity))
    _keep(cells.GetConnectivityArray(), connectivity)
    if not isinstance(offsets, int):
        _keep(cells.GetOffsetsArray(), offsets)
    return cells


def to_vtk(model: Model, state: Union[None, int, State] = None, **options: Any) -> Any:
    """A vtkMultiBlockDataSet with the results of one state, by default the last; the index counts the model's
    states. Keyword arguments are those of :class:`Options`. ``pyvista.wrap`` takes it."""
    if not isinstance(state, State):
        state = model.states[-1 if state is None else state] if len(model.states) else None
    return _blocks(vtkMultiBlockDataSet(), model, state, Options(**options))


def _blocks(output: Any, model: Model, state: Optional[State], options: Options) -> Any:
    points: Dict[int, Any] = {}
    for index, (name, part) in enumerate(model.parts.items()):
        output.SetBlock(index, None)
        if options.parts is None or name in options.parts:
            output.SetBlock(index, _Grid(model, part, state, options, points).grid)
        output.GetMetaData(index).Set(vtkCompositeDataSet.NAME(), name)
    if state is not None:
        output.GetInformation().Set(vtkDataObject.DATA_TIME_STEP(), state.value)
    return output


class _Grid:
    """One part as a grid: which elements and nodes it has, and what its points and cells carry."""

    def __init__(self, model: Model, part: Part, state: Optional[State], options: Options,
                 points: Dict[int, Any]) -> None:
        self.model, self.part, self.state, self.options = model, part, state, options
        self.elements: Elements = part.elements if state is None else part.elements_at(state)
        self.nodes: Nodes = model.node_blocks[self.elements.node_block]
        self.grid = vtkUnstructuredGrid()
        index, share, shares = model._node_index(self.elements), *options.piece
        count = self.elements.count
        self.rows = slice(count * share // shares, count * (share + 1) // shares)
        cells = _Cells(self.elements, index, self.rows)
        self.chosen: Any = slice(None)  # the nodes that are points
        if options.explode:
            self.chosen, cells = cells.nodes(), cells.exploded()
        elif options.compact or shares > 1:
            self.chosen, cells = cells.compacted()
        self._set_points(points)
        cells.add_to(self.grid)
        self._set_ids()
        self._set_results()

    def _results(self) -> Iterable[Tuple[str, Result]]:
        for name, result in self.model.results.items():
            wanted = self.options.results is None or name in self.options.results
            if wanted and self.state is not None and self.state.id in result._blocks:
                yield name, result

    def _set_points(self, known: Dict[int, Any]) -> None:
        is_whole = isinstance(self.chosen, slice)
        points = known.get(self.nodes.block_id) if is_whole else None
        if points is None:
            points = vtkPoints()
            points.SetData(shared(self._moved()[self.chosen]))
            if is_whole:
                known[self.nodes.block_id] = points
        self.grid.SetPoints(points)

    def _moved(self) -> Any:
        if not self.options.displacement or self.state is None:
            return self.nodes.xyz
        for result in self.model.results.values():
            if result.kind == "displacement" and self.state.id in result._blocks:
                moves = np.nan_to_num(self._on_nodes(result))
                return self.nodes.xyz + np.float32(self.options.displacement) * moves
        return self.nodes.xyz

    def _on_nodes(self, result: Result) -> Any:
        assert self.state is not None
        return result.at(self.state, part=self.part)

    def _set_ids(self) -> None:
        points, cells = self.grid.GetPointData(), self.grid.GetCellData()
        if self.nodes.ids is not None and not self.options.explode:  # exploded nodes are not unique
            points.SetGlobalIds(_global_ids(self.nodes.ids[self.chosen], "NodeId"))
        ids = self.elements.ids
        if ids is not None:
            cells.SetGlobalIds(_global_ids(ids[self.rows], "ElementId"))

    def _set_results(self) -> None:
        assert self.state is not None or not list(self._results())
        for name, result in self._results():
            if result.on == "nodes":
                self.grid.GetPointData().AddArray(shared(self._on_nodes(result)[self.chosen], name))
            elif result.on == "element_nodes" and self.options.explode:
                values = result.at(self.state, part=self.part)
                ends = np.concatenate([[0], np.cumsum(self.elements.node_counts())])
                own = values[ends[self.rows.start]:ends[self.rows.stop]]
                self.grid.GetPointData().AddArray(shared(own, name))
            elif result.on != "surfaces":
                means = element_means(result, self.state, self.part, self.elements)
                self.grid.GetCellData().AddArray(shared(means[self.rows], name))


def _global_ids(ids: Any, name: str) -> Any:
    array = numpy_to_vtk(ids.astype(np.int64), deep=1, array_type=vtkIdTypeArray().GetDataType())
    array.SetName(name)
    return array


class _Cells:
    """A range of the elements of a part, as VTK takes them."""

    def __init__(self, elements: Elements, index: List[Any], rows: slice) -> None:
        self.runs: List[Tuple[int, Any]] = []  # type and connectivity, for polyhedrons lists of faces
        first = 0
        for group, nodes in zip(elements.groups, index):
            own = slice(max(rows.start - first, 0), max(rows.stop - first, 0))
            first += len(group)
            if group.polyhedrons is not None:
                self.runs.append((_POLYHEDRON, dataclasses.replace(group, nodes=nodes).faces()[own]))
            else:
                self.runs.append((group.kind.vtk, nodes[own]))

    def nodes(self) -> Any:
        """The nodes of all cells, cell after cell."""
        flat = [np.concatenate([_corners(cell) for cell in data] or [np.zeros(0, int)]) if kind == _POLYHEDRON
                else data.ravel() for kind, data in self.runs]
        return np.concatenate(flat or [np.zeros(0, int)])

    def compacted(self) -> Tuple[Any, _Cells]:
        """The nodes in use, and the cells by positions among them."""
        used = np.unique(self.nodes())
        return used, self._mapped(lambda nodes: np.searchsorted(used, nodes))

    def exploded(self) -> _Cells:
        """The cells with points of their own, in the order of :meth:`nodes`."""
        cells, first = _Cells.__new__(_Cells), 0
        cells.runs = []
        for kind, data in self.runs:
            if kind == _POLYHEDRON:
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

    def _mapped(self, position: Any) -> _Cells:
        cells = _Cells.__new__(_Cells)
        cells.runs = [(kind, [[position(face).tolist() for face in cell] for cell in data] if kind == _POLYHEDRON
                       else position(data).astype(np.int32)) for kind, data in self.runs]
        return cells

    def add_to(self, grid: Any) -> None:
        runs = [(kind, data) for kind, data in self.runs if len(data)]
        if any(kind == _POLYHEDRON for kind, _ in runs):
            self._insert(grid, runs)
            return
        if len(runs) == 1:
            kind, data = runs[0]
            grid.SetCells(kind, _cell_array(data.shape[1], np.ascontiguousarray(data.ravel())))
        elif runs:
            sizes = np.concatenate([np.full(len(data), data.shape[1], np.int32) for _, data in runs])
            offsets = np.concatenate([[0], np.cumsum(sizes)]).astype(np.int32)
            cells = _cell_array(offsets, np.concatenate([data.ravel() for _, data in runs]))
            kinds = np.concatenate([np.full(len(data), kind, np.uint8) for kind, data in runs])
            grid.SetCells(shared(kinds), cells)

    @staticmethod
    def _insert(grid: Any, runs: List[Tuple[int, Any]]) -> None:
        grid.Allocate(sum(len(data) for _, data in runs))
        for kind, data in runs:
            for cell in data:
                if kind != _POLYHEDRON:
                    grid.InsertNextCell(kind, len(cell), [int(node) for node in cell])
                    continue
                stream = vtkIdList()
                for number in (len(cell), *(n for face in cell for n in (len(face), *face))):
                    stream.InsertNextId(number)
                grid.InsertNextCell(_POLYHEDRON, stream)


def _corners(cell: Sequence[Sequence[int]]) -> Any:
    return np.unique(np.concatenate([np.asarray(face) for face in cell]))


def selection(model: Model, name: str) -> Any:
    """A set of elements as a vtkSelection of cells of what :func:`to_vtk` and :class:`Reader` give, for
    vtkExtractSelection."""
    chosen, result = model.sets[name], vtkSelection()
    for index, part in enumerate(model.parts.values()):
        rows = chosen.indices(part)
        if not len(rows):
            continue
        node = vtkSelectionNode()
        node.SetFieldType(vtkSelectionNode.CELL)
        node.SetContentType(vtkSelectionNode.INDICES)
        node.SetSelectionList(_global_ids(np.asarray(rows), name))
        node.GetProperties().Set(vtkSelectionNode.COMPOSITE_INDEX(), index + 1)
        result.AddNode(node)
    return result


class Reader(VTKPythonAlgorithmBase):  # type: ignore[misc]
    """A source that reads one model of a file, and gives a vtkMultiBlockDataSet for each time.

    ``Reader("run.zrfx")``, then ``GetResultSelection()`` and ``GetPartSelection()`` say what is read,
    ``SetDisplacementFactor``, ``SetExplode`` and ``SetCompact`` how (see :class:`Options`). ``Refresh`` takes in
    what a running solver has written.
    """

    def __init__(self, path: str = "", model: Optional[str] = None, password: Optional[str] = None) -> None:
        super().__init__(nInputPorts=0, nOutputPorts=1, outputType="vtkMultiBlockDataSet")
        self._path, self._name, self._password = path, model, password
        self._file: Optional[_file.File] = None
        self._options = Options()
        self._kept: List[Any] = []
        self._results, self._parts = vtkDataArraySelection(), vtkDataArraySelection()
        for selected in (self._results, self._parts):
            selected.AddObserver("ModifiedEvent", lambda *_: self.Modified())

    def SetFileName(self, path: str) -> None:
        if path != self._path:
            self.Close()
            self._path = path
            self.Modified()

    def GetFileName(self) -> str:
        return self._path

    def GetModel(self) -> Model:
        """The model that is read; opens the file."""
        if self._file is None:
            self._file = _file.open(self._path, self._password)
        model = next(iter(self._file.models.values())) if self._name is None else self._file.models[self._name]
        for selected, names in ((self._results, [*model.results]), (self._parts, [*model.parts])):
            for name in names:
                if not selected.ArrayExists(name):
                    selected.AddArray(name)
        return model

    def GetResultSelection(self) -> Any:
        """The vtkDataArraySelection of the results."""
        self.GetModel()
        return self._results

    def GetPartSelection(self) -> Any:
        """The vtkDataArraySelection of the parts."""
        self.GetModel()
        return self._parts

    def GetTimes(self) -> List[float]:
        """The values of the states; empty when there are none."""
        times: List[float] = self.GetModel().times.tolist()
        return times

    def SetDisplacementFactor(self, factor: float) -> None:
        self._change(displacement=factor)

    def SetExplode(self, explode: bool) -> None:
        self._change(explode=explode)

    def SetCompact(self, compact: bool) -> None:
        self._change(compact=compact)

    def _change(self, **options: Any) -> None:
        if self._options._replace(**options) != self._options:
            self._options = self._options._replace(**options)
            self.Modified()

    def Refresh(self) -> None:
        """Looks for states that were written since."""
        if self._file is not None and self._file.refresh():
            self._kept = []
            self.Modified()

    def Close(self) -> None:
        """Closes the file; the next update opens it again."""
        if self._file is not None:
            self._file.close()
        self._file, self._kept = None, []

    def RequestInformation(self, request: Any, inputs: Any, outputs: Any) -> int:
        information, keys = outputs.GetInformationObject(0), vtkStreamingDemandDrivenPipeline
        times = sorted(set(self.GetTimes()))
        information.Remove(keys.TIME_STEPS())
        information.Remove(keys.TIME_RANGE())
        for time in times:
            information.Append(keys.TIME_STEPS(), time)
        for time in (times[0], times[-1]) if times else ():
            information.Append(keys.TIME_RANGE(), time)
        information.Set(vtkAlgorithm.CAN_HANDLE_PIECE_REQUEST(), 1)
        return 1

    def RequestData(self, request: Any, inputs: Any, outputs: Any) -> int:
        information, keys = outputs.GetInformationObject(0), vtkStreamingDemandDrivenPipeline
        model, pieces = self.GetModel(), information.Get(keys.UPDATE_NUMBER_OF_PIECES()) or 1
        piece = (information.Get(keys.UPDATE_PIECE_NUMBER()) or 0, pieces)
        time = information.Get(keys.UPDATE_TIME_STEP()) if information.Has(keys.UPDATE_TIME_STEP()) else None
        state = _state_at(model, time)
        options = self._options._replace(results=_enabled(self._results), parts=_enabled(self._parts), piece=piece)
        _blocks(vtkMultiBlockDataSet.GetData(outputs, 0), model, state, options)
        self._kept = self._mesh(model, state)
        return 1

    @staticmethod
    def _mesh(model: Model, state: Optional[State]) -> List[Any]:
        """What the next state is likely to need again."""
        elements = [part.elements if state is None else part.elements_at(state) for part in model.parts.values()]
        return [*elements, *(model.node_blocks[block] for block in {each.node_block for each in elements})]


def _enabled(selected: Any) -> List[str]:
    names = [selected.GetArrayName(i) for i in range(selected.GetNumberOfArrays())]
    return [name for name in names if selected.ArrayIsEnabled(name)]


def _state_at(model: Model, time: Optional[float]) -> Optional[State]:
    """The last state that is not after a time, as a film shows it; the first before all."""
    states = list(model.states)
    if not states or time is None:
        return states[0] if states else None
    order = sorted(states, key=lambda state: state.value)
    before = [state for state in order if state.value <= time * (1 + 1e-9)]
    return before[-1] if before else order[0]


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
        if own == _POLYHEDRON:
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
