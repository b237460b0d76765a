#include "DiffCommand.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <map>
#include <memory>
#include <set>

#include "FileReader.h"
#include "OptionChecks.h"
#include "Progress.h"
#include "PropertyJson.h"
#include "SolverRun.h"
#include "StandardOutput.h"
#include "Text.h"
#include "ZRUndefined.h"
#include "content/BlockGroup.h"

namespace tools {
namespace {

using namespace unstruct;
using nuo::zrfx::Case;

constexpr const char* kExamples =
    "  zrfx diff before.zrfx after.zrfx\n"
    "  zrfx diff binary.zrfx text.zrfx --relative 1e-5";

struct Options {
    std::string a;
    std::string b;
    double relative = 0;
    double absolute = 0;
    std::string otherPasswordFile;
};

constexpr const char* kOtherPassword = "ZRFX_OTHER_PASSWORD";

/// The differences, one per line. An array has one line, however much of it differs.
class Differences {
public:
    explicit Differences(const Options& options) : m_options(options) {}

    /// Empty when nothing differs.
    const std::string& text() const { return m_text; }

    void add(const std::string& place, const std::string& text) {
        m_text += printable(place + ": " + text) + "\n";
    }

    void onlyIn(const std::string& file, const std::string& place) {
        add(place, "only in " + file);
    }

    template <typename Value>
    void compare(const std::string& place, const Value& a, const Value& b) {
        if (!isEqual(a, b)) add(place, shown(a) + " and " + shown(b));
    }

    void compare(const std::string& place, std::span<const std::int32_t> a,
                 std::span<const std::int32_t> b) {
        compareItems(place, a, b, 1);
    }
    void compare(const std::string& place, const Reals& a, const Reals& b) {
        if (a.components != b.components) {
            return add(place, std::to_string(a.components) + " and " +
                                  std::to_string(b.components) + " values an item");
        }
        compareItems(place, a.values, b.values, static_cast<std::size_t>(a.components));
    }

    /// Viewer settings: numbers within the tolerances, everything else equal.
    void compare(const std::string& place, const Json& a, const Json& b) {
        if (a.is_object() && b.is_object()) return compareObjects(place, a, b);
        if (a.is_array() && b.is_array() && a.size() == b.size()) {
            for (std::size_t i = 0; i < a.size(); ++i) {
                compare(place + numbered(",", static_cast<std::int64_t>(i)), a[i], b[i]);
            }
            return;
        }
        const bool areReals = a.is_number_float() && b.is_number_float();
        if (areReals ? isEqual(a.get<double>(), b.get<double>()) : a == b) return;
        constexpr auto kReplace = Json::error_handler_t::replace;
        add(place, a.dump(-1, ' ', false, kReplace) + " and " + b.dump(-1, ' ', false, kReplace));
    }

private:
    static std::string shown(const std::string& text) { return "\"" + text + "\""; }
    static std::string shown(std::int64_t value) { return std::to_string(value); }
    static std::string shown(double value) { return numberText(value); }
    static std::string shown(std::int32_t value) { return std::to_string(value); }
    static std::string shown(float value) {
        return IsUndefined(value) ? "no value" : numberText(value);
    }

    template <typename Value>
    bool isEqual(const Value& a, const Value& b) const {
        return a == b;
    }
    bool isEqual(double a, double b) const {
        return a == b || (std::isnan(a) && std::isnan(b)) ||
               std::abs(a - b) <= std::max(m_options.absolute,
                                           m_options.relative * std::max(std::abs(a), std::abs(b)));
    }
    // Whatever stands for "no value" is the same.
    bool isEqual(float a, float b) const {
        if (IsUndefined(a) || IsUndefined(b)) return IsUndefined(a) && IsUndefined(b);
        return isEqual(double{a}, double{b});
    }

