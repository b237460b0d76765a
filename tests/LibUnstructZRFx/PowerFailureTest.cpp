// Power failures: what a writer has changed in a folder is recorded, and what a disk may hold of it
// when the power fails at any moment is opened again.
#include "container/ZRFxZipArchive.h"
#include "support/RecordingSystem.h"
#include "support/ZipArchives.h"

namespace unstruct {
namespace {

using namespace ziptest;

constexpr char kArchive[] = "model.zrfx";
constexpr char kMain[] = "ZRF.xml";
constexpr mode_t kMode = 0640;

bool IsLong() {
    const char* sLong = getenv("NUO_LONG_TESTS");
    return sLong && std::string(sLong) == "1";
}

// Data as it is compared: of a large entry only what tells it from others.
std::string Brief(std::string sData) {
    if (sData.size() < 100000) return sData;
    return std::to_string(sData.size()) + " bytes, " +
           std::to_string(std::hash<std::string>()(sData));
}

Model Brief(Model model) {
    for (auto& [sName, sData] : model) sData = Brief(std::move(sData));
    return model;
}

// Works on the archive of a folder and keeps what was committed up to which call.
class Writer {
public:
    Writer(const std::string& sFolder, Model committed)
        : m_sPath(sFolder + "/" + kArchive),
          m_system(sFolder),
          m_model(committed),
          m_aCommits{{0, std::move(committed)}} {
        m_archive.SetPendingLimit(20000);
    }

    void Open(ZRZipAccessMode eMode) {
        Expect(m_archive.Open(m_sPath, eMode));
        if (eMode == ZRZipAccessMode::CREATE) m_model.clear();
    }
    void Put(const std::string& sName, const std::string& sData, int nLevel = 6) {
        Expect(ReplaceText(&m_archive, sName, sData, nLevel));
        m_model[sName] = Brief(sData);
    }
    void Remove(const std::string& sName) {
        Expect(m_archive.Remove(sName));
        m_model.erase(sName);
    }
    // Lets the bytes that wait on their way to the file get there.
    void ReadBack() { EXPECT_EQ(Brief(ContentOf(&m_archive)), m_model); }
    void Commit() {
        Expect(m_archive.Commit());
        Committed();
    }
    void Close() {
        Expect(m_archive.Close());
        Committed();
    }
    void Abandon() {
        m_archive.Abandon();
        m_model = m_aCommits.back().second;
    }

    const Model& Content() const { return m_model; }
    const RecordingSystem& System() const { return m_system; }

    // What may be found after call nCut: the last state that was committed, or a later one.
    std::vector<Model> StatesFrom(size_t nCut) const {
        std::vector<Model> aStates;
        for (auto i = m_aCommits.rbegin(); i != m_aCommits.rend(); ++i) {
            aStates.push_back(i->second);
            if (i->first <= nCut) break;
        }
        return aStates;
    }

private:
    void Expect(bool bDone) { EXPECT_TRUE(bDone) << m_archive.LastError(); }
    void Committed() { m_aCommits.push_back({m_system.CallCount(), m_model}); }

    const std::string m_sPath;
    RecordingSystem m_system;
    ZRFxZipArchive m_archive;
    Model m_model;
    std::vector<std::pair<size_t, Model>> m_aCommits;  // Calls before, content.
};

struct Scenario {
    const char* sName;
    int nStates;        // That are tried in an ordinary run.
    Model (*before)();  // Empty when there is no file.
    void (*work)(Writer*);
};

void PrintTo(const Scenario& scenario, std::ostream* pStream) {
    *pStream << scenario.sName;
}

class PowerFailure : public testing::TestWithParam<Scenario> {
protected:
    std::string Path() const { return m_folder.File(kArchive); }
    std::string Folder() const { return m_folder.File(""); }

    void SetUp() override {
        if (m_before.empty()) return;
        WriteModel(Path(), GetParam().before());
        std::filesystem::permissions(Path(), static_cast<std::filesystem::perms>(kMode));
    }

