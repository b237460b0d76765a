#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <span>
#include <vector>

namespace tools {

/// Which items of two lists belong together.
struct ItemPairs {
    struct Pair {
        std::size_t a;
        std::size_t b;
    };
    std::vector<Pair> both;          ///< By key, or in the order of the lists where it is the same.
    std::vector<std::size_t> onlyA;  ///< Indices.
    std::vector<std::size_t> onlyB;

    bool isComplete() const { return onlyA.empty() && onlyB.empty(); }
};

namespace detail {

// By key; items of one key keep their order.
template <typename Key>
std::vector<std::size_t> sortedBy(std::span<const Key> keys) {
    std::vector<std::size_t> order(keys.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::ranges::stable_sort(order, {}, [&](std::size_t i) { return keys[i]; });
    return order;
}

}  // namespace detail

/// Pairs items of equal keys: of several of one key the first with the first, and so on.
template <typename Key>
ItemPairs pairByKey(std::span<const Key> a, std::span<const Key> b) {
    ItemPairs pairs;
    if (std::ranges::equal(a, b)) {
        for (std::size_t i = 0; i < a.size(); ++i) pairs.both.push_back({i, i});
        return pairs;
    }
    const auto orderA = detail::sortedBy(a);
    const auto orderB = detail::sortedBy(b);
    auto i = orderA.begin();
    auto j = orderB.begin();
    while (i != orderA.end() && j != orderB.end()) {
        if (a[*i] < b[*j]) {
            pairs.onlyA.push_back(*i++);
        } else if (b[*j] < a[*i]) {
            pairs.onlyB.push_back(*j++);
        } else {
            pairs.both.push_back({*i++, *j++});
        }
    }
    pairs.onlyA.insert(pairs.onlyA.end(), i, orderA.end());
    pairs.onlyB.insert(pairs.onlyB.end(), j, orderB.end());
    return pairs;
}

template <typename Key>
ItemPairs pairByKey(const std::vector<Key>& a, const std::vector<Key>& b) {
    return pairByKey(std::span<const Key>(a), std::span<const Key>(b));
}

}  // namespace tools
