#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

namespace unstruct {

/// Files hold little-endian values; this is the only place that knows what the host has.
constexpr bool kHostIsLittleEndian = std::endian::native == std::endian::little;

/// Reverses the bytes of every 4-byte element, in place.
inline void SwapBytesOf4(void* data, std::size_t numBytes) {
    auto* bytes = static_cast<unsigned char*>(data);
    for (std::size_t i = 0; i + 4 <= numBytes; i += 4) {
        std::swap(bytes[i], bytes[i + 3]);
        std::swap(bytes[i + 1], bytes[i + 2]);
    }
}

/// Integers in the little-endian order of the container, on hosts of any order.
template <typename Integer>
Integer LoadLittleEndian(const std::uint8_t* pBytes) {
    Integer nValue = 0;
    for (std::size_t i = sizeof(Integer); i-- > 0;) {
        nValue = static_cast<Integer>((static_cast<std::uint64_t>(nValue) << 8) | pBytes[i]);
    }
    return nValue;
}

template <typename Integer>
void StoreLittleEndian(std::uint8_t* pBytes, Integer nValue) {
    for (std::size_t i = 0; i < sizeof(Integer); ++i) {
        pBytes[i] = static_cast<std::uint8_t>(static_cast<std::uint64_t>(nValue) >> (8 * i));
    }
}

template <typename Integer>
void AppendLittleEndian(std::string* pBytes, Integer nValue) {
    std::uint8_t aBytes[sizeof(Integer)];
    StoreLittleEndian(aBytes, nValue);
    pBytes->append(reinterpret_cast<const char*>(aBytes), sizeof(aBytes));
}

}  // namespace unstruct
