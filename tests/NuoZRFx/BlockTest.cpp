#include <array>
#include <limits>

#include "support/InterfaceTest.h"
#include "support/Model.h"

namespace {

using namespace nuo::zrfx;
using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

using Ints = std::vector<int>;
using Floats = std::vector<float>;
using Faces = std::vector<std::vector<int>>;

constexpr int kTwoIds[] = {4, 9};

class BlockTest : public InterfaceTest {
protected:
    // Writes a block beside a frame into a new file, and reads it back.
    PtrRef<Block> WriteAndRead(const Block& block) {
        Create();
        const PtrRef<Database> database = WriteDatabase(m_file, "a", 0);
        EXPECT_TRUE(database->writeBlock(&block));
        Reopen();
        return m_file.database(0)->blockById(block.blockType(), block.blockId());
    }
};

class BareBlock : public Block {
public:
    BareBlock() : Block(3) {}
};

TEST_F(BlockTest, BlockOfAForeignClassIsRefused) {
    const PtrRef<BareBlock> block = new BareBlock;
    EXPECT_EQ(Block::INVALID_BLOCK, block->blockType());
    Create();
    const PtrRef<Database> database = WriteDatabase(m_file, "a", 0);
    ExpectRefused(database->writeBlock(block.p()),
                  {"Block::zrfxBlock() not implemented in derived class",
                   "Cannot write block, weak validity check failed. (block id 3)."});
}

// Nodes.

TEST_F(BlockTest, NodesThatDoNotFitAreRefused) {
    const PtrRef<NodeBlock> with = new NodeBlock(1, true);
    const PtrRef<NodeBlock> without = new NodeBlock(2, false);
    const std::string needsId =
        Misuse("addNode: the block was built with node ids, but none is given");
    const std::string idsDiffer = "setNodes: 0 node ids given for 1 nodes, expected 1";
    const std::string dataIdsDiffer = "setNodeData: 0 node ids given for 1 nodes, expected 1";
    const std::string isNull = "Given pointer to node coordinates was NULL. (block id 2)";
    const float xyz[] = {1, 2, 3};
    ExpectRefused(with->addNode(0, 0, 0), {needsId});
    ExpectRefused(without->setNodes(Floats{1, 2, 3, 4}, {}),
                  {Misuse("setNodes: 4 coordinates given, which are not three per node")});
    ExpectRefused(with->setNodes(Floats{1, 2, 3}, {}), {Misuse(idsDiffer)});
    ExpectRefused(without->setNodeData(nullptr, 1, nullptr), {isNull});
    ExpectRefused(with->setNodeData(xyz, 1, nullptr), {Misuse(dataIdsDiffer)});
    EXPECT_EQ(0u, with->nodeCount() + without->nodeCount());
    EXPECT_EQ(-1, with->nodeIndex(3));
}

TEST_F(BlockTest, NodeDataIsReadInPlaceAndFreeAgainOnceWritten) {
    Floats xyz{0, 0, 0, 1.5f, 2, 3};
    Ints ids{40, 4};
    const PtrRef<NodeBlock> nodes = new NodeBlock(1, true);
    ASSERT_TRUE(nodes->setNodeData(xyz.data(), 2, ids.data()));
    EXPECT_EQ(xyz.data(), nodes->nodeData());
    EXPECT_EQ(ids.data(), nodes->nodeIdData());
    EXPECT_EQ(1, nodes->nodeIndex(4));
    const std::string before = Describe(*nodes);
    Create();
    const PtrRef<Database> database = WriteDatabase(m_file, "a", 0);
    ASSERT_TRUE(database->writeBlock(nodes.p()));
    xyz.assign(6, -1.0f);
    ids.assign(2, -1);
    EXPECT_EQ(before, Describe(*database->blockById(Block::NODES, 1)));
    EXPECT_TRUE(m_file.close());
}

TEST_F(BlockTest, AddingToNodesThatAreReferredToCopiesThem) {
    const Floats xyz{0, 0, 0, 1.5f, 2, 3};
    const PtrRef<NodeBlock> nodes = new NodeBlock(1, false);
    ASSERT_TRUE(nodes->setNodeData(xyz.data(), 2, nullptr));
    EXPECT_TRUE(nodes->addNode(7, 8, 9));
    EXPECT_THAT(xyz, ElementsAre(0, 0, 0, 1.5f, 2, 3));
    EXPECT_THAT(nodes->nodes(),
                ElementsAre(nuo::Vec3f(0, 0, 0), nuo::Vec3f(1.5f, 2, 3), nuo::Vec3f(7, 8, 9)));
}

TEST_F(BlockTest, DoublesAreRoundedAndSpansAreReadInPlace) {
    const std::vector<double> xyz{0.1, 1e300, -2, 1, 2, 3};
    const PtrRef<NodeBlock> nodes = new NodeBlock(1, true);
    ASSERT_TRUE(nodes->setNodes(xyz, Ints{4, 9}));
    EXPECT_THAT(nodes->coordinates(),
                ElementsAre(0.1f, std::numeric_limits<float>::infinity(), -2, 1, 2, 3));
    EXPECT_THAT(nodes->ids(), ElementsAre(4, 9));
    const Floats floats(6, 1.5f);
    ASSERT_TRUE(nodes->setNodeData(floats, kTwoIds));
    EXPECT_EQ(floats.data(), nodes->coordinates().data());
    const PtrRef<ResultValuesBlock> tensors =
        new ResultValuesBlock(1, ResultValuesBlock::TENSOR6D, true);
    ASSERT_TRUE(tensors->setResultValues(xyz, Ints{7}));
    ASSERT_TRUE(tensors->addResultValue6d(1, 2, 3, 4, 5, 6, 8));
    EXPECT_THAT(tensors->values().size(), 12u);
    EXPECT_THAT(tensors->itemIds(), ElementsAre(7, 8));
    EXPECT_EQ(6, tensors->values()[11]);
    const PtrRef<ResultValuesBlock> vectors =
        new ResultValuesBlock(2, ResultValuesBlock::VECTOR3D, false);
    ASSERT_TRUE(vectors->setResultValues(std::array<double, 3>{1, 2.5, 3}));
    EXPECT_THAT(vectors->resultValues(), ElementsAre(1, 2.5f, 3));
}

TEST_F(BlockTest, ArraysThatNoFileCanHoldAreRefusedWhenTheyAreSet) {
    const float value = 0;
    const int index = 0;
    const std::string end =
        " bytes are more than a file can hold in one array, which is less than 4 GiB";
    const PtrRef<NodeBlock> nodes = new NodeBlock(1, false);
    ExpectRefused(nodes->setNodeData(&value, 357913942, nullptr),
                  {"setNodeData: 357913942 items of 12" + end});
    const PtrRef<ElementBlock> elements = new ElementBlock(1, false, false);
    ExpectRefused(elements->addElementData(ElementBlock::HEXAHEDRONS_20, &index, 53687092, nullptr),
                  {"addElementData: 53687092 items of 80" + end});
    const PtrRef<ResultValuesBlock> tensors =
        new ResultValuesBlock(1, ResultValuesBlock::TENSOR6D, false);
    ExpectRefused(tensors->setResultValueData(&value, 178956971, nullptr),
                  {"setResultValueData: 178956971 items of 24" + end});
}

TEST_F(BlockTest, NodesAreFoundByIdAfterEveryChange) {
    const PtrRef<NodeBlock> nodes = new NodeBlock(1, true);
    nodes->addNode(0, 0, 0, 9);
    EXPECT_EQ(-1, nodes->nodeIndex(3));
    nodes->addNode(0, 0, 0, 3);
    EXPECT_EQ(1, nodes->nodeIndex(3));
    nodes->setNodes(Floats{0, 0, 0}, {5});
    EXPECT_EQ(-1, nodes->nodeIndex(9));
    EXPECT_EQ(0, nodes->nodeIndex(5));
}

// Elements.

TEST_F(BlockTest, EveryElementTypeIsStoredAndComesBack) {
    constexpr std::size_t kNodes[] = {1, 2, 3, 3, 6, 4, 8, 9, 5, 13, 4, 10, 8, 20, 6, 15};
    const PtrRef<ElementBlock> block = new ElementBlock(1, false, false);
    block->setNodeBlockId(1);
    for (int i = ElementBlock::POINTS; i < ElementBlock::POLYHEDRONS; ++i) {
        const auto type = static_cast<ElementBlock::ElementType>(i);
        EXPECT_EQ(kNodes[i], ElementBlock::nodesPerElement(type));
        EXPECT_EQ(type >= ElementBlock::PYRAMIDS, ElementBlock::isVolumeElement(type));
        Ints nodes(2 * kNodes[i]);
        for (std::size_t at = 0; at < nodes.size(); ++at) nodes[at] = static_cast<int>(at * at);
        EXPECT_TRUE(block->addElements(type, nodes, {}));
    }
    EXPECT_EQ(std::size(kNodes), block->elementGroupCount());
    EXPECT_EQ(Describe(*block), Describe(*WriteAndRead(*block)));
}

TEST_F(BlockTest, ElementsThatDoNotFitAreRefused) {
    const PtrRef<ElementBlock> with = new ElementBlock(1, true, false);
    const PtrRef<ElementBlock> without = new ElementBlock(2, false, false);
    const int nodes[] = {0, 1, 2, 3};
    const auto wrongType = static_cast<ElementBlock::ElementType>(18);
    const Faces threeFaces = {{0, 1, 2}, {0, 1, 3}, {1, 2, 3}};
    const Faces faceOfTwoNodes = {{0, 1, 2}, {0, 1, 3}, {1, 2, 3}, {0, 3}};
    Ints out;
    ExpectRefused(
        without->addElement(ElementBlock::QUADS, {1, 2, 3, 4}, 1),
        {Misuse("addElement: the block was built without element ids, but ids are given")});
    ExpectRefused(without->addElement(ElementBlock::BEAMS, {1, -1}),
                  {Misuse("addElement: a node index or id is negative")});
    ExpectRefused(without->addElements(ElementBlock::BEAMS, {1, 2, 3}, {}),
                  {Misuse("addElements: BEAMS take 2 nodes each, 3 given do not divide")});
    ExpectRefused(with->addElements(ElementBlock::BEAMS, {1, 2, 3, 4}, {1}),
                  {Misuse("addElements: 1 ids given for 2 elements")});
    ExpectRefused(without->addElementData(ElementBlock::POLYHEDRONS, nodes, 1, nullptr),
                  {Misuse("addElementData: elements of type 16 have no fixed number of nodes")});
    ExpectRefused(without->addElements(wrongType, {1, 2}, {}),
                  {"Invalid type id 18 given (ElementBlock::ElementType)",
                   Misuse("addElements: elements of type 18 have no fixed number of nodes")});
    ExpectRefused(without->addPolyhedron(threeFaces),
                  {Misuse("addPolyhedron: 3 faces given, expected 4 at least")});
    ExpectRefused(without->addPolyhedron(faceOfTwoNodes),
                  {Misuse("addPolyhedron: face 3 has less than 3 nodes, or a negative one")});
    ExpectRefused(!ElementBlock::elementSurface(ElementBlock::QUADS, 1).empty(),
                  {Assertion("surfaceIndex < surfacesPerElement(elementType)") +
                       " 'elementSurface: QUADS have 1 surfaces, 1 asked for'",
                   "Invalid surface index"});
    EXPECT_EQ(0u, with->elementGroupCount() + without->elementGroupCount());
    ASSERT_TRUE(without->addElement(ElementBlock::QUADS, {0, 1, 2, 3}));
    ExpectRefused(without->polyhedronsFaceCounts(4, &out),
                  {"Given group index 4 out of range [0, 0]"});
}

TEST_F(BlockTest, EmptyBlocksWithIdsComeBackWithIds) {
    const PtrRef<ElementBlock> elements = new ElementBlock(7, true, false);
    elements->setNodeBlockId(1);
    EXPECT_TRUE(static_cast<const ElementBlock&>(*WriteAndRead(*elements)).hasElementIds());
    const PtrRef<NodeBlock> nodes = new NodeBlock(7, true);
    EXPECT_TRUE(static_cast<const NodeBlock&>(*WriteAndRead(*nodes)).hasNodeIds());
}

TEST_F(BlockTest, ElementDataIsReadInPlaceAndExtendedAsACopy) {
    Ints nodes{0, 1, 1, 2};
    const Ints ids{8, 9};
    const PtrRef<ElementBlock> block = new ElementBlock(1, true, false);
    ASSERT_TRUE(block->addElementData(ElementBlock::BEAMS, nodes.data(), 2, ids.data()));
    EXPECT_EQ(nodes.data(), block->elementNodeData(0));
    EXPECT_EQ(ids.data(), block->elementIdData(0));
    ASSERT_TRUE(block->addElement(ElementBlock::BEAMS, {2, 3}, 10));
    ASSERT_TRUE(block->addElementData(ElementBlock::BEAMS, nodes.data(), 2, ids.data()));
    EXPECT_EQ(2u, block->elementGroupCount());
    EXPECT_EQ(5u, block->elementCount());
    Ints read;
    ASSERT_TRUE(block->elementGroup(0, &read, nullptr));
    EXPECT_THAT(read, ElementsAre(0, 1, 1, 2, 2, 3));
    EXPECT_EQ(2, block->elementIndex(10));
    ASSERT_TRUE(block->addElement(ElementBlock::BEAMS, {2, 3}, 11));
    EXPECT_EQ(5, block->elementIndex(11));
    EXPECT_EQ(-1, block->elementIndex(12));
    EXPECT_THAT(block->elementGroupIds(1), ElementsAre(8, 9, 11));
    for (const auto output :
         {&ElementBlock::elementIndices, &ElementBlock::polyhedronsElementNodeCounts,
          &ElementBlock::polyhedronsFaceCounts, &ElementBlock::polyhedronsFaceNodeCounts,
          &ElementBlock::polyhedronsLocalNodes}) {
        ExpectRefused(((*block).*output)(0, nullptr), {"Supplied output is NULL (elementNodes)"});
    }
    ExpectRefused(block->elementGroup(0, nullptr, &read),
                  {"Supplied output is NULL (elementNodes)"});
    EXPECT_THAT(nodes, ElementsAre(0, 1, 1, 2));
}

TEST_F(BlockTest, PolyhedronsAreStoredByLocalNodes) {
    const PtrRef<ElementBlock> block = new ElementBlock(1, false, false);
    block->setNodeBlockId(1);
    ASSERT_TRUE(block->addPolyhedron({{90, 70, 80}, {90, 60, 70}, {70, 60, 80}, {90, 80, 60}}));
    ASSERT_TRUE(block->addPolyhedron({{1, 2, 3, 4}, {1, 5, 2}, {2, 5, 3}, {3, 5, 4}, {4, 5, 1}}));
    const PtrRef<Block> read = WriteAndRead(*block);
    const auto& elements = static_cast<const ElementBlock&>(*read);
    ASSERT_EQ(1u, elements.elementGroupCount());
    Ints nodes, nodeCounts, faceCounts, faceNodeCounts, localNodes;
    ASSERT_TRUE(elements.elementGroup(0, &nodes, nullptr));
    ASSERT_TRUE(elements.polyhedronsElementNodeCounts(0, &nodeCounts));
    ASSERT_TRUE(elements.polyhedronsFaceCounts(0, &faceCounts));
    ASSERT_TRUE(elements.polyhedronsFaceNodeCounts(0, &faceNodeCounts));
    ASSERT_TRUE(elements.polyhedronsLocalNodes(0, &localNodes));
    EXPECT_THAT(nodes, ElementsAre(90, 70, 80, 60, 1, 2, 3, 4, 5));
    EXPECT_THAT(nodeCounts, ElementsAre(4, 5));
    EXPECT_THAT(faceCounts, ElementsAre(4, 5));
    EXPECT_THAT(faceNodeCounts, ElementsAre(3, 3, 3, 3, 4, 3, 3, 3, 3));
    EXPECT_THAT(localNodes, ElementsAre(0, 1, 2, 0, 3, 1, 1, 3, 2, 0, 2, 3,  //
                                        0, 1, 2, 3, 0, 4, 1, 1, 4, 2, 2, 4, 3, 3, 4, 0));
}

// Geometry.

TEST_F(BlockTest, PartsThatDoNotFitAreRefused) {
    const PtrRef<GeometryBlock> block = new GeometryBlock(2);
    ASSERT_TRUE(block->addElementBlockForState(0, 1, 10, 5));
    const std::string noGeometry =
        "Invalid geometry index: 2. This geometry block has 2 geometry(ies).";
    ExpectRefused(block->addElementBlock(2, 1, 1), {noGeometry});
    ExpectRefused(block->partCount(0, 1) > 0, {"State index 1 not found in this geometry block"});
    ExpectRefused(block->addElementBlockForState(0, 1, 11, 5),
                  {"Found existing part with same block id (1)."});
    ExpectRefused(block->addElementBlockForState(0, 2, 10, 5),
                  {"Found existing part with same part id (10)."});
    ExpectRefused(block->setElementBlocksForState(1, {1, -2}, 5, {1, 2}),
                  {"Invalid block id (-2) specified for part at index 1. (state id 5)."});
    ExpectRefused(block->setElementBlocksForState(1, {1, 2, 3}, 5, {1, 2, 1}),
                  {"Non unique part id detected (id 1 at idx 0 and idx 2) (state id 5)."});
    ExpectRefused(block->setElementBlocksForState(1, {1, 2}, 5, {1}),
                  {Misuse("setElementBlocks: 1 part ids given for 2 element blocks")});
    ExpectRefused(block->addElementBlockForState(0, 3, -1, 6), {"partId cannot be negative."});
    EXPECT_EQ(1u, block->stateCount());
    EXPECT_EQ(0u, block->partCount(1, 0));
    // The first part that does not fit is named, whichever of its ids it is.
    ASSERT_TRUE(block->addElementBlockForState(0, 2, 20, 5));
    ExpectRefused(block->addElementBlockForState(0, 2, 10, 5),
                  {"Found existing part with same part id (10)."});
    ASSERT_TRUE(block->setElementBlocksForState(0, {3}, 5, {30}));
    EXPECT_TRUE(block->addElementBlockForState(0, 1, 10, 5));
    ExpectRefused(block->addElementBlockForState(0, 3, 40, 5),
                  {"Found existing part with same block id (3)."});
    const PtrRef<GeometryBlock> empty = new GeometryBlock(1);
    ExpectRefused(empty->addElementBlock(0, 3, -1), {"partId cannot be negative."});
    EXPECT_EQ(0u, empty->stateCount());
    const PtrRef<GeometryInfoBlock> names = new GeometryInfoBlock(1);
    ExpectRefused(names->addPartInfo(0, -1, "a"), {"partId cannot be negative."});
    EXPECT_EQ(0u, names->partCount(0));
    const PtrRef<GeometryBlock> none = new GeometryBlock(0);
    EXPECT_THAT(TakeTexts(), ElementsAre("geometryCountPerState cannot be 0"));
}

TEST_F(BlockTest, StatesOfAGeometryMustHaveTheSameParts) {
    const PtrRef<GeometryBlock> block = new GeometryBlock(1);
    ASSERT_TRUE(block->setElementBlocksForState(0, {1, 2}, 4, {10, 20}));
    ASSERT_TRUE(block->addElementBlockForState(0, 3, 10, 6));
    ExpectRefused(block->checkValidity(),
                  {"Part count error: state id 6 defines 1 parts, whereas previous states "
                   "defined 2 parts."});
    ASSERT_TRUE(block->addElementBlockForState(0, 1, 30, 6));
    ExpectRefused(block->checkValidity(),
                  {"Part id error: state id 6 defines part id 30 for part at index 1, whereas "
                   "previous states defined part id 20."});
    ASSERT_TRUE(block->setElementBlocksForState(0, {3, 1}, 6, {10, 20}));
    EXPECT_TRUE(block->checkValidity());
}

// States.

TEST_F(BlockTest, StatesAndGroupsThatDoNotFitAreRefused) {
    const PtrRef<StateInfoBlock> block = new StateInfoBlock;
    ASSERT_TRUE(block->addStateInfo(1, "", 0, StateInfoBlock::TIME));
    ASSERT_TRUE(block->addGroupInfo(2, "", {1}));
    const std::string overlap = " already exist. Note that state and group ids cannot overlap.";
    const std::string index = "State info index 9 does not exist.";
    ExpectRefused(block->addStateInfo(3, "", 0, static_cast<StateInfoBlock::ReferenceValueType>(4)),
                  {"Invalid reference value type 4 supplied."});
    for (const int id : {1, 2}) {
        ExpectRefused(block->addStateInfo(id, "", 0, StateInfoBlock::TIME),
                      {"State/group " + std::to_string(id) + overlap});
        ExpectRefused(block->addGroupInfo(id, "", {}),
                      {"Group/state id " + std::to_string(id) + overlap});
    }
    ExpectRefused(block->addGroupInfo(-1, "", {}), {"groupId must be >= 0"});
    ExpectRefused(!block->groupStateIds(9).empty(), {index});
    EXPECT_EQ(nuo::Str("State 1"), block->stateName(0));
    EXPECT_EQ(nuo::Str("Group 2"), block->groupName(0));
    EXPECT_EQ(-1, block->stateIndex(9));
}

TEST_F(BlockTest, StatesBelongToTheirLastGroup) {
    const PtrRef<StateInfoBlock> block = new StateInfoBlock;
    for (const int id : {7, 5, 3}) block->addStateInfo(id, "", 0, StateInfoBlock::TIME);
    EXPECT_TRUE(block->addGroupInfo(10, "", {3, 7, 9, 7, 5}));
    EXPECT_THAT(block->groupStateIds(0), ElementsAre(7, 5, 3));
    EXPECT_TRUE(block->addGroupInfo(11, "", {5}));
    EXPECT_THAT(block->groupStateIds(0), ElementsAre(7, 3));
    EXPECT_THAT(block->groupStateIds(1), ElementsAre(5));
    EXPECT_EQ(2, block->stateIndex(3));
    EXPECT_EQ(12, block->unusedStateId());
}

// Results.

TEST_F(BlockTest, ResultsOfWrongKindAreReported) {
    const auto messagesOf = [this](int type, int mapping) {
        const PtrRef<ResultBlock> block =
            new ResultBlock(1, static_cast<ResultBlock::ResultType>(type),
                            static_cast<ResultBlock::ResultMapping>(mapping));
        return TakeTexts();
    };
    EXPECT_THAT(messagesOf(4, 0), ElementsAre("Invalid result type 4 supplied."));
    EXPECT_THAT(messagesOf(2, 2),
                ElementsAre("Invalid result mapping type 2 supplied.",
                            "Invalid result mapping type for displacements supplied (NODE_MAPPING "
                            "required)."));
    const PtrRef<ResultBlock> block =
        new ResultBlock(1, ResultBlock::UNDEFINED_TYPE, ResultBlock::UNDEFINED_MAPPING);
    TakeTexts();
    EXPECT_EQ(ResultBlock::SCALAR, block->resultType());
    TakeTexts();
    block->setStrainType(static_cast<ResultBlock::StrainType>(7));
    ExpectRefused(block->strainType() != ResultBlock::NO_STRAIN,
                  {"Invalid type id 7 given (ResultBlock::StrainType)."});
}

TEST_F(BlockTest, StatesOfResultsAreAddedReplacedAndRefused) {
    const PtrRef<ResultBlock> block =
        new ResultBlock(1, ResultBlock::SCALAR, ResultBlock::NODE_MAPPING);
    ExpectRefused(block->addResultValuesBlock(-1, 3),
                  {Misuse("addResultValuesBlock: values block id -1 is negative")});
    ExpectRefused(!block->resultValuesBlocks(0).empty(),
                  {Misuse("resultValuesBlocks: state 0 of 0 asked for")});
    EXPECT_EQ(0u, block->stateCount());
    EXPECT_TRUE(block->addResultValuesBlock(4, 30));
    EXPECT_TRUE(block->addResultValuesBlock(5, 20));
    EXPECT_TRUE(block->addResultValuesBlock(6, 30));
    ExpectRefused(block->setResultValuesBlocks({7, -8}, 40),
                  {Misuse("setResultValuesBlocks: values block id -8 is negative")});
    EXPECT_TRUE(block->setResultValuesBlocks({7, 8}, 20));
    EXPECT_THAT(block->resultValuesBlocks(0), ElementsAre(4, 6));
    EXPECT_THAT(block->resultValuesBlocks(1), ElementsAre(7, 8));
    EXPECT_EQ(1, block->stateIndex(20));
    EXPECT_EQ(-1, block->stateIndex(5));
    block->addAttribute("unit", "MPa");
    block->addAttribute("unit", "GPa");
    EXPECT_EQ(nuo::Str("GPa"), block->attribute("unit"));
    EXPECT_TRUE(block->attribute("none").isEmpty());
    EXPECT_EQ(1u, block->attributeNames().size());
}

TEST_F(BlockTest, ValuesThatDoNotFitAreRefused) {
    using Values = ResultValuesBlock;
    const PtrRef<Values> scalars = new Values(1, Values::SCALAR1D, false);
    const PtrRef<Values> vectors = new Values(2, Values::VECTOR3D, true);
    const std::string noIds =
        "ResultValuesBlock configured to use mapToItemIds, but no IDs provided";
    const std::string ids =
        "ResultValuesBlock configured to not use mapToItemIds, but IDs are provided";
    ExpectRefused(scalars->allocateResultValues(-1),
                  {Misuse("allocateResultValues: -1 items asked for")});
    ExpectRefused(scalars->setResultValues({1, 2}, {1, 2}), {ids});
    ExpectRefused(vectors->setResultValues({1, 2, 3}, {}), {noIds});
    ExpectRefused(vectors->setResultValues({1, 2, 3, 4, 5}, {1, 2}),
                  {Misuse("setResultValues: 5 values given, which are not 3 per item")});
    ExpectRefused(vectors->setResultValues({1, 2, 3, 4, 5, 6}, {1}),
                  {Misuse("setResultValues: 1 item ids given for 2 items")});
    ExpectRefused(vectors->setResultValues({1, 2, 3}, {1, 2}),
                  {Misuse("setResultValues: 2 item ids given for 1 items")});
    ExpectRefused(scalars->addResultValue3d(1, 2, 3),
                  {Misuse("addResultValue3d: the block has 1 values per item, not 3")});
    ExpectRefused(scalars->setResultValueData(nullptr, 1, nullptr),
                  {Misuse("setResultValueData: no values are given")});
    ExpectRefused(scalars->setMapToBlockId(1, Block::RESULT),
                  {Misuse("setMapToBlockId: values belong to NODES or ELEMENTS, not to RESULT")});
    ExpectRefused(!scalars->resultValues().empty(),
                  {"Dimension mismatch, requested scalars, but could not find any"});
    EXPECT_TRUE(vectors->setResultValues({1, 2, 3, 4, 5, 6}, {1, 2}));
    EXPECT_EQ(2u, vectors->itemCount());
    EXPECT_THAT(vectors->mapToItemIds(), ElementsAre(1, 2));
    const PtrRef<Values> plane = new Values(4, static_cast<Values::ResultValueDimension>(2), false);
    EXPECT_THAT(TakeTexts(), ElementsAre("Invalid dimension supplied."));
    EXPECT_FALSE(plane->setResultValues({1, 2}, {}));
    EXPECT_THAT(plane->resultValues(), IsEmpty());
    EXPECT_THAT(TakeTexts(), ElementsAre("Result values block with invalid dimension setting"));
}

TEST_F(BlockTest, ValueDataIsReadInPlace) {
    const Floats data{1, 2, 3, 4, 5, 6};
    const Ints ids{7, 8};
    const PtrRef<ResultValuesBlock> vectors =
        new ResultValuesBlock(1, ResultValuesBlock::VECTOR3D, true);
    ASSERT_TRUE(vectors->setResultValueData(data.data(), 2, ids.data()));
    EXPECT_EQ(data.data(), vectors->resultValueData());
    EXPECT_EQ(ids.data(), vectors->mapToItemIdData());
    const PtrRef<ResultValuesBlock> tensor =
        new ResultValuesBlock(2, ResultValuesBlock::TENSOR6D, false);
    ASSERT_TRUE(tensor->setResultValueData(data.data(), 1, nullptr));
    EXPECT_EQ(data.data(), tensor->resultValueData());
    EXPECT_EQ(1u, tensor->itemCount());
}

// Transformations and sets.

TEST_F(BlockTest, TransformationsThatDoNotFitAreRefused) {
    const PtrRef<TransformationResultBlock> move = new TransformationResultBlock(3);
    const PtrRef<TransformationResultValuesBlock> moved = new TransformationResultValuesBlock(4);
    EXPECT_EQ(nuo::Str("Transformation result 3"), move->name());
    ExpectRefused(move->addTransformationResultValuesBlock(-1, 0),
                  {Misuse("addTransformationResultValuesBlock: values block id -1 is negative")});
    ExpectRefused(move->transformationResultValuesBlockCount(0) > 0,
                  {Misuse("transformationResultValuesBlocks: state 0 of 0 asked for")});
    ExpectRefused(moved->setMapToBlockId(1, Block::NODES),
                  {Assertion("(blockType == Block::ELEMENTS)") +
                   " 'setMapToBlockId: ELEMENTS are moved, not NODES'"});
    Block::BlockType type = Block::NODES;
    EXPECT_EQ(-1, moved->mapToBlockId(&type));
    EXPECT_EQ(Block::INVALID_BLOCK, type);
}

TEST_F(BlockTest, ItemsOfSetsGoIntoTheGroupOfTheirBlock) {
    const PtrRef<SetBlock> set = new SetBlock(1, false);
    const Ints items{5, 6};
    SetItemGroup* group = new SetItemGroup;
    group->setBlockId(2);
    group->setItemData(items.data(), 2);
    set->addItemGroup(group);
    set->addItemGroup(group);  // it is the set's already
    set->addItem(1, 1);
    set->addItem(7, 2);
    set->addItem(2, 1);
    ASSERT_EQ(2u, set->itemGroupCount());
    EXPECT_EQ(group, set->itemGroup(0));
    EXPECT_EQ(3u, group->itemCount());
    EXPECT_EQ(7, group->itemIdOrIndex(2));
    EXPECT_EQ(2, set->itemGroup(1)->itemIdOrIndex(1));
    EXPECT_EQ(5u, set->totalItemCount());
    EXPECT_THAT(items, ElementsAre(5, 6));
    ExpectRefused(set->itemGroup(2) != nullptr, {"Item group index out of bounds"});
    ExpectRefused(group->itemIdOrIndex(3) >= 0, {Misuse("itemIdOrIndex: item 3 of 3 asked for")});
    group->setBlockId(1);  // the last group of a block gets its items
    set->addItem(8, 2);
    set->addItem(9, 1);
    set->itemGroup(1)->setBlockId(5);
    set->addItem(10, 1);
    EXPECT_EQ(8, set->itemGroup(2)->itemIdOrIndex(0));
    EXPECT_EQ(9, set->itemGroup(1)->itemIdOrIndex(2));
    EXPECT_EQ(10, group->itemIdOrIndex(3));
    set->setItemType(static_cast<SetBlock::ItemType>(5));
    ExpectRefused(set->itemType() == SetBlock::ELEMENT_ITEMS,
                  {"Invalid type id 5 given (SetBlock::ItemType)."});
    set->addItemGroup(nullptr);
    set->addItems(nullptr, 3, 1);
    EXPECT_THAT(TakeTexts(), ElementsAre(Misuse("addItemGroup: the group is null"),
                                         Misuse("addItems: the pointer to 3 items is null")));
}

TEST_F(BlockTest, BlocksThatWereReadKnowTheIdsInThem) {
    Create();
    const PtrRef<Database> database = WriteDatabase(m_file, "a", 0);
    const PtrRef<StateInfoBlock> states = new StateInfoBlock;
    for (const int id : {7, 5}) states->addStateInfo(id, "", 0, StateInfoBlock::TIME);
    states->addGroupInfo(10, "", {5});
    const PtrRef<ResultBlock> result =
        new ResultBlock(1, ResultBlock::SCALAR, ResultBlock::NODE_MAPPING);
    result->setResultId(1);
    result->addResultValuesBlock(1, 7);
    result->addAttribute("unit", "MPa");
    ASSERT_TRUE(database->writeBlock(states.p()) && database->writeBlock(result.p()));

    const PtrRef<Block> read = database->blockById(Block::RESULT, 1);
    auto& block = static_cast<ResultBlock&>(*read);
    EXPECT_EQ(0, block.stateIndex(7));
    EXPECT_TRUE(block.addResultValuesBlock(2, 7));
    EXPECT_THAT(block.resultValuesBlocks(0), ElementsAre(1, 2));
    block.addAttribute("unit", "GPa");
    EXPECT_EQ(nuo::Str("GPa"), block.attribute("unit"));
    EXPECT_EQ(1u, block.attributeNames().size());
    const PtrRef<Block> readStates = database->blockById(Block::STATE_INFO, 1);
    auto& info = static_cast<StateInfoBlock&>(*readStates);
    EXPECT_EQ(1, info.stateIndex(5));
    EXPECT_THAT(info.groupStateIds(0), ElementsAre(5));
    EXPECT_FALSE(info.addStateInfo(10, "", 0, StateInfoBlock::TIME));
    TakeTexts();
}

}  // namespace
