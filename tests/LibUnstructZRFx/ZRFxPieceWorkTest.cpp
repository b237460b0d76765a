// Entries that are packed in pieces, by one thread and by several.
#include "container/ZRFxPieceWork.h"

#include <sys/wait.h>
#include <unistd.h>

#include <gmock/gmock.h>

#include <atomic>
#include <thread>

#include "ZRByteOrder.h"
#include "container/ZRFxThreads.h"
#include "support/FaultySystem.h"
#include "support/ZipArchives.h"

namespace unstruct {
namespace {

using namespace ziptest;

constexpr int kLevel = 5;

// Values between 1 and 2 that are alike everywhere, so that all levels pack them in pieces.
std::string NoisyField(unsigned nSeed = 1) {
    std::string s = RandomBytes(5'200'000, nSeed);
    for (size_t i = 0; i < s.size(); i += 4) {
        s[i] = 0;
        s[i + 2] |= '\x80';
        s[i + 3] = '\x3F';
    }
    return s + "and a tail";
}

class ZRFxPieceWorkTest : public testing::Test {
protected:
    // An archive of one entry in pieces, as that many threads write it.
    std::string Written(int nThreads, const std::string& sData, const std::string& sPassword = {},
                        int nLevel = kLevel) {
        ZRFxZipArchive archive;
        std::filesystem::remove(m_sPath);
        EXPECT_TRUE(archive.Open(m_sPath, ZRZipAccessMode::CREATE) &&
                    archive.SetPassword(sPassword));
        archive.SetThreads(nThreads);
        EXPECT_TRUE(AddText(&archive, kName, sData, nLevel) && archive.Close())
            << archive.LastError();
        return ReadWhole(m_sPath);
    }

    // What several threads read of it: the data, or the message.
    std::string Read(const std::string& sBytes, const std::string& sPassword = {}) {
        WriteWhole(m_sPath, sBytes);
        ZRFxZipArchive archive;
        EXPECT_TRUE(archive.Open(m_sPath, ZRZipAccessMode::READ_ONLY) &&
                    archive.SetPassword(sPassword));
        archive.SetThreads(3);
        std::string sData;
        return ReadText(&archive, kName, &sData) ? sData : archive.LastError();
    }

