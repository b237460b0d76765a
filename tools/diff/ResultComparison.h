#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "Progress.h"
#include "diff/Differences.h"
#include "diff/FieldComparison.h"
#include "diff/Numbering.h"
#include "diff/Side.h"
#include "diff/StatePairs.h"
#include "diff/Tolerances.h"
#include "diff/ValuesComparison.h"

namespace tools {

/// Compares the results of two models: those of one name, in the states that belong together.
class ResultComparison {
public:
    struct Models {
        ModelItems& a;
        ModelItems& b;
        const std::string place;
        const StatePairs& states;
        const Numberings& numberings;
    };

    ResultComparison(const Models& models, const Tolerances& tolerances, Differences& differences,
                     Progress& progress)
        : m_models(models),
          m_tolerances(tolerances),
          m_differences(differences),
          m_progress(progress),
          m_rowsOfA(models.a),
          m_rowsOfB(models.b),
          m_values(m_rowsOfA, m_rowsOfB, models.numberings, differences) {}

    /// Gives the file that cannot be read.
    Side run();

    std::uint64_t comparedValueCount() const { return m_values.comparedCount(); }

private:
    using Result = nvf::ref<unstruct::ZRFxResultBlock>;
    using Results = std::map<std::string, Result>;  // by name
    static Results resultsOf(unstruct::ZRFxDatabase& database);

    Side compare(const unstruct::ZRFxResultBlock& a, const unstruct::ZRFxResultBlock& b,
                 const std::string& place);
    Side compareBlocks(const unstruct::ZRFxStateValues& a, const unstruct::ZRFxStateValues& b,
                       const std::string& place);
    bool compareDescriptions(const unstruct::ZRFxResultDescription& a,
                             const unstruct::ZRFxResultDescription& b, const std::string& place);

    const Models m_models;
    const Tolerances& m_tolerances;
    Differences& m_differences;
    Progress& m_progress;
    ResultRows m_rowsOfA;
    ResultRows m_rowsOfB;
    ValuesComparison m_values;
};

}  // namespace tools
