#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "NuoCore/PtrRef.h"
#include "NuoZRFx/Case.h"
#include "NuoZRFx/File.h"
#include "frd/FrdMesh.h"
#include "frd/FrdResults.h"

namespace tools {

/// Makes a ZRFx file of what is read from a result file, piece by piece. Nothing is on disk before
/// commit() or finish(), so that a file of the same name stays when an import fails. Every
/// operation gives the reason of a failure in error(), which is empty where the library's log has
/// it. One thread.
class FrdImport {
public:
    struct Target {
        std::string file;
        std::string name;         ///< Of the database and its case.
        std::string description;  ///< Of the database.
        nuo::zrfx::FileSettings settings;
    };

    explicit FrdImport(Target target) : m_target(std::move(target)) {}

    bool addNodes(FrdNodes& nodes) { return m_mesh.setNodes(nodes, &m_error); }
    bool addElements(FrdElements& elements) { return m_mesh.setElements(elements, &m_error); }
    bool addResult(FrdResult& result, const FrdHeader& header);

    /// Whether there is a mesh, without which there is nothing to write.
    bool hasMesh() const { return m_mesh.isComplete(); }

    /// Whether there are results that commit() would write, and whether they are all of their
    /// state, given the result that comes next.
    bool hasNews() const { return m_hasNews; }
    bool completesState(const FrdResult& next) const;

    /// Makes all results so far visible to others who open the file.
    bool commit();

    /// Writes what is left and closes the file. A file without results has one state, which is the
    /// mesh.
    bool finish(const FrdHeader& header);

    const std::string& error() const { return m_error; }

    /// What was imported, in a line; and notes on values, a line each.
    std::string summary() const;
    std::string notes() const;

private:
    bool begin(const FrdHeader& header, const FrdResult* first);
    bool writeLists();

    const Target m_target;
    std::string m_error;
    FrdMesh m_mesh;
    nuo::zrfx::File m_file;
    nuo::PtrRef<nuo::zrfx::Database> m_database;
    nuo::PtrRef<nuo::zrfx::Case> m_case;
    std::unique_ptr<FrdResults> m_results;
    bool m_hasNews = false;
};

}  // namespace tools
