#include "support/Model.h"

#include <cstring>
#include <sstream>

namespace test {

using namespace nuo::zrfx;

namespace {

/// Lines of "name value value ...".
class Facts {
public:
    template <typename... Values>
    void Add(const char* name, const Values&... values) {
        m_text << name;
        (Put(values), ...);
        m_text << '\n';
    }

    std::string Text() const { return m_text.str(); }

private:
    template <typename Value>
    void Put(const Value& value) {
        m_text << ' ' << value;
    }
    template <typename Value>
    requires requires(Value value) { value.x, value.y, value.z; }
    void Put(const Value& value) {
        m_text << " (" << value.x << ' ' << value.y << ' ' << value.z << ')';
    }
    void Put(const Str& value) { m_text << " '" << value.toStdString() << "'"; }
    template <typename Value>
    void Put(const std::vector<Value>& values) {
        m_text << " [" << values.size() << "]";
        for (const Value& value : values) Put(value);
    }

    std::ostringstream m_text;
};

template <typename Value>
std::vector<Value> copyOf(const Value* values, std::size_t count) {
    return values ? std::vector<Value>(values, values + count) : std::vector<Value>();
}

void describe(const NodeBlock& block, Facts& facts) {
    facts.Add("nodes", block.nodeCount(), block.nodes());
    facts.Add("ids", block.hasNodeIds(), block.nodeIds());
    facts.Add("data", copyOf(block.nodeData(), 3 * block.nodeCount()));
    facts.Add("id data", copyOf(block.nodeIdData(), block.nodeCount()));
    for (const int id : block.nodeIds()) facts.Add("index", id, block.nodeIndex(id));
}

void describe(const ElementBlock& block, Facts& facts) {
    facts.Add("elements", block.elementCount(), block.elementNodeCount());
    facts.Add("refers to", block.nodeBlockId(), block.hasElementIds(), block.referNodesByIds());
    for (std::size_t i = 0; i < block.elementGroupCount(); ++i) {
        std::vector<int> nodes;
        std::vector<int> ids;
        std::vector<int> indices;
        std::vector<int> topology[4];
        block.elementGroup(i, &nodes, &ids);
        block.elementIndices(i, &indices);
        block.polyhedronsElementNodeCounts(i, &topology[0]);
        block.polyhedronsFaceCounts(i, &topology[1]);
        block.polyhedronsFaceNodeCounts(i, &topology[2]);
        block.polyhedronsLocalNodes(i, &topology[3]);
        facts.Add("group", block.elementGroupType(i), block.elementGroupElementCount(i), nodes, ids,
                  indices);
        facts.Add("polyhedrons", topology[0], topology[1], topology[2], topology[3]);
        facts.Add("data", copyOf(block.elementNodeData(i), block.elementGroupElementNodeCount(i)),
                  copyOf(block.elementIdData(i), block.elementGroupElementCount(i)));
    }
}

void describe(const GeometryBlock& block, Facts& facts) {
    for (std::size_t state = 0; state < block.stateCount(); ++state) {
        for (std::size_t i = 0; i < block.geometryCountPerState(); ++i) {
            facts.Add("geometry", block.stateId(state), i, block.partCount(i, state),
                      block.elementBlockIds(i, state), block.partIds(i, state));
        }
    }
}

void describe(const GeometryInfoBlock& block, Facts& facts) {
    for (std::size_t i = 0; i < block.geometryCountPerState(); ++i) {
        facts.Add("geometry", i, block.partCount(i));
        for (std::size_t part = 0; part < block.partCount(i); ++part) {
            facts.Add("part", block.partId(i, part), block.partName(i, part));
        }
    }
}

void describe(const StateInfoBlock& block, Facts& facts) {
    for (std::size_t i = 0; i < block.stateCount(); ++i) {
        facts.Add("state", block.stateId(i), block.stateName(i), block.stateReferenceValue(i),
                  block.stateReferenceValueType(i), block.stateIndex(block.stateId(i)));
    }
    for (std::size_t i = 0; i < block.groupCount(); ++i) {
        facts.Add("group", block.groupId(i), block.groupName(i), block.groupStateIds(i));
    }
}

void describe(const ResultBlock& block, Facts& facts) {
    facts.Add("result", block.resultId(), block.name(), block.resultType(), block.resultMapping(),
              block.strainType());
    facts.Add("displacements", block.defaultDisplacementScaleFactor(),
              block.relativeDisplacementResults());
    for (const Str& name : block.attributeNames()) {
        facts.Add("attribute", name, block.attribute(name));
    }
    for (std::size_t i = 0; i < block.stateCount(); ++i) {
        facts.Add("state", block.stateId(i), block.stateIndex(block.stateId(i)),
                  block.resultValuesBlocks(i));
    }
}

void describe(const ResultValuesBlock& block, Facts& facts) {
    facts.Add("values", block.dimension(), block.itemCount(), block.resultValues());
    facts.Add("data", copyOf(block.resultValueData(),
                             block.itemCount() * static_cast<std::size_t>(block.dimension())));
    facts.Add("maps to", block.mapToBlockId(), block.hasMapToItemIds());
    if (!block.hasMapToItemIds()) return;
    facts.Add("ids", block.mapToItemIds(), copyOf(block.mapToItemIdData(), block.itemCount()));
}

void describe(const TransformationResultBlock& block, Facts& facts) {
    facts.Add("result", block.resultId(), block.name());
    for (std::size_t i = 0; i < block.stateCount(); ++i) {
        facts.Add("state", block.stateId(i), block.stateIndex(block.stateId(i)),
                  block.transformationResultValuesBlockCount(i),
                  block.transformationResultValuesBlocks(i));
    }
}

void describe(const TransformationResultValuesBlock& block, Facts& facts) {
    Block::BlockType type = Block::INVALID_BLOCK;
    const int id = block.mapToBlockId(&type);
    facts.Add("maps to", id, type);
    for (int row = 0; row < 4; ++row) {
        facts.Add("row", block.matrix().rowCol(row, 0), block.matrix().rowCol(row, 1),
                  block.matrix().rowCol(row, 2), block.matrix().rowCol(row, 3));
    }
}

void describe(const SetBlock& block, Facts& facts) {
    facts.Add("set", block.setId(), block.setName(), block.itemType(), block.itemsSpecifiedAsIds(),
              block.totalItemCount());
    for (std::size_t i = 0; i < block.itemGroupCount(); ++i) {
        const SetItemGroup& group = *block.itemGroup(i);
        facts.Add("items", group.blockId(), group.blockType(),
                  copyOf(group.itemData(), group.itemCount()));
    }
}

// As the one of the classes that the block is of.
template <typename... Classes>
void describeAs(const Block& block, Facts& facts) {
    const auto add = [&](const auto* typed) {
        if (typed) describe(*typed, facts);
    };
    (add(dynamic_cast<const Classes*>(&block)), ...);
}

std::string describeImage(const nuo::Image* image) {
    if (!image) return "none";
    std::vector<unsigned char> rgb(std::size_t{3} * image->width() * image->height());
    std::ostringstream text;
    text << image->width() << 'x' << image->height();
    // A snapshot loses detail, so its colour is told coarsely.
    if (image->getAsRgb(rgb.data(), rgb.size()) && !rgb.empty()) {
        text << " about " << (rgb[0] + 16) / 32 << ' ' << (rgb[1] + 16) / 32 << ' '
             << (rgb[2] + 16) / 32;
    }
    return text.str();
}

void addProperties(const nuo::PropertySetCollection* properties, Facts& facts) {
    for (std::size_t i = 0; properties && i < properties->count(); ++i) {
        const nuo::PropertySet& set = *properties->propertySet(i);
        for (const Str& key : set.allKeys()) {
            const nuo::Variant value = set.value(key);
            facts.Add("property", set.classType(), key, value.type());
            if (value.type() == nuo::Variant::VEC3D) facts.Add("point", value.toVec3d());
            if (value.type() == nuo::Variant::DOUBLE) facts.Add("number", value.toDouble());
            if (value.type() == nuo::Variant::STRING) facts.Add("text", value.toStr());
        }
    }
}

// A text that ends with another one. Joining them takes memory of the test's own, which the tests
// of missing memory leave alone; a std::string would take that of a library.
Str with(const char* before, const std::string& text) {
    std::vector<char> whole(before, before + std::strlen(before));
    whole.insert(whole.end(), text.c_str(), text.c_str() + text.size() + 1);
    return Str(whole.data());
}

std::vector<PtrRef<Block>> makeMesh(const std::string&, bool& isWhole) {
    PtrRef<NodeBlock> nodes = new NodeBlock(1, true);
    for (int i = 0; i < 12; ++i) {
        isWhole &= nodes->addNode(static_cast<float>(i & 1), 0.5f * static_cast<float>(i >> 1 & 1),
                                  -0.25f * static_cast<float>(i >> 2), 100 + 7 * i);
    }
    isWhole &= nodes->nodeIndex(107) == 1;
    PtrRef<NodeBlock> plainNodes = new NodeBlock(2, false);
    isWhole &= plainNodes->setNodes(
        std::vector<float>{0, 0, 0, 1, 0, 0, 1, 1, 0, 1.5e-20f, 3e38f, -1}, {});

    PtrRef<ElementBlock> solids = new ElementBlock(1, true, false);
    solids->setNodeBlockId(1);
    isWhole &= solids->addElement(ElementBlock::HEXAHEDRONS, {0, 1, 3, 2, 4, 5, 7, 6}, 10);
    isWhole &=
        solids->addElements(ElementBlock::TETRAHEDRONS, {0, 1, 2, 4, 8, 9, 10, 11}, {20, 30});
    isWhole &= solids->addPolyhedron({{0, 1, 2}, {0, 3, 1}, {1, 3, 2}, {0, 2, 3}}, 40);
    isWhole &=
        solids->addPolyhedron({{4, 5, 7, 6}, {4, 8, 5}, {5, 8, 7}, {7, 8, 6}, {6, 8, 4}}, 50);
    isWhole &= solids->addElement(ElementBlock::HEXAHEDRONS, {4, 5, 7, 6, 8, 9, 11, 10}, 60);
    PtrRef<ElementBlock> shells = new ElementBlock(2, false, true);
    shells->setNodeBlockId(1);
    isWhole &= shells->addElements(ElementBlock::QUADS, {100, 107, 121, 114}, {});
    isWhole &= shells->addElements(ElementBlock::BEAMS, {100, 177, 107, 170}, {});
    return {nodes, plainNodes, solids, shells};
}

std::vector<PtrRef<Block>> makeFrame(const std::string& text, bool& isWhole) {
    PtrRef<GeometryBlock> geometry = new GeometryBlock(2);
    isWhole &= geometry->setElementBlocksForState(0, {1, 2}, 0, {7, 8});
    isWhole &= geometry->setElementBlocksForState(0, {2, 1}, 3, {7, 8});
    isWhole &= geometry->addElementBlockForState(1, 2, 0, 0);
    isWhole &= geometry->addElementBlockForState(1, 1, 0, 3);
    PtrRef<GeometryInfoBlock> parts = new GeometryInfoBlock(2);
    isWhole &= parts->addPartInfo(0, 7, with("Solid ", text));
    isWhole &= parts->addPartInfo(0, 8, "Shell");
    isWhole &= parts->addPartInfo(1, 0, "");
    PtrRef<StateInfoBlock> states = new StateInfoBlock;
    isWhole &= states->addStateInfo(0, with("Step ", text), 0.125f, StateInfoBlock::TIME);
    isWhole &= states->addStateInfo(3, "", 50, StateInfoBlock::FREQUENCY);
    isWhole &= states->addStateInfo(4, "Gravity", -1, StateInfoBlock::LOAD_CASE);
    isWhole &= states->addStateInfo(5, "Rest", 1e30f, StateInfoBlock::OTHER);
    isWhole &= states->addGroupInfo(9, with("Group ", text), {0, 4});
    isWhole &= states->addGroupInfo(8, "", {3});
    return {geometry, parts, states};
}

PtrRef<ResultBlock> makeResult(int id, ResultBlock::ResultType type,
                               ResultBlock::ResultMapping mapping, const Str& name, bool& isWhole) {
    PtrRef<ResultBlock> result = new ResultBlock(id, type, mapping);
    result->setName(name);
    result->setResultId(10 * id);
    isWhole &= result->addResultValuesBlock(id, 0);
    isWhole &= result->setResultValuesBlocks({3, 1, 2}, 3);
    return result;
}

std::vector<PtrRef<Block>> makeResults(const std::string& text, bool& isWhole) {
    PtrRef<ResultValuesBlock> scalars = new ResultValuesBlock(1, ResultValuesBlock::SCALAR1D, true);
    isWhole &= scalars->addResultValue1d(1.5f, 10);
    isWhole &= scalars->addResultValue1d(2.99e38f, 30);
    isWhole &= scalars->setMapToBlockId(1, Block::ELEMENTS);
    PtrRef<ResultValuesBlock> vectors =
        new ResultValuesBlock(2, ResultValuesBlock::VECTOR3D, false);
    isWhole &= vectors->setResultValues({0.5f, -1, 1e-6f}, {});
    isWhole &= vectors->addResultValue3d(0, 0, 2);
    isWhole &= vectors->setMapToBlockId(1, Block::NODES);
    PtrRef<ResultValuesBlock> tensors = new ResultValuesBlock(3, ResultValuesBlock::TENSOR6D, true);
    isWhole &= tensors->setResultValues({1, 2, 3, 4, 5, 6, -1, -2, -3, -4, -5, -6.5f}, {20, 10});
    isWhole &= tensors->setMapToBlockId(1, Block::ELEMENTS);

    PtrRef<ResultBlock> stress = makeResult(1, ResultBlock::SCALAR, ResultBlock::ELEMENT_MAPPING,
                                            with("Stress ", text), isWhole);
    stress->addAttribute("unit", with("N/mm\u00B2 ", text));
    stress->addAttribute("empty", "");
    PtrRef<ResultBlock> displacement = makeResult(
        2, ResultBlock::DISPLACEMENT, ResultBlock::NODE_MAPPING, "Displacement", isWhole);
    displacement->setDefaultDisplacementScaleFactor(2.5f);
    displacement->setRelativeDisplacementResults(true);
    PtrRef<ResultBlock> strain =
        makeResult(3, ResultBlock::TENSOR, ResultBlock::ELEMENT_NODE_MAPPING, "Strain", isWhole);
    strain->setStrainType(ResultBlock::STANDARD_STRAIN);
    PtrRef<ResultBlock> flow =
        makeResult(4, ResultBlock::VECTOR, ResultBlock::SURFACE_MAPPING, "Flow", isWhole);
    return {scalars, vectors, tensors, stress, displacement, strain, flow};
}

std::vector<PtrRef<Block>> makeMovesAndSets(const std::string& text, bool& isWhole) {
    PtrRef<TransformationResultBlock> move = new TransformationResultBlock(1);
    move->setName(with("Move ", text));
    move->setResultId(77);
    isWhole &= move->addTransformationResultValuesBlock(1, 0);
    isWhole &= move->setTransformationResultValuesBlocks({1, 2}, 3);
    PtrRef<TransformationResultValuesBlock> moved = new TransformationResultValuesBlock(1);
    nuo::Mat4d matrix;
    matrix.setRowCol(0, 3, 12.25);
    matrix.setRowCol(3, 0, -0.5);
    moved->setMatrix(matrix);
    isWhole &= moved->setMapToBlockId(2, Block::ELEMENTS);

    PtrRef<SetBlock> load = new SetBlock(1, true);
    load->setSetId(5);
    load->setSetName(with("Load ", text));
    load->addItem(10, 1);
    const int items[] = {20, 30};
    load->addItems(items, 2, 1);
    SetItemGroup* group = new SetItemGroup;
    group->setBlockId(2);
    group->setBlockType(Block::ELEMENTS);
    group->setItems({3, 2, 1});
    load->addItemGroup(group);
    PtrRef<SetBlock> empty = new SetBlock(2, false);
    return {move, moved, load, empty};
}

constexpr std::vector<PtrRef<Block>> (*kGroups[kBlockGroupCount])(const std::string&, bool&) = {
    makeMesh, makeFrame, makeResults, makeMovesAndSets};

bool writeCases(File& file, const std::string& text) {
    PtrRef<Case> view = new Case(&file, Str("View " + text), 3, 0);
    nuo::Image snapshot = MakeImage(8, 16);
    nuo::Image texture = MakeImage(5, 3);
    view->setDescription(Str("<p>" + text + "</p>"));
    view->setSnapshot(&snapshot);
    view->setDerivedResultsDisabled(true);
    const bool isComplete = view->addImage(Str("steel." + text), &texture) &&
                            view->addImage("wood", &texture) &&
                            view->setProperties(MakeCamera().p());
    const PtrRef<Case> plain = new Case(&file, "Plain", 0, 7);
    return isComplete && plain->id() == 0;
}

}  // namespace

nuo::Image MakeImage(unsigned int width, unsigned int height) {
    nuo::Image image;
    std::vector<unsigned char> rgb;
    for (unsigned int i = 0; i < width * height; ++i) rgb.insert(rgb.end(), {200, 100, 40});
    image.setFromRgb(rgb.data(), width, height);
    return image;
}

PtrRef<nuo::PropertySetCollection> MakeCamera() {
    PtrRef<nuo::PropertySet> camera = new nuo::PropertySet("camera");
    camera->setValue("eye", nuo::Vec3d(10, 0.5, 1e-7));
    camera->setValue("vrp", nuo::Vec3d(0, 0, 0));
    camera->setValue("vup", nuo::Vec3d(0, 0, 1));
    camera->setValue("projection_type", "ortho");
    camera->setValue("ortho_height", 2.5);
    PtrRef<nuo::PropertySetCollection> collection = new nuo::PropertySetCollection;
    collection->addPropertySet(camera.p());
    return collection;
}

std::string Describe(const Block& block) {
    Facts facts;
    facts.Add("block", block.blockType(), block.blockId());
    describeAs<NodeBlock, ElementBlock, GeometryBlock, GeometryInfoBlock, StateInfoBlock,
               ResultBlock, ResultValuesBlock, TransformationResultBlock,
               TransformationResultValuesBlock, SetBlock>(block, facts);
    return facts.Text();
}

std::string Describe(Database& database) {
    Facts facts;
    facts.Add("database", database.id(), database.name(), database.description(),
              database.simulationType(), database.solutionType());
    std::string text = facts.Text();
    for (int type = Block::NODES; type <= Block::SET; ++type) {
        const auto blockType = static_cast<Block::BlockType>(type);
        for (std::size_t i = 0; i < database.blockCount(blockType); ++i) {
            PtrRef<Block> block = blockType == Block::SET
                                      ? PtrRef<Block>(database.setBlockByIndex(i))
                                      : database.blockByIndex(blockType, i);
            text += block ? Describe(*block) : "unreadable block\n";
        }
    }
    return text;
}

std::string Describe(const Case& fileCase) {
    Facts facts;
    facts.Add("case", fileCase.id(), fileCase.databaseId(), fileCase.name(), fileCase.description(),
              fileCase.derivedResultsDisabled());
    for (std::size_t i = 0; i < fileCase.imageCount(); ++i) {
        facts.Add("image", fileCase.imageName(i), describeImage(fileCase.image(i)));
    }
    addProperties(fileCase.properties(), facts);
    if (!fileCase.description().isEmpty()) {
        facts.Add("snapshot", describeImage(fileCase.snapshot()));
    }
    return facts.Text();
}

std::vector<std::string> Describe(File& file) {
    std::vector<std::string> texts;
    for (std::size_t i = 0; i < file.databaseCount(); ++i) {
        texts.push_back(Describe(*file.database(i)));
    }
    for (std::size_t i = 0; i < file.fileCaseCount(); ++i) {
        texts.push_back(Describe(*file.fileCase(i)));
    }
    return texts;
}

bool WriteFrame(Database& database) {
    PtrRef<GeometryBlock> geometry = new GeometryBlock(1);
    PtrRef<StateInfoBlock> states = new StateInfoBlock;
    return geometry->addElementBlock(0, 1, 1) &&
           states->addStateInfo(1, "", 0, StateInfoBlock::TIME) &&
           database.writeBlock(geometry.p()) && database.writeBlock(states.p());
}

PtrRef<Database> WriteDatabase(File& file, const Str& name, int id) {
    PtrRef<Database> database =
        new Database(&file, name, id, Database::STRUCTURAL, Database::LINEAR_STATIC, "");
    if (database->id() >= 0) WriteFrame(*database);
    return database;
}

std::vector<PtrRef<Block>> MakeBlockGroup(std::size_t group, const std::string& text) {
    bool isWhole = true;
    const std::vector<PtrRef<Block>> blocks = kGroups[group](text, isWhole);
    return isWhole ? blocks : std::vector<PtrRef<Block>>();
}

std::vector<PtrRef<Block>> MakeBlocks(const std::string& text) {
    std::vector<PtrRef<Block>> blocks;
    for (std::size_t group = 0; group < kBlockGroupCount; ++group) {
        for (const PtrRef<Block>& block : MakeBlockGroup(group, text)) blocks.push_back(block);
    }
    return blocks;
}

bool WriteModel(File& file, const std::string& text) {
    for (const int id : {0, 7}) {
        PtrRef<Database> database =
            new Database(&file, Str("Model " + text), id, Database::MULTIBODY, Database::TRANSIENT,
                         Str(text + " described"));
        for (const PtrRef<Block>& block : MakeBlocks(text)) {
            if (!database->writeBlock(block.p())) return false;
        }
    }
    return writeCases(file, text);
}

std::vector<std::string> DescribeModel(const std::string& text) {
    std::string model;
    for (int type = Block::NODES; type <= Block::SET; ++type) {
        for (const PtrRef<Block>& block : MakeBlocks(text)) {
            if (block->blockType() == type) model += Describe(*block);
        }
    }
    std::vector<std::string> texts;
    for (const int id : {0, 7}) {
        Facts facts;
        facts.Add("database", id, Str("Model " + text), Str(text + " described"),
                  Database::MULTIBODY, Database::TRANSIENT);
        texts.push_back(facts.Text() + model);
    }
    Facts view;
    view.Add("case", 3, 0, Str("View " + text), Str("<p>" + text + "</p>"), true);
    view.Add("image", Str("steel." + text), "5x3 about 6 3 1");
    view.Add("image", Str("wood"), "5x3 about 6 3 1");
    addProperties(MakeCamera().p(), view);
    view.Add("snapshot", "8x16 about 6 3 1");
    Facts plain;
    plain.Add("case", 0, 7, Str("Plain"), Str(), false);
    texts.push_back(view.Text());
    texts.push_back(plain.Text());
    return texts;
}

}  // namespace test
