// Adds a state to a file that is there: the lists of states and of values are read, extended and
// written again, in place of the old ones. Nothing else is read.
#include <NuoZRFx/NuoZRFx.h>

#include <vector>

using namespace nuo;
using namespace nuo::zrfx;

constexpr const char* kFile = "append_state.zrfx";

bool addState(Database& database, StateInfoBlock& states, ResultBlock& result, float time) {
    const int state = states.unusedStateId();
    const int valuesId = database.unusedBlockId(Block::RESULT_VALUES);
    PtrRef<ResultValuesBlock> values =
        new ResultValuesBlock(valuesId, ResultValuesBlock::SCALAR1D, false);
    return values->setMapToBlockId(1, Block::NODES) &&
           values->setResultValues({300 - time, 310 - time}, {}) &&
           states.addStateInfo(state, "", time, StateInfoBlock::TIME) &&
           result.addResultValuesBlock(valuesId, state) && database.writeBlock(values.p()) &&
           database.writeBlock(&states) && database.writeBlock(&result);
}

bool writeFile() {
    File file;
    if (!file.create(kFile, FileSettings())) return false;
    PtrRef<Database> database =
        new Database(&file, "Rod", 0, Database::THERMAL, Database::TRANSIENT, "");
    PtrRef<NodeBlock> nodes = new NodeBlock(1, false);
    PtrRef<ElementBlock> rod = new ElementBlock(1, false, false);
    PtrRef<GeometryBlock> geometry = new GeometryBlock(1);
    PtrRef<StateInfoBlock> states = new StateInfoBlock;
    PtrRef<ResultBlock> result = new ResultBlock(1, ResultBlock::SCALAR, ResultBlock::NODE_MAPPING);
    rod->setNodeBlockId(1);
    result->setName("Temperature");
    result->setResultId(1);
    return nodes->addNode(0, 0, 0) && nodes->addNode(1, 0, 0) &&
           rod->addElement(ElementBlock::BEAMS, {0, 1}) && geometry->addElementBlock(0, 1, 1) &&
           database->writeBlock(nodes.p()) && database->writeBlock(rod.p()) &&
           database->writeBlock(geometry.p()) && addState(*database, *states, *result, 0) &&
           file.close();
}

int main() {
    Instance instance;
    if (!ZRFxComponent::initialize(&instance) || !writeFile()) return 1;

    File file;
    if (!file.openForAppend(kFile) || file.databaseCount() == 0) return 1;
    Database& database = *file.database(0);
    const auto states = database.read<StateInfoBlock>(1);
    const auto result = database.read<ResultBlock>(1);
    if (!states || !result || !addState(database, *states, *result, 10)) return 1;
    return file.close() ? 0 : 1;
}
