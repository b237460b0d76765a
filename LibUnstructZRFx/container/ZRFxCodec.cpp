#include "container/ZRFxCodec.h"

#include <libdeflate.h>
#if NUO_HAS_ISAL
#include <isa-l/crc.h>
#include <isa-l/igzip_lib.h>
#endif

#include <algorithm>
#include <array>
#include <cstring>
#include <new>

#include "container/ZRFxDeflateWalk.h"

namespace unstruct {
namespace {

// Polynomials over the bits, as the CRC has them: reflected, x^0 in the highest bit.
constexpr uint32_t kPolynomial = 0xEDB88320u;
constexpr uint32_t kOne = 0x80000000u;

// The product of two polynomials, modulo that of the CRC.
constexpr uint32_t Product(uint32_t nLeft, uint32_t nRight) {
    uint32_t nProduct = 0;
    for (uint32_t nBit = kOne; nBit != 0; nBit >>= 1) {
        if ((nLeft & nBit) != 0) nProduct ^= nRight;
        nRight = (nRight >> 1) ^ ((nRight & 1) != 0 ? kPolynomial : 0);
    }
    return nProduct;
}

// x to the power of 8 * 2^i.
constexpr std::array<uint32_t, 40> MakePowers() {
    std::array<uint32_t, 40> aPowers{};
    aPowers[0] = kOne >> 8;
    for (size_t i = 1; i < aPowers.size(); ++i) {
        aPowers[i] = Product(aPowers[i - 1], aPowers[i - 1]);
    }
    return aPowers;
}

constexpr std::array<uint32_t, 40> kPowers = MakePowers();

}  // namespace

ZRFxCodec::ZRFxCodec() = default;
ZRFxCodec::~ZRFxCodec() = default;

bool ZRFxCodec::HasFastWay() {
    return NUO_HAS_ISAL != 0;
}

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

bool ZRFxCodec::DeflatePiece(const Way& way, const void* pData, size_t nSize, bool bLast,
                             uint8_t* pPacked, size_t nCapacity, size_t* pPackedSize) {
    if (way.bFast && HasFastWay()) {
        return DeflateFast(way.nLevel, pData, nSize, bLast, pPacked, nCapacity, pPackedSize);
    }
    if (!Deflate(way.nLevel, pData, nSize, pPacked, nCapacity, pPackedSize)) return false;
    if (!bLast) ZRFxDeflateWalk::Open(pPacked, nCapacity, pPackedSize);
    return true;
}

bool ZRFxCodec::InflatePiece(uint8_t* pPacked, size_t nPackedSize, bool bLast, void* pData,
                             size_t nSize) {
    if (bLast) return Inflate(pPacked, nPackedSize, pData, nSize);
    // The last block of a stream, stored and empty.
    constexpr uint8_t kEnd[kPieceEnd] = {0x01, 0x00, 0x00, 0xFF, 0xFF};
    std::memcpy(pPacked + nPackedSize, kEnd, kPieceEnd);
    return Inflate(pPacked, nPackedSize + kPieceEnd, pData, nSize);
}

#if NUO_HAS_ISAL

bool ZRFxCodec::DeflateFast(int nLevel, const void* pData, size_t nSize, bool bLast,
                            uint8_t* pPacked, size_t nCapacity, size_t* pPackedSize) {
    constexpr uint32_t kBufferSize =
        std::max({uint32_t{ISAL_DEF_LVL1_DEFAULT}, uint32_t{ISAL_DEF_LVL2_DEFAULT},
                  uint32_t{ISAL_DEF_LVL3_DEFAULT}});
    if (!m_pStream) m_pStream.reset(new (std::nothrow) isal_zstream);
    if (!m_pStreamBuffer) m_pStreamBuffer.reset(new (std::nothrow) uint8_t[kBufferSize]);
    if (!m_pStream || !m_pStreamBuffer) return false;
    isal_deflate_stateless_init(m_pStream.get());
    m_pStream->hist_bits = 0;  // the default; the call above leaves what the memory held
    m_pStream->level = static_cast<uint32_t>(std::min(nLevel, 3));
    m_pStream->level_buf = m_pStreamBuffer.get();
    m_pStream->level_buf_size = kBufferSize;
    m_pStream->end_of_stream = bLast ? 1 : 0;
    m_pStream->flush = bLast ? NO_FLUSH : FULL_FLUSH;
    m_pStream->next_in = static_cast<uint8_t*>(const_cast<void*>(pData));
    m_pStream->avail_in = static_cast<uint32_t>(nSize);
    m_pStream->next_out = pPacked;
    m_pStream->avail_out = static_cast<uint32_t>(nCapacity);
    const int nResult = isal_deflate_stateless(m_pStream.get());
    *pPackedSize = nResult == COMP_OK && m_pStream->avail_in == 0 ? m_pStream->total_out : 0;
    return true;
}

void ZRFxCodec::FreeStream::operator()(isal_zstream* pStream) const {
    delete pStream;
}

#else

bool ZRFxCodec::DeflateFast(int, const void*, size_t, bool, uint8_t*, size_t, size_t*) {
    return false;
}

void ZRFxCodec::FreeStream::operator()(isal_zstream*) const {}

#endif

bool ZRFxCodec::IsReachable(uint64_t nPackedSize, uint64_t nSize) {
    // A match of 258 bytes takes two bits at the least: 1032 bytes from one. The slack pays for the
    // bits of the first and last byte.
    constexpr uint64_t kMaxRatio = 1032;
    return nSize / kMaxRatio <= nPackedSize + 1;
}

uint32_t ZRFxCodec::Crc32(uint32_t nCrc, const void* pData, size_t nSize) {
    // A null pointer would restart the sum instead of continuing it over nothing.
    if (nSize == 0) return nCrc;
#if NUO_HAS_ISAL
    return crc32_gzip_refl(nCrc, static_cast<const uint8_t*>(pData), nSize);
#else
    return libdeflate_crc32(nCrc, pData, nSize);
#endif
}

// What follows multiplies the first sum by x for each of its bits.
uint32_t ZRFxCodec::CombinedCrc(uint32_t nFirst, uint32_t nSecond, uint64_t nSecondSize) {
    uint32_t nPower = kOne;
    for (size_t i = 0; nSecondSize >> i != 0; ++i) {
        if ((nSecondSize >> i & 1) != 0) nPower = Product(kPowers[i], nPower);
    }
    return Product(nPower, nFirst) ^ nSecond;
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
