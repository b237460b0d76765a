#include "container/ZRFxOldJournal.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <exception>
#include <system_error>
#include <utility>

#include "ZRByteOrder.h"
#include "container/ZRFxEntryReader.h"

namespace unstruct {
namespace {

// Magic, version, size of the archive, first changed offset, CRC of the saved end, CRC of the
// archive just before it, CRC of this header; then the saved end. The header was written last.
constexpr char kMagic[8] = {'Z', 'R', 'F', 'X', 'J', 'R', 'N', 'L'};
constexpr uint32_t kVersion = 1;
constexpr size_t kHeaderSize = 40;
constexpr uint64_t kUnchangedChecked = 4096;
constexpr uint64_t kPartSize = uint64_t{1} << 20;

bool IsNotThere() {
    return errno == ENOENT || errno == ENAMETOOLONG;
}

// Calls part(offset, size) over [nOffset, nEnd) in pieces.
template <typename Part>
bool ForEachPart(uint64_t nOffset, uint64_t nEnd, Part part) {
    while (nOffset < nEnd) {
        const size_t nPart = static_cast<size_t>(std::min(nEnd - nOffset, kPartSize));
        if (!part(nOffset, nPart)) return false;
        nOffset += nPart;
    }
    return true;
}

/// A file up to some byte and, after it, the saved end of a journal, if one is given.
class View : public ZRFxZipStorage {
public:
    /// *pFailure, if given, gets the cause when something cannot be read. REQUIRES: all outlive the
    /// view.
    View(ZRFxZipStorage* pFile, uint64_t nFromFile, const ZRFxFile* pJournal, uint64_t nSize,
         ZRFxCause* pFailure)
        : m_pFile(pFile),
          m_pJournal(pJournal),
          m_nFromFile(nFromFile),
          m_nSize(nSize),
          m_pFailure(pFailure) {}

    uint64_t Size() const override { return m_nSize; }
    void CutTo(uint64_t nSize) override { m_nSize = nSize; }
    bool Extend() override { return false; }
    uint64_t Position() const override { return m_nSize; }

    bool Read(uint64_t nOffset, void* pData, size_t nSize) override {
        if (nOffset > m_nSize || nSize > m_nSize - nOffset) return Fail("the file ends too early");
        const uint64_t nAhead = m_nFromFile - std::min(nOffset, m_nFromFile);
        const size_t nHead = static_cast<size_t>(std::min<uint64_t>(nSize, nAhead));
        uint8_t* pTail = static_cast<uint8_t*>(pData) + nHead;
        if (nHead > 0 && !m_pFile->Read(nOffset, pData, nHead)) return FailRead(m_pFile->Error());
        const uint64_t nInJournal = kHeaderSize + (nOffset + nHead - m_nFromFile);
        return nHead == nSize || m_pJournal->ReadAt(nInJournal, pTail, nSize - nHead) ||
               FailRead(ZRFxCause::System("cannot read the journal"));
    }

    // It is only read.
    bool Write(const void*, size_t) override {
        return Fail({"open for reading only", nvf::Reason::READ_ONLY});
    }
    void Rewind(uint64_t) override {}
    bool Flush() override { return Fail({"open for reading only", nvf::Reason::READ_ONLY}); }
    ZRFxCommitResult EndCommit() override { return ZRFxCommitResult::kFailed; }
    void RollBack() override {}
    std::unique_ptr<ZRFxZipStorage> Successor() override { return nullptr; }

private:
    bool FailRead(const ZRFxCause& cause) {
        if (m_pFailure) *m_pFailure = cause;
        return Fail(cause);
    }

    ZRFxZipStorage* m_pFile;
    const ZRFxFile* m_pJournal;
    const uint64_t m_nFromFile;
    uint64_t m_nSize;
    ZRFxCause* m_pFailure;
};

/// The last commit of a torn file, for a reader that may not restore it.
class RestoredView : public View {
public:
    RestoredView(std::unique_ptr<ZRFxZipStorage> pFile, ZRFxFile journal, std::string sJournalPath,
                 uint64_t nFromFile, uint64_t nSize)
        : View(pFile.get(), nFromFile, &m_journal, nSize, nullptr),
          m_pFile(std::move(pFile)),
          m_journal(std::move(journal)),
          m_sJournalPath(std::move(sJournalPath)),
          m_nOldSize(nSize) {}