    template <typename Item>
    void compareItems(const std::string& place, std::span<const Item> a, std::span<const Item> b,
                      std::size_t components) {
        if (a.size() != b.size()) {
            return add(place, std::to_string(a.size() / components) + " and " +
                                  counted(b.size() / components, "item"));
        }
        std::size_t count = 0;
        std::size_t first = 0;
        for (std::size_t i = 0; i < a.size(); ++i) {
            if (isEqual(a[i], b[i])) continue;
            if (count++ == 0) first = i;
        }
        if (count == 0) return;
        add(place, std::to_string(count) + " of " + counted(a.size(), "value") +
                       (count == 1 ? " differs" : " differ") + ", first in item " +
                       std::to_string(first / components) + ": " + shown(a[first]) + " and " +
                       shown(b[first]));
    }

    void compareObjects(const std::string& place, const Json& a, const Json& b) {
        for (const auto& [key, value] : a.items()) {
            if (b.contains(key)) {
                compare(place + ", " + key, value, b[key]);
            } else {
                onlyIn(m_options.a, place + ", " + key);
            }
        }
        for (const auto& [key, value] : b.items()) {
            if (!a.contains(key)) onlyIn(m_options.b, place + ", " + key);
        }
    }

    const Options& m_options;
    std::string m_text;
};

/// Compares two files thing by thing: what is found by id or name in both, and what only one has.
class Comparison {
public:
    Comparison(FileReader& a, FileReader& b, const Options& options)
        : m_a(a),
          m_b(b),
          m_differences(options),
          m_progress("comparing", Progress::Unit::STEPS, blockCount()) {}

    /// False when something cannot be read; the library has said why, and `failedFile` where.
    bool run() {
        compareVendors();
        const bool isComplete = compareDatabases() && compareCases() && compareTexts();
        m_progress.finish();
        return isComplete;
    }

    const std::string& failedFile() const { return m_failedFile; }

    const std::string& differences() const { return m_differences.text(); }

private:
    std::uint64_t blockCount() const {
        std::uint64_t count = 0;
        for (const auto& database : m_a.databases()) {
            count += static_cast<std::uint64_t>(database->GetNumBlocks());
        }
        return count;
    }

    bool fail(const FileReader& reader) {
        m_failedFile = reader.path();
        return false;
    }

    // Calls `compare` for what both files have, reports what one has; false when `compare` fails.
    template <typename Key, typename PlaceOf, typename Compare>
    bool compareKeys(const std::set<Key>& a, const std::set<Key>& b, PlaceOf placeOf,
                     Compare compare) {
        for (const Key& key : a) {
            if (!b.contains(key)) {
                m_differences.onlyIn(m_a.path(), placeOf(key));
            } else if (!compare(key, placeOf(key))) {
                return false;
            }
        }
        for (const Key& key : b) {
            if (!a.contains(key)) m_differences.onlyIn(m_b.path(), placeOf(key));
        }
        return true;
    }

    void compareVendors() {
        int idA = -1;
        int idB = -1;
        ZRString nameA, nameB, applicationA, applicationB;
        m_a.access().GetVendorInfo(&idA, &nameA, &applicationA);
        m_b.access().GetVendorInfo(&idB, &nameB, &applicationB);
        m_differences.compare("vendor id", idA, idB);
        m_differences.compare("vendor", nameA.Bytes(), nameB.Bytes());
        m_differences.compare("application", applicationA.Bytes(), applicationB.Bytes());
    }

    static std::set<int> databaseIds(const FileReader& reader) {
        std::set<int> ids;
        for (const auto& database : reader.databases()) ids.insert(database->GetID());
        return ids;
    }

    bool compareDatabases() {
        return compareKeys(
            databaseIds(m_a), databaseIds(m_b), [](int id) { return numbered("database", id); },
            [&](int id, const std::string& place) {
                return compareDatabase(*m_a.database(id), *m_b.database(id), place);
            });
    }

