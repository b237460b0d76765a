// States, results and their values, and plots.
#include "Text.h"
#include "check/BlockChecks.h"
#include "content/BlockGroup.h"
#include "content/Content.h"
#include "content/Table.h"

namespace tools {
namespace {

using namespace unstruct;

void describe(const ZRFxStateInfoBlock& block, Content& content) {
    for (std::int64_t s = 0; s < block.GetStateCount(); ++s) {
        const ZRFxStateInfo& state = *block.GetState(s);
        const Content::Scope scope(content, numbered("state", state.stateID));
        content.add("name", state.name);
        content.add("value", state.referenceValue);
        content.add("type", ReferenceTypeName(state.referenceType));
        content.add("group id", state.parentID);
        content.add("group", state.group);
        content.add("polygon model", state.exportInfo.polygonModel);
        content.add("visible parts only", state.exportInfo.visiblePartsOnly);
        content.add("first order nodes only", state.exportInfo.firstOrderNodesOnly);
        content.add("visible sets", state.exportInfo.visibleSetIDs);
        content.add("part flags", state.exportInfo.partFlags);
    }
}

void write(const ZRFxStateInfoBlock& block, Table& table) {
    table.header({"id", "name", "value", "type", "group_id", "group"});
    for (std::int64_t i = 0; i < block.GetStateCount(); ++i) {
        const ZRFxStateInfo& state = *block.GetState(i);
        table.cell(state.stateID);
        table.cell(state.name.Bytes());
        table.cell(state.referenceValue);
        table.cell(ReferenceTypeName(state.referenceType).Bytes());
        table.cell(state.parentID);
        table.cell(state.group.Bytes());
        table.endRow();
    }
}

void check(const ZRFxStateInfoBlock&, CheckedDatabase&) {}

void describeStates(const ZRFxStatesBlock& block, Content& content) {
    for (std::int64_t s = 0; s < block.GetStateCount(); ++s) {
        const ZRFxStateValues& state = *block.GetState(s);
        content.add((numbered("state", state.m_iStateID) + ", values blocks").c_str(),
                    state.m_aiValuesBlockIDs);
    }
}

void writeStates(const ZRFxStatesBlock& block, Table& table) {
    table.header({"state", "values_blocks"});
    for (std::int64_t i = 0; i < block.GetStateCount(); ++i) {
        table.cell(block.GetState(i)->m_iStateID);
        for (const int id : itemsOf(block.GetState(i)->m_aiValuesBlockIDs)) table.cell(id);
        table.endRow();
    }
}

void describe(const ZRFxResultBlock& block, Content& content) {
    const ZRFxResultDescription& result = block.GetDescription();
    content.add("name", result.name);
    content.add("type", ResultTypeName(result.resultType));
    content.add("strain type", StrainTypeName(result.strainType));
    content.add("mapping", ResultMappingName(result.resultMapping));
    content.add("result id", result.resultID);
    content.add("section id", result.sectionID);
    content.add("default scale factor", result.defaultScaleFactor);
    content.add("relative displacements", result.relativeDisplacements);
    content.add("base result id", result.baseResultID);
    content.add("base result type", ResultTypeName(result.baseResultType));
    content.add("derive operation", ComponentName(result.deriveOperation));
    for (const auto& [name, value] : result.attributes) {
        content.add(("attribute " + name.Bytes()).c_str(), value);
    }
    describeStates(block, content);
}

void write(const ZRFxResultBlock& block, Table& table) {
    writeStates(block, table);
}

void check(const ZRFxResultBlock&, CheckedDatabase&) {}

void describe(const ZRFxResultValuesBlock& block, Content& content) {
    content.add("target block", block.GetMapToBlockID());
    content.add("dimensions", block.GetNumDimensions());
    content.add("values", realsOf(block));
    content.add("item ids", block.GetIDs());
}

void write(const ZRFxResultValuesBlock& block, Table& table) {
    const ZRFxValueKind& kind = *ZRFxValueKindOf(block.GetNumDimensions());
    table.header(block.GetIDs() ? "item_id" : nullptr, kind.components);
    writeItems(realsOf(block), block.GetIDs(), table);
}

void check(const ZRFxResultValuesBlock& block, CheckedDatabase& checked) {
    checkResultValues(block, checked);
}

void describe(const ZRFxTransformationResultsBlock& block, Content& content) {
    content.add("name", block.GetName());
    content.add("result id", block.GetResultID());
    describeStates(block, content);
}

void write(const ZRFxTransformationResultsBlock& block, Table& table) {
    writeStates(block, table);
}

void check(const ZRFxTransformationResultsBlock&, CheckedDatabase&) {}

void describe(const ZRFxTransformationResultValuesBlock& block, Content& content) {
    content.add("target block", block.GetMapToBlockID());
    content.add("target block type", ZRFxBlockTypeName(block.GetMapToBlockType()));
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 4; ++column) {
            content.add((numbered("row", row) + numbered(", column", column)).c_str(),
                        block.GetMatrix().rowCol(row, column));
        }
    }
}

void write(const ZRFxTransformationResultValuesBlock& block, Table& table) {
    table.header({"column_0", "column_1", "column_2", "column_3"});
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 4; ++column)
            table.cell(block.GetMatrix().rowCol(row, column));
        table.endRow();
    }
}

void check(const ZRFxTransformationResultValuesBlock&, CheckedDatabase&) {}

void describe(const ZRFxPositionResultValuesBlock& block, Content& content) {
    content.add("target block", block.m_iMapToBlockID);
    content.add("dimensions", block.GetDimension());
    content.add("global positions", block.m_bGlobalPositions);
    content.add("global results", block.m_bGlobalResults);
    content.add("vector color", block.m_vectorColor);
    content.add("scaling factor", block.m_fScalingFactor);
    content.add("positions", block.m_positions);
    content.add("element indices", block.m_aiElementIndices);
    content.add("scalars", block.m_afScalars);
    content.add("vectors", block.m_vectors);
    content.add("vector types", block.m_aiVectorTypes);
}

void write(const ZRFxPositionResultValuesBlock& block, Table& table) {
    writeFields(block, table);
}

void check(const ZRFxPositionResultValuesBlock& block, CheckedDatabase& checked) {
    checkPositionResultValues(block, checked);
}

void describe(const ZRFx2DPlotDataBlock& block, Content& content) {
    content.add("name", block.GetName());
    for (std::int64_t i = 0; i < block.GetVariableCount(); ++i) {
        const Content::Scope scope(content, numbered("variable", i));
        content.add("name", block.GetVariable(i)->name);
        content.add("values", block.GetVariable(i)->values);
    }
}

void write(const ZRFx2DPlotDataBlock& block, Table& table) {
    writeFields(block, table);
}

void check(const ZRFx2DPlotDataBlock&, CheckedDatabase&) {}

}  // namespace

const BlockGroup kResultsBlocks{
    [](const ZRFxBlock& block, Content& content) {
        Visit<ZRFxResultsBlockClasses>(block, [&](const auto& own) { describe(own, content); });
    },
    [](const ZRFxBlock& block, Table& table) {
        Visit<ZRFxResultsBlockClasses>(block, [&](const auto& own) { write(own, table); });
    },
    [](const ZRFxBlock& block, CheckedDatabase& checked) {
        Visit<ZRFxResultsBlockClasses>(block, [&](const auto& own) { check(own, checked); });
    },
};

}  // namespace tools
