#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <vector>

#include "ZRIDLookup.h"
#include "ZRPtrArray.h"
#include "blocks/ZRFxBlock.h"
#include "blocks/mesh/ZRFxGeometryInfoBlock.h"
#include "blocks/results/ZRFxStateInfoBlock.h"

namespace unstruct {

/// One part of a geometry: an element block or an indexed face set block.
struct ZRFxGeometryPart {
    int apiGeometryID = -1;
    int blockID = -1;
    int blockType = BLOCK_ELEMENTS;
    int partID = -1;
};

/// The parts of each geometry of one state. Takes memory only for geometries that have parts, since
/// a document can claim many more.
class ZRFxGeometryParts {
public:
    const std::vector<ZRFxGeometryPart>& operator[](int iGlobalGeometryIndex) const;
    void Add(int iGlobalGeometryIndex, const ZRFxGeometryPart& part);
    void Set(int iGlobalGeometryIndex, std::vector<ZRFxGeometryPart> parts);

    /// The first part of a geometry that has the block or the part id; null when there is none.
    const ZRFxGeometryPart* Find(int iGlobalGeometryIndex, int blockID, int partID);

private:
    struct Geometry {
        std::vector<ZRFxGeometryPart> parts;
        // Made when a part is looked for, as most geometries are only read.
        ZRIDLookup indicesOfBlocks;
        ZRIDLookup indicesOfParts;
    };

    std::map<int, Geometry> m_geometries;
};

/// The parts of every geometry in one state.
class ZRFxGeometryState {
public:
    ZRFxGeometryState(int stateID, int geometryCountPerState);

    int GetStateID() const { return m_iStateID; }
    int GetGeometryCountPerState() const { return m_iGeometryCountPerState; }

    /// The number of parts of a geometry; 0 after an assertion when there is no such geometry.
    int GetPartCount(int iGlobalGeometryIndex) const;

    /// A part; an empty one after an assertion when there is no such part.
    ZRFxGeometryPart GetPart(int iGlobalGeometryIndex, int iPartIndex) const;

    /// False after an assertion when there is no such geometry.
    bool AddPart(int iGlobalGeometryIndex, const ZRFxGeometryPart& part);
    bool SetParts(int iGlobalGeometryIndex, std::vector<ZRFxGeometryPart> parts);

    /// The first part of a geometry that has the block or the part id; null when there is none, and
    /// after an assertion when there is no such geometry. Holds until a part is added or removed.
    const ZRFxGeometryPart* FindPart(int iGlobalGeometryIndex, int blockID, int partID);

private:
    bool IsGeometry(int iGlobalGeometryIndex) const;

    int m_iStateID;
    int m_iGeometryCountPerState;
    ZRFxGeometryParts m_geometryParts;
};

/// A geometry as a viewer lists it: what its parts are called, and which block each one is in each
/// state of the model.
struct ZRFxGeometryInfo {
    struct State {
        int stateID = -1;
        ZRString name;
        std::vector<ZRFxGeometryPart> parts;
    };

    ZRFxPartInfos partInfos;
    std::vector<State> states;
};

/// Which blocks make up the model, as geometries made of parts: for each state, or once for all.
class ZRFxGeometryBlock : public ZRFxBlock {
public:
    static constexpr ZRFxBlockType kType = BLOCK_GEOMETRY;

    ZRFxGeometryBlock(ZRFxBlockStore* pDatabase, int id);

    /// The number of geometries of every state; to be set before states are added.
    void SetGeometryCountPerState(int count) { m_iGeometryCountPerState = count; }

    /// Appends a state, without parts or one that was made for the block.
    ZRFxGeometryState* AddState(int stateID);
    ZRFxGeometryState* AddState(std::unique_ptr<ZRFxGeometryState> pState);

    int GetGeometryCountPerState() const { return m_iGeometryCountPerState; }
    std::int64_t GetStateCount() const { return m_apStates.GetSize(); }
    ZRFxGeometryState* GetState(std::int64_t index) const { return m_apStates[index]; }

    /// The first record of a state; null when it has none.
    ZRFxGeometryState* FindState(int stateID) const {
        return m_apStates[m_indices.IndexOf(stateID)];
    }

    /// Whether the document says how many geometries a state has. Where it does not, the highest
    /// index of a geometry decides. The legacy layout, whose states have parts but no geometries,
    /// has one.
    bool HasGeometryCountPerState() const;

    /// For a document of the legacy layout, which also tells what a geometry info block tells:
    /// replaces the part infos of the block by the names and ids found there.
    bool GetLegacyGeometryInfo(ZRFxGeometryInfoBlock* pGeometryInfo) const;

    /// Fills the infos, which must be one for each geometry of a state, from this block and the one
    /// that names the parts, for all states of the model. This block must have one record for each
    /// of them, or a single one for all. False after an assertion when it is not so.
    bool FillGeometryInfos(const ZRFxGeometryInfoBlock& partInfos,
                           const ZRPtrArray<ZRFxStateInfo>* pStateInfos,
                           ZRPtrArray<ZRFxGeometryInfo>* pGeoInfos) const;

protected:
    bool DoReadBlock(const nvf::XmlElement& root) override;
    bool CheckContents() const override;
    bool DoWriteBlock(nvf::XmlElement root) override;
    void DoOutline(const nvf::XmlElement& root, ZRFxOutline* outline) const override;
    bool OutlinesContents() const override { return true; }
    void DoUnloadData() override;

private:
    std::vector<ZRFxGeometryPart> PartsOf(const ZRFxGeometryState& state, int geometry) const;
    bool ReadGeometries(const nvf::XmlElement& element, ZRFxGeometryState* pState);
    bool ReadLegacyParts(const nvf::XmlElement& element, ZRFxGeometryState* pState);
    bool ReadPart(const nvf::XmlElement& element, ZRFxGeometryPart* part) const;
    bool CheckGeometryCount() const;
    bool CheckState(const ZRFxGeometryState& state) const;
    bool CheckPart(const ZRFxGeometryPart& part) const;
    bool FailGeometryCount() const;
    bool FailIndex() const;
    void WriteState(nvf::XmlElement root, const ZRFxGeometryState& record);
    void WriteGeometry(nvf::XmlElement state, const ZRFxGeometryState& record, int geometry);

    int m_iGeometryCountPerState = 1;
    ZRPtrArray<ZRFxGeometryState> m_apStates;
    ZRIDLookup m_indices;  // Of the states.
};

}  // namespace unstruct
