#include "access/ZRFxMainDocumentEntry.h"

#include "access/ZRFxEntryNames.h"
#include "access/ZROZRFxAccess.h"
#include "documents/ZRFxXml.h"
#include "nvf/Assert.h"
#include "nvf/LogManager.h"

namespace unstruct {

ZRFxMainDocumentEntry::ZRFxMainDocumentEntry(ZRFxAccess& access)
    : m_access(access), m_logger(nvf::archiveLogger()) {}

bool ZRFxMainDocumentEntry::Read(nvf::XmlDocument* doc) {
    NVF_ASSERT(doc);
    if (!doc) return false;
    if (!m_access.InternalReadXmlFile(ZRFxMainDocument::kEntryName, LogMode::LOG, doc)) {
        return m_logger->fail("Error reading main document (ZRF.xml) file.");
    }
    return ZRFxMainDocument(doc).Validate();
}

bool ZRFxMainDocumentEntry::GetVendorInfo(int* vendorId, ZRString* vendorName,
                                          ZRString* exportApplication) {
    if (vendorId) *vendorId = -1;
    if (vendorName) *vendorName = ZRString();
    if (exportApplication) *exportApplication = ZRString();
    if (!Load()) return false;
    m_document->GetVendorInfo(vendorId, vendorName, exportApplication);
    return true;
}

bool ZRFxMainDocumentEntry::SetVendorInfo(const ZRString& exportApplication,
                                          const ZRString& vendorName, int vendorId) {
    const nvf::ref<nvf::XmlDocument> doc = new nvf::XmlDocument;
    if (!m_access.InternalReadXmlFile(ZRFxMainDocument::kEntryName, LogMode::LOG, doc.p())) {
        return m_logger->fail("Main document file (ZRF.xml) is either missing or invalid");
    }
    return ZRFxMainDocument(doc).SetVendorInfo(exportApplication, vendorName, vendorId) &&
           Store(*doc, "Could not overwrite main document with new database info");
}

bool ZRFxMainDocumentEntry::AddDatabase(const nvf::XmlDocument& databaseDoc, bool overwrite) {
    const nvf::ref<nvf::XmlDocument> doc = new nvf::XmlDocument;
    if (!Read(doc.p())) return false;
    const nvf::XmlElement root = databaseDoc.getRootElement("Database");
    if (root.isNull()) return m_logger->fail("<Database> not found in database Xml document.");
    return StoreDocument(root, "Database.xml", databaseDoc, overwrite) &&
           ZRFxMainDocument(doc).RegisterDatabase(root, overwrite) &&
           Store(*doc, "Could not overwrite main document with new database info");
}

bool ZRFxMainDocumentEntry::AddCase(const nvf::XmlDocument& caseDoc, bool overwrite) {
    const nvf::ref<nvf::XmlDocument> doc = new nvf::XmlDocument;
    if (!Read(doc.p())) return false;
    const nvf::XmlElement root = caseDoc.getRootElement("Case");
    if (root.isNull()) return m_logger->fail("<Case> not found in case Xml document.");
    return StoreDocument(root, "Case.xml", caseDoc, overwrite) &&
           ZRFxMainDocument(doc).RegisterCase(root, overwrite) &&
           Store(*doc, "Could not overwrite main document with new case info");
}

bool ZRFxMainDocumentEntry::Load() {
    if (m_document) return true;
    const nvf::ref<nvf::XmlDocument> doc = new nvf::XmlDocument;
    if (!Read(doc.p())) return false;
    m_document.emplace(doc);
    return true;
}

bool ZRFxMainDocumentEntry::StoreDocument(const nvf::XmlElement& root, const char* name,
                                          const nvf::XmlDocument& doc, bool overwrite) {
    return m_access.WriteXmlFile(InFolder(GetAttribute(root, "Folder"), name), doc, overwrite) ||
           m_logger->fail("Error writing Xml file.");
}

bool ZRFxMainDocumentEntry::Store(const nvf::XmlDocument& doc, nvf::LocatedText message) {
    return m_access.WriteXmlFile(ZRFxMainDocument::kEntryName, doc, true) ||
           m_logger->fail(message);
}

}  // namespace unstruct
