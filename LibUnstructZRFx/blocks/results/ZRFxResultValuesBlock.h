#pragma once

#include <cstdint>
#include <memory>
#include <utility>

#include "ZRArray.h"
#include "ZRIDLookup.h"
#include "blocks/ZRFxBlock.h"
#include "types/ZRFxValueKind.h"

namespace unstruct {

/// The values of one result in one state, on the items of one block, all of one kind.
class ZRFxResultValuesBlock : public ZRFxBlock {
public:
    static constexpr ZRFxBlockType kType = BLOCK_RESULT_VALUES;

    ZRFxResultValuesBlock(ZRFxBlockStore* pDatabase, int id);

    /// Replaces the values of any kind but vectors by a copy: the floats of all items.
    bool SetScalars(const float* pfResult, std::int64_t count);
    void SetScalars(ZRFloatArray scalars);

    /// Replaces the values by a copy. REQUIRES: three dimensions.
    bool SetVectors(const nuo::Vec3f* pVectorArray, std::int64_t count);
    void SetVectors(ZRVec3fArray vectors);

    /// Makes room for a number of items in all.
    bool Reserve(std::int64_t numItems);

    /// Appends an item, and its id when the values have ids.
    bool AddScalar(float value, std::int32_t id);
    bool AddVector(const nuo::Vec3f& value, std::int32_t id);
    bool AddTensor(const float (&tensor)[kTensorKind.Dimension()], std::int32_t id);

    /// Replaces the ids of the items that the values belong to; null means the items in their
    /// order.
    void SetIDs(std::unique_ptr<ZRIntArray> paiIDs);

    const ZRFloatArray& GetScalars() const { return m_afResults; }
    const ZRVec3fArray& GetVectors() const { return m_avResults; }
    const ZRIntArray* GetIDs() const { return m_paiIDs.get(); }
    std::int64_t GetNumItems() const;

    /// The position of the values of an item; -1 when it has none.
    std::int64_t GetIndexOfID(std::int32_t iID) const;

    int GetMapToBlockID() const { return m_iMapToBlockID; }
    void SetMapToBlockID(int id) { m_iMapToBlockID = id; }

    /// The number of components of an item, by which the kind of the values is known; 1 at first.
    int GetNumDimensions() const { return m_iNumDimensions; }
    void SetNumDimensions(int count) { m_iNumDimensions = count; }

    /// The significant digits of the values that are written, 1 to 7; 0, at first, stands for what
    /// the database says.
    int GetSignificantDigits() const { return m_iSignificantDigits; }
    void SetSignificantDigits(int digits) { m_iSignificantDigits = digits; }

    std::uint64_t GetDataSize() const override;

protected:
    bool DoReadBlock(const nvf::XmlElement& root) override;
    bool CheckContents() const override;
    bool DoWriteBlock(nvf::XmlElement root) override;
    void DoOutline(const nvf::XmlElement& root, ZRFxOutline* outline) const override;
    bool FindArray(const nvf::XmlElement& root, ZRFxArrayKind kind, int group,
                   ZRFxArrayFile* file) const override;
    void DoUnloadData() override;

private:
    bool AreVectors() const { return m_iNumDimensions == kVectorKind.Dimension(); }
    bool AreTensors() const { return m_iNumDimensions == kTensorKind.Dimension(); }
    template <typename Value>
    bool AddWithID(const Value& value, std::int32_t id, ZRArray<Value>* values);
    bool ReadValues(const ZRString& name, std::int64_t numItems);
    bool ReadData(const ZRString& name, std::int64_t numItems);
    bool CheckComponents(const ZRString& file, const ZRFxValueKind& kind) const;
    bool FailDimensions() const;
    bool WriteItems(nvf::XmlElement root);
    bool WriteValues(const ZRString& name);
    bool WriteRounded(const ZRString& name, int digits);
    bool WriteVectors(const ZRString& name, const ZRVec3fArray& vectors);
    bool WriteScalars(const ZRString& name, const ZRFloatArray& scalars);

    int m_iMapToBlockID = -1;
    int m_iNumDimensions = kScalarKind.Dimension();
    int m_iSignificantDigits = 0;
    ZRFloatArray m_afResults;
    ZRVec3fArray m_avResults;
    std::unique_ptr<ZRIntArray> m_paiIDs;
    mutable ZRIDLookup m_indices;  // Of the items that were there when one was last asked for.
};

}  // namespace unstruct
