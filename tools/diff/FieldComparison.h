#pragma once

#include <span>
#include <string>

#include "content/BlockGroup.h"
#include "diff/Differences.h"
#include "diff/Tolerances.h"

namespace tools {

/// Compares values field by field, each with the one at the same place. An array has one
/// difference, however much of it differs.
class FieldComparison {
public:
    FieldComparison(Differences& differences, const Tolerance& tolerance)
        : m_differences(differences), m_tolerance(tolerance) {}

    void compare(const std::string& place, std::int64_t a, std::int64_t b);
    void compare(const std::string& place, double a, double b);
    void compare(const std::string& place, const std::string& a, const std::string& b);
    void compare(const std::string& place, std::span<const std::int32_t> a,
                 std::span<const std::int32_t> b);
    void compare(const std::string& place, const Reals& a, const Reals& b);

    /// Viewer settings: numbers within the tolerance, everything else equal.
    void compare(const std::string& place, const Json& a, const Json& b);

    /// All that two blocks of one type hold.
    void compare(const std::string& place, const unstruct::ZRFxBlock& a,
                 const unstruct::ZRFxBlock& b);

private:
    template <typename Item>
    void compareItems(const std::string& place, std::span<const Item> a, std::span<const Item> b,
                      std::size_t components);
    void compareObjects(const std::string& place, const Json& a, const Json& b);

    Differences& m_differences;
    const Tolerance m_tolerance;
};

}  // namespace tools
