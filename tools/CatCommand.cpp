#include "CatCommand.h"

#include <charconv>
#include <functional>
#include <memory>

#include "BlockContent.h"
#include "FileReader.h"
#include "Text.h"
#include "ZRUndefined.h"
#include "blocks/mesh/ZRFxElementBlock.h"
#include "blocks/mesh/ZRFxGeometryBlock.h"
#include "blocks/mesh/ZRFxGeometryInfoBlock.h"
#include "blocks/mesh/ZRFxIndexedFaceSetBlock.h"
#include "blocks/mesh/ZRFxNodeBlock.h"
#include "blocks/results/ZRFx2DPlotDataBlock.h"
#include "blocks/results/ZRFxResultBlock.h"
#include "blocks/results/ZRFxStateInfoBlock.h"
#include "blocks/results/ZRFxTransformationResultValuesBlock.h"
#include "blocks/sets/ZRFxSetBlock.h"

namespace tools {
namespace {

using namespace unstruct;

constexpr const char* kExamples =
    "  zrfx cat plate.zrfx --database 0 --block Nodes:1\n"
    "  zrfx cat plate.zrfx --database 0 --block ResultValues:3 --csv > stress.csv";

struct Options {
    std::string file;
    int database = -1;
    std::string block;
    bool isCsv = false;
};

/// Writes rows of cells: with blanks between them, or as CSV (RFC 4180); texts that hold separators
/// are quoted. Gathers text, so that millions of rows go out fast.
class Table {
public:
    explicit Table(bool isCsv) : m_isCsv(isCsv) {}
    ~Table() { print(m_text); }
    Table(const Table&) = delete;
    Table& operator=(const Table&) = delete;

    /// The names of the columns, one of ids, unless null, in front; plain text has them as a
    /// comment.
    void header(const char* idName, std::initializer_list<const char*> names) {
        if (!m_isCsv) m_text += "#";
        m_isFirst = m_isCsv;
        if (idName) text(idName);
        for (const char* name : names) text(name);
        endRow();
    }
    void header(std::initializer_list<const char*> names) { header(nullptr, names); }

    template <std::integral T>
    void cell(T value) {
        number(value);
    }
    /// Without a value: "UNDEF" in text, an empty cell in CSV.
    void cell(float value) {
        if (!IsUndefined(value)) return number(value);
        separate();
        if (!m_isCsv) m_text += "UNDEF";
    }
    void cell(double value) { number(value); }
    void cell(const std::string& value) { text(value); }

    void endRow() {
        m_text += '\n';
        m_isFirst = true;
        if (m_text.size() < kFlushSize) return;
        print(m_text);
        m_text.clear();
    }

private:
    static constexpr std::size_t kFlushSize = std::size_t{1} << 16;

    void separate() {
        if (!m_isFirst) m_text += m_isCsv ? ',' : ' ';
        m_isFirst = false;
    }

    template <typename Number>
    void number(Number value) {
        separate();
        char digits[40];
        m_text.append(digits, std::to_chars(digits, digits + sizeof(digits), value).ptr);
    }

    void text(const std::string& value) {
        separate();
        const char* special = m_isCsv ? ",\"\r\n" : " \"";
        const std::string shown = m_isCsv ? value : printable(value);
        if (!shown.empty() && shown.find_first_of(special) == std::string::npos) {
            m_text += shown;
            return;
        }
        m_text += '"';
        for (const char c : shown) m_text.append(c == '"' ? 2 : 1, c);
        m_text += '"';
    }

