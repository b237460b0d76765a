#include "quantities/Statistics.h"

#include <utility>

#include "ZRUndefined.h"

namespace tools {
namespace {

using namespace unstruct;

void takeValue(float value, const ResultRow& row, QuantityStatistics& statistics) {
    if (IsUndefined(value)) {
        ++statistics.undefinedCount;
        return;
    }
    const bool isFirst = statistics.count++ == 0;
    statistics.mean += double{value};  // the sum, until all are there
    for (const bool isMin : {true, false}) {
        Extreme& extreme = isMin ? statistics.min : statistics.max;
        const bool isBeyond = isMin ? value < extreme.value : value > extreme.value;
        if (!isFirst && !isBeyond) continue;
        extreme.value = value;
        extreme.row = row;
        extreme.row.values = {};
    }
}

}  // namespace

void locate(ResultRows& rows, int mapping, int state, Extreme& extreme) {
    extreme.position = rows.positionOf(extreme.row, mapping);
    const PartItems* part = rows.partOf(extreme.row, mapping, state);
    if (!part) return;
    extreme.part = part->id;
    extreme.partName = part->name;
}

StatisticsCollector::StatisticsCollector(const ZRFxResultBlock& result)
    : m_quantities(Quantity::all(componentCount(result))),
      m_isEngineering(hasEngineeringShear(result)),
      m_mapping(result.GetDescription().resultMapping),
      m_statistics(m_quantities.size()) {}

void StatisticsCollector::take(const ResultRow& row) {
    const ItemComponents item(row.values, m_isEngineering);
    for (std::size_t q = 0; q < m_quantities.size(); ++q) {
        takeValue(m_quantities[q].of(item), row, m_statistics[q]);
    }
}

std::vector<QuantityStatistics> StatisticsCollector::finish(ResultRows& rows, int state) {
    for (std::size_t q = 0; q < m_quantities.size(); ++q) {
        QuantityStatistics& own = m_statistics[q];
        own.quantity = m_quantities[q].name();
        if (own.count == 0) continue;
        own.mean /= static_cast<double>(own.count);
        locate(rows, m_mapping, state, own.min);
        locate(rows, m_mapping, state, own.max);
    }
    return std::move(m_statistics);
}

bool computeStatistics(ResultRows& rows, const ZRFxResultBlock& result, int state,
                       ItemFilter* filter, std::vector<QuantityStatistics>* statistics) {
    StatisticsCollector collector(result);
    const bool isRead =
        rows.forEach(result, state, filter, [&](const ResultRow& row) { collector.take(row); });
    *statistics = collector.finish(rows, state);
    return isRead;
}

}  // namespace tools
