#pragma once

#include <pybind11/pybind11.h>

#include <cctype>
#include <string>

namespace nuo::python {

/// The name of an enumerator as Python has it: in small letters.
template <typename Enum>
std::string nameOf(Enum value, const char* (*name)(Enum)) {
    std::string text = name(value);
    for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

/// Whether a text is the name of an enumerator as Python has it.
template <typename Enum>
bool isNameOf(Enum value, const char* (*name)(Enum), const std::string& text) {
    const char* own = name(value);
    for (const char c : text) {
        if (std::tolower(static_cast<unsigned char>(*own)) != c) return false;
        ++own;
    }
    return *own == '\0' && !text.empty();
}

/// The enumerator of a name; raises ValueError with the legal names. Enumerators begin at -1 or 0.
template <typename Enum>
Enum fromName(const std::string& text, const char* (*name)(Enum)) {
    for (int i = -1; i < 64; ++i) {
        if (isNameOf(static_cast<Enum>(i), name, text)) return static_cast<Enum>(i);
    }
    std::string legal;
    for (int i = -1; i < 64; ++i) {
        const std::string known = nameOf(static_cast<Enum>(i), name);
        if (!known.empty()) legal += (legal.empty() ? "" : ", ") + known;
    }
    throw pybind11::value_error("'" + text + "' is none of " + legal);
}

}  // namespace nuo::python
