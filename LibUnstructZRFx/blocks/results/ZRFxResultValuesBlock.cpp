#include "blocks/results/ZRFxResultValuesBlock.h"

#include <span>
#include <string>
#include <utility>

#include "blocks/ZRFxBlockStore.h"
#include "blocks/ZRFxOutline.h"
#include "data/ZRFxRounding.h"
#include "documents/ZRFxFileRecord.h"

namespace unstruct {
namespace {

std::span<const float> floatsOf(const ZRFloatArray& scalars) {
    return {scalars.Data(), static_cast<std::size_t>(scalars.GetSize())};
}
std::span<const float> floatsOf(const ZRVec3fArray& vectors) {
    static_assert(sizeof(nuo::Vec3f) == 3 * sizeof(float));
    return {reinterpret_cast<const float*>(vectors.Data()),
            3 * static_cast<std::size_t>(vectors.GetSize())};
}
template <typename Array>
std::span<float> writableFloatsOf(Array* array) {
    const std::size_t count = floatsOf(*array).size();
    return {reinterpret_cast<float*>(array->WritableData()), count};
}

}  // namespace

ZRFxResultValuesBlock::ZRFxResultValuesBlock(ZRFxBlockStore* pDatabase, int id)
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
    const bool isReserved = AreVectors() ? m_avResults.Reserve(numItems)
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
    return AreVectors() && AddWithID(value, id, &m_avResults);
}

bool ZRFxResultValuesBlock::AddTensor(const float (&tensor)[kTensorKind.Dimension()],
                                      std::int32_t id) {
    NVF_ASSERT(AreTensors());
    if (!AreTensors()) return false;
    SetRead(true);
    const std::int64_t numBefore = m_afResults.GetSize();
    for (const float component : tensor) {
        if (m_afResults.Add(component)) continue;
        m_afResults.SetSize(numBefore);
        return false;
    }
    if (!m_paiIDs || m_paiIDs->Add(id)) return true;
    m_afResults.SetSize(numBefore);
    return false;
}

void ZRFxResultValuesBlock::SetIDs(std::unique_ptr<ZRIntArray> paiIDs) {
    m_paiIDs = std::move(paiIDs);
    m_indices = ZRIDLookup();
}

std::int64_t ZRFxResultValuesBlock::GetNumItems() const {
    if (AreVectors()) return m_avResults.GetSize();
    const bool isKind = ZRFxValueKindOf(m_iNumDimensions) != nullptr;
    return isKind ? m_afResults.GetSize() / m_iNumDimensions : m_afResults.GetSize();
}

std::int64_t ZRFxResultValuesBlock::GetIndexOfID(std::int32_t iID) const {
    NVF_ASSERT(iID >= 0);
    if (!m_paiIDs) return iID >= 0 && iID < GetNumItems() ? iID : -1;
    m_indices.Update(*m_paiIDs);
    return m_indices.IndexOf(iID);
}

std::uint64_t ZRFxResultValuesBlock::GetDataSize() const {
    return m_afResults.SizeInBytes() + m_avResults.SizeInBytes() +
           (m_paiIDs ? m_paiIDs->SizeInBytes() : 0);
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
    const ZRFxValueKind* kind = ZRFxValueKindOf(m_iNumDimensions);
    if (!kind) return FailDimensions();
    const std::int64_t numOthers = AreVectors() ? m_afResults.GetSize() : m_avResults.GetSize();
    return CheckCount(file, "values of another dimension", numOthers, 0) &&
           (AreVectors() || CheckComponents(file, *kind)) &&
           (!m_paiIDs || CheckCount(file + "-IDs", "IDs", m_paiIDs->GetSize(), GetNumItems()));
}

bool ZRFxResultValuesBlock::DoWriteBlock(nvf::XmlElement root) {
    root.setAttributeInt("MapToBlockID", m_iMapToBlockID);
    root.setAttributeInt("NumDimensions", m_iNumDimensions);
    root.setAttributeBool("WithID", m_paiIDs != nullptr);
    return WriteItems(root);
}

void ZRFxResultValuesBlock::DoOutline(const nvf::XmlElement& root, ZRFxOutline* outline) const {
    *outline = ZRFxOutline::OfValues(
        {root.getAttributeInt("MapToBlockID", -1), root.getAttributeInt("NumDimensions", 0),
         GetFileNumItems(root, "File"), root.getAttributeBool("WithID", false)});
}

