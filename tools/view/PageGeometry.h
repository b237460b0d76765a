#pragma once

#include <map>
#include <vector>

#include "Text.h"
#include "view/OuterSurface.h"
#include "view/PageFile.h"

namespace tools {

/// The outer surfaces of a model, on the page and in memory, and which of them are the parts of
/// each state. Surfaces that states share are there once.
class PageGeometry {
public:
    PageGeometry(ModelItems& model, PageFile& page, QuadraticSides sides)
        : m_model(model), m_page(page), m_sides(sides) {}

    /// Adds what a state shows; gives the number of its layout, which says what each part is made
    /// of.
    int addState(int state);

    const std::vector<OuterSurface>& surfaces() const { return m_surfaces; }

    /// Elements whose nodes are missing.
    std::int64_t damaged() const;

    Json surfacesJson() const { return m_surfacesJson; }
    Json layoutsJson() const { return m_layouts; }
    Json partsJson() const;

    /// The sets, each with its cells of every surface.
    Json setsJson();

private:
    std::vector<int> surfacesOf(const std::vector<int>& elementBlocks);
    Json write(const OuterSurface& surface);

    ModelItems& m_model;
    PageFile& m_page;
    const QuadraticSides m_sides;
    std::vector<OuterSurface> m_surfaces;
    std::map<std::vector<int>, std::vector<int>> m_surfacesOf;  // by element blocks
    Json m_surfacesJson = Json::array();
    std::vector<Json> m_layouts;
    std::map<int, std::string> m_partNames;
};

}  // namespace tools
