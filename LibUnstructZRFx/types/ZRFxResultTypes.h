#pragma once

#include "ZRString.h"
#include "types/ZRFxValueKind.h"

namespace unstruct {

// The enumerations of results, by the codes that the library uses in memory. Documents hold the
// names, written in mixed case and read in any; what an unknown name reads as is fixed for each.

enum ZRFEMStrainType : int { STRAIN_NONE = 0, STRAIN_ENGINEERING = 1, STRAIN_STANDARD = 2 };

enum ZRFEMResultMapping : int {
    MAPPING_NODE = 1,
    MAPPING_ELEMENT = 2,
    MAPPING_ELEMENT_NODE = 3,
    MAPPING_SURFACE = 4,
    MAPPING_UNKNOWN = 99
};

/// Component codes run from 0, "None", to 18, "Displacement Vector".
inline constexpr int kComponentNone = 0;
inline constexpr int kComponentUnknown = 99;

enum ZRFEMReferenceType : int {
    REFERENCE_TIME = 0,
    REFERENCE_FREQUENCY = 1,
    REFERENCE_LOAD_CASE = 2,
    REFERENCE_OTHER = 3
};

enum ZRVectorType : int {
    VECTOR_NORMAL_ARROW = 1,
    VECTOR_SYMMETRIC_ARROW = 101,
    VECTOR_SYMMETRIC_REVERSE_ARROW = 102
};

/// An unknown name reads as RESULT_SCALAR, "None" too.
ZRString ResultTypeName(int type);
int ResultTypeFromName(const ZRString& name);

/// An unknown name reads as STRAIN_NONE.
ZRString StrainTypeName(int type);
int StrainTypeFromName(const ZRString& name);

/// "Polygon" reads as "Element", "PolygonNode" as "ElementNode"; an unknown name, "SurfaceNode"
/// too, as MAPPING_UNKNOWN.
ZRString ResultMappingName(int mapping);
int ResultMappingFromName(const ZRString& name);

/// An unknown name reads as kComponentUnknown.
ZRString ComponentName(int component);
int ComponentFromName(const ZRString& name);

/// An unknown name reads as REFERENCE_OTHER.
ZRString ReferenceTypeName(int type);
int ReferenceTypeFromName(const ZRString& name);

/// "UNKNOWN" after an assertion for a code that is none. An unknown name reads as
/// VECTOR_NORMAL_ARROW.
ZRString VectorTypeName(int type);
int VectorTypeFromName(const ZRString& name);

}  // namespace unstruct
