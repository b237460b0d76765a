#include "import/ImportWriter.h"

#include "SolverRun.h"
#include "Text.h"
#include "import/ImportView.h"

namespace tools {

using nuo::zrfx::Case;
using nuo::zrfx::Database;

bool ImportWriter::begin(const ImportHeader& header) {
    if (m_results) return true;
    m_inputError = hasMesh() ? "" : "it has no mesh";
    if (!hasMesh() || !createFile()) return false;
    std::string description = m_target.description;
    for (const std::string& text : {header.title, header.program}) {
        if (!text.empty()) description += ", " + text;
    }
    if (!header.date.empty() && !m_file.addUserTextFile(kSolverRunText, header.date)) return false;
    m_database =
        new Database(&m_file, m_target.name, 0, header.simulation, header.solution, description);
    if (m_database->id() < 0 || !m_mesh.write(*m_database, header.partNames)) return false;
    m_case = new Case(&m_file, m_target.name, 0, m_database->id());
    m_results = std::make_unique<ImportResults>(m_mesh);
    return m_case->id() >= 0;
}

bool ImportWriter::createFile() {
    m_output = std::make_unique<OutputFile>(m_target.file);
    return m_output->prepare(&m_outputError) &&
           m_file.create(m_output->temporaryPath(), m_target.settings);
}

bool ImportWriter::putInPlace() {
    const bool isInPlace = m_file.close() && m_output->finish(&m_outputError);
    m_output.reset();
    return isInPlace;
}

bool ImportWriter::addValues(ImportValues& values, const ImportHeader& header) {
    m_hasNews = true;
    return begin(header) && m_results->add(values, *m_database);
}

bool ImportWriter::completesState(int nextState) const {
    return m_hasNews && m_results && m_results->lastState() != nextState;
}

bool ImportWriter::writeLists() {
    m_hasNews = false;
    return m_results->writeLists(*m_database) &&
           m_case->setProperties(importViewSettings(m_mesh, *m_results).p());
}

// The first time, the file comes into its place, and is opened there again.
bool ImportWriter::commit() {
    if (!writeLists()) return false;
    if (!m_output) return m_file.flush();
    if (!putInPlace() || !m_file.openForAppend(m_target.file, m_target.settings.password))
        return false;
    m_database = m_file.database(0);
    m_case = m_file.fileCase(0);
    return m_database && m_case;
}

bool ImportWriter::finish(const ImportHeader& header) {
    if (!begin(header)) return false;
    if (m_results->stateCount() == 0 && !m_results->addMeshState()) return false;
    return writeLists() && (m_output ? putInPlace() : m_file.close());
}

std::string ImportWriter::summary() const {
    return counted(m_mesh.nodeIds().size(), "node") + ", " +
           counted(m_mesh.elementCount(), "element") + ", " +
           counted(m_mesh.parts().size(), "part") + ", " +
           counted(m_results->stateCount(), "state") + ", " +
           counted(m_results->series().size(), "result");
}

std::vector<std::string> ImportWriter::notes() const {
    return m_results ? m_results->notes() : std::vector<std::string>();
}

}  // namespace tools
