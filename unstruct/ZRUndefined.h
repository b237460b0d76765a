#pragma once

#include <bit>
#include <cstdint>

namespace unstruct {

/// The value that stands for "no value" in results.
constexpr float kUndefinedValue = std::bit_cast<float>(std::uint32_t{0x7F60F14E});

/// Whether a result has no value: everything that is not below 2.99e38, NaN and infinity included.
constexpr bool IsUndefined(float value) {
    return !(value < 2.99e38f);
}

}  // namespace unstruct
