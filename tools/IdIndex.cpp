#include "IdIndex.h"

#include <algorithm>

namespace tools {

IdIndex::IdIndex(std::span<const std::int32_t> ids) {
    if (ids.empty()) return;
    const auto [lowest, highest] = std::ranges::minmax(ids);
    m_lowest = lowest;
    const auto range = static_cast<std::uint64_t>(std::int64_t{highest} - lowest) + 1;
    if (range <= 8 * ids.size() + 1024) {
        m_table.assign(range, -1);
        for (std::size_t i = ids.size(); i-- > 0;) {
            m_table[static_cast<std::size_t>(ids[i] - m_lowest)] = static_cast<std::int64_t>(i);
        }
        return;
    }
    m_list.reserve(ids.size());
    for (std::size_t i = 0; i < ids.size(); ++i) m_list.emplace_back(ids[i], i);
    std::ranges::sort(m_list);
}

std::int64_t IdIndex::indexOf(std::int32_t id) const {
    if (!m_table.empty()) {
        const std::int64_t at = id - m_lowest;
        const bool isInside = at >= 0 && at < static_cast<std::int64_t>(m_table.size());
        return isInside ? m_table[static_cast<std::size_t>(at)] : -1;
    }
    const auto found = std::ranges::lower_bound(m_list, std::pair(id, std::int64_t{0}));
    return found != m_list.end() && found->first == id ? found->second : -1;
}

}  // namespace tools
