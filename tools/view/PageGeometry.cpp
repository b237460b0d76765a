#include "view/PageGeometry.h"

#include <algorithm>
#include <set>

#include "blocks/mesh/ZRFxGeometryInfoBlock.h"
#include "blocks/sets/ZRFxSetBlock.h"
#include "content/Content.h"

namespace tools {
namespace {

using namespace unstruct;

std::vector<std::uint32_t> idsOfNodes(ModelItems& model, const OuterSurface& surface) {
    const NodeItems& items = *model.nodes(surface.nodeBlock);
    std::vector<std::uint32_t> ids;
    for (const std::uint32_t node : surface.nodes) {
        ids.push_back(static_cast<std::uint32_t>(items.ids[node]));
    }
    return ids;
}

std::vector<float> positionsOf(ModelItems& model, const OuterSurface& surface) {
    const NodeItems& items = *model.nodes(surface.nodeBlock);
    std::vector<float> positions;
    for (const std::uint32_t node : surface.nodes) {
        const nuo::Vec3f& position = items.positions[node];
        positions.insert(positions.end(), {position.x, position.y, position.z});
    }
    return positions;
}

std::vector<std::uint32_t> idsOfElements(ModelItems& model, const OuterSurface& surface) {
    std::vector<std::uint32_t> ids;
    for (const SurfaceCell& cell : surface.cells) {
        const ElementItems& items = *model.elements(surface.blocks[cell.block]);
        ids.push_back(static_cast<std::uint32_t>(items.ids[cell.element]));
    }
    return ids;
}

/// The elements of a set by block, sorted.
class SetItems {
public:
    explicit SetItems(const ZRFxSetBlock& set) : m_areIds(set.GetItemsSpecifiedAsIDs()) {
        for (std::int64_t g = 0; g < set.GetItemsCount(); ++g) {
            auto& items = m_items[set.GetItems(g)->m_iBlockID];
            const auto added = itemsOf(set.GetItems(g)->m_aiItems);
            items.insert(items.end(), added.begin(), added.end());
        }
        for (auto& [block, items] : m_items) std::ranges::sort(items);
    }

    bool has(ModelItems& model, int block, std::size_t element) const {
        const auto found = m_items.find(block);
        if (found == m_items.end()) return false;
        const int item = m_areIds ? model.elements(block)->ids[element] : static_cast<int>(element);
        return std::ranges::binary_search(found->second, item);
    }

private:
    const bool m_areIds;
    std::map<int, std::vector<int>> m_items;
};

std::map<int, int> partParents(ZRFxDatabase& database) {
    std::map<int, int> parents;
    for (const int id : blockIds(database, BLOCK_GEOMETRY_INFO)) {
        const auto info = readBlock<ZRFxGeometryInfoBlock>(database, id);
        for (int g = 0; info.notNull() && g < info->GetGeometryCountPerState(); ++g) {
            for (int p = 0; p < info->GetPartInfos(g)->GetPartCount(); ++p) {
                const ZRFxPartInfo part = info->GetPartInfos(g)->GetPartInfo(p);
                if (part.parentPartID >= 0) parents.try_emplace(part.partID, part.parentPartID);
            }
        }
    }
    return parents;
}

}  // namespace

int PageGeometry::addState(int state) {
    Json layout = Json::array();
    for (const PartItems& part : m_model.parts(state)) {
        m_partNames.try_emplace(part.id, part.name);
        layout.push_back({{"part", part.id}, {"surfaces", surfacesOf(part.elementBlocks)}});
    }
    const auto found = std::ranges::find(m_layouts, layout);
    const auto place = found - m_layouts.begin();
    if (found == m_layouts.end()) m_layouts.push_back(std::move(layout));
    return static_cast<int>(place);
}

std::vector<int> PageGeometry::surfacesOf(const std::vector<int>& elementBlocks) {
    const auto [found, isNew] = m_surfacesOf.try_emplace(elementBlocks);
    if (!isNew) return found->second;
    for (OuterSurface& surface : outerSurfaces(m_model, elementBlocks, m_sides)) {
        found->second.push_back(static_cast<int>(m_surfaces.size()));
        m_surfacesJson.push_back(write(surface));
        m_surfaces.push_back(std::move(surface));
    }
    return found->second;
}

Json PageGeometry::write(const OuterSurface& surface) {
    std::vector<std::uint16_t> sizes;
    std::vector<std::uint8_t> kinds;
    for (std::size_t c = 0; c < surface.size(); ++c) {
        sizes.push_back(static_cast<std::uint16_t>(surface.begins[c + 1] - surface.begins[c]));
        kinds.push_back(static_cast<std::uint8_t>(surface.cells[c].kind));
    }
    const auto add = [&](const auto& numbers) {
        return m_page.add(std::span(std::as_const(numbers)));
    };
    return {{"nodes", surface.nodes.size()},
            {"cells", surface.size()},
            {"corners", surface.corners.size()},
            {"positions", m_page.add(positionsOf(m_model, surface), 3)},
            {"nodeIds", add(idsOfNodes(m_model, surface))},
            {"cellSizes", add(sizes)},
            {"cellKinds", add(kinds)},
            {"cellCorners", add(surface.corners)},
            {"cellElements", add(idsOfElements(m_model, surface))}};
}

std::int64_t PageGeometry::damaged() const {
    std::int64_t sum = 0;
    for (const OuterSurface& surface : m_surfaces) sum += surface.damaged;
    return sum;
}

Json PageGeometry::partsJson() const {
    const std::map<int, int> parents = partParents(m_model.database());
    Json parts = Json::array();
    for (const auto& [id, name] : m_partNames) {
        const auto parent = parents.find(id);
        parts.push_back(
            {{"id", id},
             {"name", name},
             {"parent", parent == parents.end() ? Json(nullptr) : Json(parent->second)}});
    }
    return parts;
}

Json PageGeometry::setsJson() {
    Json sets = Json::array();
    for (const int id : blockIds(m_model.database(), BLOCK_SET)) {
        const auto set = readBlock<ZRFxSetBlock>(m_model.database(), id);
        if (set.isNull()) continue;
        const SetItems items(*set);
        Json cells = Json::object();
        for (std::size_t s = 0; s < m_surfaces.size(); ++s) {
            const OuterSurface& surface = m_surfaces[s];
            std::vector<std::uint32_t> own;
            for (std::uint32_t c = 0; c < surface.size(); ++c) {
                const SurfaceCell& cell = surface.cells[c];
                if (items.has(m_model, surface.blocks[cell.block], cell.element)) own.push_back(c);
            }
            if (own.empty()) continue;
            const Json data = m_page.add(std::span<const std::uint32_t>(own));
            cells[std::to_string(s)] = {{"data", data}, {"count", own.size()}};
        }
        sets.push_back({{"id", set->GetSetID()}, {"name", utf8(set->GetName())}, {"cells", cells}});
    }
    return sets;
}

}  // namespace tools
