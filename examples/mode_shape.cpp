// Writes a mode shape of a beam: a frequency as state, and displacements as its result.
#include <NuoZRFx/NuoZRFx.h>

#include <cmath>

using namespace nuo;
using namespace nuo::zrfx;

int main() {
    Instance instance;
    if (!ZRFxComponent::initialize(&instance)) return 1;
    File file;
    if (!file.create("mode_shape.zrfx", FileSettings())) return 1;
    PtrRef<Database> database =
        new Database(&file, "Beam", 0, Database::STRUCTURAL, Database::MODAL, "");

    const int count = 21;
    PtrRef<NodeBlock> nodes = new NodeBlock(1, false);
    PtrRef<ElementBlock> beams = new ElementBlock(1, false, false);
    PtrRef<ResultValuesBlock> shape = new ResultValuesBlock(1, ResultValuesBlock::VECTOR3D, false);
    beams->setNodeBlockId(1);
    if (!shape->setMapToBlockId(1, Block::NODES)) return 1;
    for (int i = 0; i < count; ++i) {
        const float x = static_cast<float>(i) / (count - 1);
        if (!nodes->addNode(x, 0, 0)) return 1;
        if (!shape->addResultValue3d(0, 0, std::sin(3.14159f * x))) return 1;
        if (i > 0 && !beams->addElement(ElementBlock::BEAMS, {i - 1, i})) return 1;
    }
    PtrRef<GeometryBlock> geometry = new GeometryBlock(1);
    PtrRef<StateInfoBlock> states = new StateInfoBlock;
    if (!geometry->addElementBlock(0, 1, 1)) return 1;
    if (!states->addStateInfo(1, "Mode 1", 12.5f, StateInfoBlock::FREQUENCY)) return 1;

    PtrRef<ResultBlock> displacement =
        new ResultBlock(1, ResultBlock::DISPLACEMENT, ResultBlock::NODE_MAPPING);
    displacement->setName("Mode shape");
    displacement->setResultId(1);
    displacement->setDefaultDisplacementScaleFactor(0.1f);
    if (!displacement->addResultValuesBlock(1, 1)) return 1;

    const bool isWritten = database->writeBlock(nodes.p()) && database->writeBlock(beams.p()) &&
                           database->writeBlock(shape.p()) && database->writeBlock(geometry.p()) &&
                           database->writeBlock(states.p()) &&
                           database->writeBlock(displacement.p());
    return isWritten && file.close() ? 0 : 1;
}
