// Writes a large result with a bar that shows how far it is, and stops the second time half-way:
// the file keeps what was committed.
#include <NuoZRFx/NuoZRFx.h>

#include <cstdio>
#include <vector>

using namespace nuo;
using namespace nuo::zrfx;

constexpr std::size_t kNodes = 1000000;

PtrRef<ResultValuesBlock> makeValues(int id) {
    std::vector<float> values(3 * kNodes);
    for (std::size_t i = 0; i < values.size(); ++i) {
        values[i] = 0.001f * static_cast<float>(i % 1000 * static_cast<std::size_t>(id));
    }
    PtrRef<ResultValuesBlock> block = new ResultValuesBlock(id, ResultValuesBlock::VECTOR3D, false);
    block->setMapToBlockId(1, Block::NODES);
    block->setResultValues(values, {});
    return block;
}

// A beam from the first node to the last one, all that a model needs beside its nodes.
bool writeMesh(Database& database) {
    PtrRef<NodeBlock> nodes = new NodeBlock(1, false);
    PtrRef<ElementBlock> elements = new ElementBlock(1, false, false);
    PtrRef<GeometryBlock> geometry = new GeometryBlock(1);
    PtrRef<StateInfoBlock> states = new StateInfoBlock;
    PtrRef<ResultBlock> result =
        new ResultBlock(1, ResultBlock::DISPLACEMENT, ResultBlock::NODE_MAPPING);
    elements->setNodeBlockId(1);
    result->setResultId(1);
    return nodes->setNodes(std::vector<double>(3 * kNodes, 0.5)) &&
           elements->addElement(ElementBlock::BEAMS, {0, static_cast<int>(kNodes) - 1}) &&
           geometry->addElementBlock(0, 1, 1) &&
           states->addStateInfo(1, "", 0, StateInfoBlock::TIME) &&
           result->addResultValuesBlock(1, 1) && database.writeBlock(nodes.p()) &&
           database.writeBlock(elements.p()) && database.writeBlock(geometry.p()) &&
           database.writeBlock(states.p()) && database.writeBlock(result.p());
}

int main() {
    Instance instance;
    File file;
    if (!ZRFxComponent::initialize(&instance)) return 1;
    if (!file.create("show_progress.zrfx", FileSettings())) return 1;
    PtrRef<Database> database =
        new Database(&file, "Large", 0, Database::STRUCTURAL, Database::TRANSIENT, "");

    // The callback runs in this thread, some hundred times for each operation.
    double stopAt = 2;
    file.setProgressCallback([&](double fraction) {
        std::printf("\r%3.0f %%", 100 * fraction);
        return fraction < stopAt;
    });
    if (!writeMesh(*database) || !database->writeBlock(makeValues(1).p()) || !file.flush())
        return 1;
    std::printf(" written and safe\n");

    stopAt = 0.5;
    if (database->writeBlock(makeValues(2).p())) return 1;
    std::printf(" %s\n", Error::codeName(database->lastError().code()));
    stopAt = 2;
    return database->blockCount(Block::RESULT_VALUES) == 1 && file.close() ? 0 : 1;
}
