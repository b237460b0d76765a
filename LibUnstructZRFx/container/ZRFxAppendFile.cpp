#include "container/ZRFxAppendFile.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <new>
#include <system_error>

#include "container/ZRFxOldJournal.h"

namespace unstruct {
namespace {

constexpr size_t kBufferSize = size_t{1} << 20;
// Of data that is written past the buffer, this much waits in it, so that the file does not end
// with the entry.
constexpr size_t kHeldBack = 16;
constexpr uint64_t kStartFlushSize = uint64_t{4} << 20;
constexpr uint64_t kPage = 4096;
constexpr int kMaxTries = 1000;
constexpr int kMaxTemporaryNames = 10;
constexpr mode_t kPrivate = 0600;

bool IsOurFile(const std::string& sPath) {
    struct stat status;
    return ZRFxSystem::Current().LinkStatusOf(sPath.c_str(), &status) == 0 &&
           S_ISREG(status.st_mode) && status.st_uid == geteuid();
}

}  // namespace

ZRFxAppendFile::~ZRFxAppendFile() {
    RollBack();
    if (m_bMadeName && IsStillAtPath()) ZRFxSystem::Current().Remove(m_sPath.c_str());
}

bool ZRFxAppendFile::Open(const std::string& sPath, ZRZipAccessMode eMode) {
    if (!Resolve(sPath)) return false;
    if (eMode == ZRZipAccessMode::READ_ONLY) return OpenForReading();
    if (!OpenForWriting(eMode == ZRZipAccessMode::CREATE)) return false;
    // Appended to an empty file, a torn first commit would leave nothing that can be opened.
    m_bCreates = eMode == ZRZipAccessMode::CREATE || m_nSize == 0;
    if (!m_bCreates) return true;
    m_replaced = std::move(m_file);
    CutTo(0);
    return true;
}

void ZRFxAppendFile::CutTo(uint64_t nSize) {
    m_nSize = m_nConfirmed = m_nPosition = nSize;
}

bool ZRFxAppendFile::Extend() {
    struct stat status;
    if (!IsStillAtPath() || !m_file.Status(&status)) return false;
    const uint64_t nSize = static_cast<uint64_t>(status.st_size);
    if (nSize < m_nSize) return false;
    CutTo(nSize);
    return true;
}

bool ZRFxAppendFile::Read(uint64_t nOffset, void* pData, size_t nSize) {
    if (nOffset > m_nPosition || nSize > m_nPosition - nOffset) {
        return Fail("the file ends too early");
    }
    if (ReadAside(nOffset, pData, nSize)) return true;
    // A file that ends too early was cut by its writer.
    m_bReadFailed = m_bReadFailed || errno != ENODATA;
    return FailSystem("cannot read");
}

bool ZRFxAppendFile::ReadAside(uint64_t nOffset, void* pData, size_t nSize) const {
    if (nOffset > m_nPosition || nSize > m_nPosition - nOffset) return false;
    const uint64_t nInFile = m_nPosition - m_nBuffered;
    uint8_t* pNext = static_cast<uint8_t*>(pData);
    if (nSize > 0 && nOffset + nSize > nInFile) {
        const uint64_t nFrom = std::max(nOffset, nInFile);
        const size_t nHead = static_cast<size_t>(nFrom - nOffset);
        std::memcpy(pNext + nHead, m_pBuffer.get() + (nFrom - nInFile), nSize - nHead);
        nSize = nHead;
    }
    return m_file.ReadAt(nOffset, pNext, nSize);
}

bool ZRFxAppendFile::Write(const void* pData, size_t nSize) {
    if (nSize == 0) return true;
    if (!StartWriting()) return false;
    const uint8_t* pNext = static_cast<const uint8_t*>(pData);
    while (nSize > 0) {
        // The buffer goes to the file only when more follows. Long data follows its own header.
        const bool bPast = nSize > kBufferSize;
        if (bPast ? !FlushBuffer() : m_nBuffered == kBufferSize && !FlushBuffer(kHeldBack)) {
            return false;
        }
        const size_t nPart = bPast ? nSize - kHeldBack : std::min(nSize, kBufferSize - m_nBuffered);
        if (bPast && !m_file.WriteAt(m_nPosition, pNext, nPart)) return FailSystem("cannot write");
        if (!bPast) std::memcpy(m_pBuffer.get() + m_nBuffered, pNext, nPart);
        if (!bPast) m_nBuffered += nPart;
        m_nPosition += nPart;
        pNext += nPart;
        nSize -= nPart;
    }
    StartFlush();
    return true;
}

// What was written before goes to the file but for its end: until the head is there, the bytes that
// follow belong to no entry.
bool ZRFxAppendFile::StartAside() {
    return StartWriting() && FlushBuffer(kHeldBack);
}

bool ZRFxAppendFile::WriteAside(uint64_t nOffset, const void* pData, size_t nSize) {
    if (!m_file.WriteAt(nOffset, pData, nSize)) return false;
    // The pages at both ends have bytes of others.
    const uint64_t nFrom = (nOffset + kPage - 1) / kPage * kPage;
    const uint64_t nTo = (nOffset + nSize) / kPage * kPage;
    if (nTo > nFrom) m_file.StartFlush(nFrom, nTo - nFrom);
    return true;
}

bool ZRFxAppendFile::EndAside(std::string_view sHead, uint64_t nAside, std::string_view sTail) {
    std::string sBytes(m_pBuffer.get(), m_pBuffer.get() + m_nBuffered);
    sBytes.append(sHead);
    if (!m_file.WriteAt(m_nPosition - m_nBuffered, sBytes.data(), sBytes.size())) {
        return FailSystem("cannot write");
    }
    std::memcpy(m_pBuffer.get(), sTail.data(), sTail.size());
    m_nBuffered = sTail.size();
    m_nPosition += sHead.size() + nAside + sTail.size();
    StartFlush();
    return true;
}

void ZRFxAppendFile::Rewind(uint64_t nPosition) {
    const uint64_t nInFile = m_nPosition - m_nBuffered;
    m_nBuffered = nPosition > nInFile ? static_cast<size_t>(nPosition - nInFile) : 0;
    m_nPosition = nPosition;
    m_nFlushStarted = std::min(m_nFlushStarted, nPosition / kPage * kPage);
}

bool ZRFxAppendFile::Flush() {
    return StartWriting() && FlushBuffer() && FlushFile();
}

ZRFxCommitResult ZRFxAppendFile::EndCommit() {
    if (!StartWriting() || !FlushBuffer()) return ZRFxCommitResult::kFailed;
    if (!IsStillAtPath()) {
        Fail({"the file was removed or replaced by someone else", nvf::Reason::CHANGED});
        return ZRFxCommitResult::kFailed;
    }
    // Longer where something was written and taken back, or a torn end was there.
    const bool bCut = m_file.Truncate(m_nPosition) || FailSystem("cannot cut the file");
    const bool bFlushed = bCut && FlushFile();
    if (m_bCreates && !(bFlushed && TakeName())) return ZRFxCommitResult::kFailed;
    m_nSize = m_nPosition;
    m_bWriting = false;
    if (!bFlushed) return ZRFxCommitResult::kUnconfirmed;
    if (m_bRenamed && !FlushDirectory()) return ZRFxCommitResult::kUnconfirmed;
    if (m_bRenamed) ZRFxOldJournal::RemoveBeside(m_sPath, m_file);
    m_bRenamed = false;
    m_nConfirmed = m_nSize;
    return ZRFxCommitResult::kDone;
}

void ZRFxAppendFile::RollBack() {
    if (!m_bWriting) return;
    m_nBuffered = 0;
    m_nPosition = m_nSize;
    m_bWriting = false;
    if (!m_sTemporary.empty()) {
        m_file.Close();
        ZRFxSystem::Current().Remove(m_sTemporary.c_str());
        m_sTemporary.clear();
    } else {
        // What cannot be cut off now is ignored by every opener.
        m_file.Truncate(m_nSize);
    }
}

std::unique_ptr<ZRFxZipStorage> ZRFxAppendFile::Successor() {
    struct stat status;
    if (!m_file.IsOpen() || !m_file.Status(&status)) return nullptr;
    auto pSuccessor = std::make_unique<ZRFxAppendFile>();
    pSuccessor->m_sPath = m_sPath;
    pSuccessor->m_atPath = m_atPath;
    pSuccessor->m_nMode = status.st_mode & 07777;
    pSuccessor->m_bCreates = true;
    return pSuccessor;
}

// A file that does not exist yet has a directory that does.
bool ZRFxAppendFile::Resolve(const std::string& sPath) {
    const auto real = [](const std::string& s, std::string* pReal) {
        const std::unique_ptr<char, void (*)(void*)> sFound(
            ZRFxSystem::Current().RealPath(s.c_str()), std::free);
        if (sFound) *pReal = sFound.get();
        return sFound != nullptr;
    };
    if (real(sPath, &m_sPath)) return true;
    if (errno != ENOENT) return FailSystem("cannot resolve the path");
    const size_t nName = sPath.rfind('/') + 1;  // 0 when there is none.
    std::string sFolder;
    if (!real(nName == 0 ? "." : sPath.substr(0, nName), &sFolder))
        return FailSystem("cannot open");
    if (sFolder.back() != '/') sFolder += '/';
    m_sPath = sFolder + sPath.substr(nName);
    return true;
}

ZRFxAppendFile::Identity ZRFxAppendFile::IdentityOf(const struct stat& status) {
    return {status.st_dev, status.st_ino};
}

// What is no regular file is found out without waiting for whoever might be at its other end.
bool ZRFxAppendFile::OpenRegular(const std::string& sPath, int nFlags) {
    struct stat status;
    if (!m_file.Open(sPath, nFlags | O_NONBLOCK | O_NOCTTY)) {
        return errno == ENXIO ? Fail({"not a regular file", nvf::Reason::NO_REGULAR_FILE})
                              : FailSystem("cannot open");
    }
    if (!m_file.Status(&status)) return FailSystem("cannot read the file's status");
    if (!S_ISREG(status.st_mode)) return Fail({"not a regular file", nvf::Reason::NO_REGULAR_FILE});
    m_atPath = IdentityOf(status);
    m_nMode = status.st_mode & 07777;
    CutTo(static_cast<uint64_t>(status.st_size));
    return true;
}

bool ZRFxAppendFile::OpenForReading() {
    return OpenRegular(m_sPath, O_RDONLY);
}

bool ZRFxAppendFile::OpenForWriting(bool bMayCreate) {
    bool bRetry = true;
    for (int i = 0; i < kMaxTries && bRetry; ++i) {
        bRetry = false;
        m_bMadeName = bMayCreate && OpenRegular(m_sPath, O_RDWR | O_CREAT | O_EXCL);
        if (!m_bMadeName && !OpenRegular(m_sPath, O_RDWR)) return false;
        if (AcquireLock(&bRetry)) return true;
        m_bMadeName = false;
    }
    return bRetry ? Fail({"the file is replaced again and again by someone else",
                          nvf::Reason::CHANGED})
                  : false;
}

// Sets pRetry when the file was renamed or removed between opening and locking it.
bool ZRFxAppendFile::AcquireLock(bool* pRetry) {
    if (!m_file.Lock()) {
        return errno == EWOULDBLOCK
                   ? Fail({"the file is open for writing elsewhere", nvf::Reason::IN_USE})
                   : FailSystem("cannot lock");
    }
    *pRetry = !IsStillAtPath();
    if (*pRetry) return Fail({"the file was replaced", nvf::Reason::CHANGED});
    // A writer that held the lock until now may have changed the size.
    struct stat status;
    if (!m_file.Status(&status)) return FailSystem("cannot read the file's status");
    CutTo(static_cast<uint64_t>(status.st_size));
    const std::string sLeftOver = m_sPath + ".rewrite";
    if (IsOurFile(sLeftOver)) ZRFxSystem::Current().Remove(sLeftOver.c_str());
    return true;
}

bool ZRFxAppendFile::IsStillAtPath() const {
    struct stat status;
    return ZRFxSystem::Current().StatusOf(m_sPath.c_str(), &status) == 0 &&
           IdentityOf(status) == m_atPath;
}

bool ZRFxAppendFile::StartWriting() {
    if (!m_pBuffer) m_pBuffer.reset(new (std::nothrow) uint8_t[kBufferSize]);
    if (!m_pBuffer) return Fail(ZRFxCause::OutOfMemory());
    if (m_bWriting) return true;
    if (!IsStillAtPath())
        return Fail({"the file was removed or replaced by someone else", nvf::Reason::CHANGED});
    if (m_bCreates && m_sTemporary.empty() && !MakeTemporary()) return false;
    struct stat status;
    if (!m_file.Status(&status)) return FailSystem("cannot read the file's status");
    const bool bTorn = static_cast<uint64_t>(status.st_size) > m_nSize;
    if (bTorn && !m_file.Truncate(m_nSize)) return FailSystem("cannot cut the torn end off");
    m_nFlushStarted = m_nSize;
    m_bWriting = true;
    return true;
}

// Private until the mode of what it replaces can be given to it.
bool ZRFxAppendFile::MakeTemporary() {
    if (!CreateTemporary()) return FailSystem("cannot create the temporary file");
    if (m_file.Lock() && m_file.SetMode(m_nMode)) return true;
    FailSystem("cannot prepare the temporary file");
    m_file.Close();
    ZRFxSystem::Current().Remove(m_sTemporary.c_str());
    m_sTemporary.clear();
    return false;
}

// Under another name where someone else's file, a link or a folder has taken the first.
bool ZRFxAppendFile::CreateTemporary() {
    for (int i = 0; i < kMaxTemporaryNames; ++i) {
        m_sTemporary = m_sPath + ".rewrite" + (i > 0 ? std::to_string(i) : "");
        if (IsOurFile(m_sTemporary)) ZRFxSystem::Current().Remove(m_sTemporary.c_str());
        if (m_file.Open(m_sTemporary, O_RDWR | O_CREAT | O_EXCL, kPrivate)) return true;
        if (errno != EEXIST) break;
    }
    m_sTemporary.clear();
    return false;
}

// Leaves the last nKept bytes in the buffer.
bool ZRFxAppendFile::FlushBuffer(size_t nKept) {
    const size_t nWritten = m_nBuffered - std::min(m_nBuffered, nKept);
    if (nWritten == 0) return true;
    if (!m_file.WriteAt(m_nPosition - m_nBuffered, m_pBuffer.get(), nWritten)) {
        return FailSystem("cannot write");
    }
    m_nBuffered -= nWritten;
    std::memmove(m_pBuffer.get(), m_pBuffer.get() + nWritten, m_nBuffered);
    return true;
}

// Lets the disk work on what is written while the rest is being written.
void ZRFxAppendFile::StartFlush() {
    // The last page will be written to again, which would have to wait for the disk.
    const uint64_t nWritten = (m_nPosition - m_nBuffered) / kPage * kPage;
    if (nWritten < m_nFlushStarted + kStartFlushSize) return;
    m_file.StartFlush(m_nFlushStarted, nWritten - m_nFlushStarted);
    m_nFlushStarted = nWritten;
}

// A flush that failed leaves pages that the system takes for written, so another try writes them
// anew.
bool ZRFxAppendFile::FlushFile() {
    for (uint64_t nAt = m_nConfirmed; m_bFlushFailed && nAt < m_nPosition;) {
        const size_t nPart =
            static_cast<size_t>(std::min<uint64_t>(m_nPosition - nAt, kBufferSize));
        if (!m_file.ReadAt(nAt, m_pBuffer.get(), nPart) ||
            !m_file.WriteAt(nAt, m_pBuffer.get(), nPart)) {
            return FailSystem("cannot flush");
        }
        nAt += nPart;
    }
    m_bFlushFailed = !m_file.Flush();
    return !m_bFlushFailed || FailSystem("cannot flush");
}

// The commit holds already: a lack of memory must not end it as one that failed.
bool ZRFxAppendFile::FlushDirectory() {
    try {
        return ZRFxFile::FlushDirectoryOf(m_sPath) ||
               FailSystem("cannot flush the directory of the file");
    } catch (const std::bad_alloc&) {
        return false;
    }
}

bool ZRFxAppendFile::TakeName() {
    struct stat status;
    if (!m_file.Status(&status)) return FailSystem("cannot read the file's status");
    if (ZRFxSystem::Current().Rename(m_sTemporary.c_str(), m_sPath.c_str()) != 0) {
        return FailSystem("cannot rename the temporary file");
    }
    m_sTemporary.clear();
    m_atPath = IdentityOf(status);
    m_replaced.Close();
    m_bCreates = m_bMadeName = false;
    m_bRenamed = true;
    return true;
}

bool ZRFxAppendFile::FailSystem(const char* sWhat) {
    return Fail(ZRFxCause::System(sWhat));
}

}  // namespace unstruct
