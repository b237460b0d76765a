#include "container/ZRFxPackingPlan.h"

#include <algorithm>
#include <new>
#include <vector>

#include "container/ZRFxPieceList.h"

namespace unstruct {
namespace {

using Way = ZRFxCodec::Way;

constexpr int kLastFastLevel = 3;
constexpr int kLastMixedLevel = 6;
// The fast way may take 1/25 more.
constexpr size_t kTolerance = 25;

constexpr size_t kSampledPart = 128;
constexpr size_t kLeastSampled = size_t{16} << 10;
constexpr size_t kSlice = size_t{32} << 10;
constexpr size_t kMostSlices = 2;
// From here on, a sample takes at most 1/32 of the time of libdeflate, which levels 7 to 9 mostly
// choose. Those below choose mostly what saves far more.
constexpr size_t kSmallestAtHighLevels = 32 * kLeastSampled;

// A piece packs to about this, or to half of it: what packs well would lose much by many starts.
constexpr size_t kFastPiece = size_t{256} << 10;
constexpr size_t kSmallPiece = size_t{128} << 10;
constexpr size_t kMostGrowth = 8;
// Below, libdeflate packs in one piece.
constexpr size_t kSmallestInSmallPieces = size_t{512} << 10;
// From here on, the first piece takes at most 1/32 of the time.
constexpr size_t kSmallestTried = 32 * kSmallPiece;

// Some slices of the data, and how long they get.
class Sample {
public:
    Sample(ZRFxCodec* pCodec, const uint8_t* pData, size_t nSize) : m_codec(*pCodec) {
        const size_t nWanted = std::max(nSize / kSampledPart, kLeastSampled);
        m_nSlice = std::min(nWanted, kSlice);
        const size_t nSlices = std::min(nWanted / m_nSlice, kMostSlices);
        for (size_t i = 1; i <= nSlices; ++i) {
            m_apSlices.push_back(pData + (nSize - m_nSlice) / (nSlices + 1) * i / 8 * 8);
        }
        m_packed.resize(ZRFxCodec::PieceBound(m_nSlice));
    }

    size_t Size() const { return m_apSlices.size() * m_nSlice; }

    size_t PackedSize(const Way& way) {
        size_t nSum = 0;
        m_bOneBlock = true;
        for (const uint8_t* pSlice : m_apSlices) {
            size_t nPacked = 0;
            if (!m_codec.DeflatePiece(way, pSlice, m_nSlice, true, m_packed.data(), m_packed.size(),
                                      &nPacked)) {
                throw std::bad_alloc();
            }
            nSum += nPacked;
            m_bOneBlock = m_bOneBlock && (m_packed[0] & 1) != 0;
        }
        return nSum;
    }

    // Whether that made one block of each slice.
    bool IsOneBlock() const { return m_bOneBlock; }

private:
    ZRFxCodec& m_codec;
    std::vector<const uint8_t*> m_apSlices;
    size_t m_nSlice = 0;
    std::vector<uint8_t> m_packed;
    bool m_bOneBlock = true;
};

Way WayOf(int nLevel, size_t nFast, Sample* pSample) {
    if (!ZRFxCodec::HasFastWay()) return {false, nLevel};
    if (nLevel <= kLastFastLevel) return {true, std::min(nLevel, 2)};
    const size_t nSmall = pSample->PackedSize({false, nLevel});
    const bool bMixed = nLevel <= kLastMixedLevel;
    const size_t nMost = bMixed ? nSmall + nSmall / kTolerance : nSmall;
    if (nFast <= nMost) return {true, 1};
    return {false, bMixed && pSample->PackedSize({false, 1}) <= nMost ? 1 : nLevel};
}

// Whether libdeflate makes one block of the first piece, and then likely of most. Of several, the
// last one is found only by following all others, which takes up to half as long as packing.
bool IsOneBlock(ZRFxCodec* pCodec, const Way& way, const uint8_t* pData, size_t nSize) {
    std::vector<uint8_t> packed(ZRFxCodec::PieceBound(nSize));
    size_t nPacked = 0;
    if (!pCodec->DeflatePiece(way, pData, nSize, true, packed.data(), packed.size(), &nPacked)) {
        throw std::bad_alloc();
    }
    return nPacked > 0 && (packed[0] & 1) != 0;
}

}  // namespace

ZRFxPackingPlan ZRFxPackingPlan::Of(ZRFxCodec* pCodec, const uint8_t* pData, size_t nSize,
                                    int nLevel) {
    if (nSize < (nLevel > kLastMixedLevel ? kSmallestAtHighLevels : kSmallest)) {
        return {{false, nLevel}, nSize};
    }
    Sample sample(pCodec, pData, nSize);
    const size_t nFast = sample.PackedSize({true, 1});
    ZRFxPackingPlan plan;
    plan.way = WayOf(nLevel, nFast, &sample);
    plan.nPieceSize = plan.way.bFast ? kFastPiece : kSmallPiece;
    for (size_t nGrowth = 2; nGrowth <= kMostGrowth && nFast * nGrowth < sample.Size();
         nGrowth *= 2) {
        plan.nPieceSize *= 2;
    }
    while (plan.PieceCount(nSize) > ZRFxPieceList::kMostPieces) plan.nPieceSize *= 2;
    const bool bInPieces =
        plan.way.bFast ||
        (nSize >= kSmallestInSmallPieces && sample.IsOneBlock() &&
         (nSize < kSmallestTried || IsOneBlock(pCodec, plan.way, pData, plan.nPieceSize)));
    if (!bInPieces) plan.nPieceSize = nSize;
    return plan;
}

}  // namespace unstruct
