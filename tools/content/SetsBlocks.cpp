// Sets of elements.
#include "Text.h"
#include "check/BlockChecks.h"
#include "content/BlockGroup.h"
#include "content/Content.h"
#include "content/Table.h"

namespace tools {
namespace {

using namespace unstruct;

void describe(const ZRFxSetBlock& block, Content& content) {
    content.add("set id", block.GetSetID());
    content.add("name", block.GetName());
    content.add("items are ids", block.GetItemsSpecifiedAsIDs());
    for (std::int64_t i = 0; i < block.GetItemsCount(); ++i) {
        const ZRFxSetBlockItems& items = *block.GetItems(i);
        const Content::Scope scope(content, numbered("group", i));
        content.add("block", items.m_iBlockID);
        content.add("items", items.m_aiItems);
    }
}

void write(const ZRFxSetBlock& block, Table& table) {
    table.header({"block", block.GetItemsSpecifiedAsIDs() ? "element_id" : "element_index"});
    for (std::int64_t g = 0; g < block.GetItemsCount(); ++g) {
        for (const int item : itemsOf(block.GetItems(g)->m_aiItems)) {
            table.cell(block.GetItems(g)->m_iBlockID);
            table.cell(item);
            table.endRow();
        }
    }
}

void check(const ZRFxSetBlock& block, CheckedDatabase& checked) {
    checkSet(block, checked);
}

}  // namespace

const BlockGroup kSetsBlocks{
    [](const ZRFxBlock& block, Content& content) {
        Visit<ZRFxSetsBlockClasses>(block, [&](const auto& own) { describe(own, content); });
    },
    [](const ZRFxBlock& block, Table& table) {
        Visit<ZRFxSetsBlockClasses>(block, [&](const auto& own) { write(own, table); });
    },
    [](const ZRFxBlock& block, CheckedDatabase& checked) {
        Visit<ZRFxSetsBlockClasses>(block, [&](const auto& own) { check(own, checked); });
    },
};

}  // namespace tools
