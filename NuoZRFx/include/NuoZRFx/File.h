#pragma once

#include <cstddef>

#include "NuoCore/Export.h"
#include "NuoCore/IndexRange.h"
#include "NuoCore/PrivatePtr.h"
#include "NuoCore/RefCountedObject.h"
#include "NuoCore/Str.h"
#include "NuoZRFx/Error.h"
#include "NuoZRFx/FileSettings.h"
#include "NuoZRFx/ProgressCallback.h"

namespace unstruct {
class ZRFxAccess;
struct ZRFxArchiveChanges;
}  // namespace unstruct

namespace nuo::zrfx {

class Case;
class Database;

/// One ZRFx file: created, opened for reading, or opened for appending databases and cases. It
/// holds a reference to each of its databases and cases until it is closed. Used by one thread at a
/// time, with everything reached from it. Every operation that fails, be it for lack of memory,
/// logs why on "nuo.comp.zrfx"; a file that there was no memory to open is not open.
///
///     nuo::zrfx::File file;
///     if (!file.create("model.zrfx", nuo::zrfx::FileSettings())) return false;
///     nuo::PtrRef<nuo::zrfx::Database> database = new nuo::zrfx::Database(&file, "Model",
///         file.unusedDatabaseId(), nuo::zrfx::Database::STRUCTURAL,
///         nuo::zrfx::Database::LINEAR_STATIC, "");
///     // ... write blocks ...
///     return file.close();
class NUO_API File : public RefCountedObject {
public:
    File();

    /// Does not close the file: everything since the last flush is dropped, with a warning, and a
    /// file created over another one leaves that one in place unless it was flushed. Databases and
    /// cases that others still hold are detached.
    ~File() override;

    /// Closes what is open, then creates a file; on failure nothing is open. An existing file of
    /// that name is replaced by the first flush, or by close. Use the extension ".zrfx", by which
    /// files are recognized.
    bool create(const Str& fileName, const FileSettings& settings);

    /// Opens a file for reading. A file that is open already is not closed properly: everything
    /// since its last flush is dropped, with a warning. An encrypted file needs its password. When
    /// a database cannot be read, opening fails and nothing is open; a case that cannot be read is
    /// reported and left out. Memory and time are bounded by the file's size, whatever the file
    /// claims.
    bool open(const Str& fileName);
    bool open(const Str& fileName, const Str& password);

    /// Closes what is open, then opens a file for adding databases, cases and blocks; on failure
    /// nothing is open. A file has one writer at a time. New data takes the form of the existing:
    /// text or binary, compressed or stored, encrypted or not.
    bool openForAppend(const Str& fileName);
    bool openForAppend(const Str& fileName, const Str& password);

    /// Makes all that was written so far durable and visible to others who open the file, which
    /// stays open for writing. Nothing of it is lost when the process is killed later. Writes
    /// nothing when nothing is new. After a failure it can be called again. False, without a
    /// message, when nothing is open.
    bool flush();

    /// Writes databases and cases out and closes. Every new database must have a state info block
    /// and a geometry block. After a failure the file stays open, so that close can be called
    /// again. False, without a message, when nothing is open.
    bool close();

    /// Writes a file that was created or opened for appending out under another name, and closes:
    /// for use when its disk is full, or someone has removed or replaced the file under its writer.
    /// The file itself stays as the last flush left it. False, with everything as it was, when
    /// there is a file of that name already.
    bool closeAs(const Str& fileName);

    /// Closes without writing: everything since the last flush is dropped. Does nothing when
    /// nothing is open.
    void abandon();

    /// Brings a file opened for reading up to date with what its writer has committed since it was
    /// opened or refreshed last: new databases, blocks and cases. `*isChanged`, unless null, says
    /// whether there was anything. Database and case objects stay the same; blocks that were read
    /// stay as they were read. Takes time in proportion to what is new, or as long as opening when
    /// another file has taken the name. False when nothing is open, when the file is open for
    /// writing, and when it cannot be read; the file then stays as it was, or lacks some of what is
    /// new.
    bool refresh(bool* isChanged = nullptr);

