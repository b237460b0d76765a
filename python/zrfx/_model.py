"""One model of a file."""

from __future__ import annotations

import weakref
from typing import TYPE_CHECKING, Any, Callable, Dict, List, Mapping, Optional, Sequence, Tuple, TypeVar, Union

import numpy as np

from . import _arrays, _core
from ._mesh import (Connectivity, ElementIds, Elements, NodeBlocks, Nodes, Part, count_items, element_groups,
                    read_elements)
from ._names import Named
from ._partial import Summary, read_element_rows, read_node_rows
from ._results import Result, new_result, read_result, write_result
from ._sets import ElementSet, read_set
from ._states import KINDS, State, StateGroup, States, shortest
from ._transformations import Transformation, read_transformation, write_transformation

if TYPE_CHECKING:
    from ._cases import Case
    from ._file import File

#: Parts of a state: for each geometry, pairs of element block and part id.
Geometries = List[List[Tuple[int, int]]]
T = TypeVar("T")


class Model:
    """One model: nodes, parts, states, results and sets.

    Get it from ``file.models`` or ``file.add_model``. What is read stays usable after the file is closed.
    What the ``add`` and ``set`` operations are given is written at once; lists of states, parts and results
    follow with :meth:`File.flush` and :meth:`File.close`.
    """

    def __init__(self, file: File, core: _core.Database) -> None:
        self.file = file
        self._core = core
        self.id = core.id
        self.name = core.name
        self._forget()

    def _forget(self) -> None:
        """Reads lists again when they are asked for next."""
        self._lists: Dict[str, Any] = {}
        self._changed: Dict[str, bool] = {}
        self._counts: Dict[Tuple[str, int], int] = {}
        self._summaries: Dict[Tuple[str, int], Summary] = {}
        self._node_cache: weakref.WeakValueDictionary[int, Nodes] = weakref.WeakValueDictionary()
        self._element_cache: weakref.WeakValueDictionary[int, Elements] = weakref.WeakValueDictionary()

    # Description

    @property
    def description(self) -> str:
        return self._core.description

    @property
    def simulation(self) -> str:
        """``"structural"``, ``"thermal"``, ``"fluid"``, ``"electromagnetic"``, ``"acoustic"``, ``"multibody"``,
        ``"multiphysics"`` or ``"other_simulation"``."""
        return self._core.simulation

    @property
    def solution(self) -> str:
        """``"linear_static"``, ``"nonlinear_static"``, ``"modal"``, ``"buckling"``, ``"frequency_response"``,
        ``"transient"``, ``"explicit_dynamic"``, ``"response_spectrum"``, ``"random_vibration"``,
        ``"steady_state"``, ``"fatigue"`` or ``"other_solution"``."""
        return self._core.solution

    # Reading

    @property
    def nodes(self) -> Nodes:
        """The nodes; of the first block where there are several, see :attr:`node_blocks`."""
        return self._nodes(self._node_block_ids()[0])

    @property
    def node_blocks(self) -> Mapping[int, Nodes]:
        """All blocks of nodes by their ids."""
        return NodeBlocks(self)

    def read_nodes(self, rows: slice, block: Optional[int] = None) -> Nodes:
        """A range of the nodes, of which only their part of the file is unpacked; of the first block by default."""
        id = self._node_block_ids()[0] if block is None else block
        return read_node_rows(self._core, id, self._summary("nodes", id), rows)

    @property
    def parts(self) -> Named[Part]:
        """The parts of all geometries by name."""
        names = self._part_names()
        return Named("part", [Part(self, id, names.get((geometry, id), f"Part {id}"), geometry)
                              for geometry, parts in enumerate(self._record(None)) for _, id in parts])

    @property
    def states(self) -> States:
        return States(self._states(), self._groups())

    @property
    def times(self) -> Any:
        """(n,) float64: the values of the states; empty when there are none."""
        return self.states.times

    @property
    def results(self) -> Named[Result]:
        """The results by name, without their values."""
        found: Named[Result] = self._list("results by name", lambda: Named("result", self._results()))
        return found

    @property
    def transformations(self) -> Named[Transformation]:
        """The rigid-body results by name, without their matrices."""
        return Named("transformation", self._transformations())

    @property
    def sets(self) -> Named[ElementSet]:
        """The sets of elements by name."""
        return Named("set", [read_set(self, id) for id in self._core.block_ids("set")])

    @property
    def cases(self) -> Named[Case]:
        """The cases of the file that show this model."""
        return Named("case", [case for case in self.file.cases.values() if case.model_id == self.id])

    def check(self) -> List[str]:
        """What does not fit together in the model, one sentence each; empty when all is well. While a file is
        written, its lists of states, parts and results count as they were flushed last. No values are read."""
        return self._core.check()

    def to_xarray(self) -> Any:
        """An xarray.Dataset of all results, read lazily where dask is installed. See
        :func:`zrfx.lazy.to_xarray`."""
        from .lazy import to_xarray

        return to_xarray(self)

    def to_meshio(self, state: Union[None, int, State] = None) -> Any:
        """A meshio.Mesh with the results of one state. See :func:`zrfx.meshio.to_meshio`."""
        from .meshio import to_meshio

        return to_meshio(self, state)

    def to_vtk(self, state: Union[None, int, State] = None, **options: Any) -> Any:
        """A vtkMultiBlockDataSet with the results of one state. See :func:`zrfx.vtk.to_vtk`, and
        :class:`zrfx.vtk.Options` for the options."""
        from .vtk import to_vtk

        return to_vtk(self, state, **options)

    # Writing

    def set_nodes(self, xyz: Any, ids: Optional[Any] = None) -> Nodes:
        """Writes the nodes: (n, 3) coordinates and (n,) ids of 0 or more. C-contiguous float32 and int32
        arrays are not copied, others are converted. Replaces nodes that were set before."""
        blocks = self._core.block_ids("nodes")
        return self._write_nodes(blocks[0] if blocks else 1, xyz, ids)

    def add_nodes(self, xyz: Any, ids: Optional[Any] = None) -> Nodes:
        """Writes a further block of nodes, for parts that have nodes of their own or change."""
        return self._write_nodes(self._core.unused_block_id("nodes"), xyz, ids)

    def add_part(self, name: str, elements: Mapping[str, Connectivity], ids: ElementIds = None, *,
                 nodes: Union[None, int, Nodes] = None, by_ids: bool = False, id: Optional[int] = None,
                 geometry: int = 0) -> Part:
        """Writes a part.

        ``elements`` holds by type (see :mod:`zrfx.elements`) arrays (number of elements, nodes per element) of
        positions, from 0, in ``nodes`` (the first block by default), or of node ids with ``by_ids``. Nodes of
        an element come in the order of VTK's cell. Polyhedrons are a list of elements, each a list of faces,
        each a list of nodes with the normal outward. ``ids`` is an array for all elements, or one by type.
        """
        with self.file._writing():
            records = self._records()
            while len(records[0][1]) <= geometry:
                for _, geometries in records:
                    geometries.append([])
            known = [part for parts in records[0][1] for _, part in parts]
            part = max(known, default=0) + 1 if id is None else id
            block = self._write_elements(elements, ids, nodes, by_ids)
            for _, geometries in records:
                geometries[geometry].append((block, part))
            self._part_names()[geometry, part] = name
            self._changed.update(geometry=True, names=True)
            return Part(self, part, name, geometry)

    def add_result(self, name: str, kind: str = "scalar", on: str = "nodes", *, unit: Optional[str] = None,
                   attributes: Optional[Mapping[str, str]] = None, strain: Optional[str] = None, scale: float = 1,
                   relative: bool = False, digits: int = 0, id: Optional[int] = None) -> Result:
        """Adds a result; :class:`Result` says which ``kind`` and ``on`` there are. Values follow by
        ``state[result] = values``. ``scale`` enlarges displacements at first, ``relative`` ones are relative
        to the state before. ``digits``, 1 to 6, is how many significant digits the values keep, so that they pack
        better; 0 keeps what the file says."""
        with self.file._writing():
            own = dict(attributes or {}, **({} if unit is None else {"unit": unit}))
            known = [result.block_id for result in self._results()]
            block = max([*known, *self._core.block_ids("result")], default=0) + 1
            result = new_result(self, block, name, self._unused_result_id() if id is None else id, kind, on, own,
                                strain, scale, relative, digits)
            self._results().append(result)
            self._lists.pop("results by name", None)
            return result

    def add_transformation(self, name: str, id: Optional[int] = None) -> Transformation:
        """Adds a rigid-body result; matrices follow by ``state[transformation] = {part: matrix}``."""
        with self.file._writing():
            known = [item.block_id for item in self._transformations()]
            block = max([*known, *self._core.block_ids("transformation_result")], default=0) + 1
            added = Transformation(self, block, name, self._unused_result_id() if id is None else id, {})
            self._transformations().append(added)
            return added

    def add_state(self, time: Optional[float] = None, *, frequency: Optional[float] = None,
                  load_case: Optional[float] = None, other: Optional[float] = None, name: str = "",
                  id: Optional[int] = None) -> State:
        """Appends a state with a time, a frequency, a load case or another value. Without a name it is called
        "State" and its id."""
        kind, value = _reference(time, frequency, load_case, other)
        with self.file._writing():
            state_id = self._new_state_id(id)
            state = State(self, state_id, name or f"State {state_id}", shortest(value), kind)
            self._states().append(state)
            self._changed["states"] = True
            if len(self._records()) > 1:
                self._records().append((state_id, [list(parts) for parts in self._records()[-1][1]]))
                self._changed["geometry"] = True
            return state

    def group_states(self, name: str, states: Sequence[State]) -> StateGroup:
        """Groups states, such as those of a load case. A state belongs to the last group it was put in."""
        with self.file._writing():
            group = StateGroup(self._new_state_id(None), name, [state.id for state in states])
            self._groups().append(group)
            self._changed["states"] = True
            return group

    def add_set(self, name: str, parts: Mapping[Union[str, Part], Any], *, by_ids: bool = False,
                id: Optional[int] = None) -> ElementSet:
        """Writes a named set of elements: by part, their positions from 0, a mask of all elements, or their ids with
        ``by_ids``."""
        with self.file._writing():
            block = self._core.unused_block_id("set")
            groups = [(self._target("elements", None, part), _arrays.ints(_arrays.unmasked(items))) for part, items in parts.items()]
            self._core.write_set(block, block if id is None else id, name, by_ids, groups)
            return read_set(self, block)

    # What the library is asked for

    def _list(self, key: str, read: Any) -> Any:
        if key not in self._lists:
            self._lists[key] = read()
        return self._lists[key]

    def _read_states(self) -> Tuple[List[State], List[StateGroup]]:
        if not self._core.block_ids("state_info"):
            return [], []
        states, groups = self._core.read_states()
        return ([State(self, id, name, shortest(value), kind) for id, name, value, kind in states],
                [StateGroup(*group) for group in groups])

    def _states(self) -> List[State]:
        found: List[State] = self._list("states", self._read_states)[0]
        return found

    def _groups(self) -> List[StateGroup]:
        found: List[StateGroup] = self._list("states", self._read_states)[1]
        return found

    def _new_state_id(self, wanted: Optional[int]) -> int:
        """An id for a state or a group: the one wanted, or the one after the largest."""
        used: Dict[Optional[int], int] = self._list("state ids", self._used_state_ids)
        if wanted in used and wanted is not None:
            raise ValueError(f"there is a state or group with the id {wanted} already")
        id = used[None] + 1 if wanted is None else wanted
        used[id] = id
        used[None] = max(used[None], id)
        return id

    def _used_state_ids(self) -> Dict[Optional[int], int]:
        """Ids of states and groups, and the largest for None."""
        ids = [*(state.id for state in self._states()), *(group.id for group in self._groups())]
        return {**{id: id for id in ids}, None: max(ids, default=0)}

    def _results(self) -> List[Result]:
        found: List[Result] = self._list(
            "results", lambda: [read_result(self, id) for id in self._core.block_ids("result")])
        return found

    def _transformations(self) -> List[Transformation]:
        found: List[Transformation] = self._list(
            "transformations",
            lambda: [read_transformation(self, id) for id in self._core.block_ids("transformation_result")])
        return found

    def _node_block_ids(self) -> List[int]:
        found: List[int] = self._list("node blocks", self._read_node_block_ids)
        return found

    def _read_node_block_ids(self) -> List[int]:
        return self._core.block_ids("nodes")

    def _new_values_id(self) -> int:
        """An id for values; no one else adds any while the file is open for writing."""
        id: int = self._lists.get("values") or self._core.unused_block_id("result_values")
        self._lists["values"] = id + 1
        return id

    def _records(self) -> List[Tuple[Optional[int], Geometries]]:
        """Parts by state: one record for all states, or one for each."""
        found: List[Tuple[Optional[int], Geometries]] = self._list("geometry", self._read_records)
        return found

    def _read_records(self) -> List[Tuple[Optional[int], Geometries]]:
        if not self._core.block_ids("geometry"):
            return [(None, [[]])]
        records: List[Tuple[Optional[int], Geometries]] = [*self._core.read_geometry()]
        return records if len(records) > 1 else [(None, records[0][1])] if records else [(None, [[]])]

    def _record(self, state_id: Optional[int]) -> Geometries:
        records = self._records()
        if len(records) == 1 or state_id is None:
            return records[0][1]
        index: Dict[Optional[int], Geometries] = self._list("parts by state", dict)
        index.update(records[len(index):])
        if state_id not in index:
            raise KeyError(f"no parts in state {state_id}")
        return index[state_id]

    def _part_names(self) -> Dict[Tuple[int, int], str]:
        def read() -> Dict[Tuple[int, int], str]:
            if not self._core.block_ids("geometry_info"):
                return {}
            return {(geometry, id): name for geometry, parts in enumerate(self._core.read_part_names())
                    for id, name in parts}

        found: Dict[Tuple[int, int], str] = self._list("names", read)
        return found

    def _part_names_by_block(self, state_id: Optional[int]) -> Dict[int, str]:
        names = {(part.geometry, part.id): name for name, part in self.parts.items()}
        return {block: names[geometry, id] for geometry, parts in enumerate(self._record(state_id))
                for block, id in parts}

    def _block_of_part(self, part: Part, state_id: Optional[int]) -> int:
        for block, id in self._record(state_id)[part.geometry]:
            if id == part.id:
                return block
        raise KeyError(f"no part {part.name!r} in state {state_id}")

    def _part(self, part: Union[str, Part]) -> Part:
        return self.parts[part] if isinstance(part, str) else part

    def _nodes(self, block_id: int) -> Nodes:
        nodes = self._node_cache.get(block_id)
        if nodes is None:
            xyz, ids = self._core.read_nodes(block_id)
            nodes = Nodes(block_id, _arrays.view(xyz), None if ids is None else _arrays.view(ids))
            self._node_cache[block_id] = nodes
        return nodes

    def _elements(self, block_id: int) -> Elements:
        elements = self._element_cache.get(block_id)
        if elements is None:
            elements = self._element_cache[block_id] = read_elements(self._core, block_id)
        return elements

    def _node_index(self, elements: Elements) -> List[Any]:
        """The nodes of each group as positions in their block of nodes."""
        if not elements.by_ids:
            return [group.nodes for group in elements.groups]
        return [self._nodes(elements.node_block).index(group.nodes) for group in elements.groups]

    # Which items values belong to

    def _targets(self, on: str, state_id: Optional[int]) -> List[int]:
        """The blocks whose items a result has values for, in the order of its rows."""
        if on != "nodes":
            return list(dict.fromkeys(block for parts in self._record(state_id) for block, _ in parts))
        blocks = self._node_block_ids()
        if len(blocks) < 2:
            return blocks
        used = [self._node_block_of(block) for parts in self._record(state_id) for block, _ in parts]
        return list(dict.fromkeys(used)) or blocks

    def _target(self, on: str, state_id: Optional[int], part: Union[str, Part]) -> int:
        block = self._block_of_part(self._part(part), state_id)
        return self._node_block_of(block) if on == "nodes" else block

    def _node_block_of(self, element_block: int) -> int:
        return self._summary("elements", element_block).target

    def _summary(self, kind: str, block: int) -> Summary:
        key = (kind, block)
        if key not in self._summaries:
            self._summaries[key] = Summary(*self._core.summary(kind, block))
        return self._summaries[key]

    def _element_rows(self, block: int, rows: Union[slice, Callable[[int], slice]]) -> Elements:
        summary = self._summary("elements", block)
        return read_element_rows(self._core, block, summary, rows if isinstance(rows, slice) else rows(summary.items))

    def _item_count(self, on: str, target: int) -> int:
        key = (on, target)
        if key not in self._counts:
            self._counts[key] = self._summary("nodes" if on == "nodes" else "elements", target).count(on)
        return self._counts[key]

    def _unused_result_id(self) -> int:
        return max([*(item.id for item in self._results()), *(item.id for item in self._transformations())],
                   default=0) + 1

    # Writing blocks

    def _write_nodes(self, block_id: int, xyz: Any, ids: Optional[Any]) -> Nodes:
        coordinates, own = _arrays.floats(xyz), _arrays.optional_ints(ids)
        if coordinates.ndim != 2 or coordinates.shape[1] != 3:
            raise ValueError(f"nodes have the shape (n, 3), not {coordinates.shape}")
        if own is not None and own.shape != coordinates.shape[:1]:
            raise ValueError(f"{len(coordinates)} nodes need as many ids, not {own.shape}")
        with self.file._writing():
            self._core.write_nodes(block_id, coordinates, own)
            self._lists.pop("node blocks", None)
            self._node_cache.pop(block_id, None)
            self._summaries.pop(("nodes", block_id), None)
            self._counts["nodes", block_id] = len(coordinates)
        return Nodes(block_id, coordinates, own)

    def _write_elements(self, elements: Mapping[str, Connectivity], ids: ElementIds,
                        nodes: Union[None, int, Nodes], by_ids: bool) -> int:
        """The id of the block that was written."""
        groups = element_groups(elements, ids)
        node_block = nodes.block_id if isinstance(nodes, Nodes) else nodes
        if node_block is None:
            node_block = next(iter(self._node_block_ids()), 1)
        block_id = self._core.unused_block_id("elements")
        self._core.write_elements(block_id, node_block, by_ids, groups)
        self._counts.update({(on, block_id): count for on, count in count_items(groups).items()})
        return block_id

    def _set_part(self, state: State, part: Union[str, Part], elements: Mapping[str, Connectivity], ids: ElementIds,
                  nodes: Union[None, int, Nodes], by_ids: bool) -> None:
        with self.file._writing():
            own, records = self._part(part), self._records()
            block = self._write_elements(elements, ids, nodes, by_ids)
            if len(records) == 1:
                geometries = records.pop()[1]
                records += [(each.id, [list(parts) for parts in geometries]) for each in self._states()]
                self._lists.pop("parts by state", None)
            place = next(i for i in reversed(range(len(records))) if records[i][0] == state.id)
            for _, geometries in records[place:]:
                geometries[own.geometry] = [(block if id == own.id else old, id)
                                            for old, id in geometries[own.geometry]]
            self._changed["geometry"] = True

    def _write_lists(self, is_last: bool) -> None:
        """Writes the lists that have changed; a model that is closed without states gets one."""
        if is_last and self._changed and not self._states():
            self.add_state(name="State 1")
        if self._changed.pop("states", False):
            self._core.write_states([(state.id, state.name, state.value, state.kind) for state in self._states()],
                                    [tuple(group) for group in self._groups()])
        if self._changed.pop("geometry", False):
            self._core.write_geometry(len(self._record(None)), self._records())
        if self._changed.pop("names", False):
            names = self._part_names()
            self._core.write_part_names([[(id, names[own, id]) for own, id in names if own == geometry]
                                         for geometry in range(len(self._record(None)))])
        for result in self._results() if "results" in self._lists else ():
            write_result(result)
        for transformation in self._transformations() if "transformations" in self._lists else ():
            write_transformation(transformation)

    def __repr__(self) -> str:
        return f"<Model {self.id} {self.name!r}>"


def _reference(time: Optional[float], *others: Optional[float]) -> Tuple[str, float]:
    """The kind and the value of a state."""
    if time is not None and others == (None, None, None):
        return "time", time
    given = [(kind, value) for kind, value in zip(KINDS, (time, *others)) if value is not None]
    if len(given) > 1:
        raise ValueError("a state has one of time, frequency, load_case and other")
    return given[0] if given else ("other", 0.0)
