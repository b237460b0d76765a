#include "import/deck/DeckFile.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <utility>

namespace tools {
namespace {

// Files in files, and all of them: far more than any deck has.
constexpr std::size_t kDeepest = 20;
constexpr int kMostIncludes = 1000;

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r";
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::string inCapitals(std::string_view text) {
    std::string capitals;
    for (const char c : text) {
        if (std::isspace(static_cast<unsigned char>(c))) continue;
        capitals += static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    }
    return capitals;
}

std::string withoutQuotes(std::string_view text) {
    const bool isQuoted = text.size() > 1 && text.front() == '"' && text.back() == '"';
    return std::string(isQuoted ? text.substr(1, text.size() - 2) : text);
}

std::vector<std::string> fieldsOf(std::string_view text) {
    std::vector<std::string> fields;
    while (true) {
        const std::size_t comma = text.find(',');
        fields.emplace_back(trimmed(text.substr(0, comma)));
        if (comma == std::string_view::npos) return fields;
        text.remove_prefix(comma + 1);
    }
}

// "NSET=A", or one of those without a value.
bool isParameter(std::string_view text) {
    const std::string first = inCapitals(text.substr(0, text.find(',')));
    return first.find('=') != std::string::npos || first == "GENERATE";
}

}  // namespace

std::string DeckLine::parameter(const std::string& name) const {
    const auto found = parameters.find(name);
    return found == parameters.end() ? "" : found->second;
}

bool DeckFile::open(const std::string& path) {
    m_folder = std::filesystem::path(path).parent_path().string();
    m_sources.push_back(std::make_unique<Source>());
    m_sources.back()->path = path;
    std::error_code ignored;
    const bool isThere = m_sources.back()->file.open(path);
    if (!isThere || std::filesystem::is_regular_file(path, ignored)) return isThere;
    errno = EINVAL;  // one that may have no end
    return false;
}

std::string DeckFile::place() const {
    if (m_sources.empty()) return "the end of the deck";
    const Source& source = *m_sources.back();
    return std::filesystem::path(source.path).filename().string() + ", line " +
           std::to_string(source.file.place().line - 1);
}

bool DeckFile::fail(const std::string& reason) {
    m_error = place() + ": " + reason;
    return false;
}

// The next line that is no comment, of the file that is read or of the one that included it.
bool DeckFile::readText(std::string* text) {
    if (m_readAhead) {
        *text = *std::exchange(m_readAhead, std::nullopt);
        return true;
    }
    while (!m_sources.empty()) {
        ImportFile& file = m_sources.back()->file;
        auto line = file.readLine();
        if (!line) line = file.readLastLine();
        if (!line && (file.hasFailed() || !file.unfinishedLine().empty())) {
            return fail(file.hasFailed() ? std::strerror(errno) : "the line is too long");
        }
        if (!line) {
            m_sources.pop_back();
            continue;
        }
        *text = trimmed(*line);
        if (!text->empty() && !text->starts_with("**")) return true;
    }
    return false;
}

bool DeckFile::next(DeckLine* line) {
    std::string text;
    while (readText(&text)) {
        *line = {};
        line->endsWithComma = text.ends_with(',');
        if (!text.starts_with('*')) {
            line->fields = fieldsOf(text);
            return true;
        }
        if (!readKeyword(std::move(text), line)) return false;
        if (line->keyword != "INCLUDE") return true;
        if (!include(*line)) return false;
    }
    return false;
}

// A comma at the end goes on in the next line, unless that has data already.
bool DeckFile::readKeyword(std::string text, DeckLine* line) {
    constexpr std::size_t kLongest = 1 << 16;
    for (std::string more; text.ends_with(',') && text.size() < kLongest && readText(&more);) {
        if (!isParameter(more)) {
            m_readAhead = more;
            break;
        }
        text += more;
    }
    line->isKeyword = true;
    const auto fields = fieldsOf(std::string_view(text).substr(1));
    line->keyword = inCapitals(fields.front());
    for (std::size_t i = 1; i < fields.size(); ++i) {
        const std::size_t equals = fields[i].find('=');
        const std::string_view value =
            equals == std::string::npos ? "" : std::string_view(fields[i]).substr(equals + 1);
        line->parameters[inCapitals(fields[i].substr(0, equals))] = withoutQuotes(trimmed(value));
    }
    return m_error.empty();
}

bool DeckFile::include(const DeckLine& line) {
    const std::string name = line.parameter("INPUT");
    if (name.empty()) return fail("*INCLUDE names no file");
    const std::filesystem::path path = std::filesystem::path(m_folder) / name;
    std::error_code ignored;
    for (const auto& source : m_sources) {
        if (std::filesystem::equivalent(source->path, path, ignored)) {
            return fail("*INCLUDE of a file within itself");
        }
    }
    const bool isTooMany = m_sources.size() >= kDeepest || ++m_includeCount > kMostIncludes;
    if (isTooMany) return fail("too many files are included");
    // A pipe would be waited for, a device has no end.
    if (std::filesystem::exists(path, ignored) &&
        !std::filesystem::is_regular_file(path, ignored)) {
        return fail("'" + name + "' is no ordinary file");
    }
    auto source = std::make_unique<Source>();
    source->path = path.string();
    if (!source->file.open(source->path)) return fail("'" + name + "': " + std::strerror(errno));
    m_sources.push_back(std::move(source));
    return true;
}

}  // namespace tools
