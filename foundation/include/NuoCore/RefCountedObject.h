#pragma once

#include <atomic>
#include <cstddef>
#include <new>

#include "NuoCore/Export.h"

namespace nuo {

/// Base of the objects that are shared by reference: it counts its references and deletes itself
/// when the last one is released. Create such objects with `new` and hold them in a PtrRef. One
/// that lives on the stack, or in another object, is never deleted by its references: losing the
/// last one leaves it where it is. The count may change in any thread; the object's own state has
/// the thread rule of its class.
class NUO_API RefCountedObject {
public:
    RefCountedObject();
    RefCountedObject(const RefCountedObject&) = delete;
    RefCountedObject& operator=(const RefCountedObject&) = delete;
    virtual ~RefCountedObject();

    static void* operator new(std::size_t size) {
        return noteAllocation(::operator new(kNoteSize + size), size);
    }
    static void* operator new(std::size_t size, const std::nothrow_t& nothrow) noexcept {
        return noteAllocation(::operator new(kNoteSize + size, nothrow), size);
    }
    static void* operator new(std::size_t, void* place) noexcept { return place; }
    static void operator delete(void* memory) noexcept;
    static void operator delete(void* memory, const std::nothrow_t&) noexcept;
    static void operator delete(void*, void*) noexcept {}

    void addRef() const { m_referenceCount.fetch_add(1, std::memory_order_relaxed); }

    /// Gives one reference back; the object is gone when it was the last, if `new` made it.
    void release() const;

private:
    // In front of each object that `new` makes.
    static constexpr std::size_t kNoteSize = alignof(std::max_align_t);
    static void* noteAllocation(void* block, std::size_t size) noexcept;

    mutable std::atomic<int> m_referenceCount{0};
    const bool m_isOwned;  // By its references.
};

}  // namespace nuo
