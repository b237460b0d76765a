#include "diff/StatePairs.h"

#include <algorithm>

#include "diff/FieldComparison.h"

namespace tools {

StatePairs::StatePairs(const std::vector<StateName>& a, const std::vector<StateName>& b,
                       const Tolerance& tolerance)
    : m_tolerance(tolerance), m_onlyA(a), m_onlyB(b) {
    const auto isSameValue = [&](const StateName& x, const StateName& y) {
        return x.type == y.type && m_tolerance.holds(x.value, y.value);
    };
    const auto isSameId = [](const StateName& x, const StateName& y) { return x.id == y.id; };
    pairThose([&](const auto& x, const auto& y) { return isSameId(x, y) && isSameValue(x, y); });
    pairThose(isSameValue);
    pairThose(isSameId);
    std::ranges::sort(m_pairs, {}, [](const Pair& pair) { return pair.a.id; });
}

template <typename Same>
void StatePairs::pairThose(Same same) {
    std::vector<StateName> rest;
    for (const StateName& state : m_onlyA) {
        const auto other = std::ranges::find_if(
            m_onlyB, [&](const StateName& candidate) { return same(state, candidate); });
        if (other == m_onlyB.end()) {
            rest.push_back(state);
            continue;
        }
        m_pairs.push_back({state, *other});
        m_onlyB.erase(other);
    }
    m_onlyA = std::move(rest);
}

void StatePairs::report(const std::string& place, Differences& differences) const {
    for (const StateName& state : m_onlyA) {
        differences.onlyInA(place + numbered(", state", state.id) + " \"" + state.name + "\"");
    }
    for (const StateName& state : m_onlyB) {
        differences.onlyInB(place + numbered(", state", state.id) + " \"" + state.name + "\"");
    }
    reportPairs(place, differences);
}

void StatePairs::reportPairs(const std::string& place, Differences& differences) const {
    FieldComparison fields(differences, m_tolerance);
    for (const auto& [a, b] : m_pairs) {
        const std::string own = place + numbered(", state", a.id);
        fields.compare(own + ", id", std::int64_t{a.id}, std::int64_t{b.id});
        fields.compare(own + ", name", a.name, b.name);
        fields.compare(own + ", type", a.type, b.type);
        if (!m_tolerance.holds(a.value, b.value)) {
            differences.add(own + ", value", numberText(a.value) + " and " + numberText(b.value));
        }
    }
}

}  // namespace tools
