#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "blocks/results/ZRFxResultBlock.h"
#include "blocks/results/ZRFxResultValuesBlock.h"
#include "quantities/ItemFilter.h"

namespace tools {

/// Values of one item of a result.
struct ResultRow {
    int id = 0;      ///< Of the node or element; its index where the model has no ids.
    int node = -1;   ///< Id of the node of the element, or number of its surface, where values are
                     ///< at such.
    int block = -1;  ///< That the values belong to.
    std::size_t index = 0;        ///< Of the node or element in its block.
    std::int64_t nodeIndex = -1;  ///< Of the node of the element in its block.
    std::span<const float> values;
};

/// What the two numbers of a row are called: "node", or "element" and "node".
struct RowNames {
    const char* id;
    const char* second;  ///< Null when there is none.
};
RowNames rowNamesOf(int mapping);

/// Reads the values of results state by state, with the items that they belong to.
class ResultRows {
public:
    explicit ResultRows(ModelItems& model) : m_model(model) {}

    /// Calls `take` for each chosen item of a result in a state; the filter has been resolved for
    /// it, and may be null. False when something cannot be read, with the library's message.
    bool forEach(const unstruct::ZRFxResultBlock& result, int state, ItemFilter* filter,
                 const std::function<void(const ResultRow&)>& take);

    /// Where the item of a row lies: a node, or the centre of an element. None when it is not
    /// known.
    std::optional<nuo::Vec3f> positionOf(const ResultRow& row, int mapping);

    /// The part of the item; null when it is in none.
    const PartItems* partOf(const ResultRow& row, int mapping, int state);

private:
    using Take = std::function<void(const ResultRow&)>;
    void takeItems(const unstruct::ZRFxResultValuesBlock& values, const std::vector<int>* ids,
                   const std::vector<bool>& chosen, const Take& take);
    void takeElementRows(const unstruct::ZRFxResultValuesBlock& values, int mapping,
                         const ElementItems& items, ItemFilter* filter, const Take& take);
    bool takeBlock(const unstruct::ZRFxResultValuesBlock& values, int mapping, ItemFilter* filter,
                   const Take& take);

    ModelItems& m_model;
};

}  // namespace tools
