#include "blocks/mesh/ZRFxElementBlock.h"

#include <algorithm>
#include <array>
#include <limits>
#include <numeric>
#include <utility>

#include "blocks/ZRFxBlockStore.h"
#include "blocks/ZRFxOutline.h"
#include "documents/ZRFxFileRecord.h"
#include "documents/ZRFxXml.h"

namespace unstruct {
namespace {

constexpr const char* kElementIndices = "element indices";
constexpr const char* kSectionIndices = "cross section indices";

// An array that only polyhedrons have: the key of its record, and its file.
struct Extra {
    const char* key;
    const char* suffix;
    ZRIntArray ZRFxElementBlockGroup::*items;
};

constexpr const char* kFaceNodeCounts = "PolyhedronFaceNodeCounts";

// The file of the node counts and its record have different names in the format.
constexpr std::array kExtras{
    Extra{"PolyhedronElementNodeCounts", "-PolyhedronStartNodes",
          &ZRFxElementBlockGroup::m_aiPolyhedronElementNodeCounts},
    Extra{"PolyhedronFaceCounts", "-PolyhedronFaceCounts",
          &ZRFxElementBlockGroup::m_aiPolyhedronFaceCounts},
    Extra{"PolyhedronFaceLocalNodes", "-PolyhedronFaceLocalNodes",
          &ZRFxElementBlockGroup::m_aiPolyhedronFaceLocalNodes},
    Extra{kFaceNodeCounts, "-PolyhedronFaceNodeCounts",
          &ZRFxElementBlockGroup::m_aiPolyhedronFaceNodeCounts},
};

// The faces of polyhedrons are counted in a record of their own.
void addGroup(const nvf::XmlElement& element, ZRFxOutline* outline) {
    ZRFxItemCounts* counts = &*outline->counts;
    const int type = ZRFEMElementTypeFromName(GetAttribute(element, "Type"));
    ZRFxFileRecord file;
    GetFileRecord(element, "File", &file);
    outline->groups.push_back({type, file.numItems});
    counts->items += file.numItems;
    counts->elementNodes += element.getAttributeInt("NumElementNodes", 0);
    ZRFxFileRecord faces;
    const bool isPolyhedron = GetFileRecord(element, kFaceNodeCounts, &faces);
    counts->surfaces +=
        isPolyhedron ? faces.numItems : file.numItems * ZRFEMSurfacesPerElement(type);
}

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

ZRFxElementBlock::ZRFxElementBlock(ZRFxBlockStore* pDatabase, int id)
    : ZRFxBlock(pDatabase, id, kType) {}

bool ZRFxElementBlock::AddElementGroup(std::unique_ptr<ZRFxElementBlockGroup>& pGroup) {
    NVF_ASSERT(pGroup);
    if (!pGroup) return false;
    const bool hasIDs = !pGroup->m_aiIDs.IsEmpty();
    if (m_apElementGroups.IsEmpty()) m_bWithIDs = hasIDs;
    if (hasIDs != m_bWithIDs) return FailMixedIDs();
    m_apElementGroups.Add(std::move(pGroup));
    SetRead(true);
    return true;
}

void ZRFxElementBlock::AddUserProperties(std::unique_ptr<ZRIntArray> paiProperties) {
    NVF_ASSERT(paiProperties);
    if (paiProperties) m_apUserProperties.Add(std::move(paiProperties));
}

void ZRFxElementBlock::RemoveElementGroups(std::int64_t iFrom, std::int64_t iTo) {
    NVF_ASSERT(iTo >= 0 && iTo < m_apElementGroups.GetSize());
    m_apElementGroups.RemoveRange(iFrom, iTo);
}

void ZRFxElementBlock::RemoveUserProperties(std::int64_t iFrom, std::int64_t iTo) {
    NVF_ASSERT(iTo >= 0 && iTo < m_apUserProperties.GetSize());
    m_apUserProperties.RemoveRange(iFrom, iTo);
}

bool ZRFxElementBlock::RenumberElementIndices() {
    std::int32_t next = 0;
    for (const auto& group : m_apElementGroups) {
        if (!group->m_aiElementIndices.SetSize(group->m_iNumElements)) return false;
        std::int32_t* indices = group->m_aiElementIndices.WritableData();
        std::iota(indices, indices + group->m_iNumElements, next);
        next += static_cast<std::int32_t>(group->m_iNumElements);
    }
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
    for (const auto& group : m_apElementGroups) count += group->m_iNumElements;
    return count;
}

bool ZRFxElementBlock::GetAllElementIDs(ZRIntArray* paiElementIDs) const {
    NVF_ASSERT(paiElementIDs);
    if (!paiElementIDs) return false;
    paiElementIDs->RemoveAll();
    const std::int64_t iNumElements = m_bWithIDs ? GetNumElements() : 0;
    if (!paiElementIDs->Reserve(iNumElements)) return false;
    for (const auto& group : m_apElementGroups) {
        for (const std::int32_t id : group->m_aiIDs) paiElementIDs->Add(id);
    }
    NVF_ASSERT(paiElementIDs->GetNumItems() == iNumElements);
    return paiElementIDs->GetNumItems() == iNumElements;
}

const ZRIntArray* ZRFxElementBlock::GetUserProperties(std::int64_t iPropertiesIdx) const {
    NVF_ASSERT(iPropertiesIdx < m_apUserProperties.GetSize());
    return m_apUserProperties[iPropertiesIdx];
}

std::int64_t ZRFxElementBlock::GetNumUserProperties() const {
    return m_apUserProperties.GetSize();
}

std::uint64_t ZRFxElementBlock::GetDataSize() const {
    std::uint64_t size = 0;
    for (const auto& group : m_apElementGroups) {
        size += group->m_aiConnectivity.SizeInBytes() + group->m_aiIDs.SizeInBytes();
    }
    return size;
}

bool ZRFxElementBlock::DoReadBlock(const nvf::XmlElement& root) {
    DoUnloadData();
    ReadAttributes(root);
    const bool isWithIDs = root.getAttributeBool("WithID", false);
    for (nvf::XmlElement element = root.firstChildElement("ElementGroup"); element.notNull();
         element = element.nextSiblingElement("ElementGroup")) {
        auto group = std::make_unique<ZRFxElementBlockGroup>();
        if (!ReadGroup(element, group.get())) return false;
        if (isWithIDs == group->m_aiIDs.IsEmpty()) return FailMixedIDs();
        if (!AddElementGroup(group)) return false;
    }
    m_bWithIDs = isWithIDs;
    for (nvf::XmlElement element = root.firstChildElement("Properties"); element.notNull();
         element = element.nextSiblingElement("Properties")) {
        if (!ReadProperties(element)) return false;
    }
    return true;
}

bool ZRFxElementBlock::CheckContents() const {
    for (std::int64_t i = 0; i < m_apElementGroups.GetSize(); ++i) {
        if (!CheckGroup(*m_apElementGroups[i], GetFilebase(i + 1))) return false;
    }
    for (std::int64_t i = 0; i < m_apUserProperties.GetSize(); ++i) {
        const ZRIntArray& properties = *m_apUserProperties[i];
        if (!properties.IsEmpty() &&
            !CheckProperties(properties, GetFilebase(i + 1) + "-Properties")) {
            return false;
        }
    }
    return true;
}

bool ZRFxElementBlock::DoWriteBlock(nvf::XmlElement root) {
    WriteAttributes(root);
    for (std::int64_t i = 0; i < m_apElementGroups.GetSize(); ++i) {
        const ZRFxElementBlockGroup* group = m_apElementGroups[i];
        NVF_ASSERT(group);
        if (!group || !WriteGroup(root, *group, i + 1)) return false;
    }
    for (std::int64_t i = 0; i < m_apUserProperties.GetSize(); ++i) {
        if (!WriteProperties(root, *m_apUserProperties[i], i + 1)) return false;
    }
    return true;
}

void ZRFxElementBlock::DoOutline(const nvf::XmlElement& root, ZRFxOutline* outline) const {
    outline->counts.emplace();
    outline->hasIDs = root.getAttributeBool("WithID", false);
    for (nvf::XmlElement element = root.firstChildElement("ElementGroup"); element.notNull();
         element = element.nextSiblingElement("ElementGroup")) {
        addGroup(element, outline);
    }
    outline->nodes = ZRFxNodesUse{root.getAttributeInt("NodeBlock", -1)};
    outline->nodes->byIDs = root.getAttributeBool("MapToNodeIDs", false);
    for (const auto& group : m_apElementGroups) {
        if (m_bMapToNodeIDs) break;
        outline->nodes->highestIndex =
            std::max(outline->nodes->highestIndex, HighestOf(group->m_aiConnectivity));
    }
    outline->AddBlock(BLOCK_NODES, outline->nodes->nodeBlockID, "node block");
    outline->AddOptionalBlock(BLOCK_CROSS_SECTIONS, root.getAttributeInt("CrossSectionsID", -1),
                              "cross sections block");
}

bool ZRFxElementBlock::FindArray(const nvf::XmlElement& root, ZRFxArrayKind kind, int group,
                                 ZRFxArrayFile* file) const {
    nvf::XmlElement element = root.firstChildElement("ElementGroup");
    for (; group > 0 && element.notNull(); --group) {
        element = element.nextSiblingElement("ElementGroup");
    }
    ZRFxFileRecord record;
    if (element.isNull() || !GetFileRecord(element, "File", &record)) return false;
    const int type = ZRFEMElementTypeFromName(GetAttribute(element, "Type"));
    const std::int32_t added = root.getAttributeBool("MapToNodeIDs", false) ? 0 : -1;
    const bool hasNodes = ZRFEMNodesPerElement(type) > 0;
    if (kind == ZRFxArrayKind::NODES && hasNodes) {
        *file = {record.filename, record.numItems, ZRFEMNodesPerElement(type), added};
    }
    if (kind == ZRFxArrayKind::IDS) *file = {record.ids, record.numItems};
    return !file->name.IsBlank();
}

void ZRFxElementBlock::DoUnloadData() {
    m_apElementGroups.RemoveAll();
    m_apUserProperties.RemoveAll();
}

void ZRFxElementBlock::ReadAttributes(const nvf::XmlElement& root) {
    m_iNodeBlockID = root.getAttributeInt("NodeBlock", -1);
    m_bMapToNodeIDs = root.getAttributeBool("MapToNodeIDs", false);
    m_iCrossSectionsID = root.getAttributeInt("CrossSectionsID", -1);
    m_iNumEccPerElement = root.getAttributeInt("NumEccPerElement", 0);
}

bool ZRFxElementBlock::ReadGroup(const nvf::XmlElement& element, ZRFxElementBlockGroup* group) {
    ZRFxFileRecord file;
    if (!GetFileRecord(element, "File", &file)) {
        return Log().fail("Cannot get element info from Xml (Element block ID %1)", GetID());
    }
    group->m_iElementType = ZRFEMElementTypeFromName(GetAttribute(element, "Type"));
    group->m_iNumElements = file.numItems;
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
    if (!CheckElementCount(*group, numNodes, name)) return false;
    if (!m_pDatabase->ReadDataInt(name, numNodes, &group->m_aiConnectivity)) {
        return Log().fail("Error reading element data");
    }
    if (!m_bMapToNodeIDs && !addToAll(-1, &group->m_aiConnectivity)) return false;
    return CheckConnectivity(*group, name);
}

bool ZRFxElementBlock::ReadElementIndices(const nvf::XmlElement& element,
                                          ZRFxElementBlockGroup* group) {
    if (element.firstChildElement("ElementIndices").isNull()) return true;
    ZRFxFileRecord file;
    if (!GetFileRecord(element, "ElementIndices", &file)) {
        return Log().fail("Error reading element indices");
    }
    if (!CheckCount(file.filename, kElementIndices, file.numItems, group->m_iNumElements)) {
        return false;
    }
    if (!m_pDatabase->ReadDataInt(file.filename, file.numItems, &group->m_aiElementIndices)) {
        return Log().fail("Error reading element indices");
    }
    return CheckElementIndices(*group, file.filename);
}

bool ZRFxElementBlock::ReadExpansion(const nvf::XmlElement& element, ZRFxElementBlockGroup* group) {
    if (element.firstChildElement("ElementToCrossSectionMapping").isNull()) return true;
    ZRFxFileRecord mapping;
    if (!GetFileRecord(element, "ElementToCrossSectionMapping", &mapping)) {
        return Log().fail("Error reading element data");
    }
    if (!CheckCount(mapping.filename, kSectionIndices, mapping.numItems, group->m_iNumElements)) {
        return false;
    }
    if (!ReadFile(element, "ElementToCrossSectionMapping", &group->m_aiExpansionMapping) ||
        !ReadFile(element, "Directions", &group->m_aDirections) ||
        !ReadFile(element, "Eccentricities", &group->m_aEccentricities)) {
        return Log().fail("Error reading element data");
    }
    return CheckExpansion(*group, mapping.filename);
}

bool ZRFxElementBlock::ReadPolyhedrons(const nvf::XmlElement& element,
                                       ZRFxElementBlockGroup* group) {
    if (!group->IsPolyhedron()) return true;
    for (const Extra& extra : kExtras) {
        ZRIntArray& items = group->*extra.items;
        if (!ReadFile(element, extra.key, &items) ||
            !CheckIndices(GetDocumentName(), extra.key, items)) {
            return Log().fail("Error reading polyhedrons (%1)", ZRString(extra.key));
        }
    }
    return CheckPolyhedrons(*group);
}

bool ZRFxElementBlock::ReadProperties(const nvf::XmlElement& element) {
    auto properties = std::make_unique<ZRIntArray>();
    ZRFxFileRecord file;
    if (!GetFileRecord(element, "File", &file) ||
        !m_pDatabase->ReadDataInt(file.filename, file.numItems, properties.get())) {
        return Log().fail("Error reading element data");
    }
    if (!CheckProperties(*properties, file.filename)) return false;
    AddUserProperties(std::move(properties));
    return true;
}

bool ZRFxElementBlock::CheckGroup(const ZRFxElementBlockGroup& group, const ZRString& base) const {
    return CheckElementCount(group, group.m_aiConnectivity.GetSize(), base) &&
           CheckConnectivity(group, base) && CheckIDs(group, base + "-IDs") &&
           (group.m_aiElementIndices.IsEmpty() ||
            CheckElementIndices(group, base + "-ElementIndices")) &&
           (!IsExpanded(group) || CheckExpansion(group, base + "-ExpansionMapping")) &&
           (!group.IsPolyhedron() || (CheckExtras(group) && CheckPolyhedrons(group)));
}

bool ZRFxElementBlock::CheckIDs(const ZRFxElementBlockGroup& group, const ZRString& file) const {
    if (m_bWithIDs == group.m_aiIDs.IsEmpty()) return FailMixedIDs();
    return !m_bWithIDs || CheckCount(file, "IDs", group.m_aiIDs.GetSize(), group.m_iNumElements);
}

bool ZRFxElementBlock::CheckElementCount(const ZRFxElementBlockGroup& group, std::int64_t numNodes,
                                         const ZRString& file) const {
    if (group.m_iNumElements < 0) return FailUnfit(file, "elements", group.m_iNumElements, 0);
    const std::int64_t expected = ZRFEMNodesPerElement(group.m_iElementType) * group.m_iNumElements;
    return group.IsPolyhedron() || CheckCount(file, "element nodes", numNodes, expected);
}

bool ZRFxElementBlock::CheckConnectivity(const ZRFxElementBlockGroup& group,
                                         const ZRString& file) const {
    return m_bMapToNodeIDs ||
           CheckIndices(file, "node index", group.m_aiConnectivity, kHighestFromOne);
}

bool ZRFxElementBlock::CheckElementIndices(const ZRFxElementBlockGroup& group,
                                           const ZRString& file) const {
    const ZRIntArray& indices = group.m_aiElementIndices;
    return CheckCount(file, kElementIndices, indices.GetSize(), group.m_iNumElements) &&
           CheckIndices(file, "element index", indices);
}

bool ZRFxElementBlock::CheckExpansion(const ZRFxElementBlockGroup& group,
                                      const ZRString& mappingFile) const {
    const ZRIntArray& mapping = group.m_aiExpansionMapping;
    return CheckCount(mappingFile, kSectionIndices, mapping.GetSize(), group.m_iNumElements) &&
           CheckCount(GetDocumentName(), "eccentricities", group.m_aEccentricities.GetSize(),
                      m_iNumEccPerElement * group.m_iNumElements) &&
           CheckIndices(mappingFile, "cross section index", mapping);
}

bool ZRFxElementBlock::IsExpanded(const ZRFxElementBlockGroup& group) const {
    return m_iCrossSectionsID >= 0 && !group.m_aiExpansionMapping.IsEmpty();
}

bool ZRFxElementBlock::CheckExtras(const ZRFxElementBlockGroup& group) const {
    return std::all_of(kExtras.begin(), kExtras.end(), [&](const Extra& extra) {
        return CheckIndices(GetDocumentName(), extra.key, group.*extra.items);
    });
}

// The four arrays describe each other: who walks the faces of the elements stays inside all of
// them.
bool ZRFxElementBlock::CheckPolyhedrons(const ZRFxElementBlockGroup& group) const {
    const ZRIntArray& nodeCounts = group.m_aiPolyhedronElementNodeCounts;
    const ZRIntArray& faceCounts = group.m_aiPolyhedronFaceCounts;
    const ZRIntArray& faceNodeCounts = group.m_aiPolyhedronFaceNodeCounts;
    const ZRIntArray& localNodes = group.m_aiPolyhedronFaceLocalNodes;
    const ZRString file = GetDocumentName();
    return CheckCount(file, "polyhedron node counts", nodeCounts.GetSize(), group.m_iNumElements) &&
           CheckCount(file, "polyhedron face counts", faceCounts.GetSize(), group.m_iNumElements) &&
           CheckCount(file, "polyhedron nodes", group.m_aiConnectivity.GetSize(),
                      sumOf(nodeCounts)) &&
           CheckCount(file, "polyhedron faces", faceNodeCounts.GetSize(), sumOf(faceCounts)) &&
           CheckCount(file, "polyhedron face nodes", localNodes.GetSize(), sumOf(faceNodeCounts)) &&
           CheckLocalNodes(group);
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
                    GetID(), GetDocumentName(), *localNode, element, numNodes);
            }
        }
    }
    return true;
}

