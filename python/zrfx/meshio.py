"""ZRFx as a format of meshio: ``import zrfx.meshio`` registers it, then ``meshio.read("run.zrfx")`` and
``meshio.write("run.zrfx", mesh)`` work. :class:`TimeSeriesReader` and :class:`TimeSeriesWriter` have the methods
of meshio's own time series.

A ``meshio.Mesh`` has no ids, no times and no parts. They become:

=========================  ==============================================================================
ids                        ``point_data["id"]`` and ``cell_data["id"]``
parts                      ``cell_data["part"]``, their ids, and a cell set for each, of its name
sets of elements           cell sets
results on nodes           ``point_data``, NaN where there is no value
results on elements        ``cell_data``
on nodes of elements       ``cell_data``, the mean of the element
on surfaces                left out
=========================  ==============================================================================

The other way, cell sets that divide the cells among them become parts, or else ``cell_data["part"]`` does; other
cell sets become sets. Data with 1, 3, 6 or 9 components is kept (2 are filled up with zeros, 9 made symmetric);
``disp``... and ``u`` are displacements. Point sets, and middle nodes of cells that ZRFx does not have, are left out,
which is logged.
"""

from __future__ import annotations

import logging
from types import TracebackType
from typing import Any, Dict, Iterator, List, NamedTuple, Optional, Sequence, Tuple, Type, Union

import meshio
import numpy as np

from . import _file
from ._items import element_means, ids_or_positions
from ._mesh import Elements, Group, Part
from ._model import Model
from ._results import Result, result_of_data
from ._states import State
from .elements import TYPES
from .errors import InvalidArgumentError

_LOG = logging.getLogger("zrfx")

#: To meshio's order from VTK's, and back.
_FLIPS = {"wedge": [0, 2, 1, 3, 5, 4], "wedge15": [0, 2, 1, 3, 5, 4, 8, 7, 6, 11, 10, 9, 12, 14, 13]}
#: Types whose last nodes are left out.
_REDUCED = {"hexahedron27": "hexahedron20", "hexahedron24": "hexahedron20", "wedge18": "wedge15",
            "pyramid14": "pyramid13", "triangle7": "triangle6"}
_TENSOR_OF_MATRIX = ([0], [4], [8], [1, 3], [5, 7], [2, 6])


class _Cells(NamedTuple):
    """One block of cells, and the rows of results on elements that it has."""

    kind: str
    data: Any
    part: Part
    elements: Elements
    rows: Any


def _cell_blocks(model: Model, state: Optional[State], offsets: Dict[int, int]) -> Iterator[_Cells]:
    for part in model.parts.values():
        elements = part.elements if state is None else part.elements_at(state)
        offset, first = offsets[elements.node_block], 0
        for group, nodes in zip(elements.groups, model._node_index(elements)):
            rows = np.arange(first, first + len(group))
            first += len(group)
            if group.polyhedrons is not None:
                yield from _polyhedrons(group, part, elements, rows, offset)
                continue
            if group.kind.name == "unknown":
                _LOG.warning("elements of a type of other programs are left out of part %r", part.name)
                continue
            order = _FLIPS["wedge"] if group.kind.name == "wedge" else slice(None)
            yield _Cells(group.kind.name, nodes[:, order] + offset, part, elements, rows)


def _polyhedrons(group: Group, part: Part, elements: Elements, rows: Any, offset: int) -> Iterator[_Cells]:
    counts, cells = group.node_counts(), group.faces()
    for count in np.unique(counts):
        own = np.flatnonzero(counts == count)
        data = [[np.array(face) + offset for face in cells[i]] for i in own]
        yield _Cells(f"polyhedron{count}", data, part, elements, rows[own])


def to_meshio(model: Model, state: Union[None, int, State] = None) -> meshio.Mesh:
    """A meshio.Mesh with the results of one state, by default the last; the index counts the model's states."""
    chosen = _state(model, state)
    blocks = [model.node_blocks[id] for id in model._targets("nodes", None if chosen is None else chosen.id)]
    offsets = dict(zip((block.block_id for block in blocks), np.cumsum([0, *map(len, blocks)]).tolist()))
    cells = list(_cell_blocks(model, chosen, offsets))
    points = blocks[0].xyz if len(blocks) == 1 else np.concatenate([block.xyz for block in blocks])
    mesh = meshio.Mesh(points, [(each.kind, each.data) for each in cells], cell_sets=_cell_sets(model, cells))
    mesh.point_data["id"] = np.concatenate([ids_or_positions(block.ids, len(block)) for block in blocks])
    mesh.cell_data["id"] = [ids_or_positions(each.elements.ids, each.elements.count)[each.rows] for each in cells]
    mesh.cell_data["part"] = [np.full(len(each.rows), each.part.id, np.int32) for each in cells]
    for name, result in model.results.items():
        if chosen is not None and chosen.id in result._blocks:
            _add_data(mesh, name, result, chosen, cells)
    return mesh


