#pragma once

#include <string>

#include "NuoCore/Export.h"

namespace nuo {

/// Text that crosses the public interface: a value type holding Unicode in wide characters.
/// `const char*` and `std::string` mean UTF-8 everywhere; an invalid byte becomes U+FFFD. Text ends
/// at the first null character. A Str may be copied between threads like any value. A text that
/// there was no memory to make or copy is lost, which is logged: it has no characters, and every
/// operation of the library that receives it fails.
///
///     nuo::Str name = "Träger";
///     nuo::Str part = nuo::Str("Part %1").arg(7);   // "Part 7"
class NUO_API Str {
public:
    Str() = default;
    Str(const char* utf8);
    Str(const wchar_t* text);
    Str(const std::string& utf8);
    Str(const std::wstring& text);
    Str(const Str& other);
    Str(Str&& other) noexcept = default;
    Str& operator=(const Str& other);
    Str& operator=(Str&& other) noexcept = default;
    ~Str() = default;

    /// Whether the text has no characters and is not lost.
    bool isEmpty() const { return m_text.empty() && !m_isLost; }

    /// Whether memory ran out when the text was made or copied.
    bool isLost() const { return m_isLost; }

    /// The text as a null-terminated wide string, valid until the Str changes or goes.
    const wchar_t* c_str() const { return m_text.c_str(); }

    /// The text in UTF-8, and in wide characters; empty, with a message, when there is no memory.
    std::string toStdString() const;
    std::wstring toStdWString() const;

    /// A copy in which the lowest-numbered placeholder (%1, %2, ...) is replaced, wherever it
    /// stands, by `n` in decimal, right-aligned in `fieldWidth` characters with `fillChar`. Lost
    /// when there is no memory.
    Str arg(int n, int fieldWidth = 0, char fillChar = ' ') const;

    friend bool operator==(const Str& a, const Str& b) { return a.m_text == b.m_text; }
    friend bool operator!=(const Str& a, const Str& b) { return a.m_text != b.m_text; }
    friend bool operator<(const Str& a, const Str& b) { return a.m_text < b.m_text; }

private:
    friend class Convert;
    template <typename Make>
    void take(Make make);

    std::wstring m_text;
    bool m_isLost = false;
};

}  // namespace nuo
