#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "container/ZRFxZipRawData.h"
#include "container/ZRFxZipStorage.h"

namespace unstruct {

/// Reads small pieces of a storage's committed state with few calls: a piece that follows the one
/// before is read together with what follows it, twice as much each time. Two streams may be
/// read in turn, as documents and data are. Takes 512 KiB at most. Used by one thread at a time.
class ZRFxReadAhead {
public:
    /// nSize bytes from nOffset on, valid until the next call; null when the storage cannot read
    /// them, which its error tells. Throws std::bad_alloc when there is no memory, so that no
    /// storage seems to end there. REQUIRES: 0 < nSize <= kMaxPiece.
    const uint8_t* Get(ZRFxZipStorage* pStorage, uint64_t nOffset, size_t nSize);
    /// Forgets what was read. Needed when the storage has another state.
    void Clear();

    static constexpr size_t kMaxPiece = size_t{256} << 10;

private:
    struct Window {
        bool Holds(uint64_t nFrom, size_t nSize) const;
        bool IsFollowedBy(uint64_t nFrom) const;

        ZRFxZipRawData data;
        uint64_t nOffset = 0;
        size_t nLength = 0;
    };

    /// The window that the piece continues, or else the one that was not used last.
    Window& Choose(uint64_t nOffset);

    std::array<Window, 2> m_aWindows;
    size_t m_nLast = 0;
};

}  // namespace unstruct
