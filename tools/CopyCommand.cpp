#include "CopyCommand.h"

#include <algorithm>
#include <map>
#include <memory>
#include <set>

#include "Entries.h"
#include "FileReader.h"
#include "OptionChecks.h"
#include "OutputFile.h"
#include "Progress.h"
#include "Text.h"
#include "blocks/mesh/ZRFxGeometryBlock.h"
#include "blocks/mesh/ZRFxGeometryInfoBlock.h"
#include "documents/ZRFxXml.h"
#include "selection/ModelSelection.h"

namespace tools {
namespace {

using namespace unstruct;

constexpr const char* kExamples =
    "  zrfx copy big.zrfx small.zrfx --level 9\n"
    "  zrfx copy plate.zrfx plate.zrfx            # reclaims unused space\n"
    "  zrfx copy big.zrfx small.zrfx --digits 4      # of result values\n"
    "  zrfx copy big.zrfx small.zrfx --results STRESS,DISP --states last --parts Flange\n"
    "  zrfx copy plate.zrfx secret.zrfx --password\n"
    "  zrfx copy secret.zrfx plain.zrfx --no-password --text";

constexpr int kDefaultLevel = 5;

struct Options {
    std::string in;
    std::string out;
    int level = -1;
    int digits = 0;
    bool isText = false;
    bool isBinary = false;
    bool wantsPassword = false;
    bool wantsNoPassword = false;
    std::string newPasswordFile;
    ModelChoice choice;
};

// What is wanted of each database, by its id; of none when all is.
using Selections = std::map<int, std::unique_ptr<ModelSelection>>;

/// Copies what is in one archive to another that is new: databases block by block, each in the form
/// of the new file, everything else entry by entry as it is. One block is in memory at a time.
class Copy {
public:
    Copy(FileReader& in, const Entries& entries, ZRFxAccess& out, bool isText, int digits,
         const Selections& selections)
        : m_in(in),
          m_entries(entries),
          m_out(out),
          m_isText(isText),
          m_digits(digits),
          m_selections(selections),
          m_progress("copying", Progress::Unit::BYTES, entries.totalSize()) {}

    bool run() { return copyMainDocument() && copyDatabases() && copyCases() && copyOthers(); }

private:
    // The registries fill again as databases and cases are added.
    bool copyMainDocument() {
        nvf::XmlDocument document;
        if (!m_in.access().InternalReadXmlFile(ZRFxMainDocument::kEntryName, LogMode::LOG,
                                               &document)) {
            return false;
        }
        nvf::XmlElement root = document.getRootElement();
        for (const char* registry : {"Cases", "Databases"}) {
            root.removeChildElement(root.firstChildElement(registry));
            root.addChildElement(registry);
        }
        m_copied.insert(ZRFxMainDocument::kEntryName);
        return m_out.WriteXmlFile(ZRFxMainDocument::kEntryName, document, true);
    }

    bool copyDatabases() {
        return std::ranges::all_of(m_in.databases(),
                                   [&](const auto& database) { return copyDatabase(*database); });
    }

    bool copyDatabase(ZRFxDatabase& in) {
        ZRFxDatabase out(&m_out);
        out.SetTextMode(m_isText);
        out.SetSignificantDigits(m_digits);
        if (!out.Create(in.GetName(), in.GetID(), in.GetSourceName(), in.GetSimulationType(),
                        in.GetSolutionType(), in.GetDescription())) {
            return false;
        }
        m_folders.push_back(in.GetFolder().Bytes());
        for (int i = 0; i < in.GetNumBlocks(); ++i) {
            if (!copyBlock(*in.GetBlock(i), in, out)) return false;
            m_progress.advance(m_entries.sizeOf(in, in.GetBlock(i)->GetFileName()));
        }
        return out.WriteTOC();
    }

    bool copyBlock(const ZRFxBlock& entry, ZRFxDatabase& in, ZRFxDatabase& out) {
        const ModelSelection* selection = selectionOf(in.GetID());
        if (selection && !selection->keeps(entry.GetType(), entry.GetID())) return true;
        const auto block = readBlock(in, entry.GetType(), entry.GetID());
        return block.notNull() && writeReduced(*block, selection, out) &&
               (block->GetType() != BLOCK_GEOMETRY || copyLegacyInfo(*block, in, out));
    }

    static bool writeReduced(ZRFxBlock& block, const ModelSelection* selection, ZRFxDatabase& out) {
        return selection ? selection->reduced(block)->WriteBlock(&out) : block.WriteBlock(&out);
    }

