#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "NuoCore/PtrRef.h"
#include "NuoZRFx/Database.h"
#include "NuoZRFx/ResultBlock.h"
#include "NuoZRFx/ResultValuesBlock.h"
#include "NuoZRFx/StateInfoBlock.h"
#include "import/ImportData.h"
#include "import/ImportElementValues.h"
#include "import/ImportMesh.h"

namespace tools {

/// The states and results of a model as blocks of a database. Values are written as they come; the
/// lists of states and results are kept and written on request.
class ImportResults {
public:
    /// A result in all states.
    struct Series {
        nuo::PtrRef<nuo::zrfx::ResultBlock> block;
        std::string source;
        std::string components;
        ImportField::Role role;

        int id() const { return block->resultId(); }
        nuo::zrfx::ResultBlock::ResultType type() const { return block->resultType(); }
    };

    /// The mesh must live as long as this object.
    explicit ImportResults(const ImportMesh& mesh);

    /// Writes values, after adding their state when it is new. Values that are no finite numbers
    /// become undefined. The library's log says why it failed.
    bool add(ImportValues& values, nuo::zrfx::Database& database);

    /// The state of the values that were added last; 0 when there are none.
    int lastState() const { return m_lastState; }

    /// Adds a state without results, for a file that has none.
    bool addMeshState();

    /// Writes the lists of states and results as they are now.
    bool writeLists(nuo::zrfx::Database& database) const;

    std::size_t stateCount() const { return m_states->stateCount(); }
    const nuo::zrfx::StateInfoBlock& states() const { return *m_states; }
    const std::vector<Series>& series() const { return m_series; }

    /// Notes on anything that was not taken as it came, one per line.
    std::vector<std::string> notes() const;

private:
    bool beginState(const ImportState& state);
    void makeUndefined(std::vector<float>& values);
    bool addNodeValues(const ImportValues& values, nuo::zrfx::Database& database);
    bool addElementValues(const ImportValues& values, nuo::zrfx::Database& database);
    Series& seriesOf(const ImportValues& values, const ImportField& field);
    nuo::zrfx::ResultBlock* newBlock(const ImportField& field,
                                     nuo::zrfx::ResultBlock::ResultMapping mapping) const;
    std::string nameOf(const ImportField& field) const;
    void scaleModeShape(const ImportValues& values, std::size_t first, Series& series) const;
    void dropStrayNodes(ImportValues& values);
    bool writeNodeValues(const ImportValues& values, std::size_t first, const ImportField& field,
                         Series& series, nuo::zrfx::Database& database);
    bool writePartValues(const ImportMesh::Part& part, const ImportElementValues::PartValues& own,
                         const ImportField& field, Series& series, nuo::zrfx::Database& database);
    bool writeBlock(const nuo::zrfx::ResultValuesBlock& block, Series& series,
                    nuo::zrfx::Database& database);

    const ImportMesh& m_mesh;
    nuo::PtrRef<nuo::zrfx::StateInfoBlock> m_states;
    std::vector<Series> m_series;
    std::vector<float> m_field;
    int m_lastState = 0;
    int m_valuesBlockCount = 0;
    std::uint64_t m_undefinedCount = 0;
    std::uint64_t m_strayNodeCount = 0;
    std::uint64_t m_strayElementCount = 0;
};

}  // namespace tools
