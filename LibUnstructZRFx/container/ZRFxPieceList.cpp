#include "container/ZRFxPieceList.h"

#include <algorithm>

#include "ZRByteOrder.h"
#include "container/ZRFxCodec.h"

namespace unstruct {
namespace {

// The note: the size of a piece in four bytes; then, for each piece, its packed size in four bytes
// and, where the first bit of a byte in front says so, its CRC in four.
constexpr uint8_t kWithCrcs = 1;
constexpr size_t kHeaderSize = 5;

const uint8_t* Bytes(std::string_view s) {
    return reinterpret_cast<const uint8_t*>(s.data());
}

}  // namespace

bool ZRFxPieceList::Load(const ZRFxZipEntry& entry, uint64_t nPackedSize) {
    nSize = entry.nSize;
    if (entry.nMethod != kZipDeflated || !Parse(ZRFxZipDirectory::PieceNote(entry)) ||
        !HasSizes()) {
        return false;
    }
    Complete();
    const bool bFits = PackedSize() == nPackedSize && (!bHasCrcs || nCrc == entry.nCrc);
    nCrc = entry.nCrc;
    return bFits && (bHasCrcs || entry.bHasCrc);
}

void ZRFxPieceList::Complete() {
    m_anOffsets.assign(1, 0);
    std::vector<uint32_t> anCrcs;
    for (const Piece& piece : aPieces) {
        m_anOffsets.push_back(m_anOffsets.back() + piece.nPacked);
        anCrcs.push_back(piece.nCrc);
    }
    nCrc = CombinedCrc(anCrcs);
}

std::string ZRFxPieceList::Note() const {
    std::string sNote(1, static_cast<char>(bHasCrcs ? kWithCrcs : 0));
    AppendLittleEndian(&sNote, static_cast<uint32_t>(nPieceSize));
    for (const Piece& piece : aPieces) {
        AppendLittleEndian(&sNote, static_cast<uint32_t>(piece.nPacked));
        if (bHasCrcs) AppendLittleEndian(&sNote, piece.nCrc);
    }
    return sNote;
}

bool ZRFxPieceList::Parse(std::string_view sNote) {
    if (sNote.size() < kHeaderSize || Bytes(sNote)[0] > kWithCrcs) return false;
    bHasCrcs = Bytes(sNote)[0] == kWithCrcs;
    nPieceSize = LoadLittleEndian<uint32_t>(Bytes(sNote) + 1);
    const size_t nEach = bHasCrcs ? 8 : 4;
    sNote.remove_prefix(kHeaderSize);
    if (nPieceSize == 0 || sNote.size() % nEach != 0) return false;
    for (; !sNote.empty(); sNote.remove_prefix(nEach)) {
        const uint8_t* pPiece = Bytes(sNote);
        aPieces.push_back({LoadLittleEndian<uint32_t>(pPiece),
                           bHasCrcs ? LoadLittleEndian<uint32_t>(pPiece + 4) : 0});
    }
    return true;
}

// Whether data of that length has so many pieces, and each of them can be one.
bool ZRFxPieceList::HasSizes() const {
    const uint64_t nBefore = (aPieces.size() - 1) * uint64_t{nPieceSize};
    return aPieces.size() > 1 && nSize > nBefore && nSize - nBefore <= nPieceSize &&
           std::all_of(aPieces.begin(), aPieces.end(), [&](const Piece& piece) {
               return piece.nPacked > 0 && piece.nPacked <= ZRFxCodec::PieceBound(nPieceSize);
           });
}

size_t ZRFxPieceList::LongestPacked() const {
    return static_cast<size_t>(
        std::max_element(aPieces.begin(), aPieces.end(), [](const Piece& left, const Piece& right) {
            return left.nPacked < right.nPacked;
        })->nPacked);
}

uint32_t ZRFxPieceList::CombinedCrc(const std::vector<uint32_t>& anCrcs) const {
    uint32_t nSum = 0;
    for (size_t i = 0; i < anCrcs.size(); ++i) {
        nSum = ZRFxCodec::CombinedCrc(nSum, anCrcs[i], SizeOf(i));
    }
    return nSum;
}

}  // namespace unstruct
