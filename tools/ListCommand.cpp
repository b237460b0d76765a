#include "ListCommand.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "StandardOutput.h"
#include "Terminal.h"
#include "Text.h"
#include "container/ZRFxZipArchive.h"

namespace tools {
namespace {

using unstruct::ZRFxZipArchive;
using Entries = std::vector<ZRFxZipArchive::EntryInfo>;

constexpr const char* kExamples =
    "  zrfx list plate.zrfx\n"
    "  zrfx list plate.zrfx --json | jq '.entries[] | select(.size > 1000000).name'";

struct Options {
    std::string file;
    bool isJson = false;
};

// As other ZIP programs name the methods.
std::string methodText(int method) {
    switch (method) {
        case 0:
            return "stored";
        case 8:
            return "deflate";
        case 9:
            return "deflate64";
        case 12:
            return "bzip2";
        case 14:
            return "lzma";
        case 93:
            return "zstd";
        case 95:
            return "xz";
        default:
            return "method " + std::to_string(method);
    }
}

// The packed size of an entry as a percentage of its size.
double ratio(std::uint64_t size, std::uint64_t packedSize) {
    return size > 0 ? static_cast<double>(packedSize) / static_cast<double>(size) : 1;
}

void printLine(std::uint64_t size, std::uint64_t packedSize, const std::string& method,
               const std::string& name) {
    char line[80];
    std::snprintf(
        line, sizeof(line), "%14llu %14llu %6.1f %%  %-11s ", static_cast<unsigned long long>(size),
        static_cast<unsigned long long>(packedSize), 100 * ratio(size, packedSize), method.c_str());
    print(line + shortened(printable(name), std::strlen(line)) + "\n");
}

void printTable(const Entries& entries) {
    print("          size         packed    ratio  method      name\n");
    std::uint64_t size = 0;
    std::uint64_t packedSize = 0;
    for (const auto& entry : entries) {
        printLine(entry.nSize, entry.nPackedSize,
                  methodText(entry.nMethod) + (entry.bEncrypted ? "*" : ""), entry.sName);
        size += entry.nSize;
        packedSize += entry.nPackedSize;
    }
    const bool isEncrypted =
        std::ranges::any_of(entries, [](const auto& entry) { return entry.bEncrypted; });
    printLine(size, packedSize, "",
              std::to_string(entries.size()) + (entries.size() == 1 ? " entry" : " entries") +
                  (isEncrypted ? "; * encrypted" : ""));
}

void printEntriesAsJson(const std::string& file, const Entries& entries) {
    Json list = Json::array();
    for (const auto& entry : entries) {
        list.push_back({{"name", entry.sName},
                        {"size", entry.nSize},
                        {"packedSize", entry.nPackedSize},
                        {"ratio", ratio(entry.nSize, entry.nPackedSize)},
                        {"method", methodText(entry.nMethod)},
                        {"encrypted", entry.bEncrypted}});
    }
    printJson({{"file", file}, {"entries", list}});
}

int list(ToolContext& context, const Options& options) {
    if (context.isEmpty(options.file)) return ToolContext::FAILURE;
    ZRFxZipArchive archive;
    if (!archive.Open(options.file, unstruct::ZRZipAccessMode::READ_ONLY)) {
        return context.fail(options.file, archive.LastError());
    }
    Entries entries;
    for (std::size_t i = 0; i < archive.EntryCount(); ++i) entries.push_back(archive.EntryAt(i));
    if (options.isJson) {
        printEntriesAsJson(options.file, entries);
    } else {
        printTable(entries);
    }
    return ToolContext::FINE;
}

}  // namespace

void addListCommand(CLI::App& application, ToolContext& context) {
    const auto options = std::make_shared<Options>();
    CLI::App* command =
        context.addCommand(application, "list", "Lists the entries of the archive", kExamples,
                           [&context, options] { return list(context, *options); });
    command->add_option("FILE", options->file, "A ZRFx file")->required();
    command->add_flag("--json", options->isJson, "Print one JSON object");
}

}  // namespace tools
