#include "DiffCommand.h"

#include <cstdlib>
#include <memory>

#include "FileReader.h"
#include "StandardOutput.h"
#include "diff/FileComparison.h"

namespace tools {
namespace {

constexpr const char* kExamples =
    "  zrfx diff before.zrfx after.zrfx\n"
    "  zrfx diff before.zrfx after.zrfx --results-only --relative 1e-5 --relative STRESS=1e-3\n"
    "  zrfx diff before.zrfx after.zrfx --floor 1e-9 --ignore FORC --ignore 'case *'\n"
    "  zrfx diff original.zrfx copy.zrfx --exact";

struct Options : DiffOptions {
    std::string a;
    std::string b;
    bool isJson = false;
    std::string otherPasswordFile;
};

constexpr const char* kOtherPassword = "ZRFX_OTHER_PASSWORD";

void printDifferences(const Options& options, const FileComparison& comparison) {
    const Differences& differences = comparison.differences();
    if (!options.isJson) return print(differences.text());
    Json json = {{"a", options.a}, {"b", options.b}, {"equal", differences.empty()}};
    if (!options.isExact) json["comparedValues"] = comparison.comparedValueCount();
    json["differences"] = differences.json();
    printJson(json);
}

int diff(ToolContext& context, const Options& options) {
    FileReader a(context);
    FileReader b(context);
    const bool hasOther = std::getenv(kOtherPassword) || !options.otherPasswordFile.empty();
    if (hasOther) b.setPasswordSource(options.otherPasswordFile, kOtherPassword);
    if (!a.open(options.a) || !b.open(options.b)) return ToolContext::FAILURE;
    FileComparison comparison(a, b, options);
    const Side failed = comparison.run();
    if (failed == Side::NONE || !options.isJson) printDifferences(options, comparison);
    if (failed != Side::NONE) return context.fail(failed == Side::A ? options.a : options.b);
    return comparison.differences().empty() ? ToolContext::FINE : ToolContext::FAILURE;
}

void addTolerance(CLI::App& command, const char* name, std::vector<std::string>& list,
                  const char* text) {
    command.add_option(name, list, text)
        ->type_name("[RESULT=]NUMBER")
        ->allow_extra_args(false)
        ->check(Tolerances::check);
}

}  // namespace

void addDiffCommand(CLI::App& application, ToolContext& context) {
    const auto options = std::make_shared<Options>();
    CLI::App* command = context.addCommand(
        application, "diff", "Compares what two files mean and prints the differences", kExamples,
        [&context, options] { return diff(context, *options); });
    command->add_option("A", options->a, "A ZRFx file")->required();
    command->add_option("B", options->b, "Another ZRFx file")->required();
    addTolerance(*command, "--relative", options->tolerances.relative,
                 "Numbers, or those of a result, may differ by this part of the larger one");
    addTolerance(*command, "--absolute", options->tolerances.absolute,
                 "They may differ by this much");
    addTolerance(*command, "--floor", options->tolerances.floor,
                 "They are the same when both are smaller than this");
    command
        ->add_option("--ignore", options->ignored,
                     "Leave out a result, or another place of those that are printed: 'case *', "
                     "description")
        ->type_name("PATTERN")
        ->allow_extra_args(false);
    CLI::Option* results = command->add_flag("--results-only", options->wantsOnlyResults,
                                             "Compare states and results, nothing else");
    command
        ->add_flag("--exact", options->isExact,
                   "Compare block by block, by the ids of the blocks and in the order of the file")
        ->excludes(results);
    command->add_flag("--json", options->isJson, "Print one JSON object");
    command
        ->add_option("--other-password-file", options->otherPasswordFile,
                     "File whose first line is the password of B, when it is not that of A; else "
                     "ZRFX_OTHER_PASSWORD")
        ->type_name("FILE");
}

}  // namespace tools
