#include "import/frd/FrdImporter.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

#include "Text.h"
#include "import/frd/FrdElementType.h"

namespace tools {
namespace {

using nuo::zrfx::Database;
using nuo::zrfx::ResultBlock;
using nuo::zrfx::StateInfoBlock;

// ---- What the first result says about the run

bool isThermal(const FrdResult& result) {
    return result.name == "NDTEMP" || result.name == "FLUX" || result.name == "RFL";
}

bool isDisplacement(const FrdResult& result) {
    return result.name.starts_with("DISP");
}

// The file does not say whether a static analysis was linear. One that is ends its step at once.
bool isLinear(const FrdStep& step) {
    return step.increment <= 1 && step.value == step.step;
}

bool isElectromagnetic(const FrdResult& result) {
    return result.name == "ELPOT" || result.name == "CURR" || result.name.starts_with("EMF");
}

Database::SimulationType simulationType(const FrdResult& first) {
    if (isElectromagnetic(first)) return Database::ELECTROMAGNETIC;
    if (isDisplacement(first)) return Database::STRUCTURAL;
    return isThermal(first) ? Database::THERMAL : Database::OTHER_SIMULATION;
}

Database::SolutionType solutionType(const FrdResult& first) {
    switch (first.step.analysis) {
        case FrdStep::STATIC:
            if (isThermal(first)) return Database::STEADY_STATE;
            return isLinear(first.step) ? Database::LINEAR_STATIC : Database::NONLINEAR_STATIC;
        case FrdStep::TIME_STEP:
            return Database::TRANSIENT;
        case FrdStep::FREQUENCY:
            return Database::MODAL;
        case FrdStep::BUCKLING:
            return Database::BUCKLING;
        default:
            return Database::OTHER_SOLUTION;
    }
}

// ---- States

std::string stateName(const FrdStep& step) {
    if (step.analysis == FrdStep::BUCKLING) {
        char factor[32];
        std::snprintf(factor, sizeof(factor), "%g", step.value);
        return step.value == 0 ? "Buckling preload" : std::string("Buckling factor ") + factor;
    }
    if (step.analysis != FrdStep::FREQUENCY) {
        if (step.step == 0) return "";  // not known: called by its id
        // The solver counts increments from 1, but has none for the frequencies of a response.
        if (step.analysis == FrdStep::TIME_STEP && step.increment == 0) {
            return "Step " + std::to_string(step.step) + ", at " +
                   numberText(static_cast<float>(step.value));
        }
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

ImportState stateFrom(int id, const FrdStep& step, const std::string& name) {
    const bool isModeShape =
        step.analysis == FrdStep::FREQUENCY || step.analysis == FrdStep::BUCKLING;
    return {id, name, step.value, referenceType(step), isModeShape};
}

// ---- Results

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

// In an electromagnetic analysis the vector potential has the name of displacements.
ResultBlock::ResultType typeOf(const FrdResult& result, std::size_t first, bool hasDisplacements) {
    const FrdComponent* components = &result.components[first];
    const std::size_t left = result.components.size() - first;
    if (left >= 3 && areVector(components)) {
        return hasDisplacements && isDisplacement(result) ? ResultBlock::DISPLACEMENT
                                                          : ResultBlock::VECTOR;
    }
    return left >= 6 && areTensor(components) ? ResultBlock::TENSOR : ResultBlock::SCALAR;
}

ImportField::Role roleOf(const FrdResult& result) {
    if (result.name == "STRESS") return ImportField::STRESS;
    return result.name == "NDTEMP" ? ImportField::TEMPERATURE : ImportField::PLAIN;
}

// A scalar has the name of its component; where that is taken, the name of its result goes before.
void nameField(const FrdResult& result, std::size_t first, ImportField& field) {
    const bool isScalar = field.type == ResultBlock::SCALAR;
    const std::string& component = result.components[first].name;
    field.fallbackName = isScalar ? result.name + " " + component : result.name;
    field.name = isScalar && !component.empty() ? component : field.fallbackName;
    field.source = result.name;
    for (std::size_t i = first; i < first + field.size(); ++i) {
        field.components += (field.components.empty() ? "" : " ") + result.components[i].name;
    }
}

ImportField fieldFrom(const FrdResult& result, std::size_t first, bool hasDisplacements) {
    ImportField field;
    field.type = typeOf(result, first, hasDisplacements);
    field.role = roleOf(result);
    nameField(result, first, field);
    // The solver's shear strains are those of the tensor, half the engineering ones.
    if (field.type == ResultBlock::TENSOR && result.name.find("STRAIN") != std::string::npos) {
        field.strainType = ResultBlock::STANDARD_STRAIN;
    }
    return field;
}

std::vector<ImportField> fieldsFrom(const FrdResult& result, bool hasDisplacements) {
    std::vector<ImportField> fields;
    for (std::size_t first = 0; first < result.components.size(); first += fields.back().size()) {
        fields.push_back(fieldFrom(result, first, hasDisplacements));
    }
    return fields;
}

}  // namespace

FrdImporter::Event FrdImporter::next() {
    returnBuffers();
    const Event event = m_reader.next();
    updateHeader();
    switch (event) {
        case NODES:
            m_data.nodes = std::move(m_reader.nodes());
            return event;
        case ELEMENTS:
            return takeElements();
        case RESULT:
            takeResult();
            return event;
        default:
            m_data.damage = m_reader.damage();
            return event;
    }
}

void FrdImporter::updateHeader() {
    const FrdHeader& header = m_reader.header();
    m_data.header.title = header.title;
    m_data.header.program = header.program;
    m_data.header.date = header.date;
    for (const int material : m_materials) {
        const auto found = header.materialNames.find(material);
        const bool isNamed = found != header.materialNames.end() && !found->second.empty();
        m_data.header.partNames[material] =
            isNamed ? found->second : "Material " + std::to_string(material);
    }
}

FrdImporter::Event FrdImporter::takeElements() {
    m_data.elements = {};
    for (auto& [key, group] : m_reader.elements()) {
        const auto& [material, frdType] = key;
        if (material < 0) {
            m_data.damage = "an element has a negative material number";
            return DAMAGE;
        }
        const FrdElementType& type = *frdElementType(frdType);
        m_materials.insert(material);
        m_data.elements.groups.push_back(
            {material, type.type, std::move(group.ids), std::move(group.nodes), type.order});
    }
    updateHeader();
    return ELEMENTS;
}

void FrdImporter::takeResult() {
    FrdResult& result = m_reader.result();
    ImportValues& values = m_data.values;
    if (m_stateCount == 0) {
        m_data.header.simulation = simulationType(result);
        m_data.header.solution = solutionType(result);
    }
    const int state = stateOf(result);
    if (state != m_stateCount) {
        m_names.clear();
        m_stateName = uniqueStateName(result.step);
    }
    m_names.push_back(result.name);
    m_stateCount = state;
    m_step = result.step;
    values.state = stateFrom(state, result.step, m_stateName);
    values.fields = fieldsFrom(result, m_data.header.simulation != Database::ELECTROMAGNETIC);
    values.ids.swap(result.nodeIds);
    values.values.swap(result.values);
    m_hasBuffers = true;
}

// Two modes may have one buckling factor, and two steps of a restarted run one number.
std::string FrdImporter::uniqueStateName(const FrdStep& step) {
    const std::string name = stateName(step);
    const int count = ++m_stateNameCounts[name];
    return name.empty() || count == 1 ? name : name + " (" + std::to_string(count) + ")";
}

// So that the next result is read into memory that is there already.
void FrdImporter::returnBuffers() {
    if (!std::exchange(m_hasBuffers, false)) return;
    m_data.values.ids.swap(m_reader.result().nodeIds);
    m_data.values.values.swap(m_reader.result().values);
}

// A result of the same step belongs to the state of those before, unless it has one of that name.
int FrdImporter::stateOf(const FrdResult& result) const {
    const bool isNew = m_stateCount == 0 || result.step != m_step ||
                       std::ranges::find(m_names, result.name) != m_names.end();
    return isNew ? m_stateCount + 1 : m_stateCount;
}

int FrdImporter::begunState() const {
    const FrdResult* begun = m_reader.begunResult();
    return begun ? stateOf(*begun) : 0;
}

}  // namespace tools
