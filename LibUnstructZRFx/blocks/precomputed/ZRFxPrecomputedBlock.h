#pragma once

#include <cstdint>

#include "NuoCore/Color3f.h"
#include "ZRPtrArray.h"
#include "blocks/ZRFxBlock.h"
#include "nvf/XmlElement.h"
#include "types/ZRFxResultTypes.h"

namespace unstruct {

/// A ready-made surface of one part of the model.
struct ZRFxPrecomputedPart {
    int ifsBlockID = -1;
    int nodeBlockID = -1;
    int fringesResultBlockID = -1;
    int fringesResultMapping = MAPPING_NODE;
    int vectorResultBlockID = -1;
    nuo::Color3f surfaceColor;  ///< Of cutting planes only.
};

/// A regular grid of points on a cutting plane.
struct ZRFxPrecomputedGrid {
    int nodeBlockID = -1;
    int numI = 0;
    int numJ = 0;
    int computedResultBlockID = -1;
    int scalarResultBlockID = -1;
    int vectorResultBlockID = -1;
};

/// The blocks of a particle trace in one state.
struct ZRFxPrecomputedTrace {
    int positionNodeBlockID = -1;
    int timeResultBlockID = -1;
    int scalarResultBlockID = -1;
    int vectorResultBlockID = -1;
};

/// The ready-made items of one state.
struct ZRFxPrecomputedState {
    int m_iStateID = -1;
    ZRPtrArray<ZRFxPrecomputedTrace> apTraces;  ///< Of precomputed items only.
    ZRPtrArray<ZRFxPrecomputedPart> apParts;
    ZRPtrArray<ZRFxPrecomputedGrid> apGrids;  ///< Of precomputed items and cutting planes only.

    /// Removes a range of parts, both ends included.
    void RemoveParts(std::int64_t iFrom, std::int64_t iTo);
};

/// Base of the blocks that hold surfaces per state.
class ZRFxPrecomputedBlock : public ZRFxBlock {
public:
    ZRFxPrecomputedState* AddState(int stateID);
    std::int64_t GetStateCount() const { return m_apStates.GetSize(); }
    ZRFxPrecomputedState* GetState(std::int64_t index) const { return m_apStates[index]; }

protected:
    using ZRFxBlock::ZRFxBlock;

    bool DoReadBlock(const nvf::XmlElement& root) final;
    bool CheckContents() const final;
    bool DoWriteBlock(nvf::XmlElement root) final;
    void DoOutline(const nvf::XmlElement& root, ZRFxOutline* outline) const final;
    bool OutlinesContents() const final { return true; }
    void DoUnloadData() final { m_apStates.RemoveAll(); }

    /// The root's attributes: what the derived block adds.
    virtual void ReadAttributes(const nvf::XmlElement& root) = 0;
    virtual void WriteAttributes(nvf::XmlElement root) = 0;

    /// Adds the references of the attributes.
    virtual void OutlineAttributes(ZRFxOutline* outline) const = 0;

    /// Whether parts have a colour of their own.
    virtual bool HasPartColors() const { return false; }

private:
    void ReadTraces(const nvf::XmlElement& element, ZRFxPrecomputedState* pState);
    void ReadParts(const nvf::XmlElement& element, ZRFxPrecomputedState* pState);
    bool ReadGrids(const nvf::XmlElement& element, ZRFxPrecomputedState* pState);
    bool CheckGrid(const ZRFxPrecomputedGrid& grid) const;
    void WriteState(nvf::XmlElement root, const ZRFxPrecomputedState& record);
    void WriteTrace(nvf::XmlElement state, const ZRFxPrecomputedTrace& trace);
    void WritePart(nvf::XmlElement state, const ZRFxPrecomputedPart& part);
    void WriteGrid(nvf::XmlElement state, const ZRFxPrecomputedGrid& grid);

    ZRPtrArray<ZRFxPrecomputedState> m_apStates;
};

}  // namespace unstruct
