#include "InfoCommand.h"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <set>

#include "FileReader.h"
#include "PropertyJson.h"
#include "SolverRun.h"
#include "StandardOutput.h"
#include "Summary.h"
#include "Terminal.h"
#include "Text.h"
#include "documents/ZRFxXml.h"

namespace tools {
namespace {

using namespace unstruct;
using nuo::zrfx::Case;

constexpr const char* kExamples =
    "  zrfx info plate.zrfx\n"
    "  zrfx info --quick big.zrfx\n"
    "  zrfx info plate.zrfx --json | jq '.databases[0].results[].name'";

struct Options {
    std::string file;
    bool isJson = false;
    bool isQuick = false;
};

// The file as its main document and entries describe it.
struct FileSummary {
    int vendorId = -1;
    ZRString vendorName;
    ZRString applicationName;
    std::string exportDateTime;
    ZRFxArchiveInfo archive;

    bool isBinary() const { return archive.binary || !archive.text; }
};

std::string isoText(const ZRFxDateTime& time) {
    char text[80];
    std::snprintf(text, sizeof(text), "%04d-%02d-%02dT%02d:%02d:%02d", time.year, time.month,
                  time.day, time.hour, time.minute, time.second);
    return text;
}

FileSummary summarizeFile(ZRFxAccess& access) {
    FileSummary summary;
    access.GetVendorInfo(&summary.vendorId, &summary.vendorName, &summary.applicationName);
    ZRFxDateTime time;
    if (access.GetExportDateTime(&time)) summary.exportDateTime = isoText(time);
    access.GetArchiveInfo(&summary.archive);
    return summary;
}

// A case by the public interface, and whether its document names a snapshot.
struct CaseSummary {
    const Case* fileCase;
    bool hasSnapshot;
};

std::vector<CaseSummary> summarizeCases(FileReader& reader) {
    std::vector<CaseSummary> summaries;
    for (std::size_t i = 0; i < reader.file().fileCaseCount(); ++i) {
        const Case& fileCase = *reader.file().fileCase(i);
        nvf::XmlDocument document;
        reader.readCaseDocument(fileCase, &document);
        const auto snapshot = document.getRootElement("Case").firstChildElement("Snapshot");
        summaries.push_back({&fileCase, snapshot.notNull()});
    }
    return summaries;
}

Json imagesJson(const Case& fileCase) {
    Json names = Json::array();
    for (std::size_t i = 0; i < fileCase.imageCount(); ++i) {
        names.push_back(utf8(fileCase.imageName(i)));
    }
    return names;
}

Json caseJson(const CaseSummary& summary) {
    const Case& fileCase = *summary.fileCase;
    return {{"id", fileCase.id()},
            {"name", utf8(fileCase.name())},
            {"databaseId", fileCase.databaseId()},
            {"description", utf8(fileCase.description())},
            {"derivedResultsDisabled", fileCase.derivedResultsDisabled()},
            {"snapshot", summary.hasSnapshot},
            {"images", imagesJson(fileCase)},
            {"properties", propertiesJson(fileCase.properties())}};
}

// A list of objects, each made from one item.
template <typename Items, typename ToJson>
Json listJson(const Items& items, ToJson toJson) {
    Json list = Json::array();
    for (const auto& item : items) list.push_back(toJson(item));
    return list;
}

Json limitJson(const std::optional<float>& limit) {
    return limit ? jsonNumber(*limit) : Json(nullptr);
}

Json resultJson(const ResultSummary& result) {
    Json derived = Json::object();
    if (!result.derivedName.empty()) {
        derived[result.derivedName] = {{"min", limitJson(result.derivedRange.min)},
                                       {"max", limitJson(result.derivedRange.max)}};
    }
    return {{"blockId", result.blockId},
            {"id", result.id},
            {"name", result.name},
            {"type", result.type},
            {"mapping", result.mapping},
            {"states", result.states},
            {"min", limitJson(result.range.min)},
            {"max", limitJson(result.range.max)},
            {"derived", derived}};
}

Json databaseJson(const ZRFxDatabase& database, const DatabaseSummary& summary) {
    return {{"id", database.GetID()},
            {"name", database.GetName().Bytes()},
            {"folder", database.GetFolder().Bytes()},
            {"simulationType", NameOf(database.GetSimulationType()).Bytes()},
            {"solutionType", NameOf(database.GetSolutionType()).Bytes()},
            {"description", database.GetDescription().Bytes()},
            {"blocks", Json(summary.blocks)},
            {"nodes", summary.nodes},
            {"elements", summary.elements},
            {"elementTypes", Json(summary.elementTypes)},
            {"states", listJson(summary.states,
                                [](const StateSummary& state) -> Json {
                                    return {{"id", state.id},
                                            {"name", state.name},
                                            {"value", jsonNumber(state.value)},
                                            {"type", state.type}};
                                })},
            {"results", listJson(summary.results, resultJson)},
            {"transformations", listJson(summary.transformations,
                                         [](const TransformationSummary& result) -> Json {
                                             return {{"blockId", result.blockId},
                                                     {"id", result.id},
                                                     {"name", result.name},
                                                     {"states", result.states}};
                                         })},
            {"sets", listJson(summary.sets,
                              [](const SetSummary& set) -> Json {
                                  return {{"id", set.id}, {"name", set.name}, {"items", set.items}};
                              })},
            {"parts", listJson(summary.parts, [](const PartSummary& part) -> Json {
                 return {{"geometry", part.geometry}, {"id", part.id}, {"name", part.name}};
             })}};
}

Json fileJson(FileReader& reader, const std::vector<DatabaseSummary>& summaries) {
    const FileSummary file = summarizeFile(reader.access());
    Json databases = Json::array();
    for (std::size_t i = 0; i < summaries.size(); ++i) {
        databases.push_back(databaseJson(*reader.databases()[i], summaries[i]));
    }
    Json texts = Json::array();
    for (std::size_t i = 0; i < reader.file().userTextFileCount(); ++i) {
        texts.push_back(utf8(reader.file().userTextFileName(i)));
    }
    return {{"file", reader.path()},
            {"vendorName", file.vendorName.Bytes()},
            {"applicationName", file.applicationName.Bytes()},
            {"vendorId", file.vendorId},
            {"exportDateTime", file.exportDateTime},
            {"compressed", file.archive.compressed},
            {"encrypted", file.archive.encrypted},
            {"binary", file.isBinary()},
            {"databases", databases},
            {"cases", listJson(summarizeCases(reader), caseJson)},
            {"userTextFiles", texts}};
}

// The text form: one line per thing, with its parts indented below.

constexpr std::size_t kMostLines = 20;
constexpr std::size_t kMostDamages = 5;

void printLine(int indent, const std::string& label, const std::string& text) {
    if (text.empty()) return;
    constexpr std::size_t kColumn = 18;
    const std::size_t used = static_cast<std::size_t>(indent) + label.size();
    std::string line(static_cast<std::size_t>(indent), ' ');
    line += indent == 0 ? painted(label, Paint::BOLD) : label;
    if (used < kColumn) line.append(kColumn - used, ' ');
    print(line + wrapped(printable(text), kColumn + 2, std::max(used, kColumn)) + "\n");
}

// Of long lists the first and the last lines.
template <typename Items, typename ToText>
void printList(const std::string& label, const Items& items, ToText toText) {
    const std::size_t tail = items.size() > kMostLines ? 3 : 0;
    const std::size_t head = tail > 0 ? kMostLines - tail : items.size();
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (i == head) {
            printLine(4, "", "... " + std::to_string(items.size() - head - tail) + " more ...");
            i = items.size() - tail;
        }
        printLine(i == 0 ? 2 : 4, i == 0 ? label : "", toText(items[i]));
    }
}

// Id and name; not everything has a name.
std::string identified(int id, const std::string& name) {
    return std::to_string(id) + (name.empty() ? "" : " \"" + name + "\"");
}

std::string resultText(const ResultSummary& result, bool isQuick) {
    std::string text = identified(result.id, result.name) + ", " + result.type + " on " +
                       result.mapping + ", " + counted(result.states.size(), "state");
    if (isQuick) return text;
    if (!result.range.min) return text + ", no values";
    text += ", " + numberText(*result.range.min) + " to " + numberText(*result.range.max);
    if (!result.derivedRange.min) return text;
    return text + ", " + result.derivedName + " " + numberText(*result.derivedRange.min) + " to " +
           numberText(*result.derivedRange.max);
}

std::string elementsText(const DatabaseSummary& summary) {
    std::string text = std::to_string(summary.elements);
    const char* separator = ": ";
    for (const auto& [type, count] : summary.elementTypes) {
        text += separator + std::to_string(count) + " " + type;
        separator = ", ";
    }
    return text;
}

std::string blocksText(const DatabaseSummary& summary) {
    std::string text;
    for (const auto& [type, ids] : summary.blocks) {
        text += (text.empty() ? "" : ", ") + std::to_string(ids.size()) + " " + type;
    }
    return text;
}

void printDatabase(const ZRFxDatabase& database, const DatabaseSummary& summary, bool isQuick) {
    print("\n");
    printLine(0, "database",
              identified(database.GetID(), database.GetName().Bytes()) + ", " +
                  NameOf(database.GetSimulationType()).Bytes() + ", " +
                  NameOf(database.GetSolutionType()).Bytes());
    if (!database.GetDescription().IsEmpty()) {
        printLine(2, "description", database.GetDescription().Bytes());
    }
    printLine(2, "nodes", std::to_string(summary.nodes));
    printLine(2, "elements", elementsText(summary));
    printList("parts", summary.parts, [](const PartSummary& part) {
        return identified(part.id, part.name) +
               (part.geometry > 0 ? ", geometry " + std::to_string(part.geometry) : "");
    });
    printList("states", summary.states, [](const StateSummary& state) {
        return identified(state.id, state.name) + ", " + state.type + " " + numberText(state.value);
    });
    printList("results", summary.results,
              [&](const ResultSummary& result) { return resultText(result, isQuick); });
    printList("transformations", summary.transformations, [](const TransformationSummary& result) {
        return identified(result.id, result.name) + ", " + counted(result.states.size(), "state");
    });
    printList("sets", summary.sets, [](const SetSummary& set) {
        return identified(set.id, set.name) + ", " +
               counted(static_cast<std::uint64_t>(set.items), "item");
    });
    printLine(2, "blocks", blocksText(summary));
}

void printCase(const CaseSummary& summary) {
    const Case& fileCase = *summary.fileCase;
    print("\n");
    printLine(0, "case",
              identified(fileCase.id(), utf8(fileCase.name())) + ", of database " +
                  std::to_string(fileCase.databaseId()));
    if (!fileCase.description().isEmpty()) {
        printLine(2, "description", utf8(fileCase.description()));
    }
    if (fileCase.derivedResultsDisabled()) printLine(2, "derived results", "disabled");
    printLine(2, "snapshot", summary.hasSnapshot ? "yes" : "no");
    for (std::size_t i = 0; i < fileCase.imageCount(); ++i) {
        printLine(2, i == 0 ? "textures" : "", utf8(fileCase.imageName(i)));
    }
    for (const Json& set : propertiesJson(fileCase.properties())) {
        printLine(2, "properties", set["classType"].get<std::string>());
        for (const auto& [key, value] : set["values"].items()) {
            printLine(4, "",
                      key + " = " + value.dump(-1, ' ', false, Json::error_handler_t::replace));
        }
    }
}

void printFile(FileReader& reader, const std::vector<DatabaseSummary>& summaries, bool isQuick) {
    const FileSummary file = summarizeFile(reader.access());
    printLine(0, "file", reader.path());
    printLine(0, "vendor", file.vendorName.Bytes());
    printLine(0, "application", file.applicationName.Bytes());
    printLine(0, "exported", file.exportDateTime);
    printLine(0, "form",
              std::string(file.isBinary() ? "binary" : "text") +
                  (file.archive.compressed ? ", compressed" : ", not compressed") +
                  (file.archive.encrypted ? ", encrypted" : ", not encrypted"));
    for (std::size_t i = 0; i < summaries.size(); ++i) {
        printDatabase(*reader.databases()[i], summaries[i], isQuick);
    }
    for (const CaseSummary& summary : summarizeCases(reader)) printCase(summary);
    const std::size_t textCount = reader.file().userTextFileCount();
    if (textCount > 0) print("\n");
    for (std::size_t i = 0; i < textCount; ++i) {
        const std::string name = utf8(reader.file().userTextFileName(i));
        const bool isSolverRun = name == kSolverRunText;
        printLine(0, isSolverRun ? "solver run" : "user text file",
                  isSolverRun ? utf8(reader.file().userTextFileContent(i)) : name);
    }
}

// The name in quotes in a message of the library.
std::string subjectOf(const std::string& message) {
    const std::size_t begin = message.find('\'');
    const std::size_t end = message.find('\'', begin + 1);
    return begin == std::string::npos ? "" : message.substr(begin, end - begin);
}

// One line for each thing that is left out; a failure is logged by all whom it stops.
int reportDamage(ToolContext& context, const FileReader& reader, bool isComplete) {
    std::vector<std::string> causes;
    std::set<std::string> subjects;
    for (const auto& message : context.log().takeMessages()) {
        const std::string text = withoutFileName(message.text, reader.path());
        const std::string subject = subjectOf(text);
        const bool isNew = subject.empty() ? causes.empty() : subjects.insert(subject).second;
        if (isNew) causes.push_back(text);
    }
    if (causes.empty() && !reader.refusal().empty()) causes.push_back(reader.refusal());
    if (causes.empty() && !isComplete) causes.emplace_back("some block is missing");
    const std::size_t count = causes.size();
    causes.resize(std::min(count, kMostDamages));
    for (const std::string& cause : causes) context.fail(reader.path(), cause);
    if (count > 0) {
        context.fail(reader.path(), "what depends on it is left out; zrfx check tells all");
    }
    return count > 0 ? ToolContext::FAILURE : ToolContext::FINE;
}

int info(ToolContext& context, const Options& options) {
    FileReader reader(context);
    if (!reader.open(options.file, FileReader::WHAT_FITS)) return ToolContext::FAILURE;
    std::vector<DatabaseSummary> summaries;
    bool isComplete = true;
    for (const auto& database : reader.databases()) {
        summaries.push_back(summarize(*database, !options.isQuick));
        isComplete = isComplete && summaries.back().isComplete;
    }
    if (options.isJson) {
        printJson(fileJson(reader, summaries));
    } else {
        printFile(reader, summaries, options.isQuick);
    }
    return reportDamage(context, reader, isComplete);
}

}  // namespace

void addInfoCommand(CLI::App& application, ToolContext& context) {
    const auto options = std::make_shared<Options>();
    CLI::App* command =
        context.addCommand(application, "info", "Shows what is in a file", kExamples,
                           [&context, options] { return info(context, *options); });
    command->add_option("FILE", options->file, "A ZRFx file")->required();
    command->add_flag("--json", options->isJson, "Print one JSON object");
    command->add_flag("--quick", options->isQuick,
                      "Read no bulk data: results are shown without their value range");
}

}  // namespace tools
