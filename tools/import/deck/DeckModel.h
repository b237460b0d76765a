#pragma once

#include <string>
#include <utility>
#include <vector>

namespace tools {

/// A named set of nodes or elements.
struct DeckSet {
    std::string name;
    std::vector<int> ids;     ///< Of those that the mesh has, in rising order.
    bool lacksItems = false;  ///< The mesh does not have some of them.
};

/// A section: which elements have which material.
struct DeckSection {
    std::string name;  ///< Of the set of elements, and the material in parentheses.
    std::vector<int> elementIds;
};

/// A surface of faces of elements.
struct DeckSurface {
    std::string name;
    std::vector<std::pair<int, int>> faces;  ///< Element, and number of the face from 1.
    bool lacksFaces = false;                 ///< Some are none of a volume of the mesh.
};

/// What a deck knows of a mesh, and the results of the solver do not tell.
struct DeckModel {
    std::vector<DeckSet> nodeSets;  ///< Those of one name are one set.
    std::vector<DeckSet> elementSets;
    std::vector<DeckSection> sections;
    std::vector<DeckSurface> surfaces;
    bool hasStep = false;
    bool asksForResults = false;  ///< In the file of results.
};

}  // namespace tools
