#include "blocks/ZRFxBlock.h"

#include <climits>
#include <limits>

#include "support/ArchiveTest.h"
#include "support/SampleBlocks.h"

namespace unstruct {
namespace {

using test::Damage;
using test::Entries;
using test::Ints;
using test::NewInts;
using test::SampleBlock;

// A second archive of a test, with a database of the same id.
struct Copy {
    Copy() {
        EXPECT_TRUE(access.Open(&file, ZRZipAccessMode::CREATE));
        EXPECT_TRUE(
            access.WriteXmlFile("ZRF.xml", *ZRFxAccess::CreateMainDocument("", "", 0), false));
        EXPECT_TRUE(test::CreateDatabase(database, 1));
    }
    Entries BlockEntries() {
        EXPECT_TRUE(database.WriteTOC());
        Entries entries = test::Unpack(access);
        entries.erase("ZRF.xml");
        return entries;
    }

    ZRFxZipMemFile file;
    ZRFxAccess access;
    ZRFxDatabase database{&access};
};

template <typename BlockClass>
BlockClass& As(ZRFxBlock& block) {
    return dynamic_cast<BlockClass&>(block);
}

template <typename... Nodes>
void SetConnects(ZRFxBlock& block, Nodes... indices) {
    const std::int32_t nodes[] = {indices...};
    As<ZRFxIndexedFaceSetBlock>(block).SetConnects(nodes, sizeof...(indices));
}

template <typename... Starts>
void SetPolygons(ZRFxBlock& block, Starts... positions) {
    const std::int32_t starts[] = {positions..., 0};
    As<ZRFxIndexedFaceSetBlock>(block).SetPolygons(starts, sizeof...(positions));
}

// Expects that the block is taken, read back, and written again as the same entries.
void ExpectReadBack(ZRFxBlock& block) {
    Copy first;
    Copy second;
    ASSERT_TRUE(block.WriteBlock(&first.database) && first.database.WriteTOC());
    ZRFxDatabase parsed(&first.access);
    ASSERT_TRUE(parsed.Parse(1) && parsed.GetBlock(0)->ReadBlock());
    ASSERT_TRUE(parsed.GetBlock(0)->WriteBlock(&second.database));
    EXPECT_EQ(first.BlockEntries(), second.BlockEntries());
}

class BlockOfEachType : public test::DatabaseTest, public testing::WithParamInterface<int> {};

TEST_P(BlockOfEachType, ReadBackAndWrittenAgainGivesTheSameEntries) {
    for (const bool textMode : {false, true}) {
        Copy first;
        Copy second;
        first.database.SetTextMode(textMode);
        second.database.SetTextMode(textMode);
        ASSERT_TRUE(SampleBlock(GetParam(), 12345)->WriteBlock(&first.database));
        ASSERT_TRUE(first.database.WriteTOC());

        ZRFxDatabase parsed(&first.access);
        ASSERT_TRUE(parsed.Parse(1));
        ZRFxBlock* block = parsed.GetBlockByID(GetParam(), 12345);
        ASSERT_TRUE(block);
        EXPECT_FALSE(block->IsRead());
        ASSERT_TRUE(block->ReadBlock() && block->ReadBlock());
        EXPECT_TRUE(block->IsRead());
        ASSERT_TRUE(block->WriteBlock(&second.database));
        EXPECT_EQ(block->GetDatabase(), &parsed);
        EXPECT_EQ(first.BlockEntries(), second.BlockEntries());
        block->UnloadData();
        EXPECT_FALSE(block->IsRead());
        ASSERT_TRUE(block->ReadBlock() && block->WriteBlock(&second.database));
        EXPECT_EQ(first.BlockEntries(), second.BlockEntries());
        ExpectTexts({"Parsing ZRFx file..."});
    }
}

TEST_P(BlockOfEachType, RewrittenBlockReplacesAllFilesWhateverItsFormWas) {
    for (const bool wasText : {false, true}) {
        for (const bool isText : {false, true}) {
            Copy once;
            once.database.SetTextMode(isText);
            ASSERT_TRUE(SampleBlock(GetParam(), 1)->WriteBlock(&once.database));
            Copy twice;
            twice.database.SetTextMode(wasText);
            ASSERT_TRUE(SampleBlock(GetParam(), 1)->WriteBlock(&twice.database));
            twice.database.SetTextMode(isText);
            ASSERT_TRUE(SampleBlock(GetParam(), 1)->WriteBlock(&twice.database));
            EXPECT_EQ(twice.database.GetNumBlocks(), 1);
            EXPECT_EQ(once.BlockEntries(), twice.BlockEntries());
        }
    }
}

TEST_P(BlockOfEachType, RewrittenWithoutContentsLeavesNoOldFile) {
    Write(SampleBlock(GetParam(), 1));
    const nvf::ref<ZRFxBlock> empty = ZRFxBlock::Create(GetParam(), &m_database, 1);
    if (auto* values = dynamic_cast<ZRFxPositionResultValuesBlock*>(empty.p())) {
        values->m_iMapToBlockID = 1;
    }
    Write(empty);
    Copy once;
    ASSERT_TRUE(empty->WriteBlock(&once.database) && m_database.WriteTOC());
    Entries entries = test::Unpack(m_access);
    entries.erase("ZRF.xml");
    EXPECT_EQ(entries, once.BlockEntries());
    empty->UnloadData();
    EXPECT_TRUE(empty->ReadBlock());
}

TEST_P(BlockOfEachType, DocumentOfAnotherBlockIsRefused) {
    const std::string type = ZRFxBlockTypeName(GetParam()).Bytes();
    const std::string entry = DocumentOf(GetParam());
    const nvf::ref<ZRFxBlock> block = ZRFxBlock::Create(GetParam(), &m_database, 1);
    block->SetFileName(entry);
    Put(entry, "<Other ID=\"1\"/>");
    ExpectRefused(
        block->ReadBlock(),
        {"Illegal root element in " + type + " block Xml '" + entry + "'", "Invalid XML"});
    Put(entry, "<" + type + " ID=\"2\"/>");
    ExpectRefused(block->ReadBlock(),
                  {type + " block ID 2 in '" + entry + "' does not match ID 1 in Database-TOC",
                   "Invalid XML"});
}

TEST_P(BlockOfEachType, WithoutDatabaseNothingIsDone) {
    const nvf::ref<ZRFxBlock> block = ZRFxBlock::Create(GetParam(), nullptr, 1);
    ExpectAssertion(block->ReadBlock(), "m_pDatabase");
    ExpectAssertion(block->WriteBlock(), "m_pDatabase");
    ExpectAssertion(block->WriteBlock(nullptr), "pDatabase");
    block->ReadMetaData();
    TakeTexts();  // some have no meta data to read
}

INSTANTIATE_TEST_SUITE_P(All, BlockOfEachType, testing::ValuesIn(test::StoredTypes()),
                         [](const auto& test) { return ZRFxBlockTypeName(test.param).Bytes(); });

Damage InMemory(const char* name, int type, const char* messages, void (*apply)(ZRFxBlock&)) {
    return {name, type, nullptr, nullptr, nullptr, messages, apply};
}

using test::DamagedBlock;

TEST_P(DamagedBlock, IsRefusedAndLeavesAllAsItIs) {
    if (GetParam().file) ExpectUnreadable(GetParam());
    if (GetParam().apply) ExpectUnwritable(GetParam());
}

const std::vector<Damage> kDamages = {
    Damage("NodesMissing", BLOCK_NODES, ".txt", nullptr, nullptr,
           "Unable to read raw data from '@.dat', file not found.\n"
           "Could not read binary vector data.\n"
           "Error reading node data"),
    Damage("NodesOneTooFew", BLOCK_NODES, ".xml", "NumItems=\"3\"", "NumItems=\"4\"",
           "Number of specified items (4) does not match number of items (3) in '@.txt'\n"
           "Error reading node data"),
    Damage("NodesHuge", BLOCK_NODES, ".xml", "NumItems=\"3\"", "NumItems=\"99999999999\"",
           "Error reading node data"),
    Damage("NodeIDsOneTooMany", BLOCK_NODES, "-IDs.txt", nullptr, "1\n2\n3\n4\n",
           "Number of specified items (3) does not match number of items (4) in '@-IDs.txt'\n"
           "Error reading node IDs"),
    Damage("PolygonsCut", BLOCK_INDEXED_FACE_SET, ".txt", "4\n3\n2\n", "5\n3\n2\n",
           "^'#' holds 4 nodes of the last polygon, expected 5"),
    Damage("PolygonNodeZero", BLOCK_INDEXED_FACE_SET, ".txt", "\n2\n", "\n0\n",
           "^'#' holds node index -1 at position 1, expected none below 0",
           [](ZRFxBlock& b) { SetConnects(b, 0, -1, 2, 2, 1, 3, 4); }),
    Damage("PolygonCountDiffers", BLOCK_INDEXED_FACE_SET, ".xml", "NumPolygons=\"2\"",
           "NumPolygons=\"3\"", "^'#' holds 2 polygons, expected 3"),
    Damage("GeometryIndexTooLarge", BLOCK_GEOMETRY, ".xml", "Index=\"1\"", "Index=\"2\"",
           "Illegal Geometry Index specified in Geometry::State::Geometry block",
           [](ZRFxBlock& b) { As<ZRFxGeometryBlock>(b).SetGeometryCountPerState(1); }),
    Damage("GeometryOfNodes", BLOCK_GEOMETRY, ".xml", "<IndexedFaceSet", "<Nodes",
           "Only Elements and Indexed face sets are allowed in geometry spec",
           [](ZRFxBlock& b) {
               As<ZRFxGeometryBlock>(b).GetState(0)->AddPart(1, {9, 9, BLOCK_NODES, 9});
           }),
    Damage("GeometriesHuge", BLOCK_GEOMETRY, ".xml", "PerState=\"2\"", "PerState=\"2000000000\"",
           "^'@.xml' holds 2000000000 geometries per state, expected 1",
           [](ZRFxBlock& b) { As<ZRFxGeometryBlock>(b).SetGeometryCountPerState(2000000000); }),
    Damage("GeometryInfoCountMissing", BLOCK_GEOMETRY_INFO, ".xml", "GeometryCountPerState",
           "Count", "GeometryInfo::GeometryCountPerState invalid",
           [](ZRFxBlock& b) { As<ZRFxGeometryInfoBlock>(b).SetGeometryCountPerState(100001); }),
    Damage("GeometryInfoIndexTooLarge", BLOCK_GEOMETRY_INFO, ".xml", "Index=\"1\"", "Index=\"2\"",
           "GeometryInfo::Geometry::Index invalid"),
    Damage("ResultValuesUnrecorded", BLOCK_RESULT_VALUES, ".xml", "<File", "<Other",
           "Cannot get info from Xml (Result values block ID 1)"),
    Damage("ResultValuesOfTwoDimensions", BLOCK_RESULT_VALUES, ".xml", "NumDimensions=\"6\"",
           "NumDimensions=\"2\"", "Illegal number of dimensions for result values",
           [](ZRFxBlock& b) { As<ZRFxResultValuesBlock>(b).SetNumDimensions(2); }),
    Damage("ResultIDsMissing", BLOCK_RESULT_VALUES, ".xml", "IDs=", "Ids=",
           "Unable to read raw data from 'Database001\\.dat', file not found.\n"
           "Could not read binary int data.\n"
           "Error reading result IDs"),
    Damage("ResultStateNoNumber", BLOCK_RESULTS, ".xml", "<Value1>2<", "<Value1>two<",
           "Invalid XML"),
    Damage("StateListNoNumber", BLOCK_STATE_INFO, ".xml", "<Value0>4<", "<Value0>4.5<",
           "Invalid XML"),
    Damage("MatrixRowMissing", BLOCK_TRANSFORMATION_RESULT_VALUES, ".xml", " 8.500000 ",
           " 8,500000 ", "Cannot read matrix from Xml (Transformation result values block ID 1"),
    Damage("SetOfNodes", BLOCK_SET, ".xml", "BlockType=\"2\"", "BlockType=\"0\"",
           "Only element sets are supported",
           [](ZRFxBlock& b) { As<ZRFxSetBlock>(b).GetItems(0)->m_iBlockType = BLOCK_NODES; }),
    Damage("SetItemNegative", BLOCK_SET, "-0001.txt", "0\n", "-7\n",
           "^'@.xml' holds element index -7 at position 1, expected none below 0",
           [](ZRFxBlock& b) { As<ZRFxSetBlock>(b).GetItems(0)->m_aiItems = Ints(2, -7); }),
    Damage("SetTotalDiffers", BLOCK_SET, ".xml", "TotalNumItems=\"3\"", "TotalNumItems=\"4\"",
           "^'@.xml' holds 3 items, expected 4"),
    Damage("PlotNoNumber", BLOCK_PLOT_2D, "-0002.txt", "-3", "-3 1",
           "Could not read one float value in file '@-0002.txt' (text: -3 1 ...)\n"
           "Error reading plot data"),
    Damage("CrossSectionNoNumber", BLOCK_CROSS_SECTIONS, ".xml", "Width=\"2\"", "Width=\"wide\"",
           "Error reading cross section parameters"),
    Damage("CrossSectionParameterTwice", BLOCK_CROSS_SECTIONS, ".xml", "Width=\"2\"",
           "Height=\"2\"", "Error reading cross section parameters"),
    Damage("GridNegative", BLOCK_PRECOMPUTED_CUTTING_PLANE, ".xml", "NumJ=\"7\"", "NumJ=\"-7\"",
           "^'@.xml' holds -7 grid lines, expected 0",
           [](ZRFxBlock& b) { As<ZRFxPrecomputedBlock>(b).GetState(0)->apGrids[0]->numJ = -7; }),
    Damage("PositionDimension", BLOCK_POSITION_RESULT_VALUES, ".xml", "Dimension=\"3\"",
           "Dimension=\"2\"", "Result has illegal dimension.",
           [](ZRFxBlock& b) { As<ZRFxPositionResultValuesBlock>(b).SetDimension(2); }),
    Damage("PositionIndices", BLOCK_POSITION_RESULT_VALUES, ".xml", "<ElementIndices", "<Other",
           "No element indices specified for position result values"),
    Damage("PositionVectors", BLOCK_POSITION_RESULT_VALUES, ".xml", "<VectorResult", "<Other",
           "No vector values specified for position result values"),
    Damage("PositionTypes", BLOCK_POSITION_RESULT_VALUES, ".xml", "<VectorTypes", "<Other",
           "No vector types specified for position result values"),
    Damage("PositionElementNegative", BLOCK_POSITION_RESULT_VALUES, "-PositionIDs.txt", "0\n",
           "-1\n", "^'@.xml' holds element index -1 at position 1, expected none below 0",
           [](ZRFxBlock& b) {
               As<ZRFxPositionResultValuesBlock>(b).m_aiElementIndices = Ints(2, -1);
           }),
    Damage("PositionTypesTooFew", BLOCK_POSITION_RESULT_VALUES, "-VectorTypes.txt",
           "NORMAL_ARROW\n", "", "^'@.xml' holds 1 vector types, expected 2",
           [](ZRFxBlock& b) { As<ZRFxPositionResultValuesBlock>(b).m_aiVectorTypes.SetSize(1); }),
    InMemory("PolygonsAfterANode", BLOCK_INDEXED_FACE_SET,
             "^'#' holds 1 nodes before the first polygon, expected 0",
             [](ZRFxBlock& b) { SetPolygons(b, 1, 3); }),
    InMemory("NodesWithoutPolygon", BLOCK_INDEXED_FACE_SET,
             "^'#' holds 7 nodes before the first polygon, expected 0",
             [](ZRFxBlock& b) { SetPolygons(b); }),
    InMemory("PolygonsFalling", BLOCK_INDEXED_FACE_SET,
             "^'#' holds polygon start 3 at position 2, expected 4 to 7",
             [](ZRFxBlock& b) { SetPolygons(b, 0, 4, 3); }),
    InMemory("PolygonAfterAllNodes", BLOCK_INDEXED_FACE_SET,
             "^'#' holds polygon start 8 at position 1, expected 0 to 7",
             [](ZRFxBlock& b) { SetPolygons(b, 0, 8); }),
    InMemory("PolygonNodeHighest", BLOCK_INDEXED_FACE_SET,
             "^'#' holds node index 2147483647 at position 6, expected at most 2147483646",
             [](ZRFxBlock& b) { SetConnects(b, 0, 1, 2, 2, 1, 3, 2147483647); }),
    InMemory("PolygonIDsTooFew", BLOCK_INDEXED_FACE_SET, "^'#-IDs' holds 1 IDs, expected 2",
             [](ZRFxBlock& b) { As<ZRFxIndexedFaceSetBlock>(b).SetIDs(NewInts(10)); }),
    InMemory("GeometryStateOfFewer", BLOCK_GEOMETRY,
             "^'@.xml' holds 2 geometries of a state, expected 3",
             [](ZRFxBlock& b) { As<ZRFxGeometryBlock>(b).SetGeometryCountPerState(3); }),
    InMemory("ResultIDsTooFew", BLOCK_RESULT_VALUES, "^'#-IDs' holds 1 IDs, expected 2",
             [](ZRFxBlock& b) { As<ZRFxResultValuesBlock>(b).SetIDs(NewInts(3)); }),
    InMemory("TensorCut", BLOCK_RESULT_VALUES, "^'#' holds 7 tensor components, expected 6",
             [](ZRFxBlock& b) {
                 const float components[7] = {};
                 As<ZRFxResultValuesBlock>(b).SetScalars(components, 7);
             }),
    InMemory("TensorsAsVectors", BLOCK_RESULT_VALUES,
             "^'#' holds 12 values of another dimension, expected 0",
             [](ZRFxBlock& b) { As<ZRFxResultValuesBlock>(b).SetNumDimensions(3); }),
    InMemory("SetOfUndefinedItems", BLOCK_SET, "Only element sets are supported",
             [](ZRFxBlock& b) { As<ZRFxSetBlock>(b).SetItemType(kItemTypeUndefined); }),
    InMemory("PositionsWithoutBlock", BLOCK_POSITION_RESULT_VALUES,
             "No map to block ID (element) specified.",
             [](ZRFxBlock& b) { As<ZRFxPositionResultValuesBlock>(b).m_iMapToBlockID = -1; }),
    InMemory("PositionIndicesTooMany", BLOCK_POSITION_RESULT_VALUES,
             "Num IDs differs from num. results",
             [](ZRFxBlock& b) { As<ZRFxPositionResultValuesBlock>(b).m_aiElementIndices.Add(1); }),
    InMemory("PositionVectorsMissing", BLOCK_POSITION_RESULT_VALUES,
             "^'@.xml' holds 0 vector values, expected 2",
             [](ZRFxBlock& b) { As<ZRFxPositionResultValuesBlock>(b).m_vectors.RemoveAll(); }),
    InMemory("PositionScalarsMissing", BLOCK_POSITION_RESULT_VALUES,
             "^'@.xml' holds 0 scalar values, expected 2",
             [](ZRFxBlock& b) { As<ZRFxPositionResultValuesBlock>(b).SetDimension(1); }),
};

INSTANTIATE_TEST_SUITE_P(All, DamagedBlock, testing::ValuesIn(kDamages), test::NameOf);

class ZRFxBlockTest : public test::DatabaseTest {
protected:
    // A block of that type whose document is the text.
    nvf::ref<ZRFxBlock> BlockOf(int type, const std::string& document) {
        Put(DocumentOf(type), document);
        const nvf::ref<ZRFxBlock> block = ZRFxBlock::Create(type, &m_database, 1);
        block->SetFileName(DocumentOf(type));
        return block;
    }

