#include "blocks/results/ZRFxPositionResultValuesBlock.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "blocks/ZRFxBlockStore.h"
#include "blocks/ZRFxOutline.h"
#include "documents/ZRFxFileRecord.h"
#include "documents/ZRFxXml.h"
#include "types/ZRFxResultTypes.h"

namespace unstruct {
namespace {

bool isDimension(int dimension) {
    return dimension == kScalarKind.Dimension() || dimension == kVectorKind.Dimension();
}

// One name per line, in the order of the vectors.
ZRString namesOf(const ZRIntArray& vectorTypes) {
    std::string names;
    for (const std::int32_t type : vectorTypes) names += VectorTypeName(type).Bytes() + "\n";
    return names;
}

bool typesOf(std::string_view names, ZRIntArray* vectorTypes) {
    vectorTypes->RemoveAll();
    while (!names.empty()) {
        const std::string_view name = names.substr(0, names.find_first_of("\r\n"));
        names.remove_prefix(std::min(name.size() + 1, names.size()));
        if (!name.empty() && !vectorTypes->Add(VectorTypeFromName(ZRString(name)))) return false;
    }
    return true;
}

}  // namespace

ZRFxPositionResultValuesBlock::ZRFxPositionResultValuesBlock(ZRFxBlockStore* pDatabase, int id)
    : ZRFxBlock(pDatabase, id, kType) {}

void ZRFxPositionResultValuesBlock::SetDimension(int iDimension) {
    NVF_ASSERT(isDimension(iDimension));
    m_iDimension = iDimension;
}

bool ZRFxPositionResultValuesBlock::DoReadBlock(const nvf::XmlElement& root) {
    DoUnloadData();
    ReadAttributes(root);
    return CheckDimension() && ReadPositions(root) && ReadResults(root) && CheckResults();
}

bool ZRFxPositionResultValuesBlock::CheckContents() const {
    if (!CheckDimension()) return false;
    if (m_iMapToBlockID < 0) return Log().fail("No map to block ID (element) specified.");
    if (m_aiElementIndices.GetSize() != m_positions.GetSize()) {
        return Log().fail("Num IDs differs from num. results");
    }
    return CheckResults();
}

bool ZRFxPositionResultValuesBlock::DoWriteBlock(nvf::XmlElement root) {
    WriteAttributes(root);
    return WritePositions(root) && WriteResults(root);
}

void ZRFxPositionResultValuesBlock::DoOutline(const nvf::XmlElement& root,
                                              ZRFxOutline* outline) const {
    outline->AddBlock(BLOCK_ELEMENTS, root.getAttributeInt("MapToBlockID", -1), "target block");
}

void ZRFxPositionResultValuesBlock::DoUnloadData() {
    m_positions.RemoveAll();
    m_aiElementIndices.RemoveAll();
    m_afScalars.RemoveAll();
    m_vectors.RemoveAll();
    m_aiVectorTypes.RemoveAll();
}

void ZRFxPositionResultValuesBlock::ReadAttributes(const nvf::XmlElement& root) {
    m_iDimension = root.getAttributeInt("Dimension", 0);
    m_iMapToBlockID = root.getAttributeInt("MapToBlockID", -1);
    m_bGlobalPositions = root.getAttributeBool("GlobalPositions", false);
    m_bGlobalResults = root.getAttributeBool("GlobalResults", false);
    m_vectorColor = GetColor(root, "VectorColor");
    m_fScalingFactor = root.getAttributeFloat("ScalingFactor", 1);
}

bool ZRFxPositionResultValuesBlock::ReadPositions(const nvf::XmlElement& root) {
    if (root.firstChildElement("ElementIndices").isNull()) {
        return Log().fail("No element indices specified for position result values");
    }
    if (root.firstChildElement("Positions").isNull()) {
        return Log().fail("No positions specified for position result values");
    }
    if (!ReadFile(root, "Positions", &m_positions) ||
        !ReadFile(root, "ElementIndices", &m_aiElementIndices)) {
        return Log().fail("Error reading position data");
    }
    return CheckNumber("element indices", m_aiElementIndices.GetSize());
}

bool ZRFxPositionResultValuesBlock::ReadResults(const nvf::XmlElement& root) {
    if (!AreScalars()) return ReadVectors(root);
    if (root.firstChildElement("ScalarResult").isNull()) {
        return Log().fail("No scalar values specified for position result values");
    }
    return ReadFile(root, "ScalarResult", &m_afScalars) ||
           Log().fail("Error reading position data");
}

bool ZRFxPositionResultValuesBlock::ReadVectors(const nvf::XmlElement& root) {
    ZRFxFileRecord types;
    ZRString names;
    if (root.firstChildElement("VectorResult").isNull()) {
        return Log().fail("No vector values specified for position result values");
    }
    if (!GetFileRecord(root, "VectorTypes", &types)) {
        return Log().fail("No vector types specified for position result values");
    }
    if (!ReadFile(root, "VectorResult", &m_vectors) ||
        !m_pDatabase->ReadDataString(types.filename, &names) ||
        !typesOf(names.Bytes(), &m_aiVectorTypes)) {
        return Log().fail("Error reading position data");
    }
    return CheckNumber("recorded vector types", types.numItems);
}

bool ZRFxPositionResultValuesBlock::CheckDimension() const {
    return isDimension(m_iDimension) || Log().fail("Result has illegal dimension.");
}

bool ZRFxPositionResultValuesBlock::CheckResults() const {
    if (!CheckIndices(GetDocumentName(), "element index", m_aiElementIndices)) return false;
    if (AreScalars()) return CheckNumber("scalar values", m_afScalars.GetSize());
    return CheckNumber("vector values", m_vectors.GetSize()) &&
           CheckNumber("vector types", m_aiVectorTypes.GetSize());
}

bool ZRFxPositionResultValuesBlock::CheckNumber(const char* what, std::int64_t count) const {
    return CheckCount(GetDocumentName(), what, count, m_positions.GetSize());
}

void ZRFxPositionResultValuesBlock::WriteAttributes(nvf::XmlElement root) {
    root.setAttributeInt("Dimension", m_iDimension);
    root.setAttributeInt("MapToBlockID", m_iMapToBlockID);
    root.setAttributeBool("GlobalPositions", m_bGlobalPositions);
    root.setAttributeBool("GlobalResults", m_bGlobalResults);
    SetAttribute(root, "VectorColor", m_vectorColor);
    root.setAttributeFloat("ScalingFactor", m_fScalingFactor);
}

bool ZRFxPositionResultValuesBlock::WritePositions(nvf::XmlElement root) {
    const ZRString base = GetFilebase();
    return WriteFile(root, "Positions", base + "-Positions", m_positions) &&
           WriteFile(root, "ElementIndices", base + "-PositionIDs", m_aiElementIndices);
}

bool ZRFxPositionResultValuesBlock::WriteResults(nvf::XmlElement root) {
    const ZRString base = GetFilebase();
    if (AreScalars()) return WriteFile(root, "ScalarResult", base + "-ScalarResult", m_afScalars);
    const ZRString types = base + "-VectorTypes";
    return WriteFile(root, "VectorResult", base + "-VectorResult", m_vectors) &&
           m_pDatabase->WriteDataString(types, namesOf(m_aiVectorTypes)) &&
           AddFileRecord(root, "VectorTypes", {types, m_aiVectorTypes.GetSize(), ZRString()});
}

}  // namespace unstruct
