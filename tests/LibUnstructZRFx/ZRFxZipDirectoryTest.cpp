// Damaged and hostile archives, and those of other programs.
#include "container/ZRFxZipDirectory.h"

#include "ZRByteOrder.h"
#include "support/FaultySystem.h"
#include "support/ZipArchives.h"

namespace unstruct {
namespace {

using namespace ziptest;

// Counts what is allocated for an archive.
class AllocationLimit : public FaultySystem {
public:
    void* Allocate(size_t nSize) override {
        m_nLargest = std::max(m_nLargest, nSize);
        return FaultySystem::Allocate(nSize);
    }
    size_t m_nLargest = 0;
};

template <typename Integer>
std::string Patched(std::string sBytes, size_t nAt, Integer nValue) {
    StoreLittleEndian(reinterpret_cast<uint8_t*>(sBytes.data()) + nAt, nValue);
    return sBytes;
}

class DamagedArchive : public testing::Test {
protected:
    DamagedArchive() {
        WriteModel(m_sPath, SmallModel());
        m_sGood = ReadWhole(m_sPath);
        m_nDirectory = m_sGood.find("PK\1\2");
    }

    // What of the good model is still read from the bytes.
    size_t IntactEntries(const std::string& sBytes) {
        WriteWhole(m_sPath, sBytes);
        size_t nIntact = 0;
        for (const auto& [sName, sData] : ReadModel(m_sPath)) {
            const auto good = m_model.find(sName);
            if (good != m_model.end() && good->second == sData) ++nIntact;
        }
        return nIntact;
    }
    std::string OpenError(const std::string& sBytes,
                          ZRZipAccessMode eMode = ZRZipAccessMode::READ_ONLY) {
        WriteWhole(m_sPath, sBytes);
        ZRFxZipArchive archive;
        if (archive.Open(m_sPath, eMode)) return "opened";
        return archive.LastError().substr(m_sPath.size() + 4);
    }
    size_t RecordOf(const std::string& sName) const {
        return m_sGood.find(sName, m_nDirectory) - 46;
    }