    static constexpr const char* kName = "a.dat";
    TemporaryFolder m_folder;
    const std::string m_sPath = m_folder.File("a.zrfx");
    const std::string m_sData = NoisyField();
};

// The extra field that notes the pieces: identifier and length before it.
constexpr std::string_view kField = "ZP";

size_t NoteOf(const std::string& sBytes) {
    const size_t nRecord = sBytes.rfind("PK\x01\x02");
    return sBytes.find(kField, nRecord + ZRFxZipDirectory::kRecordSize) + 4;
}

// But for the time at which the entry was written.
std::string WithoutTimes(std::string sBytes) {
    sBytes.replace(10, 4, 4, '\0');
    return sBytes.replace(sBytes.rfind("PK\x01\x02") + 12, 4, 4, '\0');
}

TEST_F(ZRFxPieceWorkTest, AnyNumberOfThreadsWritesTheSameBytes) {
    for (const int nLevel : {1, 5, 9}) {
        const std::string sBytes = WithoutTimes(Written(1, m_sData, {}, nLevel));
        EXPECT_EQ(Read(sBytes), m_sData) << nLevel;
        for (const int nThreads : {0, 2, 5}) {
            EXPECT_TRUE(WithoutTimes(Written(nThreads, m_sData, {}, nLevel)) == sBytes)
                << nThreads << " threads at level " << nLevel;
        }
    }
}

TEST_F(ZRFxPieceWorkTest, OtherProgramsReadPiecesAsOneEntry) {
    for (const char* sPassword : {"", "geheim"}) {
        const std::string sBytes = Written(2, m_sData, sPassword);
        ASSERT_NE(NoteOf(sBytes), std::string::npos + 4);
        EXPECT_EQ(Read(sBytes, sPassword), m_sData);
        EXPECT_EQ(Shell("7z t -p'" + std::string(sPassword) + "' " + m_sPath), 0);
        if (*sPassword) continue;
        EXPECT_EQ(Shell("unzip -t " + m_sPath), 0);
        EXPECT_EQ(Shell("python3 -m zipfile -t " + m_sPath), 0);
    }
}

TEST_F(ZRFxPieceWorkTest, DataThatDoesNotShrinkIsStored) {
    const std::string sRandom = RandomBytes(6'000'000);
    for (const int nLevel : {1, 5}) {
        const std::string sBytes = Written(2, sRandom, {}, nLevel);
        EXPECT_LT(sBytes.size(), sRandom.size() + 300);
        EXPECT_EQ(Read(sBytes), sRandom);
    }
}

TEST_F(ZRFxPieceWorkTest, EntriesThatFollowHaveNoNote) {
    ZRFxZipArchive archive;
    ASSERT_TRUE(archive.Open(m_sPath, ZRZipAccessMode::CREATE));
    archive.SetPendingLimit(0);
    const Model model{{"b.dat", ""}, {"c.xml", ""}, {"d.dat", "short"}, {"e.xml", "short"}};
    for (const auto& [sName, sData] : model) {
        ASSERT_TRUE(ReplaceText(&archive, kName, m_sData, kLevel));
        ASSERT_TRUE(AddText(&archive, sName, sData, kLevel));
    }
    ASSERT_TRUE(archive.Close());
    const std::string sDirectory = ReadWhole(m_sPath);
    const size_t nNote = sDirectory.find(kField, sDirectory.find("PK\x01\x02"));
    ASSERT_NE(nNote, std::string::npos);
    EXPECT_EQ(sDirectory.find(kField, nNote + 2), std::string::npos);
}

// A note that is wrong costs speed, and never truth.
TEST_F(ZRFxPieceWorkTest, WrongNotesChangeNothing) {
    const std::string sBytes = Written(1, m_sData);
    const size_t nNote = NoteOf(sBytes);
    ASSERT_LT(nNote, sBytes.size());
    const size_t nLength =
        LoadLittleEndian<uint16_t>(reinterpret_cast<const uint8_t*>(&sBytes[nNote - 2]));
    ASSERT_GT(nLength, 5 + 3 * 8u);
    const auto put32 = [&](std::string s, size_t nAt, uint32_t nValue) {
        StoreLittleEndian(reinterpret_cast<uint8_t*>(&s[nNote + nAt]), nValue);
        return s;
    };
    const auto get32 = [&](size_t nAt) {
        return LoadLittleEndian<uint32_t>(reinterpret_cast<const uint8_t*>(&sBytes[nNote + nAt]));
    };
    const std::pair<const char*, std::string> aWrong[] = {
        {"form", WithFlippedByte(sBytes, nNote)},
        {"no piece size", put32(sBytes, 1, 0)},
        {"small pieces", put32(sBytes, 1, 1000)},
        {"large pieces", put32(sBytes, 1, 0xFFFFFFFF)},
        {"pieces of one byte more", put32(sBytes, 1, get32(1) + 1)},
        {"packed size of nothing", put32(put32(sBytes, 5, 0), 13, get32(13) + get32(5))},
        {"packed size beyond the file", put32(sBytes, 5, 0xFFFFFFFF)},
        {"borders moved", put32(put32(sBytes, 5, get32(5) + 1), 13, get32(13) - 1)},
        {"overlap", put32(sBytes, 13, get32(13) + 100)},
        {"CRC", put32(sBytes, 9, get32(9) ^ 1)},
        {"field cut", put32(sBytes, nLength - 8, 0)},
        {"note of another entry", [&] {
             const std::string sOther = Written(1, NoisyField(2));
             std::string s = sBytes;
             return s.replace(nNote, nLength, sOther, NoteOf(sOther), nLength);
         }()}};
    for (const auto& [sWhat, sWrong] : aWrong) EXPECT_TRUE(Read(sWrong) == m_sData) << sWhat;
    // Under a password there are no CRCs, so the data itself shows what is wrong.
    const std::string sSecret = Written(1, m_sData, "geheim");
    const size_t nSecret = NoteOf(sSecret);
    for (size_t nAt = 0; nAt < 17; ++nAt) {
        EXPECT_TRUE(Read(WithFlippedByte(sSecret, nSecret + nAt), "geheim") == m_sData) << nAt;
    }
}

TEST_F(ZRFxPieceWorkTest, PartsAreThoseOfTheWhole) {
    struct Case {
        int nLevel;
        const char* sPassword;
    };
    const size_t nAll = m_sData.size();
    for (const Case& c : {Case{0, ""}, {1, ""}, {kLevel, ""}, {kLevel, "geheim"}, {0, "geheim"}}) {
        Written(2, m_sData, c.sPassword, c.nLevel);
        ZRFxZipArchive archive;
        ASSERT_TRUE(archive.Open(m_sPath, ZRZipAccessMode::READ_ONLY));
        ASSERT_TRUE(archive.SetPassword(c.sPassword));
        for (const size_t nFrom :
             {size_t{0}, size_t{1}, size_t{262'143}, nAll / 2, nAll - 1, nAll}) {
            for (const size_t nSize : {size_t{0}, size_t{1}, size_t{262'146}, nAll}) {
                std::string sPart(nSize, 'x');
                const bool bInside = nFrom + nSize <= nAll;
                EXPECT_EQ(archive.ReadPart(kName, nFrom, sPart.data(), nSize), bInside);
                EXPECT_TRUE(!bInside || m_sData.compare(nFrom, nSize, sPart) == 0)
                    << nFrom << ", " << nSize << " at level " << c.nLevel;
            }
        }
        EXPECT_THAT(archive.LastError(), testing::HasSubstr("the entry ends too early"));
    }
}

TEST_F(ZRFxPieceWorkTest, PartOfALargeEntryReadsLittleOfTheFile) {
    Written(2, m_sData);
    ZRFxZipArchive archive;
    ASSERT_TRUE(archive.Open(m_sPath, ZRZipAccessMode::READ_ONLY));
    char aPart[100];
    ASSERT_TRUE(archive.ReadPart(kName, 0, aPart, sizeof(aPart)));
    FaultySystem system;
    ASSERT_TRUE(archive.ReadPart(kName, 3'000'000, aPart, sizeof(aPart)));
    EXPECT_EQ(m_sData.compare(3'000'000, sizeof(aPart), aPart, sizeof(aPart)), 0);
    EXPECT_LT(system.ReadCount(), m_sData.size() / 4);
}

TEST_F(ZRFxPieceWorkTest, DamageInAPieceIsReported) {
    const std::string sBytes = Written(2, m_sData);
    for (const size_t nAt : {size_t{40}, sBytes.size() / 2, sBytes.size() / 4 * 3}) {
        EXPECT_THAT(Read(WithFlippedByte(sBytes, nAt)),
                    testing::HasSubstr("entry 'a.dat': damaged data"));
    }
}

TEST_F(ZRFxPieceWorkTest, CallsThatFailLeaveTheArchiveAsItWas) {
    for (const int nThreads : {1, 3}) {
        bool bFailed = true;
        for (int nCall = 1; bFailed; ++nCall) {
            ZRFxZipArchive archive;
            std::filesystem::remove(m_sPath);
            ASSERT_TRUE(archive.Open(m_sPath, ZRZipAccessMode::CREATE));
            archive.SetThreads(nThreads);
            ASSERT_TRUE(AddText(&archive, "before.dat", "before", 0));
            FaultySystem system;
            system.FailCall(nCall, ENOSPC, FaultySystem::Failing::kFromThenOn);
            const bool bAdded = AddText(&archive, kName, m_sData, kLevel);
            bFailed = system.HasFailed();
            system.Recover();
            EXPECT_EQ(bAdded, !bFailed) << nCall;
            EXPECT_EQ(archive.Contains(kName), bAdded);
            ASSERT_TRUE(bAdded || AddText(&archive, kName, m_sData, kLevel)) << archive.LastError();
            ASSERT_TRUE(archive.Close());
            EXPECT_EQ(ReadModel(m_sPath), (Model{{"before.dat", "before"}, {kName, m_sData}}));
        }
    }
}

TEST_F(ZRFxPieceWorkTest, AReadThatFailsIsTriedAsAWhole) {
    const std::string sBytes = Written(1, m_sData);
    ZRFxZipArchive archive;
    ASSERT_TRUE(archive.Open(m_sPath, ZRZipAccessMode::READ_ONLY));
    archive.SetThreads(2);
    FaultySystem system;
    std::string sData;
    for (int nCall = 1; nCall < 10; ++nCall) {
        system.FailCall(nCall, EIO, FaultySystem::Failing::kFromThenOn);
        EXPECT_FALSE(ReadText(&archive, kName, &sData));
        system.FailCall(nCall, EIO, FaultySystem::Failing::kOnce);
        EXPECT_TRUE(!ReadText(&archive, kName, &sData) || sData == m_sData);
        system.Recover();
        EXPECT_TRUE(ReadText(&archive, kName, &sData) && sData == m_sData);
    }
}

TEST_F(ZRFxPieceWorkTest, AChildOfAForkHasThreadsOfItsOwn) {
#ifdef __SANITIZE_THREAD__
    GTEST_SKIP() << "the thread sanitizer takes no threads after a fork";
#endif
    const std::string sBytes = Written(2, m_sData);
    const pid_t nChild = fork();
    if (nChild == 0) {
        alarm(60);
        _exit(WithoutTimes(Written(2, m_sData)) == WithoutTimes(sBytes) && Read(sBytes) == m_sData
                  ? 0
                  : 1);
    }
    int nStatus = -1;
    ASSERT_EQ(waitpid(nChild, &nStatus, 0), nChild);
    EXPECT_EQ(nStatus, 0);
    EXPECT_EQ(Read(sBytes), m_sData);
}

TEST(ZRFxThreads, TheLimitOfTheProcessHoldsForAll) {
    struct Case {
        int nLimit;
        int nWanted;
        size_t nThreads;
    };
    for (const Case& c : {Case{1, 0, 1}, {1, 8, 1}, {3, 0, 3}, {3, 2, 2}, {3, 8, 3}, {0, 1, 1}}) {
        ZRFxThreads::SetLimit(c.nLimit);
        EXPECT_EQ(ZRFxThreads::Count(c.nWanted), c.nThreads) << c.nLimit << ", " << c.nWanted;
    }
    ZRFxThreads::SetLimit(0);
    EXPECT_GE(ZRFxThreads::Count(0), 1u);
}

// Several callers at once, and parts that wait for those before them.
TEST(ZRFxThreads, EachPartIsDoneOnceWhoeverCalls) {
    std::vector<std::thread> aCallers;
    for (int nCaller = 0; nCaller < 3; ++nCaller) {
        aCallers.emplace_back([] {
            for (size_t nParts = 0; nParts < 60; ++nParts) {
                std::atomic<size_t> nDone{0};
                ZRFxThreads::Run(nParts, 4, [&](size_t nPart, size_t nThread) {
                    ASSERT_LT(nThread, 4u);
                    while (nDone != nPart) std::this_thread::yield();
                    ++nDone;
                });
                EXPECT_EQ(nDone, nParts);
            }
        });
    }
    for (std::thread& caller : aCallers) caller.join();
}

}  // namespace
}  // namespace unstruct
