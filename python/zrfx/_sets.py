"""Named sets of elements."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any, Dict, List, NamedTuple, Union

import numpy as np

from . import _arrays
from ._mesh import Part

if TYPE_CHECKING:
    from ._model import Model


class SetGroup(NamedTuple):
    """The items of a set that lie in one block of elements: ids or positions, as the set says."""

    element_block: int
    items: Any


class ElementSet:
    """A named set of elements. ``by_ids`` says whether items are element ids or positions from 0."""

    def __init__(self, model: Model, block_id: int, id: int, name: str, by_ids: bool, groups: List[SetGroup]) -> None:
        self.model = model
        self.block_id = block_id
        self.id = id
        self.name = name
        self.by_ids = by_ids
        self.groups = groups

    def __len__(self) -> int:
        return sum(len(group.items) for group in self.groups)

    def indices(self, part: Union[str, Part]) -> Any:
        """Positions, from 0, of the set's elements among those of a part."""
        block = self.model._target("elements", None, part)
        items = [group.items for group in self.groups if group.element_block == block]
        if not items:
            return np.zeros(0, dtype=np.int32)
        joined = items[0] if len(items) == 1 else np.concatenate(items)
        return self.model._elements(block).index(joined) if self.by_ids else joined

    def mask(self, part: Union[str, Part]) -> Any:
        """Which elements of a part belong to the set: (n,) bool, as an index into values on elements."""
        elements = self.model._elements(self.model._target("elements", None, part))
        mask = np.zeros(elements.count, dtype=bool)
        mask[self.indices(part)] = True
        return mask

    @property
    def parts(self) -> Dict[str, Any]:
        """Positions by the names of the parts that have elements in the set."""
        own = {group.element_block for group in self.groups}
        names = self.model._part_names_by_block(None)
        return {name: self.indices(name) for block, name in names.items() if block in own}

    def __repr__(self) -> str:
        return f"<ElementSet {self.id} {self.name!r}: {len(self)} elements>"


def read_set(model: Model, block_id: int) -> ElementSet:
    """A set by the id of its block."""
    id, name, by_ids, groups = model._core.read_set(block_id)
    return ElementSet(model, block_id, id, name, by_ids,
                      [SetGroup(block, _arrays.view(items)) for block, items in groups])
