#include "access/ZRFxEntryNames.h"

#include <algorithm>
#include <set>

#include "container/ZRFxZipArchive.h"
#include "documents/ZRFxXml.h"

namespace unstruct {
namespace {

constexpr const char* kSeparators = "\\/";

// What the names of all that lies in a folder begin with.
std::string prefixOf(const ZRString& folder) {
    return folder.IsEmpty() ? std::string() : folder.Bytes() + kFolderSeparator;
}

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

}  // namespace

ZRString InFolder(const ZRString& folder, const ZRString& name) {
    std::string entry;
    entry.reserve(folder.Bytes().size() + name.Bytes().size() + 8);  // an extension may follow
    entry.append(folder.Bytes()).append(1, kFolderSeparator).append(name.Bytes());
    return entry;
}

std::string WithSlashes(std::string name) {
    std::replace(name.begin(), name.end(), kFolderSeparator, '/');
    return name;
}

std::string_view BelowFolder(std::string_view name, const ZRString& folder) {
    const std::size_t length = folder.Bytes().size();
    if (length == 0) return name;
    if (name.size() <= length || (name[length] != kFolderSeparator && name[length] != '/') ||
        WithSlashes(std::string(name.substr(0, length))) != WithSlashes(folder.Bytes())) {
        return {};
    }
    return name.substr(length + 1);
}

bool HasExtension(std::string_view name, std::string_view extension) {
    return name.size() >= extension.size() &&
           std::equal(extension.rbegin(), extension.rend(), name.rbegin(),
                      [](char expected, char c) { return expected == lower(c); });
}

bool ZRFxEntryNames::Find(const ZRString& name, std::string* entry) const {
    *entry = name.Bytes();
    if (m_archive.Contains(*entry)) return true;
    if (!m_archive.HasSlashes()) return false;
    *entry = WithSlashes(name.Bytes());
    return m_archive.Contains(*entry);
}

ZRStringArray ZRFxEntryNames::FilesIn(const ZRString& folder, bool descend) {
    ZRStringArray names;
    ForEach(prefixOf(folder), [&](std::string_view name) {
        const std::string_view below = BelowFolder(name, folder);
        if (below.empty() || below.ends_with(kFolderSeparator) || below.ends_with('/')) return;
        if (!descend && below.find_first_of(kSeparators) != std::string_view::npos) return;
        names.emplace_back(name);
    });
    return names;
}

ZRStringArray ZRFxEntryNames::FilesOfBase(const ZRString& base) {
    ZRStringArray names;
    ForEach(base.Bytes(), [&](std::string_view name) {
        const std::string_view rest = name.substr(base.Bytes().size());
        if (rest.starts_with('.') || rest.starts_with('-')) names.emplace_back(name);
    });
    return names;
}

ZRStringArray ZRFxEntryNames::SubFoldersOf(const ZRString& folder, bool descend) {
    ZRStringArray names;
    std::set<std::string> found;
    ForEach(prefixOf(folder), [&](std::string_view name) {
        const std::size_t below = name.size() - BelowFolder(name, folder).size();
        std::size_t depth = 0;
        for (std::size_t at = name.find_first_of(kSeparators, below); at != std::string_view::npos;
             at = name.find_first_of(kSeparators, at + 1)) {
            const std::string subFolder(name.substr(0, at));
            if (found.insert(subFolder).second) names.push_back(subFolder);
            if (!descend || ++depth == kMostFolders) return;
        }
    });
    return names;
}

// Calls takeName, in the order of the archive, with the names that begin with a text, whatever
// their separators are.
template <typename TakeName>
void ZRFxEntryNames::ForEach(const std::string& prefix, TakeName takeName) {
    if (m_sorted.empty()) Sort();
    const std::string wanted = WithSlashes(prefix);
    std::vector<std::size_t> entries;
    for (auto at =
             std::lower_bound(m_sorted.begin(), m_sorted.end(), std::pair(wanted, std::size_t{0}));
         at != m_sorted.end() && at->first.starts_with(wanted); ++at) {
        entries.push_back(at->second);
    }
    std::sort(entries.begin(), entries.end());
    for (const std::size_t entry : entries) takeName(m_archive.NameAt(entry));
}

void ZRFxEntryNames::Sort() {
    decltype(m_sorted) names;
    for (std::size_t i = 0; i < m_archive.EntryCount(); ++i) {
        names.emplace_back(WithSlashes(std::string(m_archive.NameAt(i))), i);
    }
    std::sort(names.begin(), names.end());
    m_sorted.swap(names);
}

}  // namespace unstruct
