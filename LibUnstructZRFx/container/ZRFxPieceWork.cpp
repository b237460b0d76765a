#include "container/ZRFxPieceWork.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <cstring>
#include <mutex>
#include <new>

#include "container/ZRFxThreads.h"
#include "nvf/Progress.h"

namespace unstruct {

// One entry on its way: the packed pieces find their places in the order of the data.
class ZRFxPieceWork::Packing {
public:
    Packing(const ZRFxPackingPlan& plan, const uint8_t* pData, size_t nSize, const Put& put,
            ZRFxPieceList* pPieces)
        : m_plan(plan), m_pData(pData), m_nSize(nSize), m_put(put), m_pieces(*pPieces) {}

    void PackPiece(size_t nPiece, Worker* pWorker) {
        if (m_bEnded) return;
        try {
            DoPackPiece(nPiece, pWorker);
            if (m_pProgress && !m_pProgress->add(m_pieces.SizeOf(nPiece))) {
                End(Packed::kFailed, ZRFxCause::Stopped());
            }
        } catch (const std::bad_alloc&) {
            End(Packed::kFailed, ZRFxCause::OutOfMemory());
        }
    }

    // Reports what other threads did last, in that of the caller.
    void ReportRest() {
        if (m_pProgress && !m_pProgress->add(0)) End(Packed::kFailed, ZRFxCause::Stopped());
    }

    Packed Result() const { return m_eResult; }
    const ZRFxCause& Cause() const { return m_cause; }

private:
    void DoPackPiece(size_t nPiece, Worker* pWorker) {
        const size_t nFrom = nPiece * m_plan.nPieceSize;
        const size_t nSize = m_pieces.SizeOf(nPiece);
        uint8_t* pPacked = pWorker->room.Buffer();
        size_t nPacked = 0;
        const bool bLast = nFrom + nSize == m_nSize;
        if (!pWorker->codec.DeflatePiece(m_plan.way, m_pData + nFrom, nSize, bLast, pPacked,
                                         pWorker->room.Length(), &nPacked)) {
            throw std::bad_alloc();
        }
        m_pieces.aPieces[nPiece] = {nPacked, ZRFxCodec::Crc32(0, m_pData + nFrom, nSize)};
        uint64_t nOffset = 0;
        if (!TakePlace(nPiece, nPacked, &nOffset)) return;
        ZRFxCause cause;
        if (!m_put(nOffset, pPacked, nPacked, bLast, &cause))
            End(Packed::kFailed, std::move(cause));
    }

    // Waits for those of the pieces before this one.
    bool TakePlace(size_t nPiece, size_t nPacked, uint64_t* pOffset) {
        std::unique_lock lock(m_mutex);
        m_placed.wait(lock, [&] { return m_nPlaced == nPiece || m_bEnded; });
        if (m_bEnded) return false;
        if (nPacked == 0 || m_nNext + nPacked >= m_nSize) {
            lock.unlock();
            End(Packed::kNoGain, {});
            return false;
        }
        *pOffset = m_nNext;
        m_nNext += nPacked;
        ++m_nPlaced;
        lock.unlock();
        m_placed.notify_all();
        return true;
    }

    // The first one to end the work says why.
    void End(Packed eResult, ZRFxCause cause) {
        {
            const std::lock_guard lock(m_mutex);
            if (!m_bEnded) {
                m_eResult = eResult;
                m_cause = std::move(cause);
            }
            m_bEnded = true;
        }
        m_placed.notify_all();
    }

    nvf::Progress* const m_pProgress = nvf::Progress::current();
    const ZRFxPackingPlan& m_plan;
    const uint8_t* const m_pData;
    const size_t m_nSize;
    const Put& m_put;
    ZRFxPieceList& m_pieces;
    std::mutex m_mutex;
    std::condition_variable m_placed;
    std::atomic<bool> m_bEnded{false};
    Packed m_eResult = Packed::kDone;
    ZRFxCause m_cause;
    size_t m_nPlaced = 0;
    uint64_t m_nNext = 0;
};

// One entry, or a part of it, on its way back.
class ZRFxPieceWork::Unpacking {
public:
    Unpacking(const ZRFxPieceList& pieces, const Get& get, uint64_t nFrom, uint8_t* pData,
              size_t nSize)
        : m_pieces(pieces), m_get(get), m_nFrom(nFrom), m_pData(pData), m_nSize(nSize) {
        m_anCrcs.resize(PieceCount());
    }

    size_t FirstPiece() const { return static_cast<size_t>(m_nFrom / m_pieces.nPieceSize); }
    size_t PieceCount() const {
        const uint64_t nEnd = m_nFrom + m_nSize;
        return static_cast<size_t>((nEnd + m_pieces.nPieceSize - 1) / m_pieces.nPieceSize) -
               FirstPiece();
    }

    void UnpackPiece(size_t nIndex, Worker* pWorker) {
        if (m_bEnded) return;
        const size_t nPiece = FirstPiece() + nIndex;
        try {
            if (!UnpackTo(nPiece, pWorker, &m_anCrcs[nIndex])) m_bEnded = true;
            if (m_pProgress && !m_pProgress->add(m_pieces.SizeOf(nPiece))) m_bEnded = true;
        } catch (const std::bad_alloc&) {
            m_bEnded = true;
        }
    }

