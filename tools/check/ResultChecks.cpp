// States, results and their values, and what all blocks have: references and numbers.
#include <algorithm>
#include <array>
#include <cmath>

#include "Text.h"
#include "ZRUndefined.h"
#include "check/BlockChecks.h"
#include "check/CheckedDatabase.h"
#include "content/BlockGroup.h"
#include "content/Content.h"
#include "content/References.h"
#include "types/ZRFxResultTypes.h"

namespace tools {
namespace {

using namespace unstruct;

// The blocks that result values may belong to.
constexpr std::array kTargetTypes{BLOCK_NODES, BLOCK_ELEMENTS, BLOCK_INDEXED_FACE_SET};

bool isTarget(int id, const CheckedDatabase& checked) {
    for (const int type : kTargetTypes) {
        if (checked.hasBlock(type, id)) return true;
    }
    return false;
}

void checkReference(const Reference& reference, Reporter& reporter, CheckedDatabase& checked) {
    const std::string id = std::to_string(reference.id);
    switch (reference.kind) {
        case Reference::Kind::BLOCK:
            checked.referredBlocks.insert({reference.blockType, reference.id});
            if (checked.hasBlock(reference.blockType, reference.id)) return;
            return reporter.error(
                reference.place,
                "there is no block " + ZRFxBlockTypeName(reference.blockType).Bytes() + ":" + id);
        case Reference::Kind::VALUES_TARGET:
            if (isTarget(reference.id, checked)) return;
            return reporter.error(reference.place,
                                  "there is no block of nodes, elements or faces of id " + id);
        case Reference::Kind::STATE:
            if (!checked.hasStateInfo || checked.stateIds.contains(reference.id)) return;
            return reporter.error(reference.place, "there is no state " + id);
        case Reference::Kind::RESULT:
            if (checked.resultIds.contains(reference.id)) return;
            return reporter.error(reference.place, "there is no result of id " + id);
        case Reference::Kind::CASE:
            if (checked.caseIds.contains(reference.id)) return;
            return reporter.error(reference.place, "there is no case " + id);
    }
}

// What has a value that is no number. NaN and plus infinity read as "no value" in results, as do
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

// How many values a mapping asks for, one an item. An id may be that of elements and of a face set,
// either of which may be meant; nothing when it cannot be told.
std::vector<std::int64_t> expectedCounts(int mapping, int targetId,
                                         const CheckedDatabase& checked) {
    std::vector<std::int64_t> counts;
    const auto add = [&](int type, std::int64_t ItemCounts::*count) {
        const auto found = checked.itemCounts.find({type, targetId});
        if (found != checked.itemCounts.end()) counts.push_back(found->second.*count);
    };
    switch (mapping) {
        case MAPPING_NODE:
            add(BLOCK_NODES, &ItemCounts::items);
            break;
        case MAPPING_ELEMENT:
            add(BLOCK_ELEMENTS, &ItemCounts::items);
            add(BLOCK_INDEXED_FACE_SET, &ItemCounts::items);
            break;
        case MAPPING_ELEMENT_NODE:
            add(BLOCK_ELEMENTS, &ItemCounts::elementNodes);
            add(BLOCK_INDEXED_FACE_SET, &ItemCounts::elementNodes);
            break;
        case MAPPING_SURFACE:
            add(BLOCK_ELEMENTS, &ItemCounts::surfaces);
            break;
        default:
            break;
    }
    return counts;
}

// Whether a mapping's target is of the kind that the mapping asks for.
bool fitsTarget(int mapping, int targetId, const CheckedDatabase& checked) {
    if (!isTarget(targetId, checked)) return true;  // reported as a missing reference
    if (mapping == MAPPING_NODE) return checked.hasBlock(BLOCK_NODES, targetId);
    if (mapping == MAPPING_UNKNOWN) return true;
    return checked.hasBlock(BLOCK_ELEMENTS, targetId) ||
           checked.hasBlock(BLOCK_INDEXED_FACE_SET, targetId);
}

// Ids of items are those of the target, or indices where it has none.
void checkItemIds(const ZRFxResultValuesBlock& values, int mapping, CheckedDatabase& checked) {
    const bool isNode = mapping == MAPPING_NODE;
    if (!isNode && mapping != MAPPING_ELEMENT) return;
    const int target = values.GetMapToBlockID();
    const auto counts = checked.itemCounts.find({isNode ? BLOCK_NODES : BLOCK_ELEMENTS, target});
    if (counts == checked.itemCounts.end()) return;
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
            ids ? ids->indexOf(items[i]) >= 0 : items[i] >= 0 && items[i] < counts->second.items;
        if (isThere) continue;
        reporter.error(numbered("item", static_cast<std::int64_t>(i)),
                       std::string("there is no ") + (isNode ? "node" : "element") +
                           (ids ? " of id " : " ") + std::to_string(items[i]));
    }
}

void checkResultId(int id, const ZRFxBlock& block, const CheckedDatabase& checked) {
    if (checked.resultIds.count(id) < 2) return;
    checked.reporter("duplicate-id", block)
        .warning("", "other results have the result id " + std::to_string(id) + " as well");
}

void checkStateIds(const ZRFxStatesBlock& block, const CheckedDatabase& checked) {
    std::set<int> states;
    for (std::int64_t s = 0; s < block.GetStateCount(); ++s) {
        const int id = block.GetState(s)->m_iStateID;
        if (states.insert(id).second) continue;
        checked.reporter("duplicate-id", block)
            .error("", numbered("state", id) + " is listed twice");
    }
}

}  // namespace

