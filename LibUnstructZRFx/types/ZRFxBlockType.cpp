#include "types/ZRFxBlockType.h"

namespace unstruct {

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
