#include "ExtractCommand.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <memory>
#include <set>

#include "Entries.h"
#include "Progress.h"
#include "Text.h"
#include "access/ZROZRFxAccess.h"
#include "container/ZRFxZipArchive.h"

namespace tools {
namespace {

using unstruct::ZRFxAccess;
using unstruct::ZRFxZipArchive;
using unstruct::ZRFxZipRawData;

// A small archive can name very many folders: no more of them are made than these, and so many more
// for each entry.
constexpr std::size_t kFewFolders = 1000;
constexpr std::size_t kFoldersPerEntry = 4;

constexpr const char* kExamples =
    "  zrfx extract plate.zrfx -o plate\n"
    "  zrfx extract plate.zrfx ZRF.xml 'Database000\\Nodes\\Nodes0001.dat' -o plate";

struct Options {
    std::string file;
    std::vector<std::string> entries;
    std::string folder;
};

/// The folders and the name that an entry is extracted to; empty when it could lie outside of the
/// target folder or has no name that a file could have.
std::vector<std::string> pathOf(std::string_view entry) {
    std::vector<std::string> path(1);
    for (const char c : entry) {
        if (c == '/' || c == '\\') {
            path.emplace_back();
        } else {
            path.back() += c;
        }
    }
    const auto isUnsafe = [](const std::string& name) {
        return name.empty() || name == "." || name == ".." || name.size() > 255 ||
               name.find('\0') != std::string::npos;
    };
    const bool hasDrive = path[0].size() >= 2 && path[0][1] == ':';
    if (hasDrive || std::ranges::any_of(path, isUnsafe)) path.clear();
    return path;
}

/// A folder of the disk, open, so that nothing that is moved or linked meanwhile leads elsewhere.
class Folder {
public:
    explicit Folder(int file) : m_file(file) {}
    ~Folder() {
        if (m_file >= 0) close(m_file);
    }
    Folder(Folder&& other) noexcept : m_file(std::exchange(other.m_file, -1)) {}
    Folder& operator=(Folder&& other) noexcept {
        std::swap(m_file, other.m_file);
        return *this;
    }

    int file() const { return m_file; }
    bool isOpen() const { return m_file >= 0; }

    /// Makes the folder below of a name; false when it is there.
    bool make(const std::string& name) const { return mkdirat(m_file, name.c_str(), 0777) == 0; }

