#include "container/ZRFxAppendFile.h"

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/FaultySystem.h"
#include "support/ZipTestFiles.h"

namespace unstruct {
namespace {

using ziptest::ReadWhole;
using ziptest::WriteWhole;

class ZRFxAppendFileTest : public testing::Test {
protected:
    ZRFxAppendFileTest() { WriteWhole(m_sPath, m_sOld); }

    static std::string Committed(ZRFxZipStorage* pFile) {
        std::string s(pFile->Size(), '\0');
        EXPECT_TRUE(pFile->Read(0, s.data(), s.size())) << pFile->Error().sText;
        return s;
    }
    static bool WriteText(ZRFxZipStorage* pFile, const std::string& s) {
        return pFile->Write(s.data(), s.size());
    }
    std::string SeenByReader() {
        ZRFxAppendFile file;
        EXPECT_TRUE(file.Open(m_sPath, ZRZipAccessMode::READ_ONLY)) << file.Error().sText;
        return Committed(&file);
    }

    ziptest::TemporaryFolder m_folder;
    const std::string m_sPath = m_folder.File("model.zrfx");
    const std::string m_sOld = ziptest::RandomBytes(100000, 7);
    // Larger than the write buffer.
    const std::string m_sNew = ziptest::RandomBytes(3 << 20, 8);
};

TEST_F(ZRFxAppendFileTest, CommittedBytesStayAndOthersAreTakenBack) {
    ZRFxAppendFile writer;
    ASSERT_TRUE(writer.Open(m_sPath, ZRZipAccessMode::UPDATE)) << writer.Error().sText;
    ZRFxAppendFile reader;
    ASSERT_TRUE(reader.Open(m_sPath, ZRZipAccessMode::READ_ONLY));
    std::string sExpected = m_sOld;
    for (const std::string& sNew : {m_sNew, std::string("short"), m_sNew + "x"}) {
        ASSERT_TRUE(WriteText(&writer, sNew + sNew));
        writer.Rewind(writer.Position() - sNew.size());
        std::string sRead(sNew.size(), '\0');
        ASSERT_TRUE(writer.Read(writer.Size(), sRead.data(), sRead.size())) << writer.Error().sText;
        EXPECT_EQ(sRead == sNew, true);
        ASSERT_EQ(writer.EndCommit(), ZRFxCommitResult::kDone) << writer.Error().sText;
        sExpected += sNew;
        EXPECT_EQ(SeenByReader() == sExpected, true);
        EXPECT_EQ(Committed(&reader) == m_sOld, true);
        ASSERT_TRUE(WriteText(&writer, m_sNew));
        writer.RollBack();
        EXPECT_EQ(ReadWhole(m_sPath) == sExpected, true);
    }
    ASSERT_TRUE(reader.Extend());
    EXPECT_EQ(Committed(&reader) == sExpected, true);
    EXPECT_EQ(m_folder.FileCount(), 1u);
}

TEST_F(ZRFxAppendFileTest, FileDoesNotEndWithWhatIsWrittenUntilMoreFollows) {
    ZRFxAppendFile writer;
    ASSERT_TRUE(writer.Open(m_sPath, ZRZipAccessMode::UPDATE));
    for (const size_t nSize :
         {size_t{1} << 20, (size_t{1} << 20) + 1, size_t{5} << 20, size_t{7}}) {
        ASSERT_TRUE(WriteText(&writer, std::string(nSize, 'x')));
        EXPECT_LT(std::filesystem::file_size(m_sPath), writer.Position());
    }
}

TEST_F(ZRFxAppendFileTest, TornEndIsCutOffByTheFirstWriteAndNotBefore) {
    for (const ZRZipAccessMode eMode : {ZRZipAccessMode::READ_ONLY, ZRZipAccessMode::UPDATE}) {
        ZRFxAppendFile file;
        ASSERT_TRUE(file.Open(m_sPath, eMode));
        file.CutTo(60000);
        EXPECT_EQ(Committed(&file), m_sOld.substr(0, 60000));
        EXPECT_EQ(ReadWhole(m_sPath), m_sOld);
        if (eMode == ZRZipAccessMode::READ_ONLY) continue;
        ASSERT_TRUE(WriteText(&file, "new"));
        EXPECT_EQ(ReadWhole(m_sPath), m_sOld.substr(0, 60000));
        ASSERT_EQ(file.EndCommit(), ZRFxCommitResult::kDone);
        EXPECT_EQ(ReadWhole(m_sPath), m_sOld.substr(0, 60000) + "new");
    }
}

TEST_F(ZRFxAppendFileTest, CreatedFileIsPrivateUntilItTakesTheNameAndTheModeOfTheOld) {
    struct SeesModes : ziptest::FaultySystem {
        int Open(const char* sPath, int nFlags, mode_t nMode) override {
            if ((nFlags & O_CREAT) != 0 && std::string(sPath).ends_with(".rewrite")) {
                nCreated = nMode;
            }
            return FaultySystem::Open(sPath, nFlags, nMode);
        }
        mode_t nCreated = 0;
    } system;
    chmod(m_sPath.c_str(), 0640);
    ZRFxAppendFile writer;
    ASSERT_TRUE(writer.Open(m_sPath, ZRZipAccessMode::CREATE) && WriteText(&writer, m_sNew));
    EXPECT_EQ(system.nCreated, 0600u);
    EXPECT_EQ(SeenByReader(), m_sOld);
    ASSERT_EQ(writer.EndCommit(), ZRFxCommitResult::kDone);
    EXPECT_EQ(SeenByReader() == m_sNew, true);
    struct stat status {};
    stat(m_sPath.c_str(), &status);
    EXPECT_EQ(status.st_mode & 07777, 0640u);
    EXPECT_EQ(m_folder.FileCount(), 1u);
}

TEST_F(ZRFxAppendFileTest, WhatLiesUnderTheTemporaryNameDoesNotStopAWriter) {
    const std::string sTemporary = m_sPath + ".rewrite";
    const std::string sOther = m_folder.File("other");
    WriteWhole(sOther, "someone else's");
    const std::vector<std::function<void()>> aObstacles = {
        [&] { mkfifo(sTemporary.c_str(), 0600); },
        [&] { symlink(sOther.c_str(), sTemporary.c_str()); },
        [&] { std::filesystem::create_directory(sTemporary); },
        [&] { WriteWhole(sTemporary, "left"); }};
    for (const auto& obstruct : aObstacles) {
        std::filesystem::remove(sTemporary);
        obstruct();
        ZRFxAppendFile writer;
        ASSERT_TRUE(writer.Open(m_sPath, ZRZipAccessMode::CREATE)) << writer.Error().sText;
        ASSERT_TRUE(WriteText(&writer, "new")) << writer.Error().sText;
        ASSERT_EQ(writer.EndCommit(), ZRFxCommitResult::kDone) << writer.Error().sText;
        EXPECT_EQ(SeenByReader(), "new");
        EXPECT_EQ(ReadWhole(sOther), "someone else's");
    }
}

TEST_F(ZRFxAppendFileTest, WhatIsNoRegularFileIsRefusedAtOnce) {
    const std::string sPipe = m_folder.File("pipe.zrfx");
    ASSERT_EQ(mkfifo(sPipe.c_str(), 0600), 0);
    for (const std::string& sPath : {sPipe, std::string("/dev/null"), std::string("/dev/tty")}) {
        for (ZRZipAccessMode eMode :
             {ZRZipAccessMode::READ_ONLY, ZRZipAccessMode::UPDATE, ZRZipAccessMode::CREATE}) {
            ZRFxAppendFile file;
            EXPECT_FALSE(file.Open(sPath, eMode)) << sPath;
            EXPECT_EQ(file.Error().sText, "not a regular file") << sPath;
        }
    }
}

TEST_F(ZRFxAppendFileTest, RelativeNameIsResolvedWhenItIsOpened) {
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(m_folder.File("."));
    for (const char* sName : {"model.zrfx", "new.zrfx"}) {
        ZRFxAppendFile writer;
        const ZRZipAccessMode eMode =
            ReadWhole(sName).empty() ? ZRZipAccessMode::CREATE : ZRZipAccessMode::UPDATE;
        ASSERT_TRUE(writer.Open(sName, eMode)) << writer.Error().sText;
        std::filesystem::current_path("/");
        EXPECT_TRUE(WriteText(&writer, "new"));
        EXPECT_EQ(writer.EndCommit(), ZRFxCommitResult::kDone) << writer.Error().sText;
        std::filesystem::current_path(m_folder.File("."));
    }
    std::filesystem::current_path(before);
    EXPECT_EQ(SeenByReader(), m_sOld + "new");
    EXPECT_EQ(ReadWhole(m_folder.File("new.zrfx")), "new");
}

TEST_F(ZRFxAppendFileTest, SecondWriterIsRefusedAndReadersAreNot) {
    ZRFxAppendFile writer;
    ASSERT_TRUE(writer.Open(m_sPath, ZRZipAccessMode::CREATE));
    for (const bool bCommitted : {false, true}) {
        if (bCommitted) {
            ASSERT_TRUE(WriteText(&writer, "new"));
            ASSERT_EQ(writer.EndCommit(), ZRFxCommitResult::kDone);
        }
        for (ZRZipAccessMode eMode : {ZRZipAccessMode::UPDATE, ZRZipAccessMode::CREATE}) {
            ZRFxAppendFile second;
            EXPECT_FALSE(second.Open(m_sPath, eMode));
            EXPECT_EQ(second.Error().sText, "the file is open for writing elsewhere");
        }
        EXPECT_EQ(SeenByReader(), bCommitted ? "new" : m_sOld);
    }
}

TEST_F(ZRFxAppendFileTest, LinkLeadsToTheFileItself) {
    const std::string sLink = m_folder.File("link.zrfx");
    ASSERT_EQ(symlink(m_sPath.c_str(), sLink.c_str()), 0);
    ZRFxAppendFile writer;
    ASSERT_TRUE(writer.Open(sLink, ZRZipAccessMode::CREATE));
    ASSERT_TRUE(WriteText(&writer, "new"));
    ASSERT_EQ(writer.EndCommit(), ZRFxCommitResult::kDone);
    EXPECT_EQ(SeenByReader(), "new");
    EXPECT_TRUE(std::filesystem::is_symlink(sLink));
}

TEST_F(ZRFxAppendFileTest, VanishedOrReplacedFileFailsTheCommit) {
    ZRFxAppendFile writer;
    ASSERT_TRUE(writer.Open(m_sPath, ZRZipAccessMode::UPDATE));
    ASSERT_TRUE(WriteText(&writer, "new"));
    std::filesystem::remove(m_sPath);
    EXPECT_EQ(writer.EndCommit(), ZRFxCommitResult::kFailed);
    EXPECT_EQ(writer.Error().sText, "the file was removed or replaced by someone else");
    WriteWhole(m_sPath, "someone else's");
    const std::unique_ptr<ZRFxZipStorage> pSuccessor = writer.Successor();
    EXPECT_FALSE(WriteText(pSuccessor.get(), "new"));
    EXPECT_EQ(ReadWhole(m_sPath), "someone else's");
}

// The system takes pages for written after a flush of them has failed.
TEST_F(ZRFxAppendFileTest, PagesWhoseFlushFailedAreWrittenAnew) {
    struct ForgetsPages : ziptest::FaultySystem {
        int Flush(int nFile) override {
            if (!bFail) return FaultySystem::Flush(nFile);
            bFail = false;
            errno = EIO;
            return -1;
        }
        bool bFail = false;
    } system;
    ZRFxAppendFile writer;
    ASSERT_TRUE(writer.Open(m_sPath, ZRZipAccessMode::UPDATE) && WriteText(&writer, m_sNew));
    ASSERT_EQ(writer.EndCommit(), ZRFxCommitResult::kDone);
    system.bFail = true;
    ASSERT_TRUE(WriteText(&writer, "end"));
    EXPECT_FALSE(writer.Flush());
    EXPECT_EQ(writer.Error().sText, "cannot flush: Input/output error");
    const uint64_t nWritten = system.WrittenCount();
    ASSERT_EQ(writer.EndCommit(), ZRFxCommitResult::kDone) << writer.Error().sText;
    EXPECT_EQ(system.WrittenCount(), nWritten + 3);
    EXPECT_EQ(SeenByReader() == m_sOld + m_sNew + "end", true);
}

}  // namespace
}  // namespace unstruct
