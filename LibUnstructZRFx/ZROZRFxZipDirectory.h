#pragma once

#include <cstdint>
#include <ctime>
#include <string>
#include <string_view>
#include <vector>

#include "ZROZRFxCipher.h"
#include "ZROZRFxZipStorage.h"

namespace unstruct {

constexpr uint16_t kZipStored = 0;
constexpr uint16_t kZipDeflated = 8;

/// One entry as its record in the central directory tells it.
struct ZRFxZipEntry {
    // kOther is the encryption of the first ZIP programs; kUnreadable all that came since but AES.
    enum class Encryption : uint8_t { kNone, kAes, kOther, kUnreadable };

    std::string sName;
    uint64_t nSize = 0;
    uint64_t nPackedSize = 0;  // Bytes in the archive, those of the encryption included.
    uint64_t nOffset = 0;      // Of the local header.
    uint32_t nCrc = 0;         // Of the data; means nothing when bHasCrc is false.
    uint16_t nMethod = kZipStored;
    uint16_t nFlags = 0;
    bool bHasCrc = true;
    Encryption eEncryption = Encryption::kNone;
    ZRFxCipher::Strength eStrength = ZRFxCipher::Strength::k256;
    std::string sRecord;  // The record as it stands, foreign extra fields and comment included.
};

/// Reading and writing of the structures of a ZIP archive: local headers, the central directory and
/// its end, with their 64-bit forms. Names are taken and given as bytes; those written are UTF-8.
/// The functions keep no state.
class ZRFxZipDirectory {
public:
    static constexpr size_t kLocalHeaderSize = 30;
    static constexpr size_t kMaxDescriptorSize = 24;

    /// Reads the directory of the committed state; an empty storage is an archive without entries.
    /// Refuses, with the cause in sError, directories that do not fit the archive: what an archive
    /// claims is never allocated before its own length makes it possible. Takes memory of about
    /// twice the directory's length and time linear in it.
    bool Load(ZRFxZipStorage* pStorage);
    /// Whether the storage still gives the bytes that were loaded.
    bool IsUnchangedIn(ZRFxZipStorage* pStorage) const;

    /// The data of the entry begins here; false when its local header is damaged or another's.
    /// pHeader holds the first kLocalHeaderSize + name length bytes at the entry's offset.
    static bool DataOffset(const ZRFxZipEntry& entry, const uint8_t* pHeader, uint64_t* pOffset);

    /// The length of the data descriptor that follows the packed data, 0 when there is none. sBytes
    /// holds up to kMaxDescriptorSize bytes from there on.
    static size_t DescriptorSize(const ZRFxZipEntry& entry, std::string_view sBytes);

    /// For a new entry: all fields but sRecord are set.
    static std::string LocalHeader(const ZRFxZipEntry& entry, std::time_t nTime);
    static std::string CentralRecord(const ZRFxZipEntry& entry, std::time_t nTime);
    /// The record of an entry that was copied as it is to another offset.
    static std::string MovedRecord(const ZRFxZipEntry& entry, uint64_t nNewOffset);
    /// What stands behind the records, which take nLength bytes from nStart on.
    static std::string End(uint64_t nEntries, uint64_t nStart, uint64_t nLength,
                           const std::string& sEndComment);

    std::vector<ZRFxZipEntry> aEntries;  // In the order of the directory, duplicates included.
    uint64_t nOffset = 0;
    /// Whether no two entries overlap, so that the archive can be changed in place.
    bool bOrderly = true;
    std::string sComment;
    std::string sError;

private:
    bool Fail(const std::string& sCause) {
        sError = sCause;
        return false;
    }
    bool FindEnd(ZRFxZipStorage* pStorage);
    bool ReadEnd64(ZRFxZipStorage* pStorage, uint64_t nLocator);
    bool ParseRecords(const std::string& sRecords);
    bool ParseRecord(const uint8_t* pRecord, size_t nLeft, ZRFxZipEntry* pEntry);
    bool CheckEntry(const ZRFxZipEntry& entry);
    void CheckOrder();

    uint64_t m_nSize = 0;
    uint64_t m_nCount = 0;
    bool m_bZip64 = false;
    uint32_t m_nFingerprint = 0;
};

}  // namespace unstruct
