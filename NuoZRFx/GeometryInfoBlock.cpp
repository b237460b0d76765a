#include "NuoZRFx/GeometryInfoBlock.h"

#include <climits>

#include "Convert_p.h"
#include "Log_p.h"
#include "blocks/mesh/ZRFxGeometryInfoBlock.h"
#include "nvf/Assert.h"

namespace nuo::zrfx {
namespace {

using unstruct::ZRFxGeometryInfoBlock;
using unstruct::ZRFxPartInfos;

constexpr int kBlockId = 1;

// -1, which no part has, for what is beyond all numbers.
int partNumber(std::size_t partIndex) {
    return partIndex <= INT_MAX ? static_cast<int>(partIndex) : -1;
}

}  // namespace

class GeometryInfoBlockPrivate {
public:
    nvf::ref<ZRFxGeometryInfoBlock> m_geometryInfoBlock;
};

GeometryInfoBlock::GeometryInfoBlock(std::size_t geometryCountPerState)
    : Block(kBlockId, GEOMETRY_INFO) {
    guarded([&] {
        auto made = std::make_unique<GeometryInfoBlockPrivate>();
        made->m_geometryInfoBlock = new ZRFxGeometryInfoBlock(nullptr, kBlockId);
        const std::size_t most{unstruct::kMostGeometriesPerState};
        const bool isValid = nvf::require(geometryCountPerState <= most,
                                          "GeometryInfoBlock: %1 geometries per state, at most %2",
                                          geometryCountPerState, most);
        made->m_geometryInfoBlock->SetGeometryCountPerState(
            isValid ? static_cast<int>(geometryCountPerState) : 0);
        m_private.take(std::move(made));
    });
}

GeometryInfoBlock::GeometryInfoBlock(ZRFxGeometryInfoBlock* geometryInfoBlock, int blockId)
    : Block(blockId, GEOMETRY_INFO), m_private(std::make_unique<GeometryInfoBlockPrivate>()) {
    m_private->m_geometryInfoBlock = geometryInfoBlock;
}

GeometryInfoBlock::~GeometryInfoBlock() = default;

unstruct::ZRFxBlock* GeometryInfoBlock::internal_zrfxBlock() const {
    return guarded([&] { return m_private->m_geometryInfoBlock.p(); });
}

bool GeometryInfoBlock::addPartInfo(std::size_t geometryIndex, int partId, const Str& partName) {
    return guarded([&] {
        ZRFxPartInfos* parts = partsOf(geometryIndex);
        if (!parts) return false;
        if (partId < 0) return fail("partId cannot be negative.");
        parts->AddPartInfo({partId, -1, ZRConvert::toZRString(partName), false});
        return true;
    });
}

std::size_t GeometryInfoBlock::geometryCountPerState() const {
    return guarded([&] {
        return static_cast<std::size_t>(m_private->m_geometryInfoBlock->GetGeometryCountPerState());
    });
}

std::size_t GeometryInfoBlock::partCount(std::size_t geometryIndex) const {
    const ZRFxPartInfos* parts = partsOf(geometryIndex);
    return parts ? static_cast<std::size_t>(parts->GetPartCount()) : 0;
}

int GeometryInfoBlock::partId(std::size_t geometryIndex, std::size_t partIndex) const {
    const ZRFxPartInfos* parts = partsOf(geometryIndex);
    return parts ? parts->GetPartInfo(partNumber(partIndex)).partID : -1;
}

Str GeometryInfoBlock::partName(std::size_t geometryIndex, std::size_t partIndex) const {
    return guarded([&] {
        const ZRFxPartInfos* parts = partsOf(geometryIndex);
        return parts ? ZRConvert::toStr(parts->GetPartInfo(partNumber(partIndex)).partName) : Str();
    });
}

ZRFxPartInfos* GeometryInfoBlock::partsOf(std::size_t geometryIndex) const {
    if (geometryIndex < geometryCountPerState()) {
        return m_private->m_geometryInfoBlock->GetPartInfos(static_cast<int>(geometryIndex));
    }
    fail("Geometry with index %1 not found", geometryIndex);
    return nullptr;
}

}  // namespace nuo::zrfx
