#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace unstruct {

// Integers in the little-endian order of the container, on hosts of any order.
template <typename Integer>
Integer LoadLittleEndian(const uint8_t* pBytes) {
    Integer nValue = 0;
    for (size_t i = sizeof(Integer); i-- > 0;) {
        nValue = static_cast<Integer>((static_cast<uint64_t>(nValue) << 8) | pBytes[i]);
    }
    return nValue;
}

template <typename Integer>
void StoreLittleEndian(uint8_t* pBytes, Integer nValue) {
    for (size_t i = 0; i < sizeof(Integer); ++i) {
        pBytes[i] = static_cast<uint8_t>(static_cast<uint64_t>(nValue) >> (8 * i));
    }
}

template <typename Integer>
void AppendLittleEndian(std::string* pBytes, Integer nValue) {
    uint8_t aBytes[sizeof(Integer)];
    StoreLittleEndian(aBytes, nValue);
    pBytes->append(reinterpret_cast<const char*>(aBytes), sizeof(aBytes));
}

}  // namespace unstruct
