#include "NuoZRFx/GeometryBlock.h"

#include <map>
#include <memory>
#include <utility>

#include "Log_p.h"
#include "blocks/mesh/ZRFxGeometryBlock.h"
#include "nvf/Assert.h"

namespace nuo::zrfx {
namespace {

using unstruct::ZRFxGeometryBlock;
using unstruct::ZRFxGeometryPart;
using unstruct::ZRFxGeometryState;

constexpr int kBlockId = 1;

// The state id of the record that is used for all states.
constexpr int kAllStates = 0;

bool checkPart(int elementBlockId, int partId) {
    if (elementBlockId < 0) return fail("elementBlockId cannot be negative.");
    return partId >= 0 || fail("partId cannot be negative.");
}

// None where they are more than a file may have.
int checkedGeometryCount(std::size_t geometryCountPerState) {
    if (geometryCountPerState == 0) fail("geometryCountPerState cannot be 0");
    const std::size_t most{unstruct::kMostGeometriesPerState};
    const bool isValid = nvf::require(geometryCountPerState <= most,
                                      "GeometryBlock: %1 geometries per state, at most %2",
                                      geometryCountPerState, most);
    return isValid ? static_cast<int>(geometryCountPerState) : 0;
}

}  // namespace

class GeometryBlockPrivate {
public:
    // Without a state, the first record is meant, whatever its state.
    int firstStateId() const {
        const ZRFxGeometryState* first = m_geometryBlock->GetState(0);
        return first ? first->GetStateID() : kAllStates;
    }

    // Changes the record of a state. A new one belongs to the block once it is as it should be.
    template <typename Change>
    bool changeState(int stateId, Change change) const {
        ZRFxGeometryState* state = m_geometryBlock->FindState(stateId);
        if (state) return change(*state);
        auto added = std::make_unique<ZRFxGeometryState>(stateId, geometryCount());
        return change(*added) && m_geometryBlock->AddState(std::move(added));
    }

    int geometryCount() const { return m_geometryBlock->GetGeometryCountPerState(); }

