#pragma once

#include <memory>
#include <string>
#include <vector>

#include "NuoZRFx/Case.h"
#include "NuoZRFx/File.h"
#include "ToolContext.h"
#include "access/ZROZRFxAccess.h"
#include "database/ZROZRFxDatabase.h"

namespace tools {

/// A ZRFx file that a command reads: the public file, for its settings, cases and user texts, and
/// its databases as the archive layer has them, since the public interface shows neither
/// visualization blocks nor what a block is without reading its data. Reports failures itself.
class FileReader {
public:
    explicit FileReader(ToolContext& context) : m_context(context) {}

    /// Opens a file with its password and reads which blocks its databases have.
    bool open(const std::string& path);

    const std::string& path() const { return m_path; }
    const std::string& password() const { return m_password; }
    nuo::zrfx::File& file() { return m_file; }
    unstruct::ZRFxAccess& access() { return *m_file.internal_access(); }
    const std::vector<std::unique_ptr<unstruct::ZRFxDatabase>>& databases() const {
        return m_databases;
    }

    /// The database of an id; null when there is none.
    unstruct::ZRFxDatabase* database(int id) const;

    /// The document of a case.
    bool readCaseDocument(const nuo::zrfx::Case& fileCase, nvf::XmlDocument* document);

private:
    ToolContext& m_context;
    std::string m_path;
    std::string m_password;
    nuo::zrfx::File m_file;
    std::vector<std::unique_ptr<unstruct::ZRFxDatabase>> m_databases;
};

/// The block of an entry with its data; null, with the library's messages, when it cannot be read.
nvf::ref<unstruct::ZRFxBlock> readBlock(unstruct::ZRFxDatabase& database, int type, int id);

/// The same as its class, which says the type.
template <typename BlockClass>
nvf::ref<BlockClass> readBlock(unstruct::ZRFxDatabase& database, int id) {
    return static_cast<BlockClass*>(readBlock(database, BlockClass::kType, id).p());
}

/// The block of an entry, with nothing loaded, as its class; null when there is none.
template <typename BlockClass>
nvf::ref<BlockClass> openBlock(unstruct::ZRFxDatabase& database, int id) {
    return static_cast<BlockClass*>(database.OpenBlock(BlockClass::kType, id).p());
}

/// The ids of the blocks of a type, in rising order.
std::vector<int> blockIds(const unstruct::ZRFxDatabase& database, int type);

}  // namespace tools
