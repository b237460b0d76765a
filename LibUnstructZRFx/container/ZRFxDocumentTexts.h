#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "container/ZRFxCipher.h"
#include "container/ZRFxCodec.h"
#include "container/ZRFxEntryReader.h"
#include "container/ZRFxOpenArchive.h"

namespace unstruct {

/// Works on the texts of an open archive: the documents that commit records have changed at their
/// ends, and those that the next commit will change there. Made for one operation. Failures leave
/// the cause in Error, but a lack of memory throws std::bad_alloc.
class ZRFxDocumentTexts {
public:
    /// REQUIRES: all outlive this.
    ZRFxDocumentTexts(ZRFxOpenArchive* pArchive, ZRFxEntryReader* pReader, ZRFxCodec* pCodec,
                      ZRFxCipher* pCipher)
        : m_archive(*pArchive), m_reader(*pReader), m_pCodec(pCodec), m_pCipher(pCipher) {}

    /// Puts what records have appended to the texts, all of them at once.
    bool Load();
    /// Changes a document from byte nKept on; one that is not there is made when nKept is 0. The
    /// document stays as it was when this fails. REQUIRES: the texts are loaded.
    bool Grow(std::string_view sName, uint64_t nKept, std::string_view sTail, int nLevel,
              uint64_t* pRevision);

    const std::string& Error() const { return m_sError; }

private:
    bool Fail(const std::string& sCause) {
        m_sError = sCause;
        return false;
    }
    bool LoadTails(ZRFxOpenArchive::UnreadRecord* pUnread);
    void Prepare(const ZRFxCommitRecord::Edit& edit, ZRFxGrowingText* pText);
    void Apply(const ZRFxCommitRecord::Edit& edit, std::string_view sTails, ZRFxGrowingText* pText);
    bool LoadEntryOf(ZRFxGrowingText* pText);
    bool LoadForGrowth(ZRFxArchiveItem* pItem);
    ZRFxArchiveItem* Add(std::string_view sName, size_t nLength);

    ZRFxOpenArchive& m_archive;
    ZRFxEntryReader& m_reader;
    ZRFxCodec* m_pCodec;
    ZRFxCipher* m_pCipher;
    std::string m_sError;
};

}  // namespace unstruct