    TemporaryFolder m_folder;
    const std::string m_sPath = m_folder.File("damaged.zrfx");
    const Model m_model = SmallModel();
    std::string m_sGood;
    size_t m_nDirectory = 0;
};

TEST_F(DamagedArchive, EveryTruncationIsReported) {
    EXPECT_EQ(OpenError(""), "opened");  // A new file before its first commit.
    for (size_t nLength = 1; nLength < m_sGood.size(); nLength += 1 + m_sGood.size() / 300) {
        EXPECT_EQ(OpenError(Truncated(m_sGood, nLength)),
                  "not a ZIP archive, or its end is missing.")
            << nLength;
    }
}

TEST_F(DamagedArchive, EveryFlippedByteOfTheDirectoryIsSurvived) {
    for (size_t i = m_nDirectory; i < m_sGood.size(); ++i) {
        const std::string sBytes = WithFlippedByte(m_sGood, i);
        IntactEntries(sBytes);
        WriteWhole(m_sPath, sBytes);
        ZRFxZipArchive archive;
        if (!archive.Open(m_sPath, ZRZipAccessMode::UPDATE)) {
            EXPECT_FALSE(archive.LastError().empty()) << i;
            continue;
        }
        ReplaceText(&archive, "ZRF.xml", "<ZRF>new</ZRF>");
        archive.Close();
    }
}

TEST_F(DamagedArchive, FlippedDataCostsItsEntryOnly) {
    const size_t nStep = m_nDirectory / 200;
    for (size_t i = 0; i < m_nDirectory; i += nStep) {
        EXPECT_GE(IntactEntries(WithFlippedByte(m_sGood, i)), m_model.size() - 1) << i;
    }
    const std::string sName = "Database001\\Nodes\\Nodes0001.dat";
    WriteWhole(m_sPath, WithFlippedByte(m_sGood, m_sGood.find(sName) + 5000));
    ZRFxZipArchive archive;
    ASSERT_TRUE(archive.Open(m_sPath, ZRZipAccessMode::READ_ONLY));
    ZRFxZipRawData raw;
    EXPECT_FALSE(archive.Read(sName, &raw));
    EXPECT_EQ(raw.Length(), 0u);
    EXPECT_NE(archive.LastError().find("entry '" + sName + "': damaged data"), std::string::npos)
        << archive.LastError();
}

TEST_F(DamagedArchive, FalseSizesAreRefusedBeforeMemoryIsTaken) {
    const std::string sDeflated = "Database001\\Result.dat";
    const std::string sStored = "Database001\\Random.dat";
    const struct {
        std::string sName;
        size_t nField;
        uint32_t nValue;
    } aCases[] = {{sDeflated, 24, 0xFFFFFFF0}, {sDeflated, 24, 100'000'000},
                  {sStored, 24, 0xFFFFFFF0},   {sStored, 24, 10},
                  {sStored, 20, 0xFFFFFFF0},   {sDeflated, 20, 0x7FFFFFFF},
                  {sDeflated, 42, 0xFFFFFFF0}, {sDeflated, 42, 0xFFFFFFFF}};
    for (const auto& [sName, nField, nValue] : aCases) {
        AllocationLimit limit;
        EXPECT_LT(IntactEntries(Patched(m_sGood, RecordOf(sName) + nField, nValue)),
                  m_model.size());
        EXPECT_LT(limit.m_nLargest, 1u << 20) << sName << " " << nField;
    }
}

TEST_F(DamagedArchive, HostileEndRecordsAreRefused) {
    const size_t nEnd = m_sGood.size() - 22;
    const std::string sNone = "not a ZIP archive, or its end is missing.";
    EXPECT_EQ(OpenError(Patched<uint32_t>(m_sGood, nEnd + 12, 0xFFFFFFF0)), sNone);
    EXPECT_EQ(OpenError(Patched<uint32_t>(m_sGood, nEnd + 16, 0xFFFFFFF0)), sNone);
    EXPECT_EQ(OpenError(Patched<uint16_t>(m_sGood, nEnd + 10, 0xFFF0)), sNone);
    EXPECT_EQ(OpenError(Patched<uint16_t>(m_sGood, nEnd + 10, 6)),
              "damaged directory of the archive: wrong number of entries.");
    std::string sEnd64 = ZRFxZipDirectory::End(~uint64_t{0}, ~uint64_t{0}, ~uint64_t{0}, "");
    EXPECT_EQ(OpenError(m_sGood.substr(0, nEnd) + sEnd64), sNone);
    // A tail of nothing but end records costs no more than reading it.
    std::string sMany;
    for (int i = 0; i < 20000; ++i) sMany += "PK\5\6";
    EXPECT_EQ(OpenError(sMany), sNone);
}

TEST_F(DamagedArchive, OverlappingEntriesAreReadButNeverChanged) {
    const size_t nFirst = RecordOf("Database001\\Nodes\\Nodes0001.dat");
    const size_t nSecond = RecordOf("Database001\\Result.dat");
    const uint32_t nOffset =
        LoadLittleEndian<uint32_t>(reinterpret_cast<const uint8_t*>(m_sGood.data()) + nFirst + 42);
    const std::string sBytes = Patched(m_sGood, nSecond + 42, nOffset);
    EXPECT_EQ(OpenError(sBytes, ZRZipAccessMode::UPDATE),
              "entries overlap, the archive cannot be changed.");
    EXPECT_EQ(IntactEntries(sBytes), m_model.size() - 1);
}

TEST_F(DamagedArchive, OfDuplicateNamesTheLastCounts) {
    ASSERT_EQ(Shell("python3 -W ignore -c \"import zipfile\nz=zipfile.ZipFile('" + m_sPath +
                    "','w')\nfor s in ('one','two','three'): z.writestr('a.dat',s)\n"
                    "z.writestr('../../etc/b.dat','up')\nz.close()\""),
              0);
    EXPECT_EQ(ReadModel(m_sPath), (Model{{"a.dat", "three"}, {"../../etc/b.dat", "up"}}));
    ZRFxZipArchive archive;
    ASSERT_TRUE(archive.Open(m_sPath, ZRZipAccessMode::UPDATE) && archive.Remove("a.dat"));
    EXPECT_FALSE(archive.Contains("a.dat"));
    ASSERT_TRUE(archive.Close());
    EXPECT_EQ(ReadModel(m_sPath), (Model{{"../../etc/b.dat", "up"}}));
}

TEST_F(DamagedArchive, EncryptedEntryWithoutItsPasswordIsRefused) {
    WriteModel(m_sPath, {{"a.dat", SmoothField(100)}}, "geheim");
    const std::string sAt = "'" + m_sPath + "', entry 'a.dat': ";
    EXPECT_EQ(ReadModel(m_sPath), (Model{{"a.dat", sAt + "the entry needs a password."}}));
    EXPECT_EQ(ReadModel(m_sPath, "falsch"), (Model{{"a.dat", sAt + "wrong password."}}));
}

// Archives of other programs -----------------------------------------------------------------

class ForeignArchive : public testing::Test {
protected:
    ForeignArchive() {
        std::filesystem::create_directory(m_folder.File("in"));
        WriteWhole(m_folder.File("in/field.dat"), m_model.at("field.dat"));
        WriteWhole(m_folder.File("in/zeros.dat"), m_model.at("zeros.dat"));
        WriteWhole(m_folder.File("in/ZRF.xml"), m_model.at("ZRF.xml"));
    }
    // Packed with the command, the archive gives the model, can be changed and stays readable.
    void ExpectReadAndChanged(const std::string& sCommand, const std::string& sPassword = {}) {
        SCOPED_TRACE(sCommand);
        std::filesystem::remove(m_sPath);
        ASSERT_EQ(Shell("cd " + m_folder.File("in") + " && " + sCommand), 0);
        EXPECT_EQ(ReadModel(m_sPath, sPassword), m_model);
        ZRFxZipArchive archive;
        ASSERT_TRUE(archive.Open(m_sPath, ZRZipAccessMode::UPDATE)) << archive.LastError();
        ASSERT_TRUE(archive.SetPassword(sPassword));
        ASSERT_TRUE(ReplaceText(&archive, "ZRF.xml", "<ZRF>new</ZRF>"));
        ASSERT_TRUE(ReplaceText(&archive, archive.EntryAt(0).sName, "new"));
        ASSERT_TRUE(archive.Close()) << archive.LastError();
        EXPECT_EQ(ReadModel(m_sPath, sPassword).size(), m_model.size());
        EXPECT_EQ(Shell("7z t -p" + (sPassword.empty() ? "x" : sPassword) + " " + m_sPath), 0);
    }