    const bool m_isCsv;
    std::string m_text;
    bool m_isFirst = true;
};

void writeItems(const Reals& reals, const ZRIntArray* ids, Table& table) {
    const auto components = static_cast<std::size_t>(reals.components);
    for (std::size_t i = 0; i < reals.values.size(); i += components) {
        if (ids) table.cell((*ids)[static_cast<std::int64_t>(i / components)]);
        for (std::size_t c = 0; c < components; ++c) table.cell(reals.values[i + c]);
        table.endRow();
    }
}

void write(const ZRFxNodeBlock& block, Table& table) {
    table.header(block.GetNodeIDs() ? "id" : nullptr, {"x", "y", "z"});
    writeItems(realsOf(block.GetNodes()), block.GetNodeIDs(), table);
}

void write(const ZRFxResultValuesBlock& block, Table& table) {
    const char* id = block.GetIDs() ? "item_id" : nullptr;
    switch (block.GetNumDimensions()) {
        case 3:
            table.header(id, {"x", "y", "z"});
            break;
        case 6:
            table.header(id, {"xx", "yy", "zz", "xy", "yz", "zx"});
            break;
        default:
            table.header(id, {"value"});
    }
    writeItems(realsOf(block), block.GetIDs(), table);
}

void writeGroup(const ZRFxElementBlockGroup& group, bool hasIds, Table& table) {
    std::int64_t node = 0;
    const std::string type = ZRFEMElementTypeName(group.m_iElementType).Bytes();
    for (std::int64_t i = 0; i < group.m_iNumElements; ++i) {
        const int count = group.IsPolyhedron() ? group.m_aiPolyhedronElementNodeCounts[i]
                                               : ZRFEMNodesPerElement(group.m_iElementType);
        if (hasIds) table.cell(group.m_aiIDs[i]);
        table.cell(type);
        for (int n = 0; n < count; ++n) table.cell(group.m_aiConnectivity[node++]);
        table.endRow();
    }
}

void write(const ZRFxElementBlock& block, Table& table) {
    table.header(block.GetWithIDs() ? "id" : nullptr,
                 {"type", block.GetMapToNodeIDs() ? "node_ids" : "node_indices"});
    for (std::int64_t i = 0; i < block.GetNumElementGroups(); ++i) {
        writeGroup(*block.GetElementGroup(i), block.GetWithIDs(), table);
    }
}

void write(const ZRFxIndexedFaceSetBlock& block, Table& table) {
    table.header({block.GetMapToNodeIDs() ? "node_ids" : "node_indices"});
    for (std::int64_t i = 0; i < block.GetNumPolygons(); ++i) {
        const std::int64_t end = i + 1 < block.GetNumPolygons() ? block.GetPolygonStarts()[i + 1]
                                                                : block.GetConnects().GetSize();
        for (std::int64_t n = block.GetPolygonStarts()[i]; n < end; ++n) {
            table.cell(block.GetConnects()[n]);
        }
        table.endRow();
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

void write(const ZRFxGeometryBlock& block, Table& table) {
    table.header({"state", "geometry", "part_id", "block_type", "block"});
    for (std::int64_t s = 0; s < block.GetStateCount(); ++s) {
        const ZRFxGeometryState& state = *block.GetState(s);
        for (int g = 0; g < state.GetGeometryCountPerState(); ++g) {
            for (int p = 0; p < state.GetPartCount(g); ++p) {
                const ZRFxGeometryPart part = state.GetPart(g, p);
                table.cell(state.GetStateID());
                table.cell(g);
                table.cell(part.partID);
                table.cell(ZRFxBlockTypeName(part.blockType).Bytes());
                table.cell(part.blockID);
                table.endRow();
            }
        }
    }
}

void write(const ZRFxGeometryInfoBlock& block, Table& table) {
    table.header({"geometry", "part_id", "name", "parent_part_id"});
    for (int g = 0; g < block.GetGeometryCountPerState(); ++g) {
        for (int p = 0; p < block.GetPartInfos(g)->GetPartCount(); ++p) {
            const ZRFxPartInfo part = block.GetPartInfos(g)->GetPartInfo(p);
            table.cell(g);
            table.cell(part.partID);
            table.cell(part.partName.Bytes());
            table.cell(part.parentPartID);
            table.endRow();
        }
    }
}

void write(const ZRFxStatesBlock& block, Table& table) {
    table.header({"state", "values_blocks"});
    for (std::int64_t i = 0; i < block.GetStateCount(); ++i) {
        table.cell(block.GetState(i)->m_iStateID);
        for (const int id : itemsOf(block.GetState(i)->m_aiValuesBlockIDs)) table.cell(id);
        table.endRow();
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

// Blocks without a table of their own: a line for each thing in them, arrays in one cell an item.
void writeFields(const ZRFxBlock& block, Table& table) {
    table.header({"place", "value"});
    for (const Field& field : contentOf(block)) {
        if (const auto* reals = std::get_if<Reals>(&field.value)) {
            for (const float value : reals->values) {
                table.cell(field.place);
                table.cell(value);
                table.endRow();
            }
        } else if (const auto* items = std::get_if<std::span<const std::int32_t>>(&field.value)) {
            for (const std::int32_t item : *items) {
                table.cell(field.place);
                table.cell(item);
                table.endRow();
            }
        } else {
            table.cell(field.place);
            if (const auto* number = std::get_if<std::int64_t>(&field.value)) table.cell(*number);
            if (const auto* number = std::get_if<double>(&field.value)) table.cell(*number);
            if (const auto* text = std::get_if<std::string>(&field.value)) table.cell(*text);
            table.endRow();
        }
    }
}

template <typename BlockClass>
void writeAs(const ZRFxBlock& block, Table& table) {
    write(static_cast<const BlockClass&>(block), table);
}

void writeBlock(const ZRFxBlock& block, Table& table) {
    switch (block.GetType()) {
        case BLOCK_NODES:
            return writeAs<ZRFxNodeBlock>(block, table);
        case BLOCK_ELEMENTS:
            return writeAs<ZRFxElementBlock>(block, table);
        case BLOCK_INDEXED_FACE_SET:
            return writeAs<ZRFxIndexedFaceSetBlock>(block, table);
        case BLOCK_GEOMETRY:
            return writeAs<ZRFxGeometryBlock>(block, table);
        case BLOCK_GEOMETRY_INFO:
            return writeAs<ZRFxGeometryInfoBlock>(block, table);
        case BLOCK_STATE_INFO:
            return writeAs<ZRFxStateInfoBlock>(block, table);
        case BLOCK_RESULTS:
        case BLOCK_TRANSFORMATION_RESULTS:
            return writeAs<ZRFxStatesBlock>(block, table);
        case BLOCK_RESULT_VALUES:
            return writeAs<ZRFxResultValuesBlock>(block, table);
        case BLOCK_TRANSFORMATION_RESULT_VALUES:
            return writeAs<ZRFxTransformationResultValuesBlock>(block, table);
        case BLOCK_SET:
            return writeAs<ZRFxSetBlock>(block, table);
        default:
            return writeFields(block, table);
    }
}

// "Nodes:1" as type and id; false when it is none.
bool parseBlockName(const std::string& name, int* type, int* id) {
    const std::size_t colon = name.rfind(':');
    if (colon == std::string::npos) return false;
    *type = ZRFxBlockTypeFromName(name.substr(0, colon));
    const char* end = name.data() + name.size();
    const auto [stop, error] = std::from_chars(name.data() + colon + 1, end, *id);
    return *type != kInvalidBlockType && error == std::errc() && stop == end;
}

std::string checkBlockName(const std::string& name) {
    int type = kInvalidBlockType;
    int id = -1;
    return parseBlockName(name, &type, &id) ? ""
                                            : "'" + name + "' is no block, as Nodes:1 would be";
}

int cat(ToolContext& context, const Options& options) {
    FileReader reader(context);
    if (!reader.open(options.file)) return ToolContext::FAILURE;
    ZRFxDatabase* database = reader.database(options.database);
    if (!database) {
        return context.fail(options.file,
                            "there is no database " + std::to_string(options.database));
    }
    int type = kInvalidBlockType;
    int id = -1;
    parseBlockName(options.block, &type, &id);
    if (!database->GetBlockByID(type, id)) {
        return context.fail(options.file, "there is no block " + options.block);
    }
    context.log().takeMessages();
    const auto block = readBlock(*database, type, id);
    if (block.isNull()) return context.fail(options.file);
    Table table(options.isCsv);
    writeBlock(*block, table);
    return ToolContext::FINE;
}

}  // namespace

void addCatCommand(CLI::App& application, ToolContext& context) {
    const auto options = std::make_shared<Options>();
    CLI::App* command =
        context.addCommand(application, "cat", "Prints the values of one block as text", kExamples,
                           [&context, options] { return cat(context, *options); });
    command->add_option("FILE", options->file, "A ZRFx file")->required();
    command->add_option("--database", options->database, "Id of the database")
        ->type_name("N")
        ->required();
    command->add_option("--block", options->block, "Type and id of the block, such as Nodes:1")
        ->type_name("TYPE:ID")
        ->check(checkBlockName)
        ->required();
    command->add_flag("--csv", options->isCsv, "Separate values by commas");
}

}  // namespace tools
