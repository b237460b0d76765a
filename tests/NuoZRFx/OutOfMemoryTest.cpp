#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <functional>

#include "support/FailingMemory.h"
#include "support/InterfaceTest.h"
#include "support/Model.h"

namespace {

using namespace nuo::zrfx;
using namespace test;
using Failing = FailingMemory::Failing;
using testing::ElementsAreArray;

constexpr const char* kLongName = "A name that is long enough to need some memory of its own";
// The same as a part of blocks has it.
const std::string kUnit = std::string("N/mm\u00B2 ") + kLongName;
const std::string kStateName = std::string("Step ") + kLongName;

// What the library logs, which is not its allocation.
class Silent : public nuo::LogDestination {
    void log(const nuo::LogMessage&) override {}
};

// A user who does one thing after another. One that fails is done again, if he is patient, once
// there is memory again, and must then be done; else he stops there.
class User {
public:
    User(bool isPatient, const std::string& path) : m_isPatient(isPatient), m_path(path.c_str()) {}

    bool Do(const char* what, const std::function<bool()>& step) {
        if (m_hasStopped) return false;
        if (IsDone(what, step)) return true;
        EXPECT_TRUE(FailingMemory::HasFailed()) << what;
        FailingMemory::Stop();
        m_hasStopped = !m_isPatient || !IsDone(what, step);
        EXPECT_TRUE(!m_isPatient || !m_hasStopped) << what << " fails with memory";
        return !m_hasStopped;
    }

    bool HasStopped() const { return m_hasStopped; }
    const char* Path() const { return m_path; }

private:
    static bool IsDone(const char* what, const std::function<bool()>& step) {
        try {
            return step();
        } catch (const std::exception& exception) {
            const FailingMemory::Pause pause;
            ADD_FAILURE() << what << " throws " << exception.what();
        }
        return false;
    }

