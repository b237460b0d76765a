// States of an archive, committed one after the other: torn, forged, growing, refreshed.
#include <numeric>
#include <set>

#include "container/ZRFxLastCommit.h"
#include "container/ZRFxZipArchive.h"
#include "support/CommitRecords.h"
#include "support/FaultySystem.h"
#include "support/ZipArchives.h"

namespace unstruct {
namespace {

using namespace ziptest;

bool IsLong() {
    const char* sLong = getenv("NUO_LONG_TESTS");
    return sLong && std::string(sLong) == "1";
}

// A text that counts for much and packs to little, so that commits beside it are records.
std::string LongText(unsigned nSeed = 1) {
    std::string sLine = RandomBytes(3000, nSeed);
    for (char& c : sLine) c = static_cast<char>('a' + (c & 15));
    std::string sText;
    for (int i = 0; i < 80; ++i) sText += sLine;
    return sText;
}

// A writer, and what its archive holds.
class Writer {
public:
    explicit Writer(const std::string& sPath, const std::string& sPassword = {})
        : m_sPath(sPath), m_sPassword(sPassword) {}

    void Open(ZRZipAccessMode eMode) {
        ASSERT_TRUE(archive.Open(m_sPath, eMode)) << archive.LastError();
        ASSERT_TRUE(archive.SetPassword(m_sPassword));
    }
    void Put(const std::string& sName, const std::string& sData, int nLevel = 0) {
        ASSERT_TRUE(ReplaceText(&archive, sName, sData, nLevel)) << archive.LastError();
        model[sName] = sData;
    }
    void Grow(const std::string& sName, size_t nKept, const std::string& sTail) {
        uint64_t nRevision = 0;
        ASSERT_TRUE(archive.Grow(sName, nKept, sTail, 6, &nRevision)) << archive.LastError();
        model[sName] = model[sName].substr(0, nKept) + sTail;
    }
    void Append(const std::string& sName, const std::string& sTail) {
        Grow(sName, model[sName].size(), sTail);
    }
    void Remove(const std::string& sName) {
        ASSERT_TRUE(archive.Remove(sName)) << archive.LastError();
        model.erase(sName);
    }
    void Commit() {
        ASSERT_TRUE(archive.Commit()) << archive.LastError();
        Note();
    }
    void Close() {
        ASSERT_TRUE(archive.Close()) << archive.LastError();
        Note();
    }
    // What the file holds at a length: the last state that lies before it, if any.
    const Model* At(size_t nLength) const {
        const Model* pLast = nullptr;
        for (const auto& [nEnd, state] : aStates) pLast = nEnd <= nLength ? &state : pLast;
        return pLast;
    }
    size_t Length() const { return static_cast<size_t>(std::filesystem::file_size(m_sPath)); }

    ZRFxZipArchive archive;
    Model model;
    std::vector<std::pair<size_t, Model>> aStates;  // Each with the length of its file.

private:
    void Note() { aStates.emplace_back(Length(), model); }

