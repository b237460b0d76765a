#include "quantities/Statistics.h"

#include "ZRUndefined.h"

namespace tools {
namespace {

using namespace unstruct;

void take(float value, const ResultRow& row, QuantityStatistics& statistics) {
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

bool computeStatistics(ResultRows& rows, const ZRFxResultBlock& result, int state,
                       ItemFilter* filter, std::vector<QuantityStatistics>* statistics) {
    const auto quantities = Quantity::all(componentCount(result));
    const bool isEngineering = hasEngineeringShear(result);
    statistics->assign(quantities.size(), {});
    const bool isRead = rows.forEach(result, state, filter, [&](const ResultRow& row) {
        for (std::size_t q = 0; q < quantities.size(); ++q) {
            take(quantities[q].of(row.values, isEngineering), row, (*statistics)[q]);
        }
    });
    for (std::size_t q = 0; q < quantities.size(); ++q) {
        QuantityStatistics& own = (*statistics)[q];
        own.quantity = quantities[q].name();
        if (own.count == 0) continue;
        own.mean /= static_cast<double>(own.count);
        const int mapping = result.GetDescription().resultMapping;
        locate(rows, mapping, state, own.min);
        locate(rows, mapping, state, own.max);
    }
    return isRead;
}

}  // namespace tools