    /// Calls back while the operations that may take long go on: opening, refresh, flush, close and
    /// closeAs, and in the file's databases writing and reading of blocks. An empty callback ends
    /// that. Opening that is stopped leaves nothing open; a block whose writing is stopped is not
    /// in the file, nor is one that it was to replace; a flush or close that is stopped leaves the
    /// file open and what was committed last as it was, and can be called again.
    ///
    ///     file.setProgressCallback([&](double fraction) { return !window.update(fraction); });
    void setProgressCallback(ProgressCallback callback);

    /// How many threads pack and unpack large arrays of the file that is open, and of files that
    /// this object opens later, as FileSettings::threads takes it; creating a file sets it anew.
    void setThreads(int threads);

    /// Why the last operation of this object failed: one that returned false or null. No error
    /// after an operation that did not fail.
    const Error& lastError() const;

    /// Whether a path holds a ZRFx file, judged by the extension ".zrfx" and the content. Changes
    /// nothing.
    static bool isZRFxFile(const Str& fileName);

    /// Whether a file needs a password. False, with a message, when it cannot be read.
    static bool isEncrypted(const Str& fileName);

    /// 0 when nothing is open.
    std::size_t databaseCount() const;

    /// The database at an index below databaseCount(); null otherwise. The file owns it.
    Database* database(std::size_t index);

    /// 0 when nothing is open.
    std::size_t fileCaseCount() const;

    /// The case at an index below fileCaseCount(); null otherwise. The file owns it.
    Case* fileCase(std::size_t index);
    const Case* fileCase(std::size_t index) const;

    /// All databases, and all cases, for range-for.
    ///
    ///     for (nuo::zrfx::Database& database : file.databases()) ...
    auto databases() {
        return IndexRange(databaseCount(),
                          [this](std::size_t index) -> Database& { return *database(index); });
    }
    auto fileCases() {
        return IndexRange(fileCaseCount(),
                          [this](std::size_t index) -> Case& { return *fileCase(index); });
    }

    /// An id that no database has: one more than the largest in use, 0 in a new file. When the
    /// largest is INT_MAX, the lowest free one. -1, with a message, when nothing is open.
    int unusedDatabaseId() const;

    /// The same for cases, counting those that could not be read; 0 when nothing is open.
    int unusedFileCaseId() const;

    /// Stores a text in the folder of user files, replacing the one of that name. The name has no
    /// ".txt" and no folder. Neither may be empty.
    bool addUserTextFile(const Str& fileName, const Str& content);

    /// 0 when nothing is open.
    std::size_t userTextFileCount() const;

    /// Name, without ".txt", and content of a user text file, in the order of the archive; empty,
    /// with a message, when there is none.
    Str userTextFileName(std::size_t index) const;
    Str userTextFileContent(std::size_t index) const;

    /// The settings of the file, without its password; for an opened file, those found in it.
    const FileSettings* settings() const;

    /// The archive that this object wraps, for the component itself; null when nothing is open.
    unstruct::ZRFxAccess* internal_access() const;

private:
    friend class Database;
    friend class Case;
    unstruct::ZRFxAccess* writableAccess() const;
    bool checkNewDatabaseId(int id) const;
    bool addDatabase(Database* database);
    bool addCase(Case* fileCase);
    template <typename Open>
    bool opened(Open open);
    bool readRegistries();
    bool readDatabases();
    bool readCases();
    bool writeDatabases();
    bool writeCases();
    bool refreshDatabases(const unstruct::ZRFxArchiveChanges& changes);
    bool refreshCases(const unstruct::ZRFxArchiveChanges& changes);

    PrivatePtr<class FilePrivate> m_private;
};

}  // namespace nuo::zrfx
