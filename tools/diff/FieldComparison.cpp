#include "diff/FieldComparison.h"

#include <map>

#include "ZRUndefined.h"

namespace tools {
namespace {

std::string shown(std::int32_t value) {
    return std::to_string(value);
}

std::string shown(float value) {
    return unstruct::IsUndefined(value) ? "no value" : numberText(value);
}

std::string shown(const Json& json) {
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

bool areEqual(std::int32_t a, std::int32_t b, const Tolerance&) {
    return a == b;
}

bool areEqual(float a, float b, const Tolerance& tolerance) {
    return tolerance.holds(a, b);
}

}  // namespace

void FieldComparison::compare(const std::string& place, std::int64_t a, std::int64_t b) {
    if (a != b) m_differences.add(place, std::to_string(a) + " and " + std::to_string(b));
}

void FieldComparison::compare(const std::string& place, double a, double b) {
    if (!m_tolerance.holds(a, b)) m_differences.add(place, numberText(a) + " and " + numberText(b));
}

void FieldComparison::compare(const std::string& place, const std::string& a,
                              const std::string& b) {
    if (a != b) m_differences.add(place, "\"" + a + "\" and \"" + b + "\"");
}

void FieldComparison::compare(const std::string& place, std::span<const std::int32_t> a,
                              std::span<const std::int32_t> b) {
    compareItems(place, a, b, 1);
}

void FieldComparison::compare(const std::string& place, const Reals& a, const Reals& b) {
    if (a.components != b.components) {
        return m_differences.add(place, std::to_string(a.components) + " and " +
                                            std::to_string(b.components) + " values an item");
    }
    compareItems(place, a.values, b.values, static_cast<std::size_t>(a.components));
}

template <typename Item>
void FieldComparison::compareItems(const std::string& place, std::span<const Item> a,
                                   std::span<const Item> b, std::size_t components) {
    if (a.size() != b.size()) {
        return m_differences.add(place, std::to_string(a.size() / components) + " and " +
                                            counted(b.size() / components, "item"));
    }
    std::size_t count = 0;
    std::size_t first = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (areEqual(a[i], b[i], m_tolerance)) continue;
        if (count++ == 0) first = i;
    }
    if (count == 0) return;
    m_differences.add(place, std::to_string(count) + " of " + counted(a.size(), "value") +
                                 (count == 1 ? " differs" : " differ") + ", first in item " +
                                 std::to_string(first / components) + ": " + shown(a[first]) +
                                 " and " + shown(b[first]));
}

void FieldComparison::compare(const std::string& place, const Json& a, const Json& b) {
    if (a.is_object() && b.is_object()) return compareObjects(place, a, b);
    if (a.is_array() && b.is_array() && a.size() == b.size()) {
        for (std::size_t i = 0; i < a.size(); ++i) {
            compare(place + numbered(",", static_cast<std::int64_t>(i)), a[i], b[i]);
        }
        return;
    }
    const bool areReals = a.is_number_float() && b.is_number_float();
    if (areReals ? m_tolerance.holds(a.get<double>(), b.get<double>()) : a == b) return;
    m_differences.add(place, shown(a) + " and " + shown(b));
}

void FieldComparison::compareObjects(const std::string& place, const Json& a, const Json& b) {
    for (const auto& [key, value] : a.items()) {
        const std::string own = place + ", " + key;
        b.contains(key) ? compare(own, value, b[key]) : m_differences.onlyInA(own);
    }
    for (const auto& [key, value] : b.items()) {
        if (!a.contains(key)) m_differences.onlyInB(place + ", " + key);
    }
}

void FieldComparison::compare(const std::string& place, const unstruct::ZRFxBlock& a,
                              const unstruct::ZRFxBlock& b) {
    std::map<std::string, Field> fieldsOfB;
    for (Field& field : contentOf(b)) fieldsOfB.try_emplace(field.place, std::move(field));
    for (const Field& field : contentOf(a)) {
        const std::string own = place + ", " + field.place;
        const auto other = fieldsOfB.find(field.place);
        if (other == fieldsOfB.end()) {
            m_differences.onlyInA(own);
            continue;
        }
        // A place has a value of one kind in all blocks.
        std::visit(
            [&](const auto& value) {
                compare(own, value, std::get<std::decay_t<decltype(value)>>(other->second.value));
            },
            field.value);
        fieldsOfB.erase(other);
    }
    for (const auto& [fieldPlace, field] : fieldsOfB) {
        m_differences.onlyInB(place + ", " + fieldPlace);
    }
}

}  // namespace tools
