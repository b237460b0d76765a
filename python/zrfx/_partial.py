"""What blocks hold, without their data; and parts of their arrays, for which only the pieces of the file that hold
them are unpacked."""

from __future__ import annotations

from typing import Any, List, NamedTuple, Tuple

import numpy as np

from . import _core
from ._mesh import Elements, Group, Nodes, read_elements
from .elements import BY_LIBRARY_NAME


class Summary(NamedTuple):
    """A block of nodes, elements or values. ``target`` is the block of nodes of elements, or the block that values
    belong to."""

    items: int
    element_nodes: int
    surfaces: int
    dimension: int
    has_ids: bool
    target: int
    by_ids: bool

    def count(self, on: str) -> int:
        """The number of items that results on ``on`` have values for."""
        return {"element_nodes": self.element_nodes, "surfaces": self.surfaces}.get(on, self.items)


def row_range(rows: slice, count: int) -> Tuple[int, int]:
    """First and number of the rows of a slice."""
    first, stop, step = rows.indices(count)
    if step != 1:
        raise ValueError("rows are read one after the other: the step of a slice is 1")
    return first, max(stop - first, 0)


def overlaps(rows: slice, sizes: List[int]) -> List[slice]:
    """A range of the rows of several blocks, one after the other, as a range of each."""
    first, count = row_range(rows, sum(sizes))
    ends = np.cumsum(sizes)
    return [slice(int(min(max(first - end + size, 0), size)), int(min(max(first + count - end + size, 0), size)))
            for size, end in zip(sizes, ends)]


def read_node_rows(core: _core.Database, block: int, summary: Summary, rows: slice) -> Nodes:
    """A range of the nodes of a block."""
    first, count = row_range(rows, summary.items)
    xyz = np.empty((count, 3), np.float32)
    core.read_coordinates(block, first, xyz)
    ids = np.empty(count, np.int32) if summary.has_ids else None
    if ids is not None:
        core.read_node_ids(block, first, ids)
    return Nodes(block, xyz, ids)


def read_element_rows(core: _core.Database, block: int, summary: Summary, rows: slice) -> Elements:
    """A range of the elements of a block; polyhedrons and types of other programs are read whole first."""
    sizes = core.group_sizes(block)
    ranges = overlaps(rows, [count for _, _, count in sizes])
    if all(width > 0 for _, width, _ in sizes):
        groups = [_read_group(core, block, index, (kind, width), summary.has_ids, own)
                  for index, ((kind, width, _), own) in enumerate(zip(sizes, ranges))]
        first_node = sum(own.start * width for (_, width, _), own in zip(sizes, ranges))
    else:
        whole = read_elements(core, block).groups
        groups = [group.rows(own) for group, own in zip(whole, ranges)]
        first_node = sum(int(group.node_counts()[:own.start].sum()) for group, own in zip(whole, ranges))
    return Elements(block, summary.target, summary.by_ids, groups, sum(own.start for own in ranges), first_node)


def _read_group(core: _core.Database, block: int, index: int, kind: Tuple[str, int], has_ids: bool,
                rows: slice) -> Group:
    count = rows.stop - rows.start
    nodes = np.empty((count, kind[1]), np.int32)
    ids = np.empty(count, np.int32) if has_ids else None
    if count:
        core.read_element_nodes(block, index, rows.start, nodes)
    if ids is not None and count:
        core.read_element_ids(block, index, rows.start, ids)
    return Group(BY_LIBRARY_NAME[kind[0]], nodes, ids, None)


def read_value_rows(core: _core.Database, block: int, rows: slice, tail: Tuple[int, ...]) -> Any:
    """A range of the values of a block that has them for all its items."""
    values = np.empty((rows.stop - rows.start, *tail), np.float32)
    if len(values):
        core.read_result_values(block, rows.start, values)
    return values
