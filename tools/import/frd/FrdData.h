#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tools {

/// The lines before the mesh, which describe the run: plain data.
struct FrdHeader {
    std::string program;                       ///< Name and version of the solver.
    std::string date;                          ///< Day and time as the solver wrote them.
    std::string title;                         ///< The first free text; may be empty.
    std::map<int, std::string> materialNames;  ///< By material number.
};

/// Elements of one material and one .frd element type, which is 1 to 12.
struct FrdElementGroup {
    std::vector<int> ids;
    std::vector<int> nodes;  ///< Node ids in the order of the .frd file, element after element.
};

/// By material number and .frd element type.
using FrdElements = std::map<std::pair<int, int>, FrdElementGroup>;

/// Common to all results of one state.
struct FrdStep {
    enum Analysis : int { STATIC = 0, TIME_STEP = 1, FREQUENCY = 2, LOAD_STEP = 3, BUCKLING = 4 };

    int analysis = STATIC;
    std::string analysisName;
    int number = 0;    ///< Of the output.
    int mode = 0;      ///< Of a frequency analysis, 0 when it is not known.
    double value = 0;  ///< Time, frequency or load factor.
    int increment = 0;
    int step = 0;
    std::optional<int> nodalDiameter;  ///< Of a mode of a cyclic model.

    bool operator==(const FrdStep&) const = default;
};

/// A component that is stored in the file.
struct FrdComponent {
    enum Kind : int { SCALAR = 1, VECTOR = 2, TENSOR = 4 };

    std::string name;
    int kind = SCALAR;  ///< The solver's own classes besides are taken as they come.

    bool operator==(const FrdComponent&) const = default;
};

/// One result of one state at nodes.
struct FrdResult {
    FrdStep step;
    std::string name;
    std::vector<FrdComponent> components;
    std::vector<int> nodeIds;
    std::vector<float> values;  ///< All components of a node, node after node.
};

}  // namespace tools
