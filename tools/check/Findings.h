#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "Text.h"

namespace tools {

enum class Severity { ERROR, WARNING };

/// Something that is wrong with a file, or may be.
struct Finding {
    Severity severity;
    std::string check;  ///< Name of the check that found it, for programs: "node-reference".
    std::string entry;  ///< Entry of the archive.
    std::string place;  ///< Where in the entry, as "element 17"; may be empty.
    std::string message;
};

/// The findings in a file. Of one check in one entry only the first findings are kept one by one;
/// one line says how many more there are.
class Findings {
public:
    /// `limit` findings are kept of each check in each entry; 0 keeps all.
    Findings(std::string file, std::size_t limit) : m_file(std::move(file)), m_limit(limit) {}

    void add(Finding finding);

    /// Adds an error that others, which have the same message, come from: it takes their place.
    void addCause(Finding cause);

    std::size_t errorCount() const { return m_errorCount; }
    std::size_t warningCount() const { return m_warningCount; }

    /// One line a finding, errors first.
    std::string text() const;

    /// Two lists, "errors" and "warnings", and the counts of all.
    Json json() const;

private:
    std::vector<Finding> kept(Severity severity) const;

    const std::string m_file;  // left out of messages
    const std::size_t m_limit;
    std::vector<Finding> m_findings;
    std::map<std::pair<std::string, std::string>, std::size_t> m_counts;  // by check and entry
    std::size_t m_errorCount = 0;
    std::size_t m_warningCount = 0;
};

/// Adds the findings of one check in one entry.
class Reporter {
public:
    Reporter(Findings& findings, std::string check, std::string entry)
        : m_findings(findings), m_check(std::move(check)), m_entry(std::move(entry)) {}

    void error(const std::string& place, const std::string& message) {
        m_findings.add({Severity::ERROR, m_check, m_entry, place, message});
    }
    void warning(const std::string& place, const std::string& message) {
        m_findings.add({Severity::WARNING, m_check, m_entry, place, message});
    }

private:
    Findings& m_findings;
    const std::string m_check;
    const std::string m_entry;
};

}  // namespace tools
