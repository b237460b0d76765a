#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <variant>
#include <vector>

#include "blocks/ZRFxBlock.h"
#include "blocks/results/ZRFxResultValuesBlock.h"

namespace tools {

/// Floats of many items, some components each.
struct Reals {
    std::span<const float> values;
    int components = 1;
};

/// One thing that a block holds: where, and what. Arrays lie in the block, which must outlive it.
struct Field {
    using Value =
        std::variant<std::int64_t, double, std::string, std::span<const std::int32_t>, Reals>;
    std::string place;
    Value value;
};

/// All that a block that has been read holds, of every type that can be stored, as a list of fields
/// in a fixed order. Two blocks of one type mean the same exactly when their fields are equal.
std::vector<Field> contentOf(const unstruct::ZRFxBlock& block);

/// An array of the format classes as a view of its items.
template <typename Array>
auto itemsOf(const Array& array) {
    return std::span(array.Data(), static_cast<std::size_t>(array.GetSize()));
}

/// Vectors as the floats that they are made of.
Reals realsOf(const unstruct::ZRVec3fArray& vectors);

/// The values of a result values block, item after item.
Reals realsOf(const unstruct::ZRFxResultValuesBlock& block);

}  // namespace tools