    // Reports what other threads did last, in that of the caller.
    void ReportRest() {
        if (m_pProgress && !m_pProgress->add(0)) m_bEnded = true;
    }

    // All pieces there, with the CRC of the entry where they have none of their own.
    bool IsSound() const {
        if (m_bEnded) return false;
        return m_pieces.bHasCrcs || m_pieces.CombinedCrc(m_anCrcs) == m_pieces.nCrc;
    }

private:
    bool UnpackTo(size_t nPiece, Worker* pWorker, uint32_t* pCrc) {
        const ZRFxPieceList::Piece& piece = m_pieces.aPieces[nPiece];
        const uint64_t nStart = uint64_t{nPiece} * m_pieces.nPieceSize;
        const size_t nSize = m_pieces.SizeOf(nPiece);
        // A piece at the end of a part goes by a room of its own.
        const bool bWhole = nStart >= m_nFrom && nStart + nSize <= m_nFrom + m_nSize;
        ZRFxZipRawData& plain = pWorker->plain;
        if (!bWhole && plain.Length() < nSize && !plain.Allocate(nSize)) return false;
        uint8_t* pPlain = bWhole ? m_pData + (nStart - m_nFrom) : plain.Buffer();
        uint8_t* pPacked = pWorker->room.Buffer();
        if (!m_get(m_pieces.PackedOffset(nPiece), pPacked, piece.nPacked) ||
            !pWorker->codec.InflatePiece(pPacked, piece.nPacked,
                                         nPiece + 1 == m_pieces.aPieces.size(), pPlain, nSize)) {
            return false;
        }
        *pCrc = ZRFxCodec::Crc32(0, pPlain, nSize);
        if (m_pieces.bHasCrcs && *pCrc != piece.nCrc) return false;
        if (!bWhole) CopyWanted(nStart, pPlain, nSize);
        return true;
    }

    void CopyWanted(uint64_t nStart, const uint8_t* pPlain, size_t nSize) {
        const uint64_t nFrom = std::max(nStart, m_nFrom);
        const uint64_t nTo = std::min(nStart + nSize, m_nFrom + m_nSize);
        std::memcpy(m_pData + (nFrom - m_nFrom), pPlain + (nFrom - nStart), nTo - nFrom);
    }

    nvf::Progress* const m_pProgress = nvf::Progress::current();
    const ZRFxPieceList& m_pieces;
    const Get& m_get;
    const uint64_t m_nFrom;
    uint8_t* const m_pData;
    const size_t m_nSize;
    std::vector<uint32_t> m_anCrcs;
    std::atomic<bool> m_bEnded{false};
};

ZRFxPieceWork::Packed ZRFxPieceWork::Pack(const ZRFxPackingPlan& plan, const uint8_t* pData,
                                          size_t nSize, const Put& put, ZRFxPieceList* pPieces) {
    pPieces->nSize = nSize;
    pPieces->nPieceSize = plan.nPieceSize;
    pPieces->aPieces.assign(plan.PieceCount(nSize), {});
    const size_t nPieces = pPieces->aPieces.size();
    const size_t nThreads = std::min(nPieces, ZRFxThreads::Count(m_nThreads));
    if (!MakeWorkers(nThreads, ZRFxCodec::PieceBound(std::min(nSize, plan.nPieceSize)))) {
        m_cause = ZRFxCause::OutOfMemory();
        return Packed::kFailed;
    }
    Packing packing(plan, pData, nSize, put, pPieces);
    ZRFxThreads::Run(nPieces, nThreads, [&](size_t nPiece, size_t nThread) {
        packing.PackPiece(nPiece, m_apWorkers[nThread].get());
    });
    packing.ReportRest();
    m_cause = packing.Cause();
    pPieces->Complete();
    return packing.Result();
}

bool ZRFxPieceWork::Unpack(const ZRFxPieceList& pieces, const Get& get, uint64_t nFrom,
                           uint8_t* pData, size_t nSize) {
    if (nSize == 0) return true;
    Unpacking unpacking(pieces, get, nFrom, pData, nSize);
    const size_t nPieces = unpacking.PieceCount();
    const size_t nThreads = std::min(nPieces, ZRFxThreads::Count(m_nThreads));
    if (!MakeWorkers(nThreads, pieces.LongestPacked() + ZRFxCodec::kPieceEnd)) return false;
    ZRFxThreads::Run(nPieces, nThreads, [&](size_t nPiece, size_t nThread) {
        unpacking.UnpackPiece(nPiece, m_apWorkers[nThread].get());
    });
    unpacking.ReportRest();
    return unpacking.IsSound();
}

bool ZRFxPieceWork::MakeWorkers(size_t nThreads, size_t nRoom) {
    while (m_apWorkers.size() < nThreads) m_apWorkers.push_back(std::make_unique<Worker>());
    return std::all_of(m_apWorkers.begin(), m_apWorkers.begin() + static_cast<long>(nThreads),
                       [&](const std::unique_ptr<Worker>& pWorker) {
                           return pWorker->room.Length() >= nRoom || pWorker->room.Allocate(nRoom);
                       });
}

}  // namespace unstruct
