#include "documents/ZRFxFileRecord.h"

#include <utility>

#include "documents/ZRFxXml.h"
#include "nvf/Assert.h"
#include "nvf/LogManager.h"
#include "nvf/Number.h"

namespace unstruct {

bool AddFileRecord(nvf::XmlElement& element, const char* key, const ZRFxFileRecord& record) {
    if (element.isNull() || record.filename.IsBlank()) {
        return nvf::archiveLogger()->fail("Error adding '%1' to database.", record.filename);
    }
    nvf::XmlElement file = element.addChildElementUtf8(key, {});
    SetAttribute(file, "Filename", record.filename);
    file.setAttributeUtf8("NumItems", std::to_string(record.numItems));
    if (!record.ids.IsEmpty()) SetAttribute(file, "IDs", record.ids);
    return true;
}

bool GetFileRecord(const nvf::XmlElement& element, const char* key, ZRFxFileRecord* record) {
    NVF_ASSERT(record);
    const nvf::XmlElement file = element.firstChildElement(key);
    int numItems = 0;
    if (!record || file.isNull()) return false;
    ZRString filename = GetAttribute(file, "Filename");
    if (filename.IsBlank() || !nvf::parseNumber(file.getAttributeUtf8("NumItems", ""), numItems)) {
        return false;
    }
    *record = {std::move(filename), numItems, GetAttribute(file, "IDs")};
    return true;
}

int GetFileNumItems(const nvf::XmlElement& element, const char* key) {
    return element.firstChildElement(key).getAttributeInt("NumItems", 0);
}

}  // namespace unstruct
