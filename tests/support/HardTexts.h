#pragma once

namespace test {

/// UTF-8 texts that naive XML code damages, and that XML 1.0 can hold.
inline constexpr const char* kHardXmlTexts[] = {"",
                                                " ",
                                                "   ",
                                                " leading",
                                                "trailing ",
                                                "inner   blanks",
                                                "\t",
                                                "\n",
                                                "\r",
                                                "\r\n",
                                                "\n\r\r\n\t ",
                                                "line\nbreak",
                                                "line\r\nbreak\r",
                                                "<a href=\"x\">&amp;</a>",
                                                "]]>",
                                                "<!-- c --><?pi?><![CDATA[x]]>",
                                                "'\"`",
                                                "&#13;&lt;&bogus;",
                                                "%1 %2 %%1",
                                                "\\ / : * ? | %s %n",
                                                "Tr\u00E4ger \u00DF \u0416 \u4E2D\u6587",
                                                "\u00A0nbsp\u00A0",
                                                "\u2028\u2029\u0085",
                                                "\uFEFFbom",
                                                "e\u0301 \u00E9",
                                                "\U0001F600\U00010000\U0010FFFD\U0010FFFF",
                                                "\x7F"};

/// Texts that XML 1.0 cannot hold, and what is written in their place.
struct ForbiddenText {
    const char* text;
    const char* written;
};

inline constexpr ForbiddenText kForbiddenTexts[] = {
    {"\x01", "\uFFFD"},
    {" \x1F ", " \uFFFD "},
    {"a\x02\x08\x0B\t\x0C\n", "a\uFFFD\uFFFD\uFFFD\t\uFFFD\n"},
    {"\x1B[31m&#27;", "\uFFFD[31m&#27;"},
    {"\uFFFE\uFFFD\uFFFF", "\uFFFD\uFFFD\uFFFD"},
    {"\xED\xA0\x80", "\uFFFD\uFFFD\uFFFD"},  // a lone surrogate
    {"<\xC3(\xFF\xC3", "<\uFFFD(\uFFFD\uFFFD"},
};

}  // namespace test
