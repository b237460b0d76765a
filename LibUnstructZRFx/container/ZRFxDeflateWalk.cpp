#include "container/ZRFxDeflateWalk.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <utility>

#include "ZRByteOrder.h"

namespace unstruct {
namespace {

constexpr uint32_t kStored = 0;
constexpr uint32_t kFixed = 1;
constexpr uint32_t kDynamic = 2;
constexpr int kEndOfBlock = 256;
constexpr size_t kMaxSymbols = 286;
constexpr size_t kMaxDistances = 30;
// Bits that follow the symbol of a length, from 257 on, and that of a distance.
constexpr uint8_t kLengthExtra[] = {0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 2, 2, 2,
                                    2, 3, 3, 3, 3, 4, 4, 4, 4, 5, 5, 5, 5, 0};
constexpr uint8_t kDistanceExtra[] = {0, 0, 0, 0, 1, 1, 2, 2,  3,  3,  4,  4,  5,  5,  6,
                                      6, 7, 7, 8, 8, 9, 9, 10, 10, 11, 11, 12, 12, 13, 13};

uint32_t Reversed(uint32_t nCode, size_t nLength) {
    uint32_t nReversed = 0;
    for (size_t i = 0; i < nLength; ++i) nReversed |= (nCode >> i & 1) << (nLength - 1 - i);
    return nReversed;
}

}  // namespace

void ZRFxDeflateWalk::Open(uint8_t* pStream, size_t nCapacity, size_t* pSize) {
    const size_t nSize = std::exchange(*pSize, 0);
    if (nSize == 0 || nCapacity < nSize + kRoom) return;
    std::memset(pStream + nSize, 0, kRoom);
    ZRFxDeflateWalk walk(pStream, nSize);
    if (!walk.FindLastBlock() || (walk.m_nAt + 7) / 8 != nSize) return;
    pStream[walk.m_nLastBlock / 8] &= static_cast<uint8_t>(~(1u << walk.m_nLastBlock % 8));
    // The header of the stored block takes three bits, all zero, and its length begins at a byte.
    const size_t nEmpty = (walk.m_nAt + 3 + 7) / 8;
    pStream[nEmpty + 2] = pStream[nEmpty + 3] = 0xFF;
    *pSize = nEmpty + 4;
}

bool ZRFxDeflateWalk::FindLastBlock() {
    while (m_nAt < m_nBits) {
        m_nLastBlock = m_nAt;
        const bool bLast = Take(1) != 0;
        if (!SkipBlock(Take(2), bLast)) return false;
        if (bLast) return true;
    }
    return false;
}

bool ZRFxDeflateWalk::SkipBlock(uint32_t nType, bool bLast) {
    if (nType == kStored) return SkipStored();
    if (nType == kFixed) return MakeFixedCodes() && SkipSymbols();
    if (nType != kDynamic || !ReadCodes()) return false;
    return (bLast && FindEndOfBlock()) || SkipSymbols();
}

bool ZRFxDeflateWalk::MakeFixedCodes() {
    std::array<uint8_t, 288> aLengths;
    const auto aEnds = {std::pair{144, 8}, {256, 9}, {280, 7}, {288, 8}};
    auto next = aLengths.begin();
    for (const auto& [nEnd, nLength] : aEnds) {
        const auto end = aLengths.begin() + nEnd;
        std::fill(next, end, static_cast<uint8_t>(nLength));
        next = end;
    }
    std::array<uint8_t, kMaxDistances> aDistances;
    aDistances.fill(5);
    return m_symbols.Make(aLengths.data(), aLengths.size()) &&
           m_distances.Make(aDistances.data(), aDistances.size());
}

bool ZRFxDeflateWalk::SkipStored() {
    m_nAt = (m_nAt + 7) / 8 * 8;
    const size_t nLength = Take(16);
    m_nAt += 16 + 8 * nLength;
    return m_nAt <= m_nBits;
}

bool ZRFxDeflateWalk::ReadCodes() {
    const size_t nSymbols = 257 + Take(5);
    const size_t nDistances = 1 + Take(5);
    const size_t nLengths = 4 + Take(4);
    if (nSymbols > kMaxSymbols || nDistances > kMaxDistances) return false;
    constexpr uint8_t kOrder[] = {16, 17, 18, 0, 8, 7, 9, 6, 10, 5, 11, 4, 12, 3, 13, 2, 14, 1, 15};
    uint8_t aOfLengths[sizeof(kOrder)] = {};
    for (size_t i = 0; i < nLengths; ++i) aOfLengths[kOrder[i]] = static_cast<uint8_t>(Take(3));
    std::array<uint8_t, kMaxSymbols + kMaxDistances> aLengths{};
    if (!m_symbols.Make(aOfLengths, sizeof(aOfLengths)) ||
        !ReadLengths(nSymbols + nDistances, aLengths.data()) ||
        !m_symbols.Make(aLengths.data(), nSymbols)) {
        return false;
    }
    return aLengths[kEndOfBlock] > 0 && m_distances.Make(aLengths.data() + nSymbols, nDistances);
}

// The lengths of both codes in one row, with runs, by the code in m_symbols.
bool ZRFxDeflateWalk::ReadLengths(size_t nSymbols, uint8_t* pLengths) {
    for (size_t nDone = 0; nDone < nSymbols;) {
        const int nSymbol = TakeSymbol(m_symbols);
        if (nSymbol < 0 || m_nAt > m_nBits) return false;
        if (nSymbol < 16) {
            pLengths[nDone++] = static_cast<uint8_t>(nSymbol);
            continue;
        }
        if (nSymbol == 16 && nDone == 0) return false;
        const uint8_t nRepeated = nSymbol == 16 ? pLengths[nDone - 1] : uint8_t{0};
        const size_t nRun = nSymbol == 16   ? 3 + Take(2)
                            : nSymbol == 17 ? 3 + Take(3)
                                            : 11 + Take(7);
        if (nRun > nSymbols - nDone) return false;
        std::fill_n(pLengths + nDone, nRun, nRepeated);
        nDone += nRun;
    }
    return true;
}

bool ZRFxDeflateWalk::SkipSymbols() {
    while (m_nAt < m_nBits) {
        SkipLiterals();
        const int nSymbol = TakeSymbol(m_symbols);
        if (nSymbol < kEndOfBlock && nSymbol >= 0) continue;
        if (nSymbol == kEndOfBlock) return m_nAt <= m_nBits;
        if (nSymbol < 0 || nSymbol >= static_cast<int>(kMaxSymbols)) return false;
        m_nAt += kLengthExtra[nSymbol - 257];
        const int nDistance = TakeSymbol(m_distances);
        if (nDistance < 0 || nDistance >= static_cast<int>(kMaxDistances)) return false;
        m_nAt += kDistanceExtra[nDistance];
    }
    return false;
}

// As many as one look ahead is sure to hold: floats pack to little else.
void ZRFxDeflateWalk::SkipLiterals() {
    constexpr int kMostInOneLook = 5;
    uint64_t nNext = Peek();
    for (int i = 0; i < kMostInOneLook; ++i) {
        const uint16_t nFast = m_symbols.aFast[nNext % m_symbols.aFast.size()];
        if (nFast == 0 || nFast >> 4 >= kEndOfBlock) return;
        nNext >>= nFast & 15;
        m_nAt += nFast & 15;
    }
}

// After the code that ends the block, the stream has nothing but zeros up to its last byte. So the
// last bit that is set is one of that code, and tells where it ends - unless the code has none.
bool ZRFxDeflateWalk::FindEndOfBlock() {
    if (m_symbols.nEndCode == 0) return false;
    size_t nLast = m_nBits / 8;
    while (nLast > m_nAt / 8 && m_pStream[nLast - 1] == 0) --nLast;
    if (nLast <= m_nAt / 8) return false;
    m_nAt = 8 * (nLast - 1) + static_cast<size_t>(std::bit_width(m_pStream[nLast - 1])) +
            static_cast<size_t>(std::countr_zero(m_symbols.nEndCode));
    return true;
}

// 57 bits at the least; kRoom bytes follow the stream.
uint64_t ZRFxDeflateWalk::Peek() const {
    return LoadLittleEndian<uint64_t>(m_pStream + std::min(m_nAt, m_nBits) / 8) >> m_nAt % 8;
}

uint32_t ZRFxDeflateWalk::Take(size_t nBits) {
    const uint64_t nNext = Peek();
    m_nAt += nBits;
    return static_cast<uint32_t>(nNext & ((uint64_t{1} << nBits) - 1));
}

int ZRFxDeflateWalk::TakeSymbol(const Code& code) {
    const uint64_t nNext = Peek();
    const uint16_t nFast = code.aFast[nNext % code.aFast.size()];
    if (nFast != 0) {
        m_nAt += nFast & 15;
        return nFast >> 4;
    }
    // Bit by bit: the codes of each length are a row of numbers.
    int nCode = 0;
    int nFirst = 0;
    int nIndex = 0;
    for (size_t nLength = 1; nLength <= Code::kMaxLength; ++nLength) {
        nCode |= static_cast<int>(nNext >> (nLength - 1) & 1);
        const int nCount = code.anOfLength[nLength];
        if (nCode - nCount < nFirst) {
            m_nAt += nLength;
            return code.aSymbols[static_cast<size_t>(nIndex + nCode - nFirst)];
        }
        nIndex += nCount;
        nFirst = (nFirst + nCount) << 1;
        nCode <<= 1;
    }
    return -1;
}

bool ZRFxDeflateWalk::Code::Make(const uint8_t* pLengths, size_t nSymbols) {
    anOfLength.fill(0);
    for (size_t i = 0; i < nSymbols; ++i) ++anOfLength[pLengths[i]];
    anOfLength[0] = 0;
    // The next code and the next place among the symbols, for each length.
    std::array<uint32_t, kMaxLength + 1> anCode{};
    std::array<uint16_t, kMaxLength + 1> anPlace{};
    for (size_t i = 1; i <= kMaxLength; ++i) {
        anCode[i] = (anCode[i - 1] + anOfLength[i - 1]) << 1;
        anPlace[i] = static_cast<uint16_t>(anPlace[i - 1] + anOfLength[i - 1]);
        if (anCode[i] + anOfLength[i] > 1u << i) return false;
    }
    aFast.fill(0);
    for (size_t i = 0; i < nSymbols; ++i) {
        const size_t nLength = pLengths[i];
        if (nLength == 0) continue;
        aSymbols[anPlace[nLength]++] = static_cast<uint16_t>(i);
        const uint32_t nCode = anCode[nLength]++;
        if (i == kEndOfBlock) nEndCode = nCode;
        if (nLength > kFastBits) continue;
        const uint16_t nEntry = static_cast<uint16_t>(i << 4 | nLength);
        for (size_t n = Reversed(nCode, nLength); n < aFast.size(); n += size_t{1} << nLength) {
            aFast[n] = nEntry;
        }
    }
    return true;
}

}  // namespace unstruct
