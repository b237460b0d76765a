#pragma once

#include <cstddef>
#include <utility>

namespace nuo {

/// Holds one reference to a RefCountedObject, or none. Copying adds a reference, destruction
/// releases one.
///
///     nuo::PtrRef<nuo::zrfx::File> file = new nuo::zrfx::File;
template <typename T>
class PtrRef {
public:
    PtrRef() = default;
    PtrRef(std::nullptr_t) {}
    PtrRef(T* object) : m_object(object) {
        if (m_object) m_object->addRef();
    }
    PtrRef(const PtrRef& other) : PtrRef(other.m_object) {}
    PtrRef(PtrRef&& other) noexcept : m_object(std::exchange(other.m_object, nullptr)) {}
    template <typename U>
    PtrRef(const PtrRef<U>& other) : PtrRef(other.p()) {}
    ~PtrRef() {
        if (m_object) m_object->release();
    }

    PtrRef& operator=(PtrRef other) noexcept {
        std::swap(m_object, other.m_object);
        return *this;
    }

    T* p() const { return m_object; }
    T* operator->() const { return m_object; }
    T& operator*() const { return *m_object; }
    bool isNull() const { return !m_object; }
    bool notNull() const { return m_object; }
    explicit operator bool() const { return m_object; }

    friend bool operator==(const PtrRef& a, const PtrRef& b) { return a.m_object == b.m_object; }
    friend bool operator!=(const PtrRef& a, const PtrRef& b) { return a.m_object != b.m_object; }

private:
    T* m_object = nullptr;
};

}  // namespace nuo
