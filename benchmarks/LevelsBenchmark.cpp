// Prints what each level makes of the arrays of a solid, and of the ZRFx files that it is given:
// the packed part of the array, the speed on one thread in user CPU time, and the way that was
// chosen.
#include <sys/resource.h>

#include <algorithm>
#include <cstdio>
#include <numeric>
#include <string>
#include <vector>

#include "container/ZRFxPackingPlan.h"
#include "peers/PeerDataSet.h"

namespace {

using unstruct::ZRFxCodec;
using unstruct::ZRFxPackingPlan;

constexpr size_t kNodes = 300'000;
constexpr double kLeastTime = 0.3;

double UserTime() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_utime.tv_sec) +
           1e-6 * static_cast<double>(usage.ru_utime.tv_usec);
}

struct Array {
    std::string sName;
    std::vector<uint8_t> aBytes;
};

template <typename Value>
Array ArrayOf(const std::string& sName, const std::vector<Value>& aValues) {
    const auto* pBytes = reinterpret_cast<const uint8_t*>(aValues.data());
    return {sName, {pBytes, pBytes + aValues.size() * sizeof(Value)}};
}

std::vector<Array> ArraysOf(const PeerDataSet& data) {
    std::vector<int> anIds(data.NodeCount());
    std::iota(anIds.begin(), anIds.end(), 1);
    std::vector<Array> aArrays = {ArrayOf("coordinates", data.aCoordinates),
                                  ArrayOf("elements", data.aElements[0].aNodes),
                                  ArrayOf("node ids", anIds)};
    for (const PeerDataSet::Field& field : data.aStates.back().aFields) {
        aArrays.push_back(ArrayOf(field.sName, field.aValues));
    }
    return aArrays;
}

// As an entry is packed, but for its header.
ZRFxPackingPlan Pack(ZRFxCodec* pCodec, const std::vector<uint8_t>& aData, int nLevel,
                     std::vector<uint8_t>* pRoom, size_t* pPacked) {
    const auto plan = ZRFxPackingPlan::Of(pCodec, aData.data(), aData.size(), nLevel);
    *pPacked = 0;
    for (size_t nAt = 0; nAt < aData.size(); nAt += plan.nPieceSize) {
        const size_t nPart = std::min(plan.nPieceSize, aData.size() - nAt);
        size_t nPiece = 0;
        pCodec->DeflatePiece(plan.way, aData.data() + nAt, nPart, nAt + nPart == aData.size(),
                             pRoom->data(), pRoom->size(), &nPiece);
        *pPacked += nPiece;
    }
    return plan;
}

void PrintLevel(const Array& array, int nLevel) {
    ZRFxCodec codec;
    std::vector<uint8_t> room(ZRFxCodec::PieceBound(array.aBytes.size()));
    size_t nPacked = 0;
    ZRFxPackingPlan plan = Pack(&codec, array.aBytes, nLevel, &room, &nPacked);
    size_t nRounds = 0;
    const double dStart = UserTime();
    double dTime = 0;
    for (; dTime < kLeastTime; dTime = UserTime() - dStart, ++nRounds) {
        plan = Pack(&codec, array.aBytes, nLevel, &room, &nPacked);
    }
    const double dSize = static_cast<double>(array.aBytes.size());
    std::printf(" %.3f, %.0f %c%d%s |", static_cast<double>(nPacked) / dSize,
                1e-6 * dSize * static_cast<double>(nRounds) / dTime, plan.way.bFast ? 'F' : 'S',
                plan.way.nLevel, plan.nPieceSize < array.aBytes.size() ? "" : "*");
}

void PrintTable(const PeerDataSet& data, const std::string& sTitle) {
    constexpr int kLevels[] = {1, 2, 4, 5, 6, 7, 9};
    std::printf("| %s |", sTitle.c_str());
    for (const int nLevel : kLevels) std::printf(" level %d |", nLevel);
    std::printf("\n| --- |");
    for ([[maybe_unused]] const int nLevel : kLevels) std::printf(" --- |");
    for (const Array& array : ArraysOf(data)) {
        std::printf("\n| %s, %.1f MB |", array.sName.c_str(),
                    1e-6 * static_cast<double>(array.aBytes.size()));
        for (const int nLevel : kLevels) PrintLevel(array, nLevel);
        std::fflush(stdout);
    }
    std::printf("\n\n");
}

}  // namespace

int main(int nArguments, char** asArguments) {
    PrintTable(PeerDataSet::MakeSolid(kNodes, 1), "solid of 300,000 nodes");
    for (int i = 1; i < nArguments; ++i) {
        PrintTable(PeerDataSet::ReadZrfx(asArguments[i]), asArguments[i]);
    }
    return 0;
}
