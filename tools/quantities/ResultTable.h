#pragma once

#include <string>
#include <vector>

#include "content/Table.h"
#include "quantities/ItemFilter.h"

namespace tools {

struct ResultTableOptions {
    std::string result;                   ///< Name or id.
    std::vector<std::string> states;      ///< Names or ids; empty stands for all.
    std::vector<std::string> quantities;  ///< By name; empty stands for the components.
    ItemChoice choice;
    bool hasCoordinates = false;
    bool isHistory = false;  ///< Item by item, in each all states.
};

/// Writes the values of a result: a row for each item in each state, with columns for state, item,
/// position and quantities. False, with the cause unless the library's log has it.
bool writeResultTable(unstruct::ZRFxDatabase& database, const ResultTableOptions& options,
                      Table& table, std::string* error);

}  // namespace tools
