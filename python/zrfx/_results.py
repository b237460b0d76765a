"""Results and their values."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any, Collection, Dict, Iterable, List, NamedTuple, Optional, Sequence, Tuple, Union

import numpy as np

from . import _arrays
from ._mesh import Elements, Nodes, Part
from ._partial import overlaps, read_value_rows, row_range
from ._progress import Progress, counted
from ._states import State, nearest_state

if TYPE_CHECKING:
    from ._model import Model

#: The components of each kind of result, in the order in which they are stored.
COMPONENTS = {
    "scalar": ("value",),
    "vector": ("x", "y", "z"),
    "displacement": ("x", "y", "z"),
    "tensor": ("xx", "yy", "zz", "xy", "yz", "zx"),
}

_MAPPINGS = {
    "nodes": "node_mapping",
    "elements": "element_mapping",
    "element_nodes": "element_node_mapping",
    "surfaces": "surface_mapping",
    "undefined": "undefined_mapping",
}
_ON = {mapping: on for on, mapping in _MAPPINGS.items()}
_STRAINS = {None: "no_strain", "engineering": "engineering_strain", "standard": "standard_strain"}
_STRAIN_OF = {name: strain for strain, name in _STRAINS.items()}

StateLike = Union[None, int, State]


class Field(NamedTuple):
    """The values of a result in a state on one block of nodes or elements, as they are in the file.

    ``values`` is (n,) or (n, components) float32, a read-only view that outlives the file. ``items`` is None,
    where the values belong to all items of the block ``target`` in their order, or the ids of those that have
    values.
    """

    target: int
    values: Any
    items: Optional[Any]


class Result:
    """One result of a model in all its states.

    ``kind`` is ``"scalar"``, ``"vector"``, ``"displacement"`` or ``"tensor"``; ``on`` says what the values
    belong to: ``"nodes"``, ``"elements"``, ``"element_nodes"`` or ``"surfaces"``. ``strain`` is None,
    ``"engineering"`` or ``"standard"``. ``digits`` says how many significant digits are kept, 0 for all. Nothing but
    the description is read before values are asked for.
    """

    def __init__(self, model: Model, block_id: int, name: str, id: int, kind: str, on: str,
                 attributes: Dict[str, str], strain: Optional[str], scale: float, relative: bool,
                 digits: int, blocks: Dict[int, List[int]]) -> None:
        self.model = model
        self.block_id = block_id
        self.name = name
        self.id = id
        self.kind = kind
        self.on = on
        self.attributes = attributes
        self.strain = strain
        self.scale = scale
        self.relative = relative
        self.digits = digits
        self._width = len(self.components)
        self._tail = () if self._width == 1 else (self._width,)
        self._states: Tuple[Tuple[int, int], List[State]] = ((-1, -1), [])
        self._blocks = blocks
        self._targets: Dict[int, int] = {}
        self._is_changed = False

    @property
    def unit(self) -> Optional[str]:
        """The attribute of that name, or None."""
        return self.attributes.get("unit")

    @property
    def components(self) -> Tuple[str, ...]:
        """The names of the components; one for scalars."""
        return COMPONENTS.get(self.kind, ("value",))

    @property
    def states(self) -> List[State]:
        """The states that have values, in the order of the model."""
        return list(self._known_states())

    @property
    def state_ids(self) -> Collection[int]:
        """The ids of the states that have values."""
        return self._blocks.keys()

    def _known_states(self) -> List[State]:
        """:attr:`states`, found anew when there are more."""
        states = self.model._states()
        sizes = len(states), len(self._blocks)
        if self._states[0] != sizes:
            self._states = sizes, [state for state in states if state.id in self._blocks]
        return self._states[1]

    @property
    def times(self) -> Any:
        """(n,) float64: the values of :attr:`states`; empty when there are none."""
        return np.array([state.value for state in self.states], dtype=np.float64)

    def state(self, state: StateLike = None, time: Optional[float] = None) -> State:
        """The state meant: a State, an index into :attr:`states`, a time; the last one by default."""
        if isinstance(state, State):
            if state.id not in self._blocks:
                raise KeyError(f"result {self.name!r} has no values in state {state.id}")
            return state
        if time is not None:
            return nearest_state(self._known_states(), time)
        states = self._known_states()
        try:
            return states[-1 if state is None else state]
        except IndexError:
            raise IndexError(f"result {self.name!r} has {len(states)} states") from None

    def fields(self, state: StateLike = None, *, time: Optional[float] = None) -> List[Field]:
        """The values of a state block by block, as they are in the file."""
        return [self._read(block) for block in self._blocks[self.state(state, time).id]]

    def at(self, state: StateLike = None, *, time: Optional[float] = None, part: Union[None, str, Part] = None,
           rows: Optional[slice] = None, undefined: str = "nan") -> Any:
        """The values in a state, float32: (n,) for scalars, (n, components) for others.

        ``state`` is a State or an index into :attr:`states`, ``time`` the time of one; the last state by
        default. Items are those of a part, or of the whole model: all nodes, or the elements of all parts one
        after the other. Where a part has no values, its items are undefined. ``rows`` is a range of them, such as
        ``slice(1000, 2000)``, for which only its part of the file is unpacked.

        Undefined values become NaN, or are masked with ``undefined="mask"``, or stay the numbers that they are
        in the file (2.99e38 and above, NaN) with ``"keep"``. The array is a read-only view of what was read,
        which outlives the file, where nothing has to be filled in.
        """
        chosen = self.state(state, time)
        values = self._values(chosen, part) if rows is None else self._value_rows(chosen, part, rows)
        return _arrays.without_undefined(values, undefined)

    def read_into(self, buffer: Any, state: StateLike = None, *, time: Optional[float] = None,
                  part: Union[None, str, Part] = None) -> None:
        """Reads into an array of the shape that :meth:`at` has. Undefined values stay as they are in the
        file."""
        values = self._values(self.state(state, time), part)
        target = np.asarray(buffer)
        if target.shape != values.shape:
            raise ValueError(f"the values have the shape {values.shape}, the buffer has {target.shape}")
        np.copyto(target, values)

    def history(self, *, node: Optional[int] = None, element: Optional[int] = None, index: Optional[int] = None,
                states: Optional[Iterable[StateLike]] = None, undefined: str = "nan",
                progress: Optional[Progress] = None) -> Any:
        """The values of one item over the states: (states,) for scalars, (states, components) for others.

        The item is a node or an element by its id (its position where there are no ids), or the row ``index``
        of :meth:`at`. An element of a result on its nodes or surfaces gives (states, nodes) or (states, nodes,
        components). Unpacks of each state the piece that holds the item. ``progress`` is called with the fraction
        that is done; ``False`` stops.
        """
        places: Dict[Tuple[int, ...], Tuple[int, slice]] = {}
        rows = [self._item(state, (node, element, index), places)
                for state in counted(self._chosen(states), progress)]
        if not rows:
            return np.zeros((0, *self._tail), np.float32)
        return _arrays.without_undefined(np.stack(rows), undefined)

    def to_dataframe(self, states: Optional[Iterable[StateLike]] = None, progress: Optional[Progress] = None) -> Any:
        """A pandas.DataFrame: a column for each component, a row for each item in each state. See
        :func:`zrfx.tables.to_dataframe`."""
        from .tables import to_dataframe

        return to_dataframe(self, states, progress)

    def to_dask(self) -> Any:
        """A dask.array (states, items[, components]), a chunk for each state and block. See
        :func:`zrfx.lazy.to_dask`."""
        from .lazy import to_dask

        return to_dask(self)

    def _chosen(self, states: Optional[Iterable[StateLike]]) -> Sequence[State]:
        return self.states if states is None else [self.state(state) for state in states]

    def _shape(self, count: int) -> Tuple[int, ...]:
        return (count, *self._tail)

    def _read(self, block: int) -> Field:
        target, values, items = self.model._core.read_values(block)
        self._targets[block] = target
        return Field(target, _arrays.view(values), None if items is None else _arrays.view(items))

    def _target_of(self, block: int) -> int:
        if block not in self._targets:
            self._targets[block] = self.model._summary("result_values", block).target
        return self._targets[block]

    def _block_on(self, state: State, target: int) -> Optional[int]:
        """The values on one block, by their id."""
        return next((block for block in self._blocks[state.id] if self._target_of(block) == target), None)

    def _values(self, state: State, part: Union[None, str, Part]) -> Any:
        if part is not None:
            return self._on_block(state, self.model._target(self.on, state.id, part))
        targets = self.model._targets(self.on, state.id)
        if len(targets) == 1:
            return self._on_block(state, targets[0])
        fields = {field.target: field for field in map(self._read, reversed(self._blocks[state.id]))}
        return np.concatenate([self._on_all(fields.get(target), target) for target in targets]
                              or [np.zeros(self._shape(0), np.float32)])

    def _value_rows(self, state: State, part: Union[None, str, Part], rows: slice) -> Any:
        targets = (self.model._targets(self.on, state.id) if part is None
                   else [self.model._target(self.on, state.id, part)])
        sizes = [self.model._item_count(self.on, target) for target in targets]
        pieces = [self._rows_on(state, target, own) for target, own in zip(targets, overlaps(rows, sizes))]
        return pieces[0] if len(pieces) == 1 else np.concatenate(pieces or [np.zeros(self._shape(0), np.float32)])

    def _rows_on(self, state: State, target: int, rows: slice) -> Any:
        """A range of the values on a block; those that name their items are read whole."""
        block = self._block_on(state, target)
        if block is None:
            return np.full(self._shape(rows.stop - rows.start), _arrays.UNDEFINED, np.float32)
        if self.model._summary("result_values", block).has_ids:
            return self._on_all(self._read(block), target)[rows]
        return read_value_rows(self.model._core, block, rows, self._tail)

    def _on_block(self, state: State, target: int) -> Any:
        """The values on all items of a block."""
        blocks = self._blocks[state.id]
        if len(blocks) == 1:  # most likely those: what they belong to is read with them
            field = self._read(blocks[0])
            return self._on_all(field if field.target == target else None, target)
        block = self._block_on(state, target)
        return self._on_all(None if block is None else self._read(block), target)

    def _on_all(self, field: Optional[Field], target: int) -> Any:
        """The values of the file, or with the missing ones filled in."""
        if field is not None and field.items is None:
            return field.values
        values = np.full(self._shape(self.model._item_count(self.on, target)), _arrays.UNDEFINED, np.float32)
        if field is not None:
            values[self._rows(target, field.items)] = field.values
        return values

    def _rows(self, target: int, items: Any) -> Any:
        if self.on == "nodes":
            return self.model._nodes(target).index(items)
        if self.on == "elements":
            return self.model._elements(target).index(items)
        raise NotImplementedError(f"values on {self.on} with ids of items: use fields()")

    def _item(self, state: State, item: Tuple[Optional[int], Optional[int], Optional[int]],
              places: Dict[Tuple[int, ...], Tuple[int, slice]]) -> Any:
        """The values of an item in a state; ``places`` keeps where it is, by the blocks of the mesh."""
        node, element, index = item
        if index is not None and node is None and element is None:
            first, _ = row_range(slice(index, None), sum(self._sizes(state)))
            values = self._value_rows(state, None, slice(first, first + 1))
            if index < -sum(self._sizes(state)) or not len(values):
                raise IndexError(f"no row {index} in state {state.id}")
            return values[0]
        wanted = node if self.on == "nodes" else element
        if wanted is None or (node is None) == (element is None):
            raise ValueError("history needs either index, or " + ("node" if self.on == "nodes" else "element"))
        targets = tuple(self.model._targets(self.on, state.id))
        if targets not in places:
            places[targets] = self._place(targets, wanted, state)
        target, rows = places[targets]
        values = self._rows_on(state, target, rows)
        return values[0] if self.on in ("nodes", "elements") else values

    def _sizes(self, state: State) -> List[int]:
        return [self.model._item_count(self.on, target) for target in self.model._targets(self.on, state.id)]

    def _place(self, targets: Sequence[int], wanted: int, state: State) -> Tuple[int, slice]:
        """The block of a node or element and its rows there; KeyError when there is none."""
        for target in targets:
            block: Union[Nodes, Elements] = (self.model._nodes(target) if self.on == "nodes"
                                             else self.model._elements(target))
            try:
                position = int(block.index(wanted))
            except KeyError:
                continue
            if isinstance(block, Elements):
                return target, block.item_range(self.on, position)
            return target, slice(position, position + 1)
        raise KeyError(f"no {'node' if self.on == 'nodes' else 'element'} {wanted} in state {state.id}")

    def __repr__(self) -> str:
        return f"<Result {self.id} {self.name!r}: {self.kind} on {self.on}, {len(self._blocks)} states>"


def read_result(model: Model, block_id: int) -> Result:
    """A result by the id of its block, without its values."""
    found = model._core.read_result(block_id)
    kind = found["kind"] if found["kind"] in COMPONENTS else "scalar"
    return Result(model, block_id, found["name"], found["result_id"], kind, _ON[found["mapping"]],
                  found["attributes"], _STRAIN_OF[found["strain"]], found["scale"], found["relative"], found["digits"],
                  {state: list(blocks) for state, blocks in found["states"]})


def new_result(model: Model, block_id: int, name: str, id: int, kind: str, on: str, attributes: Dict[str, str],
               strain: Optional[str], scale: float, relative: bool, digits: int) -> Result:
    """A result without states; ValueError when a name is none of those listed in :class:`Result`."""
    legal: Sequence[Tuple[Optional[str], Sequence[Any]]] = (
        (kind, [*COMPONENTS]), (on, [*_MAPPINGS]), (strain, [*_STRAINS]))
    for value, names in legal:
        if value not in names:
            raise ValueError(f"{value!r} is none of {', '.join(map(str, names))}")
    result = Result(model, block_id, name, id, kind, on, attributes, strain, scale, relative, digits, {})
    result._is_changed = True
    return result


def result_of_data(model: Model, name: str, values: Any, on: str) -> Result:
    """The result of a name for data of another program, added if it is new: (n,), (n, 3) or (n, 6). Vectors on nodes
    called "u" or "disp..." are displacements."""
    for result in model._results():
        if (result.name, result.on) == (name, on):
            return result
    kind = "scalar" if values.ndim == 1 else "tensor" if values.shape[1] == 6 else "vector"
    if kind == "vector" and on == "nodes" and (name.lower() == "u" or name.lower().startswith("disp")):
        kind = "displacement"
    return model.add_result(name, kind, on)


def write_result(result: Result) -> None:
    """Writes the description and the list of values of a result that has changed."""
    if not result._is_changed:
        return
    result.model._core.write_result(result.block_id, {
        "name": result.name, "result_id": result.id, "kind": result.kind, "mapping": _MAPPINGS[result.on],
        "strain": _STRAINS[result.strain], "scale": result.scale, "relative": result.relative, "digits": result.digits,
        "attributes": result.attributes, "states": list(result._blocks.items())})
    result._is_changed = False
