#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "container/ZRFxAppendFile.h"
#include "container/ZRFxCodec.h"
#include "container/ZRFxLastCommit.h"
#include "container/ZRFxSystem.h"
#include "container/ZRFxZipDirectory.h"
#include "container/ZRFxZipStorage.h"
#include "container/ZRZipAccessMode.h"

namespace unstruct {

/// The journal that writers of the version before put beside an archive. A commit of theirs saved
/// the end of the file to "<file>.journal", wrote over that end, and removed the journal. A writer
/// that was killed meanwhile left both; its last commit is what it had not touched and then the
/// saved end.
//
/// - Only a regular file of the archive's owner that such a writer can have made counts. Nothing
///   else under the name is opened, changed or removed.
/// - The journal is used when the file is torn and everything shows that they belong together: CRCs
///   of the saved end and of the bytes before it, a directory in the saved end, and a local header
///   for each entry that this names. A file that opens as it stands is never changed.
/// - In doubt the file is read as it is, and a writer is refused.
/// - A writer puts the saved end back, and removes a journal that is not needed, because a program
///   of the version before would act on it.
class ZRFxOldJournal {
public:
    /// REQUIRES: the codec outlives the object.
    explicit ZRFxOldJournal(ZRFxCodec* pCodec) : m_pCodec(pCodec) {}

    /// Takes a file as it was opened, and gives the storage that shows its last commit. False, with
    /// the cause in Error, when a writer is refused, or something cannot be read or put back; a
    /// later try finds what this one found.
    bool Settle(std::unique_ptr<ZRFxAppendFile> pFile, ZRZipAccessMode eMode,
                std::unique_ptr<ZRFxZipStorage>* ppStorage);
    /// Removes the journal of what the file has replaced.
    static void RemoveBeside(const std::string& sPath, const ZRFxFile& file) noexcept;

    const std::string& Error() const { return m_sError; }

private:
    enum class Content { kNone, kIncomplete, kWhole };
    enum class Verdict { kNotNeeded, kNeeded, kDoubtful };

    Content Load(const std::string& sArchivePath, const ZRFxFile& archive);
    bool IsThere(const ZRFxFile& archive);
    bool OpenSafely(uid_t nOwner);
    Content LoadHeader();
    Content CheckSavedEnd();

    Verdict Judge(ZRFxZipStorage* pFile, Content eContent);
    Verdict JudgeOpening(ZRFxZipStorage* pFile, const ZRFxLastCommit& last);
    bool Fits(ZRFxZipStorage* pFile);
    bool HoldsSaved(ZRFxZipStorage* pFile, uint64_t nFrom);
    bool AreIntact(ZRFxZipStorage* pFile, const ZRFxZipDirectory& directory);

    void Show(std::unique_ptr<ZRFxZipStorage>* ppStorage);
    bool Restore(ZRFxAppendFile* pFile);
    bool Remove();
    uint64_t SavedLength() const { return m_nOldSize - m_nUnchanged; }

    bool Fail(const std::string& sCause) {
        m_sError = sCause;
        return false;
    }
    bool FailSystem(const std::string& sWhat);

    ZRFxCodec* m_pCodec;
    std::string m_sPath;
    ZRFxFile m_file;
    uint64_t m_nLength = 0;
    uint64_t m_nOldSize = 0;  // Of the archive, before the commit.
    uint64_t m_nUnchanged = 0;
    uint32_t m_nSavedCrc = 0;
    uint32_t m_nUnchangedCrc = 0;  // Of the last bytes that the commit did not touch.
    bool m_bOpens = false;         // The archive does, as it stands,
    bool m_bWhole = false;         // and what it shows ends where the file does.
    std::string m_sError;          // Set once something could not be read.
};

}  // namespace unstruct
