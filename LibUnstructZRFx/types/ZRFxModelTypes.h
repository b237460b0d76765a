#pragma once

#include "ZRString.h"

namespace unstruct {

/// What kind of physics a model simulates.
enum class ZRFEMSimulationType : int {
    STRUCTURAL = 0,
    THERMAL = 1,
    FLUID = 2,
    ELECTROMAGNETIC = 3,
    ACOUSTIC = 4,
    MULTIBODY = 5,
    MULTIPHYSICS = 6,
    OTHER = 7
};

/// How the equations were solved.
enum class ZRFEMSolutionType : int {
    LINEAR_STATIC = 0,
    NONLINEAR_STATIC = 1,
    MODAL = 2,
    BUCKLING = 3,
    FREQUENCY_RESPONSE = 4,
    TRANSIENT = 5,
    EXPLICIT_DYNAMIC = 6,
    RESPONSE_SPECTRUM = 7,
    RANDOM_VIBRATION = 8,
    STEADY_STATE = 9,
    FATIGUE = 10,
    OTHER = 11
};

/// The texts by which documents name the types, for example "LinearStatic". An unknown text reads
/// as OTHER, in any capitalization.
ZRString NameOf(ZRFEMSimulationType type);
ZRString NameOf(ZRFEMSolutionType type);
ZRFEMSimulationType SimulationTypeFromName(const ZRString& name);
ZRFEMSolutionType SolutionTypeFromName(const ZRString& name);

}  // namespace unstruct
