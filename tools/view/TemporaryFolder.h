#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

namespace tools {

/// A folder that nobody else can write to, gone with all that is in it unless it is kept.
class TemporaryFolder {
public:
    TemporaryFolder() : m_path(std::filesystem::temp_directory_path() / "zrfx-view-XXXXXX") {
        if (!mkdtemp(m_path.data())) m_path.clear();
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        if (!m_path.empty() && !m_isKept) std::filesystem::remove_all(m_path, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    void keep() { m_isKept = true; }

    /// Empty when it could not be made.
    const std::string& path() const { return m_path; }

private:
    std::string m_path;
    bool m_isKept = false;
};

}  // namespace tools
