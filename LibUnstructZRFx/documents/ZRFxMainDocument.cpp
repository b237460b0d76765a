#include "documents/ZRFxMainDocument.h"

#include <array>
#include <cstdio>
#include <ctime>
#include <utility>

#include "documents/ZRFxXml.h"
#include "nvf/Assert.h"
#include "nvf/LogManager.h"

namespace unstruct {
namespace {

using nvf::archiveLogger;
using nvf::XmlElement;

struct AttributeDefault {
    const char* name;
    const char* value;
};

constexpr std::array kDatabaseAttributes{AttributeDefault{"ID", ""}, AttributeDefault{"Name", ""},
                                         AttributeDefault{"Folder", ""}};
constexpr std::array kCaseAttributes{
    AttributeDefault{"ID", ""}, AttributeDefault{"Name", ""}, AttributeDefault{"DatabaseID", ""},
    AttributeDefault{"Folder", ""}, AttributeDefault{"FullDatabase", "False"}};

std::string formatted(const char* format, int a, int b, int c) {
    char text[64];
    std::snprintf(text, sizeof(text), format, a, b, c);
    return text;
}

void addFileInfo(XmlElement root, const ZRString& exportApplication, const ZRString& vendorName,
                 int vendorId, const ZRFxDateTime& when) {
    XmlElement info = root.addChildElement("FileInfo");
    info.addChildElementUtf8("ExportDate",
                             formatted("%.4d-%.2d-%.2d", when.year, when.month, when.day));
    info.addChildElementUtf8("ExportTime",
                             formatted("%.2d:%.2d:%.2d", when.hour, when.minute, when.second));
    info.addChildElementUtf8("ExportApplication", exportApplication.Bytes());
    info.addChildElementUtf8("VendorName", vendorName.Bytes());
    info.addChildElementUtf8("VendorID", std::to_string(vendorId));
    info.addChildElement("ExpressSignature");
    info.addChildElement("DigitalSignature");
}

// Writes what a line tells, into the line given or a new one.
template <typename Attributes>
void writeLine(XmlElement registry, XmlElement line, const XmlElement& source,
               const Attributes& attributes) {
    if (line.isNull()) line = registry.addChildElement(std::string(source.nameUtf8()).c_str());
    for (const auto& [name, value] : attributes) {
        line.setAttributeUtf8(name, source.getAttributeUtf8(name, value));
    }
}

bool takeDatabase(const XmlElement& line, ZRFxDatabaseInfo* info) {
    if (line.isNull()) return false;
    const ZRString folder = GetAttribute(line, "Folder");
    *info = {line.getAttributeInt("ID", -1), GetAttribute(line, "Name"), folder,
             folder + std::string(1, kFolderSeparator) + "Database.xml"};
    return true;
}

bool takeCase(const XmlElement& line, ZRFxCaseInfo* info) {
    if (line.isNull()) return false;
    const ZRString folder = GetAttribute(line, "Folder");
    *info = {line.getAttributeInt("ID", -1),
             GetAttribute(line, "Name"),
             folder,
             line.getAttributeInt("DatabaseID", -1),
             GetAttribute(line, "FullDatabase") == "true",
             folder + std::string(1, kFolderSeparator) + "Case.xml"};
    return true;
}

}  // namespace

ZRFxDateTime ZRFxDateTime::Now() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    return {local.tm_year + 1900,
            local.tm_mon + 1,
            local.tm_mday,
            local.tm_hour,
            local.tm_min,
            local.tm_sec,
            0};
}

ZRFxMainDocument::ZRFxMainDocument(nvf::ref<nvf::XmlDocument> document)
    : m_document(std::move(document)) {
    NVF_ASSERT(m_document.notNull());
    if (m_document.isNull()) m_document = new nvf::XmlDocument;
}

nvf::ref<nvf::XmlDocument> ZRFxMainDocument::Create(const ZRString& exportApplication,
                                                    const ZRString& vendorName, int vendorId,
                                                    const ZRFxDateTime* dateTime) {
    nvf::ref<nvf::XmlDocument> document = new nvf::XmlDocument;
    XmlElement root = document->createRootElement("ZRF", kNamespaceUri);
    addFileInfo(root, exportApplication, vendorName, vendorId,
                dateTime ? *dateTime : ZRFxDateTime::Now());
    root.addChildElement("Cases");
    root.addChildElement("Databases");
    return document;
}

bool ZRFxMainDocument::Validate() const {
    if (Root().notNull()) return true;
    return archiveLogger()->fail("Error validating main document file, <ZRF> missing");
}

bool ZRFxMainDocument::SetVendorInfo(const ZRString& exportApplication, const ZRString& vendorName,
                                     int vendorId) {
    if (Root().isNull()) {
        return archiveLogger()->fail("Error reading main document file, <ZRF> missing");
    }
    if (Root().firstChildElement("FileInfo").isNull()) {
        return archiveLogger()->fail("Error reading main document file, <FileInfo> missing");
    }
    XmlElement id = FileInfo("VendorID");
    if (id.isNull()) {
        return archiveLogger()->fail("Error reading main document file, <VendorID> missing");
    }
    XmlElement name = FileInfo("VendorName");
    if (name.isNull()) {
        return archiveLogger()->fail("Error reading main document file, <VendorName> missing");
    }
    XmlElement application = FileInfo("ExportApplication");
    if (application.isNull()) {
        return archiveLogger()->fail(
            "Error reading main document file, <ExportApplication> missing");
    }
    id.setTextUtf8(std::to_string(vendorId));
    name.setTextUtf8(vendorName.Bytes());
    application.setTextUtf8(exportApplication.Bytes());
    return true;
}

