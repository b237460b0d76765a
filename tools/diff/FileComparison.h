#pragma once

#include <cstdint>
#include <string>

#include "FileReader.h"
#include "Progress.h"
#include "diff/DiffOptions.h"
#include "diff/Differences.h"
#include "diff/FieldComparison.h"
#include "diff/Side.h"
#include "diff/Tolerances.h"

namespace tools {

/// Compares two files: databases and cases by id, user texts by name.
class FileComparison {
public:
    FileComparison(FileReader& a, FileReader& b, const DiffOptions& options);

    /// Gives the file that cannot be read, of which the library has said why.
    Side run();

    const Differences& differences() const { return m_differences; }
    std::uint64_t comparedValueCount() const { return m_comparedValueCount; }

private:
    void compareMakers();
    Side compareDatabases();
    Side compareCases();
    Side compareCase(const nuo::zrfx::Case& a, const nuo::zrfx::Case& b, const std::string& place);
    Side comparePictures(const nuo::zrfx::Case& a, const nuo::zrfx::Case& b,
                         const std::string& place);
    Json settingsOf(FileReader& reader, const nuo::zrfx::Case& fileCase) const;
    Side compareTexts();

    FileReader& m_a;
    FileReader& m_b;
    const DiffOptions& m_options;
    const Tolerances m_tolerances;
    Differences m_differences;
    FieldComparison m_fields;
    Progress m_progress;
    std::uint64_t m_comparedValueCount = 0;
};

}  // namespace tools
