#include "Steps.h"

#include <NuoZRFx/NuoZRFx.h>
#include <sys/resource.h>
#include <time.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>

using namespace nuo;
using namespace nuo::zrfx;

namespace {

constexpr int kLevel = 5;

void Require(bool bDone, const char* sWhat) {
    if (bDone) return;
    std::fprintf(stderr, "failed: %s\n", sWhat);
    std::exit(1);
}

double Cpu() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

double UserCpu() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_utime.tv_sec) +
           1e-6 * static_cast<double>(usage.ru_utime.tv_usec);
}

double Wall() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

double MedianOf(std::vector<double> ad, std::size_t nFrom, std::size_t nTo) {
    const auto middle = ad.begin() + static_cast<std::ptrdiff_t>((nFrom + nTo) / 2);
    std::nth_element(ad.begin() + static_cast<std::ptrdiff_t>(nFrom), middle,
                     ad.begin() + static_cast<std::ptrdiff_t>(nTo));
    return *middle;
}

// Smooth over the nodes, with noise of relative size 1e-4.
std::vector<float> MakeField(std::size_t nCount, unsigned nSeed) {
    std::minstd_rand random(nSeed);
    std::uniform_real_distribution<float> noise(-1e-4f, 1e-4f);
    std::vector<float> field(nCount);
    for (std::size_t i = 0; i < nCount; ++i) {
        field[i] = std::sin(0.01f * static_cast<float>(i) + static_cast<float>(nSeed)) *
                   (1.0f + noise(random));
    }
    return field;
}

class ZrfxSteps : public StepWriter {
public:
    ZrfxSteps(const std::string& sPath, const StepData& data) : m_data(data) {
        FileSettings settings;
        settings.compressionLevel = kLevel;
        Require(m_file.create(sPath, settings), "create");
        m_database =
            new Database(&m_file, "Model", 0, Database::STRUCTURAL, Database::TRANSIENT, "");
        WriteMesh();
        for (std::size_t i = 0; i < StepData::kResults; ++i) {
            const int nId = static_cast<int>(i) + 1;
            m_apResults.push_back(
                new ResultBlock(nId, ResultBlock::SCALAR, ResultBlock::NODE_MAPPING));
            m_apResults.back()->setName("Result " + std::to_string(nId));
            m_apResults.back()->setResultId(nId);
        }
    }

    void Step(std::size_t nStep) override {
        const int nState = static_cast<int>(nStep) + 1;
        for (std::size_t i = 0; i < StepData::kResults; ++i) {
            const int nId = static_cast<int>(nStep * StepData::kResults + i) + 1;
            PtrRef<ResultValuesBlock> pValues =
                new ResultValuesBlock(nId, ResultValuesBlock::SCALAR1D, false);
            const std::vector<float>& values = m_data.Values(nStep, i);
            Require(pValues->setMapToBlockId(1, Block::NODES) &&
                        pValues->setResultValueData(values.data(), values.size(), nullptr) &&
                        m_database->writeBlock(pValues.p()) &&
                        m_apResults[i]->addResultValuesBlock(nId, nState) &&
                        m_database->writeBlock(m_apResults[i].p()),
                    "result");
        }
        Require(m_pStates->addStateInfo(nState, "", 0.1f * static_cast<float>(nState),
                                        StateInfoBlock::TIME) &&
                    m_database->writeBlock(m_pStates.p()) && m_file.flush(),
                "step");
    }

    void Close() override { Require(m_file.close(), "close"); }

private:
    void WriteMesh() {
        const std::size_t nNodes = m_data.Values(0, 0).size();
        PtrRef<NodeBlock> pNodes = new NodeBlock(1, false);
        PtrRef<ElementBlock> pElements = new ElementBlock(1, false, false);
        PtrRef<GeometryBlock> pGeometry = new GeometryBlock(1);
        pElements->setNodeBlockId(1);
        Require(pNodes->setNodes(MakeField(3 * nNodes, 1), {}) &&
                    pElements->addElement(ElementBlock::TETRAHEDRONS, {0, 1, 2, 3}) &&
                    pGeometry->addElementBlock(0, 1, 1) && m_database->writeBlock(pNodes.p()) &&
                    m_database->writeBlock(pElements.p()) && m_database->writeBlock(pGeometry.p()),
                "mesh");
    }

    const StepData& m_data;
    File m_file;
    PtrRef<Database> m_database;
    std::vector<PtrRef<ResultBlock>> m_apResults;
    PtrRef<StateInfoBlock> m_pStates = new StateInfoBlock;
};

