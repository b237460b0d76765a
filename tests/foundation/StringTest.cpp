#include "nvf/String.h"

#include <gtest/gtest.h>

#include <locale>

#include "NuoCore/Str.h"
#include "nuo/Convert.h"
#include "support/HardTexts.h"

namespace nvf {
namespace {

TEST(String, PlaceholdersAreFilledLowestFirst) {
    const auto expectFilled = [](const char* text, std::initializer_list<String> values,
                                 const char* expected) {
        EXPECT_EQ(String(text).args(values).toUtf8(), expected) << text;
    };
    expectFilled("%1 of %2", {"a", "b"}, "a of b");
    expectFilled("%3 %7 %3", {"a", "b"}, "a b a");
    expectFilled("%1", {"a", "b"}, "a");
    expectFilled("%1 and %2", {"%2", "%1"}, "%2 and %1");
    expectFilled("%1%2", {"%", "1"}, "%1");
    expectFilled("100% %1 %% %0 %x %", {"a"}, "100% a %% %0 %x %");
    expectFilled("%10 %9", {"a", "b"}, "b a");
    expectFilled("%123", {"a"}, "a3");
    expectFilled("%1 %2 %3 %4 %5 %6 %7 %8 %9 %10 %11",
                 {"a", "b", "c", "d", "e", "f", "g", "h", "i", "j", "k"}, "a b c d e f g h i j k");
}

TEST(String, ArgTakesEveryKindOfValue) {
    EXPECT_EQ(String("%1 %2 %3 %4").arg(-7).arg(7u).arg(0.5).arg("x").toUtf8(), "-7 7 0.5 x");
    EXPECT_EQ(String("%1").arg(std::size_t(1) << 40).toUtf8(), "1099511627776");
    EXPECT_EQ(String("%1|%2|%3").arg(7, 3).arg(-7, 4, L'0').arg(12345, 2).toUtf8(),
              "  7|00-7|12345");
    EXPECT_EQ(nuo::Str("Part %1/%2").arg(7).arg(-8, 4, '.').toStdString(), "Part 7/..-8");
}

TEST(String, SplitKeepsEmptyParts) {
    using Parts = std::vector<String>;
    EXPECT_EQ(String("1 2 3").split(" "), (Parts{"1", "2", "3"}));
    EXPECT_EQ(String(" 1  2 ").split(" "), (Parts{"", "1", "", "2", ""}));
    EXPECT_EQ(String("a,b;c").split(",;"), (Parts{"a", "b", "c"}));
    EXPECT_EQ(String("").split(" "), (Parts{""}));
    EXPECT_EQ(String("ab").split(""), (Parts{"ab"}));
}

TEST(String, NoTextIsLostBetweenPublicAndInternalStrings) {
    std::vector<std::string> texts(std::begin(test::kHardXmlTexts), std::end(test::kHardXmlTexts));
    texts.insert(texts.end(), {"\x01\x1F\x1B[31m", "\uFFFE\uFFFF"});
    for (const std::string& text : texts) {
        const String internal = nuo::Convert::toNvfString(nuo::Str(text));
        EXPECT_EQ(internal.toUtf8(), text);
        EXPECT_EQ(nuo::Convert::toStr(internal).toStdString(), text);
        EXPECT_EQ(nuo::Str(nuo::Str(text).c_str()), nuo::Str(text));
    }
}

TEST(String, NullPointersAreEmptyText) {
    EXPECT_EQ(String(static_cast<const char*>(nullptr)), String());
    EXPECT_EQ(String(static_cast<const wchar_t*>(nullptr)), String());
    EXPECT_TRUE(nuo::Str(static_cast<const char*>(nullptr)).isEmpty());
    EXPECT_TRUE(nuo::Str(static_cast<const wchar_t*>(nullptr)).isEmpty());
}

class GermanPunctuation : public std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

TEST(String, NumbersDoNotFollowTheLocaleOfTheStreams) {
    const std::locale before =
        std::locale::global(std::locale(std::locale::classic(), new GermanPunctuation));
    EXPECT_EQ(String::number(1234567.5, 'g', 15).toUtf8(), "1234567.5");
    EXPECT_EQ(String("%1 %2").arg(1234567).arg(0.5).toUtf8(), "1234567 0.5");
    bool ok = false;
    EXPECT_EQ(String("1234.5").toDouble(&ok), 1234.5);
    EXPECT_TRUE(ok);
    EXPECT_EQ(String("1,5").toFloat(&ok), 0);
    EXPECT_FALSE(ok);
    std::locale::global(before);
}

}  // namespace
}  // namespace nvf
