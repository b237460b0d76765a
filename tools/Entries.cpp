#include "Entries.h"

#include <algorithm>

#include "documents/ZRFxXml.h"

namespace tools {

using unstruct::ZRFxDatabase;
using unstruct::ZRString;

std::string withBackslashes(std::string name) {
    std::ranges::replace(name, '/', unstruct::kFolderSeparator);
    return name;
}

Entries::Entries(unstruct::ZRFxZipArchive& archive) {
    for (std::size_t i = 0; i < archive.EntryCount(); ++i) {
        const auto entry = archive.EntryAt(i);
        m_sizes.emplace(withBackslashes(entry.sName), entry.nSize);
        m_totalSize += entry.nSize;
    }
}

std::uint64_t Entries::sizeOf(const std::string& name) const {
    const auto found = m_sizes.find(name);
    return found == m_sizes.end() ? 0 : found->second;
}

std::vector<Entries::File> Entries::dataFiles(const ZRFxDatabase& database,
                                              const ZRString& document) const {
    std::vector<File> files;
    nvf::XmlDocument parsed;
    if (database.ReadXmlFile(document, &parsed)) collect(database, parsed.getRootElement(), &files);
    return files;
}

std::string Entries::documentEntry(const ZRFxDatabase& database, const ZRString& document) const {
    const std::string name = withBackslashes(document.Bytes());
    return contains(name) ? name : withBackslashes(database.EntryName(document).Bytes());
}

std::uint64_t Entries::sizeOf(const ZRFxDatabase& database, const ZRString& document) const {
    std::uint64_t size = sizeOf(documentEntry(database, document));
    for (const File& file : dataFiles(database, document)) size += sizeOf(file.entry);
    return size;
}

void Entries::collect(const ZRFxDatabase& database, const nvf::XmlElement& element,
                      std::vector<File>* files) const {
    for (const char* attribute : {"Filename", "IDs"}) {
        const std::string entry = dataEntry(database, unstruct::GetAttribute(element, attribute));
        if (entry.empty()) continue;
        files->push_back({entry, element.nameUtf8() == "File" && *attribute == 'F'});
    }
    for (auto child = element.firstChildElement(); child.notNull();
         child = child.nextSiblingElement()) {
        collect(database, child, files);
    }
}

// The entry that a record means, as data files are looked for; empty when there is none.
std::string Entries::dataEntry(const ZRFxDatabase& database, const ZRString& name) const {
    if (name.IsBlank()) return {};
    const std::string inFolder = withBackslashes(database.EntryName(name).Bytes());
    for (const std::string& entry :
         {inFolder + ".dat", inFolder + ".txt", inFolder, withBackslashes(name.Bytes())}) {
        if (contains(entry)) return entry;
    }
    return {};
}

}  // namespace tools
