#include "quantities/DerivedQuantities.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <utility>

#include "ZRUndefined.h"
#include "types/ZRFxValueKind.h"

namespace tools {
namespace {

using unstruct::IsUndefined;
using unstruct::kTensorKind;
using unstruct::kVectorKind;

using Matrix = std::array<std::array<double, 3>, 3>;

double squared(double value) {
    return value * value;
}

double magnitude(const ItemComponents& v) {
    return std::sqrt(squared(v[0]) + squared(v[1]) + squared(v[2]));
}

double vonMises(const ItemComponents& t) {
    return std::sqrt((squared(t[0] - t[1]) + squared(t[1] - t[2]) + squared(t[2] - t[0])) / 2 +
                     3 * (squared(t[3]) + squared(t[4]) + squared(t[5])));
}

// Whether a number is lost when it is added to another.
bool isLostIn(double number, double other) {
    return std::abs(other) + std::abs(number) == std::abs(other);
}

// Turns the axes p and q such that m[p][q] becomes 0. Where theta is so large that its square
// overflows, the axes stay as they are: they would hardly turn.
void rotate(Matrix& m, std::size_t p, std::size_t q) {
    const double off = m[p][q];
    m[p][q] = m[q][p] = 0;
    if (isLostIn(off, m[p][p]) && isLostIn(off, m[q][q])) return;
    const double theta = (m[q][q] - m[p][p]) / (2 * off);
    const double sign = theta < 0 ? -1 : 1;
    const double t = sign / (std::abs(theta) + std::sqrt(squared(theta) + 1));
    const double c = 1 / std::sqrt(squared(t) + 1);
    const double s = t * c;
    const std::size_t r = 3 - p - q;
    const double rp = m[r][p];
    const double rq = m[r][q];
    m[p][p] -= t * off;
    m[q][q] += t * off;
    m[r][p] = m[p][r] = c * rp - s * rq;
    m[r][q] = m[q][r] = s * rp + c * rq;
}

// By Jacobi's method, which keeps the digits of small eigenvalues; the largest first.
ItemComponents::PrincipalValues eigenvalues(const ItemComponents& t) {
    Matrix m{{{t[0], t[3], t[5]}, {t[3], t[1], t[4]}, {t[5], t[4], t[2]}}};
    constexpr int kMostSweeps = 20;  // it takes four or five
    for (int sweep = 0; sweep < kMostSweeps; ++sweep) {
        if (m[0][1] == 0 && m[1][2] == 0 && m[0][2] == 0) break;
        rotate(m, 0, 1);
        rotate(m, 1, 2);
        rotate(m, 0, 2);
    }
    ItemComponents::PrincipalValues values{m[0][0], m[1][1], m[2][2]};
    std::ranges::sort(values, std::greater());
    return values;
}

double maximumShear(const ItemComponents& t) {
    return (t.principalValues()[0] - t.principalValues()[2]) / 2;
}

template <std::size_t Number>
double principal(const ItemComponents& t) {
    return t.principalValues()[Number - 1];
}

}  // namespace

ItemComponents::ItemComponents(std::span<const float> components, bool hasEngineeringShear)
    : m_components(components) {
    const bool isTensor = components.size() == m_values.size();
    for (std::size_t i = 0; i < std::min(components.size(), m_values.size()); ++i) {
        m_isUndefined = m_isUndefined || IsUndefined(components[i]);
        const bool isHalved = hasEngineeringShear && isTensor && i >= 3;
        m_values[i] = isHalved ? components[i] / 2.0 : double{components[i]};
    }
}

const ItemComponents::PrincipalValues& ItemComponents::principalValues() const {
    if (!m_principalValues) m_principalValues = eigenvalues(*this);
    return *m_principalValues;
}

std::vector<Quantity> Quantity::all(int components) {
    std::vector<Quantity> quantities;
    const unstruct::ZRFxValueKind* kind = unstruct::ZRFxValueKindOf(components);
    if (!kind) return quantities;
    for (int i = 0; i < components; ++i) {
        quantities.push_back({kind->components[static_cast<std::size_t>(i)], i});
    }
    if (components == kVectorKind.Dimension()) quantities.push_back({"magnitude", magnitude});
    if (components == kTensorKind.Dimension()) {
        quantities.push_back({"von_mises", vonMises});
        quantities.push_back({"principal_1", principal<1>});
        quantities.push_back({"principal_2", principal<2>});
        quantities.push_back({"principal_3", principal<3>});
        quantities.push_back({"maximum_shear", maximumShear});
    }
    return quantities;
}

std::vector<Quantity> Quantity::named(const std::string& name, int components) {
    const std::string wanted = name == "mises" ? "von_mises" : name;
    std::vector<Quantity> found = all(components);
    std::erase_if(found, [&](const Quantity& quantity) {
        const std::string own = quantity.name();
        const bool isInGroup = wanted == "principal_values" && own.starts_with("principal_");
        return own != wanted && !isInGroup;
    });
    return found;
}

float Quantity::of(const ItemComponents& item) const {
    if (!m_formula) return item.component(m_component);
    return item.isUndefined() ? unstruct::kUndefinedValue : static_cast<float>(m_formula(item));
}

}  // namespace tools
