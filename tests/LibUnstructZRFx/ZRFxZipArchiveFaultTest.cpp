// Writers that are killed, machines that fail, readers that come at the wrong moment.
#include <signal.h>
#include <sys/wait.h>

#include <functional>

#include "container/ZRFxZipArchive.h"
#include "support/FaultySystem.h"
#include "support/ZipArchives.h"

namespace unstruct {
namespace {

using namespace ziptest;

// Failing system calls ------------------------------------------------------------------------

using Step = std::function<bool(ZRFxZipArchive*)>;

// How calls fail, and how much of what is written waits in memory.
using Manner = std::pair<FaultySystem::Failing, uint64_t>;

class FailingCalls : public testing::TestWithParam<Manner> {
protected:
    // What a writer does, and what the archive may hold meanwhile.
    struct Work {
        std::vector<Step> aSteps;
        std::vector<Model> aStates;  // Before, after each commit.
    };

    Work Create() const {
        Work work = {{Opening(ZRZipAccessMode::CREATE)}, {Model{}, SmallModel(), Changed()}};
        for (const auto& [sName, sData] : SmallModel()) {
            work.aSteps.push_back([sName = sName, sData = sData](auto* p) {
                return p->Contains(sName) || AddText(p, sName, sData);
            });
        }
        work.aSteps.push_back([](auto* p) { return p->Commit(); });
        return WithChanges(std::move(work));
    }
    Work Append() const {
        return WithChanges({{Opening(ZRZipAccessMode::UPDATE)}, {SmallModel(), Changed()}});
    }
    Step Opening(ZRZipAccessMode eMode) const {
        return [this, eMode](auto* p) { return p->Open(m_sPath, eMode); };
    }
    static Model Changed() {
        Model model = SmallModel();
        model["ZRF.xml"] = "<ZRF>changed</ZRF>";
        model["State.dat"] = SmoothField(3000, 5);
        model.erase("Database001\\Result.dat");
        return model;
    }
    static Work WithChanges(Work work) {
        for (const char* sName : {"ZRF.xml", "State.dat"}) {
            work.aSteps.push_back([sName, sData = Changed().at(sName)](auto* p) {
                return ReplaceText(p, sName, sData);
            });
        }
        work.aSteps.push_back([](auto* p) {
            return !p->Contains("Database001\\Result.dat") || p->Remove("Database001\\Result.dat");
        });
        work.aSteps.push_back([](auto* p) { return p->Close(); });
        return work;
    }

    bool IsOneOf(const std::vector<Model>& aStates, const Model& seen) const {
        return std::find(aStates.begin(), aStates.end(), seen) != aStates.end();
    }

    // Does the work with the nth call failing; false when no call failed any more.
    bool SurvivesFailureOf(int nCall, const Work& work) {
        FaultySystem system;
        const bool bOnce = GetParam().first == FaultySystem::Failing::kOnce;
        {
            ZRFxZipArchive archive;
            archive.SetPendingLimit(GetParam().second);
            system.FailCall(nCall, ENOSPC, GetParam().first);
            for (const Step& step : work.aSteps) {
                if (step(&archive)) continue;
                EXPECT_TRUE(system.HasFailed()) << archive.LastError();
                EXPECT_FALSE(archive.LastError().empty());
                if (!bOnce) break;
                if (std::filesystem::exists(m_sPath)) {
                    const Model seen = ReadModel(m_sPath);
                    EXPECT_TRUE(IsOneOf(work.aStates, seen)) << testing::PrintToString(seen);
                }
                EXPECT_TRUE(step(&archive)) << archive.LastError();
            }
            const bool bFailed = system.HasFailed();
            archive.Abandon();
            if (!bFailed) return false;
        }
        system.Recover();
        if (bOnce) {
            EXPECT_EQ(ReadModel(m_sPath), work.aStates.back());
        } else if (std::filesystem::exists(m_sPath)) {
            const Model seen = ReadModel(m_sPath);
            EXPECT_TRUE(IsOneOf(work.aStates, seen)) << testing::PrintToString(seen);
            ZRFxZipArchive archive;
            EXPECT_TRUE(archive.Open(m_sPath, ZRZipAccessMode::UPDATE)) << archive.LastError();
            EXPECT_EQ(ContentOf(&archive), seen);
            EXPECT_TRUE(archive.Close());
            EXPECT_EQ(m_folder.FileCount(), 1u);
        }
        return true;
    }

