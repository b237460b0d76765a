#pragma once

#include <string>
#include <vector>

#include "import/ImportData.h"

namespace tools {

/// The input deck of results that are imported: adds its sets, surfaces and sections to the mesh.
class ImportDeck {
public:
    explicit ImportDeck(std::string path) : m_path(std::move(path)) {}

    const std::string& path() const { return m_path; }

    /// To be called with the nodes of the mesh before they are taken, then with its elements. On
    /// failure, the reason.
    void noteNodes(const ImportNodes& nodes) { m_nodes = nodes.ids; }
    bool addTo(ImportElements& elements, const ImportHeader& header, std::string* error);

    /// On what was left out, one line each.
    const std::vector<std::string>& notes() const { return m_notes; }

    /// Why there are no results in the file.
    std::string whyNoResults() const;

private:
    const std::string m_path;
    std::vector<int> m_nodes;
    std::vector<std::string> m_notes;
    bool m_hasStep = false;
    bool m_asksForResults = false;
};

}  // namespace tools
