#pragma once

#include <cstddef>

#include "NuoCore/Export.h"
#include "NuoCore/PrivatePtr.h"
#include "NuoCore/PtrRef.h"
#include "NuoCore/RefCountedObject.h"
#include "NuoCore/Str.h"
#include "NuoZRFx/Block.h"

namespace nuo::zrfx {

class File;
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

    /// Adds a database to a file that was created or opened for append. The id must be new and not
    /// negative, the name not empty. On failure the reason is logged, the database is not part of
    /// the file, and its id is -1.
    Database(File* file, const Str& name, int id, SimulationType simulationType,
             SolutionType solutionType, const Str& description);
    ~Database() override;

    int id() const;
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

    std::size_t blockCount(Block::BlockType type) const;

    /// The id of the block at an index below blockCount(type), in ascending order; -1 otherwise.
    int blockId(Block::BlockType type, std::size_t index) const;

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

    PrivatePtr<class DatabasePrivate> m_private;
};

}  // namespace nuo::zrfx
