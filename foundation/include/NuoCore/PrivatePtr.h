#pragma once

#include <memory>
#include <new>
#include <utility>

namespace nuo {

/// Owns what an object of the public interface holds; nothing where there was no memory to
/// construct it. The object's operations then fail, by the std::bad_alloc that they get here and
/// that none of them lets out.
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
