#include "access/ZRFxArchiveInfo.h"

#include <new>

#include "access/ZRFxEntryNames.h"
#include "container/ZRFxZipArchive.h"

namespace unstruct {

ZRFxArchiveInfo ArchiveInfoOf(ZRFxZipArchive& archive) {
    ZRFxArchiveInfo info;
    ZRFxZipArchive::EntryInfo entry;
    for (std::size_t i = 0; i < archive.EntryCount(); ++i) {
        if (!archive.GetEntry(i, &entry)) throw std::bad_alloc();
        info.compressed = info.compressed || entry.nPackedSize < entry.nSize;
        info.encrypted = info.encrypted || entry.bEncrypted;
        info.binary = info.binary || HasExtension(entry.sName, ".dat");
        info.text = info.text || (HasExtension(entry.sName, ".txt") &&
                                  BelowFolder(entry.sName, kUserDataFolder).empty());
        if (info.compressed && info.encrypted && info.binary && info.text) break;
    }
    return info;
}

}  // namespace unstruct
