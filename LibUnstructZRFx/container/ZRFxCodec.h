#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

struct libdeflate_compressor;
struct libdeflate_decompressor;

namespace unstruct {

/// Deflate, inflate and CRC-32, whole buffers at a time. Keeps one compressor of the level last
/// used and one decompressor, made on first use. Used by one thread at a time.
class ZRFxCodec {
public:
    ZRFxCodec();
    ~ZRFxCodec();
    ZRFxCodec(const ZRFxCodec&) = delete;
    ZRFxCodec& operator=(const ZRFxCodec&) = delete;

    static constexpr int kDefaultLevel = 6;

    /// Compresses pData into pPacked. *pPackedSize becomes the packed size, or 0 when that exceeds
    /// nCapacity; with a capacity below nSize, one pass thus tells whether anything is gained.
    /// REQUIRES: 1 <= nLevel <= 9. False only when there is no memory.
    bool Deflate(int nLevel, const void* pData, size_t nSize, void* pPacked, size_t nCapacity,
                 size_t* pPackedSize);

    /// Inflates into exactly nSize bytes; false on damaged data, on any other size, and when packed
    /// bytes are left over. Throws std::bad_alloc when there is no memory, which must not pass
    /// for damage.
    bool Inflate(const void* pPacked, size_t nPackedSize, void* pData, size_t nSize);

    /// Whether nPackedSize bytes of deflated data can expand to nSize.
    static bool IsReachable(uint64_t nPackedSize, uint64_t nSize);

    /// Continues nCrc over the data; starts at 0.
    static uint32_t Crc32(uint32_t nCrc, const void* pData, size_t nSize);
    /// Copies the data and gives its CRC, each piece while it is in the cache.
    static uint32_t CopyWithCrc(const void* pData, size_t nSize, void* pTo);

private:
    struct FreeCompressor {
        void operator()(libdeflate_compressor* pCompressor) const;
    };
    struct FreeDecompressor {
        void operator()(libdeflate_decompressor* pDecompressor) const;
    };

    std::unique_ptr<libdeflate_compressor, FreeCompressor> m_pCompressor;
    int m_nLevel = 0;
    std::unique_ptr<libdeflate_decompressor, FreeDecompressor> m_pDecompressor;
};

}  // namespace unstruct