bool ZRFxMainDocument::RegisterDatabase(const XmlElement& root, bool replace) {
    const Registry& registry = Databases();
    if (registry.element.isNull()) {
        return archiveLogger()->fail("Database root not found in main document");
    }
    const int id = root.getAttributeInt("ID", -1);
    writeLine(registry.element, replace ? registry.OfID(id) : XmlElement(), root,
              kDatabaseAttributes);
    m_databases.reset();
    return true;
}

bool ZRFxMainDocument::RegisterCase(const XmlElement& root, bool replace) {
    const Registry& registry = Cases();
    if (registry.element.isNull()) {
        return archiveLogger()->fail("Could not find case root element in main document");
    }
    const int id = root.getAttributeInt("ID", -1);
    writeLine(registry.element, replace ? registry.OfID(id) : XmlElement(), root, kCaseAttributes);
    m_cases.reset();
    return true;
}

void ZRFxMainDocument::GetVendorInfo(int* vendorId, ZRString* vendorName,
                                     ZRString* exportApplication) const {
    if (vendorId) {
        bool isNumber = false;
        const int id = FileInfo("VendorID").valueText().toInt(&isNumber);
        *vendorId = isNumber ? id : -1;
    }
    if (vendorName) *vendorName = GetText(FileInfo("VendorName"));
    if (exportApplication) *exportApplication = GetText(FileInfo("ExportApplication"));
}

bool ZRFxMainDocument::GetExportDateTime(ZRFxDateTime* dateTime) const {
    NVF_ASSERT(dateTime);
    if (!dateTime) return false;
    ZRFxDateTime found;
    const std::string date = FileInfo("ExportDate").textUtf8();
    const std::string time = FileInfo("ExportTime").textUtf8();
    if (std::sscanf(date.c_str(), "%6d-%6d-%6d", &found.year, &found.month, &found.day) != 3 ||
        std::sscanf(time.c_str(), "%6d:%6d:%6d", &found.hour, &found.minute, &found.second) != 3) {
        return false;
    }
    *dateTime = found;
    return true;
}

bool ZRFxMainDocument::GetDisplayModelOnly(bool* displayModelOnly) const {
    NVF_ASSERT(displayModelOnly);
    if (!displayModelOnly) return false;
    const XmlElement exportType = FileInfo("ExportType");
    *displayModelOnly = GetText(exportType) == "DisplayModelOnly";
    return exportType.notNull();
}

bool ZRFxMainDocument::GetNumDatabases(int* count) const {
    NVF_ASSERT(count);
    if (Databases().element.isNull()) {
        return archiveLogger()->fail("Databases root not found in main document");
    }
    if (count) *count = static_cast<int>(Databases().lines.size());
    return count != nullptr;
}

bool ZRFxMainDocument::GetNumCases(int* count) const {
    NVF_ASSERT(count);
    if (Cases().element.isNull()) {
        return archiveLogger()->fail("Cases root not found in main document");
    }
    if (count) *count = static_cast<int>(Cases().lines.size());
    return count != nullptr;
}

bool ZRFxMainDocument::GetDatabaseInfo(int index, ZRFxDatabaseInfo* info) const {
    NVF_ASSERT(index >= 0);
    NVF_ASSERT(info);
    return info && takeDatabase(Databases().At(index), info);
}

bool ZRFxMainDocument::GetDatabaseByID(int id, ZRFxDatabaseInfo* info) const {
    NVF_ASSERT(info);
    if (Databases().element.isNull()) {
        return archiveLogger()->fail("Databases root not found in main document");
    }
    return info && takeDatabase(Databases().OfID(id), info);
}

bool ZRFxMainDocument::GetCaseInfo(int index, ZRFxCaseInfo* info) const {
    NVF_ASSERT(index >= 0);
    NVF_ASSERT(info);
    return info && takeCase(Cases().At(index), info);
}

bool ZRFxMainDocument::GetCaseByID(int id, ZRFxCaseInfo* info) const {
    NVF_ASSERT(info);
    if (Cases().element.isNull()) {
        return archiveLogger()->fail("Cases root not found in main document");
    }
    return info && takeCase(Cases().OfID(id), info);
}

XmlElement ZRFxMainDocument::Registry::At(int index) const {
    const bool isThere = index >= 0 && static_cast<std::size_t>(index) < lines.size();
    return isThere ? lines[static_cast<std::size_t>(index)] : XmlElement();
}

XmlElement ZRFxMainDocument::Registry::OfID(int id) const {
    const auto line = firstOfID.find(id);
    return line == firstOfID.end() ? XmlElement() : line->second;
}

XmlElement ZRFxMainDocument::Root() const {
    return m_document->getRootElement("ZRF");
}

XmlElement ZRFxMainDocument::FileInfo(const char* name) const {
    return Root().firstChildElement("FileInfo").firstChildElement(name);
}

// A line without an id is none of any id.
const ZRFxMainDocument::Registry& ZRFxMainDocument::RegistryOf(
    const char* name, std::optional<Registry>* found) const {
    if (*found) return **found;
    Registry registry;
    registry.element = Root().firstChildElement(name);
    for (XmlElement line = registry.element.firstChildElement(); line.notNull();
         line = line.nextSiblingElement()) {
        registry.lines.push_back(line);
        if (!line.hasAttribute("ID")) continue;
        registry.firstOfID.try_emplace(line.getAttributeInt("ID", -1), line);
    }
    return found->emplace(std::move(registry));
}

}  // namespace unstruct
