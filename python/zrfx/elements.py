"""The element types: their names here, in the library, and in VTK.

Names and orders of nodes are those of VTK's cells; names are spelt as meshio spells them.
"""

from __future__ import annotations

from typing import Dict, NamedTuple

from . import _core


class ElementType(NamedTuple):
    """An element type. ``nodes`` is 0 for polyhedrons, where it varies."""

    name: str
    library_name: str
    vtk: int
    nodes: int
    surfaces: int


_NAMES = {
    "vertex": ("points", 1),
    "line": ("beams", 3),
    "line3": ("beams_3", 21),
    "triangle": ("triangles", 5),
    "triangle6": ("triangles_6", 22),
    "quad": ("quads", 9),
    "quad8": ("quads_8", 23),
    "quad9": ("quads_9", 28),
    "pyramid": ("pyramids", 14),
    "pyramid13": ("pyramids_13", 27),
    "tetra": ("tetrahedrons", 10),
    "tetra10": ("tetrahedrons_10", 24),
    "hexahedron": ("hexahedrons", 12),
    "hexahedron20": ("hexahedrons_20", 25),
    "wedge": ("pentahedrons", 13),
    "wedge15": ("pentahedrons_15", 26),
    "polyhedron": ("polyhedrons", 42),
}

_SIZES = _core.element_types()

#: All types by name.
TYPES: Dict[str, ElementType] = {
    name: ElementType(name, library_name, vtk, *_SIZES[library_name])
    for name, (library_name, vtk) in _NAMES.items()
}

#: All types by the library's names; those of other programs, which are read and not written, are "unknown".
BY_LIBRARY_NAME = {kind.library_name: kind for kind in TYPES.values()}
BY_LIBRARY_NAME["unknown"] = ElementType("unknown", "unknown", 0, 0, 0)
BY_VTK = {kind.vtk: kind for kind in TYPES.values()}


def element_type(name: str) -> ElementType:
    """The type of a name; ValueError lists the names."""
    if name not in TYPES:
        raise ValueError(f"no element type {name!r}; there are: {', '.join(TYPES)}")
    return TYPES[name]
