#pragma once

#include "NuoCore/Export.h"
#include "NuoCore/Mat4d.h"
#include "NuoCore/PrivatePtr.h"
#include "NuoZRFx/Block.h"

namespace unstruct {
class ZRFxTransformationResultValuesBlock;
}

namespace nuo::zrfx {

/// The matrix that moves one element block in one state. Files keep six decimals of it.
class NUO_API TransformationResultValuesBlock : public Block {
public:
    static constexpr BlockType kBlockType = TRANSFORMATION_RESULT_VALUES;

    explicit TransformationResultValuesBlock(int blockId);
    ~TransformationResultValuesBlock() override;

    bool checkValidity() const override;
    unstruct::ZRFxBlock* internal_zrfxBlock() const override;

    /// The matrix that takes a point, as a column, from its place in the node block to its place in
    /// the state; the identity until it is set.
    Mat4d matrix() const;
    void setMatrix(const Mat4d& matrix);

    /// The block that is moved. Any type but ELEMENTS is an assertion.
    bool setMapToBlockId(int blockId, BlockType blockType);

    /// -1 until it is set. `blockType` may be null.
    int mapToBlockId(BlockType* blockType) const;

private:
    friend class DatabasePrivate;
    explicit TransformationResultValuesBlock(unstruct::ZRFxTransformationResultValuesBlock* block);

    PrivatePtr<class TransformationResultValuesBlockPrivate> m_private;
};

}  // namespace nuo::zrfx
