#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "NuoCore/Span.h"
#include "NuoZRFx/Block.h"
#include "blocks/results/ZRFxResultBlock.h"
#include "database/ZROZRFxDatabase.h"

namespace nuo::zrfx {

/// Reads parts of the arrays of a database into memory of the caller. Failures are logged.
class PartReader {
public:
    explicit PartReader(unstruct::ZRFxDatabase& database) : m_database(database) {}

    /// None when there is no such block or it cannot be read.
    std::optional<unstruct::ZRFxOutline> outlineOf(Block::BlockType type, int id);

    template <typename Value>
    bool read(Block::BlockType type, int id, unstruct::ZRFxArrayKind kind, std::size_t group,
              std::size_t first, Span<Value> values);

    /// The values of one item in all states of a result.
    bool readHistory(const unstruct::ZRFxResultBlock& result, int targetId, std::size_t item,
                     Span<float> values);

private:
    nvf::ref<unstruct::ZRFxBlock> open(Block::BlockType type, int id);
    bool readState(const unstruct::ZRFxStateValues& state, Block::BlockType targetType,
                   int targetId, std::size_t item, Span<float> values);
    bool findPosition(int valuesId, const unstruct::ZRFxValuesOutline& outline,
                      Block::BlockType targetType, std::size_t item, std::int64_t* position);
    bool readItemId(Block::BlockType type, int blockId, std::size_t item, int* id);

    unstruct::ZRFxDatabase& m_database;
};

}  // namespace nuo::zrfx
