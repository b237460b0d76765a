#include "NuoZRFx/StateInfoBlock.h"

#include <algorithm>
#include <climits>
#include <memory>
#include <set>
#include <unordered_map>
#include <utility>

#include "Convert_p.h"
#include "Log_p.h"
#include "UnusedId_p.h"
#include "ZRIDLookup.h"
#include "ZRMakeRoom.h"
#include "blocks/results/ZRFxStateInfoBlock.h"

namespace nuo::zrfx {
namespace {

using unstruct::ZRFxStateInfo;
using unstruct::ZRFxStateInfoBlock;

constexpr int kBlockId = 1;

// A group is stored by the states that belong to it; those that have none live here only.
struct Group {
    int id;
    unstruct::ZRString name;
    std::vector<std::size_t> states;  // That it was given, in order; a later group may have some.
};

bool isValidType(StateInfoBlock::ReferenceValueType type) {
    return type >= StateInfoBlock::TIME && type <= StateInfoBlock::OTHER;
}

}  // namespace

class StateInfoBlockPrivate {
public:
    const ZRFxStateInfo* state(std::size_t index) const {
        return m_stateInfoBlock->GetState(static_cast<std::int64_t>(index));
    }

    // What a file tells.
    void collect() {
        for (std::size_t i = 0; state(i); ++i) {
            const ZRFxStateInfo& info = *state(i);
            m_statesOfId[info.stateID].push_back(i);
            m_largestId = std::max(m_largestId, info.stateID);
            if (info.parentID >= 0) group(info.parentID, info.group).states.push_back(i);
        }
    }

    // The group of an id, added when there is none.
    Group& group(int id, const unstruct::ZRString& name) {
        const std::int64_t index = m_groupIndices.IndexOf(id);
        if (index >= 0) return m_groups[static_cast<std::size_t>(index)];
        Group added{id, name, {}};
        unstruct::MakeRoom(&m_groups);
        m_groupIndices.Add(id);
        m_largestId = std::max(m_largestId, id);
        return m_groups.emplace_back(std::move(added));
    }

    // A state of a new id.
    void add(ZRFxStateInfo info) {
        const int id = info.stateID;
        auto added = std::make_unique<ZRFxStateInfo>(std::move(info));
        const auto index = static_cast<std::size_t>(m_stateInfoBlock->GetStateCount());
        m_stateInfoBlock->MakeRoom();
        m_statesOfId.emplace(id, std::vector<std::size_t>{index});
        m_largestId = std::max(m_largestId, id);
        m_stateInfoBlock->AddState(std::move(added));
    }

    // A group of a new id, which takes its states from the groups that they were in.
    void addGroup(int id, const unstruct::ZRString& name, std::vector<std::size_t> states) {
        std::vector<unstruct::ZRString> names(states.size(), name);
        Group& added = group(id, name);
        added.states = std::move(states);
        for (std::size_t i = 0; i < names.size(); ++i) {
            ZRFxStateInfo* state =
                m_stateInfoBlock->EditState(static_cast<std::int64_t>(added.states[i]));
            state->parentID = id;
            state->group = std::move(names[i]);
        }
    }

    // The states that have one of the ids, in order.
    std::vector<std::size_t> statesOf(const std::vector<int>& ids) const {
        std::vector<std::size_t> states;
        for (const int id : ids) {
            const auto found = m_statesOfId.find(id);
            if (found == m_statesOfId.end()) continue;
            states.insert(states.end(), found->second.begin(), found->second.end());
        }
        std::sort(states.begin(), states.end());
        states.erase(std::unique(states.begin(), states.end()), states.end());
        return states;
    }

