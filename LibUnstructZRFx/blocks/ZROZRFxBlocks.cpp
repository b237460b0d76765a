#include "blocks/ZROZRFxBlocks.h"

namespace unstruct {
namespace {

using CreateBlock = nvf::ref<ZRFxBlock> (*)(ZRFxBlockStore* pDatabase, int id);

template <typename BlockClass>
nvf::ref<ZRFxBlock> create(ZRFxBlockStore* pDatabase, int id) {
    return new BlockClass(pDatabase, id);
}

template <typename... BlockClass>
constexpr auto creatorsOf(ZRFxBlockClassList<BlockClass...>) {
    std::array<CreateBlock, kNumBlockTypes> creators{};
    ((creators[BlockClass::kType] = create<BlockClass>), ...);
    return creators;
}

CreateBlock creatorOf(int type) {
    static constexpr auto kCreators = creatorsOf(ZRFxBlockClasses());
    return type >= 0 && type < kNumBlockTypes ? kCreators[type] : nullptr;
}

}  // namespace

nvf::ref<ZRFxBlock> ZRFxBlock::Create(int type, ZRFxBlockStore* pDatabase, int id) {
    if (const CreateBlock createBlock = creatorOf(type)) return createBlock(pDatabase, id);
    NVF_FAIL("Block type not implemented");
    return nullptr;
}

bool ZRFxBlock::IsStored(int type) {
    return creatorOf(type) != nullptr;
}

}  // namespace unstruct