    bool m_isPatient;
    const char* m_path;
    bool m_hasStopped = false;
};

void fill(Case& view) {
    nuo::Image image = [] {
        const FailingMemory::Pause pause;
        return MakeImage(8, 8);
    }();
    view.setName(kLongName);
    view.setDescription(kLongName);
    view.setSnapshot(&image);
    view.setProperties(MakeCamera().p());
}

// Adds a database of all blocks and a case, with a flush between. Says how many groups of blocks
// are flushed.
std::size_t addModel(User& user, File& file, int id) {
    PtrRef<Database> database;
    PtrRef<Case> view;
    std::size_t flushed = 0;
    user.Do("database", [&] {
        database =
            new Database(&file, kLongName, id, Database::THERMAL, Database::MODAL, kLongName);
        return database->id() == id;
    });
    for (std::size_t group = 0; group < kBlockGroupCount; ++group) {
        user.Do("blocks", [&] {
            const std::vector<PtrRef<Block>> blocks = MakeBlockGroup(group, kLongName);
            return !blocks.empty() && std::all_of(blocks.begin(), blocks.end(), [&](auto& block) {
                return database->writeBlock(block.p());
            });
        });
        if (user.Do("flush", [&] { return file.flush(); })) flushed = group + 1;
    }
    user.Do("case", [&] {
        view = new Case(&file, kLongName, id, id);
        return view->id() == id;
    });
    if (!user.HasStopped()) fill(*view);
    user.Do("texture", [&] {
        const FailingMemory::Pause pause;
        nuo::Image image = MakeImage(4, 4);
        return view->addImage(kLongName, &image);
    });
    user.Do("text", [&] { return file.addUserTextFile("a", kLongName); });
    // What is set without a result is set again when it turns out to be lost.
    int attempts = 0;
    const auto flush = [&] {
        if (attempts++ > 0) fill(*view);
        return file.flush();
    };
    return user.Do("flush", flush) ? kBlockGroupCount : flushed;
}

// What a solver writes again with each step: lists of states, long enough for a flush to append no
// more than what is new.
struct Simulation {
    PtrRef<File> file = new File;
    PtrRef<Database> database;
    PtrRef<StateInfoBlock> states = new StateInfoBlock;
    PtrRef<ResultBlock> result = new ResultBlock(1, ResultBlock::SCALAR, ResultBlock::NODE_MAPPING);
};

// Says whether the step is flushed.
bool addStep(User& user, Simulation& run, int state) {
    user.Do("state",
            [&] { return run.states->addStateInfo(state, kLongName, 1, StateInfoBlock::TIME); });
    user.Do("values", [&] { return run.result->addResultValuesBlock(state, state); });
    user.Do("states", [&] { return run.database->writeBlock(run.states.p()); });
    user.Do("result", [&] { return run.database->writeBlock(run.result.p()); });
    return user.Do("flush", [&] { return run.file->flush(); });
}

// A run on a new file that has come to such flushes, with memory.
Simulation startedRun(User& user) {
    const FailingMemory::Pause pause;
    Simulation run;
    EXPECT_TRUE(run.file->create(user.Path(), FileSettings()));
    run.database = WriteDatabase(*run.file, "a", 1);
    run.result->setResultId(1);
    for (int state = 2; state < 20; ++state) {
        run.states->addStateInfo(state, Str(std::string(5000, 'a')), 1, StateInfoBlock::TIME);
        run.result->addResultValuesBlock(state, state);
    }
    for (int state = 20; state < 26; ++state) {
        // This one changes the list from its second state on.
        if (state == 24) run.states->addGroupInfo(1000, Str(std::string(30000, 'b')), {3});
        EXPECT_TRUE(addStep(user, run, state));
    }
    return run;
}

std::vector<std::string> described(const Simulation& run) {
    const FailingMemory::Pause pause;
    return {Describe(*run.states), Describe(*run.result)};
}

// The run that a file has; without blocks where an operation failed.
Simulation readRun(PtrRef<File> file) {
    Simulation run;
    run.file = file;
    run.database = file->database(0);
    run.states = static_cast<StateInfoBlock*>(run.database->blockById(Block::STATE_INFO, 1).p());
    run.result = static_cast<ResultBlock*>(run.database->blockById(Block::RESULT, 1).p());
    return run;
}

std::vector<std::string> describedRun(const char* path) {
    const PtrRef<File> file = new File;
    EXPECT_TRUE(file->open(path));
    return described(readRun(file));
}

// Whether the operations that give copies give whole ones.
bool HasCopies(const Block& block) {
    if (const auto* nodes = dynamic_cast<const NodeBlock*>(&block)) {
        return nodes->nodes().size() == nodes->nodeCount() &&
               nodes->nodeIds().size() == (nodes->hasNodeIds() ? nodes->nodeCount() : 0);
    }
    if (const auto* elements = dynamic_cast<const ElementBlock*>(&block)) {
        std::vector<int> nodeList;
        std::vector<int> ids;
        return elements->elementGroup(0, &nodeList, &ids) &&
               nodeList.size() == elements->elementGroupElementNodeCount(0) &&
               ids.size() ==
                   (elements->hasElementIds() ? elements->elementGroupElementCount(0) : 0);
    }
    if (const auto* result = dynamic_cast<const ResultBlock*>(&block)) {
        const bool isStress = result->blockId() == 1;
        return result->attributeNames().size() == (isStress ? 2 : 0) &&
               (!isStress || result->attribute("unit") == Str(kUnit)) &&
               result->resultValuesBlocks(1).size() == 3;
    }
    if (const auto* states = dynamic_cast<const StateInfoBlock*>(&block)) {
        return states->stateName(0) == Str(kStateName) && states->groupStateIds(0).size() == 2;
    }
    return true;
}

class OutOfMemoryTest : public InterfaceTest {
protected:
    OutOfMemoryTest() {
        nuo::CoreComponent::logManager()->setDestination(new Silent);
        nuo::CoreComponent::logManager()->setLevel("", nuo::LL_DEBUG);
        testing::internal::CaptureStderr();
        File file;
        const std::string path = m_folder.File("one.zrfx");
        User user(true, path);
        EXPECT_TRUE(file.create(user.Path(), FileSettings()));
        addModel(user, file, 1);
        EXPECT_TRUE(file.close() && file.open(user.Path()));
        m_one = Describe(file);
        EXPECT_THAT(m_one, testing::SizeIs(2));
        for (const PtrRef<Block>& block : MakeBlocks(kLongName)) {
            EXPECT_THAT(m_one[0], testing::HasSubstr(Describe(*block)));
        }
        EXPECT_TRUE(file.close() && file.openForAppend(user.Path()));
        std::filesystem::copy(path, m_folder.File("before.zrfx"));
        addModel(user, file, 2);
        EXPECT_TRUE(file.close());
        m_two = Contents(path);
        std::filesystem::copy(m_folder.File("before.zrfx"), path,
                              std::filesystem::copy_options::overwrite_existing);
    }
    ~OutOfMemoryTest() override {
        const std::string messages = testing::internal::GetCapturedStderr();
        if (HasFailure()) std::printf("%s", messages.c_str());
    }

