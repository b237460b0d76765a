#pragma once

#include <cstddef>
#include <vector>

#include "NuoCore/Export.h"
#include "NuoCore/PrivatePtr.h"
#include "NuoZRFx/Block.h"

namespace unstruct {
class ZRFxGeometryBlock;
class ZRFxGeometryState;
struct ZRFxGeometryPart;
}  // namespace unstruct

namespace nuo::zrfx {

/// Says which element blocks are the parts of the model: one list of parts for all states, or one
/// for each state. A model has one or more geometries, each with parts of its own. Every state has
/// the same parts in the same order; only their element blocks may differ. The block id is 1.
class NUO_API GeometryBlock : public Block {
public:
    static constexpr BlockType kBlockType = GEOMETRY;

    /// The number of geometries, at least 1; all operations give them by index.
    explicit GeometryBlock(std::size_t geometryCountPerState);
    ~GeometryBlock() override;

    bool checkValidity() const override;
    unstruct::ZRFxBlock* internal_zrfxBlock() const override;

    /// Appends a part to the first record, which is used for all states. Neither id may be negative
    /// or already be in the record.
    bool addElementBlock(std::size_t geometryIndex, int elementBlockId, int partId);

    /// The same for the record of a state, which is added if there is none.
    bool addElementBlockForState(std::size_t geometryIndex, int elementBlockId, int partId,
                                 int stateId);

    /// Replaces the parts of a geometry: as many part ids as element block ids, none negative, no
    /// part id twice. Without a state id, in the record that is used for all states.
    bool setElementBlocks(std::size_t geometryIndex, const std::vector<int>& elementBlockIds,
                          const std::vector<int>& partIds);
    bool setElementBlocksForState(std::size_t geometryIndex,
                                  const std::vector<int>& elementBlockIds, int stateId,
                                  const std::vector<int>& partIds);

    std::size_t geometryCountPerState() const;

    /// The number of states that have a record; 1 when one record is used for all states.
    std::size_t stateCount() const;

    /// The id of the state of a record; -1 with a message when there is none.
    int stateId(std::size_t stateIndex) const;

    /// 0, with a message, when there is no such geometry or record.
    std::size_t partCount(std::size_t geometryIndex, std::size_t stateIndex) const;

    /// Element block ids, and part ids, of the parts, in their order; empty, with a message, when
    /// there is no such geometry or record.
    std::vector<int> elementBlockIds(std::size_t geometryIndex, std::size_t stateIndex) const;
    std::vector<int> partIds(std::size_t geometryIndex, std::size_t stateIndex) const;

private:
    friend class DatabasePrivate;
    GeometryBlock(unstruct::ZRFxGeometryBlock* geometryBlock, int blockId);
    bool checkGeometry(std::size_t geometryIndex) const;
    bool checkParts(const std::vector<int>& elementBlockIds, int stateId,
                    const std::vector<int>& partIds) const;
    bool addPart(unstruct::ZRFxGeometryState& state, std::size_t geometryIndex, int elementBlockId,
                 int partId);
    bool hasSameParts(const unstruct::ZRFxGeometryState& first,
                      const unstruct::ZRFxGeometryState& state) const;
    unstruct::ZRFxGeometryState* stateAt(std::size_t stateIndex) const;
    std::vector<int> idsOfParts(std::size_t geometryIndex, std::size_t stateIndex,
                                int unstruct::ZRFxGeometryPart::*id) const;

    PrivatePtr<class GeometryBlockPrivate> m_private;
};

}  // namespace nuo::zrfx
