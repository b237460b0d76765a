#include "ZRFxListDocument.h"

#include <algorithm>

#include "ZROZRFxAccess.h"

namespace unstruct {
namespace {

// How an element directly below the root begins in a written document. Text cannot hold it: its
// markup is escaped.
constexpr std::string_view kItemStart = "\n <";
constexpr std::string_view kEmptyEnd = " />";

int CountChildren(const nvf::XmlElement& element) {
    int count = 0;
    for (nvf::XmlElement child = element.firstChildElement(); child.notNull();
         child = child.nextSiblingElement()) {
        ++count;
    }
    return count;
}

}  // namespace

void ZRFxListDocument::Touch(std::int64_t index) {
    const std::size_t kept = static_cast<std::size_t>(std::max<std::int64_t>(index, 0)) + 1;
    if (kept < m_aStarts.size()) m_aStarts.resize(kept);
}

bool ZRFxListDocument::Store(ZRFxAccess* pAccess, const ZRString& name,
                             const ZRFxListContent& content) {
    const bool isKnown = m_nRevision != 0 && pAccess->DocumentRevision(name) == m_nRevision;
    std::int64_t iFrom = isKnown ? static_cast<std::int64_t>(m_aStarts.size()) - 1 : 0;
    std::vector<std::uint64_t> starts;
    std::size_t head = 0;
    std::string text = MakeText(content, iFrom, &starts, &head);
    if (iFrom > 0 && text.compare(0, head, m_sHead) != 0) {
        iFrom = 0;
        text = MakeText(content, 0, &starts, &head);
    }
    const std::uint64_t kept = iFrom > 0 ? m_aStarts.back() : 0;
    const std::string_view tail = std::string_view(text).substr(kept > 0 ? head : 0);
    // Reserved before anything is stored, so that what is remembered is what the entry holds.
    m_aStarts.reserve(static_cast<std::size_t>(iFrom) + starts.size());
    std::string newHead = text.substr(0, head);
    if (!pAccess->GrowDocument(name, kept, tail, &m_nRevision)) return false;
    m_sHead.swap(newHead);
    m_aStarts.resize(static_cast<std::size_t>(iFrom));
    for (const std::uint64_t start : starts) {
        m_aStarts.push_back(kept > 0 ? kept + (start - head) : start);
    }
    return true;
}

// The text with the items from iFrom on; where they start, and what follows them; and the length of
// what stands before them.
std::string ZRFxListDocument::MakeText(const ZRFxListContent& content, std::int64_t iFrom,
                                       std::vector<std::uint64_t>* pStarts,
                                       std::size_t* pHead) const {
    nvf::XmlDocument doc;
    const nvf::XmlElement root = content.WriteHead(&doc);
    int numBefore = CountChildren(root);
    for (std::int64_t i = iFrom; i < content.GetItemCount(); ++i) content.WriteItem(root, i);
    std::string text = doc.toUtf8();
    pStarts->clear();
    if (text.ends_with(std::string(kEmptyEnd) + "\n")) {
        text.replace(text.size() - kEmptyEnd.size() - 1, kEmptyEnd.size(),
                     ">\n</" + std::string(root.nameUtf8()) + ">");
    }
    for (std::size_t at = text.find(kItemStart); at != std::string::npos;
         at = text.find(kItemStart, at + 1)) {
        if (text[at + kItemStart.size()] == '/') continue;
        if (numBefore-- <= 0) pStarts->push_back(at);
    }
    pStarts->push_back(text.rfind(kRootEnd));
    *pHead = static_cast<std::size_t>(pStarts->front());
    return text;
}

}  // namespace unstruct