    nvf::ref<ZRFxStateInfoBlock> m_stateInfoBlock;
    std::vector<Group> m_groups;
    // For looking up, as there may be very many. A file may give an id to several states.
    std::unordered_map<int, std::vector<std::size_t>> m_statesOfId;
    unstruct::ZRIDLookup m_groupIndices;
    int m_largestId = 0;  // Of states and groups; a solver asks for the next one with each step.
};

StateInfoBlock::StateInfoBlock() : Block(kBlockId, STATE_INFO) {
    guarded([&] {
        auto made = std::make_unique<StateInfoBlockPrivate>();
        made->m_stateInfoBlock = new ZRFxStateInfoBlock(nullptr, kBlockId);
        m_private.take(std::move(made));
    });
}

StateInfoBlock::StateInfoBlock(ZRFxStateInfoBlock* stateInfoBlock, int blockId)
    : Block(blockId, STATE_INFO), m_private(std::make_unique<StateInfoBlockPrivate>()) {
    m_private->m_stateInfoBlock = stateInfoBlock;
    m_private->collect();
}

StateInfoBlock::~StateInfoBlock() = default;

bool StateInfoBlock::checkValidity() const {
    if (stateCount() == 0) return fail("No state information supplied to state info block.");
    return Block::checkValidity();
}

unstruct::ZRFxBlock* StateInfoBlock::internal_zrfxBlock() const {
    return guarded([&] { return m_private->m_stateInfoBlock.p(); });
}

bool StateInfoBlock::addStateInfo(int stateId, const Str& stateName, float referenceValue,
                                  ReferenceValueType referenceValueType) {
    return guarded([&] {
        if (!isValidType(referenceValueType)) {
            return fail("Invalid reference value type %1 supplied.",
                        static_cast<int>(referenceValueType));
        }
        if (isIdUsed(stateId)) {
            return fail(
                "State/group %1 already exist. Note that state and group ids cannot overlap.",
                stateId);
        }
        ZRFxStateInfo info;
        info.stateID = stateId;
        info.name = stateName.isEmpty() ? unstruct::ZRString("State " + std::to_string(stateId))
                                        : ZRConvert::toZRString(stateName);
        info.referenceValue = referenceValue;
        info.referenceType = ZRConvert::fromReferenceType(referenceValueType);
        m_private->add(std::move(info));
        return true;
    });
}

bool StateInfoBlock::addGroupInfo(int groupId, const Str& groupName,
                                  const std::vector<int>& stateIds) {
    return guarded([&] {
        if (groupId < 0) return fail("groupId must be >= 0");
        if (isIdUsed(groupId)) {
            return fail(
                "Group/state id %1 already exist. Note that state and group ids cannot overlap.",
                groupId);
        }
        const unstruct::ZRString name = groupName.isEmpty()
                                            ? unstruct::ZRString("Group " + std::to_string(groupId))
                                            : ZRConvert::toZRString(groupName);
        m_private->addGroup(groupId, name, m_private->statesOf(stateIds));
        return true;
    });
}

std::size_t StateInfoBlock::stateCount() const {
    return guarded(
        [&] { return static_cast<std::size_t>(m_private->m_stateInfoBlock->GetStateCount()); });
}

int StateInfoBlock::stateId(std::size_t index) const {
    const ZRFxStateInfo* state = stateAt(index);
    return state ? state->stateID : -1;
}

Str StateInfoBlock::stateName(std::size_t index) const {
    return guarded([&] {
        const ZRFxStateInfo* state = stateAt(index);
        return state ? ZRConvert::toStr(state->name) : Str();
    });
}

float StateInfoBlock::stateReferenceValue(std::size_t index) const {
    const ZRFxStateInfo* state = stateAt(index);
    return state ? state->referenceValue : 0;
}

StateInfoBlock::ReferenceValueType StateInfoBlock::stateReferenceValueType(
    std::size_t index) const {
    const ZRFxStateInfo* state = stateAt(index);
    return state ? ZRConvert::toReferenceType(state->referenceType) : OTHER;
}

int StateInfoBlock::stateIndex(int stateId) const {
    return guarded(-1, [&] {
        const auto found = m_private->m_statesOfId.find(stateId);
        return found == m_private->m_statesOfId.end() ? -1
                                                      : static_cast<int>(found->second.front());
    });
}

int StateInfoBlock::unusedStateId() const {
    return guarded(-1, [&] {
        if (m_private->m_largestId < INT_MAX) return m_private->m_largestId + 1;
        std::set<int> ids;
        for (const auto& [id, states] : m_private->m_statesOfId) ids.insert(id);
        for (const Group& group : m_private->m_groups) ids.insert(group.id);
        return unusedId(ids, 1);
    });
}

std::size_t StateInfoBlock::groupCount() const {
    return guarded([&] { return m_private->m_groups.size(); });
}

int StateInfoBlock::groupId(std::size_t index) const {
    return guarded(-1, [&]() -> int {
        if (index < groupCount()) return m_private->m_groups[index].id;
        fail("State info index %1 does not exist.", index);
        return -1;
    });
}

Str StateInfoBlock::groupName(std::size_t index) const {
    return guarded([&]() -> Str {
        if (index < groupCount()) return ZRConvert::toStr(m_private->m_groups[index].name);
        fail("State info index %1 does not exist.", index);
        return Str();
    });
}

std::vector<int> StateInfoBlock::groupStateIds(std::size_t index) const {
    return guarded([&] {
        std::vector<int> ids;
        const int group = groupId(index);
        if (group < 0) return ids;
        for (const std::size_t state : m_private->m_groups[index].states) {
            if (stateAt(state)->parentID == group) ids.push_back(stateAt(state)->stateID);
        }
        return ids;
    });
}

const ZRFxStateInfo* StateInfoBlock::stateAt(std::size_t index) const {
    if (index < stateCount()) {
        return m_private->state(index);
    }
    fail("State info index %1 does not exist.", index);
    return nullptr;
}

bool StateInfoBlock::isIdUsed(int id) const {
    return stateIndex(id) >= 0 || m_private->m_groupIndices.IndexOf(id) >= 0;
}

}  // namespace nuo::zrfx
