#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

#include "NuoCore/Image.h"
#include "ZRArray.h"
#include "ZRString.h"
#include "access/ZRFxArchiveInfo.h"
#include "access/ZRFxDenseDocuments.h"
#include "access/ZRFxEntryNames.h"
#include "access/ZRFxMainDocumentEntry.h"
#include "container/ZRFxZipArchive.h"
#include "container/ZRFxZipMemFile.h"
#include "container/ZRFxZipRawData.h"
#include "container/ZRZipAccessMode.h"
#include "data/ZRFxReadBounds.h"
#include "documents/ZRFxMainDocument.h"
#include "nvf/Logger.h"
#include "nvf/PropertySetCollection.h"
#include "nvf/XmlDocument.h"

namespace unstruct {

/// Whether a missing entry is an error or an answer.
enum class LogMode { LOG, SILENT };

/// The one class that touches the container: opens it, keeps its main document, and writes and
/// reads its entries by name. Entry names are UTF-8 with a backslash between folders; an entry of a
/// container packed by another program is also found under slashes. Every operation that fails logs
/// why, with file and entry, and gives false (or -1); nothing is thrown. What is written is
/// readable at once, and on disk after the next commit. Destroyed without Close, it drops what was
/// not committed, with a warning. Used by one thread at a time.
class ZRFxAccess {
public:
    /// While it lives, all that the access reads counts as one operation, within ZRFxReadBounds. A
    /// null access is allowed, and bounds nothing.
    class BoundedReading {
    public:
        explicit BoundedReading(ZRFxAccess* access);
        ~BoundedReading();
        BoundedReading(const BoundedReading&) = delete;
        BoundedReading& operator=(const BoundedReading&) = delete;

    private:
        ZRFxAccess* const m_access;
    };

    static constexpr int kDefaultLevel = -1;
    static constexpr int kDefaultSmartness = 7;
    static constexpr std::uint32_t kDefaultBufferSize = 65536;

    ZRFxAccess();
    ~ZRFxAccess();
    ZRFxAccess(const ZRFxAccess&) = delete;
    ZRFxAccess& operator=(const ZRFxAccess&) = delete;

    /// Opens or creates an archive file. Another archive must not be open.
    bool Open(const ZRString& name, ZRZipAccessMode mode);

    /// The same for an archive in memory, which must outlive the opening.
    bool Open(ZRFxZipMemFile* memFile, ZRZipAccessMode mode);

    /// Brings all that was written so far into the file at once, durable and visible to new
    /// readers.
    bool Commit();

    /// Commits and closes. When the commit fails the archive stays open with all that it was given,
    /// so that closing can be tried again; its file holds the last commit. False when it is not
    /// open.
    bool Close();

    /// Commits everything to a new file instead, and closes; the old one stays as it was committed
    /// last. Fails when there is a file of that name.
    bool CloseAs(const ZRString& name);

    /// Closes without committing what was written since the last commit.
    void Abandon();

    /// Takes over what was committed since an archive was opened for reading, or refreshed last.
    /// The time it takes grows with what is new.
    bool Refresh(ZRFxArchiveChanges* changes);

    bool IsOpen() const { return m_pArchive->IsOpen(); }
    bool IsReadOnly() const { return m_pArchive->IsReadOnly(); }
    /// Empty for an archive in memory.
    const ZRString& FileName() const { return m_sFileName; }

    /// Whether a path holds a ZRFx file: by extension, as an archive, and by its main document.
    /// Never alters anything and logs nothing.
    static bool IsZRFxFile(const ZRString& name);

    /// Used by every later write: the level is 0 (stored) to 9, or -1 for the default. The other
    /// values change nothing: an entry that does not shrink is always stored, and entries are
    /// compressed whole.
    void SetCompression(int level, int smartness, std::uint32_t bufferSize,
                        std::uint32_t fileBufferSize);

    /// How many threads pack and unpack large data files, the caller's own among them; 0 for as
    /// many as the process may take. What is written does not depend on it.
    void SetThreads(int threads) { m_pArchive->SetThreads(threads); }

    /// Whether writing a data file replaces the one of that name.
    void SetAlwaysOverwrite(bool alwaysOverwrite) { m_alwaysOverwrite = alwaysOverwrite; }

