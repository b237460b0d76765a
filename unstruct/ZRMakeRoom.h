#pragma once

#include <vector>

namespace unstruct {

/// Lets the next item be appended without memory. Grows by parts of what is there, so that adding
/// items one by one stays linear.
template <typename Item>
void MakeRoom(std::vector<Item>* items) {
    if (items->size() == items->capacity()) items->reserve(2 * items->size() + 1);
}

}  // namespace unstruct