bool ZRFxResultValuesBlock::FindArray(const nvf::XmlElement& root, ZRFxArrayKind kind,
                                      int /*group*/, ZRFxArrayFile* file) const {
    ZRFxFileRecord record;
    const ZRFxValueKind* values = ZRFxValueKindOf(root.getAttributeInt("NumDimensions", 0));
    if (!values || !GetFileRecord(root, "File", &record)) return false;
    if (kind == ZRFxArrayKind::VALUES)
        *file = {record.filename, record.numItems, values->Dimension()};
    if (kind == ZRFxArrayKind::IDS) *file = {record.ids, record.numItems};
    return !file->name.IsBlank();
}

void ZRFxResultValuesBlock::DoUnloadData() {
    m_afResults.RemoveAll();
    m_avResults.RemoveAll();
    SetIDs(nullptr);
}

bool ZRFxResultValuesBlock::ReadValues(const ZRString& name, std::int64_t numItems) {
    if (!ZRFxValueKindOf(m_iNumDimensions)) return FailDimensions();
    return ReadData(name, numItems) || Log().fail("Error reading node data");
}

bool ZRFxResultValuesBlock::ReadData(const ZRString& name, std::int64_t numItems) {
    if (AreVectors()) return m_pDatabase->ReadDataVector(name, numItems, &m_avResults);
    if (AreTensors()) return m_pDatabase->ReadDataTensor(name, numItems, &m_afResults);
    return m_pDatabase->ReadDataFloat(name, numItems * m_iNumDimensions, &m_afResults);
}

bool ZRFxResultValuesBlock::CheckComponents(const ZRString& file, const ZRFxValueKind& kind) const {
    const std::int64_t expected = GetNumItems() * kind.Dimension();
    if (m_afResults.GetSize() == expected) return true;
    const std::string what = std::string(kind.name) + " components";
    return FailUnfit(file, what.c_str(), m_afResults.GetSize(), expected);
}

bool ZRFxResultValuesBlock::FailDimensions() const {
    return Log().fail("Illegal number of dimensions for result values");
}

bool ZRFxResultValuesBlock::WriteItems(nvf::XmlElement root) {
    ZRFxFileRecord file{GetFilebase(), GetNumItems(), ZRString()};
    if (!WriteValues(file.filename)) return false;
    if (m_paiIDs) {
        file.ids = file.filename + "-IDs";
        if (!m_pDatabase->WriteDataInt(file.ids, *m_paiIDs, 1)) return false;
    }
    return AddFileRecord(root, "File", file);
}

bool ZRFxResultValuesBlock::WriteValues(const ZRString& name) {
    const int digits =
        m_iSignificantDigits > 0 ? m_iSignificantDigits : m_pDatabase->GetSignificantDigits();
    if (digits > 0) return WriteRounded(name, digits);
    return AreVectors() ? WriteVectors(name, m_avResults) : WriteScalars(name, m_afResults);
}

// Rounds a copy: the values may be the caller's.
bool ZRFxResultValuesBlock::WriteRounded(const ZRString& name, int digits) {
    if (AreVectors()) {
        ZRVec3fArray vectors;
        if (!vectors.SetSize(m_avResults.GetSize())) return false;
        RoundToDigits(floatsOf(m_avResults), digits, writableFloatsOf(&vectors));
        return WriteVectors(name, vectors);
    }
    ZRFloatArray scalars;
    if (!scalars.SetSize(m_afResults.GetSize())) return false;
    RoundToDigits(floatsOf(m_afResults), digits, writableFloatsOf(&scalars));
    return WriteScalars(name, scalars);
}

bool ZRFxResultValuesBlock::WriteVectors(const ZRString& name, const ZRVec3fArray& vectors) {
    return m_pDatabase->WriteDataVector(name, vectors);
}

bool ZRFxResultValuesBlock::WriteScalars(const ZRString& name, const ZRFloatArray& scalars) {
    if (AreTensors()) return m_pDatabase->WriteDataTensor(name, scalars);
    return m_pDatabase->WriteDataFloat(name, scalars);
}

}  // namespace unstruct
