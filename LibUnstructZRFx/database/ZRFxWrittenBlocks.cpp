#include "database/ZRFxWrittenBlocks.h"

#include <algorithm>

namespace unstruct {

void ZRFxWrittenBlocks::Note(int type, int id, std::optional<ZRFxOutline> outline) {
    if (outline && outline->values) {
        m_values[id] = *outline->values;
    } else {
        m_outlines[{type, id}] = std::move(outline);
    }
}

std::optional<ZRFxOutline> ZRFxWrittenBlocks::Find(int type, int id) const {
    if (type == BLOCK_RESULT_VALUES) {
        const auto values = m_values.find(id);
        if (values == m_values.end()) return std::nullopt;
        return ZRFxOutline::OfValues(values->second);
    }
    const auto found = m_outlines.find({type, id});
    return found == m_outlines.end() ? std::nullopt : found->second;
}

std::vector<std::pair<int, int>> ZRFxWrittenBlocks::All() const {
    std::vector<std::pair<int, int>> blocks;
    blocks.reserve(m_outlines.size() + m_values.size());
    for (const auto& [block, outline] : m_outlines) blocks.push_back(block);
    for (const auto& [id, values] : m_values) blocks.emplace_back(BLOCK_RESULT_VALUES, id);
    std::ranges::sort(blocks);
    return blocks;
}

}  // namespace unstruct
