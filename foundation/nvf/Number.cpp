#include "nvf/Number.h"

#include <algorithm>
#include <charconv>
#include <climits>
#include <cstddef>
#include <limits>
#include <system_error>
#include <type_traits>

namespace nvf {
namespace {

constexpr int kMostDigits = 1100;  // more than any double has

std::chars_format charsFormat(char format) {
    if (format == 'e' || format == 'E') return std::chars_format::scientific;
    if (format == 'f' || format == 'F') return std::chars_format::fixed;
    return std::chars_format::general;
}

bool isBlank(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
    return text;
}

// The largest double rounded to 15 digits, which is how it is written, is beyond the type.
constexpr std::string_view kLargestRounded = "179769313486232";
constexpr std::ptrdiff_t kLargestExponent = 308;

// A well-formed number other than zero: its digits from the first that is not zero to the last one,
// and the power of ten of the first.
struct Decimal {
    std::string digits;
    std::ptrdiff_t exponent;
};

Decimal decimalOf(std::string_view text) {
    const std::size_t e = text.find_first_of("eE");
    int exponent = 0;
    if (e != std::string_view::npos && !parseNumber(text.substr(e + 1), exponent)) {
        exponent = text[e + 1] == '-' ? INT_MIN : INT_MAX;
    }
    const std::string_view mantissa = text.substr(0, e);
    const std::size_t first = mantissa.find_first_of("123456789");
    const std::size_t point = std::min(mantissa.find('.'), mantissa.size());
    std::string digits(mantissa.substr(first, mantissa.find_last_of("123456789") + 1 - first));
    std::erase(digits, '.');
    const auto places = static_cast<std::ptrdiff_t>(point) - static_cast<std::ptrdiff_t>(first);
    return {digits, exponent + places - (places > 0 ? 1 : 0)};
}

// The number is well formed but beyond the type; false when it is too large.
template <typename T>
bool takeNearest(std::string_view text, T& value) {
    const Decimal number = decimalOf(text);
    const bool isSmall = number.exponent < 0;
    const bool isLargest = std::is_same_v<T, double> && number.exponent == kLargestExponent &&
                           number.digits.compare(kLargestRounded) <= 0;
    if (!isSmall && !isLargest) return false;
    const T magnitude = isSmall ? T(0) : std::numeric_limits<T>::max();
    value = text.front() == '-' ? -magnitude : magnitude;
    return true;
}

}  // namespace

std::string textOfNumber(double value, char format, int precision) {
    char buffer[2 * kMostDigits];
    const int digits = precision < 0 ? 6 : std::min(precision, kMostDigits);
    const auto end =
        std::to_chars(buffer, buffer + sizeof(buffer), value, charsFormat(format), digits).ptr;
    if (format == 'G' || format == 'E' || format == 'F') {
        std::transform(buffer, end, buffer, [](char c) {
            return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
        });
    }
    return std::string(buffer, end);
}

template <typename T>
bool parseNumber(std::string_view text, T& value) {
    text = trimmed(text);
    if (text.size() > 1 && text.front() == '+' && text[1] != '-') text.remove_prefix(1);
    T parsed{};
    const auto result = std::from_chars(text.data(), text.data() + text.size(), parsed);
    if (result.ptr != text.data() + text.size() || text.empty()) return false;
    if (result.ec == std::errc::result_out_of_range) {
        if constexpr (std::is_floating_point_v<T>) return takeNearest(text, value);
    }
    if (result.ec != std::errc()) return false;
    value = parsed;
    return true;
}

template bool parseNumber<int>(std::string_view, int&);
template bool parseNumber<unsigned int>(std::string_view, unsigned int&);
template bool parseNumber<float>(std::string_view, float&);
template bool parseNumber<double>(std::string_view, double&);

}  // namespace nvf
