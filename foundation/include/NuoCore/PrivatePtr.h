#pragma once

#include <memory>
#include <new>
#include <utility>

namespace nuo {

/// Owns the private part of a public object, or nothing if there was no memory to construct it.
/// Every operation of such an object fails: access throws std::bad_alloc, which none of them lets
/// escape.
template <typename T>
class PrivatePtr {
public:
    PrivatePtr() = default;
    explicit PrivatePtr(std::unique_ptr<T> object) : m_object(std::move(object)) {}

    void take(std::unique_ptr<T> object) { m_object = std::move(object); }

    bool isNull() const { return !m_object; }
    T* operator->() const { return &**this; }
    T& operator*() const {
        if (!m_object) throw std::bad_alloc();
        return *m_object;
    }

private:
    std::unique_ptr<T> m_object;
};

}  // namespace nuo
