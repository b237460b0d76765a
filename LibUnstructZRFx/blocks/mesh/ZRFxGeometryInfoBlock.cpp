#include "blocks/mesh/ZRFxGeometryInfoBlock.h"

#include <algorithm>
#include <utility>

#include "documents/ZRFxXml.h"

namespace unstruct {
namespace {

using ZRint = int;

}  // namespace

ZRFxPartInfo ZRFxPartInfos::GetPartInfo(int iIndex) const {
    NVF_ASSERT(iIndex >= 0 && iIndex < static_cast<ZRint>(m_partInfos.size()));
    const bool isPart = iIndex >= 0 && iIndex < GetPartCount();
    return isPart ? m_partInfos[static_cast<std::size_t>(iIndex)] : ZRFxPartInfo();
}

ZRFxGeometryInfoBlock::ZRFxGeometryInfoBlock(ZRFxBlockStore* pDatabase, int id)
    : ZRFxBlock(pDatabase, id, kType) {}

void ZRFxGeometryInfoBlock::SetGeometryCountPerState(int count) {
    m_geometries.assign(static_cast<std::size_t>(std::max(count, 0)), {});
    SetRead(true);
}

const ZRFxPartInfos* ZRFxGeometryInfoBlock::GetPartInfos(int iGeometryIndex) const {
    NVF_ASSERT(iGeometryIndex >= 0 && iGeometryIndex < GetGeometryCountPerState());
    if (iGeometryIndex < 0 || iGeometryIndex >= GetGeometryCountPerState()) return nullptr;
    return &m_geometries[static_cast<std::size_t>(iGeometryIndex)];
}

ZRFxPartInfos* ZRFxGeometryInfoBlock::GetPartInfos(int iGeometryIndex) {
    return const_cast<ZRFxPartInfos*>(std::as_const(*this).GetPartInfos(iGeometryIndex));
}

bool ZRFxGeometryInfoBlock::DoReadBlock(const nvf::XmlElement& root) {
    const int count = root.getAttributeInt("GeometryCountPerState", -1);
    if (!CheckGeometryCount(count)) return false;
    m_geometries.assign(static_cast<std::size_t>(count), {});
    for (nvf::XmlElement geometry = root.firstChildElement("Geometry"); geometry.notNull();
         geometry = geometry.nextSiblingElement("Geometry")) {
        if (!ReadGeometry(geometry)) return false;
    }
    return true;
}

bool ZRFxGeometryInfoBlock::DoWriteBlock(nvf::XmlElement root) {
    root.setAttributeInt("GeometryCountPerState", GetGeometryCountPerState());
    for (int i = 0; i < GetGeometryCountPerState(); ++i) WriteGeometry(root, i);
    return true;
}

void ZRFxGeometryInfoBlock::DoOutline(const nvf::XmlElement&, ZRFxOutline*) const {}

void ZRFxGeometryInfoBlock::DoUnloadData() {
    m_geometries.clear();
}

bool ZRFxGeometryInfoBlock::ReadGeometry(const nvf::XmlElement& geometry) {
    const int index = geometry.getAttributeInt("Index", -1);
    if (index < 0 || index >= GetGeometryCountPerState()) {
        return Log().fail("GeometryInfo::Geometry::Index invalid");
    }
    for (nvf::XmlElement part = geometry.firstChildElement("Part"); part.notNull();
         part = part.nextSiblingElement("Part")) {
        m_geometries[static_cast<std::size_t>(index)].AddPartInfo(
            {part.getAttributeInt("PartID", -1), part.getAttributeInt("ParentPartID", -1),
             GetAttribute(part, "PartName"), part.getAttributeBool("BoundaryCondition", false)});
    }
    return true;
}

bool ZRFxGeometryInfoBlock::CheckGeometryCount(int count) const {
    return (count >= 0 && count <= kMostGeometriesPerState) ||
           Log().fail("GeometryInfo::GeometryCountPerState invalid");
}

void ZRFxGeometryInfoBlock::WriteGeometry(nvf::XmlElement root, int index) {
    nvf::XmlElement geometry = root.addChildElement("Geometry");
    geometry.setAttributeInt("Index", index);
    const ZRFxPartInfos& parts = m_geometries[static_cast<std::size_t>(index)];
    for (int i = 0; i < parts.GetPartCount(); ++i) {
        const ZRFxPartInfo info = parts.GetPartInfo(i);
        nvf::XmlElement part = geometry.addChildElement("Part");
        part.setAttributeInt("PartID", info.partID);
        part.setAttributeInt("ParentPartID", info.parentPartID);
        SetAttribute(part, "PartName", info.partName);
        part.setAttributeBool("BoundaryCondition", info.boundaryCondition);
    }
}

}  // namespace unstruct
