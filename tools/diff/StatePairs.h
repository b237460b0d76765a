#pragma once

#include <string>
#include <vector>

#include "diff/Differences.h"
#include "diff/Tolerances.h"
#include "quantities/ResultLookup.h"

namespace tools {

/// Which states of two models belong together: those of one id and reference value; of the others
/// those of one reference value; of the rest those of one id.
class StatePairs {
public:
    struct Pair {
        StateName a;
        StateName b;
    };

    StatePairs(const std::vector<StateName>& a, const std::vector<StateName>& b,
               const Tolerance& tolerance);

    const std::vector<Pair>& pairs() const { return m_pairs; }

    /// Reports states of one file, and what differs in those of both.
    void report(const std::string& place, Differences& differences) const;

private:
    template <typename Same>
    void pairThose(Same same);
    void reportPairs(const std::string& place, Differences& differences) const;

    const Tolerance m_tolerance;
    std::vector<Pair> m_pairs;  // in the order of A
    std::vector<StateName> m_onlyA;
    std::vector<StateName> m_onlyB;
};

}  // namespace tools
