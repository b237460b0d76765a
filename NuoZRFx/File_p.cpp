#include "File_p.h"

#include <algorithm>

#include "Case_p.h"
#include "Convert_p.h"
#include "Database_p.h"
#include "Log_p.h"
#include "NuoZRFx/ZRFxComponent.h"

namespace nuo::zrfx {
namespace {

using nvf::Reason;
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
    setThreads(m_threads);
}

void FilePrivate::setThreads(int threads) {
    m_threads = m_settings.threads = threads;
    if (m_zrfxAccess) m_zrfxAccess->SetThreads(threads);
}

bool FilePrivate::begin(const Str& fileName) {
    if (!ZRFxComponent::isInitialized()) {
        return failBecause(Reason::NOT_INITIALIZED, kNotInitialized);
    }
    if (fileName.isEmpty()) {
        return failBecause(Reason::INVALID_ARGUMENT, "File name string is empty.");
    }
    reset();
    return true;
}

bool FilePrivate::openAccess(const Str& fileName, unstruct::ZRZipAccessMode mode) {
    const nvf::Progress::Part part(0.5);
    return m_zrfxAccess->Open(ZRConvert::toZRString(fileName), mode);
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
    m_settings.significantDigits = settings.significantDigits;
    m_settings.vendorName = settings.vendorName;
    m_settings.applicationName = settings.applicationName;
    setThreads(settings.threads);
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
        return failBecause(Reason::PASSWORD_NEEDED,
                           "The file is encrypted, a password is needed. '%1'",
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
    nvf::requireThat("m_zrfxAccess", m_zrfxAccess != nullptr, "user texts: the file is not open");
    if (isReadOnly() && !m_userTextEntries.empty()) return m_userTextEntries;
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
    m_databases.dropUnless([&](int id) {
        unstruct::ZRFxDatabaseInfo info;
        return m_zrfxAccess->GetDatabaseByID(id, &info);
    });
    m_cases.dropUnless([&](int id) {
        unstruct::ZRFxCaseInfo info;
        return m_zrfxAccess->GetCaseByID(id, &info);
    });
}

void FilePrivate::dropLastDatabase() {
    m_databases.dropLast();
}

void FilePrivate::dropAll() {
    m_databases.dropAll();
    m_cases.dropAll();
    m_userTextEntries.clear();
}

template <typename Item>
template <typename IsRegistered>
void FilePrivate::Items<Item>::dropUnless(IsRegistered isRegistered) {
    std::erase_if(m_items, [&](const PtrRef<Item>& item) {
        const int id = item->id();
        if (isRegistered(id)) return false;
        m_ids.erase(id);
        item->m_private->detach();
        return true;
    });
}

template <typename Item>
void FilePrivate::Items<Item>::dropLast() {
    m_ids.erase(m_items.back()->id());
    m_items.back()->m_private->detach();
    m_items.pop_back();
}

template <typename Item>
void FilePrivate::Items<Item>::dropAll() {
    for (const PtrRef<Item>& item : m_items) item->m_private->detach();
    m_items.clear();
    m_ids.clear();
}

}  // namespace nuo::zrfx
