#include "NuoZRFx/StateInfoBlock.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

#include "Convert_p.h"
#include "Log_p.h"
#include "ZROZRFxStateInfoBlock.h"

namespace nuo::zrfx {
namespace {

using unstruct::ZRFxStateInfo;
using unstruct::ZRFxStateInfoBlock;

constexpr int kBlockId = 1;

struct Group {
    int id;
    Str name;
};

bool isValidType(StateInfoBlock::ReferenceValueType type) {
    return type >= StateInfoBlock::TIME && type <= StateInfoBlock::OTHER;
}

}  // namespace

// A group is stored by the states that belong to it; those that have none live here only.
class StateInfoBlockPrivate {
public:
    void collectGroups() {
        std::unordered_set<int> found;
        for (std::int64_t i = 0; i < m_stateInfoBlock->GetStateCount(); ++i) {
            const ZRFxStateInfo* state = m_stateInfoBlock->GetState(i);
            if (state->parentID < 0 || !found.insert(state->parentID).second) continue;
            m_groups.push_back({state->parentID, ZRConvert::toStr(state->group)});
        }
    }

    bool hasGroup(int id) const {
        return std::any_of(m_groups.begin(), m_groups.end(),
                           [&](const Group& group) { return group.id == id; });
    }

    nvf::ref<ZRFxStateInfoBlock> m_stateInfoBlock;
    std::vector<Group> m_groups;
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
    m_private->collectGroups();
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
        m_private->m_stateInfoBlock->AddState(info);
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
        const Str name = groupName.isEmpty() ? Str("Group " + std::to_string(groupId)) : groupName;
        const unstruct::ZRString zrName = ZRConvert::toZRString(name);
        std::vector<std::pair<ZRFxStateInfo*, unstruct::ZRString>> members;
        for (std::size_t i = 0; i < stateCount(); ++i) {
            ZRFxStateInfo* state =
                m_private->m_stateInfoBlock->GetState(static_cast<std::int64_t>(i));
            if (std::find(stateIds.begin(), stateIds.end(), state->stateID) == stateIds.end())
                continue;
            members.emplace_back(state, zrName);
        }
        m_private->m_groups.push_back({groupId, name});
        for (auto& [state, group] : members) {
            state->parentID = groupId;
            state->group = std::move(group);
        }
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
    for (std::size_t i = 0; i < stateCount(); ++i) {
        if (stateAt(i)->stateID == stateId) return static_cast<int>(i);
    }
    return -1;
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
        if (index < groupCount()) return m_private->m_groups[index].name;
        fail("State info index %1 does not exist.", index);
        return Str();
    });
}

std::vector<int> StateInfoBlock::groupStateIds(std::size_t index) const {
    return guarded([&] {
        std::vector<int> ids;
        const int group = groupId(index);
        for (std::size_t i = 0; group >= 0 && i < stateCount(); ++i) {
            if (stateAt(i)->parentID == group) ids.push_back(stateAt(i)->stateID);
        }
        return ids;
    });
}

const ZRFxStateInfo* StateInfoBlock::stateAt(std::size_t index) const {
    if (index < stateCount()) {
        return m_private->m_stateInfoBlock->GetState(static_cast<std::int64_t>(index));
    }
    fail("State info index %1 does not exist.", index);
    return nullptr;
}

bool StateInfoBlock::isIdUsed(int id) const {
    return stateIndex(id) >= 0 || m_private->hasGroup(id);
}

}  // namespace nuo::zrfx
