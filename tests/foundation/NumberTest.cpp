#include "nvf/Number.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdio>
#include <limits>
#include <string>

namespace nvf {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();

TEST(Number, TextIsThatOfPrintf) {
    const double values[] = {0.0,    -0.0,     1.0,    0.1,         1e-20, 1e20,    123456.5,
                             1e5,    1e6,      1e-4,   1e-5,        2.5,   DBL_MAX, DBL_MIN,
                             5e-324, -1.0 / 3, 299e36, 9.9999995e5, kInf,  -kInf,   NAN};
    for (const double value : values) {
        for (const char format : {'g', 'e', 'f', 'G', 'E', 'F'}) {
            for (const int precision : {-1, 0, 1, 6, 15, 17}) {
                const char spec[] = {'%', '.', '*', format, '\0'};
                char expected[512];
                std::snprintf(expected, sizeof(expected), spec, precision, value);
                EXPECT_EQ(textOfNumber(value, format, precision), expected) << format << precision;
            }
        }
    }
}

TEST(Number, AbsurdPrecisionIsBounded) {
    EXPECT_EQ(std::stod(textOfNumber(-DBL_MAX, 'f', INT_MAX)), -DBL_MAX);
}

template <typename T>
struct Reading {
    const char* text;
    T value;
};

template <typename T>
void ExpectRead(std::initializer_list<Reading<T>> readings) {
    for (const auto& [text, expected] : readings) {
        T value{};
        ASSERT_TRUE(parseNumber(text, value)) << text;
        EXPECT_TRUE(value == expected &&
                    std::signbit(double(value)) == std::signbit(double(expected)))
            << text << " gave " << value;
    }
}

template <typename T>
void ExpectRefused(std::initializer_list<std::string_view> texts) {
    for (const std::string_view text : texts) {
        T value = 7;
        EXPECT_FALSE(parseNumber(text, value)) << text;
        EXPECT_EQ(value, T(7)) << text;
    }
}

TEST(Number, WholeTextIsRead) {
    ExpectRead<int>({{" \t\n7\r ", 7}, {"+7", 7}, {"007", 7}, {"-2147483648", INT_MIN}});
    ExpectRead<unsigned>({{"4294967295", UINT_MAX}, {"+1", 1}});
    ExpectRead<double>({{".5", .5}, {"5.", 5}, {"0e999", 0.0}, {"0.0e-999", 0.0}, {"+1E+2", 100}});
    ExpectRead<double>({{"-0", -0.0}, {"5e-324", 5e-324}, {"inf", kInf}, {"-inf", -kInf}});
    double nan = 0;
    EXPECT_TRUE(parseNumber("nan", nan) && std::isnan(nan));
}

TEST(Number, OtherTextIsRefused) {
    ExpectRefused<int>({"", " ", "+", "-", "+-1", "-+1", "++1", "1 2", "1.0", "1e3", "0x10", "a",
                        "1a", "2147483648", "-2147483649", std::string_view("1\0", 2)});
    ExpectRefused<unsigned>({"-1", "4294967296"});
    ExpectRefused<double>(
        {"", ".", "e5", "1e", "1,5", "0x1p3", "1.2.3", "1 2", "1d", "UNDEF", "\u0661"});
}

TEST(Number, FloatingValuesTooSmallForTheTypeBecomeZero) {
    const std::string zeros(400, '0');
    ExpectRead<double>({{"1e-400", 0.0}, {"-1e-400", -0.0}, {"1e-99999999999999999999", 0.0}});
    ExpectRead<double>({{("0." + zeros + "1").c_str(), 0.0}, {"0.00001e-320", 0.0}});
    ExpectRead<double>({{("-0." + zeros + "1e+50").c_str(), -0.0}});
    ExpectRead<float>({{"1e-46", 0.0f}});
}

TEST(Number, FloatingValuesTooLargeForTheTypeAreRefused) {
    const std::string zeros(400, '0');
    ExpectRefused<double>({"1.79769313486233e+308", "1.797693134862321e+308", "-1e309", "-1e400",
                           "1e99999999999999999999", "1" + zeros, "1" + zeros + "e-50",
                           "0.0001e400", "2e308"});
    ExpectRefused<float>({"1e39", "-3.402824e38", "1.79769313486232e+308"});
}

TEST(Number, LargestOfTheTypeSurvivesBeingWritten) {
    const std::string zeros(400, '0');
    for (const int precision : {15, 16, 17}) {
        ExpectRead<double>({{textOfNumber(DBL_MAX, 'g', precision).c_str(), DBL_MAX},
                            {textOfNumber(-DBL_MAX, 'e', precision - 1).c_str(), -DBL_MAX},
                            {textOfNumber(-DBL_MAX, 'f', precision).c_str(), -DBL_MAX}});
    }
    ExpectRead<double>({{("0." + zeros + "179769313486232e709").c_str(), DBL_MAX},
                        {("1797693134862320" + zeros + "e-107").c_str(), DBL_MAX}});
    for (const int precision : {6, 7, 8, 9}) {
        float value = 0;
        EXPECT_TRUE(parseNumber(textOfNumber(FLT_MAX, 'g', precision), value)) << precision;
    }
    ExpectRead<float>({{"3.40282347e38", FLT_MAX}});
}

}  // namespace
}  // namespace nvf
