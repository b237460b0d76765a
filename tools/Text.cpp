#include "Text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>

#include "nvf/String.h"

namespace tools {
namespace {

template <typename Number>
std::string shortest(Number value) {
    char digits[40];
    return {digits, std::to_chars(digits, digits + sizeof(digits), value).ptr};
}

}  // namespace

std::string numberText(float value) {
    return shortest(value);
}

std::string numberText(double value) {
    return shortest(value);
}

Json jsonNumber(float value) {
    if (!std::isfinite(value)) return nullptr;
    const std::string text = numberText(value);
    double sameDigits = 0;
    std::from_chars(text.data(), text.data() + text.size(), sameDigits);
    return sameDigits;
}

std::string printable(std::string_view text) {
    std::string result = nvf::String::fromUtf8(text).toUtf8();
    std::ranges::replace_if(
        result, [](unsigned char c) { return c < ' ' || c == 0x7F; }, '?');
    return result;
}

std::string withoutFileName(std::string message, const std::string& file) {
    for (const std::string& name :
         {" in '" + file + "'", "'" + file + "': ", "'" + file + "', ", " '" + file + "'"}) {
        const std::size_t at = message.find(name);
        if (at != std::string::npos) message.erase(at, name.size());
    }
    while (message.ends_with('.')) message.pop_back();
    return message;
}

std::string counted(std::uint64_t count, std::string_view singular) {
    return std::to_string(count) + " " + std::string(singular) + (count == 1 ? "" : "s");
}

std::string numbered(std::string_view what, std::int64_t number) {
    return std::string(what) + " " + std::to_string(number);
}

std::string byteText(std::uint64_t bytes) {
    constexpr std::array kUnits{"B", "kB", "MB", "GB", "TB"};
    auto amount = static_cast<double>(bytes);
    std::size_t unit = 0;
    for (; amount >= 1000 && unit + 1 < kUnits.size(); ++unit) amount /= 1000;
    char text[32];
    std::snprintf(text, sizeof(text), unit > 0 && amount < 100 ? "%.1f %s" : "%.0f %s", amount,
                  kUnits[unit]);
    return text;
}

}  // namespace tools
