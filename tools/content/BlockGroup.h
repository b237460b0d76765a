#pragma once

#include <vector>

#include "blocks/ZROZRFxBlocks.h"
#include "content/Content.h"

namespace tools {

class CheckedDatabase;
class Table;

/// The commands' view of the block classes of one group. Each group is a module, which has
/// these three operations for every class of its list: one that is left out does not compile, and a
/// class of which there is nothing to say has an empty one.
struct BlockGroup {
    using Block = unstruct::ZRFxBlock;

    void (*describe)(const Block& block, Content& content);       ///< All that the block holds.
    void (*write)(const Block& block, Table& table);              ///< Its values as a table.
    void (*check)(const Block& block, CheckedDatabase& checked);  ///< What only its class can tell.
};

extern const BlockGroup kMeshBlocks;
extern const BlockGroup kResultsBlocks;
extern const BlockGroup kSetsBlocks;
extern const BlockGroup kPrecomputedBlocks;

/// The group of a block's class.
const BlockGroup& groupOf(const unstruct::ZRFxBlock& block);

/// All that a block that has been read holds, as a list of fields in a fixed order. Two blocks of
/// one type mean the same exactly when their fields are equal.
std::vector<Field> contentOf(const unstruct::ZRFxBlock& block);

}  // namespace tools