    const std::string m_sPath;
    const std::string m_sPassword;
};

std::vector<size_t> RecordsIn(const std::string& sBytes) {
    std::vector<size_t> aFound;
    const std::string_view sMagic = ZRFxCommitRecord::kMagic;
    for (size_t i = sBytes.find(sMagic); i != std::string::npos; i = sBytes.find(sMagic, i + 1)) {
        if (sBytes.size() - i > kRecordHeader && NumberAt(sBytes, i + 8) == i) aFound.push_back(i);
    }
    return aFound;
}

// A file in memory, opened.
struct Opened {
    Opened(const std::string& sBytes, ZRZipAccessMode eMode) {
        file.Append(sBytes.data(), sBytes.size());
        bOpen = archive.Open(&file, eMode);
    }
    ZRFxZipMemFile file;
    ZRFxZipArchive archive;
    bool bOpen = false;
};

// A record of a run of its own, as whoever knows where it will stand can write it.
std::string Forged(size_t nOffset, uint64_t nBase,
                   const std::vector<ZRFxCommitRecord::Edit>& aEdits, const std::string& sTails,
                   const std::string& sLines = {}) {
    ZRFxCodec codec;
    ZRFxCipher cipher;
    ZRFxCommitRecord record;
    record.run = ZRFxCommitRecord::NewRun();
    record.nBase = nBase;
    record.aEdits = aEdits;
    record.sLines = sLines;
    EXPECT_TRUE(record.SetTails(sTails, &codec, &cipher));
    return record.Bytes(nOffset, &codec);
}

class ZRFxCommitTest : public testing::Test {
protected:
    // Commits of all kinds, with archives as entries: finished, unfinished, and one whose records
    // fit the place where it comes to stand.
    void WriteHistory(Writer* pWriter) {
        WriteModel(m_folder.File("finished"), SmallModel());
        pWriter->Open(ZRZipAccessMode::CREATE);
        pWriter->Put("bulk.dat", RandomBytes(60000));
        pWriter->Put("first.dat", RandomBytes(500, 2));
        pWriter->Grow("Grown.xml", 0, LongText());
        pWriter->Commit();
        const size_t nBase = pWriter->Length();
        pWriter->Put("second.dat", RandomBytes(300, 3));
        pWriter->Append("Grown.xml", "more");
        pWriter->Commit();
        pWriter->Remove("first.dat");
        pWriter->Put("ZRF.xml", "<ZRF/>");
        pWriter->Commit();
        pWriter->Put("finished.dat", ReadWhole(m_folder.File("finished")).substr(0, 63000));
        pWriter->Commit();
        pWriter->Put("running.dat", ReadWhole(m_sPath));
        pWriter->Commit();
        std::string sForged = "some bytes";
        const size_t nData = pWriter->Length() + ZRFxZipDirectory::kLocalHeaderSize + 10;
        for (int i = 0; i < 2; ++i) {
            sForged += Forged(nData + sForged.size(), nBase, {{"ZRF.xml", 0, 9}}, "<forged/>");
            m_aForgedEnds.push_back(nData + sForged.size());
        }
        pWriter->Put("forged.dat", sForged + "and more");
        pWriter->Commit();
        pWriter->Grow("Grown.xml", 1000, LongText(2));
        pWriter->Close();
        pWriter->Open(ZRZipAccessMode::UPDATE);
        pWriter->Put("third.dat", RandomBytes(300, 4));
        pWriter->Append("Grown.xml", "last");
        pWriter->Commit();
        pWriter->archive.Abandon();
        pWriter->Open(ZRZipAccessMode::UPDATE);
        pWriter->Put("fourth.dat", RandomBytes(300, 5));
        pWriter->Commit();
        pWriter->Close();
        ASSERT_GE(RecordsIn(ReadWhole(m_sPath)).size(), 8u);
    }

