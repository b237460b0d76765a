#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "container/ZRFxZipDirectory.h"

namespace unstruct {

/// Where the pieces of a deflated entry begin: noted in an extra field of its directory record,
/// which other programs pass over. A note is a help and no more: it may be wrong, or of another
/// entry, as whoever packs an entry anew may keep its extra fields.
struct ZRFxPieceList {
    struct Piece {
        uint64_t nPacked = 0;  ///< Bytes in the archive.
        uint32_t nCrc = 0;     ///< Of the data; means nothing when bHasCrcs is false.
    };

    /// A note holds no more, as the extra fields of an entry take 65,535 bytes together.
    static constexpr size_t kMostPieces = 8000;

    /// All that the directory record notes of an entry's pieces. False when there is no note, or it
    /// does not fit the entry: its sizes do not add up to the entry's, or its CRCs not to its CRC.
    /// nPackedSize is that of the deflated data alone.
    bool Load(const ZRFxZipEntry& entry, uint64_t nPackedSize);
    /// The same as the content of the extra field.
    std::string Note() const;

    /// Sets what follows from sizes and pieces: the CRC and the offsets.
    void Complete();

    /// Of the data of a piece.
    size_t SizeOf(size_t nPiece) const {
        return static_cast<size_t>(std::min<uint64_t>(nPieceSize, nSize - nPiece * nPieceSize));
    }
    /// Where the packed piece begins, after the beginning of the first.
    uint64_t PackedOffset(size_t nPiece) const { return m_anOffsets[nPiece]; }
    /// Of all pieces together.
    uint64_t PackedSize() const { return m_anOffsets.back(); }
    size_t LongestPacked() const;
    /// The CRC of the entry by those of its pieces.
    uint32_t CombinedCrc(const std::vector<uint32_t>& anCrcs) const;

    uint64_t nSize = 0;     ///< Of the data.
    uint32_t nCrc = 0;      ///< Of the data.
    size_t nPieceSize = 0;  ///< Of the data of all pieces but the last one.
    bool bHasCrcs = true;   ///< An encrypted entry's would tell too much of it.
    std::vector<Piece> aPieces;

private:
    bool Parse(std::string_view sNote);
    bool HasSizes() const;

    std::vector<uint64_t> m_anOffsets;  // One more than there are pieces.
};

}  // namespace unstruct