def _add_data(mesh: meshio.Mesh, name: str, result: Result, state: State, cells: List[_Cells]) -> None:
    if result.on == "nodes":
        mesh.point_data[name] = result.at(state)
    elif result.on in ("elements", "element_nodes"):
        values = {each.part.id: element_means(result, state, each.part, each.elements) for each in cells}
        mesh.cell_data[name] = [values[each.part.id][each.rows] for each in cells]


def _cell_sets(model: Model, cells: List[_Cells]) -> Dict[str, List[Any]]:
    sets = {}
    for name, part in model.parts.items():
        sets[name] = [np.arange(len(each.rows) if each.part.id == part.id else 0) for each in cells]
    for name, chosen in model.sets.items():
        masks = {part.id: chosen.mask(part) for part in model.parts.values()}
        key = f"{name} (set)" if name in sets else name
        sets[key] = [np.flatnonzero(masks[each.part.id][each.rows]) for each in cells]
    return sets


def _state(model: Model, state: Union[None, int, State]) -> Optional[State]:
    if isinstance(state, State) or not len(model.states):
        return state if isinstance(state, State) else None
    return model.states[-1 if state is None else state]


def from_meshio(mesh: meshio.Mesh, file: _file.File, name: str = "Model", time: float = 0.0, *,
                solution: str = "linear_static") -> Model:
    """Writes a meshio.Mesh as a model of a file that is open for writing, with one state, and gives the model."""
    model = file.add_model(name, solution=solution)
    layout = _write_mesh(model, mesh)
    _write_data(model, layout, time, mesh.point_data, mesh.cell_data)
    return model


class _Layout(NamedTuple):
    """Which cells became the elements of which part: block and rows, in the order of the elements."""

    parts: Dict[str, List[Tuple[int, Any]]]


def _write_mesh(model: Model, mesh: meshio.Mesh) -> _Layout:
    points = np.asarray(mesh.points, np.float32)
    if points.shape[1] < 3:
        points = np.pad(points, ((0, 0), (0, 3 - points.shape[1])))
    model.set_nodes(points, ids=_ids(mesh.point_data.get("id")))
    blocks = [_block(block.type, block.data, points) for block in mesh.cells]
    ids = mesh.cell_data.get("id")
    parts = _parts(mesh)
    layout = _Layout({})
    for part, (part_id, members) in parts.items():
        ordered: List[Tuple[int, Any]] = []
        elements: Dict[str, Any] = {}
        own_ids: Dict[str, List[Any]] = {}
        for kind in dict.fromkeys(blocks[i][0] for i, rows in members if len(rows)):
            chosen = [(i, rows) for i, rows in members if blocks[i][0] == kind and len(rows)]
            pieces = [_rows(blocks[i][1], rows) for i, rows in chosen]
            elements[kind] = [each for piece in pieces for each in piece] if kind == "polyhedron" \
                else np.concatenate(pieces)
            own_ids[kind] = [np.asarray(ids[i])[rows] for i, rows in chosen] if ids is not None else []
            ordered += chosen
        joined = {kind: _ids(np.concatenate(own)) for kind, own in own_ids.items()} if ids is not None else None
        usable = joined is not None and all(own is not None for own in joined.values())
        model.add_part(part, elements, ids=joined if usable else None, id=part_id)
        layout.parts[part] = ordered
    for name, rows_by_block in _other_sets(mesh, parts).items():
        model.add_set(name, _set_items(layout, rows_by_block))
    if mesh.point_sets:
        _LOG.warning("point sets are left out: %s", ", ".join(mesh.point_sets))
    return layout


def _rows(data: Any, rows: Any) -> Any:
    return [data[i] for i in rows] if isinstance(data, list) else data[rows]


def _ids(values: Optional[Any]) -> Optional[Any]:
    """Ids that a file can hold, or None."""
    if values is None:
        return None
    array = np.asarray(values).ravel()
    return array.astype(np.int32) if array.size and array.min() >= 0 and array.max() < 2**31 else None


