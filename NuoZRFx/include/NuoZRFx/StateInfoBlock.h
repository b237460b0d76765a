#pragma once

#include <cstddef>
#include <vector>

#include "NuoCore/Export.h"
#include "NuoCore/PrivatePtr.h"
#include "NuoCore/Str.h"
#include "NuoZRFx/Block.h"

namespace unstruct {
class ZRFxStateInfoBlock;
struct ZRFxStateInfo;
}  // namespace unstruct

namespace nuo::zrfx {

/// The states of a model, such as time steps or load cases, each with an id, a name and a reference
/// value, and groups of them. State and group ids share one range. The block id is 1.
class NUO_API StateInfoBlock : public Block {
public:
    /// The meaning of a state's reference value; its unit is the model's own.
    enum ReferenceValueType : int { TIME = 0, FREQUENCY = 1, LOAD_CASE = 2, OTHER = 3 };

    static constexpr BlockType kBlockType = STATE_INFO;

    /// The name of an enumerator, such as "TIME"; empty for a value that is none.
    static const char* referenceValueTypeName(ReferenceValueType type);

    StateInfoBlock();
    ~StateInfoBlock() override;

    bool checkValidity() const override;
    unstruct::ZRFxBlock* internal_zrfxBlock() const override;

    /// Appends a state. False, with a message, when another state or group has its id, or the type
    /// is none. Without a name it is called "State" followed by its id.
    bool addStateInfo(int stateId, const Str& stateName, float referenceValue,
                      ReferenceValueType referenceValueType);

    /// Groups states that were added before; other ids are ignored. A state belongs to the last
    /// group that it was put in. Without a name the group is called "Group" followed by its id. A
    /// group without states is not stored.
    bool addGroupInfo(int groupId, const Str& groupName, const std::vector<int>& stateIds);

    std::size_t stateCount() const;

    /// -1, an empty name, 0 or OTHER, with a message, when there is no such state.
    int stateId(std::size_t index) const;
    Str stateName(std::size_t index) const;
    float stateReferenceValue(std::size_t index) const;
    ReferenceValueType stateReferenceValueType(std::size_t index) const;

    /// The index of the state with an id; -1 when there is none.
    int stateIndex(int stateId) const;

    /// An id that no state or group has: one more than the largest in use, 1 at first. When the
    /// largest is INT_MAX, the lowest free one.
    int unusedStateId() const;

    std::size_t groupCount() const;

    /// -1 or an empty name, with a message, when there is no such group.
    int groupId(std::size_t index) const;
    Str groupName(std::size_t index) const;

    /// The ids of the states of a group; empty, with a message, when there is no such group.
    std::vector<int> groupStateIds(std::size_t index) const;

private:
    friend class DatabasePrivate;
    StateInfoBlock(unstruct::ZRFxStateInfoBlock* stateInfoBlock, int blockId);
    const unstruct::ZRFxStateInfo* stateAt(std::size_t index) const;
    bool isIdUsed(int id) const;

    PrivatePtr<class StateInfoBlockPrivate> m_private;
};

}  // namespace nuo::zrfx
