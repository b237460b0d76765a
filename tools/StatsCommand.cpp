#include "StatsCommand.h"

#include <memory>

#include "FileReader.h"
#include "Progress.h"
#include "StandardOutput.h"
#include "Terminal.h"
#include "content/Table.h"
#include "quantities/ExtremeText.h"
#include "quantities/Statistics.h"

namespace tools {
namespace {

using namespace unstruct;

constexpr const char* kExamples =
    "  zrfx stats beam.zrfx\n"
    "  zrfx stats beam.zrfx --result STRESS --state last --part Flange\n"
    "  zrfx stats beam.zrfx --csv > extremes.csv";

struct Options {
    std::string file;
    std::vector<std::string> results;
    std::vector<std::string> states;
    ItemChoice choice;
    bool isJson = false;
    bool isCsv = false;
};

// The statistics of one result in one state.
struct Entry {
    int database;
    const ZRFxResultDescription* result;
    StateName state;
    QuantityStatistics statistics;
};

Json entryJson(const Entry& entry) {
    const QuantityStatistics& statistics = entry.statistics;
    const int mapping = entry.result->resultMapping;
    Json json = {{"database", entry.database},
                 {"result", entry.result->name.Bytes()},
                 {"resultId", entry.result->resultID},
                 {"state", entry.state.id},
                 {"stateValue", jsonNumber(entry.state.value)},
                 {"quantity", statistics.quantity},
                 {"count", statistics.count},
                 {"undefined", statistics.undefinedCount},
                 {"mean", nullptr},
                 {"min", nullptr},
                 {"max", nullptr}};
    if (statistics.count == 0) return json;
    json["mean"] = statistics.mean;
    json["min"] = extremeJson(statistics.min, mapping);
    json["max"] = extremeJson(statistics.max, mapping);
    return json;
}

void writeExtreme(const Extreme& extreme, const RowNames& names, bool isThere, Table& table) {
    const nuo::Vec3f unknown{kUndefinedValue, kUndefinedValue, kUndefinedValue};
    table.cell(isThere ? extreme.value : kUndefinedValue);
    const auto numberOrNone = [&](bool isKnown, int number) {
        if (isKnown) return table.cell(number);
        table.cell(kUndefinedValue);
    };
    numberOrNone(isThere, extreme.row.id);
    numberOrNone(isThere && names.second, extreme.row.node);
    numberOrNone(isThere && extreme.part, extreme.part.value_or(0));
    const nuo::Vec3f at = isThere ? extreme.position.value_or(unknown) : unknown;
    for (const float coordinate : {at.x, at.y, at.z}) table.cell(coordinate);
}

void writeCsv(const std::vector<Entry>& entries) {
    Table table(true);
    table.header({"database",  "result", "state", "state_value", "quantity", "count",
                  "undefined", "mean",   "min",   "min_id",      "min_node", "min_part",
                  "min_x",     "min_y",  "min_z", "max",         "max_id",   "max_node",
                  "max_part",  "max_x",  "max_y", "max_z"});
    for (const Entry& entry : entries) {
        const QuantityStatistics& statistics = entry.statistics;
        const RowNames names = rowNamesOf(entry.result->resultMapping);
        const bool isThere = statistics.count > 0;
        table.cell(entry.database);
        table.cell(std::string(entry.result->name.Bytes()));
        table.cell(entry.state.id);
        table.cell(entry.state.value);
        table.cell(statistics.quantity);
        table.cell(statistics.count);
        table.cell(statistics.undefinedCount);
        if (isThere) {
            table.cell(statistics.mean);
        } else {
            table.cell(kUndefinedValue);
        }
        writeExtreme(statistics.min, names, isThere, table);
        writeExtreme(statistics.max, names, isThere, table);
        table.endRow();
    }
}

void printText(const std::vector<Entry>& entries) {
    const Entry* before = nullptr;
    for (const Entry& entry : entries) {
        const bool isNew =
            !before || before->result != entry.result || before->state.id != entry.state.id;
        before = &entry;
        if (isNew) {
            const std::string title = std::string(entry.result->name.Bytes()) + ", state " +
                                      std::to_string(entry.state.id) + " \"" + entry.state.name +
                                      "\"";
            print(painted(printable(title), Paint::BOLD) + "\n");
        }
        const QuantityStatistics& statistics = entry.statistics;
        std::string line = "  " + statistics.quantity;
        line.append(line.size() < 18 ? 18 - line.size() : 1, ' ');
        if (statistics.count == 0) {
            print(line + "no values\n");
            continue;
        }
        const int mapping = entry.result->resultMapping;
        line += "min " + extremeText(statistics.min, mapping) + ", max " +
                extremeText(statistics.max, mapping) + ", mean " +
                numberText(static_cast<float>(statistics.mean)) + " of " +
                std::to_string(statistics.count);
        if (statistics.undefinedCount > 0) {
            line += ", " + std::to_string(statistics.undefinedCount) + " without";
        }
        print(wrapped(printable(line), 18) + "\n");
    }
}

/// Gathers the statistics of the chosen results in the chosen states of one database.
class Gathering {
public:
    Gathering(ZRFxDatabase& database, const Options& options)
        : m_options(options),
          m_model(database),
          m_filter(m_model, options.choice),
          m_rows(m_model),
          m_states(statesOf(database)) {}

