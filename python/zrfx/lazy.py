"""Results as arrays of dask and datasets of xarray, which read a state when it is used.

What these hold is the path of the file and not the open file, so that worker processes and other machines open
it by themselves. The password of an encrypted file is part of that.
"""

from __future__ import annotations

import functools
import os
from typing import TYPE_CHECKING, Any, Dict, List, NamedTuple, Optional, Tuple

import numpy as np

from . import _file
from ._arrays import without_undefined
from ._items import ITEM, labels, part_of_items

if TYPE_CHECKING:
    from ._model import Model
    from ._results import Result

#: The dimension of the components of vectors, and of tensors.
COMPONENT_DIMENSION = {3: "component", 6: "tensor_component"}


@functools.lru_cache(maxsize=4)
def _opened(path: str, password: Optional[str], stamp: Tuple[int, int]) -> _file.File:
    return _file.open(path, password)


class Source(NamedTuple):
    """Where the values of a result are: can be sent to other processes."""

    path: str
    password: Optional[str]
    model: int
    result: int

    def open(self) -> Result:
        """The result, in a file that this process keeps open as long as nobody writes to it."""
        status = os.stat(self.path)
        model = _opened(self.path, self.password, (status.st_mtime_ns, status.st_size)).models.by_id(self.model)
        return next(result for result in model._results() if result.block_id == self.result)

    def read(self, state_id: int, target: Optional[int] = None, rows: Optional[slice] = None) -> Any:
        """The values of a state, on one block or a range of those on all, NaN where there are none."""
        result = self.open()
        state = result.model.states.by_id(state_id)
        if target is None:
            return result.at(state, rows=rows)
        return without_undefined(result._on_block(state, target), "nan")


def source_of(result: Result) -> Source:
    file = result.model.file
    return Source(os.path.abspath(file.path), file._password, result.model.id, result.block_id)


def sizes_of(result: Result) -> List[Tuple[int, int]]:
    """The blocks that a result has values on, and their items; ValueError when they change."""
    model, states = result.model, result.states
    targets: List[List[int]] = [model._targets(result.on, state.id) for state in states] or [[]]
    if len(model._records()) > 1:
        counts = {tuple(model._item_count(result.on, target) for target in each) for each in targets}
        if len(counts) > 1:
            raise ValueError(f"the mesh changes between the states of {result.name!r}: read them one by one")
    return [(target, model._item_count(result.on, target)) for target in targets[0]]


def to_dask(result: Result) -> Any:
    """A dask.array (states, items[, components]), float32 with NaN for undefined values: one chunk for each
    state and block of nodes or elements. Each chunk is read by the worker that needs it, which opens the file by
    its path."""
    import dask.array
    from dask.base import tokenize

    source, states, sizes = source_of(result), result.states, sizes_of(result)
    tail = result._tail
    name = f"zrfx-{result.name}-{tokenize(source, os.stat(source.path).st_mtime_ns)}"
    zeros = (0,) * len(tail)
    graph = {}
    for i, state in enumerate(states):
        block_targets = [target for target, _ in sizes]
        if len(result.model._records()) > 1:
            block_targets = result.model._targets(result.on, state.id)
        for j, target in enumerate(block_targets):
            graph[(name, i, j, *zeros)] = (_read_chunk, source, state.id, target)
    chunks = ((1,) * len(states), tuple(size for _, size in sizes), *((length,) for length in tail))
    return dask.array.Array(graph, name, chunks, dtype=np.float32)


def _read_chunk(source: Source, state_id: int, target: int) -> Any:
    return source.read(state_id, target)[np.newaxis]


def to_xarray(model: Model) -> Any:
    """An xarray.Dataset with a variable for each result, read state by state when it is used.

    Dimensions are ``state``, then ``node``, ``element``, ``element_node`` or ``surface``, then ``component`` (x,
    y, z) or ``tensor_component`` (xx, yy, zz, xy, yz, zx). Coordinates are the ids of states, nodes and elements,
    ``time`` (or ``frequency``, ``load_case``, ``other``), the ``x``, ``y``, ``z`` of nodes and the ``part`` of
    elements; attributes are units, kinds and the description of the model. States in which a result has no
    values are NaN. ``chunk({"state": 1})`` makes arrays of dask of it.
    """
    import xarray

    variables: Dict[str, Any] = {}
    coordinates = _state_coordinates(model)
    for name, result in model.results.items():
        variables[name] = _variable(result)
        item = ITEM[result.on]
        if model.states and item not in {dimension for _, dimension in _dimensions(coordinates)}:
            coordinates.update(_item_coordinates(model, result))
        if len(result.components) > 1:
            dimension = COMPONENT_DIMENSION[len(result.components)]
            coordinates[dimension] = (dimension, list(result.components))
    attributes = {"model": model.name, "description": model.description, "simulation": model.simulation,
                  "solution": model.solution}
    return xarray.Dataset(variables, coordinates, attributes)


def _dimensions(coordinates: Dict[str, Any]) -> List[Tuple[str, str]]:
    return [(name, value[0]) for name, value in coordinates.items()]


def _state_coordinates(model: Model) -> Dict[str, Any]:
    states = model.states
    kind = states[0].kind if len(states) else "time"
    return {"state": ("state", states.ids), kind: ("state", states.values),
            "state_name": ("state", np.array(states.names, dtype=object))}


def _item_coordinates(model: Model, result: Result) -> Dict[str, Any]:
    item, first = ITEM[result.on], (result.states or list(model.states))[0].id
    ids = labels(model, result.on, first)
    if result.on == "nodes":
        xyz = np.concatenate([model._nodes(target).xyz for target in model._targets("nodes", first)])
        return {"node": (item, ids["node"]), **{axis: (item, xyz[:, i]) for i, axis in enumerate("xyz")}}
    prefix = "" if result.on == "elements" else item + "_"
    own = {prefix + name if name != item else name: (item, values) for name, values in ids.items()}
    return {**own, prefix + "part": (item, part_of_items(model, result.on, first))}


def _variable(result: Result) -> Any:
    import xarray
    from xarray.core import indexing

    tail = result._tail
    items = sum(size for _, size in sizes_of(result))
    shape = (len(result.model.states), items, *tail)
    dimensions = ["state", ITEM[result.on], *(COMPONENT_DIMENSION[length] for length in tail)]
    lazily = indexing.LazilyIndexedArray(_backend_array(source_of(result), shape, result))
    attributes = {"units": result.unit, "kind": result.kind, "on": result.on, **result.attributes}
    variable = xarray.Variable(dimensions, lazily, {key: value for key, value in attributes.items() if value})
    variable.encoding["preferred_chunks"] = dict(zip(dimensions, (1, *shape[1:])))
    return variable


def _backend_array(source: Source, shape: Tuple[int, ...], result: Result) -> Any:
    from .xarray_backend import ZrfxArray

    own = set(result._blocks)
    return ZrfxArray(source, shape, [id if id in own else None for id in result.model.states.ids.tolist()])
