#include "NuoCore/Str.h"

#include "nuo/Convert.h"
#include "nuo/Guard.h"
#include "nvf/Utf8.h"

namespace nuo {

// A text that cannot be made is a lost one.
template <typename Make>
void Str::take(Make make) {
    std::wstring made;
    m_isLost = !guarded(false, [&] {
        made = make();
        return true;
    });
    m_text.swap(made);
}

Str::Str(const char* utf8) {
    take([&] { return utf8 ? nvf::wideFromUtf8(utf8) : std::wstring(); });
}

Str::Str(const wchar_t* text) {
    take([&] { return std::wstring(text ? text : L""); });
}

Str::Str(const std::string& utf8) : Str(utf8.c_str()) {}

Str::Str(const std::wstring& text) : Str(text.c_str()) {}

Str::Str(const Str& other) {
    *this = other;
}

Str& Str::operator=(const Str& other) {
    if (this == &other) return *this;
    take([&] { return other.m_text; });
    m_isLost = m_isLost || other.m_isLost;
    return *this;
}

std::string Str::toStdString() const {
    return guarded([&] { return nvf::utf8FromWide(m_text); });
}

std::wstring Str::toStdWString() const {
    return guarded([&] { return m_text; });
}

Str Str::arg(int n, int fieldWidth, char fillChar) const {
    Str filled;
    filled.take([&] {
        const auto fill = static_cast<wchar_t>(static_cast<unsigned char>(fillChar));
        return Convert::toNvfString(*this).arg(n, fieldWidth, fill).text();
    });
    return filled;
}

}  // namespace nuo
