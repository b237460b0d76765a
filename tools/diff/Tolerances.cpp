#include "diff/Tolerances.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "OptionChecks.h"
#include "ZRUndefined.h"

namespace tools {
namespace {

// Names may hold any character.
std::size_t endOfName(const std::string& text) {
    const std::size_t at = text.rfind('=');
    return at == std::string::npos ? 0 : at;
}

std::string numberOf(const std::string& text) {
    const std::size_t end = endOfName(text);
    return end == 0 ? text : text.substr(end + 1);
}

}  // namespace

bool Tolerance::holds(double a, double b) const {
    if (a == b || (std::isnan(a) && std::isnan(b))) return true;
    const double larger = std::max(std::abs(a), std::abs(b));
    return larger < floor || std::abs(a - b) <= std::max(absolute, relative * larger);
}

bool Tolerance::holds(float a, float b) const {
    const bool hasNone = unstruct::IsUndefined(a) || unstruct::IsUndefined(b);
    if (hasNone) return unstruct::IsUndefined(a) && unstruct::IsUndefined(b);
    return holds(double{a}, double{b});
}

Tolerances::Tolerances(const Texts& texts) {
    add(texts.relative, &Tolerance::relative);
    add(texts.absolute, &Tolerance::absolute);
    add(texts.floor, &Tolerance::floor);
}

std::string Tolerances::check(const std::string& text) {
    return nonNegativeNumber(numberOf(text));
}

void Tolerances::add(const std::vector<std::string>& texts, Member member) {
    for (const std::string& text : texts) {
        const std::string number = numberOf(text);
        double value = 0;
        std::from_chars(number.data(), number.data() + number.size(), value);
        if (const std::size_t end = endOfName(text); end > 0) {
            m_own[text.substr(0, end)].emplace_back(member, value);
        } else {
            m_general.*member = value;
        }
    }
}

Tolerance Tolerances::of(const std::string& result) const {
    Tolerance tolerance = m_general;
    const auto own = m_own.find(result);
    if (own == m_own.end()) return tolerance;
    for (const auto& [member, value] : own->second) tolerance.*member = value;
    return tolerance;
}

}  // namespace tools