    /// False with a cause, or with the library's message.
    bool run(std::string* error);

    const std::vector<Entry>& entries() const { return m_entries; }

private:
    bool chooseResults(std::string* error);
    bool addState(const ZRFxResultBlock& result, const StateName& state, std::string* error);

    const Options& m_options;
    ModelItems m_model;
    ItemFilter m_filter;
    ResultRows m_rows;
    const std::vector<StateName> m_states;
    std::vector<nvf::ref<ZRFxResultBlock>> m_results;
    std::vector<Entry> m_entries;
};

bool Gathering::run(std::string* error) {
    if (!chooseResults(error)) return false;
    Progress progress("reading results", Progress::Unit::STEPS, m_results.size());
    for (const auto& result : m_results) {
        if (componentCount(*result) == 0) continue;
        const bool isChosen = !m_options.results.empty();
        const auto states = findStates(m_states, *result, m_options.states, error);
        if (states.empty() && isChosen) return false;
        for (const StateName& state : states) {
            if (!addState(*result, state, error)) return false;
        }
        progress.advance(1);
    }
    return true;
}

bool Gathering::chooseResults(std::string* error) {
    if (m_options.results.empty()) {
        m_results = resultsOf(m_model.database());
        return true;
    }
    for (const std::string& name : m_options.results) {
        m_results.push_back(findResult(m_model.database(), name, error));
        if (m_results.back().isNull()) return false;
    }
    return true;
}

bool Gathering::addState(const ZRFxResultBlock& result, const StateName& state,
                         std::string* error) {
    std::vector<QuantityStatistics> statistics;
    if (!m_filter.resolve(state.id, error)) return false;
    error->clear();  // The library's log has it.
    if (!computeStatistics(m_rows, result, state.id, &m_filter, &statistics)) return false;
    for (QuantityStatistics& own : statistics) {
        m_entries.push_back(
            {m_model.database().GetID(), &result.GetDescription(), state, std::move(own)});
    }
    return true;
}

int stats(ToolContext& context, const Options& options) {
    FileReader reader(context);
    if (!reader.open(options.file)) return ToolContext::FAILURE;
    context.log().takeMessages();
    std::vector<std::unique_ptr<Gathering>> gatherings;
    std::vector<Entry> entries;
    for (const auto& database : reader.databases()) {
        gatherings.push_back(std::make_unique<Gathering>(*database, options));
        std::string error;
        if (!gatherings.back()->run(&error)) return context.fail(options.file, error);
        const auto& own = gatherings.back()->entries();
        entries.insert(entries.end(), own.begin(), own.end());
    }
    if (options.isJson) {
        Json list = Json::array();
        for (const Entry& entry : entries) list.push_back(entryJson(entry));
        printJson({{"file", options.file}, {"statistics", list}});
    } else if (options.isCsv) {
        writeCsv(entries);
    } else {
        printText(entries);
    }
    return ToolContext::FINE;
}

}  // namespace

void addStatsCommand(CLI::App& application, ToolContext& context) {
    const auto options = std::make_shared<Options>();
    CLI::App* command = context.addCommand(
        application, "stats", "Shows extremes and means of results, and where they are", kExamples,
        [&context, options] { return stats(context, *options); });
    command->add_option("FILE", options->file, "A ZRFx file")->required();
    const auto addList = [&](const char* name, auto& list, const char* type, const char* text) {
        command->add_option(name, list, text)->type_name(type)->allow_extra_args(false);
    };
    addList("--result", options->results, "NAME", "Name or id of a result; else all results");
    addList("--state", options->states, "STATE", "Id or name of a state, or last; else all states");
    addList("--part", options->choice.parts, "PART", "Name or id of a part");
    addList("--set", options->choice.sets, "SET", "Name or id of a set of elements");
    CLI::Option* json = command->add_flag("--json", options->isJson, "Print one JSON object");
    command->add_flag("--csv", options->isCsv, "Print a table, values separated by commas")
        ->excludes(json);
}

}  // namespace tools
