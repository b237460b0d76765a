#pragma once

#include <cstdint>
#include <string>

#include "FileReader.h"
#include "Progress.h"
#include "diff/DiffOptions.h"
#include "diff/Differences.h"
#include "diff/FieldComparison.h"
#include "diff/Side.h"
#include "diff/Tolerances.h"

namespace tools {

/// Compares two databases: by what their blocks mean, or block by block.
class DatabaseComparison {
public:
    DatabaseComparison(unstruct::ZRFxDatabase& a, unstruct::ZRFxDatabase& b,
                       const DiffOptions& options, const Tolerances& tolerances,
                       Differences& differences, Progress& progress);

    /// Gives the file that cannot be read.
    Side run();

    /// How many values of results were compared.
    std::uint64_t comparedValueCount() const { return m_comparedValueCount; }

private:
    void compareDescriptions();
    Side compareMeaning();
    Side compareBlocks(int type);
    Side compareBlock(int type, int id, const std::string& place);

    unstruct::ZRFxDatabase& m_a;
    unstruct::ZRFxDatabase& m_b;
    const DiffOptions& m_options;
    const Tolerances& m_tolerances;
    Differences& m_differences;
    FieldComparison m_fields;
    Progress& m_progress;
    const std::string m_place;
    std::uint64_t m_comparedValueCount = 0;
};

}  // namespace tools
