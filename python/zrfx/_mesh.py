"""Nodes, elements and parts of a model."""

from __future__ import annotations

import dataclasses
from typing import TYPE_CHECKING, Any, Callable, Dict, Iterator, List, Mapping, Optional, Sequence, Tuple, Union

import numpy as np

from . import _arrays
from .elements import BY_LIBRARY_NAME, ElementType, element_type

if TYPE_CHECKING:
    from ._model import Model
    from ._states import State

#: Elements of one type: an array (number of elements, nodes per element), or for polyhedrons a list of
#: elements, each a list of faces, each a list of nodes.
Connectivity = Any
ElementIds = Union[None, Any, Mapping[str, Any]]


class Nodes:
    """A block of nodes.

    ``xyz`` is (n, 3) float32, ``ids`` (n,) int32 or None: read-only views that outlive the file.
    """

    def __init__(self, block_id: int, xyz: Any, ids: Optional[Any]) -> None:
        self.block_id = block_id
        self.xyz = xyz
        self.ids = ids

    def __len__(self) -> int:
        return len(self.xyz)

    def index(self, ids: Any) -> Any:
        """Positions, from 0, of nodes by their ids, in the shape of ``ids``. KeyError names an id that no
        node has. Where the nodes have no ids, positions are ids."""
        return _arrays.positions(self.ids, ids, len(self), "node")

    def __repr__(self) -> str:
        return f"<Nodes {self.block_id}: {len(self)} nodes>"


@dataclasses.dataclass(frozen=True)
class Group:
    """A run of elements of one type, as it is in the file.

    ``nodes`` is (number of elements, nodes per element) int32, for polyhedrons flat; ``ids`` one for each
    element, or None. ``polyhedrons`` is None or four flat arrays: nodes of each element, faces of each
    element, nodes of each face, and the nodes of the faces as positions among the nodes of their element.
    """

    kind: ElementType
    nodes: Any
    ids: Optional[Any]
    polyhedrons: Optional[Tuple[Any, Any, Any, Any]]

    def __len__(self) -> int:
        return len(self.nodes if self.polyhedrons is None else self.polyhedrons[0])

    def node_counts(self) -> Any:
        """The number of nodes of each element."""
        if self.polyhedrons is not None:
            return self.polyhedrons[0]
        return np.full(len(self.nodes), self.nodes.shape[1], dtype=np.int32)

    def surface_counts(self) -> Any:
        """The number of surfaces of each element."""
        if self.polyhedrons is not None:
            return self.polyhedrons[1]
        return np.full(len(self.nodes), self.kind.surfaces, dtype=np.int32)

    def rows(self, rows: slice) -> Group:
        """A range of the elements."""
        ids = None if self.ids is None else self.ids[rows]
        if self.polyhedrons is None:
            return dataclasses.replace(self, nodes=self.nodes[rows], ids=ids)
        node_counts, face_counts, face_sizes, local = self.polyhedrons
        nodes, faces = _span(node_counts, rows), _span(face_counts, rows)
        return Group(self.kind, self.nodes[nodes], ids,
                     (node_counts[rows], face_counts[rows], face_sizes[faces], local[_span(face_sizes, faces)]))

    def faces(self) -> List[List[List[int]]]:
        """Of polyhedrons: elements as lists of faces, each a list of nodes."""
        assert self.polyhedrons is not None
        node_counts, face_counts, face_sizes, local = self.polyhedrons
        elements: List[List[List[int]]] = []
        first_node = face = corner = 0
        for node_count, face_count in zip(node_counts, face_counts):
            own = self.nodes[first_node:first_node + node_count]
            faces = []
            for size in face_sizes[face:face + face_count]:
                faces.append(own[local[corner:corner + size]].tolist())
                corner += size
            elements.append(faces)
            first_node += node_count
            face += face_count
        return elements


def _span(counts: Any, rows: slice) -> slice:
    """Where the items of a range of rows are, when each row has so many."""
    first = int(counts[:rows.start].sum())
    return slice(first, first + int(counts[rows].sum()))


