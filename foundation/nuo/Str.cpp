#include "NuoCore/Str.h"

#include "nuo/Convert.h"
#include "nvf/Utf8.h"

namespace nuo {

Str::Str(const char* utf8) : m_text(utf8 ? nvf::wideFromUtf8(utf8) : std::wstring()) {}

Str::Str(const wchar_t* text) : m_text(text ? text : L"") {}

Str::Str(const std::string& utf8) : Str(utf8.c_str()) {}

Str::Str(const std::wstring& text) : Str(text.c_str()) {}

std::string Str::toStdString() const {
    return nvf::utf8FromWide(m_text);
}

Str Str::arg(int n, int fieldWidth, char fillChar) const {
    const auto fill = static_cast<wchar_t>(static_cast<unsigned char>(fillChar));
    return Convert::toStr(Convert::toNvfString(*this).arg(n, fieldWidth, fill));
}

}  // namespace nuo
