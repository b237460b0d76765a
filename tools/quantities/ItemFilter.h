#pragma once

#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "quantities/ModelItems.h"

namespace tools {

/// The choice of items that a user makes: of parts and sets by name or id, of nodes and elements by
/// id. Several of one kind add up, kinds restrict each other. Nodes are in a part, or set, when an
/// element of it has them.
struct ItemChoice {
    std::vector<std::string> parts;
    std::vector<std::string> sets;
    std::vector<int> nodes;
    std::vector<int> elements;

    bool restrictsElements() const { return !parts.empty() || !sets.empty() || !elements.empty(); }
};

/// Tells which items of a block are chosen in a state.
class ItemFilter {
public:
    ItemFilter(ModelItems& model, const ItemChoice& choice) : m_model(model), m_choice(choice) {}

    /// Looks for parts and sets of the choice. False, with a sentence, when one is not there.
    bool resolve(int state, std::string* error);

    /// One entry an item of the block; empty when all are chosen.
    std::vector<bool> elements(int block);
    std::vector<bool> nodes(int block);

private:
    bool resolveParts(int state, std::string* error);
    bool resolveSets(std::string* error);
    bool hasBlock(int block) const;
    bool isChosen(int block, const ElementItems& items, std::size_t index) const;

    ModelItems& m_model;
    const ItemChoice& m_choice;
    std::set<int> m_blocks;                                // of elements, of the chosen parts
    std::map<int, std::pair<bool, std::set<int>>> m_sets;  // by block: whether ids, and items
};

}  // namespace tools
