#include "merge/StateSettings.h"

#include "documents/ZRFxXml.h"
#include "nvf/PropertySetCollection.h"

namespace tools {
namespace {

using namespace unstruct;
using nvf::Variant;

// One state that is shown may be meant, or a mode shape.
bool addStates(nvf::PropertySetCollection& settings, const std::vector<int>& states) {
    bool hasChanged = false;
    for (std::size_t i = 0; i < settings.count(); ++i) {
        nvf::PropertySet& set = *settings.propertySet(i);
        const auto shown = set.valuesByKey().find("state_ids");
        if (shown == set.valuesByKey().end() || shown->second.type() != Variant::ARRAY) continue;
        std::vector<Variant> ids = shown->second.getArray();
        if (ids.size() < 2) continue;
        for (const int state : states) ids.emplace_back(state);
        set.setValue("state_ids", Variant(ids));
        hasChanged = true;
    }
    return hasChanged;
}

bool updateCase(ZRFxAccess& access, const ZRFxCaseInfo& info, const std::vector<int>& states) {
    nvf::XmlDocument document;
    if (!access.InternalReadXmlFile(info.path, LogMode::LOG, &document)) return false;
    const ZRString given = GetAttribute(document.getRootElement("Case"), "ZRFxProperties");
    const ZRString name = given.IsBlank() ? ZRString("ZRFxProperties.xml") : given;
    const ZRString entry = info.folder + std::string(1, kFolderSeparator) + name;
    nvf::PropertySetCollection settings;
    if (!access.Contains(entry)) return true;
    return access.ReadProperties(entry, &settings) &&
           (!addStates(settings, states) || access.WriteProperties(entry, settings));
}

}  // namespace

bool showNewStates(ZRFxAccess& access, int database, const std::vector<int>& states) {
    int count = 0;
    if (states.empty()) return true;
    if (!access.GetNumCases(&count)) return false;
    for (int i = 0; i < count; ++i) {
        ZRFxCaseInfo info;
        if (!access.GetCaseInfo(i, &info)) return false;
        if (info.databaseId == database && !updateCase(access, info, states)) return false;
    }
    return true;
}

}  // namespace tools
