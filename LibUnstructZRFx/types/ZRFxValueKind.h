#pragma once

#include <algorithm>
#include <array>
#include <span>

namespace unstruct {

/// What a result has for each item: a number of floats. Files and arrays hold the components of an
/// item one after the other, in this order.
struct ZRFxValueKind {
    const char* name;  ///< In messages.
    std::span<const char* const> components;

    constexpr int Dimension() const { return static_cast<int>(components.size()); }
};

inline constexpr std::array kScalarNames{"value"};
inline constexpr std::array kVectorNames{"x", "y", "z"};
inline constexpr std::array kTensorNames{"xx", "yy", "zz", "xy", "yz", "zx"};

inline constexpr ZRFxValueKind kScalarKind{"scalar", kScalarNames};
inline constexpr ZRFxValueKind kVectorKind{"vector", kVectorNames};
inline constexpr ZRFxValueKind kTensorKind{"tensor", kTensorNames};

/// All kinds. Vectors are arrays of Vec3f in memory, the others arrays of floats. Vectors and
/// tensors have a form of data file of their own, the others are stored as floats.
inline constexpr std::array kValueKinds{&kScalarKind, &kVectorKind, &kTensorKind};

/// The kind of so many components; null when there is none.
constexpr const ZRFxValueKind* ZRFxValueKindOf(int dimension) {
    for (const ZRFxValueKind* kind : kValueKinds) {
        if (kind->Dimension() == dimension) return kind;
    }
    return nullptr;
}

/// How many kinds have so many components.
constexpr int ZRFxCountValueKinds(int dimension) {
    int count = 0;
    for (const ZRFxValueKind* kind : kValueKinds) count += kind->Dimension() == dimension ? 1 : 0;
    return count;
}
static_assert(std::ranges::all_of(kValueKinds,
                                  [](const ZRFxValueKind* kind) {
                                      return ZRFxCountValueKinds(kind->Dimension()) == 1;
                                  }),
              "no two kinds may have as many components");

/// The types of results, by the codes that the library uses in memory.
enum ZRFEMResultType : int {
    RESULT_NONE = 0,
    RESULT_SCALAR = 1,
    RESULT_VECTOR = 2,
    RESULT_DISPLACEMENT = 3,
    RESULT_VISIBILITY = 4,
    RESULT_TENSOR = 5,
    RESULT_ELEMENT = 6,
    RESULT_UNKNOWN = 99  ///< Of a base result only; written "Unknown".
};

struct ZRFxResultTypeRecord {
    ZRFEMResultType code;
    const char* name;  ///< In documents.
    int dimension;     ///< Of the kind of its values; 0 where the type says nothing of them.

    constexpr bool HasValueKind() const { return dimension != 0; }
};

/// All types. Those that have a kind of values are the public ones, in the order of their public
/// numbers from 0 on.
inline constexpr std::array kResultTypes{
    ZRFxResultTypeRecord{RESULT_NONE, "None", 0},
    ZRFxResultTypeRecord{RESULT_SCALAR, "Scalar", kScalarKind.Dimension()},
    ZRFxResultTypeRecord{RESULT_VECTOR, "Vector", kVectorKind.Dimension()},
    ZRFxResultTypeRecord{RESULT_DISPLACEMENT, "Displacement", kVectorKind.Dimension()},
    ZRFxResultTypeRecord{RESULT_VISIBILITY, "Visibility", 0},
    ZRFxResultTypeRecord{RESULT_TENSOR, "Tensor", kTensorKind.Dimension()},
    ZRFxResultTypeRecord{RESULT_ELEMENT, "Element", 0}};

static_assert(std::ranges::all_of(kResultTypes,
                                  [](const ZRFxResultTypeRecord& record) {
                                      return !record.HasValueKind() ||
                                             ZRFxCountValueKinds(record.dimension) == 1;
                                  }),
              "the kind of a type must be among kValueKinds");

/// The dimension of the values of a type of results; 0 where the type says nothing of them.
constexpr int ZRFxDimensionOfResult(int resultType) {
    for (const ZRFxResultTypeRecord& record : kResultTypes) {
        if (record.code == resultType) return record.dimension;
    }
    return 0;
}

}  // namespace unstruct
