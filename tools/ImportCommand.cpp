#include "ImportCommand.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>
#include <utility>

#include "NuoZRFx/ZRFxComponent.h"
#include "OptionChecks.h"
#include "Progress.h"
#include "StandardOutput.h"
#include "import/ImportFormats.h"
#include "import/ImportWriter.h"
#include "import/deck/ImportDeck.h"

namespace tools {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kPoll{100};
constexpr std::chrono::seconds kSettled{1};  // without news, a state is taken to be finished
constexpr int kMostDamages = 10;

// A solver that is started together with the program may have finished before it: a file that was
// finished so short a time before is its.
constexpr std::chrono::seconds kRecent{5};

struct ImportOptions {
    std::string input;
    std::string output;
    std::string deck;
    std::string name;
    int level = nuo::zrfx::FileSettings().compressionLevel;
    int digits = 0;
    bool isText = false;
    bool isFollowing = false;
    double timeout = 0;  // seconds; 0 waits without end
    bool wantsPassword = false;
};

volatile std::sig_atomic_t g_isInterrupted = 0;

void interrupt(int) {
    g_isInterrupted = 1;
}

// SIGINT and SIGTERM end the waiting instead of the process.
void catchInterrupts() {
    struct sigaction action {};
    action.sa_handler = interrupt;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

ImportWriter::Target targetOf(const ImportOptions& options, const std::string& password) {
    const std::filesystem::path input = options.input;
    ImportWriter::Target target;
    target.file = options.output;
    target.name = options.name.empty() ? input.stem().string() : options.name;
    target.description = "Imported from " + input.filename().string();
    target.settings.compressionLevel = options.level;
    target.settings.significantDigits = options.digits;
    target.settings.binary = !options.isText;
    target.settings.password = password;
    target.settings.applicationName =
        "zrfx import " + nuo::zrfx::ZRFxComponent::versionString().toStdString();
    return target;
}

// One import from one file into another.
class ImportRun {
public:
    ImportRun(const ImportOptions& options, const std::string& password, ToolContext& context)
        : m_options(options),
          m_context(context),
          m_reader(importFormatOf(options.input).makeReader()),
          m_writer(targetOf(options, password)) {
        if (!options.deck.empty()) m_deck = std::make_unique<ImportDeck>(options.deck);
    }

    int run();

private:
    bool open();
    bool openNew();
    bool isOfEarlierRun();
    bool readNext();
    bool addDeck();
    bool addValues();
    bool wait(Clock::duration needed);
    bool reopen();
    bool isStateFinished() const;
    bool isOverdue() const;
    bool failImport();
    bool reportDamage(const std::string& damage);
    void printNotes();
    int finish();

    const ImportOptions& m_options;
    ToolContext& m_context;
    const std::unique_ptr<ImportReader> m_reader;
    ImportWriter m_writer;
    std::unique_ptr<Progress> m_progress;
    const std::filesystem::file_time_type m_start = std::filesystem::file_time_type::clock::now();
    Clock::time_point m_lastGrowth = Clock::now();
    std::uint64_t m_lastSize = 0;
    Clock::duration m_pause{};
    int m_damageCount = 0;
    bool m_hasFailed = false;
    bool m_hasToldOfWaiting = false;
    std::unique_ptr<ImportDeck> m_deck;
};

int ImportRun::run() {
    if (!open()) return ToolContext::FAILURE;
    do {
        // Again and again, since a new file has its own way to end, which is to vanish.
        if (m_options.isFollowing) catchInterrupts();
        std::this_thread::sleep_for(std::exchange(m_pause, {}));
    } while (!g_isInterrupted && readNext());
    m_progress->finish();
    return m_hasFailed ? ToolContext::FAILURE : finish();
}

bool ImportRun::open() {
    while (!openNew()) {
        if (!m_options.isFollowing || errno != ENOENT) {
            m_context.fail(m_options.input, std::strerror(errno));
            return false;
        }
        if (isOverdue()) {
            m_context.fail(m_options.input, "was not written");
            return false;
        }
        std::this_thread::sleep_for(kPoll);
    }
    const std::uint64_t total = m_options.isFollowing ? 0 : m_reader->fileSize();
    if (total == 0 && !m_options.isFollowing) {
        m_context.fail(m_options.input, "the file is empty");
        return false;
    }
    m_progress = std::make_unique<Progress>("importing", Progress::Unit::BYTES, total);
    return true;
}

// A file of an earlier run counts as none.
bool ImportRun::openNew() {
    if (!m_reader->open(m_options.input)) return false;
    if (!m_options.isFollowing || !isOfEarlierRun()) return true;
    if (!std::exchange(m_hasToldOfWaiting, true)) {
        m_context.fail(m_options.input,
                       "holds the results of an earlier run; waiting for those of the new one");
    }
    errno = ENOENT;
    return false;
}

bool ImportRun::isOfEarlierRun() {
    std::error_code error;
    const auto written = std::filesystem::last_write_time(m_options.input, error);
    return !error && written < m_start - kRecent && m_reader->isFinished();
}

// False at the end, be it a good one or not.
bool ImportRun::readNext() {
    const Clock::time_point begin = Clock::now();
    const ImportReader::Event event = m_reader->next();
    m_progress->setDone(m_reader->position());
    switch (event) {
        case ImportReader::NODES:
            if (m_deck) m_deck->noteNodes(m_reader->data().nodes);
            return m_writer.addNodes(m_reader->data().nodes) || failImport();
        case ImportReader::ELEMENTS:
            return addDeck() && (m_writer.addElements(m_reader->data().elements) || failImport());
        case ImportReader::RESULT:
            return addValues() || failImport();
        case ImportReader::DAMAGE:
            reportDamage(m_reader->data().damage);
            return m_writer.hasMesh();
        case ImportReader::INCOMPLETE:
            if (m_options.isFollowing) return wait(Clock::now() - begin);
            return reportDamage(m_reader->data().damage);
        default:
            return false;
    }
}

bool ImportRun::addDeck() {
    std::string error;
    ImportData& data = m_reader->data();
    if (!m_deck || m_deck->addTo(data.elements, data.header, &error)) return true;
    m_progress->finish();
    m_hasFailed = true;
    m_context.fail(m_deck->path(), error);
    return false;
}

bool ImportRun::addValues() {
    ImportData& data = m_reader->data();
    if (m_options.isFollowing && m_writer.completesState(data.values.state.id) &&
        !m_writer.commit()) {
        return false;
    }
    return m_writer.addValues(data.values, data.header);
}

// Waits for more to be written. A block that is half there is read again, but not so often that
// nothing else is done.
bool ImportRun::wait(Clock::duration needed) {
    if (m_reader->wasWrittenAnew(m_options.input)) return reopen();
    if (m_reader->fileSize() != m_lastSize) m_lastGrowth = Clock::now();
    m_lastSize = m_reader->fileSize();
    if (isStateFinished() && !m_writer.commit()) return failImport();
    if (isOverdue())
        return reportDamage(m_reader->data().damage + ", and nothing more was written");
    m_pause = std::max<Clock::duration>(kPoll, 4 * needed);
    return true;
}

// A solver may make its file more than once before it writes the first results.
bool ImportRun::reopen() {
    if (m_reader->position() > 0) return reportDamage("the file was written anew meanwhile");
    return m_reader->open(m_options.input) || reportDamage(std::strerror(errno));
}

// When the next one has begun, or nothing more of it was written for a while.
bool ImportRun::isStateFinished() const {
    const int next = m_reader->begunState();
    const bool isSettled = Clock::now() - m_lastGrowth > kSettled;
    return m_writer.hasNews() && (isSettled || (next > 0 && m_writer.completesState(next)));
}

bool ImportRun::isOverdue() const {
    const std::chrono::duration<double> idle = Clock::now() - m_lastGrowth;
    return m_options.timeout > 0 && idle.count() > m_options.timeout;
}

bool ImportRun::failImport() {
    m_progress->finish();
    m_hasFailed = true;
    const bool isOfInput = !m_writer.inputError().empty();
    m_context.fail(isOfInput ? m_options.input : m_options.output,
                   isOfInput ? m_writer.inputError() : m_writer.outputError());
    return false;
}

// Gives false, for those whom it ends the reading.
bool ImportRun::reportDamage(const std::string& damage) {
    m_progress->finish();
    ++m_damageCount;
    if (m_damageCount <= kMostDamages) m_context.fail(m_options.input, damage);
    if (m_damageCount == kMostDamages + 1) m_context.fail(m_options.input, "and more damage");
    return false;
}

void ImportRun::printNotes() {
    std::vector<std::string> notes = m_writer.notes();
    for (const std::string& note : m_reader->data().notes) notes.push_back(note);
    if (m_deck) notes.insert(notes.end(), m_deck->notes().begin(), m_deck->notes().end());
    const bool wantsReason = !m_writer.hasResults() && importFormatOf(m_options.input).canHaveDeck;
    if (wantsReason) {
        notes.push_back(
            "the mesh is all that is in it, there are no results" +
            (m_deck ? ": " + m_deck->whyNoResults() : std::string("; --deck may tell why")));
    }
    for (const std::string& note : notes) print(printable(note) + "\n");
}

int ImportRun::finish() {
    const bool isExplained = m_damageCount > 0 && !m_writer.hasMesh();
    if (isExplained) return ToolContext::FAILURE;
    if (!m_writer.finish(m_reader->data().header)) {
        failImport();
        return ToolContext::FAILURE;
    }
    print(m_options.output + ": " + m_writer.summary() + "\n");
    printNotes();
    return m_damageCount > 0 ? ToolContext::FAILURE : ToolContext::FINE;
}

// A password that is given is meant for the new file: there is no other.
bool choosePassword(const ImportOptions& options, ToolContext& context, std::string* password) {
    if (!options.wantsPassword && context.passwordFile().empty()) return true;
    return context.newPasswordFor(options.output, context.passwordFile(), "ZRFX_NEW_PASSWORD",
                                  password);
}

bool isSameFile(const ImportOptions& options) {
    std::error_code ignored;
    return std::filesystem::equivalent(options.input, options.output, ignored);
}

int runImport(const ImportOptions& options, ToolContext& context) {
    if (isSameFile(options)) {
        context.fail(options.output, "is the file to be imported");
        return ToolContext::WRONG_USAGE;
    }
    if (options.isFollowing && !importFormatOf(options.input).canBeFollowed) {
        context.fail(options.input, "files of this format cannot be followed");
        return ToolContext::WRONG_USAGE;
    }
    if (!options.deck.empty() && !importFormatOf(options.input).canHaveDeck) {
        context.fail(options.input, "files of this format have no deck");
        return ToolContext::WRONG_USAGE;
    }
    std::string password;
    if (!choosePassword(options, context, &password)) return ToolContext::FAILURE;
    return ImportRun(options, password, context).run();
}

// "the results of CalculiX or ...".
std::string contentsText() {
    std::string text;
    for (const ImportFormat& format : importFormats()) {
        text += (text.empty() ? "" : " or ") + std::string(format.content);
    }
    return text;
}

std::string formatsText() {
    std::string text = "\nFormats:\n";
    for (const ImportFormat& format : importFormats()) {
        text += std::string("  ") + format.extension + "  " + format.content + ": " +
                format.limits + "\n";
    }
    return text;
}

constexpr const char* kExamples =
    "  zrfx import beam.frd beam.zrfx\n"
    "  zrfx import beam.frd beam.zrfx --deck beam.inp\n"
    "  zrfx import mesh.msh mesh.zrfx\n"
    "  zrfx import beam.frd beam.zrfx --name \"Beam, load case 2\" --level 9\n"
    "  ccx beam & zrfx import --follow beam.frd beam.zrfx   # readable while the solver runs\n";

}  // namespace

void addImportCommand(CLI::App& application, ToolContext& context) {
    auto options = std::make_shared<ImportOptions>();
    CLI::App* command = context.addCommand(
        application, "import", "Makes a ZRFx file of " + contentsText(), kExamples + formatsText(),
        [options, &context] { return runImport(*options, context); });
    command->add_option("FILE", options->input, "File to import; its extension says what it is")
        ->required();
    command->add_option("OUT.zrfx", options->output, "File to make; an existing one is replaced")
        ->required();
    command
        ->add_option("--deck", options->deck,
                     "Input deck of the results: its sets, surfaces and sections")
        ->type_name("FILE.inp");
    command->add_option("--name", options->name,
                        "Name of the model and its view; that of the result file by default");
    command->add_option("--level", options->level, "Compression, 0 (none) to 9 (smallest)")
        ->check(wholeNumber(0, 9))
        ->capture_default_str();
    command
        ->add_option("--digits", options->digits,
                     "Significant digits of result values, 1 to 6; by default they keep all")
        ->type_name("N")
        ->check(wholeNumber(1, 6));
    command->add_flag("--text", options->isText, "Write data as lines of text");
    command->add_flag("--password", options->wantsPassword,
                      "Encrypt OUT.zrfx with a password from ZRFX_NEW_PASSWORD or the terminal, or "
                      "with that of --password-file, which encrypts by itself");
    CLI::Option* follow = command->add_flag(
        "--follow", options->isFollowing,
        "Import each state when the running solver has written it, until it ends or Ctrl-C");
    command
        ->add_option("--timeout", options->timeout,
                     "End --follow when nothing was written for so many seconds")
        ->check(nonNegativeNumber)
        ->needs(follow);
}

}  // namespace tools
