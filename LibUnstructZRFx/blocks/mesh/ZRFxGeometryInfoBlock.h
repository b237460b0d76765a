#pragma once

#include <vector>

#include "blocks/ZRFxBlock.h"

namespace unstruct {

/// More geometries in a state than this are refused, reading and writing.
inline constexpr int kMostGeometriesPerState = 100000;

/// One part in a geometry info block.
struct ZRFxPartInfo {
    int partID = -1;
    int parentPartID = -1;  ///< -1 when the part has no parent.
    ZRString partName;
    bool boundaryCondition = false;
};

/// The part infos of one geometry.
class ZRFxPartInfos {
public:
    void AddPartInfo(const ZRFxPartInfo& info) { m_partInfos.push_back(info); }
    int GetPartCount() const { return static_cast<int>(m_partInfos.size()); }

    /// An empty info after an assertion when there is no such part.
    ZRFxPartInfo GetPartInfo(int iIndex) const;

private:
    std::vector<ZRFxPartInfo> m_partInfos;
};

/// Names, parents and kinds of the parts of each geometry.
class ZRFxGeometryInfoBlock : public ZRFxBlock {
public:
    static constexpr ZRFxBlockType kType = BLOCK_GEOMETRY_INFO;

    ZRFxGeometryInfoBlock(ZRFxBlockStore* pDatabase, int id);

    /// Replaces all part infos by none, for a number of geometries.
    void SetGeometryCountPerState(int count);

    int GetGeometryCountPerState() const { return static_cast<int>(m_geometries.size()); }

    /// The part infos of a geometry; null after an assertion when there is no such geometry.
    ZRFxPartInfos* GetPartInfos(int iGeometryIndex);
    const ZRFxPartInfos* GetPartInfos(int iGeometryIndex) const;

protected:
    bool DoReadBlock(const nvf::XmlElement& root) override;
    bool CheckContents() const override { return CheckGeometryCount(GetGeometryCountPerState()); }
    bool DoWriteBlock(nvf::XmlElement root) override;
    void DoOutline(const nvf::XmlElement& root, ZRFxOutline* outline) const override;
    bool OutlinesContents() const override { return true; }
    void DoUnloadData() override;

private:
    bool ReadGeometry(const nvf::XmlElement& geometry);
    bool CheckGeometryCount(int count) const;
    void WriteGeometry(nvf::XmlElement root, int index);

    std::vector<ZRFxPartInfos> m_geometries;
};

}  // namespace unstruct
