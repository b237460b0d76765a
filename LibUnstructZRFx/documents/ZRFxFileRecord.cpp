#include "documents/ZRFxFileRecord.h"

#include "documents/ZRFxXml.h"
#include "nvf/Assert.h"
#include "nvf/LogManager.h"
#include "nvf/Number.h"

namespace unstruct {

bool AddFileRecord(nvf::XmlElement& element, const char* key, const ZRFxFileRecord& record) {
    if (element.isNull() || record.filename.IsBlank()) {
        return nvf::archiveLogger()->fail("Error adding '%1' to database.", record.filename);
    }
    nvf::XmlElement file = element.addChildElement(key);
    SetAttribute(file, "Filename", record.filename);
    file.setAttributeUtf8("NumItems", std::to_string(record.numItems));
    if (!record.ids.IsEmpty()) SetAttribute(file, "IDs", record.ids);
    return true;
}

bool GetFileRecord(const nvf::XmlElement& element, const char* key, ZRFxFileRecord* record) {
    NVF_ASSERT(record);
    const nvf::XmlElement file = element.firstChildElement(key);
    int numItems = 0;
    if (!record || file.isNull() || GetAttribute(file, "Filename").IsBlank() ||
        !nvf::parseNumber(file.getAttributeUtf8("NumItems", ""), numItems)) {
        return false;
    }
    *record = {GetAttribute(file, "Filename"), numItems, GetAttribute(file, "IDs")};
    return true;
}

}  // namespace unstruct
