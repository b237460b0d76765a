#pragma once

#include "NuoCore/Export.h"
#include "NuoCore/RefCountedObject.h"

namespace unstruct {
class ZRFxBlock;
}

namespace nuo::zrfx {

/// Base of all blocks: a numbered unit of model or result data. Fill one and hand it to
/// Database::writeBlock, or get one from Database::blockByIndex. Ids are the caller's, 0 or more
/// and unique for each type within a database; indices count from 0. Files hold no units: lengths,
/// times and values are in the model's own. One array holds less than 4 GiB: 357 million nodes, or
/// a billion node references or values. Used by one thread at a time. An operation that runs out of
/// memory fails with a message and leaves the block as it was; a block that could not be
/// constructed fails in every operation. When an operation that returns nothing ran out of memory,
/// the block cannot be written any more, so that no file lacks what was lost.
class NUO_API Block : public RefCountedObject {
public:
    enum BlockType : int {
        NODES = 0,
        ELEMENTS = 1,
        GEOMETRY = 2,
        GEOMETRY_INFO = 3,
        RESULT = 4,
        RESULT_VALUES = 5,
        TRANSFORMATION_RESULT = 6,
        TRANSFORMATION_RESULT_VALUES = 7,
        STATE_INFO = 8,
        SET = 9,
        INVALID_BLOCK = 10
    };

    /// The name of an enumerator, such as "NODES"; empty for a value that is none.
    static const char* blockTypeName(BlockType type);

    /// Whether the block can be written; logs why not.
    virtual bool checkValidity() const;

    /// The block that this object wraps; for the component itself.
    virtual unstruct::ZRFxBlock* internal_zrfxBlock() const;

    /// Whether the block lacks something for lack of memory; for the component itself.
    bool internal_isIncomplete() const { return m_isIncomplete; }
    void internal_setIncomplete() { m_isIncomplete = true; }

    /// As given to the constructor.
    int blockId() const { return m_blockId; }
    BlockType blockType() const { return m_blockType; }

protected:
    /// A negative id is reported; such a block cannot be written.
    explicit Block(int blockId, BlockType blockType = INVALID_BLOCK);

private:
    int m_blockId;
    BlockType m_blockType;
    bool m_isIncomplete = false;
};

}  // namespace nuo::zrfx
