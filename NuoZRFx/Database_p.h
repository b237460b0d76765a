#pragma once

#include <memory>
#include <string>
#include <vector>

#include "Digits_p.h"
#include "LastError_p.h"
#include "NuoZRFx/Block.h"
#include "NuoZRFx/Database.h"
#include "database/ZROZRFxDatabase.h"
#include "nvf/Progress.h"

namespace nuo::zrfx {

/// What a Database holds. The block database is there while its file is open.
class DatabasePrivate {
public:
    /// Writes the table of contents. A new database must have states and a geometry.
    bool writeDelayed();

    /// Writes the table of contents if it has changed, whatever blocks are there.
    bool flush();

    /// What does not fit together in any block, one sentence each.
    std::vector<std::string> misfits() const;

    /// Logs the same about the blocks that were written, unless it was done since the last of them.
    void warnOfMisfits();

    /// Takes over what was committed since.
    bool refresh(const unstruct::ZRFxArchiveChanges& changes);

    /// The block database; null after an assertion when the file is closed. For the message, the
    /// operation of the caller.
    unstruct::ZRFxDatabase* openDatabase(const char* operation) const;

    /// The file is closing: nothing of the archive may be used any more.
    void detach() { m_zrfxDatabase.reset(); }

    /// The public object of the class of a block's type, holding the block; null when it has none.
    static PtrRef<Block> wrap(unstruct::ZRFxBlock* block);

    /// The callback of the file, or an empty one.
    const nvf::Progress::Report& progress() const {
        static const nvf::Progress::Report kNone;
        return m_progress ? *m_progress : kNone;
    }

    LastError lastError;
    std::shared_ptr<const nvf::Progress::Report> m_progress;
    std::unique_ptr<unstruct::ZRFxDatabase> m_zrfxDatabase;
    Digits m_digits;
    int m_id = -1;
    bool m_isReadFromFile = false;
    bool m_isStateInfoBlockWritten = false;
    bool m_isGeometryBlockWritten = false;
    bool m_isWarnedOfMisfits = false;

private:
    class Wrapping;
};

}  // namespace nuo::zrfx
