// Property sets as XML. What is read and written again must read as the same.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "Quiet.h"
#include "nvf/PropertySetCollection.h"
#include "nvf/PropertyXmlSerializer.h"
#include "nvf/XmlDocument.h"

namespace {

std::string toXml(const nvf::PropertySetCollection& sets) {
    nvf::XmlDocument document;
    nvf::XmlElement root = document.createRootElement("ZRFxProperties", "urn:nuo:zrfx");
    nvf::PropertyXmlSerializer::toXml(sets, &root);
    return document.toUtf8();
}

bool fromXml(std::string_view text, nvf::PropertySetCollection* sets) {
    nvf::XmlDocument document;
    nvf::String cause;
    if (!document.parse(text, &cause)) return false;
    const nvf::XmlElement element =
        document.getRootElement().firstChildElement("PropertySetCollection");
    if (element.notNull()) nvf::PropertyXmlSerializer::toPropertySetCollection(element, sets);
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::beQuiet();
    nvf::PropertySetCollection first;
    if (!fromXml({reinterpret_cast<const char*>(data), size}, &first)) return 0;
    nvf::PropertySetCollection second;
    nvf::PropertySetCollection third;
    if (!fromXml(toXml(first), &second) || !fromXml(toXml(second), &third)) std::abort();
    if (toXml(second) != toXml(third)) std::abort();
    return 0;
}
