#include "NamesCommand.h"

#include <map>
#include <memory>

#include "FileReader.h"
#include "StandardOutput.h"
#include "Summary.h"
#include "Text.h"

namespace tools {
namespace {

constexpr const char* kExamples =
    "  zrfx names beam.zrfx results\n"
    "  for part in $(zrfx names beam.zrfx parts); do ...";

struct Options {
    std::string file;
    std::string kind;
};

// By its id where it has no name.
void printName(int id, const std::string& name) {
    print(printable(name.empty() ? std::to_string(id) : name) + "\n");
}

template <typename Items>
void printNames(const Items& items) {
    for (const auto& item : items) printName(item.id, item.name);
}

void printBlocks(const DatabaseSummary& summary) {
    for (const auto& [type, ids] : summary.blocks) {
        for (const int id : ids) print(type + ":" + std::to_string(id) + "\n");
    }
}

const std::map<std::string, void (*)(const DatabaseSummary&)> kKinds = {
    {"results", [](const DatabaseSummary& summary) { printNames(summary.results); }},
    {"states", [](const DatabaseSummary& summary) { printNames(summary.states); }},
    {"parts", [](const DatabaseSummary& summary) { printNames(summary.parts); }},
    {"sets", [](const DatabaseSummary& summary) { printNames(summary.sets); }},
    {"blocks", printBlocks},
};

int names(ToolContext& context, const Options& options) {
    FileReader reader(context);
    if (!reader.open(options.file)) return ToolContext::FAILURE;
    for (const auto& database : reader.databases()) {
        kKinds.at(options.kind)(summarize(*database, false));
    }
    return ToolContext::FINE;
}

std::string checkKind(const std::string& kind) {
    std::string known;
    for (const auto& [name, printNames] : kKinds) known += (known.empty() ? "" : ", ") + name;
    return kKinds.contains(kind) ? "" : "'" + kind + "' is none of " + known;
}

}  // namespace

void addNamesCommand(CLI::App& application, ToolContext& context) {
    const auto options = std::make_shared<Options>();
    CLI::App* command = context.addCommand(
        application, "names", "Prints the names of results, states, parts, sets or blocks",
        kExamples, [&context, options] { return names(context, *options); });
    command->add_option("FILE", options->file, "A ZRFx file")->required();
    command->add_option("KIND", options->kind, "results, states, parts, sets or blocks")
        ->required()
        ->check(checkKind);
}

}  // namespace tools
