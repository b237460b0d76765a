#include "FileReader.h"

#include "NuoZRFx/Database.h"

namespace tools {

bool FileReader::open(const std::string& path) {
    m_path = path;
    if (!m_context.passwordFor(path, &m_password)) return false;
    m_context.log().takeMessages();
    if (!m_file.open(path, m_password)) {
        const std::string kWrongPassword = "the password is wrong, or the file is damaged";
        m_context.fail(path, m_password.empty() ? std::string() : kWrongPassword);
        return false;
    }
    for (std::size_t i = 0; i < m_file.databaseCount(); ++i) {
        auto database = std::make_unique<unstruct::ZRFxDatabase>(&access());
        if (!database->Parse(m_file.database(i)->id())) {
            m_context.fail(path);
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
