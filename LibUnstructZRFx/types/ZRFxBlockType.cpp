#include "types/ZRFxBlockType.h"

#include <array>

namespace unstruct {
namespace {

struct TypeRecord {
    int type;
    const char* name;
};

constexpr std::array<TypeRecord, kNumBlockTypes> kTypes{{
    {BLOCK_NODES, "Nodes"},
    {BLOCK_INDEXED_FACE_SET, "IndexedFaceSet"},
    {BLOCK_ELEMENTS, "Elements"},
    {BLOCK_GEOMETRY, "Geometry"},
    {BLOCK_RESULT_VALUES, "ResultValues"},
    {BLOCK_RESULTS, "Results"},
    {BLOCK_TEXTURE, "Texture"},
    {BLOCK_USER, "User"},
    {BLOCK_CROSS_SECTIONS, "CrossSections"},
    {BLOCK_DIRECTIONS, "Directions"},
    {BLOCK_STATE_INFO, "StateInfo"},
    {BLOCK_SET, "Set"},
    {BLOCK_PLOT_2D, "Plot2D"},
    {BLOCK_PER_ELEMENT_PROPERTIES, "PerElementProperties"},
    {BLOCK_TRANSFORMATION_RESULT_VALUES, "TransformationResultValues"},
    {BLOCK_TRANSFORMATION_RESULTS, "TransformationResults"},
    {BLOCK_PRECOMPUTED_ITEM, "PrecomputedItem"},
    {BLOCK_POSITION_RESULT_VALUES, "PositionResultValues"},
    {BLOCK_GEOMETRY_INFO, "GeometryInfo"},
    {BLOCK_PRECOMPUTED_CUTTING_PLANE, "PrecomputedCuttingPlane"},
    {BLOCK_PRECOMPUTED_ISOSURFACE, "PrecomputedIsosurface"},
    {BLOCK_PRECOMPUTED_PARTICLE_TRACE_GROUP, "PrecomputedParticleTraceGroup"},
    {BLOCK_PRECOMPUTED_ISOVOLUME, "PrecomputedIsovolume"},
}};

constexpr bool eachTypeIsItsIndex() {
    for (int i = 0; i < kNumBlockTypes; ++i) {
        if (kTypes[i].type != i) return false;
    }
    return true;
}
static_assert(eachTypeIsItsIndex());

}  // namespace

ZRString ZRFxBlockTypeName(int type) {
    return type >= 0 && type < kNumBlockTypes ? kTypes[type].name : "INVALID_BLOCK";
}

int ZRFxBlockTypeFromName(const ZRString& name) {
    for (const TypeRecord& record : kTypes) {
        if (name.Bytes() == record.name) return record.type;
    }
    return kInvalidBlockType;
}

}  // namespace unstruct
