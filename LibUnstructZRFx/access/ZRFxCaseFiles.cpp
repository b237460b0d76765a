#include "access/ZRFxCaseFiles.h"

#include "access/ZRFxEntryNames.h"
#include "access/ZROZRFxAccess.h"
#include "documents/ZRFxXml.h"
#include "nvf/LogManager.h"

namespace unstruct {
namespace {

bool fail(nvf::LocatedText message, int caseId) {
    return nvf::archiveLogger()->fail(message, caseId);
}

}  // namespace

bool ZRFxCaseFiles::ReadSnapshot(int caseId, nuo::Image* image) const {
    ZRString entry;
    bool isGiven = false;
    if (!Find(caseId, "Snapshot", &entry, &isGiven)) return false;
    if (!isGiven) return fail("Cannot find snapshot (case ID %1)", caseId);
    return m_access.ReadImage(entry, image) || fail("Error reading snapshot (case ID %1)", caseId);
}

bool ZRFxCaseFiles::ReadDescription(int caseId, ZRString* text) const {
    ZRString entry;
    bool isGiven = false;
    if (!Find(caseId, "Description", &entry, &isGiven)) return false;
    if (!isGiven) return fail("Cannot find description (case ID %1)", caseId);
    return m_access.ReadDataString(entry, text) ||
           fail("Error reading description(case ID %1)", caseId);
}

ZRString ZRFxCaseFiles::EntryOf(const ZRFxAccess& access, const ZRString& folder,
                                const ZRString& file) {
    const ZRString entry = InFolder(folder, file);
    return !access.Contains(entry) && access.Contains(file) ? file : entry;
}

// The entry that an element of the case's document names, if it has that element.
bool ZRFxCaseFiles::Find(int caseId, const char* element, ZRString* entry, bool* isGiven) const {
    ZRFxCaseInfo info;
    if (!m_access.GetCaseByID(caseId, &info)) {
        return fail("The specified case does not exist (case ID %1)", caseId);
    }
    nvf::XmlDocument doc;
    if (!m_access.InternalReadXmlFile(info.path, LogMode::LOG, &doc)) {
        return fail("Cannot read Case.xml (case ID %1)", caseId);
    }
    const nvf::XmlElement root = doc.getRootElement("Case");
    if (root.isNull()) return fail("Invalid Case.xml file (case ID %1)", caseId);
    const nvf::XmlElement file = root.firstChildElement(element);
    *isGiven = file.notNull();
    *entry = EntryOf(m_access, info.folder, GetText(file));
    return true;
}

}  // namespace unstruct
