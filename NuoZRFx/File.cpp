#include "NuoZRFx/File.h"

#include <map>
#include <set>

#include "Case_p.h"
#include "Convert_p.h"
#include "Database_p.h"
#include "File_p.h"
#include "Log_p.h"
#include "NuoZRFx/ZRFxComponent.h"
#include "UnusedId_p.h"
#include "documents/ZRFxXml.h"
#include "nvf/Assert.h"

namespace nuo::zrfx {
namespace {

using nvf::Reason;
using unstruct::ZRFxAccess;
using unstruct::ZRString;
using unstruct::ZRStringArray;
using unstruct::ZRZipAccessMode;

constexpr const char* kUserExtension = ".txt";
constexpr const char* kNotOpen = "The file is not open.";

ZRString userEntry(const Str& name) {
    return std::string(unstruct::kUserDataFolder) + unstruct::kFolderSeparator +
           Convert::toUtf8(name) + kUserExtension;
}

}  // namespace

File::File() {
    guarded([&] { m_private.take(std::make_unique<FilePrivate>()); });
}

File::~File() = default;

template <typename Open>
bool File::opened(Open open) {
    return noted(m_private, Reason::DAMAGED, [&] {
        const nvf::Progress progress(*m_private->progress());
        return m_private->openOrDrop(open);
    });
}

bool File::create(const Str& fileName, const FileSettings& settings) {
    close();
    return opened([&] {
        if (!ZRFxComponent::isInitialized()) {
            return failBecause(Reason::NOT_INITIALIZED, kNotInitialized);
        }
        if (fileName.isEmpty()) {
            return failBecause(Reason::INVALID_ARGUMENT, "File name string is NULL.");
        }
        m_private->reset();
        m_private->takeSettings(settings);
        ZRFxAccess& access = *m_private->access();
        if (!access.Open(ZRConvert::toZRString(fileName), ZRZipAccessMode::CREATE)) {
            return fail("Error creating file.");
        }
        m_private->applyCompression();
        if (!m_private->setPassword(settings.password) || !m_private->writeMainDocument()) {
            access.Abandon();
            return fail("Error creating file.");
        }
        return true;
    });
}

void File::setThreads(int threads) {
    if (!m_private.isNull()) m_private->setThreads(threads);
}

bool File::open(const Str& fileName) {
    return open(fileName, Str());
}

bool File::open(const Str& fileName, const Str& password) {
    return opened([&] {
        if (!m_private->begin(fileName)) return false;
        if (!m_private->openAccess(fileName, ZRZipAccessMode::READ_ONLY))
            return fail("Error opening file.");
        if (!m_private->takeFileProperties(fileName, password)) {
            m_private->access()->Abandon();
            return fail("Error opening file.");
        }
        return readRegistries();
    });
}

bool File::openForAppend(const Str& fileName) {
    return openForAppend(fileName, Str());
}

bool File::openForAppend(const Str& fileName, const Str& password) {
    close();
    return opened([&] {
        if (!m_private->begin(fileName)) return false;
        if (!m_private->openAccess(fileName, ZRZipAccessMode::UPDATE))
            return fail("Error creating file.");
        if (!m_private->takeFileProperties(fileName, password) || !m_private->renewVendorInfo()) {
            m_private->access()->Abandon();
            return fail("Error creating file.");
        }
        return readRegistries();
    });
}

bool File::flush() {
    return noted(m_private, Reason::SYSTEM_ERROR, [&] {
        if (!m_private->isOpen()) return refuse(Reason::NOT_OPEN, kNotOpen);
        if (m_private->isReadOnly()) return failBecause(Reason::READ_ONLY, "Error writing file.");
        const nvf::Progress progress(*m_private->progress());
        for (const auto& database : m_private->databases()) {
            if (!database->m_private->flush()) {
                return fail("Could not write database (id %1) to file.", database->id());
            }
        }
        return writeCases() && (m_private->access()->Commit() || fail("Error writing file."));
    });
}

bool File::close() {
    return noted(m_private, Reason::SYSTEM_ERROR, [&] {
        if (!m_private->isOpen()) return refuse(Reason::NOT_OPEN, kNotOpen);
        const nvf::Progress progress(*m_private->progress());
        if (!m_private->isReadOnly() && !(writeDatabases() && writeCases())) return false;
        if (!m_private->access()->Close()) return fail("Error writing file.");
        m_private->drop();
        return true;
    });
}

bool File::closeAs(const Str& fileName) {
    return noted(m_private, Reason::SYSTEM_ERROR, [&] {
        if (!m_private->isOpen()) return refuse(Reason::NOT_OPEN, kNotOpen);
        if (m_private->isReadOnly()) return failBecause(Reason::READ_ONLY, "Error writing file.");
        const nvf::Progress progress(*m_private->progress());
        if (!writeDatabases() || !writeCases()) return false;
        if (!m_private->access()->CloseAs(ZRConvert::toZRString(fileName))) {
            return fail("Error writing file.");
        }
        m_private->drop();
        return true;
    });
}

void File::abandon() {
    guarded([&] {
        if (!m_private->isOpen()) return;
        m_private->access()->Abandon();
        m_private->drop();
    });
}

bool File::refresh(bool* isChanged) {
    return noted(m_private, Reason::DAMAGED, [&] {
        if (isChanged) *isChanged = false;
        if (!m_private->isOpen()) return refuse(Reason::NOT_OPEN, kNotOpen);
        if (!m_private->isReadOnly()) {
            return failBecause(Reason::INVALID_ARGUMENT,
                               "A file that is open for writing cannot be refreshed.");
        }
        const nvf::Progress progress(*m_private->progress());
        unstruct::ZRFxArchiveChanges changes;
        if (!m_private->access()->Refresh(&changes)) return fail("Error refreshing file.");
        if (isChanged) *isChanged = changes.bAny;
        if (!changes.bAny) return true;
        const ZRFxAccess::BoundedReading bounded(m_private->access());
        m_private->forgetUserTextEntries();
        return refreshDatabases(changes) && refreshCases(changes);
    });
}

void File::setProgressCallback(ProgressCallback callback) {
    guarded([&] { *m_private->progress() = std::move(callback); });
}

const Error& File::lastError() const {
    return lastErrorOf(m_private);
}

bool File::isEncrypted(const Str& fileName) {
    return guarded([&] {
        ZRFxAccess access;
        unstruct::ZRFxArchiveInfo info;
        const bool isRead =
            access.Open(ZRConvert::toZRString(fileName), ZRZipAccessMode::READ_ONLY) &&
            access.GetArchiveInfo(&info);
        if (isRead) access.Abandon();
        return isRead && info.encrypted;
    });
}

bool File::isZRFxFile(const Str& fileName) {
    return guarded([&] { return ZRFxAccess::IsZRFxFile(ZRConvert::toZRString(fileName)); });
}

std::size_t File::databaseCount() const {
    return guarded([&] { return m_private->databases().count(); });
}

Database* File::database(std::size_t index) {
    return guarded([&] { return m_private->databases().at(index); });
}

std::size_t File::fileCaseCount() const {
    return guarded([&] { return m_private->cases().count(); });
}

Case* File::fileCase(std::size_t index) {
    return guarded([&] { return m_private->cases().at(index); });
}

const Case* File::fileCase(std::size_t index) const {
    return guarded([&] { return m_private->cases().at(index); });
}

int File::unusedDatabaseId() const {
    return guarded(-1, [&]() -> int {
        if (!m_private->isOpen()) {
            fail("Error writing file.");
            return -1;
        }
        return unusedId(m_private->databases().ids(), 0);
    });
}

int File::unusedFileCaseId() const {
    return guarded(-1, [&] { return unusedId(m_private->cases().ids(), 0); });
}

bool File::addUserTextFile(const Str& fileName, const Str& content) {
    return noted(m_private, Reason::INVALID_ARGUMENT, [&] {
        const bool isThere = nvf::requireThat("m_zrfxAccess", m_private->access() != nullptr,
                                              "addUserTextFile: the file is not open");
        if (!isThere || !m_private->isOpen()) return refuse(Reason::NOT_OPEN, kNotOpen);
        if (fileName.isEmpty()) return fail("Given file name string was empty.");
        if (content.isEmpty()) return fail("Given file content string was empty.");
        const std::string text = Convert::toUtf8(content);
        return (ZRConvert::isFileName(fileName) &&
                m_private->access()->WriteDataRaw(userEntry(fileName), text.data(), text.size(),
                                                  true)) ||
               fail("Error writing the user file to the ZRFx file.");
    });
}

std::size_t File::userTextFileCount() const {
    return guarded([&] { return m_private->userTextEntries().size(); });
}

Str File::userTextFileName(std::size_t index) const {
    return guarded([&]() -> Str {
        const ZRStringArray& entries = m_private->userTextEntries();
        if (index >= entries.size()) {
            fail("No user text file was found at index %1", index);
            return Str();
        }
        const std::string name = entries[index].FileName().Bytes();
        const std::string extension = kUserExtension;
        const bool isWithout = !name.ends_with(extension);
        return isWithout ? name : name.substr(0, name.size() - extension.size());
    });
}

Str File::userTextFileContent(std::size_t index) const {
    return guarded([&]() -> Str {
        const ZRStringArray& entries = m_private->userTextEntries();
        if (index >= entries.size()) {
            fail("No user text file was found at index %1", index);
            return Str();
        }
        ZRString content;
        if (!m_private->access()->ReadDataString(entries[index], &content)) {
            fail("Not able to read user text file : %1", entries[index].FileName());
        }
        return ZRConvert::toStr(content);
    });
}

const FileSettings* File::settings() const {
    static const FileSettings kNone;
    return m_private.isNull() ? &kNone : &m_private->settings();
}

unstruct::ZRFxAccess* File::internal_access() const {
    const bool isOpen = !m_private.isNull() && m_private->isOpen();
    return isOpen ? m_private->access() : nullptr;
}

unstruct::ZRFxAccess* File::writableAccess() const {
    unstruct::ZRFxAccess* const access = internal_access();
    return access && !m_private->isReadOnly() ? access : nullptr;
}

bool File::checkNewDatabaseId(int id) const {
    return !m_private->databases().hasId(id) ||
           failBecause(Reason::EXISTS, "Database with id %1 already registered.", id);
}

bool File::addDatabase(Database* database) {
    const int id = database->id();
    if (!checkNewDatabaseId(id)) return false;
    FilePrivate::Items<Database>::NewId(&m_private->databases(), id).giveTo(database);
    return true;
}

bool File::addCase(Case* fileCase) {
    const int id = fileCase->id();
    if (m_private->cases().hasId(id))
        return failBecause(Reason::EXISTS, "Case with id %1 already registered.", id);
    FilePrivate::Items<Case>::NewId(&m_private->cases(), id).giveTo(fileCase);
    return true;
}

// A file that could not be read completely is closed again: which ids it uses is not known.
bool File::readRegistries() {
    const nvf::Progress::Part part(0.5);
    const ZRFxAccess::BoundedReading bounded(m_private->access());
    if (readDatabases() && readCases()) return true;
    m_private->dropAll();
    m_private->access()->Abandon();
    return false;
}

bool File::readDatabases() {
    int count = 0;
    if (!m_private->access()->GetNumDatabases(&count)) return fail("Error opening file.");
    std::set<int> documents;
    for (int index = 0; index < count; ++index) {
        const nvf::Progress::Part part(1.0 / count);
        unstruct::ZRFxDatabaseInfo info;
        m_private->access()->GetDatabaseInfo(index, &info);
        // An id that is in use has a message of its own.
        const bool isNewId = !m_private->databases().hasId(info.id);
        const bool isTwice = isNewId && m_private->isRegisteredTwice(info.path, &documents);
        const PtrRef<Database> database = isTwice ? nullptr : new Database(this, info.id);
        if (!database || database->id() < 0 || !database->internal_parse()) {
            return fail("Error reading database (index %1) from file.", index);
        }
    }
    return true;
}

// A case that cannot be read has said so and is left out; its id stays its own.
bool File::readCases() {
    int count = 0;
    if (!m_private->access()->GetNumCases(&count)) return fail("Error opening file.");
    std::set<int> documents;
    std::set<int> registered;
    for (int index = 0; index < count; ++index) {
        unstruct::ZRFxCaseInfo info;
        m_private->access()->GetCaseInfo(index, &info);
        registered.insert(info.id);
        const bool isNewId = !m_private->cases().hasId(info.id);
        if (isNewId && m_private->isRegisteredTwice(info.path, &documents)) continue;
        const PtrRef<Case> read = new Case(this, index);
    }
    m_private->cases().useIds(std::move(registered));
    return true;
}

bool File::refreshDatabases(const unstruct::ZRFxArchiveChanges& changes) {
    int count = 0;
    if (!m_private->access()->GetNumDatabases(&count)) return fail("Error refreshing file.");
    if (changes.bReplaced) m_private->dropUnregistered();
    for (const auto& database : m_private->databases()) {
        if (!database->m_private->refresh(changes)) {
            return fail("Error refreshing database (id %1).", database->id());
        }
    }
    for (int index = 0; index < count; ++index) {
        unstruct::ZRFxDatabaseInfo info;
        m_private->access()->GetDatabaseInfo(index, &info);
        if (m_private->databases().hasId(info.id)) continue;
        const PtrRef<Database> database = new Database(this, info.id);
        if (database->id() >= 0 && database->internal_parse()) continue;
        if (database->id() >= 0) m_private->dropLastDatabase();
        return fail("Error reading database (index %1) from file.", index);
    }
    return true;
}

bool File::refreshCases(const unstruct::ZRFxArchiveChanges& changes) {
    int count = 0;
    if (!m_private->access()->GetNumCases(&count)) return fail("Error refreshing file.");
    std::map<int, Case*> known;
    for (const auto& fileCase : m_private->cases()) known[fileCase->id()] = fileCase.p();
    for (int index = 0; index < count; ++index) {
        unstruct::ZRFxCaseInfo info;
        m_private->access()->GetCaseInfo(index, &info);
        const auto found = known.find(info.id);
        if (found != known.end() && !found->second->m_private->refresh(index, changes)) {
            return fail("Error refreshing case (id %1).", info.id);
        }
        if (!m_private->cases().hasId(info.id)) {
            const PtrRef<Case> read = new Case(this, index);
            m_private->cases().useIds({info.id});
        }
    }
    return true;
}

bool File::writeDatabases() {
    for (const auto& database : m_private->databases()) {
        if (!database->m_private->writeDelayed()) {
            return fail("Could not write database (id %1) to file.", database->id());
        }
        database->m_private->warnOfMisfits();
    }
    return true;
}

bool File::writeCases() {
    for (const auto& fileCase : m_private->cases()) {
        if (!fileCase->m_private->writeDelayed()) {
            return fail("Could not write case (id %1) to file.", fileCase->id());
        }
    }
    return true;
}

}  // namespace nuo::zrfx
