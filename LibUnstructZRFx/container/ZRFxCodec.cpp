#include "container/ZRFxCodec.h"

#include <libdeflate.h>

#include <algorithm>
#include <cstring>
#include <new>

namespace unstruct {

ZRFxCodec::ZRFxCodec() = default;
ZRFxCodec::~ZRFxCodec() = default;

bool ZRFxCodec::Deflate(int nLevel, const void* pData, size_t nSize, void* pPacked,
                        size_t nCapacity, size_t* pPackedSize) {
    if (!m_pCompressor || m_nLevel != nLevel) {
        m_pCompressor.reset(libdeflate_alloc_compressor(nLevel));
        m_nLevel = nLevel;
    }
    if (!m_pCompressor) return false;
    *pPackedSize =
        libdeflate_deflate_compress(m_pCompressor.get(), pData, nSize, pPacked, nCapacity);
    return true;
}

bool ZRFxCodec::Inflate(const void* pPacked, size_t nPackedSize, void* pData, size_t nSize) {
    if (!m_pDecompressor) m_pDecompressor.reset(libdeflate_alloc_decompressor());
    if (!m_pDecompressor) throw std::bad_alloc();
    size_t nConsumed = 0;
    const libdeflate_result nResult = libdeflate_deflate_decompress_ex(
        m_pDecompressor.get(), pPacked, nPackedSize, pData, nSize, &nConsumed, nullptr);
    return nResult == LIBDEFLATE_SUCCESS && nConsumed == nPackedSize;
}

bool ZRFxCodec::IsReachable(uint64_t nPackedSize, uint64_t nSize) {
    // A match of 258 bytes takes two bits at the least: 1032 bytes from one. The slack pays for the
    // bits of the first and last byte.
    constexpr uint64_t kMaxRatio = 1032;
    return nSize / kMaxRatio <= nPackedSize + 1;
}

uint32_t ZRFxCodec::Crc32(uint32_t nCrc, const void* pData, size_t nSize) {
    // A null pointer would restart the sum instead of continuing it over nothing.
    return nSize == 0 ? nCrc : libdeflate_crc32(nCrc, pData, nSize);
}

uint32_t ZRFxCodec::CopyWithCrc(const void* pData, size_t nSize, void* pTo) {
    constexpr size_t kPiece = size_t{128} << 10;
    uint32_t nCrc = 0;
    for (size_t nDone = 0; nDone < nSize; nDone += kPiece) {
        const size_t nPiece = std::min(kPiece, nSize - nDone);
        uint8_t* pPiece = static_cast<uint8_t*>(pTo) + nDone;
        std::memcpy(pPiece, static_cast<const uint8_t*>(pData) + nDone, nPiece);
        nCrc = Crc32(nCrc, pPiece, nPiece);
    }
    return nCrc;
}

void ZRFxCodec::FreeCompressor::operator()(libdeflate_compressor* pCompressor) const {
    libdeflate_free_compressor(pCompressor);
}

void ZRFxCodec::FreeDecompressor::operator()(libdeflate_decompressor* pDecompressor) const {
    libdeflate_free_decompressor(pDecompressor);
}

}  // namespace unstruct
