#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace unstruct {

/// Follows the blocks of a deflate stream without unpacking them, to find what no compressor of
/// whole buffers tells: the bit at which the last block begins, and the one at which it ends.
class ZRFxDeflateWalk {
public:
    /// Turns a whole stream into a piece that others can follow: its last block is no longer marked
    /// as the last one, and an empty stored block fills it up to a byte. A stream that cannot be
    /// followed becomes a piece of size 0. REQUIRES: nCapacity leaves kRoom bytes after the stream.
    static void Open(uint8_t* pStream, size_t nCapacity, size_t* pSize);

    static constexpr size_t kRoom = 16;

private:
    /// The canonical Huffman code of a block.
    struct Code {
        static constexpr size_t kMaxLength = 15;
        static constexpr size_t kFastBits = 10;

        /// False when the lengths are not those of a code.
        bool Make(const uint8_t* pLengths, size_t nSymbols);

        /// For the next kFastBits bits: the symbol, shifted by 4, and its length; 0 where it is
        /// longer.
        std::array<uint16_t, size_t{1} << kFastBits> aFast;
        std::array<uint16_t, kMaxLength + 1> anOfLength;
        std::array<uint16_t, 288> aSymbols;  ///< By their code.
        uint32_t nEndCode = 0;  ///< Of the symbol that ends a block, its first bit the highest.
    };

    ZRFxDeflateWalk(const uint8_t* pStream, size_t nSize)
        : m_pStream(pStream), m_nBits(8 * nSize) {}

    bool FindLastBlock();
    bool SkipBlock(uint32_t nType, bool bLast);
    bool SkipStored();
    bool ReadCodes();
    bool ReadLengths(size_t nSymbols, uint8_t* pLengths);
    bool MakeFixedCodes();
    bool SkipSymbols();
    void SkipLiterals();
    bool FindEndOfBlock();
    uint64_t Peek() const;
    uint32_t Take(size_t nBits);
    int TakeSymbol(const Code& code);

    const uint8_t* m_pStream;
    const size_t m_nBits;
    size_t m_nAt = 0;         // The next bit.
    size_t m_nLastBlock = 0;  // The first bit of the last block.
    Code m_symbols;
    Code m_distances;
};

}  // namespace unstruct
