#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace tools {

/// The components of one item, as quantities are derived from them. Refers to the caller's numbers.
class ItemComponents {
public:
    using PrincipalValues = std::array<double, 3>;

    /// `hasEngineeringShear` says that the shear is halved before something is derived.
    explicit ItemComponents(std::span<const float> components, bool hasEngineeringShear = false);

    float component(int index) const { return m_components[static_cast<std::size_t>(index)]; }
    bool isUndefined() const { return m_isUndefined; }

    /// A component in double precision, its shear that of the tensor.
    double operator[](std::size_t index) const { return m_values[index]; }

    /// The largest first; computed when first asked for.
    const PrincipalValues& principalValues() const;

private:
    std::span<const float> m_components;
    std::array<double, 6> m_values{};
    bool m_isUndefined = false;
    mutable std::optional<PrincipalValues> m_principalValues;
};

/// A number that follows from the components of a vector or a symmetric tensor of one item. Vectors
/// are x y z, tensors xx yy zz xy yz zx. Computed in double precision.
///
/// - magnitude: sqrt(x^2 + y^2 + z^2)
/// - von_mises: sqrt(((xx - yy)^2 + (yy - zz)^2 + (zz - xx)^2) / 2 + 3 (xy^2 + yz^2 + zx^2))
/// - principal_1, principal_2, principal_3: the eigenvalues of the tensor, the largest first
/// - maximum_shear: (principal_1 - principal_3) / 2
///
/// Engineering strains hold twice the shear of the tensor: it is halved first. Where any component
/// has no value, no derived quantity has one.
class Quantity {
public:
    /// All of an item of so many components: first the components, then what is derived from them.
    static std::vector<Quantity> all(int components);

    /// Those of a name, of which "mises" and "principal_values" are short forms; none when there is
    /// no such quantity of so many components.
    static std::vector<Quantity> named(const std::string& name, int components);

    const char* name() const { return m_name; }
    bool isDerived() const { return m_formula != nullptr; }

    float of(const ItemComponents& item) const;

private:
    using Formula = double (*)(const ItemComponents& item);
    Quantity(const char* name, int component) : m_name(name), m_component(component) {}
    Quantity(const char* name, Formula formula) : m_name(name), m_formula(formula) {}

    const char* m_name;
    int m_component = -1;  // that it is, when it is not derived
    Formula m_formula = nullptr;
};

}  // namespace tools
