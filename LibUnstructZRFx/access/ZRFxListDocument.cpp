#include "access/ZRFxListDocument.h"

#include <algorithm>

#include "access/ZROZRFxAccess.h"

namespace unstruct {
namespace {

// How an element directly below the root begins in a written document. Text cannot hold it: its
// markup is escaped.
constexpr std::string_view kItemStart = "\n <";
constexpr std::string_view kEmptyEnd = " />";

int countChildren(const nvf::XmlElement& element) {
    int count = 0;
    for (nvf::XmlElement child = element.firstChildElement(); child.notNull();
         child = child.nextSiblingElement()) {
        ++count;
    }
    return count;
}

// The end of a root without elements is written as that of others.
void separateRootEnd(const nvf::XmlElement& root, std::string* pText) {
    if (!pText->ends_with(std::string(kEmptyEnd) + "\n")) return;
    pText->replace(
        pText->size() - kEmptyEnd.size() - 1, kEmptyEnd.size(),
        ">" + std::string(ZRFxListDocument::kRootEnd) + std::string(root.nameUtf8()) + ">");
}

}  // namespace

void ZRFxListDocument::Touch(std::int64_t index) {
    const std::size_t kept = static_cast<std::size_t>(std::max<std::int64_t>(index, 0)) + 1;
    if (kept < m_aStarts.size()) m_aStarts.resize(kept);
}

bool ZRFxListDocument::Store(ZRFxAccess* pAccess, const ZRString& name,
                             const ZRFxListContent& content) {
    const bool isKnown = m_nRevision != 0 && pAccess->DocumentRevision(name) == m_nRevision;
    const std::size_t numKept = isKnown && HasHead(content) ? m_aStarts.size() - 1 : 0;
    std::string text;
    std::vector<std::uint64_t> starts;
    if (!MakeText(pAccess, name, content, static_cast<std::int64_t>(numKept), &text, &starts)) {
        return false;
    }
    const std::uint64_t head = starts.front();
    const std::uint64_t kept = numKept > 0 ? m_aStarts.back() : 0;
    const std::string_view tail = std::string_view(text).substr(kept > 0 ? head : 0);
    // All memory is taken before anything is stored, so that what is remembered is what the entry
    // holds.
    std::string newHead = text.substr(0, head);
    const std::size_t numStarts = numKept + starts.size();
    if (numStarts > m_aStarts.capacity()) {
        m_aStarts.reserve(std::max(numStarts, 2 * m_aStarts.capacity()));
    }
    std::uint64_t revision = 0;
    if (!pAccess->GrowDocument(name, kept, tail, &revision)) return false;
    m_nRevision = revision;
    m_sHead.swap(newHead);
    m_aStarts.resize(numKept);
    for (const std::uint64_t start : starts) {
        m_aStarts.push_back(kept > 0 ? kept + (start - head) : start);
    }
    return true;
}

// Whether the head is as it was stored.
bool ZRFxListDocument::HasHead(const ZRFxListContent& content) const {
    nvf::XmlDocument doc;
    const nvf::XmlElement root = content.WriteHead(&doc);
    std::string text = doc.toUtf8();
    separateRootEnd(root, &text);
    return text.compare(0, text.rfind(kRootEnd), m_sHead) == 0;
}

// The text with the items from iFrom on; where they start, and what follows them.
bool ZRFxListDocument::MakeText(ZRFxAccess* pAccess, const ZRString& name,
                                const ZRFxListContent& content, std::int64_t iFrom,
                                std::string* pText, std::vector<std::uint64_t>* pStarts) {
    nvf::XmlDocument doc;
    const nvf::XmlElement root = content.WriteHead(&doc);
    int numBefore = countChildren(root);
    for (std::int64_t i = iFrom; i < content.GetItemCount(); ++i) content.WriteItem(root, i);
    if (!pAccess->MakeDocumentText(name, doc, pText)) return false;
    separateRootEnd(root, pText);
    for (std::size_t at = pText->find(kItemStart); at != std::string::npos;
         at = pText->find(kItemStart, at + 1)) {
        if ((*pText)[at + kItemStart.size()] == '/') continue;
        if (numBefore-- <= 0) pStarts->push_back(at);
    }
    pStarts->push_back(pText->rfind(kRootEnd));
    return true;
}

}  // namespace unstruct
