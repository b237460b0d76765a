#pragma once

#include <cstddef>
#include <vector>

#include "NuoCore/Export.h"
#include "NuoCore/IndexRange.h"
#include "NuoCore/PrivatePtr.h"
#include "NuoCore/PtrRef.h"
#include "NuoCore/RefCountedObject.h"
#include "NuoCore/Span.h"
#include "NuoCore/Str.h"
#include "NuoZRFx/Block.h"
#include "NuoZRFx/BlockSummary.h"
#include "NuoZRFx/ElementGroupSize.h"
#include "NuoZRFx/Error.h"

namespace nuo::zrfx {

class File;
class ResultBlock;
class SetBlock;

/// One model of a file: its nodes, elements, geometry, states, results and sets, as blocks. It
/// registers itself with its file, which holds a reference to it until it is closed; from then on
/// every operation fails. Create it with `new`. Used by one thread at a time, with its file.
class NUO_API Database : public RefCountedObject {
public:
    /// The physics that the model simulates.
    enum SimulationType : int {
        STRUCTURAL = 0,
        THERMAL = 1,
        FLUID = 2,
        ELECTROMAGNETIC = 3,
        ACOUSTIC = 4,
        MULTIBODY = 5,
        MULTIPHYSICS = 6,
        OTHER_SIMULATION = 7
    };

    /// How the equations were solved.
    enum SolutionType : int {
        LINEAR_STATIC = 0,
        NONLINEAR_STATIC = 1,
        MODAL = 2,
        BUCKLING = 3,
        FREQUENCY_RESPONSE = 4,
        TRANSIENT = 5,
        EXPLICIT_DYNAMIC = 6,
        RESPONSE_SPECTRUM = 7,
        RANDOM_VIBRATION = 8,
        STEADY_STATE = 9,
        FATIGUE = 10,
        OTHER_SOLUTION = 11
    };

    /// The name of an enumerator, such as "STRUCTURAL"; empty for a value that is none.
    static const char* simulationTypeName(SimulationType type);
    static const char* solutionTypeName(SolutionType type);

    /// Adds a database to a file that was created or opened for append. The id must be new and not
    /// negative, the name not empty. On failure the reason is logged, the database is not part of
    /// the file, and its id is -1.
    Database(File* file, const Str& name, int id, SimulationType simulationType,
             SolutionType solutionType, const Str& description);
    ~Database() override;

    /// Why the last operation, construction included, of this object failed: one that returned
    /// false or null. No error after an operation that did not fail.
    const Error& lastError() const;

    /// -1 when the database could not be made; it stays when the file is closed.
    int id() const;

    /// What the database was made with; empty, OTHER_SIMULATION and OTHER_SOLUTION when its file is
    /// closed.
    Str name() const;
    Str description() const;
    SimulationType simulationType() const;
    SolutionType solutionType() const;

    /// Writes a block at once, in place of the block of its type and id that the database may have.
    /// The block is only read and stays the caller's; arrays that it refers to may be changed or
    /// freed afterwards. Contents that could not be read back are refused with a message that names
    /// them (arrays of lengths that do not fit, negative indices, polyhedrons whose faces name
    /// nodes that they do not have), and the block that would be replaced stays. When writing
    /// itself fails, for example on a full disk, the database has neither, and the block can be
    /// written again.
    bool writeBlock(const Block* block);

    /// 0, after an assertion, when the file is closed.
    std::size_t blockCount(Block::BlockType type) const;

    /// The id of the block at an index below blockCount(type), in ascending order; -1 otherwise.
    int blockId(Block::BlockType type, std::size_t index) const;

    /// The ids of all blocks of a type, ascending.
    std::vector<int> blockIds(Block::BlockType type) const;

    /// An id that no block of a type has: one more than the largest in use, 1 at first. When the
    /// largest is INT_MAX, the lowest free one.
    int unusedBlockId(Block::BlockType type) const;

    /// What does not fit together in this database, one sentence each; empty when all is well:
    /// values that are not as many as the items that they belong to or have other components than
    /// their result's type, references to blocks, states, results and cases that are missing, ids
    /// used twice. Of nodes that elements refer to by index, only those are seen that were written
    /// through this object. Reads the documents of blocks that other programs have written, but no
    /// data. `close` logs the same about the blocks that were written, as warnings.
    ///
    ///     for (const nuo::Str& finding : database->check()) std::cerr << finding << "\n";
    std::vector<Str> check() const;