    // The same with each allocation failing in turn, every one in the long form.
    void ForEachAllocation(const std::function<void()>& use, long tries = 60) {
        const bool isLong = std::getenv("NUO_LONG_TESTS") != nullptr;
        for (const Failing failing : {Failing::kOnce, Failing::kFromThenOn}) {
            FailingMemory::Start(0, Failing::kOnce);
            use();
            const long count = FailingMemory::Stop();
            const long step = isLong ? 1 : count / tries + 1;
            long failed = 0;
            for (long i = 1; i <= count && !HasFailure(); i += step) {
                SCOPED_TRACE("allocation " + std::to_string(i));
                FailingMemory::Start(i, failing);
                use();
                FailingMemory::Stop();
                failed += FailingMemory::HasFailed();
            }
            RecordProperty(failing == Failing::kOnce ? "failed_once" : "failed_on", failed);
            std::printf("%ld of %ld allocations failed\n", failed, count);
        }
    }

    static std::vector<std::string> Contents(const std::string& path) {
        File file;
        EXPECT_TRUE(file.open(Str(path)));
        return Describe(file);
    }

    void Copy(const char* from, const char* to) {
        const FailingMemory::Pause pause;
        std::filesystem::copy(m_folder.File(from), m_folder.File(to),
                              std::filesystem::copy_options::overwrite_existing);
    }

