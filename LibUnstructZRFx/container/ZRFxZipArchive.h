#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "container/ZRFxCause.h"
#include "container/ZRFxCipher.h"
#include "container/ZRFxCodec.h"
#include "container/ZRFxEntryPacker.h"
#include "container/ZRFxEntryReader.h"
#include "container/ZRFxOpenArchive.h"
#include "container/ZRFxPieceWork.h"
#include "container/ZRFxZipMemFile.h"
#include "container/ZRFxZipRawData.h"
#include "container/ZRFxZipStorage.h"
#include "container/ZRZipAccessMode.h"

namespace unstruct {

/// A ZIP archive in a file or in memory whose entries are written and read whole.
//
/// A new entry is packed at once (deflated, stored when it does not shrink) and, under a password,
/// encrypted at once; until the next commit it can be read, replaced and removed like any other.
/// Data goes to the file as it is added. XML documents, which are often replaced soon, wait in
/// memory, up to 8 MiB of them. Nothing is committed but by `Commit` and `Close`: what was written
/// before is not seen by other openers, and dropped when the archive is destroyed without them.
/// A commit only appends; see ZRFxArchiveCommit.
//
/// Names are UTF-8 and told apart by every byte. Of several entries with one name the last counts;
/// the others are left out by the next commit.
//
/// Memory: 8 MiB of entries, one packed entry, the texts of documents that grow, and some hundred
/// bytes for each entry. Every operation that fails returns false and leaves a sentence with
/// archive, entry and cause in `LastError`; the archive stays as it was and usable. Nothing throws.
/// One thread at a time.
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
    /// Drops what was not committed.
    ~ZRFxZipArchive();
    ZRFxZipArchive(const ZRFxZipArchive&) = delete;
    ZRFxZipArchive& operator=(const ZRFxZipArchive&) = delete;

    /// Opens or creates an archive. Fails when an archive is open already, and for writing also
    /// when another writer has the file, or entries overlap.
    bool Open(const std::string& sPath, ZRZipAccessMode eMode);
    /// The same in memory. REQUIRES: pFile outlives the open archive.
    bool Open(ZRFxZipMemFile* pFile, ZRZipAccessMode eMode);
    bool IsOpen() const { return m_pOpen->pStorage != nullptr; }
    bool IsReadOnly() const { return m_pOpen->bReadOnly; }
    /// Whether closing has something to write.
    bool HasUncommitted() const;
    /// The bytes that the archive takes, uncommitted entries included; 0 when it is not open.
    uint64_t Length() const;

    bool Commit();
    /// How many uncommitted bytes of documents may wait in memory; more go to the file.
    void SetPendingLimit(uint64_t nBytes) { m_nPendingLimit = nBytes; }
    /// Commits and closes, and leaves an ordinary archive. When the commit fails the archive stays
    /// open with all that it was given, for another try, `CloseAs` or `Abandon`.
    bool Close();
    /// Writes all of the archive to a new file, and closes; the old one stays as its last commit
    /// left it. Fails when there is a file of that name.
    bool CloseAs(const std::string& sPath);
    /// Closes without committing.
    void Abandon();

    /// Shows a reader what was committed since it opened the archive or refreshed it last. The
    /// time it takes grows with what is new. After a failure it shows the state from before, or a
    /// later one.
    bool Refresh(ZRFxArchiveChanges* pChanges);

    /// How many threads pack and unpack large data, the caller's own among them; 0 for as many as
    /// the process may take, 1 for the caller's alone. Data and pieces do not depend on it.
    void SetThreads(int nThreads) { m_pieces.SetThreads(nThreads); }

    /// Encrypts entries added from now on, and decrypts; an empty password ends encryption.
    bool SetPassword(std::string_view sPassword);

    /// Entries in the order of the directory, uncommitted ones at the end. Indices hold until the
    /// next change, commit or refresh. An index from EntryCount() on gives an empty description.
    size_t EntryCount();
    EntryInfo EntryAt(size_t nIndex);
    /// The same into an existing description, whose memory is reused. False when there is no
    /// memory, or no such entry.
    bool GetEntry(size_t nIndex, EntryInfo* pInfo);
    /// The name alone, until the next change, commit or refresh.
    std::string_view NameAt(size_t nIndex);
    bool Contains(std::string_view sName) const { return FindItem(sName) != nullptr; }
    /// Whether a name of any entry, now or before, has a slash in it; foreign ones may.
    bool HasSlashes() const { return m_pOpen->table.HasSlashes(); }
    /// A number that no other entry has until the next change or commit; -1 when there is no such
    /// entry.
    int64_t IndexOf(std::string_view sName) const;
    /// False, without a message, when there is no such entry.
    bool Find(std::string_view sName, EntryInfo* pInfo);

