#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "LogCollector.h"
#include "view/PageGeometry.h"
#include "view/PageResults.h"

namespace tools {

/// What of a model goes onto a page.
struct PageChoice {
    std::string file;                  ///< That the database is of.
    std::vector<std::string> results;  ///< Names or ids; empty stands for all.
    std::vector<std::string> states;   ///< Names or ids, or last; empty stands for all.
    QuadraticSides sides = QuadraticSides::KEPT;
    std::uint64_t mostBytes = 0;
};

/// Writes a model onto a page, state by state. What cannot be read, or would be too much, is left
/// out and said.
class PageModel {
public:
    PageModel(unstruct::ZRFxDatabase& database, const PageChoice& choice, PageFile& page,
              LogCollector& log)
        : m_model(database),
          m_choice(choice),
          m_page(page),
          m_log(log),
          m_geometry(m_model, page, choice.sides),
          m_results(m_model, page, m_geometry) {}

    /// False, with a sentence, when a chosen result or state is not there.
    bool choose(std::string* error);

    void write();

    Json json();

    /// Sentences that say what is not on the page.
    const std::vector<std::string>& leftOut() const { return m_leftOut; }

private:
    bool chooseStates(std::string* error);
    bool chooseResults(std::string* error);
    void writeGeometry();
    void writeResults();
    void writeSets();
    void noteFailures();
    void leaveOut(const std::string& text);
    Json statesJson() const;

    ModelItems m_model;
    const PageChoice& m_choice;
    PageFile& m_page;
    LogCollector& m_log;
    PageGeometry m_geometry;
    PageResults m_results;
    std::vector<StateName> m_states;
    std::vector<int> m_layouts;  // of each state
    Json m_sets;
    std::vector<std::string> m_leftOut;
};

}  // namespace tools
