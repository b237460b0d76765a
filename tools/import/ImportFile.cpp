#include "import/ImportFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace tools {
namespace {

constexpr std::size_t kWindow = std::size_t(2) << 20;  // holds the longest line and bytes asked for

std::string_view withoutReturn(std::string_view line) {
    if (line.ends_with('\r')) line.remove_suffix(1);
    return line;
}

}  // namespace

ImportFile::~ImportFile() {
    close();
}

bool ImportFile::open(const std::string& path) {
    close();
    returnTo({});
    m_descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (m_descriptor < 0) return false;
    struct stat status {};
    if (fstat(m_descriptor, &status) != 0) return false;
    if (S_ISDIR(status.st_mode)) {
        errno = EISDIR;
        return false;
    }
    m_window.resize(kWindow);
    return true;
}

bool ImportFile::isReplacedAt(const std::string& path) const {
    struct stat opened {};
    struct stat found {};
    return fstat(m_descriptor, &opened) == 0 && stat(path.c_str(), &found) == 0 &&
           (opened.st_ino != found.st_ino || opened.st_dev != found.st_dev);
}

std::uint64_t ImportFile::size() const {
    struct stat status {};
    return fstat(m_descriptor, &status) == 0 ? static_cast<std::uint64_t>(status.st_size) : 0;
}

std::string ImportFile::lastBytes(std::size_t count) const {
    const std::uint64_t end = size();
    std::string bytes(static_cast<std::size_t>(std::min<std::uint64_t>(count, end)), '\0');
    const ssize_t read =
        pread(m_descriptor, bytes.data(), bytes.size(), static_cast<off_t>(end - bytes.size()));
    bytes.resize(read > 0 ? static_cast<std::size_t>(read) : 0);
    return bytes;
}

void ImportFile::close() {
    if (m_descriptor >= 0) ::close(m_descriptor);
    m_descriptor = -1;
}

bool ImportFile::fill() {
    if (m_begin > 0) {
        std::memmove(m_window.data(), m_window.data() + m_begin, available());
        m_end -= m_begin;
        m_begin = 0;
    }
    if (m_end == m_window.size()) return false;
    const auto offset = static_cast<off_t>(m_place.offset + available());
    ssize_t count = 0;
    do {
        count = pread(m_descriptor, m_window.data() + m_end, m_window.size() - m_end, offset);
    } while (count < 0 && errno == EINTR);
    m_hasFailed |= count < 0;
    if (count <= 0) return false;
    m_end += static_cast<std::size_t>(count);
    return true;
}

std::optional<std::string_view> ImportFile::peekLine() {
    std::size_t searched = 0;
    for (;;) {
        const char* begin = m_window.data() + m_begin;
        const void* found = std::memchr(begin + searched, '\n', available() - searched);
        if (found) return std::string_view(begin, static_cast<const char*>(found) - begin);
        searched = available();
        if (fill()) continue;
        const bool isTooLong = available() == m_window.size();
        if (!isTooLong) return std::nullopt;
        return unfinishedLine();
    }
}

std::optional<std::string_view> ImportFile::readLine() {
    const auto line = peekLine();
    if (!line) return line;
    const std::size_t length = std::min(line->size() + 1, available());
    m_lastLine = m_place;
    m_begin += length;
    m_place.offset += length;
    ++m_place.line;
    return withoutReturn(*line);
}

std::optional<std::string_view> ImportFile::readLastLine() {
    if (available() == 0) return std::nullopt;
    const std::string_view line = unfinishedLine();
    m_place.offset += line.size();
    ++m_place.line;
    m_begin = m_end;
    return withoutReturn(line);
}

const char* ImportFile::readBytes(std::size_t count) {
    while (available() < count) {
        if (!fill()) return nullptr;
    }
    const char* bytes = m_window.data() + m_begin;
    m_begin += count;
    m_place.offset += count;
    return bytes;
}

void ImportFile::returnTo(const Place& place) {
    m_place = place;
    m_begin = m_end = 0;
}

void ImportFile::unreadLine(const Place& first) {
    if (m_lastLine.offset > first.offset) returnTo(m_lastLine);
}

}  // namespace tools