    TemporaryFolder m_folder;
    const std::string m_sPath = m_folder.File("model.zrfx");
};

TEST_P(FailingCalls, CreationLeavesAWholeArchiveOrNone) {
    for (int nCall = 1;; ++nCall) {
        SCOPED_TRACE(nCall);
        std::filesystem::remove(m_sPath);
        if (!SurvivesFailureOf(nCall, Create()) || HasFailure()) break;
        ASSERT_LT(nCall, 1000);
    }
}

TEST_P(FailingCalls, AppendingLeavesTheOldStateOrTheNew) {
    for (int nCall = 1;; ++nCall) {
        SCOPED_TRACE(nCall);
        WriteModel(m_sPath, SmallModel());
        if (!SurvivesFailureOf(nCall, Append()) || HasFailure()) break;
        ASSERT_LT(nCall, 1000);
    }
}

TEST_P(FailingCalls, ReadingReportsThemAndGivesNothingWrong) {
    WriteModel(m_sPath, SmallModel());
    for (int nCall = 1;; ++nCall) {
        FaultySystem system;
        ZRFxZipArchive archive;
        system.FailCall(nCall, EIO, GetParam().first);
        Model seen;
        if (archive.Open(m_sPath, ZRZipAccessMode::READ_ONLY)) seen = ContentOf(&archive);
        for (const auto& [sName, sData] : seen) {
            EXPECT_TRUE(sData == SmallModel()[sName] || sData == archive.LastError() ||
                        sData.find(sName) != std::string::npos)
                << nCall;
        }
        if (!system.HasFailed()) break;
        ASSERT_LT(nCall, 1000);
    }
}

INSTANTIATE_TEST_SUITE_P(Faults, FailingCalls,
                         testing::Values(Manner{FaultySystem::Failing::kOnce, 1 << 20},
                                         Manner{FaultySystem::Failing::kFromThenOn, 1 << 20},
                                         Manner{FaultySystem::Failing::kOnce, 10},
                                         Manner{FaultySystem::Failing::kFromThenOn, 10}));

// Killed writers --------------------------------------------------------------------------------

// A solver: state after state with its documents, each committed and told to the parent.
class Solver {
public:
    static std::string StateName(int nState) { return "State" + std::to_string(nState) + ".dat"; }
    // Some states are large, and shrink: several threads pack and write their pieces.
    static std::string StateData(int nState) {
        const bool bLarge = nState % 4 == 1;
        std::string s =
            RandomBytes(1000 + static_cast<size_t>(nState * 7919 % 300000) + (bLarge ? 600'000 : 0),
                        static_cast<unsigned>(nState) + 1);
        for (size_t i = 0; bLarge && i < s.size(); i += 4) s[i] = 0;
        return s;
    }

    Solver(const std::string& sPath, ZRZipAccessMode eMode, int nFirst, int nStates) {
        int anPipe[2];
        if (pipe(anPipe) != 0) return;
        m_nProgress = anPipe[0];
        m_nChild = fork();
        if (m_nChild == 0) _exit(Work(sPath, eMode, nFirst, nStates, anPipe[1]));
        close(anPipe[1]);
    }
    ~Solver() { close(m_nProgress); }
    Solver(const Solver&) = delete;
    Solver& operator=(const Solver&) = delete;

    void Kill() { kill(m_nChild, SIGKILL); }
    // Waits for the end and gives the number of steps done: opening, then one a commit.
    int StepsDone() {
        int nStatus = 0;
        waitpid(m_nChild, &nStatus, 0);
        EXPECT_TRUE(WIFSIGNALED(nStatus) || WEXITSTATUS(nStatus) == 0);
        char aSteps[4096];
        const ssize_t nSteps = read(m_nProgress, aSteps, sizeof(aSteps));
        return static_cast<int>(nSteps);
    }
    bool IsDone() const {
        siginfo_t info{};
        waitid(P_PID, static_cast<id_t>(m_nChild), &info, WEXITED | WNOHANG | WNOWAIT);
        return info.si_pid != 0;
    }

private:
    static int Work(const std::string& sPath, ZRZipAccessMode eMode, int nFirst, int nStates,
                    int nProgress) {
        ZRFxZipArchive archive;
        archive.SetPendingLimit(50000);  // Most states are written ahead of their commit.
        archive.SetThreads(3);
        if (!archive.Open(sPath, eMode)) return 1;
        if (write(nProgress, "o", 1) != 1) return 1;
        for (int i = nFirst; i < nFirst + nStates; ++i) {
            if (!AddText(&archive, StateName(i), StateData(i), 1) ||
                !ReplaceText(&archive, "Database-TOC.xml", std::string(1000 + 10 * i, 'x')) ||
                !ReplaceText(&archive, "ZRF.xml", std::to_string(i + 1)) || !archive.Commit() ||
                write(nProgress, "c", 1) != 1) {
                return 1;
            }
        }
        return 0;
    }

    pid_t m_nChild = -1;
    int m_nProgress = -1;
};

class KilledWriter : public testing::Test {
protected:
    static int Rounds() {
        const char* sLong = getenv("NUO_LONG_TESTS");
        return sLong && std::string(sLong) == "1" ? 200 : 20;
    }
    void ExpectStates(const Model& seen, int nAtLeast) {
        const auto main = seen.find("ZRF.xml");
        const int nStates = main == seen.end() ? 0 : std::stoi(main->second);
        EXPECT_GE(nStates, nAtLeast);
        EXPECT_EQ(seen.size(), nStates == 0 ? 0u : static_cast<size_t>(nStates) + 2);
        for (int i = 0; i < nStates; ++i) {
            const auto state = seen.find(Solver::StateName(i));
            ASSERT_NE(state, seen.end()) << i;
            EXPECT_EQ(state->second == Solver::StateData(i), true) << i;
        }
    }
    // Reader and writer see the same whole states, and nothing is left beside the file.
    void ExpectWhole(int nAtLeast) {
        const Model seen = ReadModel(m_sPath);
        ExpectStates(seen, nAtLeast);
        ZRFxZipArchive archive;
        ASSERT_TRUE(archive.Open(m_sPath, ZRZipAccessMode::UPDATE)) << archive.LastError();
        EXPECT_EQ(ContentOf(&archive), seen);
        ASSERT_TRUE(archive.Close());
        EXPECT_EQ(m_folder.FileCount(), 1u);
        if (!seen.empty()) {
            EXPECT_EQ(Shell("unzip -t " + m_sPath), 0);
        }
    }

