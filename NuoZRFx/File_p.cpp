#include "File_p.h"

#include <algorithm>

#include "Case_p.h"
#include "Convert_p.h"
#include "Database_p.h"
#include "Log_p.h"
#include "NuoZRFx/ZRFxComponent.h"

namespace nuo::zrfx {
namespace {

using unstruct::ZRFxAccess;
using unstruct::ZRString;
using unstruct::ZRStringArray;

}  // namespace

FilePrivate::~FilePrivate() {
    dropAll();
}

void FilePrivate::reset() {
    dropAll();
    m_zrfxAccess = std::make_unique<ZRFxAccess>();
    m_settings = FileSettings();
    m_openedForReading = false;
}

bool FilePrivate::begin(const Str& fileName) {
    if (!ZRFxComponent::isInitialized()) {
        return fail("ZRFx Component has not been properly initialized.");
    }
    if (fileName.isEmpty()) return fail("File name string is empty.");
    reset();
    return true;
}

void FilePrivate::applyCompression() {
    m_zrfxAccess->SetCompression(std::clamp(m_settings.compressionLevel, 0, 9),
                                 ZRFxAccess::kDefaultSmartness, ZRFxAccess::kDefaultBufferSize,
                                 ZRFxAccess::kDefaultBufferSize);
}

void FilePrivate::takeSettings(const FileSettings& settings) {
    m_settings.binary = settings.binary;
    m_settings.digitallySigned = settings.digitallySigned;
    m_settings.compressionLevel = settings.compressionLevel;
    m_settings.vendorName = settings.vendorName;
    m_settings.applicationName = settings.applicationName;
}

bool FilePrivate::setPassword(const Str& password) {
    if (password.isEmpty()) return true;
    ZRString text = ZRConvert::toZRString(password);
    const bool isSet = m_zrfxAccess->SetPassword(text);
    text.Wipe();
    return isSet;
}

bool FilePrivate::writeMainDocument() {
    const nvf::ref<nvf::XmlDocument> document = ZRFxAccess::CreateMainDocument(
        ZRConvert::toZRString(m_settings.applicationName),
        ZRConvert::toZRString(m_settings.vendorName), ZRFxComponent::licenseNumber());
    return m_zrfxAccess->WriteXmlFile(unstruct::ZRFxMainDocument::kEntryName, *document, true);
}

bool FilePrivate::takeFileProperties(const Str& fileName, const Str& password) {
    unstruct::ZRFxArchiveInfo info;
    if (!m_zrfxAccess->GetArchiveInfo(&info)) return false;
    if (info.encrypted && password.isEmpty()) {
        return fail("The file is encrypted, a password is needed. '%1'",
                    Convert::toNvfString(fileName));
    }
    if (info.encrypted && !setPassword(password)) return false;
    ZRString vendorName;
    ZRString applicationName;
    if (!m_zrfxAccess->GetVendorInfo(nullptr, &vendorName, &applicationName)) {
        return info.encrypted && fail("The password is wrong, or the file is damaged. '%1'",
                                      Convert::toNvfString(fileName));
    }
    m_settings.binary = info.binary || !info.text;
    m_settings.compressionLevel = info.compressed ? m_settings.compressionLevel : 0;
    m_settings.vendorName = ZRConvert::toStr(vendorName);
    m_settings.applicationName = ZRConvert::toStr(applicationName);
    applyCompression();
    return true;
}

bool FilePrivate::renewVendorInfo() {
    return m_zrfxAccess->SetVendorInfo(ZRConvert::toZRString(m_settings.applicationName),
                                       ZRConvert::toZRString(m_settings.vendorName),
                                       ZRFxComponent::licenseNumber());
}

const ZRStringArray& FilePrivate::userTextEntries() {
    NVF_ASSERT(m_zrfxAccess);
    if (isOpen() && m_openedForReading && !m_userTextEntries.empty()) return m_userTextEntries;
    ZRStringArray found;
    if (isOpen()) m_zrfxAccess->FindFiles(unstruct::kUserDataFolder, false, &found);
    m_userTextEntries.swap(found);
    return m_userTextEntries;
}

bool FilePrivate::isRegisteredTwice(const ZRString& document, std::set<int>* documents) {
    const int entry = m_zrfxAccess->InternalFindFile(document, unstruct::LogMode::SILENT);
    if (entry < 0 || documents->insert(entry).second) return false;
    fail("'%1' is registered twice.", document);
    return true;
}

void FilePrivate::dropUnregistered() {
    std::erase_if(m_databases, [&](const PtrRef<Database>& database) {
        unstruct::ZRFxDatabaseInfo info;
        if (m_zrfxAccess->GetDatabaseByID(database->id(), &info)) return false;
        m_databaseIds.erase(database->id());
        database->m_private->detach();
        return true;
    });
    std::erase_if(m_cases, [&](const PtrRef<Case>& fileCase) {
        unstruct::ZRFxCaseInfo info;
        if (m_zrfxAccess->GetCaseByID(fileCase->id(), &info)) return false;
        m_caseIds.erase(fileCase->id());
        fileCase->m_private->detach();
        return true;
    });
}

void FilePrivate::dropLastDatabase() {
    m_databaseIds.erase(m_databases.back()->id());
    m_databases.back()->m_private->detach();
    m_databases.pop_back();
}

void FilePrivate::dropAll() {
    for (const auto& database : m_databases) database->m_private->detach();
    for (const auto& fileCase : m_cases) fileCase->m_private->detach();
    m_databases.clear();
    m_cases.clear();
    m_userTextEntries.clear();
    m_databaseIds.clear();
    m_caseIds.clear();
}

}  // namespace nuo::zrfx
