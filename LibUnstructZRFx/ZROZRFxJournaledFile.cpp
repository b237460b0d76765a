#include "ZROZRFxJournaledFile.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <new>
#include <system_error>
#include <thread>

#include "ZRByteOrder.h"
#include "ZROZRFxCodec.h"

namespace unstruct {
namespace {

// Journal: magic, version, size of the archive, first changed offset, CRC of the saved end, CRC of
// the archive just before it, CRC of this header; then the saved end.
constexpr char kMagic[8] = {'Z', 'R', 'F', 'X', 'J', 'R', 'N', 'L'};
constexpr uint32_t kVersion = 1;
constexpr size_t kHeaderSize = 40;
constexpr size_t kPrefixChecked = 4096;
constexpr size_t kBufferSize = size_t{1} << 20;
constexpr uint64_t kStartFlushSize = uint64_t{4} << 20;
constexpr uint64_t kPage = 4096;
constexpr int kMaxTries = 1000;

// Calls part(offset, size) over [nOffset, nOffset + nSize) in pieces of the buffer's size.
template <typename Part>
bool ForEachPart(uint64_t nOffset, uint64_t nSize, Part part) {
    while (nSize > 0) {
        const size_t nPart = static_cast<size_t>(std::min<uint64_t>(nSize, kBufferSize));
        if (!part(nOffset, nPart)) return false;
        nOffset += nPart;
        nSize -= nPart;
    }
    return true;
}

std::unique_ptr<uint8_t[]> MakeBuffer() {
    return std::unique_ptr<uint8_t[]>(new (std::nothrow) uint8_t[kBufferSize]);
}

void EncodeHeader(const ZRFxJournalHeader& header, uint8_t* pBytes) {
    std::memcpy(pBytes, kMagic, sizeof(kMagic));
    StoreLittleEndian(pBytes + 8, kVersion);
    StoreLittleEndian(pBytes + 12, header.nOldSize);
    StoreLittleEndian(pBytes + 20, header.nUnchanged);
    StoreLittleEndian(pBytes + 28, header.nTailCrc);
    StoreLittleEndian(pBytes + 32, header.nPrefixCrc);
    StoreLittleEndian(pBytes + 36, ZRFxCodec::Crc32(0, pBytes, 36));
}

bool DecodeHeader(const uint8_t* pBytes, ZRFxJournalHeader* pHeader) {
    if (std::memcmp(pBytes, kMagic, sizeof(kMagic)) != 0 ||
        LoadLittleEndian<uint32_t>(pBytes + 8) != kVersion ||
        LoadLittleEndian<uint32_t>(pBytes + 36) != ZRFxCodec::Crc32(0, pBytes, 36)) {
        return false;
    }
    pHeader->nOldSize = LoadLittleEndian<uint64_t>(pBytes + 12);
    pHeader->nUnchanged = LoadLittleEndian<uint64_t>(pBytes + 20);
    pHeader->nTailCrc = LoadLittleEndian<uint32_t>(pBytes + 28);
    pHeader->nPrefixCrc = LoadLittleEndian<uint32_t>(pBytes + 32);
    return pHeader->nUnchanged <= pHeader->nOldSize;
}

}  // namespace

ZRFxJournaledFile::~ZRFxJournaledFile() {
    RollBack();
    if (m_bCreated && IsStillAtPath()) ZRFxSystem::Current().Remove(m_sPath.c_str());
}

bool ZRFxJournaledFile::Open(const std::string& sPath, ZRFxOpenMode eMode) {
    char* sResolved = ZRFxSystem::Current().RealPath(sPath.c_str());
    m_sPath = sResolved ? sResolved : sPath;
    std::free(sResolved);
    m_sJournalPath = m_sPath + ".journal";
    m_sRewritePath = m_sPath + ".rewrite";
    if (eMode == ZRFxOpenMode::kReadOnly) return OpenForReading();
    if (!OpenForWriting(eMode == ZRFxOpenMode::kCreate)) return false;
    if (eMode == ZRFxOpenMode::kCreate) m_nSize = 0;
    return true;
}

bool ZRFxJournaledFile::Read(uint64_t nOffset, void* pData, size_t nSize) {
    if (nOffset > m_nSize || nSize > m_nSize - nOffset) return Fail("the file ends too early");
    uint8_t* pNext = static_cast<uint8_t*>(pData);
    if (m_journal.IsOpen() && nOffset + nSize > m_nUnchanged) {
        const uint64_t nFrom = std::max(nOffset, m_nUnchanged);
        const size_t nHead = static_cast<size_t>(nFrom - nOffset);
        if (!m_journal.ReadAt(kHeaderSize + (nFrom - m_nUnchanged), pNext + nHead, nSize - nHead)) {
            return FailSystem("cannot read the journal");
        }
        nSize = nHead;
    }
    return m_file.ReadAt(nOffset, pNext, nSize) || FailSystem("cannot read");
}

bool ZRFxJournaledFile::IsConsistent() {
    // The saved end does not change any more, and the directory lies in it.
    if (m_journal.IsOpen()) return true;
    ZRFxFile journal;
    ZRFxJournalHeader header;
    struct stat status;
    const JournalState eState = LoadJournal(&journal, &header);
    return (eState == JournalState::kAbsent || eState == JournalState::kIncomplete) &&
           m_file.Status(&status) && static_cast<uint64_t>(status.st_size) == m_nSize;
}

bool ZRFxJournaledFile::BeginCommit(uint64_t nUnchanged) {
    if (!FinishTorn()) return false;
    if (!IsStillAtPath()) return Fail("the file was removed or replaced by someone else");
    if (!WriteJournal(nUnchanged)) {
        m_journal.Close();
        RemoveJournal();
        return false;
    }
    m_nUnchanged = nUnchanged;
    StartAt(nUnchanged, Phase::kInPlace);
    return true;
}

bool ZRFxJournaledFile::BeginRewrite() {
    if (!FinishTorn()) return false;
    if (!IsStillAtPath()) return Fail("the file was removed or replaced by someone else");
    struct stat status;
    if (!m_file.Status(&status)) return FailSystem("cannot read the file's status");
    ZRFxSystem::Current().Remove(m_sRewritePath.c_str());
    if (!m_rewrite.Open(m_sRewritePath, O_RDWR | O_CREAT | O_EXCL)) {
        return FailSystem("cannot create the temporary file");
    }
    StartAt(0, Phase::kRewrite);
    if (m_rewrite.Lock() && m_rewrite.SetMode(status.st_mode & 07777)) return true;
    FailSystem("cannot prepare the temporary file");
    RollBack();
    return false;
}

bool ZRFxJournaledFile::Write(const void* pData, size_t nSize) {
    if (m_ePhase != Phase::kInPlace && m_ePhase != Phase::kRewrite) {
        return Fail("no commit is under way");
    }
    if (nSize == 0) return true;
    if (!m_pBuffer) m_pBuffer = MakeBuffer();
    if (!m_pBuffer) return Fail("out of memory");
    if (m_nBuffered + nSize > kBufferSize && !FlushBuffer()) return false;
    if (nSize < kBufferSize) {
        std::memcpy(m_pBuffer.get() + m_nBuffered, pData, nSize);
        m_nBuffered += nSize;
    } else if (!Target().WriteAt(m_nPosition, pData, nSize)) {
        return FailSystem("cannot write");
    }
    m_nPosition += nSize;
    StartFlush();
    return true;
}

bool ZRFxJournaledFile::ReadWritten(uint64_t nOffset, void* pData, size_t nSize) {
    if (!FlushBuffer()) return false;
    return Target().ReadAt(nOffset, pData, nSize) || FailSystem("cannot read");
}

void ZRFxJournaledFile::Rewind(uint64_t nPosition) {
    const uint64_t nInFile = m_nPosition - m_nBuffered;
    m_nBuffered = nPosition > nInFile ? static_cast<size_t>(nPosition - nInFile) : 0;
    m_nPosition = nPosition;
    m_nFlushStarted = std::min(m_nFlushStarted, nPosition / kPage * kPage);
}

ZRFxCommitResult ZRFxJournaledFile::EndCommit() {
    if (!FlushBuffer()) return ZRFxCommitResult::kFailed;
    const bool bRewrite = m_ePhase == Phase::kRewrite;
    if (!Target().Truncate(m_nPosition) || !FlushWritten()) {
        FailSystem("cannot flush");
        return ZRFxCommitResult::kFailed;
    }
    if (!IsStillAtPath()) {
        Fail("the file was removed or replaced by someone else");
        return ZRFxCommitResult::kFailed;
    }
    if (!RemoveJournal()) {
        FailSystem("cannot remove the journal");
        return ZRFxCommitResult::kFailed;
    }
    if (bRewrite && ZRFxSystem::Current().Rename(m_sRewritePath.c_str(), m_sPath.c_str()) != 0) {
        FailSystem("cannot rename the temporary file");
        return ZRFxCommitResult::kFailed;
    }
    if (bRewrite) m_file = std::move(m_rewrite);
    m_journal.Close();
    m_ePhase = Phase::kIdle;
    m_nSize = m_nPosition;
    m_bCreated = false;
    if (ZRFxFile::FlushDirectoryOf(m_sPath)) return ZRFxCommitResult::kDone;
    FailSystem("cannot flush the directory of the file");
    return ZRFxCommitResult::kUnconfirmed;
}

void ZRFxJournaledFile::RollBack() {
    m_nBuffered = 0;
    if (m_ePhase == Phase::kRewrite) {
        m_rewrite.Close();
        ZRFxSystem::Current().Remove(m_sRewritePath.c_str());
        m_ePhase = Phase::kIdle;
    }
    if (m_ePhase == Phase::kInPlace) m_ePhase = Phase::kTorn;
    const std::string sError = m_sError;
    FinishTorn();
    m_sError = sError;
}

bool ZRFxJournaledFile::OpenForWriting(bool bMayCreate) {
    bool bRetry = true;
    for (int i = 0; i < kMaxTries && bRetry; ++i) {
        bRetry = false;
        m_bCreated = bMayCreate && m_file.Open(m_sPath, O_RDWR | O_CREAT | O_EXCL);
        if (!m_bCreated && !m_file.Open(m_sPath, O_RDWR)) return FailSystem("cannot open");
        if (AcquireLock(&bRetry)) return Recover();
        m_bCreated = false;
    }
    return bRetry ? Fail("the file is replaced again and again by someone else") : false;
}

// Sets pRetry when the file was renamed or removed between opening and locking it.
bool ZRFxJournaledFile::AcquireLock(bool* pRetry) {
    struct stat status;
    if (!m_file.Status(&status)) return FailSystem("cannot read the file's status");
    if (!S_ISREG(status.st_mode)) return Fail("not a regular file");
    if (!m_file.Lock()) {
        return errno == EWOULDBLOCK ? Fail("the file is open for writing elsewhere")
                                    : FailSystem("cannot lock");
    }
    *pRetry = !IsStillAtPath();
    if (*pRetry) return Fail("the file was replaced");
    // A writer that held the lock until now may have changed the size.
    if (!m_file.Status(&status)) return FailSystem("cannot read the file's status");
    m_nSize = static_cast<uint64_t>(status.st_size);
    return true;
}

bool ZRFxJournaledFile::Recover() {
    ZRFxSystem::Current().Remove(m_sRewritePath.c_str());
    ZRFxJournalHeader header;
    const JournalState eState =
        m_bCreated ? JournalState::kAbsent : LoadJournal(&m_journal, &header);
    if (eState == JournalState::kUnreadable) return FailSystem("cannot read the journal");
    if (eState == JournalState::kComplete) {
        m_nSize = header.nOldSize;
        m_nUnchanged = header.nUnchanged;
        m_ePhase = Phase::kTorn;
        return FinishTorn();
    }
    m_journal.Close();
    return RemoveJournal() || FailSystem("cannot remove the incomplete journal");
}

bool ZRFxJournaledFile::OpenForReading() {
    for (int i = 0; i < kMaxTries; ++i) {
        if (!m_file.Open(m_sPath, O_RDONLY)) return FailSystem("cannot open");
        if (!TakeSnapshot()) return false;
        // The journal belongs to the file that bears the name.
        if (IsStillAtPath()) return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return Fail("the file is replaced again and again by someone else");
}

bool ZRFxJournaledFile::TakeSnapshot() {
    struct stat status;
    if (!m_file.Status(&status)) return FailSystem("cannot read the file's status");
    if (!S_ISREG(status.st_mode)) return Fail("not a regular file");
    m_nSize = static_cast<uint64_t>(status.st_size);
    ZRFxJournalHeader header;
    const JournalState eState = LoadJournal(&m_journal, &header);
    if (eState == JournalState::kUnreadable) return FailSystem("cannot read the journal");
    if (eState != JournalState::kComplete) {
        m_journal.Close();
        return true;
    }
    m_nSize = header.nOldSize;
    m_nUnchanged = header.nUnchanged;
    return true;
}

ZRFxJournaledFile::JournalState ZRFxJournaledFile::LoadJournal(ZRFxFile* pJournal,
                                                               ZRFxJournalHeader* pHeader) const {
    if (!pJournal->Open(m_sJournalPath, O_RDONLY)) {
        return errno == ENOENT ? JournalState::kAbsent : JournalState::kUnreadable;
    }
    uint8_t aHeader[kHeaderSize];
    if (!pJournal->ReadAt(0, aHeader, kHeaderSize)) {
        return errno == ENODATA ? JournalState::kIncomplete : JournalState::kUnreadable;
    }
    if (!DecodeHeader(aHeader, pHeader)) return JournalState::kIncomplete;
    uint32_t nPrefixCrc = 0;
    uint32_t nTailCrc = 0;
    if (!PrefixCrc(pHeader->nUnchanged, &nPrefixCrc) ||
        !CopyTail(*pJournal, *pHeader, nullptr, &nTailCrc)) {
        return errno == ENODATA ? JournalState::kIncomplete : JournalState::kUnreadable;
    }
    return nPrefixCrc == pHeader->nPrefixCrc && nTailCrc == pHeader->nTailCrc
               ? JournalState::kComplete
               : JournalState::kIncomplete;
}

bool ZRFxJournaledFile::WriteJournal(uint64_t nUnchanged) {
    if (!RemoveJournal()) return FailSystem("cannot remove the old journal");
    struct stat status;
    if (!m_file.Status(&status)) return FailSystem("cannot read the file's status");
    if (!m_journal.Open(m_sJournalPath, O_RDWR | O_CREAT | O_EXCL, status.st_mode & 0777)) {
        return FailSystem("cannot create the journal");
    }
    ZRFxJournalHeader header{m_nSize, nUnchanged, 0, 0};
    const std::unique_ptr<uint8_t[]> pPart = MakeBuffer();
    if (!pPart) return Fail("out of memory");
    const bool bSaved = ForEachPart(0, m_nSize - nUnchanged, [&](uint64_t nOffset, size_t nPart) {
        if (!m_file.ReadAt(nUnchanged + nOffset, pPart.get(), nPart)) return false;
        header.nTailCrc = ZRFxCodec::Crc32(header.nTailCrc, pPart.get(), nPart);
        return m_journal.WriteAt(kHeaderSize + nOffset, pPart.get(), nPart);
    });
    if (!bSaved || !PrefixCrc(nUnchanged, &header.nPrefixCrc)) {
        return FailSystem("cannot save the end of the file to the journal");
    }
    uint8_t aHeader[kHeaderSize];
    EncodeHeader(header, aHeader);
    return (m_journal.WriteAt(0, aHeader, kHeaderSize) && m_journal.Flush() &&
            ZRFxFile::FlushDirectoryOf(m_sPath)) ||
           FailSystem("cannot flush the journal");
}

bool ZRFxJournaledFile::RemoveJournal() {
    return ZRFxSystem::Current().Remove(m_sJournalPath.c_str()) == 0 || errno == ENOENT;
}

bool ZRFxJournaledFile::CopyTail(const ZRFxFile& journal, const ZRFxJournalHeader& header,
                                 ZRFxFile* pTo, uint32_t* pCrc) {
    *pCrc = 0;
    const std::unique_ptr<uint8_t[]> pPart = MakeBuffer();
    if (!pPart) errno = ENOMEM;
    return pPart &&
           ForEachPart(0, header.nOldSize - header.nUnchanged, [&](uint64_t nOffset, size_t nPart) {
               if (!journal.ReadAt(kHeaderSize + nOffset, pPart.get(), nPart)) return false;
               *pCrc = ZRFxCodec::Crc32(*pCrc, pPart.get(), nPart);
               return !pTo || pTo->WriteAt(header.nUnchanged + nOffset, pPart.get(), nPart);
           });
}

bool ZRFxJournaledFile::PrefixCrc(uint64_t nUnchanged, uint32_t* pCrc) const {
    uint8_t aPrefix[kPrefixChecked];
    const size_t nSize = static_cast<size_t>(std::min<uint64_t>(nUnchanged, kPrefixChecked));
    if (!m_file.ReadAt(nUnchanged - nSize, aPrefix, nSize)) return false;
    *pCrc = ZRFxCodec::Crc32(0, aPrefix, nSize);
    return true;
}

bool ZRFxJournaledFile::IsStillAtPath() const {
    struct stat opened;
    struct stat named;
    return m_file.IsOpen() && m_file.Status(&opened) &&
           ZRFxSystem::Current().StatusOf(m_sPath.c_str(), &named) == 0 &&
           opened.st_ino == named.st_ino && opened.st_dev == named.st_dev;
}

// Puts the saved end back. Until that has succeeded the journal stays.
bool ZRFxJournaledFile::FinishTorn() {
    if (m_ePhase != Phase::kTorn) return true;
    uint32_t nCrc = 0;
    if (!CopyTail(m_journal, {m_nSize, m_nUnchanged, 0, 0}, &m_file, &nCrc) ||
        !m_file.Truncate(m_nSize) || !m_file.Flush() || !RemoveJournal()) {
        return FailSystem("cannot restore the state before the torn commit");
    }
    m_journal.Close();
    m_ePhase = Phase::kIdle;
    // A journal that comes back after a power failure restores the same state once more.
    ZRFxFile::FlushDirectoryOf(m_sPath);
    return true;
}

void ZRFxJournaledFile::StartAt(uint64_t nPosition, Phase ePhase) {
    m_ePhase = ePhase;
    m_nPosition = nPosition;
    m_nFlushStarted = nPosition;
    m_bFlushFailed = false;
    m_nBuffered = 0;
}

bool ZRFxJournaledFile::FlushBuffer() {
    if (m_nBuffered == 0) return true;
    if (!Target().WriteAt(m_nPosition - m_nBuffered, m_pBuffer.get(), m_nBuffered)) {
        return FailSystem("cannot write");
    }
    m_nBuffered = 0;
    return true;
}

// Lets the disk work on what is written while the rest is being written.
void ZRFxJournaledFile::StartFlush() {
    // The last page will be written to again, which would have to wait for the disk.
    const uint64_t nWritten = (m_nPosition - m_nBuffered) / kPage * kPage;
    if (nWritten < m_nFlushStarted + kStartFlushSize) return;
    Target().StartFlush(m_nFlushStarted, nWritten - m_nFlushStarted);
    m_nFlushStarted = nWritten;
}

// A flush that failed leaves pages that the system takes for written, so another try writes them
// anew.
bool ZRFxJournaledFile::FlushWritten() {
    if (m_bFlushFailed) {
        const uint64_t nStart = m_ePhase == Phase::kRewrite ? 0 : m_nUnchanged;
        const bool bWritten =
            ForEachPart(nStart, m_nPosition - nStart, [&](uint64_t nOffset, size_t nPart) {
                return Target().ReadAt(nOffset, m_pBuffer.get(), nPart) &&
                       Target().WriteAt(nOffset, m_pBuffer.get(), nPart);
            });
        if (!bWritten) return false;
    }
    m_bFlushFailed = !Target().Flush();
    return !m_bFlushFailed;
}

bool ZRFxJournaledFile::FailSystem(const char* sWhat) {
    return Fail(std::string(sWhat) + ": " + std::generic_category().message(errno));
}

}  // namespace unstruct
