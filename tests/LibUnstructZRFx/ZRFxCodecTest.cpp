#include "container/ZRFxCodec.h"

#include "support/ZipTestFiles.h"

namespace unstruct {
namespace {

std::string Deflated(ZRFxCodec* pCodec, int nLevel, const std::string& sData) {
    std::string sPacked(sData.size() + 64, '\0');
    size_t nPacked = 0;
    EXPECT_TRUE(pCodec->Deflate(nLevel, sData.data(), sData.size(), sPacked.data(), sPacked.size(),
                                &nPacked));
    return sPacked.substr(0, nPacked);
}

TEST(ZRFxCodec, EveryLevelRoundTripsAfterEveryOther) {
    ZRFxCodec codec;
    for (size_t nSize : {1u, 100u, 70000u, 1000000u}) {
        const std::string sData = ziptest::SmoothField(nSize / 4 + 1).substr(0, nSize);
        for (int nLevel : {9, 1, 5, 6, 2, 8, 3, 7, 4}) {
            const std::string sPacked = Deflated(&codec, nLevel, sData);
            std::string sBack(sData.size(), '\0');
            ASSERT_TRUE(codec.Inflate(sPacked.data(), sPacked.size(), sBack.data(), sBack.size()));
            EXPECT_EQ(sBack, sData) << nSize << " at level " << nLevel;
        }
    }
}

TEST(ZRFxCodec, DataThatDoesNotShrinkIsFoundInOnePass) {
    ZRFxCodec codec;
    for (size_t nSize : {1u, 2u, 500u, 100000u}) {
        const std::string sData = ziptest::RandomBytes(nSize);
        std::string sPacked(nSize, '\0');
        size_t nPacked = 1;
        ASSERT_TRUE(codec.Deflate(6, sData.data(), nSize, sPacked.data(), nSize - 1, &nPacked));
        EXPECT_EQ(nPacked, 0u) << nSize;
    }
}

TEST(ZRFxCodec, EverythingButTheExactSizeIsRefused) {
    ZRFxCodec codec;
    const std::string sData = ziptest::SmoothField(5000);
    const std::string sPacked = Deflated(&codec, 6, sData);
    std::string sBack(sData.size() + 1, '\0');
    const auto inflates = [&](const std::string& sFrom, size_t nSize) {
        return codec.Inflate(sFrom.data(), sFrom.size(), sBack.data(), nSize);
    };
    EXPECT_TRUE(inflates(sPacked, sData.size()));
    EXPECT_FALSE(inflates(sPacked, sData.size() - 1));
    EXPECT_FALSE(inflates(sPacked, sData.size() + 1));
    EXPECT_FALSE(inflates(sPacked + "x", sData.size()));
    EXPECT_FALSE(inflates(sPacked.substr(0, sPacked.size() - 1), sData.size()));
    EXPECT_FALSE(inflates("", sData.size()));
}

TEST(ZRFxCodec, OnlyReachableSizesAreAccepted) {
    ZRFxCodec codec;
    const std::string sZeros(50'000'000, '\0');
    const std::string sPacked = Deflated(&codec, 9, sZeros);
    EXPECT_TRUE(ZRFxCodec::IsReachable(sPacked.size(), sZeros.size()));
    EXPECT_TRUE(ZRFxCodec::IsReachable(2, 0));
    EXPECT_FALSE(ZRFxCodec::IsReachable(10, 20000));
    EXPECT_FALSE(ZRFxCodec::IsReachable(1000, 0xFFFFFFFEu));
    EXPECT_FALSE(ZRFxCodec::IsReachable(0, ~uint64_t{0}));
}

TEST(ZRFxCodec, CrcContinuesOverPieces) {
    const std::string sData = "123456789";
    EXPECT_EQ(ZRFxCodec::Crc32(0, sData.data(), 9), 0xCBF43926u);
    uint32_t nCrc = ZRFxCodec::Crc32(0, sData.data(), 4);
    nCrc = ZRFxCodec::Crc32(nCrc, nullptr, 0);
    EXPECT_EQ(ZRFxCodec::Crc32(nCrc, sData.data() + 4, 5), 0xCBF43926u);
}

}  // namespace
}  // namespace unstruct
