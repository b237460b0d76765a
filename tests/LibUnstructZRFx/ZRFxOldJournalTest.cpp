// Files that a writer of the version before left with a journal.
#include "container/ZRFxOldJournal.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <functional>

#include "ZRByteOrder.h"
#include "support/FaultySystem.h"
#include "support/ZipArchives.h"

namespace unstruct {
namespace {

using namespace ziptest;

const std::string kNoArchive = "not a ZIP archive, or its end is missing";

// Names and contents before and after a commit; the documents stand at the end of the file.
Model OldModel() {
    return {{"A.dat", RandomBytes(9000, 3)},
            {"B.dat", SmoothField(3000)},
            {"Z.xml", RandomBytes(3000, 4)},
            {"ZRF.xml", "<old/>"}};
}
Model GrownModel() {
    Model model = OldModel();
    model["C.dat"] = RandomBytes(20000, 5);
    model["ZRF.xml"] = "<new/>";
    return model;
}
Model ShrunkModel() {
    return {{"A.dat", RandomBytes(9000, 3)}, {"B.dat", SmoothField(3000)}, {"ZRF.xml", "<less/>"}};
}

class ZRFxOldJournalTest : public testing::Test {
protected:
    // What a commit of the version before began and ended with, and its journal.
    struct Commit {
        std::string sOld;
        std::string sNew;
        size_t nUnchanged = 0;
        std::string sJournal;

        // The file when nWritten bytes of the new end were written.
        std::string Torn(size_t nWritten) const {
            const size_t nEnd = std::min(nUnchanged + nWritten, sNew.size());
            return sNew.substr(0, nEnd) + (nEnd < sOld.size() ? sOld.substr(nEnd) : "");
        }
        size_t NewLength() const { return sNew.size() - nUnchanged; }
    };

    static std::string Journal(const std::string& sOld, size_t nUnchanged) {
        const std::string sSaved = sOld.substr(nUnchanged);
        const size_t nChecked = std::min<size_t>(nUnchanged, 4096);
        std::string s = "ZRFXJRNL";
        AppendLittleEndian(&s, uint32_t{1});
        AppendLittleEndian(&s, uint64_t{sOld.size()});
        AppendLittleEndian(&s, uint64_t{nUnchanged});
        AppendLittleEndian(&s, ZRFxCodec::Crc32(0, sSaved.data(), sSaved.size()));
        AppendLittleEndian(&s, ZRFxCodec::Crc32(0, &sOld[nUnchanged - nChecked], nChecked));
        AppendLittleEndian(&s, ZRFxCodec::Crc32(0, s.data(), s.size()));
        return s + sSaved;
    }
    static void Change(ZRFxZipArchive* pArchive, const Model& from, const Model& to) {
        for (const auto& [sName, sData] : from) {
            EXPECT_TRUE(to.contains(sName) || pArchive->Remove(sName));
        }
        for (const auto& [sName, sData] : to) {
            if (from.contains(sName) && from.at(sName) == sData) continue;
            EXPECT_TRUE(ReplaceText(pArchive, sName, sData)) << pArchive->LastError();
        }
    }
    // Entries that stay are copied as they are, so that both files begin alike.
    Commit CommitTo(const Model& to) const {
        const TemporaryFolder folder;
        WriteModel(folder.File("old"), OldModel());
        ZRFxZipArchive archive;
        EXPECT_TRUE(archive.Open(folder.File("old"), ZRZipAccessMode::UPDATE));
        Change(&archive, OldModel(), to);
        EXPECT_TRUE(archive.CloseAs(folder.File("new"))) << archive.LastError();
        Commit commit{ReadWhole(folder.File("old")), ReadWhole(folder.File("new")), 0, {}};
        const auto differing =
            std::mismatch(commit.sOld.begin(), commit.sOld.end(), commit.sNew.begin());
        const auto nCommon = static_cast<size_t>(differing.first - commit.sOld.begin());
        commit.nUnchanged = commit.sOld.rfind("PK\x03\x04", nCommon);
        commit.sJournal = Journal(commit.sOld, commit.nUnchanged);
        return commit;
    }

