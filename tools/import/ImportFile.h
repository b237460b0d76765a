#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tools {

/// A file that is read once from front to back, by lines or by bytes, through a window of memory.
/// It may grow meanwhile. One thread.
class ImportFile {
public:
    struct Place {
        std::uint64_t offset = 0;
        std::uint64_t line = 1;  ///< Of the line that begins here.
    };

    ImportFile() = default;
    ~ImportFile();
    ImportFile(const ImportFile&) = delete;
    ImportFile& operator=(const ImportFile&) = delete;

    /// Opens the file from its beginning, in place of the one before. False, with errno, when it
    /// cannot be read.
    bool open(const std::string& path);

    /// Whether another file is at that path by now.
    bool isReplacedAt(const std::string& path) const;

    /// The next line without its end, valid until the next call. None when the file does not hold a
    /// whole line any more; nothing is consumed then.
    std::optional<std::string_view> readLine();

    /// Looks at the next line.
    std::optional<std::string_view> peekLine();

    /// The rest after the last whole line, valid until the next call.
    std::string_view unfinishedLine() const { return {m_window.data() + m_begin, available()}; }

    /// The last line, if nothing ends it; none otherwise.
    std::optional<std::string_view> readLastLine();

    /// The next bytes, valid until the next call; null, and nothing consumed, when there are not so
    /// many. Up to 1 MiB.
    const char* readBytes(std::size_t count);

    Place place() const { return m_place; }
    void returnTo(const Place& place);

    /// Returns to the line that was read last, unless that is the one at `first`.
    void unreadLine(const Place& first);

    /// Bytes of the file as it is now.
    std::uint64_t size() const;

    /// The last bytes of the file as it is now; fewer where it does not have so many.
    std::string lastBytes(std::size_t count) const;

    /// Whether reading has failed, with errno.
    bool hasFailed() const { return m_hasFailed; }

private:
    std::size_t available() const { return m_end - m_begin; }
    bool fill();
    void close();

    int m_descriptor = -1;
    std::vector<char> m_window;
    std::size_t m_begin = 0;  // of what was not consumed, in the window
    std::size_t m_end = 0;
    Place m_place;     // of m_begin
    Place m_lastLine;  // of the line that was read last
    bool m_hasFailed = false;
};

}  // namespace tools
