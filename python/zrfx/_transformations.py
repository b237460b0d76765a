"""Rigid-body motions of parts."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any, Dict, List

import numpy as np

if TYPE_CHECKING:
    from ._model import Model
    from ._states import State


class Transformation:
    """A rigid-body result: for each state matrices that move parts."""

    def __init__(self, model: Model, block_id: int, name: str, id: int, blocks: Dict[int, List[int]]) -> None:
        self.model = model
        self.block_id = block_id
        self.name = name
        self.id = id
        self._blocks = blocks
        self._is_changed = False

    @property
    def states(self) -> List[State]:
        """The states that have matrices."""
        return [state for state in self.model.states if state.id in self._blocks]

    def at(self, state: State) -> Dict[str, Any]:
        """Matrices (4, 4) float64 by the names of the parts that they move; files keep six decimals."""
        names = self.model._part_names_by_block(state.id)
        matrices = {}
        for block in self._blocks[state.id]:
            target, rows = self.model._core.read_matrix(block)
            matrices[names.get(target, f"elements {target}")] = np.array(rows)
        return matrices

    def __repr__(self) -> str:
        return f"<Transformation {self.id} {self.name!r}: {len(self._blocks)} states>"


def read_transformation(model: Model, block_id: int) -> Transformation:
    """A transformation by the id of its block, without its matrices."""
    name, id, states = model._core.read_transformation(block_id)
    return Transformation(model, block_id, name, id, {state: list(blocks) for state, blocks in states})


def write_transformation(transformation: Transformation) -> None:
    """Writes the name and the list of matrices of a transformation that has changed."""
    if transformation._is_changed:
        transformation.model._core.write_transformation(
            transformation.block_id, transformation.name, transformation.id, list(transformation._blocks.items()))
        transformation._is_changed = False
