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
#include "frd/FrdData.h"
#include "frd/FrdMesh.h"

namespace tools {

/// The states and results of a result file as blocks of a database. Values are written as they
/// come; the lists of states and results are kept and written when told. A result of the file is
/// one or more of ours: vectors, tensors, and scalars of what else it has.
class FrdResults {
public:
    /// A result in all states.
    struct Series {
        nuo::PtrRef<nuo::zrfx::ResultBlock> block;
        std::string source;      ///< The name of the result in the file.
        std::string components;  ///< The names of its components.

        int id() const { return block->resultId(); }
        nuo::zrfx::ResultBlock::ResultType type() const { return block->resultType(); }
    };

    /// The mesh must live as long as this object.
    explicit FrdResults(const FrdMesh& mesh);

    /// Writes the values of a result, as a state of its own when it belongs to none before. Values
    /// that are no finite numbers become undefined. The library's log says why it failed.
    bool add(FrdResult& result, nuo::zrfx::Database& database);

    /// Whether a result belongs to the state of the one before.
    bool continuesState(const FrdResult& result) const;

    /// Adds a state without results, for a file that has none.
    bool addMeshState();

    /// Writes the lists of states and results as they are now.
    bool writeLists(nuo::zrfx::Database& database) const;

    std::size_t stateCount() const { return m_states->stateCount(); }
    const nuo::zrfx::StateInfoBlock& states() const { return *m_states; }
    const std::vector<Series>& series() const { return m_series; }

    /// Values that became undefined, and that were of nodes that do not exist and were left out.
    std::uint64_t undefinedCount() const { return m_undefinedCount; }
    std::uint64_t strayCount() const { return m_strayCount; }

private:
    // Components of a result that are one result of ours.
    struct Field {
        nuo::zrfx::ResultBlock::ResultType type;
        std::size_t first;
        std::size_t count;
    };

    static std::vector<Field> fieldsOf(const FrdResult& result);
    bool beginState(const FrdStep& step);
    bool addField(const FrdResult& result, const Field& field, nuo::zrfx::Database& database);
    Series& seriesOf(const FrdResult& result, const Field& field);
    nuo::zrfx::ResultBlock* newBlock(const FrdResult& result, const Field& field);
    std::string nameOf(const FrdResult& result, const Field& field) const;
    void scaleModeShape(const FrdResult& result, const Field& field, Series& series) const;
    void dropStrayNodes(FrdResult& result);
    bool writeValues(const FrdResult& result, const Field& field, Series& series,
                     nuo::zrfx::Database& database);

    const FrdMesh& m_mesh;
    nuo::PtrRef<nuo::zrfx::StateInfoBlock> m_states;
    std::vector<Series> m_series;
    FrdStep m_step;                    // of the last state
    std::vector<std::string> m_names;  // of the results of the last state
    std::vector<float> m_field;
    int m_valuesBlockCount = 0;
    std::uint64_t m_undefinedCount = 0;
    std::uint64_t m_strayCount = 0;
};

}  // namespace tools
