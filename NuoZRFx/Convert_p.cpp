#include "Convert_p.h"

#include <algorithm>
#include <array>

#include "Log_p.h"
#include "blocks/sets/ZRFxSetBlock.h"
#include "types/ZRFxBlockType.h"
#include "types/ZRFxElementType.h"
#include "types/ZRFxResultTypes.h"

namespace nuo::zrfx {
namespace {

using namespace unstruct;

struct Pair {
    int publicValue;
    int zrValue;
};

constexpr std::array kPublicBlockTypes{
    Pair{Block::NODES, BLOCK_NODES},
    Pair{Block::ELEMENTS, BLOCK_ELEMENTS},
    Pair{Block::GEOMETRY, BLOCK_GEOMETRY},
    Pair{Block::GEOMETRY_INFO, BLOCK_GEOMETRY_INFO},
    Pair{Block::RESULT, BLOCK_RESULTS},
    Pair{Block::RESULT_VALUES, BLOCK_RESULT_VALUES},
    Pair{Block::TRANSFORMATION_RESULT, BLOCK_TRANSFORMATION_RESULTS},
    Pair{Block::TRANSFORMATION_RESULT_VALUES, BLOCK_TRANSFORMATION_RESULT_VALUES},
    Pair{Block::STATE_INFO, BLOCK_STATE_INFO},
    Pair{Block::SET, BLOCK_SET},
    Pair{Block::INVALID_BLOCK, kInvalidBlockType}};

constexpr bool hasAllPublicBlockTypes() {
    return std::ranges::all_of(kBlockTypes, [](const ZRFxBlockTypeRecord& record) {
        const auto pairs = std::ranges::count(kPublicBlockTypes, int{record.type}, &Pair::zrValue);
        return pairs == (record.IsPublic() ? 1 : 0);
    });
}
static_assert(hasAllPublicBlockTypes(), "just the public types of the table have a pair");

constexpr std::array kElementTypes{Pair{ElementBlock::POINTS, ELEMENT_POINT},
                                   Pair{ElementBlock::BEAMS, ELEMENT_BEAM},
                                   Pair{ElementBlock::BEAMS_3, ELEMENT_BEAM_3},
                                   Pair{ElementBlock::TRIANGLES, ELEMENT_TRIANGLE},
                                   Pair{ElementBlock::TRIANGLES_6, ELEMENT_TRIANGLE_6},
                                   Pair{ElementBlock::QUADS, ELEMENT_QUAD},
                                   Pair{ElementBlock::QUADS_8, ELEMENT_QUAD_8},
                                   Pair{ElementBlock::QUADS_9, ELEMENT_QUAD_9},
                                   Pair{ElementBlock::PYRAMIDS, ELEMENT_PYRAMID},
                                   Pair{ElementBlock::PYRAMIDS_13, ELEMENT_PYRAMID_13},
                                   Pair{ElementBlock::TETRAHEDRONS, ELEMENT_TETRAHEDRON},
                                   Pair{ElementBlock::TETRAHEDRONS_10, ELEMENT_TETRAHEDRON_10},
                                   Pair{ElementBlock::HEXAHEDRONS, ELEMENT_HEXAHEDRON},
                                   Pair{ElementBlock::HEXAHEDRONS_20, ELEMENT_HEXAHEDRON_20},
                                   Pair{ElementBlock::PENTAHEDRONS, ELEMENT_PENTAHEDRON},
                                   Pair{ElementBlock::PENTAHEDRONS_15, ELEMENT_PENTAHEDRON_15},
                                   Pair{ElementBlock::POLYHEDRONS, ELEMENT_POLYHEDRON},
                                   Pair{ElementBlock::UNKNOWN, ELEMENT_UNKNOWN}};

// The types that have a kind of values are public, under the numbers of their order.
constexpr auto kPublicResultTypes = [] {
    constexpr auto kCount =
        std::ranges::count_if(kResultTypes, &ZRFxResultTypeRecord::HasValueKind);
    std::array<Pair, kCount> pairs{};
    int number = 0;
    for (const ZRFxResultTypeRecord& record : kResultTypes) {
        if (!record.HasValueKind()) continue;
        pairs[static_cast<std::size_t>(number)] = {number, record.code};
        ++number;
    }
    return pairs;
}();

constexpr bool isPublicAs(ResultBlock::ResultType type, int zrType) {
    return std::ranges::any_of(kPublicResultTypes, [=](const Pair& pair) {
        return pair.publicValue == type && pair.zrValue == zrType;
    });
}
static_assert(isPublicAs(ResultBlock::SCALAR, RESULT_SCALAR) &&
                  isPublicAs(ResultBlock::VECTOR, RESULT_VECTOR) &&
                  isPublicAs(ResultBlock::DISPLACEMENT, RESULT_DISPLACEMENT) &&
                  isPublicAs(ResultBlock::TENSOR, RESULT_TENSOR),
              "types of results keep their public numbers");

constexpr std::array kMappings{Pair{ResultBlock::UNDEFINED_MAPPING, MAPPING_UNKNOWN},
                               Pair{ResultBlock::NODE_MAPPING, MAPPING_NODE},
                               Pair{ResultBlock::ELEMENT_MAPPING, MAPPING_ELEMENT},
                               Pair{ResultBlock::ELEMENT_NODE_MAPPING, MAPPING_ELEMENT_NODE},
                               Pair{ResultBlock::SURFACE_MAPPING, MAPPING_SURFACE}};

constexpr std::array kStrainTypes{Pair{ResultBlock::NO_STRAIN, STRAIN_NONE},
                                  Pair{ResultBlock::ENGINEERING_STRAIN, STRAIN_ENGINEERING},
                                  Pair{ResultBlock::STANDARD_STRAIN, STRAIN_STANDARD}};

constexpr std::array kReferenceTypes{Pair{StateInfoBlock::TIME, REFERENCE_TIME},
                                     Pair{StateInfoBlock::FREQUENCY, REFERENCE_FREQUENCY},
                                     Pair{StateInfoBlock::LOAD_CASE, REFERENCE_LOAD_CASE},
                                     Pair{StateInfoBlock::OTHER, REFERENCE_OTHER}};

constexpr std::array kItemTypes{Pair{SetBlock::ELEMENT_ITEMS, kItemTypeElement},
                                Pair{SetBlock::UNDEFINED_ITEMS, kItemTypeUndefined}};

constexpr int kHighestItemType = 13;

// Both directions of a table; what is not in it gives the fallback, after the message if there is
// one. The place that a message tells is that of the conversion.
template <typename Table>
int toZR(const Table& table, int value, int fallback, nvf::LocatedText message) {
    for (const Pair& pair : table) {
        if (pair.publicValue == value) return pair.zrValue;
    }
    fail(message, value);
    return fallback;
}

template <typename Public, typename Table>
Public toPublic(const Table& table, int value, Public fallback, nvf::LocatedText message) {
    for (const Pair& pair : table) {
        if (pair.zrValue == value) return static_cast<Public>(pair.publicValue);
    }
    fail(message, value);
    return fallback;
}

}  // namespace

ZRString ZRConvert::toZRString(const Str& text) {
    return Convert::toUtf8(text);
}

Str ZRConvert::toStr(const ZRString& text) {
    return Convert::toStr(text);
}

bool ZRConvert::isFileName(const Str& name) {
    return Convert::toUtf8(name).find_first_of("/\\") == std::string::npos;
}

int ZRConvert::fromBlockType(Block::BlockType type) {
    return toZR(kPublicBlockTypes, type, kInvalidBlockType,
                "Invalid type id %1 given (Block::BlockType).");
}

// Not every kind of block has a public class, so that none is no failure.
Block::BlockType ZRConvert::toBlockType(int zrType) {
    const auto found = std::find_if(kPublicBlockTypes.begin(), kPublicBlockTypes.end(),
                                    [&](const Pair& pair) { return pair.zrValue == zrType; });
    return found == kPublicBlockTypes.end() ? Block::INVALID_BLOCK
                                            : static_cast<Block::BlockType>(found->publicValue);
}

int ZRConvert::fromElementType(ElementBlock::ElementType type) {
    return toZR(kElementTypes, type, ELEMENT_UNKNOWN,
                "Invalid type id %1 given (ElementBlock::ElementType)");
}

ElementBlock::ElementType ZRConvert::toElementType(int zrType) {
    return toPublic(kElementTypes, zrType, ElementBlock::UNKNOWN,
                    "Invalid type enum %1 given (ZRFEMElementType)");
}

bool ZRConvert::isResultType(ResultBlock::ResultType type) {
    return std::ranges::count(kPublicResultTypes, int{type}, &Pair::publicValue) > 0;
}

int ZRConvert::fromResultType(ResultBlock::ResultType type) {
    return toZR(kPublicResultTypes, type, RESULT_SCALAR,
                "Invalid type id %1 given (ResultBlock::ResultType).");
}

ResultBlock::ResultType ZRConvert::toResultType(int zrType) {
    return toPublic(kPublicResultTypes, zrType, ResultBlock::SCALAR,
                    "Invalid type enum %1 given (ZRFEMResultType).");
}

int ZRConvert::fromResultMapping(ResultBlock::ResultMapping mapping) {
    return toZR(kMappings, mapping, MAPPING_UNKNOWN,
                "Invalid type id %1 given (ZRFEMResultMappingType).");
}

ResultBlock::ResultMapping ZRConvert::toResultMapping(int zrMapping) {
    return toPublic(kMappings, zrMapping, ResultBlock::NODE_MAPPING,
                    "Invalid type enum %1 given (ZRFEMResultMappingType).");
}

int ZRConvert::fromStrainType(ResultBlock::StrainType type) {
    return toZR(kStrainTypes, type, STRAIN_NONE,
                "Invalid type id %1 given (ResultBlock::StrainType).");
}

ResultBlock::StrainType ZRConvert::toStrainType(int zrType) {
    return toPublic(kStrainTypes, zrType, ResultBlock::NO_STRAIN,
                    "Invalid type enum %1 given (ZRFEMStrainType).");
}

int ZRConvert::fromReferenceType(StateInfoBlock::ReferenceValueType type) {
    return toZR(kReferenceTypes, type, REFERENCE_OTHER,
                "Invalid type id %1 given (StateInfoBlock::ReferenceValueType).");
}

StateInfoBlock::ReferenceValueType ZRConvert::toReferenceType(int zrType) {
    return toPublic(kReferenceTypes, zrType, StateInfoBlock::OTHER,
                    "Invalid type enum %1 given (ZRFEMReferenceType).");
}

int ZRConvert::fromItemType(SetBlock::ItemType type) {
    return toZR(kItemTypes, type, kItemTypeUndefined,
                "Invalid type id %1 given (SetBlock::ItemType).");
}

SetBlock::ItemType ZRConvert::toItemType(int zrType) {
    if (zrType == kItemTypeElement) return SetBlock::ELEMENT_ITEMS;
    if (zrType < 0 || zrType > kHighestItemType) {
        fail("Invalid type enum %1 given (ZRItemType).", zrType);
    }
    return SetBlock::UNDEFINED_ITEMS;
}

ZRFEMSimulationType ZRConvert::fromSimulationType(Database::SimulationType type) {
    if (type >= 0 && type <= Database::OTHER_SIMULATION) {
        return static_cast<ZRFEMSimulationType>(type);
    }
    fail("Invalid type id %1 given (SimulationInfoBlock::SimulationType).", static_cast<int>(type));
    return ZRFEMSimulationType::OTHER;
}

Database::SimulationType ZRConvert::toSimulationType(ZRFEMSimulationType zrType) {
    const int type = static_cast<int>(zrType);
    if (type >= 0 && type <= Database::OTHER_SIMULATION) {
        return static_cast<Database::SimulationType>(type);
    }
    fail("Invalid type enum %1 given (ZRFEMSimulationType).", type);
    return Database::OTHER_SIMULATION;
}

ZRFEMSolutionType ZRConvert::fromSolutionType(Database::SolutionType type) {
    if (type >= 0 && type <= Database::OTHER_SOLUTION) return static_cast<ZRFEMSolutionType>(type);
    fail("Invalid type id %1 given (SimulationInfoBlock::SolutionType).", static_cast<int>(type));
    return ZRFEMSolutionType::OTHER;
}

Database::SolutionType ZRConvert::toSolutionType(ZRFEMSolutionType zrType) {
    const int type = static_cast<int>(zrType);
    if (type >= 0 && type <= Database::OTHER_SOLUTION) {
        return static_cast<Database::SolutionType>(type);
    }
    fail("Invalid type enum %1 given (ZRFEMSimulationType).", type);
    return Database::OTHER_SOLUTION;
}

}  // namespace nuo::zrfx
