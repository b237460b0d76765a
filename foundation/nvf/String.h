#pragma once

#include <charconv>
#include <concepts>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "nvf/Object.h"

namespace nvf {

/// The framework's wide-character string, used for names, XML values and messages: a value type.
/// `const char*` means UTF-8. Numbers are written and read independently of the process locale.
class String {
public:
    String() = default;
    String(const char* utf8);
    String(const wchar_t* text);
    String(const std::string& utf8);
    explicit String(std::wstring text) : m_text(std::move(text)) {}

    static String fromUtf8(std::string_view utf8);

    /// `value` in the format 'g', 'e' or 'f' (or its capital) with `precision` digits, as printf.
    static String number(double value, char format = 'g', int precision = 6);
    static String number(float value, char format = 'g', int precision = 6);
    template <std::integral T>
    static String number(T value) {
        char digits[24];
        const auto end = std::to_chars(digits, digits + sizeof(digits), +value).ptr;
        return String(std::wstring(digits, end));
    }

    bool isEmpty() const { return m_text.empty(); }
    const std::wstring& text() const { return m_text; }
    std::string toUtf8() const;

    /// The text as a number, ignoring blanks around it; 0 when it is none, and `*ok`, unless null,
    /// says which.
    int toInt(bool* ok = nullptr) const;
    uint toUInt(bool* ok = nullptr) const;
    double toDouble(bool* ok = nullptr) const;
    float toFloat(bool* ok = nullptr) const;

    /// A copy with the letters A to Z in lower case; the names that are compared this way are
    /// ASCII.
    String toLower() const;

    /// The parts between characters of `delimiters`, empty parts included; the whole text when it
    /// holds none of them.
    std::vector<String> split(const String& delimiters) const;

    /// A copy in which the lowest-numbered placeholder (%1, %2, ...) is replaced wherever it
    /// stands.
    String arg(const String& value) const;
    String arg(double value, char format = 'g', int precision = 6) const;
    template <std::integral T>
    String arg(T value, int fieldWidth = 0, wchar_t fillChar = L' ') const {
        return arg(number(value).rightAligned(fieldWidth, fillChar));
    }

    /// A copy in which the placeholders are replaced by `values`, the lowest-numbered by the first.
    /// A value that itself looks like a placeholder stays as it is.
    String args(std::initializer_list<String> values) const;

    String& operator+=(const String& other);
    friend String operator+(String a, const String& b) { return a += b; }
    friend bool operator==(const String& a, const String& b) = default;
    friend auto operator<=>(const String& a, const String& b) = default;

private:
    String filled(std::span<const String> values) const;
    String rightAligned(int fieldWidth, wchar_t fillChar) const;

    std::wstring m_text;
};

}  // namespace nvf