class Elements(Mapping[str, Connectivity]):
    """The elements of a part, by type: ``elements["hexahedron"]`` is (n, 8) int32, a read-only view that
    outlives the file. The nodes of an element come in the order of VTK's cell.

    Elements name their nodes by position, from 0, in the nodes of the block ``node_block``; or by node id,
    where ``by_ids``. Values on elements come in the order of ``groups``. Several runs of one type are joined
    by ``[]``, which copies them.

    A range of the elements of a part (:meth:`Part.read_elements`) says by ``first`` where it begins, and by
    ``first_node`` which row its first node has among results on the nodes of elements.
    """

    def __init__(self, block_id: int, node_block: int, by_ids: bool, groups: List[Group], first: int = 0,
                 first_node: int = 0) -> None:
        self.block_id = block_id
        self.node_block = node_block
        self.by_ids = by_ids
        self.groups = groups
        self.first = first
        self.first_node = first_node

    def __getitem__(self, name: str) -> Connectivity:
        runs = [group for group in self.groups if group.kind.name == name]
        if not runs:
            raise KeyError(f"no elements {name!r}; there are: {', '.join(map(repr, self)) or 'none'}")
        if runs[0].polyhedrons is not None:
            return [element for run in runs for element in run.faces()]
        return runs[0].nodes if len(runs) == 1 else np.concatenate([run.nodes for run in runs])

    def __iter__(self) -> Iterator[str]:
        return iter(dict.fromkeys(group.kind.name for group in self.groups))

    def __len__(self) -> int:
        return len(dict.fromkeys(group.kind.name for group in self.groups))

    @property
    def count(self) -> int:
        """The number of elements of all types."""
        return sum(len(group) for group in self.groups)

    @property
    def ids(self) -> Optional[Any]:
        """The ids of all elements in their order, or None."""
        ids = [group.ids for group in self.groups if group.ids is not None]
        if not ids:
            return None
        return ids[0] if len(ids) == 1 else np.concatenate(ids)

    def index(self, ids: Any) -> Any:
        """Positions, from 0, of elements by their ids; KeyError names an id that no element has. Where the
        elements have no ids, positions are ids."""
        return _arrays.positions(self.ids, ids, self.count, "element")

    def node_counts(self) -> Any:
        """(count,) int32: the nodes of each element."""
        return np.concatenate([group.node_counts() for group in self.groups] or [np.zeros(0, np.int32)])

    def surface_counts(self) -> Any:
        """(count,) int32: the surfaces of each element."""
        return np.concatenate([group.surface_counts() for group in self.groups] or [np.zeros(0, np.int32)])

    def item_count(self, on: str) -> int:
        """The number of items of a result on ``"elements"``, ``"element_nodes"`` or ``"surfaces"``."""
        if on == "elements":
            return self.count
        if on == "element_nodes":
            return sum(group.nodes.size for group in self.groups)
        return int(self.surface_counts().sum())

    def item_range(self, on: str, position: int) -> slice:
        """The items of one element among those of :meth:`item_count`."""
        if on == "elements":
            return slice(position, position + 1)
        counts = self.node_counts() if on == "element_nodes" else self.surface_counts()
        first = int(counts[:position].sum())
        return slice(first, first + int(counts[position]))

    def __repr__(self) -> str:
        kinds = ", ".join(f"{len(group)} {group.kind.name}" for group in self.groups)
        return f"<Elements {self.block_id}: {kinds or 'none'}>"


