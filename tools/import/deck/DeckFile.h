#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "import/ImportFile.h"

namespace tools {

/// A line of a deck: of a keyword and its parameters, or of data below one.
struct DeckLine {
    bool isKeyword = false;
    std::string keyword;                            ///< Without '*' and blanks, in capitals.
    std::map<std::string, std::string> parameters;  ///< By name in capitals; values as they stand.
    std::vector<std::string> fields;                ///< Of data, without blanks around them.
    bool endsWithComma = false;

    /// The value of a parameter; empty when there is none.
    std::string parameter(const std::string& name) const;
};

/// The lines of an input deck of CalculiX and of the files that it includes, without comments.
/// Files are found from the folder of the deck, as by a solver that runs there.
class DeckFile {
public:
    /// False, with errno, when the deck cannot be read.
    bool open(const std::string& path);

    /// The next line. False at the end, or when the deck is not sound, as error() says.
    bool next(DeckLine* line);

    /// File, line and reason; empty at a good end.
    const std::string& error() const { return m_error; }

    /// "part.inp, line 17".
    std::string place() const;

private:
    struct Source {
        std::string path;
        ImportFile file;
    };

    bool readText(std::string* text);
    bool readKeyword(std::string text, DeckLine* line);
    bool include(const DeckLine& line);
    bool fail(const std::string& reason);

    std::string m_folder;
    std::vector<std::unique_ptr<Source>> m_sources;  // the last one is read
    std::optional<std::string> m_readAhead;          // a line
    int m_includeCount = 0;
    std::string m_error;
};

}  // namespace tools
