// Plots one node over all states without reading whole results: only the pieces of the file that
// hold its values are unpacked. A part of the coordinates is read into an array of the program.
#include <NuoZRFx/NuoZRFx.h>

#include <iostream>
#include <vector>

using namespace nuo;
using namespace nuo::zrfx;

constexpr int kNodes = 100000;
constexpr int kStates = 10;

bool writeModel(const char* path) {
    File file;
    if (!file.create(path, FileSettings())) return false;
    PtrRef<Database> database =
        new Database(&file, "Swing", 0, Database::STRUCTURAL, Database::TRANSIENT, "");
    PtrRef<NodeBlock> nodes = new NodeBlock(1, false);
    PtrRef<ElementBlock> elements = new ElementBlock(1, false, false);
    PtrRef<GeometryBlock> geometry = new GeometryBlock(1);
    PtrRef<StateInfoBlock> states = new StateInfoBlock;
    PtrRef<ResultBlock> result =
        new ResultBlock(1, ResultBlock::DISPLACEMENT, ResultBlock::NODE_MAPPING);
    for (int i = 0; i < kNodes; ++i) nodes->addNode(0.001f * static_cast<float>(i), 0, 0);
    elements->setNodeBlockId(1);
    elements->addElement(ElementBlock::BEAMS, {0, kNodes - 1});
    geometry->addElementBlock(0, 1, 1);
    result->setResultId(1);
    bool isWritten = database->writeBlock(nodes.p()) && database->writeBlock(elements.p()) &&
                     database->writeBlock(geometry.p());
    for (int state = 1; state <= kStates; ++state) {
        PtrRef<ResultValuesBlock> values =
            new ResultValuesBlock(state, ResultValuesBlock::VECTOR3D, false);
        values->setMapToBlockId(1, Block::NODES);
        values->setResultValues(std::vector<double>(3 * kNodes, 0.25 * state), {});
        states->addStateInfo(state, "", 0.1f * static_cast<float>(state), StateInfoBlock::TIME);
        result->addResultValuesBlock(state, state);
        isWritten = isWritten && database->writeBlock(values.p());
    }
    return isWritten && database->writeBlock(states.p()) && database->writeBlock(result.p()) &&
           file.close();
}

int main() {
    Instance instance;
    File file;
    if (!ZRFxComponent::initialize(&instance) || !writeModel("read_history.zrfx")) return 1;
    if (!file.open("read_history.zrfx")) return 1;
    Database& database = *file.database(0);

    std::vector<float> ends(3 * 2);
    if (!database.readCoordinates(1, database.itemCount(Block::NODES, 1) - 2, ends)) return 1;
    std::cout << "the last two nodes are at x = " << ends[0] << " and " << ends[3] << "\n";

    const PtrRef<ResultBlock> result = database.read<ResultBlock>(1);
    const PtrRef<StateInfoBlock> states = database.read<StateInfoBlock>(1);
    if (!result || !states) return 1;
    std::vector<float> history(3 * result->stateCount());
    if (!database.readHistory(*result, 1, kNodes - 1, history)) return 1;
    for (std::size_t i = 0; i < result->stateCount(); ++i) {
        std::cout << states->stateReferenceValue(i) << " s: " << history[3 * i] << "\n";
    }
    return 0;
}
