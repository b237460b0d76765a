#include "import/ImportResults.h"

#include <algorithm>
#include <cmath>

#include "Text.h"

namespace tools {
namespace {

using nuo::PtrRef;
using nuo::zrfx::Block;
using nuo::zrfx::Database;
using nuo::zrfx::ResultBlock;
using nuo::zrfx::ResultValuesBlock;
using nuo::zrfx::StateInfoBlock;

constexpr float kShapeSize = 0.1f;  // of a mode shape as it is shown at first, of the model's size

std::size_t rowSizeOf(const ImportValues& values) {
    std::size_t size = 0;
    for (const ImportField& field : values.fields) size += field.size();
    return size;
}

ResultValuesBlock::ResultValueDimension dimensionOf(const ImportField& field) {
    return static_cast<ResultValuesBlock::ResultValueDimension>(field.size());
}

}  // namespace

ImportResults::ImportResults(const ImportMesh& mesh) : m_mesh(mesh), m_states(new StateInfoBlock) {}

bool ImportResults::add(ImportValues& values, Database& database) {
    if (m_states->stateIndex(values.state.id) < 0 && !beginState(values.state)) return false;
    m_lastState = values.state.id;
    if (values.mapping == ResultBlock::NODE_MAPPING) dropStrayNodes(values);
    makeUndefined(values.values);
    if (values.ids.empty()) return true;
    return values.mapping == ResultBlock::NODE_MAPPING ? addNodeValues(values, database)
                                                       : addElementValues(values, database);
}

bool ImportResults::beginState(const ImportState& state) {
    return m_states->addStateInfo(state.id, state.name, static_cast<float>(state.value),
                                  state.type);
}

bool ImportResults::addMeshState() {
    return m_states->addStateInfo(1, "Mesh", 0, StateInfoBlock::OTHER);
}

void ImportResults::makeUndefined(std::vector<float>& values) {
    for (float& value : values) {
        if (std::isfinite(value)) continue;
        value = kUndefined;
        ++m_undefinedCount;
    }
}

bool ImportResults::writeLists(Database& database) const {
    return database.writeBlock(m_states.p()) &&
           std::all_of(m_series.begin(), m_series.end(),
                       [&](const Series& series) { return database.writeBlock(series.block.p()); });
}

bool ImportResults::addNodeValues(const ImportValues& values, Database& database) {
    std::size_t first = 0;
    for (const ImportField& field : values.fields) {
        Series& series = seriesOf(values, field);
        if (field.type == ResultBlock::DISPLACEMENT && series.block->stateCount() == 0) {
            scaleModeShape(values, first, series);
        }
        if (!writeNodeValues(values, first, field, series, database)) return false;
        first += field.size();
    }
    return true;
}

// A block for each part that has values.
bool ImportResults::addElementValues(const ImportValues& values, Database& database) {
    const ImportElementValues sorted(m_mesh, values);
    m_strayElementCount += sorted.strayCount();
    std::size_t first = 0;
    for (const ImportField& field : values.fields) {
        Series& series = seriesOf(values, field);
        for (const ImportMesh::Part& part : m_mesh.parts()) {
            const auto own = sorted.ofPart(part, first, field.size());
            if (!own.values.empty() && !writePartValues(part, own, field, series, database)) {
                return false;
            }
        }
        first += field.size();
    }
    return true;
}

ImportResults::Series& ImportResults::seriesOf(const ImportValues& values,
                                               const ImportField& field) {
    const auto found = std::find_if(m_series.begin(), m_series.end(), [&](const Series& series) {
        return series.source == field.source && series.components == field.components &&
               series.type() == field.type && series.block->resultMapping() == values.mapping;
    });
    if (found != m_series.end()) return *found;
    m_series.push_back(
        {newBlock(field, values.mapping), field.source, field.components, field.role});
    return m_series.back();
}

ResultBlock* ImportResults::newBlock(const ImportField& field,
                                     ResultBlock::ResultMapping mapping) const {
    const int id = static_cast<int>(m_series.size()) + 1;
    ResultBlock* block = new ResultBlock(id, field.type, mapping);
    block->setResultId(id);
    block->setName(nameOf(field));
    block->setStrainType(field.strainType);
    block->addAttribute("source", field.source);
    block->addAttribute("components", field.components);
    return block;
}

std::string ImportResults::nameOf(const ImportField& field) const {
    const bool isTaken = std::any_of(m_series.begin(), m_series.end(), [&](const Series& series) {
        return series.block->name().toStdString() == field.name;
    });
    return isTaken ? field.fallbackName : field.name;
}

// The size of a mode shape says nothing: it is shown so that it can be seen.
void ImportResults::scaleModeShape(const ImportValues& values, std::size_t first,
                                   Series& series) const {
    if (!values.state.isModeShape) return;
    float longest = 0;
    const std::size_t stride = rowSizeOf(values);
    for (std::size_t i = first; i + 2 < values.values.size(); i += stride) {
        const float* u = &values.values[i];
        const float length = std::hypot(u[0], u[1], u[2]);
        if (length < kUndefined) longest = std::max(longest, length);
    }
    const float factor = kShapeSize * m_mesh.size() / longest;
    if (longest > 0 && std::isfinite(factor))
        series.block->setDefaultDisplacementScaleFactor(factor);
}

// A solver may write values of nodes that no element uses, and that are not in the mesh.
void ImportResults::dropStrayNodes(ImportValues& values) {
    if (values.ids == m_mesh.nodeIds()) return;
    const std::size_t count = rowSizeOf(values);
    std::size_t kept = 0;
    for (std::size_t i = 0; i < values.ids.size(); ++i) {
        if (m_mesh.nodeIndex(values.ids[i]) < 0) continue;
        values.ids[kept] = values.ids[i];
        std::copy_n(&values.values[i * count], count, &values.values[kept * count]);
        ++kept;
    }
    m_strayNodeCount += values.ids.size() - kept;
    values.ids.resize(kept);
    values.values.resize(kept * count);
}

// Values of all nodes in their order need no ids.
bool ImportResults::writeNodeValues(const ImportValues& values, std::size_t first,
                                    const ImportField& field, Series& series, Database& database) {
    const std::size_t stride = rowSizeOf(values);
    const float* data = values.values.data();
    if (field.size() != stride) {
        m_field.resize(values.ids.size() * field.size());
        for (std::size_t i = 0; i < values.ids.size(); ++i) {
            std::copy_n(data + i * stride + first, field.size(), &m_field[i * field.size()]);
        }
        data = m_field.data();
    }
    const bool hasIds = values.ids != m_mesh.nodeIds();
    PtrRef<ResultValuesBlock> block =
        new ResultValuesBlock(++m_valuesBlockCount, dimensionOf(field), hasIds);
    return block->setMapToBlockId(ImportMesh::kNodeBlockId, Block::NODES) &&
           block->setResultValueData(data, values.ids.size(),
                                     hasIds ? values.ids.data() : nullptr) &&
           writeBlock(*block, series, database);
}

bool ImportResults::writePartValues(const ImportMesh::Part& part,
                                    const ImportElementValues::PartValues& own,
                                    const ImportField& field, Series& series, Database& database) {
    const bool hasIds = !own.ids.empty();
    PtrRef<ResultValuesBlock> block =
        new ResultValuesBlock(++m_valuesBlockCount, dimensionOf(field), hasIds);
    return block->setMapToBlockId(part.blockId, Block::ELEMENTS) &&
           block->setResultValueData(own.values.data(), own.values.size() / field.size(),
                                     hasIds ? own.ids.data() : nullptr) &&
           writeBlock(*block, series, database);
}

bool ImportResults::writeBlock(const ResultValuesBlock& block, Series& series, Database& database) {
    return database.writeBlock(&block) &&
           series.block->addResultValuesBlock(block.blockId(), m_lastState);
}

std::vector<std::string> ImportResults::notes() const {
    std::vector<std::string> notes;
    if (m_undefinedCount > 0) {
        notes.push_back(counted(m_undefinedCount, "value") +
                        " that are no finite numbers became undefined");
    }
    if (m_strayNodeCount > 0) {
        notes.push_back(counted(m_strayNodeCount, "node") +
                        " with values that are not in the mesh were left out");
    }
    if (m_strayElementCount > 0) {
        notes.push_back(counted(m_strayElementCount, "element") +
                        " with values that are not in the mesh, or not those of their nodes, were "
                        "left out");
    }
    return notes;
}

}  // namespace tools
