#pragma once

#include <cstdint>
#include <span>
#include <utility>
#include <vector>

namespace tools {

/// Finds items by id: a table where the ids lie close together, as they mostly do, else a sorted
/// list. A snapshot of the ids that it is made from.
class IdIndex {
public:
    explicit IdIndex(std::span<const std::int32_t> ids);

    /// The index of the first item of an id; -1 when there is none.
    std::int64_t indexOf(std::int32_t id) const;

    /// Calls `report` with the index of each item whose id an earlier item has.
    template <typename Report>
    static void forEachDuplicate(std::span<const std::int32_t> ids, Report report) {
        const IdIndex index(ids);
        for (std::size_t i = 0; i < ids.size(); ++i) {
            if (index.indexOf(ids[i]) != static_cast<std::int64_t>(i)) report(i);
        }
    }

private:
    std::int64_t m_lowest = 0;
    std::vector<std::int64_t> m_table;                          // by id from m_lowest on
    std::vector<std::pair<std::int32_t, std::int64_t>> m_list;  // by id
};

}  // namespace tools
