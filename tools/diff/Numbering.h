#pragma once

#include <unordered_map>

namespace tools {

/// Which id of B the item of an id of A has: mostly the same.
class Numbering {
public:
    void add(int a, int b) {
        if (a != b) m_ids[a] = b;
    }

    int of(int a) const {
        const auto found = m_ids.find(a);
        return found == m_ids.end() ? a : found->second;
    }

    /// How many ids are not the same.
    std::size_t changedCount() const { return m_ids.size(); }

private:
    std::unordered_map<int, int> m_ids;
};

/// Of both kinds of items.
struct Numberings {
    Numbering nodes;
    Numbering elements;
};

}  // namespace tools
