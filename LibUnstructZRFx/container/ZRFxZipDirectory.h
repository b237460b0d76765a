#pragma once

#include <cstdint>
#include <ctime>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "container/ZRFxCause.h"
#include "container/ZRFxCipher.h"
#include "container/ZRFxSharedText.h"
#include "container/ZRFxZipStorage.h"

namespace unstruct {

constexpr uint16_t kZipStored = 0;
constexpr uint16_t kZipDeflated = 8;

/// One entry as its record in the central directory describes it.
struct ZRFxZipEntry {
    // kOther is the encryption of the first ZIP programs; kUnreadable all that came since but AES.
    enum class Encryption : uint8_t { kNone, kAes, kOther, kUnreadable };

    ZRFxSharedText sName;
    uint64_t nSize = 0;
    uint64_t nPackedSize = 0;  // Bytes in the archive, those of the encryption included.
    uint64_t nOffset = 0;      // Of the local header.
    uint32_t nCrc = 0;         // Of the data; means nothing when bHasCrc is false.
    uint16_t nMethod = kZipStored;
    uint16_t nFlags = 0;
    bool bHasCrc = true;
    Encryption eEncryption = Encryption::kNone;
    ZRFxCipher::Strength eStrength = ZRFxCipher::Strength::k256;
    ZRFxSharedText sRecord;  // The record as it stands, foreign extra fields and comment included.
};

/// The central directory of a ZIP archive, found and read in a storage. Its static operations read
/// and write the structures of the format: local headers, directory records and ends, with their
/// 64-bit forms. Names are taken and given as bytes; those written are UTF-8.
class ZRFxZipDirectory {
public:
    static constexpr size_t kLocalHeaderSize = 30;
    static constexpr size_t kRecordSize = 46;
    static constexpr size_t kEndSize = 22;
    static constexpr size_t kMaxDescriptorSize = 24;
    static constexpr uint32_t kLocalSignature = 0x04034B50;
    static constexpr uint32_t kRecordSignature = 0x02014B50;
    static constexpr uint32_t kEndSignature = 0x06054B50;
    static constexpr uint32_t kEnd64Signature = 0x06064B50;

    /// Finds the directory of the archive that ends exactly at nEnd; false, without an error, when
    /// none does, or it does not reach to its end as those of nearly all programs do.
    bool FindEndAt(ZRFxZipStorage* pStorage, uint64_t nEnd);
    /// The same for the last such archive in a storage, by searching all of it from its end.
    bool FindLastEnd(ZRFxZipStorage* pStorage);
    /// The same for the archive whose end record is at nRecord.
    bool FindEndRecordAt(ZRFxZipStorage* pStorage, uint64_t nRecord);
    /// Finds the directory of an archive in whatever form: with bytes that follow its end, or with
    /// structures between directory and end.
    bool FindEnd(ZRFxZipStorage* pStorage);
    /// Reads the directory that was found. Refuses, with the cause in `cause`, directories that do
    /// not fit the archive: what an archive claims is never allocated before its own length makes
    /// it possible. Takes memory of about twice the directory's length and time linear in it.
    bool Load(ZRFxZipStorage* pStorage);
    /// Adds records from elsewhere after those loaded. Their entries lie before nEnd.
    bool AddRecords(std::string_view sRecords, uint64_t nEnd);
    /// The number of entries that the end declares, modulo 65536 where it is no 64-bit one.
    uint64_t DeclaredCount() const { return m_nCount; }
    /// Where the archive that was found ends.
    uint64_t Length() const { return m_nLength; }

    /// Bytes that an entry takes, its header included; 0 when the header does not tell. pHeader
    /// holds the first kLocalHeaderSize bytes, and where nSize says so, name and extra fields.
    static uint64_t LocalSize(const uint8_t* pHeader, size_t nSize);
    /// Bytes of header, name and extra fields.
    static size_t LocalHeaderLength(const uint8_t* pHeader);
    /// The same for an entry with its record, taking the extra fields for those of the record.
    static size_t LocalLengthOf(const ZRFxZipEntry& entry);
    /// Bytes of a directory record.
    static size_t RecordLength(const uint8_t* pRecord);

    /// The data of the entry begins here; false when its local header is damaged or another's.
    /// pHeader holds the first kLocalHeaderSize + name length bytes at the entry's offset.
    static bool DataOffset(const ZRFxZipEntry& entry, const uint8_t* pHeader, uint64_t* pOffset);

    /// The length of the data descriptor that follows the packed data, 0 when there is none. sBytes
    /// holds up to kMaxDescriptorSize bytes from there on.
    static size_t DescriptorSize(const ZRFxZipEntry& entry, std::string_view sBytes);

    /// For a new entry: all fields but sRecord are set.
    static std::string LocalHeader(const ZRFxZipEntry& entry, std::time_t nTime);
    /// Lengthens a local header by nBytes, or by 64 more where so few cannot be taken up.
    static void Pad(std::string* pHeader, uint64_t nBytes);
    /// sPieceNote, if any, becomes the extra field for the pieces of the entry.
    static std::string CentralRecord(const ZRFxZipEntry& entry, std::time_t nTime,
                                     std::string_view sPieceNote = {});
    /// What the entry's record notes of its pieces; empty when there is no such field.
    static std::string_view PieceNote(const ZRFxZipEntry& entry);
    /// The record of an entry that was copied as it is to another offset.
    static std::string MovedRecord(const ZRFxZipEntry& entry, uint64_t nNewOffset);
    /// What follows the records, which take nLength bytes from nStart on.
    static std::string End(uint64_t nEntries, uint64_t nStart, uint64_t nLength,
                           const std::string& sEndComment);

    std::vector<ZRFxZipEntry> aEntries;  // In the order of the directory, duplicates included.
    uint64_t nOffset = 0;                // Of the directory.
    std::string sComment;                // Of the archive.
    ZRFxCause cause;                     // Why loading failed.

private:
    bool Fail(ZRFxCause why) {
        cause = std::move(why);
        return false;
    }
    bool TakeEnd(ZRFxZipStorage* pStorage, const std::string& sTail, size_t nAt, uint64_t nEnd);
    bool TakeEndRecord(ZRFxZipStorage* pStorage, const uint8_t* pEnd, uint64_t nRecord);
    bool ReachesTo(uint64_t nRecord) const;
    bool ReadEnd64(ZRFxZipStorage* pStorage, uint64_t nLocator);
    bool ParseRecords(std::string sRecords, uint64_t nEnd);
    bool ParseRecord(const std::shared_ptr<const std::string>& pRecords, size_t nAt,
                     ZRFxZipEntry* pEntry);
    bool CheckEntry(const ZRFxZipEntry& entry, uint64_t nEnd);

    uint64_t m_nSize = 0;
    uint64_t m_nCount = 0;
    uint64_t m_nLength = 0;
    bool m_bZip64 = false;
};

}  // namespace unstruct
