#include "import/deck/ImportDeck.h"

#include "import/deck/DeckReader.h"
#include "import/deck/DeckSets.h"

namespace tools {

bool ImportDeck::addTo(ImportElements& elements, const ImportHeader& header, std::string* error) {
    std::vector<int> ids;
    for (const ImportElementGroup& group : elements.groups) {
        ids.insert(ids.end(), group.ids.begin(), group.ids.end());
    }
    DeckReader reader(m_nodes, ids);
    if (!reader.read(m_path, error)) return false;
    m_hasStep = reader.model().hasStep;
    m_asksForResults = reader.model().asksForResults;
    DeckSets sets(elements, header.partNames, m_nodes.size());
    sets.add(reader.model());
    m_notes = sets.notes();
    m_nodes = {};
    return true;
}

std::string ImportDeck::whyNoResults() const {
    if (!m_hasStep) return "the deck has no *STEP";
    if (!m_asksForResults) return "the deck asks for none: *NODE FILE and *EL FILE do";
    return "the deck asks for some, but the solver has written none; its messages say why";
}

}  // namespace tools
