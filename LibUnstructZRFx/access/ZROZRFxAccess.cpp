#include "access/ZROZRFxAccess.h"

#include <new>
#include <string>

#include "ZRByteOrder.h"
#include "access/ZRFxCaseFiles.h"
#include "access/ZRFxImageEntry.h"
#include "access/ZRFxPropertiesEntry.h"
#include "container/ZRFxSystem.h"
#include "nvf/Assert.h"
#include "nvf/LogManager.h"

namespace unstruct {
namespace {

constexpr const char* kExtension = ".zrfx";

bool exists(const ZRString& path) {
    struct stat status {};
    return ZRFxSystem::Current().StatusOf(path.CStr(), &status) == 0;
}

}  // namespace

ZRFxAccess::BoundedReading::BoundedReading(ZRFxAccess* access) : m_access(access) {
    if (m_access) m_access->m_bounds.Start(m_access->m_pArchive->Length());
}

ZRFxAccess::BoundedReading::~BoundedReading() {
    if (m_access) m_access->m_bounds.End();
}

ZRFxAccess::ZRFxAccess()
    : m_pArchive(std::make_unique<ZRFxZipArchive>()),
      m_names(*m_pArchive),
      m_denseDocuments(*m_pArchive),
      m_logger(nvf::archiveLogger()) {}

ZRFxAccess::~ZRFxAccess() {
    if (m_sFileName.IsEmpty() || !m_pArchive->HasUncommitted()) return;
    m_logger->warn("'%1' was not closed, what was written since the last flush is dropped.",
                   m_sFileName);
}

bool ZRFxAccess::Open(const ZRString& name, ZRZipAccessMode mode) {
    NVF_ASSERT(m_pArchive);
    if (IsOpen()) return m_logger->fail("The archive is open, close it before opening.");
    if (name.IsBlank()) return m_logger->fail("No filename specified.");
    if (mode != ZRZipAccessMode::CREATE && !exists(name)) {
        return m_logger->failBecause(nvf::Reason::NOT_FOUND, "File not found. '%1'", name);
    }
    m_sFileName = name;
    return CheckOpened(m_pArchive->Open(name.Bytes(), mode));
}

bool ZRFxAccess::Open(ZRFxZipMemFile* memFile, ZRZipAccessMode mode) {
    NVF_ASSERT(m_pArchive);
    NVF_ASSERT(memFile);
    if (!memFile) return false;
    if (IsOpen()) return m_logger->fail("The archive is open, close it before opening.");
    m_sFileName = ZRString();
    return CheckOpened(m_pArchive->Open(memFile, mode));
}

bool ZRFxAccess::Commit() {
    if (!IsOpen()) return m_logger->failBecause(nvf::Reason::NOT_OPEN, "Archive is not open.");
    if (IsReadOnly())
        return m_logger->failBecause(nvf::Reason::READ_ONLY, "The file is read only.");
    Forget();
    return m_pArchive->Commit() || FailWithCause("Could not write archive '%1'", m_sFileName);
}

bool ZRFxAccess::Close() {
    if (!IsOpen()) return m_logger->failBecause(nvf::Reason::NOT_OPEN, "Archive is not open.");
    Forget();
    return m_pArchive->Close() || FailWithCause("Could not write archive '%1'", m_sFileName);
}

bool ZRFxAccess::CloseAs(const ZRString& name) {
    if (!IsOpen()) return m_logger->failBecause(nvf::Reason::NOT_OPEN, "Archive is not open.");
    if (name.IsBlank()) return m_logger->fail("No filename specified.");
    Forget();
    return m_pArchive->CloseAs(name.Bytes()) || FailWithCause("Could not write archive '%1'", name);
}

void ZRFxAccess::Abandon() {
    Forget();
    m_pArchive->Abandon();
}

bool ZRFxAccess::Refresh(ZRFxArchiveChanges* changes) {
    NVF_ASSERT(changes);
    if (!changes) return false;
    if (!m_pArchive->Refresh(changes)) {
        return FailWithCause("Could not refresh archive '%1'", m_sFileName);
    }
    if (changes->bAny) Forget();
    return true;
}

bool ZRFxAccess::IsZRFxFile(const ZRString& name) {
    return name.Extension() == kExtension &&
           ZRFxZipArchive::Probe(name.Bytes(), ZRFxMainDocument::kEntryName);
}

void ZRFxAccess::SetCompression(int level, int /*smartness*/, std::uint32_t /*bufferSize*/,
                                std::uint32_t /*fileBufferSize*/) {
    m_compressionLevel = level;
}

bool ZRFxAccess::SetPassword(const ZRString& password) {
    if (!IsOpen()) return m_logger->fail("Cannot set password, file is closed");
    return m_pArchive->SetPassword(password.Bytes()) ||
           FailWithCause("Failed to set password on file", m_sFileName);
}

nvf::ref<nvf::XmlDocument> ZRFxAccess::CreateMainDocument(const ZRString& exportApplication,
                                                          const ZRString& vendorName, int vendorId,
                                                          const ZRFxDateTime* dateTime) {
    return ZRFxMainDocument::Create(exportApplication, vendorName, vendorId, dateTime);
}

bool ZRFxAccess::ReadAndValidateMainDocumentFile(nvf::XmlDocument* doc) {
    return m_mainDocument.Read(doc);
}

bool ZRFxAccess::SetVendorInfo(const ZRString& exportApplication, const ZRString& vendorName,
                               int vendorId) {
    return m_mainDocument.SetVendorInfo(exportApplication, vendorName, vendorId);
}

bool ZRFxAccess::GetVendorInfo(int* vendorId, ZRString* vendorName, ZRString* exportApplication) {
    return m_mainDocument.GetVendorInfo(vendorId, vendorName, exportApplication);
}

bool ZRFxAccess::AddDatabase(const nvf::XmlDocument& databaseDoc, bool overwrite) {
    return m_mainDocument.AddDatabase(databaseDoc, overwrite);
}

bool ZRFxAccess::AddCase(const nvf::XmlDocument& caseDoc, bool overwrite) {
    return m_mainDocument.AddCase(caseDoc, overwrite);
}

ZRString ZRFxAccess::CaseEntry(const ZRString& folder, const ZRString& file) const {
    return ZRFxCaseFiles::EntryOf(*this, folder, file);
}

bool ZRFxAccess::GetCaseSnapshot(int caseId, nuo::Image* image) {
    return ZRFxCaseFiles(*this).ReadSnapshot(caseId, image);
}

bool ZRFxAccess::GetCaseDescription(int caseId, ZRString* text) {
    return ZRFxCaseFiles(*this).ReadDescription(caseId, text);
}

bool ZRFxAccess::WriteXmlFile(const ZRString& name, const nvf::XmlDocument& doc, bool overwrite) {
    if (!CheckDocumentWritable(name)) return false;
    std::string entry;
    const bool isThere = m_names.Find(name, &entry);
    if (isThere && !overwrite) {
        return m_logger->fail("Xml file '%1' exists in archive, and overwrite flag is not set",
                              name);
    }
    std::string text;
    if (!MakeDocumentText(name, doc, &text)) return false;
    return StoreDocument(name, text, isThere) ||
           FailWithCause("Could not write Xml file '%1' to archive", name);
}

bool ZRFxAccess::InternalReadXmlFile(const ZRString& name, LogMode logMode, nvf::XmlDocument* doc) {
    NVF_ASSERT(doc);
    const BoundedReading bounded(this);
    ZRFxZipRawData raw;
    if (!doc || !InternalReadDataRaw(name, logMode, &raw)) return false;
    if (!m_bounds.TakeDocument(raw.Length())) {
        return m_logger->failBecause(
            nvf::Reason::TOO_LARGE,
            "Xml documents are too large for a file of its length, '%1' in '%2'", name,
            m_sFileName);
    }
    nvf::String cause;
    if (doc->parse({reinterpret_cast<const char*>(raw.Buffer()), raw.Length()}, &cause))
        return true;
    m_logger->fail("'%1' in '%2': %3", name, m_sFileName, cause);
    return m_logger->fail("Error parsing Xml contents");
}

bool ZRFxAccess::MakeDocumentText(const ZRString& name, const nvf::XmlDocument& doc,
                                  std::string* text) {
    if (doc.isIncomplete())
        return m_logger->failBecause(nvf::Reason::OUT_OF_MEMORY, "Out of memory for Xml file '%1'",
                                     name);
    bool isReplaced = false;
    *text = doc.toUtf8(&isReplaced);
    if (isReplaced) m_logger->warn("Characters that Xml cannot hold become U+FFFD in '%1'", name);
    return true;
}

bool ZRFxAccess::GrowDocument(const ZRString& name, std::uint64_t kept, std::string_view tail,
                              std::uint64_t* revision) {
    if (!CheckDocumentWritable(name)) return false;
    Forget();
    const std::string slashed = WithSlashes(name.Bytes());
    const bool isGrown =
        m_pArchive->Grow(name.Bytes(), kept, tail, m_compressionLevel, revision) &&
        (slashed == name.Bytes() || !m_pArchive->Contains(slashed) || m_pArchive->Remove(slashed));
    return isGrown || FailWithCause("Could not write Xml file '%1' to archive", name);
}

std::uint64_t ZRFxAccess::DocumentRevision(const ZRString& name) const {
    return m_pArchive->RevisionOf(name.Bytes());
}

bool ZRFxAccess::ReadDocumentTail(const ZRString& name, std::uint64_t from, std::string* tail) {
    NVF_ASSERT(tail);
    std::string entry;
    if (!tail || !CheckReadable(name, LogMode::LOG)) return false;
    if (!m_names.Find(name, &entry) || !m_pArchive->ReadTail(entry, from, tail)) {
        return FailWithCause("Unable to read raw data from '%1'.", name);
    }
    return true;
}

bool ZRFxAccess::WriteProperties(const ZRString& fileName,
                                 const nvf::PropertySetCollection& collection) {
    return WritePropertiesEntry(*this, fileName, collection);
}

bool ZRFxAccess::ReadProperties(const ZRString& fileName, nvf::PropertySetCollection* collection) {
    return ReadPropertiesEntry(*this, fileName, collection);
}

bool ZRFxAccess::WriteDataRaw(const ZRString& name, const void* data, std::size_t numBytes,
                              bool overwrite) {
    if (!CheckWritable(name)) return false;
    const bool isEmpty = !data || numBytes == 0;
    return Store(name, data, isEmpty ? 0 : numBytes, overwrite || m_alwaysOverwrite) ||
           FailWithCause(isEmpty ? "Could not add empty file '%1' to archive"
                                 : "Could not add file '%1' to archive",
                         name);
}

bool ZRFxAccess::WriteDataInt(const ZRString& name, const ZRIntArray& data) {
    return WriteItems(name, data) || m_logger->fail("Could not write integer data.");
}

bool ZRFxAccess::WriteDataFloat(const ZRString& name, const ZRFloatArray& data) {
    return WriteItems(name, data) || m_logger->fail("Could not write float data.");
}

bool ZRFxAccess::WriteDataVectorAsFloat(const ZRString& name, const ZRVec3fArray& data) {
    return WriteItems(name, data) || m_logger->fail("Could not write float vector integer data.");
}

bool ZRFxAccess::WriteDataString(const ZRString& name, const ZRString& text) {
    if (text.IsEmpty()) {
        return WriteDataRaw(name, "", 1, false) ||
               m_logger->fail("Could not write empty replacement string.");
    }
    return WriteDataRaw(name, text.CStr(), text.Bytes().size(), false) ||
           m_logger->fail("Could not write string.");
}

bool ZRFxAccess::WriteData(const ZRString& name, const ZRUbyteArray& data) {
    return WriteDataRaw(name, data.Data(), static_cast<std::size_t>(data.GetSize()), false) ||
           m_logger->fail("Could not write unsigned byte data.");
}

bool ZRFxAccess::ReadDataInt(const ZRString& name, ZRIntArray* data) {
    return ReadItems(name, data);
}

bool ZRFxAccess::ReadDataFloat(const ZRString& name, ZRFloatArray* data) {
    return ReadItems(name, data);
}

bool ZRFxAccess::ReadDataVector(const ZRString& name, ZRVec3fArray* data) {
    return ReadItems(name, data);
}

bool ZRFxAccess::ReadDataString(const ZRString& name, ZRString* text) {
    NVF_ASSERT(text);
    ZRUbyteArray bytes;
    if (!text || !ReadData(name, &bytes)) return false;
    const bool isEmpty = bytes.GetSize() == 1 && bytes[0] == 0;
    *text = isEmpty ? ZRString() : ZRString(std::string(bytes.begin(), bytes.end()));
    return true;
}

bool ZRFxAccess::ReadData(const ZRString& name, ZRUbyteArray* data) {
    return ReadItems(name, data);
}

bool ZRFxAccess::InternalReadDataRaw(const ZRString& name, LogMode logMode, ZRFxZipRawData* raw) {
    NVF_ASSERT(raw);
    if (!raw) return false;
    std::string entry;
    if (!CheckReadable(name, logMode) || !m_names.Find(name, &entry)) {
        if (logMode == LogMode::SILENT) return false;
        return m_logger->fail("Unable to read raw data from '%1', file not found.", name);
    }
    if (!m_pArchive->Read(entry, raw)) {
        return FailWithCause("Unable to read raw data from '%1'.", name);
    }
    if (m_bounds.TakeData(raw->Length())) return true;
    raw->Clear();
    return m_logger->failBecause(nvf::Reason::TOO_LARGE,
                                 "Too much data for a file of its length, '%1' in '%2'", name,
                                 m_sFileName);
}

bool ZRFxAccess::ReadDataPart(const ZRString& name, std::uint64_t from, void* data,
                              std::size_t numBytes) {
    std::string entry;
    if (!CheckReadable(name, LogMode::LOG)) return false;
    if (!m_names.Find(name, &entry) || !m_pArchive->ReadPart(entry, from, data, numBytes)) {
        return FailWithCause("Unable to read raw data from '%1'.", name);
    }
    if (!kHostIsLittleEndian) SwapBytesOf4(data, numBytes);
    return true;
}

bool ZRFxAccess::OpenNewFile(const ZRString& name) {
    if (!CheckWritable(name)) return false;
    if (m_alwaysOverwrite) RemoveFile(name);
    return m_pArchive->OpenEntry(name.Bytes(), m_compressionLevel) ||
           FailWithCause("Error opening new file", name);
}

bool ZRFxAccess::WriteNewFile(std::string_view text) {
    return m_pArchive->WriteEntry(text.data(), text.size()) ||
           FailWithCause("Error writing new file", m_sFileName);
}

bool ZRFxAccess::CloseNewFile() {
    Forget();
    return m_pArchive->CloseEntry() || FailWithCause("Error closing new file.", m_sFileName);
}

bool ZRFxAccess::WriteImage(const ZRString& name, const nuo::Image& image) {
    return WriteImageEntry(*this, name, image);
}

bool ZRFxAccess::ReadImage(const ZRString& name, nuo::Image* image) {
    return ReadImageEntry(*this, name, image);
}

std::int32_t ZRFxAccess::InternalFindFile(const ZRString& name, LogMode logMode) {
    std::string entry;
    if (!CheckReadable(name, logMode)) return -1;
    if (m_names.Find(name, &entry)) return static_cast<std::int32_t>(m_pArchive->IndexOf(entry));
    if (logMode == LogMode::LOG) m_logger->fail("There is no file '%1' in the archive.", name);
    return -1;
}

bool ZRFxAccess::Contains(const ZRString& name) const {
    std::string entry;
    return IsOpen() && !name.IsBlank() && m_names.Find(name, &entry);
}

std::uint64_t ZRFxAccess::SizeOf(const ZRString& name) {
    std::string entry;
    ZRFxZipArchive::EntryInfo info;
    return m_names.Find(name, &entry) && m_pArchive->Find(entry, &info) ? info.nSize : 0;
}

bool ZRFxAccess::RemoveFile(const ZRString& name) {
    if (!CheckWritable(name)) return false;
    Forget();
    for (std::string entry; m_names.Find(name, &entry);) {
        m_denseDocuments.TakeOut(entry);
        const bool isRemoved = m_pArchive->Remove(entry);
        m_denseDocuments.TakeIn(entry);
        if (!isRemoved) {
            return FailWithCause("Could not remove file '%1' from archive", name);
        }
    }
    return true;
}

bool ZRFxAccess::FindFiles(const ZRString& folder, bool descend, ZRStringArray* names) {
    return FindNames(names, [&] { return m_names.FilesIn(folder, descend); });
}

bool ZRFxAccess::FindFilesOfBase(const ZRString& base, ZRStringArray* names) {
    return FindNames(names, [&] { return m_names.FilesOfBase(base); });
}

bool ZRFxAccess::FindSubFolders(const ZRString& folder, bool descend, ZRStringArray* names) {
    return FindNames(names, [&] { return m_names.SubFoldersOf(folder, descend); });
}

bool ZRFxAccess::GetArchiveInfo(ZRFxArchiveInfo* info) {
    NVF_ASSERT(info);
    if (!info) return false;
    if (!IsOpen()) return m_logger->failBecause(nvf::Reason::NOT_OPEN, "Archive is not open.");
    *info = ArchiveInfoOf(*m_pArchive);
    return true;
}

bool ZRFxAccess::CheckOpened(bool isOpened) {
    m_denseDocuments.Forget();
    return (isOpened && IsOpen()) ||
           FailWithCause("File still closed after opening it.", m_sFileName);
}

template <typename Find>
bool ZRFxAccess::FindNames(ZRStringArray* names, Find find) {
    NVF_ASSERT(names);
    if (!names) return false;
    if (!IsOpen()) return m_logger->fail("Archive is not open.");
    *names = find();
    return true;
}

bool ZRFxAccess::CheckWritable(const ZRString& name) {
    if (!IsOpen()) return m_logger->failBecause(nvf::Reason::NOT_OPEN, "Archive is not open.");
    if (IsReadOnly())
        return m_logger->failBecause(nvf::Reason::READ_ONLY, "The file is read only.");
    if (name.IsBlank()) return m_logger->fail("No filename specified.");
    return true;
}

bool ZRFxAccess::CheckDocumentWritable(const ZRString& name) {
    if (!IsOpen()) return m_logger->fail("Cannot write Xml file '%1', archive is not open.", name);
    return CheckWritable(name);
}

bool ZRFxAccess::CheckReadable(const ZRString& name, LogMode logMode) const {
    if (IsOpen() && !name.IsBlank()) return true;
    if (logMode == LogMode::LOG) {
        m_logger->fail(IsOpen() ? "No filename specified." : "Archive is not open.");
    }
    return false;
}

// Replaces an entry under slashes too. When that fails, what was there stays.
bool ZRFxAccess::Store(const ZRString& name, const void* data, std::size_t numBytes,
                       bool overwrite) {
    Forget();
    const auto add = overwrite ? &ZRFxZipArchive::Replace : &ZRFxZipArchive::Add;
    m_denseDocuments.TakeOut(name.Bytes());
    const bool isAdded = (*m_pArchive.*add)(name.Bytes(), data, numBytes, m_compressionLevel);
    m_denseDocuments.TakeIn(name.Bytes());
    if (!isAdded || !overwrite) return isAdded;
    const std::string slashed = WithSlashes(name.Bytes());
    return slashed == name.Bytes() || !m_pArchive->Contains(slashed) || m_pArchive->Remove(slashed);
}

// Once there are more dense documents than are read from any file, further ones are stored
// unpacked, so that the file is long enough for all of them to be read.
bool ZRFxAccess::StoreDocument(const ZRString& name, const std::string& text, bool overwrite) {
    if (!Store(name, text.data(), text.size(), overwrite)) return false;
    if (m_denseDocuments.LengthOf(name.Bytes()) == 0 ||
        m_denseDocuments.Total() <= ZRFxReadBounds::kMostDenseDocuments) {
        return true;
    }
    m_denseDocuments.TakeOut(name.Bytes());
    const bool isReplaced = m_pArchive->Replace(name.Bytes(), text.data(), text.size(), 0);
    m_denseDocuments.TakeIn(name.Bytes());
    return isReplaced;
}

template <typename Item>
bool ZRFxAccess::WriteItems(const ZRString& name, const ZRArray<Item>& data) {
    const std::size_t numBytes = static_cast<std::size_t>(data.GetSize()) * sizeof(Item);
    if constexpr (kHostIsLittleEndian) return WriteDataRaw(name, data.Data(), numBytes, false);
    ZRArray<Item> swapped;
    if (!swapped.Assign(data.Data(), data.GetSize())) return false;
    SwapBytesOf4(swapped.WritableData(), numBytes);
    return WriteDataRaw(name, swapped.Data(), numBytes, false);
}

template <typename Item>
bool ZRFxAccess::ReadItems(const ZRString& name, ZRArray<Item>* data) {
    NVF_ASSERT(data);
    if (!data) return false;
    data->RemoveAll();
    ZRFxZipRawData raw;
    if (!InternalReadDataRaw(name, LogMode::LOG, &raw)) return false;
    if (!kHostIsLittleEndian && sizeof(Item) >= 4) SwapBytesOf4(raw.Buffer(), raw.Length());
    const auto numItems = static_cast<std::int64_t>(raw.Length() / sizeof(Item));
    data->Adopt(raw.Release(), numItems);
    return true;
}

// To be called when entries change.
void ZRFxAccess::Forget() {
    m_mainDocument.Forget();
    m_names.Forget();
}

// Logs the cause as the archive puts it, then the message of the operation.
bool ZRFxAccess::FailWithCause(nvf::LocatedText message, const ZRString& name) {
    m_logger->failBecause(m_pArchive->LastReason(), {"%1", message.where}, m_pArchive->LastError());
    return m_logger->fail(message, name);
}

}  // namespace unstruct
