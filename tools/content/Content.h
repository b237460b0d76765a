#pragma once

#include <concepts>
#include <cstdint>
#include <span>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "NuoCore/Color3f.h"
#include "NuoCore/Vec3d.h"
#include "ZRArray.h"
#include "ZRString.h"
#include "blocks/results/ZRFxResultValuesBlock.h"

namespace tools {

/// Floats of many items, some components each.
struct Reals {
    std::span<const float> values;
    int components = 1;
};

/// One thing that a block holds: where, and what. Arrays lie in the block, which must outlive it.
struct Field {
    using Value =
        std::variant<std::int64_t, double, std::string, std::span<const std::int32_t>, Reals>;
    std::string place;
    Value value;
};

/// An array of the format classes as a view of its items.
template <typename Array>
auto itemsOf(const Array& array) {
    return std::span(array.Data(), static_cast<std::size_t>(array.GetSize()));
}

/// Vectors as the floats that they are made of.
Reals realsOf(const unstruct::ZRVec3fArray& vectors);

/// The values of a result values block, item after item.
Reals realsOf(const unstruct::ZRFxResultValuesBlock& block);

/// Gathers the fields of a block; a prefix names the place that they lie in.
class Content {
public:
    std::vector<Field> take() { return std::move(m_fields); }

    /// Gives a place to all that is added until the scope ends.
    class Scope {
    public:
        Scope(Content& content, const std::string& place)
            : m_content(content), m_before(content.m_prefix) {
            m_content.m_prefix += place + ", ";
        }
        ~Scope() { m_content.m_prefix = m_before; }
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;

    private:
        Content& m_content;
        const std::string m_before;
    };

    template <std::integral T>
    void add(const char* place, T value) {
        addValue(place, static_cast<std::int64_t>(value));
    }
    template <std::floating_point T>
    void add(const char* place, T value) {
        addValue(place, static_cast<double>(value));
    }
    void add(const char* place, const unstruct::ZRString& text) { addValue(place, text.Bytes()); }
    void add(const char* place, const unstruct::ZRIntArray& items) {
        addValue(place, itemsOf(items));
    }
    void add(const char* place, const unstruct::ZRIntArray* items) {
        if (items) add(place, *items);
    }
    void add(const char* place, const unstruct::ZRFloatArray& items) {
        addValue(place, Reals{itemsOf(items), 1});
    }
    void add(const char* place, const Reals& items) { addValue(place, items); }
    void add(const char* place, const unstruct::ZRVec3fArray& items) {
        addValue(place, realsOf(items));
    }
    void add(const char* place, const nuo::Color3f& color) {
        add((std::string(place) + " red").c_str(), color.r);
        add((std::string(place) + " green").c_str(), color.g);
        add((std::string(place) + " blue").c_str(), color.b);
    }
    void add(const char* place, const nuo::Vec3d& vector) {
        add((std::string(place) + " x").c_str(), vector.x);
        add((std::string(place) + " y").c_str(), vector.y);
        add((std::string(place) + " z").c_str(), vector.z);
    }

private:
    void addValue(const char* place, Field::Value value) {
        m_fields.push_back({m_prefix + place, std::move(value)});
    }

    std::string m_prefix;
    std::vector<Field> m_fields;
};

}  // namespace tools
