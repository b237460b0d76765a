#include "ZRArray.h"

#include <gtest/gtest.h>

#include <vector>

namespace unstruct {
namespace {

TEST(ZRArray, ReferringArrayCopiesItsItemsBeforeItChanges) {
    const std::vector<std::int32_t> items(1000, 7);
    ZRIntArray array;
    array.Refer(items.data(), 1000);
    EXPECT_EQ(array.Data(), items.data());
    ASSERT_TRUE(array.SetSize(10));
    array.WritableData()[9] = 8;
    ASSERT_TRUE(array.Add(array[9]));
    EXPECT_EQ(items[9], 7);
    EXPECT_EQ(array.GetSize(), 11);
    EXPECT_EQ(array[10], 8);
}

}  // namespace
}  // namespace unstruct
