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
                                                "\U0001F600\U00010000\U0010FFFD",
                                                "\x7F"};

/// UTF-8 texts that XML 1.0 cannot hold but this library brings back all the same.
inline constexpr const char* kHardForeignTexts[] = {
    "\x01\x02\x08\x0B\x0C\x1F", "\x1B[31m", "\uFFFE", "\uFFFF", "\U0010FFFF", "\x01", " \x1F ",
};

}  // namespace test
