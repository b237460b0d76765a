#include "frd/FrdResults.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

namespace tools {
namespace {

using nuo::PtrRef;
using nuo::zrfx::Block;
using nuo::zrfx::Database;
using nuo::zrfx::ResultBlock;
using nuo::zrfx::ResultValuesBlock;
using nuo::zrfx::StateInfoBlock;

constexpr float kUndefined = 2.99e38f;
constexpr float kShapeSize = 0.1f;  // of a mode shape as it is shown at first, of the model's size

bool areVector(const FrdComponent* components) {
    return std::all_of(components, components + 3, [](const FrdComponent& component) {
        return component.kind == FrdComponent::VECTOR;
    });
}

// Contact results are declared as a tensor as well: only the names tell them apart.
bool areTensor(const FrdComponent* components) {
    constexpr std::array kEnds{"XX", "YY", "ZZ", "XY", "YZ", "ZX"};
    for (std::size_t i = 0; i < kEnds.size(); ++i) {
        if (components[i].kind != FrdComponent::TENSOR) return false;
        if (!components[i].name.ends_with(kEnds[i])) return false;
    }
    return true;
}

bool isModeShape(const FrdStep& step) {
    return step.analysis == FrdStep::FREQUENCY || step.analysis == FrdStep::BUCKLING;
}

std::string stateName(const FrdStep& step) {
    if (step.analysis == FrdStep::BUCKLING) {
        char factor[32];
        std::snprintf(factor, sizeof(factor), "%g", step.value);
        return step.value == 0 ? "Buckling preload" : std::string("Buckling factor ") + factor;
    }
    if (step.analysis != FrdStep::FREQUENCY) {
        if (step.step == 0) return "";  // not told: called by its id
        return "Step " + std::to_string(step.step) + ", increment " +
               std::to_string(step.increment);
    }
    const int mode = step.mode > 0 ? step.mode : step.number;
    const std::string diameter =
        step.nodalDiameter ? ", nodal diameter " + std::to_string(*step.nodalDiameter) : "";
    return "Mode " + std::to_string(mode) + diameter;
}

StateInfoBlock::ReferenceValueType referenceType(const FrdStep& step) {
    switch (step.analysis) {
        case FrdStep::TIME_STEP:
            return StateInfoBlock::TIME;
        case FrdStep::FREQUENCY:
            return StateInfoBlock::FREQUENCY;
        case FrdStep::STATIC:
        case FrdStep::LOAD_STEP:
            return StateInfoBlock::LOAD_CASE;
        default:
            return StateInfoBlock::OTHER;
    }
}

}  // namespace

FrdResults::FrdResults(const FrdMesh& mesh) : m_mesh(mesh), m_states(new StateInfoBlock) {}

bool FrdResults::continuesState(const FrdResult& result) const {
    return stateCount() > 0 && result.step == m_step &&
           std::find(m_names.begin(), m_names.end(), result.name) == m_names.end();
}

bool FrdResults::add(FrdResult& result, Database& database) {
    if (!continuesState(result) && !beginState(result.step)) return false;
    m_names.push_back(result.name);
    dropStrayNodes(result);
    for (float& value : result.values) {
        if (std::isfinite(value)) continue;
        value = kUndefined;
        ++m_undefinedCount;
    }
    if (result.nodeIds.empty()) return true;
    const std::vector<Field> fields = fieldsOf(result);
    return std::all_of(fields.begin(), fields.end(),
                       [&](const Field& field) { return addField(result, field, database); });
}

bool FrdResults::beginState(const FrdStep& step) {
    m_step = step;
    m_names.clear();
    return m_states->addStateInfo(static_cast<int>(stateCount()) + 1, stateName(step),
                                  static_cast<float>(step.value), referenceType(step));
}

bool FrdResults::addMeshState() {
    return m_states->addStateInfo(1, "Mesh", 0, StateInfoBlock::OTHER);
}

bool FrdResults::writeLists(Database& database) const {
    return database.writeBlock(m_states.p()) &&
           std::all_of(m_series.begin(), m_series.end(),
                       [&](const Series& series) { return database.writeBlock(series.block.p()); });
}

std::vector<FrdResults::Field> FrdResults::fieldsOf(const FrdResult& result) {
    std::vector<Field> fields;
    const std::size_t count = result.components.size();
    const bool isDisplacement = result.name.starts_with("DISP");
    for (std::size_t i = 0; i < count; i += fields.back().count) {
        const FrdComponent* components = &result.components[i];
        if (count - i >= 3 && areVector(components)) {
            fields.push_back(
                {isDisplacement ? ResultBlock::DISPLACEMENT : ResultBlock::VECTOR, i, 3});
        } else if (count - i >= 6 && areTensor(components)) {
            fields.push_back({ResultBlock::TENSOR, i, 6});
        } else {
            fields.push_back({ResultBlock::SCALAR, i, 1});
        }
    }
    return fields;
}

bool FrdResults::addField(const FrdResult& result, const Field& field, Database& database) {
    Series& series = seriesOf(result, field);
    if (series.type() == ResultBlock::DISPLACEMENT && series.block->stateCount() == 0) {
        scaleModeShape(result, field, series);
    }
    return writeValues(result, field, series, database);
}

FrdResults::Series& FrdResults::seriesOf(const FrdResult& result, const Field& field) {
    std::string components;
    for (std::size_t i = field.first; i < field.first + field.count; ++i) {
        components += (components.empty() ? "" : " ") + result.components[i].name;
    }
    const auto found = std::find_if(m_series.begin(), m_series.end(), [&](const Series& series) {
        return series.source == result.name && series.components == components &&
               series.type() == field.type;
    });
    if (found != m_series.end()) return *found;
    m_series.push_back({newBlock(result, field), result.name, components});
    m_series.back().block->addAttribute("components", components);
    return m_series.back();
}

ResultBlock* FrdResults::newBlock(const FrdResult& result, const Field& field) {
    const int id = static_cast<int>(m_series.size()) + 1;
    ResultBlock* block = new ResultBlock(id, field.type, ResultBlock::NODE_MAPPING);
    block->setResultId(id);
    block->setName(nameOf(result, field));
    block->addAttribute("source", result.name);
    // The solver's shear strains are those of the tensor, half the engineering ones.
    if (field.type == ResultBlock::TENSOR && result.name.find("STRAIN") != std::string::npos) {
        block->setStrainType(ResultBlock::STANDARD_STRAIN);
    }
    return block;
}

// A scalar has the name of its component; where that is taken, the name of its result goes before.
std::string FrdResults::nameOf(const FrdResult& result, const Field& field) const {
    if (field.count > 1) return result.name;
    const std::string& name = result.components[field.first].name;
    const bool isTaken = std::any_of(m_series.begin(), m_series.end(), [&](const Series& series) {
        return series.block->name().toStdString() == name;
    });
    return isTaken || name.empty() ? result.name + " " + name : name;
}

// The size of a mode shape says nothing: it is shown so that it can be seen.
void FrdResults::scaleModeShape(const FrdResult& result, const Field& field, Series& series) const {
    if (!isModeShape(result.step)) return;
    float longest = 0;
    const std::size_t stride = result.components.size();
    for (std::size_t i = field.first; i + 2 < result.values.size(); i += stride) {
        const float* u = &result.values[i];
        const float length = std::hypot(u[0], u[1], u[2]);
        if (length < kUndefined) longest = std::max(longest, length);
    }
    const float factor = kShapeSize * m_mesh.size() / longest;
    if (longest > 0 && std::isfinite(factor))
        series.block->setDefaultDisplacementScaleFactor(factor);
}

// The solver may write values of nodes that no element uses, and that are not in the mesh.
void FrdResults::dropStrayNodes(FrdResult& result) {
    if (result.nodeIds == m_mesh.nodeIds()) return;
    const std::size_t count = result.components.size();
    std::size_t kept = 0;
    for (std::size_t i = 0; i < result.nodeIds.size(); ++i) {
        if (m_mesh.nodeIndex(result.nodeIds[i]) < 0) continue;
        result.nodeIds[kept] = result.nodeIds[i];
        std::copy_n(&result.values[i * count], count, &result.values[kept * count]);
        ++kept;
    }
    m_strayCount += result.nodeIds.size() - kept;
    result.nodeIds.resize(kept);
    result.values.resize(kept * count);
}

// Values of all nodes in their order need no ids.
bool FrdResults::writeValues(const FrdResult& result, const Field& field, Series& series,
                             Database& database) {
    const std::size_t stride = result.components.size();
    const float* values = result.values.data();
    if (field.count != stride) {
        m_field.resize(result.nodeIds.size() * field.count);
        for (std::size_t i = 0; i < result.nodeIds.size(); ++i) {
            std::copy_n(values + i * stride + field.first, field.count, &m_field[i * field.count]);
        }
        values = m_field.data();
    }
    const bool hasIds = result.nodeIds != m_mesh.nodeIds();
    const int blockId = ++m_valuesBlockCount;
    PtrRef<ResultValuesBlock> block = new ResultValuesBlock(
        blockId, static_cast<ResultValuesBlock::ResultValueDimension>(field.count), hasIds);
    return block->setMapToBlockId(FrdMesh::kNodeBlockId, Block::NODES) &&
           block->setResultValueData(values, result.nodeIds.size(),
                                     hasIds ? result.nodeIds.data() : nullptr) &&
           database.writeBlock(block.p()) &&
           series.block->addResultValuesBlock(blockId, static_cast<int>(stateCount()));
}

}  // namespace tools
