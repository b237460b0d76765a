#include "FileReader.h"

#include "NuoZRFx/Database.h"

namespace tools {

bool FileReader::open(const std::string& path, Need need) {
    m_path = path;
    const bool hasPassword =
        m_passwordEnvironment
            ? m_context.passwordFor(path, {m_passwordFile, m_passwordEnvironment}, &m_password)
            : m_context.passwordFor(path, &m_password);
    if (!hasPassword) return false;
    m_context.log().takeMessages();
    if (m_file.open(path, m_password)) return readDatabases(unstruct::ZRFxParseMode::STRICT);
    m_refusal = m_context.log().takeCause();
    if (need == WHAT_FITS && openDamaged()) return true;
    const std::string kWrongPassword = "the password is wrong, or the file is damaged";
    m_context.fail(path, m_password.empty() ? m_refusal : kWrongPassword);
    return false;
}

bool FileReader::openDamaged() {
    nvf::XmlDocument document;
    return m_access.Open(m_path, unstruct::ZRZipAccessMode::READ_ONLY) &&
           m_access.SetPassword(m_password) &&
           m_access.ReadAndValidateMainDocumentFile(&document) &&
           readDatabases(unstruct::ZRFxParseMode::LENIENT);
}

bool FileReader::readDatabases(unstruct::ZRFxParseMode mode) {
    int count = 0;
    access().GetNumDatabases(&count);
    for (int i = 0; i < count; ++i) {
        unstruct::ZRFxDatabaseInfo info;
        access().GetDatabaseInfo(i, &info);
        if (database(info.id)) continue;  // registered twice
        auto database = std::make_unique<unstruct::ZRFxDatabase>(&access());
        if (!database->Parse(info.id, mode)) {
            m_context.fail(m_path);
            return false;
        }
        m_databases.push_back(std::move(database));
    }
    return true;
}

unstruct::ZRFxDatabase* FileReader::database(int id) const {
    for (const auto& database : m_databases) {
        if (database->GetID() == id) return database.get();
    }
    return nullptr;
}

bool FileReader::readCaseDocument(const nuo::zrfx::Case& fileCase, nvf::XmlDocument* document) {
    unstruct::ZRFxCaseInfo info;
    return access().GetCaseByID(fileCase.id(), &info) &&
           access().InternalReadXmlFile(info.path, unstruct::LogMode::LOG, document);
}

nvf::ref<unstruct::ZRFxBlock> readBlock(unstruct::ZRFxDatabase& database, int type, int id) {
    const nvf::ref<unstruct::ZRFxBlock> block = database.OpenBlock(type, id);
    if (block.isNull() || !block->ReadBlock()) return nullptr;
    return block;
}

std::vector<int> blockIds(const unstruct::ZRFxDatabase& database, int type) {
    std::vector<int> ids;
    for (int i = 0; i < database.GetNumBlocks(type); ++i) {
        ids.push_back(database.GetBlock(type, i)->GetID());
    }
    return ids;
}

}  // namespace tools
