#include "container/ZRFxZipArchive.h"

#include "support/FaultySystem.h"
#include "support/ZipArchives.h"

namespace unstruct {
namespace {

using namespace ziptest;

class ZRFxZipArchiveTest : public testing::Test {
protected:
    TemporaryFolder m_folder;
    const std::string m_sPath = m_folder.File("model.zrfx");
    ZRFxZipArchive m_archive;
};

TEST_F(ZRFxZipArchiveTest, WhatIsWrittenIsReadAtEveryLevelWithAndWithoutPassword) {
    for (const char* sPassword : {"", "geheim"}) {
        for (int nLevel : {-1, 0, 1, 5, 9}) {
            WriteModel(m_sPath, SmallModel(), sPassword, nLevel);
            EXPECT_EQ(ReadModel(m_sPath, sPassword), SmallModel()) << nLevel << sPassword;
            EXPECT_EQ(m_folder.FileCount(), 1u);
        }
    }
}

TEST_F(ZRFxZipArchiveTest, ReplacingThatFailsKeepsTheOldEntry) {
    ASSERT_TRUE(m_archive.Open(m_sPath, ZRZipAccessMode::CREATE));
    for (const bool bCommitted : {false, true}) {
        ASSERT_TRUE(ReplaceText(&m_archive, "ZRF.xml", "<old/>"));
        ASSERT_TRUE(!bCommitted || m_archive.Commit());
        {
            FaultySystem system;
            system.FailCall(1, ENOMEM, FaultySystem::Failing::kFromThenOn);
            EXPECT_FALSE(m_archive.Replace("ZRF.xml", "<new/>", 6));
        }
        EXPECT_NE(m_archive.LastError().find("ZRF.xml"), std::string::npos);
        EXPECT_EQ(ContentOf(&m_archive), (Model{{"ZRF.xml", "<old/>"}}));
    }
}

TEST_F(ZRFxZipArchiveTest, BadUseIsAnsweredWithItsCause) {
    const std::string sAt = "'" + m_sPath + "'";
    ZRFxZipRawData raw;
    EXPECT_FALSE(m_archive.Commit());
    EXPECT_FALSE(m_archive.Read("a", &raw));
    EXPECT_FALSE(m_archive.Open(m_sPath, ZRZipAccessMode::UPDATE));
    EXPECT_EQ(m_archive.LastError(), sAt + ": cannot open: No such file or directory.");
    ASSERT_TRUE(m_archive.Open(m_sPath, ZRZipAccessMode::CREATE));
    EXPECT_FALSE(m_archive.Open(m_sPath, ZRZipAccessMode::READ_ONLY));
    EXPECT_FALSE(AddText(&m_archive, "", "x"));
    EXPECT_EQ(m_archive.LastError(), sAt + ": the entry has no name.");
    ASSERT_TRUE(AddText(&m_archive, "a", "x"));
    EXPECT_FALSE(AddText(&m_archive, "a", "y"));
    EXPECT_EQ(m_archive.LastError(), sAt + ", entry 'a': the entry exists.");
    EXPECT_FALSE(m_archive.Read("b", &raw));
    EXPECT_EQ(m_archive.LastError(), sAt + ", entry 'b': no such entry.");
    EXPECT_FALSE(m_archive.Add("huge", "x", uint64_t{0xFFFFFFFF}));
    EXPECT_EQ(m_archive.LastError(), sAt + ", entry 'huge': the entry is larger than 4 GiB.");
    ASSERT_TRUE(m_archive.Close() && m_archive.Open(m_sPath, ZRZipAccessMode::READ_ONLY));
    EXPECT_FALSE(m_archive.Remove("a"));
    EXPECT_EQ(m_archive.LastError(), sAt + ", entry 'a': the archive is open for reading only.");
    EXPECT_EQ(ReadModel(m_sPath), (Model{{"a", "x"}}));
}

TEST_F(ZRFxZipArchiveTest, StreamedEntryIsTheSumOfItsPieces) {
    std::string sAll;
    ASSERT_TRUE(m_archive.Open(m_sPath, ZRZipAccessMode::CREATE) && m_archive.OpenEntry("ids.txt"));
    EXPECT_FALSE(m_archive.OpenEntry("other.txt"));
    for (int i = 0; i < 20000; ++i) {
        const std::string sLine = std::to_string(i) + " \n";
        sAll += sLine;
        ASSERT_TRUE(m_archive.WriteEntry(sLine.data(), sLine.size()));
    }
    ASSERT_TRUE(m_archive.CloseEntry() && m_archive.OpenEntry("none.txt"));
    ASSERT_TRUE(m_archive.Close()) << m_archive.LastError();
    EXPECT_EQ(ReadModel(m_sPath), (Model{{"ids.txt", sAll}, {"none.txt", ""}}));
}

TEST_F(ZRFxZipArchiveTest, StreamedEntryThatCannotTakeAPieceIsGivenUp) {
    ASSERT_TRUE(m_archive.Open(m_sPath, ZRZipAccessMode::CREATE) && m_archive.OpenEntry("ids.txt"));
    ASSERT_TRUE(m_archive.WriteEntry("1 \n", 3));
    {
        FaultySystem system;
        system.FailCall(1, ENOMEM, FaultySystem::Failing::kOnce);
        EXPECT_FALSE(m_archive.WriteEntry(std::string(5000, 'x').data(), 5000));
    }
    EXPECT_NE(m_archive.LastError().find("ids.txt"), std::string::npos) << m_archive.LastError();
    EXPECT_TRUE(m_archive.OpenEntry("other.txt")) << m_archive.LastError();
    ASSERT_TRUE(m_archive.Close());
    EXPECT_EQ(ReadModel(m_sPath), (Model{{"other.txt", ""}}));
}

TEST_F(ZRFxZipArchiveTest, CreatingKeepsTheOldContentUntilTheFirstCommit) {
    WriteModel(m_sPath, SmallModel());
    ASSERT_TRUE(m_archive.Open(m_sPath, ZRZipAccessMode::CREATE));
    EXPECT_EQ(m_archive.EntryCount(), 0u);
    ASSERT_TRUE(AddText(&m_archive, "a", "data"));
    EXPECT_EQ(ReadModel(m_sPath), SmallModel());
    m_archive.Abandon();
    EXPECT_EQ(ReadModel(m_sPath), SmallModel());
    ASSERT_TRUE(m_archive.Open(m_sPath, ZRZipAccessMode::CREATE) && m_archive.Close());
    EXPECT_EQ(ReadModel(m_sPath), Model{});
    EXPECT_EQ(ReadWhole(m_sPath).size(), 22u);
}

TEST_F(ZRFxZipArchiveTest, EntriesWrittenAheadOrPendingAreReadReplacedAndRemovedLikeOthers) {
    for (const auto& [sPassword, nLimit] :
         {std::pair("", 1000), {"geheim", 1000}, {"", 1 << 20}, {"geheim", 1 << 20}}) {
        ASSERT_TRUE(m_archive.Open(m_sPath, ZRZipAccessMode::CREATE));
        ASSERT_TRUE(m_archive.SetPassword(sPassword));
        m_archive.SetPendingLimit(static_cast<uint64_t>(nLimit));
        Model expected;
        for (unsigned i = 0; i < 4; ++i) {
            expected[std::to_string(i)] = RandomBytes(70000, i + 1);
            expected["s" + std::to_string(i)] = SmoothField(5000, i + 1);
        }
        const auto store = [&](const Model& model, int nLevel) {
            for (const auto& [sName, sData] : model) {
                ASSERT_TRUE(ReplaceText(&m_archive, sName, sData, nLevel)) << m_archive.LastError();
            }
        };
        store(expected, 5);
        ASSERT_TRUE(m_archive.Commit());
        const uint64_t nSize = std::filesystem::file_size(m_sPath);
        store({{"1", "first try"}, {"1", expected["0"]}, {"s2", expected["s1"]}}, 0);
        store(expected, 5);
        ASSERT_TRUE(AddText(&m_archive, "gone", expected["0"]));
        ASSERT_TRUE(m_archive.Remove("gone"));
        EXPECT_EQ(ContentOf(&m_archive), expected);
        ASSERT_TRUE(m_archive.Close()) << m_archive.LastError();
        EXPECT_EQ(ReadModel(m_sPath, sPassword), expected);
        EXPECT_LT(std::filesystem::file_size(m_sPath), nSize + 1000) << "gaps were left";
    }
}

TEST_F(ZRFxZipArchiveTest, DocumentsReplacedAgainAndAgainCostWhatIsNew) {
    Model expected;
    FaultySystem system;
    ASSERT_TRUE(m_archive.Open(m_sPath, ZRZipAccessMode::CREATE));
    uint64_t nData = 0;
    for (unsigned i = 0; i < 40; ++i) {
        const std::string sState = "Database001\\State" + std::to_string(i);
        expected[sState + ".dat"] = RandomBytes(40000, i + 1);
        expected[sState + ".xml"] = "<State/>";
        expected["Database001\\Database-TOC.xml"] += "<Entry/>";
        expected["ZRF.xml"] = "<ZRF>" + std::to_string(i) + "</ZRF>";
        for (const std::string& sName :
             {std::string("ZRF.xml"), std::string("Database001\\Database-TOC.xml"), sState + ".xml",
              sState + ".dat"}) {
            ASSERT_TRUE(ReplaceText(&m_archive, sName, expected[sName]));
        }
        ASSERT_TRUE(m_archive.Commit()) << m_archive.LastError();
        nData += 40000;
        EXPECT_EQ(ReadModel(m_sPath), expected);
    }
    ASSERT_TRUE(m_archive.Close());
    EXPECT_LT(system.WrittenCount(), nData + 40 * 1500);
    EXPECT_LT(std::filesystem::file_size(m_sPath), nData + 40 * 1500);
    EXPECT_EQ(Shell("unzip -t " + m_sPath), 0);
}

TEST_F(ZRFxZipArchiveTest, SeventyThousandEntries) {
    ASSERT_TRUE(m_archive.Open(m_sPath, ZRZipAccessMode::CREATE));
    for (int i = 0; i < 70000; ++i) {
        ASSERT_TRUE(AddText(&m_archive, "Blocks\\" + std::to_string(i), std::to_string(i)));
    }
    ASSERT_TRUE(m_archive.Close()) << m_archive.LastError();
    ASSERT_TRUE(m_archive.Open(m_sPath, ZRZipAccessMode::UPDATE)) << m_archive.LastError();
    EXPECT_EQ(m_archive.EntryCount(), 70000u);
    std::string sData;
    for (int i : {0, 1, 65535, 65536, 69999}) {
        ASSERT_TRUE(ReadText(&m_archive, "Blocks\\" + std::to_string(i), &sData));
        EXPECT_EQ(sData, std::to_string(i));
    }
    for (int i = 69999; i > 60000; --i) {
        ASSERT_TRUE(m_archive.Remove("Blocks\\" + std::to_string(i)));
    }
    ASSERT_TRUE(m_archive.Close());
    EXPECT_EQ(Shell("python3 -c \"import zipfile,sys; z=zipfile.ZipFile('" + m_sPath +
                    "'); sys.exit(len(z.namelist())!=60001 or z.testzip() is not None)\""),
              0);
}

// The entry is a hole, so that the test writes next to nothing.
TEST_F(ZRFxZipArchiveTest, ArchiveAboveFourGigabytesIsExtendedAndReadByOthers) {
    ZRFxZipEntry hole;
    hole.sName = "hole.dat";
    hole.nSize = hole.nPackedSize = uint64_t{5} << 30;
    const std::string sHeader = ZRFxZipDirectory::LocalHeader(hole, 0);
    const std::string sRecord = ZRFxZipDirectory::CentralRecord(hole, 0);
    WriteWhole(m_sPath, sHeader);
    const uint64_t nDirectory = sHeader.size() + hole.nSize;
    std::filesystem::resize_file(m_sPath, nDirectory);
    std::ofstream(m_sPath, std::ios::binary | std::ios::app)
        << sRecord << ZRFxZipDirectory::End(1, nDirectory, sRecord.size(), "");
    ASSERT_TRUE(m_archive.Open(m_sPath, ZRZipAccessMode::UPDATE)) << m_archive.LastError();
    ASSERT_TRUE(AddText(&m_archive, "behind.dat", SmoothField(1000)));
    ASSERT_TRUE(AddText(&m_archive, "ZRF.xml", "<ZRF/>"));
    ASSERT_TRUE(m_archive.Commit()) << m_archive.LastError();
    ASSERT_TRUE(m_archive.Remove("behind.dat"));
    ASSERT_TRUE(AddText(&m_archive, "more.dat", SmoothField(500)));
    ASSERT_TRUE(m_archive.Close()) << m_archive.LastError();
    ASSERT_TRUE(m_archive.Open(m_sPath, ZRZipAccessMode::READ_ONLY)) << m_archive.LastError();
    std::string sData;
    EXPECT_TRUE(ReadText(&m_archive, "more.dat", &sData)) << m_archive.LastError();
    EXPECT_EQ(sData == SmoothField(500), true);
    EXPECT_FALSE(m_archive.Contains("behind.dat"));
    EXPECT_EQ(Shell("unzip -t " + m_sPath + " more.dat ZRF.xml"), 0);
    EXPECT_EQ(Shell("7z t " + m_sPath + " more.dat ZRF.xml"), 0);
    EXPECT_EQ(
        Shell("python3 -c \"import zipfile; zipfile.ZipFile('" + m_sPath + "').read('more.dat')\""),
        0);
}

TEST_F(ZRFxZipArchiveTest, ReadingChangesNothing) {
    WriteModel(m_sPath, SmallModel());
    FaultySystem system;
    EXPECT_EQ(ReadModel(m_sPath), SmallModel());
    EXPECT_TRUE(ZRFxZipArchive::Probe(m_sPath, "ZRF.xml"));
    EXPECT_FALSE(ZRFxZipArchive::Probe(m_sPath, "zrf.xml"));
    EXPECT_FALSE(ZRFxZipArchive::Probe(m_folder.File("none"), "ZRF.xml"));
    EXPECT_EQ(system.ChangeCount(), 0);
}

TEST_F(ZRFxZipArchiveTest, NothingOfAnEncryptedModelIsWrittenInTheClear) {
    FaultySystem system;
    system.KeepWrittenBytes();
    const std::string sMarker = "recognizable-node-label ";
    std::string sText;
    for (int i = 0; i < 2000; ++i) sText += sMarker;
    ASSERT_TRUE(m_archive.Open(m_sPath, ZRZipAccessMode::CREATE));
    ASSERT_TRUE(m_archive.SetPassword("geheim"));
    for (int i = 0; i < 5; ++i) {
        ASSERT_TRUE(ReplaceText(&m_archive, "labels.dat", sText, 0));
        ASSERT_TRUE(ReplaceText(&m_archive, "ZRF.xml", sMarker));
        ASSERT_TRUE(AddText(&m_archive, "state" + std::to_string(i), sText, i));
        ASSERT_TRUE(m_archive.Commit());
    }
    ASSERT_TRUE(m_archive.Close());
    EXPECT_GT(system.WrittenBytes().size(), 6 * sText.size());
    EXPECT_EQ(system.WrittenBytes().find(sMarker), std::string::npos);
    EXPECT_EQ(system.WrittenBytes().find("geheim"), std::string::npos);
}

}  // namespace
}  // namespace unstruct
