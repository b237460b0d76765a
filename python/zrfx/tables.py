"""Results as tables of pandas."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any, Iterable, Optional

import numpy as np

from ._items import labels
from ._progress import Progress, counted

if TYPE_CHECKING:
    from ._results import Result, StateLike


def to_dataframe(result: Result, states: Optional[Iterable[StateLike]] = None,
                 progress: Optional[Progress] = None) -> Any:
    """A pandas.DataFrame of a result: a column for each component, a row for each item in each state.

    The index has the levels ``state`` (its id), ``time`` (its value) and ``node``; or ``element``, and ``node``
    or ``surface`` where an element has several values. Undefined values are NaN. ``attrs`` holds name, unit,
    kind and ``on``. ``progress`` is called with the fraction that is done; ``False`` stops.
    """
    import pandas

    frames = []
    for state in counted(result._chosen(states), progress):
        items = labels(result.model, result.on, state.id)
        count = len(next(iter(items.values())))
        index = {"state": np.full(count, state.id), "time": np.full(count, state.value), **items}
        frames.append(pandas.DataFrame(result.at(state).reshape(count, -1), columns=list(result.components),
                                       index=pandas.MultiIndex.from_arrays(list(index.values()), names=list(index))))
    table = pandas.concat(frames) if frames else pandas.DataFrame(columns=list(result.components))
    table.attrs.update(name=result.name, unit=result.unit, kind=result.kind, on=result.on)
    return table
