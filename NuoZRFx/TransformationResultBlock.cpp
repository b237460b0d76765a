#include "NuoZRFx/TransformationResultBlock.h"

#include <string>

#include "Convert_p.h"
#include "StateValues_p.h"
#include "ZROZRFxTransformationResultsBlock.h"

namespace nuo::zrfx {
namespace {

using unstruct::ZRFxTransformationResultsBlock;

}  // namespace

class TransformationResultBlockPrivate {
public:
    nvf::ref<ZRFxTransformationResultsBlock> m_block;
};

TransformationResultBlock::TransformationResultBlock(int blockId)
    : Block(blockId, TRANSFORMATION_RESULT),
      m_private(std::make_unique<TransformationResultBlockPrivate>()) {
    m_private->m_block = new ZRFxTransformationResultsBlock(nullptr, blockId);
    m_private->m_block->SetName("Transformation result " + std::to_string(blockId));
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
    return m_private->m_block.p();
}

Str TransformationResultBlock::name() const {
    return ZRConvert::toStr(m_private->m_block->GetName());
}

void TransformationResultBlock::setName(const Str& name) {
    m_private->m_block->SetName(ZRConvert::toZRString(name));
}

int TransformationResultBlock::resultId() const {
    return m_private->m_block->GetResultID();
}

void TransformationResultBlock::setResultId(int resultId) {
    m_private->m_block->SetResultID(resultId);
}

bool TransformationResultBlock::addTransformationResultValuesBlock(int blockId, int stateId) {
    return addValuesBlock(*m_private->m_block, blockId, stateId);
}

bool TransformationResultBlock::setTransformationResultValuesBlocks(
    const std::vector<int>& blockIds, int stateId) {
    return setValuesBlocks(*m_private->m_block, blockIds, stateId);
}

std::size_t TransformationResultBlock::stateCount() const {
    return static_cast<std::size_t>(m_private->m_block->GetStateCount());
}

int TransformationResultBlock::stateId(std::size_t index) const {
    return stateIdAt(*m_private->m_block, index);
}

int TransformationResultBlock::stateIndex(int stateId) const {
    return stateIndexOf(*m_private->m_block, stateId);
}

std::size_t TransformationResultBlock::transformationResultValuesBlockCount(
    std::size_t stateIndex) const {
    return transformationResultValuesBlocks(stateIndex).size();
}

std::vector<int> TransformationResultBlock::transformationResultValuesBlocks(
    std::size_t stateIndex) const {
    return valuesBlocksAt(*m_private->m_block, stateIndex);
}

}  // namespace nuo::zrfx
