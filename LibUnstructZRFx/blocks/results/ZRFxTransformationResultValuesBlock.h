#pragma once

#include "NuoCore/Mat4d.h"
#include "blocks/ZRFxBlock.h"

namespace unstruct {

/// The matrix by which one block is moved in one state. Documents keep six decimals of it.
class ZRFxTransformationResultValuesBlock : public ZRFxBlock {
public:
    static constexpr ZRFxBlockType kType = BLOCK_TRANSFORMATION_RESULT_VALUES;

    ZRFxTransformationResultValuesBlock(ZRFxBlockStore* pDatabase, int id);

    void SetMatrix(const nuo::Mat4d& matrix);
    void SetMapToBlock(int id, int type);

    const nuo::Mat4d& GetMatrix() const { return m_matrix; }
    int GetMapToBlockID() const { return m_iMapToBlockID; }
    int GetMapToBlockType() const { return m_iMapToBlockType; }

protected:
    bool DoReadBlock(const nvf::XmlElement& root) override;
    bool DoWriteBlock(nvf::XmlElement root) override;
    void DoOutline(const nvf::XmlElement& root, ZRFxOutline* outline) const override;
    void DoUnloadData() override;

private:
    int m_iMapToBlockID = -1;
    int m_iMapToBlockType = kInvalidBlockType;
    nuo::Mat4d m_matrix;
};

}  // namespace unstruct
