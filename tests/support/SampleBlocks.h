#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "ZRArray.h"
#include "blocks/ZROZRFxBlocks.h"

namespace test {

/// A block of a type with every part of it filled: ids, groups of all kinds, undefined values,
/// names in several scripts. Written, read back and written again it gives the same entries.
nvf::ref<unstruct::ZRFxBlock> SampleBlock(int type, int id);

template <typename T>
unstruct::ZRArray<T> ArrayOf(const std::vector<T>& items) {
    unstruct::ZRArray<T> array;
    array.Assign(items.data(), static_cast<std::int64_t>(items.size()));
    return array;
}

template <typename... Items>
unstruct::ZRIntArray Ints(Items... items) {
    return ArrayOf<std::int32_t>({items...});
}

template <typename... Items>
std::unique_ptr<unstruct::ZRIntArray> NewInts(Items... items) {
    return std::make_unique<unstruct::ZRIntArray>(Ints(items...));
}

/// The types of which there are blocks.
std::vector<int> StoredTypes();

}  // namespace test
