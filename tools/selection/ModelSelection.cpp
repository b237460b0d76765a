#include "selection/ModelSelection.h"

#include <algorithm>
#include <sstream>

#include "blocks/mesh/ZRFxElementBlock.h"
#include "blocks/mesh/ZRFxElementBlockGroup.h"
#include "blocks/mesh/ZRFxGeometryBlock.h"
#include "blocks/mesh/ZRFxGeometryInfoBlock.h"
#include "blocks/mesh/ZRFxNodeBlock.h"
#include "blocks/results/ZRFxResultValuesBlock.h"
#include "blocks/results/ZRFxStateInfoBlock.h"
#include "blocks/results/ZRFxTransformationResultsBlock.h"
#include "blocks/sets/ZRFxSetBlock.h"
#include "content/Content.h"
#include "quantities/ResultLookup.h"
#include "selection/SettingsSelection.h"

namespace tools {
namespace {

using namespace unstruct;
using nvf::ref;

bool isNamed(const std::string& wanted, int id, const std::string& name) {
    return wanted == name || wanted == std::to_string(id);
}

// What a choice names: the text of each as it is, if something is called so, else what stands
// between its commas.
template <typename IsThere>
std::set<std::string> wantedOf(const std::vector<std::string>& choice, IsThere isThere) {
    std::set<std::string> wanted;
    for (const std::string& text : choice) {
        if (isThere(text)) {
            wanted.insert(text);
            continue;
        }
        std::istringstream list(text);
        for (std::string item; std::getline(list >> std::ws, item, ',');) wanted.insert(item);
    }
    return wanted;
}

// Removes the items at which `keeps` is false, from the last one on.
template <typename Keeps, typename Remove>
void removeOthers(std::int64_t count, Keeps keeps, Remove remove) {
    for (std::int64_t i = count; i-- > 0;) {
        if (!keeps(i)) remove(i);
    }
}

std::vector<std::int32_t> kept(std::span<const std::int32_t> ids, const std::set<int>& wanted) {
    std::vector<std::int32_t> left;
    std::ranges::copy_if(ids, std::back_inserter(left),
                         [&](std::int32_t id) { return wanted.contains(id); });
    return left;
}

void assign(const std::vector<std::int32_t>& items, ZRIntArray& array) {
    array.Assign(items.data(), static_cast<std::int64_t>(items.size()));
}

}  // namespace

bool ModelSelection::resolve(std::string* error) {
    return resolveStates(error) && resolveParts(error) && resolveNodes() && resolveResults(error) &&
           resolveSets();
}

bool ModelSelection::resolveStates(std::string* error) {
    const auto states = statesOf(m_database);
    if (m_choice.states.empty()) {
        for (const StateName& state : states) m_states.insert(state.id);
        return true;
    }
    const auto isThis = [&](const std::string& wanted, const StateName& state) {
        const bool isLast = wanted == "last" && state.id == states.back().id;
        return isLast || isNamed(wanted, state.id, state.name);
    };
    auto missing = wantedOf(m_choice.states, [&](const std::string& text) {
        return std::ranges::any_of(states, [&](const auto& state) { return isThis(text, state); });
    });
    const auto wanted = missing;
    for (const StateName& state : states) {
        for (const std::string& text : wanted) {
            if (!isThis(text, state)) continue;
            m_states.insert(state.id);
            missing.erase(text);
        }
    }
    if (missing.empty()) return true;
    *error = "there is no state '" + *missing.begin() + "'";
    return false;
}

// In all states: another block may be the part in each.
bool ModelSelection::resolveParts(std::string* error) {
    auto missing = wantedOf(m_choice.parts, [&](const std::string& text) {
        return std::ranges::any_of(m_states, [&](int state) {
            return std::ranges::any_of(m_model.parts(state), [&](const PartItems& part) {
                return isNamed(text, part.id, part.name);
            });
        });
    });
    const auto wanted = missing;
    for (const int state : m_states) {
        for (const PartItems& part : m_model.parts(state)) {
            const auto isThis = [&](const std::string& text) {
                return isNamed(text, part.id, part.name);
            };
            if (!wanted.empty() && std::ranges::none_of(wanted, isThis)) continue;
            std::erase_if(missing, isThis);
            m_parts.insert(part.id);
            m_blocks[BLOCK_ELEMENTS].insert(part.elementBlocks.begin(), part.elementBlocks.end());
        }
    }
    if (missing.empty()) return true;
    *error = "there is no part '" + *missing.begin() + "'";
    return false;
}

// The nodes that the elements have which are left.
bool ModelSelection::resolveNodes() {
    if (m_choice.parts.empty()) return true;
    std::map<int, std::vector<bool>> used;
    for (const int block : m_blocks[BLOCK_ELEMENTS]) {
        const ElementItems* elements = m_model.elements(block);
        const NodeItems* nodes = elements ? m_model.nodes(elements->nodeBlock) : nullptr;
        if (!nodes) return false;
        auto& own = used[elements->nodeBlock];
        own.resize(nodes->ids.size());
        for (const std::int64_t node : elements->nodes) {
            if (node >= 0) own[static_cast<std::size_t>(node)] = true;
        }
    }
    for (const auto& [block, own] : used) {
        NodeMap& map = m_nodes[block];
        const NodeItems& nodes = *m_model.nodes(block);
        map.newOfOld.assign(own.size(), -1);
        for (std::size_t i = 0; i < own.size(); ++i) {
            if (!own[i]) continue;
            map.newOfOld[i] = static_cast<std::int32_t>(map.oldOfNew.size());
            map.oldOfNew.push_back(static_cast<std::int64_t>(i));
            map.ids.insert(nodes.ids[i]);
        }
        m_blocks[BLOCK_NODES].insert(block);
    }
    return true;
}

bool ModelSelection::keepsTarget(int type, int id) const {
    if (m_choice.parts.empty()) return true;
    const auto blocks = m_blocks.find(type);
    return blocks != m_blocks.end() && blocks->second.contains(id);
}

bool ModelSelection::resolveResults(std::string* error) {
    const auto results = resultsOf(m_database);
    auto missing = wantedOf(m_choice.results, [&](const std::string& text) {
        return std::ranges::any_of(results, [&](const auto& result) {
            const ZRFxResultDescription& own = result->GetDescription();
            return isNamed(text, own.resultID, own.name.Bytes());
        });
    });
    const auto wanted = missing;
    for (const int id : blockIds(m_database, BLOCK_RESULTS)) {
        const auto result = readBlock<ZRFxResultBlock>(m_database, id);
        if (result.isNull()) return false;
        const ZRFxResultDescription& description = result->GetDescription();
        const auto isThis = [&](const std::string& text) {
            return isNamed(text, description.resultID, description.name.Bytes());
        };
        if (!wanted.empty() && std::ranges::none_of(wanted, isThis)) continue;
        std::erase_if(missing, isThis);
        bool hasValues = false;
        const int target = description.resultMapping == MAPPING_NODE ? BLOCK_NODES : BLOCK_ELEMENTS;
        if (!resolveValues(*result, BLOCK_RESULT_VALUES, target, &hasValues)) return false;
        if (!hasValues) continue;
        m_blocks[BLOCK_RESULTS].insert(id);
        m_resultIds.insert(description.resultID);
    }
    if (missing.empty()) return resolveTransformations();
    *error = "there is no result '" + *missing.begin() + "'";
    return false;
}

bool ModelSelection::resolveTransformations() {
    for (const int id : blockIds(m_database, BLOCK_TRANSFORMATION_RESULTS)) {
        const auto result = readBlock<ZRFxTransformationResultsBlock>(m_database, id);
        bool hasValues = false;
        if (result.isNull() || !resolveValues(*result, BLOCK_TRANSFORMATION_RESULT_VALUES,
                                              BLOCK_ELEMENTS, &hasValues)) {
            return false;
        }
        if (!hasValues) continue;
        m_blocks[BLOCK_TRANSFORMATION_RESULTS].insert(id);
        m_resultIds.insert(result->GetResultID());
    }
    return true;
}

// The values of states and blocks that are left. What values belong to is known from their result;
// those of transformations say so themselves.
bool ModelSelection::resolveValues(const ZRFxStatesBlock& result, int valuesType, int targetType,
                                   bool* hasValues) {
    for (std::int64_t s = 0; s < result.GetStateCount(); ++s) {
        if (!m_states.contains(result.GetState(s)->m_iStateID)) continue;
        for (const int id : itemsOf(result.GetState(s)->m_aiValuesBlockIDs)) {
            const auto values = m_database.OpenBlock(valuesType, id);
            ZRFxOutline outline;
            if (values.isNull() || !values->ReadOutline(&outline)) return false;
            const bool isKept =
                std::ranges::all_of(outline.references, [&](const ZRFxReference& reference) {
                    const bool isBlock = reference.kind == ZRFxReference::Kind::BLOCK;
                    return keepsTarget(isBlock ? reference.blockType : targetType, reference.id);
                });
            if (!isKept) continue;
            m_blocks[valuesType].insert(id);
            if (targetType == BLOCK_NODES) m_valuesAtNodes.insert(id);
            *hasValues = true;
        }
    }
    return true;
}

bool ModelSelection::resolveSets() {
    for (const int id : blockIds(m_database, BLOCK_SET)) {
        const auto set = readBlock<ZRFxSetBlock>(m_database, id);
        if (set.isNull()) return false;
        for (std::int64_t g = 0; g < set->GetItemsCount(); ++g) {
            if (keepsTarget(BLOCK_ELEMENTS, set->GetItems(g)->m_iBlockID)) {
                m_blocks[BLOCK_SET].insert(id);
            }
        }
    }
    return true;
}

bool ModelSelection::keeps(int type, int id) const {
    switch (type) {
        case BLOCK_STATE_INFO:
        case BLOCK_GEOMETRY:
        case BLOCK_GEOMETRY_INFO:
        case BLOCK_CROSS_SECTIONS:
        case BLOCK_PLOT_2D:
            return true;
        case BLOCK_NODES:
        case BLOCK_ELEMENTS:
        case BLOCK_INDEXED_FACE_SET:
            return keepsTarget(type, id);
        default: {
            const auto blocks = m_blocks.find(type);
            return blocks != m_blocks.end() && blocks->second.contains(id);
        }
    }
}

ref<ZRFxBlock> ModelSelection::reduced(ZRFxBlock& block) const {
    switch (block.GetType()) {
        case BLOCK_STATE_INFO:
            reduceStates(static_cast<ZRFxStateInfoBlock&>(block));
            break;
        case BLOCK_GEOMETRY:
            return reducedGeometry(static_cast<ZRFxGeometryBlock&>(block));
        case BLOCK_GEOMETRY_INFO:
            return reducedInfo(static_cast<ZRFxGeometryInfoBlock&>(block));
        case BLOCK_RESULTS:
            reduceResult(static_cast<ZRFxStatesBlock&>(block), BLOCK_RESULT_VALUES);
            break;
        case BLOCK_TRANSFORMATION_RESULTS:
            reduceResult(static_cast<ZRFxStatesBlock&>(block), BLOCK_TRANSFORMATION_RESULT_VALUES);
            break;
        case BLOCK_NODES:
            reduceNodes(static_cast<ZRFxNodeBlock&>(block));
            break;
        case BLOCK_ELEMENTS:
            reduceElements(static_cast<ZRFxElementBlock&>(block));
            break;
        case BLOCK_RESULT_VALUES:
            reduceValues(static_cast<ZRFxResultValuesBlock&>(block));
            break;
        case BLOCK_SET: {
            auto& set = static_cast<ZRFxSetBlock&>(block);
            removeOthers(
                set.GetItemsCount(),
                [&](std::int64_t i) {
                    return keepsTarget(BLOCK_ELEMENTS, set.GetItems(i)->m_iBlockID);
                },
                [&](std::int64_t i) { set.RemoveItems(i, i); });
            break;
        }
        default:
            break;
    }
    return &block;
}

void ModelSelection::reduceStates(ZRFxStateInfoBlock& block) const {
    removeOthers(
        block.GetStateCount(),
        [&](std::int64_t i) { return m_states.contains(block.GetState(i)->stateID); },
        [&](std::int64_t i) { block.RemoveStates(i, i); });
}

void ModelSelection::reduceResult(ZRFxStatesBlock& block, int valuesType) const {
    const IdSet& wanted = m_blocks.at(valuesType);
    const auto isKept = [&](std::int64_t i) {
        const ZRFxStateValues& state = *block.GetState(i);
        return m_states.contains(state.m_iStateID) &&
               !kept(itemsOf(state.m_aiValuesBlockIDs), wanted).empty();
    };
    removeOthers(block.GetStateCount(), isKept, [&](std::int64_t i) { block.RemoveStates(i, i); });
    for (std::int64_t i = 0; i < block.GetStateCount(); ++i) {
        ZRFxStateValues& state = *block.AddState(block.GetState(i)->m_iStateID);
        assign(kept(itemsOf(state.m_aiValuesBlockIDs), wanted), state.m_aiValuesBlockIDs);
    }
}

void ModelSelection::reduceNodes(ZRFxNodeBlock& block) const {
    const auto found = m_nodes.find(block.GetID());
    if (found == m_nodes.end()) return;
    std::vector<nuo::Vec3f> positions;
    std::vector<std::int32_t> ids;
    for (const std::int64_t old : found->second.oldOfNew) {
        positions.push_back(block.GetNodes()[old]);
        if (block.GetNodeIDs()) ids.push_back((*block.GetNodeIDs())[old]);
    }
    block.SetNodes(positions.data(), static_cast<std::int64_t>(positions.size()),
                   ids.empty() ? nullptr : ids.data());
}

void ModelSelection::reduceElements(ZRFxElementBlock& block) const {
    const auto found = m_nodes.find(block.GetNodeBlockID());
    if (found == m_nodes.end() || block.GetMapToNodeIDs()) return;
    for (std::int64_t g = 0; g < block.GetNumElementGroups(); ++g) {
        ZRIntArray& nodes = block.GetElementGroup(g)->m_aiConnectivity;
        std::vector<std::int32_t> renumbered;
        for (const std::int32_t node : itemsOf(nodes)) {
            const auto& newOfOld = found->second.newOfOld;
            const auto old = static_cast<std::size_t>(node);
            renumbered.push_back(old < newOfOld.size() ? newOfOld[old] : -1);  // cannot be written
        }
        assign(renumbered, nodes);
    }
}

// Only values at nodes lose some: elements are left, or not, by whole blocks.
void ModelSelection::reduceValues(ZRFxResultValuesBlock& block) const {
    const auto found = m_nodes.find(block.GetMapToBlockID());
    if (found == m_nodes.end() || !m_valuesAtNodes.contains(block.GetID())) return;
    const Reals reals = realsOf(block);
    const auto components = static_cast<std::size_t>(reals.components);
    std::vector<std::int64_t> rows = found->second.oldOfNew;
    auto ids = std::make_unique<ZRIntArray>();
    if (block.GetIDs()) {
        rows.clear();
        for (std::int64_t i = 0; i < block.GetIDs()->GetSize(); ++i) {
            if (!found->second.ids.contains((*block.GetIDs())[i])) continue;
            rows.push_back(i);
            ids->Add((*block.GetIDs())[i]);
        }
    }
    std::vector<float> values;
    std::int64_t count = 0;
    for (const std::int64_t row : rows) {
        const auto end = (static_cast<std::size_t>(row) + 1) * components;
        if (end > reals.values.size()) break;  // there are too few
        ++count;
        const auto own =
            reals.values.subspan(static_cast<std::size_t>(row) * components, components);
        values.insert(values.end(), own.begin(), own.end());
    }
    if (components == 3) {
        block.SetVectors(reinterpret_cast<const nuo::Vec3f*>(values.data()), count);
    } else {
        block.SetScalars(values.data(), static_cast<std::int64_t>(values.size()));
    }
    if (block.GetIDs()) block.SetIDs(std::move(ids));
}

ref<ZRFxBlock> ModelSelection::reducedGeometry(const ZRFxGeometryBlock& block) const {
    const ref<ZRFxGeometryBlock> left = new ZRFxGeometryBlock(&m_database, block.GetID());
    const int geometryCount = block.GetGeometryCountPerState();
    left->SetGeometryCountPerState(geometryCount);
    for (std::int64_t s = 0; s < block.GetStateCount(); ++s) {
        const ZRFxGeometryState& state = *block.GetState(s);
        // A single record is that of all states.
        const bool isKept = block.GetStateCount() == 1 || m_states.contains(state.GetStateID());
        if (!isKept) continue;
        ZRFxGeometryState* own = left->AddState(state.GetStateID());
        for (int g = 0; g < geometryCount; ++g) {
            for (int p = 0; p < state.GetPartCount(g); ++p) {
                const ZRFxGeometryPart part = state.GetPart(g, p);
                if (keepsTarget(part.blockType, part.blockID)) own->AddPart(g, part);
            }
        }
    }
    return left.p();
}

ref<ZRFxBlock> ModelSelection::reducedInfo(const ZRFxGeometryInfoBlock& block) const {
    const ref<ZRFxGeometryInfoBlock> left = new ZRFxGeometryInfoBlock(&m_database, block.GetID());
    left->SetGeometryCountPerState(block.GetGeometryCountPerState());
    for (int g = 0; g < block.GetGeometryCountPerState(); ++g) {
        const ZRFxPartInfos& infos = *block.GetPartInfos(g);
        for (int p = 0; p < infos.GetPartCount(); ++p) {
            const ZRFxPartInfo info = infos.GetPartInfo(p);
            const bool isKept = m_choice.parts.empty() || m_parts.contains(info.partID);
            if (isKept) left->GetPartInfos(g)->AddPartInfo(info);
        }
    }
    return left.p();
}

ref<nvf::PropertySetCollection> ModelSelection::reduced(
    const nvf::PropertySetCollection& settings) const {
    const bool hasAllParts = m_choice.parts.empty();
    return selectSettings(settings, {m_states, m_resultIds, hasAllParts ? nullptr : &m_parts});
}

}  // namespace tools
