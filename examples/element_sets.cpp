// Writes a named set of elements, given by their ids, and reads it back.
#include <NuoZRFx/NuoZRFx.h>

#include <iostream>

using namespace nuo;
using namespace nuo::zrfx;

bool writeFile() {
    File file;
    if (!file.create("element_sets.zrfx", FileSettings())) return false;
    PtrRef<Database> database =
        new Database(&file, "Strip", 0, Database::STRUCTURAL, Database::LINEAR_STATIC, "");
    PtrRef<NodeBlock> nodes = new NodeBlock(1, false);
    PtrRef<ElementBlock> elements = new ElementBlock(1, true, false);
    elements->setNodeBlockId(1);
    for (int i = 0; i <= 10; ++i) {
        if (!nodes->addNode(static_cast<float>(i), 0, 0)) return false;
        if (i > 0 && !elements->addElement(ElementBlock::BEAMS, {i - 1, i}, 100 + i)) return false;
    }
    PtrRef<GeometryBlock> geometry = new GeometryBlock(1);
    PtrRef<StateInfoBlock> states = new StateInfoBlock;
    if (!geometry->addElementBlock(0, 1, 1)) return false;
    if (!states->addStateInfo(1, "", 0, StateInfoBlock::OTHER)) return false;

    PtrRef<SetBlock> clamped = new SetBlock(1, true);  // items are ids of elements
    clamped->setSetId(1);
    clamped->setSetName("Clamped");
    clamped->addItem(101, elements->blockId());
    clamped->addItem(110, elements->blockId());
    return database->writeBlock(nodes.p()) && database->writeBlock(elements.p()) &&
           database->writeBlock(geometry.p()) && database->writeBlock(states.p()) &&
           database->writeBlock(clamped.p()) && file.close();
}

int main() {
    Instance instance;
    if (!ZRFxComponent::initialize(&instance) || !writeFile()) return 1;
    File file;
    if (!file.open("element_sets.zrfx")) return 1;
    PtrRef<SetBlock> set = file.database(0)->setBlockByIndex(0);
    if (set.isNull()) return 1;
    std::cout << set->setName().toStdString() << ":";
    for (std::size_t g = 0; g < set->itemGroupCount(); ++g) {
        const SetItemGroup& group = *set->itemGroup(g);
        for (std::size_t i = 0; i < group.itemCount(); ++i) std::cout << " " << group.itemData()[i];
    }
    std::cout << "\n";
    return set->totalItemCount() == 2 && file.close() ? 0 : 1;
}
