#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "container/ZRFxCause.h"
#include "container/ZRFxCodec.h"
#include "container/ZRFxPackingPlan.h"
#include "container/ZRFxPieceList.h"
#include "container/ZRFxZipRawData.h"

namespace unstruct {

/// Packs and unpacks the pieces of an entry, side by side where threads may help. Keeps a codec and
/// room for one piece for each thread until `Clear`. One caller at a time.
class ZRFxPieceWork {
public:
    /// Stores a packed piece, nOffset bytes after the beginning of the first one. Called by several
    /// threads at once, each time for other bytes. False, with the cause in *pCause, when it
    /// cannot.
    using Put = std::function<bool(uint64_t nOffset, const uint8_t* pPacked, size_t nSize,
                                   bool bLast, ZRFxCause* pCause)>;
    /// The same the other way.
    using Get = std::function<bool(uint64_t nOffset, uint8_t* pPacked, size_t nSize)>;

    enum class Packed {
        kDone,
        kNoGain,  ///< The pieces would be no shorter than the data.
        kFailed,  ///< The cause is in Error.
    };

    /// How many threads may be at work, as ZRFxThreads::Count takes it.
    void SetThreads(int nThreads) { m_nThreads = nThreads; }

    /// Packs in pieces, in the order of the data without gaps; *pPieces becomes their list.
    Packed Pack(const ZRFxPackingPlan& plan, const uint8_t* pData, size_t nSize, const Put& put,
                ZRFxPieceList* pPieces);
    /// Unpacks nSize bytes of the entry from byte nFrom on. False when a piece is not what the list
    /// says, cannot be read, or there is no memory: the entry may be sound all the same. False as
    /// well when the program stops it.
    /// REQUIRES: the list has CRCs, or all of the entry is asked for.
    bool Unpack(const ZRFxPieceList& pieces, const Get& get, uint64_t nFrom, uint8_t* pData,
                size_t nSize);

    /// Frees the memory of all threads.
    void Clear() { m_apWorkers.clear(); }
    const ZRFxCause& Error() const { return m_cause; }

private:
    struct Worker {
        ZRFxCodec codec;
        ZRFxZipRawData room;
        ZRFxZipRawData plain;
    };
    class Packing;
    class Unpacking;

    bool MakeWorkers(size_t nThreads, size_t nRoom);

    int m_nThreads = 0;
    std::vector<std::unique_ptr<Worker>> m_apWorkers;
    ZRFxCause m_cause;
};

}  // namespace unstruct
