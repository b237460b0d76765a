// Writes an encrypted file, and opens it without, with a wrong and with the right password.
#include <NuoZRFx/NuoZRFx.h>

#include <iostream>

using namespace nuo;
using namespace nuo::zrfx;

bool writeFile(const Str& password) {
    FileSettings settings;
    settings.password = password;
    File file;
    if (!file.create("encrypted_file.zrfx", settings)) return false;
    PtrRef<Database> database =
        new Database(&file, "Secret", 0, Database::STRUCTURAL, Database::LINEAR_STATIC, "");
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
    if (!ZRFxComponent::initialize(&instance) || !writeFile("open sesame")) return 1;

    // Both failures are logged with their reason.
    File file;
    if (file.open("encrypted_file.zrfx")) return 1;
    if (file.open("encrypted_file.zrfx", "open barley")) return 1;
    if (!file.open("encrypted_file.zrfx", "open sesame")) return 1;
    std::cout << file.database(0)->name().toStdString() << "\n";
    return file.close() ? 0 : 1;
}
