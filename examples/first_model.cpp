// Writes the smallest useful model: one part of two quadrilaterals.
#include <NuoZRFx/NuoZRFx.h>

using namespace nuo;
using namespace nuo::zrfx;

int main() {
    Instance instance;
    if (!ZRFxComponent::initialize(&instance)) return 1;
    File file;
    if (!file.create("first_model.zrfx", FileSettings())) return 1;
    PtrRef<Database> database =
        new Database(&file, "Plate", 0, Database::STRUCTURAL, Database::LINEAR_STATIC, "");

    PtrRef<NodeBlock> nodes = new NodeBlock(1, false);
    for (int i = 0; i < 6; ++i) {
        if (!nodes->addNode(static_cast<float>(i % 3), static_cast<float>(i / 3), 0)) return 1;
    }
    PtrRef<ElementBlock> elements = new ElementBlock(1, false, false);
    elements->setNodeBlockId(nodes->blockId());
    if (!elements->addElement(ElementBlock::QUADS, {0, 1, 4, 3})) return 1;
    if (!elements->addElement(ElementBlock::QUADS, {1, 2, 5, 4})) return 1;

    // Every database says which element blocks are its parts, and in which states it is.
    PtrRef<GeometryBlock> geometry = new GeometryBlock(1);
    if (!geometry->addElementBlock(0, elements->blockId(), 1)) return 1;
    PtrRef<StateInfoBlock> states = new StateInfoBlock;
    if (!states->addStateInfo(1, "Static", 0, StateInfoBlock::LOAD_CASE)) return 1;

    const bool isWritten = database->writeBlock(nodes.p()) && database->writeBlock(elements.p()) &&
                           database->writeBlock(geometry.p()) && database->writeBlock(states.p());
    return isWritten && file.close() ? 0 : 1;
}
