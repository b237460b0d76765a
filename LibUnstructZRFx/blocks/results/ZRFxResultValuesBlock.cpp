#include "blocks/results/ZRFxResultValuesBlock.h"

#include "database/ZROZRFxDatabase.h"
#include "documents/ZRFxFileRecord.h"

namespace unstruct {

ZRFxResultValuesBlock::ZRFxResultValuesBlock(ZRFxDatabase* pDatabase, int id)
    : ZRFxBlock(pDatabase, id, kType) {}

bool ZRFxResultValuesBlock::SetScalars(const float* pfResult, std::int64_t count) {
    NVF_ASSERT(pfResult);
    ZRFloatArray scalars;
    if (!pfResult || !scalars.Assign(pfResult, count)) return false;
    SetScalars(std::move(scalars));
    return true;
}

void ZRFxResultValuesBlock::SetScalars(ZRFloatArray scalars) {
    m_afResults = std::move(scalars);
    SetRead(true);
}

bool ZRFxResultValuesBlock::SetVectors(const nuo::Vec3f* pVectorArray, std::int64_t count) {
    NVF_ASSERT(pVectorArray);
    ZRVec3fArray vectors;
    if (!pVectorArray || !vectors.Assign(pVectorArray, count)) return false;
    SetVectors(std::move(vectors));
    return true;
}

void ZRFxResultValuesBlock::SetVectors(ZRVec3fArray vectors) {
    NVF_ASSERT(m_iNumDimensions == 3);
    m_avResults = std::move(vectors);
    SetRead(true);
}

bool ZRFxResultValuesBlock::Reserve(std::int64_t numItems) {
    const bool isReserved = m_iNumDimensions == 3
                                ? m_avResults.Reserve(numItems)
                                : m_afResults.Reserve(numItems * m_iNumDimensions);
    return isReserved && (!m_paiIDs || m_paiIDs->Reserve(numItems));
}

// Value and id, or neither.
template <typename Value>
bool ZRFxResultValuesBlock::AddWithID(const Value& value, std::int32_t id, ZRArray<Value>* values) {
    SetRead(true);
    if (!values->Add(value)) return false;
    if (!m_paiIDs || m_paiIDs->Add(id)) return true;
    values->SetSize(values->GetSize() - 1);
    return false;
}

bool ZRFxResultValuesBlock::AddScalar(float value, std::int32_t id) {
    return AddWithID(value, id, &m_afResults);
}

bool ZRFxResultValuesBlock::AddVector(const nuo::Vec3f& value, std::int32_t id) {
    NVF_ASSERT(m_iNumDimensions == 3);
    return m_iNumDimensions == 3 && AddWithID(value, id, &m_avResults);
}

void ZRFxResultValuesBlock::SetIDs(std::unique_ptr<ZRIntArray> paiIDs) {
    m_paiIDs = std::move(paiIDs);
    m_indices = ZRIDLookup();
}

std::int64_t ZRFxResultValuesBlock::GetNumItems() const {
    if (m_iNumDimensions == 3) return m_avResults.GetSize();
    return m_iNumDimensions == 6 ? m_afResults.GetSize() / 6 : m_afResults.GetSize();
}

std::int64_t ZRFxResultValuesBlock::GetIndexOfID(std::int32_t iID) const {
    NVF_ASSERT(iID >= 0);
    if (!m_paiIDs) return iID >= 0 && iID < GetNumItems() ? iID : -1;
    m_indices.Update(*m_paiIDs);
    return m_indices.IndexOf(iID);
}

bool ZRFxResultValuesBlock::DoReadBlock(const nvf::XmlElement& root) {
    DoUnloadData();
    m_iMapToBlockID = root.getAttributeInt("MapToBlockID", -1);
    m_iNumDimensions = root.getAttributeInt("NumDimensions", 0);
    const bool isWithIDs = root.getAttributeBool("WithID", false);
    ZRFxFileRecord file;
    if (!GetFileRecord(root, "File", &file)) {
        return Log().fail("Cannot get info from Xml (Result values block ID %1)", GetID());
    }
    if (!ReadValues(file.filename, file.numItems)) return false;
    if (!isWithIDs) return true;
    auto ids = std::make_unique<ZRIntArray>();
    if (!m_pDatabase->ReadDataInt(file.ids, file.numItems, ids.get())) {
        return Log().fail("Error reading result IDs");
    }
    SetIDs(std::move(ids));
    return true;
}

bool ZRFxResultValuesBlock::CheckContents() const {
    const ZRString file = GetFilebase();
    if (m_iNumDimensions != 1 && m_iNumDimensions != 3 && m_iNumDimensions != 6) {
        return FailDimensions();
    }
    const std::int64_t numOthers =
        m_iNumDimensions == 3 ? m_afResults.GetSize() : m_avResults.GetSize();
    return CheckCount(file, "values of another dimension", numOthers, 0) &&
           (m_iNumDimensions != 6 ||
            CheckCount(file, "tensor components", m_afResults.GetSize(), GetNumItems() * 6)) &&
           (!m_paiIDs || CheckCount(file + "-IDs", "IDs", m_paiIDs->GetSize(), GetNumItems()));
}

bool ZRFxResultValuesBlock::DoWriteBlock(nvf::XmlElement root) {
    root.setAttributeInt("MapToBlockID", m_iMapToBlockID);
    root.setAttributeInt("NumDimensions", m_iNumDimensions);
    root.setAttributeBool("WithID", m_paiIDs != nullptr);
    ZRFxFileRecord file{GetFilebase(), GetNumItems(), ZRString()};
    if (!WriteValues(file.filename)) return false;
    if (m_paiIDs) {
        file.ids = file.filename + "-IDs";
        if (!m_pDatabase->WriteDataInt(file.ids, *m_paiIDs, 1)) return false;
    }
    return AddFileRecord(root, "File", file);
}

void ZRFxResultValuesBlock::DoUnloadData() {
    m_afResults.RemoveAll();
    m_avResults.RemoveAll();
    SetIDs(nullptr);
}

bool ZRFxResultValuesBlock::WriteValues(const ZRString& name) {
    if (m_iNumDimensions == 3) return m_pDatabase->WriteDataVector(name, m_avResults);
    if (m_iNumDimensions == 6) return m_pDatabase->WriteDataTensor(name, m_afResults);
    return m_pDatabase->WriteDataFloat(name, m_afResults);
}

bool ZRFxResultValuesBlock::ReadValues(const ZRString& name, std::int64_t numItems) {
    switch (m_iNumDimensions) {
        case 1:
            return m_pDatabase->ReadDataFloat(name, numItems, &m_afResults) ||
                   Log().fail("Error reading node data");
        case 3:
            return m_pDatabase->ReadDataVector(name, numItems, &m_avResults) ||
                   Log().fail("Error reading node data");
        case 6:
            return m_pDatabase->ReadDataTensor(name, numItems, &m_afResults) ||
                   Log().fail("Error reading node data");
        default:
            return FailDimensions();
    }
}

bool ZRFxResultValuesBlock::FailDimensions() const {
    return Log().fail("Illegal number of dimensions for result values");
}

}  // namespace unstruct
