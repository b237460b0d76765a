// Loaded and unloaded by UnloadTest, with the library.
#include <NuoZRFx/NuoZRFx.h>

#include <vector>

using namespace nuo::zrfx;

// Writes and reads nodes enough for several threads; 0 when that went well.
extern "C" __attribute__((visibility("default"))) int writeAndRead(const char* path) {
    nuo::Instance instance;
    if (!ZRFxComponent::initialize(&instance)) return 1;
    ZRFxComponent::setThreads(4);
    std::vector<float> coordinates(1'500'000);
    for (std::size_t i = 0; i < coordinates.size(); ++i) {
        coordinates[i] = static_cast<float>(i * i % 7919) * 0.3f;
    }
    FileSettings settings;
    settings.compressionLevel = 1;
    File file;
    if (!file.create(path, settings)) return 2;
    nuo::PtrRef<Database> database =
        new Database(&file, "Model", 0, Database::STRUCTURAL, Database::LINEAR_STATIC, "");
    nuo::PtrRef<NodeBlock> nodes = new NodeBlock(1, false);
    return nodes->setNodes(coordinates, {}) && database->writeBlock(nodes.p()) ? 0 : 3;
}
