#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "import/ImportReader.h"
#include "import/frd/FrdForm.h"

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
    bool open(const std::string& path) { return m_content.file.open(path); }

    /// Reads up to the end of the next block. The data of the block before it is gone then.
    Event next();

    const FrdHeader& header() const { return m_content.header; }
    ImportNodes& nodes() { return m_content.nodes; }
    FrdElements& elements() { return m_content.elements; }
    FrdResult& result() { return m_content.result; }

    /// Place and reason.
    const std::string& damage() const { return m_damage; }

    /// After INCOMPLETE: the result within which the file ends, so far as it is there; null when
    /// its components are not.
    const FrdResult* begunResult() const { return m_hasBegun ? &m_content.result : nullptr; }

    /// Whether the file was shortened since it was opened, or another one is at its path, as with a
    /// solver that starts again.
    bool wasWrittenAnew(const std::string& path) const {
        return m_content.file.size() < m_content.file.place().offset ||
               m_content.file.isReplacedAt(path);
    }

    /// Whether the file ends with the marker that the solver writes last.
    bool isFinished() const;

    std::uint64_t position() const { return m_content.file.place().offset; }
    std::uint64_t fileSize() const { return m_content.file.size(); }

private:
    Event read();
    std::string placeText() const;
    Event damaged(const std::string& reason);
    Event outOfData();
    bool findNextBlock();
    void readUserLine(std::string_view line);
    void readParameterLine(std::string_view line);

    std::unique_ptr<FrdForm> formOf(std::string_view head);
    Event eventOf(FrdForm::Outcome outcome, const FrdForm& form, Event whole);
    Event readNodes(std::string_view line);
    Event readElements(std::string_view line);
    Event readResult(std::string_view line);
    bool readStep(std::string_view line);
    Event readComponents();
    bool readComponent(std::string_view line);

    FrdContent m_content;
    FrdStep m_step;  // as the parameter lines before a result say
    std::string m_block;
    std::string m_damage;
    ImportFile::Place m_begin;  // of the block that is read
    bool m_isBinary = false;
    bool m_isBetweenBlocks = true;
    bool m_hasBegun = false;
    bool m_isSkipping = false;  // after damage, up to the next block
    bool m_isLost = false;
};

}  // namespace tools
