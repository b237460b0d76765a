#include "Summary.h"

#include <algorithm>
#include <limits>
#include <set>

#include "Text.h"
#include "ZRUndefined.h"
#include "blocks/mesh/ZRFxGeometryBlock.h"
#include "blocks/mesh/ZRFxGeometryInfoBlock.h"
#include "blocks/mesh/ZRFxNodeBlock.h"
#include "blocks/results/ZRFxResultBlock.h"
#include "blocks/results/ZRFxResultValuesBlock.h"
#include "blocks/results/ZRFxStateInfoBlock.h"
#include "blocks/results/ZRFxTransformationResultsBlock.h"
#include "blocks/sets/ZRFxSetBlock.h"
#include "content/Content.h"
#include "documents/ZRFxXml.h"
#include "quantities/DerivedQuantities.h"
#include "quantities/ResultLookup.h"
#include "types/ZRFxElementType.h"

namespace tools {
namespace {

using namespace unstruct;

// Calls `take` with each block of a class that can be read, with its data.
template <typename BlockClass, typename Take>
void forEachBlock(ZRFxDatabase& database, bool* isComplete, Take take) {
    for (const int id : blockIds(database, BlockClass::kType)) {
        const auto block = readBlock<BlockClass>(database, id);
        if (block.isNull()) {
            *isComplete = false;
        } else {
            take(*block);
        }
    }
}

void summarizeBlocks(const ZRFxDatabase& database, DatabaseSummary& summary) {
    for (int type = 0; type < kNumBlockTypes; ++type) {
        std::vector<int> ids = blockIds(database, type);
        if (!ids.empty()) summary.blocks[ZRFxBlockTypeName(type).Bytes()] = std::move(ids);
    }
}

// Block documents tell how many nodes and elements there are.
void summarizeGeometry(ZRFxDatabase& database, DatabaseSummary& summary) {
    for (const int id : blockIds(database, BLOCK_NODES)) {
        summary.nodes += openBlock<ZRFxNodeBlock>(database, id)->GetNumNodes();
    }
    for (const int id : blockIds(database, BLOCK_ELEMENTS)) {
        nvf::XmlDocument document;
        if (!database.ReadXmlFile(database.GetBlockByID(BLOCK_ELEMENTS, id)->GetFileName(),
                                  &document)) {
            summary.isComplete = false;
            continue;
        }
        for (auto group = document.getRootElement().firstChildElement("ElementGroup");
             group.notNull(); group = group.nextSiblingElement("ElementGroup")) {
            const int count = group.firstChildElement("File").getAttributeInt("NumItems", 0);
            summary.elementTypes[GetAttribute(group, "Type").Bytes()] += count;
            summary.elements += count;
        }
    }
}

void summarizeStates(ZRFxDatabase& database, DatabaseSummary& summary) {
    forEachBlock<ZRFxStateInfoBlock>(
        database, &summary.isComplete, [&](const ZRFxStateInfoBlock& block) {
            for (std::int64_t i = 0; i < block.GetStateCount(); ++i) {
                const ZRFxStateInfo& state = *block.GetState(i);
                summary.states.push_back({state.stateID, state.name.Bytes(), state.referenceValue,
                                          ReferenceTypeName(state.referenceType).Bytes()});
            }
        });
}

// Parts and their names; files of the legacy layout have the names in the geometry block.
void summarizeParts(ZRFxDatabase& database, DatabaseSummary& summary) {
    std::map<std::pair<int, int>, std::string> names;
    const auto takeNames = [&](const ZRFxGeometryInfoBlock& block) {
        for (int g = 0; g < block.GetGeometryCountPerState(); ++g) {
            for (int p = 0; p < block.GetPartInfos(g)->GetPartCount(); ++p) {
                const ZRFxPartInfo part = block.GetPartInfos(g)->GetPartInfo(p);
                names[{g, part.partID}] = part.partName.Bytes();
            }
        }
    };
    forEachBlock<ZRFxGeometryInfoBlock>(database, &summary.isComplete, takeNames);
    forEachBlock<ZRFxGeometryBlock>(database, &summary.isComplete,
                                    [&](const ZRFxGeometryBlock& block) {
                                        ZRFxGeometryInfoBlock legacy(&database, block.GetID());
                                        if (names.empty() && !block.HasGeometryCountPerState() &&
                                            block.GetLegacyGeometryInfo(&legacy)) {
                                            takeNames(legacy);
                                        }
                                        if (block.GetStateCount() == 0) return;
                                        const ZRFxGeometryState& state = *block.GetState(0);
                                        for (int g = 0; g < state.GetGeometryCountPerState(); ++g) {
                                            for (int p = 0; p < state.GetPartCount(g); ++p) {
                                                const int id = state.GetPart(g, p).partID;
                                                summary.parts.push_back({g, id, names[{g, id}]});
                                            }
                                        }
                                    });
}

std::vector<int> stateIds(const ZRFxStatesBlock& block) {
    std::vector<int> ids;
    for (std::int64_t i = 0; i < block.GetStateCount(); ++i) {
        ids.push_back(block.GetState(i)->m_iStateID);
    }
    return ids;
}

void takeDerived(const Quantity& quantity, const ZRFxResultBlock& block, const Reals& reals,
                 ValueRange& range) {
    const auto components = static_cast<std::size_t>(reals.components);
    std::vector<float> derived;
    derived.reserve(reals.values.size() / components);
    for (std::size_t i = 0; i < reals.values.size(); i += components) {
        const ItemComponents item(reals.values.subspan(i, components), hasEngineeringShear(block));
        derived.push_back(quantity.of(item));
    }
    range.take(derived);
}

// The derived quantity that says how large the values are: null for scalars.
std::optional<Quantity> sizeOf(const ZRFxResultBlock& block) {
    for (const Quantity& quantity : Quantity::all(componentCount(block))) {
        if (quantity.isDerived()) return quantity;
    }
    return std::nullopt;
}

void summarizeValues(ZRFxDatabase& database, const ZRFxResultBlock& block, ResultSummary& result,
                     bool* isComplete) {
    const std::optional<Quantity> size = sizeOf(block);
    if (size) result.derivedName = size->name();
    for (std::int64_t i = 0; i < block.GetStateCount(); ++i) {
        for (const int id : itemsOf(block.GetState(i)->m_aiValuesBlockIDs)) {
            const auto values = readBlock<ZRFxResultValuesBlock>(database, id);
            if (values.isNull()) {
                *isComplete = false;
            } else {
                const Reals reals = realsOf(*values);
                result.range.take(reals.values);
                const bool fits = reals.components == componentCount(block);
                if (size && fits) takeDerived(*size, block, reals, result.derivedRange);
            }
        }
    }
}

std::size_t valuesBlockCount(const ZRFxDatabase& database) {
    return static_cast<std::size_t>(database.GetNumBlocks(BLOCK_RESULT_VALUES));
}

void summarizeResults(ZRFxDatabase& database, bool withRanges, DatabaseSummary& summary) {
    Progress progress("reading results", Progress::Unit::STEPS, valuesBlockCount(database));
    forEachBlock<ZRFxResultBlock>(database, &summary.isComplete, [&](const ZRFxResultBlock& block) {
        const ZRFxResultDescription& result = block.GetDescription();
        summary.results.push_back({block.GetID(),
                                   result.resultID,
                                   result.name.Bytes(),
                                   ResultTypeName(result.resultType).Bytes(),
                                   ResultMappingName(result.resultMapping).Bytes(),
                                   stateIds(block),
                                   {},
                                   {},
                                   {}});
        if (withRanges) {
            summarizeValues(database, block, summary.results.back(), &summary.isComplete);
            for (std::int64_t i = 0; i < block.GetStateCount(); ++i) {
                progress.advance(block.GetState(i)->m_aiValuesBlockIDs.GetSize());
            }
        }
    });
    forEachBlock<ZRFxTransformationResultsBlock>(
        database, &summary.isComplete, [&](const ZRFxTransformationResultsBlock& block) {
            summary.transformations.push_back(
                {block.GetID(), block.GetResultID(), block.GetName().Bytes(), stateIds(block)});
        });
}

void summarizeSets(ZRFxDatabase& database, DatabaseSummary& summary) {
    for (const int id : blockIds(database, BLOCK_SET)) {
        const auto set = openBlock<ZRFxSetBlock>(database, id);
        if (!set->ReadMetaData()) {
            summary.isComplete = false;
            continue;
        }
        summary.sets.push_back({set->GetSetID(), set->GetName().Bytes(), set->GetTotalNumItems()});
    }
}

}  // namespace

void ValueRange::take(std::span<const float> values) {
    float lowest = std::numeric_limits<float>::infinity();
    float highest = -lowest;
    for (const float value : values) {
        if (IsUndefined(value)) continue;
        lowest = std::min(lowest, value);
        highest = std::max(highest, value);
    }
    if (lowest > highest) return;
    min = std::min(lowest, min.value_or(lowest));
    max = std::max(highest, max.value_or(highest));
}

DatabaseSummary summarize(ZRFxDatabase& database, bool withRanges) {
    DatabaseSummary summary;
    summarizeBlocks(database, summary);
    summarizeGeometry(database, summary);
    summarizeStates(database, summary);
    summarizeParts(database, summary);
    summarizeResults(database, withRanges, summary);
    summarizeSets(database, summary);
    return summary;
}

}  // namespace tools
