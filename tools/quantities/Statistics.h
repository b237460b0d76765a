#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "NuoCore/Vec3f.h"
#include "quantities/DerivedQuantities.h"
#include "quantities/ResultLookup.h"
#include "quantities/ResultRows.h"

namespace tools {

/// A value and the item that has it.
struct Extreme {
    float value = 0;
    ResultRow row;  ///< Without its values.
    std::optional<int> part;
    std::string partName;
    std::optional<nuo::Vec3f> position;
};

/// Adds part and position, from what the row says.
void locate(ResultRows& rows, int mapping, int state, Extreme& extreme);

/// What one quantity of a result is like in one state. Items without a value do not count.
struct QuantityStatistics {
    std::string quantity;
    std::int64_t count = 0;
    std::int64_t undefinedCount = 0;
    double mean = 0;
    Extreme min;  ///< The first item that has the lowest value; of no meaning without values.
    Extreme max;
};

/// Gathers the statistics of all quantities of a result in a state from its rows.
class StatisticsCollector {
public:
    explicit StatisticsCollector(const unstruct::ZRFxResultBlock& result);

    void take(const ResultRow& row);

    /// The statistics of what was taken, with the places of the extremes.
    std::vector<QuantityStatistics> finish(ResultRows& rows, int state);

private:
    const std::vector<Quantity> m_quantities;
    const bool m_isEngineering;
    const int m_mapping;
    std::vector<QuantityStatistics> m_statistics;
};

/// The statistics of all quantities of a result in a state, over the chosen items. False when
/// something cannot be read, with the library's message.
bool computeStatistics(ResultRows& rows, const unstruct::ZRFxResultBlock& result, int state,
                       ItemFilter* filter, std::vector<QuantityStatistics>* statistics);

}  // namespace tools
