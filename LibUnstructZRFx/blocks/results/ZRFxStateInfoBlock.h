#pragma once

#include <cstdint>
#include <memory>

#include "ZRArray.h"
#include "ZRPtrArray.h"
#include "blocks/ZRFxListBlock.h"
#include "types/ZRFxResultTypes.h"

namespace unstruct {

/// The settings with which a state was exported. They are passed through.
struct ZRFxExportInfo {
    bool polygonModel = false;
    bool visiblePartsOnly = false;
    bool firstOrderNodesOnly = false;
    ZRIntArray visibleSetIDs;
    ZRIntArray partFlags;
};

/// One state of a model: a time step, a frequency, a load case.
struct ZRFxStateInfo {
    int stateID = -1;
    ZRString name;
    float referenceValue = 0;
    int referenceType = REFERENCE_OTHER;
    int parentID = -1;  ///< Id of the group that the state belongs to; -1 when it has none.
    ZRString group;     ///< Name of that group.
    ZRFxExportInfo exportInfo;
};

/// The states of a model.
class ZRFxStateInfoBlock : public ZRFxListBlock {
public:
    static constexpr ZRFxBlockType kType = BLOCK_STATE_INFO;

    ZRFxStateInfoBlock(ZRFxBlockStore* pDatabase, int id);

    ZRFxStateInfo* AddState(ZRFxStateInfo info);
    ZRFxStateInfo* AddState(std::unique_ptr<ZRFxStateInfo> pInfo);

    /// Lets the next AddState that is given an object do without memory.
    void MakeRoom() { m_apStateInfo.MakeRoom(); }

    /// Removes a range of states, both ends included.
    void RemoveStates(std::int64_t iFrom, std::int64_t iTo);

    /// A state to be changed, before the block is written.
    ZRFxStateInfo* EditState(std::int64_t index);

    std::int64_t GetStateCount() const { return m_apStateInfo.GetSize(); }
    const ZRFxStateInfo* GetState(std::int64_t index) const { return m_apStateInfo[index]; }

protected:
    bool DoReadBlock(const nvf::XmlElement& root) override;
    void DoWriteHead(nvf::XmlElement) const override {}
    void DoOutline(const nvf::XmlElement& root, ZRFxOutline* outline) const override;
    void DoUnloadData() override;

private:
    bool ReadState(const nvf::XmlElement& state);
    bool ReadExportInfo(const nvf::XmlElement& state, ZRFxExportInfo* info);
    void WriteItem(nvf::XmlElement root, std::int64_t index) const override;
    std::int64_t GetItemCount() const override { return GetStateCount(); }
    void WriteExportInfo(nvf::XmlElement state, const ZRFxExportInfo& info) const;

    ZRPtrArray<ZRFxStateInfo> m_apStateInfo;
};

}  // namespace unstruct
