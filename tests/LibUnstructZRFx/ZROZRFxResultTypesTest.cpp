#include "ZROZRFxResultTypes.h"

#include <gtest/gtest.h>

#include "ZROZRFxCrossSectionsBlock.h"
#include "ZROZRFxModelTypes.h"
#include "ZROZRFxPrecomputedItemBlock.h"
#include "support/LogCapture.h"

namespace unstruct {
namespace {

using NameOfCode = ZRString (*)(int);
using CodeOfName = int (*)(const ZRString&);

struct Row {
    NameOfCode nameOf;
    CodeOfName codeOf;
    int code;
    const char* name;
    int readAs;  // what the name, in upper case, reads as
};

ZRString SimulationName(int code) {
    return NameOf(static_cast<ZRFEMSimulationType>(code));
}
int SimulationCode(const ZRString& name) {
    return static_cast<int>(SimulationTypeFromName(name));
}
ZRString SolutionName(int code) {
    return NameOf(static_cast<ZRFEMSolutionType>(code));
}
int SolutionCode(const ZRString& name) {
    return static_cast<int>(SolutionTypeFromName(name));
}

TEST(ResultTypes, NamesAreWrittenAsTheFormatHasThemAndReadInAnyCase) {
    const Row kRows[] = {
        {ResultTypeName, ResultTypeFromName, 0, "None", 1},
        {ResultTypeName, ResultTypeFromName, 1, "Scalar", 1},
        {ResultTypeName, ResultTypeFromName, 2, "Vector", 2},
        {ResultTypeName, ResultTypeFromName, 3, "Displacement", 3},
        {ResultTypeName, ResultTypeFromName, 4, "Visibility", 4},
        {ResultTypeName, ResultTypeFromName, 5, "Tensor", 5},
        {ResultTypeName, ResultTypeFromName, 6, "Element", 6},
        {ResultTypeName, ResultTypeFromName, 7, "Unknown", 1},
        {StrainTypeName, StrainTypeFromName, 0, "None", 0},
        {StrainTypeName, StrainTypeFromName, 1, "Engineering", 1},
        {StrainTypeName, StrainTypeFromName, 2, "Standard", 2},
        {StrainTypeName, StrainTypeFromName, -1, "None", 0},
        {ResultMappingName, ResultMappingFromName, 0, "Unknown", 99},
        {ResultMappingName, ResultMappingFromName, 1, "Node", 1},
        {ResultMappingName, ResultMappingFromName, 2, "Element", 2},
        {ResultMappingName, ResultMappingFromName, 3, "ElementNode", 3},
        {ResultMappingName, ResultMappingFromName, 4, "Surface", 4},
        {nullptr, ResultMappingFromName, 0, "Polygon", 2},
        {nullptr, ResultMappingFromName, 0, "PolygonNode", 3},
        {nullptr, ResultMappingFromName, 0, "SurfaceNode", 99},
        {nullptr, ResultMappingFromName, 0, "", 99},
        {ComponentName, ComponentFromName, 0, "None", 0},
        {ComponentName, ComponentFromName, 3, "Z Component", 3},
        {ComponentName, ComponentFromName, 4, "Magnitude", 4},
        {ComponentName, ComponentFromName, 10, "ZX Component", 10},
        {ComponentName, ComponentFromName, 11, "Von Mises", 11},
        {ComponentName, ComponentFromName, 12, "1st Principal", 12},
        {ComponentName, ComponentFromName, 17, "3rd Principal Vector", 17},
        {ComponentName, ComponentFromName, 18, "Displacement Vector", 18},
        {ComponentName, ComponentFromName, 19, "Unknown", 99},
        {ReferenceTypeName, ReferenceTypeFromName, 0, "Time", 0},
        {ReferenceTypeName, ReferenceTypeFromName, 1, "Frequency", 1},
        {ReferenceTypeName, ReferenceTypeFromName, 2, "LoadCase", 2},
        {ReferenceTypeName, ReferenceTypeFromName, 3, "Other", 3},
        {ReferenceTypeName, ReferenceTypeFromName, 4, "Unknown", 3},
        {VectorTypeName, VectorTypeFromName, 1, "NORMAL_ARROW", 1},
        {VectorTypeName, VectorTypeFromName, 101, "SYMMETRIC_ARROW", 101},
        {VectorTypeName, VectorTypeFromName, 102, "SYMMETRIC_REVERSE_ARROW", 102},
        {CrossSectionTypeName, CrossSectionTypeFromName, 0, "IORH", 0},
        {CrossSectionTypeName, CrossSectionTypeFromName, 4, "L", 4},
        {CrossSectionTypeName, CrossSectionTypeFromName, 7, "UNSYMMETRIC_I", 7},
        {CrossSectionTypeName, CrossSectionTypeFromName, 8, "CONE", 8},
        {CrossSectionTypeName, CrossSectionTypeFromName, -999, "UNKNOWN", -999},
        {PrecomputedItemTypeName, PrecomputedItemTypeFromName, 0, "Cutplane", 0},
        {PrecomputedItemTypeName, PrecomputedItemTypeFromName, 4, "ParticleTrace", 4},
        {PrecomputedItemTypeName, PrecomputedItemTypeFromName, 5, "Unknown", 5},
        {PrecomputedItemTypeName, PrecomputedItemTypeFromName, -1, "Unknown", 5},
        {SimulationName, SimulationCode, 0, "Structural", 0},
        {SimulationName, SimulationCode, 6, "Multiphysics", 6},
        {SimulationName, SimulationCode, -1, "Other", 7},
        {SolutionName, SolutionCode, 0, "LinearStatic", 0},
        {SolutionName, SolutionCode, 10, "Fatigue", 10},
        {SolutionName, SolutionCode, 99, "Other", 11},
    };
    for (const Row& row : kRows) {
        if (row.nameOf) {
            EXPECT_EQ(row.nameOf(row.code), row.name) << row.code;
        }
        EXPECT_EQ(row.codeOf(ZRString(row.name).ToUpper()), row.readAs) << row.name;
        EXPECT_EQ(row.codeOf(row.name), row.readAs) << row.name;
    }
}

using ResultTypesFault = test::LogCapture;

TEST_F(ResultTypesFault, VectorTypeThatIsNoneIsAnAssertion) {
    EXPECT_EQ(VectorTypeName(2), "UNKNOWN");
    ExpectFailure("Unknown vector type");
}

}  // namespace
}  // namespace unstruct
