#include <array>

#include "ZROZRFxBlock.h"
#include "ZROZRFxNodeBlock.h"
#include "nvf/Assert.h"

namespace unstruct {
namespace {

using CreateBlock = nvf::ref<ZRFxBlock> (*)(ZRFxDatabase* pDatabase, int id);

template <typename BlockClass>
nvf::ref<ZRFxBlock> create(ZRFxDatabase* pDatabase, int id) {
    return new BlockClass(pDatabase, id);
}

struct BlockClassOfType {
    int type;
    CreateBlock create;
};

// The class that stores each type.
constexpr std::array kClasses{
    BlockClassOfType{BLOCK_NODES, create<ZRFxNodeBlock>},
};

CreateBlock classOf(int type) {
    for (const BlockClassOfType& entry : kClasses) {
        if (entry.type == type) return entry.create;
    }
    return nullptr;
}

}  // namespace

nvf::ref<ZRFxBlock> ZRFxBlock::Create(int type, ZRFxDatabase* pDatabase, int id) {
    const CreateBlock createBlock = classOf(type);
    if (createBlock) return createBlock(pDatabase, id);
    NVF_FAIL("Block type not implemented");
    return nullptr;
}

bool ZRFxBlock::IsStored(int type) {
    return classOf(type) != nullptr;
}

}  // namespace unstruct
