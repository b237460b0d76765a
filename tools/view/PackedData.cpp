#include "view/PackedData.h"

#include <algorithm>
#include <cmath>
#include <new>

#include "ZRUndefined.h"

namespace tools {
namespace {

using unstruct::IsUndefined;

std::string base64(std::span<const std::uint8_t> bytes) {
    constexpr const char* kDigits =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const std::size_t count = std::min<std::size_t>(3, bytes.size() - i);
        std::uint32_t group = 0;
        for (std::size_t k = 0; k < 3; ++k) group = group << 8 | (k < count ? bytes[i + k] : 0u);
        for (std::size_t k = 0; k < 4; ++k) {
            text += k <= count ? kDigits[group >> (18 - 6 * k) & 63] : '=';
        }
    }
    return text;
}

template <typename Number>
std::vector<std::uint8_t> bytePlanes(std::span<const Number> numbers) {
    std::vector<std::uint8_t> planes(numbers.size() * sizeof(Number));
    Number before = 0;
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        const auto difference = static_cast<Number>(numbers[i] - before);
        before = numbers[i];
        for (std::size_t b = 0; b < sizeof(Number); ++b) {
            planes[b * numbers.size() + i] = static_cast<std::uint8_t>(difference >> (8 * b));
        }
    }
    return planes;
}

}  // namespace

ScaledValues scaled(std::span<const float> values, std::size_t first, std::size_t step) {
    ScaledValues result;
    bool isFirst = true;
    for (std::size_t i = first; i < values.size(); i += step) {
        if (IsUndefined(values[i]) || !std::isfinite(values[i])) continue;
        result.min = isFirst ? values[i] : std::min(result.min, values[i]);
        result.max = isFirst ? values[i] : std::max(result.max, values[i]);
        isFirst = false;
    }
    const double extent = double{result.max} - double{result.min};
    const double factor = extent > 0 ? ScaledValues::kHighest / extent : 0;
    result.values.reserve(values.size() / step);
    for (std::size_t i = first; i < values.size(); i += step) {
        const bool isThere = !IsUndefined(values[i]) && std::isfinite(values[i]);
        const double place = isThere ? (double{values[i]} - double{result.min}) * factor : 0;
        result.values.push_back(isThere ? static_cast<std::uint16_t>(std::lround(place))
                                        : ScaledValues::kUndefined);
    }
    return result;
}

std::string Packer::pack(std::span<const std::uint8_t> numbers) {
    return deflated(bytePlanes(numbers));
}

std::string Packer::pack(std::span<const std::uint16_t> numbers) {
    return deflated(bytePlanes(numbers));
}

std::string Packer::pack(std::span<const std::uint32_t> numbers) {
    return deflated(bytePlanes(numbers));
}

std::string Packer::deflated(std::span<const std::uint8_t> bytes) {
    std::vector<std::uint8_t> packed(unstruct::ZRFxCodec::PieceBound(bytes.size()));
    std::size_t size = 0;
    if (!m_codec.Deflate(unstruct::ZRFxCodec::kDefaultLevel, bytes.data(), bytes.size(),
                         packed.data(), packed.size(), &size)) {
        throw std::bad_alloc();
    }
    return base64({packed.data(), size});
}

}  // namespace tools