def _block(kind: str, data: Any, points: Any) -> Tuple[str, Any]:
    """A block of cells as elements: type, and nodes in VTK's order."""
    if kind.startswith("polyhedron"):
        return "polyhedron", [[np.asarray(face).tolist() for face in cell] for cell in data]
    name = _REDUCED.get(kind, kind)
    if name not in TYPES:
        raise InvalidArgumentError(f"ZRFx has no elements of type {kind!r}")
    if name != kind:
        _LOG.warning("%s is written as %s, without its last nodes", kind, name)
    nodes = np.asarray(data)[:, :TYPES[name].nodes]
    if name in _FLIPS and _is_flipped(name, points[nodes[:, :6]]):
        nodes = nodes[:, _FLIPS[name]]
    return name, nodes


def _is_flipped(name: str, corners: Any) -> bool:
    """Whether wedges turn the other way than VTK's, whose first triangle has its normal outward; where they have
    no volume, meshio's convention decides."""
    first = corners[:, 0].astype(float)
    sides = [corners[:, i] - first for i in (1, 2, 3)]
    volume = np.einsum("ij,ij->i", np.cross(sides[0], sides[1]), sides[2]).sum()
    return bool(volume > 0) if volume != 0 else name == "wedge"


def _parts(mesh: meshio.Mesh) -> Dict[str, Tuple[Optional[int], List[Tuple[int, Any]]]]:
    """By name: id and cells of each part."""
    sizes = [len(block.data) for block in mesh.cells]
    ids = mesh.cell_data.get("part")
    names = _dividing_sets(mesh, sizes)
    if names:
        found: Dict[str, Tuple[Optional[int], List[Tuple[int, Any]]]] = {}
        for name in names:
            members = [(i, np.asarray(rows, int)) for i, rows in enumerate(mesh.cell_sets[name])]
            own = {int(np.asarray(ids[i])[rows[0]]) for i, rows in members if len(rows)} if ids is not None else set()
            found[name] = (own.pop() if len(own) == 1 else None, members)
        used = [id for id, _ in found.values()]
        return found if len(set(used)) == len(used) else {name: (None, rows) for name, (_, rows) in found.items()}
    if ids is not None:
        numbers = np.unique(np.concatenate([np.asarray(own) for own in ids])) if ids else []
        return {f"Part {int(id)}": (int(id), [(i, np.flatnonzero(np.asarray(own) == id)) for i, own in enumerate(ids)])
                for id in numbers}
    return {"Part 1": (1, [(i, np.arange(size)) for i, size in enumerate(sizes)])}


def _dividing_sets(mesh: meshio.Mesh, sizes: Sequence[int]) -> List[str]:
    """Cell sets, in their order, that have no cell in common and together all; none where there are none."""
    free = [np.ones(size, bool) for size in sizes]
    names = []
    for name, rows in mesh.cell_sets.items():
        own = [np.asarray([] if each is None else each, int) for each in rows]
        if sum(map(len, own)) and all(mask[each].all() for mask, each in zip(free, own)):
            names.append(name)
            for mask, each in zip(free, own):
                mask[each] = False
    return names if not any(mask.any() for mask in free) else []


def _other_sets(mesh: meshio.Mesh, parts: Dict[str, Any]) -> Dict[str, List[Any]]:
    return {name: rows for name, rows in mesh.cell_sets.items() if name not in parts}


def _set_items(layout: _Layout, rows_by_block: Sequence[Any]) -> Dict[Union[str, Part], Any]:
    """Positions in each part of the cells of a set."""
    items: Dict[Union[str, Part], Any] = {}
    for part, ordered in layout.parts.items():
        masks = [np.isin(rows, [] if rows_by_block[i] is None else rows_by_block[i]) for i, rows in ordered]
        positions = np.flatnonzero(np.concatenate(masks)) if masks else np.zeros(0, int)
        if len(positions):
            items[part] = positions
    return items


def _components(values: Any) -> Any:
    """Data as a result has it: (n,), (n, 3) or (n, 6); None where it has other components."""
    array = np.asarray(values)
    array = array.reshape(len(array), -1) if array.ndim != 1 else array
    if array.dtype.kind not in "fiub" or array.ndim == 1:
        return array if array.dtype.kind in "fiub" else None
    width = array.shape[1]
    if width == 9:
        return np.stack([array[:, own].mean(axis=1) for own in _TENSOR_OF_MATRIX], axis=1)
    if width == 2:
        return np.pad(array, ((0, 0), (0, 1)))
    return array[:, 0] if width == 1 else array if width in (3, 6) else None