    void Put(const std::string& sFile, const std::string& sJournal) const {
        WriteWhole(m_sPath, sFile);
        WriteWhole(m_sJournal, sJournal);
    }
    // Empty when it opens.
    std::string OpenedBy(ZRZipAccessMode eMode, Model* pModel = nullptr) const {
        ZRFxZipArchive archive;
        const bool bOpened = archive.Open(m_sPath, eMode);
        if (bOpened && pModel) *pModel = ContentOf(&archive);
        return bOpened ? "" : archive.LastError();
    }
    std::string Message(const std::string& sCause) const {
        return "'" + m_sPath + "': " + sCause + ".";
    }
    std::string Refusal() const {
        return Message("the file is damaged, and nothing proves that '" + m_sJournal +
                       "' belongs to it; move that away to open the file as it is");
    }
    // Reads and appends, and leaves the file alone in its folder.
    void ExpectGood(const Model& model, size_t nFilesLeft = 1) {
        EXPECT_EQ(ReadModel(m_sPath), model);
        ZRFxZipArchive archive;
        ASSERT_TRUE(archive.Open(m_sPath, ZRZipAccessMode::UPDATE)) << archive.LastError();
        EXPECT_EQ(m_folder.FileCount(), nFilesLeft);
        ASSERT_TRUE(AddText(&archive, "more.dat", "more") && archive.Close());
        Model extended = model;
        extended["more.dat"] = "more";
        EXPECT_EQ(ReadModel(m_sPath), extended);
    }

