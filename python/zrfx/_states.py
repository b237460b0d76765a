"""States of a model: time steps, load cases, modes."""

from __future__ import annotations

from collections import abc
from typing import TYPE_CHECKING, Any, Iterable, Iterator, List, Mapping, NamedTuple, Optional, Sequence, Union, overload

import numpy as np

from ._mesh import Connectivity, ElementIds, Nodes, Part
from ._transformations import Transformation
from ._writing import write_matrix, write_values

if TYPE_CHECKING:
    from ._model import Model
    from ._results import Result

#: What a state's value means, as in ``State.kind``.
KINDS = ("time", "frequency", "load_case", "other")


class State:
    """One state. ``value`` is the time, the frequency, or what ``kind`` says."""

    def __init__(self, model: Model, id: int, name: str, value: float, kind: str) -> None:
        self.model = model
        self.id = id
        self.name = name
        self.value = value
        self.kind = kind

    def __setitem__(self, result: Union[str, Result, Transformation], values: Any) -> None:
        """Writes the values of a result in this state, at once: see :meth:`write`. A mapping gives them for
        each part by itself. A transformation takes a mapping of parts to matrices (4, 4)."""
        if isinstance(result, Transformation):
            for part, matrix in values.items():
                write_matrix(self, result, part, matrix)
        elif isinstance(values, np.ndarray) or not isinstance(values, abc.Mapping):
            write_values(self, result, values)
        else:
            for part, own in values.items():
                write_values(self, result, own, part)

    def write(self, result: Union[str, Result], values: Any, *, part: Union[None, str, Part] = None,
              nodes: Union[None, int, Nodes] = None, items: Optional[Any] = None) -> None:
        """Writes values of a result in this state, at once; the array can be reused afterwards.

        ``values`` has a row for each item: (n,) for scalars, (n, 3) for vectors, (n, 6) for tensors in the
        order xx, yy, zz, xy, yz, zx. A C-contiguous float32 array is not copied. Without ``part`` and
        ``nodes`` its items are those of all parts, or of all nodes, of the model one after the other.
        ``items`` are the ids of the nodes or elements that have values, positions where they have no ids;
        the others have none.

        Masked values become "no value". NaN is stored as it is, and read as "no value".
        """
        write_values(self, result, values, part, nodes, items)

    def set_part(self, part: Union[str, Part], elements: Mapping[str, Connectivity], ids: ElementIds = None, *,
                 nodes: Union[None, int, Nodes] = None, by_ids: bool = False) -> None:
        """Gives a part other elements from this state on; arguments are those of :meth:`Model.add_part`."""
        self.model._set_part(self, part, elements, ids, nodes, by_ids)

    def __repr__(self) -> str:
        return f"<State {self.id} {self.name!r}, {self.kind} {self.value:g}>"


class StateGroup(NamedTuple):
    """States that belong together, such as those of a load case."""

    id: int
    name: str
    states: Sequence[int]


class States(Sequence[State]):
    """The states of a model, in their order."""

    def __init__(self, states: List[State], groups: List[StateGroup]) -> None:
        self._states = states
        self.groups = groups

    @overload
    def __getitem__(self, index: int) -> State: ...

    @overload
    def __getitem__(self, index: slice) -> Sequence[State]: ...

    def __getitem__(self, index: Union[int, slice]) -> Union[State, Sequence[State]]:
        return self._states[index]

    def __len__(self) -> int:
        return len(self._states)

    def __iter__(self) -> Iterator[State]:
        return iter(list(self._states))

    def by_id(self, id: int) -> State:
        """The state with an id; KeyError lists the ids."""
        for state in self._states:
            if state.id == id:
                return state
        raise KeyError(f"no state with the id {id}; there are: {self.ids.tolist()}")

    @property
    def ids(self) -> Any:
        """(n,) int32."""
        return np.array([state.id for state in self._states], dtype=np.int32)

    @property
    def values(self) -> Any:
        """(n,) float64: times, frequencies, load cases."""
        return np.array([state.value for state in self._states], dtype=np.float64)

    @property
    def times(self) -> Any:
        """:attr:`values`, whatever their kind; empty when there are no states."""
        return self.values

    @property
    def names(self) -> List[str]:
        return [state.name for state in self._states]

    def __repr__(self) -> str:
        return f"<{len(self)} states>"


def nearest_state(states: Iterable[State], time: float) -> State:
    """The state of a time, which single precision may have rounded; KeyError when there is none."""
    known = list(states)
    values = np.array([state.value for state in known])
    if len(known):
        place = int(np.argmin(np.abs(values - time)))
        if np.isclose(values[place], time, rtol=1e-6, atol=1e-6 * np.ptp(values) / len(known)):
            return known[place]
    span = f"there are {len(known)} from {values.min():g} to {values.max():g}" if len(known) else "there is none"
    raise KeyError(f"no state at {time:g}; {span}")


def shortest(value: float) -> float:
    """A number of single precision as it was meant: 0.1 and not 0.10000000149."""
    given = float(value)
    if 1e-30 < abs(given) < 1e30 and float(f"{given:.6g}") == given:
        return given  # six digits are kept by single precision
    return float(str(np.float32(given)))
