#pragma once

#include <cstddef>
#include <vector>

#include "NuoCore/Export.h"
#include "NuoCore/PrivatePtr.h"
#include "NuoCore/Str.h"
#include "NuoZRFx/Block.h"

namespace unstruct {
class ZRFxTransformationResultsBlock;
}

namespace nuo::zrfx {

/// A rigid-body result: lists, for each state, the transformation result values blocks that move
/// parts.
class NUO_API TransformationResultBlock : public Block {
public:
    static constexpr BlockType kBlockType = TRANSFORMATION_RESULT;

    /// The name is "Transformation result" followed by the id, until another is set.
    explicit TransformationResultBlock(int blockId);
    ~TransformationResultBlock() override;

    bool checkValidity() const override;
    unstruct::ZRFxBlock* internal_zrfxBlock() const override;

    Str name() const;
    void setName(const Str& name);

    /// As ResultBlock::resultId.
    int resultId() const;
    void setResultId(int resultId);

    /// Appends a values block to those of a state, which is added if it is new. A negative id is
    /// an assertion and adds nothing.
    bool addTransformationResultValuesBlock(int blockId, int stateId);

    /// Replaces the values blocks of a state; the list must not be empty, and no id negative.
    bool setTransformationResultValuesBlocks(const std::vector<int>& blockIds, int stateId);

    std::size_t stateCount() const;

    /// -1 when there is no such state.
    int stateId(std::size_t index) const;
    int stateIndex(int stateId) const;

    /// The values blocks of a state; none when there is no such state.
    std::size_t transformationResultValuesBlockCount(std::size_t stateIndex) const;
    std::vector<int> transformationResultValuesBlocks(std::size_t stateIndex) const;

private:
    friend class DatabasePrivate;
    explicit TransformationResultBlock(unstruct::ZRFxTransformationResultsBlock* block);

    PrivatePtr<class TransformationResultBlockPrivate> m_private;
};

}  // namespace nuo::zrfx
