#include "PeerMeasure.h"

#include <malloc.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <vector>

namespace {

constexpr size_t kMinRounds = 3;
constexpr double kEnoughSeconds = 2;

double Seconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_usec);
}

// A number from one of the process's files under /proc, by the word before it.
double ProcNumber(const char* sFile, const std::string& sWord) {
    std::ifstream file(sFile);
    for (std::string sRead; file >> sRead;) {
        double dNumber = 0;
        if (sRead == sWord && file >> dNumber) return dNumber;
    }
    Require(false, sWord);
    return 0;
}

double ResidentBytes() {
    return 1024 * ProcNumber("/proc/self/status", "VmRSS:");
}

double PeakResidentBytes() {
    return 1024 * ProcNumber("/proc/self/status", "VmHWM:");
}

void ResetPeak() {
    std::ofstream("/proc/self/clear_refs") << 5;
}

PeerFigures MeasureHere(const std::function<void()>& work) {
    ResetPeak();
    const double dResident = ResidentBytes();
    const double dWritten = ProcNumber("/proc/self/io", "wchar:");
    rusage before{};
    rusage after{};
    getrusage(RUSAGE_SELF, &before);
    const auto start = std::chrono::steady_clock::now();
    work();
    const auto end = std::chrono::steady_clock::now();
    getrusage(RUSAGE_SELF, &after);
    PeerFigures figures;
    figures.dWall = std::chrono::duration<double>(end - start).count();
    figures.dUser = Seconds(after.ru_utime) - Seconds(before.ru_utime);
    figures.dSystem = Seconds(after.ru_stime) - Seconds(before.ru_stime);
    figures.dMemory = PeakResidentBytes() - dResident;
    figures.dWritten = ProcNumber("/proc/self/io", "wchar:") - dWritten;
    return figures;
}

[[noreturn]] void RunAsCopy(const PeerCase& peerCase, int nPipe) {
    const PeerFigures figures = MeasureHere(peerCase.work);
    peerCase.check();
    Require(write(nPipe, &figures, sizeof(figures)) == sizeof(figures), "pipe");
    _exit(0);
}

PeerFigures Round(const PeerCase& peerCase) {
    peerCase.prepare();
    // What the caller has freed would hide what the work takes.
    malloc_trim(0);
    int anPipe[2];
    Require(pipe(anPipe) == 0, "pipe");
    const pid_t nCopy = fork();
    Require(nCopy >= 0, "fork");
    if (nCopy == 0) RunAsCopy(peerCase, anPipe[1]);
    close(anPipe[1]);
    PeerFigures figures;
    const bool bDone = read(anPipe[0], &figures, sizeof(figures)) == sizeof(figures);
    close(anPipe[0]);
    int nStatus = 0;
    waitpid(nCopy, &nStatus, 0);
    Require(bDone && nStatus == 0, "a round");
    return figures;
}

double Sum(const std::vector<PeerFigures>& aRounds, double PeerFigures::*figure) {
    double dSum = 0;
    for (const PeerFigures& figures : aRounds) dSum += figures.*figure;
    return dSum;
}

template <typename Figure>
double Median(const std::vector<PeerFigures>& aRounds, Figure figure) {
    std::vector<double> ad;
    for (const PeerFigures& figures : aRounds) ad.push_back(figure(figures));
    std::nth_element(ad.begin(), ad.begin() + static_cast<std::ptrdiff_t>(ad.size() / 2), ad.end());
    return ad[ad.size() / 2];
}

}  // namespace

void Require(bool bHolds, const std::string& sWhat) {
    if (bHolds) return;
    std::fprintf(stderr, "failed: %s\n", sWhat.c_str());
    std::_Exit(1);
}

PeerFigures Measure(const PeerCase& peerCase) {
    std::vector<PeerFigures> aRounds;
    while (aRounds.size() < kMinRounds || (aRounds.size() < peerCase.nMaxRounds &&
                                           Sum(aRounds, &PeerFigures::dWall) < kEnoughSeconds)) {
        aRounds.push_back(Round(peerCase));
    }
    const double dCpu = Median(aRounds, [](const auto& f) { return f.dUser + f.dSystem; });
    const double dUser = Sum(aRounds, &PeerFigures::dUser);
    const double dAll = std::max(1e-9, dUser + Sum(aRounds, &PeerFigures::dSystem));
    PeerFigures figures;
    figures.dUser = dCpu * dUser / dAll;
    figures.dSystem = dCpu - figures.dUser;
    figures.dWall = Median(aRounds, [](const auto& f) { return f.dWall; });
    figures.dMemory = Median(aRounds, [](const auto& f) { return f.dMemory; });
    figures.dWritten = Median(aRounds, [](const auto& f) { return f.dWritten; });
    figures.nRounds = static_cast<int>(aRounds.size());
    return figures;
}
