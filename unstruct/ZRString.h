#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "nvf/String.h"

namespace unstruct {

/// The 8-bit string of the format classes, in UTF-8: file names, entry names and XML values. A
/// value type; converts to and from the framework's wide string without loss.
class ZRString {
public:
    ZRString() = default;
    ZRString(const char* utf8) : m_bytes(utf8 ? utf8 : "") {}
    ZRString(std::string utf8) : m_bytes(std::move(utf8)) {}
    explicit ZRString(std::string_view utf8) : m_bytes(utf8) {}
    explicit ZRString(const nvf::String& text) : m_bytes(text.toUtf8()) {}

    bool IsEmpty() const { return m_bytes.empty(); }

    /// Whether there is nothing but white space.
    bool IsBlank() const { return m_bytes.find_first_not_of(" \t\r\n\v\f") == std::string::npos; }

    const std::string& Bytes() const { return m_bytes; }
    const char* CStr() const { return m_bytes.c_str(); }
    operator nvf::String() const { return nvf::String(m_bytes); }

    /// Copies with the ASCII letters in lower or upper case.
    ZRString ToLower() const;
    ZRString ToUpper() const;

    /// The part of an entry name or path from its last dot on, dot included; empty without one.
    ZRString Extension() const;

    /// The part after the last slash or backslash.
    ZRString FileName() const;

    bool StartsWith(std::string_view start) const { return m_bytes.starts_with(start); }

    /// Overwrites the text in memory, so that a secret does not stay there, and leaves it empty.
    void Wipe();

    ZRString& operator+=(const ZRString& other);
    friend ZRString operator+(ZRString a, const ZRString& b) { return a += b; }
    friend bool operator==(const ZRString& a, const ZRString& b) = default;
    friend auto operator<=>(const ZRString& a, const ZRString& b) = default;

private:
    std::string m_bytes;
};

using ZRStringArray = std::vector<ZRString>;

}  // namespace unstruct
