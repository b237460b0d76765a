#include "types/ZRFxResultTypes.h"

#include <array>

#include "nvf/Assert.h"

namespace unstruct {
namespace {

struct CodeName {
    int code;
    const char* name;
};

constexpr std::array kStrainTypes{CodeName{STRAIN_NONE, "None"},
                                  CodeName{STRAIN_ENGINEERING, "Engineering"},
                                  CodeName{STRAIN_STANDARD, "Standard"}};

constexpr std::array kMappings{CodeName{MAPPING_NODE, "Node"},
                               CodeName{MAPPING_ELEMENT, "Element"},
                               CodeName{MAPPING_ELEMENT, "Polygon"},
                               CodeName{MAPPING_ELEMENT_NODE, "ElementNode"},
                               CodeName{MAPPING_ELEMENT_NODE, "PolygonNode"},
                               CodeName{MAPPING_SURFACE, "Surface"}};

constexpr std::array kComponents{CodeName{0, "None"},
                                 CodeName{1, "X Component"},
                                 CodeName{2, "Y Component"},
                                 CodeName{3, "Z Component"},
                                 CodeName{4, "Magnitude"},
                                 CodeName{5, "XX Component"},
                                 CodeName{6, "YY Component"},
                                 CodeName{7, "ZZ Component"},
                                 CodeName{8, "XY Component"},
                                 CodeName{9, "YZ Component"},
                                 CodeName{10, "ZX Component"},
                                 CodeName{11, "Von Mises"},
                                 CodeName{12, "1st Principal"},
                                 CodeName{13, "2nd Principal"},
                                 CodeName{14, "3rd Principal"},
                                 CodeName{15, "1st Principal Vector"},
                                 CodeName{16, "2nd Principal Vector"},
                                 CodeName{17, "3rd Principal Vector"},
                                 CodeName{18, "Displacement Vector"}};

constexpr std::array kReferenceTypes{
    CodeName{REFERENCE_TIME, "Time"}, CodeName{REFERENCE_FREQUENCY, "Frequency"},
    CodeName{REFERENCE_LOAD_CASE, "LoadCase"}, CodeName{REFERENCE_OTHER, "Other"}};

constexpr std::array kVectorTypes{
    CodeName{VECTOR_NORMAL_ARROW, "NORMAL_ARROW"},
    CodeName{VECTOR_SYMMETRIC_ARROW, "SYMMETRIC_ARROW"},
    CodeName{VECTOR_SYMMETRIC_REVERSE_ARROW, "SYMMETRIC_REVERSE_ARROW"}};

template <typename Names>
ZRString nameOf(const Names& names, int code, const char* fallback) {
    for (const auto& entry : names) {
        if (entry.code == code) return entry.name;
    }
    return fallback;
}

template <typename Names>
int codeOf(const Names& names, const ZRString& name, int fallback) {
    for (const auto& entry : names) {
        if (ZRString(entry.name).ToUpper() == name.ToUpper()) return entry.code;
    }
    return fallback;
}

}  // namespace

ZRString ResultTypeName(int type) {
    return nameOf(kResultTypes, type, "Unknown");
}

int ResultTypeFromName(const ZRString& name) {
    const int type = codeOf(kResultTypes, name, RESULT_SCALAR);
    return type == RESULT_NONE ? static_cast<int>(RESULT_SCALAR) : type;
}

ZRString StrainTypeName(int type) {
    return nameOf(kStrainTypes, type, "None");
}

int StrainTypeFromName(const ZRString& name) {
    return codeOf(kStrainTypes, name, STRAIN_NONE);
}

ZRString ResultMappingName(int mapping) {
    return nameOf(kMappings, mapping, "Unknown");
}

int ResultMappingFromName(const ZRString& name) {
    return codeOf(kMappings, name, MAPPING_UNKNOWN);
}

ZRString ComponentName(int component) {
    return nameOf(kComponents, component, "Unknown");
}

int ComponentFromName(const ZRString& name) {
    return codeOf(kComponents, name, kComponentUnknown);
}

ZRString ReferenceTypeName(int type) {
    return nameOf(kReferenceTypes, type, "Unknown");
}

int ReferenceTypeFromName(const ZRString& name) {
    return codeOf(kReferenceTypes, name, REFERENCE_OTHER);
}

ZRString VectorTypeName(int type) {
    const ZRString name = nameOf(kVectorTypes, type, "UNKNOWN");
    if (name == "UNKNOWN") NVF_FAIL("Unknown vector type");
    return name;
}

int VectorTypeFromName(const ZRString& name) {
    return codeOf(kVectorTypes, name, VECTOR_NORMAL_ARROW);
}

}  // namespace unstruct
