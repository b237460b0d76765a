// What is derived from vectors and tensors, against closed forms.
#include <gmock/gmock.h>

#include <cmath>
#include <random>

#include "ZRUndefined.h"
#include "quantities/DerivedQuantities.h"

namespace tools {
namespace {

using Components = std::vector<float>;

float valueOf(const char* name, const Components& components, bool hasEngineeringShear = false) {
    const auto found = Quantity::named(name, static_cast<int>(components.size()));
    EXPECT_EQ(found.size(), 1u) << name;
    return found.at(0).of(ItemComponents(components, hasEngineeringShear));
}

Components principalsOf(const Components& tensor) {
    Components values;
    for (const Quantity& quantity : Quantity::named("principal_values", 6)) {
        values.push_back(quantity.of(ItemComponents(tensor)));
    }
    return values;
}

TEST(QuantitiesTest, StatesWithClosedFormsHaveTheirValues) {
    const float root3 = std::sqrt(3.f);
    const struct {
        const char* state;
        Components tensor;
        float vonMises;
        Components principals;
    } cases[] = {
        {"none", {0, 0, 0, 0, 0, 0}, 0, {0, 0, 0}},
        {"tension", {0, 7, 0, 0, 0, 0}, 7, {7, 0, 0}},
        {"pressure", {-4, -4, -4, 0, 0, 0}, 0, {-4, -4, -4}},
        {"shear", {0, 0, 0, 0, 5, 0}, 5 * root3, {5, 0, -5}},
        {"plane", {10, 2, 0, 3, 0, 0}, std::sqrt(100.f - 20 + 4 + 27), {11, 1, 0}},
        {"all ones", {1, 1, 1, 1, 1, 1}, 3, {3, 0, 0}},
        {"small beside large", {1e8f, 1, 0, 1, 0, 0}, 1e8f, {1e8f, 1, 0}},
        {"tiny", {2e-30f, 0, 0, 0, 0, 0}, 2e-30f, {2e-30f, 0, 0}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.state);
        EXPECT_FLOAT_EQ(valueOf("von_mises", c.tensor), c.vonMises);
        EXPECT_EQ(valueOf("mises", c.tensor), valueOf("von_mises", c.tensor));
        EXPECT_THAT(principalsOf(c.tensor),
                    testing::Pointwise(testing::FloatNear(1e-6f), c.principals));
        EXPECT_NEAR(valueOf("maximum_shear", c.tensor), (c.principals[0] - c.principals[2]) / 2,
                    1e-6);
    }
    EXPECT_FLOAT_EQ(valueOf("magnitude", {2, -3, 6}), 7);
    EXPECT_FLOAT_EQ(valueOf("maximum_shear", {0, 0, 0, 0, 5, 0}, true), 2.5f);
    EXPECT_FLOAT_EQ(valueOf("yz", {0, 0, 0, 0, 5, 0}, true), 5);
}

// Q diag(a, b, c) Q' of a rotation by an axis and an angle has a, b and c as principal values.
TEST(QuantitiesTest, PrincipalValuesDoNotDependOnTheAxes) {
    std::mt19937 random(1);
    std::normal_distribution<double> normal;
    for (int i = 0; i < 1000; ++i) {
        double q[4];
        double length = 0;
        for (double& part : q) {
            part = normal(random);
            length += part * part;
        }
        for (double& part : q) part /= std::sqrt(length);
        const auto [w, x, y, z] = q;
        const double r[3][3] = {
            {1 - 2 * (y * y + z * z), 2 * (x * y - w * z), 2 * (x * z + w * y)},
            {2 * (x * y + w * z), 1 - 2 * (x * x + z * z), 2 * (y * z - w * x)},
            {2 * (x * z - w * y), 2 * (y * z + w * x), 1 - 2 * (x * x + y * y)}};
        const double values[] = {300, i % 2 == 0 ? 300. : 20., -100};
        Components tensor;
        for (const auto& [a, b] : {std::pair(0, 0), {1, 1}, {2, 2}, {0, 1}, {1, 2}, {2, 0}}) {
            double sum = 0;
            for (int k = 0; k < 3; ++k) sum += r[a][k] * values[k] * r[b][k];
            tensor.push_back(static_cast<float>(sum));
        }
        const Components found = principalsOf(tensor);
        for (std::size_t k = 0; k < 3; ++k) EXPECT_NEAR(found[k], values[k], 1e-4);
    }
}

TEST(QuantitiesTest, OneComponentWithoutValueLeavesNone) {
    const float none = unstruct::kUndefinedValue;
    for (const Quantity& quantity : Quantity::all(6)) {
        const Components tensor{1, 2, 3, none, 5, 6};
        const float value = quantity.of(ItemComponents(tensor));
        const bool isLeft = !quantity.isDerived() && std::string(quantity.name()) != "xy";
        EXPECT_EQ(unstruct::IsUndefined(value), !isLeft) << quantity.name();
    }
    EXPECT_TRUE(Quantity::named("magnitude", 6).empty());
    EXPECT_TRUE(Quantity::all(2).empty());
}

}  // namespace
}  // namespace tools