bool ZRFxElementBlock::CheckProperties(const ZRIntArray& properties, const ZRString& file) const {
    return CheckCount(file, "properties", properties.GetSize(), GetNumElements());
}

bool ZRFxElementBlock::FailMixedIDs() const {
    return Log().fail("Either all element groups must have IDs or none. (Element block ID %1)",
                      GetID());
}

void ZRFxElementBlock::WriteAttributes(nvf::XmlElement root) {
    root.setAttributeInt("NodeBlock", m_iNodeBlockID);
    root.setAttributeBool("MapToNodeIDs", m_bMapToNodeIDs);
    root.setAttributeBool("WithID", m_bWithIDs);
    if (m_iCrossSectionsID < 0) return;
    root.setAttributeInt("CrossSectionsID", m_iCrossSectionsID);
    root.setAttributeInt("NumEccPerElement", m_iNumEccPerElement);
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
    if (!IsExpanded(group)) return true;
    return WriteFile(element, "ElementToCrossSectionMapping", base + "-ExpansionMapping",
                     group.m_aiExpansionMapping) &&
           WriteFile(element, "Directions", base + "-Directions", group.m_aDirections) &&
           WriteFile(element, "Eccentricities", base + "-Eccentricities", group.m_aEccentricities);
}

bool ZRFxElementBlock::WritePolyhedrons(nvf::XmlElement element, const ZRFxElementBlockGroup& group,
                                        const ZRString& base) {
    return !group.IsPolyhedron() ||
           std::all_of(kExtras.begin(), kExtras.end(), [&](const Extra& extra) {
               return WriteFile(element, extra.key, base + extra.suffix, group.*extra.items);
           });
}

// An empty array writes nothing but keeps its number.
bool ZRFxElementBlock::WriteProperties(nvf::XmlElement root, const ZRIntArray& properties,
                                       std::int64_t number) {
    if (properties.IsEmpty()) return true;
    return WriteFile(root.addChildElement("Properties"), "File",
                     GetFilebase(number) + "-Properties", properties);
}

}  // namespace unstruct
