#include "import/frd/FrdBinaryForm.h"

#include <bit>
#include <cstring>

#include "import/frd/FrdElementType.h"

namespace tools {
namespace {

constexpr std::size_t kInteger = sizeof(std::int32_t);

template <typename T>
T littleEndian(const char* bytes) {
    static_assert(std::endian::native == std::endian::little);
    T value;
    std::memcpy(&value, bytes, sizeof(value));
    return value;
}

}  // namespace

float FrdBinaryForm::valueAt(const char* bytes) const {
    return m_valueSize == DOUBLES ? static_cast<float>(littleEndian<double>(bytes))
                                  : littleEndian<float>(bytes);
}

FrdForm::Outcome FrdBinaryForm::readNodes(std::uint64_t count) {
    return readRecords(count, 3, m_content.nodes.ids, m_content.nodes.coordinates);
}

FrdForm::Outcome FrdBinaryForm::readValues(std::uint64_t count) {
    FrdResult& result = m_content.result;
    return readRecords(count, result.components.size(), result.nodeIds, result.values);
}

// Each has an id and values.
FrdForm::Outcome FrdBinaryForm::readRecords(std::uint64_t count, std::size_t valueCount,
                                            std::vector<int>& ids, std::vector<float>& values) {
    const std::size_t recordSize = kInteger + valueCount * m_valueSize;
    const std::uint64_t most = m_content.file.size() / recordSize;
    reserve(ids, count, most);
    reserve(values, valueCount * count, valueCount * most);
    for (std::uint64_t i = 0; i < count; ++i) {
        const char* record = m_content.file.readBytes(recordSize);
        if (!record) return OUT_OF_DATA;
        ids.push_back(littleEndian<std::int32_t>(record));
        for (std::size_t value = 0; value < valueCount; ++value) {
            values.push_back(valueAt(record + kInteger + value * m_valueSize));
        }
    }
    return WHOLE;
}

FrdForm::Outcome FrdBinaryForm::readElements(std::uint64_t count) {
    for (std::uint64_t element = 0; element < count; ++element) {
        const Outcome outcome = readElement(count);
        if (outcome != WHOLE) return outcome;
    }
    return WHOLE;
}

FrdForm::Outcome FrdBinaryForm::readElement(std::uint64_t count) {
    const char* record = m_content.file.readBytes(4 * kInteger);
    if (!record) return OUT_OF_DATA;
    const auto id = littleEndian<std::int32_t>(record);
    const auto type = littleEndian<std::int32_t>(record + kInteger);
    const auto material = littleEndian<std::int32_t>(record + 3 * kInteger);
    FrdElementGroup* group = elementGroup(type, material, count);
    if (!group) return unknownType(type);
    const std::size_t nodeCount = frdElementType(type)->order.size();
    const char* nodes = m_content.file.readBytes(nodeCount * kInteger);
    if (!nodes) return OUT_OF_DATA;
    group->ids.push_back(id);
    for (std::size_t i = 0; i < nodeCount; ++i) {
        group->nodes.push_back(littleEndian<std::int32_t>(nodes + i * kInteger));
    }
    return WHOLE;
}

}  // namespace tools
