#pragma once

#include <atomic>

#include "NuoCore/Export.h"

namespace nuo {

/// Base of the objects that are shared by reference: it counts its references and deletes itself
/// when the last one is released. Create such objects with `new` and hold them in a PtrRef. The
/// count may change in any thread; the object's own state has the thread rule of its class.
class NUO_API RefCountedObject {
public:
    RefCountedObject() = default;
    RefCountedObject(const RefCountedObject&) = delete;
    RefCountedObject& operator=(const RefCountedObject&) = delete;
    virtual ~RefCountedObject();

    void addRef() const { m_referenceCount.fetch_add(1, std::memory_order_relaxed); }

    /// Gives one reference back; the object is gone when it was the last.
    void release() const;

private:
    mutable std::atomic<int> m_referenceCount{0};
};

}  // namespace nuo
