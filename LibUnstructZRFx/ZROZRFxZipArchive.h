#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "ZROZRFxCipher.h"
#include "ZROZRFxCodec.h"
#include "ZROZRFxNameIndex.h"
#include "ZROZRFxReadAhead.h"
#include "ZROZRFxZipDirectory.h"
#include "ZROZRFxZipLibrary.h"
#include "ZROZRFxZipMemFile.h"
#include "ZROZRFxZipRawData.h"
#include "ZROZRFxZipStorage.h"

namespace unstruct {

/// A ZIP archive in a file or in memory whose entries are written and read whole.
//
/// A new entry is packed at once (deflated, stored when it does not shrink) and, under a password,
/// encrypted at once; until the next commit it can be read, replaced and removed like any other.
/// The first 8 MiB wait in memory; what passes them is written to the file ahead of the commit.
/// Entries are committed by `Commit`, by `Close`, and by themselves when they pass a threshold: 64
/// MiB, and more where the directory is long enough to matter. A commit replaces the end of the
/// archive in place and shows other openers either all of it or nothing (see ZRFxJournaledFile).
/// Within a commit data comes first, then XML documents, then "ZRF.xml" and the tables of contents:
/// what is replaced again and again stays within the last kilobytes. Where a removed entry lies
/// more than 64 MiB before the directory, the archive is rewritten.
//
/// Names are UTF-8 and told apart by every byte. Of several entries with one name the last counts;
/// the others are left out by the next commit.
//
/// Memory: 8 MiB of entries, one packed entry and some hundred bytes for each entry. Every
/// operation that fails returns false and leaves a sentence with archive, entry and cause in
/// `LastError`; the archive stays as it was and usable. Nothing throws. One thread at a time.
class ZRFxZipArchive {
public:
    struct EntryInfo {
        std::string sName;
        uint64_t nSize = 0;
        uint64_t nPackedSize = 0;  // Without what encryption adds.
        uint16_t nMethod = kZipStored;
        bool bEncrypted = false;
    };

    static constexpr int kDefaultLevel = -1;

    ZRFxZipArchive();
    /// Commits what is pending, without a word when that fails.
    ~ZRFxZipArchive();
    ZRFxZipArchive(const ZRFxZipArchive&) = delete;
    ZRFxZipArchive& operator=(const ZRFxZipArchive&) = delete;

    /// Opens or creates an archive; kCreate drops what the file held, with the first commit. Fails
    /// when an archive is open already, and for writing also when another writer has the file, or
    /// entries overlap.
    bool Open(const std::string& sPath, ZRFxOpenMode eMode);
    /// The same in memory. REQUIRES: pFile outlives the open archive.
    bool Open(ZRFxZipMemFile* pFile, ZRFxOpenMode eMode);
    bool IsOpen() const { return m_pStorage != nullptr; }
    bool IsReadOnly() const { return m_bReadOnly; }
    /// Bytes that the archive takes, those of uncommitted entries included; 0 when it is not open.
    uint64_t Length() const { return m_pStorage ? m_pStorage->Size() + Uncommitted() : 0; }

    bool Commit();
    /// Uncommitted bytes from which entries are committed by themselves; a long directory raises
    /// it.
    void SetCommitThreshold(uint64_t nBytes) { m_nThreshold = nBytes; }
    /// Uncommitted bytes that wait in memory; what passes them is written to the file ahead.
    void SetPendingLimit(uint64_t nBytes) { m_nPendingLimit = nBytes; }
    /// Commits and closes. When the commit fails the archive stays open with all that is pending,
    /// for another try or for `Abandon`.
    bool Close();
    /// Closes without committing.
    void Abandon();

    /// Encrypts entries added from now on, and decrypts; an empty password ends encryption.
    bool SetPassword(std::string_view sPassword);

    /// Entries in the order of the directory, pending ones at the end. Indices hold until the next
    /// change or commit. REQUIRES: nIndex < EntryCount().
    size_t EntryCount();
    EntryInfo EntryAt(size_t nIndex);
    bool Contains(std::string_view sName) const { return FindItem(sName) != nullptr; }
    /// Whether a name of any entry, now or before, has a slash in it; foreign ones may.
    bool HasSlashes() const { return m_bHasSlashes; }
    /// A number that no other entry has until the next change or commit; -1 when there is no such
    /// entry.
    int64_t IndexOf(std::string_view sName) const;
    /// False, without a message, when there is no such entry.
    bool Find(std::string_view sName, EntryInfo* pInfo);

    /// Adds an entry at level 0 (stored) to 9, or kDefaultLevel. Fails when the name is taken or
    /// empty, or the data is longer than ZRFxZipRawData::kMaxLength. When the threshold is passed
    /// and the commit fails, the entry is not added and those before it stay pending. Data of
    /// length 0 makes an empty entry, which is never encrypted.
    bool Add(std::string_view sName, const void* pData, uint64_t nSize, int nLevel = kDefaultLevel);
    /// The same in place of the entry of that name, if there is one, which stays when this fails.
    /// It does not commit by itself.
    bool Replace(std::string_view sName, const void* pData, uint64_t nSize,
                 int nLevel = kDefaultLevel);
    bool Remove(std::string_view sName);
    /// Reads the whole entry; what it declares is checked against its length in the archive before
    /// memory is taken, and its data against CRC or authentication code before it is given.
    bool Read(std::string_view sName, ZRFxZipRawData* pRaw);

