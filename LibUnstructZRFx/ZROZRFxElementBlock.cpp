#include "ZROZRFxElementBlock.h"

#include <algorithm>
#include <limits>
#include <numeric>
#include <utility>

#include "ZROZRFxDatabase.h"
#include "ZROZRFxFileRecord.h"
#include "ZROZRFxXml.h"

namespace unstruct {
namespace {

std::int64_t sumOf(const ZRIntArray& counts) {
    return std::accumulate(counts.begin(), counts.end(), std::int64_t{0});
}

bool addToAll(std::int64_t value, ZRIntArray* items) {
    std::int32_t* data = items->WritableData();
    if (!data && !items->IsEmpty()) return false;
    constexpr std::int64_t kLowest = std::numeric_limits<std::int32_t>::min();
    constexpr std::int64_t kHighest = std::numeric_limits<std::int32_t>::max();
    for (std::int64_t i = 0; i < items->GetSize(); ++i) {
        // A file may hold any value; the lowest stays negative.
        data[i] = static_cast<std::int32_t>(std::clamp(data[i] + value, kLowest, kHighest));
    }
    return true;
}

}  // namespace

ZRFxElementBlock::ZRFxElementBlock(ZRFxDatabase* pDatabase, int id)
    : ZRFxBlock(pDatabase, id, BLOCK_ELEMENTS) {}

bool ZRFxElementBlock::AddElementGroup(std::unique_ptr<ZRFxElementBlockGroup>& pGroup) {
    NVF_ASSERT(pGroup);
    if (!pGroup) return false;
    const bool hasIDs = !pGroup->m_aiIDs.IsEmpty();
    if (m_apElementGroups.IsEmpty()) m_bWithIDs = hasIDs;
    if (hasIDs != m_bWithIDs) {
        return Log().fail("Either all element groups must have IDs or none. (Element block ID %1)",
                          GetID());
    }
    m_apElementGroups.Add(std::move(pGroup));
    SetRead(true);
    return true;
}

ZRFxElementBlockGroup* ZRFxElementBlock::GetElementGroup(std::int64_t iEltGroupIdx) const {
    NVF_ASSERT((iEltGroupIdx >= 0) && (iEltGroupIdx < m_apElementGroups.GetSize()));
    return m_apElementGroups[iEltGroupIdx];
}

std::int64_t ZRFxElementBlock::GetNumElementGroups() const {
    return m_apElementGroups.GetSize();
}

std::int64_t ZRFxElementBlock::GetNumElements() const {
    std::int64_t count = 0;
    for (const auto& pGroup : m_apElementGroups) count += pGroup->m_iNumElements;
    return count;
}

bool ZRFxElementBlock::GetAllElementIDs(ZRIntArray* paiElementIDs) const {
    NVF_ASSERT(paiElementIDs);
    if (!paiElementIDs) return false;
    paiElementIDs->RemoveAll();
    const std::int64_t iNumElements = m_bWithIDs ? GetNumElements() : 0;
    if (!paiElementIDs->Reserve(iNumElements)) return false;
    for (const auto& pGroup : m_apElementGroups) {
        for (const std::int32_t id : pGroup->m_aiIDs) paiElementIDs->Add(id);
    }
    NVF_ASSERT(paiElementIDs->GetNumItems() == iNumElements);
    return paiElementIDs->GetNumItems() == iNumElements;
}

bool ZRFxElementBlock::RenumberElementIndices() {
    std::int32_t next = 0;
    for (const auto& pGroup : m_apElementGroups) {
        if (!pGroup->m_aiElementIndices.SetSize(pGroup->m_iNumElements)) return false;
        std::int32_t* indices = pGroup->m_aiElementIndices.WritableData();
        std::iota(indices, indices + pGroup->m_iNumElements, next);
        next += static_cast<std::int32_t>(pGroup->m_iNumElements);
    }
    return true;
}

void ZRFxElementBlock::AddUserProperties(std::unique_ptr<ZRIntArray> paiProperties) {
    NVF_ASSERT(paiProperties);
    if (paiProperties) m_apUserProperties.Add(std::move(paiProperties));
}

const ZRIntArray* ZRFxElementBlock::GetUserProperties(std::int64_t iPropertiesIdx) const {
    NVF_ASSERT(iPropertiesIdx < m_apUserProperties.GetSize());
    return m_apUserProperties[iPropertiesIdx];
}

std::int64_t ZRFxElementBlock::GetNumUserProperties() const {
    return m_apUserProperties.GetSize();
}

void ZRFxElementBlock::RemoveElementGroups(std::int64_t iFrom, std::int64_t iTo) {
    NVF_ASSERT(iTo >= 0 && iTo < m_apElementGroups.GetSize());
    m_apElementGroups.RemoveRange(iFrom, iTo);
}

void ZRFxElementBlock::RemoveUserProperties(std::int64_t iFrom, std::int64_t iTo) {
    NVF_ASSERT(iTo >= 0 && iTo < m_apUserProperties.GetSize());
    m_apUserProperties.RemoveRange(iFrom, iTo);
}

bool ZRFxElementBlock::DoReadBlock(const nvf::XmlElement& root) {
    DoUnloadData();
    m_iNodeBlockID = root.getAttributeInt("NodeBlock", -1);
    m_bMapToNodeIDs = root.getAttributeBool("MapToNodeIDs", false);
    const bool isWithIDs = root.getAttributeBool("WithID", false);
    m_iCrossSectionsID = root.getAttributeInt("CrossSectionsID", -1);
    m_iNumEccPerElement = root.getAttributeInt("NumEccPerElement", 0);
    for (nvf::XmlElement element = root.firstChildElement("ElementGroup"); element.notNull();
         element = element.nextSiblingElement("ElementGroup")) {
        auto pGroup = std::make_unique<ZRFxElementBlockGroup>();
        if (!ReadGroup(element, pGroup.get())) return false;
        if (isWithIDs == pGroup->m_aiIDs.IsEmpty()) return FailMixedIDs();
        if (!AddElementGroup(pGroup)) return false;
    }
    m_bWithIDs = isWithIDs;
    for (nvf::XmlElement element = root.firstChildElement("Properties"); element.notNull();
         element = element.nextSiblingElement("Properties")) {
        if (!ReadProperties(element)) return false;
    }
    return true;
}

bool ZRFxElementBlock::DoWriteBlock(nvf::XmlElement root) {
    root.setAttributeInt("NodeBlock", m_iNodeBlockID);
    root.setAttributeBool("MapToNodeIDs", m_bMapToNodeIDs);
    root.setAttributeBool("WithID", m_bWithIDs);
    if (m_iCrossSectionsID >= 0) {
        root.setAttributeInt("CrossSectionsID", m_iCrossSectionsID);
        root.setAttributeInt("NumEccPerElement", m_iNumEccPerElement);
    }
    for (std::int64_t i = 0; i < m_apElementGroups.GetSize(); ++i) {
        const ZRFxElementBlockGroup* pGroup = m_apElementGroups[i];
        NVF_ASSERT(pGroup);
        if (!pGroup || !WriteGroup(root, *pGroup, i + 1)) return false;
    }
    for (std::int64_t i = 0; i < m_apUserProperties.GetSize(); ++i) {
        if (!WriteProperties(root, *m_apUserProperties[i], i + 1)) return false;
    }
    return true;
}

void ZRFxElementBlock::DoUnloadData() {
    m_apElementGroups.RemoveAll();
    m_apUserProperties.RemoveAll();
}

bool ZRFxElementBlock::WriteGroup(nvf::XmlElement root, const ZRFxElementBlockGroup& group,
                                  std::int64_t number) {
    nvf::XmlElement element = root.addChildElement("ElementGroup");
    SetAttribute(element, "Type", ZRFEMElementTypeName(group.m_iElementType));
    element.setAttributeInt("NumElementNodes", static_cast<int>(group.m_aiConnectivity.GetSize()));
    const ZRString base = GetFilebase(number);
    ZRFxFileRecord file{base, group.m_iNumElements, m_bWithIDs ? base + "-IDs" : ZRString()};
    if (m_bWithIDs && !m_pDatabase->WriteDataInt(file.ids, group.m_aiIDs, 1)) return false;
    if (!group.m_aiElementIndices.IsEmpty() &&
        !WriteFile(element, "ElementIndices", base + "-ElementIndices", group.m_aiElementIndices)) {
        return false;
    }
    if (!WriteConnectivity(group, base) || !AddFileRecord(element, "File", file)) return false;
    return WriteExpansion(element, group, base) && WritePolyhedrons(element, group, base);
}

// Node indices count from 1 in the file; node ids are written as they are.
bool ZRFxElementBlock::WriteConnectivity(const ZRFxElementBlockGroup& group, const ZRString& name) {
    if (m_bMapToNodeIDs) return m_pDatabase->WriteDataInt(name, group.m_aiConnectivity, 1);
    ZRIntArray fromOne;
    if (!fromOne.Assign(group.m_aiConnectivity.Data(), group.m_aiConnectivity.GetSize())) {
        return false;
    }
    return addToAll(1, &fromOne) && m_pDatabase->WriteDataInt(name, fromOne, 1);
}

bool ZRFxElementBlock::WriteExpansion(nvf::XmlElement element, const ZRFxElementBlockGroup& group,
                                      const ZRString& base) {
    if (m_iCrossSectionsID < 0 || group.m_aiExpansionMapping.IsEmpty()) return true;
    return WriteFile(element, "ElementToCrossSectionMapping", base + "-ExpansionMapping",
                     group.m_aiExpansionMapping) &&
           WriteFile(element, "Directions", base + "-Directions", group.m_aDirections) &&
           WriteFile(element, "Eccentricities", base + "-Eccentricities", group.m_aEccentricities);
}

// The file of the node counts and its record have different names in the format.
bool ZRFxElementBlock::WritePolyhedrons(nvf::XmlElement element, const ZRFxElementBlockGroup& group,
                                        const ZRString& base) {
    if (!group.IsPolyhedron()) return true;
    return WriteFile(element, "PolyhedronElementNodeCounts", base + "-PolyhedronStartNodes",
                     group.m_aiPolyhedronElementNodeCounts) &&
           WriteFile(element, "PolyhedronFaceCounts", base + "-PolyhedronFaceCounts",
                     group.m_aiPolyhedronFaceCounts) &&
           WriteFile(element, "PolyhedronFaceLocalNodes", base + "-PolyhedronFaceLocalNodes",
                     group.m_aiPolyhedronFaceLocalNodes) &&
           WriteFile(element, "PolyhedronFaceNodeCounts", base + "-PolyhedronFaceNodeCounts",
                     group.m_aiPolyhedronFaceNodeCounts);
}

// An empty array writes nothing but keeps its number.
bool ZRFxElementBlock::WriteProperties(nvf::XmlElement root, const ZRIntArray& properties,
                                       std::int64_t number) {
    if (properties.IsEmpty()) return true;
    return WriteFile(root.addChildElement("Properties"), "File",
                     GetFilebase(number) + "-Properties", properties);
}

bool ZRFxElementBlock::ReadGroup(const nvf::XmlElement& element, ZRFxElementBlockGroup* group) {
    ZRFxFileRecord file;
    if (!GetFileRecord(element, "File", &file)) {
        return Log().fail("Cannot get element info from Xml (Element block ID %1)", GetID());
    }
    group->m_iElementType = ZRFEMElementTypeFromName(GetAttribute(element, "Type"));
    group->m_iNumElements = file.numItems;
    if (file.numItems < 0) return FailUnfit(file.filename, "elements", file.numItems, 0);
    if (!ReadConnectivity(element, file.filename, group)) return false;
    if (!file.ids.IsBlank() &&
        !m_pDatabase->ReadDataInt(file.ids, file.numItems, &group->m_aiIDs)) {
        return Log().fail("Error reading element data");
    }
    return ReadElementIndices(element, group) && ReadExpansion(element, group) &&
           ReadPolyhedrons(element, group);
}

bool ZRFxElementBlock::ReadConnectivity(const nvf::XmlElement& element, const ZRString& name,
                                        ZRFxElementBlockGroup* group) {
    const int numNodes = element.getAttributeInt("NumElementNodes", -1);
    const std::int64_t expected =
        ZRFEMNodesPerElement(group->m_iElementType) * group->m_iNumElements;
    if (!group->IsPolyhedron() && numNodes != expected) {
        return FailUnfit(name, "element nodes", numNodes, expected);
    }
    if (!m_pDatabase->ReadDataInt(name, numNodes, &group->m_aiConnectivity)) {
        return Log().fail("Error reading element data");
    }
    if (m_bMapToNodeIDs) return true;
    if (!addToAll(-1, &group->m_aiConnectivity)) return false;
    return CheckIndices(name, "node index", group->m_aiConnectivity);
}

bool ZRFxElementBlock::ReadElementIndices(const nvf::XmlElement& element,
                                          ZRFxElementBlockGroup* group) {
    if (element.firstChildElement("ElementIndices").isNull()) return true;
    ZRFxFileRecord file;
    if (!GetFileRecord(element, "ElementIndices", &file)) {
        return Log().fail("Error reading element indices");
    }
    if (file.numItems != group->m_iNumElements) {
        return FailUnfit(file.filename, "element indices", file.numItems, group->m_iNumElements);
    }
    if (!m_pDatabase->ReadDataInt(file.filename, file.numItems, &group->m_aiElementIndices)) {
        return Log().fail("Error reading element indices");
    }
    return CheckIndices(file.filename, "element index", group->m_aiElementIndices);
}

bool ZRFxElementBlock::ReadExpansion(const nvf::XmlElement& element, ZRFxElementBlockGroup* group) {
    if (element.firstChildElement("ElementToCrossSectionMapping").isNull()) return true;
    ZRFxFileRecord mapping;
    if (!GetFileRecord(element, "ElementToCrossSectionMapping", &mapping)) {
        return Log().fail("Error reading element data");
    }
    if (mapping.numItems != group->m_iNumElements) {
        return FailUnfit(mapping.filename, "cross section indices", mapping.numItems,
                         group->m_iNumElements);
    }
    if (!ReadFile(element, "ElementToCrossSectionMapping", &group->m_aiExpansionMapping) ||
        !ReadFile(element, "Directions", &group->m_aDirections) ||
        !ReadFile(element, "Eccentricities", &group->m_aEccentricities)) {
        return Log().fail("Error reading element data");
    }
    const std::int64_t numEccentricities = m_iNumEccPerElement * group->m_iNumElements;
    if (group->m_aEccentricities.GetSize() != numEccentricities) {
        return FailUnfit(GetFileName(), "eccentricities", group->m_aEccentricities.GetSize(),
                         numEccentricities);
    }
    return CheckIndices(mapping.filename, "cross section index", group->m_aiExpansionMapping);
}

bool ZRFxElementBlock::ReadPolyhedrons(const nvf::XmlElement& element,
                                       ZRFxElementBlockGroup* group) {
    if (!group->IsPolyhedron()) return true;
    if (!ReadExtra(element, "PolyhedronElementNodeCounts",
                   &group->m_aiPolyhedronElementNodeCounts)) {
        return Log().fail("Error reading polyhedrons (PolyhedronElementNodeCounts)");
    }
    if (!ReadExtra(element, "PolyhedronFaceCounts", &group->m_aiPolyhedronFaceCounts)) {
        return Log().fail("Error reading polyhedrons (PolyhedronFaceCounts)");
    }
    if (!ReadExtra(element, "PolyhedronFaceLocalNodes", &group->m_aiPolyhedronFaceLocalNodes)) {
        return Log().fail("Error reading polyhedrons (PolyhedronFaceLocalNodes)");
    }
    if (!ReadExtra(element, "PolyhedronFaceNodeCounts", &group->m_aiPolyhedronFaceNodeCounts)) {
        return Log().fail("Error reading polyhedrons (PolyhedronFaceNodeCounts)");
    }
    return CheckPolyhedrons(*group);
}

bool ZRFxElementBlock::ReadExtra(const nvf::XmlElement& element, const char* key,
                                 ZRIntArray* items) {
    return ReadFile(element, key, items) && CheckIndices(GetFileName(), key, *items);
}

// The four arrays describe each other: who walks the faces of the elements stays inside all of
// them.
bool ZRFxElementBlock::CheckPolyhedrons(const ZRFxElementBlockGroup& group) const {
    const ZRIntArray& nodeCounts = group.m_aiPolyhedronElementNodeCounts;
    const ZRIntArray& faceCounts = group.m_aiPolyhedronFaceCounts;
    const ZRIntArray& faceNodeCounts = group.m_aiPolyhedronFaceNodeCounts;
    const ZRIntArray& localNodes = group.m_aiPolyhedronFaceLocalNodes;
    const ZRString file = GetFileName();
    if (nodeCounts.GetSize() != group.m_iNumElements) {
        return FailUnfit(file, "polyhedron node counts", nodeCounts.GetSize(),
                         group.m_iNumElements);
    }
    if (faceCounts.GetSize() != group.m_iNumElements) {
        return FailUnfit(file, "polyhedron face counts", faceCounts.GetSize(),
                         group.m_iNumElements);
    }
    if (sumOf(nodeCounts) != group.m_aiConnectivity.GetSize()) {
        return FailUnfit(file, "polyhedron nodes", group.m_aiConnectivity.GetSize(),
                         sumOf(nodeCounts));
    }
    if (sumOf(faceCounts) != faceNodeCounts.GetSize()) {
        return FailUnfit(file, "polyhedron faces", faceNodeCounts.GetSize(), sumOf(faceCounts));
    }
    if (sumOf(faceNodeCounts) != localNodes.GetSize()) {
        return FailUnfit(file, "polyhedron face nodes", localNodes.GetSize(),
                         sumOf(faceNodeCounts));
    }
    return CheckLocalNodes(group);
}

bool ZRFxElementBlock::CheckLocalNodes(const ZRFxElementBlockGroup& group) const {
    const std::int32_t* faceNodeCount = group.m_aiPolyhedronFaceNodeCounts.Data();
    const std::int32_t* localNode = group.m_aiPolyhedronFaceLocalNodes.Data();
    for (std::int64_t element = 0; element < group.m_iNumElements; ++element) {
        const std::int32_t numNodes = group.m_aiPolyhedronElementNodeCounts.Data()[element];
        for (std::int32_t face = 0; face < group.m_aiPolyhedronFaceCounts.Data()[element]; ++face) {
            for (const std::int32_t* end = localNode + *faceNodeCount++; localNode < end;
                 ++localNode) {
                if (*localNode < numNodes) continue;
                return Log().fail(
                    "Elements block ID %1: '%2' holds local node %3 in polyhedron %4, expected "
                    "less than %5",
                    GetID(), GetFileName(), *localNode, element, numNodes);
            }
        }
    }
    return true;
}

bool ZRFxElementBlock::FailMixedIDs() const {
    return Log().fail("Either all element groups must have IDs or none. (Element block ID %1)",
                      GetID());
}

bool ZRFxElementBlock::ReadProperties(const nvf::XmlElement& element) {
    auto properties = std::make_unique<ZRIntArray>();
    ZRFxFileRecord file;
    if (!GetFileRecord(element, "File", &file) ||
        !m_pDatabase->ReadDataInt(file.filename, file.numItems, properties.get())) {
        return Log().fail("Error reading element data");
    }
    if (file.numItems != GetNumElements()) {
        return FailUnfit(file.filename, "properties", file.numItems, GetNumElements());
    }
    AddUserProperties(std::move(properties));
    return true;
}

}  // namespace unstruct
