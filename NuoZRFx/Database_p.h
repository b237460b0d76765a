#pragma once

#include <memory>

#include "LastError_p.h"
#include "NuoZRFx/Block.h"
#include "NuoZRFx/Database.h"
#include "database/ZROZRFxDatabase.h"

namespace nuo::zrfx {

/// What a Database holds. The block database is there while its file is open.
class DatabasePrivate {
public:
    /// Writes the table of contents. A new database must have states and a geometry.
    bool writeDelayed();

    /// Writes the table of contents if it has changed, whatever blocks are there.
    bool flush();

    /// Takes over what was committed since.
    bool refresh(const unstruct::ZRFxArchiveChanges& changes);

    /// The block database; null after an assertion when the file is closed. For the message, the
    /// operation of the caller.
    unstruct::ZRFxDatabase* openDatabase(const char* operation) const;

    /// The file is closing: nothing of the archive may be used any more.
    void detach() { m_zrfxDatabase.reset(); }

    /// The public object of the class of a block's type, holding the block; null when it has none.
    static PtrRef<Block> wrap(unstruct::ZRFxBlock* block);

    LastError lastError;
    std::unique_ptr<unstruct::ZRFxDatabase> m_zrfxDatabase;
    int m_id = -1;
    bool m_isReadFromFile = false;
    bool m_isStateInfoBlockWritten = false;
    bool m_isGeometryBlockWritten = false;

private:
    class Wrapping;
};

}  // namespace nuo::zrfx