    /// One entry written piece by piece: gathered in memory, added by CloseEntry.
    bool OpenEntry(std::string_view sName, int nLevel = kDefaultLevel);
    bool WriteEntry(const void* pData, size_t nSize);
    bool CloseEntry();

    /// Whether the file is an archive that holds the entry. Takes no lock and changes nothing.
    static bool Probe(const std::string& sPath, std::string_view sName);

    const std::string& LastError() const { return m_sError; }

private:
    struct Item;
    struct Stream;
    struct Layout;
    using ItemPtr = std::unique_ptr<Item>;

    template <typename Operation>
    bool Guarded(std::string_view sName, Operation operation) noexcept;
    bool Fail(std::string_view sName, std::string_view sCause);
    bool FailStorage() { return Fail({}, m_pStorage->Error()); }

    bool OpenFile(const std::string& sPath, ZRFxOpenMode eMode);
    bool OpenSnapshot(const std::string& sPath);
    bool Take(std::unique_ptr<ZRFxZipStorage> pStorage, ZRFxZipDirectory* pDirectory,
              ZRFxOpenMode eMode);
    void Reset();

    bool CheckWritable(std::string_view sName);
    bool CheckName(std::string_view sName);
    bool CheckNewName(std::string_view sName);
    static std::string_view NameOf(const Item& item);
    Item* FindItem(std::string_view sName) const { return m_byName.Find(sName); }
    void Append(ItemPtr pItem);
    void Drop(Item* pItem);
    static bool Describe(const ZRFxZipEntry& entry, EntryInfo* pInfo);
    void Compact();

    bool AddChecked(std::string_view sName, const void* pData, uint64_t nSize, int nLevel);
    bool MakeItem(std::string_view sName, const void* pData, uint64_t nSize, int nLevel,
                  ItemPtr* ppItem);
    bool Pack(const void* pData, size_t nSize, int nLevel, ZRFxZipEntry* pEntry,
              const uint8_t** ppPacked);
    bool Encrypt(ZRFxZipEntry* pEntry);
    bool GoesToFile(const ZRFxZipEntry& entry) const;
    bool KeepPending(Item* pItem, const uint8_t* pPacked);
    bool WriteAhead(Item* pItem, const uint8_t* pPacked);
    bool WritePacked(const Item& item, const uint8_t* pPacked);
    bool StartWriting();
    bool BeginAt(uint64_t nFrom);
    bool IsMoved(const Item& item) const;

    bool ReadItem(const Item& item, ZRFxZipRawData* pRaw);
    bool CheckDeclared(const ZRFxZipEntry& entry);
    bool CheckAes(const ZRFxZipEntry& entry);
    bool ReadPlace(const Item& item, uint64_t nOffset, void* pData, size_t nSize);
    bool FetchPacked(const Item& item, const uint8_t** ppPacked);
    bool FetchSmall(const ZRFxZipEntry& entry, const uint8_t** ppPacked);
    bool FetchStored(const Item& item, ZRFxZipRawData* pRaw);
    bool LocateData(const Item& item, uint64_t* pOffset);
    bool Unpack(const ZRFxZipEntry& entry, const uint8_t* pPacked, ZRFxZipRawData* pRaw);
    bool Decrypt(const ZRFxZipEntry& entry, const uint8_t* pPacked, uint8_t* pData);
    bool CheckCrc(const ZRFxZipEntry& entry, const ZRFxZipRawData& raw);
    bool ReadForeign(const Item& item, ZRFxZipRawData* pRaw);
    bool ReadForeignAes(const Item& item, ZRFxZipRawData* pRaw);

    bool CommitChanges();
    Layout Plan();
    bool WriteItem(Item* pItem, Layout* pLayout);
    bool CopyCommitted(const Item& item);
    uint64_t DescriptorSize(const ZRFxZipEntry& entry, uint64_t nEnd);
    bool WriteDirectory(Layout* pLayout);
    void Apply(Layout* pLayout);
    uint64_t Uncommitted() const;
    uint64_t Threshold() const;

    std::string m_sArchive;  // For messages.
    std::unique_ptr<ZRFxZipStorage> m_pStorage;
    bool m_bReadOnly = false;
    bool m_bReplacesAll = false;  // Created: what the storage holds is dropped by the first commit.
    bool m_bChanged = false;
    std::vector<ItemPtr> m_apItems;  // Null where an item was removed, until `Compact`.
    ZRFxNameIndex<Item, &ZRFxZipArchive::NameOf> m_byName;
    bool m_bHasGaps = false;
    bool m_bHasSlashes = false;
    uint64_t m_nDirectoryOffset = 0;
    uint64_t m_nFirstRemoved = 0;  // Lowest offset of a removed entry; else the directory's.
    bool m_bWriting = false;       // Entries of the next commit are in the file already.
    uint64_t m_nWritingFrom = 0;
    std::string m_sComment;
    uint64_t m_nPendingBytes = 0;
    uint64_t m_nPendingLimit = uint64_t{8} << 20;
    uint64_t m_nThreshold = uint64_t{64} << 20;
    std::unique_ptr<Stream> m_pStream;
    ZRFxCodec m_codec;
    ZRFxCipher m_cipher;
    ZRFxZipLibrary m_library;
    ZRFxZipRawData m_scratch;  // Packed bytes on their way in or out.
    ZRFxReadAhead m_readAhead;
    ZRFxZipRawData m_plain;  // The same decrypted, when they are pending and must stay.
    std::string m_sError;
};

}  // namespace unstruct
