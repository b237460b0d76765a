// A viewer that follows a running solver: it opens the file once, and refresh shows it each step
// that the solver has flushed. Here both are in one program, one after the other.
#include <NuoZRFx/NuoZRFx.h>

#include <iostream>
#include <vector>

using namespace nuo;
using namespace nuo::zrfx;

constexpr const char* kFile = "follow_solver.zrfx";

class Solver {
public:
    bool start() {
        if (!m_file.create(kFile, FileSettings())) return false;
        m_database =
            new Database(&m_file, "Cooling", 0, Database::THERMAL, Database::TRANSIENT, "");
        m_temperature = new ResultBlock(1, ResultBlock::SCALAR, ResultBlock::NODE_MAPPING);
        m_temperature->setName("Temperature");
        m_temperature->setResultId(1);
        PtrRef<NodeBlock> nodes = new NodeBlock(1, false);
        PtrRef<ElementBlock> points = new ElementBlock(1, false, false);
        PtrRef<GeometryBlock> geometry = new GeometryBlock(1);
        points->setNodeBlockId(1);
        return nodes->addNode(0, 0, 0) && points->addElement(ElementBlock::POINTS, {0}) &&
               geometry->addElementBlock(0, 1, 1) && m_database->writeBlock(nodes.p()) &&
               m_database->writeBlock(points.p()) && m_database->writeBlock(geometry.p());
    }

    bool step() {
        const int state = m_states->unusedStateId();
        const float time = 0.1f * static_cast<float>(state);
        PtrRef<ResultValuesBlock> values =
            new ResultValuesBlock(state, ResultValuesBlock::SCALAR1D, false);
        return values->setMapToBlockId(1, Block::NODES) && values->addResultValue1d(400 - time) &&
               m_states->addStateInfo(state, "", time, StateInfoBlock::TIME) &&
               m_temperature->addResultValuesBlock(state, state) &&
               m_database->writeBlock(values.p()) && m_database->writeBlock(m_states.p()) &&
               m_database->writeBlock(m_temperature.p()) && m_file.flush();
    }

    bool finish() { return m_file.close(); }

private:
    File m_file;
    PtrRef<Database> m_database;
    PtrRef<StateInfoBlock> m_states = new StateInfoBlock;
    PtrRef<ResultBlock> m_temperature;
};

// The last state, and the value in it.
bool show(File& file) {
    Database& database = *file.database(0);
    const auto states = database.read<StateInfoBlock>(1);
    const auto result = database.read<ResultBlock>(1);
    if (!states || !result) return false;
    const std::size_t last = states->stateCount() - 1;
    const auto values = database.read<ResultValuesBlock>(result->resultValuesBlocks(last).front());
    if (!values) return false;
    std::cout << states->stateReferenceValue(last) << " s: " << values->values()[0] << " K\n";
    return true;
}

int main() {
    Instance instance;
    Solver solver;
    File viewer;
    if (!ZRFxComponent::initialize(&instance) || !solver.start() || !solver.step()) return 1;
    if (!viewer.open(kFile) || !show(viewer)) return 1;
    for (int i = 0; i < 3; ++i) {
        bool isChanged = false;
        if (!solver.step() || !viewer.refresh(&isChanged)) return 1;
        if (isChanged && !show(viewer)) return 1;
    }
    return solver.finish() && viewer.refresh() ? 0 : 1;
}
