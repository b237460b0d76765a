#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "NuoCore/PtrRef.h"
#include "NuoZRFx/Case.h"
#include "NuoZRFx/File.h"
#include "OutputFile.h"
#include "import/ImportMesh.h"
#include "import/ImportResults.h"

namespace tools {

/// Makes a ZRFx file of what a reader delivers, piece by piece. It is in its place from
/// the first commit() or finish() on, so that a file of the same name stays when an import fails.
/// The reason of a failure is the error of the input or of the output, else in the library's log.
/// One thread.
class ImportWriter {
public:
    struct Target {
        std::string file;
        std::string name;         ///< Of the database and its case.
        std::string description;  ///< Of the database.
        nuo::zrfx::FileSettings settings;
    };

    explicit ImportWriter(Target target) : m_target(std::move(target)) {}

    bool addNodes(ImportNodes& nodes) { return m_mesh.setNodes(nodes, &m_inputError); }
    bool addElements(ImportElements& elements) {
        return m_mesh.setElements(elements, &m_inputError);
    }
    bool addValues(ImportValues& values, const ImportHeader& header);

    /// Whether there is a mesh, without which there is nothing to write.
    bool hasMesh() const { return m_mesh.isComplete(); }

    bool hasResults() const { return m_results && !m_results->series().empty(); }

    /// Whether there are results that commit() would write, and whether they are all of their
    /// state, given the state of the result that comes next.
    bool hasNews() const { return m_hasNews; }
    bool completesState(int nextState) const;

    /// Makes all results so far visible to others who open the file.
    bool commit();

    /// Writes what is left and closes the file. A file without results has one state, which is the
    /// mesh.
    bool finish(const ImportHeader& header);

    const std::string& inputError() const { return m_inputError; }
    const std::string& outputError() const { return m_outputError; }

    /// A summary in one line, and notes on anything that was not taken as it came, one per line.
    std::string summary() const;
    std::vector<std::string> notes() const;

private:
    bool begin(const ImportHeader& header);
    bool createFile();
    bool putInPlace();
    bool writeLists();

    const Target m_target;
    std::string m_inputError;
    std::string m_outputError;
    std::unique_ptr<OutputFile> m_output;  // until the file is in its place
    ImportMesh m_mesh;
    nuo::zrfx::File m_file;
    nuo::PtrRef<nuo::zrfx::Database> m_database;
    nuo::PtrRef<nuo::zrfx::Case> m_case;
    std::unique_ptr<ImportResults> m_results;
    bool m_hasNews = false;
};

}  // namespace tools
