#include "blocks/mesh/ZRFxNodeBlock.h"

#include <algorithm>
#include <utility>

#include "blocks/ZRFxBlockStore.h"
#include "blocks/ZRFxOutline.h"
#include "documents/ZRFxFileRecord.h"

namespace unstruct {

ZRFxNodeBlock::ZRFxNodeBlock(ZRFxBlockStore* pDatabase, int id) : ZRFxBlock(pDatabase, id, kType) {}

bool ZRFxNodeBlock::SetNodes(const nuo::Vec3f* pfNodes, std::int64_t iNumNodes,
                             const std::int32_t* piNodeIDs) {
    NVF_ASSERT(pfNodes && (iNumNodes >= 0));
    if (!pfNodes || iNumNodes < 0) return false;
    ZRVec3fArray nodes;
    std::unique_ptr<ZRIntArray> ids;
    if (!nodes.Assign(pfNodes, iNumNodes)) return false;
    if (piNodeIDs) {
        ids = std::make_unique<ZRIntArray>();
        if (!ids->Assign(piNodeIDs, iNumNodes)) return false;
    }
    return SetNodes(std::move(nodes), std::move(ids));
}

bool ZRFxNodeBlock::SetNodes(ZRVec3fArray nodes, std::unique_ptr<ZRIntArray> paiNodeIDs) {
    NVF_ASSERT(!paiNodeIDs || paiNodeIDs->GetSize() == nodes.GetSize());
    if (paiNodeIDs && paiNodeIDs->GetSize() != nodes.GetSize()) return false;
    m_nodes = std::move(nodes);
    m_paiNodeIDs = std::move(paiNodeIDs);
    m_indices = ZRIDLookup();
    SetRead(true);
    return true;
}

bool ZRFxNodeBlock::Reserve(std::int64_t iNumNodes) {
    return m_nodes.Reserve(iNumNodes) && (!m_paiNodeIDs || m_paiNodeIDs->Reserve(iNumNodes));
}

bool ZRFxNodeBlock::AddNode(const nuo::Vec3f& node, std::int32_t id) {
    if (!m_nodes.Add(node)) return false;
    if (m_paiNodeIDs && !m_paiNodeIDs->Add(id)) {
        m_nodes.SetSize(m_nodes.GetSize() - 1);
        return false;
    }
    SetRead(true);
    return true;
}

std::int64_t ZRFxNodeBlock::GetNumNodes() const {
    if (IsRead()) return m_nodes.GetSize();
    NVF_ASSERT(m_pDatabase);
    nvf::XmlDocument doc;
    const nvf::XmlElement file =
        m_pDatabase ? GetRootElement(&doc).firstChildElement("File") : nvf::XmlElement();
    if (file.isNull()) return 0;
    const bool isFound = file.hasAttribute("NumItems");
    NVF_ASSERT(isFound);
    return std::max(file.getAttributeInt("NumItems", 0), 0);
}

std::int64_t ZRFxNodeBlock::GetNodeIndex(std::int32_t id) const {
    if (!m_paiNodeIDs) return -1;
    m_indices.Update(*m_paiNodeIDs);
    return m_indices.IndexOf(id);
}

std::uint64_t ZRFxNodeBlock::GetDataSize() const {
    return m_nodes.SizeInBytes() + (m_paiNodeIDs ? m_paiNodeIDs->SizeInBytes() : 0);
}

bool ZRFxNodeBlock::DoReadBlock(const nvf::XmlElement& root) {
    const bool hasIDs = root.getAttributeBool("WithID", false);
    ZRVec3fArray nodes;
    std::unique_ptr<ZRIntArray> ids;
    ZRFxFileRecord file;
    if (root.firstChildElement("File").isNull()) {
        return SetNodes(std::move(nodes), hasIDs ? std::make_unique<ZRIntArray>() : nullptr);
    }
    if (!GetFileRecord(root, "File", &file) ||
        !m_pDatabase->ReadDataVector(file.filename, file.numItems, &nodes)) {
        return Log().fail("Error reading node data");
    }
    if (hasIDs && !file.ids.IsBlank()) {
        ids = std::make_unique<ZRIntArray>();
        if (!m_pDatabase->ReadDataInt(file.ids, file.numItems, ids.get())) {
            return Log().fail("Error reading node IDs");
        }
    }
    return SetNodes(std::move(nodes), std::move(ids));
}

bool ZRFxNodeBlock::DoWriteBlock(nvf::XmlElement root) {
    root.setAttributeBool("WithID", m_paiNodeIDs != nullptr);
    return m_nodes.IsEmpty() || WriteNodes(root);
}

void ZRFxNodeBlock::DoOutline(const nvf::XmlElement& root, ZRFxOutline* outline) const {
    ZRFxFileRecord file;
    GetFileRecord(root, "File", &file);  // none when there are no nodes
    outline->counts = ZRFxItemCounts{file.numItems};
    outline->hasIDs = !file.ids.IsBlank();
}

bool ZRFxNodeBlock::FindArray(const nvf::XmlElement& root, ZRFxArrayKind kind, int /*group*/,
                              ZRFxArrayFile* file) const {
    ZRFxFileRecord record;
    GetFileRecord(root, "File", &record);  // none when there are no nodes
    if (kind == ZRFxArrayKind::POSITIONS) *file = {record.filename, record.numItems, 3};
    if (kind == ZRFxArrayKind::IDS) *file = {record.ids, record.numItems};
    return !file->name.IsBlank();
}

void ZRFxNodeBlock::DoUnloadData() {
    m_nodes.RemoveAll();
    m_paiNodeIDs.reset();
    m_indices = ZRIDLookup();
}

bool ZRFxNodeBlock::WriteNodes(nvf::XmlElement root) {
    ZRFxFileRecord file{GetFilebase(), m_nodes.GetSize(), ZRString()};
    if (!m_pDatabase->WriteDataVector(file.filename, m_nodes)) return false;
    if (m_paiNodeIDs) {
        file.ids = file.filename + "-IDs";
        if (!m_pDatabase->WriteDataInt(file.ids, *m_paiNodeIDs, 1)) return false;
    }
    return AddFileRecord(root, "File", file);
}

}  // namespace unstruct
