#include "CatCommand.h"

#include <charconv>
#include <memory>

#include "FileReader.h"
#include "content/BlockGroup.h"
#include "content/Table.h"

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
    groupOf(*block).write(*block, table);
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
