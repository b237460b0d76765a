#pragma once

#include <cstdint>
#include <map>
#include <utility>
#include <vector>

#include "access/ZRFxListDocument.h"
#include "database/ZRFxBlockLine.h"

namespace unstruct {

/// The table of contents of a database: one line for each type and id, in the order in which they
/// were entered.
class ZRFxTableOfContents : public ZRFxListContent {
public:
    /// Name of the document in the folder of the database.
    static constexpr const char* kName = "Database-TOC.xml";
    /// Name of its root element.
    static constexpr const char* kRoot = "DatabaseTOC";

    explicit ZRFxTableOfContents(int databaseId) : m_databaseId(databaseId) {}

    /// Enters a line. A line of the same type and id keeps its place and gets the new file name.
    void Enter(const ZRFxBlockLine& line);
    /// After it, entering a line that is already there takes no memory.
    void PrepareToEnter();

    /// Enters lines after those that are there.
    void Append(std::vector<ZRFxBlockLine> lines);

    /// All lines. Until the next Enter they may hold several of one block, of which the last
    /// counts.
    const std::vector<ZRFxBlockLine>& Lines() const { return m_lines; }

    /// Removes the line of that type and id, if there is one. Takes no memory.
    void Remove(int type, int id);

    /// Stores the document in place of the entry of that name. False, with a message, when that
    /// fails.
    bool Store(ZRFxAccess* pAccess, const ZRString& name);

    /// Whether it differs from what is stored.
    bool IsModified() const { return m_isModified; }
    void SetModified(bool isModified) { m_isModified = isModified; }

private:
    using BlockKey = std::pair<int, int>;  // type and id

    bool IsIndexed() const { return m_indices.size() == m_lines.size(); }
    nvf::XmlElement WriteHead(nvf::XmlDocument* pDoc) const override;
    void WriteItem(nvf::XmlElement root, std::int64_t index) const override;
    std::int64_t GetItemCount() const override;

    const int m_databaseId;
    std::vector<ZRFxBlockLine> m_lines;
    // Of all lines, or else outdated: brought up to date by PrepareToEnter, as readers need none.
    std::map<BlockKey, std::size_t> m_indices;
    ZRFxListDocument m_document;
    bool m_isModified = false;
};

}  // namespace unstruct
