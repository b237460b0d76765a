#pragma once

#include "NuoCore/Color3f.h"
#include "ZRArray.h"
#include "blocks/ZRFxBlock.h"
#include "types/ZRFxValueKind.h"

namespace unstruct {

/// Scalars or vectors at free positions inside the elements of one block, such as arrows drawn at
/// given points.
class ZRFxPositionResultValuesBlock : public ZRFxBlock {
public:
    static constexpr ZRFxBlockType kType = BLOCK_POSITION_RESULT_VALUES;

    ZRFxPositionResultValuesBlock(ZRFxBlockStore* pDatabase, int id);

    /// That of scalars or of vectors; anything else is an assertion and is kept for WriteBlock to
    /// refuse.
    void SetDimension(int iDimension);
    int GetDimension() const { return m_iDimension; }

    int m_iMapToBlockID = -1;  ///< An element block.
    bool m_bGlobalPositions = false;
    bool m_bGlobalResults = false;
    nuo::Color3f m_vectorColor;
    float m_fScalingFactor = 1;
    ZRVec3fArray m_positions;
    ZRIntArray m_aiElementIndices;  ///< For each position the element that it lies in.
    ZRFloatArray m_afScalars;
    ZRVec3fArray m_vectors;
    ZRIntArray m_aiVectorTypes;  ///< For each vector one of ZRVectorType.

protected:
    bool DoReadBlock(const nvf::XmlElement& root) override;
    bool CheckContents() const override;
    bool DoWriteBlock(nvf::XmlElement root) override;
    void DoOutline(const nvf::XmlElement& root, ZRFxOutline* outline) const override;
    void DoUnloadData() override;

private:
    bool AreScalars() const { return m_iDimension == kScalarKind.Dimension(); }
    void ReadAttributes(const nvf::XmlElement& root);
    bool ReadPositions(const nvf::XmlElement& root);
    bool ReadResults(const nvf::XmlElement& root);
    bool ReadVectors(const nvf::XmlElement& root);
    bool CheckDimension() const;
    bool CheckResults() const;
    bool CheckNumber(const char* what, std::int64_t count) const;
    void WriteAttributes(nvf::XmlElement root);
    bool WritePositions(nvf::XmlElement root);
    bool WriteResults(nvf::XmlElement root);

    int m_iDimension = kVectorKind.Dimension();
};

}  // namespace unstruct
