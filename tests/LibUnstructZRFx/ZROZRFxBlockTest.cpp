#include "ZROZRFxBlock.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "support/ArchiveTest.h"
#include "support/SampleBlocks.h"

namespace unstruct {
namespace {

using test::Entries;
using test::SampleBlock;

// A second archive of a test, with a database of the same id.
struct Copy {
    Copy() {
        EXPECT_TRUE(access.Open(&file, ZRZipAccessMode::CREATE));
        EXPECT_TRUE(access.WriteXmlFile(
            "ZRF.xml", *ZRFxAccess::CreateMainDocument("", "", 0), false));
        EXPECT_TRUE(test::CreateDatabase(database, 1));
    }
    Entries BlockEntries() {
        Entries entries = test::Unpack(access);
        entries.erase("ZRF.xml");
        return entries;
    }

    ZRFxZipMemFile file;
    ZRFxAccess access;
    ZRFxDatabase database{&access};
};

class BlockOfEachType : public test::DatabaseTest, public testing::WithParamInterface<int> {};

TEST_P(BlockOfEachType, ReadBackAndWrittenAgainGivesTheSameEntries) {
    for (const bool textMode : {false, true}) {
        Copy first;
        Copy second;
        first.database.SetTextMode(textMode);
        second.database.SetTextMode(textMode);
        ASSERT_TRUE(SampleBlock(GetParam(), 12345)->WriteBlock(&first.database));
        ASSERT_TRUE(first.database.WriteTOC());

        ZRFxDatabase parsed(&first.access);
        ASSERT_TRUE(parsed.Parse(1));
        ZRFxBlock* block = parsed.GetBlockByID(GetParam(), 12345);
        ASSERT_TRUE(block);
        EXPECT_FALSE(block->IsRead());
        ASSERT_TRUE(block->ReadBlock());
        EXPECT_TRUE(block->IsRead());
        ASSERT_TRUE(block->WriteBlock(&second.database));
        ASSERT_TRUE(second.database.WriteTOC());
        EXPECT_EQ(block->GetDatabase(), &parsed);
        EXPECT_EQ(first.BlockEntries(), second.BlockEntries());
        ExpectTexts({"Parsing ZRFx file..."});
    }
}

INSTANTIATE_TEST_SUITE_P(All, BlockOfEachType, testing::ValuesIn(test::StoredTypes()),
                         [](const auto& test) { return ZRFxBlockTypeName(test.param).Bytes(); });

}  // namespace
}  // namespace unstruct