    // Geometries of the legacy layout tell the names of the parts, too; the new form does not.
    bool copyLegacyInfo(const ZRFxBlock& block, ZRFxDatabase& in, ZRFxDatabase& out) const {
        const auto& geometry = static_cast<const ZRFxGeometryBlock&>(block);
        if (geometry.HasGeometryCountPerState() || in.GetNumBlocks(BLOCK_GEOMETRY_INFO) > 0) {
            return true;
        }
        const nvf::ref<ZRFxGeometryInfoBlock> info = new ZRFxGeometryInfoBlock(&in, block.GetID());
        return geometry.GetLegacyGeometryInfo(info.p()) &&
               writeReduced(*info, selectionOf(in.GetID()), out);
    }

    bool copyCases() {
        int count = 0;
        if (!m_in.access().GetNumCases(&count)) return false;
        for (int i = 0; i < count; ++i) {
            ZRFxCaseInfo info;
            nvf::XmlDocument document;
            if (!m_in.access().GetCaseInfo(i, &info) ||
                !m_in.access().InternalReadXmlFile(info.path, LogMode::LOG, &document) ||
                !m_out.AddCase(document, false)) {
                return false;
            }
            m_copied.insert(withBackslashes(info.path.Bytes()));
            if (selectionOf(info.databaseId) && !copySettings(info, document)) return false;
        }
        return true;
    }

    const ModelSelection* selectionOf(int database) const {
        const auto found = m_selections.find(database);
        return found == m_selections.end() ? nullptr : found->second.get();
    }

    // The viewer settings of a case, without those of what is not copied.
    bool copySettings(const ZRFxCaseInfo& info, const nvf::XmlDocument& document) {
        const ZRString given = GetAttribute(document.getRootElement("Case"), "ZRFxProperties");
        const ZRString name = given.IsBlank() ? ZRString("ZRFxProperties.xml") : given;
        const ZRString entry = info.folder + std::string(1, kFolderSeparator) + name;
        if (!m_in.access().Contains(entry)) return true;
        nvf::PropertySetCollection settings;
        if (!m_in.access().ReadProperties(entry, &settings)) return false;
        m_copied.insert(withBackslashes(entry.Bytes()));
        return m_out.WriteProperties(entry, *selectionOf(info.databaseId)->reduced(settings));
    }

    // Files of cases, user texts, and what other programs have put there. In the folders of
    // databases, documents and data files that no block needs are what a copy gets rid of.
    bool copyOthers() {
        ZRStringArray entries;
        if (!m_in.access().FindFiles("", true, &entries)) return false;
        return std::ranges::all_of(entries, [&](const ZRString& entry) {
            const std::string name = withBackslashes(entry.Bytes());
            return m_copied.contains(name) || isOfDatabase(name) || copyEntry(entry, name);
        });
    }

    bool isOfDatabase(const std::string& name) const {
        const std::string extension = ZRString(name).Extension().ToLower().Bytes();
        if (extension != ".xml" && extension != ".dat" && extension != ".txt") return false;
        return std::ranges::any_of(m_folders, [&](const std::string& folder) {
            return name.starts_with(folder + kFolderSeparator);
        });
    }

    bool copyEntry(const ZRString& entry, const std::string& name) {
        ZRFxZipRawData raw;
        m_progress.advance(m_entries.sizeOf(name));
        return m_in.access().InternalReadDataRaw(entry, LogMode::LOG, &raw) &&
               m_out.WriteDataRaw(name, raw.Buffer(), raw.Length(), true);
    }

