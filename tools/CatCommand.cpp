#include "CatCommand.h"

#include <charconv>
#include <memory>

#include "FileReader.h"
#include "OptionChecks.h"
#include "content/BlockGroup.h"
#include "content/Table.h"
#include "quantities/ResultTable.h"

namespace tools {
namespace {

using namespace unstruct;

constexpr const char* kExamples =
    "  zrfx cat beam.zrfx --result STRESS --state 2 --component mises --csv > mises.csv\n"
    "  zrfx cat beam.zrfx --result DISP --state last --part Flange --coordinates\n"
    "  zrfx cat beam.zrfx --result DISP --component magnitude --history --node 17 --node 18\n"
    "  zrfx cat plate.zrfx --database 0 --block Nodes:1";

struct Options {
    std::string file;
    int database = -1;
    std::string block;
    bool isCsv = false;
    ResultTableOptions table;
};

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

int catBlock(ToolContext& context, const Options& options, ZRFxDatabase& database) {
    int type = kInvalidBlockType;
    int id = -1;
    parseBlockName(options.block, &type, &id);
    if (!database.GetBlockByID(type, id)) {
        return context.fail(options.file, "there is no block " + options.block);
    }
    context.log().takeMessages();
    const auto block = readBlock(database, type, id);
    if (block.isNull()) return context.fail(options.file);
    Table table(options.isCsv);
    groupOf(*block).write(*block, table);
    return ToolContext::FINE;
}

int catResult(ToolContext& context, const Options& options, ZRFxDatabase& database) {
    context.log().takeMessages();
    std::string error;
    Table table(options.isCsv);
    if (writeResultTable(database, options.table, table, &error)) return ToolContext::FINE;
    return context.fail(options.file, error);
}

int cat(ToolContext& context, const Options& options) {
    if (options.block.empty() == options.table.result.empty()) {
        context.fail("cat", "either --result or --block says what to print");
        return ToolContext::WRONG_USAGE;
    }
    FileReader reader(context);
    if (!reader.open(options.file)) return ToolContext::FAILURE;
    const bool isChosen = options.database >= 0;
    if (!isChosen && reader.databases().size() > 1) {
        return context.fail(options.file, "has several databases: --database says which");
    }
    ZRFxDatabase* database = isChosen                     ? reader.database(options.database)
                             : reader.databases().empty() ? nullptr
                                                          : reader.databases().front().get();
    if (!database) {
        return context.fail(options.file,
                            isChosen ? "there is no database " + std::to_string(options.database)
                                     : "there is no database");
    }
    return options.block.empty() ? catResult(context, options, *database)
                                 : catBlock(context, options, *database);
}

void addResultOptions(CLI::App& command, ResultTableOptions& table) {
    CLI::Option* result =
        command.add_option("--result", table.result, "Name or id of the result")->type_name("NAME");
    // Each may be given more than once.
    const auto addList = [&](const char* name, auto& list, const char* type, const char* text) {
        return command.add_option(name, list, text)
            ->type_name(type)
            ->allow_extra_args(false)
            ->needs(result);
    };
    addList("--state", table.states, "STATE", "Id or name of a state, or last; else all states");
    addList("--component", table.quantities, "NAME",
            "x y z magnitude; xx yy zz xy yz zx von_mises principal_1 principal_2 principal_3 "
            "maximum_shear; else the components that the file has");
    addList("--part", table.choice.parts, "PART", "Name or id of a part");
    addList("--set", table.choice.sets, "SET", "Name or id of a set of elements");
    addList("--node", table.choice.nodes, "ID", "Id of a node")->check(wholeNumber(INT_MIN));
    addList("--element", table.choice.elements, "ID", "Id of an element")
        ->check(wholeNumber(INT_MIN));
    command.add_flag("--coordinates", table.hasCoordinates, "With columns of the position")
        ->needs(result);
    command
        .add_flag("--history", table.isHistory,
                  "Item by item over all states, with the value of the state")
        ->needs(result);
}

}  // namespace

void addCatCommand(CLI::App& application, ToolContext& context) {
    const auto options = std::make_shared<Options>();
    CLI::App* command = context.addCommand(
        application, "cat", "Prints the values of a result, or of one block, as text", kExamples,
        [&context, options] { return cat(context, *options); });
    command->add_option("FILE", options->file, "A ZRFx file")->required();
    command->add_option("--database", options->database, "Id of the database, if there are several")
        ->type_name("N")
        ->check(wholeNumber(0));
    command->add_option("--block", options->block, "Type and id of a block, such as Nodes:1")
        ->type_name("TYPE:ID")
        ->check(checkBlockName);
    command->add_flag("--csv", options->isCsv, "Separate values by commas");
    addResultOptions(*command, options->table);
}

}  // namespace tools
