#pragma once

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <type_traits>
#include <utility>

#include "NuoCore/Vec3f.h"
#include "nvf/Assert.h"

namespace unstruct {

/// A growing array of plain values, the form in which bulk data moves between blocks and archive.
/// It owns a heap buffer, possibly one that it adopted, or refers to values that another owner
/// keeps alive. New items are not set to zero. An operation that needs more memory than there is,
/// or than can be addressed, returns false and leaves the array as it was; making a copy throws
/// std::bad_alloc. Used by one thread at a time.
template <typename T>
class ZRArray {
    static_assert(std::is_trivially_copyable_v<T>);

public:
    ZRArray() = default;
    ZRArray(const ZRArray& other) {
        if (!Assign(other.Data(), other.GetSize())) throw std::bad_alloc();
    }
    ZRArray(ZRArray&& other) noexcept { Swap(other); }
    ~ZRArray() { Free(); }

    ZRArray& operator=(ZRArray other) noexcept {
        Swap(other);
        return *this;
    }

    /// Replaces the items by a copy.
    bool Assign(const T* items, std::int64_t count) {
        ZRArray copy;
        if (!copy.SetSize(count)) return false;
        if (count > 0) std::memcpy(copy.m_pData, items, ByteCount(count));
        Swap(copy);
        return true;
    }

    /// Takes over a buffer made by malloc, which holds at least `count` items.
    void Adopt(void* buffer, std::int64_t count) {
        Free();
        if (count == 0) std::free(std::exchange(buffer, nullptr));
        m_pData = static_cast<T*>(buffer);
        m_nSize = m_nAllocated = count;
    }

    /// Refers to items of another owner, who keeps them alive and unchanged. Growing the array
    /// makes a copy of them.
    void Refer(const T* items, std::int64_t count) {
        Free();
        m_pData = const_cast<T*>(items);
        m_nSize = count;
        m_nAllocated = 0;
    }

    bool Add(const T& item) {
        const T copy = item;  // may be an item of this array
        if (m_nSize >= m_nAllocated && !Reallocate(m_nSize + m_nSize / 2 + kFirstItems))
            return false;
        m_pData[m_nSize++] = copy;
        return true;
    }

    /// Makes room for `count` items in all, without changing the size.
    bool Reserve(std::int64_t count) {
        return count <= m_nAllocated || Reallocate(count > m_nSize ? count : m_nSize);
    }

    bool SetSize(std::int64_t count) {
        if (count < 0 || !Reserve(count)) return false;
        m_nSize = count;
        return true;
    }

    void RemoveAll() { ZRArray().Swap(*this); }

    std::int64_t GetSize() const { return m_nSize; }
    std::size_t SizeInBytes() const { return static_cast<std::size_t>(m_nSize) * sizeof(T); }
    std::int64_t GetNumItems() const { return m_nSize; }
    std::int64_t GetAllocatedSize() const { return m_nAllocated; }
    bool IsEmpty() const { return m_nSize == 0; }

    /// The items, contiguous; null when nothing was ever stored.
    const T* Data() const { return m_pData; }

    /// The items for changing, which a referring array copies first; null when that fails.
    T* WritableData() { return m_nAllocated >= m_nSize || Reallocate(m_nSize) ? m_pData : nullptr; }

    /// The item at an index; a zero item after an assertion when there is none.
    const T& operator[](std::int64_t nIndex) const {
        NVF_ASSERT(nIndex >= 0 && nIndex < m_nSize);
        static constexpr T kNoItem{};
        return nIndex >= 0 && nIndex < m_nSize ? m_pData[nIndex] : kNoItem;
    }

    const T* begin() const { return m_pData; }
    const T* end() const { return m_pData + m_nSize; }

    friend bool operator==(const ZRArray& a, const ZRArray& b) {
        return a.m_nSize == b.m_nSize &&
               (a.m_nSize == 0 || std::memcmp(a.m_pData, b.m_pData, ByteCount(a.m_nSize)) == 0);
    }

private:
    static constexpr std::int64_t kFirstItems = 16;

    static std::size_t ByteCount(std::int64_t count) {
        return static_cast<std::size_t>(count) * sizeof(T);
    }

    void Swap(ZRArray& other) noexcept {
        std::swap(m_pData, other.m_pData);
        std::swap(m_nSize, other.m_nSize);
        std::swap(m_nAllocated, other.m_nAllocated);
    }

    // Gives the array a buffer of its own for `count` items, with the items that it has.
    bool Reallocate(std::int64_t count) {
        constexpr auto kMost = std::numeric_limits<std::int64_t>::max() / std::int64_t{sizeof(T)};
        if (count > kMost) return false;
        T* own = m_nAllocated > 0 ? m_pData : nullptr;
        T* buffer = static_cast<T*>(std::realloc(own, ByteCount(count > 0 ? count : 1)));
        if (!buffer) return false;
        if (!own && m_nSize > 0) std::memcpy(buffer, m_pData, ByteCount(m_nSize));
        m_pData = buffer;
        m_nAllocated = count;
        return true;
    }

    void Free() {
        if (m_nAllocated > 0) std::free(m_pData);
    }

    T* m_pData = nullptr;
    std::int64_t m_nSize = 0;
    std::int64_t m_nAllocated = 0;  // 0 while the items are another owner's
};

using ZRIntArray = ZRArray<std::int32_t>;
using ZRFloatArray = ZRArray<float>;
using ZRUbyteArray = ZRArray<unsigned char>;
using ZRVec3fArray = ZRArray<nuo::Vec3f>;

}  // namespace unstruct
