#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ZRString.h"

namespace unstruct {

class ZRFxZipArchive;

/// The name of an entry in a folder.
ZRString InFolder(const ZRString& folder, const ZRString& name);

/// The same name as archives have it in which slashes separate folders.
std::string WithSlashes(std::string name);

/// What follows a folder in the name of an entry; empty when the entry does not lie there.
std::string_view BelowFolder(std::string_view name, const ZRString& folder);

/// Whether a name has an extension, given in lower case and with its dot. The case of the name's
/// own letters does not matter.
bool HasExtension(std::string_view name, std::string_view extension);

/// The names of an archive's entries, as folders with backslashes between them; an archive packed
/// by another program may have slashes instead. Used by one thread at a time.
class ZRFxEntryNames {
public:
    /// The most folders that a name is seen to lie in; separators that follow do not count.
    static constexpr std::size_t kMostFolders = 1000;

    /// REQUIRES: the archive outlives this.
    explicit ZRFxEntryNames(ZRFxZipArchive& archive) : m_archive(archive) {}

    /// To be called when entries come, go or change their places.
    void Forget() { m_sorted.clear(); }

    /// Gives the name that the archive has an entry under; false when there is no such entry.
    bool Find(const ZRString& name, std::string* entry) const;

    /// Whole names of the entries in a folder, in archive order; with `descend`, also those of the
    /// folders below it.
    ZRStringArray FilesIn(const ZRString& folder, bool descend);

    /// Whole names of the entries that begin with a base name, which an extension or a dash
    /// follows.
    ZRStringArray FilesOfBase(const ZRString& base);

    /// Whole names of the folders in a folder; with `descend`, also those below them, kMostFolders
    /// deep at most.
    ZRStringArray SubFoldersOf(const ZRString& folder, bool descend);

private:
    template <typename TakeName>
    void ForEach(const std::string& prefix, TakeName takeName);
    void Sort();

    ZRFxZipArchive& m_archive;
    // With slashes, and the index of the entry. Made when it is asked for.
    std::vector<std::pair<std::string, std::size_t>> m_sorted;
};

}  // namespace unstruct
