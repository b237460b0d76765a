#pragma once

#include "ZRString.h"

namespace unstruct {

/// The kinds of blocks. The number is used in memory, the name in documents and file names.
enum ZRFxBlockType : int {
    BLOCK_NODES = 0,
    BLOCK_INDEXED_FACE_SET = 1,
    BLOCK_ELEMENTS = 2,
    BLOCK_GEOMETRY = 3,
    BLOCK_RESULT_VALUES = 4,
    BLOCK_RESULTS = 5,
    BLOCK_TEXTURE = 6,
    BLOCK_USER = 7,
    BLOCK_CROSS_SECTIONS = 8,
    BLOCK_DIRECTIONS = 9,
    BLOCK_STATE_INFO = 10,
    BLOCK_SET = 11,
    BLOCK_PLOT_2D = 12,
    BLOCK_PER_ELEMENT_PROPERTIES = 13,
    BLOCK_TRANSFORMATION_RESULT_VALUES = 14,
    BLOCK_TRANSFORMATION_RESULTS = 15,
    BLOCK_PRECOMPUTED_ITEM = 16,
    BLOCK_POSITION_RESULT_VALUES = 17,
    BLOCK_GEOMETRY_INFO = 18,
    BLOCK_PRECOMPUTED_CUTTING_PLANE = 19,
    BLOCK_PRECOMPUTED_ISOSURFACE = 20,
    BLOCK_PRECOMPUTED_PARTICLE_TRACE_GROUP = 21,
    BLOCK_PRECOMPUTED_ISOVOLUME = 22
};

inline constexpr int kNumBlockTypes = 23;

/// Not a block type; the type of a block that was never completed and of an unknown name.
inline constexpr int kInvalidBlockType = 999999;

/// The name of a type; "INVALID_BLOCK" for a number that is none.
ZRString ZRFxBlockTypeName(int type);

/// The type of a name, compared as it stands; kInvalidBlockType for an unknown one.
int ZRFxBlockTypeFromName(const ZRString& name);

}  // namespace unstruct