    bool compareDatabase(ZRFxDatabase& a, ZRFxDatabase& b, const std::string& place) {
        m_differences.compare(place + ", name", a.GetName().Bytes(), b.GetName().Bytes());
        m_differences.compare(place + ", source", a.GetSourceName().Bytes(),
                              b.GetSourceName().Bytes());
        m_differences.compare(place + ", simulation type", NameOf(a.GetSimulationType()).Bytes(),
                              NameOf(b.GetSimulationType()).Bytes());
        m_differences.compare(place + ", solution type", NameOf(a.GetSolutionType()).Bytes(),
                              NameOf(b.GetSolutionType()).Bytes());
        m_differences.compare(place + ", description", a.GetDescription().Bytes(),
                              b.GetDescription().Bytes());
        for (int type = 0; type < kNumBlockTypes; ++type) {
            const auto idsA = blockIds(a, type);
            const auto idsB = blockIds(b, type);
            const auto placeOf = [&](int id) {
                return place + ", " + ZRFxBlockTypeName(type).Bytes() + ":" + std::to_string(id);
            };
            const auto compare = [&](int id, const std::string& blockPlace) {
                return compareBlock(readBlock(a, type, id), readBlock(b, type, id), blockPlace);
            };
            if (!compareKeys(std::set<int>(idsA.begin(), idsA.end()),
                             std::set<int>(idsB.begin(), idsB.end()), placeOf, compare)) {
                return false;
            }
        }
        return true;
    }

    bool compareBlock(const nvf::ref<ZRFxBlock>& a, const nvf::ref<ZRFxBlock>& b,
                      const std::string& place) {
        if (a.isNull()) return fail(m_a);
        if (b.isNull()) return fail(m_b);
        std::map<std::string, Field> fieldsOfB;
        for (Field& field : contentOf(*b)) fieldsOfB.try_emplace(field.place, std::move(field));
        for (const Field& field : contentOf(*a)) {
            const std::string fieldPlace = place + ", " + field.place;
            const auto other = fieldsOfB.find(field.place);
            if (other == fieldsOfB.end()) {
                m_differences.onlyIn(m_a.path(), fieldPlace);
                continue;
            }
            compareValue(field.value, other->second.value, fieldPlace);
            fieldsOfB.erase(other);
        }
        for (const auto& [fieldPlace, field] : fieldsOfB) {
            m_differences.onlyIn(m_b.path(), place + ", " + fieldPlace);
        }
        m_progress.advance(1);
        return true;
    }

    // A place has a value of one kind in all blocks.
    void compareValue(const Field::Value& a, const Field::Value& b, const std::string& place) {
        std::visit(
            [&](const auto& value) {
                using Value = std::decay_t<decltype(value)>;
                m_differences.compare(place, value, std::get<Value>(b));
            },
            a);
    }

    static std::map<int, const Case*> casesOf(FileReader& reader) {
        std::map<int, const Case*> cases;
        for (std::size_t i = 0; i < reader.file().fileCaseCount(); ++i) {
            const Case* fileCase = reader.file().fileCase(i);
            cases[fileCase->id()] = fileCase;
        }
        return cases;
    }

    template <typename Map>
    static auto keysOf(const Map& map) {
        std::set<typename Map::key_type> keys;
        for (const auto& [key, value] : map) keys.insert(key);
        return keys;
    }

    bool compareCases() {
        const auto a = casesOf(m_a);
        const auto b = casesOf(m_b);
        return compareKeys(
            keysOf(a), keysOf(b), [](int id) { return numbered("case", id); },
            [&](int id, const std::string& place) {
                return compareCase(*a.at(id), *b.at(id), place);
            });
    }

    bool compareCase(const Case& a, const Case& b, const std::string& place) {
        m_differences.compare(place + ", name", utf8(a.name()), utf8(b.name()));
        m_differences.compare(place + ", database", a.databaseId(), b.databaseId());
        m_differences.compare(place + ", description", utf8(a.description()),
                              utf8(b.description()));
        m_differences.compare(place + ", derived results disabled", int{a.derivedResultsDisabled()},
                              int{b.derivedResultsDisabled()});
        m_differences.compare(place + ", properties", propertiesJson(a.properties()),
                              propertiesJson(b.properties()));
        return comparePictures(picturesOf(m_a, a), picturesOf(m_b, b), place);
    }

