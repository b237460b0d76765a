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

// The number is well formed but beyond the type: too small when its first digit that counts, once
// moved by the exponent, stands behind the decimal point.
template <typename T>
T nearestOfType(std::string_view text) {
    const std::size_t e = text.find_first_of("eE");
    const std::string_view digits = text.substr(0, e);
    int exponent = 0;
    if (e != std::string_view::npos && !parseNumber(text.substr(e + 1), exponent)) {
        exponent = text[e + 1] == '-' ? INT_MIN : INT_MAX;
    }
    const auto point = static_cast<std::ptrdiff_t>(std::min(digits.find('.'), digits.size()));
    const auto first = static_cast<std::ptrdiff_t>(digits.find_first_of("123456789"));
    const T magnitude = point - first + exponent < 0 ? T(0) : std::numeric_limits<T>::max();
    return text.front() == '-' ? -magnitude : magnitude;
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
        if constexpr (std::is_floating_point_v<T>) {
            value = nearestOfType<T>(text);
            return true;
        }
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