class Part:
    """A part: what a viewer shows, colours and hides as one."""

    def __init__(self, model: Model, id: int, name: str, geometry: int) -> None:
        self.model = model
        self.id = id
        self.name = name
        self.geometry = geometry

    @property
    def elements(self) -> Elements:
        """The elements; of the first state where they change."""
        return self.model._elements(self.model._block_of_part(self, None))

    def elements_at(self, state: State) -> Elements:
        """The elements in a state."""
        return self.model._elements(self.model._block_of_part(self, state.id))

    def block_at(self, state: Optional[State] = None) -> int:
        """The id of the block of elements in a state, the first by default: another one where they change."""
        return self.model._block_of_part(self, None if state is None else state.id)

    def read_elements(self, rows: Union[slice, Callable[[int], slice]], state: Optional[State] = None) -> Elements:
        """A range of the elements, for which only its part of the file is unpacked; of the first state by default.
        ``rows`` is a slice, or makes one of the number of elements."""
        return self.model._element_rows(self.block_at(state), rows)

    @property
    def nodes(self) -> Nodes:
        """The nodes that :attr:`elements` refer to."""
        return self.model.node_blocks[self.elements.node_block]

    def __repr__(self) -> str:
        return f"<Part {self.id} {self.name!r}>"


class NodeBlocks(Mapping[int, Nodes]):
    """The blocks of nodes of a model by their ids, each read when it is asked for."""

    def __init__(self, model: Model) -> None:
        self._model = model

    def __getitem__(self, id: int) -> Nodes:
        if id not in self._model._core.block_ids("nodes"):
            raise KeyError(f"no block of nodes {id}; there are: {list(self)}")
        return self._model._nodes(id)

    def __iter__(self) -> Iterator[int]:
        return iter(self._model._core.block_ids("nodes"))

    def __len__(self) -> int:
        return len(self._model._core.block_ids("nodes"))


def read_elements(core: Any, block_id: int) -> Elements:
    """Elements by the id of their block."""
    node_block, by_ids, groups = core.read_elements(block_id)
    return Elements(block_id, node_block, by_ids, [
        Group(BY_LIBRARY_NAME[kind], _arrays.view(nodes), None if ids is None else _arrays.view(ids),
              _polyhedrons(faces))
        for kind, nodes, ids, _, faces in groups])


def _polyhedrons(arrays: Any) -> Optional[Tuple[Any, Any, Any, Any]]:
    if arrays is None:
        return None
    node_counts, face_counts, face_sizes, local = map(_arrays.view, arrays)
    return node_counts, face_counts, face_sizes, local


def element_groups(elements: Mapping[str, Connectivity], ids: ElementIds,
                   ) -> List[Tuple[str, Connectivity, Optional[Any]]]:
    """Elements by type and their ids, in one array or by type, as the library takes them."""
    if ids is not None and not isinstance(ids, Mapping):
        ids = _ids_by_type(elements, _arrays.ints(ids))
    groups = []
    for name, nodes in elements.items():
        kind = element_type(name)
        own = None if ids is None else _arrays.ints(ids[name])
        groups.append((kind.library_name, nodes if kind.nodes == 0 else _arrays.ints(nodes), own))
    return groups


def count_items(groups: List[Tuple[str, Connectivity, Optional[Any]]]) -> Dict[str, int]:
    """The numbers of items of results on what :func:`element_groups` gives."""
    counts = {"elements": 0, "element_nodes": 0, "surfaces": 0}
    for library_name, nodes, _ in groups:
        kind = BY_LIBRARY_NAME[library_name]
        counts["elements"] += len(nodes)
        if kind.nodes == 0:
            counts["element_nodes"] += sum(len({node for face in cell for node in face}) for cell in nodes)
            counts["surfaces"] += sum(len(cell) for cell in nodes)
        else:
            counts["element_nodes"] += nodes.size
            counts["surfaces"] += len(nodes) * kind.surfaces
    return counts


def _ids_by_type(elements: Mapping[str, Connectivity], ids: Any) -> Dict[str, Any]:
    sizes = [len(nodes) for nodes in elements.values()]
    if len(ids) != sum(sizes):
        raise ValueError(f"{sum(sizes)} elements need as many ids, not {len(ids)}")
    return dict(zip(elements, np.split(ids, np.cumsum(sizes)[:-1])))


def split_by(sizes: Sequence[int], values: Any) -> List[Any]:
    """Consecutive pieces of an array, as views."""
    ends = np.cumsum(sizes)
    return [values[end - size:end] for size, end in zip(sizes, ends)]
