#include "access/ZROZRFxAccess.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <set>
#include <string>

#include "ZRByteOrder.h"
#include "container/ZRFxSystem.h"
#include "data/ZROZRFxImageJpeg.h"
#include "documents/ZRFxXml.h"
#include "nvf/Assert.h"
#include "nvf/LogManager.h"
#include "nvf/PropertyXmlSerializer.h"

namespace unstruct {
namespace {

constexpr const char* kExtension = ".zrfx";
constexpr std::size_t kRawImageHeader = 8;

ZRString inFolder(const ZRString& folder, const ZRString& name) {
    return folder + std::string(1, kFolderSeparator) + name;
}

// The same name as archives have it that were packed where folders are separated by slashes.
std::string withSlashes(std::string name) {
    std::replace(name.begin(), name.end(), kFolderSeparator, '/');
    return name;
}

// What of a name lies below a folder; empty when the name does not lie there.
std::string_view belowFolder(std::string_view name, const ZRString& folder) {
    const std::size_t length = folder.Bytes().size();
    if (length == 0) return name;
    if (name.size() <= length || (name[length] != kFolderSeparator && name[length] != '/') ||
        withSlashes(std::string(name.substr(0, length))) != withSlashes(folder.Bytes())) {
        return {};
    }
    return name.substr(length + 1);
}

// What the names of all that lies in a folder begin with.
std::string folderPrefix(const ZRString& folder) {
    return folder.IsEmpty() ? std::string() : folder.Bytes() + kFolderSeparator;
}

std::uint64_t denseLengthOf(const ZRFxZipArchive::EntryInfo& entry) {
    const bool isDense = ZRFxReadBounds::IsDense(entry.nSize, entry.nPackedSize) &&
                         ZRString(entry.sName).Extension().ToLower() == ".xml";
    return isDense ? entry.nSize : 0;
}

bool isRawImage(const ZRString& name) {
    return name.Extension() == ".raw";
}

bool exists(const ZRString& path) {
    struct stat status {};
    return ZRFxSystem::Current().StatusOf(path.CStr(), &status) == 0;
}

bool encodeRaw(const nuo::Image& image, ZRUbyteArray* bytes) {
    const std::size_t numPixelBytes = std::size_t{3} * image.width() * image.height();
    if (!bytes->SetSize(static_cast<std::int64_t>(kRawImageHeader + numPixelBytes))) return false;
    unsigned char* data = bytes->WritableData();
    StoreLittleEndian<std::uint32_t>(data, image.width());
    StoreLittleEndian<std::uint32_t>(data + 4, image.height());
    return numPixelBytes == 0 || image.getAsRgb(data + kRawImageHeader, numPixelBytes);
}

bool decodeRaw(const ZRFxZipRawData& raw, nuo::Image* image) {
    NVF_ASSERT(raw.Length() >= 2);
    if (raw.Length() < kRawImageHeader) return false;
    const std::uint32_t width = LoadLittleEndian<std::uint32_t>(raw.Buffer());
    const std::uint32_t height = LoadLittleEndian<std::uint32_t>(raw.Buffer() + 4);
    const std::uint64_t numPixels = std::uint64_t{width} * height;
    if (numPixels > (raw.Length() - kRawImageHeader) / 3) return false;
    return image->setFromRgb(raw.Buffer() + kRawImageHeader, width, height);
}

}  // namespace

ZRFxAccess::BoundedReading::BoundedReading(ZRFxAccess* access) : m_access(access) {
    if (m_access) m_access->m_bounds.Start(m_access->m_pArchive->Length());
}

ZRFxAccess::BoundedReading::~BoundedReading() {
    if (m_access) m_access->m_bounds.End();
}

ZRFxAccess::ZRFxAccess()
    : m_pArchive(std::make_unique<ZRFxZipArchive>()), m_logger(nvf::archiveLogger()) {
    SetCompression(kDefaultLevel, kDefaultSmartness, kDefaultBufferSize, kDefaultBufferSize);
}

ZRFxAccess::~ZRFxAccess() {
    if (m_pMemFile || !m_pArchive->HasUncommitted()) return;
    m_logger->warn("'%1' was not closed, what was written since the last flush is dropped.",
                   m_sFileName);
}

bool ZRFxAccess::Open(const ZRString& name, ZRZipAccessMode mode) {
    NVF_ASSERT(m_pArchive);
    if (IsOpen()) return m_logger->fail("The archive is open, close it before opening.");
    if (name.IsBlank()) return m_logger->fail("No filename specified.");
    if (mode != ZRZipAccessMode::CREATE && !exists(name)) {
        return m_logger->fail("File not found. '%1'", name);
    }
    m_sFileName = name;
    m_pMemFile = nullptr;
    return TakeOpened(m_pArchive->Open(name.Bytes(), mode), mode);
}

bool ZRFxAccess::Open(ZRFxZipMemFile* memFile, ZRZipAccessMode mode) {
    NVF_ASSERT(m_pArchive);
    NVF_ASSERT(memFile);
    if (!memFile) return false;
    if (IsOpen()) return m_logger->fail("The archive is open, close it before opening.");
    m_sFileName = ZRString();
    m_pMemFile = memFile;
    return TakeOpened(m_pArchive->Open(memFile, mode), mode);
}

bool ZRFxAccess::Commit() {
    if (!IsOpen()) return m_logger->fail("Archive is not open.");
    if (m_readOnly) return m_logger->fail("The file is read only.");
    Forget();
    return m_pArchive->Commit() || FailWithCause("Could not write archive '%1'", m_sFileName);
}

bool ZRFxAccess::Close() {
    if (!IsOpen()) return m_logger->fail("Archive is not open.");
    Forget();
    return m_pArchive->Close() || FailWithCause("Could not write archive '%1'", m_sFileName);
}

bool ZRFxAccess::CloseAs(const ZRString& name) {
    if (!IsOpen()) return m_logger->fail("Archive is not open.");
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

bool ZRFxAccess::IsOpen() const {
    return m_pArchive->IsOpen();
}

bool ZRFxAccess::IsZRFxFile(const ZRString& name) {
    return name.Extension() == kExtension &&
           ZRFxZipArchive::Probe(name.Bytes(), ZRFxMainDocument::kEntryName);
}

void ZRFxAccess::SetCompression(int level, int smartness, std::uint32_t bufferSize,
                                std::uint32_t fileBufferSize) {
    m_compressionLevel = level;
    m_compressionSmartness = smartness;
    m_compressionBufferSize = bufferSize;
    m_fileBufferSize = fileBufferSize;
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
    NVF_ASSERT(doc);
    if (!doc) return false;
    if (!InternalReadXmlFile(ZRFxMainDocument::kEntryName, LogMode::LOG, doc)) {
        return m_logger->fail("Error reading main document (ZRF.xml) file.");
    }
    return ZRFxMainDocument(doc).Validate();
}

bool ZRFxAccess::SetVendorInfo(const ZRString& exportApplication, const ZRString& vendorName,
                               int vendorId) {
    const nvf::ref<nvf::XmlDocument> doc = new nvf::XmlDocument;
    if (!InternalReadXmlFile(ZRFxMainDocument::kEntryName, LogMode::LOG, doc.p())) {
        return m_logger->fail("Main document file (ZRF.xml) is either missing or invalid");
    }
    if (!ZRFxMainDocument(doc).SetVendorInfo(exportApplication, vendorName, vendorId)) return false;
    return WriteXmlFile(ZRFxMainDocument::kEntryName, *doc, true) ||
           m_logger->fail("Could not overwrite main document with new database info");
}

bool ZRFxAccess::GetVendorInfo(int* vendorId, ZRString* vendorName, ZRString* exportApplication) {
    if (vendorId) *vendorId = -1;
    if (vendorName) *vendorName = ZRString();
    if (exportApplication) *exportApplication = ZRString();
    if (!LoadMainDocument()) return false;
    m_mainDocument->GetVendorInfo(vendorId, vendorName, exportApplication);
    return true;
}

bool ZRFxAccess::GetExportDateTime(ZRFxDateTime* dateTime) {
    return LoadMainDocument() && m_mainDocument->GetExportDateTime(dateTime);
}

bool ZRFxAccess::GetDisplayModelOnly(bool* displayModelOnly) {
    return LoadMainDocument() && m_mainDocument->GetDisplayModelOnly(displayModelOnly);
}

bool ZRFxAccess::AddDatabase(const nvf::XmlDocument& databaseDoc, bool overwrite) {
    const nvf::ref<nvf::XmlDocument> doc = new nvf::XmlDocument;
    if (!ReadAndValidateMainDocumentFile(doc.p())) return false;
    const nvf::XmlElement root = databaseDoc.getRootElement("Database");
    if (root.isNull()) return m_logger->fail("<Database> not found in database Xml document.");
    if (!WriteXmlFile(inFolder(GetAttribute(root, "Folder"), "Database.xml"), databaseDoc,
                      overwrite)) {
        return m_logger->fail("Error writing Xml file.");
    }
    if (!ZRFxMainDocument(doc).RegisterDatabase(root, overwrite)) return false;
    return WriteXmlFile(ZRFxMainDocument::kEntryName, *doc, true) ||
           m_logger->fail("Could not overwrite main document with new database info");
}

bool ZRFxAccess::AddCase(const nvf::XmlDocument& caseDoc, bool overwrite) {
    const nvf::ref<nvf::XmlDocument> doc = new nvf::XmlDocument;
    if (!ReadAndValidateMainDocumentFile(doc.p())) return false;
    const nvf::XmlElement root = caseDoc.getRootElement("Case");
    if (root.isNull()) return m_logger->fail("<Case> not found in case Xml document.");
    if (!WriteXmlFile(inFolder(GetAttribute(root, "Folder"), "Case.xml"), caseDoc, overwrite)) {
        return m_logger->fail("Error writing Xml file.");
    }
    if (!ZRFxMainDocument(doc).RegisterCase(root, overwrite)) return false;
    return WriteXmlFile(ZRFxMainDocument::kEntryName, *doc, true) ||
           m_logger->fail("Could not overwrite main document with new case info");
}

bool ZRFxAccess::GetNumDatabases(int* count) {
    return LoadMainDocument() && m_mainDocument->GetNumDatabases(count);
}

bool ZRFxAccess::GetNumCases(int* count) {
    return LoadMainDocument() && m_mainDocument->GetNumCases(count);
}

bool ZRFxAccess::GetDatabaseInfo(int index, ZRFxDatabaseInfo* info) {
    return LoadMainDocument() && m_mainDocument->GetDatabaseInfo(index, info);
}

bool ZRFxAccess::GetDatabaseByID(int id, ZRFxDatabaseInfo* info) {
    return LoadMainDocument() && m_mainDocument->GetDatabaseByID(id, info);
}

bool ZRFxAccess::GetCaseInfo(int index, ZRFxCaseInfo* info) {
    return LoadMainDocument() && m_mainDocument->GetCaseInfo(index, info);
}

bool ZRFxAccess::GetCaseByID(int id, ZRFxCaseInfo* info) {
    return LoadMainDocument() && m_mainDocument->GetCaseByID(id, info);
}

ZRString ZRFxAccess::CaseEntry(const ZRString& folder, const ZRString& file) const {
    const ZRString entry = inFolder(folder, file);
    return !Contains(entry) && Contains(file) ? file : entry;
}

bool ZRFxAccess::GetCaseSnapshot(int caseId, nuo::Image* image) {
    ZRString fileName;
    bool isGiven = false;
    if (!GetCaseFile(caseId, "Snapshot", &fileName, &isGiven)) return false;
    if (!isGiven) return m_logger->fail("Cannot find snapshot (case ID %1)", caseId);
    return ReadImage(fileName, image) ||
           m_logger->fail("Error reading snapshot (case ID %1)", caseId);
}

bool ZRFxAccess::GetCaseDescription(int caseId, ZRString* text) {
    ZRString fileName;
    bool isGiven = false;
    if (!GetCaseFile(caseId, "Description", &fileName, &isGiven)) return false;
    if (!isGiven) return m_logger->fail("Cannot find description (case ID %1)", caseId);
    return ReadDataString(fileName, text) ||
           m_logger->fail("Error reading description(case ID %1)", caseId);
}

bool ZRFxAccess::WriteXmlFile(const ZRString& name, const nvf::XmlDocument& doc, bool overwrite) {
    if (!CheckDocumentWritable(name)) return false;
    std::string entry;
    const bool isThere = FindEntry(name, &entry);
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
        return m_logger->fail("Xml documents are too large for a file of its length, '%1' in '%2'",
                              name, m_sFileName);
    }
    nvf::String cause;
    if (doc->parse({reinterpret_cast<const char*>(raw.Buffer()), raw.Length()}, &cause))
        return true;
    m_logger->fail("'%1' in '%2': %3", name, m_sFileName, cause);
    return m_logger->fail("Error parsing Xml contents");
}

bool ZRFxAccess::MakeDocumentText(const ZRString& name, const nvf::XmlDocument& doc,
                                  std::string* text) {
    if (doc.isIncomplete()) return m_logger->fail("Out of memory for Xml file '%1'", name);
    bool isReplaced = false;
    *text = doc.toUtf8(&isReplaced);
    if (isReplaced) m_logger->warn("Characters that Xml cannot hold become U+FFFD in '%1'", name);
    return true;
}

bool ZRFxAccess::GrowDocument(const ZRString& name, std::uint64_t kept, std::string_view tail,
                              std::uint64_t* revision) {
    if (!CheckDocumentWritable(name)) return false;
    Forget();
    const std::string slashed = withSlashes(name.Bytes());
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
    if (!FindEntry(name, &entry) || !m_pArchive->ReadTail(entry, from, tail)) {
        return FailWithCause("Unable to read raw data from '%1'.", name);
    }
    return true;
}

bool ZRFxAccess::WriteProperties(const ZRString& fileName,
                                 const nvf::PropertySetCollection& collection) {
    if (fileName.IsBlank()) return m_logger->fail("No file name.");
    if (nvf::PropertyXmlSerializer::nestsTooDeep(collection)) {
        m_logger->fail("'%1' in '%2': arrays nest deeper than %3 levels", fileName, m_sFileName,
                       nvf::PropertyXmlSerializer::kDeepestArray);
        return m_logger->fail("Unable to write properties Xml to archive");
    }
    nvf::XmlDocument doc;
    nvf::XmlElement root = doc.createRootElement("ZRFxProperties", kNamespaceUri);
    nvf::PropertyXmlSerializer::toXml(collection, &root);
    return WriteXmlFile(fileName, doc, true) ||
           m_logger->fail("Unable to write properties Xml to archive");
}

bool ZRFxAccess::ReadProperties(const ZRString& fileName, nvf::PropertySetCollection* collection) {
    NVF_ASSERT(collection);
    if (!collection) return false;
    nvf::XmlDocument doc;
    if (!InternalReadXmlFile(fileName, LogMode::LOG, &doc)) {
        return m_logger->fail("Unable to read properties Xml from archive");
    }
    const nvf::XmlElement root = doc.getRootElement("ZRFxProperties");
    if (root.isNull()) return m_logger->fail("No valid root element found in Xml");
    const nvf::XmlElement sets = root.firstChildElement("PropertySetCollection");
    if (sets.isNull()) return m_logger->fail("No PropertySetCollection element found in Xml");
    nvf::PropertyXmlSerializer::toPropertySetCollection(sets, collection);
    return true;
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
    if (!CheckReadable(name, logMode) || !FindEntry(name, &entry)) {
        if (logMode == LogMode::SILENT) return false;
        return m_logger->fail("Unable to read raw data from '%1', file not found.", name);
    }
    if (!m_pArchive->Read(entry, raw)) {
        return FailWithCause("Unable to read raw data from '%1'.", name);
    }
    if (m_bounds.TakeData(raw->Length())) return true;
    raw->Clear();
    return m_logger->fail("Too much data for a file of its length, '%1' in '%2'", name,
                          m_sFileName);
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
    ZRUbyteArray bytes;
    if (isRawImage(name)) {
        if (!encodeRaw(image, &bytes))
            return m_logger->fail("Error writing snapshot image to ZRFx");
    } else if (!ZRFxImageJpeg::Encode(image, &bytes)) {
        return m_logger->fail("Error encoding JPEG image");
    }
    return WriteDataRaw(name, bytes.Data(), static_cast<std::size_t>(bytes.GetSize()), true) ||
           m_logger->fail("Error writing snapshot image to ZRFx");
}

bool ZRFxAccess::ReadImage(const ZRString& name, nuo::Image* image) {
    NVF_ASSERT(image);
    if (!image) return false;
    ZRFxZipRawData raw;
    if (!InternalReadDataRaw(name, LogMode::LOG, &raw) || raw.Length() == 0) {
        return m_logger->fail("Error reading JPEG image from archive");
    }
    const bool isDecoded = isRawImage(name)
                               ? decodeRaw(raw, image)
                               : ZRFxImageJpeg::Decode(raw.Buffer(), raw.Length(), image);
    return isDecoded || m_logger->fail("Error decoding JPEG image '%1'", name);
}

std::int32_t ZRFxAccess::InternalFindFile(const ZRString& name, LogMode logMode) {
    std::string entry;
    if (!CheckReadable(name, logMode)) return -1;
    if (FindEntry(name, &entry)) return static_cast<std::int32_t>(m_pArchive->IndexOf(entry));
    if (logMode == LogMode::LOG) m_logger->fail("There is no file '%1' in the archive.", name);
    return -1;
}

bool ZRFxAccess::Contains(const ZRString& name) const {
    std::string entry;
    return IsOpen() && !name.IsBlank() && FindEntry(name, &entry);
}

bool ZRFxAccess::RemoveFile(const ZRString& name) {
    if (!CheckWritable(name)) return false;
    Forget();
    for (std::string entry; FindEntry(name, &entry);) {
        if (m_denseDocuments) *m_denseDocuments -= DenseLength(entry);
        if (!m_pArchive->Remove(entry)) {
            return FailWithCause("Could not remove file '%1' from archive", name);
        }
    }
    return true;
}

bool ZRFxAccess::FindFiles(const ZRString& folder, bool descend, ZRStringArray* names) {
    return ForEachName(folderPrefix(folder), names, [&](const std::string& name) {
        const std::string_view below = belowFolder(name, folder);
        if (below.empty() || below.ends_with(kFolderSeparator) || below.ends_with('/')) return;
        if (!descend && below.find_first_of("\\/") != std::string_view::npos) return;
        names->push_back(name);
    });
}

bool ZRFxAccess::FindFilesOfBase(const ZRString& base, ZRStringArray* names) {
    return ForEachName(base.Bytes(), names, [&](const std::string& name) {
        const char next = name.c_str()[base.Bytes().size()];
        if (next == '.' || next == '-') names->push_back(name);
    });
}

bool ZRFxAccess::FindSubFolders(const ZRString& folder, bool descend, ZRStringArray* names) {
    std::set<std::string> found;
    return ForEachName(folderPrefix(folder), names, [&](const std::string& name) {
        const std::size_t below = name.size() - belowFolder(name, folder).size();
        std::size_t depth = 0;
        for (std::size_t at = name.find_first_of("\\/", below); at != std::string::npos;
             at = name.find_first_of("\\/", at + 1)) {
            const std::string subFolder = name.substr(0, at);
            if (found.insert(subFolder).second) names->push_back(subFolder);
            if (!descend || ++depth == kMostFolders) return;
        }
    });
}

bool ZRFxAccess::GetArchiveInfo(ZRFxArchiveInfo* info) {
    NVF_ASSERT(info);
    if (!info) return false;
    if (!IsOpen()) return m_logger->fail("Archive is not open.");
    *info = ZRFxArchiveInfo();
    for (std::size_t i = 0; i < m_pArchive->EntryCount(); ++i) {
        const ZRFxZipArchive::EntryInfo entry = EntryAt(i);
        const ZRString extension = ZRString(entry.sName).Extension().ToUpper();
        info->compressed = info->compressed || entry.nPackedSize < entry.nSize;
        info->encrypted = info->encrypted || entry.bEncrypted;
        info->binary = info->binary || extension == ".DAT";
        info->text = info->text ||
                     (extension == ".TXT" && belowFolder(entry.sName, kUserDataFolder).empty());
        if (info->compressed && info->encrypted && info->binary && info->text) break;
    }
    return true;
}

bool ZRFxAccess::TakeOpened(bool isOpened, ZRZipAccessMode mode) {
    if (!isOpened || !IsOpen()) {
        return FailWithCause("File still closed after opening it.", m_sFileName);
    }
    m_readOnly = mode == ZRZipAccessMode::READ_ONLY;
    m_denseDocuments.reset();
    return true;
}

bool ZRFxAccess::CheckWritable(const ZRString& name) {
    if (!IsOpen()) return m_logger->fail("Archive is not open.");
    if (m_readOnly) return m_logger->fail("The file is read only.");
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

// Replacing takes the place of the entry under slashes too, and keeps what was there when it fails.
bool ZRFxAccess::Store(const ZRString& name, const void* data, std::size_t numBytes,
                       bool overwrite) {
    Forget();
    const std::uint64_t replaced = m_denseDocuments ? DenseLength(name) : 0;
    const auto add = overwrite ? &ZRFxZipArchive::Replace : &ZRFxZipArchive::Add;
    if (!(*m_pArchive.*add)(name.Bytes(), data, numBytes, m_compressionLevel)) return false;
    if (m_denseDocuments) *m_denseDocuments += DenseLength(name) - replaced;
    if (!overwrite) return true;
    const std::string slashed = withSlashes(name.Bytes());
    return slashed == name.Bytes() || !m_pArchive->Contains(slashed) || m_pArchive->Remove(slashed);
}

// Where there are more dense documents than are read from any file, the next ones are stored
// unpacked, so that the file has the length that reading them asks for.
bool ZRFxAccess::StoreDocument(const ZRString& name, const std::string& text, bool overwrite) {
    if (!Store(name, text.data(), text.size(), overwrite)) return false;
    if (DenseLength(name) == 0 || DenseDocuments() <= ZRFxReadBounds::kMostDenseDocuments) {
        return true;
    }
    if (!m_pArchive->Replace(name.Bytes(), text.data(), text.size(), 0)) return false;
    *m_denseDocuments -= text.size();
    return true;
}

// The length of a dense document; 0 of any other entry.
std::uint64_t ZRFxAccess::DenseLength(const ZRString& name) {
    ZRFxZipArchive::EntryInfo info;
    return m_pArchive->Find(name.Bytes(), &info) ? denseLengthOf(info) : 0;
}

// Counted once for each opening, when there is the first one.
std::uint64_t ZRFxAccess::DenseDocuments() {
    if (m_denseDocuments) return *m_denseDocuments;
    std::uint64_t length = 0;
    for (std::size_t i = 0; i < m_pArchive->EntryCount(); ++i) length += denseLengthOf(EntryAt(i));
    return m_denseDocuments.emplace(length);
}

bool ZRFxAccess::LoadMainDocument() {
    if (m_mainDocument) return true;
    const nvf::ref<nvf::XmlDocument> doc = new nvf::XmlDocument;
    if (!ReadAndValidateMainDocumentFile(doc.p())) return false;
    m_mainDocument.emplace(doc);
    return true;
}

// The entry that an element of a case's document names.
bool ZRFxAccess::GetCaseFile(int caseId, const char* element, ZRString* fileName, bool* isGiven) {
    ZRFxCaseInfo info;
    if (!GetCaseByID(caseId, &info)) {
        return m_logger->fail("The specified case does not exist (case ID %1)", caseId);
    }
    nvf::XmlDocument doc;
    if (!InternalReadXmlFile(info.path, LogMode::LOG, &doc)) {
        return m_logger->fail("Cannot read Case.xml (case ID %1)", caseId);
    }
    const nvf::XmlElement root = doc.getRootElement("Case");
    if (root.isNull()) return m_logger->fail("Invalid Case.xml file (case ID %1)", caseId);
    const nvf::XmlElement file = root.firstChildElement(element);
    *isGiven = file.notNull();
    *fileName = CaseEntry(info.folder, GetText(file));
    return true;
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

// Calls takeName, in the order of the archive, with the names that begin with a text, whatever
// their separators are.
template <typename TakeName>
bool ZRFxAccess::ForEachName(const std::string& prefix, ZRStringArray* names, TakeName takeName) {
    NVF_ASSERT(names);
    if (!names) return false;
    if (!IsOpen()) return m_logger->fail("Archive is not open.");
    names->clear();
    if (m_sortedNames.empty()) SortNames();
    const std::string wanted = withSlashes(prefix);
    std::vector<std::size_t> entries;
    for (auto at = std::lower_bound(m_sortedNames.begin(), m_sortedNames.end(),
                                    std::pair(wanted, std::size_t{0}));
         at != m_sortedNames.end() && at->first.starts_with(wanted); ++at) {
        entries.push_back(at->second);
    }
    std::sort(entries.begin(), entries.end());
    for (const std::size_t entry : entries) takeName(EntryAt(entry).sName);
    return true;
}

// The archive describes an entry as empty when there is no memory; what is asked about entries must
// not miss any.
ZRFxZipArchive::EntryInfo ZRFxAccess::EntryAt(std::size_t index) {
    ZRFxZipArchive::EntryInfo entry = m_pArchive->EntryAt(index);
    if (entry.sName.empty() && !m_pArchive->Contains(entry.sName)) throw std::bad_alloc();
    return entry;
}

void ZRFxAccess::SortNames() {
    decltype(m_sortedNames) names;
    for (std::size_t i = 0; i < m_pArchive->EntryCount(); ++i) {
        names.emplace_back(withSlashes(EntryAt(i).sName), i);
    }
    std::sort(names.begin(), names.end());
    m_sortedNames.swap(names);
}

// What was found holds as long as the entries do.
void ZRFxAccess::Forget() {
    m_mainDocument.reset();
    m_sortedNames.clear();
}

// Gives the name that the archive has the entry under, with backslashes or with slashes.
bool ZRFxAccess::FindEntry(const ZRString& name, std::string* entry) const {
    *entry = name.Bytes();
    if (m_pArchive->Contains(*entry)) return true;
    if (!m_pArchive->HasSlashes()) return false;
    *entry = withSlashes(name.Bytes());
    return m_pArchive->Contains(*entry);
}

// The archive tells why in its own words, before the message of the operation.
bool ZRFxAccess::FailWithCause(nvf::LocatedText message, const ZRString& name) {
    m_logger->fail({"%1", message.where}, m_pArchive->LastError());
    return m_logger->fail(message, name);
}

}  // namespace unstruct
