#include "blocks/mesh/ZRFxIndexedFaceSetBlock.h"

#include "blocks/ZRFxBlockStore.h"
#include "blocks/ZRFxOutline.h"
#include "documents/ZRFxFileRecord.h"

namespace unstruct {

ZRFxIndexedFaceSetBlock::ZRFxIndexedFaceSetBlock(ZRFxBlockStore* pDatabase, int id)
    : ZRFxBlock(pDatabase, id, kType) {}

bool ZRFxIndexedFaceSetBlock::SetConnects(const std::int32_t* paiConnects,
                                          std::int64_t iNumConnects) {
    NVF_ASSERT(paiConnects);
    NVF_ASSERT(iNumConnects >= 0);
    SetRead(true);
    return paiConnects && m_aiConnects.Assign(paiConnects, iNumConnects);
}

bool ZRFxIndexedFaceSetBlock::SetPolygons(const std::int32_t* paiPolygonStart,
                                          std::int64_t iNumPolys) {
    NVF_ASSERT(paiPolygonStart);
    NVF_ASSERT(iNumPolys >= 0);
    SetRead(true);
    return paiPolygonStart && m_aiPolygonStart.Assign(paiPolygonStart, iNumPolys);
}

bool ZRFxIndexedFaceSetBlock::DoReadBlock(const nvf::XmlElement& root) {
    DoUnloadData();
    m_iNodeBlockID = root.getAttributeInt("NodeBlock", -1);
    m_bMapToNodeIDs = root.getAttributeBool("MapToNodeIDs", false);
    const bool isWithIDs = root.getAttributeBool("WithID", false);
    const int numPolygons = root.getAttributeInt("NumPolygons", -1);
    ZRFxFileRecord file;
    ZRIntArray packed;
    if (!GetFileRecord(root, "File", &file) ||
        !m_pDatabase->ReadDataInt(file.filename, file.numItems, &packed)) {
        return Log().fail("Error reading IFS connects (IFS block ID %1)", GetID());
    }
    if (!Unpack(file.filename, packed, numPolygons) || !CheckPolygons(file.filename)) return false;
    if (!isWithIDs) return true;
    m_paiIDs = std::make_unique<ZRIntArray>();
    return m_pDatabase->ReadDataInt(file.ids, numPolygons, m_paiIDs.get()) ||
           Log().fail("Error reading IFS IDs");
}

bool ZRFxIndexedFaceSetBlock::CheckContents() const {
    if (!CheckPolygons(GetFilebase())) return false;
    return !m_paiIDs ||
           CheckCount(GetFilebase() + "-IDs", "IDs", m_paiIDs->GetSize(), GetNumPolygons());
}

bool ZRFxIndexedFaceSetBlock::DoWriteBlock(nvf::XmlElement root) {
    root.setAttributeInt("NodeBlock", m_iNodeBlockID);
    root.setAttributeBool("MapToNodeIDs", m_bMapToNodeIDs);
    root.setAttributeBool("WithID", m_paiIDs != nullptr);
    root.setAttributeInt("NumPolygons", static_cast<int>(GetNumPolygons()));
    return WritePolygons(root);
}

// The data file holds the number of nodes of each polygon in front of them.
void ZRFxIndexedFaceSetBlock::DoOutline(const nvf::XmlElement& root, ZRFxOutline* outline) const {
    const int numPolygons = root.getAttributeInt("NumPolygons", 0);
    outline->counts = ZRFxItemCounts{numPolygons, GetFileNumItems(root, "File") - numPolygons};
    outline->nodes = ZRFxNodesUse{root.getAttributeInt("NodeBlock", -1),
                                  m_bMapToNodeIDs ? -1 : HighestOf(m_aiConnects)};
    outline->AddBlock(BLOCK_NODES, outline->nodes->nodeBlockID, "node block");
}

void ZRFxIndexedFaceSetBlock::DoUnloadData() {
    m_aiConnects.RemoveAll();
    m_aiPolygonStart.RemoveAll();
    m_paiIDs.reset();
}

bool ZRFxIndexedFaceSetBlock::Unpack(const ZRString& file, const ZRIntArray& packed,
                                     std::int64_t numPolygons) {
    const int offset = m_bMapToNodeIDs ? 0 : 1;
    if (!m_aiConnects.Reserve(packed.GetSize())) return false;
    for (std::int64_t at = 0; at < packed.GetSize();) {
        const std::int64_t count = packed[at++];
        if (count < 0 || count > packed.GetSize() - at) {
            return FailUnfit(file, "nodes of the last polygon", packed.GetSize() - at, count);
        }
        m_aiPolygonStart.Add(static_cast<std::int32_t>(m_aiConnects.GetSize()));
        for (const std::int64_t end = at + count; at < end; ++at) {
            // The lowest value stays negative.
            m_aiConnects.Add(packed[at] < 0 ? packed[at] : packed[at] - offset);
        }
    }
    return CheckCount(file, "polygons", GetNumPolygons(), numPolygons);
}

bool ZRFxIndexedFaceSetBlock::CheckPolygons(const ZRString& file) const {
    const std::int64_t numNodes = m_aiConnects.GetSize();
    std::int64_t lowest = m_aiPolygonStart.IsEmpty() ? numNodes : m_aiPolygonStart[0];
    if (!CheckCount(file, "nodes before the first polygon", lowest, 0)) return false;
    for (std::int64_t i = 0; i < GetNumPolygons(); ++i) {
        const std::int32_t start = m_aiPolygonStart[i];
        if (start < lowest || start > numNodes) {
            return Log().fail(
                "IndexedFaceSet block ID %1: '%2' holds polygon start %3 at position %4, expected "
                "%5 to %6",
                GetID(), file, start, i, lowest, numNodes);
        }
        lowest = start;
    }
    return m_bMapToNodeIDs || CheckIndices(file, "node index", m_aiConnects, kHighestFromOne);
}

bool ZRFxIndexedFaceSetBlock::WritePolygons(nvf::XmlElement root) {
    ZRIntArray packed;
    if (!Pack(&packed)) return false;
    ZRFxFileRecord file{GetFilebase(), packed.GetSize(), ZRString()};
    if (!m_pDatabase->WriteDataInt(file.filename, packed, 1)) return false;
    if (m_paiIDs) {
        file.ids = file.filename + "-IDs";
        if (!m_pDatabase->WriteDataInt(file.ids, *m_paiIDs, 1)) return false;
    }
    return AddFileRecord(root, "File", file);
}

bool ZRFxIndexedFaceSetBlock::Pack(ZRIntArray* packed) const {
    const int offset = m_bMapToNodeIDs ? 0 : 1;
    if (!packed->Reserve(m_aiConnects.GetSize() + GetNumPolygons())) return false;
    for (std::int64_t i = 0; i < GetNumPolygons(); ++i) {
        const std::int64_t begin = m_aiPolygonStart[i];
        const std::int64_t end =
            i + 1 < GetNumPolygons() ? m_aiPolygonStart[i + 1] : m_aiConnects.GetSize();
        packed->Add(static_cast<std::int32_t>(end - begin));
        for (std::int64_t at = begin; at < end; ++at) packed->Add(m_aiConnects[at] + offset);
    }
    return true;
}

}  // namespace unstruct