void checkReferences(const ZRFxBlock& block, CheckedDatabase& checked) {
    Reporter reporter = checked.reporter("reference", block);
    References references;
    groupOf(block).collect(block, references);
    for (const Reference& reference : references.take()) {
        checkReference(reference, reporter, checked);
    }
}

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

void checkStateInfo(const ZRFxStateInfoBlock& states, CheckedDatabase& checked) {
    checked.hasStateInfo = true;
    for (std::int64_t s = 0; s < states.GetStateCount(); ++s) {
        const int id = states.GetState(s)->stateID;
        if (checked.stateIds.insert(id).second) continue;
        checked.reporter("duplicate-id", states)
            .error(numbered("record", s), "state id " + std::to_string(id) + " is used before");
    }
}

void checkResult(const ZRFxResultBlock& result, CheckedDatabase& checked) {
    const ZRFxResultDescription& description = result.GetDescription();
    checkResultId(description.resultID, result, checked);
    checkStateIds(result, checked);
    if (description.resultMapping == MAPPING_UNKNOWN) {
        checked.reporter("mapping", result).error("", "what the values belong to is not told");
    }
    if (description.resultType == RESULT_DISPLACEMENT &&
        description.resultMapping != MAPPING_NODE) {
        checked.reporter("mapping", result).error("", "displacements belong to nodes");
    }
    const int dimension = ZRFxDimensionOfResult(description.resultType);
    for (std::int64_t s = 0; s < result.GetStateCount(); ++s) {
        for (const int id : itemsOf(result.GetState(s)->m_aiValuesBlockIDs)) {
            checked.mappingOfValues[id] = description.resultMapping;
            if (dimension > 0) checked.dimensionsOfValues[id] = dimension;
        }
    }
}

void checkTransformationResult(const ZRFxTransformationResultsBlock& result,
                               CheckedDatabase& checked) {
    checkResultId(result.GetResultID(), result, checked);
    checkStateIds(result, checked);
}

// Fringes belong to nodes or polygons, as the part says.
void checkPrecomputed(const ZRFxPrecomputedBlock& precomputed, CheckedDatabase& checked) {
    for (std::int64_t s = 0; s < precomputed.GetStateCount(); ++s) {
        for (const auto& part : precomputed.GetState(s)->apParts) {
            if (part->fringesResultBlockID < 0) continue;
            checked.mappingOfValues.try_emplace(part->fringesResultBlockID,
                                                part->fringesResultMapping);
        }
    }
}

void checkResultValues(const ZRFxResultValuesBlock& values, CheckedDatabase& checked) {
    const auto dimensions = checked.dimensionsOfValues.find(values.GetID());
    if (dimensions != checked.dimensionsOfValues.end() &&
        dimensions->second != values.GetNumDimensions()) {
        checked.reporter("value-count", values)
            .error("", "has " + std::to_string(values.GetNumDimensions()) +
                           " values an item, its result " + std::to_string(dimensions->second));
    }
    const auto mapping = checked.mappingOfValues.find(values.GetID());
    if (mapping == checked.mappingOfValues.end()) return;
    if (!fitsTarget(mapping->second, values.GetMapToBlockID(), checked)) {
        return checked.reporter("mapping", values)
            .error("", "values on " + ResultMappingName(mapping->second).Bytes() +
                           " belong to a block of another kind");
    }
    if (values.GetIDs()) return checkItemIds(values, mapping->second, checked);
    const auto expected = expectedCounts(mapping->second, values.GetMapToBlockID(), checked);
    if (expected.empty() || std::ranges::count(expected, values.GetNumItems()) > 0) return;
    checked.reporter("value-count", values)
        .error("", "has values of " +
                       counted(static_cast<std::uint64_t>(values.GetNumItems()), "item") +
                       ", its target has " + std::to_string(expected.front()));
}

void checkPositionResultValues(const ZRFxPositionResultValuesBlock& values,
                               CheckedDatabase& checked) {
    const auto counts = checked.itemCounts.find({BLOCK_ELEMENTS, values.m_iMapToBlockID});
    if (counts == checked.itemCounts.end()) return;
    Reporter reporter = checked.reporter("item-id", values);
    for (std::int64_t i = 0; i < values.m_aiElementIndices.GetSize(); ++i) {
        const std::int32_t element = values.m_aiElementIndices[i];
        if (element < counts->second.items) continue;
        reporter.error(numbered("position", i), "there is no element " + std::to_string(element));
    }
}

}  // namespace tools
