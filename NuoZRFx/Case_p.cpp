#include "Case_p.h"

#include <string>

#include "Convert_p.h"
#include "Log_p.h"
#include "documents/ZRFxXml.h"
#include "nuo/PropertyConvert.h"

namespace nuo::zrfx {
namespace {

using unstruct::GetText;
using unstruct::SetAttribute;
using unstruct::ZRString;
using unstruct::ZRStringArray;

constexpr const char* kDescriptionName = "Description.html";
constexpr const char* kSnapshotName = "Snapshot.jpeg";
constexpr const char* kPropertiesName = "ZRFxProperties.xml";
constexpr const char* kTexturesFolder = "Textures";

ZRString inFolder(const ZRString& folder, const ZRString& name) {
    return folder + std::string(1, unstruct::kFolderSeparator) + name;
}

// Another case may have the folder that is called by this id.
ZRString freeFolderFor(int caseId, const unstruct::ZRFxAccess& access) {
    ZRString folder = "Case" + std::to_string(caseId);
    while (access.Contains(inFolder(folder, "Case.xml"))) folder = folder + "_";
    return folder;
}

// The child element that names a file, added when there is none.
void setFileElement(nvf::XmlElement root, const char* name, const ZRString& file) {
    nvf::XmlElement element = root.firstChildElement(name);
    if (element.isNull()) element = root.addChildElement(name);
    element.setTextUtf8(file.Bytes());
}

}  // namespace

bool CasePrivate::createDocument() {
    if (m_id < 0) return fail("Case id %1 is invalid.", m_id);
    if (m_caseDocument) return fail("Case document already created");
    nvf::ref<nvf::XmlDocument> document = new nvf::XmlDocument;
    nvf::XmlElement root = document->createRootElement("Case", unstruct::kNamespaceUri);
    root.setAttributeInt("ID", m_id);
    SetAttribute(root, "Name", ZRConvert::toZRString(m_name));
    root.setAttributeInt("DatabaseID", m_databaseId);
    SetAttribute(root, "Folder", freeFolderFor(m_id, *m_access));
    if (document->isIncomplete()) return fail("Failed to create case document");
    m_caseDocument = document;
    m_isDocumentModified = true;
    return true;
}

unstruct::ZRFxAccess* CasePrivate::openAccess(const char* operation) const {
    if (!m_access) refuse(nvf::Reason::NOT_OPEN, "The file of the case is closed.");
    nvf::requireThat("m_access", m_access != nullptr, "%1: the file of the case is closed",
                     operation);
    return m_access;
}

bool CasePrivate::read(int index) {
    unstruct::ZRFxCaseInfo info;
    if (!m_access->GetCaseInfo(index, &info)) {
        return fail("Could not find case at index %1.", index);
    }
    const nvf::ref<nvf::XmlDocument> document = new nvf::XmlDocument;
    if (!m_access->InternalReadXmlFile(info.path, unstruct::LogMode::LOG, document.p())) {
        return fail("Could not extract case document for case at index %1.", index);
    }
    nvf::XmlElement root = document->getRootElement("Case");
    if (root.isNull()) return fail("Invalid Case.xml file.");
    if (unstruct::GetAttribute(root, "Folder").IsBlank()) {
        SetAttribute(root, "Folder", info.folder);
    }
    m_caseDocument = document;
    m_id = info.id;
    m_name = ZRConvert::toStr(info.name);
    m_databaseId = info.databaseId;
    m_derivedResultsDisabled = !info.fullDatabase;
    const ZRString descriptionFile = GetText(root.firstChildElement("Description"));
    ZRString description;
    if (!descriptionFile.IsBlank() &&
        !m_access->ReadDataString(m_access->CaseEntry(folder(), descriptionFile), &description)) {
        return fail("Could not read case description specified in Case.xml.");
    }
    m_description = ZRConvert::toStr(description);
    return readProperties();
}

// Every change of a case is one of its document or of its properties.
bool CasePrivate::refresh(int index, const unstruct::ZRFxArchiveChanges& changes) {
    m_textureEntries.clear();
    const auto isOwn = [&](const auto& change) {
        const std::string& entry = change.first;
        const std::size_t length = folder().Bytes().size();
        return ZRString(entry).StartsWith(folder().Bytes()) &&
               (entry[length] == unstruct::kFolderSeparator || entry[length] == '/');
    };
    if (!changes.bReplaced && std::none_of(changes.kept.begin(), changes.kept.end(), isOwn)) {
        return true;
    }
    m_snapshot.reset();
    m_image = Image();
    return read(index);
}

bool CasePrivate::writeDelayed() {
    if (!m_isDocumentModified && !m_isSnapshotModified && !m_isPropertiesModified) return true;
    if (write()) return true;
    return m_isReadFromFile ? fail("Error writing case.") : fail("Eror writing case.");
}

ZRString CasePrivate::folder() const {
    const nvf::XmlElement root =
        m_caseDocument ? m_caseDocument->getRootElement("Case") : nvf::XmlElement();
    return unstruct::GetAttribute(root, "Folder");
}

ZRString CasePrivate::entryName(const ZRString& name) const {
    return inFolder(folder(), name);
}

const ZRStringArray& CasePrivate::textureEntries() {
    unstruct::ZRFxAccess* const access = openAccess("textures");
    if (access && access->IsReadOnly() && !m_textureEntries.empty()) return m_textureEntries;
    ZRStringArray found;
    if (access) access->FindFiles(entryName(kTexturesFolder), false, &found);
    m_textureEntries.swap(found);
    return m_textureEntries;
}

// A case without a properties file has none.
bool CasePrivate::readProperties() {
    const ZRString entry = entryName(kPropertiesName);
    m_properties = new PropertySetCollection;
    if (!m_access->Contains(entry)) return m_properties->internal_isComplete();
    nvf::PropertySetCollection collection;
    if (!m_access->ReadProperties(entry, &collection)) return false;
    for (std::size_t i = 0; i < collection.count(); ++i) {
        m_properties->addPropertySet(
            PropertyConvert::toPropertySet(*collection.propertySet(i)).p());
    }
    return m_properties->internal_isComplete();
}

bool CasePrivate::write() {
    if (!m_access) return false;
    if (m_caseDocument.isNull()) {
        return fail("Case document did not exist, call create() before if using delayed writing.");
    }
    const nvf::ref<nvf::XmlDocument> before = m_caseDocument;
    const nvf::ref<nvf::XmlDocument> changed = new nvf::XmlDocument;
    if (!changed->copyFrom(*before)) return fail("Out of memory for the case document.");
    m_caseDocument = changed;
    const bool isWritten = guarded([&] { return writeChanged(); });
    if (!isWritten) m_caseDocument = before;
    return isWritten;
}

bool CasePrivate::writeChanged() {
    nvf::XmlElement root = m_caseDocument->getRootElement("Case");
    if (root.isNull()) return fail("Could not find root element for case.");
    const ZRString name =
        m_name.isEmpty() ? ZRString("Case " + std::to_string(m_id)) : ZRConvert::toZRString(m_name);
    root.setAttributeInt("ID", m_id);
    SetAttribute(root, "Name", name);
    root.setAttributeInt("DatabaseID", m_databaseId);
    SetAttribute(root, "ZRFxProperties", ZRString(kPropertiesName));
    SetAttribute(root, "FullDatabase", ZRString(m_derivedResultsDisabled ? "false" : "true"));
    if (!writeProperties() || !writeDescription(root) || !writeSnapshot(root)) return false;
    if (!m_access->AddCase(*m_caseDocument, true)) {
        return fail("Error adding the case document to the ZRFx file.");
    }
    m_isDocumentModified = m_isSnapshotModified = m_isPropertiesModified = false;
    return true;
}

bool CasePrivate::writeProperties() {
    nvf::ref<nvf::PropertySetCollection> collection = new nvf::PropertySetCollection;
    if (m_properties) collection = PropertyConvert::toNvfPropertySetCollection(*m_properties);
    return m_access->WriteProperties(entryName(kPropertiesName), *collection);
}

bool CasePrivate::writeDescription(nvf::XmlElement root) {
    const ZRString entry = entryName(kDescriptionName);
    if (m_description.isEmpty()) {
        root.removeChildElement(root.firstChildElement("Description"));
        return m_access->RemoveFile(entry);
    }
    setFileElement(root, "Description", kDescriptionName);
    const std::string text = Convert::toUtf8(m_description);
    return m_access->WriteDataRaw(entry, text.data(), text.size(), true) ||
           fail("Error writing the case description image to the ZRFx file.");
}

bool CasePrivate::writeSnapshot(nvf::XmlElement root) {
    if (!m_isSnapshotModified) return true;
    const ZRString entry = entryName(kSnapshotName);
    if (!m_snapshot) {
        root.removeChildElement(root.firstChildElement("Snapshot"));
        return m_access->RemoveFile(entry);
    }
    setFileElement(root, "Snapshot", kSnapshotName);
    return m_access->WriteImage(entry, *m_snapshot) ||
           fail("Error writing the snapshot image to the ZRFx file.");
}

}  // namespace nuo::zrfx