    TemporaryFolder m_folder;
    const std::string m_sPath = m_folder.File("foreign.zip");
    const Model m_model = {{"field.dat", SmoothField(50000)},
                           {"zeros.dat", std::string(3'000'000, '\0')},
                           {"ZRF.xml", "<ZRF/>"}};
};

TEST_F(ForeignArchive, EveryMethodAndEncryptionIsRead) {
    const std::string sZip = "7z a -tzip " + m_sPath + " . ";
    for (const char* sOptions : {"-mx=0", "-mx=9", "-mm=BZip2"}) {
        ExpectReadAndChanged(sZip + sOptions);
    }
    for (const char* sOptions : {"-mem=AES256", "-mem=AES192", "-mem=AES128", "-mem=ZipCrypto",
                                 "-mem=AES256 -mx=0", "-mem=AES256 -mm=BZip2"}) {
        ExpectReadAndChanged(sZip + "-pgeheim " + sOptions, "geheim");
    }
}

TEST_F(ForeignArchive, DescriptorsAndForced64BitSizesAreCarriedAlong) {
    const std::string sStart = "python3 -c \"import zipfile,sys,shutil\nz=zipfile.ZipFile(";
    const std::string sEnd =
        ",'w',zipfile.ZIP_DEFLATED)\nfor n in ('ZRF.xml','field.dat','zeros.dat'):\n"
        "  with open(n,'rb') as f, z.open(n,'w',force_zip64=True) as o: shutil.copyfileobj(f,o)\n"
        "z.close()\"";
    ExpectReadAndChanged(sStart + "'" + m_sPath + "'" + sEnd);
    // Through a pipe the sizes follow the data.
    ExpectReadAndChanged(sStart + "sys.stdout.buffer" + sEnd + " | cat > " + m_sPath);
    EXPECT_NE(ReadWhole(m_sPath).find("PK\7\10"), std::string::npos) << "descriptor lost";
}

TEST_F(ForeignArchive, OthersReadWhatIsWrittenHere) {
    WriteModel(m_sPath, SmallModel());
    EXPECT_EQ(Shell("unzip -t " + m_sPath), 0);
    EXPECT_EQ(Shell("7z t " + m_sPath), 0);
    EXPECT_EQ(Shell("python3 -m zipfile -t " + m_sPath), 0);
    WriteModel(m_sPath, m_model, "geheim");
    EXPECT_EQ(Shell("7z t -pgeheim " + m_sPath), 0);
    EXPECT_NE(Shell("7z t -pfalsch " + m_sPath), 0);
    ASSERT_EQ(Shell("7z x -pgeheim -o" + m_folder.File("out") + " " + m_sPath), 0);
    for (const auto& [sName, sData] : m_model) {
        EXPECT_EQ(ReadWhole(m_folder.File("out/" + sName)), sData);
    }
}

}  // namespace
}  // namespace unstruct
