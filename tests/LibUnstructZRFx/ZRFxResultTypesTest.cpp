#include "types/ZRFxResultTypes.h"

#include "blocks/mesh/ZRFxCrossSectionsBlock.h"
#include "support/LogCapture.h"
#include "types/ZRFxModelTypes.h"

namespace unstruct {
namespace {

// Any case, the names of older files, and what an unknown one stands for.
TEST(ResultTypes, NamesAreReadInEveryFormThatFilesHave) {
    const struct {
        int (*codeOf)(const ZRString&);
        const char* name;
        int code;
    } kRows[] = {
        {ResultTypeFromName, "DISPLACEMENT", 3},   {ResultTypeFromName, "None", 1},
        {ResultMappingFromName, "elementnode", 3}, {ResultMappingFromName, "Polygon", 2},
        {ResultMappingFromName, "PolygonNode", 3}, {ResultMappingFromName, "", 99},
        {ComponentFromName, "von mises", 11},      {ComponentFromName, "Unknown", 99},
        {ReferenceTypeFromName, "loadcase", 2},    {ReferenceTypeFromName, "Unknown", 3},
        {CrossSectionTypeFromName, "cone", 8},     {CrossSectionTypeFromName, "x", -999},
    };
    for (const auto& [codeOf, name, code] : kRows) EXPECT_EQ(codeOf(name), code) << name;
    EXPECT_EQ(SimulationTypeFromName("MULTIPHYSICS"), ZRFEMSimulationType::MULTIPHYSICS);
    EXPECT_EQ(SolutionTypeFromName("x"), ZRFEMSolutionType::OTHER);
}

TEST(ResultTypes, EveryNameReadsAsItsCode) {
    for (int code = 1; code <= 6; ++code) EXPECT_EQ(ResultTypeFromName(ResultTypeName(code)), code);
    for (int code = 0; code <= 18; ++code) EXPECT_EQ(ComponentFromName(ComponentName(code)), code);
    for (int code = 0; code <= 8; ++code) {
        EXPECT_EQ(CrossSectionTypeFromName(CrossSectionTypeName(code)), code);
    }
}

using ResultTypesFault = test::LogCapture;

TEST_F(ResultTypesFault, VectorTypeThatIsNoneIsAnAssertion) {
    EXPECT_EQ(VectorTypeName(2), "UNKNOWN");
    ExpectFailure("Unknown vector type");
}

}  // namespace
}  // namespace unstruct
