#include "OptionChecks.h"

#include <charconv>
#include <cmath>

namespace tools {
namespace {

template <typename Number>
bool parse(const std::string& text, Number* number) {
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, *number);
    return error == std::errc() && stop == end;
}

}  // namespace

std::string nonNegativeNumber(const std::string& text) {
    double number = 0;
    const bool isGood = parse(text, &number) && std::isfinite(number) && number >= 0;
    return isGood ? "" : "'" + text + "' is no number of 0 or more";
}

std::function<std::string(const std::string&)> wholeNumber(int least, int most) {
    return [least, most](const std::string& text) -> std::string {
        int number = 0;
        if (parse(text, &number) && number >= least && number <= most) return "";
        const std::string range =
            most == INT_MAX ? "of " + std::to_string(least) + " or more"
                            : "from " + std::to_string(least) + " to " + std::to_string(most);
        return "'" + text + "' is no whole number " + range;
    };
}

}  // namespace tools
