#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
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

/// Writes and reads one unsigned 32-bit number in the order of the file.
inline void StoreUint32(std::uint32_t value, unsigned char* bytes) {
    for (int i = 0; i < 4; ++i) bytes[i] = static_cast<unsigned char>(value >> (8 * i));
}

inline std::uint32_t LoadUint32(const unsigned char* bytes) {
    std::uint32_t value = 0;
    for (int i = 0; i < 4; ++i) value |= static_cast<std::uint32_t>(bytes[i]) << (8 * i);
    return value;
}

}  // namespace unstruct
