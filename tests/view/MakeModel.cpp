// make_view_model FILE: two hexahedrons, a quad, a beam and a point in two parts, seen along z,
// with results of all mappings in two states, a set, and names that try to be markup.
#include <NuoZRFx/NuoZRFx.h>

#include <limits>
#include <vector>

using namespace nuo;
using namespace nuo::zrfx;

namespace {

constexpr int kNodes = 1, kSolid = 1, kRest = 2;
constexpr int kDisplacement = 1, kStress = 2, kLoad = 3;
constexpr int kSolidPart = 10, kRestPart = 20;
constexpr const char* kMarkup = "<img src=x onerror=\"window.hacked=1\"></script><b>Shell</b>";

// 12 nodes of the hexahedrons, x from 0 to 4, with ids from 101 on; then those of the others.
bool writeMesh(Database& database) {
    PtrRef<NodeBlock> nodes = new NodeBlock(kNodes, true);
    bool isFine = true;
    for (int i = 0; i < 12; ++i) {
        isFine = isFine &&
                 nodes->addNode(static_cast<float>(i % 3 * 2), static_cast<float>(i / 3 % 2 * 2),
                                static_cast<float>(i / 6 * 2), 101 + i);
    }
    const std::vector<std::vector<float>> rest{
        {5, 0, 0}, {7, 0, 0}, {7, 2, 0}, {5, 2, 0}, {5, 3, 0}};
    for (int i = 0; i < 5; ++i) {
        const auto& at = rest[static_cast<std::size_t>(i)];
        isFine = isFine && nodes->addNode(at[0], at[1], at[2], 201 + i);
    }
    PtrRef<ElementBlock> solid = new ElementBlock(kSolid, true, false);
    PtrRef<ElementBlock> others = new ElementBlock(kRest, true, false);
    solid->setNodeBlockId(kNodes);
    others->setNodeBlockId(kNodes);
    PtrRef<GeometryBlock> parts = new GeometryBlock(1);
    PtrRef<GeometryInfoBlock> names = new GeometryInfoBlock(1);
    PtrRef<SetBlock> set = new SetBlock(1, true);
    set->setSetId(7);
    set->setSetName("Right");
    set->addItem(1002, kSolid);
    return isFine &&
           solid->addElements(ElementBlock::HEXAHEDRONS,
                              {0, 1, 4, 3, 6, 7, 10, 9, 1, 2, 5, 4, 7, 8, 11, 10}, {1001, 1002}) &&
           others->addElement(ElementBlock::QUADS, {12, 13, 14, 15}, 2001) &&
           others->addElement(ElementBlock::BEAMS, {15, 16}, 2002) &&
           others->addElement(ElementBlock::POINTS, {16}, 2003) &&
           parts->addElementBlock(0, kSolid, kSolidPart) &&
           parts->addElementBlock(0, kRest, kRestPart) &&
           names->addPartInfo(0, kSolidPart, "Solid") &&
           names->addPartInfo(0, kRestPart, kMarkup) && database.writeBlock(nodes.p()) &&
           database.writeBlock(solid.p()) && database.writeBlock(others.p()) &&
           database.writeBlock(parts.p()) && database.writeBlock(names.p()) &&
           database.writeBlock(set.p());
}

struct Values {
    Block::BlockType target;
    int targetId;
    ResultValuesBlock::ResultValueDimension dimension;
    std::vector<double> numbers;
};

bool writeValues(Database& database, ResultBlock& result, int state, const Values& values) {
    const int id = database.unusedBlockId(Block::RESULT_VALUES);
    PtrRef<ResultValuesBlock> block = new ResultValuesBlock(id, values.dimension, false);
    return block->setMapToBlockId(values.targetId, values.target) &&
           block->setResultValues(values.numbers) && database.writeBlock(block.p()) &&
           result.addResultValuesBlock(id, state);
}

std::vector<double> displacements(int state) {
    std::vector<double> numbers;
    for (int i = 0; i < 17; ++i) numbers.insert(numbers.end(), {0.001 * i * state, 0, 0});
    return numbers;
}

// Both elements have other values at the nodes that they share.
std::vector<double> stresses(int state) {
    std::vector<double> numbers;
    for (int i = 0; i < 16; ++i) {
        const double own = (i < 8 ? 10.0 : 50.0) + i;
        numbers.insert(numbers.end(), {own * state, -own, 3, 0.5 * own, 2, -7});
    }
    return numbers;
}

bool writeResults(Database& database) {
    PtrRef<ResultBlock> displacement =
        new ResultBlock(kDisplacement, ResultBlock::DISPLACEMENT, ResultBlock::NODE_MAPPING);
    PtrRef<ResultBlock> stress =
        new ResultBlock(kStress, ResultBlock::TENSOR, ResultBlock::ELEMENT_NODE_MAPPING);
    PtrRef<ResultBlock> load =
        new ResultBlock(kLoad, ResultBlock::SCALAR, ResultBlock::ELEMENT_MAPPING);
    displacement->setName("<i>Moved</i>");
    stress->setName("Stress");
    load->setName("Load");
    displacement->setResultId(kDisplacement);
    stress->setResultId(kStress);
    load->setResultId(kLoad);
    PtrRef<StateInfoBlock> states = new StateInfoBlock;
    const double none = std::numeric_limits<double>::quiet_NaN();
    for (int state = 1; state <= 2; ++state) {
        const bool isWritten =
            states->addStateInfo(state, state == 1 ? "First" : "<u>Second</u>",
                                 0.5f * static_cast<float>(state), StateInfoBlock::TIME) &&
            writeValues(
                database, *displacement, state,
                {Block::NODES, kNodes, ResultValuesBlock::VECTOR3D, displacements(state)}) &&
            writeValues(database, *stress, state,
                        {Block::ELEMENTS, kSolid, ResultValuesBlock::TENSOR6D, stresses(state)}) &&
            writeValues(database, *load, state,
                        {Block::ELEMENTS,
                         kSolid,
                         ResultValuesBlock::SCALAR1D,
                         {100.0 * state, 200.0 * state}}) &&
            writeValues(database, *load, state,
                        {Block::ELEMENTS, kRest, ResultValuesBlock::SCALAR1D, {none, 5, 6}});
        if (!isWritten) return false;
    }
    return database.writeBlock(states.p()) && database.writeBlock(displacement.p()) &&
           database.writeBlock(stress.p()) && database.writeBlock(load.p());
}

PtrRef<PropertySet> partSettings(int part) {
    PtrRef<PropertySet> set = new PropertySet("part_settings");
    set->setValue("context_geometry_index", 0u);
    set->setValue("context_part_id", part);
    set->setValue("draw_style", "surface");
    set->setValue("lighting", false);
    set->setValue("color", Color3f(0, 0, 1));
    return set;
}

// 8 units high and seen along z, without light, so that places and colours are known.
PtrRef<PropertySetCollection> settings() {
    ViewSettings view;
    view.setOrthoCamera(Vec3d(3, 1, 10), Vec3d(3, 1, 0), Vec3d(0, 1, 0), 8);
    view.showFringes(kLoad);
    PtrRef<PropertySet> colors = new PropertySet("color_mapper_filled_contours_uniform");
    colors->setValue("context_result_id", kLoad);
    colors->setValue("range_min", 0.0);
    colors->setValue("range_max", 400.0);
    colors->setValue("num_colors", 4);
    colors->setValue("undefined_color", Color3f(1, 0, 1));
    PtrRef<PropertySet> states = new PropertySet("state_selection");
    states->setValue("state_ids", std::vector<Variant>{Variant(2), Variant(1)});
    PtrRef<PropertySetCollection> all = view.properties();
    for (const auto& set : {colors, states, partSettings(kSolidPart), partSettings(kRestPart)}) {
        all->addPropertySet(set.p());
    }
    return all;
}

// Without fringes, in the last state, where node 101 + i moves by 0.002 i.
PtrRef<PropertySetCollection> arrowSettings() {
    ViewSettings view;
    view.setOrthoCamera(Vec3d(3, 1, 10), Vec3d(3, 1, 0), Vec3d(0, 1, 0), 8);
    view.showVectors({kDisplacement});
    PtrRef<PropertySet> arrows = new PropertySet("vector_settings");
    arrows->setValue("context_result_id", kDisplacement);
    arrows->setValue("scale_mode", "absolute");
    arrows->setValue("scale_factor", 100.0);
    arrows->setValue("single_color", Color3f(0, 1, 0));
    arrows->setValue("filter_min_length", 0.017);
    arrows->setValue("filter_max_length", 0.025);
    arrows->setValue("clamp_max_length", 0.015);
    PtrRef<PropertySetCollection> all = view.properties();
    all->addPropertySet(arrows.p());
    return all;
}

bool writeCases(File& file, const Database& database) {
    PtrRef<Case> first = new Case(&file, "Loads", file.unusedFileCaseId(), database.id());
    first->setDescription("<p>Seen <b>along z</b></p><script>window.hacked=2</script>");
    if (!first->setProperties(settings().p())) return false;
    PtrRef<Case> second = new Case(&file, "<s>Plain</s>", file.unusedFileCaseId(), database.id());
    PtrRef<Case> third = new Case(&file, "Arrows", file.unusedFileCaseId(), database.id());
    return second->id() >= 0 && third->setProperties(arrowSettings().p());
}

}  // namespace

int main(int argc, char** argv) {
    Instance instance;
    File file;
    if (argc != 2 || !ZRFxComponent::initialize(&instance)) return 1;
    if (!file.create(argv[1], FileSettings())) return 1;
    PtrRef<Database> database = new Database(&file, "<script>window.hacked=3</script>", 0,
                                             Database::STRUCTURAL, Database::TRANSIENT, "");
    const bool isWritten =
        writeMesh(*database) && writeResults(*database) && writeCases(file, *database);
    return isWritten && file.close() ? 0 : 1;
}
