#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "container/ZRFxCause.h"

namespace unstruct {

enum class ZRFxCommitResult {
    kDone,
    /// Nothing of the commit holds; every opener sees the last committed state.
    kFailed,
    /// The new state holds for every opener, but the disk did not confirm it.
    kUnconfirmed,
};

/// Where the bytes of an archive live. They are written from front to back and never changed: what
/// was committed stays where it is, and the next commit follows it. Failures return false (or
/// kFailed) and leave a sentence in `Error`. One thread at a time.
class ZRFxZipStorage {
public:
    virtual ~ZRFxZipStorage() = default;

    /// Bytes of the committed state. After opening, all that the storage holds, until `CutTo` says
    /// how much of it is committed; 0 for a new archive.
    virtual uint64_t Size() const = 0;
    /// Declares what follows nSize as torn. The first write removes it, reading changes nothing.
    virtual void CutTo(uint64_t nSize) = 0;
    /// Shows bytes that another writer has appended since. False when the storage is no longer the
    /// one that bears the name, or cannot tell.
    virtual bool Extend() = 0;

    /// Where the next byte goes.
    virtual uint64_t Position() const = 0;
    /// Reads what lies before the position, committed or not.
    virtual bool Read(uint64_t nOffset, void* pData, size_t nSize) = 0;
    /// The same by any number of threads at once, while nothing else is done with the storage.
    /// False, without an error, when it cannot; `Read` may tell why.
    virtual bool ReadAside(uint64_t /*nOffset*/, void* /*pData*/, size_t /*nSize*/) const {
        return false;
    }
    virtual bool Write(const void* pData, size_t nSize) = 0;

    /// Begins a run of bytes that several threads write, and whose head is known last. The position
    /// stays until `EndAside`. False when the storage takes no such runs, or it cannot.
    virtual bool StartAside() { return false; }
    /// Writes at nOffset, anywhere after the position. Called by several threads at once; false
    /// with errno set.
    virtual bool WriteAside(uint64_t /*nOffset*/, const void* /*pData*/, size_t /*nSize*/) {
        return false;
    }
    /// Puts sHead before, and sTail after, the nAside bytes that were written, which begin
    /// sHead.size() bytes after the position, and moves the position on.
    virtual bool EndAside(std::string_view /*sHead*/, uint64_t /*nAside*/,
                          std::string_view /*sTail*/) {
        return false;
    }
    /// Takes back what was written from nPosition on. REQUIRES: Size() <= nPosition <= Position().
    virtual void Rewind(uint64_t nPosition) = 0;
    /// Brings all that was written to the disk, still uncommitted.
    virtual bool Flush() = 0;
    /// Makes all that was written the committed state. REQUIRES: what an opener needs to find it
    /// was written last. A commit that fails can be ended again or rewound.
    virtual ZRFxCommitResult EndCommit() = 0;
    /// Drops what was written since the last commit.
    virtual void RollBack() = 0;

    /// An empty storage whose first commit takes the place of this one; null when it cannot be had.
    /// Until then this one stays as it is, and open.
    virtual std::unique_ptr<ZRFxZipStorage> Successor() = 0;

    /// Whether bytes that are there could not be read, since the storage was opened or asked last.
    bool TakeReadFailure() { return std::exchange(m_bReadFailed, false); }

    const ZRFxCause& Error() const { return m_cause; }

protected:
    bool Fail(ZRFxCause cause) {
        m_cause = std::move(cause);
        return false;
    }

    ZRFxCause m_cause;
    bool m_bReadFailed = false;
};

/// Takes back what was written since it was made, unless `Keep` is called.
class ZRFxRewind {
public:
    explicit ZRFxRewind(ZRFxZipStorage* pStorage)
        : m_pStorage(pStorage), m_nStart(pStorage->Position()) {}
    ~ZRFxRewind() {
        if (m_pStorage) m_pStorage->Rewind(m_nStart);
    }
    ZRFxRewind(const ZRFxRewind&) = delete;
    ZRFxRewind& operator=(const ZRFxRewind&) = delete;

    /// Gives true.
    bool Keep() {
        m_pStorage = nullptr;
        return true;
    }

private:
    ZRFxZipStorage* m_pStorage;
    const uint64_t m_nStart;
};

}  // namespace unstruct
