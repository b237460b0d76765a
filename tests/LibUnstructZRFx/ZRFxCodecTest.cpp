#include "container/ZRFxCodec.h"

#include <zlib.h>

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

TEST(ZRFxCodec, CrcsOfPiecesAreCombined) {
    const std::string sData = ziptest::RandomBytes(70000);
    for (const size_t nFirst : {0u, 1u, 8u, 255u, 256u, 32768u, 69999u, 70000u}) {
        const uint32_t nSecond = ZRFxCodec::Crc32(0, &sData[nFirst], sData.size() - nFirst);
        EXPECT_EQ(ZRFxCodec::CombinedCrc(ZRFxCodec::Crc32(0, sData.data(), nFirst), nSecond,
                                         sData.size() - nFirst),
                  ZRFxCodec::Crc32(0, sData.data(), sData.size()));
    }
    // Zeros over zeros, as long as an entry can be.
    EXPECT_EQ(ZRFxCodec::CombinedCrc(0x12345678, 0, 0xFFFFFFFEu),
              crc32_combine(0x12345678, 0, 0xFFFFFFFE));
}

// Data of many kinds, from that which does not shrink to that which packs to next to nothing.
std::string DataOfKind(unsigned nKind, size_t nSize, std::minstd_rand* pRandom) {
    if (nKind == 0) return ziptest::RandomBytes(nSize, (*pRandom)());
    if (nKind == 1)
        return ziptest::SmoothField(nSize / 4 + 1, (*pRandom)() % 1000).substr(0, nSize);
    std::string s(nSize, '\0');
    // Few letters; runs; integers that count up; text of changing kind.
    unsigned nRun = 0;
    char cRun = 0;
    for (size_t i = 0; i < nSize; ++i) {
        if (nRun-- == 0) {
            nRun = (*pRandom)() % 300;
            cRun = static_cast<char>((*pRandom)());
        }
        const unsigned nRandom = (*pRandom)() >> 8;
        s[i] = nKind == 2          ? static_cast<char>('a' + nRandom % 3)
               : nKind == 3        ? cRun
               : nKind == 4        ? static_cast<char>((i / 4) >> 8 * (i % 4))
               : i / 5000 % 2 == 0 ? static_cast<char>(nRandom)
                                   : static_cast<char>('a' + nRandom % 20);
    }
    return s;
}

// Whichever threads pack them, pieces have the same bytes: a codec is made where others were.
TEST(ZRFxCodec, WhatMemoryHeldBeforeDoesNotShowInPieces) {
    const std::string sData = ziptest::SmoothField(size_t{64} << 10);
    const auto packed = [&](const ZRFxCodec::Way& way) {
        ZRFxCodec codec;
        std::string sPacked(ZRFxCodec::PieceBound(sData.size()), '\0');
        size_t nPacked = 0;
        EXPECT_TRUE(codec.DeflatePiece(way, sData.data(), sData.size(), true,
                                       reinterpret_cast<uint8_t*>(sPacked.data()), sPacked.size(),
                                       &nPacked));
        return sPacked.substr(0, nPacked);
    };
    const auto leave = [](uint16_t nValue) {
        std::vector<std::vector<uint16_t>> aaRooms;
        for (size_t nLength = 1000; nLength < 200'000; nLength += 1000) {
            aaRooms.emplace_back(nLength, nValue);
        }
    };
    for (const ZRFxCodec::Way& way : {ZRFxCodec::Way{true, 1}, ZRFxCodec::Way{false, 5}}) {
        leave(0);
        const std::string sFirst = packed(way);
        for (uint16_t nValue : {2, 9, 0xFFFF}) {
            leave(nValue);
            EXPECT_EQ(packed(way), sFirst) << nValue;
        }
    }
}

// As zlib does it; what it gives is one byte longer when data is left.
std::string InflatedByZlib(const std::string& sPacked, size_t nSize) {
    z_stream stream{};
    inflateInit2(&stream, -MAX_WBITS);
    std::string sData(nSize + 1, '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(sPacked.data()));
    stream.avail_in = static_cast<uInt>(sPacked.size());
    stream.next_out = reinterpret_cast<Bytef*>(sData.data());
    stream.avail_out = static_cast<uInt>(sData.size());
    const bool bWhole = inflate(&stream, Z_FINISH) == Z_STREAM_END && stream.avail_in == 0;
    inflateEnd(&stream);
    return sData.substr(0, bWhole ? stream.total_out : 0);
}

TEST(ZRFxCodec, PiecesAreOneStreamToEveryInflater) {
    const bool bLong = getenv("NUO_LONG_TESTS") != nullptr;
    const size_t nArrays = bLong ? 1'000'000 : 4'000;
    const ZRFxCodec::Way aWays[] = {{true, 1},  {true, 2},  {true, 3},  {false, 1},
                                    {false, 3}, {false, 5}, {false, 7}, {false, 9}};
    std::minstd_rand random(7);
    ZRFxCodec codec;
    for (size_t i = 0; i < nArrays; ++i) {
        const ZRFxCodec::Way way = aWays[i % std::size(aWays)];
        // Every short length, and now and then one of several pieces around their borders.
        const size_t nPiece = i % 50 == 0 ? 60000 + random() % 20000 : 1 + random() % 5000;
        const size_t nSize = i % 3 != 0 ? i / 3 % 301 : nPiece * (random() % 3) + random() % 3;
        const std::string sData = DataOfKind(random() % 6, nSize, &random);
        std::string sStream;
        std::string sBack(nSize, '\0');
        for (size_t nAt = 0; nAt == 0 || nAt < nSize; nAt += nPiece) {
            const size_t nPart = std::min(nPiece, nSize - nAt);
            const bool bLast = nAt + nPart == nSize;
            std::string sPacked(ZRFxCodec::PieceBound(nPart), 'x');
            auto* pPacked = reinterpret_cast<uint8_t*>(sPacked.data());
            size_t nPacked = 0;
            ASSERT_TRUE(codec.DeflatePiece(way, sData.data() + nAt, nPart, bLast, pPacked,
                                           sPacked.size(), &nPacked));
            ASSERT_GT(nPacked, 0u) << i;
            sStream.append(sPacked, 0, nPacked);
            ASSERT_TRUE(codec.InflatePiece(pPacked, nPacked, bLast, &sBack[nAt], nPart)) << i;
        }
        ASSERT_TRUE(sBack == sData) << i;
        ASSERT_TRUE(codec.Inflate(sStream.data(), sStream.size(), sBack.data(), nSize)) << i;
        ASSERT_TRUE(sBack == sData && InflatedByZlib(sStream, nSize) == sData) << i;
    }
}

}  // namespace
}  // namespace unstruct
