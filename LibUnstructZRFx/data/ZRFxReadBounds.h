#pragma once

#include <cstdint>

namespace unstruct {

/// What one operation may unpack from an archive, so that a small file cannot keep it busy without
/// end by naming the same entries again and again, or by documents that hardly take room in it. In
/// proportion to the length of the archive, which packs data to 1/1032 at best. Used by one thread
/// at a time.
class ZRFxReadBounds {
public:
    static constexpr std::uint64_t kMostDataPerByte = 2048;
    static constexpr std::uint64_t kMostDocumentsPerByte = 64;
    /// Documents that may be read from an archive of any length.
    static constexpr std::uint64_t kAnyDocuments = std::uint64_t{16} << 20;

    /// An operation reads a document that it needs once, or twice where it looks for blocks.
    static constexpr std::uint64_t kMostReadings = 2;

    /// Whether a document packs so well that the length of its archive may not justify reading it.
    /// Of such dense documents an archive holds as many as any operation can read; writing stores
    /// the others unpacked.
    static constexpr bool IsDense(std::uint64_t length, std::uint64_t packedLength) {
        return length > packedLength * (kMostDocumentsPerByte / kMostReadings);
    }
    static constexpr std::uint64_t kMostDenseDocuments = kAnyDocuments / kMostReadings;

    /// Starts an operation on an archive of that length. Those inside of another are part of it.
    void Start(std::uint64_t archiveLength);
    void End();

    /// Takes bytes of what is left; false when there are too few. Outside of operations there is no
    /// bound.
    bool TakeData(std::uint64_t numBytes) { return Take(numBytes, &m_data); }
    bool TakeDocument(std::uint64_t numBytes) { return Take(numBytes, &m_documents); }

private:
    bool Take(std::uint64_t numBytes, std::uint64_t* left) const;

    int m_depth = 0;
    std::uint64_t m_data = 0;
    std::uint64_t m_documents = 0;
};

}  // namespace unstruct
