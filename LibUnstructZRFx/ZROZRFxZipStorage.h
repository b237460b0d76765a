#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace unstruct {

enum class ZRFxOpenMode { kUpdate = 0, kReadOnly = 1, kCreate = 2 };

enum class ZRFxCommitResult {
    kDone,
    /// Nothing of the commit holds; every opener sees the last committed state.
    kFailed,
    /// The new state holds for every opener, but the disk did not confirm it.
    kUnconfirmed,
};

/// Where the bytes of an archive live: the state of the last commit, which is read, and the next
/// one, which is written from front to back. A commit either goes in place, keeping a prefix, or
/// replaces everything. Until `EndCommit` reads see the last commit, whatever was written meanwhile.
/// Failures return false (or kFailed) and leave a sentence in `Error`. One thread at a time.
class ZRFxZipStorage {
public:
    virtual ~ZRFxZipStorage() = default;

    /// Bytes of the committed state; 0 for a new archive.
    virtual uint64_t Size() const = 0;
    virtual bool Read(uint64_t nOffset, void* pData, size_t nSize) = 0;
    /// False when a reader's snapshot may have mixed two states while it was taken.
    virtual bool IsConsistent() { return true; }

    /// Starts writing at nUnchanged; what lies before stays. REQUIRES: nUnchanged <= Size().
    virtual bool BeginCommit(uint64_t nUnchanged) = 0;
    /// Starts writing a whole new state at 0.
    virtual bool BeginRewrite() = 0;
    virtual bool Write(const void* pData, size_t nSize) = 0;
    virtual uint64_t Position() const = 0;
    /// Reads what the commit under way has written. REQUIRES: nOffset is not before its start.
    virtual bool ReadWritten(uint64_t nOffset, void* pData, size_t nSize) = 0;
    /// Takes back what was written from nPosition on. REQUIRES: a position the commit has passed.
    virtual void Rewind(uint64_t nPosition) = 0;
    /// A commit that fails stays under way, to be ended again, rewound or rolled back.
    virtual ZRFxCommitResult EndCommit() = 0;
    /// Drops what was written since Begin. What cannot be restored now is restored by the next
    /// Begin, or by the next opener; reads see the last commit in any case.
    virtual void RollBack() = 0;

    const std::string& Error() const { return m_sError; }

protected:
    bool Fail(const std::string& sCause) {
        m_sError = sCause;
        return false;
    }

    std::string m_sError;
};

}  // namespace unstruct
