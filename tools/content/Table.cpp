#include "content/Table.h"

#include <variant>

#include "StandardOutput.h"
#include "Text.h"
#include "content/BlockGroup.h"

namespace tools {
namespace {

constexpr std::size_t kFlushSize = std::size_t{1} << 16;

template <typename Value>
void writeRow(const std::string& place, const Value& value, Table& table) {
    table.cell(place);
    table.cell(value);
    table.endRow();
}

template <typename Value>
void writeField(const std::string& place, const Value& value, Table& table) {
    writeRow(place, value, table);
}

void writeField(const std::string& place, std::span<const std::int32_t> items, Table& table) {
    for (const std::int32_t item : items) writeRow(place, item, table);
}

void writeField(const std::string& place, const Reals& reals, Table& table) {
    for (const float value : reals.values) writeRow(place, value, table);
}

}  // namespace

Table::~Table() {
    print(m_text);
}

void Table::header(const char* idName, std::span<const char* const> names) {
    if (!m_isCsv) m_text += "#";
    m_isFirst = m_isCsv;
    if (idName) text(idName);
    for (const char* name : names) text(name);
    endRow();
}

void Table::endRow() {
    m_text += '\n';
    m_isFirst = true;
    if (m_text.size() < kFlushSize) return;
    print(m_text);
    m_text.clear();
}

void Table::text(const std::string& value) {
    separate();
    const char* special = m_isCsv ? ",\"\r\n" : " \"";
    const std::string shown = m_isCsv ? value : printable(value);
    if (!shown.empty() && shown.find_first_of(special) == std::string::npos) {
        m_text += shown;
        return;
    }
    m_text += '"';
    for (const char c : shown) m_text.append(c == '"' ? 2 : 1, c);
    m_text += '"';
}

void writeItems(const Reals& reals, const unstruct::ZRIntArray* ids, Table& table) {
    const auto components = static_cast<std::size_t>(reals.components);
    for (std::size_t i = 0; i < reals.values.size(); i += components) {
        if (ids) table.cell((*ids)[static_cast<std::int64_t>(i / components)]);
        for (std::size_t c = 0; c < components; ++c) table.cell(reals.values[i + c]);
        table.endRow();
    }
}

void writeFields(const unstruct::ZRFxBlock& block, Table& table) {
    table.header({"place", "value"});
    for (const Field& field : contentOf(block)) {
        std::visit([&](const auto& value) { writeField(field.place, value, table); }, field.value);
    }
}

}  // namespace tools
