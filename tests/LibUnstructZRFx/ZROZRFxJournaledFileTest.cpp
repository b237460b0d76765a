#include "ZROZRFxJournaledFile.h"

#include <sys/wait.h>

#include "support/FaultySystem.h"
#include "support/ZipTestFiles.h"

namespace unstruct {
namespace {

using ziptest::ReadWhole;
using ziptest::WriteWhole;

class ZRFxJournaledFileTest : public testing::Test {
protected:
    ZRFxJournaledFileTest() { WriteWhole(m_sPath, m_sOld); }

    static std::string Committed(ZRFxZipStorage* pFile) {
        std::string s(pFile->Size(), '\0');
        EXPECT_TRUE(pFile->Read(0, s.data(), s.size())) << pFile->Error();
        return s;
    }
    static bool WriteText(ZRFxZipStorage* pFile, const std::string& s) {
        return pFile->Write(s.data(), s.size());
    }
    // A writer that dies within a commit that wrote sNew from nUnchanged on.
    void DieWhileCommitting(uint64_t nUnchanged, const std::string& sNew) {
        const pid_t nChild = fork();
        if (nChild == 0) {
            ZRFxJournaledFile file;
            const bool bWritten = file.Open(m_sPath, ZRFxOpenMode::kUpdate) &&
                                  file.BeginCommit(nUnchanged) && WriteText(&file, sNew);
            _exit(bWritten ? 0 : 1);
        }
        int nStatus = 0;
        ASSERT_EQ(waitpid(nChild, &nStatus, 0), nChild);
        ASSERT_EQ(nStatus, 0);
    }
    std::string SeenByReader() {
        ZRFxJournaledFile file;
        EXPECT_TRUE(file.Open(m_sPath, ZRFxOpenMode::kReadOnly)) << file.Error();
        return Committed(&file);
    }
    std::string SeenByWriter() {
        ZRFxJournaledFile file;
        EXPECT_TRUE(file.Open(m_sPath, ZRFxOpenMode::kUpdate)) << file.Error();
        return Committed(&file);
    }

