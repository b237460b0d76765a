#pragma once

#include <cstddef>

#include "NuoCore/Export.h"
#include "NuoCore/PrivatePtr.h"
#include "NuoCore/Str.h"
#include "NuoZRFx/Block.h"

namespace unstruct {
class ZRFxGeometryInfoBlock;
class ZRFxPartInfos;
}  // namespace unstruct

namespace nuo::zrfx {

/// The names of the parts of each geometry. The block id is 1.
class NUO_API GeometryInfoBlock : public Block {
public:
    static constexpr BlockType kBlockType = GEOMETRY_INFO;

    /// The number of geometries, as in the geometry block.
    explicit GeometryInfoBlock(std::size_t geometryCountPerState);
    ~GeometryInfoBlock() override;

    unstruct::ZRFxBlock* internal_zrfxBlock() const override;

    /// Names a part of a geometry. False, with a message, when there is no such geometry or the id
    /// is negative.
    bool addPartInfo(std::size_t geometryIndex, int partId, const Str& partName);

    std::size_t geometryCountPerState() const;

    /// The number of named parts; 0, with a message, when there is no such geometry.
    std::size_t partCount(std::size_t geometryIndex) const;

    /// -1 or an empty name, with a message, when there is no such part.
    int partId(std::size_t geometryIndex, std::size_t partIndex) const;
    Str partName(std::size_t geometryIndex, std::size_t partIndex) const;

private:
    friend class DatabasePrivate;
    GeometryInfoBlock(unstruct::ZRFxGeometryInfoBlock* geometryInfoBlock, int blockId);
    unstruct::ZRFxPartInfos* partsOf(std::size_t geometryIndex) const;

    PrivatePtr<class GeometryInfoBlockPrivate> m_private;
};

}  // namespace nuo::zrfx
