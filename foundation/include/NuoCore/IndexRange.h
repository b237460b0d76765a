#pragma once

#include <cstddef>
#include <iterator>
#include <utility>

namespace nuo {

/// Items 0 to count - 1 of an owner, for range-for; `Get` gives the item of an index. Made by the
/// owner's operations. Valid as long as the owner is, and counted when it is made.
template <typename Get>
class IndexRange {
public:
    class Iterator {
    public:
        using iterator_category = std::input_iterator_tag;
        using value_type = decltype(std::declval<const Get&>()(std::size_t{}));
        using difference_type = std::ptrdiff_t;
        using pointer = void;
        using reference = value_type;

        Iterator(const Get* get, std::size_t index) : m_get(get), m_index(index) {}
        value_type operator*() const { return (*m_get)(m_index); }
        Iterator& operator++() {
            ++m_index;
            return *this;
        }
        Iterator operator++(int) { return {m_get, m_index++}; }
        bool operator==(const Iterator& other) const { return m_index == other.m_index; }
        bool operator!=(const Iterator& other) const { return m_index != other.m_index; }

    private:
        const Get* m_get;
        std::size_t m_index;
    };

    IndexRange(std::size_t count, Get get) : m_count(count), m_get(std::move(get)) {}

    std::size_t size() const { return m_count; }
    bool empty() const { return m_count == 0; }
    Iterator begin() const { return {&m_get, 0}; }
    Iterator end() const { return {&m_get, m_count}; }

private:
    std::size_t m_count;
    Get m_get;
};

}  // namespace nuo