    TemporaryFolder m_folder;
    const std::string m_sPath = m_folder.File("model.zrfx");
    const std::string m_sJournal = m_sPath + ".journal";
};

TEST_F(ZRFxOldJournalTest, TornFileShowsItsLastCommitAndIsRestoredByAWriter) {
    for (const Model& to : {GrownModel(), ShrunkModel()}) {
        const Commit commit = CommitTo(to);
        ASSERT_GT(commit.nUnchanged, 9000u);
        for (size_t nStep = 0; nStep <= 200; ++nStep) {
            // The last steps are single bytes of the new directory and its end.
            const size_t nWritten =
                nStep < 100 ? commit.NewLength() * nStep / 110 : commit.NewLength() - (200 - nStep);
            const std::string sTorn = commit.Torn(nWritten);
            Put(sTorn, commit.sJournal);
            ASSERT_EQ(ReadModel(m_sPath), sTorn == commit.sNew ? to : OldModel()) << nWritten;
            ASSERT_EQ(ReadWhole(m_sPath) == sTorn, true) << nWritten;
            ASSERT_EQ(ReadWhole(m_sJournal) == commit.sJournal, true) << nWritten;
            ASSERT_EQ(OpenedBy(ZRZipAccessMode::UPDATE), "");
            ASSERT_EQ(ReadWhole(m_sPath) == (sTorn == commit.sNew ? sTorn : commit.sOld), true);
            ASSERT_EQ(m_folder.FileCount(), 1u);
        }
        Put(commit.Torn(100), commit.sJournal);
        ExpectGood(OldModel());
    }
}

// After a power failure any part of what was written may be missing.
TEST_F(ZRFxOldJournalTest, FileThatEndsAsBeforeButWasWrittenOverIsRestored) {
    const Commit commit = CommitTo(GrownModel());
    Put(WithFlippedByte(commit.sOld, commit.nUnchanged + 200), commit.sJournal);
    EXPECT_EQ(ReadModel(m_sPath), OldModel());
    ExpectGood(OldModel());
}

TEST_F(ZRFxOldJournalTest, RestoringThatFailsCanBeRepeated) {
    for (const Model& to : {GrownModel(), ShrunkModel()}) {
        const Commit commit = CommitTo(to);
        for (const auto eFailing :
             {FaultySystem::Failing::kOnce, FaultySystem::Failing::kFromThenOn}) {
            bool bFailed = true;
            for (int nCall = 1; bFailed; ++nCall) {
                Put(commit.Torn(1000), commit.sJournal);
                for (const auto eMode : {ZRZipAccessMode::READ_ONLY, ZRZipAccessMode::UPDATE}) {
                    FaultySystem system;
                    Model seen;
                    system.FailCall(nCall, EIO, eFailing);
                    const std::string sError = OpenedBy(eMode, &seen);
                    bFailed = system.HasFailed();
                    system.Recover();
                    // An entry that could not be read says so.
                    ASSERT_TRUE(bFailed || sError.empty()) << sError;
                    ASSERT_TRUE(!sError.empty() || seen.size() == OldModel().size()) << nCall;
                    ASSERT_EQ(ReadModel(m_sPath), OldModel()) << nCall << ": " << sError;
                }
                ASSERT_EQ(OpenedBy(ZRZipAccessMode::UPDATE), "") << nCall;
                // Where the torn end could not be cut off, it is left to the first that writes.
                ASSERT_EQ(ReadWhole(m_sPath).starts_with(commit.sOld), true) << nCall;
                ASSERT_EQ(m_folder.FileCount(), 1u);
                ASSERT_EQ(ReadModel(m_sPath), OldModel()) << nCall;
            }
        }
    }
}

TEST_F(ZRFxOldJournalTest, JournalThatCannotBeUsedIsNamed) {
    struct RefusesJournals : FaultySystem {
        int Open(const char* sPath, int nFlags, mode_t nMode) override {
            const bool bRefused = bJournals && std::string(sPath).ends_with(".journal");
            return bRefused ? (errno = EACCES, -1) : FaultySystem::Open(sPath, nFlags, nMode);
        }
        int Truncate(int, off_t) override { return errno = EIO, -1; }
        bool bJournals = true;
    };
    const Commit commit = CommitTo(GrownModel());
    RefusesJournals system;
    const std::string sRefused = Message("cannot open '" + m_sJournal + "': Permission denied");
    Put(commit.Torn(1000), commit.sJournal);
    EXPECT_EQ(OpenedBy(ZRZipAccessMode::READ_ONLY), sRefused);
    EXPECT_EQ(OpenedBy(ZRZipAccessMode::UPDATE), sRefused);
    system.bJournals = false;
    EXPECT_EQ(OpenedBy(ZRZipAccessMode::UPDATE), Message("cannot restore the last commit from '" +
                                                         m_sJournal + "': Input/output error"));
    Put(commit.sNew, commit.sJournal);
    system.bJournals = true;
    EXPECT_EQ(ReadModel(m_sPath), GrownModel());
    EXPECT_EQ(OpenedBy(ZRZipAccessMode::UPDATE), sRefused);
}

// A file that cannot be read for once does not turn back.
TEST_F(ZRFxOldJournalTest, ReadErrorOfAGoodFileDoesNotRestoreAnOlderState) {
    const Commit commit = CommitTo(GrownModel());
    bool bFailed = true;
    for (int nCall = 1; bFailed; ++nCall) {
        Put(commit.sNew, commit.sJournal);
        FaultySystem system;
        system.FailCall(nCall, EIO, FaultySystem::Failing::kOnce);
        OpenedBy(ZRZipAccessMode::UPDATE);
        bFailed = system.HasFailed();
        system.Recover();
        ASSERT_EQ(ReadWhole(m_sPath) == commit.sNew, true) << nCall;
    }
}

TEST_F(ZRFxOldJournalTest, JournalThatWasNotFinishedIsIgnoredAndRemoved) {
    const Commit commit = CommitTo(GrownModel());
    const std::string& sJournal = commit.sJournal;
    for (const std::string& sBroken :
         {std::string(), sJournal.substr(0, 5), sJournal.substr(0, 20), sJournal.substr(0, 40),
          sJournal.substr(0, sJournal.size() - 1), std::string(40, '\0') + sJournal.substr(40),
          WithFlippedByte(sJournal, 25), WithFlippedByte(sJournal, 60)}) {
        Put(commit.Torn(1000), sBroken);
        for (const auto eMode : {ZRZipAccessMode::READ_ONLY, ZRZipAccessMode::UPDATE}) {
            EXPECT_EQ(OpenedBy(eMode), Message(kNoArchive));
            EXPECT_EQ(ReadWhole(m_sJournal) == sBroken, true);
        }
        Put(commit.sOld, sBroken);
        ExpectGood(OldModel());
    }
}

TEST_F(ZRFxOldJournalTest, GoodFileUnderTheNameIsReadAndAppendedToAsItStands) {
    const Commit commit = CommitTo(GrownModel());
    const std::string sTorn = "PK\x03\x04 torn";
    std::vector<std::pair<std::string, Model>> aGood = {
        {CommitTo(ShrunkModel()).sNew, ShrunkModel()}, {commit.sOld + sTorn, OldModel()}};
    std::string sContinued;
    // A run that went on from either state, with what it leaves when it is killed.
    for (auto [sFile, model] :
         {std::pair(commit.sOld, OldModel()), std::pair(commit.sNew, GrownModel())}) {
        aGood.push_back({sFile, model});
        const TemporaryFolder elsewhere;
        WriteWhole(elsewhere.File("run"), sFile);
        ZRFxZipArchive run;
        ASSERT_TRUE(run.Open(elsewhere.File("run"), ZRZipAccessMode::UPDATE));
        for (int i = 1; i <= 40; ++i) {
            const std::string sName = "S" + std::to_string(i) + ".dat";
            model[sName] = RandomBytes(3000, 8);
            ASSERT_TRUE(AddText(&run, sName, model[sName]) && run.Commit()) << run.LastError();
            if (i % 20 != 1 && i < 39) continue;
            for (const std::string& sEnd : {std::string(), sTorn}) {
                aGood.push_back({ReadWhole(elsewhere.File("run")) + sEnd, model});
            }
        }
        ASSERT_TRUE(run.Close());
        aGood.push_back({ReadWhole(elsewhere.File("run")), model});
        if (sContinued.empty()) sContinued = aGood.back().first;
    }
    for (const auto& [sFile, model] : aGood) {
        SCOPED_TRACE(sFile.size());
        Put(commit.Torn(1000), commit.sJournal);
        WriteWhole(m_sPath, sFile);  // As cp does.
        ExpectGood(model);
        Put(commit.Torn(1000), commit.sJournal);
        WriteWhole(m_sPath + ".tmp", sFile);
        std::filesystem::rename(m_sPath + ".tmp", m_sPath);
        ExpectGood(model);
    }
    // One that went on from the old state has no need of the journal, damaged or not.
    Put(WithFlippedByte(sContinued, commit.sOld.size() + 300), commit.sJournal);
    EXPECT_EQ(OpenedBy(ZRZipAccessMode::UPDATE), "");
    for (const size_t nUnchanged : {size_t{0}, commit.nUnchanged}) {
        WriteModel(m_sPath, SmallModel());
        WriteWhole(m_sJournal, Journal(commit.sOld, nUnchanged));
        ExpectGood(SmallModel());
    }
}

TEST_F(ZRFxOldJournalTest, InDoubtAWriterIsRefusedAndNothingChanges) {
    const Commit commit = CommitTo(GrownModel());
    const std::string sTorn = commit.Torn(1000);
    const size_t nUnchanged = commit.nUnchanged;
    std::string sNoDirectory = commit.sOld;
    sNoDirectory.replace(sNoDirectory.rfind("PK\x05\x06"), 4, "none");
    const std::pair<std::string, std::string> aDoubtful[] = {
        {sTorn, Journal(commit.sOld, 0)},
        {sTorn, commit.sJournal + "x"},
        {sTorn, Journal(sNoDirectory, nUnchanged)},
        {sTorn, Journal(WithFlippedByte(commit.sOld, nUnchanged - 1), nUnchanged)},
        // The name of the first entry, far before the bytes that have a CRC.
        {WithFlippedByte(sTorn, 30), commit.sJournal},
        {sTorn.substr(0, nUnchanged - 1), commit.sJournal},
        // The new state, of which something is missing; others may have gone on from there.
        {WithFlippedByte(commit.sNew, nUnchanged + 300), commit.sJournal},
        {WithFlippedByte(commit.sNew, nUnchanged + 300) + "torn", commit.sJournal}};
    for (const auto& [sFile, sJournal] : aDoubtful) {
        SCOPED_TRACE(sJournal.size() + sFile.size());
        WriteWhole(m_sPath, sFile);
        std::filesystem::remove(m_sJournal);
        const Model asItIs = ReadModel(m_sPath);
        WriteWhole(m_sJournal, sJournal);
        EXPECT_EQ(ReadModel(m_sPath), asItIs);
        EXPECT_EQ(OpenedBy(ZRZipAccessMode::UPDATE), Refusal());
        EXPECT_EQ(ReadWhole(m_sPath) == sFile && ReadWhole(m_sJournal) == sJournal, true);
    }
}

TEST_F(ZRFxOldJournalTest, WhatIsNoJournalOfTheOwnerIsLeftAlone) {
    struct WatchesOpens : FaultySystem {
        int Open(const char* sPath, int nFlags, mode_t nMode) override {
            if (std::string(sPath).ends_with(".journal")) ++nOpened;
            return FaultySystem::Open(sPath, nFlags, nMode);
        }
        int nOpened = 0;
    };
    const Commit commit = CommitTo(GrownModel());
    const TemporaryFolder other;
    WriteWhole(other.File("journal"), commit.sJournal);
    const std::vector<std::function<void()>> aOthers = {
        [&] { ASSERT_EQ(mkfifo(m_sJournal.c_str(), 0600), 0); },
        [&] { std::filesystem::create_symlink(other.File("journal"), m_sJournal); },
        [&] { std::filesystem::create_symlink(m_sPath, m_sJournal); },
        [&] { std::filesystem::create_directory(m_sJournal); },
        [&] {
            WriteWhole(m_sJournal, commit.sJournal);
            ASSERT_EQ(chown(m_sJournal.c_str(), 12345, 12345), 0);
        }};
    // Giving a file to someone else takes the rights of root.
    const size_t nOthers = aOthers.size() - (geteuid() == 0 ? 0 : 1);
    for (size_t i = 0; i < nOthers; ++i) {
        SCOPED_TRACE(i);
        std::filesystem::remove(m_sJournal);
        aOthers[i]();
        const auto type = std::filesystem::symlink_status(m_sJournal).type();
        WatchesOpens system;
        WriteWhole(m_sPath, commit.Torn(1000));
        for (const auto eMode : {ZRZipAccessMode::READ_ONLY, ZRZipAccessMode::UPDATE}) {
            EXPECT_EQ(OpenedBy(eMode), Message(kNoArchive));
        }
        WriteWhole(m_sPath, commit.sOld);
        ExpectGood(OldModel(), 2);
        WriteModel(m_sPath, SmallModel());
        EXPECT_EQ(system.nOpened, 0);
        EXPECT_EQ(std::filesystem::symlink_status(m_sJournal).type(), type);
    }
    EXPECT_EQ(ReadWhole(other.File("journal")) == commit.sJournal, true);
    if (nOthers < aOthers.size()) GTEST_SKIP() << "another owner needs the rights of root";
}

TEST_F(ZRFxOldJournalTest, FileOfTheUserUnderTheNameStays) {
    WriteModel(m_sPath, SmallModel());
    WriteWhole(m_sJournal, "Notes of 3 May");
    ExpectGood(SmallModel(), 2);
    WriteModel(m_sPath, SmallModel());
    EXPECT_EQ(ReadWhole(m_sJournal), "Notes of 3 May");
}

TEST_F(ZRFxOldJournalTest, TornFileThatIsReplacedStaysUntilTheFirstCommit) {
    for (const Model& to : {GrownModel(), ShrunkModel()}) {
        const Commit commit = CommitTo(to);
        Put(commit.Torn(1000), commit.sJournal);
        ZRFxZipArchive archive;
        ASSERT_TRUE(archive.Open(m_sPath, ZRZipAccessMode::CREATE)) << archive.LastError();
        ASSERT_TRUE(AddText(&archive, "first.dat", "first"));
        EXPECT_EQ(ReadModel(m_sPath), OldModel());
        ASSERT_TRUE(archive.Commit());
        EXPECT_EQ(m_folder.FileCount(), 1u);
        EXPECT_EQ(ReadModel(m_sPath), (Model{{"first.dat", "first"}}));
    }
}

TEST_F(ZRFxOldJournalTest, ReaderOfATornFileFollowsTheNextWriter) {
    const Commit commit = CommitTo(GrownModel());
    Put(commit.Torn(1000), commit.sJournal);
    ZRFxZipArchive reader;
    ZRFxArchiveChanges changes;
    ASSERT_TRUE(reader.Open(m_sPath, ZRZipAccessMode::READ_ONLY)) << reader.LastError();
    ASSERT_TRUE(reader.Refresh(&changes)) << reader.LastError();
    EXPECT_FALSE(changes.bAny);
    ExpectGood(OldModel());
    EXPECT_EQ(ContentOf(&reader), OldModel());
    ASSERT_TRUE(reader.Refresh(&changes)) << reader.LastError();
    EXPECT_TRUE(changes.bAny);
    EXPECT_EQ(ContentOf(&reader).size(), OldModel().size() + 1);
}

}  // namespace
}  // namespace unstruct
