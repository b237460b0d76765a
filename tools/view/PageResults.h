#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Progress.h"
#include "quantities/ResultLookup.h"
#include "quantities/ResultRows.h"
#include "view/PageFile.h"
#include "view/PageGeometry.h"

namespace tools {

/// What a page has of the results of a model: values on its surfaces, and the extremes of all
/// items.
class PageResults {
public:
    PageResults(ModelItems& model, PageFile& page, const PageGeometry& geometry)
        : m_model(model), m_page(page), m_geometry(geometry) {}

    /// Takes a result up. It has no values before states are added.
    void addResult(nvf::ref<unstruct::ZRFxResultBlock> result);

    std::size_t count() const { return m_results.size(); }

    /// Writes the values of a result in a state. False when something cannot be read, with the
    /// library's message; the values that could be read are there.
    bool addState(std::size_t result, int state);

    /// Whether the result has values in the state.
    bool hasState(std::size_t result, int state) const;

    std::string nameOf(std::size_t result) const;
    Json json() const;

private:
    struct Result {
        nvf::ref<unstruct::ZRFxResultBlock> block;
        Json states = Json::object();  // by id
    };

    ModelItems& m_model;
    PageFile& m_page;
    const PageGeometry& m_geometry;
    std::vector<Result> m_results;
};

}  // namespace tools
