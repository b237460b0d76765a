// Writes data files as lines of text, stored without compression, for readers without a library.
// Text keeps six significant digits of a value.
#include <NuoZRFx/NuoZRFx.h>

#include <iostream>

using namespace nuo;
using namespace nuo::zrfx;

bool writeFile() {
    FileSettings settings;
    settings.binary = false;
    settings.compressionLevel = 0;
    settings.applicationName = "Example";
    File file;
    if (!file.create("text_mode_file.zrfx", settings)) return false;
    PtrRef<Database> database =
        new Database(&file, "Points", 0, Database::OTHER_SIMULATION, Database::OTHER_SOLUTION, "");
    PtrRef<NodeBlock> nodes = new NodeBlock(1, true);
    PtrRef<ElementBlock> points = new ElementBlock(1, false, true);  // refers to nodes by id
    PtrRef<GeometryBlock> geometry = new GeometryBlock(1);
    PtrRef<StateInfoBlock> states = new StateInfoBlock;
    points->setNodeBlockId(1);
    return nodes->addNode(0.125f, 0, 1, 10) && nodes->addNode(0.25f, 0, 1, 20) &&
           points->addElements(ElementBlock::POINTS, {10, 20}, {}) &&
           geometry->addElementBlock(0, 1, 1) &&
           states->addStateInfo(1, "", 0, StateInfoBlock::OTHER) &&
           database->writeBlock(nodes.p()) && database->writeBlock(points.p()) &&
           database->writeBlock(geometry.p()) && database->writeBlock(states.p()) &&
           file.addUserTextFile("read me", "One node a line: x y z.\n") && file.close();
}

int main() {
    Instance instance;
    if (!ZRFxComponent::initialize(&instance) || !writeFile()) return 1;
    File file;
    if (!file.open("text_mode_file.zrfx") || file.settings()->binary) return 1;
    std::cout << file.userTextFileContent(0).toStdString();
    return file.close() ? 0 : 1;
}
