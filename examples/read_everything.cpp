// Lists what is in a file, the one named on the command line or one made here, as a viewer would.
#include <NuoZRFx/NuoZRFx.h>

#include <iostream>

using namespace nuo;
using namespace nuo::zrfx;

bool writeFile() {
    File file;
    if (!file.create("read_everything.zrfx", FileSettings())) return false;
    PtrRef<Database> database =
        new Database(&file, "Model", 0, Database::STRUCTURAL, Database::LINEAR_STATIC, "");
    PtrRef<Case> view = new Case(&file, "View", 0, database->id());
    PtrRef<NodeBlock> nodes = new NodeBlock(1, false);
    PtrRef<ElementBlock> points = new ElementBlock(1, false, false);
    PtrRef<GeometryBlock> geometry = new GeometryBlock(1);
    PtrRef<StateInfoBlock> states = new StateInfoBlock;
    points->setNodeBlockId(1);
    return nodes->addNode(1, 2, 3) && points->addElement(ElementBlock::POINTS, {0}) &&
           geometry->addElementBlock(0, 1, 1) &&
           states->addStateInfo(1, "", 0, StateInfoBlock::OTHER) &&
           database->writeBlock(nodes.p()) && database->writeBlock(points.p()) &&
           database->writeBlock(geometry.p()) && database->writeBlock(states.p()) && file.close();
}

// Blocks are read when they are asked for; their arrays are used in place.
bool readNodes(Database& database) {
    for (std::size_t i = 0; i < database.blockCount(Block::NODES); ++i) {
        const PtrRef<Block> block = database.blockByIndex(Block::NODES, i);
        if (block.isNull()) return false;
        const NodeBlock& nodes = static_cast<const NodeBlock&>(*block);
        const float* xyz = nodes.nodeData();
        std::cout << "  nodes " << nodes.blockId() << ": " << nodes.nodeCount() << "\n";
        if (nodes.nodeCount() == 0) continue;
        std::cout << "  the first at " << xyz[0] << " " << xyz[1] << " " << xyz[2] << "\n";
    }
    return true;
}

int main(int argc, char* argv[]) {
    Instance instance;
    if (!ZRFxComponent::initialize(&instance)) return 1;
    if (argc < 2 && !writeFile()) return 1;
    File file;
    if (!file.open(argc < 2 ? "read_everything.zrfx" : argv[1])) return 1;
    for (std::size_t i = 0; i < file.databaseCount(); ++i) {
        Database& database = *file.database(i);
        std::cout << "database " << database.id() << ": " << database.name().toStdString() << "\n";
        for (int type = Block::NODES; type <= Block::SET; ++type) {
            const auto count = database.blockCount(static_cast<Block::BlockType>(type));
            if (count > 0) std::cout << "  " << count << " blocks of type " << type << "\n";
        }
        if (!readNodes(database)) return 1;
    }
    for (std::size_t i = 0; i < file.fileCaseCount(); ++i) {
        const Case& view = *file.fileCase(i);
        std::cout << "case " << view.id() << ": " << view.name().toStdString() << ", "
                  << view.imageCount() << " textures\n";
    }
    return file.close() ? 0 : 1;
}
