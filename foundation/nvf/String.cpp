#include "nvf/String.h"

#include <algorithm>
#include <array>
#include <bitset>

#include "nvf/Number.h"
#include "nvf/Utf8.h"

namespace nvf {
namespace {

constexpr int kHighestPlaceholder = 99;

// A "%N" in a text; length 0 where there is none.
struct Placeholder {
    std::size_t position = 0;
    std::size_t length = 0;
    int number = 0;
};

Placeholder nextPlaceholder(std::wstring_view text, std::size_t from) {
    const auto isDigit = [&](std::size_t i) {
        return i < text.size() && text[i] >= L'0' && text[i] <= L'9';
    };
    for (std::size_t at = text.find(L'%', from); at < text.size(); at = text.find(L'%', at + 1)) {
        Placeholder found{at, 1, 0};
        while (found.length < 3 && isDigit(at + found.length)) {
            found.number = found.number * 10 + static_cast<int>(text[at + found.length++] - L'0');
        }
        if (found.number > 0 && found.number <= kHighestPlaceholder) return found;
    }
    return {};
}

using ValueOfNumber = std::array<const String*, kHighestPlaceholder + 1>;

// The value of every placeholder number of the text, as far as the values reach.
ValueOfNumber assignValues(std::wstring_view text, std::span<const String> values) {
    std::bitset<kHighestPlaceholder + 1> present;
    for (auto p = nextPlaceholder(text, 0); p.length;
         p = nextPlaceholder(text, p.position + p.length)) {
        present.set(p.number);
    }
    ValueOfNumber valueOfNumber{};
    auto value = values.begin();
    for (std::size_t number = 1; number < present.size() && value != values.end(); ++number) {
        if (present[number]) valueOfNumber[number] = &*value++;
    }
    return valueOfNumber;
}

template <typename T>
T parsed(const std::wstring& text, bool* ok) {
    T value{};
    const bool isNumber = parseNumber(utf8FromWide(text), value);
    if (ok) *ok = isNumber;
    return isNumber ? value : T{};
}

}  // namespace

String::String(const char* utf8) : m_text(utf8 ? wideFromUtf8(utf8) : std::wstring()) {}

String::String(const wchar_t* text) : m_text(text ? text : L"") {}

String::String(const std::string& utf8) : m_text(wideFromUtf8(utf8)) {}

String String::fromUtf8(std::string_view utf8) {
    return String(wideFromUtf8(utf8));
}

String String::number(double value, char format, int precision) {
    return fromUtf8(textOfNumber(value, format, precision));
}

String String::number(float value, char format, int precision) {
    return number(static_cast<double>(value), format, precision);
}

std::string String::toUtf8() const {
    return utf8FromWide(m_text);
}

int String::toInt(bool* ok) const {
    return parsed<int>(m_text, ok);
}

uint String::toUInt(bool* ok) const {
    return parsed<uint>(m_text, ok);
}

double String::toDouble(bool* ok) const {
    return parsed<double>(m_text, ok);
}

float String::toFloat(bool* ok) const {
    return parsed<float>(m_text, ok);
}

String String::toLower() const {
    String lower = *this;
    for (wchar_t& c : lower.m_text) {
        if (c >= L'A' && c <= L'Z') c += L'a' - L'A';
    }
    return lower;
}

std::vector<String> String::split(const String& delimiters) const {
    std::vector<String> parts;
    std::size_t begin = 0;
    for (;;) {
        const std::size_t end = m_text.find_first_of(delimiters.m_text, begin);
        parts.emplace_back(m_text.substr(begin, end - begin));
        if (end == std::wstring::npos) return parts;
        begin = end + 1;
    }
}

String String::arg(const String& value) const {
    return filled({&value, 1});
}

String String::arg(double value, char format, int precision) const {
    return arg(number(value, format, precision));
}

String String::args(std::initializer_list<String> values) const {
    return filled({values.begin(), values.size()});
}

String& String::operator+=(const String& other) {
    m_text += other.m_text;
    return *this;
}

String String::rightAligned(int fieldWidth, wchar_t fillChar) const {
    const auto width = static_cast<std::size_t>(std::max(fieldWidth, 0));
    if (m_text.size() >= width) return *this;
    return String(std::wstring(width - m_text.size(), fillChar) + m_text);
}

String String::filled(std::span<const String> values) const {
    const auto valueOfNumber = assignValues(m_text, values);
    String result;
    std::size_t done = 0;
    for (auto p = nextPlaceholder(m_text, 0); p.length;
         p = nextPlaceholder(m_text, p.position + p.length)) {
        const String* value = valueOfNumber[p.number];
        if (!value) continue;
        result.m_text.append(m_text, done, p.position - done).append(value->m_text);
        done = p.position + p.length;
    }
    result.m_text.append(m_text, done);
    return result;
}

}  // namespace nvf
