#include "data/ZRFxRounding.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>

#include "ZRUndefined.h"
#include "nvf/Assert.h"

namespace unstruct {
namespace {

constexpr int kMantissaBits = 23;
constexpr std::uint32_t kSign = 0x80000000u;
constexpr std::uint32_t kLowestNormal = 0x00800000u;

// The bits of the mantissa that are kept, by digits: the fewest with 2^-(bits + 1) <= 0.5 *
// 10^-digits.
constexpr std::array kKeptBits{0, 4, 7, 10, 14, 17, 20};
static_assert(kKeptBits.size() == kMostRoundedDigits + 1);

// To the nearest, and halves to the even one, so that no bias comes in.
std::uint32_t roundedBits(std::uint32_t bits, std::uint32_t cleared) {
    const std::uint32_t half = cleared >> 1;
    const std::uint32_t isOdd = (bits & (cleared + 1)) != 0 ? 1 : 0;
    return (bits + half + isOdd) & ~cleared;
}

}  // namespace

void RoundToDigits(std::span<const float> values, int digits, std::span<float> rounded) {
    NVF_ASSERT(digits > 0 && rounded.size() == values.size());
    const int kept = digits > kMostRoundedDigits ? kMantissaBits : kKeptBits[digits];
    if (kept == kMantissaBits) {
        std::copy(values.begin(), values.end(), rounded.begin());
        return;
    }
    const std::uint32_t cleared = (std::uint32_t{1} << (kMantissaBits - kept)) - 1;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const auto bits = std::bit_cast<std::uint32_t>(values[i]);
        const std::uint32_t result = roundedBits(bits, cleared);
        const bool isKept = (bits & ~kSign) < kLowestNormal ||
                            IsUndefined(std::bit_cast<float>(result & ~kSign)) ||
                            IsUndefined(values[i]);
        rounded[i] = std::bit_cast<float>(isKept ? bits : result);
    }
}

}  // namespace unstruct
