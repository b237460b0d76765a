#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "blocks/ZRFxOutline.h"

namespace unstruct {

class ZRFxDatabase;

/// Something about a block that does not fit the rest of its database.
struct ZRFxFinding {
    bool isError;       ///< Else it may be meant.
    const char* check;  ///< A name for programs, as "value-count".
    int type;           ///< Of the block.
    int id;
    std::string place;    ///< Where in the block, as "state 3"; may be empty.
    std::string message;  ///< Half a sentence: "there is no node block 4".
};

/// Checks whether the blocks of a database fit together, by their outlines: no data file is read,
/// and the document of another block only when a check needs it, once. What was found in documents
/// stays in memory, so that a database must not change while it is checked. Messages about
/// documents that cannot be read are logged. The database must outlive it.
class ZRFxModelCheck {
public:
    explicit ZRFxModelCheck(ZRFxDatabase& database) : m_database(database) {}

    /// What a block, given its outline, says of others that is not so.
    std::vector<ZRFxFinding> CheckBlock(int type, int id, const ZRFxOutline& outline);

    /// The blocks that were written into the database since it was opened.
    std::vector<ZRFxFinding> CheckWritten();

    /// All blocks.
    std::vector<ZRFxFinding> CheckAll();

    /// The outline of a block; null when it cannot be read.
    std::optional<ZRFxOutline> OutlineOf(int type, int id) const;

    /// How many items a block has; null when it cannot be read, or is none of nodes, elements or
    /// faces.
    const ZRFxItemCounts* CountsOf(int type, int id);

    /// How result values are used; null when no block uses them, or not as a whole.
    const ZRFxValuesUse* UseOf(int valuesID);

    /// The ids of all results.
    const std::multiset<int>& ResultIDs();

private:
    struct States {
        bool isKnown = false;  // whether the database lists its states at all
        std::set<int> ids;
    };

    /// The findings of one block.
    struct Report;

    /// What is known of all results: their ids, and how values are used, by id of the values.
    struct Results {
        std::multiset<int> ids;
        std::map<int, ZRFxValuesUse> uses;
    };

    void CheckBlock(int type, int id, std::vector<ZRFxFinding>* findings);
    void CheckReference(const ZRFxReference& reference, Report& report);
    void CheckStates(const ZRFxOutline& outline, Report& report);
    void CheckResult(const ZRFxOutline& outline, Report& report);
    void CheckNodes(const ZRFxNodesUse& nodes, Report& report);
    void CheckValues(const ZRFxValuesOutline& values, Report& report);
    bool HasBlock(int type, int id) const;
    bool IsTarget(int id) const;
    bool FitsTarget(int mapping, int targetID) const;
    std::vector<std::int64_t> ExpectedCounts(int mapping, int targetID);
    const States& KnownStates();
    const std::set<int>& CaseIDs();
    const Results& KnownResults();
    void AddResult(const std::optional<ZRFxOutline>& outline);

    ZRFxDatabase& m_database;
    std::map<std::pair<int, int>, std::optional<ZRFxItemCounts>> m_counts;  // by type and id
    std::optional<States> m_states;
    std::optional<std::set<int>> m_caseIDs;
    std::optional<Results> m_results;
};

}  // namespace unstruct
