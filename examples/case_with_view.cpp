// Adds a case to a model: a camera, a description, a snapshot and a texture of a part.
#include <NuoZRFx/NuoZRFx.h>

#include <vector>

using namespace nuo;
using namespace nuo::zrfx;

bool writeModel(Database& database) {
    PtrRef<NodeBlock> nodes = new NodeBlock(1, false);
    PtrRef<ElementBlock> elements = new ElementBlock(1, false, false);
    PtrRef<GeometryBlock> geometry = new GeometryBlock(1);
    PtrRef<StateInfoBlock> states = new StateInfoBlock;
    elements->setNodeBlockId(1);
    return nodes->setNodes(std::vector<float>{0, 0, 0, 1, 0, 0, 0, 1, 0}, {}) &&
           elements->addElement(ElementBlock::TRIANGLES, {0, 1, 2}) &&
           geometry->addElementBlock(0, 1, 1) &&
           states->addStateInfo(1, "", 0, StateInfoBlock::OTHER) &&
           database.writeBlock(nodes.p()) && database.writeBlock(elements.p()) &&
           database.writeBlock(geometry.p()) && database.writeBlock(states.p());
}

int main() {
    Instance instance;
    if (!ZRFxComponent::initialize(&instance)) return 1;
    File file;
    if (!file.create("case_with_view.zrfx", FileSettings())) return 1;
    PtrRef<Database> database =
        new Database(&file, "Triangle", 0, Database::STRUCTURAL, Database::LINEAR_STATIC, "");
    if (!writeModel(*database)) return 1;

    PtrRef<PropertySet> camera = new PropertySet("camera");
    camera->setValue("eye", Vec3d(0.5, 0.5, 5));
    camera->setValue("vrp", Vec3d(0.5, 0.5, 0));
    camera->setValue("vup", Vec3d(0, 1, 0));
    camera->setValue("projection_type", "perspective");
    camera->setValue("field_of_view_y_degrees", 30.0);
    PtrRef<PropertySetCollection> settings = new PropertySetCollection;
    settings->addPropertySet(camera.p());

    Image picture;
    const std::vector<unsigned char> orange(64 * 64 * 3, 180);
    if (!picture.setFromRgb(orange.data(), 64, 64)) return 1;

    PtrRef<Case> view = new Case(&file, "Front view", file.unusedFileCaseId(), database->id());
    if (view->id() < 0) return 1;
    view->setDescription("<p>Seen from the front.</p>");
    view->setSnapshot(&picture);
    if (!view->setProperties(settings.p())) return 1;  // checks them against the catalogue
    if (!view->addImage("steel", &picture)) return 1;
    return file.close() ? 0 : 1;
}
