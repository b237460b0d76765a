#include "CheckCommand.h"

#include <algorithm>
#include <map>
#include <memory>
#include <unordered_set>

#include "Entries.h"
#include "FileReader.h"
#include "OptionChecks.h"
#include "Progress.h"
#include "StandardOutput.h"
#include "Text.h"
#include "check/CaseChecks.h"
#include "check/CheckedDatabase.h"
#include "check/Findings.h"
#include "container/ZRFxZipArchive.h"
#include "documents/ZRFxXml.h"

namespace tools {
namespace {

using namespace unstruct;

constexpr const char* kExamples =
    "  zrfx check plate.zrfx\n"
    "  zrfx check plate.zrfx --json | jq -r '.errors[] | .entry + \": \" + .message'\n"
    "  find . -name '*.zrfx' -exec zrfx check {} \\;";

constexpr const char* kMainEntry = ZRFxMainDocument::kEntryName;

struct Options {
    std::string file;
    bool isJson = false;
    std::size_t limit = 20;
};

/// The check of one file: databases block by block, cases, and then every entry that was not read
/// on the way. Memory is that of the geometry and of one result at a time.
class FileCheck {
public:
    FileCheck(ZRFxAccess& access, ZRFxZipArchive& archive, LogCollector& log, Findings& findings)
        : m_access(access),
          m_archive(archive),
          m_log(log),
          m_findings(findings),
          m_entries(archive),
          m_progress("checking", Progress::Unit::BYTES, m_entries.totalSize()) {}

    void run() {
        const nvf::ref<nvf::XmlDocument> document = new nvf::XmlDocument;
        if (m_access.ReadAndValidateMainDocumentFile(document.p())) {
            m_used.insert(kMainEntry);
            readCaseInfos();
            checkDatabases();
            checkCases();
        } else if (!takeLog(m_log, m_findings, "main-document", kMainEntry)) {
            Reporter(m_findings, "main-document", kMainEntry).error("", "its root is not \"ZRF\"");
        }
        checkEntries();
    }

private:
    void readCaseInfos() {
        int count = 0;
        m_access.GetNumCases(&count);
        for (int i = 0; i < count; ++i) {
            ZRFxCaseInfo info;
            m_access.GetCaseInfo(i, &info);
            m_knownFolders.insert(withBackslashes(info.folder.Bytes()));
            if (!m_caseIds.insert(info.id).second) reportTwice(numbered("case", info.id));
            if (isNewDocument(info.path)) m_cases.push_back(info);
        }
    }

    void reportTwice(const std::string& what, const std::string& registry = kMainEntry) {
        Reporter(m_findings, "duplicate-id", registry).error("", what + " is registered twice");
    }

    // Each document is checked once, however often a registry names it.
    bool isNewDocument(const ZRString& path) {
        if (m_used.insert(withBackslashes(path.Bytes())).second) return true;
        reportTwice("'" + path.Bytes() + "'");
        return false;
    }

    void checkDatabases() {
        int count = 0;
        m_access.GetNumDatabases(&count);
        for (int i = 0; i < count; ++i) {
            ZRFxDatabaseInfo info;
            m_access.GetDatabaseInfo(i, &info);
            if (!m_resultIds.try_emplace(info.id).second) {
                reportTwice(numbered("database", info.id));
            } else if (isNewDocument(info.path)) {
                checkDatabase(info);
            }
        }
    }

    void checkDatabase(const ZRFxDatabaseInfo& info) {
        ZRFxDatabase database(&m_access);
        database.Parse(info.id, ZRFxParseMode::LENIENT);
        takeLog(m_log, m_findings, "database", info.folder.Bytes());
        m_used.insert(withBackslashes(database.EntryName("Database-TOC.xml").Bytes()));
        CheckedDatabase checked(database, m_findings);
        for (const int type : kStoredBlockTypes) {
            for (const int id : blockIds(database, type)) checkBlockOf(database, type, id, checked);
        }
        checkWhole(checked);
        const auto& resultIds = checked.model().ResultIDs();
        m_resultIds[info.id] = {resultIds.begin(), resultIds.end()};
        m_log.takeMessages();  // of documents that have been reported
    }

    void checkBlockOf(ZRFxDatabase& database, int type, int id, CheckedDatabase& checked) {
        const auto block = database.OpenBlock(type, id);
        const ZRString document = block->GetFileName();
        if (m_used.contains(m_entries.documentEntry(database, document))) {
            return reportTwice("'" + document.Bytes() + "'",
                               database.EntryName("Database-TOC.xml").Bytes());
        }
        const bool isRead = block->ReadBlock();
        if (!takeLog(m_log, m_findings, "block", document.Bytes()) && !isRead) {
            Reporter(m_findings, "block", document.Bytes()).error("", "the block cannot be read");
        }
        noteFiles(database, document, isRead);
        if (!isRead) return;
        checkBlock(*block, checked);
        m_log.takeMessages();  // of other blocks, which report them on their own
    }

