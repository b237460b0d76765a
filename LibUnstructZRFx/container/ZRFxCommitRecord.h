#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "container/ZRFxCause.h"
#include "container/ZRFxCipher.h"
#include "container/ZRFxCodec.h"
#include "container/ZRFxZipStorage.h"

namespace unstruct {

/// One commit of a run, as it is appended to an archive: the directory records of the entries that
/// are new, the names that are gone, and what has changed at the end of the documents. It follows
/// from the record before it, and the first of a chain from the ordinary end of the archive.
//
/// In the file: a header of 88 bytes with its own offset, so that a record that was copied
/// elsewhere is none; the listing (names, edits, directory records) and the tails of the documents,
/// each deflated where that helps, the tails encrypted where the file is; and a footer of 20 bytes
/// with a CRC over all of it, by which an opener finds the record at the end of the file.
class ZRFxCommitRecord {
public:
    /// A number that one writer draws when it starts.
    using Run = std::array<uint8_t, 16>;
    /// A document keeps its first nKept bytes; the next nTail bytes of the tails follow them.
    struct Edit {
        std::string sName;
        uint64_t nKept = 0;
        uint64_t nTail = 0;
    };

    /// How every record begins.
    static constexpr std::string_view kMagic = "ZRFxRec\x1A";

    static Run NewRun();

    /// Takes the tails of all edits, one after the other. False when there is no memory, or they
    /// cannot be encrypted.
    bool SetTails(std::string_view sTails, ZRFxCodec* pCodec, ZRFxCipher* pCipher);
    /// Gives them back; false, with a sentence in Error, when they are damaged or need another
    /// password.
    bool GetTails(ZRFxCodec* pCodec, ZRFxCipher* pCipher, std::string* pTails);

    /// The record as it stands at nOffset.
    std::string Bytes(uint64_t nOffset, ZRFxCodec* pCodec) const;

    /// Whether the bytes before nEnd are the footer of a record, which begins at *pOffset.
    static bool EndsAt(ZRFxZipStorage* pStorage, uint64_t nEnd, uint64_t* pOffset);
    /// Reads the record at nOffset; false when there is no whole and sound one. What it claims is
    /// not allocated before the length of the storage makes it possible.
    bool Load(ZRFxZipStorage* pStorage, uint64_t nOffset, ZRFxCodec* pCodec);

    const ZRFxCause& Error() const { return m_cause; }
    bool HasEncryptedTails() const;

    uint64_t nOffset = 0;
    uint64_t nEnd = 0;
    Run run{};
    uint64_t nPrevious = 0;  ///< Offset of the record before it; 0 when it is the first.
    uint64_t nBase = 0;      ///< Where the archive ends that the first record follows.
    std::vector<std::string> asRemoved;
    std::vector<Edit> aEdits;
    std::string sLines;  ///< The directory records, one after the other.

private:
    std::string Listing() const;
    bool ParseListing(std::string_view sListing);
    bool Fail(ZRFxCause cause) {
        m_cause = std::move(cause);
        return false;
    }

    std::string m_sTails;  // As they are stored.
    uint64_t m_nTails = 0;
    uint32_t m_nFlags = 0;
    ZRFxCause m_cause;
};

}  // namespace unstruct
