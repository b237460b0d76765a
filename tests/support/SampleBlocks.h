#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <vector>

#include "ZRArray.h"
#include "blocks/ZRFxBlock.h"

namespace test {

/// A block of a type with every part of it filled: ids, groups of all kinds, undefined values,
/// names in several scripts. Written, read back and written again it gives the same entries.
nvf::ref<unstruct::ZRFxBlock> SampleBlock(int type, int id);

unstruct::ZRIntArray Ints(std::initializer_list<std::int32_t> items);
std::unique_ptr<unstruct::ZRIntArray> NewInts(std::initializer_list<std::int32_t> items);

/// The types of which there are blocks.
std::vector<int> StoredTypes();

}  // namespace test
