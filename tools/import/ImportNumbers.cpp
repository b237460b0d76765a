#include "import/ImportNumbers.h"

#include <charconv>
#include <limits>

namespace tools {
namespace {

template <typename T>
std::errc readNumber(std::string_view text, T* value) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), *value);
    return end == text.data() + text.size() ? error : std::errc::invalid_argument;
}

}  // namespace

bool readInteger(std::string_view text, int* value) {
    return readNumber(text, value) == std::errc();
}

bool readDouble(std::string_view text, double* value) {
    const std::errc error = readNumber(text, value);
    if (error != std::errc::result_out_of_range) return error == std::errc();
    const bool isSmall = text.find("e-") != text.npos || text.find("E-") != text.npos;
    *value = isSmall ? 0 : std::numeric_limits<double>::infinity();
    return true;
}

bool readFloat(std::string_view text, float* value) {
    if (readNumber(text, value) == std::errc()) return true;
    double wide = 0;
    if (!readDouble(text, &wide)) return false;
    *value = static_cast<float>(wide);
    return true;
}

}  // namespace tools
