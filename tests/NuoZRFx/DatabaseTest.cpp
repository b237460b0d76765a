#include "NuoZRFx/Database.h"

#include <gmock/gmock.h>

#include <climits>
#include <memory>
#include <string>

#include "support/InterfaceTest.h"
#include "support/Model.h"

namespace {

using namespace nuo::zrfx;
using namespace test;
using testing::ElementsAre;

class DatabaseTest : public InterfaceTest {
protected:
    DatabaseTest() { EXPECT_TRUE(m_file->create(m_name, FileSettings())); }

    void ExpectNotConstructed(File* file, const nuo::Str& name, int id,
                              const std::vector<std::string>& messages) {
        const PtrRef<Database> database =
            new Database(file, name, id, Database::STRUCTURAL, Database::LINEAR_STATIC, "");
        ExpectRefused(database->id() >= 0, messages);
    }

    void Reopen() {
        ASSERT_TRUE(m_file->close());
        ASSERT_TRUE(m_file->open(m_name));
    }

    const nuo::Str m_name = nuo::Str(m_folder.File("file.zrfx"));
    std::unique_ptr<File> m_file = std::make_unique<File>();
};

TEST_F(DatabaseTest, WhatCannotBeConstructedIsReportedAndNotPartOfTheFile) {
    File closed;
    ASSERT_EQ(7, WriteDatabase(*m_file, "Used", 7)->id());
    ExpectNotConstructed(nullptr, "a", 1, {"Given file pointer name was NULL. (Database id 1)."});
    ExpectNotConstructed(m_file.get(), "", 1, {"Given database name was empty. (Database id 1)."});
    ExpectNotConstructed(m_file.get(), "a", -1,
                         {"Given database id was negative. (Database id -1)."});
    ExpectNotConstructed(&closed, "a", 1,
                         {"Given file was in invalid state. (Database id 1). File must be created "
                          "or opened for append before adding a case."});
    ExpectNotConstructed(m_file.get(), "a", 7,
                         {"Database with id 7 already registered.",
                          "Could not register database instance. (Database id 7)."});
    EXPECT_EQ(1u, m_file->databaseCount());
    EXPECT_TRUE(m_file->close());
}

TEST_F(DatabaseTest, BlocksThatCannotBeWrittenAreReported) {
    const PtrRef<Database> database = WriteDatabase(*m_file, "a", 0);
    const auto expectNotWritten = [&](const PtrRef<Block>& block, const std::string& message) {
        const std::string id = std::to_string(block->blockId());
        ExpectRefused(
            database->writeBlock(block.p()),
            {message, "Cannot write block, weak validity check failed. (block id " + id + ")."});
    };
    PtrRef<TransformationResultBlock> move = new TransformationResultBlock(7);
    expectNotWritten(move, "No states defined on transformation result block (block id 7).");
    move->addTransformationResultValuesBlock(1, 1);
    expectNotWritten(move, "No result id defined for transformation result block (block id 7).");
    ExpectRefused(database->writeBlock(nullptr),
                  {"Given block pointer was NULL. (Block id -1).",
                   Assertion("block") + " 'writeBlock: the block is null'"});
    expectNotWritten(new ElementBlock(1, false, false),
                     "Target node block id -1 was invalid on element block (block id 1)");
    expectNotWritten(
        new GeometryBlock(1),
        "No states defined in geometry block, at least one state definition is required.");
    expectNotWritten(new StateInfoBlock, "No state information supplied to state info block.");
    expectNotWritten(new ResultBlock(3, ResultBlock::SCALAR, ResultBlock::NODE_MAPPING),
                     "No result id defined for result block (block id 3).");
    PtrRef<TransformationResultValuesBlock> moved = new TransformationResultValuesBlock(6);
    for (const int target : {-1, -4}) {
        if (target != -1) moved->setMapToBlockId(target, Block::ELEMENTS);
        expectNotWritten(moved,
                         "Target block id for mapping not set on transformation result values "
                         "block (block id 6).");
    }
    PtrRef<SetBlock> set = new SetBlock(8, false);
    set->addItem(-1, 1);
    EXPECT_FALSE(database->writeBlock(set.p()));
    EXPECT_THAT(TakeCauses(),
                ElementsAre("Set block ID 8: 'Database000\\Set\\Set0008.xml' holds element index "
                            "-1 at position 0, expected none below 0"));
    EXPECT_EQ(0u, database->blockCount(Block::SET));
    set->setItemType(SetBlock::UNDEFINED_ITEMS);
    EXPECT_FALSE(database->writeBlock(set.p()));
    const std::string refused = "Error writing block to database. (block id 8, database id 0).";
    EXPECT_THAT(TakeTexts(), ElementsAre(refused, refused));
    EXPECT_TRUE(m_file->close());
}

TEST_F(DatabaseTest, BlocksWithNegativeIdsAreReportedAndNeverWritten) {
    const PtrRef<Database> database = WriteDatabase(*m_file, "a", 0);
    PtrRef<NodeBlock> nodes = new NodeBlock(-1, false);
    PtrRef<ResultValuesBlock> values =
        new ResultValuesBlock(-2, ResultValuesBlock::SCALAR1D, false);
    values->setMapToBlockId(1, Block::NODES);
    EXPECT_THAT(TakeTexts(),
                ElementsAre("Negative block id -1 supplied.", "Negative block id -2 supplied."));
    ExpectRefused(database->writeBlock(nodes.p()),
                  {"Negative block id -1 supplied.",
                   "Cannot write block, weak validity check failed. (block id -1)."});
    ExpectRefused(database->writeBlock(values.p()),
                  {"Cannot write block, weak validity check failed. (block id -2)."});
    EXPECT_EQ(0u, database->blockCount(Block::NODES));
    EXPECT_EQ(0u, database->blockCount(Block::RESULT_VALUES));
}

TEST_F(DatabaseTest, ValuesWithoutTargetAreWrittenAfterAReport) {
    const PtrRef<Database> database = WriteDatabase(*m_file, "a", 0);
    PtrRef<ResultValuesBlock> values = new ResultValuesBlock(2, ResultValuesBlock::SCALAR1D, false);
    values->addResultValue1d(1);
    EXPECT_TRUE(database->writeBlock(values.p()));
    EXPECT_THAT(TakeTexts(), ElementsAre("Target block id for mapping not set on result values "
                                         "block (block id 2)"));
    Reopen();
    EXPECT_EQ(Describe(*values),
              Describe(*m_file->database(0)->blockById(Block::RESULT_VALUES, 2)));
}

TEST_F(DatabaseTest, BlocksThatAreNotThereAreReported) {
    const PtrRef<Database> database = WriteDatabase(*m_file, "a", 0);
    const std::string kNotRead = "Error reading block from file. Block of type ";
    for (const int type : {0, 1, 3, 4, 5, 6, 7, 9, 10}) {
        const auto blockType = static_cast<Block::BlockType>(type);
        const std::string message = kNotRead + std::to_string(type) + " with ";
        ExpectRefused(database->blockByIndex(blockType, 3).notNull(),
                      {message + "index 3 does not exist"});
        ExpectRefused(database->blockById(blockType, 5).notNull(),
                      {message + "id 5 does not exist"});
    }
    ExpectRefused(database->setBlockByIndex(0).notNull(),
                  {kNotRead + "9 with index 0 does not exist"});
    ExpectRefused(
        database->blockById(static_cast<Block::BlockType>(42), 1).notNull(),
        {"Invalid type id 42 given (Block::BlockType).", kNotRead + "42 with id 1 does not exist"});
}

TEST_F(DatabaseTest, SetsAreReadByTheirOwnOperationsOnly) {
    ASSERT_TRUE(WriteModel(*m_file, "x"));
    Reopen();
    Database& database = *m_file->database(0);
    ASSERT_EQ(2u, database.blockCount(Block::SET));
    EXPECT_EQ(1, database.blockId(Block::SET, 0));
    EXPECT_TRUE(database.blockByIndex(Block::SET, 0).isNull());
    EXPECT_TRUE(database.blockById(Block::SET, 1).isNull());
    const PtrRef<SetBlock> set = database.setBlockById(1);
    ASSERT_TRUE(set.notNull());
    EXPECT_EQ(nuo::Str("Load x"), set->setName());
    EXPECT_EQ(6u, set->totalItemCount());
    EXPECT_EQ(Describe(*set), Describe(*database.setBlockByIndex(0)));
}

TEST_F(DatabaseTest, BlocksAreReadAsTheirClassesAndInLoops) {
    ASSERT_TRUE(WriteModel(*m_file, "x"));
    Reopen();
    std::vector<int> ids;
    for (Database& database : m_file->databases()) ids.push_back(database.id());
    for (Case& view : m_file->fileCases()) ids.push_back(view.id());
    EXPECT_THAT(ids, ElementsAre(0, 7, 3, 0));
    Database& database = *m_file->database(0);
    EXPECT_EQ(Describe(*database.blockById(Block::NODES, 2)),
              Describe(*database.read<NodeBlock>(2)));
    EXPECT_EQ(Describe(*database.setBlockById(1)), Describe(*database.read<SetBlock>(1)));
    EXPECT_TRUE(database.read<ResultBlock>(99).isNull());
    EXPECT_EQ(1u, TakeTexts().size());
    std::string read;
    for (const auto& values : database.blocks<ResultValuesBlock>()) read += Describe(*values);
    for (const auto& set : database.blocks<SetBlock>()) read += Describe(*set);
    std::string expected;
    for (int id = 1; id <= 3; ++id)
        expected += Describe(*database.blockById(Block::RESULT_VALUES, id));
    for (int id = 1; id <= 2; ++id) expected += Describe(*database.setBlockById(id));
    EXPECT_EQ(expected, read);
    EXPECT_THAT(database.blockIds(Block::RESULT), ElementsAre(1, 2, 3, 4));
    EXPECT_EQ(5, database.unusedBlockId(Block::RESULT));
    EXPECT_EQ(10, database.read<StateInfoBlock>(1)->unusedStateId());
}

TEST_F(DatabaseTest, ObjectsThatOutliveTheirFileOnlyFail) {
    ASSERT_TRUE(WriteModel(*m_file, "x"));
    Reopen();
    const PtrRef<Database> database = m_file->database(0);
    const PtrRef<Case> view = m_file->fileCase(0);
    const PtrRef<Block> nodes = database->blockById(Block::NODES, 1);
    const PtrRef<Block> elements = database->blockById(Block::ELEMENTS, 1);
    const std::string nodesBefore = Describe(*nodes);
    ASSERT_TRUE(m_file->close());
    for (int round = 0; round < 2; ++round, m_file.reset()) {
        nuo::Image image = MakeImage(1, 1);
        const auto closed = [](const std::string& operation, const std::string& object) {
            return Assertion(object == "case" ? "m_access" : "m_zrfxDatabase") + " '" + operation +
                   ": the file of the " + object + " is closed'";
        };
        ExpectRefused(database->writeBlock(nodes.p()), {closed("writeBlock", "database")});
        EXPECT_EQ(Error::NOT_OPEN, database->lastError().code());
        ExpectRefused(database->setBlockByIndex(0).notNull(), {closed("blockByIndex", "database")});
        ExpectRefused(view->imageCount() > 0, {closed("textures", "case")});
        ExpectRefused(view->image(0) != nullptr,
                      {closed("textures", "case"), "No image was found at index 0"});
        ExpectRefused(view->snapshot() != nullptr,
                      {closed("snapshot", "case"), "Not able to read snapshot image"});
        ExpectRefused(
            view->addImage("a", &image),
            {closed("addImage", "case"),
             "Case document did not exist, call create() before if using delayed writing."});
        EXPECT_EQ(0, database->id());
        EXPECT_EQ(nuo::Str("View x"), view->name());
        EXPECT_EQ(nodesBefore, Describe(*nodes));
    }
    ElementBlock& orphan = static_cast<ElementBlock&>(*elements);
    EXPECT_FALSE(orphan.setElements(ElementBlock::BEAMS, {1}, {}));
    EXPECT_THAT(TakeTexts(),
                ElementsAre(Misuse("setElements: BEAMS take 2 nodes each, 1 given do not divide")));
    EXPECT_EQ(6u, orphan.elementCount());
    EXPECT_TRUE(orphan.setElements(ElementBlock::BEAMS, {0, 1}, {1}));
    EXPECT_EQ(1u, orphan.elementCount());
}

}  // namespace
