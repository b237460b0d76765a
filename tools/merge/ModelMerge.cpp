#include "merge/ModelMerge.h"

#include <algorithm>

#include "Text.h"
#include "blocks/mesh/ZRFxElementBlock.h"
#include "blocks/mesh/ZRFxElementBlockGroup.h"
#include "blocks/mesh/ZRFxGeometryBlock.h"
#include "blocks/mesh/ZRFxGeometryInfoBlock.h"
#include "blocks/mesh/ZRFxNodeBlock.h"
#include "blocks/sets/ZRFxSetBlock.h"
#include "diff/FieldComparison.h"
#include "quantities/ModelItems.h"
#include "quantities/ResultLookup.h"

namespace tools {
namespace {

using namespace unstruct;
using nvf::ref;

// The first block of a type, read; a new one where there is none.
template <typename BlockClass>
ref<BlockClass> firstBlock(ZRFxDatabase& database) {
    const auto ids = blockIds(database, BlockClass::kType);
    if (!ids.empty()) return readBlock<BlockClass>(database, ids.front());
    return new BlockClass(&database, 0);
}

ref<ZRFxResultValuesBlock> copyOf(const ZRFxResultValuesBlock& from, ZRFxDatabase& into, int id) {
    ref<ZRFxResultValuesBlock> copy = new ZRFxResultValuesBlock(&into, id);
    copy->SetNumDimensions(from.GetNumDimensions());
    copy->SetSignificantDigits(from.GetSignificantDigits());
    if (from.GetNumDimensions() == kVectorKind.Dimension()) {
        copy->SetVectors(from.GetVectors().Data(), from.GetVectors().GetSize());
    } else {
        copy->SetScalars(from.GetScalars().Data(), from.GetScalars().GetSize());
    }
    if (!from.GetIDs()) return copy;
    auto ids = std::make_unique<ZRIntArray>();
    ids->Assign(from.GetIDs()->Data(), from.GetIDs()->GetSize());
    copy->SetIDs(std::move(ids));
    return copy;
}

}  // namespace

bool ModelMerge::run() {
    if (!compareMeshes(&m_hasSameMesh) || !addStates()) return false;
    if (!m_hasSameMesh && !addParts()) return false;
    if (!addResults()) return false;
    const auto newCount = static_cast<std::uint64_t>(m_newStates.size());
    m_summary = m_hasSameMesh ? counted(newCount, "state") + " added"
                              : counted(static_cast<std::uint64_t>(m_partCount), "part") + " added";
    if (m_leftOutCount > 0) {
        const std::string states = counted(static_cast<std::uint64_t>(m_leftOutCount), "state");
        m_summary += ", " + states +
                     (m_hasSameMesh ? " left out that the file has by reference value"
                                    : " left out that the file does not have");
    }
    return m_into.WriteTOC();
}

int ModelMerge::freeId(int type) const {
    const int count = m_into.GetNumBlocks(type);
    return count == 0 ? 1 : m_into.GetBlock(type, count - 1)->GetID() + 1;
}

bool ModelMerge::compareMeshes(bool* areSame) {
    *areSame = true;
    return haveSameBlocks(BLOCK_NODES, areSame) && haveSameBlocks(BLOCK_ELEMENTS, areSame);
}

bool ModelMerge::haveSameBlocks(int type, bool* areSame) {
    const auto ids = blockIds(m_into, type);
    *areSame = *areSame && ids == blockIds(m_from, type);
    Differences differences("", "", {});
    FieldComparison fields(differences, Tolerance());
    for (std::size_t i = 0; i < ids.size() && *areSame; ++i) {
        const auto into = readBlock(m_into, type, ids[i]);
        const auto from = readBlock(m_from, type, ids[i]);
        if (into.isNull() || from.isNull()) return false;
        fields.compare("", *into, *from);
        *areSame = differences.empty();
        (type == BLOCK_NODES ? m_nodes : m_elements)[ids[i]] = ids[i];
    }
    return true;
}

// ---- States

// The id of the state of one reference value; -1 where there is none.
int ModelMerge::stateLike(const ZRFxStateInfo& from, const ZRFxStateInfoBlock& states) const {
    for (std::int64_t i = 0; i < states.GetStateCount(); ++i) {
        const ZRFxStateInfo& state = *states.GetState(i);
        const bool isSame = state.referenceType == from.referenceType &&
                            state.referenceValue == from.referenceValue;
        if (isSame) return state.stateID;
    }
    return -1;
}

// A run that goes on brings states that are not there; parts bring values for those that are.
bool ModelMerge::addStates() {
    const auto into = firstBlock<ZRFxStateInfoBlock>(m_into);
    const auto from = firstBlock<ZRFxStateInfoBlock>(m_from);
    if (into.isNull() || from.isNull()) return false;
    int last = -1;
    for (std::int64_t i = 0; i < into->GetStateCount(); ++i) {
        last = std::max(last, into->GetState(i)->stateID);
    }
    for (std::int64_t i = 0; i < from->GetStateCount(); ++i) {
        ZRFxStateInfo state = *from->GetState(i);
        const int own = stateLike(state, *into);
        if ((own >= 0) == m_hasSameMesh) {
            ++m_leftOutCount;
        } else if (own >= 0) {
            m_states[state.stateID] = own;
        } else {
            const int id = ++last;
            m_states[state.stateID] = id;
            m_newStates.push_back(id);
            state.stateID = id;
            into->AddState(state);
        }
    }
    return m_newStates.empty() || (into->WriteBlock(&m_into) && addGeometryStates());
}

// Where the parts have a record for each state, so have the new ones; a single one is for all.
bool ModelMerge::addGeometryStates() {
    const auto into = firstBlock<ZRFxGeometryBlock>(m_into);
    const auto from = firstBlock<ZRFxGeometryBlock>(m_from);
    if (into.isNull() || from.isNull()) return false;
    if (into->GetStateCount() < 2 || from->GetStateCount() == 0) return true;
    for (const auto& [old, id] : m_states) {
        const ZRFxGeometryState* found = from->FindState(old);
        const ZRFxGeometryState& state = found ? *found : *from->GetState(0);
        ZRFxGeometryState* own = into->AddState(id);
        const int count =
            std::min(state.GetGeometryCountPerState(), into->GetGeometryCountPerState());
        for (int g = 0; g < count; ++g) {
            for (int p = 0; p < state.GetPartCount(g); ++p) own->AddPart(g, state.GetPart(g, p));
        }
    }
    return into->WriteBlock(&m_into);
}

// ---- Parts

bool ModelMerge::addParts() {
    m_nodes.clear();
    m_elements.clear();
    return std::ranges::all_of(blockIds(m_from, BLOCK_NODES),
                               [&](int id) { return addNodes(id); }) &&
           std::ranges::all_of(blockIds(m_from, BLOCK_ELEMENTS),
                               [&](int id) { return addElements(id); }) &&
           addGeometry() && addSets();
}

bool ModelMerge::addNodes(int id) {
    const auto from = readBlock<ZRFxNodeBlock>(m_from, id);
    if (from.isNull()) return false;
    m_nodes[id] = freeId(BLOCK_NODES);
    const ref<ZRFxNodeBlock> nodes = new ZRFxNodeBlock(&m_into, m_nodes[id]);
    return nodes->SetNodes(from->GetNodes().Data(), from->GetNodes().GetSize(),
                           from->GetNodeIDs() ? from->GetNodeIDs()->Data() : nullptr) &&
           nodes->WriteBlock(&m_into);
}

bool ModelMerge::addElements(int id) {
    const auto from = readBlock<ZRFxElementBlock>(m_from, id);
    if (from.isNull()) return false;
    m_elements[id] = freeId(BLOCK_ELEMENTS);
    const ref<ZRFxElementBlock> elements = new ZRFxElementBlock(&m_into, m_elements[id]);
    elements->SetNodeBlockID(m_nodes[from->GetNodeBlockID()]);
    elements->SetMapToNodeIDs(from->GetMapToNodeIDs());
    for (std::int64_t g = 0; g < from->GetNumElementGroups(); ++g) {
        auto group = std::make_unique<ZRFxElementBlockGroup>(*from->GetElementGroup(g));
        // Cross sections stay where they are.
        group->m_aiExpansionMapping = {};
        group->m_aDirections = {};
        group->m_aEccentricities = {};
        if (!elements->AddElementGroup(group)) return false;
    }
    return elements->WriteBlock(&m_into);
}

// Parts are those of the first state of the other model, under new ids; of two of one name the
// second has a number.
bool ModelMerge::addGeometry() {
    const auto geometry = firstBlock<ZRFxGeometryBlock>(m_into);
    const auto info = firstBlock<ZRFxGeometryInfoBlock>(m_into);
    const auto states = statesOf(m_from);
    if (geometry.isNull() || info.isNull() || geometry->GetStateCount() == 0) return false;
    if (info->GetGeometryCountPerState() == 0) info->SetGeometryCountPerState(1);
    std::set<std::string> names;
    int last = 0;
    ModelItems own(m_into);
    for (const PartItems& part : own.parts(geometry->GetState(0)->GetStateID())) {
        names.insert(part.name);
        last = std::max(last, part.id);
    }
    ModelItems from(m_from);
    for (const PartItems& part : from.parts(states.empty() ? 0 : states.front().id)) {
        std::string name = part.name.empty() ? numbered("Part", part.id) : part.name;
        const std::string plain = name;
        for (int i = 2; names.contains(name); ++i) name = plain + " (" + std::to_string(i) + ")";
        names.insert(name);
        ++last;
        ++m_partCount;
        info->GetPartInfos(0)->AddPartInfo({last, -1, name, false});
        for (const int block : part.elementBlocks) {
            for (std::int64_t s = 0; s < geometry->GetStateCount(); ++s) {
                geometry->GetState(s)->AddPart(0, {-1, m_elements[block], BLOCK_ELEMENTS, last});
            }
        }
    }
    return geometry->WriteBlock(&m_into) && info->WriteBlock(&m_into);
}

bool ModelMerge::addSets() {
    return std::ranges::all_of(blockIds(m_from, BLOCK_SET), [&](int id) {
        const auto from = readBlock<ZRFxSetBlock>(m_from, id);
        if (from.isNull()) return false;
        const ref<ZRFxSetBlock> set = new ZRFxSetBlock(&m_into, freeId(BLOCK_SET));
        set->SetSetID(set->GetID());
        set->SetName(from->GetName());
        set->SetItemType(from->GetItemType());
        set->SetItemsSpecifiedAsIDs(from->GetItemsSpecifiedAsIDs());
        for (std::int64_t g = 0; g < from->GetItemsCount(); ++g) {
            auto items = std::make_unique<ZRFxSetBlockItems>(*from->GetItems(g));
            items->m_iBlockID = m_elements[items->m_iBlockID];
            set->AddItems(std::move(items));
        }
        return set->WriteBlock(&m_into);
    });
}

// ---- Results

bool ModelMerge::addResults() {
    return std::ranges::all_of(blockIds(m_from, BLOCK_RESULTS), [&](int id) {
        const auto result = readBlock<ZRFxResultBlock>(m_from, id);
        return result.notNull() && addResult(*result);
    });
}

// The result of one name, type and mapping, or a new one.
ref<ZRFxResultBlock> ModelMerge::resultLike(const ZRFxResultBlock& from) {
    const ZRFxResultDescription& wanted = from.GetDescription();
    int lastId = 0;
    for (const auto& result : resultsOf(m_into)) {
        const ZRFxResultDescription& own = result->GetDescription();
        const bool isSame = own.name == wanted.name && own.resultType == wanted.resultType &&
                            own.resultMapping == wanted.resultMapping;
        if (isSame) return result;
        lastId = std::max(lastId, own.resultID);
    }
    ref<ZRFxResultBlock> result = new ZRFxResultBlock(&m_into, freeId(BLOCK_RESULTS));
    result->GetDescription() = wanted;
    result->GetDescription().resultID = lastId + 1;
    return result;
}

bool ModelMerge::addResult(const ZRFxResultBlock& from) {
    const ref<ZRFxResultBlock> into = resultLike(from);
    bool hasNew = false;
    for (std::int64_t s = 0; s < from.GetStateCount(); ++s) {
        const auto state = m_states.find(from.GetState(s)->m_iStateID);
        if (state == m_states.end()) continue;
        ZRFxStateValues* values = into->AddState(state->second);
        for (const int id : itemsOf(from.GetState(s)->m_aiValuesBlockIDs)) {
            int newId = -1;
            if (!addValues(id, from.GetDescription().resultMapping, &newId)) return false;
            values->m_aiValuesBlockIDs.Add(newId);
            hasNew = true;
        }
    }
    return !hasNew || into->WriteBlock(&m_into);
}

bool ModelMerge::addValues(int id, int mapping, int* newId) {
    const auto from = readBlock<ZRFxResultValuesBlock>(m_from, id);
    if (from.isNull()) return false;
    *newId = freeId(BLOCK_RESULT_VALUES);
    const auto values = copyOf(*from, m_into, *newId);
    const IdMap& targets = mapping == MAPPING_NODE ? m_nodes : m_elements;
    const auto target = targets.find(from->GetMapToBlockID());
    values->SetMapToBlockID(target == targets.end() ? -1 : target->second);
    return values->WriteBlock(&m_into);
}

}  // namespace tools