    std::vector<std::string> m_one;
    std::vector<std::string> m_two;
};

TEST_F(OutOfMemoryTest, WhatIsDoneAgainWithMemoryIsAllThereAndRight) {
    const std::string path = m_folder.File("after.zrfx");
    for (const bool isNew : {true, false}) {
        ForEachAllocation([&] {
            if (!isNew) Copy("before.zrfx", "after.zrfx");
            User user(true, path);
            PtrRef<File> file;
            user.Do("open", [&] {
                file = new File;
                return isNew ? file->create(user.Path(), FileSettings())
                             : file->openForAppend(user.Path());
            });
            addModel(user, *file, isNew ? 1 : 2);
            user.Do("close", [&] { return file->close(); });
            FailingMemory::Pause pause;
            EXPECT_EQ(Contents(path), isNew ? m_one : m_two);
        });
    }
}

// Whether a file that is left unfinished is committed is not the matter here: what was there before
// and what was flushed must be.
TEST_F(OutOfMemoryTest, FileThatIsGivenUpHoldsWhatWasBeforeAndWhatWasFlushed) {
    const std::string path = m_folder.File("after.zrfx");
    ForEachAllocation([&] {
        Copy("before.zrfx", "after.zrfx");
        User user(false, path);
        PtrRef<File> file;
        std::size_t flushed = 0;
        user.Do("open", [&] {
            file = new File;
            return file->openForAppend(user.Path());
        });
        if (!user.HasStopped()) flushed = addModel(user, *file, 2);
        const bool isClosed = user.Do("close", [&] { return file->close(); });
        file = nullptr;
        FailingMemory::Stop();
        const std::vector<std::string> found = Contents(path);
        EXPECT_EQ(found[0], m_one[0]);
        EXPECT_TRUE(std::count(found.begin(), found.end(), m_one[1]) == 1);
        ASSERT_GE(found.size(), flushed > 0 ? 3u : 2u);
        for (std::size_t group = 0; group < flushed; ++group) {
            for (const PtrRef<Block>& block : MakeBlockGroup(group, kLongName)) {
                EXPECT_THAT(found[1], testing::HasSubstr(Describe(*block)));
            }
        }
        EXPECT_TRUE(!isClosed || found == m_two);
    });
}

TEST_F(OutOfMemoryTest, ListsThatGrowWithEachFlushAreThereAsFarAsTheyWereFlushed) {
    const std::string path = m_folder.File("run.zrfx");
    for (const bool isPatient : {true, false}) {
        ForEachAllocation(
            [&] {
                User user(isPatient, path);
                Simulation run = startedRun(user);
                std::vector<std::string> flushed = described(run);
                for (int state = 100; state < 103; ++state) {
                    if (addStep(user, run, state)) flushed = described(run);
                }
                user.Do("close", [&] { return run.file->close(); });
                run = {nullptr, nullptr, nullptr, nullptr};
                FailingMemory::Stop();
                const std::vector<std::string> found = describedRun(user.Path());
                EXPECT_EQ(isPatient ? found[0] : found[0].substr(0, flushed[0].size()), flushed[0]);
                EXPECT_EQ(isPatient ? found[1] : found[1].substr(0, flushed[1].size()), flushed[1]);
            },
            15);
    }
}

// A writer that was killed has left records at the end of the file, and something torn after them.
TEST_F(OutOfMemoryTest, RunThatGoesOnAfterAKilledOneHasAllThatWasFlushed) {
    const std::string path = m_folder.File("run.zrfx");
    const std::string next = m_folder.File("next.zrfx");
    User writer(true, path);
    Simulation whole = startedRun(writer);
    Copy("run.zrfx", "killed.zrfx");
    std::ofstream(m_folder.File("killed.zrfx"), std::ios::app) << "torn";
    EXPECT_TRUE(addStep(writer, whole, 100));
    ForEachAllocation([&] {
        Copy("killed.zrfx", "next.zrfx");
        User user(true, next);
        PtrRef<File> file;
        user.Do("open", [&] {
            file = new File;
            return file->openForAppend(user.Path());
        });
        Simulation run;
        user.Do("read", [&] {
            run = readRun(file);
            return run.states && run.result;
        });
        addStep(user, run, 100);
        user.Do("close", [&] { return file->close(); });
        const FailingMemory::Pause reading;
        EXPECT_EQ(describedRun(user.Path()), described(whole));
    });
}

// Without its first allocation.
template <typename Make>
auto lost(Make make) {
    FailingMemory::Start(1, Failing::kOnce);
    auto made = make();
    FailingMemory::Stop();
    return made;
}

TEST_F(OutOfMemoryTest, WhatWasLostIsRefusedByWhateverItIsGivenTo) {
    const Str text = lost([] { return Str(kLongName); });
    EXPECT_TRUE(text.isLost() && !text.isEmpty());
    EXPECT_TRUE(Str(text).isLost());
    FileSettings settings;
    settings.password = text;
    const std::string path = m_folder.File("lost.zrfx");
    File file;
    EXPECT_FALSE(file.create(Str(path), settings)) << "in the clear";
    ASSERT_TRUE(file.create(Str(path), FileSettings()));
    EXPECT_FALSE(file.addUserTextFile("a", text));
    const PtrRef<Case> view = new Case(&file, "a", 1, 1);
    const PtrRef<nuo::PropertySet> set = new nuo::PropertySet("camera");
    const PtrRef<nuo::PropertySetCollection> properties = new nuo::PropertySetCollection;
    properties->addPropertySet(set.p());
    set->setValue("projection_type", lost([] { return nuo::Variant(kLongName); }));
    EXPECT_FALSE(view->setProperties(properties.p()));
    EXPECT_FALSE(file.flush());
    view->setProperties(nullptr);
    EXPECT_TRUE(file.flush());
    const nuo::Image image = MakeImage(4, 4);
    nuo::Image copy = lost([&] { return nuo::Image(image); });
    EXPECT_EQ(copy.width(), 0u);
    view->setSnapshot(&copy);
    EXPECT_FALSE(file.flush());

    const PtrRef<Database> database = WriteDatabase(file, "a", 1);
    const PtrRef<SetBlock> set1 = new SetBlock(1, true);
    const PtrRef<Block> failed = lost([] { return PtrRef<Block>(new NodeBlock(1, true)); });
    const PtrRef<ResultBlock> result =
        new ResultBlock(1, ResultBlock::SCALAR, ResultBlock::NODE_MAPPING);
    result->setResultId(1);
    result->addResultValuesBlock(1, 1);
    EXPECT_TRUE(database->writeBlock(result.p()) && database->writeBlock(set1.p()));
    result->setName(text);
    lost([&] { return set1->addItem(7, 1), true; });
    for (const Block* block :
         {failed.p(), static_cast<Block*>(result.p()), static_cast<Block*>(set1.p())}) {
        EXPECT_FALSE(database->writeBlock(block)) << block->blockType();
    }
}

// Reads everything, also in copies. What an operation cannot give it gives again with memory.
TEST_F(OutOfMemoryTest, ReadingFailsOrGivesTheRightValues) {
    const std::string path = m_folder.File("one.zrfx");
    ForEachAllocation([&] {
        User user(true, path);
        PtrRef<File> file;
        user.Do("open", [&] {
            file = new File;
            // A case that cannot be read is left out.
            return file->open(user.Path()) && file->fileCaseCount() == 1;
        });
        for (int type = Block::NODES; type <= Block::SET; ++type) {
            const auto blockType = static_cast<Block::BlockType>(type);
            Database& database = *file->database(0);
            for (std::size_t i = 0; i < database.blockCount(blockType); ++i) {
                PtrRef<Block> block;
                user.Do("block", [&] {
                    if (blockType != Block::SET) block = database.blockByIndex(blockType, i);
                    if (blockType == Block::SET) block = database.setBlockByIndex(i);
                    return block.notNull();
                });
                user.Do("copies", [&] { return HasCopies(*block); });
                const FailingMemory::Pause pause;
                EXPECT_THAT(m_one[0], testing::HasSubstr(Describe(*block)));
            }
        }
        const Case& view = *file->fileCase(0);
        user.Do("snapshot", [&] { return view.snapshot() != nullptr; });
        user.Do("texture", [&] { return view.imageCount() == 1 && view.image(0); });
        user.Do("texts", [&] {
            const Str isThere = kLongName;
            return view.name() == isThere && view.description() == isThere &&
                   view.imageName(0) == isThere && file->userTextFileContent(0) == isThere;
        });
        user.Do("values", [&] {
            const nuo::PropertySet& camera = *view.properties()->propertySet(0);
            const nuo::Variant value = camera.value("projection_type");
            return camera.allKeys().size() == 5 && camera.allValues().size() == 5 &&
                   value.type() == nuo::Variant::STRING && value.toStr() == Str("ortho");
        });
        user.Do("close", [&] { return file->close(); });
    });
}

// In processes of their own, as the component is initialized once.
TEST(OutOfMemoryStartTest, InitializationFailsOrSucceedsAndCanBeTriedAgain) {
    const auto initialize = [](long nCall, Failing failing) {
        FailingMemory::Start(nCall, failing);
        nuo::Instance instance;
        nuo::CoreComponent::logManager()->setLevel("nuo.comp", nuo::LL_DEBUG);
        ZRFxComponent::initialize(&instance);
        nuo::CoreComponent::logManager()->setDestination(new Silent);
        const long calls = FailingMemory::Stop();
        const bool isInitialized = ZRFxComponent::initialize(&instance);
        return isInitialized && nCall <= calls;
    };
    testing::internal::CaptureStderr();
    for (const Failing failing : {Failing::kOnce, Failing::kFromThenOn}) {
        int status = 0;
        for (long i = 1; status == 0; ++i) {
            const pid_t child = fork();
            if (child == 0) _exit(initialize(i, failing) ? 0 : 7);
            ASSERT_EQ(waitpid(child, &status, 0), child);
            EXPECT_TRUE(WIFEXITED(status)) << "allocation " << i;
            EXPECT_TRUE(status == 0 || i > 5) << "few allocations fail";
        }
        EXPECT_EQ(WEXITSTATUS(status), 7);
    }
    testing::internal::GetCapturedStderr();
}

}  // namespace
