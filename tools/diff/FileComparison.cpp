#include "diff/FileComparison.h"

#include <map>

#include "PropertyJson.h"
#include "SolverRun.h"
#include "diff/DatabaseComparison.h"
#include "diff/KeyedComparison.h"
#include "quantities/ResultLookup.h"

namespace tools {
namespace {

using namespace unstruct;
using nuo::zrfx::Case;

std::uint64_t blockCount(const FileReader& reader) {
    std::uint64_t count = 0;
    for (const auto& database : reader.databases()) {
        count += static_cast<std::uint64_t>(database->GetNumBlocks());
    }
    return count;
}

std::set<int> databaseIds(const FileReader& reader) {
    std::set<int> ids;
    for (const auto& database : reader.databases()) ids.insert(database->GetID());
    return ids;
}

std::map<int, const Case*> casesOf(FileReader& reader) {
    std::map<int, const Case*> cases;
    for (std::size_t i = 0; i < reader.file().fileCaseCount(); ++i) {
        const Case* fileCase = reader.file().fileCase(i);
        cases[fileCase->id()] = fileCase;
    }
    return cases;
}

std::string pixelsOf(const nuo::Image* image) {
    if (!image) return {};
    std::string pixels(std::size_t{3} * image->width() * image->height(), '\0');
    image->getAsRgb(reinterpret_cast<unsigned char*>(pixels.data()), pixels.size());
    return std::to_string(image->width()) + " " + pixels;
}

// Pixels by the name of what shows them; a snapshot is only looked for when there is one.
std::map<std::string, std::string> picturesOf(FileReader& reader, const Case& fileCase) {
    std::map<std::string, std::string> pictures;
    nvf::XmlDocument document;
    reader.readCaseDocument(fileCase, &document);
    if (document.getRootElement("Case").firstChildElement("Snapshot").notNull()) {
        pictures["snapshot"] = pixelsOf(fileCase.snapshot());
    }
    for (std::size_t i = 0; i < fileCase.imageCount(); ++i) {
        pictures["texture " + utf8(fileCase.imageName(i))] = pixelsOf(fileCase.image(i));
    }
    return pictures;
}

std::map<std::string, std::string> textsOf(FileReader& reader) {
    std::map<std::string, std::string> texts;
    for (std::size_t i = 0; i < reader.file().userTextFileCount(); ++i) {
        const std::string name = utf8(reader.file().userTextFileName(i));
        if (name == kSolverRunText) continue;
        texts[name] = utf8(reader.file().userTextFileContent(i));
    }
    return texts;
}

// Settings refer to results by their ids, which are not the same where there are more results.
void nameResults(const std::map<int, std::string>& names, Json& settings) {
    for (auto& set : settings) {
        for (auto& [key, value] : set["values"].items()) {
            if (!key.ends_with("result_id") || !value.is_number_integer()) continue;
            const auto name = names.find(value.get<int>());
            if (name != names.end()) value = name->second;
        }
    }
}

}  // namespace

FileComparison::FileComparison(FileReader& a, FileReader& b, const DiffOptions& options)
    : m_a(a),
      m_b(b),
      m_options(options),
      m_tolerances(options.tolerances),
      m_differences(a.path(), b.path(), options.ignored),
      m_fields(m_differences, m_tolerances.general()),
      m_progress("comparing", Progress::Unit::STEPS, blockCount(a)) {}

Side FileComparison::run() {
    if (m_options.isExact) compareMakers();
    Side failed = compareDatabases();
    if (failed == Side::NONE && !m_options.wantsOnlyResults) failed = compareCases();
    if (failed == Side::NONE && !m_options.wantsOnlyResults) failed = compareTexts();
    m_progress.finish();
    return failed;
}

void FileComparison::compareMakers() {
    int idA = -1;
    int idB = -1;
    ZRString nameA, nameB, applicationA, applicationB;
    m_a.access().GetVendorInfo(&idA, &nameA, &applicationA);
    m_b.access().GetVendorInfo(&idB, &nameB, &applicationB);
    m_fields.compare("vendor id", std::int64_t{idA}, std::int64_t{idB});
    m_fields.compare("vendor", nameA.Bytes(), nameB.Bytes());
    m_fields.compare("application", applicationA.Bytes(), applicationB.Bytes());
}

Side FileComparison::compareDatabases() {
    return compareByKey(
        databaseIds(m_a), databaseIds(m_b), m_differences,
        [](int id) { return numbered("database", id); },
        [&](int id, const std::string&) {
            DatabaseComparison comparison(*m_a.database(id), *m_b.database(id), m_options,
                                          m_tolerances, m_differences, m_progress);
            const Side failed = comparison.run();
            m_comparedValueCount += comparison.comparedValueCount();
            return failed;
        });
}

Side FileComparison::compareCases() {
    const auto a = casesOf(m_a);
    const auto b = casesOf(m_b);
    return compareByKey(
        keysOf(a), keysOf(b), m_differences, [](int id) { return numbered("case", id); },
        [&](int id, const std::string& place) { return compareCase(*a.at(id), *b.at(id), place); });
}

Json FileComparison::settingsOf(FileReader& reader, const Case& fileCase) const {
    Json settings = propertiesJson(fileCase.properties());
    ZRFxDatabase* database = reader.database(fileCase.databaseId());
    if (m_options.isExact || !database) return settings;
    std::map<int, std::string> names;
    for (const auto& result : resultsOf(*database)) {
        names[result->GetDescription().resultID] = result->GetDescription().name.Bytes();
    }
    nameResults(names, settings);
    return settings;
}

Side FileComparison::compareCase(const Case& a, const Case& b, const std::string& place) {
    m_fields.compare(place + ", name", utf8(a.name()), utf8(b.name()));
    m_fields.compare(place + ", database", std::int64_t{a.databaseId()},
                     std::int64_t{b.databaseId()});
    m_fields.compare(place + ", description", utf8(a.description()), utf8(b.description()));
    m_fields.compare(place + ", derived results disabled", std::int64_t{a.derivedResultsDisabled()},
                     std::int64_t{b.derivedResultsDisabled()});
    m_fields.compare(place + ", properties", settingsOf(m_a, a), settingsOf(m_b, b));
    return comparePictures(a, b, place);
}

Side FileComparison::comparePictures(const Case& a, const Case& b, const std::string& place) {
    const auto picturesOfA = picturesOf(m_a, a);
    const auto picturesOfB = picturesOf(m_b, b);
    return compareByKey(
        keysOf(picturesOfA), keysOf(picturesOfB), m_differences,
        [&](const std::string& name) { return place + ", " + name; },
        [&](const std::string& name, const std::string& own) {
            const std::string& pixelsOfA = picturesOfA.at(name);
            const std::string& pixelsOfB = picturesOfB.at(name);
            if (pixelsOfA != pixelsOfB) m_differences.add(own, "pixels differ");
            if (pixelsOfA.empty()) return Side::A;
            return pixelsOfB.empty() ? Side::B : Side::NONE;
        });
}

Side FileComparison::compareTexts() {
    const auto a = textsOf(m_a);
    const auto b = textsOf(m_b);
    return compareByKey(
        keysOf(a), keysOf(b), m_differences,
        [](const std::string& name) { return "user text " + name; },
        [&](const std::string& name, const std::string& place) {
            if (a.at(name) != b.at(name)) m_differences.add(place, "texts differ");
            return Side::NONE;
        });
}

}  // namespace tools
