#include "blocks/mesh/ZRFxElementBlock.h"

#include <climits>

#include "support/ArchiveTest.h"
#include "support/SampleBlocks.h"

namespace unstruct {
namespace {

using test::Damage;
using test::DamagedBlock;
using test::Ints;
using test::NewInts;

ZRFxElementBlock& Elements(ZRFxBlock& block) {
    return dynamic_cast<ZRFxElementBlock&>(block);
}

ZRFxElementBlockGroup& Group(ZRFxBlock& block, int index) {
    return *Elements(block).GetElementGroup(index);
}

std::unique_ptr<ZRFxElementBlockGroup> Triangles(std::initializer_list<std::int32_t> nodes,
                                                 std::initializer_list<std::int32_t> ids) {
    auto group = std::make_unique<ZRFxElementBlockGroup>();
    group->m_iElementType = ELEMENT_TRIANGLE;
    group->m_iNumElements = static_cast<std::int64_t>(nodes.size() / 3);
    group->m_aiConnectivity = test::ArrayOf<std::int32_t>(nodes);
    group->m_aiIDs = test::ArrayOf<std::int32_t>(ids);
    return group;
}

class ZRFxElementBlockTest : public test::DatabaseTest {
protected:
    std::vector<std::string> FilesOf(const std::string& base) {
        ZRStringArray names;
        EXPECT_TRUE(m_access.FindFilesOfBase("Database001\\Elements\\" + base, &names));
        std::vector<std::string> files;
        for (const ZRString& name : names) files.push_back(name.FileName().Bytes());
        return files;
    }

