#include "NuoCore/RefCountedObject.h"

namespace nuo {

RefCountedObject::~RefCountedObject() = default;

void RefCountedObject::release() const {
    if (m_referenceCount.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
}

}  // namespace nuo