struct Run {
    double dEarly = 0;
    double dLate = 0;
    double dUser = 0;
};

template <typename AfterStep>
Run WriteSteps(StepWriter& writer, std::size_t nSteps, AfterStep afterStep) {
    std::vector<double> adCpu;
    const double dUser = UserCpu();
    double dAside = 0;
    for (std::size_t i = 0; i < nSteps; ++i) {
        const double dStart = Cpu();
        writer.Step(i);
        adCpu.push_back(Cpu() - dStart);
        const double dUserAside = UserCpu();
        afterStep(i);
        dAside += UserCpu() - dUserAside;
    }
    writer.Close();
    const std::size_t nWindow = std::min<std::size_t>(100, nSteps / 4);
    return {MedianOf(adCpu, nWindow / 2, nWindow * 3 / 2),
            MedianOf(adCpu, nSteps - nWindow, nSteps), UserCpu() - dUser - dAside};
}

double OpeningTime(const std::string& sPath) {
    const double dStart = Wall();
    File file;
    Require(file.open(sPath), "open");
    return Wall() - dStart;
}

// The bytes that closing would not write again, in percent of the file.
double LeftBehind(const std::string& sPath, const std::string& sCopy) {
    const std::string sCommand = "zrfx copy '" + sPath + "' '" + sCopy + "' >/dev/null 2>&1";
    if (std::system(sCommand.c_str()) != 0) return -1;
    const double dFile = static_cast<double>(std::filesystem::file_size(sPath));
    return 100 * (dFile - static_cast<double>(std::filesystem::file_size(sCopy))) / dFile;
}

}  // namespace

StepData::StepData(std::size_t nNodes) {
    for (std::size_t i = 0; i < kVariants * kResults; ++i) {
        m_aaValues.push_back(MakeField(nNodes, static_cast<unsigned>(i) + 2));
    }
}

std::unique_ptr<StepWriter> MakeZrfxSteps(const std::string& sPath, const StepData& data) {
    return std::make_unique<ZrfxSteps>(sPath, data);
}

void MeasureSteps(const std::string& sFolder, std::size_t nSteps, std::size_t nNodes) {
    const StepData data(nNodes);
    const std::string sPath = sFolder + "/steps.zrfx";
    Instance instance;
    Require(ZRFxComponent::initialize(&instance), "initialize");
    std::printf("%zu steps of %zu results of %zu nodes, a flush a step\n", nSteps,
                StepData::kResults, nNodes);
    File reader;
    std::vector<double> adRefresh;
    double dOpenDuring = 0;
    const auto ours = MakeZrfxSteps(sPath, data);
    const Run run = WriteSteps(*ours, nSteps, [&](std::size_t nStep) {
        if (nStep + 12 == nSteps) {
            dOpenDuring = OpeningTime(sPath);
            Require(reader.open(sPath), "open");
        }
        if (nStep + 12 <= nSteps) return;
        bool bChanged = false;
        const double dStart = Wall();
        Require(reader.refresh(&bChanged) && bChanged, "refresh");
        adRefresh.push_back(Wall() - dStart);
    });
    std::printf("  CPU of a step, early %.3f ms, late %.3f ms, ratio %.2f; all user %.2f s\n",
                1e3 * run.dEarly, 1e3 * run.dLate, run.dLate / run.dEarly, run.dUser);
    std::printf("  opening during the run %.3f s, after close %.3f s; refresh %.3f ms\n",
                dOpenDuring, OpeningTime(sPath), 1e3 * MedianOf(adRefresh, 0, adRefresh.size()));
    std::printf("  %.1f MB after close",
                1e-6 * static_cast<double>(std::filesystem::file_size(sPath)));
    const double dLeft = LeftBehind(sPath, sFolder + "/copied.zrfx");
    dLeft<0 ? std::puts("") : std::printf(", %.2f %% left behind\n", dLeft)> 0;
    if (const auto theirs = MakeHdf5Steps(sFolder + "/steps.h5", data)) {
        const Run other = WriteSteps(*theirs, nSteps, [](std::size_t) {});
        std::printf("  HDF5: early %.3f ms, late %.3f ms; all user %.2f s; ours takes %.2f times\n",
                    1e3 * other.dEarly, 1e3 * other.dLate, other.dUser, run.dUser / other.dUser);
    } else {
        std::puts("  HDF5 was not found");
    }
    std::fflush(stdout);
}
