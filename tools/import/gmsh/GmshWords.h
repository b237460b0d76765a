#pragma once

#include <algorithm>
#include <string_view>

#include "import/ImportNumbers.h"

namespace tools {

/// The words of a line, between blanks, one after the other. The line must live as long.
class GmshWords {
public:
    GmshWords() = default;
    explicit GmshWords(std::string_view line) : m_rest(line) {}

    /// Empty at the end of the line.
    std::string_view next() {
        m_rest.remove_prefix(std::min(m_rest.find_first_not_of(kBlanks), m_rest.size()));
        const std::string_view word = m_rest.substr(0, m_rest.find_first_of(kBlanks));
        m_rest.remove_prefix(word.size());
        return word;
    }

    /// False when the next word is no such number.
    bool read(int* value) { return readInteger(next(), value); }
    bool read(float* value) { return readFloat(next(), value); }
    bool read(double* value) { return readDouble(next(), value); }

    /// The rest of the line after the words so far.
    std::string_view rest() const { return m_rest; }

private:
    static constexpr const char* kBlanks = " \t";

    std::string_view m_rest;
};

}  // namespace tools
