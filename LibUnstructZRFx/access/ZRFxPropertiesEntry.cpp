#include "access/ZRFxPropertiesEntry.h"

#include "access/ZROZRFxAccess.h"
#include "documents/ZRFxXml.h"
#include "nvf/Assert.h"
#include "nvf/LogManager.h"
#include "nvf/PropertyXmlSerializer.h"

namespace unstruct {
namespace {

constexpr const char* kRoot = "ZRFxProperties";

template <typename... Values>
bool fail(nvf::LocatedText message, const Values&... values) {
    return nvf::archiveLogger()->fail(message, values...);
}

}  // namespace

bool WritePropertiesEntry(ZRFxAccess& access, const ZRString& name,
                          const nvf::PropertySetCollection& collection) {
    if (name.IsBlank()) return fail("No file name.");
    if (nvf::PropertyXmlSerializer::nestsTooDeep(collection)) {
        fail("'%1' in '%2': arrays nest deeper than %3 levels", name, access.FileName(),
             nvf::PropertyXmlSerializer::kDeepestArray);
        return fail("Unable to write properties Xml to archive");
    }
    nvf::XmlDocument doc;
    nvf::XmlElement root = doc.createRootElement(kRoot, kNamespaceUri);
    nvf::PropertyXmlSerializer::toXml(collection, &root);
    return access.WriteXmlFile(name, doc, true) ||
           fail("Unable to write properties Xml to archive");
}

bool ReadPropertiesEntry(ZRFxAccess& access, const ZRString& name,
                         nvf::PropertySetCollection* collection) {
    NVF_ASSERT(collection);
    if (!collection) return false;
    nvf::XmlDocument doc;
    if (!access.InternalReadXmlFile(name, LogMode::LOG, &doc)) {
        return fail("Unable to read properties Xml from archive");
    }
    const nvf::XmlElement root = doc.getRootElement(kRoot);
    if (root.isNull()) return fail("No valid root element found in Xml");
    const nvf::XmlElement sets = root.firstChildElement("PropertySetCollection");
    if (sets.isNull()) return fail("No PropertySetCollection element found in Xml");
    nvf::PropertyXmlSerializer::toPropertySetCollection(sets, collection);
    return true;
}

}  // namespace unstruct
