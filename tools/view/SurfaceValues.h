#pragma once

#include <map>
#include <span>
#include <vector>

#include "quantities/ResultRows.h"
#include "view/OuterSurface.h"

namespace tools {

/// The values of one result in one state, as rows bring them, and what of them a surface shows.
class SurfaceValues {
public:
    SurfaceValues(ModelItems& model, int mapping, int components)
        : m_model(model), m_mapping(mapping), m_components(static_cast<std::size_t>(components)) {}

    /// Rows come block by block, unfiltered.
    void take(const ResultRow& row);

    /// Components of every node of the surface: its values, or the mean of those that the elements
    /// of the surface have there, those inside included. Empty when there are none.
    std::vector<float> atNodes(const OuterSurface& surface) const;

    /// Components of every cell: values of elements, and of surfaces of elements. Empty otherwise.
    std::vector<float> atCells(const OuterSurface& surface) const;

    /// Components of every corner: values at nodes of elements. Empty otherwise.
    std::vector<float> atCorners(const OuterSurface& surface) const;

private:
    /// Of the items of a block, in order; of elements those of all their nodes, or surfaces.
    using Values = std::vector<float>;

    std::vector<float> meansAtNodes(const OuterSurface& surface) const;
    const Values* valuesOf(int block) const;
    std::size_t itemsOf(int block) const;
    void copyItem(const Values& values, std::size_t item, std::span<float> to) const;
    std::vector<float> undefined(std::size_t count) const;
    bool hasValues(const OuterSurface& surface) const;

    ModelItems& m_model;
    const int m_mapping;
    const std::size_t m_components;
    std::map<int, Values> m_values;       // by block
    std::map<int, std::size_t> m_counts;  // of rows so far, where elements have several
};

}  // namespace tools
