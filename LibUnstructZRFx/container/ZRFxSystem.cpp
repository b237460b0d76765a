#include "container/ZRFxSystem.h"

#include <sys/file.h>
#include <sys/mman.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace unstruct {
namespace {

// Large buffers are filled once, and half of the time that takes is the system's for giving page
// after page. Where it cannot give larger ones nothing changes.
void AskForHugePages(void* pBuffer, size_t nSize) {
    constexpr uintptr_t kHugePage = uintptr_t{2} << 20;
    const uintptr_t nStart = reinterpret_cast<uintptr_t>(pBuffer);
    const uintptr_t nFrom = (nStart + kHugePage - 1) / kHugePage * kHugePage;
    const uintptr_t nTo = (nStart + nSize) / kHugePage * kHugePage;
    if (nFrom < nTo) madvise(reinterpret_cast<void*>(nFrom), nTo - nFrom, MADV_HUGEPAGE);
}

std::atomic<ZRFxSystem*> g_pInstalled{nullptr};

// Repeats an interrupted call.
template <typename Call>
auto Uninterrupted(Call call) {
    auto nResult = call();
    while (nResult < 0 && errno == EINTR) nResult = call();
    return nResult;
}

}  // namespace

ZRFxSystem& ZRFxSystem::Current() {
    static ZRFxSystem posix;
    ZRFxSystem* pInstalled = g_pInstalled.load(std::memory_order_acquire);
    return pInstalled ? *pInstalled : posix;
}

void ZRFxSystem::Install(ZRFxSystem* pSystem) {
    g_pInstalled.store(pSystem, std::memory_order_release);
}

int ZRFxSystem::Open(const char* sPath, int nFlags, mode_t nMode) {
    return ::open(sPath, nFlags | O_CLOEXEC, nMode);
}

int ZRFxSystem::Close(int nFile) {
    return ::close(nFile);
}

ssize_t ZRFxSystem::ReadAt(int nFile, void* pData, size_t nSize, off_t nOffset) {
    return ::pread(nFile, pData, nSize, nOffset);
}

ssize_t ZRFxSystem::WriteAt(int nFile, const void* pData, size_t nSize, off_t nOffset) {
    return ::pwrite(nFile, pData, nSize, nOffset);
}

int ZRFxSystem::Flush(int nFile) {
    return ::fsync(nFile);
}

int ZRFxSystem::StartFlush(int nFile, off_t nOffset, off_t nSize) {
    return ::sync_file_range(nFile, nOffset, nSize, SYNC_FILE_RANGE_WRITE);
}

int ZRFxSystem::Truncate(int nFile, off_t nLength) {
    return ::ftruncate(nFile, nLength);
}

int ZRFxSystem::Lock(int nFile) {
    return ::flock(nFile, LOCK_EX | LOCK_NB);
}

int ZRFxSystem::SetMode(int nFile, mode_t nMode) {
    return ::fchmod(nFile, nMode);
}

int ZRFxSystem::Status(int nFile, struct stat* pStatus) {
    return ::fstat(nFile, pStatus);
}

int ZRFxSystem::StatusOf(const char* sPath, struct stat* pStatus) {
    return ::stat(sPath, pStatus);
}

int ZRFxSystem::LinkStatusOf(const char* sPath, struct stat* pStatus) {
    return ::lstat(sPath, pStatus);
}

int ZRFxSystem::Rename(const char* sFrom, const char* sTo) {
    return ::rename(sFrom, sTo);
}

int ZRFxSystem::Remove(const char* sPath) {
    return ::unlink(sPath);
}

char* ZRFxSystem::RealPath(const char* sPath) {
    return ::realpath(sPath, nullptr);
}

void* ZRFxSystem::Allocate(size_t nSize) {
    void* pBuffer = std::malloc(nSize);
    if (pBuffer) AskForHugePages(pBuffer, nSize);
    return pBuffer;
}

