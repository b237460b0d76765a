#pragma once

#include <cstdint>
#include <memory>

#include "ZRArray.h"
#include "blocks/ZRFxBlock.h"

namespace unstruct {

/// Polygons over the nodes of one node block. Their data file holds, polygon by polygon, the number
/// of its nodes and then the nodes: indices from 1, or node ids.
class ZRFxIndexedFaceSetBlock : public ZRFxBlock {
public:
    static constexpr ZRFxBlockType kType = BLOCK_INDEXED_FACE_SET;

    ZRFxIndexedFaceSetBlock(ZRFxBlockStore* pDatabase, int id);

    /// Replaces the nodes of all polygons, polygon after polygon, by a copy.
    bool SetConnects(const std::int32_t* paiConnects, std::int64_t iNumConnects);

    /// Replaces the positions in the nodes at which the polygons begin, in rising order, by a copy.
    bool SetPolygons(const std::int32_t* paiPolygonStart, std::int64_t iNumPolys);

    /// Replaces the ids, one a polygon; null means none.
    void SetIDs(std::unique_ptr<ZRIntArray> paiIDs) { m_paiIDs = std::move(paiIDs); }

    const ZRIntArray& GetConnects() const { return m_aiConnects; }
    const ZRIntArray& GetPolygonStarts() const { return m_aiPolygonStart; }
    const ZRIntArray* GetIDs() const { return m_paiIDs.get(); }
    std::int64_t GetNumPolygons() const { return m_aiPolygonStart.GetSize(); }
    int GetNodeBlockID() const { return m_iNodeBlockID; }
    void SetNodeBlockID(int id) { m_iNodeBlockID = id; }
    bool GetMapToNodeIDs() const { return m_bMapToNodeIDs; }
    void SetMapToNodeIDs(bool mapToNodeIDs) { m_bMapToNodeIDs = mapToNodeIDs; }

protected:
    bool DoReadBlock(const nvf::XmlElement& root) override;
    bool CheckContents() const override;
    bool DoWriteBlock(nvf::XmlElement root) override;
    void DoOutline(const nvf::XmlElement& root, ZRFxOutline* outline) const override;
    void DoUnloadData() override;

private:
    bool Unpack(const ZRString& file, const ZRIntArray& packed, std::int64_t numPolygons);
    bool CheckPolygons(const ZRString& file) const;
    bool WritePolygons(nvf::XmlElement root);
    bool Pack(ZRIntArray* packed) const;

    int m_iNodeBlockID = -1;
    bool m_bMapToNodeIDs = false;
    ZRIntArray m_aiConnects;
    ZRIntArray m_aiPolygonStart;
    std::unique_ptr<ZRIntArray> m_paiIDs;
};

}  // namespace unstruct
