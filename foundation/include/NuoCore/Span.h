#pragma once

#include <cstddef>
#include <type_traits>
#include <utility>

namespace nuo {

/// A view of contiguous values that someone else owns: valid as long as they are, and copied as
/// pointer and count. Vectors, arrays and other containers with data() and size() convert to it;
/// from a pointer it is made by `of`.
///
///     nodes->setNodeData(coordinates, ids);                    // two vectors, not copied
///     nodes->setNodeData(nuo::Span<const float>::of(xyz, 30));
template <typename T>
class Span {
public:
    using value_type = std::remove_cv_t<T>;
    using size_type = std::size_t;
    using difference_type = std::ptrdiff_t;
    using reference = T&;
    using const_reference = const T&;
    using iterator = T*;
    using const_iterator = T*;

    Span() = default;

    template <std::size_t count>
    Span(T (&values)[count]) : m_data(values), m_size(count) {}

    template <typename Container,
              typename Item = std::remove_pointer_t<decltype(std::declval<Container&>().data())>,
              typename = decltype(std::declval<Container&>().size()),
              typename = std::enable_if_t<std::is_convertible_v<Item (*)[], T (*)[]> &&
                                          (std::is_const_v<T> || std::is_reference_v<Container>)>>
    Span(Container&& values) : m_data(values.data()), m_size(values.size()) {}

    /// `size` values from `data` on.
    static Span of(T* data, std::size_t size) {
        Span span;
        span.m_data = data;
        span.m_size = size;
        return span;
    }

    T* data() const { return m_data; }
    std::size_t size() const { return m_size; }
    bool empty() const { return m_size == 0; }
    T* begin() const { return m_data; }
    T* end() const { return m_data + m_size; }

    /// REQUIRES: index < size().
    T& operator[](std::size_t index) const { return m_data[index]; }

private:
    T* m_data = nullptr;
    std::size_t m_size = 0;
};

}  // namespace nuo
