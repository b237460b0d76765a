#pragma once

#include <map>
#include <set>
#include <string>

#include "ToolContext.h"
#include "access/ZROZRFxAccess.h"
#include "check/Findings.h"

namespace tools {

/// Adds the library's messages since the last call to the findings of an entry: the first error,
/// from which the others follow, and all warnings. True when there was an error.
bool takeLog(LogCollector& log, Findings& findings, const char* check, const std::string& entry);

/// Checks one case: its database, documents, pictures and viewer settings. `resultIds` are the ids
/// of the results of each database.
class CaseCheck {
public:
    CaseCheck(unstruct::ZRFxAccess& access, LogCollector& log, Findings& findings,
              const std::map<int, std::set<int>>& resultIds)
        : m_access(access), m_log(log), m_findings(findings), m_resultIds(resultIds) {}

    void run(const unstruct::ZRFxCaseInfo& info);

private:
    Reporter reporter(const char* check, const unstruct::ZRString& entry) const {
        return {m_findings, check, entry.Bytes()};
    }
    unstruct::ZRString inFolder(const unstruct::ZRString& name) const;
    bool exists(const unstruct::ZRString& entry);
    void checkFile(const char* element, const nvf::XmlElement& root);
    void checkImage(const unstruct::ZRString& entry, const char* check);
    void checkTextures();
    void checkProperties(const nvf::XmlElement& root);
    void checkProperty(const nvf::PropertySet& set, const nvf::String& key,
                       const nvf::Variant& value);

    unstruct::ZRFxAccess& m_access;
    LogCollector& m_log;
    Findings& m_findings;
    const std::map<int, std::set<int>>& m_resultIds;
    unstruct::ZRFxCaseInfo m_info;
    std::set<std::string> m_textures;  // names without prefix and extension
};

}  // namespace tools