    // While file and journal lie there as they did, nothing was committed.
    bool Extend() override {
        struct stat opened;
        struct stat named;
        const bool bSame =
            m_journal.Status(&opened) &&
            ZRFxSystem::Current().LinkStatusOf(m_sJournalPath.c_str(), &named) == 0 &&
            opened.st_dev == named.st_dev && opened.st_ino == named.st_ino && m_pFile->Extend();
        if (bSame) CutTo(m_nOldSize);
        return bSame;
    }

private:
    const std::unique_ptr<ZRFxZipStorage> m_pFile;
    const ZRFxFile m_journal;
    const std::string m_sJournalPath;
    const uint64_t m_nOldSize;
};

bool HasLocalHeader(ZRFxZipStorage* pStorage, const ZRFxZipEntry& entry) {
    std::string sHeader(ZRFxZipDirectory::kLocalHeaderSize + entry.sName.size(), '\0');
    uint64_t nData = 0;
    return pStorage->Read(entry.nOffset, sHeader.data(), sHeader.size()) &&
           ZRFxZipDirectory::DataOffset(entry, reinterpret_cast<const uint8_t*>(sHeader.data()),
                                        &nData);
}

}  // namespace

bool ZRFxOldJournal::Settle(std::unique_ptr<ZRFxAppendFile> pFile, ZRZipAccessMode eMode,
                            std::unique_ptr<ZRFxZipStorage>* ppStorage) {
    ZRFxAppendFile& file = *pFile;
    const bool bReads = eMode == ZRZipAccessMode::READ_ONLY;
    *ppStorage = std::move(pFile);
    // A file that is created over another one leaves that and its journal alone until it commits.
    if (file.Size() == 0) return true;
    const Content eContent = Load(file.Path(), file.File());
    if (eContent == Content::kNone && m_cause.IsNone()) return true;
    const Verdict eVerdict = Judge(&file, eContent);
    if (!m_cause.IsNone()) return bReads && m_bWhole;
    if (eVerdict == Verdict::kNeeded && bReads) return Show(ppStorage), true;
    if (eVerdict == Verdict::kNeeded) return Restore(&file);
    if (eVerdict == Verdict::kNotNeeded && !bReads && m_bOpens) Remove();
    return eVerdict == Verdict::kNotNeeded || bReads ||
           Fail("the file is damaged, and nothing proves that '" + m_sPath +
                "' belongs to it; move that away to open the file as it is");
}

void ZRFxOldJournal::RemoveBeside(const std::string& sPath, const ZRFxFile& file) noexcept {
    try {
        ZRFxOldJournal journal(nullptr);
        if (journal.Load(sPath, file) != Content::kNone) journal.Remove();
    } catch (const std::exception&) {
        // It stays, and is ignored by all programs but those of the version before.
    }
}

// The journal -------------------------------------------------------------------------------

ZRFxOldJournal::Content ZRFxOldJournal::Load(const std::string& sArchivePath,
                                             const ZRFxFile& archive) {
    m_sPath = sArchivePath + ".journal";
    if (!IsThere(archive)) return Content::kNone;
    const Content eHeader = LoadHeader();
    return eHeader == Content::kWhole ? CheckSavedEnd() : eHeader;
}

bool ZRFxOldJournal::IsThere(const ZRFxFile& archive) {
    struct stat named;
    struct stat status;
    if (ZRFxSystem::Current().LinkStatusOf(m_sPath.c_str(), &named) != 0) {
        return IsNotThere() ? false : FailSystem("cannot read the status of");
    }
    if (!S_ISREG(named.st_mode)) return false;
    if (!archive.Status(&status)) return FailSystem("cannot read the status of the file beside");
    return named.st_uid == status.st_uid && OpenSafely(status.st_uid);
}

// The name may bear something else by now.
bool ZRFxOldJournal::OpenSafely(uid_t nOwner) {
    struct stat status;
    if (!m_file.Open(m_sPath, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY)) {
        return IsNotThere() || errno == ELOOP ? false : FailSystem("cannot open");
    }
    if (!m_file.Status(&status)) return FailSystem("cannot read the status of");
    m_nLength = static_cast<uint64_t>(status.st_size);
    return S_ISREG(status.st_mode) && status.st_uid == nOwner;
}

// Until the header was written its bytes were zeros.
ZRFxOldJournal::Content ZRFxOldJournal::LoadHeader() {
    uint8_t aHeader[kHeaderSize] = {};
    const size_t nHeader = static_cast<size_t>(std::min<uint64_t>(m_nLength, kHeaderSize));
    if (!m_file.ReadAt(0, aHeader, nHeader)) {
        return FailSystem("cannot read"), Content::kNone;
    }
    const size_t nMagic = std::min(nHeader, sizeof(kMagic));
    const bool bStarted = std::memcmp(aHeader, kMagic, nMagic) == 0;
    if (!bStarted && std::count(aHeader, aHeader + nHeader, 0) < static_cast<long>(nHeader)) {
        return Content::kNone;
    }
    m_nOldSize = LoadLittleEndian<uint64_t>(aHeader + 12);
    m_nUnchanged = LoadLittleEndian<uint64_t>(aHeader + 20);
    m_nSavedCrc = LoadLittleEndian<uint32_t>(aHeader + 28);
    m_nUnchangedCrc = LoadLittleEndian<uint32_t>(aHeader + 32);
    const bool bWhole =
        bStarted && nHeader == kHeaderSize && LoadLittleEndian<uint32_t>(aHeader + 8) == kVersion &&
        LoadLittleEndian<uint32_t>(aHeader + 36) == ZRFxCodec::Crc32(0, aHeader, 36);
    return bWhole && m_nUnchanged <= m_nOldSize && SavedLength() <= m_nLength - kHeaderSize
               ? Content::kWhole
               : Content::kIncomplete;
}

ZRFxOldJournal::Content ZRFxOldJournal::CheckSavedEnd() {
    std::string sPart(static_cast<size_t>(std::min(SavedLength(), kPartSize)), '\0');
    uint32_t nCrc = 0;
    const bool bRead = ForEachPart(0, SavedLength(), [&](uint64_t nAt, size_t nPart) {
        if (!m_file.ReadAt(kHeaderSize + nAt, sPart.data(), nPart)) return false;
        nCrc = ZRFxCodec::Crc32(nCrc, sPart.data(), nPart);
        return true;
    });
    if (!bRead) FailSystem("cannot read");
    return bRead && nCrc == m_nSavedCrc ? Content::kWhole : Content::kIncomplete;
}

// Journal and file --------------------------------------------------------------------------

// A file that ends with a commit record was written by others since.
ZRFxOldJournal::Verdict ZRFxOldJournal::Judge(ZRFxZipStorage* pFile, Content eContent) {
    View file(pFile, pFile->Size(), nullptr, pFile->Size(), &m_cause);
    ZRFxLastCommit last(m_pCodec);
    m_bOpens = last.Load(&file);
    m_bWhole = m_bOpens && last.Place().nEnd == file.Size();
    if (eContent != Content::kWhole || last.Place().nRecord != 0) return Verdict::kNotNeeded;
    if (!Fits(&file)) return m_bWhole ? Verdict::kNotNeeded : Verdict::kDoubtful;
    if (!m_bOpens) return Verdict::kNeeded;
    return JudgeOpening(&file, last);
}

// The file shows a commit. That the killed writer had not come to write over the last bytes of the
// old state, or to cut them off, shows by them. Otherwise it had come to its end, or the file was
// put under the name.
ZRFxOldJournal::Verdict ZRFxOldJournal::JudgeOpening(ZRFxZipStorage* pFile,
                                                     const ZRFxLastCommit& last) {
    const uint64_t nEnd = last.Place().nEnd;
    if (HoldsSaved(pFile, m_nUnchanged) && nEnd >= m_nOldSize) return Verdict::kNotNeeded;
    const uint64_t nNotWritten = m_bWhole ? last.directory.nOffset : nEnd;
    if (nEnd <= m_nUnchanged && !m_bWhole) return Verdict::kNeeded;
    if (pFile->Size() == m_nOldSize && HoldsSaved(pFile, nNotWritten)) return Verdict::kNeeded;
    return AreIntact(pFile, last.directory) ? Verdict::kNotNeeded : Verdict::kDoubtful;
}

// A journal that saved the whole file fits every one.
bool ZRFxOldJournal::Fits(ZRFxZipStorage* pFile) {
    if (m_nUnchanged == 0 || m_nUnchanged > pFile->Size()) return false;
    if (m_nLength != kHeaderSize + SavedLength()) return false;
    std::string sUnchanged(static_cast<size_t>(std::min(m_nUnchanged, kUnchangedChecked)), '\0');
    if (!pFile->Read(m_nUnchanged - sUnchanged.size(), sUnchanged.data(), sUnchanged.size()) ||
        ZRFxCodec::Crc32(0, sUnchanged.data(), sUnchanged.size()) != m_nUnchangedCrc) {
        return false;
    }
    View restored(pFile, m_nUnchanged, &m_file, m_nOldSize, &m_cause);
    ZRFxZipDirectory directory;
    return (directory.FindEndAt(&restored, m_nOldSize) || directory.FindEnd(&restored)) &&
           directory.nOffset >= m_nUnchanged && directory.Load(&restored) &&
           std::all_of(directory.aEntries.begin(), directory.aEntries.end(),
                       [&](const ZRFxZipEntry& entry) { return HasLocalHeader(&restored, entry); });
}

// Whether the file has the saved bytes from there on in their place.
bool ZRFxOldJournal::HoldsSaved(ZRFxZipStorage* pFile, uint64_t nFrom) {
    if (pFile->Size() < m_nOldSize) return false;
    View restored(pFile, m_nUnchanged, &m_file, m_nOldSize, &m_cause);
    std::string sPart(static_cast<size_t>(std::min(SavedLength(), kPartSize)), '\0');
    std::string sSaved = sPart;
    return ForEachPart(std::max(nFrom, m_nUnchanged), m_nOldSize, [&](uint64_t nAt, size_t nPart) {
        return pFile->Read(nAt, sPart.data(), nPart) && restored.Read(nAt, sSaved.data(), nPart) &&
               std::memcmp(sPart.data(), sSaved.data(), nPart) == 0;
    });
}

// Whether the entries that follow the unchanged bytes are what their directory says. Without a
// password encrypted ones show their headers only.
bool ZRFxOldJournal::AreIntact(ZRFxZipStorage* pFile, const ZRFxZipDirectory& directory) {
    ZRFxCipher cipher;
    ZRFxEntryReader reader(m_pCodec, &cipher);
    reader.Open(pFile, pFile->Size());
    for (size_t i = 0; i < directory.aEntries.size(); ++i) {
        ZRFxArchiveItem item;
        ZRFxZipRawData raw;
        item.entry = directory.aEntries[i];
        item.nIndex = i;
        if (item.entry.nOffset < m_nUnchanged) continue;
        if (!HasLocalHeader(pFile, item.entry)) return false;
        const bool bPlain = item.entry.eEncryption == ZRFxZipEntry::Encryption::kNone;
        if (bPlain && !reader.Read(item, &raw)) return false;
    }
    return true;
}

void ZRFxOldJournal::Show(std::unique_ptr<ZRFxZipStorage>* ppStorage) {
    *ppStorage = std::make_unique<RestoredView>(std::move(*ppStorage), std::move(m_file), m_sPath,
                                                m_nUnchanged, m_nOldSize);
}

// In place, so that a file that is cut half-way is as torn as it was.
bool ZRFxOldJournal::Restore(ZRFxAppendFile* pFile) {
    ZRFxFile& file = pFile->File();
    std::string sPart(static_cast<size_t>(std::min(SavedLength(), kPartSize)), '\0');
    const bool bWritten = ForEachPart(0, SavedLength(), [&](uint64_t nAt, size_t nPart) {
        return m_file.ReadAt(kHeaderSize + nAt, sPart.data(), nPart) &&
               file.WriteAt(m_nUnchanged + nAt, sPart.data(), nPart);
    });
    if (!bWritten || !file.Truncate(m_nOldSize) || !file.Flush() || !Remove()) {
        return FailSystem("cannot restore the last commit from");
    }
    // A journal that comes back after a power failure is not needed any more.
    ZRFxFile::FlushDirectoryOf(m_sPath);
    pFile->CutTo(m_nOldSize);
    return true;
}

bool ZRFxOldJournal::Remove() {
    return ZRFxSystem::Current().Remove(m_sPath.c_str()) == 0 || IsNotThere();
}

bool ZRFxOldJournal::FailSystem(const std::string& sWhat) {
    return Fail(ZRFxCause::System(sWhat + " '" + m_sPath + "'"));
}

}  // namespace unstruct