    /// Reads a block with all its data into a new object of the class of its type, to which the
    /// result may be cast. The object stays usable after the file is closed. Null, with a message,
    /// when there is no such block or it cannot be read. Sets are read by the operations below.
    ///
    ///     nuo::PtrRef<nuo::zrfx::Block> block = database->blockById(nuo::zrfx::Block::NODES, 1);
    ///     if (block) show(static_cast<const nuo::zrfx::NodeBlock&>(*block));
    PtrRef<Block> blockByIndex(Block::BlockType type, std::size_t index);
    PtrRef<Block> blockById(Block::BlockType type, int id);

    /// The same for sets.
    PtrRef<SetBlock> setBlockByIndex(std::size_t index);
    PtrRef<SetBlock> setBlockById(int id);

    /// Reads the block of a class with an id. Null, with a message, when there is no such block or
    /// it cannot be read.
    ///
    ///     if (const auto nodes = database->read<nuo::zrfx::NodeBlock>(1)) show(*nodes);
    template <typename BlockClass>
    PtrRef<BlockClass> read(int id) {
        if constexpr (BlockClass::kBlockType == Block::SET) {
            return setBlockById(id);
        } else {
            return static_cast<BlockClass*>(blockById(BlockClass::kBlockType, id).p());
        }
    }

    /// All blocks of a class in ascending order of their ids, each read when the loop comes to it;
    /// null for one that cannot be read.
    ///
    ///     for (const auto& elements : database->blocks<nuo::zrfx::ElementBlock>()) ...
    template <typename BlockClass>
    auto blocks() {
        return IndexRange(blockCount(BlockClass::kBlockType),
                          [this](std::size_t index) -> PtrRef<BlockClass> {
                              if constexpr (BlockClass::kBlockType == Block::SET) {
                                  return setBlockByIndex(index);
                              } else {
                                  return static_cast<BlockClass*>(
                                      blockByIndex(BlockClass::kBlockType, index).p());
                              }
                          });
    }

    // Parts of arrays, read into memory that the caller gives. Only the pieces of the file that
    // hold them are unpacked, so that a few items of a large array take little time; a stored array
    // costs no more than its part. A text file is read as a whole. Each gives false, with a
    // message, when there is no such block, group or array, when it has fewer items, and when it
    // cannot be read; what is in the memory then means nothing. The checksum of each piece is
    // checked, but not that of a part of a stored array.

    /// The number of nodes, elements or result values of a block, by its document. 0, with a
    /// message, when there is no such block, it cannot be read, or is of another type.
    std::size_t itemCount(Block::BlockType type, int id);

    /// How much data a block of nodes, elements or result values has, whether with ids, and what it
    /// belongs to, by its document: no data is read. False, with a message, when there is no such
    /// block, it cannot be read, or is of another type.
    bool readSummary(Block::BlockType type, int id, BlockSummary* summary);

    /// Type and number of the elements of each group of an element block; empty, with a message,
    /// when there is no such block or it cannot be read.
    std::vector<ElementGroupSize> elementGroupSizes(int elementBlockId);

    /// x y z of nodes from an index on: three floats each.
    bool readCoordinates(int nodeBlockId, std::size_t firstNode, Span<float> coordinates);
    bool readNodeIds(int nodeBlockId, std::size_t firstNode, Span<int> ids);

    /// The nodes of elements of a group, element after element, as many each as the type has. Not
    /// for polyhedrons.
    bool readElementNodes(int elementBlockId, std::size_t groupIndex, std::size_t firstElement,
                          Span<int> nodes);
    bool readElementIds(int elementBlockId, std::size_t groupIndex, std::size_t firstElement,
                        Span<int> ids);

    /// Values of items from an index on, item after item, and the ids that they belong to.
    bool readResultValues(int resultValuesBlockId, std::size_t firstItem, Span<float> values);
    bool readMapToItemIds(int resultValuesBlockId, std::size_t firstItem, Span<int> ids);

    /// The values of one item of a block of nodes or elements in all states of a result: for each
    /// state as many floats as the result's type has. Where there are none, they are undefined
    /// (not below 2.99e38). The item is given by its index; results on element nodes or surfaces
    /// count these. Reads a piece per state, and values that name their items whole.
    bool readHistory(const ResultBlock& result, int targetBlockId, std::size_t item,
                     Span<float> values);

private:
    friend class File;
    friend class FilePrivate;
    Database(File* file, int id);
    bool internal_parse();
    bool create(File* file, const Str& name, int id, SimulationType simulationType,
                SolutionType solutionType, const Str& description);
    bool attach(File* file, int id);
    void refuse();
    const unstruct::ZRFxBlock* entryAt(Block::BlockType type, std::size_t index) const;
    const unstruct::ZRFxBlock* entryOf(Block::BlockType type, int id) const;
    template <typename Operation>
    auto readingParts(const char* operation, Operation run);

    PrivatePtr<class DatabasePrivate> m_private;
};

}  // namespace nuo::zrfx
