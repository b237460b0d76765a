#pragma once

#include <set>
#include <string>

#include "diff/Differences.h"
#include "diff/Side.h"

namespace tools {

/// Reports the keys that only one file has, and calls `compare` with the key and the place of each
/// that both have, until it gives a file that cannot be read.
template <typename Key, typename PlaceOf, typename Compare>
Side compareByKey(const std::set<Key>& a, const std::set<Key>& b, Differences& differences,
                  PlaceOf placeOf, Compare compare) {
    for (const Key& key : a) {
        const std::string place = placeOf(key);
        if (differences.ignores(place)) continue;
        if (!b.contains(key)) {
            differences.onlyInA(place);
        } else if (const Side failed = compare(key, place); failed != Side::NONE) {
            return failed;
        }
    }
    for (const Key& key : b) {
        if (!a.contains(key)) differences.onlyInB(placeOf(key));
    }
    return Side::NONE;
}

/// The keys of a map.
template <typename Map>
std::set<typename Map::key_type> keysOf(const Map& map) {
    std::set<typename Map::key_type> keys;
    for (const auto& [key, value] : map) keys.insert(key);
    return keys;
}

}  // namespace tools
