#pragma once

#include <cstddef>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "NuoZRFx/Database.h"
#include "NuoZRFx/ElementBlock.h"
#include "NuoZRFx/ResultBlock.h"
#include "NuoZRFx/StateInfoBlock.h"

namespace tools {

/// The contents of a file as a reader delivers them, whatever its format: plain data. All ids are
/// those of the file, 0 or more.

/// Values of this size or above stand for "no value".
constexpr float kUndefined = 2.99e38f;

/// The description that a file gives of itself. It counts as it is when the first result is
/// delivered, or at the end when there is none.
struct ImportHeader {
    std::string title;
    std::string program;  ///< Name and version of what made the file.
    std::string date;
    nuo::zrfx::Database::SimulationType simulation = nuo::zrfx::Database::OTHER_SIMULATION;
    nuo::zrfx::Database::SolutionType solution = nuo::zrfx::Database::OTHER_SOLUTION;
    std::map<int, std::string> partNames;  ///< By part id; a part without is called "Part 3".
};

struct ImportNodes {
    std::vector<int> ids;
    std::vector<float> coordinates;  ///< x y z of each node.
};

/// Elements of one part and one type.
struct ImportElementGroup {
    int partId = 0;
    nuo::zrfx::ElementBlock::ElementType type = nuo::zrfx::ElementBlock::UNKNOWN;
    std::vector<int> ids;
    std::vector<int> nodes;  ///< Node ids, element after element.

    /// For each node of an element in the library's order, its place in the order of the file.
    /// Empty where the two are the same.
    std::span<const int> order;

    bool isHidden = false;  ///< The part says what belongs together; the view does not show it.

    std::size_t placeInFile(std::size_t node) const {
        return order.empty() ? node : static_cast<std::size_t>(order[node]);
    }
};

/// A named set of elements, which lie in parts besides.
struct ImportSet {
    std::string name;
    std::vector<int> elementIds;
};

struct ImportElements {
    std::vector<ImportElementGroup> groups;  ///< In any order.
    std::vector<ImportSet> sets;
    std::map<int, std::string> partNames;  ///< In place of those of the header.
};

struct ImportState {
    int id = 0;
    std::string name;  ///< Empty: "State" and the id.
    double value = 0;
    nuo::zrfx::StateInfoBlock::ReferenceValueType type = nuo::zrfx::StateInfoBlock::OTHER;
    bool isModeShape = false;  ///< The size of its displacements says nothing.
};

/// One result among values: what is the same in all states.
struct ImportField {
    /// By its role a viewer is given the result to show first.
    enum Role { PLAIN, STRESS, TEMPERATURE };

    nuo::zrfx::ResultBlock::ResultType type = nuo::zrfx::ResultBlock::SCALAR;
    std::string name;
    std::string fallbackName;  ///< Where another result has that name already.
    nuo::zrfx::ResultBlock::StrainType strainType = nuo::zrfx::ResultBlock::NO_STRAIN;
    Role role = PLAIN;

    // Kept as attributes. With type and mapping they tell one result from another.
    std::string source;      ///< Its name in the file.
    std::string components;  ///< The names of its components, with blanks between.

    /// Values per item.
    std::size_t size() const {
        if (type == nuo::zrfx::ResultBlock::SCALAR) return 1;
        return type == nuo::zrfx::ResultBlock::TENSOR ? 6 : 3;
    }
};

/// Values of one or more results in one state. States come in any order, results of one state
/// together or not.
struct ImportValues {
    ImportState state;
    nuo::zrfx::ResultBlock::ResultMapping mapping = nuo::zrfx::ResultBlock::NODE_MAPPING;
    std::vector<ImportField> fields;
    std::vector<int> ids;  ///< Of nodes, or of elements.

    /// Of ELEMENT_NODE_MAPPING only: the number of rows of each element, which are those of its
    /// nodes in the order of the file.
    std::vector<int> rowCounts;

    std::vector<float> values;  ///< Row after row, each with the values of all fields.
};

/// All of these: what has been delivered last, or, of the header and the notes, so far.
struct ImportData {
    ImportHeader header;
    ImportNodes nodes;
    ImportElements elements;
    ImportValues values;
    std::string damage;              ///< Place and reason.
    std::vector<std::string> notes;  ///< On anything changed or left out, one per line.
};

}  // namespace tools