    /// Encrypts what is written from now on, and decrypts what is read, with WinZip AES-256.
    bool SetPassword(const ZRString& password);

    // Main document.

    static nvf::ref<nvf::XmlDocument> CreateMainDocument(const ZRString& exportApplication,
                                                         const ZRString& vendorName, int vendorId,
                                                         const ZRFxDateTime* dateTime = nullptr);
    /// REQUIRES: the document is held by a reference, as one made on the stack is not.
    bool ReadAndValidateMainDocumentFile(nvf::XmlDocument* doc);
    bool SetVendorInfo(const ZRString& exportApplication, const ZRString& vendorName, int vendorId);
    bool GetVendorInfo(int* vendorId, ZRString* vendorName, ZRString* exportApplication);
    bool GetExportDateTime(ZRFxDateTime* dateTime) {
        return m_mainDocument.Ask(&ZRFxMainDocument::GetExportDateTime, dateTime);
    }
    bool GetDisplayModelOnly(bool* displayModelOnly) {
        return m_mainDocument.Ask(&ZRFxMainDocument::GetDisplayModelOnly, displayModelOnly);
    }

    // Registries of databases and cases.

    /// Stores the document in the folder that its root names and enters it in the main document.
    /// With `overwrite`, document and registry line of the same id are replaced.
    bool AddDatabase(const nvf::XmlDocument& databaseDoc, bool overwrite);
    bool AddCase(const nvf::XmlDocument& caseDoc, bool overwrite);

    bool GetNumDatabases(int* count) {
        return m_mainDocument.Ask(&ZRFxMainDocument::GetNumDatabases, count);
    }
    bool GetNumCases(int* count) {
        return m_mainDocument.Ask(&ZRFxMainDocument::GetNumCases, count);
    }

    /// By position, or by id. False, without a message, when there is none.
    bool GetDatabaseInfo(int index, ZRFxDatabaseInfo* info) {
        return m_mainDocument.Ask(&ZRFxMainDocument::GetDatabaseInfo, index, info);
    }
    bool GetDatabaseByID(int id, ZRFxDatabaseInfo* info) {
        return m_mainDocument.Ask(&ZRFxMainDocument::GetDatabaseByID, id, info);
    }
    bool GetCaseInfo(int index, ZRFxCaseInfo* info) {
        return m_mainDocument.Ask(&ZRFxMainDocument::GetCaseInfo, index, info);
    }
    bool GetCaseByID(int id, ZRFxCaseInfo* info) {
        return m_mainDocument.Ask(&ZRFxMainDocument::GetCaseByID, id, info);
    }

    // Files of cases, see ZRFxCaseFiles.

    ZRString CaseEntry(const ZRString& folder, const ZRString& file) const;
    bool GetCaseSnapshot(int caseId, nuo::Image* image);
    bool GetCaseDescription(int caseId, ZRString* text);

    // Documents.

    /// Stores a document so that it can be read within ZRFxReadBounds, whatever it holds.
    bool WriteXmlFile(const ZRString& name, const nvf::XmlDocument& doc, bool overwrite);
    bool InternalReadXmlFile(const ZRString& name, LogMode logMode, nvf::XmlDocument* doc);

    /// The text as which a document is stored; messages call it by the name. U+FFFD replaces
    /// characters that XML cannot hold, with a warning. False, with a message, when memory ran out
    /// while the document was built.
    bool MakeDocumentText(const ZRString& name, const nvf::XmlDocument& doc, std::string* text);

    /// Replaces the text of a document from byte `kept` on, and gives the number of this revision.
    /// The caller keeps the text well formed. With 0 the document is made, or replaced as a whole.
    bool GrowDocument(const ZRString& name, std::uint64_t kept, std::string_view tail,
                      std::uint64_t* revision);

    /// The revision of a document that nothing but GrowDocument has changed since; 0 otherwise.
    std::uint64_t DocumentRevision(const ZRString& name) const;

    /// The text of a document from a byte on; empty when it is shorter.
    bool ReadDocumentTail(const ZRString& name, std::uint64_t from, std::string* tail);
    bool WriteProperties(const ZRString& fileName, const nvf::PropertySetCollection& collection);
    bool ReadProperties(const ZRString& fileName, nvf::PropertySetCollection* collection);

