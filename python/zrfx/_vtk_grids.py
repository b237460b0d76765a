"""Parts as grids of VTK, with what their points and cells carry."""

from __future__ import annotations

from typing import Any, Dict, Iterable, NamedTuple, Optional, Sequence, Tuple, Union

import numpy as np
from vtkmodules.vtkCommonCore import vtkPoints
from vtkmodules.vtkCommonDataModel import (vtkCompositeDataSet, vtkDataObject, vtkMultiBlockDataSet, vtkSelection,
                                           vtkSelectionNode, vtkUnstructuredGrid)

from ._items import element_means
from ._mesh import Elements, Nodes, Part
from ._model import Model
from ._results import Result
from ._states import State
from ._vtk_cells import Cells, global_ids, shared


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


def to_vtk(model: Model, state: Union[None, int, State] = None, **options: Any) -> Any:
    """A vtkMultiBlockDataSet with the results of one state, by default the last; the index counts the model's
    states. Keyword arguments are those of :class:`Options`. ``pyvista.wrap`` takes it."""
    if not isinstance(state, State):
        state = model.states[-1 if state is None else state] if len(model.states) else None
    return fill_blocks(vtkMultiBlockDataSet(), model, state, Options(**options))


def fill_blocks(output: Any, model: Model, state: Optional[State], options: Options) -> Any:
    points: Dict[int, Any] = {}
    for index, (name, part) in enumerate(model.parts.items()):
        output.SetBlock(index, None)
        if options.parts is None or name in options.parts:
            output.SetBlock(index, Grid(model, part, state, options, points).grid)
        output.GetMetaData(index).Set(vtkCompositeDataSet.NAME(), name)
    if state is not None:
        output.GetInformation().Set(vtkDataObject.DATA_TIME_STEP(), state.value)
    return output


class Grid:
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
        cells = Cells(self.elements, index, self.rows)
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
            points.SetGlobalIds(global_ids(self.nodes.ids[self.chosen], "NodeId"))
        ids = self.elements.ids
        if ids is not None:
            cells.SetGlobalIds(global_ids(ids[self.rows], "ElementId"))

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
        node.SetSelectionList(global_ids(np.asarray(rows), name))
        node.GetProperties().Set(vtkSelectionNode.COMPOSITE_INDEX(), index + 1)
        result.AddNode(node)
    return result
