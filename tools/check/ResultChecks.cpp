// Values of results, and the numbers that all blocks have.
#include <algorithm>
#include <array>
#include <cmath>

#include "Text.h"
#include "ZRUndefined.h"
#include "check/BlockChecks.h"
#include "check/CheckedDatabase.h"
#include "content/BlockGroup.h"
#include "content/Content.h"
#include "types/ZRFxResultTypes.h"

namespace tools {
namespace {

using namespace unstruct;

// Values that are no numbers. NaN and plus infinity read as "no value" in results, as do
// the markers of undefined values, which are meant.
void checkReals(const std::string& place, const Reals& reals, Reporter& reporter) {
    for (std::size_t i = 0; i < reals.values.size(); ++i) {
        const float value = reals.values[i];
        if (std::isfinite(value)) continue;
        const auto item = static_cast<std::int64_t>(i) / reals.components;
        const std::string where = place + numbered(", item", item);
        if (IsUndefined(value)) {
            reporter.warning(where, numberText(value) + " reads as no value");
        } else {
            reporter.error(where, "the value is " + numberText(value));
        }
    }
}

// Ids of items are those of the target, or indices where it has none.
void checkItemIds(const ZRFxResultValuesBlock& values, int mapping, CheckedDatabase& checked) {
    const bool isNode = mapping == MAPPING_NODE;
    if (!isNode && mapping != MAPPING_ELEMENT) return;
    const int target = values.GetMapToBlockID();
    const ZRFxItemCounts* counts =
        checked.model().CountsOf(isNode ? BLOCK_NODES : BLOCK_ELEMENTS, target);
    if (!counts) return;
    const IdIndex* ids = nullptr;
    if (isNode) {
        const CheckedDatabase::Nodes* nodes = checked.nodes(target);
        ids = nodes && nodes->ids ? &*nodes->ids : nullptr;
    } else {
        ids = checked.elementIds(target);
    }
    Reporter reporter = checked.reporter("item-id", values);
    const auto items = itemsOf(*values.GetIDs());
    for (std::size_t i = 0; i < items.size(); ++i) {
        const bool isThere =
            ids ? ids->indexOf(items[i]) >= 0 : items[i] >= 0 && items[i] < counts->items;
        if (isThere) continue;
        reporter.error(numbered("item", static_cast<std::int64_t>(i)),
                       std::string("there is no ") + (isNode ? "node" : "element") +
                           (ids ? " of id " : " ") + std::to_string(items[i]));
    }
}

}  // namespace

// Coordinates of nodes, which must be there, have a check of their own.
void checkNumbers(const ZRFxBlock& block, CheckedDatabase& checked) {
    if (block.GetType() == BLOCK_NODES) return;
    Reporter reporter = checked.reporter("number", block);
    for (const Field& field : contentOf(block)) {
        if (const auto* reals = std::get_if<Reals>(&field.value)) {
            checkReals(field.place, *reals, reporter);
        } else if (const auto* number = std::get_if<double>(&field.value)) {
            if (!std::isfinite(*number)) {
                reporter.error(field.place, "the value is " + numberText(*number));
            }
        }
    }
}

void checkResultValues(const ZRFxResultValuesBlock& values, CheckedDatabase& checked) {
    const ZRFxValuesUse* use = checked.model().UseOf(values.GetID());
    if (use && values.GetIDs()) checkItemIds(values, use->mapping, checked);
}

void checkPositionResultValues(const ZRFxPositionResultValuesBlock& values,
                               CheckedDatabase& checked) {
    const ZRFxItemCounts* counts = checked.model().CountsOf(BLOCK_ELEMENTS, values.m_iMapToBlockID);
    if (!counts) return;
    Reporter reporter = checked.reporter("item-id", values);
    for (std::int64_t i = 0; i < values.m_aiElementIndices.GetSize(); ++i) {
        const std::int32_t element = values.m_aiElementIndices[i];
        if (element < counts->items) continue;
        reporter.error(numbered("position", i), "there is no element " + std::to_string(element));
    }
}

}  // namespace tools