    // What the folder shows to a reader.
    Model Seen() const {
        return std::filesystem::exists(Path()) ? Brief(ReadModel(Path())) : Model();
    }

    // The power fails before call nCut of the writer; what is left is read, and written to.
    void Fail(const Writer& writer, size_t nCut, Random* pRandom, bool bAgain) {
        SCOPED_TRACE("before call " + std::to_string(nCut) + ", after " +
                     (nCut == 0 ? "nothing" : writer.System().Call(nCut - 1)));
        const Disk disk = writer.System().AfterPowerFailure(nCut, pRandom);
        WriteDisk(Folder(), disk);
        const Model seen = Seen();
        const std::vector<Model> aStates = writer.StatesFrom(nCut);
        ASSERT_NE(std::find(aStates.begin(), aStates.end(), seen), aStates.end())
            << "of " << aStates.size() << " states none is " << testing::PrintToString(seen);
        ExpectMode();

        Writer next(Folder(), seen);
        Append(&next);
        if (HasFailure()) return;
        EXPECT_EQ(Seen(), next.Content());
        EXPECT_EQ(m_folder.FileCount(), 1u);
        ExpectMode();
        if (bAgain) Fail(next, (*pRandom)() % (next.System().CallCount() + 1), pRandom, false);
    }
    void Append(Writer* pWriter) {
        const bool bExists = std::filesystem::exists(Path());
        pWriter->Open(bExists ? ZRZipAccessMode::UPDATE : ZRZipAccessMode::CREATE);
        pWriter->ReadBack();
        pWriter->Put("Afterwards.dat", SmoothField(2000, 9));
        pWriter->Put(kMain, "<ZRF>afterwards</ZRF>");
        pWriter->Commit();
        pWriter->Close();
    }
    void ExpectMode() const {
        if (m_before.empty()) return;
        EXPECT_EQ(std::filesystem::status(Path()).permissions(),
                  static_cast<std::filesystem::perms>(kMode));
    }
    void Keep(int nState) {
        std::filesystem::copy(Path(), m_kept.File(std::to_string(nState) + ".zip"));
    }

