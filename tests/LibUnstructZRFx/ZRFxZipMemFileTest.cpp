#include "container/ZRFxZipMemFile.h"

#include "support/FaultySystem.h"
#include "support/ZipTestFiles.h"

namespace unstruct {
namespace {

std::string Content(const ZRFxZipMemFile& file) {
    return {reinterpret_cast<const char*>(file.Data()), static_cast<size_t>(file.Length())};
}

TEST(ZRFxZipMemFile, WritesBehindTheEndFillWithZeros) {
    ZRFxZipMemFile file;
    ASSERT_TRUE(file.WriteAt(3, "abc", 3));
    ASSERT_TRUE(file.WriteAt(4, "XY", 2));
    EXPECT_EQ(Content(file), std::string("\0\0\0aXY", 6));
    file.Truncate(4);
    ASSERT_TRUE(file.WriteAt(6, "z", 1));
    EXPECT_EQ(Content(file), std::string("\0\0\0a\0\0z", 7));
    char c = 0;
    EXPECT_FALSE(file.ReadAt(7, &c, 1));
    EXPECT_FALSE(file.ReadAt(~uint64_t{0}, &c, 1));
}

TEST(ZRFxZipMemFile, DetachedBytesAreWholeAndTheFileStartsAnew) {
    ZRFxZipMemFile file;
    ZRFxZipRawData raw;
    ASSERT_TRUE(file.Detach(&raw));
    EXPECT_EQ(raw.Buffer(), nullptr);
    const std::string sData = ziptest::RandomBytes(5000);
    for (char c : sData) ASSERT_TRUE(file.Append(&c, 1));
    ASSERT_TRUE(file.Detach(&raw));
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(raw.Buffer()), raw.Length()), sData);
    ASSERT_TRUE(file.Append("n", 1));
    EXPECT_EQ(Content(file), "n");
}

TEST(ZRFxZipMemFile, WithoutMemoryTheContentStays) {
    ziptest::FaultySystem faulty;
    ZRFxZipMemFile file(16);
    ASSERT_TRUE(file.Append("0123456789", 10));
    faulty.FailCall(1, ENOMEM, ziptest::FaultySystem::Failing::kOnce);
    EXPECT_FALSE(file.Append("0123456789", 10));
    EXPECT_EQ(Content(file), "0123456789");
    EXPECT_TRUE(file.Append("0123456789", 10));
}

TEST(ZRFxMemStorage, WhatIsNotCommittedIsTakenBackAndASuccessorReplacesAll) {
    ZRFxZipMemFile file;
    ASSERT_TRUE(file.Append("committed-torn", 14));
    ZRFxMemStorage storage(&file, false);
    storage.CutTo(9);
    ASSERT_TRUE(storage.Write("-new", 4));
    storage.RollBack();
    EXPECT_EQ(Content(file), "committed");
    ASSERT_TRUE(storage.Write("-next", 5));
    EXPECT_EQ(storage.EndCommit(), ZRFxCommitResult::kDone);
    EXPECT_EQ(Content(file), "committed-next");
    const std::unique_ptr<ZRFxZipStorage> pSuccessor = storage.Successor();
    ASSERT_TRUE(pSuccessor->Write("anew", 4));
    EXPECT_EQ(Content(file), "committed-next");
    EXPECT_EQ(pSuccessor->EndCommit(), ZRFxCommitResult::kDone);
    EXPECT_EQ(Content(file), "anew");
}

}  // namespace
}  // namespace unstruct
