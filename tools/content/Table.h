#pragma once

#include <charconv>
#include <concepts>
#include <initializer_list>
#include <span>
#include <string>

#include "ZRUndefined.h"
#include "content/Content.h"

namespace tools {

/// Writes rows of cells to standard output: with blanks between them, or as CSV (RFC 4180); texts
/// that hold separators are quoted. Gathers text, so that millions of rows go out fast.
class Table {
public:
    explicit Table(bool isCsv) : m_isCsv(isCsv) {}
    ~Table();
    Table(const Table&) = delete;
    Table& operator=(const Table&) = delete;

    /// The names of the columns, one of ids, unless null, in front; plain text has them as a
    /// comment.
    void header(const char* idName, std::span<const char* const> names);
    void header(const char* idName, std::initializer_list<const char*> names) {
        header(idName, std::span(names.begin(), names.size()));
    }
    void header(std::initializer_list<const char*> names) { header(nullptr, names); }

    template <std::integral T>
    void cell(T value) {
        number(value);
    }
    /// Without a value: "UNDEF" in text, an empty cell in CSV.
    void cell(float value) {
        if (!unstruct::IsUndefined(value)) return number(value);
        separate();
        if (!m_isCsv) m_text += "UNDEF";
    }
    void cell(double value) { number(value); }
    void cell(const std::string& value) { text(value); }

    void endRow();

private:
    void separate() {
        if (!m_isFirst) m_text += m_isCsv ? ',' : ' ';
        m_isFirst = false;
    }

    template <typename Number>
    void number(Number value) {
        separate();
        char digits[40];
        m_text.append(digits, std::to_chars(digits, digits + sizeof(digits), value).ptr);
    }

    void text(const std::string& value);

    const bool m_isCsv;
    std::string m_text;
    bool m_isFirst = true;
};

/// Writes a row for each item, with its id, unless null, in front.
void writeItems(const Reals& reals, const unstruct::ZRIntArray* ids, Table& table);

/// Writes a block that has no table of its own: a row for each field, and of arrays one for each
/// item.
void writeFields(const unstruct::ZRFxBlock& block, Table& table);

}  // namespace tools
