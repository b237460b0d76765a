#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "container/ZRFxZipArchive.h"
#include "database/ZROZRFxDatabase.h"

namespace tools {

/// An entry name as the format has it, whichever separators the archive was packed with.
std::string withBackslashes(std::string name);

/// The entries of an archive by name, and which of them belong to a block: its document and the
/// data files that the document records.
class Entries {
public:
    explicit Entries(unstruct::ZRFxZipArchive& archive);

    bool contains(const std::string& name) const { return m_sizes.contains(name); }
    std::uint64_t totalSize() const { return m_totalSize; }

    /// 0 when there is no such entry.
    std::uint64_t sizeOf(const std::string& name) const;

    struct File {
        std::string entry;
        bool isMainData;  ///< Recorded as "File": what every reader of the block reads.
    };

    /// The data files of a block that are there. Reading the document may log a message.
    std::vector<File> dataFiles(const unstruct::ZRFxDatabase& database,
                                const unstruct::ZRString& document) const;

    /// The name of the document as an entry of the archive.
    std::string documentEntry(const unstruct::ZRFxDatabase& database,
                              const unstruct::ZRString& document) const;

    /// The size of a block: document and data files.
    std::uint64_t sizeOf(const unstruct::ZRFxDatabase& database,
                         const unstruct::ZRString& document) const;

private:
    void collect(const unstruct::ZRFxDatabase& database, const nvf::XmlElement& element,
                 std::vector<File>* files) const;
    std::string dataEntry(const unstruct::ZRFxDatabase& database,
                          const unstruct::ZRString& name) const;

    std::unordered_map<std::string, std::uint64_t> m_sizes;
    std::uint64_t m_totalSize = 0;
};

}  // namespace tools
