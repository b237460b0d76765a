#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "diff/Differences.h"
#include "diff/Numbering.h"
#include "diff/Side.h"
#include "diff/Tolerances.h"
#include "quantities/ResultRows.h"
#include "quantities/Statistics.h"

namespace tools {

/// Compares the values of a result in one state, item by item by id.
class ValuesComparison {
public:
    ValuesComparison(ResultRows& a, ResultRows& b, const Numberings& numberings,
                     Differences& differences)
        : m_a(a), m_b(b), m_numberings(numberings), m_differences(differences) {}

    /// What is compared: the result of both files, which has as many components at the same kind
    /// of items, and its states.
    struct Subject {
        const unstruct::ZRFxResultBlock& a;
        const unstruct::ZRFxResultBlock& b;
        int stateOfA;
        int stateOfB;
        std::string place;
        Tolerance tolerance;
    };

    /// Gives the file that cannot be read.
    Side run(const Subject& subject);

    /// How many values there were in both files.
    std::uint64_t comparedCount() const { return m_comparedCount; }

private:
    struct Rows {
        std::vector<std::uint64_t> keys;  // ids of B
        std::vector<float> values;
    };

    // The largest difference of a kind.
    struct Largest {
        double difference = -1;
        std::size_t row = 0;  // of A
        std::size_t component = 0;
        float a = 0;
        float b = 0;
    };

    struct Found {
        std::size_t valueCount = 0;
        std::size_t differentCount = 0;
        std::size_t undefinedCount = 0;  // where one file has no value
        std::size_t onlyACount = 0;
        std::size_t onlyBCount = 0;
        Largest absolute;
        Largest relative;
    };

    bool gather(ResultRows& rows, const unstruct::ZRFxResultBlock& result, int state,
                const Numberings& numberings, Rows& gathered);
    Found compare(const Rows& a, const Rows& b, std::size_t components, const Tolerance& tolerance);
    void compareValue(float a, float b, std::size_t row, std::size_t component, Found& found);
    bool report(const Subject& subject, const Found& found);
    bool describe(const Subject& subject, const char* kind, const Largest& largest,
                  Difference& difference);
    std::optional<Extreme> extremeAt(const Subject& subject, std::size_t row);

    ResultRows& m_a;
    ResultRows& m_b;
    const Numberings& m_numberings;
    Differences& m_differences;
    std::uint64_t m_comparedCount = 0;
};

}  // namespace tools