    const nvf::ref<ZRFxElementBlock> m_block = new ZRFxElementBlock(nullptr, 1);
};

TEST_F(ZRFxElementBlockTest, GroupsHaveAllIDsOrNone) {
    for (const bool firstHasIDs : {true, false}) {
        const nvf::ref<ZRFxElementBlock> block = new ZRFxElementBlock(nullptr, 9);
        auto first = Triangles({0, 1, 2}, {5});
        auto second = Triangles({0, 1, 2}, {});
        if (!firstHasIDs) std::swap(first, second);
        EXPECT_TRUE(block->AddElementGroup(first));
        ExpectRefused(block->AddElementGroup(second),
                      {"Either all element groups must have IDs or none. (Element block ID 9)"});
        EXPECT_TRUE(second);
        EXPECT_EQ(block->GetNumElementGroups(), 1);
        EXPECT_EQ(block->GetWithIDs(), firstHasIDs);
    }
}

TEST_F(ZRFxElementBlockTest, NodeIndicesCountFromOneInTheFileAndIDsStandAsTheyAre) {
    for (const bool isIDs : {false, true}) {
        auto group = Triangles({0, 7, 2147483646}, {});
        const nvf::ref<ZRFxElementBlock> block = new ZRFxElementBlock(nullptr, 1);
        block->SetMapToNodeIDs(isIDs);
        ASSERT_TRUE(block->AddElementGroup(group));
        m_database.SetTextMode(true);
        Write(block.p());
        EXPECT_EQ(Get("Database001\\Elements\\Elements0001-0001.txt"),
                  isIDs ? "0\n7\n2147483646\n" : "1\n8\n2147483647\n");
        auto* read = dynamic_cast<ZRFxElementBlock*>(m_database.GetBlockByID(BLOCK_ELEMENTS, 1));
        ASSERT_TRUE(read->ReadBlock());
        EXPECT_EQ(read->GetElementGroup(0)->m_aiConnectivity, Ints(0, 7, 2147483646));
    }
}

TEST_F(ZRFxElementBlockTest, OnlyWhatAppliesIsWritten) {
    auto group = Triangles({0, 1, 2}, {});
    group->m_aiPolyhedronFaceCounts = Ints(1);
    group->m_aiExpansionMapping = Ints(0);
    ASSERT_TRUE(m_block->AddElementGroup(group));
    m_block->AddUserProperties(std::make_unique<ZRIntArray>(Ints(1)));
    m_block->AddUserProperties(std::make_unique<ZRIntArray>());
    m_block->AddUserProperties(std::make_unique<ZRIntArray>(Ints(3)));
    Write(m_block.p());
    EXPECT_EQ(FilesOf("Elements0001"),
              (std::vector<std::string>{"Elements0001-0001.dat", "Elements0001-0001-Properties.dat",
                                        "Elements0001-0003-Properties.dat", "Elements0001.xml"}));
    const std::string document = Get("Database001\\Elements\\Elements0001.xml");
    EXPECT_EQ(document.find("CrossSectionsID"), std::string::npos);
    EXPECT_EQ(document.find("NumEccPerElement"), std::string::npos);
}

TEST_F(ZRFxElementBlockTest, GroupWithoutExpansionMappingWritesNoVectors) {
    auto group = Triangles({0, 1, 2}, {});
    group->m_aDirections.Add({0, 0, 1});
    m_block->SetCrossSectionsID(0);
    ASSERT_TRUE(m_block->AddElementGroup(group));
    Write(m_block.p());
    EXPECT_EQ(FilesOf("Elements0001"),
              (std::vector<std::string>{"Elements0001-0001.dat", "Elements0001.xml"}));
}

TEST_F(ZRFxElementBlockTest, IDsAndIndicesRunOverAllGroups) {
    auto first = Triangles({0, 1, 2, 2, 1, 3}, {7, 5});
    auto second = Triangles({0, 1, 2}, {6});
    ASSERT_TRUE(m_block->AddElementGroup(first) && m_block->AddElementGroup(second));
    ZRIntArray ids;
    ASSERT_TRUE(m_block->GetAllElementIDs(&ids));
    EXPECT_EQ(ids, Ints(7, 5, 6));
    ASSERT_TRUE(m_block->RenumberElementIndices());
    EXPECT_EQ(m_block->GetElementGroup(1)->m_aiElementIndices, Ints(2));
    m_block->GetElementGroup(1)->m_aiIDs.Add(8);
    ExpectAssertion(m_block->GetAllElementIDs(&ids),
                    "paiElementIDs->GetNumItems() == iNumElements");
}

Damage Of(const char* name, const char* file, const char* from, const char* to,
          const char* messages, void (*apply)(ZRFxBlock&) = nullptr) {
    return {name, BLOCK_ELEMENTS, file, from, to, messages, apply};
}

const std::vector<Damage> kDamages = {
    Of("Unrecorded", ".xml", "<File", "<Other",
       "Cannot get element info from Xml (Element block ID 1)"),
    Of("NegativeCount", ".xml", "0001-0001\" NumItems=\"2\"", "0001-0001\" NumItems=\"-2\"",
       "^'#-0001' holds -2 elements, expected 0",
       [](ZRFxBlock& b) { Group(b, 0).m_iNumElements = -2; }),
    Of("HugeCount", ".xml", "0001-0001\" NumItems=\"2\"", "0001-0001\" NumItems=\"2147483647\"",
       "^'#-0001' holds 4 element nodes, expected 4294967294",
       [](ZRFxBlock& b) { Group(b, 0).m_iNumElements = 2147483647; }),
    Of("UnknownType", ".xml", "Type=\"Beam\"", "Type=\"beam\"",
       "^'#-0001' holds 4 element nodes, expected 0",
       [](ZRFxBlock& b) { Group(b, 0).m_iElementType = ELEMENT_UNKNOWN; }),
    Of("NodesCut", "-0001.txt", nullptr, "1\n2\n2\n",
       "Number of specified items (4) does not match number of items (3) in '@-0001.txt'\n"
       "Error reading element data"),
    Of("NodeZero", "-0001.txt", nullptr, "1\n2\n0\n3\n",
       "^'#-0001' holds node index -1 at position 2, expected none below 0",
       [](ZRFxBlock& b) { Group(b, 0).m_aiConnectivity = Ints(0, 1, -1, 2); }),
    Of("NodeLowest", "-0001.txt", nullptr, "1\n2\n2\n-2147483648\n",
       "^'#-0001' holds node index -2147483648 at position 3, expected none below 0",
       [](ZRFxBlock& b) { Group(b, 0).m_aiConnectivity = Ints(0, 1, 1, INT_MIN); }),
    Of("IDsMissingInOneGroup", ".xml", " IDs=\"Elements\\Elements0001-0002-IDs\"", "",
       "Either all element groups must have IDs or none. (Element block ID 1)",
       [](ZRFxBlock& b) { Group(b, 1).m_aiIDs.RemoveAll(); }),
    Of("IndicesTooMany", ".xml", "-ElementIndices\" NumItems=\"2\"",
       "-ElementIndices\" NumItems=\"3\"",
       "^'#-0001-ElementIndices' holds 3 element indices, expected 2",
       [](ZRFxBlock& b) { Group(b, 0).m_aiElementIndices.Add(2); }),
    Of("IndexNegative", "-0001-ElementIndices.txt", nullptr, "1\n-1\n",
       "^'#-0001-ElementIndices' holds element index -1 at position 1, expected none below 0",
       [](ZRFxBlock& b) { Group(b, 0).m_aiElementIndices = Ints(1, -1); }),
    Of("MappingTooShort", ".xml", "-ExpansionMapping\" NumItems=\"2\"",
       "-ExpansionMapping\" NumItems=\"1\"",
       "^'#-0001-ExpansionMapping' holds 1 cross section indices, expected 2",
       [](ZRFxBlock& b) { Group(b, 0).m_aiExpansionMapping.SetSize(1); }),
    Of("DirectionsMissing", ".xml", "<Directions", "<Other", "Error reading element data"),
    Of("EccentricitiesNotOfTheElements", ".xml", "NumEccPerElement=\"2\"", "NumEccPerElement=\"1\"",
       "^'@.xml' holds 4 eccentricities, expected 2",
       [](ZRFxBlock& b) { Elements(b).SetNumEccPerElement(1); }),
    Of("MappingNegative", "-0001-ExpansionMapping.txt", nullptr, "0\n-1\n",
       "^'#-0001-ExpansionMapping' holds cross section index -1 at position 1, expected none below "
       "0",
       [](ZRFxBlock& b) { Group(b, 0).m_aiExpansionMapping = Ints(0, -1); }),
    Of("NodeCountsMissing", ".xml", "<PolyhedronElementNodeCounts", "<Other",
       "Error reading polyhedrons (PolyhedronElementNodeCounts)"),
    Of("FaceNodeCountsMissing", ".xml", "<PolyhedronFaceNodeCounts", "<Other",
       "Error reading polyhedrons (PolyhedronFaceNodeCounts)"),
    Of("NodeCountsNotOfTheNodes", "-0003-PolyhedronStartNodes.txt", nullptr, "4\n5\n",
       "^'@.xml' holds 8 polyhedron nodes, expected 9",
       [](ZRFxBlock& b) { Group(b, 2).m_aiPolyhedronElementNodeCounts = Ints(4, 5); }),
    Of("NodeCountNegative", "-0003-PolyhedronStartNodes.txt", nullptr, "12\n-4\n",
       "^'@.xml' holds PolyhedronElementNodeCounts -4 at position 1, expected none below 0\n"
       "Error reading polyhedrons (PolyhedronElementNodeCounts)",
       [](ZRFxBlock& b) { Group(b, 2).m_aiPolyhedronElementNodeCounts = Ints(12, -4); }),
    Of("FaceCountsHuge", "-0003-PolyhedronFaceCounts.txt", nullptr, "2147483647\n2147483647\n",
       "^'@.xml' holds 8 polyhedron faces, expected 4294967294",
       [](ZRFxBlock& b) { Group(b, 2).m_aiPolyhedronFaceCounts = Ints(INT_MAX, INT_MAX); }),
    Of("FaceNodeCountsNotOfTheNodes", "-0003-PolyhedronFaceNodeCounts.txt", "3\n3\n", "3\n4\n",
       "^'@.xml' holds 24 polyhedron face nodes, expected 25",
       [](ZRFxBlock& b) { Group(b, 2).m_aiPolyhedronFaceNodeCounts.WritableData()[1] = 4; }),
    Of("LocalNodeBeyondTheElement", "-0003-PolyhedronFaceLocalNodes.txt", "3\n", "4\n",
       "^'@.xml' holds local node 4 in polyhedron 0, expected less than 4",
       [](ZRFxBlock& b) { Group(b, 2).m_aiPolyhedronFaceLocalNodes.WritableData()[2] = 4; }),
    Of("PropertiesUnrecorded", ".xml", "<Properties>", "<Properties/><Properties>",
       "Error reading element data"),
    // In memory only.
    Of("IDsTooFew", nullptr, nullptr, nullptr, "^'#-0001-IDs' holds 1 IDs, expected 2",
       [](ZRFxBlock& b) { Group(b, 0).m_aiIDs.SetSize(1); }),
    Of("NodeHighest", nullptr, nullptr, nullptr,
       "^'#-0001' holds node index 2147483647 at position 3, expected at most 2147483646",
       [](ZRFxBlock& b) { Group(b, 0).m_aiConnectivity = Ints(0, 1, 1, INT_MAX); }),
    Of("NodeCountsTooMany", nullptr, nullptr, nullptr,
       "^'@.xml' holds 3 polyhedron node counts, expected 2",
       [](ZRFxBlock& b) { Group(b, 2).m_aiPolyhedronElementNodeCounts = Ints(4, 3, 1); }),
    Of("FaceCountsTooMany", nullptr, nullptr, nullptr,
       "^'@.xml' holds 3 polyhedron face counts, expected 2",
       [](ZRFxBlock& b) { Group(b, 2).m_aiPolyhedronFaceCounts = Ints(4, 3, 1); }),
    Of("PropertiesTooFew", nullptr, nullptr, nullptr,
       "^'#-0003-Properties' holds 1 properties, expected 5",
       [](ZRFxBlock& b) { Elements(b).AddUserProperties(NewInts(1)); }),
};

INSTANTIATE_TEST_SUITE_P(Elements, DamagedBlock, testing::ValuesIn(kDamages), test::NameOf);

}  // namespace
}  // namespace unstruct
