#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "import/ImportFile.h"
#include "import/ImportReader.h"
#include "import/frd/FrdData.h"

namespace tools {

/// Reads a CalculiX result file block by block: text of both widths, and binary. No more than one
/// block is in memory. The file may be damaged, or still being written. One thread.
///
///     FrdReader reader;
///     if (!reader.open("beam.frd")) return;
///     for (auto event = reader.next(); event != FrdReader::END; event = reader.next()) ...
class FrdReader {
public:
    using enum ImportReader::Event;
    using Event = ImportReader::Event;

    /// Opens a file, or anew one of which nothing was read. False, with errno, when it cannot be
    /// read.
    bool open(const std::string& path) { return m_file.open(path); }

    /// Reads up to the end of the next block. The data of the block before it is gone then.
    Event next();

    const FrdHeader& header() const { return m_header; }
    ImportNodes& nodes() { return m_nodes; }
    FrdElements& elements() { return m_elements; }
    FrdResult& result() { return m_result; }

    /// Place and reason.
    const std::string& damage() const { return m_damage; }

    /// After INCOMPLETE: the result within which the file ends, so far as it is there; null when
    /// its components are not.
    const FrdResult* begunResult() const { return m_hasBegun ? &m_result : nullptr; }

    /// Whether the file was shortened since it was opened, or another one is at its path, as with a
    /// solver that starts again.
    bool wasWrittenAnew(const std::string& path) const {
        return m_file.size() < m_file.place().offset || m_file.isReplacedAt(path);
    }

    std::uint64_t position() const { return m_file.place().offset; }
    std::uint64_t fileSize() const { return m_file.size(); }

private:
    // How the numbers of a block are written.
    enum Format : int { SHORT_TEXT = 0, LONG_TEXT = 1, FLOATS = 2, DOUBLES = 3 };

    Event read();
    std::string placeText() const;
    Event damaged(const std::string& reason);
    Event outOfData();
    bool findNextBlock();
    void readUserLine(std::string_view line);
    void readParameterLine(std::string_view line);

    bool readFormat(std::string_view line, std::size_t column);
    bool isText() const { return m_format <= LONG_TEXT; }
    std::size_t idWidth() const { return m_format == SHORT_TEXT ? 5 : 10; }
    Event readNodes(std::string_view line);
    Event readTextNodes();
    bool readNodeLine(std::string_view line);
    Event readBinaryNodes(std::uint64_t count);

    Event readElements(std::string_view line);
    Event readTextElements();
    Event readTextElement(std::string_view line);
    int materialNumber(std::string_view field);
    Event readTextElementNodes(std::size_t count, FrdElementGroup& group);
    Event readBinaryElements(std::uint64_t count);
    FrdElementGroup* elementGroup(int type, int material);

    Event readResult(std::string_view line);
    bool readStep(std::string_view line, std::uint64_t* count);
    Event readComponents();
    bool readComponent(std::string_view line);
    Event readTextValues();
    bool readValueLine(std::string_view line, std::size_t count);
    Event readBinaryValues(std::uint64_t count);

    ImportFile m_file;
    FrdHeader m_header;
    ImportNodes m_nodes;
    FrdElements m_elements;
    FrdResult m_result;
    FrdStep m_step;  // as the parameter lines before a result say
    std::string m_block;
    std::string m_damage;
    Format m_format = LONG_TEXT;
    std::size_t m_elementCount = 0;  // as the file says, so far as it can hold them
    ImportFile::Place m_begin;       // of the block that is read
    bool m_isBinary = false;
    bool m_isBetweenBlocks = true;
    bool m_hasBegun = false;
    bool m_isSkipping = false;  // after damage, up to the next block
    bool m_isLost = false;
};

}  // namespace tools