    FileReader& m_in;
    const Entries& m_entries;
    ZRFxAccess& m_out;
    const bool m_isText;
    const int m_digits;  // of result values; 0 keeps all
    const Selections& m_selections;
    Progress m_progress;
    std::set<std::string> m_copied;
    std::vector<std::string> m_folders;
};

// The settings of the new file: those of the old one, but for the options that are given.
struct Form {
    int level;
    bool isText;
    int digits;
    std::string password;
};

bool chooseForm(ToolContext& context, const Options& options, FileReader& in, Form* form) {
    ZRFxArchiveInfo info;
    if (!in.access().GetArchiveInfo(&info)) return false;
    form->level = options.level >= 0 ? options.level : info.compressed ? kDefaultLevel : 0;
    form->isText = options.isText || (!options.isBinary && info.text && !info.binary);
    form->digits = options.digits;
    form->password = in.password();
    if (options.wantsNoPassword) {
        form->password.clear();
        return true;
    }
    const bool isFromFile = !options.newPasswordFile.empty();
    if (isFromFile || options.wantsPassword) {
        return context.newPasswordFor(options.out, options.newPasswordFile, "ZRFX_NEW_PASSWORD",
                                      &form->password);
    }
    // A password that was given for a file that needs none is meant for the new one.
    if (!info.encrypted && !context.passwordFile().empty()) {
        return context.newPasswordFor(options.out, context.passwordFile(), "ZRFX_NEW_PASSWORD",
                                      &form->password);
    }
    return true;
}

bool writeCopy(FileReader& in, const Form& form, const Selections& selections,
               const std::string& path) {
    ZRFxZipArchive archive;
    ZRFxAccess out;
    if (!archive.Open(in.path(), ZRZipAccessMode::READ_ONLY)) return false;
    const Entries entries(archive);
    if (!out.Open(path, ZRZipAccessMode::CREATE)) return false;
    out.SetCompression(form.level, ZRFxAccess::kDefaultSmartness, ZRFxAccess::kDefaultBufferSize,
                       ZRFxAccess::kDefaultBufferSize);
    if (out.SetPassword(form.password) &&
        Copy(in, entries, out, form.isText, form.digits, selections).run() && out.Close()) {
        return true;
    }
    out.Abandon();
    return false;
}

// Tells a failure of the file that it happened in, the new one under its own name.
int failCopy(ToolContext& context, const Options& options, const std::string& temporaryPath) {
    std::string cause = context.log().takeCause();
    const std::size_t at = cause.find(temporaryPath);
    if (at == std::string::npos) return context.fail(options.in, cause);
    return context.fail(options.out, cause.replace(at, temporaryPath.size(), options.out));
}

bool select(const Options& options, FileReader& in, Selections* selections, std::string* error) {
    if (options.choice.isEmpty()) return true;
    for (const auto& database : in.databases()) {
        auto selection = std::make_unique<ModelSelection>(*database, options.choice);
        if (!selection->resolve(error)) return false;
        selections->emplace(database->GetID(), std::move(selection));
    }
    return true;
}

int copy(ToolContext& context, const Options& options) {
    FileReader in(context);
    Form form;
    if (!in.open(options.in)) return ToolContext::FAILURE;
    if (!context.log().takeMessages().empty()) {
        return context.fail(options.in, "some case cannot be read; zrfx check tells which");
    }
    if (!chooseForm(context, options, in, &form)) return ToolContext::FAILURE;
    std::string error;
    Selections selections;
    if (!select(options, in, &selections, &error)) return context.fail(options.in, error);
    OutputFile output(options.out);
    if (!output.prepare(&error)) return context.fail(options.out, error);
    if (!writeCopy(in, form, selections, output.temporaryPath())) {
        return failCopy(context, options, output.temporaryPath());
    }
    if (!output.finish(&error)) return context.fail(options.out, error);
    return ToolContext::FINE;
}

}  // namespace

void addCopyCommand(CLI::App& application, ToolContext& context) {
    const auto options = std::make_shared<Options>();
    CLI::App* command = context.addCommand(
        application, "copy", "Writes the same content with other settings and no unused space",
        kExamples, [&context, options] { return copy(context, *options); });
    command->add_option("IN", options->in, "A ZRFx file")->required();
    command->add_option("OUT", options->out, "The file to write, which may be IN")->required();
    command->add_option("--level", options->level, "Compression, 0 (none) to 9 (smallest)")
        ->type_name("N")
        ->check(wholeNumber(0, 9));
    command
        ->add_option("--digits", options->digits,
                     "Significant digits of result values, 1 to 6; by default they keep all")
        ->type_name("N")
        ->check(wholeNumber(1, 6));
    const auto addList = [&](const char* name, auto& list, const char* type, const char* text) {
        command->add_option(name, list, text)->type_name(type)->allow_extra_args(false);
    };
    addList("--results", options->choice.results, "NAME,...", "Only these results, by name or id");
    addList("--states", options->choice.states, "STATE,...",
            "Only these states, by id or name, or last");
    addList("--parts", options->choice.parts, "PART,...",
            "Only these parts, by name or id, with their nodes and values");
    CLI::Option* text = command->add_flag("--text", options->isText, "Data files as lines of text");
    command->add_flag("--binary", options->isBinary, "Data files as packed values")->excludes(text);
    CLI::Option* none =
        command->add_flag("--no-password", options->wantsNoPassword, "Do not encrypt OUT");
    command
        ->add_flag("--password", options->wantsPassword,
                   "Encrypt OUT with a password from ZRFX_NEW_PASSWORD or the terminal")
        ->excludes(none);
    command
        ->add_option("--new-password-file", options->newPasswordFile,
                     "Encrypt OUT with the first line of a file")
        ->type_name("FILE")
        ->excludes(none);
}

}  // namespace tools