    const Model m_before = Brief(GetParam().before());
    TemporaryFolder m_folder;
    TemporaryFolder m_kept;
};

TEST_P(PowerFailure, LeavesTheLastCommittedStateOrALaterOne) {
    Writer writer(Folder(), m_before);
    GetParam().work(&writer);
    ASSERT_EQ(writer.System().Now() == ReadDisk(Folder()), true) << "a change was not recorded";
    const int nStates = GetParam().nStates * (IsLong() ? 50 : 1);
    for (int nState = 0; nState < nStates && !HasFailure(); ++nState) {
        SCOPED_TRACE("seed " + std::to_string(nState));
        Random random(static_cast<unsigned>(nState));
        const size_t nCut = random() % (writer.System().CallCount() + 1);
        Fail(writer, nCut, &random, nState % 4 == 0);
        if (nState * 5 / nStates != (nState + 1) * 5 / nStates) Keep(nState);
    }
    EXPECT_EQ(Shell("python3 -c 'import sys, zipfile\nfor f in sys.argv[1:]: assert not "
                    "zipfile.ZipFile(f).testzip()' " +
                    m_kept.File("*")),
              0);
}

std::string Field(unsigned nSeed) {
    return RandomBytes(3000 + 700 * nSeed, nSeed);
}

void Fill(Writer* pWriter) {
    for (const auto& [sName, sData] : SmallModel()) pWriter->Put(sName, sData);
}

void MakeNew(Writer* pWriter) {
    pWriter->Open(ZRZipAccessMode::CREATE);
    Fill(pWriter);
    pWriter->Close();
}

void AppendStates(Writer* pWriter) {
    pWriter->Open(ZRZipAccessMode::UPDATE);
    for (unsigned nState = 1; nState < 6; ++nState) {
        pWriter->Put("State" + std::to_string(nState) + ".dat", Field(nState));
        pWriter->Put(kMain, "<ZRF>" + std::to_string(nState) + "</ZRF>");
        pWriter->Commit();
    }
    pWriter->Close();
}

void ReplaceAndRemove(Writer* pWriter) {
    pWriter->Open(ZRZipAccessMode::UPDATE);
    pWriter->Put("Database001\\Random.dat", Field(3));
    pWriter->Remove("Database001\\Empty.dat");
    pWriter->Commit();
    pWriter->Remove("Database001\\Nodes\\Nodes0001.dat");
    pWriter->Put("Database001\\Result.dat", "");
    pWriter->Commit();
    pWriter->Put(kMain, "<ZRF>closed</ZRF>");
    pWriter->Close();
}

void WriteAhead(Writer* pWriter) {
    pWriter->Open(ZRZipAccessMode::UPDATE);
    for (unsigned nState = 1; nState < 4; ++nState) {
        pWriter->Put("Large" + std::to_string(nState) + ".dat", RandomBytes(30000, nState), 0);
        pWriter->ReadBack();
        pWriter->Put("Other" + std::to_string(nState) + ".dat", Field(nState));
        pWriter->Put("Huge.dat", RandomBytes(1 << 20, nState), 0);
        pWriter->Remove("Huge.dat");
        if (nState != 2) pWriter->Commit();
    }
    pWriter->Close();
}

void GiveUp(Writer* pWriter) {
    pWriter->Open(ZRZipAccessMode::UPDATE);
    pWriter->Put("Large.dat", RandomBytes(30000), 0);
    pWriter->Remove("Database001\\Random.dat");
    pWriter->ReadBack();
    pWriter->Abandon();
    pWriter->Open(ZRZipAccessMode::UPDATE);
    pWriter->Put("State.dat", Field(1));
    pWriter->Close();
}

void ReplaceOften(Writer* pWriter) {
    for (unsigned nRun = 0; nRun < 3; ++nRun) {
        pWriter->Open(ZRZipAccessMode::UPDATE);
        pWriter->Put("Database001\\Nodes\\Nodes0001.dat", SmoothField(20000, nRun));
        pWriter->Commit();
        pWriter->Put("Database001\\Nodes\\Nodes0001.dat", SmoothField(20000, nRun + 10));
        pWriter->Close();
    }
}

void RemoveFirst(Writer* pWriter) {
    pWriter->Open(ZRZipAccessMode::UPDATE);
    pWriter->Remove("First.dat");
    pWriter->Commit();
    pWriter->Put(kMain, "<ZRF>removed</ZRF>");
    pWriter->Close();
}

Model NoFile() {
    return {};
}

Model OldModel() {
    return {{kMain, "<ZRF>old</ZRF>"}, {"Old.dat", RandomBytes(20000, 7)}};
}

// More lies after the first entry than is written anew in place.
Model LargeModel() {
    Model model{{"First.dat", RandomBytes(5000)}, {kMain, "<ZRF/>"}};
    const std::string sPart = RandomBytes(1 << 20);
    for (int i = 0; i < 65; ++i) model["Middle.dat"] += sPart;
    return model;
}

INSTANTIATE_TEST_SUITE_P(
    Replayed, PowerFailure,
    testing::Values(Scenario{"NewFile", 80, NoFile, MakeNew},
                    Scenario{"FileCreatedOverAnOldOne", 80, OldModel, MakeNew},
                    Scenario{"StatesAppended", 120, SmallModel, AppendStates},
                    Scenario{"EntriesReplacedAndRemoved", 120, SmallModel, ReplaceAndRemove},
                    Scenario{"EntriesWrittenAhead", 40, SmallModel, WriteAhead},
                    Scenario{"ChangesGivenUp", 60, SmallModel, GiveUp},
                    Scenario{"EntryReplacedAgainAndAgain", 80, SmallModel, ReplaceOften},
                    Scenario{"EntryRemovedFarBeforeTheEnd", 4, LargeModel, RemoveFirst}),
    [](const auto& scenario) { return std::string(scenario.param.sName); });

}  // namespace
}  // namespace unstruct
