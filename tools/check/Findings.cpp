#include "check/Findings.h"

#include "Terminal.h"

namespace tools {

void Findings::add(Finding finding) {
    ++(finding.severity == Severity::ERROR ? m_errorCount : m_warningCount);
    const std::size_t count = ++m_counts[{finding.check, finding.entry}];
    if (m_limit > 0 && count > m_limit) return;
    finding.message = withoutFileName(std::move(finding.message), m_file);
    m_findings.push_back(std::move(finding));
}

void Findings::addCause(Finding cause) {
    cause.message = withoutFileName(std::move(cause.message), m_file);
    std::erase_if(m_findings, [&](const Finding& finding) {
        if (finding.severity != Severity::ERROR || finding.message != cause.message) return false;
        --m_errorCount;
        --m_counts[{finding.check, finding.entry}];
        return true;
    });
    add(std::move(cause));
}

std::vector<Finding> Findings::kept(Severity severity) const {
    std::vector<Finding> kept;
    std::map<std::pair<std::string, std::string>, std::size_t> numbers;
    for (const Finding& finding : m_findings) {
        const auto key = std::pair(finding.check, finding.entry);
        const std::size_t number = ++numbers[key];
        if (finding.severity == severity) kept.push_back(finding);
        const std::size_t more = m_counts.at(key) - number;
        if (number != m_limit || more == 0 || finding.severity != severity) continue;
        kept.push_back({severity, finding.check, finding.entry, "",
                        "and " + std::to_string(more) + " more of this kind"});
    }
    return kept;
}

std::string Findings::text() const {
    std::string text;
    for (const Severity severity : {Severity::ERROR, Severity::WARNING}) {
        for (const Finding& finding : kept(severity)) {
            text += severity == Severity::ERROR ? painted("error", Paint::RED)
                                                : painted("warning", Paint::YELLOW);
            text += ": ";
            text += printable(finding.entry) + ": ";
            if (!finding.place.empty()) text += printable(finding.place) + ": ";
            text += printable(finding.message) + "\n";
        }
    }
    return text;
}

Json Findings::json() const {
    Json json = {{"errorCount", m_errorCount}, {"warningCount", m_warningCount}};
    for (const Severity severity : {Severity::ERROR, Severity::WARNING}) {
        Json list = Json::array();
        for (const Finding& finding : kept(severity)) {
            list.push_back({{"check", finding.check},
                            {"entry", finding.entry},
                            {"place", finding.place},
                            {"message", finding.message}});
        }
        json[severity == Severity::ERROR ? "errors" : "warnings"] = std::move(list);
    }
    return json;
}

}  // namespace tools
