#include "types/ZRFxModelTypes.h"

#include <array>

namespace unstruct {
namespace {

constexpr std::array kSimulationNames{"Structural", "Thermal",   "Fluid",        "Electromagnetic",
                                      "Acoustic",   "Multibody", "Multiphysics", "Other"};

constexpr std::array kSolutionNames{"LinearStatic",    "NonlinearStatic",   "Modal",
                                    "Buckling",        "FrequencyResponse", "Transient",
                                    "ExplicitDynamic", "ResponseSpectrum",  "RandomVibration",
                                    "SteadyState",     "Fatigue",           "Other"};

// A type beyond the table, which only a cast can make, is named as the last one, "Other".
template <typename Type, typename Names>
ZRString nameIn(const Names& names, Type type) {
    const auto index = static_cast<std::size_t>(type);
    return index < names.size() ? names[index] : names.back();
}

template <typename Type, typename Names>
Type typeIn(const Names& names, const ZRString& name) {
    std::size_t index = 0;
    while (index + 1 < names.size() && ZRString(names[index]).ToLower() != name.ToLower()) ++index;
    return static_cast<Type>(index);
}

}  // namespace

ZRString NameOf(ZRFEMSimulationType type) {
    return nameIn(kSimulationNames, type);
}

ZRString NameOf(ZRFEMSolutionType type) {
    return nameIn(kSolutionNames, type);
}

ZRFEMSimulationType SimulationTypeFromName(const ZRString& name) {
    return typeIn<ZRFEMSimulationType>(kSimulationNames, name);
}

ZRFEMSolutionType SolutionTypeFromName(const ZRString& name) {
    return typeIn<ZRFEMSolutionType>(kSolutionNames, name);
}

}  // namespace unstruct
