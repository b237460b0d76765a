#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "container/ZRFxCodec.h"

namespace tools {

/// Floats as whole numbers from 0 to kHighest, which stand for the lowest and the highest of them;
/// kUndefined for those without a value.
struct ScaledValues {
    static constexpr std::uint16_t kHighest = 65534;
    static constexpr std::uint16_t kUndefined = 65535;

    float min = 0;
    float max = 0;
    std::vector<std::uint16_t> values;
};

/// Scales every `step`th of the values, from the `first` on.
ScaledValues scaled(std::span<const float> values, std::size_t first, std::size_t step);

/// Packs numbers for the page: the difference from the number before, the lowest bytes of all, then
/// the next, ..., deflated, as base64.
class Packer {
public:
    std::string pack(std::span<const std::uint8_t> numbers);
    std::string pack(std::span<const std::uint16_t> numbers);
    std::string pack(std::span<const std::uint32_t> numbers);

private:
    std::string deflated(std::span<const std::uint8_t> bytes);

    unstruct::ZRFxCodec m_codec;
};

}  // namespace tools
