#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "types/ZRFxBlockType.h"

namespace unstruct {

/// A place in a block that names something outside of it.
struct ZRFxReference {
    enum class Kind {
        BLOCK,          ///< A block of one type.
        VALUES_TARGET,  ///< The block that result values belong to: nodes, elements or face set.
        STATE,
        RESULT,  ///< A result by its result id.
        CASE
    };

    Kind kind;
    int id;
    std::string place;
    int blockType = kInvalidBlockType;  ///< For Kind::BLOCK.
};

/// How many items a block has for result values to belong to.
struct ZRFxItemCounts {
    std::int64_t items = 0;         ///< Nodes, elements or polygons.
    std::int64_t elementNodes = 0;  ///< The nodes of all elements.
    std::int64_t surfaces = 0;      ///< The surfaces of all elements.
};

/// The elements of one type in a row.
struct ZRFxGroupOutline {
    int type;  ///< A ZRFEMElementType.
    std::int64_t numElements;
};

/// A block of result values without the values.
struct ZRFxValuesOutline {
    int targetID = -1;
    int dimension = 0;
    std::int64_t numItems = 0;
    bool hasIDs = false;
};

/// How another block uses a block of result values.
struct ZRFxValuesUse {
    int valuesID;
    int mapping;    ///< A ZRFEMResultMapping.
    int dimension;  ///< That the values must have; 0 where any will do.
};

/// A result without its states.
struct ZRFxResultOutline {
    int resultID = -1;
    std::optional<int> mapping;  ///< A ZRFEMResultMapping; none for transformations.
    bool isDisplacement = false;
};

/// The nodes that elements or polygons are made of.
struct ZRFxNodesUse {
    int nodeBlockID = -1;
    std::int32_t highestIndex = -1;  ///< -1 when it is not known, as when nodes are named by id.
    bool byIDs = false;
};

/// All that one block says of the others of its database, without its data: enough to see whether
/// they fit together.
struct ZRFxOutline {
    /// Of a block of result values.
    static ZRFxOutline OfValues(const ZRFxValuesOutline& values) {
        ZRFxOutline outline;
        outline.values = values;
        outline.references.push_back(
            {ZRFxReference::Kind::VALUES_TARGET, values.targetID, "target block"});
        return outline;
    }

    std::vector<ZRFxReference> references;
    std::vector<int> stateIDs;  ///< Of its records, in their order, where each state has one.
    std::optional<ZRFxItemCounts> counts;
    std::vector<ZRFxGroupOutline> groups;  ///< Of elements.
    bool hasIDs = false;                   ///< Whether nodes or elements have ids of their own.
    std::optional<ZRFxNodesUse> nodes;
    std::optional<ZRFxValuesOutline> values;
    std::optional<ZRFxResultOutline> result;
    std::vector<ZRFxValuesUse> valuesUses;

    /// References to what must be there.
    void AddBlock(int type, int id, std::string place) {
        references.push_back({ZRFxReference::Kind::BLOCK, id, std::move(place), type});
    }
    void AddState(int id, std::string place) {
        references.push_back({ZRFxReference::Kind::STATE, id, std::move(place)});
    }

    /// References in whose place an id below 0 means "none".
    void AddOptionalBlock(int type, int id, std::string place) {
        if (id >= 0) AddBlock(type, id, std::move(place));
    }
    void AddOptionalResult(int id, std::string place) {
        if (id >= 0) references.push_back({ZRFxReference::Kind::RESULT, id, std::move(place)});
    }
    void AddOptionalCase(int id) {
        if (id >= 0) references.push_back({ZRFxReference::Kind::CASE, id, "case"});
    }
};

/// The place of one of several things: "state 3".
inline std::string NumberedPlace(std::string_view what, std::int64_t number) {
    return std::string(what) + " " + std::to_string(number);
}

}  // namespace unstruct
