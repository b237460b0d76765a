#include "data/ZRFxRounding.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "ZRUndefined.h"

namespace unstruct {
namespace {

std::vector<float> Rounded(const std::vector<float>& values, int digits) {
    std::vector<float> rounded(values.size());
    RoundToDigits(values, digits, rounded);
    return rounded;
}

// Every exponent and sign, with mantissas of all kinds.
std::vector<float> AnyFloats() {
    std::mt19937 random(1);
    std::vector<float> values;
    for (std::uint32_t high = 0; high < 512; ++high) {
        for (const std::uint32_t mantissa :
             {0x000000u, 0x000001u, 0x3fffffu, 0x400000u, 0x7fffffu}) {
            values.push_back(std::bit_cast<float>(high << 23 | mantissa));
        }
        for (int i = 0; i < 200; ++i) {
            values.push_back(std::bit_cast<float>(
                high << 23 | (static_cast<std::uint32_t>(random()) & 0x7fffffu)));
        }
    }
    return values;
}

TEST(ZRFxRoundingTest, EveryValueKeepsThePromisedDigits) {
    const std::vector<float> values = AnyFloats();
    for (int digits = 1; digits <= kMostRoundedDigits; ++digits) {
        const std::vector<float> rounded = Rounded(values, digits);
        const double bound = 0.5 * std::pow(10.0, -digits);
        std::size_t changed = 0;
        for (std::size_t i = 0; i < values.size(); ++i) {
            if (std::bit_cast<std::uint32_t>(values[i]) == std::bit_cast<std::uint32_t>(rounded[i]))
                continue;
            ++changed;
            ASSERT_TRUE(std::isnormal(values[i]) && !IsUndefined(values[i])) << values[i];
            ASSERT_FALSE(IsUndefined(rounded[i])) << values[i];
            ASSERT_LE(std::abs(double{rounded[i]} - values[i]), bound * std::abs(double{values[i]}))
                << values[i] << " to " << digits;
        }
        EXPECT_GT(changed, values.size() / 2);
    }
}

TEST(ZRFxRoundingTest, WhatIsNoOrdinaryNumberStaysToTheBit) {
    constexpr float kMax = std::numeric_limits<float>::max();
    const std::vector<float> values{0.0f,
                                    -0.0f,
                                    1e-40f,
                                    std::numeric_limits<float>::denorm_min(),
                                    std::numeric_limits<float>::quiet_NaN(),
                                    std::numeric_limits<float>::infinity(),
                                    -std::numeric_limits<float>::infinity(),
                                    kUndefinedValue,
                                    2.99e38f,
                                    kMax,
                                    -kMax};
    for (int digits = 1; digits <= 7; ++digits) {
        const std::vector<float> rounded = Rounded(values, digits);
        for (std::size_t i = 0; i < values.size(); ++i) {
            EXPECT_EQ(std::bit_cast<std::uint32_t>(values[i]),
                      std::bit_cast<std::uint32_t>(rounded[i]))
                << values[i] << " to " << digits;
        }
    }
}

TEST(ZRFxRoundingTest, RoundingIsWithoutBiasAndSettled) {
    std::mt19937 random(2);
    std::uniform_real_distribution<float> distribution(-100, 100);
    std::vector<float> values(100000);
    for (float& value : values) value = distribution(random);
    const std::vector<float> rounded = Rounded(values, 3);
    EXPECT_EQ(rounded, Rounded(rounded, 3));
    double sum = 0;
    for (std::size_t i = 0; i < values.size(); ++i) sum += (rounded[i] - values[i]) / values[i];
    EXPECT_LT(std::abs(sum / static_cast<double>(values.size())), 5e-6);
    EXPECT_EQ(values, Rounded(values, 7));
}

}  // namespace
}  // namespace unstruct
