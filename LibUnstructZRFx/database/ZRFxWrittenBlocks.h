#pragma once

#include <map>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

#include "blocks/ZRFxOutline.h"

namespace unstruct {

/// The blocks that a program has written into a database, with the outlines of those whose
/// documents need not be read again. Result values, of which there are many, take a few bytes each.
class ZRFxWrittenBlocks {
public:
    /// A block counts once, with the outline that was noted last.
    void Note(int type, int id, std::optional<ZRFxOutline> outline);

    /// The outline of a block; null when it was not written or its outline is to be read.
    std::optional<ZRFxOutline> Find(int type, int id) const;

    /// Type and id of each block, in rising order.
    std::vector<std::pair<int, int>> All() const;

private:
    std::map<std::pair<int, int>, std::optional<ZRFxOutline>> m_outlines;  // by type and id
    std::unordered_map<int, ZRFxValuesOutline> m_values;                   // by id
};

}  // namespace unstruct
