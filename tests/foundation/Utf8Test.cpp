#include "nvf/Utf8.h"

#include <gtest/gtest.h>

namespace nvf {
namespace {

TEST(Utf8, EveryCharacterSurvivesBothWays) {
    for (char32_t c = 1; c <= 0x10FFFF; c += c == 0xD7FF ? 0x801 : 1) {
        const std::wstring wide(1, static_cast<wchar_t>(c));
        ASSERT_EQ(wideFromUtf8(utf8FromWide(wide)), wide) << static_cast<unsigned>(c);
    }
}

TEST(Utf8, MalformedBytesBecomeReplacementCharacters) {
    const struct {
        std::string_view bytes;
        std::wstring_view text;
    } cases[] = {
        {"a\x80z", L"a\uFFFDz"},                            // continuation without lead
        {"\xC3", L"\uFFFD"},                                // truncated
        {"\xF0\x9F\x98", L"\uFFFD\uFFFD\uFFFD"},            // truncated
        {"\xC3z", L"\uFFFDz"},                              // lead without continuation
        {"\xC0\x80", L"\uFFFD\uFFFD"},                      // overlong
        {"\xED\xA0\x80", L"\uFFFD\uFFFD\uFFFD"},            // surrogate
        {"\xF4\x90\x80\x80", L"\uFFFD\uFFFD\uFFFD\uFFFD"},  // beyond U+10FFFF
        {"\xFF\xFE", L"\uFFFD\uFFFD"},                      // no UTF-8 at all
        {"\xE2\x82\xAC\xE2", L"\u20AC\uFFFD"},              // good, then truncated
    };
    for (const auto& [bytes, text] : cases) {
        EXPECT_EQ(wideFromUtf8(bytes), text) << testing::PrintToString(bytes);
    }
}

TEST(Utf8, WideValuesThatAreNoCharactersBecomeReplacementCharacters) {
    for (const auto value : {0xD800, 0xDFFF, 0x110000, -1}) {
        const std::wstring wide = {L'a', static_cast<wchar_t>(value), L'z'};
        EXPECT_EQ(utf8FromWide(wide), "a\uFFFDz") << value;
    }
}

}  // namespace
}  // namespace nvf
