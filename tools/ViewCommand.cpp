#include "ViewCommand.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>

#include "FileReader.h"
#include "OptionChecks.h"
#include "OutputFile.h"
#include "StandardOutput.h"
#include "view/Browser.h"
#include "view/PageCases.h"
#include "view/PageModel.h"
#include "view/Snapshot.h"
#include "view/TemporaryFolder.h"

namespace tools {
namespace {

using namespace unstruct;
using nuo::zrfx::Case;

constexpr const char* kExamples =
    "  zrfx view plate.zrfx                       # opens it in the browser\n"
    "  zrfx view plate.zrfx -o plate.html\n"
    "  zrfx view crash.zrfx -o crash.html --result STRESS --result DISP --state last\n"
    "  zrfx view plate.zrfx -o plate.html --case \"Stress\" --open\n"
    "  zrfx view plate.zrfx --png plate.png --size 1600x1200\n"
    "  zrfx view plate.zrfx --snapshot            # a picture in the file, for other programs";

constexpr int kDefaultLimit = 200;
constexpr int kMostLimit = 100000;
constexpr std::uint64_t kBytesPerMegabyte = 1000000;

struct Options {
    std::string file;
    std::string output;
    std::string png;
    std::string size;
    std::string caseName;
    std::optional<int> database;
    PageChoice choice;
    int limit = kDefaultLimit;
    bool isStraight = false;
    bool isStored = false;
    bool isOpened = false;
};

const Case* findCase(FileReader& reader, const Options& options) {
    for (std::size_t i = 0; i < reader.file().fileCaseCount(); ++i) {
        const Case* fileCase = reader.file().fileCase(i);
        const bool isNamed = options.caseName == utf8(fileCase->name()) ||
                             options.caseName == std::to_string(fileCase->id());
        const bool isOfDatabase = !options.database || *options.database == fileCase->databaseId();
        if ((options.caseName.empty() || isNamed) && isOfDatabase) return fileCase;
    }
    return nullptr;
}

// The database of the case, else the one that was asked for, else the first.
ZRFxDatabase* findDatabase(FileReader& reader, const Options& options, const Case* fileCase) {
    if (fileCase) return reader.database(fileCase->databaseId());
    if (options.database) return reader.database(*options.database);
    return reader.databases().empty() ? nullptr : reader.databases().front().get();
}

std::string exportTime(FileReader& reader) {
    ZRFxDateTime time;
    if (!reader.access().GetExportDateTime(&time)) return "";
    char text[80];
    std::snprintf(text, sizeof(text), "%04d-%02d-%02d %02d:%02d", time.year, time.month, time.day,
                  time.hour, time.minute);
    return text;
}

void reportLeftOut(const std::string& file, const std::vector<std::string>& leftOut) {
    for (const std::string& text : leftOut) {
        std::fprintf(stderr, "zrfx: %s: left out: %s\n", printable(file).c_str(),
                     printable(text).c_str());
    }
}

int writePage(ToolContext& context, const Options& options, FileReader& reader,
              const std::string& path) {
    const Case* fileCase = findCase(reader, options);
    if (!options.caseName.empty() && !fileCase) {
        return context.fail(options.file, "there is no case '" + options.caseName + "'");
    }
    ZRFxDatabase* database = findDatabase(reader, options, fileCase);
    if (!database) return context.fail(options.file, "there is no such database");
    context.log().takeMessages();
    PageFile page;
    PageModel model(*database, options.choice, page, context.log());
    std::string error;
    if (!model.choose(&error)) return context.fail(options.file, error);
    if (!page.create(path)) return context.fail(options.output, "cannot be written");
    model.write();
    const Json cases = pageCases(reader, database->GetID(), page);
    const std::string name = std::filesystem::path(options.file).filename().string();
    const Json json = {{"file", name},
                       {"date", exportTime(reader)},
                       {"case", fileCase ? Json(fileCase->id()) : Json(nullptr)},
                       {"cases", cases},
                       {"model", model.json()}};
    if (!page.finish(json)) return context.fail(options.output, "cannot be written");
    reportLeftOut(options.file, model.leftOut());
    return ToolContext::FINE;
}

int writeAtPlace(ToolContext& context, const Options& options, FileReader& reader) {
    OutputFile output(options.output);
    std::string error;
    if (!output.prepare(&error)) return context.fail(options.output, error);
    const int code = writePage(context, options, reader, output.temporaryPath());
    if (code != ToolContext::FINE) return code;
    if (!output.finish(&error)) return context.fail(options.output, error);
    return ToolContext::FINE;
}

// "1200x800"; false when it is none.
bool parseSize(const std::string& text, PictureSize* size) {
    constexpr int kMostPixels = 10000;
    char end = 0;
    return std::sscanf(text.c_str(), "%5dx%5d%c", &size->width, &size->height, &end) == 2 &&
           size->width > 0 && size->height > 0 && size->width <= kMostPixels &&
           size->height <= kMostPixels;
}

std::string checkSize(const std::string& text) {
    PictureSize size;
    return parseSize(text, &size) ? "" : "'" + text + "' is no size, as 1200x800 would be";
}

PictureSize sizeOf(const Options& options) {
    PictureSize size;
    if (!options.size.empty()) parseSize(options.size, &size);
    return size;
}

int draw(ToolContext& context, const Options& options, const std::string& folder) {
    OutputFile output(options.png);
    std::string error;
    if (!output.prepare(&error)) return context.fail(options.png, error);
    const std::string picture = folder + "/picture.png";  // its name says its format
    if (!drawPage(options.output, folder, sizeOf(options), picture, &error)) {
        return context.fail(options.png, error);
    }
    std::error_code code;
    std::filesystem::copy_file(picture, output.temporaryPath(),
                               std::filesystem::copy_options::overwrite_existing, code);
    if (code) return context.fail(options.png, code.message());
    if (!output.finish(&error)) return context.fail(options.png, error);
    return ToolContext::FINE;
}

int store(ToolContext& context, const Options& options, const std::string& password,
          std::optional<int> caseId, const std::string& folder) {
    if (!caseId) return context.fail(options.file, "there is no case to have the snapshot");
    const std::string picture = folder + "/picture.jpeg";
    std::string error;
    if (drawPage(options.output, folder, sizeOf(options), picture, &error) &&
        storeSnapshot(options.file, password, *caseId, picture, &error)) {
        return ToolContext::FINE;
    }
    return context.fail(options.file, error);
}

int open(ToolContext& context, const Options& options) {
    print(options.output + "\n");
    std::string error;
    if (openOnDesktop(options.output, &error)) return ToolContext::FINE;
    return context.fail(options.output, error);
}

// What the page is for: to be drawn, stored as a snapshot, and opened.
int use(ToolContext& context, const Options& options, const std::string& password,
        std::optional<int> caseId, TemporaryFolder& folder) {
    int code = ToolContext::FINE;
    if (!options.png.empty()) code = draw(context, options, folder.path());
    if (code == ToolContext::FINE && options.isStored) {
        code = store(context, options, password, caseId, folder.path());
    }
    if (code != ToolContext::FINE || !options.isOpened) return code;
    folder.keep();
    return open(context, options);
}

int view(ToolContext& context, Options options) {
    if (!PageFile::isAvailable()) {
        return context.fail("view", "this zrfx was built without the page: npm was missing then");
    }
    options.choice.file = options.file;
    options.choice.mostBytes = static_cast<std::uint64_t>(options.limit) * kBytesPerMegabyte;
    if (options.isStraight) options.choice.sides = QuadraticSides::STRAIGHT;
    TemporaryFolder folder;
    if (folder.path().empty()) return context.fail("view", "there is no temporary folder");
    if (options.output.empty()) {
        options.isOpened = options.isOpened || (options.png.empty() && !options.isStored);
        options.output =
            folder.path() + "/" + std::filesystem::path(options.file).stem().string() + ".html";
    }
    std::string password;
    std::optional<int> caseId;
    {
        FileReader reader(context);
        if (!reader.open(options.file, FileReader::WHAT_FITS)) return ToolContext::FAILURE;
        const int code = writeAtPlace(context, options, reader);
        if (code != ToolContext::FINE) return code;
        password = reader.password();
        if (const Case* fileCase = findCase(reader, options)) caseId = fileCase->id();
    }
    return use(context, options, password, caseId, folder);
}

}  // namespace

void addViewCommand(CLI::App& application, ToolContext& context) {
    const auto options = std::make_shared<Options>();
    CLI::App* command =
        context.addCommand(application, "view", "Makes a page that shows a model in any browser",
                           kExamples, [&context, options] { return view(context, *options); });
    command->add_option("FILE", options->file, "A ZRFx file")->required();
    command
        ->add_option("-o,--output", options->output,
                     "The page to write; else a temporary one, which is opened")
        ->type_name("OUT.html");
    command->add_option("--png", options->png, "A picture to write, which takes Chromium")
        ->type_name("OUT.png");
    command->add_flag("--snapshot", options->isStored,
                      "Stores the picture as the snapshot of the case, in FILE");
    command->add_option("--size", options->size, "Of the picture, in pixels (1200x800)")
        ->type_name("WxH")
        ->check(checkSize);
    command->add_option("--case", options->caseName, "Name or id of the case that is shown first")
        ->type_name("CASE");
    command->add_option("--database", options->database, "Id of the database to show")
        ->type_name("ID")
        ->check(wholeNumber(0));
    const auto addList = [&](const char* name, auto& list, const char* type, const char* text) {
        command->add_option(name, list, text)->type_name(type)->allow_extra_args(false);
    };
    addList("--result", options->choice.results, "NAME",
            "Name or id of a result; else all results");
    addList("--state", options->choice.states, "STATE",
            "Id or name of a state, or last; else all states");
    command
        ->add_option("--limit", options->limit,
                     "Megabytes after which no more values are written (200)")
        ->type_name("MB")
        ->check(wholeNumber(1, kMostLimit));
    command->add_flag("--straight", options->isStraight,
                      "Draws the sides of quadratic elements straight, from corner to corner");
    command->add_flag("--open", options->isOpened, "Opens the page in the browser");
}

}  // namespace tools
