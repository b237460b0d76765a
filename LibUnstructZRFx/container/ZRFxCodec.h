#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

struct isal_zstream;
struct libdeflate_compressor;
struct libdeflate_decompressor;

namespace unstruct {

/// Deflate, inflate and CRC-32, whole buffers at a time. Keeps what it makes on first use: a
/// compressor of the level last used, a fast one, and a decompressor. Used by one thread at a time.
///
/// A piece is a part of a deflate stream that ends at a byte and refers to nothing before it.
/// Pieces in a row, the last one ended as such, are one stream to every inflater.
class ZRFxCodec {
public:
    ZRFxCodec();
    ~ZRFxCodec();
    ZRFxCodec(const ZRFxCodec&) = delete;
    ZRFxCodec& operator=(const ZRFxCodec&) = delete;

    static constexpr int kDefaultLevel = 6;

    /// How a piece is deflated.
    struct Way {
        bool bFast = false;  ///< At several times the speed, on floats at much the same size.
        int nLevel = kDefaultLevel;  ///< 1 to 9; of the fast way 1 to 3.

        bool operator==(const Way&) const = default;
    };

    /// Whether the library of the fast way was built in. Without it, the fast way is libdeflate's
    /// at the same level.
    static bool HasFastWay();

    /// Compresses pData into pPacked. *pPackedSize becomes the packed size, or 0 when that exceeds
    /// nCapacity; with a capacity below nSize, one pass thus tells whether anything is gained.
    /// REQUIRES: 1 <= nLevel <= 9. False only when there is no memory.
    bool Deflate(int nLevel, const void* pData, size_t nSize, void* pPacked, size_t nCapacity,
                 size_t* pPackedSize);

    /// Inflates into exactly nSize bytes; false on damaged data, on any other size, and when packed
    /// bytes are left over. Throws std::bad_alloc when there is no memory, which must not pass
    /// for damage.
    bool Inflate(const void* pPacked, size_t nPackedSize, void* pData, size_t nSize);

    /// What an inflater needs after a piece that is not the last.
    static constexpr size_t kPieceEnd = 5;
    /// A capacity that every piece of nSize bytes fits.
    static size_t PieceBound(size_t nSize) { return nSize + nSize / 64 + 1024; }
    /// As `Deflate`, for a piece: the last one of its stream, or one that others follow.
    bool DeflatePiece(const Way& way, const void* pData, size_t nSize, bool bLast, uint8_t* pPacked,
                      size_t nCapacity, size_t* pPackedSize);
    /// As `Inflate`, for a piece. Writes the kPieceEnd bytes after it.
    bool InflatePiece(uint8_t* pPacked, size_t nPackedSize, bool bLast, void* pData, size_t nSize);

    /// Whether nPackedSize bytes of deflated data can expand to nSize.
    static bool IsReachable(uint64_t nPackedSize, uint64_t nSize);

    /// Continues nCrc over the data; starts at 0.
    static uint32_t Crc32(uint32_t nCrc, const void* pData, size_t nSize);
    /// The CRC of two pieces of data in a row, by the CRC of each and the length of the second.
    static uint32_t CombinedCrc(uint32_t nFirst, uint32_t nSecond, uint64_t nSecondSize);
    /// Copies the data and gives its CRC, each piece while it is in the cache.
    static uint32_t CopyWithCrc(const void* pData, size_t nSize, void* pTo);

private:
    struct FreeStream {
        void operator()(isal_zstream* pStream) const;
    };
    struct FreeCompressor {
        void operator()(libdeflate_compressor* pCompressor) const;
    };
    struct FreeDecompressor {
        void operator()(libdeflate_decompressor* pDecompressor) const;
    };

    bool DeflateFast(int nLevel, const void* pData, size_t nSize, bool bLast, uint8_t* pPacked,
                     size_t nCapacity, size_t* pPackedSize);

    std::unique_ptr<isal_zstream, FreeStream> m_pStream;
    std::unique_ptr<uint8_t[]> m_pStreamBuffer;
    std::unique_ptr<libdeflate_compressor, FreeCompressor> m_pCompressor;
    int m_nLevel = 0;
    std::unique_ptr<libdeflate_decompressor, FreeDecompressor> m_pDecompressor;
};

}  // namespace unstruct
