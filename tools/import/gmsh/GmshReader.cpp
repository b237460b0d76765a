#include "import/gmsh/GmshReader.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <optional>

#include "Text.h"

namespace tools {
namespace {

using nuo::zrfx::ResultBlock;
using nuo::zrfx::StateInfoBlock;

constexpr int kMostRows = 1000;  // of an element; the largest of gmsh has as many nodes

std::string_view unquoted(std::string_view text) {
    const std::size_t first = text.find('"');
    const std::size_t last = text.rfind('"');
    if (first == text.npos || first == last) return text;
    return text.substr(first + 1, last - first - 1);
}

bool isDisplacement(const std::string& name) {
    std::string lower;
    for (const unsigned char c : name) lower += static_cast<char>(std::tolower(c));
    return lower.find("displacement") != lower.npos;
}

ResultBlock::ResultType typeOf(int componentCount) {
    if (componentCount == 1) return ResultBlock::SCALAR;
    return componentCount == 3 ? ResultBlock::VECTOR : ResultBlock::TENSOR;
}

const char* placeName(ResultBlock::ResultMapping mapping) {
    if (mapping == ResultBlock::NODE_MAPPING) return "nodes";
    return mapping == ResultBlock::ELEMENT_MAPPING ? "elements" : "element nodes";
}

}  // namespace

struct GmshReader::Section {
    const char* name;
    bool (GmshReader::*read)();
    std::optional<Event> event;  // that it brings
};

const GmshReader::Section* GmshReader::sectionOf(std::string_view name) {
    static constexpr Section kSections[] = {
        {"MeshFormat", &GmshReader::readFormat, {}},
        {"PhysicalNames", &GmshReader::readNames, {}},
        {"Entities", &GmshReader::readEntities, {}},
        {"Nodes", &GmshReader::readNodes, NODES},
        {"Elements", &GmshReader::readElements, ELEMENTS},
        {"NodeData", &GmshReader::readNodeValues, RESULT},
        {"ElementData", &GmshReader::readElementValues, RESULT},
        {"ElementNodeData", &GmshReader::readElementNodeValues, RESULT},
    };
    const auto found = std::ranges::find(kSections, name, &Section::name);
    return found == std::end(kSections) ? nullptr : found;
}

// ---- Sections

GmshReader::Event GmshReader::next() {
    while (readLine()) {
        m_begin = m_line;
        const std::string word(m_words.next());
        const bool isHead = word.starts_with('$') && !word.starts_with("$End");
        if (m_isSkipping && !isHead) continue;
        m_section = isHead ? word : "";
        if (!isHead) fail("this is no line of a gmsh file");
        const Event event = isHead ? readSection(word.substr(1)) : failure();
        m_isSkipping = event == DAMAGE;
        if (event != END) return event;
    }
    return m_file.hasFailed() ? failure() : END;
}

// END when there is nothing to deliver.
GmshReader::Event GmshReader::readSection(const std::string& name) {
    const Section* section = sectionOf(name);
    if (!section) return skipTo("$End" + name) ? END : failure();
    if (m_version == 0 && section->read != &GmshReader::readFormat) {
        fail("$MeshFormat does not come before it");
        return failure();
    }
    const bool isWhole = (this->*section->read)() && readEnd("$End" + name);
    return isWhole ? section->event.value_or(END) : failure();
}

bool GmshReader::skipTo(const std::string& end) {
    while (readLine()) {
        if (m_words.next() == end) return true;
    }
    return false;
}

bool GmshReader::readEnd(const std::string& end) {
    if (!readLine()) return false;
    return m_words.next() == end || fail(end + " is missing");
}

bool GmshReader::readLine() {
    m_reason.clear();
    for (;;) {
        m_line = m_file.place();
        auto line = m_file.readLine();
        if (!line && !m_file.hasFailed()) line = m_file.readLastLine();
        if (!line) return false;
        m_words = GmshWords(*line);
        if (!GmshWords(*line).next().empty()) return true;
    }
}

bool GmshReader::fail(const std::string& reason) {
    m_reason = reason;
    return false;
}

GmshReader::Event GmshReader::failure() {
    const bool isEnd = m_reason.empty();
    if (isEnd) {
        m_reason = m_file.hasFailed() ? std::string("cannot be read: ") + std::strerror(errno)
                                      : "the file ends within it";
    }
    const std::uint64_t line = std::max<std::uint64_t>(m_file.place().line, 2) - 1;
    m_data.damage = "line " + std::to_string(line) + ": " +
                    (m_section.empty() ? "" : m_section + ": ") + m_reason;
    if (isEnd) return INCOMPLETE;
    m_file.unreadLine(m_begin);  // it may begin the next section
    return DAMAGE;
}

bool GmshReader::readCount(int* count) {
    if (!readLine()) return false;
    return (m_words.read(count) && *count >= 0) || fail("this is no number of items");
}

bool GmshReader::readFormat() {
    double version = 0;
    int fileType = 0;
    if (!readLine()) return false;
    const std::string text(m_words.next());
    if (!readDouble(text, &version) || !m_words.read(&fileType)) return fail("it cannot be read");
    if (fileType != 0) return fail("the file is binary; only text is imported");
    if ((version < 2 || version >= 3) && version != 4.1) {
        return fail("version " + text + " of the format is not imported, but 2 and 4.1");
    }
    m_version = static_cast<int>(version);
    m_data.header.program = "gmsh format " + text;
    return true;
}

bool GmshReader::readNames() {
    int count = 0;
    if (!readCount(&count)) return false;
    for (int i = 0; i < count; ++i) {
        GmshMesh::Tag group{};
        if (!readLine()) return false;
        if (!m_words.read(&group.dimension) || !m_words.read(&group.number)) {
            return fail("this is no name");
        }
        m_mesh.nameGroup(group, std::string(unquoted(m_words.rest())));
    }
    return true;
}

// Of the geometry, which is not imported, only the groups are kept.
bool GmshReader::readEntities() {
    std::array<int, 4> counts{};
    if (!readLine()) return false;
    for (int& count : counts) {
        if (!m_words.read(&count)) return fail("these are no numbers of entities");
    }
    for (int dimension = 0; dimension < 4; ++dimension) {
        for (int i = 0; i < counts[static_cast<std::size_t>(dimension)]; ++i) {
            if (!readEntity(dimension)) return false;
        }
    }
    return true;
}

bool GmshReader::readEntity(int dimension) {
    GmshMesh::Tag entity{dimension, 0};
    int count = 0;
    if (!readLine()) return false;
    bool isRead = m_words.read(&entity.number);
    for (int i = 0; i < (dimension == 0 ? 3 : 6); ++i) m_words.next();  // where it lies
    isRead = isRead && m_words.read(&count);
    for (int i = 0; isRead && i < count; ++i) {
        int group = 0;
        isRead = m_words.read(&group);
        if (isRead) m_mesh.addGroupOfEntity(entity, group);
    }
    return isRead || fail("this is no entity");
}

// ---- Nodes

bool GmshReader::readNodes() {
    m_data.nodes = {};
    if (m_version == 2) return readNodes2();
    int blockCount = 0;
    if (!readCount(&blockCount)) return false;
    for (int i = 0; i < blockCount; ++i) {
        if (!readNodeBlock()) return false;
    }
    return true;
}

bool GmshReader::readNodes2() {
    int count = 0;
    if (!readCount(&count)) return false;
    for (int i = 0; i < count; ++i) {
        int id = 0;
        if (!readLine()) return false;
        if (!m_words.read(&id) || !readPosition()) return fail("this is no node");
        m_data.nodes.ids.push_back(id);
    }
    return true;
}

// The ids come first, then the positions.
bool GmshReader::readNodeBlock() {
    int dimension = 0, entity = 0, isParametric = 0, count = 0;
    if (!readLine()) return false;
    if (!m_words.read(&dimension) || !m_words.read(&entity) || !m_words.read(&isParametric) ||
        !m_words.read(&count)) {
        return fail("this is no head of nodes");
    }
    for (int i = 0; i < count; ++i) {
        int id = 0;
        if (!readLine()) return false;
        if (!m_words.read(&id)) return fail("this is no node");
        m_data.nodes.ids.push_back(id);
    }
    for (int i = 0; i < count; ++i) {
        if (!readLine()) return false;
        if (!readPosition()) return fail("this is no position of a node");
    }
    return true;
}

bool GmshReader::readPosition() {
    for (int i = 0; i < 3; ++i) {
        float value = 0;
        if (!m_words.read(&value)) return false;
        m_data.nodes.coordinates.push_back(value);
    }
    return true;
}

// ---- Elements

bool GmshReader::readElements() {
    m_data.elements = {};
    int count = 0;
    if (!readCount(&count)) return false;
    for (int i = 0; i < count; ++i) {
        if (!(m_version == 2 ? readElement2() : readElementBlock())) return false;
    }
    m_mesh.deliver(m_data);
    return true;
}

// Of the tags of an element the first is the group, and the second the entity.
bool GmshReader::readElement2() {
    int id = 0, number = 0, tagCount = 0;
    if (!readLine()) return false;
    if (!m_words.read(&id) || !m_words.read(&number) || !m_words.read(&tagCount)) {
        return fail("this is no element");
    }
    std::array<int, 2> tags{};
    for (int i = 0; i < tagCount; ++i) {
        int tag = 0;
        if (!m_words.read(&tag)) return fail("this is no element");
        if (i < 2) tags[static_cast<std::size_t>(i)] = tag;
    }
    const GmshElementType* type = gmshElementType(number);
    if (!type) return fail(numbered("elements of type", number) + " cannot be imported");
    m_mesh.beginElements(*type, tags[1], tags[0] != 0 ? std::vector{tags[0]} : std::vector<int>());
    return readElement(id, *type);
}

bool GmshReader::readElementBlock() {
    GmshMesh::Tag entity{};
    int number = 0, count = 0;
    if (!readLine()) return false;
    if (!m_words.read(&entity.dimension) || !m_words.read(&entity.number) ||
        !m_words.read(&number) || !m_words.read(&count)) {
        return fail("this is no head of elements");
    }
    const GmshElementType* type = gmshElementType(number);
    if (!type) return fail(numbered("elements of type", number) + " cannot be imported");
    m_mesh.beginElements(*type, entity.number, m_mesh.groupsOf(entity));
    for (int i = 0; i < count; ++i) {
        int id = 0;
        if (!readLine()) return false;
        if (!m_words.read(&id)) return fail("this is no element");
        if (!readElement(id, *type)) return false;
    }
    return true;
}

bool GmshReader::readElement(int id, const GmshElementType& type) {
    m_numbers.resize(type.nodeCount);
    for (int& node : m_numbers) {
        if (!m_words.read(&node)) return fail("an element without all its nodes");
    }
    m_mesh.addElement(id, m_numbers);
    return true;
}

// ---- Views

bool GmshReader::readNodeValues() {
    return readView(ResultBlock::NODE_MAPPING);
}

bool GmshReader::readElementValues() {
    return readView(ResultBlock::ELEMENT_MAPPING);
}

bool GmshReader::readElementNodeValues() {
    return readView(ResultBlock::ELEMENT_NODE_MAPPING);
}

bool GmshReader::readView(ResultBlock::ResultMapping mapping) {
    View view;
    if (!readViewHead(view)) return false;
    m_section += " \"" + view.name + "\"";
    if (view.componentCount != 1 && view.componentCount != 3 && view.componentCount != 9) {
        return fail("it has " + std::to_string(view.componentCount) +
                    " components, which must be 1, 3 or 9");
    }
    ImportValues& values = m_data.values;
    values.mapping = mapping;
    values.ids.clear();
    values.rowCounts.clear();
    values.values.clear();
    for (int i = 0; i < view.itemCount; ++i) {
        if (!readLine()) return false;
        if (!readItem(mapping, view.componentCount)) return fail("these are no values");
    }
    values.state = stateOf(view);
    values.fields = {fieldOf(view, mapping)};
    return true;
}

bool GmshReader::readViewHead(View& view) {
    std::vector<std::string> texts, reals, integers;
    if (!readTags(texts) || !readTags(reals) || !readTags(integers)) return false;
    if (!texts.empty()) view.name = unquoted(texts[0]);
    if (view.name.empty()) view.name = "View";
    integers.resize(std::max<std::size_t>(integers.size(), 4), "0");
    const bool isRead =
        (reals.empty() || readFloat(reals[0], &view.time)) && std::isfinite(view.time) &&
        readInteger(integers[0], &view.step) && readInteger(integers[1], &view.componentCount) &&
        readInteger(integers[2], &view.itemCount) && readInteger(integers[3], &view.partition);
    return isRead || fail("its tags cannot be read");
}

bool GmshReader::readTags(std::vector<std::string>& tags) {
    int count = 0;
    if (!readCount(&count)) return false;
    for (int i = 0; i < count; ++i) {
        if (!readLine()) return false;
        const std::string_view first = m_words.next();
        tags.emplace_back(first.starts_with('"') ? std::string(first) + std::string(m_words.rest())
                                                 : std::string(first));
    }
    return true;
}

bool GmshReader::readItem(ResultBlock::ResultMapping mapping, int componentCount) {
    int id = 0;
    int rowCount = 1;
    if (!m_words.read(&id)) return false;
    m_data.values.ids.push_back(id);
    if (mapping == ResultBlock::ELEMENT_NODE_MAPPING) {
        if (!m_words.read(&rowCount) || rowCount < 1 || rowCount > kMostRows) return false;
        m_data.values.rowCounts.push_back(rowCount);
    }
    for (int row = 0; row < rowCount; ++row) {
        if (!readRow(componentCount)) return false;
    }
    return true;
}

// Of a tensor, whose nine components come row by row, its symmetric part is kept.
bool GmshReader::readRow(int componentCount) {
    std::array<float, 9> read{};
    for (int i = 0; i < componentCount; ++i) {
        if (!m_words.read(&read[static_cast<std::size_t>(i)])) return false;
    }
    std::vector<float>& values = m_data.values.values;
    if (componentCount < 9) {
        values.insert(values.end(), read.begin(), read.begin() + componentCount);
        return true;
    }
    const auto mean = [](float a, float b) { return a == b ? a : a / 2 + b / 2; };
    values.insert(values.end(), {read[0], read[4], read[8], mean(read[1], read[3]),
                                 mean(read[5], read[7]), mean(read[2], read[6])});
    return true;
}

// Steps of different views are one state when they have the same number and time.
ImportState GmshReader::stateOf(const View& view) {
    const std::pair key(view.step, view.time);
    auto found = std::ranges::find(m_states, key);
    if (found == m_states.end()) found = m_states.insert(found, key);
    ImportState state;
    state.id = static_cast<int>(found - m_states.begin()) + 1;
    state.name = numbered("Step", view.step);
    state.value = view.time;
    state.type = StateInfoBlock::TIME;
    return state;
}

// Views of the same name are different results, unless they are pieces of one.
ImportField GmshReader::fieldOf(const View& view, ResultBlock::ResultMapping mapping) {
    ImportField field;
    field.type = typeOf(view.componentCount);
    if (field.type == ResultBlock::VECTOR && mapping == ResultBlock::NODE_MAPPING &&
        isDisplacement(view.name)) {
        field.type = ResultBlock::DISPLACEMENT;
    }
    field.source = view.name;
    int& count = m_viewCounts[{mapping, view.name, m_data.values.state.id}];
    if (view.partition == 0 && ++count > 1) field.source += " " + std::to_string(count);
    field.name = field.source;
    field.fallbackName = field.source + " (" + placeName(mapping) + ")";
    constexpr const char* kComponents[] = {"value", "x y z", "xx yy zz xy yz zx"};
    field.components = kComponents[view.componentCount == 1 ? 0 : view.componentCount == 3 ? 1 : 2];
    if (view.componentCount == 9) {
        const std::string note =
            field.name + ": of the 9 components the 6 of the symmetric part were kept";
        if (std::ranges::find(m_data.notes, note) == m_data.notes.end())
            m_data.notes.push_back(note);
    }
    return field;
}

}  // namespace tools
