#include "diff/ValuesComparison.h"

#include <algorithm>
#include <cmath>

#include "ZRUndefined.h"
#include "diff/ItemPairs.h"
#include "quantities/ExtremeText.h"

namespace tools {
namespace {

using namespace unstruct;

std::uint64_t keyOf(int id, int second) {
    return std::uint64_t{static_cast<std::uint32_t>(id)} << 32 | static_cast<std::uint32_t>(second);
}

std::string valueText(float value) {
    return IsUndefined(value) ? "no value" : numberText(value);
}

}  // namespace

bool ValuesComparison::gather(ResultRows& rows, const ZRFxResultBlock& result, int state,
                              const Numberings& numberings, Rows& gathered) {
    const int mapping = result.GetDescription().resultMapping;
    const Numbering& numbering = mapping == MAPPING_NODE ? numberings.nodes : numberings.elements;
    const auto components = static_cast<std::size_t>(componentCount(result));
    return rows.forEach(result, state, nullptr, [&](const ResultRow& row) {
        const int second =
            mapping == MAPPING_ELEMENT_NODE ? numberings.nodes.of(row.node) : row.node;
        gathered.keys.push_back(keyOf(numbering.of(row.id), second));
        gathered.values.insert(gathered.values.end(), row.values.begin(), row.values.end());
        gathered.values.resize(gathered.keys.size() * components, kUndefinedValue);
    });
}

Side ValuesComparison::run(const Subject& subject) {
    Rows a;
    Rows b;
    if (!gather(m_a, subject.a, subject.stateOfA, m_numberings, a)) return Side::A;
    if (!gather(m_b, subject.b, subject.stateOfB, {}, b)) return Side::B;
    const auto components = static_cast<std::size_t>(componentCount(subject.a));
    const Found found = compare(a, b, components, subject.tolerance);
    m_comparedCount += found.valueCount;
    return report(subject, found) ? Side::NONE : Side::A;
}

ValuesComparison::Found ValuesComparison::compare(const Rows& a, const Rows& b,
                                                  std::size_t components,
                                                  const Tolerance& tolerance) {
    Found found;
    const ItemPairs pairs = pairByKey(a.keys, b.keys);
    found.valueCount = pairs.both.size() * components;
    found.onlyACount = pairs.onlyA.size();
    found.onlyBCount = pairs.onlyB.size();
    for (const auto& [i, j] : pairs.both) {
        for (std::size_t c = 0; c < components; ++c) {
            const float x = a.values[i * components + c];
            const float y = b.values[j * components + c];
            if (!tolerance.holds(x, y)) compareValue(x, y, i, c, found);
        }
    }
    return found;
}

void ValuesComparison::compareValue(float a, float b, std::size_t row, std::size_t component,
                                    Found& found) {
    ++found.differentCount;
    if (IsUndefined(a) || IsUndefined(b)) {
        ++found.undefinedCount;
        return;
    }
    const double difference = std::abs(double{a} - double{b});
    const double relative = difference / std::max(std::abs(double{a}), std::abs(double{b}));
    if (difference > found.absolute.difference) {
        found.absolute = {difference, row, component, a, b};
    }
    if (relative > found.relative.difference) found.relative = {relative, row, component, a, b};
}

bool ValuesComparison::report(const Subject& subject, const Found& found) {
    const bool isSame = found.differentCount + found.onlyACount + found.onlyBCount == 0;
    if (isSame || m_differences.ignores(subject.place)) return true;
    Difference difference{subject.place,
                          std::to_string(found.differentCount) + " of " +
                              counted(found.valueCount, "value") +
                              (found.differentCount == 1 ? " differs" : " differ"),
                          {}};
    difference.details = {{"result", subject.a.GetDescription().name.Bytes()},
                          {"state", subject.stateOfA},
                          {"values", found.valueCount},
                          {"differing", found.differentCount},
                          {"undefinedInOne", found.undefinedCount},
                          {"itemsOnlyInA", found.onlyACount},
                          {"itemsOnlyInB", found.onlyBCount}};
    if (found.undefinedCount > 0) {
        difference.text +=
            ", " + std::to_string(found.undefinedCount) + " with a value in one file only";
    }
    for (const bool isA : {true, false}) {
        const std::size_t count = isA ? found.onlyACount : found.onlyBCount;
        if (count == 0) continue;
        difference.text += "; " + counted(count, "item") + " only in " +
                           (isA ? m_differences.nameOfA() : m_differences.nameOfB());
    }
    if (!describe(subject, "absolute", found.absolute, difference)) return false;
    if (!describe(subject, "relative", found.relative, difference)) return false;
    m_differences.add(std::move(difference));
    return true;
}

bool ValuesComparison::describe(const Subject& subject, const char* kind, const Largest& largest,
                                Difference& difference) {
    difference.details[kind] = nullptr;
    if (largest.difference < 0) return true;
    std::optional<Extreme> extreme = extremeAt(subject, largest.row);
    if (!extreme) return false;
    const int mapping = subject.a.GetDescription().resultMapping;
    const auto quantities = Quantity::all(componentCount(subject.a));
    const char* component = quantities[largest.component].name();
    difference.notes.push_back(std::string("largest ") + kind + " difference " +
                               numberText(static_cast<float>(largest.difference)) + " in " +
                               component + " at " + placeText(*extreme, mapping) + ": " +
                               valueText(largest.a) + " and " + valueText(largest.b));
    Json place = extremeJson(*extreme, mapping);
    place.erase("value");
    Json json = {{"difference", largest.difference},
                 {"component", component},
                 {"a", jsonNumber(largest.a)},
                 {"b", jsonNumber(largest.b)}};
    json.update(place);
    difference.details[kind] = json;
    return true;
}

// Reads the values once more: what lies where is only asked where something differs.
std::optional<Extreme> ValuesComparison::extremeAt(const Subject& subject, std::size_t row) {
    std::optional<Extreme> extreme;
    std::size_t count = 0;
    const bool isRead =
        m_a.forEach(subject.a, subject.stateOfA, nullptr, [&](const ResultRow& own) {
            if (count++ != row) return;
            extreme.emplace();
            extreme->row = own;
            extreme->row.values = {};
        });
    if (!isRead || !extreme) return std::nullopt;
    locate(m_a, subject.a.GetDescription().resultMapping, subject.stateOfA, *extreme);
    return extreme;
}

}  // namespace tools
