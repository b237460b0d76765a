#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "import/ImportFile.h"
#include "import/ImportReader.h"
#include "import/gmsh/GmshMesh.h"
#include "import/gmsh/GmshWords.h"

namespace tools {

/// Reads gmsh's own format, as text, of the versions 2 and 4.1: the mesh with its physical groups,
/// and views at nodes, elements and nodes of elements, a time step at a time.
class GmshReader : public ImportReader {
public:
    bool open(const std::string& path) override { return m_file.open(path); }
    Event next() override;
    std::uint64_t fileSize() const override { return m_file.size(); }
    std::uint64_t position() const override { return m_file.place().offset; }

private:
    struct Section;

    // The lines before the values of a view.
    struct View {
        std::string name;
        float time = 0;
        int step = 0;
        int componentCount = 0;
        int itemCount = 0;
        int partition = 0;  // of which the values are a piece, 0 of none
    };

    static const Section* sectionOf(std::string_view name);
    bool readLine();
    bool fail(const std::string& reason);
    Event readSection(const std::string& name);
    bool skipTo(const std::string& end);
    bool readEnd(const std::string& end);
    Event failure();

    // Each reads what a section holds. False after fail(), or when the file ends.
    bool readFormat();
    bool readNames();
    bool readEntities();
    bool readEntity(int dimension);
    bool readNodes();
    bool readNodes2();
    bool readNodeBlock();
    bool readPosition();
    bool readElements();
    bool readElement2();
    bool readElementBlock();
    bool readElement(int id, const GmshElementType& type);
    bool readNodeValues();
    bool readElementValues();
    bool readElementNodeValues();

    bool readCount(int* count);
    bool readView(nuo::zrfx::ResultBlock::ResultMapping mapping);
    bool readViewHead(View& view);
    bool readTags(std::vector<std::string>& tags);
    bool readItem(nuo::zrfx::ResultBlock::ResultMapping mapping, int componentCount);
    bool readRow(int componentCount);
    ImportState stateOf(const View& view);
    ImportField fieldOf(const View& view, nuo::zrfx::ResultBlock::ResultMapping mapping);

    ImportFile m_file;
    GmshWords m_words;          // of the line that was read last
    int m_version = 0;          // 2 or 4
    ImportFile::Place m_line;   // that was read last
    ImportFile::Place m_begin;  // of the section
    std::string m_section;
    std::string m_reason;       // why reading a section failed; empty when the file ends
    bool m_isSkipping = false;  // after damage, up to the next section
    GmshMesh m_mesh;
    std::vector<int> m_numbers;                   // of the element that is read
    std::vector<std::pair<int, float>> m_states;  // their steps and times

    // How often a name was used in a state.
    std::map<std::tuple<int, std::string, int>, int> m_viewCounts;
};

}  // namespace tools
