#pragma once

#include <stdlib.h>

#include <filesystem>
#include <iterator>
#include <string>

namespace test {

/// A folder of a test's own below the system's temporary folder, removed with all that it holds.
class TemporaryFolder {
public:
    explicit TemporaryFolder(const std::string& utf8Name = "zrfx") {
        std::string base = (std::filesystem::temp_directory_path() / "zrfxXXXXXX").string();
        m_base = mkdtemp(base.data());
        m_folder = m_base / utf8Name;
        std::filesystem::create_directories(m_folder);
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_base, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    /// The path of a file in the folder, in UTF-8.
    std::string File(const std::string& utf8Name) const { return (m_folder / utf8Name).string(); }
    std::size_t FileCount() const {
        const std::filesystem::directory_iterator first(m_folder);
        return static_cast<std::size_t>(std::distance(first, {}));
    }

private:
    std::filesystem::path m_base;
    std::filesystem::path m_folder;
};

}  // namespace test
