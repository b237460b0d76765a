#include "NuoZRFx/Block.h"

#include "Log_p.h"

namespace nuo::zrfx {

Block::Block(int blockId, BlockType blockType) : m_blockId(blockId), m_blockType(blockType) {
    if (blockId < 0) fail("Negative block id %1 supplied.", blockId);
}

bool Block::checkValidity() const {
    return m_blockId >= 0 || fail("Negative block id %1 supplied.", m_blockId);
}

unstruct::ZRFxBlock* Block::internal_zrfxBlock() const {
    fail("Block::zrfxBlock() not implemented in derived class");
    return nullptr;
}

}  // namespace nuo::zrfx
