#include "view/SurfaceValues.h"

#include <algorithm>

#include "ZRUndefined.h"
#include "types/ZRFxResultTypes.h"

namespace tools {
namespace {

using namespace unstruct;

/// Means of values that are undefined here and there.
class Means {
public:
    explicit Means(std::size_t count) : m_sums(count), m_counts(count) {}

    void add(std::size_t first, std::span<const float> values) {
        for (std::size_t i = 0; i < values.size(); ++i) {
            if (IsUndefined(values[i])) continue;
            m_sums[first + i] += double{values[i]};
            ++m_counts[first + i];
        }
    }

    std::vector<float> take() const {
        std::vector<float> means(m_sums.size(), kUndefinedValue);
        for (std::size_t i = 0; i < means.size(); ++i) {
            if (m_counts[i] > 0) means[i] = static_cast<float>(m_sums[i] / m_counts[i]);
        }
        return means;
    }

private:
    std::vector<double> m_sums;
    std::vector<int> m_counts;
};

// Where the surfaces of each element begin among those of all.
std::vector<std::size_t> surfaceBegins(const ElementItems& items) {
    std::vector<std::size_t> begins{0};
    for (const int count : items.surfaceCounts) {
        begins.push_back(begins.back() + static_cast<std::size_t>(count));
    }
    return begins;
}

// The place of a node on a surface; -1 when it is not on it.
std::int64_t placeOn(const OuterSurface& surface, std::int64_t node) {
    const auto found = std::ranges::lower_bound(surface.nodes, node, {},
                                                [](auto own) { return std::int64_t{own}; });
    return found == surface.nodes.end() || *found != node ? -1 : found - surface.nodes.begin();
}

}  // namespace

std::size_t SurfaceValues::itemsOf(int block) const {
    if (m_mapping == MAPPING_NODE) return m_model.nodes(block)->ids.size();
    const ElementItems& items = *m_model.elements(block);
    if (m_mapping == MAPPING_ELEMENT_NODE) return items.nodes.size();
    if (m_mapping == MAPPING_ELEMENT) return items.ids.size();
    return surfaceBegins(items).back();
}

void SurfaceValues::take(const ResultRow& row) {
    const auto [found, isNew] = m_values.try_emplace(row.block);
    Values& values = found->second;
    if (isNew) values.assign(itemsOf(row.block) * m_components, kUndefinedValue);
    const bool isOneEach = m_mapping == MAPPING_NODE || m_mapping == MAPPING_ELEMENT;
    const std::size_t item = isOneEach ? row.index : m_counts[row.block]++;
    if ((item + 1) * m_components > values.size()) return;
    std::ranges::copy(row.values, values.begin() + static_cast<long>(item * m_components));
}

const SurfaceValues::Values* SurfaceValues::valuesOf(int block) const {
    const auto found = m_values.find(block);
    return found == m_values.end() ? nullptr : &found->second;
}

void SurfaceValues::copyItem(const Values& values, std::size_t item, std::span<float> to) const {
    std::copy_n(values.begin() + static_cast<long>(item * m_components), m_components, to.begin());
}

std::vector<float> SurfaceValues::undefined(std::size_t count) const {
    return std::vector<float>(count * m_components, kUndefinedValue);
}

bool SurfaceValues::hasValues(const OuterSurface& surface) const {
    return std::ranges::any_of(surface.blocks, [&](int block) { return valuesOf(block); });
}

std::vector<float> SurfaceValues::atNodes(const OuterSurface& surface) const {
    if (m_mapping == MAPPING_ELEMENT || m_mapping == MAPPING_ELEMENT_NODE) {
        return meansAtNodes(surface);
    }
    const Values* values = m_mapping == MAPPING_NODE ? valuesOf(surface.nodeBlock) : nullptr;
    if (!values) return {};
    std::vector<float> own(surface.nodes.size() * m_components);
    for (std::size_t n = 0; n < surface.nodes.size(); ++n) {
        copyItem(*values, surface.nodes[n], std::span(own).subspan(n * m_components));
    }
    return own;
}

std::vector<float> SurfaceValues::meansAtNodes(const OuterSurface& surface) const {
    if (!hasValues(surface)) return {};
    Means means(surface.nodes.size() * m_components);
    for (const int block : surface.blocks) {
        const Values* values = valuesOf(block);
        if (!values) continue;
        const ElementItems& items = *m_model.elements(block);
        for (std::size_t e = 0; e < items.ids.size(); ++e) {
            for (std::size_t n = items.begins[e]; n < items.begins[e + 1]; ++n) {
                const std::int64_t place = placeOn(surface, items.nodes[n]);
                if (place < 0) continue;
                const std::size_t item = m_mapping == MAPPING_ELEMENT ? e : n;
                means.add(static_cast<std::size_t>(place) * m_components,
                          std::span(*values).subspan(item * m_components, m_components));
            }
        }
    }
    return means.take();
}

std::vector<float> SurfaceValues::atCells(const OuterSurface& surface) const {
    const bool isAtSurfaces = m_mapping == MAPPING_SURFACE;
    if ((m_mapping != MAPPING_ELEMENT && !isAtSurfaces) || !hasValues(surface)) return {};
    std::vector<float> own = undefined(surface.size());
    std::vector<std::vector<std::size_t>> begins;
    for (const int block : surface.blocks)
        begins.push_back(surfaceBegins(*m_model.elements(block)));
    for (std::size_t c = 0; c < surface.size(); ++c) {
        const SurfaceCell& cell = surface.cells[c];
        const Values* values = valuesOf(surface.blocks[cell.block]);
        if (!values) continue;
        const std::size_t item =
            isAtSurfaces ? begins[cell.block][cell.element] + static_cast<std::size_t>(cell.surface)
                         : cell.element;
        if ((item + 1) * m_components > values->size()) continue;
        copyItem(*values, item, std::span(own).subspan(c * m_components));
    }
    return own;
}

std::vector<float> SurfaceValues::atCorners(const OuterSurface& surface) const {
    if (m_mapping != MAPPING_ELEMENT_NODE || !hasValues(surface)) return {};
    std::vector<float> own = undefined(surface.corners.size());
    for (std::size_t c = 0; c < surface.size(); ++c) {
        const SurfaceCell& cell = surface.cells[c];
        const Values* values = valuesOf(surface.blocks[cell.block]);
        if (!values) continue;
        const ElementItems& items = *m_model.elements(surface.blocks[cell.block]);
        const auto first = items.nodes.begin() + static_cast<long>(items.begins[cell.element]);
        const auto last = items.nodes.begin() + static_cast<long>(items.begins[cell.element + 1]);
        for (std::size_t k = surface.begins[c]; k < surface.begins[c + 1]; ++k) {
            const auto found =
                std::find(first, last, std::int64_t{surface.nodes[surface.corners[k]]});
            if (found == last) continue;
            copyItem(*values, static_cast<std::size_t>(found - items.nodes.begin()),
                     std::span(own).subspan(k * m_components));
        }
    }
    return own;
}

}  // namespace tools
