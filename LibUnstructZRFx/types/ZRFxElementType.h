#pragma once

#include <vector>

#include "ZRString.h"

namespace unstruct {

/// The types of elements, by the codes that the library uses in memory; documents use the names.
enum ZRFEMElementType : int {
    ELEMENT_BEAM = 0,
    ELEMENT_BEAM_3 = 1,
    ELEMENT_TRIANGLE = 2,
    ELEMENT_TRIANGLE_6 = 3,
    ELEMENT_QUAD = 4,
    ELEMENT_QUAD_8 = 5,
    ELEMENT_QUAD_9 = 6,
    ELEMENT_TETRAHEDRON = 7,
    ELEMENT_TETRAHEDRON_10 = 8,
    ELEMENT_HEXAHEDRON = 9,
    ELEMENT_HEXAHEDRON_20 = 10,
    ELEMENT_PENTAHEDRON = 11,
    ELEMENT_PENTAHEDRON_15 = 12,
    ELEMENT_BRICK = 13,
    ELEMENT_THICK_SHELL = 14,
    ELEMENT_SHELL = 15,
    ELEMENT_RIGID_SHELL = 16,
    ELEMENT_POINT = 17,
    ELEMENT_PYRAMID = 18,
    ELEMENT_PYRAMID_13 = 19,
    ELEMENT_POLYHEDRON = 20,
    ELEMENT_UNKNOWN = 21,
    ELEMENT_NULL = 22
};

bool ZRFEMIsValidElementType(int type);

/// For example "Hexahedron_20"; "Unknown", after an assertion, for a code that is none.
ZRString ZRFEMElementTypeName(int type);

/// The type of a name, compared as it stands; ELEMENT_UNKNOWN for an unknown one.
int ZRFEMElementTypeFromName(const ZRString& name);

/// Nodes of one element; 0 where that varies (polyhedrons) or is not known.
int ZRFEMNodesPerElement(int type);
int ZRFEMCornerNodesPerElement(int type);
int ZRFEMSurfacesPerElement(int type);
bool ZRFEMIsVolumeElement(int type);

/// The local nodes of one surface: its corners, so ordered that the normal of the right-hand rule
/// points out of the element, then its mid-side nodes, each behind the corner that it follows, in
/// the same sense. Nodes of an element are numbered as VTK documents for its cell of the same kind.
/// Empty after an assertion when there is no such surface.
std::vector<unsigned int> ZRFEMElementSurface(int type, int surface);

}  // namespace unstruct
