#pragma once

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <string>

#include "ZRByteOrder.h"

namespace unstruct {

/// Fills the fixed part of a header, field after field. Refers to the text of the header, which
/// must not grow meanwhile.
class ZRFxHeaderFields {
public:
    /// Gives the text the length of the fixed part, with room for what is to follow.
    ZRFxHeaderFields(std::string* pHeader, size_t nFixed, size_t nRest) {
        pHeader->reserve(nFixed + nRest);
        pHeader->resize(nFixed);
        m_pNext = reinterpret_cast<uint8_t*>(pHeader->data());
    }

    void Put16(uint64_t n) { Put(static_cast<uint16_t>(n)); }
    void Put32(uint64_t n) { Put(static_cast<uint32_t>(n)); }

private:
    template <typename Integer>
    void Put(Integer n) {
        StoreLittleEndian(m_pNext, n);
        m_pNext += sizeof(n);
    }

    uint8_t* m_pNext;
};

/// Date and time as headers have them, in local time and steps of two seconds; the first day of
/// 1980 for what is earlier.
uint32_t ZRFxDosTime(std::time_t nTime);

}  // namespace unstruct
