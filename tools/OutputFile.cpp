#include "OutputFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>

namespace tools {
namespace {

// An interrupted process has to remove the file, and all that writing an archive puts beside it.
constexpr std::array kSuffixes{"", ".rewrite"};
constexpr std::array kSignals{SIGINT, SIGTERM, SIGHUP};
std::array<char[PATH_MAX + 16], kSuffixes.size()> s_leftOver;
volatile sig_atomic_t s_hasLeftOver = 0;

void removeAll() {
    if (!s_hasLeftOver) return;
    for (const auto& path : s_leftOver) unlink(path);
}

extern "C" void removeAndEnd(int signal) {
    removeAll();
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

void setLeftOver(const std::string& path) {
    s_hasLeftOver = 0;
    for (std::size_t i = 0; i < kSuffixes.size(); ++i) {
        const std::string leftOver = path + kSuffixes[i];
        if (leftOver.size() >= sizeof(s_leftOver[i])) return;
        std::strcpy(s_leftOver[i], leftOver.c_str());
    }
    s_hasLeftOver = 1;
    for (const int signal : kSignals) std::signal(signal, removeAndEnd);
}

void forgetLeftOver() {
    for (const int signal : kSignals) std::signal(signal, SIG_DFL);
    s_hasLeftOver = 0;
}

bool fail(std::string* error, const std::string& what) {
    *error = what + ": " + std::strerror(errno);
    return false;
}

// A writer of the archive holds an advisory lock on it.
bool isBeingWritten(const std::string& path) {
    const int file = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (file < 0) return false;
    const bool isLocked = flock(file, LOCK_SH | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    close(file);
    return isLocked;
}

// Files that an older writer left beside the replaced file belong to nothing, but
// programs of that time would still act on it. Whatever else bears the name stays.
void removeJournal(const std::string& path) {
    const std::string journal = path + ".journal";
    struct stat written {};
    struct stat found {};
    char magic[8] = {};
    const int file = open(journal.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (file < 0) return;
    const bool isJournal = fstat(file, &found) == 0 && S_ISREG(found.st_mode) &&
                           stat(path.c_str(), &written) == 0 && found.st_uid == written.st_uid &&
                           read(file, magic, sizeof(magic)) == sizeof(magic) &&
                           std::memcmp(magic, "ZRFXJRNL", sizeof(magic)) == 0;
    close(file);
    if (isJournal) unlink(journal.c_str());
}

}  // namespace

OutputFile::~OutputFile() {
    if (m_temporaryPath.empty()) return;
    removeAll();
    forgetLeftOver();
}

bool OutputFile::prepare(std::string* error) {
    std::error_code code;
    const auto resolved = std::filesystem::weakly_canonical(m_path, code);
    if (!code) m_path = resolved.string();
    struct stat status {};
    const bool isThere = stat(m_path.c_str(), &status) == 0;
    if (isThere && !S_ISREG(status.st_mode)) {
        *error = "is no file that could be replaced";
        return false;
    }
    if (isThere && isBeingWritten(m_path)) {
        *error = "another program is writing it";
        return false;
    }
    const std::filesystem::path path = m_path;
    std::string name =
        (path.parent_path() / ("." + path.filename().string() + ".XXXXXX.zrfx")).string();
    const int file = mkstemps(name.data(), 5);
    if (file < 0) return fail(error, "cannot be created");
    const mode_t mask = umask(0);
    umask(mask);
    fchmod(file, isThere ? status.st_mode & 0777 : 0666 & ~mask);
    close(file);
    m_temporaryPath = name;
    setLeftOver(m_temporaryPath);
    return true;
}

bool OutputFile::finish(std::string* error) {
    if (std::rename(m_temporaryPath.c_str(), m_path.c_str()) != 0) {
        return fail(error, "cannot be replaced");
    }
    removeJournal(m_path);
    forgetLeftOver();
    m_temporaryPath.clear();
    return true;
}

}  // namespace tools