    ziptest::TemporaryFolder m_folder;
    const std::string m_sPath = m_folder.File("model.zrfx");
    const std::string m_sJournal = m_sPath + ".journal";
    const std::string m_sOld = ziptest::RandomBytes(100000, 7);
    // Larger than the write buffer, so that the torn file holds some of it.
    const std::string m_sNew = ziptest::RandomBytes(3 << 20, 8);
};

TEST_F(ZRFxJournaledFileTest, CommitReplacesTheEndAndReadersSeeItOnlyThen) {
    ZRFxJournaledFile writer;
    ASSERT_TRUE(writer.Open(m_sPath, ZRFxOpenMode::kUpdate)) << writer.Error();
    for (const std::string& sNew : {m_sNew, std::string("short")}) {
        const std::string sBefore = Committed(&writer);
        ASSERT_TRUE(writer.BeginCommit(60000)) << writer.Error();
        ASSERT_TRUE(WriteText(&writer, sNew));
        EXPECT_EQ(Committed(&writer), sBefore);
        EXPECT_EQ(SeenByReader(), sBefore);
        ASSERT_EQ(writer.EndCommit(), ZRFxCommitResult::kDone);
        EXPECT_EQ(Committed(&writer), m_sOld.substr(0, 60000) + sNew);
        EXPECT_EQ(SeenByReader(), m_sOld.substr(0, 60000) + sNew);
        EXPECT_EQ(m_folder.FileCount(), 1u);
    }
}

TEST_F(ZRFxJournaledFileTest, RollBackRestoresTheLastCommit) {
    ZRFxJournaledFile writer;
    ASSERT_TRUE(writer.Open(m_sPath, ZRFxOpenMode::kUpdate));
    ASSERT_TRUE(writer.BeginCommit(10) && WriteText(&writer, m_sNew));
    writer.RollBack();
    EXPECT_EQ(ReadWhole(m_sPath), m_sOld);
    ASSERT_TRUE(writer.BeginRewrite() && WriteText(&writer, m_sNew));
    writer.RollBack();
    EXPECT_EQ(ReadWhole(m_sPath), m_sOld);
    EXPECT_EQ(m_folder.FileCount(), 1u);
}

TEST_F(ZRFxJournaledFileTest, TornCommitIsUndoneByWriterAndUnseenByReader) {
    for (uint64_t nUnchanged : {0u, 1u, 50000u, 100000u}) {
        DieWhileCommitting(nUnchanged, m_sNew);
        const std::string sTorn = ReadWhole(m_sPath);
        ASSERT_NE(sTorn, m_sOld);
        EXPECT_EQ(SeenByReader(), m_sOld) << nUnchanged;
        EXPECT_EQ(ReadWhole(m_sPath), sTorn) << "the reader changed the file";
        EXPECT_EQ(SeenByWriter(), m_sOld) << nUnchanged;
        EXPECT_EQ(ReadWhole(m_sPath), m_sOld) << nUnchanged;
        EXPECT_EQ(m_folder.FileCount(), 1u);
    }
}

TEST_F(ZRFxJournaledFileTest, TornCommitIsUndoneEvenAfterARecoveryThatFailed) {
    DieWhileCommitting(50000, m_sNew);
    const std::string sTorn = ReadWhole(m_sPath);
    const std::string sJournal = ReadWhole(m_sJournal);
    for (int nCall = 1;; ++nCall) {
        WriteWhole(m_sPath, sTorn);
        WriteWhole(m_sJournal, sJournal);
        ziptest::FaultySystem faulty;
        faulty.FailCall(nCall, EIO, ziptest::FaultySystem::Failing::kFromThenOn);
        for (ZRFxOpenMode eMode : {ZRFxOpenMode::kReadOnly, ZRFxOpenMode::kUpdate}) {
            ZRFxJournaledFile file;
            const bool bOpened = file.Open(m_sPath, eMode);
            EXPECT_EQ(bOpened, file.Error().empty());
        }
        const bool bFailed = faulty.HasFailed();
        faulty.Recover();
        ASSERT_EQ(SeenByReader() == m_sOld, true) << nCall;
        ASSERT_EQ(SeenByWriter() == m_sOld, true) << nCall;
        if (!bFailed) break;
    }
}

TEST_F(ZRFxJournaledFileTest, ReaderKeepsTheSavedEndAfterTheWriterHasFinished) {
    ZRFxJournaledFile writer;
    ASSERT_TRUE(writer.Open(m_sPath, ZRFxOpenMode::kUpdate));
    ASSERT_TRUE(writer.BeginCommit(50000) && WriteText(&writer, m_sNew));
    ZRFxJournaledFile reader;
    ASSERT_TRUE(reader.Open(m_sPath, ZRFxOpenMode::kReadOnly));
    ASSERT_EQ(writer.EndCommit(), ZRFxCommitResult::kDone);
    ASSERT_TRUE(writer.BeginCommit(50000) && WriteText(&writer, "more"));
    ASSERT_EQ(writer.EndCommit(), ZRFxCommitResult::kDone);
    EXPECT_TRUE(reader.IsConsistent());
    EXPECT_EQ(Committed(&reader), m_sOld);
}

TEST_F(ZRFxJournaledFileTest, JournalThatWasNotFinishedIsIgnoredAndRemoved) {
    DieWhileCommitting(50000, m_sNew);
    const std::string sJournal = ReadWhole(m_sJournal);
    const std::string asJournals[] = {"",
                                      sJournal.substr(0, 20),
                                      sJournal.substr(0, 40),
                                      sJournal.substr(0, sJournal.size() - 1),
                                      ziptest::WithFlippedByte(sJournal, 3),
                                      ziptest::WithFlippedByte(sJournal, 25),
                                      ziptest::WithFlippedByte(sJournal, 1000)};
    for (const std::string& sBroken : asJournals) {
        WriteWhole(m_sPath, m_sOld);
        WriteWhole(m_sJournal, sBroken);
        EXPECT_EQ(SeenByReader(), m_sOld) << sBroken.size();
        EXPECT_EQ(SeenByWriter(), m_sOld) << sBroken.size();
        EXPECT_EQ(m_folder.FileCount(), 1u);
    }
}

TEST_F(ZRFxJournaledFileTest, JournalOfAnotherFileIsIgnored) {
    DieWhileCommitting(50000, m_sNew);
    const std::string sOther = ziptest::RandomBytes(200000, 99);
    WriteWhole(m_sPath, sOther);
    EXPECT_EQ(SeenByReader(), sOther);
    EXPECT_EQ(SeenByWriter(), sOther);
}

TEST_F(ZRFxJournaledFileTest, SecondWriterIsRefusedAndReadersAreNot) {
    ZRFxJournaledFile writer;
    ASSERT_TRUE(writer.Open(m_sPath, ZRFxOpenMode::kUpdate));
    ASSERT_TRUE(writer.BeginRewrite() && WriteText(&writer, "new"));
    ASSERT_EQ(writer.EndCommit(), ZRFxCommitResult::kDone);
    for (ZRFxOpenMode eMode : {ZRFxOpenMode::kUpdate, ZRFxOpenMode::kCreate}) {
        ZRFxJournaledFile second;
        EXPECT_FALSE(second.Open(m_sPath, eMode));
        EXPECT_EQ(second.Error(), "the file is open for writing elsewhere");
    }
    EXPECT_EQ(SeenByReader(), "new");
}

TEST_F(ZRFxJournaledFileTest, OpenersThroughALinkUseTheSameJournal) {
    DieWhileCommitting(50000, m_sNew);
    const std::string sLink = m_folder.File("link.zrfx");
    ASSERT_EQ(symlink(m_sPath.c_str(), sLink.c_str()), 0);
    ZRFxJournaledFile reader;
    ASSERT_TRUE(reader.Open(sLink, ZRFxOpenMode::kReadOnly));
    EXPECT_EQ(Committed(&reader), m_sOld);
}

TEST_F(ZRFxJournaledFileTest, VanishedOrReplacedFileFailsTheCommit) {
    ZRFxJournaledFile writer;
    ASSERT_TRUE(writer.Open(m_sPath, ZRFxOpenMode::kUpdate));
    std::filesystem::remove(m_sPath);
    EXPECT_FALSE(writer.BeginCommit(10));
    EXPECT_EQ(writer.Error(), "the file was removed or replaced by someone else");
    WriteWhole(m_sPath, "someone else's");
    EXPECT_FALSE(writer.BeginRewrite());
    EXPECT_EQ(ReadWhole(m_sPath), "someone else's");
}

TEST_F(ZRFxJournaledFileTest, NewFileThatWasNeverCommittedDisappears) {
    const std::string sNewPath = m_folder.File("new.zrfx");
    {
        ZRFxJournaledFile writer;
        ASSERT_TRUE(writer.Open(sNewPath, ZRFxOpenMode::kCreate));
        ASSERT_TRUE(writer.BeginRewrite() && WriteText(&writer, "x"));
    }
    EXPECT_EQ(m_folder.FileCount(), 1u);
}

TEST_F(ZRFxJournaledFileTest, TornEndThatCannotBeRestoredIsRestoredLater) {
    ziptest::FaultySystem faulty;
    ZRFxJournaledFile writer;
    ASSERT_TRUE(writer.Open(m_sPath, ZRFxOpenMode::kUpdate));
    ASSERT_TRUE(writer.BeginCommit(50000) && WriteText(&writer, m_sNew));
    faulty.FailCall(1, ENOSPC, ziptest::FaultySystem::Failing::kFromThenOn);
    EXPECT_EQ(writer.EndCommit(), ZRFxCommitResult::kFailed);
    EXPECT_EQ(writer.Error(), "cannot flush: No space left on device");
    writer.RollBack();
    EXPECT_FALSE(writer.BeginCommit(50000));
    faulty.Recover();
    EXPECT_EQ(Committed(&writer), m_sOld);
    ASSERT_TRUE(writer.BeginCommit(50000)) << writer.Error();
    ASSERT_TRUE(WriteText(&writer, "end"));
    ASSERT_EQ(writer.EndCommit(), ZRFxCommitResult::kDone);
    EXPECT_EQ(ReadWhole(m_sPath), m_sOld.substr(0, 50000) + "end");
}

}  // namespace
}  // namespace unstruct
