#include "view/PageResults.h"

#include <utility>

#include "quantities/Statistics.h"
#include "types/ZRFxResultTypes.h"
#include "view/SurfaceValues.h"

namespace tools {
namespace {

using namespace unstruct;

Json extremeJson(const Extreme& extreme) {
    Json json = {{"value", jsonNumber(extreme.value)}, {"id", extreme.row.id}};
    if (extreme.row.node >= 0) json["second"] = extreme.row.node;
    if (extreme.part) json["part"] = *extreme.part;
    if (!extreme.position) return json;
    const nuo::Vec3f& at = *extreme.position;
    json["position"] = {jsonNumber(at.x), jsonNumber(at.y), jsonNumber(at.z)};
    return json;
}

Json extremesJson(const std::vector<QuantityStatistics>& statistics) {
    Json json = Json::object();
    for (const QuantityStatistics& own : statistics) {
        if (own.count == 0) continue;
        json[own.quantity] = {{"min", extremeJson(own.min)}, {"max", extremeJson(own.max)}};
    }
    return json;
}

}  // namespace

void PageResults::addResult(nvf::ref<ZRFxResultBlock> result) {
    m_results.push_back({std::move(result), Json::object()});
}

bool PageResults::hasState(std::size_t result, int state) const {
    const ZRFxResultBlock& block = *m_results[result].block;
    for (std::int64_t i = 0; i < block.GetStateCount(); ++i) {
        if (block.GetState(i)->m_iStateID == state) return true;
    }
    return false;
}

std::string PageResults::nameOf(std::size_t result) const {
    return m_results[result].block->GetDescription().name.Bytes();
}

bool PageResults::addState(std::size_t result, int state) {
    const ZRFxResultBlock& block = *m_results[result].block;
    const int components = componentCount(block);
    SurfaceValues values(m_model, block.GetDescription().resultMapping, components);
    StatisticsCollector statistics(block);
    ResultRows rows(m_model);
    const bool isRead = rows.forEach(block, state, nullptr, [&](const ResultRow& row) {
        values.take(row);
        statistics.take(row);
    });
    Json surfaces = Json::object();
    for (std::size_t s = 0; s < m_geometry.surfaces().size(); ++s) {
        const OuterSurface& surface = m_geometry.surfaces()[s];
        Json places = Json::object();
        const auto add = [&](const char* place, const std::vector<float>& own) {
            if (own.empty()) return;
            places[place] = m_page.add(own, static_cast<std::size_t>(components));
        };
        add("node", values.atNodes(surface));
        add("cell", values.atCells(surface));
        add("corner", values.atCorners(surface));
        if (!places.empty()) surfaces[std::to_string(s)] = places;
    }
    m_results[result].states[std::to_string(state)] = {
        {"extremes", extremesJson(statistics.finish(rows, state))}, {"surfaces", surfaces}};
    return isRead;
}

Json PageResults::json() const {
    Json list = Json::array();
    for (const Result& result : m_results) {
        const ZRFxResultDescription& description = result.block->GetDescription();
        Json quantities = Json::array();
        for (const Quantity& quantity : Quantity::all(componentCount(*result.block))) {
            quantities.push_back(quantity.name());
        }
        list.push_back({{"id", description.resultID},
                        {"name", utf8(description.name)},
                        {"type", utf8(ResultTypeName(description.resultType))},
                        {"mapping", utf8(ResultMappingName(description.resultMapping))},
                        {"components", componentCount(*result.block)},
                        {"quantities", quantities},
                        {"engineeringShear", hasEngineeringShear(*result.block)},
                        {"relative", description.relativeDisplacements},
                        {"scale", jsonNumber(description.defaultScaleFactor)},
                        {"states", result.states}});
    }
    return list;
}

}  // namespace tools
