#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <utility>

#include "container/ZRFxSystem.h"

namespace unstruct {

/// The bytes of one entry in a malloc'ed buffer that is never zero-filled. Owns the buffer until an
/// array adopts it with `Release`. Invariant: the buffer is non-null exactly when the length is
/// above 0.
class ZRFxZipRawData {
public:
    /// The largest entry: 4 GiB less two bytes.
    static constexpr uint64_t kMaxLength = 0xFFFFFFFEu;

    ZRFxZipRawData() = default;
    ~ZRFxZipRawData() { Clear(); }
    ZRFxZipRawData(ZRFxZipRawData&& other) noexcept { Swap(other); }
    ZRFxZipRawData& operator=(ZRFxZipRawData&& other) noexcept {
        ZRFxZipRawData(std::move(other)).Swap(*this);
        return *this;
    }

    /// Replaces the contents by nLength bytes of no particular value; false when there is no memory
    /// or the length is above kMaxLength, with the data then empty.
    bool Allocate(uint64_t nLength) {
        Clear();
        if (nLength == 0) return true;
        if (nLength > kMaxLength) return false;
        m_pBuffer =
            static_cast<uint8_t*>(ZRFxSystem::Current().Allocate(static_cast<size_t>(nLength)));
        if (!m_pBuffer) return false;
        m_nLength = static_cast<uint32_t>(nLength);
        return true;
    }

    /// Keeps the first nLength bytes and gives the memory of the others back.
    /// REQUIRES: 0 < nLength <= Length().
    void Shrink(uint32_t nLength) {
        void* pShrunk = ZRFxSystem::Current().Reallocate(m_pBuffer, nLength);
        if (pShrunk) m_pBuffer = static_cast<uint8_t*>(pShrunk);
        m_nLength = nLength;
    }

    /// Takes over a malloc'ed buffer. REQUIRES: pBuffer is non-null exactly when nLength > 0.
    void Adopt(uint8_t* pBuffer, uint32_t nLength) {
        Clear();
        m_pBuffer = pBuffer;
        m_nLength = nLength;
    }

    /// Gives the buffer to the caller, who frees it with free(); the data is empty afterwards.
    uint8_t* Release() {
        m_nLength = 0;
        return std::exchange(m_pBuffer, nullptr);
    }

    void Clear() { std::free(Release()); }

    uint8_t* Buffer() { return m_pBuffer; }
    const uint8_t* Buffer() const { return m_pBuffer; }
    uint32_t Length() const { return m_nLength; }

private:
    void Swap(ZRFxZipRawData& other) noexcept {
        std::swap(m_pBuffer, other.m_pBuffer);
        std::swap(m_nLength, other.m_nLength);
    }

    uint8_t* m_pBuffer = nullptr;
    uint32_t m_nLength = 0;
};

}  // namespace unstruct
