"""Values of results and matrices of transformations on their way into a file."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any, List, Optional, Union

import numpy as np

from . import _arrays
from ._mesh import Nodes, Part, split_by

if TYPE_CHECKING:
    from ._model import Model
    from ._results import Result
    from ._states import State
    from ._transformations import Transformation


def write_values(state: State, result: Union[str, Result], values: Any, part: Union[None, str, Part] = None,
                 nodes: Union[None, int, Nodes] = None, items: Optional[Any] = None) -> None:
    """Arguments are those of :meth:`State.write`."""
    model = state.model
    own = model.results[result] if isinstance(result, str) else result
    array, ids = _arrays.floats(values), _arrays.optional_ints(items)
    if array.ndim == 0 or array.shape[1:] != own._tail:
        raise ValueError(f"values of a {own.kind} have the shape {('n', *own._tail)}, not {array.shape}")
    with model.file._writing():
        if nodes is not None:
            targets = [nodes.block_id if isinstance(nodes, Nodes) else nodes]
        elif part is not None:
            targets = [model._target(own.on, state.id, part)]
        else:
            targets = model._targets(own.on, state.id)
        if ids is not None and (len(targets) != 1 or len(ids) != len(array)):
            raise ValueError("items need one part, and one id for each value")
        pieces = [array] if ids is not None else _pieces(model, own, array, targets)
        for target, piece in zip(targets, pieces):
            if len(piece):  # a part of points has no surfaces, for example
                _write_block(state, own, target, piece, ids)


def _pieces(model: Model, result: Result, array: Any, targets: List[int]) -> List[Any]:
    if len(targets) == 1 and model._item_count(result.on, targets[0]) == len(array):
        return [array]
    sizes = [model._item_count(result.on, target) for target in targets]
    if sum(sizes) != len(array):
        raise ValueError(f"{result.name!r} needs values for {sum(sizes)} {result.on}, not for {len(array)}")
    return split_by(sizes, array)


def _write_block(state: State, result: Result, target: int, values: Any, items: Optional[Any]) -> None:
    model, blocks = state.model, result._blocks.setdefault(state.id, [])
    known = result._block_on(state, target) if blocks else None
    block = model._new_values_id() if known is None else known
    model._core.write_values(block, result._width, values, items, target, result.on == "nodes",
                             result.digits)
    result._targets[block] = target
    if known is None:
        blocks.append(block)
        result._is_changed = True
    else:
        model._summaries.pop(("result_values", block), None)


def write_matrix(state: State, transformation: Transformation, part: Union[str, Part], matrix: Any) -> None:
    """Writes the (4, 4) matrix that moves a part in a state."""
    rows = np.asarray(matrix, dtype=np.float64)
    if rows.shape != (4, 4):
        raise ValueError(f"a matrix has the shape (4, 4), not {rows.shape}")
    model = state.model
    with model.file._writing():
        block = model._core.unused_block_id("transformation_result_values")
        model._core.write_matrix(block, model._target("elements", state.id, part), rows.tolist())
        transformation._blocks.setdefault(state.id, []).append(block)
        transformation._is_changed = True
