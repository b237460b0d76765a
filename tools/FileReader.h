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

    /// How much of a file must be sound.
    enum Need {
        WHOLE,     ///< All documents.
        WHAT_FITS  ///< The main document. What else cannot be read is in the library's log, and
                   ///< refusal() says why the library would not open the file.
    };

    /// The password of the file comes from another file, or environment variable, than usual.
    void setPasswordSource(const std::string& file, const char* environment) {
        m_passwordFile = file;
        m_passwordEnvironment = environment;
    }

    /// Opens a file with its password and reads which blocks its databases have.
    bool open(const std::string& path, Need need = WHOLE);

    /// Empty when the library opens the file. There are no cases and user texts otherwise.
    const std::string& refusal() const { return m_refusal; }

    const std::string& path() const { return m_path; }
    const std::string& password() const { return m_password; }
    nuo::zrfx::File& file() { return m_file; }
    unstruct::ZRFxAccess& access() {
        return m_refusal.empty() ? *m_file.internal_access() : m_access;
    }
    const std::vector<std::unique_ptr<unstruct::ZRFxDatabase>>& databases() const {
        return m_databases;
    }

    /// The database of an id; null when there is none.
    unstruct::ZRFxDatabase* database(int id) const;

    /// The document of a case.
    bool readCaseDocument(const nuo::zrfx::Case& fileCase, nvf::XmlDocument* document);

private:
    bool openDamaged();
    bool readDatabases(unstruct::ZRFxParseMode mode);

    ToolContext& m_context;
    std::string m_passwordFile;
    const char* m_passwordEnvironment = nullptr;
    std::string m_path;
    std::string m_password;
    nuo::zrfx::File m_file;
    std::string m_refusal;
    unstruct::ZRFxAccess m_access;  // in place of the file, when the library refuses it
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
