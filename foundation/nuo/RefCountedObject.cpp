#include "NuoCore/RefCountedObject.h"

#include <new>

namespace nuo {
namespace {

// Memory that `new` has taken for an object whose constructor has not begun: the arguments of the
// constructor may make further objects before it does. Kept in the memory itself.
struct Pending {
    Pending* outer;
    std::size_t size;
};

thread_local Pending* t_pending = nullptr;

void* addPending(void* memory, std::size_t size) {
    static_assert(sizeof(RefCountedObject) >= sizeof(Pending));
    t_pending = new (memory) Pending{t_pending, size};
    return memory;
}

bool contains(const Pending* pending, const void* object) {
    const char* begin = reinterpret_cast<const char*>(pending);
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

void* RefCountedObject::operator new(std::size_t size) {
    return addPending(::operator new(size), size);
}

void* RefCountedObject::operator new(std::size_t size, const std::nothrow_t& nothrow) noexcept {
    void* memory = ::operator new(size, nothrow);
    return memory ? addPending(memory, size) : nullptr;
}

// Also called where an argument of the constructor has thrown.
void RefCountedObject::operator delete(void* memory) noexcept {
    takePending(memory);
    ::operator delete(memory);
}

void RefCountedObject::operator delete(void* memory, const std::nothrow_t&) noexcept {
    operator delete(memory);
}

void RefCountedObject::release() const {
    const bool isLast = m_referenceCount.fetch_sub(1, std::memory_order_acq_rel) == 1;
    if (isLast && m_isOwned) delete this;
}

}  // namespace nuo
