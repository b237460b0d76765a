#include "ZRString.h"

#include <string.h>

#include <algorithm>

namespace unstruct {
namespace {

template <typename Convert>
std::string converted(std::string text, Convert convert) {
    std::transform(text.begin(), text.end(), text.begin(), convert);
    return text;
}

}  // namespace

ZRString ZRString::ToLower() const {
    return converted(m_bytes, [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
}

ZRString ZRString::ToUpper() const {
    return converted(m_bytes, [](char c) {
        return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    });
}

ZRString ZRString::Extension() const {
    const ZRString name = FileName();
    const std::size_t dot = name.m_bytes.rfind('.');
    return dot == std::string::npos ? ZRString() : ZRString(name.m_bytes.substr(dot));
}

ZRString ZRString::FileName() const {
    return m_bytes.substr(m_bytes.find_last_of("/\\") + 1);
}

void ZRString::Wipe() {
    explicit_bzero(m_bytes.data(), m_bytes.capacity());
    m_bytes.clear();
}

ZRString& ZRString::operator+=(const ZRString& other) {
    m_bytes += other.m_bytes;
    return *this;
}

}  // namespace unstruct
