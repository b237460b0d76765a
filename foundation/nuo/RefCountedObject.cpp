#include "NuoCore/RefCountedObject.h"

#include <cstddef>
#include <new>

namespace nuo {
namespace {

// Memory that `new` has taken for an object whose constructor has not begun, noted in front of it:
// the arguments of the constructor may make further objects before it does.
struct alignas(std::max_align_t) Pending {
    Pending* outer;
    std::size_t size;

    void* memory() { return this + 1; }
};

thread_local Pending* t_pending = nullptr;

bool contains(Pending* pending, const void* object) {
    const char* begin = static_cast<const char*>(pending->memory());
    const char* at = static_cast<const char*>(object);
    return at >= begin && at < begin + pending->size;
}

// Whether the memory of an object was taken by `new`; it is no longer pending then.
bool takePending(const void* object) {
    for (Pending** link = &t_pending; *link; link = &(*link)->outer) {
        if (!contains(*link, object)) continue;
        *link = (*link)->outer;
        return true;
    }
    return false;
}

}  // namespace

RefCountedObject::RefCountedObject() : m_isOwned(takePending(this)) {}

RefCountedObject::~RefCountedObject() = default;

void* RefCountedObject::noteAllocation(void* block, std::size_t size) noexcept {
    static_assert(sizeof(Pending) == kNoteSize);
    if (!block) return nullptr;
    t_pending = new (block) Pending{t_pending, size};
    return t_pending->memory();
}

// Also called where an argument of the constructor has thrown.
void RefCountedObject::operator delete(void* memory) noexcept {
    if (!memory) return;
    takePending(memory);
    ::operator delete(static_cast<Pending*>(memory) - 1);
}

void RefCountedObject::operator delete(void* memory, const std::nothrow_t&) noexcept {
    operator delete(memory);
}

void RefCountedObject::release() const {
    const bool isLast = m_referenceCount.fetch_sub(1, std::memory_order_acq_rel) == 1;
    if (isLast && m_isOwned) delete this;
}

}  // namespace nuo
