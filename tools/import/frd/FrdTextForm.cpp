#include "import/frd/FrdTextForm.h"

#include "import/frd/FrdElementType.h"
#include "import/frd/FrdText.h"

namespace tools {
namespace {

constexpr std::size_t kKey = 3;  // columns of the key of a line
constexpr std::size_t kValuesPerLine = 6;
constexpr std::size_t kValueWidth = 12;

}  // namespace

std::string_view FrdTextForm::idField(std::string_view line, std::size_t index) const {
    return frdField(line, kKey + index * m_width, m_width);
}

bool FrdTextForm::readFloats(std::string_view line, std::size_t count,
                             std::vector<float>& values) const {
    for (std::size_t i = 0; i < count; ++i) {
        float value = 0;
        const std::size_t column = kKey + m_width + i * kValueWidth;
        if (!readFrdFloat(frdField(line, column, kValueWidth), &value)) return false;
        values.push_back(value);
    }
    return true;
}

// ---- Nodes

FrdForm::Outcome FrdTextForm::readNodes(std::uint64_t count) {
    const std::uint64_t size = m_content.file.size();
    reserve(m_content.nodes.ids, count, size / 40);
    reserve(m_content.nodes.coordinates, 3 * count, size / 13);
    while (const auto line = m_content.file.readLine()) {
        if (isFrdItem(*line, "-3")) return WHOLE;
        if (!isFrdItem(*line, "-1") || !readNodeLine(*line)) return damaged("this is no node");
    }
    return OUT_OF_DATA;
}

bool FrdTextForm::readNodeLine(std::string_view line) {
    int id = 0;
    if (!readFrdInteger(idField(line, 0), &id)) return false;
    m_content.nodes.ids.push_back(id);
    return readFloats(line, 3, m_content.nodes.coordinates);
}

// ---- Elements

FrdForm::Outcome FrdTextForm::readElements(std::uint64_t count) {
    while (const auto line = m_content.file.readLine()) {
        if (isFrdItem(*line, "-3")) return WHOLE;
        if (!isFrdItem(*line, "-1")) return damaged("this is no element");
        const Outcome outcome = readElement(*line, count);
        if (outcome != WHOLE) return outcome;
    }
    return OUT_OF_DATA;
}

FrdForm::Outcome FrdTextForm::readElement(std::string_view line, std::uint64_t count) {
    int id = 0;
    int type = 0;
    const std::size_t column = kKey + m_width;
    if (!readFrdInteger(idField(line, 0), &id) ||
        !readFrdInteger(frdField(line, column, 5), &type)) {
        return damaged("this is no element");
    }
    const int material = materialNumber(frdField(line, column + 10, 5));
    FrdElementGroup* group = elementGroup(type, material, count);
    if (!group) return unknownType(type);
    group->ids.push_back(id);
    return readElementNodes(frdElementType(type)->order.size(), *group);
}

// Of meshes of fluids the solver writes the beginning of the name in place of the number.
int FrdTextForm::materialNumber(std::string_view field) {
    int material = 0;
    if (readFrdInteger(field, &material)) return material;
    auto& names = m_content.header.materialNames;
    const std::string_view name = frdTrimmed(field);
    for (const auto& [number, known] : names) {
        if (known.starts_with(name)) return number;
    }
    material = names.empty() ? 1 : names.rbegin()->first + 1;
    names[material] = name;
    return material;
}

FrdForm::Outcome FrdTextForm::readElementNodes(std::size_t count, FrdElementGroup& group) {
    const std::size_t perLine = m_width == SHORT ? 15 : 10;
    while (count > 0) {
        const auto line = m_content.file.readLine();
        if (!line) return OUT_OF_DATA;
        const std::size_t here = std::min(count, perLine);
        if (!isFrdItem(*line, "-2") || !readNodesOfElement(*line, here, group)) {
            return damaged("an element without all its nodes");
        }
        count -= here;
    }
    return WHOLE;
}

bool FrdTextForm::readNodesOfElement(std::string_view line, std::size_t count,
                                     FrdElementGroup& group) {
    for (std::size_t i = 0; i < count; ++i) {
        int node = 0;
        const auto field = idField(line, i);
        if (frdTrimmed(field).empty() || !readFrdInteger(field, &node)) return false;
        group.nodes.push_back(node);
    }
    return true;
}

// ---- Results

FrdForm::Outcome FrdTextForm::readValues(std::uint64_t count) {
    FrdResult& result = m_content.result;
    reserve(result.nodeIds, count, m_content.file.size() / kValueWidth);
    reserve(result.values, count * result.components.size(), m_content.file.size() / kValueWidth);
    std::size_t missing = 0;
    while (const auto line = m_content.file.readLine()) {
        const bool isFirst = isFrdItem(*line, "-1");
        const bool isMore = isFrdItem(*line, "-2");
        const bool isEnd = isFrdItem(*line, "-3");
        if (!isFirst && !isMore && !isEnd) return damaged("these are no values");
        if ((missing > 0) != isMore) return damaged("a node without all its values");
        if (isEnd) return WHOLE;
        if (isFirst) missing = result.components.size();
        const std::size_t here = std::min(missing, kValuesPerLine);
        if (!readValueLine(*line, here)) return damaged("these are no values");
        missing -= here;
    }
    return OUT_OF_DATA;
}

bool FrdTextForm::readValueLine(std::string_view line, std::size_t count) {
    int id = 0;
    if (!readFrdInteger(idField(line, 0), &id)) return false;
    if (isFrdItem(line, "-1")) m_content.result.nodeIds.push_back(id);
    return readFloats(line, count, m_content.result.values);
}

}  // namespace tools
