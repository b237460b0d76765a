#pragma once

#include <vector>

namespace unstruct {

/// Reserves room for one more item, so that appending it cannot fail. Grows geometrically, so that
/// appending items one by one stays linear.
template <typename Item>
void MakeRoom(std::vector<Item>* items) {
    if (items->size() == items->capacity()) items->reserve(2 * items->size() + 1);
}

}  // namespace unstruct
