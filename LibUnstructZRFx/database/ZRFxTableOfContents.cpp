#include "database/ZRFxTableOfContents.h"

#include <algorithm>
#include <iterator>

#include "ZRMakeRoom.h"
#include "documents/ZRFxXml.h"
#include "types/ZRFxBlockType.h"

namespace unstruct {

void ZRFxTableOfContents::Enter(const ZRFxBlockLine& line) {
    PrepareToEnter();
    const BlockKey key(line.type, line.id);
    const auto found = m_indices.find(key);
    if (found == m_indices.end()) {
        ZRFxBlockLine added = line;
        MakeRoom(&m_lines);
        m_indices.emplace(key, m_lines.size());
        m_lines.push_back(std::move(added));
        m_isModified = true;
        return;
    }
    ZRFxBlockLine& entered = m_lines[found->second];
    if (entered.fileName == line.fileName) return;
    entered.fileName = line.fileName;
    m_document.Touch(static_cast<std::int64_t>(found->second));
    m_isModified = true;
}

void ZRFxTableOfContents::Append(std::vector<ZRFxBlockLine> lines) {
    m_isModified = m_isModified || !lines.empty();
    if (m_lines.empty()) {
        m_lines.swap(lines);
    } else {
        std::move(lines.begin(), lines.end(), std::back_inserter(m_lines));
    }
}

// Of several lines of one block, the first has the place and the last the file name.
void ZRFxTableOfContents::PrepareToEnter() {
    if (IsIndexed()) return;
    std::map<BlockKey, std::size_t> indices;
    std::vector<ZRFxBlockLine> lines;
    lines.reserve(m_lines.size());
    for (const ZRFxBlockLine& line : m_lines) {
        const auto [entry, isNew] = indices.emplace(BlockKey(line.type, line.id), lines.size());
        if (isNew) {
            lines.push_back(line);
        } else {
            lines[entry->second].fileName = line.fileName;
        }
    }
    m_lines.swap(lines);
    m_indices.swap(indices);
}

void ZRFxTableOfContents::Remove(int type, int id) {
    const auto isRemoved = [&](const ZRFxBlockLine& line) {
        return line.type == type && line.id == id;
    };
    const auto first = std::find_if(m_lines.begin(), m_lines.end(), isRemoved);
    if (first == m_lines.end()) return;
    m_document.Touch(first - m_lines.begin());
    m_lines.erase(std::remove_if(first, m_lines.end(), isRemoved), m_lines.end());
    m_indices.clear();
    m_isModified = true;
}

bool ZRFxTableOfContents::Store(ZRFxAccess* pAccess, const ZRString& name) {
    PrepareToEnter();
    if (!m_document.Store(pAccess, name, *this)) return false;
    m_isModified = false;
    return true;
}

nvf::XmlElement ZRFxTableOfContents::WriteHead(nvf::XmlDocument* pDoc) const {
    nvf::XmlElement root = pDoc->createRootElement(kRoot, kNamespaceUri);
    root.setAttributeInt("DatabaseID", m_databaseId);
    return root;
}

void ZRFxTableOfContents::WriteItem(nvf::XmlElement root, std::int64_t index) const {
    const ZRFxBlockLine& line = m_lines[static_cast<std::size_t>(index)];
    nvf::XmlElement element = root.addChildElement(ZRFxBlockTypeName(line.type).CStr());
    element.setAttributeInt("ID", line.id);
    SetAttribute(element, "File", line.fileName);
}

std::int64_t ZRFxTableOfContents::GetItemCount() const {
    return static_cast<std::int64_t>(m_lines.size());
}

}  // namespace unstruct
