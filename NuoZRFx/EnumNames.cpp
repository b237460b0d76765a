// The names of the enumerators of the public interface. An enumerator without a name does not
// compile without a warning.
#include "NuoZRFx/Database.h"
#include "NuoZRFx/ElementBlock.h"
#include "NuoZRFx/Error.h"
#include "NuoZRFx/ResultBlock.h"
#include "NuoZRFx/SetBlock.h"
#include "NuoZRFx/StateInfoBlock.h"

namespace nuo::zrfx {

const char* Block::blockTypeName(BlockType type) {
    switch (type) {
        case NODES:
            return "NODES";
        case ELEMENTS:
            return "ELEMENTS";
        case GEOMETRY:
            return "GEOMETRY";
        case GEOMETRY_INFO:
            return "GEOMETRY_INFO";
        case RESULT:
            return "RESULT";
        case RESULT_VALUES:
            return "RESULT_VALUES";
        case TRANSFORMATION_RESULT:
            return "TRANSFORMATION_RESULT";
        case TRANSFORMATION_RESULT_VALUES:
            return "TRANSFORMATION_RESULT_VALUES";
        case STATE_INFO:
            return "STATE_INFO";
        case SET:
            return "SET";
        case INVALID_BLOCK:
            return "INVALID_BLOCK";
    }
    return "";
}

const char* ElementBlock::elementTypeName(ElementType elementType) {
    switch (elementType) {
        case POINTS:
            return "POINTS";
        case BEAMS:
            return "BEAMS";
        case BEAMS_3:
            return "BEAMS_3";
        case TRIANGLES:
            return "TRIANGLES";
        case TRIANGLES_6:
            return "TRIANGLES_6";
        case QUADS:
            return "QUADS";
        case QUADS_8:
            return "QUADS_8";
        case QUADS_9:
            return "QUADS_9";
        case PYRAMIDS:
            return "PYRAMIDS";
        case PYRAMIDS_13:
            return "PYRAMIDS_13";
        case TETRAHEDRONS:
            return "TETRAHEDRONS";
        case TETRAHEDRONS_10:
            return "TETRAHEDRONS_10";
        case HEXAHEDRONS:
            return "HEXAHEDRONS";
        case HEXAHEDRONS_20:
            return "HEXAHEDRONS_20";
        case PENTAHEDRONS:
            return "PENTAHEDRONS";
        case PENTAHEDRONS_15:
            return "PENTAHEDRONS_15";
        case POLYHEDRONS:
            return "POLYHEDRONS";
        case UNKNOWN:
            return "UNKNOWN";
    }
    return "";
}

const char* ResultBlock::resultTypeName(ResultType type) {
    switch (type) {
        case UNDEFINED_TYPE:
            return "UNDEFINED_TYPE";
        case SCALAR:
            return "SCALAR";
        case VECTOR:
            return "VECTOR";
        case DISPLACEMENT:
            return "DISPLACEMENT";
        case TENSOR:
            return "TENSOR";
    }
    return "";
}

const char* ResultBlock::resultMappingName(ResultMapping mapping) {
    switch (mapping) {
        case UNDEFINED_MAPPING:
            return "UNDEFINED_MAPPING";
        case NODE_MAPPING:
            return "NODE_MAPPING";
        case ELEMENT_MAPPING:
            return "ELEMENT_MAPPING";
        case ELEMENT_NODE_MAPPING:
            return "ELEMENT_NODE_MAPPING";
        case SURFACE_MAPPING:
            return "SURFACE_MAPPING";
    }
    return "";
}

const char* ResultBlock::strainTypeName(StrainType strainType) {
    switch (strainType) {
        case NO_STRAIN:
            return "NO_STRAIN";
        case ENGINEERING_STRAIN:
            return "ENGINEERING_STRAIN";
        case STANDARD_STRAIN:
            return "STANDARD_STRAIN";
    }
    return "";
}

const char* StateInfoBlock::referenceValueTypeName(ReferenceValueType type) {
    switch (type) {
        case TIME:
            return "TIME";
        case FREQUENCY:
            return "FREQUENCY";
        case LOAD_CASE:
            return "LOAD_CASE";
        case OTHER:
            return "OTHER";
    }
    return "";
}

const char* SetBlock::itemTypeName(ItemType itemType) {
    switch (itemType) {
        case ELEMENT_ITEMS:
            return "ELEMENT_ITEMS";
        case UNDEFINED_ITEMS:
            return "UNDEFINED_ITEMS";
    }
    return "";
}

const char* Database::simulationTypeName(SimulationType type) {
    switch (type) {
        case STRUCTURAL:
            return "STRUCTURAL";
        case THERMAL:
            return "THERMAL";
        case FLUID:
            return "FLUID";
        case ELECTROMAGNETIC:
            return "ELECTROMAGNETIC";
        case ACOUSTIC:
            return "ACOUSTIC";
        case MULTIBODY:
            return "MULTIBODY";
        case MULTIPHYSICS:
            return "MULTIPHYSICS";
        case OTHER_SIMULATION:
            return "OTHER_SIMULATION";
    }
    return "";
}

const char* Database::solutionTypeName(SolutionType type) {
    switch (type) {
        case LINEAR_STATIC:
            return "LINEAR_STATIC";
        case NONLINEAR_STATIC:
            return "NONLINEAR_STATIC";
        case MODAL:
            return "MODAL";
        case BUCKLING:
            return "BUCKLING";
        case FREQUENCY_RESPONSE:
            return "FREQUENCY_RESPONSE";
        case TRANSIENT:
            return "TRANSIENT";
        case EXPLICIT_DYNAMIC:
            return "EXPLICIT_DYNAMIC";
        case RESPONSE_SPECTRUM:
            return "RESPONSE_SPECTRUM";
        case RANDOM_VIBRATION:
            return "RANDOM_VIBRATION";
        case STEADY_STATE:
            return "STEADY_STATE";
        case FATIGUE:
            return "FATIGUE";
        case OTHER_SOLUTION:
            return "OTHER_SOLUTION";
    }
    return "";
}

const char* Error::codeName(Code code) {
    switch (code) {
        case NONE:
            return "NONE";
        case INVALID_ARGUMENT:
            return "INVALID_ARGUMENT";
        case NOT_INITIALIZED:
            return "NOT_INITIALIZED";
        case NOT_OPEN:
            return "NOT_OPEN";
        case READ_ONLY:
            return "READ_ONLY";
        case NOT_FOUND:
            return "NOT_FOUND";
        case NO_REGULAR_FILE:
            return "NO_REGULAR_FILE";
        case NO_ZRFX_FILE:
            return "NO_ZRFX_FILE";
        case PASSWORD_NEEDED:
            return "PASSWORD_NEEDED";
        case WRONG_PASSWORD:
            return "WRONG_PASSWORD";
        case DAMAGED:
            return "DAMAGED";
        case IN_USE:
            return "IN_USE";
        case CHANGED:
            return "CHANGED";
        case EXISTS:
            return "EXISTS";
        case NO_PERMISSION:
            return "NO_PERMISSION";
        case DISK_FULL:
            return "DISK_FULL";
        case SYSTEM_ERROR:
            return "SYSTEM_ERROR";
        case OUT_OF_MEMORY:
            return "OUT_OF_MEMORY";
        case TOO_LARGE:
            return "TOO_LARGE";
        case INVALID_CONTENT:
            return "INVALID_CONTENT";
        case INCOMPLETE:
            return "INCOMPLETE";
        case CANCELLED:
            return "CANCELLED";
    }
    return "";
}

}  // namespace nuo::zrfx
