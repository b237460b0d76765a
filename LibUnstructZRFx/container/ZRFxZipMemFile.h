#pragma once

#include <cstddef>
#include <cstdint>

#include "container/ZRFxZipRawData.h"
#include "container/ZRFxZipStorage.h"

namespace unstruct {

/// A growable file in memory; it can hold a whole archive. Bytes between the old end and a write
/// beyond it are zero. Used by one thread at a time.
class ZRFxZipMemFile {
public:
    /// The file grows by at least nGrowBy bytes, and by half its size where that is more.
    explicit ZRFxZipMemFile(size_t nGrowBy = 1024) : m_nGrowBy(nGrowBy > 0 ? nGrowBy : 1) {}
    ~ZRFxZipMemFile() { Clear(); }
    ZRFxZipMemFile(const ZRFxZipMemFile&) = delete;
    ZRFxZipMemFile& operator=(const ZRFxZipMemFile&) = delete;

    uint64_t Length() const { return m_nLength; }
    const uint8_t* Data() const { return m_pData; }

    /// False, with nothing read, when the range does not lie in the file.
    bool ReadAt(uint64_t nOffset, void* pData, size_t nSize) const;
    /// False, with the file unchanged, when there is no memory.
    bool WriteAt(uint64_t nOffset, const void* pData, size_t nSize);
    bool Append(const void* pData, size_t nSize) { return WriteAt(m_nLength, pData, nSize); }
    /// Cuts the file; a longer length leaves it as it is.
    void Truncate(uint64_t nLength);
    /// Hands the bytes over without copying and leaves the file empty; false, with the file
    /// unchanged, when they are more than an entry can have.
    bool Detach(ZRFxZipRawData* pRaw);
    void Clear();
    void Swap(ZRFxZipMemFile& other) noexcept;

private:
    bool Reserve(uint64_t nLength);

    size_t m_nGrowBy;
    uint8_t* m_pData = nullptr;
    size_t m_nLength = 0;
    size_t m_nCapacity = 0;
};

/// The archive in a memory file of the caller, who keeps it alive.
class ZRFxMemStorage : public ZRFxZipStorage {
public:
    /// bCreate starts from an empty state; the file keeps its content until the first commit.
    ZRFxMemStorage(ZRFxZipMemFile* pFile, bool bCreate)
        : m_pFile(pFile), m_bCreates(bCreate), m_nSize(bCreate ? 0 : pFile->Length()) {}
    ~ZRFxMemStorage() override { RollBack(); }

    uint64_t Size() const override { return m_nSize; }
    void CutTo(uint64_t nSize) override { m_nSize = nSize; }
    bool Extend() override {
        return Fail({"an archive in memory has one user", nvf::Reason::INVALID_ARGUMENT});
    }

    uint64_t Position() const override { return m_bWriting ? Target().Length() : m_nSize; }
    bool Read(uint64_t nOffset, void* pData, size_t nSize) override;
    bool ReadAside(uint64_t nOffset, void* pData, size_t nSize) const override {
        return Target().ReadAt(nOffset, pData, nSize);
    }
    bool Write(const void* pData, size_t nSize) override;
    void Rewind(uint64_t nPosition) override { Target().Truncate(nPosition); }
    bool Flush() override { return true; }
    ZRFxCommitResult EndCommit() override;
    void RollBack() override;
    std::unique_ptr<ZRFxZipStorage> Successor() override;

private:
    ZRFxZipMemFile& Target() { return m_bCreates ? m_created : *m_pFile; }
    const ZRFxZipMemFile& Target() const { return m_bCreates ? m_created : *m_pFile; }

    ZRFxZipMemFile* m_pFile;
    ZRFxMemStorage* m_pReplaced = nullptr;
    ZRFxZipMemFile m_created;  // What takes the place of the file's content.
    bool m_bCreates;
    bool m_bWriting = false;  // Something was written since the last commit.
    uint64_t m_nSize;
};

}  // namespace unstruct