    TemporaryFolder m_folder;
    const std::string m_sPath = m_folder.File("model.zrfx");
    std::vector<size_t> m_aForgedEnds;
};

TEST_F(ZRFxCommitTest, FileThatIsTornAnywhereOpensAtTheLastCommitBefore) {
    Writer writer(m_sPath);
    WriteHistory(&writer);
    const std::string sBytes = ReadWhole(m_sPath);
    std::vector<size_t> anCuts = m_aForgedEnds;
    const std::set<size_t> anForged(anCuts.begin(), anCuts.end());
    for (size_t i = 0; i < sBytes.size(); i += IsLong() ? 97 : 1499) anCuts.push_back(i);
    for (const auto& [nEnd, model] : writer.aStates) {
        for (size_t i = nEnd - 25; i <= std::min(nEnd + 25, sBytes.size()); ++i) {
            if (i % 25 < 3) anCuts.push_back(i);
        }
    }
    for (const size_t nCut : anCuts) {
        const std::string asBehind[] = {"", std::string(40, '\0'), RandomBytes(70000)};
        const std::string& sBehind = asBehind[anForged.count(nCut) > 0 ? 0 : nCut % 3];
        const std::string sTorn = Truncated(sBytes, nCut) + sBehind;
        Opened torn(sTorn, ZRZipAccessMode::UPDATE);
        // Zeros may happen to be what was cut off.
        const auto nSame = std::mismatch(sTorn.begin(), sTorn.end(), sBytes.begin(), sBytes.end());
        const Model* pState = writer.At(static_cast<size_t>(nSame.first - sTorn.begin()));
        ASSERT_EQ(torn.bOpen, pState || torn.file.Length() == 0) << nCut;
        if (!pState) continue;
        ASSERT_EQ(ContentOf(&torn.archive) == *pState, true) << nCut;
        ASSERT_TRUE(AddText(&torn.archive, "new", "entry")) << nCut;
        ASSERT_TRUE(torn.archive.Close()) << torn.archive.LastError();
        const std::string sClosed(torn.file.Data(), torn.file.Data() + torn.file.Length());
        Opened again(sClosed, ZRZipAccessMode::READ_ONLY);
        Model expected = *pState;
        expected["new"] = "entry";
        ASSERT_EQ(ContentOf(&again.archive) == expected, true) << nCut;
        if (nCut % 40 != 0) continue;
        WriteWhole(m_sPath, sClosed);
        ASSERT_EQ(Shell("unzip -t " + m_sPath + " && python3 -m zipfile -t " + m_sPath), 0) << nCut;
    }
}

// Documents that grow
// ------------------------------------------------------------------------------

struct Reader {
    std::unique_ptr<ZRFxZipArchive> pArchive;
    Model seen;
};

class GrowingDocuments : public ZRFxCommitTest, public testing::WithParamInterface<const char*> {
protected:
    size_t Below(size_t nLimit) { return m_random() % nLimit; }
    std::string Text(size_t nMost) {
        return RandomBytes(Below(nMost) + 1, static_cast<unsigned>(m_random()));
    }
    void ChangeSomething(Writer* pWriter) {
        const std::string sName = "Document" + std::to_string(Below(6)) + ".xml";
        const bool bThere = pWriter->model.count(sName) > 0;
        const size_t nLength = bThere ? pWriter->model[sName].size() : 0;
        switch (Below(8)) {
            case 0:
                return pWriter->Put(sName, Text(3000), 6);
            case 1:
                if (bThere) pWriter->Remove(sName);
                return;
            case 2:
                return pWriter->Put("Data" + std::to_string(Below(40)) + ".dat", Text(20000));
            case 3:
                return pWriter->Grow(sName, nLength > 0 ? Below(nLength) : 0, Text(300));
            default:
                return pWriter->Grow(sName, nLength, Text(300));
        }
    }
    void Commit(Writer* pWriter) {
        if (Below(12) != 0) return pWriter->Commit();
        pWriter->Close();
        pWriter->Open(ZRZipAccessMode::UPDATE);
    }
    // Refreshed, the reader is as one that opens anew, and what it is told of changes is true.
    void Refresh(Reader* pReader, const Model& now) {
        ZRFxArchiveChanges changes;
        ASSERT_TRUE(pReader->pArchive->Refresh(&changes)) << pReader->pArchive->LastError();
        const Model refreshed = ContentOf(pReader->pArchive.get());
        ASSERT_EQ(refreshed == now, true) << testing::PrintToString(refreshed);
        ASSERT_EQ(ReadModel(m_sPath, GetParam()) == now, true);
        ASSERT_TRUE(changes.bAny || refreshed == pReader->seen);
        for (const auto& [sName, sOld] : pReader->seen) {
            const auto entry = now.find(sName);
            const auto change = changes.kept.find(sName);
            const std::string sNew = entry == now.end() ? "" : entry->second;
            const size_t nKept = change == changes.kept.end() ? sOld.size() : change->second;
            if (changes.bReplaced || (change != changes.kept.end() && entry == now.end())) continue;
            ASSERT_LE(nKept, sOld.size()) << sName;
            ASSERT_EQ(sOld.substr(0, nKept) == sNew.substr(0, nKept), true) << sName;
            ASSERT_TRUE(change != changes.kept.end() || sOld == sNew) << sName;
        }
        pReader->seen = now;
    }