    nvf::ref<ZRFxGeometryBlock> m_geometryBlock;
};

GeometryBlock::GeometryBlock(std::size_t geometryCountPerState) : Block(kBlockId, GEOMETRY) {
    guarded([&] {
        auto made = std::make_unique<GeometryBlockPrivate>();
        made->m_geometryBlock = new ZRFxGeometryBlock(nullptr, kBlockId);
        made->m_geometryBlock->SetGeometryCountPerState(
            checkedGeometryCount(geometryCountPerState));
        m_private.take(std::move(made));
    });
}

GeometryBlock::GeometryBlock(ZRFxGeometryBlock* geometryBlock, int blockId)
    : Block(blockId, GEOMETRY), m_private(std::make_unique<GeometryBlockPrivate>()) {
    m_private->m_geometryBlock = geometryBlock;
}

GeometryBlock::~GeometryBlock() = default;

bool GeometryBlock::checkValidity() const {
    return guarded([&] {
        if (stateCount() == 0) {
            return fail(
                "No states defined in geometry block, at least one state definition is required.");
        }
        const ZRFxGeometryState& first = *m_private->m_geometryBlock->GetState(0);
        for (std::int64_t i = 1; i < m_private->m_geometryBlock->GetStateCount(); ++i) {
            if (!hasSameParts(first, *m_private->m_geometryBlock->GetState(i))) return false;
        }
        return Block::checkValidity();
    });
}

unstruct::ZRFxBlock* GeometryBlock::internal_zrfxBlock() const {
    return guarded([&] { return m_private->m_geometryBlock.p(); });
}

bool GeometryBlock::addElementBlock(std::size_t geometryIndex, int elementBlockId, int partId) {
    return guarded([&] {
        if (!checkGeometry(geometryIndex) || !checkPart(elementBlockId, partId)) return false;
        return m_private->changeState(m_private->firstStateId(), [&](ZRFxGeometryState& state) {
            return addPart(state, geometryIndex, elementBlockId, partId);
        });
    });
}

bool GeometryBlock::addElementBlockForState(std::size_t geometryIndex, int elementBlockId,
                                            int partId, int stateId) {
    return guarded([&] {
        if (!checkGeometry(geometryIndex)) return false;
        if (stateId < 0) return fail("stateId cannot be negative.");
        if (!checkPart(elementBlockId, partId)) return false;
        return m_private->changeState(stateId, [&](ZRFxGeometryState& state) {
            return addPart(state, geometryIndex, elementBlockId, partId);
        });
    });
}

bool GeometryBlock::setElementBlocks(std::size_t geometryIndex,
                                     const std::vector<int>& elementBlockIds,
                                     const std::vector<int>& partIds) {
    return guarded([&] {
        return setElementBlocksForState(geometryIndex, elementBlockIds, m_private->firstStateId(),
                                        partIds);
    });
}

bool GeometryBlock::setElementBlocksForState(std::size_t geometryIndex,
                                             const std::vector<int>& elementBlockIds, int stateId,
                                             const std::vector<int>& partIds) {
    return guarded([&] {
        if (!checkGeometry(geometryIndex) || !checkParts(elementBlockIds, stateId, partIds)) {
            return false;
        }
        std::vector<ZRFxGeometryPart> parts;
        for (std::size_t i = 0; i < partIds.size(); ++i) {
            parts.push_back({-1, elementBlockIds[i], unstruct::BLOCK_ELEMENTS, partIds[i]});
        }
        return m_private->changeState(stateId, [&](ZRFxGeometryState& state) {
            return state.SetParts(static_cast<int>(geometryIndex), std::move(parts));
        });
    });
}

std::size_t GeometryBlock::geometryCountPerState() const {
    return guarded([&] {
        return static_cast<std::size_t>(m_private->m_geometryBlock->GetGeometryCountPerState());
    });
}

std::size_t GeometryBlock::stateCount() const {
    return guarded(
        [&] { return static_cast<std::size_t>(m_private->m_geometryBlock->GetStateCount()); });
}

int GeometryBlock::stateId(std::size_t stateIndex) const {
    const ZRFxGeometryState* state = stateAt(stateIndex);
    return state ? state->GetStateID() : -1;
}

std::size_t GeometryBlock::partCount(std::size_t geometryIndex, std::size_t stateIndex) const {
    if (!checkGeometry(geometryIndex)) return 0;
    const ZRFxGeometryState* state = stateAt(stateIndex);
    return state ? static_cast<std::size_t>(state->GetPartCount(static_cast<int>(geometryIndex)))
                 : 0;
}

std::vector<int> GeometryBlock::elementBlockIds(std::size_t geometryIndex,
                                                std::size_t stateIndex) const {
    return guarded(
        [&] { return idsOfParts(geometryIndex, stateIndex, &ZRFxGeometryPart::blockID); });
}

std::vector<int> GeometryBlock::partIds(std::size_t geometryIndex, std::size_t stateIndex) const {
    return guarded(
        [&] { return idsOfParts(geometryIndex, stateIndex, &ZRFxGeometryPart::partID); });
}

bool GeometryBlock::checkGeometry(std::size_t geometryIndex) const {
    return geometryIndex < geometryCountPerState() ||
           fail("Invalid geometry index: %1. This geometry block has %2 geometry(ies).",
                geometryIndex, geometryCountPerState());
}

bool GeometryBlock::checkParts(const std::vector<int>& elementBlockIds, int stateId,
                               const std::vector<int>& partIds) const {
    if (elementBlockIds.empty()) return fail("elementBlockIds cannot be empty.");
    if (stateId < 0) return fail("stateId cannot be negative.");
    if (!nvf::require(elementBlockIds.size() == partIds.size(),
                      "setElementBlocks: %1 part ids given for %2 element blocks", partIds.size(),
                      elementBlockIds.size())) {
        return false;
    }
    std::map<int, std::size_t> indexOfPart;
    for (std::size_t i = 0; i < partIds.size(); ++i) {
        if (partIds[i] < 0) {
            return fail("Negative part id supplied for part at index %1. (state id %2).", i,
                        stateId);
        }
        if (elementBlockIds[i] < 0) {
            return fail("Invalid block id (%1) specified for part at index %2. (state id %3).",
                        elementBlockIds[i], i, stateId);
        }
        const auto [other, isNew] = indexOfPart.emplace(partIds[i], i);
        if (!isNew) {
            return fail("Non unique part id detected (id %1 at idx %2 and idx %3) (state id %4).",
                        partIds[i], other->second, i, stateId);
        }
    }
    return true;
}

bool GeometryBlock::addPart(ZRFxGeometryState& state, std::size_t geometryIndex, int elementBlockId,
                            int partId) {
    const int geometry = static_cast<int>(geometryIndex);
    if (const ZRFxGeometryPart* part = state.FindPart(geometry, elementBlockId, partId)) {
        return part->blockID == elementBlockId
                   ? fail("Found existing part with same block id (%1).", elementBlockId)
                   : fail("Found existing part with same part id (%1).", partId);
    }
    return state.AddPart(geometry, {-1, elementBlockId, unstruct::BLOCK_ELEMENTS, partId});
}

bool GeometryBlock::hasSameParts(const ZRFxGeometryState& first,
                                 const ZRFxGeometryState& state) const {
    for (int geometry = 0; geometry < first.GetGeometryCountPerState(); ++geometry) {
        if (state.GetPartCount(geometry) != first.GetPartCount(geometry)) {
            return fail(
                "Part count error: state id %1 defines %2 parts, whereas previous states defined "
                "%3 parts.",
                state.GetStateID(), state.GetPartCount(geometry), first.GetPartCount(geometry));
        }
        for (int i = 0; i < first.GetPartCount(geometry); ++i) {
            const int expected = first.GetPart(geometry, i).partID;
            const int found = state.GetPart(geometry, i).partID;
            if (found == expected) continue;
            return fail(
                "Part id error: state id %1 defines part id %2 for part at index %3, whereas "
                "previous states defined part id %4.",
                state.GetStateID(), found, i, expected);
        }
    }
    return true;
}

ZRFxGeometryState* GeometryBlock::stateAt(std::size_t stateIndex) const {
    if (stateIndex < stateCount()) {
        return m_private->m_geometryBlock->GetState(static_cast<std::int64_t>(stateIndex));
    }
    fail("State index %1 not found in this geometry block", stateIndex);
    return nullptr;
}

std::vector<int> GeometryBlock::idsOfParts(std::size_t geometryIndex, std::size_t stateIndex,
                                           int ZRFxGeometryPart::*id) const {
    std::vector<int> ids;
    const std::size_t count = partCount(geometryIndex, stateIndex);
    for (std::size_t i = 0; i < count; ++i) {
        ids.push_back(
            stateAt(stateIndex)->GetPart(static_cast<int>(geometryIndex), static_cast<int>(i)).*id);
    }
    return ids;
}

}  // namespace nuo::zrfx
