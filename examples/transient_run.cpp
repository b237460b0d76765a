// A transient run with two parts: displacements at nodes, stress tensors at the nodes of each
// element, and a scalar for each element; a case shows them.
#include <NuoZRFx/NuoZRFx.h>

#include <iostream>
#include <vector>

using namespace nuo;
using namespace nuo::zrfx;

constexpr int kNodes = 1, kBar = 1, kPlate = 2;                    // blocks
constexpr int kDisplacement = 1, kStress = 2, kPlasticStrain = 3;  // results, and their blocks

// A bar of one hexahedron and a plate of two quads that share nodes.
bool writeMesh(Database& database) {
    PtrRef<NodeBlock> nodes = new NodeBlock(kNodes, true);
    for (int i = 0; i < 12; ++i) {
        const double xyz[] = {i % 3 * 0.5, i / 3 % 2 * 1.0, i / 6 * 1.0};
        if (!nodes->addNode(static_cast<float>(xyz[0]), static_cast<float>(xyz[1]),
                            static_cast<float>(xyz[2]), 101 + i)) {
            return false;
        }
    }
    // Elements name their nodes by index, from 0; their own ids are the user's.
    PtrRef<ElementBlock> bar = new ElementBlock(kBar, true, false);
    PtrRef<ElementBlock> plate = new ElementBlock(kPlate, true, false);
    bar->setNodeBlockId(kNodes);
    plate->setNodeBlockId(kNodes);
    PtrRef<GeometryBlock> parts = new GeometryBlock(1);
    PtrRef<GeometryInfoBlock> names = new GeometryInfoBlock(1);
    return bar->addElement(ElementBlock::HEXAHEDRONS, {0, 1, 4, 3, 6, 7, 10, 9}, 1) &&
           plate->addElements(ElementBlock::QUADS, {1, 2, 5, 4, 7, 8, 11, 10}, {2, 3}) &&
           parts->addElementBlock(0, kBar, 10) && parts->addElementBlock(0, kPlate, 20) &&
           names->addPartInfo(0, 10, "Bar") && names->addPartInfo(0, 20, "Plate") &&
           database.writeBlock(nodes.p()) && database.writeBlock(bar.p()) &&
           database.writeBlock(plate.p()) && database.writeBlock(parts.p()) &&
           database.writeBlock(names.p());
}

PtrRef<ResultBlock> makeResult(int id, const char* name, ResultBlock::ResultType type,
                               ResultBlock::ResultMapping mapping) {
    PtrRef<ResultBlock> result = new ResultBlock(id, type, mapping);
    result->setName(name);
    result->setResultId(id);
    return result;
}

// The values of one result in one state, on the items of one block of nodes or elements.
bool writeValues(Database& database, ResultBlock& result, int state, Block::BlockType target,
                 int targetId, ResultValuesBlock::ResultValueDimension dimension,
                 const std::vector<double>& values) {
    const int id = database.unusedBlockId(Block::RESULT_VALUES);
    PtrRef<ResultValuesBlock> block = new ResultValuesBlock(id, dimension, false);
    return block->setMapToBlockId(targetId, target) && block->setResultValues(values) &&
           database.writeBlock(block.p()) && result.addResultValuesBlock(id, state);
}

bool writeCase(File& file, const Database& database) {
    ViewSettings settings;
    settings.setPerspectiveCamera(Vec3d(3, -4, 3), Vec3d(0.5, 0.5, 0.5), Vec3d(0, 0, 1), 30);
    settings.showFringes(kStress);
    settings.showDisplacements(kDisplacement, {10, 20});
    settings.showStates({1, 2, 3});
    PtrRef<Case> view = new Case(&file, "Stresses", file.unusedFileCaseId(), database.id());
    return view->id() >= 0 && view->setProperties(settings);
}

int main() {
    Instance instance;
    File file;
    if (!ZRFxComponent::initialize(&instance)) return 1;
    if (!file.create("transient_run.zrfx", FileSettings())) return 1;
    PtrRef<Database> database =
        new Database(&file, "Impact", 0, Database::STRUCTURAL, Database::TRANSIENT, "");
    if (!writeMesh(*database)) return 1;

    PtrRef<StateInfoBlock> states = new StateInfoBlock;
    PtrRef<ResultBlock> displacement = makeResult(
        kDisplacement, "Displacement", ResultBlock::DISPLACEMENT, ResultBlock::NODE_MAPPING);
    PtrRef<ResultBlock> stress =
        makeResult(kStress, "Stress", ResultBlock::TENSOR, ResultBlock::ELEMENT_NODE_MAPPING);
    PtrRef<ResultBlock> strain = makeResult(kPlasticStrain, "Plastic strain", ResultBlock::SCALAR,
                                            ResultBlock::ELEMENT_MAPPING);
    stress->addAttribute("unit", "MPa");
    for (int state = 1; state <= 3; ++state) {
        // Solvers compute in double precision; files hold single precision.
        const std::vector<double> moved(3 * 12, 0.01 * state);
        const std::vector<double> barStress(6 * 8, 5.0 * state);        // 8 nodes of 1 hexahedron
        const std::vector<double> plateStress(6 * 4 * 2, 7.0 * state);  // 4 nodes of 2 quads
        const bool isWritten =
            states->addStateInfo(state, "", 0.1f * static_cast<float>(state),
                                 StateInfoBlock::TIME) &&
            writeValues(*database, *displacement, state, Block::NODES, kNodes,
                        ResultValuesBlock::VECTOR3D, moved) &&
            writeValues(*database, *stress, state, Block::ELEMENTS, kBar,
                        ResultValuesBlock::TENSOR6D, barStress) &&
            writeValues(*database, *stress, state, Block::ELEMENTS, kPlate,
                        ResultValuesBlock::TENSOR6D, plateStress) &&
            writeValues(*database, *strain, state, Block::ELEMENTS, kPlate,
                        ResultValuesBlock::SCALAR1D, {0.001 * state, 0.002 * state});
        if (!isWritten) return 1;
        for (Block* list : {static_cast<Block*>(states.p()), static_cast<Block*>(displacement.p()),
                            static_cast<Block*>(stress.p()), static_cast<Block*>(strain.p())}) {
            if (!database->writeBlock(list)) return 1;
        }
        if (!file.flush()) return 1;
    }
    if (!writeCase(file, *database)) return 1;
    const std::vector<nuo::Str> findings = database->check();
    for (const nuo::Str& finding : findings) std::cerr << finding.toStdString() << "\n";
    return file.close() && findings.empty() ? 0 : 1;
}