    std::mt19937 m_random;
};

TEST_P(GrowingDocuments, AreAlwaysWhatWasWrittenForReadersOldAndNew) {
    // Keys are slow to make.
    const unsigned nShort = GetParam()[0] == '\0' ? 4 : 1;
    for (unsigned nSeed = 1; nSeed <= (IsLong() ? 15 * nShort : nShort); ++nSeed) {
        SCOPED_TRACE(nSeed);
        m_random.seed(nSeed);
        Writer writer(m_sPath, GetParam());
        ASSERT_NO_FATAL_FAILURE(writer.Open(ZRZipAccessMode::CREATE));
        if (nSeed % 4 != 0) writer.Grow("Long.xml", 0, LongText());
        if (nSeed % 2 != 0) writer.Put("Bulk.dat", RandomBytes(300000));
        ASSERT_NO_FATAL_FAILURE(writer.Commit());
        std::vector<Reader> aReaders(3);
        for (int nCommit = 0; nCommit < 60; ++nCommit) {
            for (size_t i = Below(5); i-- > 0;) ASSERT_NO_FATAL_FAILURE(ChangeSomething(&writer));
            ASSERT_NO_FATAL_FAILURE(Commit(&writer));
            Reader& reader = aReaders[Below(aReaders.size())];
            const bool bRead = Below(2) == 0;
            if (reader.pArchive && bRead) {
                ASSERT_EQ(ContentOf(reader.pArchive.get()) == reader.seen, true) << nCommit;
            }
            if (reader.pArchive && Below(8) != 0) {
                ASSERT_NO_FATAL_FAILURE(Refresh(&reader, writer.model)) << nCommit;
            } else {
                reader = {std::make_unique<ZRFxZipArchive>(), writer.model};
                ASSERT_TRUE(reader.pArchive->Open(m_sPath, ZRZipAccessMode::READ_ONLY));
                ASSERT_TRUE(reader.pArchive->SetPassword(GetParam()));
            }
        }
        ASSERT_NO_FATAL_FAILURE(writer.Close());
        ASSERT_EQ(ReadModel(m_sPath, GetParam()) == writer.model, true);
    }
}

INSTANTIATE_TEST_SUITE_P(Passwords, GrowingDocuments, testing::Values("", "geheim"));

// Records that are damaged or lie
// ------------------------------------------------------------------

class CommitRecords : public ZRFxCommitTest {
protected:
    void SetUp() override {
        m_writer.Open(ZRZipAccessMode::CREATE);
        m_writer.Put("data", RandomBytes(1000));
        m_writer.Grow("Grown.xml", 0, LongText());
        m_writer.Commit();
        for (int i = 0; i < 3; ++i) {
            m_writer.Put("data" + std::to_string(i), RandomBytes(100));
            m_writer.Append("Grown.xml", "<Item Name=\"again and again and again\"/>");
            m_writer.Commit();
        }
        m_sBytes = ReadWhole(m_sPath);
        m_aRecords = RecordsIn(m_sBytes);
        ASSERT_EQ(m_aRecords.size(), 3u);
        m_nBase = m_writer.aStates[0].first;
    }
    // The archive without records, and these bytes after it.
    std::string WithBase(const std::string& sBehind) const {
        return m_sBytes.substr(0, m_nBase) + sBehind;
    }
    Writer m_writer{m_sPath};
    std::string m_sBytes;
    std::vector<size_t> m_aRecords;
    size_t m_nBase = 0;
};

TEST_F(CommitRecords, DamagedOneIsTornAtTheEndAndRefusesTheFileBefore) {
    const auto at = [&](size_t nRecord, long nField) {
        const size_t nEnd = m_writer.aStates[nRecord + 1].first;
        return nField < 0 ? nEnd - static_cast<size_t>(-nField)
                          : m_aRecords[nRecord] + static_cast<size_t>(nField);
    };
    for (const long nField :
         {0, 8, 16, 32, 40, 48, 56, 64, 72, 80, 84, 88, 95, -30, -20, -12, -1}) {
        SCOPED_TRACE(nField);
        Opened last(WithFlippedByte(m_sBytes, at(2, nField)), ZRZipAccessMode::READ_ONLY);
        ASSERT_TRUE(last.bOpen) << last.archive.LastError();
        EXPECT_EQ(ContentOf(&last.archive) == m_writer.aStates[2].second, true);
        Opened middle(WithFlippedByte(m_sBytes, at(1, nField)), ZRZipAccessMode::UPDATE);
        EXPECT_EQ(middle.archive.LastError(),
                  "'archive in memory': damaged commit record: the one before it is missing.");
    }
}

// What is wrong here is hidden behind right checksums.
TEST_F(CommitRecords, FalseClaimsAreRefusedWithoutBelievingThem) {
    const uint64_t nHuge = uint64_t{1} << 40;
    const struct {
        size_t nField;
        std::vector<uint64_t> anValues;
    } aClaims[] = {{16, {1}},
                   {32, {m_aRecords[1], m_aRecords[2], m_aRecords[2] + 1, 1, nHuge}},
                   {40, {0, 1, m_nBase - 1, m_aRecords[0], m_sBytes.size(), nHuge, UINT64_MAX}},
                   {kRecordListing, {0, 1, nHuge, UINT64_MAX}},
                   {kRecordListing + 8, {0, 1, 100000, nHuge, UINT64_MAX}},
                   {kRecordTails, {0, nHuge, UINT64_MAX, UINT64_MAX - 200}},
                   {kRecordTails + 8, {0, 1, nHuge, UINT64_MAX}}};
    for (const size_t nRecord : {0u, 1u, 2u}) {
        for (const auto& [nField, anValues] : aClaims) {
            for (const uint64_t nValue : anValues) {
                if (nRecord == 0 && nField == 16) continue;
                SCOPED_TRACE(testing::Message() << nRecord << " " << nField << " " << nValue);
                std::string sBytes = m_sBytes;
                StoreAt(&sBytes, m_aRecords[nRecord] + nField, nValue);
                SealRecordAt(&sBytes, m_aRecords[nRecord]);
                Opened opened(sBytes, ZRZipAccessMode::READ_ONLY);
                if (!opened.bOpen) {
                    EXPECT_NE(opened.archive.LastError().find("damaged"), std::string::npos)
                        << opened.archive.LastError();
                    continue;
                }
                const Model seen = ContentOf(&opened.archive);
                const bool bKnown = std::any_of(m_writer.aStates.begin(), m_writer.aStates.end(),
                                                [&](const auto& s) { return s.second == seen; });
                EXPECT_TRUE(bKnown || seen.at("Grown.xml").find("damaged") != std::string::npos);
            }
        }
    }
}

TEST_F(CommitRecords, EditsKeepNoMoreThanThereIs) {
    Opened more(WithBase(Forged(m_nBase, m_nBase, {{"Grown.xml", 240001, 1}}, "x")),
                ZRZipAccessMode::READ_ONLY);
    EXPECT_EQ(more.archive.LastError(), "'archive in memory': damaged commit record.");

    // An entry that declares more than it can hold, and a document that does not need it.
    ZRFxZipEntry entry;
    entry.sName = "Grown.xml";
    entry.nSize = uint64_t{1} << 62;
    entry.nOffset = m_nBase - 100;
    Opened declared(
        WithBase(Forged(m_nBase, m_nBase, {{"Grown.xml", entry.nSize - 1, 1}, {"Other.xml", 0, 5}},
                        "xother", ZRFxZipDirectory::CentralRecord(entry, 0))),
        ZRZipAccessMode::UPDATE);
    std::string sText;
    EXPECT_TRUE(ReadText(&declared.archive, "Other.xml", &sText)) << declared.archive.LastError();
    EXPECT_EQ(sText, "other");
    EXPECT_FALSE(ReadText(&declared.archive, "Grown.xml", &sText));
    EXPECT_EQ(declared.archive.LastError(),
              "'archive in memory', entry 'Grown.xml': the entry is larger than 4 GiB.");
    uint64_t nRevision = 0;
    EXPECT_TRUE(declared.archive.Grow("Grown.xml", 0, "anew", 6, &nRevision));
    EXPECT_TRUE(ReadText(&declared.archive, "Grown.xml", &sText)) << declared.archive.LastError();
    EXPECT_TRUE(declared.archive.Close()) << declared.archive.LastError();
}

TEST_F(CommitRecords, EntriesThatOverlapAreReadAndNotWrittenAnew) {
    ZRFxZipEntry entry;
    std::string sLines;
    for (const char* sName : {"one", "two"}) {
        entry.sName = sName;
        entry.nPackedSize = entry.nSize = 900;
        sLines += ZRFxZipDirectory::CentralRecord(entry, 0);
    }
    const std::string sBytes = WithBase(Forged(m_nBase, m_nBase, {}, {}, sLines));
    EXPECT_TRUE(Opened(sBytes, ZRZipAccessMode::READ_ONLY).bOpen);
    EXPECT_EQ(Opened(sBytes, ZRZipAccessMode::UPDATE).archive.LastError(),
              "'archive in memory': entries overlap, the archive cannot be changed.");
}

// Searching a file reads it about once, whatever its structures.
class CountingSystem : public ZRFxSystem {
public:
    CountingSystem() { Install(this); }
    ~CountingSystem() override { Install(nullptr); }
    ssize_t ReadAt(int nFile, void* pData, size_t nSize, off_t nOffset) override {
        nCalls += 1;
        nBytes += nSize;
        return ZRFxSystem::ReadAt(nFile, pData, nSize, nOffset);
    }
    uint64_t nCalls = 0;
    uint64_t nBytes = 0;
};

TEST_F(ZRFxCommitTest, FileOfEmptyArchivesIsSearchedInLinearTime) {
    std::string sBytes;
    for (int i = 0; i < 20000; ++i) sBytes += ZRFxZipDirectory::End(0, sBytes.size(), 0, {});
    WriteWhole(m_sPath, sBytes + "torn");
    CountingSystem system;
    EXPECT_EQ(ReadModel(m_sPath), Model());
    EXPECT_LT(system.nBytes, 10 * sBytes.size());
}

// Archives of other programs
// -----------------------------------------------------------------------

class StreamedArchive : public ZRFxCommitTest {
protected:
    // Written to a pipe, so that its entries do not tell their lengths in front.
    void SetUp() override {
        ASSERT_EQ(
            Shell("python3 -c \"import sys, zipfile; "
                  "zipfile.ZipFile(sys.stdout.buffer, 'w').writestr('a.xml', '<A/>')\" | cat >" +
                  m_sPath),
            0);
        ASSERT_EQ(ReadModel(m_sPath), (Model{{"a.xml", "<A/>"}}));
    }
};

TEST_F(StreamedArchive, IsFoundBeforeWhatAKilledWriterLeft) {
    ZRFxZipArchive archive;
    ASSERT_TRUE(archive.Open(m_sPath, ZRZipAccessMode::UPDATE));
    ASSERT_TRUE(AddText(&archive, "large", RandomBytes(3 << 20), 0));
    const std::string sTorn = ReadWhole(m_sPath);
    ASSERT_GT(sTorn.size(), size_t{1} << 20);
    Opened torn(sTorn, ZRZipAccessMode::UPDATE);
    EXPECT_EQ(ContentOf(&torn.archive), (Model{{"a.xml", "<A/>"}})) << torn.archive.LastError();
    EXPECT_TRUE(torn.archive.Close());
}

TEST_F(StreamedArchive, IsCommittedToWhereNoSecondFileCanBe) {
    for (const char* sEnd : {"", "1", "2", "3", "4", "5", "6", "7", "8", "9"}) {
        std::filesystem::create_directory(m_sPath + ".rewrite" + sEnd);
    }
    Writer writer(m_sPath);
    writer.Open(ZRZipAccessMode::UPDATE);
    writer.model["a.xml"] = "<A/>";
    for (int i = 0; i < 3; ++i) {
        writer.Grow("Long.xml", 0, LongText(static_cast<unsigned>(i)));
        writer.Commit();
        EXPECT_EQ(ReadModel(m_sPath), writer.model);
    }
}

// Refreshing
// ---------------------------------------------------------------------------------------

class Refreshed : public ZRFxCommitTest {
protected:
    void Refresh(const Model& now) {
        ASSERT_TRUE(m_reader.Refresh(&m_changes)) << m_reader.LastError();
        EXPECT_EQ(ContentOf(&m_reader), now);
    }
    ZRFxZipArchive m_reader;
    ZRFxArchiveChanges m_changes;
};

// What follows the last commit is cut off by the next writer, and so not remembered.
TEST_F(Refreshed, ReaderDoesNotKeepATornEnd) {
    Writer writer(m_sPath);
    writer.Open(ZRZipAccessMode::CREATE);
    writer.Put("bulk", RandomBytes(200000));
    for (char c = 'a'; c < 'q'; ++c) writer.Grow(std::string(1, c) + ".xml", 0, RandomBytes(400));
    writer.Grow("Long.xml", 0, LongText());
    writer.Commit();
    for (char c = 'a'; c < 'q'; ++c) writer.Append(std::string(1, c) + ".xml", "more");
    writer.Commit();
    ASSERT_TRUE(m_reader.Open(m_sPath, ZRZipAccessMode::READ_ONLY));
    ASSERT_EQ(ContentOf(&m_reader), writer.model);
    writer.Close();
    WriteWhole(m_sPath, ReadWhole(m_sPath) + RandomBytes(100000));
    Refresh(writer.model);
    writer.Open(ZRZipAccessMode::UPDATE);
    for (int i = 0; i < 20; ++i) writer.Put(std::to_string(i), RandomBytes(1000));
    writer.Commit();
    Refresh(writer.model);
}

TEST_F(Refreshed, StateThatIsBeingWrittenCostsWhatIsNew) {
    Writer writer(m_sPath);
    writer.Open(ZRZipAccessMode::CREATE);
    for (int i = 0; i < 1000; ++i) writer.Put(std::to_string(i), RandomBytes(5000));
    writer.Commit();
    ASSERT_TRUE(m_reader.Open(m_sPath, ZRZipAccessMode::READ_ONLY));
    writer.Put("large", RandomBytes(2 << 20));
    CountingSystem system;
    ASSERT_TRUE(m_reader.Refresh(&m_changes)) << m_reader.LastError();
    EXPECT_FALSE(m_changes.bAny);
    EXPECT_LT(system.nCalls, 20u);
}

TEST_F(Refreshed, FileThatIsOverwrittenIsAnother) {
    WriteModel(m_sPath, {{"a", "old"}});
    WriteModel(m_folder.File("other"), {{"a", "new"}, {"b", ""}});
    ASSERT_TRUE(m_reader.Open(m_sPath, ZRZipAccessMode::READ_ONLY));
    WriteWhole(m_sPath, ReadWhole(m_folder.File("other")));
    ASSERT_TRUE(m_reader.Refresh(&m_changes));
    EXPECT_EQ(m_changes.kept, (decltype(m_changes.kept){{"a", 0}}));
}

TEST_F(ZRFxCommitTest, CopyThatFailsAtAnyCallLeavesAnArchiveToUse) {
    const Model model = SmallModel();
    for (int nCall = 1;; ++nCall) {
        SCOPED_TRACE(nCall);
        const std::string sCopy = m_folder.File("copy" + std::to_string(nCall));
        WriteModel(m_sPath, model);
        ZRFxZipArchive archive;
        FaultySystem system;
        ASSERT_TRUE(archive.Open(m_sPath, ZRZipAccessMode::UPDATE));
        system.FailCall(nCall, EIO, FaultySystem::Failing::kOnce);
        const bool bCopied = archive.CloseAs(sCopy);
        if (!system.HasFailed()) break;
        system.Recover();
        if (!bCopied) {
            EXPECT_EQ(ContentOf(&archive), model);
            EXPECT_TRUE(archive.Close()) << archive.LastError();
        }
        EXPECT_EQ(ReadModel(m_sPath), model);
        if (std::filesystem::exists(sCopy) && std::filesystem::file_size(sCopy) > 0) {
            EXPECT_EQ(ReadModel(sCopy), model);
        }
        ASSERT_LT(nCall, 200);
    }
}

// A writer would cut off what it took for torn.
TEST_F(ZRFxCommitTest, SectorThatCannotBeReadIsNotTakenForATornEnd) {
    struct BadSector : FaultySystem {
        ssize_t ReadAt(int nFile, void* pData, size_t nSize, off_t nOffset) override {
            const uint64_t nFrom = static_cast<uint64_t>(nOffset);
            if (nFrom + nSize <= nAt || nFrom >= nAt + 512) {
                return FaultySystem::ReadAt(nFile, pData, nSize, nOffset);
            }
            errno = EIO;
            return -1;
        }
        uint64_t nAt = 0;
    };
    {
        Writer writer(m_sPath);
        writer.Open(ZRZipAccessMode::CREATE);
        writer.Grow("Long.xml", 0, LongText());
        for (int i = 0; i < 4; ++i) {
            writer.Put("state" + std::to_string(i), RandomBytes(30000));
            writer.Commit();
        }
    }
    const std::string sFile = ReadWhole(m_sPath);
    for (const uint64_t nFromEnd : {1u, 500u, 30200u}) {
        BadSector system;
        system.nAt = (sFile.size() - nFromEnd) / 512 * 512;
        for (const ZRZipAccessMode eMode : {ZRZipAccessMode::READ_ONLY, ZRZipAccessMode::UPDATE}) {
            ZRFxZipArchive archive;
            // One within the data of an entry does not matter to opening.
            if (archive.Open(m_sPath, eMode)) {
                EXPECT_EQ(archive.EntryCount(), 5u) << nFromEnd;
            } else {
                EXPECT_NE(archive.LastError().find("Input/output error"), std::string::npos)
                    << archive.LastError();
            }
        }
        EXPECT_EQ(ReadWhole(m_sPath) == sFile, true);
    }
}

// Bytes left behind
// --------------------------------------------------------------------------------

struct Pattern {
    const char* sName;
    int nRuns;
    int nCommits;
    void (*change)(Writer* pWriter, int nStep);
};

void PrintTo(const Pattern& pattern, std::ostream* pStream) {
    *pStream << pattern.sName;
}

class BytesLeftBehind : public ZRFxCommitTest, public testing::WithParamInterface<Pattern> {
protected:
    // All that neither a live entry nor the directory takes.
    static uint64_t Left(const std::string& sBytes) {
        ZRFxZipMemFile file;
        file.Append(sBytes.data(), sBytes.size());
        ZRFxMemStorage storage(&file, false);
        ZRFxZipDirectory directory;
        EXPECT_TRUE(directory.FindEndAt(&storage, sBytes.size()) && directory.Load(&storage));
        return std::accumulate(directory.aEntries.begin(), directory.aEntries.end(),
                               directory.nOffset, [](uint64_t nLeft, const ZRFxZipEntry& entry) {
                                   return nLeft - ZRFxZipDirectory::LocalLengthOf(entry) -
                                          entry.nPackedSize;
                               });
    }
};

TEST_P(BytesLeftBehind, AreBoundedDuringARunAndAfter) {
    Writer writer(m_sPath);
    WriteModel(m_sPath, {});
    int nStep = 0;
    for (int nRun = 0; nRun < GetParam().nRuns; ++nRun) {
        writer.Open(ZRZipAccessMode::UPDATE);
        for (int i = 0; i < GetParam().nCommits; ++i) {
            GetParam().change(&writer, nStep++);
            ASSERT_NO_FATAL_FAILURE(writer.Commit());
            uint64_t nLive = 0;
            for (const auto& [sName, sData] : writer.model) nLive += sData.size() + 200;
            ASSERT_LE(writer.Length(), 2 * nLive + (size_t{17} << 20));
        }
        ASSERT_NO_FATAL_FAILURE(writer.Close());
        ASSERT_LE(8 * Left(ReadWhole(m_sPath)), writer.Length() + 100) << "run " << nRun;
        writer.aStates.clear();
    }
    EXPECT_EQ(ReadModel(m_sPath) == writer.model, true);
}

INSTANTIATE_TEST_SUITE_P(
    Patterns, BytesLeftBehind,
    testing::Values(Pattern{"ManyShortAppends", 100, 1,
                            [](Writer* p, int n) {
                                p->Put("State" + std::to_string(n), RandomBytes(500));
                                p->Grow("ZRF.xml", 0, std::to_string(n));
                            }},
                    Pattern{
                        "OneEntryReplacedInARun", 2, 60,
                        [](Writer* p, int n) { p->Put("State", RandomBytes(900000 + (n & 1))); }},
                    Pattern{"OneEntryReplacedInManyRuns", 40, 1,
                            [](Writer* p, int) { p->Put("State", RandomBytes(30000)); }},
                    Pattern{"DocumentsThatGrow", 12, 8,
                            [](Writer* p, int n) {
                                for (char c = 'a'; c < 'e'; ++c) {
                                    p->Append(std::string(1, c) + ".xml",
                                              RandomBytes(3000, static_cast<unsigned>(n)));
                                }
                            }},
                    Pattern{"DocumentsMadeAnew", 8, 8, [](Writer* p, int n) {
                                p->Grow("a.xml", 0, LongText(static_cast<unsigned>(n)));
                            }}));

}  // namespace
}  // namespace unstruct