    // Data files: packed little-endian values and nothing else. Writes replace an existing file
    // only with `overwrite`, or when always-overwrite is set; typed reads leave the array empty on
    // failure and take as many whole items as the entry holds.

    bool WriteDataRaw(const ZRString& name, const void* data, std::size_t numBytes, bool overwrite);
    bool WriteDataInt(const ZRString& name, const ZRIntArray& data);
    bool WriteDataFloat(const ZRString& name, const ZRFloatArray& data);
    bool WriteDataVectorAsFloat(const ZRString& name, const ZRVec3fArray& data);
    bool WriteDataString(const ZRString& name, const ZRString& text);
    bool WriteData(const ZRString& name, const ZRUbyteArray& data);

    bool ReadDataInt(const ZRString& name, ZRIntArray* data);
    bool ReadDataFloat(const ZRString& name, ZRFloatArray* data);
    bool ReadDataVector(const ZRString& name, ZRVec3fArray* data);
    bool ReadDataString(const ZRString& name, ZRString* text);
    bool ReadData(const ZRString& name, ZRUbyteArray* data);
    bool InternalReadDataRaw(const ZRString& name, LogMode logMode, ZRFxZipRawData* raw);

    /// Reads some of a file of values of four bytes into memory that the caller gives, unpacking no
    /// more than that takes.
    bool ReadDataPart(const ZRString& name, std::uint64_t from, void* data, std::size_t numBytes);

    /// One text entry, written piece by piece between opening and closing it.
    bool OpenNewFile(const ZRString& name);
    bool WriteNewFile(std::string_view text);
    bool CloseNewFile();

    // Images, see ZRFxImageEntry.h.

    bool WriteImage(const ZRString& name, const nuo::Image& image);
    bool ReadImage(const ZRString& name, nuo::Image* image);

    // Entries.

    /// Index of an entry; -1 when absent, which is logged unless SILENT.
    std::int32_t InternalFindFile(const ZRString& name, LogMode logMode);
    /// Whether there is such an entry. Logs nothing.
    bool Contains(const ZRString& name) const;

    /// The bytes of an entry, unpacked; 0 when there is none.
    std::uint64_t SizeOf(const ZRString& name);

    /// Removes an entry; one that is not there is no failure.
    bool RemoveFile(const ZRString& name);

    // Names, see ZRFxEntryNames. False, with a message, when the archive is not open.

    static constexpr std::size_t kMostFolders = ZRFxEntryNames::kMostFolders;
    bool FindFiles(const ZRString& folder, bool descend, ZRStringArray* names);
    bool FindFilesOfBase(const ZRString& base, ZRStringArray* names);
    bool FindSubFolders(const ZRString& folder, bool descend, ZRStringArray* names);

    /// Finds from the entries how the archive was made.
    bool GetArchiveInfo(ZRFxArchiveInfo* info);

private:
    bool CheckOpened(bool isOpened);
    template <typename Find>
    bool FindNames(ZRStringArray* names, Find find);
    bool CheckWritable(const ZRString& name);
    bool CheckDocumentWritable(const ZRString& name);
    bool CheckReadable(const ZRString& name, LogMode logMode) const;
    bool Store(const ZRString& name, const void* data, std::size_t numBytes, bool overwrite);
    bool StoreDocument(const ZRString& name, const std::string& text, bool overwrite);
    template <typename Item>
    bool WriteItems(const ZRString& name, const ZRArray<Item>& data);
    template <typename Item>
    bool ReadItems(const ZRString& name, ZRArray<Item>* data);
    void Forget();
    bool FailWithCause(nvf::LocatedText message, const ZRString& name);

    ZRString m_sFileName;
    const std::unique_ptr<ZRFxZipArchive> m_pArchive;
    bool m_alwaysOverwrite = false;
    int m_compressionLevel = kDefaultLevel;
    // What was found in them is forgotten with the next write or commit.
    ZRFxMainDocumentEntry m_mainDocument{*this};
    ZRFxEntryNames m_names;
    ZRFxDenseDocuments m_denseDocuments;
    ZRFxReadBounds m_bounds;
    nvf::ref<nvf::Logger> m_logger;
};

}  // namespace unstruct