    // Pixels by the name of what shows them; a snapshot is only looked for when there is one.
    using Pictures = std::map<std::string, std::string>;

    static std::string pixelsOf(const nuo::Image* image) {
        if (!image) return {};
        std::string pixels(std::size_t{3} * image->width() * image->height(), '\0');
        image->getAsRgb(reinterpret_cast<unsigned char*>(pixels.data()), pixels.size());
        return std::to_string(image->width()) + " " + pixels;
    }

    static Pictures picturesOf(FileReader& reader, const Case& fileCase) {
        Pictures pictures;
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

    bool comparePictures(const Pictures& a, const Pictures& b, const std::string& place) {
        return compareKeys(
            keysOf(a), keysOf(b), [&](const std::string& name) { return place + ", " + name; },
            [&](const std::string& name, const std::string& picturePlace) {
                if (a.at(name) != b.at(name)) m_differences.add(picturePlace, "pixels differ");
                if (a.at(name).empty()) return fail(m_a);
                return !b.at(name).empty() || fail(m_b);
            });
    }

    static std::map<std::string, std::string> textsOf(FileReader& reader) {
        std::map<std::string, std::string> texts;
        for (std::size_t i = 0; i < reader.file().userTextFileCount(); ++i) {
            const std::string name = utf8(reader.file().userTextFileName(i));
            if (name == kSolverRunText) continue;
            texts[name] = utf8(reader.file().userTextFileContent(i));
        }
        return texts;
    }

    bool compareTexts() {
        const auto a = textsOf(m_a);
        const auto b = textsOf(m_b);
        return compareKeys(
            keysOf(a), keysOf(b), [](const std::string& name) { return "user text " + name; },
            [&](const std::string& name, const std::string& place) {
                if (a.at(name) != b.at(name)) m_differences.add(place, "texts differ");
                return true;
            });
    }

    FileReader& m_a;
    FileReader& m_b;
    Differences m_differences;
    Progress m_progress;
    std::string m_failedFile;
};

int diff(ToolContext& context, const Options& options) {
    FileReader a(context);
    FileReader b(context);
    const bool hasOther = std::getenv(kOtherPassword) || !options.otherPasswordFile.empty();
    if (hasOther) b.setPasswordSource(options.otherPasswordFile, kOtherPassword);
    if (!a.open(options.a) || !b.open(options.b)) return ToolContext::FAILURE;
    Comparison comparison(a, b, options);
    const bool isComplete = comparison.run();
    print(comparison.differences());
    if (!isComplete) return context.fail(comparison.failedFile());
    return comparison.differences().empty() ? ToolContext::FINE : ToolContext::FAILURE;
}

}  // namespace

void addDiffCommand(CLI::App& application, ToolContext& context) {
    const auto options = std::make_shared<Options>();
    CLI::App* command = context.addCommand(
        application, "diff", "Compares what two files mean and prints the differences", kExamples,
        [&context, options] { return diff(context, *options); });
    command->add_option("A", options->a, "A ZRFx file")->required();
    command->add_option("B", options->b, "Another ZRFx file")->required();
    command->add_option("--relative", options->relative, "Numbers may differ by this part of them")
        ->type_name("R")
        ->check(nonNegativeNumber);
    command->add_option("--absolute", options->absolute, "Numbers may differ by this much")
        ->type_name("A")
        ->check(nonNegativeNumber);
    command
        ->add_option("--other-password-file", options->otherPasswordFile,
                     "File whose first line is the password of B, when it is not that of A; else "
                     "ZRFX_OTHER_PASSWORD")
        ->type_name("FILE");
}

}  // namespace tools