    template <typename BlockClass>
    nvf::ref<BlockClass> Read(int type, const std::string& document) {
        const nvf::ref<ZRFxBlock> block = BlockOf(type, document);
        EXPECT_TRUE(block->ReadBlock());
        return dynamic_cast<BlockClass*>(block.p());
    }

    void ExpectOpensAgain() {
        ASSERT_TRUE(m_database.WriteTOC());
        ZRFxDatabase parsed(&m_access);
        EXPECT_TRUE(parsed.Parse(1));
        EXPECT_EQ(parsed.GetNumBlocks(), m_database.GetNumBlocks());
        ExpectTexts({"Parsing ZRFx file..."});
    }
};

TEST_F(ZRFxBlockTest, DocumentsHaveElementsAndAttributesInTheirOrder) {
    const std::vector<std::string> kShapes = {
        "Nodes[ID WithID](File[Filename NumItems IDs])",
        "IndexedFaceSet[ID NodeBlock MapToNodeIDs WithID NumPolygons](File[Filename NumItems IDs])",
        "Elements[ID NodeBlock MapToNodeIDs WithID CrossSectionsID "
        "NumEccPerElement](ElementGroup[Type NumElementNodes](ElementIndices[Filename NumItems] "
        "File[Filename NumItems IDs] ElementToCrossSectionMapping[Filename NumItems] "
        "Directions[Filename NumItems] Eccentricities[Filename NumItems]) ElementGroup[Type "
        "NumElementNodes](File[Filename NumItems IDs]) ElementGroup[Type "
        "NumElementNodes](File[Filename NumItems IDs] PolyhedronElementNodeCounts[Filename "
        "NumItems] PolyhedronFaceCounts[Filename NumItems] PolyhedronFaceLocalNodes[Filename "
        "NumItems] PolyhedronFaceNodeCounts[Filename NumItems]) Properties(File[Filename "
        "NumItems]))",
        "Geometry[ID GeometryCountPerState](State[ID](Geometry[Index "
        "APIGeometryID](Elements[BlockID PartID] IndexedFaceSet[BlockID PartID]) Geometry[Index "
        "APIGeometryID](Elements[BlockID PartID])))",
        "ResultValues[ID MapToBlockID NumDimensions WithID](File[Filename NumItems IDs])",
        "Results[ID Name ResultType StrainType ResultMapping ResultID SectionID "
        "DefaultScaleFactor RelativeDisplacements BaseResultID BaseResultType "
        "DeriveOperation](Attribute[Name Value] State[ID](ResultValues(Value0 Value1)) "
        "State[ID](ResultValues))",
        "CrossSections[ID](CrossSection[Type Height Width] CrossSection[Type])",
        "StateInfo[ID](State[ID Name RefValue RefType ParentID Group](ZRFxExportInfo[PolygonModel "
        "VisiblePartsOnly FirstOrderNodesOnly](VisibleSetIDs(Value0 Value1) PartFlags(Value0))) "
        "State[ID Name RefValue RefType ParentID Group](ZRFxExportInfo[PolygonModel "
        "VisiblePartsOnly FirstOrderNodesOnly](VisibleSetIDs PartFlags)))",
        "Set[ID SetID Name ItemsSpecifiedAsIDs TotalNumItems ItemType](Items[BlockID "
        "BlockType](File[Filename NumItems]))",
        "Plot2D[ID Name](Variable[Name](File[Filename NumItems]))",
        "TransformationResultValues[ID MapToBlockID MapToBlockType](Row1 Row2 Row3 Row4)",
        "TransformationResults[ID Name ResultID](State[ID](ResultValues(Value0)))",
        "PrecomputedItem[ID ItemType ItemID CaseID](State[ID](ParticleTrace[PositionNodeBlockID "
        "TimeResultBlockID ScalarResultBlockID VectorResultBlockID] Part[IFSBlockID NodeBlockID "
        "FringesResultBlockID FringesResultMapping VectorResultBlockID] Grid[NodeBlockID NumI "
        "NumJ ComputedResultBlockID ScalarResultBlockID VectorResultBlockID]))",
        "PositionResultValues[ID Dimension MapToBlockID GlobalPositions GlobalResults VectorColor "
        "ScalingFactor](Positions[Filename NumItems] ElementIndices[Filename NumItems] "
        "VectorResult[Filename NumItems] VectorTypes[Filename NumItems])",
        "GeometryInfo[ID GeometryCountPerState](Geometry[Index](Part[PartID ParentPartID PartName "
        "BoundaryCondition]))",
        "PrecomputedCuttingPlane[ID CaseID CuttingPlaneID Point Normal MapScalarResultId "
        "MapVectorResultId GridSpacing SurfaceVisible SurfaceColor Opacity SpecularIntensity "
        "UseClipping GridLinesVisible DrawStyle](State[ID](Part[IFSBlockID NodeBlockID "
        "FringesResultBlockID FringesResultMapping VectorResultBlockID SurfaceColor] "
        "Grid[NodeBlockID NumI NumJ ComputedResultBlockID ScalarResultBlockID "
        "VectorResultBlockID]))",
        "PrecomputedIsosurface[ID CaseID IsosurfaceID IsoValue IsoScalarResultId "
        "MapScalarResultId MapVectorResultId SurfaceVisible SurfaceColor Opacity "
        "SpecularIntensity DrawStyle](State[ID](Part[IFSBlockID NodeBlockID FringesResultBlockID "
        "FringesResultMapping VectorResultBlockID]))",
        "PrecomputedParticleTraceGroup[ID CaseID GroupID VectorResultId "
        "MapScalarResultId](Trace[PositionsBlockID TimeStampsBlockID MapScalarsBlockID])",
        "PrecomputedIsovolume[ID CaseID IsovolumeID MinIsoValue MaxIsoValue IsoScalarResultId "
        "MapScalarResultId MapVectorResultId SurfaceVisible SurfaceColor Opacity "
        "SpecularIntensity DrawStyle TextureName EnvironmentMapping](State[ID](Part[IFSBlockID "
        "NodeBlockID FringesResultBlockID FringesResultMapping VectorResultBlockID]))",
    };
    for (const int type : test::StoredTypes()) Write(SampleBlock(type, 1));
    ASSERT_TRUE(m_access.Close());
    Entries entries = test::UnpackWithPython(m_file);
    std::vector<std::string> shapes;
    for (const int type : test::StoredTypes())
        shapes.push_back(entries[DocumentOf(type) + "#shape"]);
    EXPECT_EQ(shapes, kShapes);
    EXPECT_EQ(entries[DocumentOf(BLOCK_TRANSFORMATION_RESULT_VALUES)],
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<TransformationResultValues xmlns=\"urn:nuo:zrfx\" ID=\"1\" MapToBlockID=\"1\" "
              "MapToBlockType=\"2\">\n"
              " <Row1>-0.500000 0.500000 1.500000 2.500000</Row1>\n"
              " <Row2>3.500000 4.500000 5.500000 6.500000</Row2>\n"
              " <Row3>7.500000 8.500000 9.500000 10.500000</Row3>\n"
              " <Row4>11.500000 12.500000 13.500000 14.500000</Row4>\n"
              "</TransformationResultValues>\n");
    const std::string ints(
        "\x03\0\0\0\x01\0\0\0\x02\0\0\0\x03\0\0\0\x04\0\0\0"
        "\x03\0\0\0\x02\0\0\0\x04\0\0\0\x05\0\0\0",
        36);
    EXPECT_EQ(entries["Database001\\IndexedFaceSet\\IndexedFaceSet0001.dat"], ints);
}

TEST_F(ZRFxBlockTest, TypesWithoutAClassAreNotMade) {
    for (const int type : {-1, 6, 7, 9, 13, 23, 999999}) {
        EXPECT_TRUE(ZRFxBlock::Create(type, &m_database, 1).isNull());
        ExpectFailure("Block type not implemented");
    }
}

TEST_F(ZRFxBlockTest, EmptyBlocksWithIDsComeBackWithIDs) {
    const nvf::ref<ZRFxNodeBlock> nodes = new ZRFxNodeBlock(nullptr, 1);
    ASSERT_TRUE(nodes->SetNodes(ZRVec3fArray(), NewInts()));
    ExpectReadBack(*nodes);
    const nvf::ref<ZRFxIndexedFaceSetBlock> polygons = new ZRFxIndexedFaceSetBlock(nullptr, 1);
    polygons->SetIDs(NewInts());
    ExpectReadBack(*polygons);
    const nvf::ref<ZRFxResultValuesBlock> values = new ZRFxResultValuesBlock(nullptr, 1);
    values->SetIDs(NewInts());
    ExpectReadBack(*values);
    TakeTexts();
}

// Numbers at the ends of their ranges, and those that are none.
TEST_F(ZRFxBlockTest, ExtremeContentsAreReadBack) {
    constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
    const nvf::ref<ZRFxBlock> polygons = SampleBlock(BLOCK_INDEXED_FACE_SET, INT_MAX);
    SetConnects(*polygons, INT_MAX - 1);
    SetPolygons(*polygons, 0, 1);
    ExpectReadBack(*polygons);
    As<ZRFxIndexedFaceSetBlock>(*polygons).SetMapToNodeIDs(true);
    SetConnects(*polygons, INT_MIN, INT_MAX);
    ExpectReadBack(*polygons);
    ZRFxCrossSection section(CROSS_SECTION_BOX);
    ASSERT_TRUE(section.SetParameters({"a", "A"}, {kNaN, -std::numeric_limits<float>::infinity()}));
    const nvf::ref<ZRFxCrossSectionsBlock> sections = new ZRFxCrossSectionsBlock(nullptr, 1);
    sections->AddCrossSection(section);
    ExpectReadBack(*sections);
    const nvf::ref<ZRFxBlock> matrix = SampleBlock(BLOCK_TRANSFORMATION_RESULT_VALUES, 1);
    nuo::Mat4d values;
    values.setRowCol(0, 0, kNaN);
    values.setRowCol(1, 1, std::numeric_limits<double>::max());
    As<ZRFxTransformationResultValuesBlock>(*matrix).SetMatrix(values);
    ExpectReadBack(*matrix);
    const nvf::ref<ZRFxBlock> set = SampleBlock(BLOCK_SET, 1);
    As<ZRFxSetBlock>(*set).SetItemsSpecifiedAsIDs(true);
    As<ZRFxSetBlock>(*set).GetItems(0)->m_aiItems = Ints(INT_MIN, INT_MAX);
    As<ZRFxSetBlock>(*set).GetItems(1)->m_aiItems.RemoveAll();
    ExpectReadBack(*set);
    TakeTexts();
    ExpectAssertion(section.SetParameters({"a", "b", "a"}, {1, 2, 3}), "areNames");
}

TEST_F(ZRFxBlockTest, FilesThatAKilledWriterLeftAreReplaced) {
    Put("Database001\\Nodes\\Nodes0001.dat", "half a block");
    Put("Database001\\Nodes\\Nodes0001-IDs.txt", "1\n");
    m_database.SetTextMode(true);
    Write(SampleBlock(BLOCK_NODES, 1));
    ZRFxBlock* block = m_database.GetBlockByID(BLOCK_NODES, 1);
    ASSERT_TRUE(block && block->ReadBlock());
    EXPECT_EQ(dynamic_cast<ZRFxNodeBlock*>(block)->GetNumNodes(), 3);
}

TEST_F(ZRFxBlockTest, EntryOfADatabaseCanBeWrittenIntoIt) {
    Write(SampleBlock(BLOCK_STATE_INFO, 1));
    Write(SampleBlock(BLOCK_NODES, 1));
    for (const int type : {BLOCK_STATE_INFO, BLOCK_NODES}) {
        ASSERT_TRUE(m_database.GetBlockByID(type, 1)->ReadBlock());
        EXPECT_TRUE(m_database.GetBlockByID(type, 1)->WriteBlock(&m_database));
    }
    EXPECT_TRUE(m_database.GetBlockByID(BLOCK_STATE_INFO, 1)->WriteBlock());
}

TEST_F(ZRFxBlockTest, RewritingLeavesFilesThatAnotherBlockNames) {
    Write(SampleBlock(BLOCK_NODES, 1));
    Write(SampleBlock(BLOCK_NODES, 2));
    Edit(DocumentOf(BLOCK_NODES), "Nodes\\Nodes0001\"", "Nodes\\Nodes0002\"");
    Write(SampleBlock(BLOCK_NODES, 1));
    EXPECT_TRUE(m_database.GetBlockByID(BLOCK_NODES, 2)->ReadBlock());
}

TEST_F(ZRFxBlockTest, MissingAttributesReadAsTheirDefaults) {
    const auto plane = Read<ZRFxPrecomputedCuttingPlaneBlock>(
        BLOCK_PRECOMPUTED_CUTTING_PLANE,
        "<PrecomputedCuttingPlane ID='1' Point='1 2' Normal='1 2 x'><State><Part/></State>"
        "</PrecomputedCuttingPlane>");
    EXPECT_EQ(plane->m_sDrawStyle, "surface");
    EXPECT_EQ(plane->m_vPoint.x + plane->m_vNormal.x, 0);
    EXPECT_EQ(plane->GetState(0)->apParts[0]->fringesResultMapping, MAPPING_NODE);

    const auto result = Read<ZRFxResultBlock>(BLOCK_RESULTS, "<Results ID='1'/>");
    EXPECT_EQ(result->GetDescription().baseResultType, RESULT_UNKNOWN);
    EXPECT_EQ(result->GetDescription().deriveOperation, kComponentNone);
    EXPECT_EQ(result->GetDescription().strainType, STRAIN_NONE);

    const auto states = Read<ZRFxStateInfoBlock>(
        BLOCK_STATE_INFO,
        "<StateInfo ID='1'><State RefType='frequency'/><State RefType='Step'/>"
        "</StateInfo>");
    EXPECT_EQ(states->GetState(0)->referenceType, REFERENCE_FREQUENCY);
    EXPECT_EQ(states->GetState(1)->referenceType, REFERENCE_OTHER);
    EXPECT_EQ(states->GetState(1)->parentID, -1);
}

TEST_F(ZRFxBlockTest, MetaDataIsReadWithoutTheRest) {
    const auto set = BlockOf(BLOCK_SET,
                             "<Set ID='1' Name='S' TotalNumItems='5' ItemType='ELEMENT'>"
                             "<Items BlockType='0'/></Set>");
    ASSERT_TRUE(set->ReadMetaData());
    EXPECT_EQ(dynamic_cast<ZRFxSetBlock*>(set.p())->GetTotalNumItems(), 5);
    const auto result =
        BlockOf(BLOCK_RESULTS,
                "<Results ID='1' Name='R'><Attribute Name='a' Value='b'/><State>"
                "<ResultValues><Value0>x</Value0></ResultValues></State></Results>");
    ASSERT_TRUE(result->ReadMetaData());
    const ZRFxResultDescription& description =
        dynamic_cast<ZRFxResultBlock*>(result.p())->GetDescription();
    EXPECT_EQ(description.name, "R");
    EXPECT_EQ(description.attributes.size(), 1u);
    EXPECT_FALSE(result->IsRead());
    const auto nodes = BlockOf(BLOCK_NODES, "<Nodes ID='1'><File NumItems='-3'/></Nodes>");
    EXPECT_EQ(dynamic_cast<ZRFxNodeBlock*>(nodes.p())->GetNumNodes(), 0);
}

TEST_F(ZRFxBlockTest, LegacyGeometryHasOneGeometryPerState) {
    const auto block = Read<ZRFxGeometryBlock>(
        BLOCK_GEOMETRY,
        "<Geometry ID='1'><State ID='4' VexlynAPIGeometryIDs='10 x'>"
        "<Elements BlockID='1' PartID='5' PartName='Deck'/>"
        "<IndexedFaceSet BlockID='2' PartID='6' PartName='Rail'/><Elements BlockID='3' PartID='7'/>"
        "</State><State ID='5'><Elements BlockID='1' PartID='5' PartName='Later'/></State>"
        "</Geometry>");
    EXPECT_FALSE(block->HasGeometryCountPerState());
    EXPECT_EQ(block->GetGeometryCountPerState(), 1);
    ASSERT_EQ(block->GetState(0)->GetPartCount(0), 3);
    EXPECT_EQ(block->GetState(0)->GetPart(0, 0).apiGeometryID, 10);
    EXPECT_EQ(block->GetState(0)->GetPart(0, 1).apiGeometryID, -1);
    EXPECT_EQ(block->GetState(0)->GetPart(0, 1).blockType, BLOCK_INDEXED_FACE_SET);

    const nvf::ref<ZRFxGeometryInfoBlock> info = new ZRFxGeometryInfoBlock(nullptr, 1);
    ASSERT_TRUE(block->GetLegacyGeometryInfo(info.p()));
    ASSERT_EQ(info->GetPartInfos(0)->GetPartCount(), 3);
    EXPECT_EQ(info->GetPartInfos(0)->GetPartInfo(0).partName, "Deck");
    EXPECT_EQ(info->GetPartInfos(0)->GetPartInfo(1).partID, 6);

    Put(DocumentOf(BLOCK_GEOMETRY), "<Geometry ID='1'><State><Nodes/></State></Geometry>");
    ExpectRefused(block->GetLegacyGeometryInfo(info.p()),
                  {"Only Elements and Indexed face sets are allowed in geometry spec"});
    Put(DocumentOf(BLOCK_GEOMETRY), "<Nodes/>");
    EXPECT_FALSE(block->HasGeometryCountPerState());
    EXPECT_EQ(TakeTexts().back(), "Invalid XML");
}

// A state that names no geometry has its parts as the legacy layout has them, whatever the document
// says of their number.
TEST_F(ZRFxBlockTest, LayoutOfAGeometryFollowsFromItsStates) {
    const std::string legacy = "<State ID='4'><Elements BlockID='1' PartID='5'/></State>";
    const std::string newer =
        "<State ID='5'><Geometry Index='2'><Elements BlockID='2' PartID='6'/></Geometry></State>";
    const auto read = [&](const std::string& count, const std::string& states) {
        return Read<ZRFxGeometryBlock>(BLOCK_GEOMETRY,
                                       "<Geometry ID='1'" + count + ">" + states + "</Geometry>");
    };
    EXPECT_EQ(read(" GeometryCountPerState='1'", legacy)->GetState(0)->GetPartCount(0), 1);
    const auto uncounted = read("", newer);
    EXPECT_EQ(uncounted->GetGeometryCountPerState(), 3);
    EXPECT_EQ(uncounted->GetState(0)->GetPart(2, 0).blockID, 2);
    EXPECT_EQ(read(" GeometryCountPerState='7'", "<State/>" + newer)->GetStateCount(), 2);
    const std::string refusal =
        "Geometry block ID 1: 'Database001\\Geometry\\Geometry0001.xml' holds ";
    const auto refuse = [&](const std::string& document, const std::string& message) {
        ExpectRefused(BlockOf(BLOCK_GEOMETRY, document)->ReadBlock(), {refusal + message});
    };
    refuse("<Geometry ID='1' GeometryCountPerState='3'>" + legacy + "</Geometry>",
           "3 geometries per state, expected 1");
    refuse("<Geometry ID='1'>" + newer + legacy + "</Geometry>",
           "3 geometries per state, expected 1");
    refuse("<Geometry ID='1'><State><Geometry Index='2147483647'/></State></Geometry>",
           "2147483647 geometries per state, expected 1");
}

TEST_F(ZRFxBlockTest, GeometryInfosTakeOneRecordForEachStateOrOneForAll) {
    ZRFxGeometryBlock block(nullptr, 1);
    block.AddState(5)->AddPart(0, {-1, 40, BLOCK_ELEMENTS, 7});
    ZRFxGeometryInfoBlock names(nullptr, 1);
    names.SetGeometryCountPerState(1);
    names.GetPartInfos(0)->AddPartInfo({7, -1, "Deck", false});
    ZRPtrArray<ZRFxStateInfo> states;
    for (const int id : {5, 6, 8}) states.Add(std::make_unique<ZRFxStateInfo>())->stateID = id;
    ZRPtrArray<ZRFxGeometryInfo> infos;
    ExpectAssertion(block.FillGeometryInfos(names, &states, &infos),
                    "pGeoInfos->GetSize() == GetGeometryCountPerState()");
    infos.Add(std::make_unique<ZRFxGeometryInfo>());
    ASSERT_TRUE(block.FillGeometryInfos(names, &states, &infos));
    ASSERT_EQ(infos[0]->states.size(), 3u);
    EXPECT_EQ(infos[0]->partInfos.GetPartInfo(0).partName, "Deck");
    EXPECT_EQ(infos[0]->states[2].stateID, 8);
    EXPECT_EQ(infos[0]->states[2].parts.at(0).blockID, 40);
    block.AddState(6);
    ExpectAssertion(block.FillGeometryInfos(names, &states, &infos),
                    "iNumGeometryStates == iNumStates || iNumGeometryStates == 1");
    ExpectAssertion(block.FillGeometryInfos(names, nullptr, &infos), "pGeoInfos && pStateInfos");
    states.RemoveRange(2, 2);
    ASSERT_TRUE(block.FillGeometryInfos(names, &states, &infos));
    EXPECT_TRUE(infos[0]->states[1].parts.empty());
}

// A few kilobytes that ask for gigabytes, or for hours.
TEST_F(ZRFxBlockTest, DocumentTakesNoMoreThanItHolds) {
    std::string states;
    for (int i = 0; i < 20000; ++i) states += "<State/>";
    const auto geometry =
        Read<ZRFxGeometryBlock>(BLOCK_GEOMETRY, "<Geometry ID='1' GeometryCountPerState='100000'>" +
                                                    states + "</Geometry>");
    EXPECT_EQ(geometry->GetStateCount(), 20000);

    std::string parts;
    std::string ids;
    for (int i = 0; i < 100000; ++i) {
        parts += "<Elements PartID='" + std::to_string(i) + "'/>";
        ids += "7 ";
    }
    const auto legacy =
        Read<ZRFxGeometryBlock>(BLOCK_GEOMETRY, "<Geometry ID='1'><State VexlynAPIGeometryIDs='" +
                                                    ids + "'>" + parts + "</State></Geometry>");
    EXPECT_EQ(legacy->GetState(0)->GetPart(0, 99999).apiGeometryID, 7);
    const nvf::ref<ZRFxGeometryInfoBlock> info = new ZRFxGeometryInfoBlock(nullptr, 1);
    ASSERT_TRUE(legacy->GetLegacyGeometryInfo(info.p()));
    EXPECT_EQ(info->GetPartInfos(0)->GetPartCount(), 100000);

    std::string deep;
    for (int i = 0; i < 100000; ++i) deep += "<State>";
    EXPECT_FALSE(BlockOf(BLOCK_RESULTS, "<Results ID='1'>" + deep)->ReadBlock());
    EXPECT_EQ(TakeTexts().back(), "Invalid XML");
}

TEST(StatesBlockTest, StatesAreFoundAfterOthersWereRemoved) {
    const nvf::ref<ZRFxResultBlock> result = new ZRFxResultBlock(nullptr, 1);
    for (const int id : {7, 8, 9}) result->AddState(id);
    result->RemoveStates(0, 0);
    EXPECT_EQ(result->AddState(8), result->GetState(0));
    EXPECT_EQ(result->GetStateIndex(9), 1);
    result->AddState(7);
    EXPECT_EQ(result->GetStateIndex(7), 2);
    result->UnloadData();
    EXPECT_EQ(result->GetStateIndex(8), -1);
}

}  // namespace
}  // namespace unstruct
