#include "frd/FrdImport.h"

#include <utility>

#include "frd/FrdView.h"

namespace tools {
namespace {

using nuo::zrfx::Case;
using nuo::zrfx::Database;

bool isThermal(const FrdResult& result) {
    return result.name == "NDTEMP" || result.name == "FLUX" || result.name == "RFL";
}

// The file does not say whether a static analysis was linear. One that is ends its step at once.
bool isLinear(const FrdStep& step) {
    return step.increment <= 1 && step.value == step.step;
}

// What the first result tells.
Database::SimulationType simulationType(const FrdResult* first) {
    if (!first) return Database::OTHER_SIMULATION;
    if (first->name.starts_with("DISP")) return Database::STRUCTURAL;
    return isThermal(*first) ? Database::THERMAL : Database::OTHER_SIMULATION;
}

Database::SolutionType solutionType(const FrdResult* first) {
    if (!first) return Database::OTHER_SOLUTION;
    switch (first->step.analysis) {
        case FrdStep::STATIC:
            if (isThermal(*first)) return Database::STEADY_STATE;
            return isLinear(first->step) ? Database::LINEAR_STATIC : Database::NONLINEAR_STATIC;
        case FrdStep::TIME_STEP:
            return Database::TRANSIENT;
        case FrdStep::FREQUENCY:
            return Database::MODAL;
        case FrdStep::BUCKLING:
            return Database::BUCKLING;
        default:
            return Database::OTHER_SOLUTION;
    }
}

std::string counted(std::size_t count, const std::string& noun) {
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

}  // namespace

bool FrdImport::begin(const FrdHeader& header, const FrdResult* first) {
    if (m_results) return true;
    m_inputError = hasMesh() ? "" : "it has no mesh";
    if (!hasMesh() || !createFile()) return false;
    std::string description = m_target.description;
    for (const std::string& text : {header.title, header.program, header.date}) {
        if (!text.empty()) description += ", " + text;
    }
    m_database = new Database(&m_file, m_target.name, 0, simulationType(first), solutionType(first),
                              description);
    if (m_database->id() < 0 || !m_mesh.write(*m_database, header.materialNames)) return false;
    m_case = new Case(&m_file, m_target.name, 0, m_database->id());
    m_results = std::make_unique<FrdResults>(m_mesh);
    return m_case->id() >= 0;
}

bool FrdImport::createFile() {
    m_output = std::make_unique<OutputFile>(m_target.file);
    return m_output->prepare(&m_outputError) &&
           m_file.create(m_output->temporaryPath(), m_target.settings);
}

bool FrdImport::putInPlace() {
    const bool isInPlace = m_file.close() && m_output->finish(&m_outputError);
    m_output.reset();
    return isInPlace;
}

bool FrdImport::addResult(FrdResult& result, const FrdHeader& header) {
    m_hasNews = true;
    return begin(header, &result) && m_results->add(result, *m_database);
}

bool FrdImport::completesState(const FrdResult& next) const {
    return m_hasNews && m_results && !m_results->continuesState(next);
}

bool FrdImport::writeLists() {
    m_hasNews = false;
    return m_results->writeLists(*m_database) &&
           m_case->setProperties(frdViewSettings(m_mesh, *m_results).p());
}

// The first time, the file comes into its place, and is opened there again.
bool FrdImport::commit() {
    if (!writeLists()) return false;
    if (!m_output) return m_file.flush();
    if (!putInPlace() || !m_file.openForAppend(m_target.file)) return false;
    m_database = m_file.database(0);
    m_case = m_file.fileCase(0);
    return m_database && m_case;
}

bool FrdImport::finish(const FrdHeader& header) {
    if (!begin(header, nullptr)) return false;
    if (m_results->stateCount() == 0 && !m_results->addMeshState()) return false;
    return writeLists() && (m_output ? putInPlace() : m_file.close());
}

std::string FrdImport::summary() const {
    return counted(m_mesh.nodeIds().size(), "node") + ", " +
           counted(m_mesh.elementCount(), "element") + ", " +
           counted(m_mesh.parts().size(), "part") + ", " +
           counted(m_results->stateCount(), "state") + ", " +
           counted(m_results->series().size(), "result");
}

std::string FrdImport::notes() const {
    std::string notes;
    if (const auto count = m_results->undefinedCount()) {
        notes += counted(count, "value") + " that are no finite numbers became undefined\n";
    }
    if (const auto count = m_results->strayCount()) {
        notes += counted(count, "node") + " with values that are not in the mesh were left out\n";
    }
    return notes;
}

}  // namespace tools
