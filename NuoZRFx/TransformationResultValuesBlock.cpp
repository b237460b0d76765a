#include "NuoZRFx/TransformationResultValuesBlock.h"

#include "Convert_p.h"
#include "Log_p.h"
#include "blocks/results/ZRFxTransformationResultValuesBlock.h"
#include "nvf/Assert.h"

namespace nuo::zrfx {
namespace {

using unstruct::ZRFxTransformationResultValuesBlock;

}  // namespace

class TransformationResultValuesBlockPrivate {
public:
    nvf::ref<ZRFxTransformationResultValuesBlock> m_block;
};

TransformationResultValuesBlock::TransformationResultValuesBlock(int blockId)
    : Block(blockId, TRANSFORMATION_RESULT_VALUES) {
    guarded([&] {
        auto made = std::make_unique<TransformationResultValuesBlockPrivate>();
        made->m_block = new ZRFxTransformationResultValuesBlock(nullptr, blockId);
        m_private.take(std::move(made));
    });
}

TransformationResultValuesBlock::TransformationResultValuesBlock(
    ZRFxTransformationResultValuesBlock* block)
    : Block(block->GetID(), TRANSFORMATION_RESULT_VALUES),
      m_private(std::make_unique<TransformationResultValuesBlockPrivate>()) {
    m_private->m_block = block;
}

TransformationResultValuesBlock::~TransformationResultValuesBlock() = default;

bool TransformationResultValuesBlock::checkValidity() const {
    return guarded([&] {
        if (mapToBlockId(nullptr) < 0) {
            return fail(
                "Target block id for mapping not set on transformation result values block (block "
                "id "
                "%1).",
                blockId());
        }
        const int type = m_private->m_block->GetMapToBlockType();
        if (type != unstruct::BLOCK_ELEMENTS && type != unstruct::BLOCK_NODES) {
            return fail(
                "Invalid target block type set on transformation result values block (block id "
                "%1), "
                "must be _ELEMENTS or NODES.",
                blockId());
        }
        return Block::checkValidity();
    });
}

unstruct::ZRFxBlock* TransformationResultValuesBlock::internal_zrfxBlock() const {
    return guarded([&] { return m_private->m_block.p(); });
}

Mat4d TransformationResultValuesBlock::matrix() const {
    return guarded([&] { return m_private->m_block->GetMatrix(); });
}

void TransformationResultValuesBlock::setMatrix(const Mat4d& matrix) {
    guarded([&] { m_private->m_block->SetMatrix(matrix); });
}

bool TransformationResultValuesBlock::setMapToBlockId(int blockId, BlockType blockType) {
    return guarded([&] {
        if (!nvf::requireThat("(blockType == Block::ELEMENTS)", blockType == ELEMENTS,
                              "setMapToBlockId: ELEMENTS are moved, not %1",
                              blockTypeName(blockType))) {
            return false;
        }
        m_private->m_block->SetMapToBlock(blockId, ZRConvert::fromBlockType(blockType));
        return true;
    });
}

int TransformationResultValuesBlock::mapToBlockId(BlockType* blockType) const {
    return guarded(-1, [&] {
        if (blockType) *blockType = ZRConvert::toBlockType(m_private->m_block->GetMapToBlockType());
        return m_private->m_block->GetMapToBlockID();
    });
}

}  // namespace nuo::zrfx
