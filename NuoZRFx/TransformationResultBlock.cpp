#include "NuoZRFx/TransformationResultBlock.h"

#include <string>

#include "Change_p.h"
#include "Convert_p.h"
#include "StateValues_p.h"
#include "blocks/results/ZRFxTransformationResultsBlock.h"

namespace nuo::zrfx {
namespace {

using unstruct::ZRFxTransformationResultsBlock;

}  // namespace

class TransformationResultBlockPrivate {
public:
    nvf::ref<ZRFxTransformationResultsBlock> m_block;
};

TransformationResultBlock::TransformationResultBlock(int blockId)
    : Block(blockId, TRANSFORMATION_RESULT) {
    guarded([&] {
        auto made = std::make_unique<TransformationResultBlockPrivate>();
        made->m_block = new ZRFxTransformationResultsBlock(nullptr, blockId);
        made->m_block->SetName("Transformation result " + std::to_string(blockId));
        m_private.take(std::move(made));
    });
}

TransformationResultBlock::TransformationResultBlock(ZRFxTransformationResultsBlock* block)
    : Block(block->GetID(), TRANSFORMATION_RESULT),
      m_private(std::make_unique<TransformationResultBlockPrivate>()) {
    m_private->m_block = block;
}

TransformationResultBlock::~TransformationResultBlock() = default;

bool TransformationResultBlock::checkValidity() const {
    if (stateCount() == 0) {
        return fail("No states defined on transformation result block (block id %1).", blockId());
    }
    if (resultId() == -1) {
        return fail("No result id defined for transformation result block (block id %1).",
                    blockId());
    }
    return Block::checkValidity();
}

unstruct::ZRFxBlock* TransformationResultBlock::internal_zrfxBlock() const {
    return guarded([&] { return m_private->m_block.p(); });
}

Str TransformationResultBlock::name() const {
    return guarded([&] { return ZRConvert::toStr(m_private->m_block->GetName()); });
}

void TransformationResultBlock::setName(const Str& name) {
    change(*this, [&] { m_private->m_block->SetName(ZRConvert::toZRString(name)); });
}

int TransformationResultBlock::resultId() const {
    return guarded(-1, [&] { return m_private->m_block->GetResultID(); });
}

void TransformationResultBlock::setResultId(int resultId) {
    change(*this, [&] { m_private->m_block->SetResultID(resultId); });
}

bool TransformationResultBlock::addTransformationResultValuesBlock(int blockId, int stateId) {
    return guarded([&] {
        return addValuesBlock("addTransformationResultValuesBlock", *m_private->m_block, blockId,
                              stateId);
    });
}

bool TransformationResultBlock::setTransformationResultValuesBlocks(
    const std::vector<int>& blockIds, int stateId) {
    return guarded([&] {
        return setValuesBlocks("setTransformationResultValuesBlocks", *m_private->m_block, blockIds,
                               stateId);
    });
}

std::size_t TransformationResultBlock::stateCount() const {
    return guarded([&] { return static_cast<std::size_t>(m_private->m_block->GetStateCount()); });
}

int TransformationResultBlock::stateId(std::size_t index) const {
    return guarded(-1, [&] { return stateIdAt(*m_private->m_block, index); });
}

int TransformationResultBlock::stateIndex(int stateId) const {
    return guarded(-1, [&] { return stateIndexOf(*m_private->m_block, stateId); });
}

std::size_t TransformationResultBlock::transformationResultValuesBlockCount(
    std::size_t stateIndex) const {
    return transformationResultValuesBlocks(stateIndex).size();
}

std::vector<int> TransformationResultBlock::transformationResultValuesBlocks(
    std::size_t stateIndex) const {
    return guarded([&] {
        return valuesBlocksAt("transformationResultValuesBlocks", *m_private->m_block, stateIndex);
    });
}

}  // namespace nuo::zrfx
