// Writes a temperature field step by step as a solver does: after each flush, all steps so far are
// safe and can be read by others.
#include <NuoZRFx/NuoZRFx.h>

#include <cmath>
#include <vector>

using namespace nuo;
using namespace nuo::zrfx;

bool writeModel(Database& database) {
    PtrRef<NodeBlock> nodes = new NodeBlock(1, false);
    PtrRef<ElementBlock> elements = new ElementBlock(1, false, false);
    PtrRef<GeometryBlock> geometry = new GeometryBlock(1);
    elements->setNodeBlockId(1);
    return nodes->setNodes(std::vector<float>{0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1}, {}) &&
           elements->addElement(ElementBlock::TETRAHEDRONS, {0, 1, 2, 3}) &&
           geometry->addElementBlock(0, 1, 1) && database.writeBlock(nodes.p()) &&
           database.writeBlock(elements.p()) && database.writeBlock(geometry.p());
}

int main() {
    Instance instance;
    if (!ZRFxComponent::initialize(&instance)) return 1;
    File file;
    if (!file.create("results_per_time_step.zrfx", FileSettings())) return 1;
    PtrRef<Database> database =
        new Database(&file, "Cooling", 0, Database::THERMAL, Database::TRANSIENT, "");
    if (!writeModel(*database)) return 1;

    PtrRef<StateInfoBlock> states = new StateInfoBlock;
    PtrRef<ResultBlock> temperature =
        new ResultBlock(1, ResultBlock::SCALAR, ResultBlock::NODE_MAPPING);
    temperature->setName("Temperature");
    temperature->setResultId(1);
    temperature->addAttribute("unit", "K");
    for (int step = 1; step <= 5; ++step) {
        const float time = 0.1f * static_cast<float>(step);
        PtrRef<ResultValuesBlock> values =
            new ResultValuesBlock(step, ResultValuesBlock::SCALAR1D, false);
        if (!values->setMapToBlockId(1, Block::NODES)) return 1;
        const std::vector<float> kelvin(4, 300 + 100 * std::exp(-time));
        if (!values->setResultValues(kelvin, {}) || !database->writeBlock(values.p())) return 1;

        // The lists of states and of values grow: written again, they replace what was there.
        if (!states->addStateInfo(step, "", time, StateInfoBlock::TIME)) return 1;
        if (!temperature->addResultValuesBlock(step, step)) return 1;
        if (!database->writeBlock(states.p()) || !database->writeBlock(temperature.p())) return 1;
        if (!file.flush()) return 1;
    }
    return file.close() ? 0 : 1;
}
