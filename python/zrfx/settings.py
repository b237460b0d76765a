"""Viewer settings of cases."""

from __future__ import annotations

from typing import Dict, Iterable, List, NamedTuple, Optional, Sequence, Tuple, Union

import numpy as np

from . import _core

Point = Sequence[float]


class Color(NamedTuple):
    """A colour; each component is from 0 to 1."""

    red: float
    green: float
    blue: float


#: One value: an int (``numpy.uint32`` where the catalogue has an unsigned one), a float
#: (``numpy.float32`` for a short one), a bool, a text, a :class:`Color`, a tuple of three floats for a
#: point or direction, or a list of such values.
Value = Union[int, float, bool, str, Color, Tuple[float, float, float], np.uint32, np.float32, list]

#: One group of settings: its class type, such as ``"camera"``, and its values by key.
PropertySet = Tuple[str, Dict[str, Value]]


class ViewSettings:
    """The settings that most cases need, for :meth:`File.add_case`; or assign :attr:`properties` to a case.

    Each operation replaces what was set before, and gives the object, so that calls can be chained.
    Results are named by their ids, ``result.id``, parts by theirs.
    """

    def __init__(self) -> None:
        self._core = _core.ViewSettings()

    def perspective_camera(self, eye: Point, target: Point, up: Point, degrees: float = 30) -> ViewSettings:
        """Looks from ``eye`` at ``target``; the vertical opening angle is in degrees."""
        self._core.perspective_camera(tuple(eye), tuple(target), tuple(up), degrees)
        return self

    def ortho_camera(self, eye: Point, target: Point, up: Point, height: float) -> ViewSettings:
        """Looks in parallel projection; ``height`` is what is visible, in units of the model."""
        self._core.ortho_camera(tuple(eye), tuple(target), tuple(up), height)
        return self

    def fringes(self, result: int, range: Optional[Tuple[float, float]] = None) -> ViewSettings:
        """Colours the model by a result, from the first to the second number of ``range``."""
        self._core.fringes(result)
        if range is not None:
            self._core.fringes_range(result, *range)
        return self

    def displacements(self, result: int, parts: Iterable[int]) -> ViewSettings:
        """Moves parts of the first geometry by a result."""
        self._core.displacements(result, parts)
        return self

    def vectors(self, results: Iterable[int]) -> ViewSettings:
        """Shows vector results as arrows."""
        self._core.vectors(results)
        return self

    def part(self, part: int, *, visible: Optional[bool] = None, style: Optional[str] = None,
             color: Optional[Sequence[float]] = None, opacity: Optional[float] = None,
             geometry: int = 0) -> ViewSettings:
        """How a part looks. ``style`` is ``"surface"``, ``"surface_mesh"``, ``"surface_outline_mesh"``,
        ``"line"``, ``"point"``, ``"outline"``, ``"hidden_line_removed"`` or ``"none"``."""
        self._core.part(part, geometry, visible, style, color, opacity)
        return self

    def states(self, ids: Iterable[int]) -> ViewSettings:
        """Shows states, one frame of the animation each."""
        self._core.states(ids)
        return self

    def mode_shape(self, state: int, frames: int = 24) -> ViewSettings:
        """Lets a mode shape, which is one state, swing."""
        self._core.mode_shape(state, frames)
        return self

    @property
    def properties(self) -> List[PropertySet]:
        """The property sets made so far."""
        return self._core.properties()
