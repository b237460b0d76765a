#pragma once

#include "NuoCore/Image.h"
#include "ZRString.h"

namespace unstruct {

class ZRFxAccess;

/// The files that the documents of cases name: snapshots and descriptions. Every operation that
/// fails logs why and gives false.
class ZRFxCaseFiles {
public:
    /// REQUIRES: the access outlives this.
    explicit ZRFxCaseFiles(ZRFxAccess& access) : m_access(access) {}

    bool ReadSnapshot(int caseId, nuo::Image* image) const;
    bool ReadDescription(int caseId, ZRString* text) const;

    /// The entry that a case's document names as one of its files: the one of that name in the
    /// case's folder or, where there is none, the one of that whole name.
    static ZRString EntryOf(const ZRFxAccess& access, const ZRString& folder, const ZRString& file);

private:
    bool Find(int caseId, const char* element, ZRString* entry, bool* isGiven) const;

    ZRFxAccess& m_access;
};

}  // namespace unstruct
