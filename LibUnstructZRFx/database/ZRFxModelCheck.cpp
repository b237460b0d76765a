#include "database/ZRFxModelCheck.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "access/ZROZRFxAccess.h"
#include "database/ZROZRFxDatabase.h"
#include "types/ZRFxResultTypes.h"

namespace unstruct {
namespace {

// The blocks that result values may belong to.
constexpr std::array kTargetTypes{BLOCK_NODES, BLOCK_ELEMENTS, BLOCK_INDEXED_FACE_SET};

std::string counted(std::int64_t count, const char* singular) {
    return std::to_string(count) + " " + singular + (count == 1 ? "" : "s");
}

}  // namespace

struct ZRFxModelCheck::Report {
    int type;
    int id;
    std::vector<ZRFxFinding> findings;

    void Error(const char* check, std::string place, std::string message) {
        findings.push_back({true, check, type, id, std::move(place), std::move(message)});
    }
    void Warning(const char* check, std::string place, std::string message) {
        findings.push_back({false, check, type, id, std::move(place), std::move(message)});
    }
};

std::vector<ZRFxFinding> ZRFxModelCheck::CheckBlock(int type, int id, const ZRFxOutline& outline) {
    Report report{type, id, {}};
    for (const ZRFxReference& reference : outline.references) CheckReference(reference, report);
    CheckStates(outline, report);
    CheckResult(outline, report);
    if (outline.nodes) CheckNodes(*outline.nodes, report);
    if (outline.values) CheckValues(*outline.values, report);
    return std::move(report.findings);
}

std::vector<ZRFxFinding> ZRFxModelCheck::CheckWritten() {
    std::vector<ZRFxFinding> findings;
    for (const auto& [type, id] : m_database.GetWrittenBlocks().All()) {
        if (HasBlock(type, id)) CheckBlock(type, id, &findings);  // else writing it has failed
    }
    return findings;
}

std::vector<ZRFxFinding> ZRFxModelCheck::CheckAll() {
    std::vector<ZRFxFinding> findings;
    for (int index = 0; index < m_database.GetNumBlocks(); ++index) {
        const ZRFxBlock& entry = *m_database.GetBlock(index);
        CheckBlock(entry.GetType(), entry.GetID(), &findings);
    }
    return findings;
}

void ZRFxModelCheck::CheckBlock(int type, int id, std::vector<ZRFxFinding>* findings) {
    const std::optional<ZRFxOutline> outline = OutlineOf(type, id);
    if (!outline) return;
    std::ranges::move(CheckBlock(type, id, *outline), std::back_inserter(*findings));
}

std::optional<ZRFxOutline> ZRFxModelCheck::OutlineOf(int type, int id) const {
    if (auto outline = m_database.GetWrittenBlocks().Find(type, id)) return outline;
    ZRFxOutline outline;
    const nvf::ref<ZRFxBlock> block = m_database.OpenBlock(type, id);
    if (block.isNull() || !block->ReadOutline(&outline)) return std::nullopt;
    return outline;
}

const ZRFxItemCounts* ZRFxModelCheck::CountsOf(int type, int id) {
    const auto [found, isNew] = m_counts.try_emplace({type, id});
    if (isNew && HasBlock(type, id)) {
        if (const auto outline = OutlineOf(type, id)) found->second = outline->counts;
    }
    return found->second ? &*found->second : nullptr;
}

const ZRFxValuesUse* ZRFxModelCheck::UseOf(int valuesID) {
    const auto use = KnownResults().uses.find(valuesID);
    return use == KnownResults().uses.end() ? nullptr : &use->second;
}

const std::multiset<int>& ZRFxModelCheck::ResultIDs() {
    return KnownResults().ids;
}

void ZRFxModelCheck::CheckReference(const ZRFxReference& reference, Report& report) {
    const std::string id = std::to_string(reference.id);
    const auto fail = [&](std::string message) {
        report.Error("reference", reference.place, std::move(message));
    };
    switch (reference.kind) {
        case ZRFxReference::Kind::BLOCK:
            if (HasBlock(reference.blockType, reference.id)) return;
            return fail("there is no block " + ZRFxBlockTypeName(reference.blockType).Bytes() +
                        ":" + id);
        case ZRFxReference::Kind::VALUES_TARGET:
            if (IsTarget(reference.id)) return;
            return fail("there is no block of nodes, elements or faces of id " + id);
        case ZRFxReference::Kind::STATE:
            if (!KnownStates().isKnown || KnownStates().ids.contains(reference.id)) return;
            return fail("there is no state " + id);
        case ZRFxReference::Kind::RESULT:
            if (ResultIDs().contains(reference.id)) return;
            return fail("there is no result of id " + id);
        case ZRFxReference::Kind::CASE:
            if (CaseIDs().contains(reference.id)) return;
            return fail("there is no case " + id);
    }
}

void ZRFxModelCheck::CheckStates(const ZRFxOutline& outline, Report& report) {
    std::set<int> seen;
    for (std::size_t i = 0; i < outline.stateIDs.size(); ++i) {
        const int id = outline.stateIDs[i];
        if (seen.insert(id).second) continue;
        if (report.type == BLOCK_STATE_INFO) {
            report.Error("duplicate-id", NumberedPlace("record", static_cast<std::int64_t>(i)),
                         "state id " + std::to_string(id) + " is used before");
        } else {
            report.Error("duplicate-id", "", NumberedPlace("state", id) + " is listed twice");
        }
    }
}

void ZRFxModelCheck::CheckResult(const ZRFxOutline& outline, Report& report) {
    if (!outline.result) return;
    const ZRFxResultOutline& result = *outline.result;
    if (ResultIDs().count(result.resultID) > 1) {
        report.Warning(
            "duplicate-id", "",
            "other results have the result id " + std::to_string(result.resultID) + " as well");
    }
    if (result.mapping == MAPPING_UNKNOWN) {
        report.Error("mapping", "", "what the values belong to is not told");
    }
    if (result.isDisplacement && result.mapping != MAPPING_NODE) {
        report.Error("mapping", "", "displacements belong to nodes");
    }
}

void ZRFxModelCheck::CheckNodes(const ZRFxNodesUse& nodes, Report& report) {
    const ZRFxItemCounts* counts = CountsOf(BLOCK_NODES, nodes.nodeBlockID);
    if (!counts || nodes.highestIndex < counts->items) return;
    report.Error("node-reference", "",
                 "node index " + std::to_string(nodes.highestIndex) + " is beyond the " +
                     counted(counts->items, "node"));
}

void ZRFxModelCheck::CheckValues(const ZRFxValuesOutline& values, Report& report) {
    const ZRFxValuesUse* use = UseOf(report.id);
    if (!use) return;
    if (use->dimension > 0 && use->dimension != values.dimension) {
        report.Error("value-count", "",
                     "has " + std::to_string(values.dimension) + " values an item, its result " +
                         std::to_string(use->dimension));
    }
    if (!FitsTarget(use->mapping, values.targetID)) {
        return report.Error("mapping", "",
                            "values on " + ResultMappingName(use->mapping).Bytes() +
                                " belong to a block of another kind");
    }
    if (values.hasIDs) return;
    const auto expected = ExpectedCounts(use->mapping, values.targetID);
    if (expected.empty() || std::ranges::count(expected, values.numItems) > 0) return;
    report.Error("value-count", "",
                 "has values of " + counted(values.numItems, "item") + ", its target has " +
                     std::to_string(expected.front()));
}

bool ZRFxModelCheck::HasBlock(int type, int id) const {
    return m_database.GetBlockByID(type, id) != nullptr;
}

bool ZRFxModelCheck::IsTarget(int id) const {
    return std::ranges::any_of(kTargetTypes, [&](int type) { return HasBlock(type, id); });
}

// Whether a mapping's target is of the kind that the mapping asks for.
bool ZRFxModelCheck::FitsTarget(int mapping, int targetID) const {
    if (!IsTarget(targetID)) return true;  // reported as a missing reference
    if (mapping == MAPPING_NODE) return HasBlock(BLOCK_NODES, targetID);
    if (mapping == MAPPING_UNKNOWN) return true;
    return HasBlock(BLOCK_ELEMENTS, targetID) || HasBlock(BLOCK_INDEXED_FACE_SET, targetID);
}

// How many values a mapping asks for, one per item. An id may be that of elements and of a face
// set, either of which may be meant; nothing when it cannot be told.
std::vector<std::int64_t> ZRFxModelCheck::ExpectedCounts(int mapping, int targetID) {
    std::vector<std::int64_t> expected;
    const auto add = [&](int type, std::int64_t ZRFxItemCounts::*count) {
        if (const ZRFxItemCounts* counts = CountsOf(type, targetID)) {
            expected.push_back(counts->*count);
        }
    };
    switch (mapping) {
        case MAPPING_NODE:
            add(BLOCK_NODES, &ZRFxItemCounts::items);
            break;
        case MAPPING_ELEMENT:
            add(BLOCK_ELEMENTS, &ZRFxItemCounts::items);
            add(BLOCK_INDEXED_FACE_SET, &ZRFxItemCounts::items);
            break;
        case MAPPING_ELEMENT_NODE:
            add(BLOCK_ELEMENTS, &ZRFxItemCounts::elementNodes);
            add(BLOCK_INDEXED_FACE_SET, &ZRFxItemCounts::elementNodes);
            break;
        case MAPPING_SURFACE:
            add(BLOCK_ELEMENTS, &ZRFxItemCounts::surfaces);
            break;
        default:
            break;
    }
    return expected;
}

const ZRFxModelCheck::States& ZRFxModelCheck::KnownStates() {
    if (m_states) return *m_states;
    m_states.emplace();
    for (int index = 0; index < m_database.GetNumBlocks(BLOCK_STATE_INFO); ++index) {
        const int id = m_database.GetBlock(BLOCK_STATE_INFO, index)->GetID();
        const auto outline = OutlineOf(BLOCK_STATE_INFO, id);
        if (!outline) continue;
        m_states->isKnown = true;
        m_states->ids.insert(outline->stateIDs.begin(), outline->stateIDs.end());
    }
    return *m_states;
}

// The types that say of result values what they must be rank from results to the values; what a
// result says comes before what a surface that shows the values says.
const ZRFxModelCheck::Results& ZRFxModelCheck::KnownResults() {
    if (m_results) return *m_results;
    m_results.emplace();
    for (const int type : kStoredBlockTypes) {
        const int rank = kBlockTypes[type].checkRank;
        if (rank < kBlockTypes[BLOCK_RESULTS].checkRank) continue;
        if (rank >= kBlockTypes[BLOCK_RESULT_VALUES].checkRank) continue;
        for (int index = 0; index < m_database.GetNumBlocks(type); ++index) {
            AddResult(OutlineOf(type, m_database.GetBlock(type, index)->GetID()));
        }
    }
    return *m_results;
}

void ZRFxModelCheck::AddResult(const std::optional<ZRFxOutline>& outline) {
    if (!outline) return;
    if (outline->result) m_results->ids.insert(outline->result->resultID);
    for (const ZRFxValuesUse& use : outline->valuesUses) {
        m_results->uses.try_emplace(use.valuesID, use);
    }
}

const std::set<int>& ZRFxModelCheck::CaseIDs() {
    if (m_caseIDs) return *m_caseIDs;
    m_caseIDs.emplace();
    int count = 0;
    m_database.GetAccess()->GetNumCases(&count);
    for (int index = 0; index < count; ++index) {
        ZRFxCaseInfo info;
        m_database.GetAccess()->GetCaseInfo(index, &info);
        m_caseIDs->insert(info.id);
    }
    return *m_caseIDs;
}

}  // namespace unstruct
