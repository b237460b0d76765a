#include "view/PageModel.h"

#include <algorithm>

namespace tools {
namespace {

using namespace unstruct;

bool isNamed(const std::string& wanted, const StateName& state) {
    return wanted == state.name || wanted == std::to_string(state.id);
}

}  // namespace

bool PageModel::choose(std::string* error) {
    return chooseStates(error) && chooseResults(error);
}

bool PageModel::chooseStates(std::string* error) {
    const auto all = statesOf(m_model.database());
    if (m_choice.states.empty()) m_states = all;
    for (const std::string& wanted : m_choice.states) {
        const std::size_t before = m_states.size();
        for (const StateName& state : all) {
            const bool isLast = wanted == "last" && state.id == all.back().id;
            if (isLast || isNamed(wanted, state)) m_states.push_back(state);
        }
        *error = "there is no state '" + wanted + "'";
        if (m_states.size() == before) return false;
    }
    if (m_states.empty()) m_states.emplace_back();
    return true;
}

bool PageModel::chooseResults(std::string* error) {
    if (m_choice.results.empty()) {
        for (auto& result : resultsOf(m_model.database())) {
            if (componentCount(*result) > 0) m_results.addResult(result);
        }
        return true;
    }
    for (const std::string& wanted : m_choice.results) {
        auto result = findResult(m_model.database(), wanted, error);
        if (result.isNull()) return false;
        m_results.addResult(result);
    }
    return true;
}

void PageModel::write() {
    writeGeometry();
    writeResults();
    writeSets();
}

void PageModel::writeGeometry() {
    for (const StateName& state : m_states) m_layouts.push_back(m_geometry.addState(state.id));
    noteFailures();
    if (m_geometry.damaged() == 0) return;
    leaveOut(counted(static_cast<std::uint64_t>(m_geometry.damaged()), "element") +
             " with missing nodes");
}

void PageModel::writeResults() {
    Progress progress("packing", Progress::Unit::STEPS, m_states.size() * m_results.count());
    for (const StateName& state : m_states) {
        for (std::size_t r = 0; r < m_results.count(); ++r) {
            progress.advance(1);
            if (!m_results.hasState(r, state.id)) continue;
            const std::string name =
                "\"" + m_results.nameOf(r) + "\" in state " + std::to_string(state.id);
            if (m_page.bytes() >= m_choice.mostBytes) {
                leaveOut(name + " and what follows: the page has reached its limit of " +
                         byteText(m_choice.mostBytes));
                return;
            }
            if (!m_results.addState(r, state.id)) leaveOut(name + ": " + m_log.takeCause());
        }
    }
}

void PageModel::writeSets() {
    m_sets = m_geometry.setsJson();
    noteFailures();
}

void PageModel::noteFailures() {
    for (const auto& message : m_log.takeMessages()) leaveOut(message.text);
}

void PageModel::leaveOut(const std::string& text) {
    const std::string own = withoutFileName(text, m_choice.file);
    if (std::ranges::find(m_leftOut, own) == m_leftOut.end()) m_leftOut.push_back(own);
}

Json PageModel::statesJson() const {
    Json states = Json::array();
    for (std::size_t i = 0; i < m_states.size(); ++i) {
        states.push_back({{"id", m_states[i].id},
                          {"name", m_states[i].name},
                          {"value", jsonNumber(m_states[i].value)},
                          {"type", m_states[i].type},
                          {"layout", m_layouts[i]}});
    }
    return states;
}

Json PageModel::json() {
    const ZRFxDatabase& database = m_model.database();
    return {{"id", database.GetID()},
            {"name", utf8(database.GetName())},
            {"description", utf8(database.GetDescription())},
            {"parts", m_geometry.partsJson()},
            {"surfaces", m_geometry.surfacesJson()},
            {"layouts", m_geometry.layoutsJson()},
            {"states", statesJson()},
            {"results", m_results.json()},
            {"sets", m_sets},
            {"leftOut", m_leftOut}};
}

}  // namespace tools