    TemporaryFolder m_folder;
    const std::string m_sPath = m_folder.File("model.zrfx");
    std::mt19937 m_random{std::random_device{}()};
};

TEST_F(KilledWriter, NewFileOpensWithEverythingCommitted) {
    for (int i = 0; i < Rounds(); ++i) {
        std::filesystem::remove(m_sPath);
        Solver solver(m_sPath, ZRZipAccessMode::CREATE, 0, 1000);
        usleep(m_random() % 40000);
        solver.Kill();
        const int nSteps = solver.StepsDone();
        if (nSteps > 0) {
            EXPECT_TRUE(std::filesystem::exists(m_sPath));
        }
        if (std::filesystem::exists(m_sPath)) ExpectWhole(nSteps - 1);
        ASSERT_FALSE(HasFailure()) << "round " << i;
    }
}

TEST_F(KilledWriter, AppendedFileKeepsAllItHeld) {
    {
        Solver solver(m_sPath, ZRZipAccessMode::CREATE, 0, 5);
        ASSERT_EQ(solver.StepsDone(), 6);
    }
    const std::string sBefore = ReadWhole(m_sPath);
    for (int i = 0; i < Rounds(); ++i) {
        WriteWhole(m_sPath, sBefore);
        Solver solver(m_sPath, ZRZipAccessMode::UPDATE, 5, 1000);
        usleep(m_random() % 40000);
        solver.Kill();
        ExpectWhole(5 + std::max(0, solver.StepsDone() - 1));
        ASSERT_FALSE(HasFailure()) << "round " << i;
    }
}

// A reader that comes again and again while a writer commits sees whole states, and never waits.
TEST_F(KilledWriter, ReadersBesideALivingWriterSeeWholeStates) {
    Solver solver(m_sPath, ZRZipAccessMode::CREATE, 0, 150);
    int nOpened = 0;
    size_t nLast = 0;
    while (!solver.IsDone()) {
        ZRFxZipArchive reader;
        if (!reader.Open(m_sPath, ZRZipAccessMode::READ_ONLY)) {
            ASSERT_EQ(nOpened, 0) << reader.LastError();
            continue;
        }
        ++nOpened;
        const size_t nEntries = reader.EntryCount();
        ASSERT_GE(nEntries, nLast);
        nLast = nEntries;
        if (nEntries == 0) continue;
        ASSERT_GE(nEntries, 3u);
        const int nStates = static_cast<int>(nEntries) - 2;
        std::string sData;
        ASSERT_TRUE(ReadText(&reader, "ZRF.xml", &sData)) << reader.LastError();
        EXPECT_EQ(sData, std::to_string(nStates));
        for (int i : {0, nStates / 2, nStates - 1}) {
            ASSERT_TRUE(ReadText(&reader, Solver::StateName(i), &sData)) << reader.LastError();
            ASSERT_EQ(sData == Solver::StateData(i), true);
        }
    }
    EXPECT_EQ(solver.StepsDone(), 151);
    EXPECT_GT(nOpened, 10);
    ExpectWhole(150);
}

}  // namespace
}  // namespace unstruct
