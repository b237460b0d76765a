#include "NuoZRFx/Database.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <memory>

#include "support/InterfaceTest.h"
#include "support/Model.h"
#include "support/OutputOf.h"

namespace {

using namespace nuo::zrfx;
using namespace test;
using testing::ElementsAre;

class DatabaseTest : public InterfaceTest {
protected:
    void SetUp() override { Create(); }

    void ExpectNotConstructed(File* file, const nuo::Str& name, int id,
                              const std::vector<std::string>& messages) {
        const PtrRef<Database> database =
            new Database(file, name, id, Database::STRUCTURAL, Database::LINEAR_STATIC, "");
        ExpectRefused(database->id() >= 0, messages);
    }
};

TEST_F(DatabaseTest, WhatCannotBeConstructedIsReportedAndNotPartOfTheFile) {
    File closed;
    ASSERT_EQ(7, WriteDatabase(m_file, "Used", 7)->id());
    ExpectNotConstructed(nullptr, "a", 1, {"Given file pointer name was NULL. (Database id 1)."});
    ExpectNotConstructed(&m_file, "", 1, {"Given database name was empty. (Database id 1)."});
    ExpectNotConstructed(&m_file, "a", -1, {"Given database id was negative. (Database id -1)."});
    ExpectNotConstructed(&closed, "a", 1,
                         {"Given file was in invalid state. (Database id 1). File must be created "
                          "or opened for append before adding a case."});
    ExpectNotConstructed(&m_file, "a", 7,
                         {"Database with id 7 already registered.",
                          "Could not register database instance. (Database id 7)."});
    EXPECT_EQ(1u, m_file.databaseCount());
    EXPECT_TRUE(m_file.close());
}

TEST_F(DatabaseTest, BlocksThatCannotBeWrittenAreReported) {
    const PtrRef<Database> database = WriteDatabase(m_file, "a", 0);
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
    EXPECT_TRUE(m_file.close());
}

TEST_F(DatabaseTest, BlocksWithNegativeIdsAreReportedAndNeverWritten) {
    const PtrRef<Database> database = WriteDatabase(m_file, "a", 0);
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
    const PtrRef<Database> database = WriteDatabase(m_file, "a", 0);
    PtrRef<ResultValuesBlock> values = new ResultValuesBlock(2, ResultValuesBlock::SCALAR1D, false);
    values->addResultValue1d(1);
    EXPECT_TRUE(database->writeBlock(values.p()));
    EXPECT_THAT(TakeTexts(), ElementsAre("Target block id for mapping not set on result values "
                                         "block (block id 2)"));
    Reopen();
    EXPECT_EQ(Describe(*values), Describe(*m_file.database(0)->blockById(Block::RESULT_VALUES, 2)));
}

TEST_F(DatabaseTest, BlocksThatAreNotThereAreReported) {
    const PtrRef<Database> database = WriteDatabase(m_file, "a", 0);
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
    ASSERT_TRUE(WriteModel(m_file, "x"));
    Reopen();
    Database& database = *m_file.database(0);
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
    ASSERT_TRUE(WriteModel(m_file, "x"));
    Reopen();
    std::vector<int> ids;
    for (Database& database : m_file.databases()) ids.push_back(database.id());
    for (Case& view : m_file.fileCases()) ids.push_back(view.id());
    EXPECT_THAT(ids, ElementsAre(0, 7, 3, 0));
    Database& database = *m_file.database(0);
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
    ASSERT_TRUE(WriteModel(m_file, "x") && m_file.close());
    auto file = std::make_unique<File>();
    ASSERT_TRUE(file->open(m_name));
    const PtrRef<Database> database = file->database(0);
    const PtrRef<Case> view = file->fileCase(0);
    const PtrRef<Block> nodes = database->blockById(Block::NODES, 1);
    const PtrRef<Block> elements = database->blockById(Block::ELEMENTS, 1);
    const std::string nodesBefore = Describe(*nodes);
    ASSERT_TRUE(file->close());
    for (int round = 0; round < 2; ++round, file.reset()) {
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

/// A small model, whose blocks a test changes before they are written.
struct SmallModel {
    SmallModel() {
        nodes->setNodes(std::vector<float>(9, 1.5f), {});
        elements->setNodeBlockId(1);
        elements->addElement(ElementBlock::TRIANGLES, {0, 1, 2});
        states->addStateInfo(1, "", 0, StateInfoBlock::TIME);
        geometry->addElementBlock(0, 1, 1);
        values->setMapToBlockId(1, Block::NODES);
        values->setResultValues(std::vector<float>(9, 2.5f), {});
        result->setResultId(1);
        result->addResultValuesBlock(5, 1);
        set->addItem(0, 1);
    }

    void Write(Database& database) const {
        for (const PtrRef<Block>& block : std::vector<PtrRef<Block>>{
                 nodes, elements, states, geometry, values, result, moves, set}) {
            EXPECT_TRUE(block.isNull() || database.writeBlock(block.p()));
        }
    }

    PtrRef<NodeBlock> nodes = new NodeBlock(1, false);
    PtrRef<ElementBlock> elements = new ElementBlock(1, false, false);
    PtrRef<StateInfoBlock> states = new StateInfoBlock;
    PtrRef<GeometryBlock> geometry = new GeometryBlock(1);
    PtrRef<ResultValuesBlock> values = new ResultValuesBlock(5, ResultValuesBlock::VECTOR3D, false);
    PtrRef<ResultBlock> result =
        new ResultBlock(2, ResultBlock::DISPLACEMENT, ResultBlock::NODE_MAPPING);
    PtrRef<Block> moves;
    PtrRef<SetBlock> set = new SetBlock(3, false);
};

struct Misfit {
    const char* name;
    void (*change)(SmallModel& model);
    std::vector<std::string> findings;
    bool isInDocuments = true;
};

const Misfit kMisfits[] = {
    {"nothing", [](SmallModel&) {}, {}},
    {"too few values",
     [](SmallModel& model) { model.values->setResultValues(std::vector<float>(6, 0), {}); },
     {"ResultValues block 5: has values of 2 items, its target has 3."}},
    {"components of another type",
     [](SmallModel& model) {
         model.result = new ResultBlock(2, ResultBlock::SCALAR, ResultBlock::NODE_MAPPING);
         model.result->setResultId(1);
         model.result->addResultValuesBlock(5, 1);
     },
     {"ResultValues block 5: has 3 values an item, its result 1."}},
    {"values of elements on nodes",
     [](SmallModel& model) {
         model.result = new ResultBlock(2, ResultBlock::VECTOR, ResultBlock::SURFACE_MAPPING);
         model.result->setResultId(1);
         model.result->addResultValuesBlock(5, 1);
         model.values->setMapToBlockId(1, Block::ELEMENTS);
     },
     {"ResultValues block 5: has values of 3 items, its target has 1."}},
    {"a missing target",
     [](SmallModel& model) { model.values->setMapToBlockId(9, Block::NODES); },
     {"ResultValues block 5, target block: there is no block of nodes, elements or faces of id "
      "9."}},
    {"missing values and a missing state",
     [](SmallModel& model) { model.result->addResultValuesBlock(6, 4); },
     {"Results block 2, state 4: there is no state 4.",
      "Results block 2, state 4: there is no block ResultValues:6."}},
    {"missing nodes",
     [](SmallModel& model) { model.elements->setNodeBlockId(7); },
     {"Elements block 1, node block: there is no block Nodes:7."}},
    {"a node beyond the last",
     [](SmallModel& model) {
         model.elements->addElement(ElementBlock::BEAMS, {1, 3});
     },
     {"Elements block 1: node index 3 is beyond the 3 nodes."},
     false},
    {"a part and a set of missing elements",
     [](SmallModel& model) {
         model.geometry->addElementBlock(0, 8, 2);
         model.set->addItem(0, 8);
     },
     {"Geometry block 1, state 0, geometry 0, part 1: there is no block Elements:8.",
      "Set block 3, group 1: there is no block Elements:8."}},
    {"a transformation of nothing",
     [](SmallModel& model) {
         PtrRef<TransformationResultBlock> moves = new TransformationResultBlock(4);
         moves->setResultId(8);
         moves->addTransformationResultValuesBlock(3, 1);
         model.moves = moves;
     },
     {"TransformationResults block 4, state 1: there is no block TransformationResultValues:3."}},
};

std::vector<std::string> SentencesOf(const Database& database) {
    std::vector<std::string> sentences;
    for (const nuo::Str& finding : database.check()) sentences.push_back(finding.toStdString());
    return sentences;
}

TEST_F(DatabaseTest, BlocksThatDoNotFitTogetherAreListedAndWarnedOfOnClose) {
    int id = 0;
    for (const Misfit& misfit : kMisfits) {
        SCOPED_TRACE(misfit.name);
        SmallModel model;
        misfit.change(model);
        PtrRef<Database> database =
            new Database(&m_file, "m", ++id, Database::STRUCTURAL, Database::TRANSIENT, "");
        model.Write(*database);
        EXPECT_EQ(misfit.findings, SentencesOf(*database));
        Reopen();
        std::vector<std::string> warnings;
        for (const std::string& finding : misfit.findings) {
            warnings.push_back(finding + " (database id " + std::to_string(id) + ")");
        }
        EXPECT_EQ(warnings, TakeWarnings());
        const std::size_t expected = misfit.isInDocuments ? misfit.findings.size() : 0;
        EXPECT_EQ(expected, SentencesOf(*m_file.database(m_file.databaseCount() - 1)).size());
        ASSERT_TRUE(m_file.close());
        ASSERT_TRUE(m_file.openForAppend(m_name));
    }
}

TEST_F(DatabaseTest, CheckOfAnAppendedStateLooksIntoTheDocumentsOfTheOthers) {
    PtrRef<Database> database =
        new Database(&m_file, "m", 1, Database::STRUCTURAL, Database::TRANSIENT, "");
    SmallModel().Write(*database);
    ASSERT_TRUE(m_file.close());
    ASSERT_TRUE(m_file.openForAppend(m_name));
    database = m_file.database(0);
    PtrRef<ResultValuesBlock> values = new ResultValuesBlock(6, ResultValuesBlock::VECTOR3D, false);
    values->setMapToBlockId(1, Block::NODES);
    values->setResultValues(std::vector<float>(12, 0), {});
    const auto result = database->read<ResultBlock>(2);
    result->addResultValuesBlock(6, 1);
    ASSERT_TRUE(database->writeBlock(values.p()) && database->writeBlock(result.p()));
    ASSERT_TRUE(m_file.close());
    EXPECT_THAT(TakeWarnings(),
                ElementsAre("ResultValues block 6: has values of 4 items, its target has 3. "
                            "(database id 1)"));
}

TEST_F(DatabaseTest, OneMistakeInManyBlocksGivesFewWarnings) {
    PtrRef<Database> database =
        new Database(&m_file, "m", 1, Database::STRUCTURAL, Database::TRANSIENT, "");
    SmallModel().Write(*database);
    for (int id = 10; id < 40; ++id) {
        PtrRef<ResultValuesBlock> values =
            new ResultValuesBlock(id, ResultValuesBlock::VECTOR3D, false);
        values->setMapToBlockId(2, Block::NODES);
        ASSERT_TRUE(database->writeBlock(values.p()));
    }
    EXPECT_EQ(30u, database->check().size());
    ASSERT_TRUE(m_file.close());
    const std::vector<std::string> warnings = TakeWarnings();
    ASSERT_EQ(11u, warnings.size());
    EXPECT_EQ("20 more blocks do not fit. (database id 1)", warnings.back());
}

// The largest error of the values of a block, as a part of them.
double ErrorOf(const std::vector<float>& written, Database& database, int id) {
    const auto read = database.read<ResultValuesBlock>(id)->resultValues();
    double error = written.size() == read.size() ? 0 : 1;
    for (std::size_t i = 0; i < read.size(); ++i) {
        error = std::max(error, std::abs((double{read[i]} - written[i]) / written[i]));
    }
    return error;
}

TEST_F(DatabaseTest, ResultValuesKeepTheDigitsThatTheFileTheResultOrTheBlockSays) {
    struct Case {
        const char* name;
        int ofFile, ofResult, ofBlock;
        bool isResultFirst;
        int digits;
    };
    const Case cases[] = {{"none", 0, 0, 0, false, 0},
                          {"file", 4, 0, 0, false, 4},
                          {"result", 0, 3, 0, true, 3},
                          {"result of a file", 5, 3, 0, true, 3},
                          {"block", 0, 0, 2, false, 2},
                          {"block of a file", 4, 0, 2, true, 2},
                          {"result after its values", 0, 3, 0, false, 0}};
    std::vector<float> written(3000);
    for (std::size_t i = 0; i < written.size(); ++i) {
        written[i] = std::sin(static_cast<float>(i + 1)) * 1000;
    }
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        FileSettings settings;
        settings.significantDigits = c.ofFile;
        ASSERT_TRUE(m_file.create(m_name, settings));
        const PtrRef<Database> database = WriteDatabase(m_file, "m", 1);
        PtrRef<NodeBlock> nodes = new NodeBlock(1, false);
        nodes->setNodes(written, {});
        PtrRef<ResultValuesBlock> values =
            new ResultValuesBlock(5, ResultValuesBlock::VECTOR3D, false);
        values->setMapToBlockId(1, Block::NODES);
        values->setResultValues(written, {});
        values->setSignificantDigits(c.ofBlock);
        PtrRef<ResultBlock> result =
            new ResultBlock(2, ResultBlock::VECTOR, ResultBlock::NODE_MAPPING);
        result->setResultId(1);
        result->addResultValuesBlock(5, 1);
        result->setSignificantDigits(c.ofResult);
        const std::string before = Describe(*values) + Describe(*result);
        ASSERT_TRUE(database->writeBlock(nodes.p()));
        ASSERT_TRUE(!c.isResultFirst || database->writeBlock(result.p()));
        ASSERT_TRUE(database->writeBlock(values.p()) && database->writeBlock(result.p()));
        EXPECT_EQ(before, Describe(*values) + Describe(*result));
        Reopen();
        Database& read = *m_file.database(0);
        const PtrRef<NodeBlock> readNodes = read.read<NodeBlock>(1);
        const nuo::Span<const float> coordinates = readNodes->coordinates();
        EXPECT_EQ(written, std::vector<float>(coordinates.begin(), coordinates.end()));
        const double error = ErrorOf(written, read, 5);
        const double bound = c.digits > 0 ? 0.5 * std::pow(10, -c.digits) : 0;
        EXPECT_LE(error, bound);
        EXPECT_GE(error, bound / 40);
        const int said = c.ofBlock > 0 && c.ofFile > 0 ? c.ofBlock : std::max(c.digits, c.ofResult);
        EXPECT_EQ(said, read.read<ResultBlock>(2)->significantDigits());
    }
}

std::vector<float> Ramp(std::size_t count, float step) {
    std::vector<float> values(count);
    for (std::size_t i = 0; i < count; ++i) values[i] = step * static_cast<float>(i);
    return values;
}

TEST_F(DatabaseTest, HistoryTakesNoMemoryThatOnlyADocumentClaims) {
    const PtrRef<Database> database = WriteDatabase(m_file, "m", 1);
    PtrRef<NodeBlock> nodes = new NodeBlock(9, true);
    nodes->setNodes({0, 0, 0, 1, 1, 1}, {4, 5});
    PtrRef<ResultValuesBlock> values = new ResultValuesBlock(1, ResultValuesBlock::SCALAR1D, true);
    values->setMapToBlockId(9, Block::NODES);
    EXPECT_TRUE(values->addResultValue1d(7, 5));
    PtrRef<ResultBlock> result = new ResultBlock(2, ResultBlock::SCALAR, ResultBlock::NODE_MAPPING);
    result->addResultValuesBlock(1, 1);
    EXPECT_TRUE(database->writeBlock(nodes.p()) && database->writeBlock(values.p()) &&
                m_file.close());
    EXPECT_EQ("", OutputOf("python3 " NUO_TEST_FOLDER "/support/replace_in_archive.py '" +
                           m_name.toStdString() + "' 'NumItems=\"1\"' 'NumItems=\"2000000000\"'"));
    ASSERT_TRUE(m_file.open(m_name));
    TakeWarnings();
    float history = 0;
    EXPECT_FALSE(m_file.database(0)->readHistory(*result, 9, 1, nuo::Span<float>::of(&history, 1)));
    EXPECT_EQ(Error::DAMAGED, m_file.database(0)->lastError().code());
    EXPECT_EQ(
        "Number of specified items (2000000000) does not match number of items (1) in "
        "'Database001\\ResultValues\\ResultValues0001.dat'",
        m_file.database(0)->lastError().text().toStdString());
    TakeTexts();
}

// A model large enough for several pieces, in each form that a file can have.
class PartsTest : public DatabaseTest, public testing::WithParamInterface<FileSettings> {
protected:
    static constexpr std::size_t kNodes = 300000;
    static constexpr std::size_t kQuads = 90000;

    void SetUp() override {
        FileSettings settings = GetParam();
        EXPECT_TRUE(m_file.create(m_name, settings));
        const PtrRef<Database> database = WriteDatabase(m_file, "m", 1);
        PtrRef<NodeBlock> nodes = new NodeBlock(1, true);
        std::vector<int> ids(kNodes);
        for (std::size_t i = 0; i < kNodes; ++i) ids[i] = 10 + static_cast<int>(i);
        nodes->setNodes(Ramp(3 * kNodes, 0.5f), ids);
        PtrRef<ElementBlock> elements = new ElementBlock(1, true, false);
        elements->setNodeBlockId(1);
        elements->addElement(ElementBlock::TRIANGLES, {0, 1, 2}, 7);
        std::vector<int> quads(4 * kQuads);
        for (std::size_t i = 0; i < quads.size(); ++i) quads[i] = static_cast<int>(i * 31 % kNodes);
        std::vector<int> quadIds(ids.begin(), ids.begin() + kQuads);
        elements->addElements(ElementBlock::QUADS, quads, quadIds);
        m_quads = quads;
        PtrRef<ResultBlock> result =
            new ResultBlock(2, ResultBlock::VECTOR, ResultBlock::NODE_MAPPING);
        result->setResultId(1);
        for (int state = 1; state <= 4; ++state) {
            const bool isSparse = state == 3;
            PtrRef<ResultValuesBlock> values =
                new ResultValuesBlock(state, ResultValuesBlock::VECTOR3D, isSparse);
            values->setMapToBlockId(1, Block::NODES);
            EXPECT_TRUE(isSparse ? values->addResultValue3d(1, 2, 3, ids[kNodes - 1])
                                 : values->setResultValues(
                                       Ramp(3 * kNodes, static_cast<float>(state)), {}));
            EXPECT_TRUE(database->writeBlock(values.p()));
            result->addResultValuesBlock(state, state);
        }
        result->addResultValuesBlock(1, 5);
        result->setResultValuesBlocks({77}, 6);
        EXPECT_TRUE(database->writeBlock(nodes.p()) && database->writeBlock(elements.p()) &&
                    database->writeBlock(result.p()));
        EXPECT_TRUE(m_file.close() && m_file.open(m_name, settings.password));
        TakeWarnings();
    }

    Database& Read() { return *m_file.database(0); }

    std::vector<int> m_quads;
};

TEST_P(PartsTest, PartsAreThoseOfTheWholeArrays) {
    EXPECT_EQ(kNodes, Read().itemCount(Block::NODES, 1));
    EXPECT_EQ(kQuads + 1, Read().itemCount(Block::ELEMENTS, 1));
    EXPECT_EQ(1u, Read().itemCount(Block::RESULT_VALUES, 3));
    BlockSummary summary;
    ASSERT_TRUE(Read().readSummary(Block::ELEMENTS, 1, &summary));
    EXPECT_TRUE(summary.elementNodeCount == 4 * kQuads + 3 && summary.hasIds &&
                summary.targetBlockId == 1 && !summary.refersNodesByIds);
    ASSERT_TRUE(Read().readSummary(Block::RESULT_VALUES, 3, &summary));
    EXPECT_TRUE(summary.dimension == 3 && summary.targetBlockId == 1);
    const std::vector<ElementGroupSize> groups = Read().elementGroupSizes(1);
    ASSERT_EQ(2u, groups.size());
    EXPECT_EQ(ElementBlock::QUADS, groups[1].type);
    EXPECT_EQ(kQuads, groups[1].elementCount);
    for (const std::size_t first :
         {std::size_t{0}, std::size_t{1}, std::size_t{43690}, kNodes - 5}) {
        for (const std::size_t count :
             {std::size_t{0}, std::size_t{5}, std::size_t{90000}, kNodes}) {
            SCOPED_TRACE(std::to_string(count) + " from " + std::to_string(first));
            std::vector<float> xyz(3 * count);
            std::vector<float> values(3 * count);
            std::vector<int> ids(count);
            const bool isInside = first + count <= kNodes;
            EXPECT_EQ(isInside, Read().readCoordinates(1, first, xyz));
            EXPECT_EQ(isInside, Read().readNodeIds(1, first, ids));
            EXPECT_EQ(isInside, Read().readResultValues(2, first, values));
            TakeTexts();
            for (std::size_t i = 0; isInside && i < 3 * count; ++i) {
                const auto at = static_cast<float>(3 * first + i);
                ASSERT_TRUE(xyz[i] == 0.5f * at && values[i] == 2 * at &&
                            ids[i / 3] == 10 + static_cast<int>(first + i / 3))
                    << i;
            }
        }
    }
    std::vector<int> nodes(4 * 3);
    std::vector<int> ids(3);
    ASSERT_TRUE(Read().readElementNodes(1, 1, 70001, nodes) &&
                Read().readElementIds(1, 1, 70001, ids));
    EXPECT_EQ(std::vector<int>(m_quads.begin() + 4 * 70001, m_quads.begin() + 4 * 70004), nodes);
    EXPECT_THAT(ids, ElementsAre(70011, 70012, 70013));
}

TEST_P(PartsTest, HistoryOfAnItemGoesThroughAllStates) {
    const auto result = Read().read<ResultBlock>(2);
    result->setResultValuesBlocks({1}, 6);
    std::vector<float> values(6 * 3);
    for (const std::size_t node : {std::size_t{5}, kNodes - 1}) {
        ASSERT_TRUE(Read().readHistory(*result, 1, node, values));
        const bool isLast = node == kNodes - 1;
        for (std::size_t i = 0; i < values.size(); ++i) {
            const std::size_t state = i / 3;
            const float step = state >= 4 ? 1 : static_cast<float>(state + 1);
            const float expected = state != 2 ? step * static_cast<float>(3 * node + i % 3)
                                   : isLast   ? static_cast<float>(i % 3 + 1)
                                              : 3e38f;
            EXPECT_TRUE(values[i] == expected || (expected == 3e38f && !(values[i] < 2.99e38f)))
                << i << ": " << values[i];
        }
    }
    values.resize(17);
    ExpectRefused(Read().readHistory(*result, 1, 0, values),
                  {"A history of 6 states with 3 values each was asked for as 17 values."});
    EXPECT_EQ(Error::INVALID_ARGUMENT, Read().lastError().code());
}

TEST_P(PartsTest, PartsThatAreNotThereAreRefused) {
    std::vector<float> values(6);
    std::vector<int> ids(6);
    const auto expectRefused = [&](bool isRead, Error::Code code) {
        EXPECT_FALSE(isRead);
        EXPECT_EQ(code, Read().lastError().code()) << Read().lastError().text().toStdString();
    };
    expectRefused(Read().readCoordinates(9, 0, values), Error::NOT_FOUND);
    expectRefused(Read().readMapToItemIds(1, 0, ids), Error::NOT_FOUND);
    expectRefused(Read().readElementNodes(1, 2, 0, ids), Error::NOT_FOUND);
    expectRefused(Read().readElementNodes(1, 1, 0, ids), Error::INVALID_ARGUMENT);
    expectRefused(Read().readResultValues(1, kNodes, values), Error::INVALID_ARGUMENT);
    expectRefused(Read().readResultValues(1, SIZE_MAX, values), Error::INVALID_ARGUMENT);
    expectRefused(Read().itemCount(Block::SET, 1) > 0, Error::NOT_FOUND);
    TakeTexts();
}

FileSettings SettingsOf(bool isBinary, int level, const char* password) {
    FileSettings settings;
    settings.binary = isBinary;
    settings.compressionLevel = level;
    settings.password = password;
    return settings;
}

INSTANTIATE_TEST_SUITE_P(Forms, PartsTest,
                         testing::Values(SettingsOf(true, 5, ""), SettingsOf(true, 0, ""),
                                         SettingsOf(true, 9, ""), SettingsOf(true, 1, "secret")));

}  // namespace
