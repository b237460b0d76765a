#pragma once

#include <cstddef>
#include <cstdint>

#include "container/ZRFxCodec.h"

namespace unstruct {

/// How the data of one entry is packed: in which way, and in pieces of which size. The plan follows
/// from data and level alone, never from the number of threads.
///
/// Levels 1 to 3 take the fast way. The others pack a sample of the data both in the fast way and
/// by libdeflate at their own level. Levels 4 to 6 take the fast one where it is at most 4 %
/// larger; then libdeflate's level 1 where that is; then their own. Levels 7 to 9 take the fast one
/// where it is no larger. Data of which a sample would be a large part, less than kSmallest bytes
/// or at levels 7 to 9 less than 512 KiB, is packed by libdeflate in one piece.
struct ZRFxPackingPlan {
    ZRFxCodec::Way way;     ///< At level 0 the data is stored.
    size_t nPieceSize = 0;  ///< Of all pieces but the last one, which may be shorter.

    static constexpr size_t kSmallest = size_t{64} << 10;

    /// REQUIRES: 1 <= nLevel <= 9, nSize > 0. Throws std::bad_alloc when there is no memory.
    static ZRFxPackingPlan Of(ZRFxCodec* pCodec, const uint8_t* pData, size_t nSize, int nLevel);

    size_t PieceCount(size_t nSize) const { return (nSize + nPieceSize - 1) / nPieceSize; }
};

}  // namespace unstruct