    /// The folder below of a name; symbolic links are not followed.
    Folder below(const std::string& name) const {
        return Folder(
            openat(m_file, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    }

private:
    int m_file;
};

bool writeAll(int file, const std::uint8_t* data, std::size_t size) {
    while (size > 0) {
        const ssize_t written = write(file, data, size);
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return false;
        data += written;
        size -= static_cast<std::size_t>(written);
    }
    return true;
}

// Writes under a temporary name first: what is in the place, even a symbolic link, is replaced, not
// written to, and never by half a file.
bool writeFile(const Folder& folder, const std::string& name, const ZRFxZipRawData& raw) {
    const std::string temporary = ".zrfx-extract." + std::to_string(getpid());
    const int file = openat(folder.file(), temporary.c_str(),
                            O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666);
    if (file < 0) return false;
    bool isWritten = writeAll(file, raw.Buffer(), raw.Length());
    isWritten = close(file) == 0 && isWritten;
    if (isWritten && renameat(folder.file(), temporary.c_str(), folder.file(), name.c_str()) == 0) {
        return true;
    }
    const int cause = errno;
    unlinkat(folder.file(), temporary.c_str(), 0);
    errno = cause;
    return false;
}

/// Extracts entries of one archive, each on its own: one that fails is reported and left out.
class Extraction {
public:
    Extraction(ToolContext& context, const Options& options, ZRFxZipArchive& archive, Folder target)
        : m_context(context), m_options(options), m_archive(archive), m_target(std::move(target)) {}

    bool run(const std::vector<std::string>& entries, std::uint64_t totalSize) {
        Progress progress("extracting", Progress::Unit::BYTES, totalSize);
        m_mostFolders = m_newFoldersLeft = kFewFolders + kFoldersPerEntry * entries.size();
        bool isFine = true;
        for (const std::string& entry : entries) {
            ZRFxZipRawData raw;
            if (!m_archive.Read(entry, &raw)) {
                progress.finish();
                isFine = fail(entry, m_archive.LastError());
                continue;
            }
            if (!extract(entry, raw)) isFine = false;
            if (m_isTargetLost) return false;
            progress.advance(raw.Length());
        }
        return isFine;
    }

private:
    bool fail(const std::string& entry, const std::string& cause) {
        m_context.fail(m_options.file, "'" + printable(entry) + "': " + cause);
        return false;
    }

    bool extract(const std::string& entry, const ZRFxZipRawData& raw) {
        const std::vector<std::string> path = pathOf(entry);
        if (path.empty())
            return fail(entry, "is left out, its name is no safe path below the folder");
        if (path.size() - 1 > ZRFxAccess::kMostFolders) {
            return fail(entry, "is left out, its name has more than " +
                                   std::to_string(ZRFxAccess::kMostFolders) + " folders");
        }
        if (!m_written.insert(path).second) {
            return fail(entry, "is left out, another entry has the same path");
        }
        Folder folder = m_target.below(".");
        for (std::size_t i = 0; i + 1 < path.size() && folder.isOpen(); ++i) {
            if (m_newFoldersLeft > 0 && folder.make(path[i])) --m_newFoldersLeft;
            folder = folder.below(path[i]);
        }
        if (folder.isOpen() && writeFile(folder, path.back(), raw)) return true;
        if (isLost(errno)) return loseTarget();
        if (m_newFoldersLeft > 0 || errno != ENOENT) return fail(entry, std::strerror(errno));
        return fail(entry, "is left out, the archive names more than " +
                               std::to_string(m_mostFolders) + " folders");
    }

    // Whether no other entry could be written either.
    static bool isLost(int cause) {
        return cause == ENOSPC || cause == EDQUOT || cause == EROFS || cause == EIO;
    }

    bool loseTarget() {
        m_isTargetLost = true;
        m_context.fail(m_options.folder, std::strerror(errno));
        return false;
    }

    ToolContext& m_context;
    const Options& m_options;
    ZRFxZipArchive& m_archive;
    const Folder m_target;
    std::set<std::vector<std::string>> m_written;
    std::size_t m_mostFolders = 0;
    std::size_t m_newFoldersLeft = 0;
    bool m_isTargetLost = false;
};

// The entries that were asked for, under either separator; all of them when none was named.
std::vector<std::string> chosenEntries(ZRFxZipArchive& archive, const Options& options,
                                       std::uint64_t* totalSize, std::string* missing) {
    std::set<std::string> wanted;
    for (const std::string& name : options.entries) wanted.insert(withBackslashes(name));
    const bool wantsAll = wanted.empty();
    std::vector<std::string> entries;
    for (std::size_t i = 0; i < archive.EntryCount(); ++i) {
        const auto entry = archive.EntryAt(i);
        const bool isFolder = entry.sName.ends_with('/') || entry.sName.ends_with('\\');
        if (wantsAll ? isFolder : wanted.erase(withBackslashes(entry.sName)) == 0) continue;
        entries.push_back(entry.sName);
        *totalSize += entry.nSize;
    }
    if (!wanted.empty()) *missing = *wanted.begin();
    return entries;
}

int extract(ToolContext& context, const Options& options) {
    std::string password;
    if (!context.passwordFor(options.file, &password)) return ToolContext::FAILURE;
    ZRFxZipArchive archive;
    if (!archive.Open(options.file, unstruct::ZRZipAccessMode::READ_ONLY) ||
        !archive.SetPassword(password)) {
        return context.fail(options.file, archive.LastError());
    }
    std::uint64_t totalSize = 0;
    std::string missing;
    const auto entries = chosenEntries(archive, options, &totalSize, &missing);
    if (!missing.empty()) return context.fail(options.file, "there is no entry '" + missing + "'");
    std::error_code code;
    std::filesystem::create_directories(options.folder, code);
    if (code) return context.fail(options.folder, code.message());
    Folder target(open(options.folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!target.isOpen()) return context.fail(options.folder, std::strerror(errno));
    Extraction extraction(context, options, archive, std::move(target));
    return extraction.run(entries, totalSize) ? ToolContext::FINE : ToolContext::FAILURE;
}

}  // namespace

void addExtractCommand(CLI::App& application, ToolContext& context) {
    const auto options = std::make_shared<Options>();
    CLI::App* command =
        context.addCommand(application, "extract", "Writes entries of the archive to disk",
                           kExamples, [&context, options] { return extract(context, *options); });
    command->add_option("FILE", options->file, "A ZRFx file")->required();
    command->add_option("ENTRY", options->entries, "Entries to extract; all when none is named");
    command->add_option("-o,--output", options->folder, "Folder to write to, made when missing")
        ->type_name("DIR")
        ->required();
}

}  // namespace tools
