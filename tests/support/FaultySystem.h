#pragma once

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <mutex>
#include <string>

#include "container/ZRFxSystem.h"

namespace ziptest {

// Counts the system calls of the archive layer, fails the N-th, and keeps what was written.
// Installed as long as it lives. Calls may come from several threads.
class FaultySystem : public unstruct::ZRFxSystem {
public:
    enum class Failing { kOnce, kFromThenOn };

    FaultySystem() { Install(this); }
    ~FaultySystem() override { Install(nullptr); }

    // Call number nCall from now on (from 1) fails with nErrno.
    void FailCall(int nCall, int nErrno, Failing eFailing) {
        m_nCalls = 0;
        m_nFailAt = nCall;
        m_nErrno = nErrno;
        m_eFailing = eFailing;
    }
    void Recover() { m_nFailAt = 0; }
    bool HasFailed() const { return m_nFailAt > 0 && m_nCalls >= m_nFailAt; }

    void KeepWrittenBytes() { m_bKeep = true; }
    const std::string& WrittenBytes() const { return m_sWritten; }
    uint64_t WrittenCount() const { return m_nWritten; }
    uint64_t ReadCount() const { return m_nRead; }
    int ChangeCount() const { return m_nChanges; }

    int Open(const char* sPath, int nFlags, mode_t nMode) override {
        if ((nFlags & (O_WRONLY | O_RDWR | O_CREAT | O_TRUNC)) != 0) ++m_nChanges;
        return Fails() ? -1 : ZRFxSystem::Open(sPath, nFlags, nMode);
    }
    ssize_t ReadAt(int nFile, void* pData, size_t nSize, off_t nOffset) override {
        m_nRead += nSize;
        return Fails() ? -1 : ZRFxSystem::ReadAt(nFile, pData, nSize, nOffset);
    }
    ssize_t WriteAt(int nFile, const void* pData, size_t nSize, off_t nOffset) override {
        ++m_nChanges;
        // A call that fails half-way, as on a full disk, has written something before.
        if (Fails()) return ZRFxSystem::WriteAt(nFile, pData, nSize / 2, nOffset), Refuse();
        m_nWritten += nSize;
        if (m_bKeep) Keep(static_cast<const char*>(pData), nSize);
        return ZRFxSystem::WriteAt(nFile, pData, nSize, nOffset);
    }
    int Flush(int nFile) override { return Fails() ? -1 : ZRFxSystem::Flush(nFile); }
    int Truncate(int nFile, off_t nLength) override {
        ++m_nChanges;
        return Fails() ? -1 : ZRFxSystem::Truncate(nFile, nLength);
    }
    int Lock(int nFile) override { return Fails() ? -1 : ZRFxSystem::Lock(nFile); }
    int SetMode(int nFile, mode_t nMode) override {
        return Fails() ? -1 : ZRFxSystem::SetMode(nFile, nMode);
    }
    int Status(int nFile, struct stat* pStatus) override {
        return Fails() ? -1 : ZRFxSystem::Status(nFile, pStatus);
    }
    int StatusOf(const char* sPath, struct stat* pStatus) override {
        return Fails() ? -1 : ZRFxSystem::StatusOf(sPath, pStatus);
    }
    int LinkStatusOf(const char* sPath, struct stat* pStatus) override {
        return Fails() ? -1 : ZRFxSystem::LinkStatusOf(sPath, pStatus);
    }
    int Rename(const char* sFrom, const char* sTo) override {
        ++m_nChanges;
        return Fails() ? -1 : ZRFxSystem::Rename(sFrom, sTo);
    }
    int Remove(const char* sPath) override {
        ++m_nChanges;
        return Fails() ? -1 : ZRFxSystem::Remove(sPath);
    }
    char* RealPath(const char* sPath) override {
        return Fails() ? nullptr : ZRFxSystem::RealPath(sPath);
    }
    void* Allocate(size_t nSize) override {
        return Fails() ? nullptr : ZRFxSystem::Allocate(nSize);
    }
    void* Reallocate(void* pBuffer, size_t nSize) override {
        return Fails() ? nullptr : ZRFxSystem::Reallocate(pBuffer, nSize);
    }

private:
    bool Fails() {
        const int nCall = ++m_nCalls;
        const bool bFails = m_nFailAt > 0 && (m_eFailing == Failing::kOnce ? nCall == m_nFailAt
                                                                           : nCall >= m_nFailAt);
        if (bFails) errno = m_nErrno;
        return bFails;
    }
    void Keep(const char* pData, size_t nSize) {
        const std::lock_guard lock(m_mutex);
        m_sWritten.append(pData, nSize);
    }
    ssize_t Refuse() const {
        errno = m_nErrno;
        return -1;
    }

    std::atomic<int> m_nCalls{0};
    int m_nFailAt = 0;
    int m_nErrno = 0;
    Failing m_eFailing = Failing::kOnce;
    bool m_bKeep = false;
    std::mutex m_mutex;
    std::string m_sWritten;
    std::atomic<uint64_t> m_nRead{0};
    std::atomic<uint64_t> m_nWritten{0};
    std::atomic<int> m_nChanges{0};
};

}  // namespace ziptest