    // Files that the document of a block records are meant to be there; the main data of a block
    // that can be read has been read with it.
    void noteFiles(const ZRFxDatabase& database, const ZRString& document, bool isRead) {
        m_used.insert(m_entries.documentEntry(database, document));
        nvf::XmlDocument content;
        if (!isRead && !database.ReadXmlFile(document, &content)) m_hasLostDocument = true;
        for (const Entries::File& file : m_entries.dataFiles(database, document)) {
            m_used.insert(file.entry);
            const bool isNew = isRead && file.isMainData && m_verified.insert(file.entry).second;
            if (isNew) m_progress.advance(m_entries.sizeOf(file.entry));
        }
        m_log.takeMessages();  // of a document that has been reported
    }

    void checkCases() {
        CaseCheck check(m_access, m_log, m_findings, m_resultIds);
        for (const ZRFxCaseInfo& info : m_cases) check.run(info);
    }

    bool isInKnownFolder(const std::string& entry) const {
        for (std::size_t at = entry.find(kFolderSeparator); at != std::string::npos;
             at = entry.find(kFolderSeparator, at + 1)) {
            if (m_knownFolders.contains(entry.substr(0, at))) return true;
        }
        return false;
    }

    void checkEntries() {
        for (std::size_t i = 0; i < m_archive.EntryCount(); ++i) {
            const auto info = m_archive.EntryAt(i);
            const std::string entry = withBackslashes(info.sName);
            if (!m_verified.contains(entry)) {
                ZRFxZipRawData raw;
                if (!m_archive.Read(info.sName, &raw)) {
                    m_findings.addCause(
                        {Severity::ERROR, "entry", info.sName, "", m_archive.LastError()});
                }
                m_progress.advance(info.nSize);
            }
            // Without a document nobody knows which entries are meant to be there.
            const bool isUnknown = m_hasLostDocument || !m_used.contains(kMainEntry);
            if (isUnknown || m_used.contains(entry) || isInKnownFolder(entry)) continue;
            Reporter(m_findings, "unused-entry", info.sName)
                .warning("", "nothing refers to this entry of " + byteText(info.nPackedSize));
        }
    }

    ZRFxAccess& m_access;
    ZRFxZipArchive& m_archive;
    LogCollector& m_log;
    Findings& m_findings;
    const Entries m_entries;
    std::unordered_set<std::string> m_used;      // entries that are meant to be there
    std::unordered_set<std::string> m_verified;  // entries that have been read with a block
    Progress m_progress;
    std::unordered_set<std::string> m_knownFolders{kUserDataFolder};  // of cases and user texts
    std::vector<ZRFxCaseInfo> m_cases;
    std::set<int> m_caseIds;
    std::map<int, std::set<int>> m_resultIds;  // by database
    bool m_hasLostDocument = false;            // that would say which data files belong to it
};

// A few entries may be damaged, but all of the first ones hardly are.
bool isPasswordRight(ZRFxZipArchive& archive) {
    constexpr std::size_t kTries = 10;
    std::size_t tries = 0;
    for (std::size_t i = 0; i < archive.EntryCount() && tries < kTries; ++i) {
        const auto entry = archive.EntryAt(i);
        ZRFxZipRawData raw;
        if (!entry.bEncrypted) continue;
        if (archive.Read(entry.sName, &raw)) return true;
        ++tries;
    }
    return tries == 0;
}

// Whatever the library refuses to open is wrong.
void checkOpening(ToolContext& context, const std::string& path, const std::string& password,
                  Findings& findings) {
    nuo::zrfx::File file;
    context.log().takeMessages();
    if (file.open(path, password)) return;
    Reporter(findings, "main-document", kMainEntry).error("", context.log().takeCause());
}

void printFindings(const Options& options, const Findings& findings) {
    if (options.isJson) {
        Json json = {{"file", options.file}};
        json.update(findings.json());
        return printJson(json);
    }
    const std::string summary = counted(findings.errorCount(), "error") + ", " +
                                counted(findings.warningCount(), "warning");
    print(findings.text() + options.file + ": " + summary + "\n");
}

int check(ToolContext& context, const Options& options) {
    std::string password;
    if (!context.passwordFor(options.file, &password)) return ToolContext::FAILURE;
    ZRFxAccess access;
    ZRFxZipArchive archive;
    if (!access.Open(options.file, ZRZipAccessMode::READ_ONLY) || !access.SetPassword(password)) {
        return context.fail(options.file);
    }
    if (!archive.Open(options.file, ZRZipAccessMode::READ_ONLY) || !archive.SetPassword(password)) {
        return context.fail(options.file, archive.LastError());
    }
    if (!isPasswordRight(archive)) return context.fail(options.file, "the password is wrong");
    Findings findings(options.file, options.limit);
    FileCheck(access, archive, context.log(), findings).run();
    if (findings.errorCount() == 0) checkOpening(context, options.file, password, findings);
    printFindings(options, findings);
    return findings.errorCount() > 0 ? ToolContext::FAILURE : ToolContext::FINE;
}

}  // namespace

void addCheckCommand(CLI::App& application, ToolContext& context) {
    const auto options = std::make_shared<Options>();
    CLI::App* command = context.addCommand(
        application, "check", "Reads everything in a file and reports what is wrong with it",
        kExamples, [&context, options] { return check(context, *options); });
    command->add_option("FILE", options->file, "A ZRFx file")->required();
    command->add_flag("--json", options->isJson, "Print one JSON object");
    command
        ->add_option("--limit", options->limit,
                     "How many findings of one kind to show for each entry; 0 shows all")
        ->check(wholeNumber(0))
        ->capture_default_str();
}

}  // namespace tools
