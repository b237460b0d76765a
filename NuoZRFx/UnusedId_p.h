#pragma once

#include <climits>
#include <set>

namespace nuo::zrfx {

/// An id that is not in use: one more than the largest, `first` when there is none. Where the
/// largest is the largest of all, the lowest free one.
inline int unusedId(const std::set<int>& ids, int first) {
    if (ids.empty()) return first;
    if (*ids.rbegin() < INT_MAX) return *ids.rbegin() + 1;
    int unused = first;
    while (ids.count(unused) > 0) ++unused;
    return unused;
}

}  // namespace nuo::zrfx