def _write_data(model: Model, layout: _Layout, time: float, point_data: Dict[str, Any],
                cell_data: Dict[str, Any]) -> State:
    state = model.add_state(time=time)
    for name, data in point_data.items():
        values = _components(data)
        if name == "id":
            continue
        if values is None:
            _LOG.warning("%s is left out: results have 1, 3 or 6 components", name)
            continue
        state[result_of_data(model, name, values, "nodes")] = values
    for name, data in cell_data.items():
        blocks = [_components(own) for own in data]
        if name in ("id", "part") or not blocks:
            continue
        if any(own is None for own in blocks):
            _LOG.warning("%s is left out: results have 1, 3 or 6 components", name)
            continue
        result = result_of_data(model, name, blocks[0], "elements")
        for part, ordered in layout.parts.items():
            state.write(result, np.concatenate([blocks[i][rows] for i, rows in ordered]), part=part)
    return state


def read(filename: Any, state: Union[None, int] = None, model: Optional[str] = None,
         password: Optional[str] = None) -> meshio.Mesh:
    """Reads one state of one model, by default the last of the first."""
    with _file.open(filename, password) as file:
        return to_meshio(file.models[next(iter(file.models)) if model is None else model], state)


def write(filename: Any, mesh: meshio.Mesh, **options: Any) -> None:
    """Writes a mesh as a file with one model and one state; options are those of :func:`zrfx.create`."""
    with _file.create(filename, **options) as file:
        from_meshio(mesh, file)


class TimeSeriesReader:
    """Reads the states of a model one by one."""

    def __init__(self, filename: Any, model: Optional[str] = None, password: Optional[str] = None) -> None:
        self._file = _file.open(filename, password)
        self._model = self._file.models[next(iter(self._file.models)) if model is None else model]
        self.num_steps = len(self._model.states)

    def read_points_cells(self) -> Tuple[Any, List[Any]]:
        """Points, and blocks of cells."""
        mesh = to_meshio(self._model, 0 if self.num_steps else None)
        return mesh.points, mesh.cells

    def read_data(self, k: int) -> Tuple[float, Dict[str, Any], Dict[str, Any]]:
        """Time, data of points and data of cells of the k-th state."""
        mesh = to_meshio(self._model, k)
        return self._model.states[k].value, mesh.point_data, mesh.cell_data

    def __enter__(self) -> TimeSeriesReader:
        return self

    def __exit__(self, *_: Any) -> None:
        self._file.close()


class TimeSeriesWriter:
    """Writes a mesh and then states one by one, each of which is safe when :meth:`write_data` comes back. Options
    are those of :func:`zrfx.create`."""

    def __init__(self, filename: Any, name: str = "Model", **options: Any) -> None:
        self._file = _file.create(filename, **options)
        self._name = name
        self._model: Optional[Model] = None

    def write_points_cells(self, points: Any, cells: Any, **data: Any) -> None:
        """Writes the mesh; further arguments, such as ``cell_sets``, are those of meshio.Mesh."""
        self._model = self._file.add_model(self._name, solution="transient")
        self._layout = _write_mesh(self._model, meshio.Mesh(points, cells, **data))

    def write_data(self, t: float, point_data: Optional[Dict[str, Any]] = None,
                   cell_data: Optional[Dict[str, Any]] = None) -> None:
        """Writes the state of a time."""
        if self._model is None:
            raise InvalidArgumentError("write_points_cells comes before write_data")
        _write_data(self._model, self._layout, t, point_data or {}, cell_data or {})
        self._file.flush()

    def __enter__(self) -> TimeSeriesWriter:
        return self

    def __exit__(self, kind: Optional[Type[BaseException]], error: Optional[BaseException],
                 trace: Optional[TracebackType]) -> None:
        self._file.__exit__(kind, error, trace)


# meshio 5.0 names these types in its formats, and forgets them in its mesh.
for _kind in ("pyramid13", "wedge15"):
    getattr(meshio._mesh, "topological_dimension", {}).setdefault(_kind, 3)
meshio.register_format("zrfx", [".zrfx"], read, {"zrfx": write})
