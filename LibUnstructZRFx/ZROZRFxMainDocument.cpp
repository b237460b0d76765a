#include "ZROZRFxMainDocument.h"

#include <array>
#include <cstdio>
#include <ctime>
#include <utility>

#include "ZROZRFxXml.h"
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

XmlElement childAt(const XmlElement& registry, int index) {
    XmlElement child = registry.firstChildElement();
    while (child.notNull() && index-- > 0) child = child.nextSiblingElement();
    return child;
}

XmlElement childOfId(const XmlElement& registry, int id) {
    XmlElement child = registry.firstChildElement();
    while (child.notNull() &&
           (!child.hasAttribute("ID") || child.getAttributeInt("ID", -1) != id)) {
        child = child.nextSiblingElement();
    }
    return child;
}

int numChildren(const XmlElement& registry) {
    int count = 0;
    for (XmlElement child = registry.firstChildElement(); child.notNull();
         child = child.nextSiblingElement()) {
        ++count;
    }
    return count;
}

template <typename Attributes>
void addRegistryLine(XmlElement registry, const XmlElement& source, const Attributes& attributes,
                     bool replace) {
    XmlElement line;
    if (replace) line = childOfId(registry, source.getAttributeInt("ID", -1));
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
    const XmlElement registry = Root().firstChildElement("Databases");
    if (registry.isNull()) {
        return archiveLogger()->fail("Database root not found in main document");
    }
    addRegistryLine(registry, root, kDatabaseAttributes, replace);
    return true;
}

bool ZRFxMainDocument::RegisterCase(const XmlElement& root, bool replace) {
    const XmlElement registry = Root().firstChildElement("Cases");
    if (registry.isNull()) {
        return archiveLogger()->fail("Could not find case root element in main document");
    }
    addRegistryLine(registry, root, kCaseAttributes, replace);
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
    const XmlElement registry = Root().firstChildElement("Databases");
    if (registry.isNull()) {
        return archiveLogger()->fail("Databases root not found in main document");
    }
    if (count) *count = numChildren(registry);
    return count != nullptr;
}

bool ZRFxMainDocument::GetNumCases(int* count) const {
    NVF_ASSERT(count);
    const XmlElement registry = Root().firstChildElement("Cases");
    if (registry.isNull()) return archiveLogger()->fail("Cases root not found in main document");
    if (count) *count = numChildren(registry);
    return count != nullptr;
}

bool ZRFxMainDocument::GetDatabaseInfo(int index, ZRFxDatabaseInfo* info) const {
    NVF_ASSERT(index >= 0);
    NVF_ASSERT(info);
    if (index < 0 || !info) return false;
    return takeDatabase(childAt(Root().firstChildElement("Databases"), index), info);
}

bool ZRFxMainDocument::GetDatabaseByID(int id, ZRFxDatabaseInfo* info) const {
    NVF_ASSERT(info);
    const XmlElement registry = Root().firstChildElement("Databases");
    if (registry.isNull()) {
        return archiveLogger()->fail("Databases root not found in main document");
    }
    return info && takeDatabase(childOfId(registry, id), info);
}

bool ZRFxMainDocument::GetCaseInfo(int index, ZRFxCaseInfo* info) const {
    NVF_ASSERT(index >= 0);
    NVF_ASSERT(info);
    if (index < 0 || !info) return false;
    return takeCase(childAt(Root().firstChildElement("Cases"), index), info);
}

bool ZRFxMainDocument::GetCaseByID(int id, ZRFxCaseInfo* info) const {
    NVF_ASSERT(info);
    const XmlElement registry = Root().firstChildElement("Cases");
    if (registry.isNull()) return archiveLogger()->fail("Cases root not found in main document");
    return info && takeCase(childOfId(registry, id), info);
}

XmlElement ZRFxMainDocument::Root() const {
    return m_document->getRootElement("ZRF");
}

XmlElement ZRFxMainDocument::FileInfo(const char* name) const {
    return Root().firstChildElement("FileInfo").firstChildElement(name);
}

}  // namespace unstruct
