// Adds a case to a file that is there, without reading or rewriting its model.
#include <NuoZRFx/NuoZRFx.h>

#include <iostream>

using namespace nuo;
using namespace nuo::zrfx;

bool writeFile() {
    File file;
    if (!file.create("append_case.zrfx", FileSettings())) return false;
    PtrRef<Database> database =
        new Database(&file, "Model", 0, Database::STRUCTURAL, Database::LINEAR_STATIC, "");
    PtrRef<NodeBlock> nodes = new NodeBlock(1, false);
    PtrRef<ElementBlock> beam = new ElementBlock(1, false, false);
    PtrRef<GeometryBlock> geometry = new GeometryBlock(1);
    PtrRef<StateInfoBlock> states = new StateInfoBlock;
    beam->setNodeBlockId(1);
    return nodes->addNode(0, 0, 0) && nodes->addNode(1, 0, 0) &&
           beam->addElement(ElementBlock::BEAMS, {0, 1}) && geometry->addElementBlock(0, 1, 1) &&
           states->addStateInfo(1, "", 0, StateInfoBlock::OTHER) &&
           database->writeBlock(nodes.p()) && database->writeBlock(beam.p()) &&
           database->writeBlock(geometry.p()) && database->writeBlock(states.p()) && file.close();
}

int main() {
    Instance instance;
    if (!ZRFxComponent::initialize(&instance) || !writeFile()) return 1;

    File file;
    if (!file.openForAppend("append_case.zrfx") || file.databaseCount() == 0) return 1;
    PtrRef<Case> view =
        new Case(&file, "Added later", file.unusedFileCaseId(), file.database(0)->id());
    if (view->id() < 0 || !file.close()) return 1;

    if (!file.open("append_case.zrfx") || file.fileCaseCount() != 1) return 1;
    std::cout << file.fileCase(0)->name().toStdString() << "\n";
    return file.close() ? 0 : 1;
}
