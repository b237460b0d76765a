#include "check/CaseChecks.h"

#include "catalogue/ZROZRFxPropDef.h"
#include "documents/ZRFxXml.h"

namespace tools {

using namespace unstruct;

bool takeLog(LogCollector& log, Findings& findings, const char* check, const std::string& entry) {
    Reporter reporter(findings, check, entry);
    bool hasError = false;
    for (const LogCollector::Message& message : log.takeMessages()) {
        if (message.level == nuo::LL_WARNING) {
            reporter.warning("", message.text);
        } else if (!hasError) {
            reporter.error("", message.text);
            hasError = true;
        }
    }
    return hasError;
}

void CaseCheck::run(const ZRFxCaseInfo& info) {
    m_info = info;
    m_textures.clear();
    if (!m_resultIds.contains(info.databaseId)) {
        reporter("case-database", info.path)
            .error("", "there is no database " + std::to_string(info.databaseId));
    }
    nvf::XmlDocument document;
    const bool isRead = m_access.InternalReadXmlFile(info.path, LogMode::LOG, &document);
    takeLog(m_log, m_findings, "case", info.path.Bytes());
    if (!isRead) return;
    const nvf::XmlElement root = document.getRootElement("Case");
    if (root.isNull()) return reporter("case", info.path).error("", "the root is not \"Case\"");
    if (root.getAttributeInt("ID", -1) != info.id) {
        reporter("case", info.path)
            .error("", "its id is not " + std::to_string(info.id) + ", as ZRF.xml has it");
    }
    checkFile("Description", root);
    checkFile("Snapshot", root);
    checkTextures();
    checkProperties(root);
}

ZRString CaseCheck::inFolder(const ZRString& name) const {
    return m_info.folder + std::string(1, kFolderSeparator) + name;
}

bool CaseCheck::exists(const ZRString& entry) {
    return m_access.Contains(entry);
}

// A file that the document names, in the folder of the case or by its whole name.
void CaseCheck::checkFile(const char* element, const nvf::XmlElement& root) {
    const nvf::XmlElement file = root.firstChildElement(element);
    if (file.isNull()) return;
    const ZRString name = GetText(file);
    const ZRString entry = m_access.CaseEntry(m_info.folder, name);
    const std::string what = std::string(element) == "Snapshot" ? "snapshot" : "description";
    if (!exists(entry)) {
        return reporter(what.c_str(), m_info.path)
            .error("", what + " '" + name.Bytes() + "' is missing");
    }
    if (what == "snapshot") checkImage(entry, "snapshot");
}

void CaseCheck::checkImage(const ZRString& entry, const char* check) {
    nuo::Image image;
    m_access.ReadImage(entry, &image);
    takeLog(m_log, m_findings, check, entry.Bytes());
}

void CaseCheck::checkTextures() {
    ZRStringArray entries;
    m_access.FindFiles(inFolder("Textures"), false, &entries);
    for (const ZRString& entry : entries) {
        checkImage(entry, "texture");
        std::string name = entry.FileName().Bytes();
        constexpr std::string_view kPrefix = "PartTexture_";
        if (name.starts_with(kPrefix)) name.erase(0, kPrefix.size());
        m_textures.insert(name.substr(0, name.rfind('.')));
    }
}

void CaseCheck::checkProperties(const nvf::XmlElement& root) {
    const ZRString name = GetAttribute(root, "ZRFxProperties");
    const ZRString entry = inFolder(name.IsBlank() ? ZRString("ZRFxProperties.xml") : name);
    if (!exists(entry)) {
        if (name.IsBlank()) return;
        return reporter("property", m_info.path)
            .error("", "properties '" + name.Bytes() + "' are missing");
    }
    nvf::PropertySetCollection collection;
    const bool isRead = m_access.ReadProperties(entry, &collection);
    takeLog(m_log, m_findings, "property", entry.Bytes());
    if (!isRead) return;
    std::vector<nvf::String> errors;
    validateProperties(collection, errors);
    for (const nvf::String& error : errors) {
        reporter("property", entry).error("", ZRString(error).Bytes());
    }
    for (std::size_t i = 0; i < collection.count(); ++i) {
        const nvf::PropertySet& set = *collection.propertySet(i);
        for (const auto& [key, value] : set.valuesByKey()) checkProperty(set, key, value);
    }
}

// Settings refer to textures of the case and to results of its database.
void CaseCheck::checkProperty(const nvf::PropertySet& set, const nvf::String& key,
                              const nvf::Variant& value) {
    const std::string name = key.toUtf8();
    const std::string place = set.classType().toUtf8() + "::" + name;
    if (name.ends_with("image_name") && value.type() == nvf::Variant::STRING) {
        const std::string texture = value.getString().toUtf8();
        if (texture.empty() || m_textures.contains(texture)) return;
        return reporter("texture", m_info.path)
            .error(place, "there is no texture '" + texture + "'");
    }
    if (!name.ends_with("result_id") || value.type() != nvf::Variant::INT) return;
    const auto results = m_resultIds.find(m_info.databaseId);
    if (value.getInt() < 0 || results == m_resultIds.end() ||
        results->second.contains(value.getInt())) {
        return;
    }
    reporter("reference", m_info.path)
        .warning(place, "there is no result of id " + std::to_string(value.getInt()));
}

}  // namespace tools
