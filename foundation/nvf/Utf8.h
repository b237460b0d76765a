#pragma once

#include <string>
#include <string_view>

namespace nvf {

/// The wide text of UTF-8 bytes; every byte that is not part of a well-formed sequence becomes
/// U+FFFD.
std::wstring wideFromUtf8(std::string_view utf8);

/// Takes one character off the front of a text that is not empty. Of a malformed sequence only the
/// first byte is taken, and the character is U+FFFD.
char32_t takeCharacter(std::string_view& utf8);

/// The UTF-8 bytes of wide text, UTF-16 or UTF-32 as wchar_t is wide. A surrogate without partner
/// and a value that is no character become U+FFFD.
std::string utf8FromWide(std::wstring_view text);

}  // namespace nvf