    /// Adds an entry at level 0 (stored) to 9, or kDefaultLevel. Fails when the name is taken or
    /// empty, or the data is longer than ZRFxZipRawData::kMaxLength. Data of length 0 makes an
    /// empty entry, which is never encrypted.
    bool Add(std::string_view sName, const void* pData, uint64_t nSize, int nLevel = kDefaultLevel);
    /// The same in place of the entry of that name, if there is one, which stays when this fails.
    bool Replace(std::string_view sName, const void* pData, uint64_t nSize,
                 int nLevel = kDefaultLevel);
    /// Changes a document at its end: sTail replaces all that follows its first nKept bytes. A
    /// document that is not there is made when nKept is 0. The archive keeps the text in memory,
    /// and commits store the tails alone. *pRevision, on success, is a number that no other change
    /// of a document in the process has; see `RevisionOf`.
    bool Grow(std::string_view sName, uint64_t nKept, std::string_view sTail, int nLevel,
              uint64_t* pRevision);
    /// That of the last `Grow` of a document which nothing else has changed since; 0 otherwise.
    uint64_t RevisionOf(std::string_view sName) const;
    bool Remove(std::string_view sName);
    /// Reads the whole entry; what it declares is checked against its length in the archive before
    /// memory is taken, and its data against CRC or authentication code before it is given.
    bool Read(std::string_view sName, ZRFxZipRawData* pRaw);
    /// Reads nSize bytes of an entry from byte nFrom on into the caller's memory, unpacking only
    /// the pieces that hold them. Each piece is checked by its CRC before its bytes are given;
    /// bytes of an entry that is stored without a password are not checked, since its CRC is that
    /// of all of it. An entry in one piece or under a password is read whole. Fails when the entry
    /// is shorter; what is in the caller's memory then means nothing.
    bool ReadPart(std::string_view sName, uint64_t nFrom, void* pData, size_t nSize);
    /// Reads a document from byte nFrom on; nothing when it is shorter.
    bool ReadTail(std::string_view sName, uint64_t nFrom, std::string* pTail);

    /// One entry written piece by piece: gathered in memory, added by CloseEntry. When a piece
    /// cannot be taken, the entry is given up.
    bool OpenEntry(std::string_view sName, int nLevel = kDefaultLevel);
    bool WriteEntry(const void* pData, size_t nSize);
    bool CloseEntry();

    /// Whether the file is an archive that holds the entry. Takes no lock and changes nothing.
    static bool Probe(const std::string& sPath, std::string_view sName);

    const std::string& LastError() const { return m_sError; }
    nvf::Reason LastReason() const { return m_eReason; }

private:
    using Item = ZRFxArchiveItem;
    using ItemPtr = std::unique_ptr<Item>;

    template <typename Operation>
    bool Guarded(std::string_view sName, Operation operation) noexcept;
    bool Fail(std::string_view sName, const ZRFxCause& cause);

    bool OpenFile(const std::string& sPath, ZRZipAccessMode eMode,
                  std::unique_ptr<ZRFxOpenArchive>* ppOpen);
    bool OpenStorage(std::unique_ptr<ZRFxZipStorage> pStorage, ZRZipAccessMode eMode,
                     std::unique_ptr<ZRFxOpenArchive>* ppOpen);
    bool Take(std::unique_ptr<ZRFxOpenArchive> pOpen);
    void Reset();

    bool CheckWritable(std::string_view sName);
    bool CheckName(std::string_view sName);
    bool CheckNewName(std::string_view sName);
    Item* FindItem(std::string_view sName) const { return m_pOpen->table.Find(sName); }
    bool Describe(const Item& item, EntryInfo* pInfo) const;

    bool MakeItem(std::string_view sName, const void* pData, uint64_t nSize, int nLevel,
                  ItemPtr* ppItem);
    bool LoadTexts();
    bool ReadItem(const Item& item, ZRFxZipRawData* pRaw);
    bool CommitNow(bool bClosing);
    bool RefreshFrom(ZRFxLastCommit* pCommit, ZRFxArchiveChanges* pChanges);
    bool Reopen(ZRFxArchiveChanges* pChanges);

    std::string m_sArchive;  // For messages.
    std::string m_sPath;     // Empty for an archive in memory.
    std::unique_ptr<ZRFxOpenArchive> m_pOpen;
    uint64_t m_nPendingLimit = uint64_t{8} << 20;
    ZRFxCodec m_codec;
    ZRFxCipher m_cipher;
    ZRFxPieceWork m_pieces;
    ZRFxEntryPacker m_packer{&m_codec, &m_cipher, &m_pieces};
    ZRFxEntryReader m_reader{&m_codec, &m_cipher, &m_pieces};
    std::string m_sError;
    nvf::Reason m_eReason = nvf::Reason::NONE;
};

}  // namespace unstruct
