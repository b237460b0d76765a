// Readers beside a writer: those that stay as they are, those that follow, those that come anew.
#include <sys/wait.h>
#include <unistd.h>

#include <random>
#include <set>

#include "support/InterfaceTest.h"
#include "support/Model.h"

namespace {

using namespace nuo::zrfx;
using namespace test;

constexpr int kFirstGrown = 1000;
constexpr int kFirstLarge = 9000;
constexpr int kGrowingResult = 900;
constexpr int kLargeEvery = 80;
constexpr std::size_t kLargeCount = 2'500'000;

std::vector<float> GrownValues(int step) {
    return std::vector<float>(10, static_cast<float>(step));
}

// More than 8 MiB however they are packed.
std::vector<float> LargeValues(int step) {
    std::minstd_rand random(static_cast<unsigned>(step));
    std::vector<float> values(kLargeCount);
    for (float& value : values) value = static_cast<float>(random()) * 1.37e-3f;
    return values;
}

bool WriteValues(Database& database, int id, const std::vector<float>& values) {
    const PtrRef<ResultValuesBlock> block =
        new ResultValuesBlock(id, ResultValuesBlock::SCALAR1D, false);
    return block->setMapToBlockId(1, Block::NODES) && block->setResultValues(values, {}) &&
           database.writeBlock(block.p());
}

// A solver: with each step all blocks are replaced by others that tell the step, values are added,
// and a result lists them.
class Solver {
public:
    explicit Solver(File& file)
        : m_file(file),
          m_database(
              new Database(&file, "Model", 0, Database::STRUCTURAL, Database::TRANSIENT, "")) {
        m_result->setResultId(kGrowingResult);
    }

    bool Step(int step) {
        for (const PtrRef<Block>& block : MakeBlocks("<step " + std::to_string(step) + ">")) {
            if (!m_database->writeBlock(block.p())) return false;
        }
        const bool isLarge = step % kLargeEvery == 0;
        return (!isLarge || WriteValues(*m_database, kFirstLarge + step, LargeValues(step))) &&
               WriteValues(*m_database, kFirstGrown + step, GrownValues(step)) &&
               m_result->addResultValuesBlock(kFirstGrown + step, step) &&
               m_database->writeBlock(m_result.p()) && m_file.flush();
    }

private:
    File& m_file;
    const PtrRef<Database> m_database;
    const PtrRef<ResultBlock> m_result =
        new ResultBlock(kGrowingResult, ResultBlock::SCALAR, ResultBlock::NODE_MAPPING);
};

PtrRef<Block> Read(Database& database, Block::BlockType type, std::size_t index) {
    if (type != Block::SET) return database.blockByIndex(type, index);
    return PtrRef<Block>(database.setBlockByIndex(index).p());
}

class RefreshTest : public InterfaceTest {
protected:
    // The step that all blocks of the file tell; 0, with a failure, where they do not agree.
    int StepOf(File& file) {
        Database& database = *file.database(0);
        std::set<int> steps;
        int grown = 0;
        for (int type = Block::NODES; type <= Block::SET; ++type) {
            const auto blockType = static_cast<Block::BlockType>(type);
            for (std::size_t i = 0; i < database.blockCount(blockType); ++i) {
                const PtrRef<Block> block = Read(database, blockType, i);
                EXPECT_TRUE(block) << "type " << type << " index " << i;
                if (!block) return 0;
                if (blockType == Block::RESULT_VALUES && block->blockId() > kFirstGrown) {
                    grown += ExpectOwnValues(static_cast<ResultValuesBlock&>(*block));
                } else if (block->blockId() == kGrowingResult) {
                    ExpectListed(static_cast<ResultBlock&>(*block), &steps);
                } else {
                    AddSteps(Describe(*block), &steps);
                }
            }
        }
        EXPECT_EQ(1u, steps.size()) << testing::PrintToString(steps);
        EXPECT_EQ(*steps.begin(), grown);
        return steps.size() == 1 && *steps.begin() == grown ? grown : 0;
    }

