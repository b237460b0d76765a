#include "quantities/ResultTable.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "quantities/DerivedQuantities.h"
#include "quantities/ResultLookup.h"
#include "quantities/ResultRows.h"

namespace tools {
namespace {

using namespace unstruct;

/// One table of one result.
class ResultTable {
public:
    ResultTable(ZRFxDatabase& database, const ResultTableOptions& options, Table& table)
        : m_options(options),
          m_table(table),
          m_model(database),
          m_filter(m_model, options.choice),
          m_rows(m_model) {}

    bool write(std::string* error);

private:
    // What a row shows, kept until the rows of an item are together.
    struct Line {
        int id;
        int node;
        std::size_t state;
        std::optional<nuo::Vec3f> position;
        std::vector<float> values;
    };

    bool chooseQuantities(std::string* error);
    void writeHeader();
    bool addState(std::size_t state, std::string* error);
    Line lineOf(const ResultRow& row, std::size_t state);
    void writeLine(const Line& line);
    bool hasStates() const { return m_options.isHistory || m_options.states.size() != 1; }
    int mapping() const { return m_result->GetDescription().resultMapping; }

    const ResultTableOptions& m_options;
    Table& m_table;
    ModelItems m_model;
    ItemFilter m_filter;
    ResultRows m_rows;
    nvf::ref<ZRFxResultBlock> m_result;
    std::vector<StateName> m_states;
    std::vector<Quantity> m_quantities;
    std::vector<Line> m_lines;  // of a history
    bool m_hasRows = false;
    bool m_hasHeader = false;
};

bool ResultTable::write(std::string* error) {
    ZRFxDatabase& database = m_model.database();
    m_result = findResult(database, m_options.result, error);
    if (m_result.isNull() || !chooseQuantities(error)) return false;
    m_states = findStates(statesOf(database), *m_result, m_options.states, error);
    if (m_states.empty()) return false;
    const bool hasItems = !m_options.choice.nodes.empty() || !m_options.choice.elements.empty();
    *error = "a history needs --node or --element";
    if (m_options.isHistory && !hasItems) return false;
    for (std::size_t i = 0; i < m_states.size(); ++i) {
        if (!addState(i, error)) return false;
    }
    std::ranges::stable_sort(m_lines, {},
                             [](const Line& line) { return std::tuple(line.id, line.node); });
    for (const Line& line : m_lines) writeLine(line);
    *error = "the result has no values of the chosen items";
    return m_hasRows;
}

bool ResultTable::chooseQuantities(std::string* error) {
    const int components = componentCount(*m_result);
    m_quantities = Quantity::all(components);
    if (m_options.quantities.empty()) {
        std::erase_if(m_quantities, [](const Quantity& q) { return q.isDerived(); });
        return true;
    }
    std::vector<Quantity> chosen;
    for (const std::string& name : m_options.quantities) {
        const auto named = Quantity::named(name, components);
        chosen.insert(chosen.end(), named.begin(), named.end());
        *error = "the result has no component '" + name + "'; it has";
        for (const Quantity& quantity : m_quantities) *error += std::string(" ") + quantity.name();
        if (named.empty()) return false;
    }
    m_quantities = chosen;
    return true;
}

void ResultTable::writeHeader() {
    std::vector<const char*> names;
    if (hasStates()) names.insert(names.end(), {"state", "state_value"});
    const RowNames items = rowNamesOf(mapping());
    names.push_back(items.id);
    if (items.second) names.push_back(items.second);
    if (m_options.hasCoordinates) names.insert(names.end(), {"at_x", "at_y", "at_z"});
    for (const Quantity& quantity : m_quantities) names.push_back(quantity.name());
    m_table.header(nullptr, names);
}

bool ResultTable::addState(std::size_t state, std::string* error) {
    if (!m_filter.resolve(m_states[state].id, error)) return false;
    error->clear();  // The library's log has it.
    return m_rows.forEach(*m_result, m_states[state].id, &m_filter, [&](const ResultRow& row) {
        m_hasRows = true;
        const Line line = lineOf(row, state);
        if (m_options.isHistory) {
            m_lines.push_back(line);
        } else {
            writeLine(line);
        }
    });
}

ResultTable::Line ResultTable::lineOf(const ResultRow& row, std::size_t state) {
    Line line{row.id, row.node, state, std::nullopt, {}};
    if (m_options.hasCoordinates) line.position = m_rows.positionOf(row, mapping());
    line.values.reserve(m_quantities.size());
    const ItemComponents item(row.values, hasEngineeringShear(*m_result));
    for (const Quantity& quantity : m_quantities) line.values.push_back(quantity.of(item));
    return line;
}

void ResultTable::writeLine(const Line& line) {
    if (!std::exchange(m_hasHeader, true)) writeHeader();
    if (hasStates()) {
        m_table.cell(m_states[line.state].id);
        m_table.cell(m_states[line.state].value);
    }
    m_table.cell(line.id);
    if (rowNamesOf(mapping()).second) m_table.cell(line.node);
    if (m_options.hasCoordinates) {
        const nuo::Vec3f unknown{kUndefinedValue, kUndefinedValue, kUndefinedValue};
        const nuo::Vec3f at = line.position.value_or(unknown);
        for (const float coordinate : {at.x, at.y, at.z}) m_table.cell(coordinate);
    }
    for (const float value : line.values) m_table.cell(value);
    m_table.endRow();
}

}  // namespace

bool writeResultTable(ZRFxDatabase& database, const ResultTableOptions& options, Table& table,
                      std::string* error) {
    return ResultTable(database, options, table).write(error);
}

}  // namespace tools
