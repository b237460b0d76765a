#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "diff/Differences.h"
#include "diff/ItemPairs.h"
#include "diff/Numbering.h"
#include "diff/Side.h"
#include "diff/Tolerances.h"
#include "quantities/ModelItems.h"

namespace tools {

/// Compares nodes, elements, parts and sets of two models, item by item by id. Where the ids do not
/// lead to one mesh but the items are the same, the model has been renumbered: that is one
/// difference, and everything else is compared between the items that are the same.
class MeshComparison {
public:
    /// `place` names the model.
    MeshComparison(ModelItems& a, ModelItems& b, std::string place, const Tolerance& tolerance,
                   Differences& differences)
        : m_a(a),
          m_b(b),
          m_place(std::move(place)),
          m_tolerance(tolerance),
          m_differences(differences) {}

    /// Nodes, elements and sets. Gives the file that cannot be read.
    Side run();

    /// The parts of a state of A, and of that of B which belongs to it.
    void compareParts(int stateOfA, int stateOfB);

    const Numberings& numberings() const { return m_numberings; }

private:
    struct Nodes {
        std::vector<int> ids;
        std::vector<nuo::Vec3f> positions;
    };
    struct Elements {
        std::vector<int> ids;
        std::vector<std::uint64_t> contents;  // a number for type and nodes
    };
    using Ids = std::vector<int>;

    bool gatherNodes(ModelItems& model, Nodes& nodes);
    bool gatherElements(ModelItems& model, const Numbering& numbering, Elements& elements);
    void compareNodes(const Nodes& a, const Nodes& b);
    bool areRenumbered(const Nodes& a, const Nodes& b);
    void addMoved(const Nodes& a, const Nodes& b, const std::vector<ItemPairs::Pair>& moved,
                  std::size_t all);
    void compareElements(const Elements& a, const Elements& b);
    void addMissing(const std::string& what, const Ids& onlyA, const Ids& onlyB);
    void addRenumbered(const std::string& what, std::size_t count, std::size_t all);
    std::map<std::string, Ids> setsOf(ModelItems& model, const Numbering& numbering);
    std::map<std::string, Ids> partsOf(ModelItems& model, int state, const Numbering& numbering);
    void compareGroups(const std::string& what, const std::map<std::string, Ids>& a,
                       const std::map<std::string, Ids>& b);

    ModelItems& m_a;
    ModelItems& m_b;
    const std::string m_place;
    const Tolerance& m_tolerance;
    Differences& m_differences;
    Numberings m_numberings;
    std::vector<PartItems> m_lastPartsOfA;  // of the states compared last
    std::vector<PartItems> m_lastPartsOfB;
};

}  // namespace tools
