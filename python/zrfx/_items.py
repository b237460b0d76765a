"""What the rows of a result are: ids of nodes and elements, and the parts that they belong to."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any, Dict, List, Optional

import numpy as np

if TYPE_CHECKING:
    from ._mesh import Elements, Part
    from ._model import Model
    from ._results import Result
    from ._states import State

#: The name of an item of each kind of result.
ITEM = {"nodes": "node", "elements": "element", "element_nodes": "element_node", "surfaces": "surface",
        "undefined": "item"}


def ids_or_positions(ids: Any, count: int) -> Any:
    return np.arange(count, dtype=np.int32) if ids is None else ids


def node_ids(model: Model, elements: Elements) -> Any:
    """The ids of the nodes of all elements, element after element."""
    block = model._nodes(elements.node_block)
    flat = [index.ravel() for index in model._node_index(elements)]
    index = np.concatenate(flat or [np.zeros(0, np.int32)])
    return ids_or_positions(block.ids, len(block))[index]


def labels(model: Model, on: str, state_id: int) -> Dict[str, Any]:
    """For each item of a result on ``on``: ``node``; or ``element``, and ``node`` or ``surface`` (from 0) where
    an element has several. Ids, or positions where there are none."""
    if on == "nodes":
        blocks = [model._nodes(target) for target in model._targets(on, state_id)]
        return {"node": _joined([ids_or_positions(block.ids, len(block)) for block in blocks])}
    found = [model._elements(target) for target in model._targets(on, state_id)]
    ids = _joined([ids_or_positions(elements.ids, elements.count) for elements in found])
    if on == "element_nodes":
        counts = _joined([elements.node_counts() for elements in found])
        return {"element": np.repeat(ids, counts), "node": _joined([node_ids(model, block) for block in found])}
    if on == "surfaces":
        counts = _joined([elements.surface_counts() for elements in found])
        first = np.repeat(np.cumsum(counts) - counts, counts)
        return {"element": np.repeat(ids, counts), "surface": np.arange(len(first), dtype=np.int32) - first}
    return {"element": ids}


def part_of_items(model: Model, on: str, state_id: int) -> Any:
    """For each item of a result on elements the name of its part."""
    names = model._part_names_by_block(state_id)
    targets = model._targets(on, state_id)
    counts = [model._item_count(on, target) for target in targets]
    return np.repeat(np.array([names[target] for target in targets], dtype=object), counts)


def element_means(result: Result, state: Optional[State], part: Part, elements: Elements) -> Any:
    """A row for each element of a part: its value, or the mean of those on its nodes. A node without a value leaves
    its element without one."""
    values = result.at(state, part=part)
    if result.on == "elements" or not elements.count:
        return values[:elements.count]
    counts = elements.node_counts()
    sums = np.add.reduceat(values, np.cumsum(counts) - counts, axis=0)
    return (sums / counts.reshape(-1, *(1,) * (values.ndim - 1))).astype(np.float32)


def _joined(arrays: List[Any]) -> Any:
    if len(arrays) == 1:
        return arrays[0]
    return np.concatenate(arrays or [np.zeros(0, np.int32)])