    // 1 for values that each step adds.
    int ExpectOwnValues(const ResultValuesBlock& block) {
        const bool isLarge = block.blockId() >= kFirstLarge;
        const int step = block.blockId() - (isLarge ? kFirstLarge : kFirstGrown);
        EXPECT_TRUE(block.resultValues() == (isLarge ? LargeValues(step) : GrownValues(step)))
            << block.blockId();
        return isLarge ? 0 : 1;
    }
    void ExpectListed(const ResultBlock& block, std::set<int>* steps) {
        const int last = static_cast<int>(block.stateCount());
        steps->insert(last);
        for (int step : {1, last}) {
            EXPECT_EQ(std::vector<int>{kFirstGrown + step},
                      block.resultValuesBlocks(static_cast<std::size_t>(step - 1)));
        }
    }
    static void AddSteps(const std::string& text, std::set<int>* steps) {
        const std::string mark = "<step ";
        for (auto at = text.find(mark); at != std::string::npos; at = text.find(mark, at + 1)) {
            steps->insert(std::stoi(text.substr(at + mark.size())));
        }
    }
};

TEST_F(RefreshTest, ReaderShowsWhatWasFlushedWhenItIsRefreshedAndNotBefore) {
    File writing;
    ASSERT_TRUE(writing.create(m_name, FileSettings()));
    Solver solver(writing);
    ASSERT_TRUE(solver.Step(1));
    File following, staying;
    ASSERT_TRUE(following.open(m_name) && staying.open(m_name));
    bool isChanged = true;
    ASSERT_TRUE(following.refresh(&isChanged));
    EXPECT_FALSE(isChanged);
    const PtrRef<Database> database = following.database(0);
    for (int step = 2; step < 12; ++step) {
        ASSERT_TRUE(solver.Step(step));
        EXPECT_EQ(step - 1, StepOf(following));
        ASSERT_TRUE(following.refresh(&isChanged));
        EXPECT_TRUE(isChanged);
        EXPECT_EQ(step, StepOf(following));
        EXPECT_EQ(1, StepOf(staying));
    }
    EXPECT_EQ(database.p(), following.database(0));
    ASSERT_TRUE(writing.close() && following.refresh());
    EXPECT_EQ(11, StepOf(following));
}

TEST_F(RefreshTest, DatabasesCasesAndTextsOfOthersAreShown) {
    File writing, reading;
    ASSERT_TRUE(writing.create(m_name, FileSettings()));
    ASSERT_TRUE(Solver(writing).Step(1) && writing.close() && reading.open(m_name));
    EXPECT_EQ(0u, reading.userTextFileCount());
    ASSERT_TRUE(writing.openForAppend(m_name));
    const PtrRef<Database> second = WriteDatabase(writing, "Second", 5);
    const PtrRef<Case> view = new Case(&writing, "View", 3, 0);
    view->setDescription("first");
    ASSERT_TRUE(writing.addUserTextFile("notes", "text") && writing.flush());
    ASSERT_TRUE(reading.refresh());
    ASSERT_EQ(2u, reading.databaseCount());
    EXPECT_EQ(5, reading.database(1)->id());
    EXPECT_EQ(1u, reading.database(1)->blockCount(Block::STATE_INFO));
    ASSERT_EQ(1u, reading.fileCaseCount());
    EXPECT_EQ(nuo::Str("first"), reading.fileCase(0)->description());
    EXPECT_EQ(nuo::Str("text"), reading.userTextFileContent(0));
    view->setDescription("second");
    ASSERT_TRUE(writing.close() && reading.refresh());
    EXPECT_EQ(nuo::Str("second"), reading.fileCase(0)->description());
    EXPECT_EQ(1u, reading.fileCaseCount());
}

TEST_F(RefreshTest, FileThatTakesTheNameIsShownInstead) {
    File writing, reading;
    ASSERT_TRUE(writing.create(m_name, FileSettings()));
    ASSERT_TRUE(WriteModel(writing, "old") && writing.close());
    ASSERT_TRUE(reading.open(m_name) && writing.create(m_name, FileSettings()));
    Solver solver(writing);
    bool isChanged = true;
    ASSERT_TRUE(reading.refresh(&isChanged));
    EXPECT_FALSE(isChanged);
    EXPECT_EQ(DescribeModel("old"), Describe(reading));
    ASSERT_TRUE(solver.Step(1) && reading.refresh(&isChanged));
    EXPECT_TRUE(isChanged);
    EXPECT_EQ(1u, reading.databaseCount());
    EXPECT_EQ(0u, reading.fileCaseCount());
    EXPECT_EQ(1, StepOf(reading));
    std::filesystem::remove(m_name.toStdString());
    ExpectRefused(reading.refresh(), {"Error refreshing file."});
    EXPECT_EQ(1, StepOf(reading));
}

TEST_F(RefreshTest, OnlyAFileThatIsReadIsRefreshed) {
    File file;
    EXPECT_FALSE(file.refresh());
    ASSERT_TRUE(file.create(m_name, FileSettings()));
    ExpectRefused(file.refresh(), {"A file that is open for writing cannot be refreshed."});
    file.abandon();
    EXPECT_FALSE(std::filesystem::exists(m_name.toStdString()));
}

// Every block of every type is read each time, by all three.
TEST_F(RefreshTest, SolverThatRunsNeverDisturbsItsReaders) {
    constexpr int kSteps = 200;
    const pid_t solver = fork();
    if (solver == 0) {
        File file;
        bool isWritten = file.create(m_name, FileSettings());
        Solver work(file);
        for (int step = 1; step <= kSteps && isWritten; ++step) isWritten = work.Step(step);
        _exit(isWritten && file.close() ? 0 : 1);
    }
    File following, staying;
    while (!std::filesystem::exists(m_name.toStdString()) ||
           std::filesystem::file_size(m_name.toStdString()) == 0) {
        usleep(1000);
    }
    ASSERT_TRUE(following.open(m_name) && staying.open(m_name));
    const int stayed = StepOf(staying);
    int last = stayed;
    int status = -1;
    for (bool isRunning = true; isRunning && !HasFailure();) {
        isRunning = waitpid(solver, &status, WNOHANG) == 0;
        ASSERT_TRUE(following.refresh());
        const int followed = StepOf(following);
        EXPECT_GE(followed, last);
        File anew;
        ASSERT_TRUE(anew.open(m_name));
        last = StepOf(anew);
        EXPECT_GE(last, followed);
        EXPECT_EQ(stayed, StepOf(staying));
    }
    EXPECT_EQ(0, status);
    EXPECT_EQ(kSteps, last);
    EXPECT_THAT(TakeCauses(), testing::IsEmpty());
}

}  // namespace
