#include "types/ZRFxBlockType.h"

namespace unstruct {
namespace {

constexpr bool eachTypeIsItsIndex() {
    for (int i = 0; i < kNumBlockTypes; ++i) {
        if (kBlockTypes[i].type != i) return false;
    }
    return true;
}
static_assert(eachTypeIsItsIndex());

constexpr bool storedTypesHaveDifferentRanks() {
    int rank = 0;
    for (const int type : kStoredBlockTypes) {
        if (kBlockTypes[type].checkRank <= rank) return false;
        rank = kBlockTypes[type].checkRank;
    }
    return true;
}
static_assert(storedTypesHaveDifferentRanks());

}  // namespace

ZRString ZRFxBlockTypeName(int type) {
    return type >= 0 && type < kNumBlockTypes ? kBlockTypes[type].name : "INVALID_BLOCK";
}

int ZRFxBlockTypeFromName(const ZRString& name) {
    for (const ZRFxBlockTypeRecord& record : kBlockTypes) {
        if (name.Bytes() == record.name) return record.type;
    }
    return kInvalidBlockType;
}

}  // namespace unstruct
