#include "access/ZRFxDenseDocuments.h"

#include <new>

#include "access/ZRFxEntryNames.h"
#include "data/ZRFxReadBounds.h"

namespace unstruct {
namespace {

std::uint64_t lengthOf(const ZRFxZipArchive::EntryInfo& entry) {
    const bool isDense = ZRFxReadBounds::IsDense(entry.nSize, entry.nPackedSize) &&
                         HasExtension(entry.sName, ".xml");
    return isDense ? entry.nSize : 0;
}

}  // namespace

std::uint64_t ZRFxDenseDocuments::LengthOf(std::string_view name) {
    ZRFxZipArchive::EntryInfo info;
    return m_archive.Find(name, &info) ? lengthOf(info) : 0;
}

std::uint64_t ZRFxDenseDocuments::Total() {
    if (m_total) return *m_total;
    std::uint64_t total = 0;
    ZRFxZipArchive::EntryInfo entry;
    for (std::size_t i = 0; i < m_archive.EntryCount(); ++i) {
        if (!m_archive.GetEntry(i, &entry)) throw std::bad_alloc();
        total += lengthOf(entry);
    }
    return m_total.emplace(total);
}

void ZRFxDenseDocuments::TakeOut(std::string_view name) {
    if (m_total) *m_total -= LengthOf(name);
}

void ZRFxDenseDocuments::TakeIn(std::string_view name) {
    if (m_total) *m_total += LengthOf(name);
}

}  // namespace unstruct
