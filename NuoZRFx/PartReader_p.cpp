#include "PartReader_p.h"

#include <algorithm>

#include "Convert_p.h"
#include "LastError_p.h"
#include "ZRUndefined.h"
#include "blocks/results/ZRFxResultValuesBlock.h"
#include "types/ZRFxValueKind.h"

namespace nuo::zrfx {

using namespace unstruct;

std::optional<ZRFxOutline> PartReader::outlineOf(Block::BlockType type, int id) {
    ZRFxOutline outline;
    const nvf::ref<ZRFxBlock> block = open(type, id);
    if (block.isNull() || !block->ReadOutline(&outline)) return std::nullopt;
    return outline;
}

template <typename Value>
bool PartReader::read(Block::BlockType type, int id, ZRFxArrayKind kind, std::size_t group,
                      std::size_t first, Span<Value> values) {
    const nvf::ref<ZRFxBlock> block = open(type, id);
    return block.notNull() &&
           block->ReadPart(kind, static_cast<int>(group), static_cast<std::int64_t>(first),
                           values.data(), static_cast<std::int64_t>(values.size()));
}

template bool PartReader::read(Block::BlockType, int, ZRFxArrayKind, std::size_t, std::size_t,
                               Span<float>);
template bool PartReader::read(Block::BlockType, int, ZRFxArrayKind, std::size_t, std::size_t,
                               Span<int>);

bool PartReader::readHistory(const ZRFxResultBlock& result, int targetId, std::size_t item,
                             Span<float> values) {
    const ZRFxResultDescription& description = result.GetDescription();
    const auto dimension = static_cast<std::size_t>(ZRFxDimensionOfResult(description.resultType));
    const auto stateCount = static_cast<std::size_t>(result.GetStateCount());
    if (dimension == 0 || values.size() != stateCount * dimension) {
        return failBecause(nvf::Reason::INVALID_ARGUMENT,
                           "A history of %1 states with %2 values each was asked for as %3 values.",
                           stateCount, dimension, values.size());
    }
    const Block::BlockType targetType =
        description.resultMapping == MAPPING_NODE ? Block::NODES : Block::ELEMENTS;
    std::fill(values.begin(), values.end(), kUndefinedValue);
    for (std::size_t s = 0; s < stateCount; ++s) {
        const ZRFxStateValues& state = *result.GetState(static_cast<std::int64_t>(s));
        const auto part = Span<float>::of(values.data() + s * dimension, dimension);
        if (!readState(state, targetType, targetId, item, part)) return false;
    }
    return true;
}

nvf::ref<ZRFxBlock> PartReader::open(Block::BlockType type, int id) {
    nvf::ref<ZRFxBlock> block = m_database.OpenBlock(ZRConvert::fromBlockType(type), id);
    if (block.isNull()) {
        failBecause(nvf::Reason::NOT_FOUND,
                    "Error reading block from file. Block of type %1 with id %2 does not exist",
                    static_cast<int>(type), id);
    }
    return block;
}

// A state without values of the target leaves them as they are.
bool PartReader::readState(const ZRFxStateValues& state, Block::BlockType targetType, int targetId,
                           std::size_t item, Span<float> values) {
    for (const int id : state.m_aiValuesBlockIDs) {
        const auto outline = outlineOf(Block::RESULT_VALUES, id);
        if (!outline || !outline->values) return false;
        if (outline->values->targetID != targetId) continue;
        std::int64_t position = -1;
        if (!findPosition(id, *outline->values, targetType, item, &position)) return false;
        return position < 0 || read(Block::RESULT_VALUES, id, ZRFxArrayKind::VALUES, 0,
                                    static_cast<std::size_t>(position), values);
    }
    return true;
}

// Where the values of an item are among those of a block; -1 when it has none. A block that names
// its items is read whole, within the bounds of reading, as its document may claim any number.
bool PartReader::findPosition(int valuesId, const ZRFxValuesOutline& outline,
                              Block::BlockType targetType, std::size_t item,
                              std::int64_t* position) {
    *position = static_cast<std::int64_t>(item);
    if (!outline.hasIDs) return true;
    int itemId = 0;
    const nvf::ref<ZRFxBlock> block = open(Block::RESULT_VALUES, valuesId);
    if (!readItemId(targetType, outline.targetID, item, &itemId) || block.isNull() ||
        !block->ReadBlock()) {
        return false;
    }
    const auto& values = static_cast<const ZRFxResultValuesBlock&>(*block);
    *position = itemId < 0 ? -1 : values.GetIndexOfID(itemId);
    return true;
}

// The id by which values name an item: its own, or the index in a block without ids.
bool PartReader::readItemId(Block::BlockType type, int blockId, std::size_t item, int* id) {
    const auto outline = outlineOf(type, blockId);
    if (!outline) return false;
    std::size_t group = 0;
    std::size_t first = item;
    for (; group < outline->groups.size(); ++group) {
        const auto count = static_cast<std::size_t>(outline->groups[group].numElements);
        if (first < count) break;
        first -= count;
    }
    *id = static_cast<int>(item);
    return !outline->hasIDs ||
           read(type, blockId, ZRFxArrayKind::IDS, group, first, Span<int>::of(id, 1));
}

}  // namespace nuo::zrfx
