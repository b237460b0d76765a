#include "import/frd/FrdReader.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <cstring>

#include "import/frd/FrdElementType.h"
#include "import/frd/FrdText.h"

namespace tools {
namespace {

constexpr std::size_t kMostComponents = 1000;  // the solver writes up to 60
constexpr std::uint64_t kAtElements = 3;       // as the file says where a result has its values
constexpr std::size_t kValuesPerLine = 6;
constexpr std::size_t kValueWidth = 12;

// Keys of lines: of a block, five columns and a letter; within a block, three columns.
bool isBlock(std::string_view line, std::string_view key) {
    return line.size() >= 6 && line.starts_with(key);
}

bool isItem(std::string_view line, const char* key) {
    return line.size() >= 3 && line[0] == ' ' && line[1] == key[0] && line[2] == key[1];
}

bool isEnd(std::string_view line) {
    return line.starts_with(" 9999");
}

bool isStartOfBlock(std::string_view line) {
    return isEnd(line) || isBlock(line, "    1P") || isBlock(line, "  100C") ||
           isBlock(line, "    2C") || isBlock(line, "    3C");
}

std::uint64_t numberOf(std::string_view field) {
    int number = 0;
    return readFrdInteger(field, &number) && number > 0 ? number : 0;
}

template <typename T>
T littleEndian(const char* bytes) {
    static_assert(std::endian::native == std::endian::little);
    T value;
    std::memcpy(&value, bytes, sizeof(value));
    return value;
}

// What a hostile count may reserve is bounded by what the file can hold.
template <typename T>
void reserve(std::vector<T>& items, std::uint64_t count, std::uint64_t most) {
    items.reserve(static_cast<std::size_t>(std::min(count, most)));
}

}  // namespace

FrdReader::Event FrdReader::next() {
    m_isBetweenBlocks = true;
    m_hasBegun = false;
    const bool isThere = !m_isSkipping || findNextBlock();
    m_begin = m_file.place();
    if (m_isLost) return END;
    if (!isThere) return outOfData();
    const Event event = read();
    m_isSkipping = event == DAMAGE;
    // In a binary file nothing says where a next block might begin.
    m_isLost |= m_isSkipping && m_isBinary;
    if (m_isSkipping) m_file.unreadLine(m_begin);
    return event;
}

FrdReader::Event FrdReader::read() {
    while (const auto found = m_file.readLine()) {
        const std::string line(*found);
        m_isBetweenBlocks = false;
        if (isBlock(line, "    2C")) return readNodes(line);
        if (isBlock(line, "    3C")) return readElements(line);
        if (isBlock(line, "  100C")) return readResult(line);
        if (isEnd(line)) return END;
        if (isBlock(line, "    1U")) {
            readUserLine(line);
        } else if (isBlock(line, "    1P")) {
            readParameterLine(line);
        } else if (!isBlock(line, "    1C") && !frdTrimmed(line).empty()) {
            m_block.clear();
            return damaged("this is no line of a CalculiX result file");
        }
        m_begin = m_file.place();
        m_isBetweenBlocks = true;
    }
    return isEnd(m_file.unfinishedLine()) ? END : outOfData();
}

std::string FrdReader::placeText() const {
    return m_isBinary
               ? "byte " + std::to_string(m_file.place().offset)
               : "line " + std::to_string(std::max<std::uint64_t>(m_file.place().line, 2) - 1);
}

FrdReader::Event FrdReader::damaged(const std::string& reason) {
    m_damage = placeText() + ": " + (m_block.empty() ? "" : m_block + ": ") + reason;
    return DAMAGE;
}

FrdReader::Event FrdReader::outOfData() {
    if (m_file.hasFailed()) {
        m_isLost = true;
        return damaged(std::string("cannot be read: ") + std::strerror(errno));
    }
    m_damage = placeText() + ": the file ends " +
               (m_isBetweenBlocks ? "without its end marker" : "within " + m_block);
    m_file.returnTo(m_begin);
    return INCOMPLETE;
}

bool FrdReader::findNextBlock() {
    while (const auto line = m_file.peekLine()) {
        if (isStartOfBlock(*line)) return true;
        m_file.readLine();
    }
    return false;
}

void FrdReader::readUserLine(std::string_view line) {
    const std::string text(frdTrimmed(frdField(line, 6, 66)));
    const auto valueOf = [&](std::string_view key) {
        return text.starts_with(key) ? std::string(frdTrimmed(text.substr(key.size())))
                                     : std::string();
    };
    const auto append = [](std::string& target, const std::string& value) {
        if (!value.empty()) target += (target.empty() ? "" : " ") + value;
    };
    append(m_header.program, valueOf("PGM"));
    append(m_header.program, valueOf("VERSION"));
    append(m_header.date, valueOf("DATE"));
    append(m_header.date, valueOf("TIME"));
    int material = 0;
    if (text.starts_with("MAT") && readFrdInteger(frdField(line, 9, 5), &material)) {
        m_header.materialNames[material] = frdTrimmed(frdField(line, 14, 58));
        return;
    }
    constexpr std::array kKeys{"USER",    "DATE",        "TIME", "HOST", "PGM",
                               "VERSION", "COMPILETIME", "DIR",  "DBN"};
    const bool isKnown = std::any_of(kKeys.begin(), kKeys.end(),
                                     [&](const char* key) { return text.starts_with(key); });
    if (!isKnown && m_header.title.empty()) m_header.title = text;
}

// Each state begins with the number of the step; what else is known of it follows.
void FrdReader::readParameterLine(std::string_view line) {
    const std::string_view key = frdTrimmed(frdField(line, 6, 6));
    int value = -1;
    if (key.starts_with("STEP")) {
        m_step = FrdStep();
        readFrdInteger(frdField(line, 36, 12), &m_step.increment);
        readFrdInteger(frdField(line, 48, 12), &m_step.step);
        return;
    }
    if (!readFrdInteger(frdField(line, 12, 60), &value) || value < 0) return;
    if (key == "HID") m_step.nodalDiameter = value;
    if (key == "MODE") m_step.mode = value;
}

bool FrdReader::readFormat(std::string_view line, std::size_t column) {
    int format = LONG_TEXT;
    const bool isRead = readFrdInteger(frdField(line, column, 2), &format);
    m_format = static_cast<Format>(format);
    m_isBinary |= isRead && !isText();
    return isRead && format >= SHORT_TEXT && format <= DOUBLES;
}

// ---- Nodes

FrdReader::Event FrdReader::readNodes(std::string_view line) {
    m_block = "the block of nodes";
    const std::uint64_t count = numberOf(frdField(line, 24, 12));
    m_nodes = ImportNodes();
    if (!readFormat(line, 73)) return damaged("the form of its numbers is not known");
    if (!isText()) return readBinaryNodes(count);
    reserve(m_nodes.ids, count, m_file.size() / 40);
    reserve(m_nodes.coordinates, 3 * count, m_file.size() / 13);
    return readTextNodes();
}

FrdReader::Event FrdReader::readTextNodes() {
    while (const auto line = m_file.readLine()) {
        if (isItem(*line, "-3")) return NODES;
        if (!isItem(*line, "-1") || !readNodeLine(*line)) return damaged("this is no node");
    }
    return outOfData();
}

bool FrdReader::readNodeLine(std::string_view line) {
    int id = 0;
    if (!readFrdInteger(frdField(line, 3, idWidth()), &id)) return false;
    m_nodes.ids.push_back(id);
    for (std::size_t i = 0; i < 3; ++i) {
        float value = 0;
        const std::size_t column = 3 + idWidth() + i * kValueWidth;
        if (!readFrdFloat(frdField(line, column, kValueWidth), &value)) return false;
        m_nodes.coordinates.push_back(value);
    }
    return true;
}

FrdReader::Event FrdReader::readBinaryNodes(std::uint64_t count) {
    const std::size_t valueSize = m_format == DOUBLES ? sizeof(double) : sizeof(float);
    const std::size_t recordSize = sizeof(std::int32_t) + 3 * valueSize;
    reserve(m_nodes.ids, count, m_file.size() / recordSize);
    reserve(m_nodes.coordinates, 3 * count, 3 * (m_file.size() / recordSize));
    for (std::uint64_t node = 0; node < count; ++node) {
        const char* record = m_file.readBytes(recordSize);
        if (!record) return outOfData();
        m_nodes.ids.push_back(littleEndian<std::int32_t>(record));
        for (std::size_t i = 0; i < 3; ++i) {
            const char* value = record + sizeof(std::int32_t) + i * valueSize;
            m_nodes.coordinates.push_back(m_format == DOUBLES
                                              ? static_cast<float>(littleEndian<double>(value))
                                              : littleEndian<float>(value));
        }
    }
    return NODES;
}

// ---- Elements

FrdReader::Event FrdReader::readElements(std::string_view line) {
    m_block = "the block of elements";
    const std::uint64_t count = numberOf(frdField(line, 24, 12));
    m_elements.clear();
    m_elementCount = std::min(count, m_file.size() / kValueWidth);
    if (!readFormat(line, 73)) return damaged("the form of its numbers is not known");
    return isText() ? readTextElements() : readBinaryElements(count);
}

FrdReader::Event FrdReader::readTextElements() {
    while (const auto line = m_file.readLine()) {
        if (isItem(*line, "-3")) return ELEMENTS;
        if (!isItem(*line, "-1")) return damaged("this is no element");
        const Event event = readTextElement(*line);
        if (event != ELEMENTS) return event;
    }
    return outOfData();
}

FrdReader::Event FrdReader::readTextElement(std::string_view line) {
    int id = 0;
    int type = 0;
    const std::size_t column = 3 + idWidth();
    if (!readFrdInteger(frdField(line, 3, idWidth()), &id) ||
        !readFrdInteger(frdField(line, column, 5), &type)) {
        return damaged("this is no element");
    }
    const int material = materialNumber(frdField(line, column + 10, 5));
    FrdElementGroup* group = elementGroup(type, material);
    if (!group) return damaged("an element of unknown type " + std::to_string(type));
    group->ids.push_back(id);
    return readTextElementNodes(frdElementType(type)->order.size(), *group);
}

// Of meshes of fluids the solver writes the beginning of the name in place of the number.
int FrdReader::materialNumber(std::string_view field) {
    int material = 0;
    if (readFrdInteger(field, &material)) return material;
    const std::string_view name = frdTrimmed(field);
    for (const auto& [number, known] : m_header.materialNames) {
        if (known.starts_with(name)) return number;
    }
    material = m_header.materialNames.empty() ? 1 : m_header.materialNames.rbegin()->first + 1;
    m_header.materialNames[material] = name;
    return material;
}

FrdReader::Event FrdReader::readTextElementNodes(std::size_t count, FrdElementGroup& group) {
    const std::size_t perLine = m_format == SHORT_TEXT ? 15 : 10;
    while (count > 0) {
        const auto line = m_file.readLine();
        if (!line) return outOfData();
        const std::size_t here = std::min(count, perLine);
        if (!isItem(*line, "-2")) return damaged("an element without all its nodes");
        for (std::size_t i = 0; i < here; ++i) {
            int node = 0;
            const auto field = frdField(*line, 3 + i * idWidth(), idWidth());
            if (frdTrimmed(field).empty() || !readFrdInteger(field, &node)) {
                return damaged("an element without all its nodes");
            }
            group.nodes.push_back(node);
        }
        count -= here;
    }
    return ELEMENTS;
}

FrdReader::Event FrdReader::readBinaryElements(std::uint64_t count) {
    constexpr std::size_t kInteger = sizeof(std::int32_t);
    for (std::uint64_t element = 0; element < count; ++element) {
        const char* record = m_file.readBytes(4 * kInteger);
        if (!record) return outOfData();
        const auto id = littleEndian<std::int32_t>(record);
        const auto type = littleEndian<std::int32_t>(record + kInteger);
        const auto material = littleEndian<std::int32_t>(record + 3 * kInteger);
        FrdElementGroup* group = elementGroup(type, material);
        if (!group) return damaged("an element of unknown type " + std::to_string(type));
        const std::size_t nodeCount = frdElementType(type)->order.size();
        const char* nodes = m_file.readBytes(nodeCount * kInteger);
        if (!nodes) return outOfData();
        group->ids.push_back(id);
        for (std::size_t i = 0; i < nodeCount; ++i) {
            group->nodes.push_back(littleEndian<std::int32_t>(nodes + i * kInteger));
        }
    }
    return ELEMENTS;
}

FrdElementGroup* FrdReader::elementGroup(int type, int material) {
    const FrdElementType* known = frdElementType(type);
    if (!known) return nullptr;
    const auto [found, isNew] = m_elements.try_emplace({material, type});
    FrdElementGroup& group = found->second;
    if (isNew && m_elements.size() == 1) {  // most often there is one only
        group.ids.reserve(m_elementCount);
        group.nodes.reserve(m_elementCount * known->order.size());
    }
    return &group;
}

// ---- Results

FrdReader::Event FrdReader::readResult(std::string_view line) {
    m_block = "a result";
    m_result.nodeIds.clear();
    m_result.values.clear();
    std::uint64_t count = 0;
    if (!readStep(line, &count)) return damaged("its state cannot be read");
    if (!readFormat(line, 73)) return damaged("the form of its numbers is not known");
    const Event event = readComponents();
    if (event != RESULT) return event;
    m_hasBegun = true;
    const std::uint64_t componentCount = m_result.components.size();
    reserve(m_result.nodeIds, count, m_file.size() / kValueWidth);
    reserve(m_result.values, count * componentCount, m_file.size() / sizeof(float));
    return isText() ? readTextValues() : readBinaryValues(count);
}

bool FrdReader::readStep(std::string_view line, std::uint64_t* count) {
    FrdStep& step = m_result.step;
    step = m_step;
    *count = numberOf(frdField(line, 24, 12));
    step.analysisName = frdTrimmed(frdField(line, 63, 10));
    return readFrdDouble(frdField(line, 12, 12), &step.value) &&
           readFrdInteger(frdField(line, 56, 2), &step.analysis) &&
           readFrdInteger(frdField(line, 58, 5), &step.number);
}

// Components that viewers are to derive from the others, such as the length of a vector, have no
// values.
FrdReader::Event FrdReader::readComponents() {
    const auto head = m_file.readLine();
    if (!head) return outOfData();
    if (!isItem(*head, "-4")) return damaged("its name is missing");
    m_result.name = frdTrimmed(frdField(*head, 5, 8));
    m_block = "the result " + m_result.name;
    const std::uint64_t count = numberOf(frdField(*head, 13, 5));
    if (numberOf(frdField(*head, 18, 5)) == kAtElements) {
        return damaged("its values are at elements, which is not imported");
    }
    if (count > kMostComponents) return damaged("it has too many components");
    m_result.components.clear();
    for (std::uint64_t i = 0; i < count; ++i) {
        const auto line = m_file.readLine();
        if (!line) return outOfData();
        if (!readComponent(*line)) return damaged("this is no component");
    }
    return m_result.components.empty() ? damaged("it has no components") : RESULT;
}

bool FrdReader::readComponent(std::string_view line) {
    FrdComponent component{std::string(frdTrimmed(frdField(line, 5, 8)))};
    int isDerived = 0;
    if (!isItem(line, "-5") || !readFrdInteger(frdField(line, 18, 5), &component.kind) ||
        !readFrdInteger(frdField(line, 33, 5), &isDerived)) {
        return false;
    }
    if (isDerived == 0) m_result.components.push_back(component);
    return true;
}

FrdReader::Event FrdReader::readTextValues() {
    std::size_t missing = 0;
    while (const auto line = m_file.readLine()) {
        const bool isFirst = isItem(*line, "-1");
        if (!isFirst && !isItem(*line, "-2") && !isItem(*line, "-3")) {
            return damaged("these are no values");
        }
        if ((missing > 0) != isItem(*line, "-2")) return damaged("a node without all its values");
        if (isItem(*line, "-3")) return RESULT;
        if (isFirst) missing = m_result.components.size();
        const std::size_t here = std::min(missing, kValuesPerLine);
        if (!readValueLine(*line, here)) return damaged("these are no values");
        missing -= here;
    }
    return outOfData();
}

bool FrdReader::readValueLine(std::string_view line, std::size_t count) {
    int id = 0;
    const std::size_t column = 3 + idWidth();
    if (!readFrdInteger(frdField(line, 3, idWidth()), &id)) return false;
    if (isItem(line, "-1")) m_result.nodeIds.push_back(id);
    for (std::size_t i = 0; i < count; ++i) {
        float value = 0;
        if (!readFrdFloat(frdField(line, column + i * kValueWidth, kValueWidth), &value)) {
            return false;
        }
        m_result.values.push_back(value);
    }
    return true;
}

FrdReader::Event FrdReader::readBinaryValues(std::uint64_t count) {
    const std::size_t componentCount = m_result.components.size();
    const std::size_t valueSize = m_format == DOUBLES ? sizeof(double) : sizeof(float);
    const std::size_t recordSize = sizeof(std::int32_t) + componentCount * valueSize;
    for (std::uint64_t node = 0; node < count; ++node) {
        const char* record = m_file.readBytes(recordSize);
        if (!record) return outOfData();
        m_result.nodeIds.push_back(littleEndian<std::int32_t>(record));
        for (std::size_t i = 0; i < componentCount; ++i) {
            const char* value = record + sizeof(std::int32_t) + i * valueSize;
            m_result.values.push_back(m_format == DOUBLES
                                          ? static_cast<float>(littleEndian<double>(value))
                                          : littleEndian<float>(value));
        }
    }
    return RESULT;
}

}  // namespace tools