void* ZRFxSystem::Reallocate(void* pBuffer, size_t nSize) {
    return std::realloc(pBuffer, nSize);
}

ZRFxFile::ZRFxFile(ZRFxFile&& other) noexcept : m_nFile(std::exchange(other.m_nFile, -1)) {}

ZRFxFile& ZRFxFile::operator=(ZRFxFile&& other) noexcept {
    if (this == &other) return *this;
    Close();
    m_nFile = std::exchange(other.m_nFile, -1);
    return *this;
}

bool ZRFxFile::Open(const std::string& sPath, int nFlags, mode_t nMode) {
    Close();
    m_nFile =
        Uninterrupted([&] { return ZRFxSystem::Current().Open(sPath.c_str(), nFlags, nMode); });
    return m_nFile >= 0;
}

void ZRFxFile::Close() {
    if (m_nFile < 0) return;
    const int nErrno = errno;
    // What must be on the disk was flushed before; an error here says nothing about the file.
    ZRFxSystem::Current().Close(m_nFile);
    m_nFile = -1;
    errno = nErrno;
}

bool ZRFxFile::ReadAt(uint64_t nOffset, void* pData, size_t nSize) const {
    char* pNext = static_cast<char*>(pData);
    while (nSize > 0) {
        const ssize_t nRead = Uninterrupted([&] {
            return ZRFxSystem::Current().ReadAt(m_nFile, pNext, nSize, static_cast<off_t>(nOffset));
        });
        if (nRead == 0) errno = ENODATA;
        if (nRead <= 0) return false;
        pNext += nRead;
        nOffset += static_cast<uint64_t>(nRead);
        nSize -= static_cast<size_t>(nRead);
    }
    return true;
}

bool ZRFxFile::WriteAt(uint64_t nOffset, const void* pData, size_t nSize) {
    const char* pNext = static_cast<const char*>(pData);
    while (nSize > 0) {
        const ssize_t nWritten = Uninterrupted([&] {
            return ZRFxSystem::Current().WriteAt(m_nFile, pNext, nSize,
                                                 static_cast<off_t>(nOffset));
        });
        if (nWritten == 0) errno = ENOSPC;
        if (nWritten <= 0) return false;
        pNext += nWritten;
        nOffset += static_cast<uint64_t>(nWritten);
        nSize -= static_cast<size_t>(nWritten);
    }
    return true;
}

bool ZRFxFile::Flush() {
    return Uninterrupted([&] { return ZRFxSystem::Current().Flush(m_nFile); }) == 0;
}

void ZRFxFile::StartFlush(uint64_t nOffset, uint64_t nSize) {
    // Only a hint: what it misses, Flush does.
    ZRFxSystem::Current().StartFlush(m_nFile, static_cast<off_t>(nOffset),
                                     static_cast<off_t>(nSize));
}

bool ZRFxFile::Truncate(uint64_t nLength) {
    return Uninterrupted([&] {
               return ZRFxSystem::Current().Truncate(m_nFile, static_cast<off_t>(nLength));
           }) == 0;
}

bool ZRFxFile::Lock() {
    return Uninterrupted([&] { return ZRFxSystem::Current().Lock(m_nFile); }) == 0;
}

bool ZRFxFile::SetMode(mode_t nMode) {
    return ZRFxSystem::Current().SetMode(m_nFile, nMode) == 0;
}

bool ZRFxFile::Status(struct stat* pStatus) const {
    return ZRFxSystem::Current().Status(m_nFile, pStatus) == 0;
}

bool ZRFxFile::FlushDirectoryOf(const std::string& sPath) {
    const size_t nSlash = sPath.rfind('/');
    const std::string sDirectory = nSlash == std::string::npos ? "." : sPath.substr(0, nSlash + 1);
    ZRFxFile directory;
    return directory.Open(sDirectory, O_RDONLY | O_DIRECTORY) && directory.Flush();
}

}  // namespace unstruct
