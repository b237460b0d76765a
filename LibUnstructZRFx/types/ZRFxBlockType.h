#pragma once

#include <algorithm>
#include <array>

#include "ZRString.h"

namespace unstruct {

/// The types of blocks. The number is used in memory, the name in documents and file names.
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

/// Not a block type; the type of a block that was never completed and of an unknown name.
inline constexpr int kInvalidBlockType = 999999;

/// How much there is for a type besides its name.
enum class ZRFxBlockSupport {
    NAME,    ///< Nothing: such blocks are never stored.
    STORED,  ///< A class that stores such blocks.
    PUBLIC   ///< That, and a class of the public interface.
};

struct ZRFxBlockTypeRecord {
    ZRFxBlockType type;
    const char* name;  ///< In documents, and of the folder and the files of such blocks.
    ZRFxBlockSupport support;
    /// Ranks the stored types for checking a database: what a block refers to comes before it, but
    /// results come before their values, of which they say what they must be. 0 for other types.
    int checkRank;

    constexpr bool IsStored() const { return support != ZRFxBlockSupport::NAME; }
    constexpr bool IsPublic() const { return support == ZRFxBlockSupport::PUBLIC; }
};

/// All types, each at the index of its number.
inline constexpr auto kBlockTypes = [] {
    constexpr auto NAME = ZRFxBlockSupport::NAME;
    constexpr auto STORED = ZRFxBlockSupport::STORED;
    constexpr auto PUBLIC = ZRFxBlockSupport::PUBLIC;
    using Record = ZRFxBlockTypeRecord;
    return std::array{
        Record{BLOCK_NODES, "Nodes", PUBLIC, 2},
        Record{BLOCK_INDEXED_FACE_SET, "IndexedFaceSet", STORED, 3},
        Record{BLOCK_ELEMENTS, "Elements", PUBLIC, 5},
        Record{BLOCK_GEOMETRY, "Geometry", PUBLIC, 6},
        Record{BLOCK_RESULT_VALUES, "ResultValues", PUBLIC, 16},
        Record{BLOCK_RESULTS, "Results", PUBLIC, 9},
        Record{BLOCK_TEXTURE, "Texture", NAME, 0},
        Record{BLOCK_USER, "User", NAME, 0},
        Record{BLOCK_CROSS_SECTIONS, "CrossSections", STORED, 4},
        Record{BLOCK_DIRECTIONS, "Directions", NAME, 0},
        Record{BLOCK_STATE_INFO, "StateInfo", PUBLIC, 1},
        Record{BLOCK_SET, "Set", PUBLIC, 8},
        Record{BLOCK_PLOT_2D, "Plot2D", STORED, 19},
        Record{BLOCK_PER_ELEMENT_PROPERTIES, "PerElementProperties", NAME, 0},
        Record{BLOCK_TRANSFORMATION_RESULT_VALUES, "TransformationResultValues", PUBLIC, 17},
        Record{BLOCK_TRANSFORMATION_RESULTS, "TransformationResults", PUBLIC, 10},
        Record{BLOCK_PRECOMPUTED_ITEM, "PrecomputedItem", STORED, 11},
        Record{BLOCK_POSITION_RESULT_VALUES, "PositionResultValues", STORED, 18},
        Record{BLOCK_GEOMETRY_INFO, "GeometryInfo", PUBLIC, 7},
        Record{BLOCK_PRECOMPUTED_CUTTING_PLANE, "PrecomputedCuttingPlane", STORED, 12},
        Record{BLOCK_PRECOMPUTED_ISOSURFACE, "PrecomputedIsosurface", STORED, 13},
        Record{BLOCK_PRECOMPUTED_PARTICLE_TRACE_GROUP, "PrecomputedParticleTraceGroup", STORED, 15},
        Record{BLOCK_PRECOMPUTED_ISOVOLUME, "PrecomputedIsovolume", STORED, 14},
    };
}();

inline constexpr int kNumBlockTypes = static_cast<int>(kBlockTypes.size());

static_assert(
    [] {
        for (std::size_t i = 0; i < kBlockTypes.size(); ++i) {
            if (static_cast<std::size_t>(kBlockTypes[i].type) != i) return false;
        }
        return true;
    }(),
    "each type must stand at the index of its number");

/// The stored types in the order of their ranks.
inline constexpr auto kStoredBlockTypes = [] {
    std::array<int, std::ranges::count_if(kBlockTypes, &ZRFxBlockTypeRecord::IsStored)> types{};
    std::size_t count = 0;
    for (const ZRFxBlockTypeRecord& record : kBlockTypes) {
        if (record.IsStored()) types[count++] = record.type;
    }
    std::ranges::sort(types, {}, [](int type) { return kBlockTypes[type].checkRank; });
    return types;
}();

static_assert(
    [] {
        int last = 0;
        for (const int type : kStoredBlockTypes) {
            if (kBlockTypes[type].checkRank <= last) return false;
            last = kBlockTypes[type].checkRank;
        }
        return true;
    }(),
    "each stored type must have a rank of its own, above 0");

/// The name of a type; "INVALID_BLOCK" for a number that is none.
ZRString ZRFxBlockTypeName(int type);

/// The type of a name, compared as it stands; kInvalidBlockType for an unknown one.
int ZRFxBlockTypeFromName(const ZRString& name);

}  // namespace unstruct
