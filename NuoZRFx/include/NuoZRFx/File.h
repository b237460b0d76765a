#pragma once

#include <cstddef>

#include "NuoCore/Export.h"
#include "NuoCore/PrivatePtr.h"
#include "NuoCore/RefCountedObject.h"
#include "NuoCore/Str.h"
#include "NuoZRFx/FileSettings.h"

namespace unstruct {
class ZRFxAccess;
struct ZRFxArchiveChanges;
}  // namespace unstruct

namespace nuo::zrfx {

class Case;
class Database;

/// One ZRFx file: created, opened for reading, or opened for appending databases and cases. It
/// holds a reference to each of its databases and cases until it is closed. Used by one thread at a
/// time, with everything reached from it. Every operation that fails logs why on "nuo.comp.zrfx",
/// a lack of memory included; what there was no memory to open is not open.
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

    /// Does not close the file: what was not flushed or closed is dropped, with a warning, and a
    /// file that was created over another has not replaced it. Databases and cases that others hold
    /// are detached.
    ~File() override;

    /// Closes what is open, then creates a file. An existing one of that name is replaced, by the
    /// first flush or by close. Give the name the extension ".zrfx", by which files are recognized.
    bool create(const Str& fileName, const FileSettings& settings);

    /// Opens a file for reading; close first what is open. An encrypted file needs its password. A
    /// database that cannot be read ends the opening, with nothing open; a case that cannot be read
    /// is reported and left out. Memory and time that this takes are bounded by the file's size,
    /// whatever it claims.
    bool open(const Str& fileName);
    bool open(const Str& fileName, const Str& password);

    /// Closes what is open, then opens a file for adding databases, cases and blocks. What is added
    /// takes the form of what is there: text or binary, compressed or stored, encrypted or not.
    bool openForAppend(const Str& fileName);
    bool openForAppend(const Str& fileName, const Str& password);

    /// Makes all that was written so far durable and visible to others who open the file, and
    /// leaves it open for writing. A process killed later loses nothing of it. Writes nothing when
    /// nothing is new. After a failure it can be tried again. False without a message when nothing
    /// is open.
    bool flush();

    /// Writes databases and cases out and closes. Every new database must have a state info block
    /// and a geometry block. After a failure the file stays open, so that closing can be tried
    /// again. False without a message when nothing is open.
    bool close();

    /// Finishes a file that was created or opened for appending under another name, and closes: for
    /// when someone has removed or replaced the file beneath its writer, or its disk is full. The
    /// file itself stays as the last flush left it. False, with everything as it was, when there
    /// is a file of that name already.
    bool closeAs(const Str& fileName);

    /// Closes without writing: what was not flushed is dropped. Does nothing when nothing is open.
    void abandon();

    /// Of a file opened for reading, shows what was committed since it was opened or refreshed
    /// last: new databases, blocks and cases, beside a running writer above all. `isChanged`, when
    /// given, tells whether there was anything. Databases and cases stay the objects that they are;
    /// blocks that were read stay as they were read. Takes time with what is new, or as long as
    /// opening where another file has taken the name. False when nothing is open or the file is
    /// open for writing, and when it cannot be read; then it stays as it was, or lacks some of what
    /// is new.
    bool refresh(bool* isChanged = nullptr);

    /// Whether a path holds a ZRFx file, by its extension ".zrfx" and content. Alters nothing.
    static bool isZRFxFile(const Str& fileName);

    std::size_t databaseCount() const;

    /// The database at an index below databaseCount(); null otherwise. The file owns it.
    Database* database(std::size_t index);

    std::size_t fileCaseCount() const;

    /// The case at an index below fileCaseCount(); null otherwise. The file owns it.
    Case* fileCase(std::size_t index);
    const Case* fileCase(std::size_t index) const;

    /// One more than the largest id in use, 0 at first; the lowest free one where the largest is
    /// the largest of all. With nothing open, -1 and a message.
    int unusedDatabaseId() const;

    /// One more than the largest id in use, that of a case which could not be read included; 0 at
    /// first and with nothing open.
    int unusedFileCaseId() const;

    /// Stores a text under a name, without ".txt" and without folders, in the folder of user files,
    /// in place of the one of that name. Neither may be empty.
    bool addUserTextFile(const Str& fileName, const Str& content);
    std::size_t userTextFileCount() const;

    /// Name, without ".txt", and content of a user text file, in the order of the archive; empty,
    /// with a message, when there is none.
    Str userTextFileName(std::size_t index) const;
    Str userTextFileContent(std::size_t index) const;

    /// The settings of the file, without its password. Of an opened file, those found in it.
    const FileSettings* settings() const;

    /// The archive behind this face, for the component's own use; null when nothing is open.
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
