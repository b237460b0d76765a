#pragma once

#include <string>
#include <vector>

#include "blocks/ZRFxBlock.h"

namespace tools {

/// A place in a block that names something outside of it.
struct Reference {
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
    int blockType = unstruct::kInvalidBlockType;  ///< For Kind::BLOCK.
};

/// All that a block that has been read refers to. Ids below 0 where that means "none" are left out.
std::vector<Reference> referencesOf(const unstruct::ZRFxBlock& block);

}  // namespace tools
