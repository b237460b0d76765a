#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <fstream>

#include "support/InterfaceTest.h"
#include "support/Model.h"
#include "support/OutputOf.h"

namespace {

using namespace nuo::zrfx;
using namespace test;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;

std::string BytesOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

constexpr const char* kNeedsPassword = "The file is encrypted, a password is needed. '%1'";
constexpr const char* kWrongPassword = "The password is wrong, or the file is damaged. '%1'";

// A disk that is full until the limit goes.
class FullDisk {
public:
    explicit FullDisk(std::size_t bytes) {
        signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit{bytes, m_before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk() { setrlimit(RLIMIT_FSIZE, &m_before); }

private:
    rlimit m_before{};
};

class FileTest : public InterfaceTest {
protected:
    std::string Filled(std::string message) const {
        return message.replace(message.find("%1"), 2, m_name.toStdString());
    }

    // A finished file of one database, 0, and one case, 0.
    void WriteFile(const FileSettings& settings = FileSettings()) {
        File file;
        ASSERT_TRUE(file.create(m_name, settings));
        const PtrRef<Database> database = WriteDatabase(file, "First", 0);
        ASSERT_TRUE(database->writeBlock(NodesOf(1, 3).p()));
        const PtrRef<Case> view = new Case(&file, "View", 0, 0);
        nuo::Image image = MakeImage(8, 8);
        view->setDescription("old");
        view->setSnapshot(&image);
        ASSERT_TRUE(view->addImage("steel", &image) && file.close());
    }

    // Nodes whose x tells how many of them there are.
    static PtrRef<NodeBlock> NodesOf(int blockId, int count) {
        PtrRef<NodeBlock> nodes = new NodeBlock(blockId, false);
        for (int i = 0; i < count; ++i) nodes->addNode(static_cast<float>(count), 0, 0);
        return nodes;
    }

    // A new file, open, with one database, 0.
    void CreateWithDatabase(int level = 5) {
        FileSettings settings;
        settings.compressionLevel = level;
        Create(settings);
        m_database = WriteDatabase(m_file, "First", 0);
    }

    static std::size_t NodeCountOf(File& file, int blockId) {
        const PtrRef<Block> block = file.database(0)->blockById(Block::NODES, blockId);
        return block ? static_cast<NodeBlock*>(block.p())->nodeCount() : 0;
    }

    PtrRef<Database> m_database;
};

TEST_F(FileTest, WhatCannotBeOpenedOrCreatedIsReported) {
    const std::string text = m_folder.File("text.zrfx");
    std::ofstream(text) << "no archive";
    const nuo::Str nowhere = nuo::Str(m_folder.File("no/such/folder/m_file.zrfx"));
    ExpectRefused(m_file.create("", FileSettings()), {"File name string is NULL."});
    ExpectRefused(m_file.open(""), {"File name string is empty."});
    ExpectRefused(m_file.openForAppend(""), {"File name string is empty."});
    ExpectRefused(m_file.create(nowhere, FileSettings()), {"Error creating file."});
    for (const nuo::Str& name : {nowhere, nuo::Str(text)}) {
        ExpectRefused(m_file.open(name), {"Error opening file."});
        ExpectRefused(m_file.openForAppend(name), {"Error creating file."});
    }
    ExpectRefused(m_file.close(), {});
    ExpectRefused(m_file.flush(), {});
    EXPECT_FALSE(File::isZRFxFile(nuo::Str(text)));
    Create();  // usable after all that
    EXPECT_TRUE(m_file.close());
    EXPECT_FALSE(m_file.close());
    EXPECT_TRUE(File::isZRFxFile(m_name));
}

TEST_F(FileTest, IdsFollowTheHighestInUse) {
    Create();
    EXPECT_EQ(0, m_file.unusedDatabaseId());
    const PtrRef<Database> first = WriteDatabase(m_file, "a", 0);
    const PtrRef<Database> second = WriteDatabase(m_file, "b", 7);
    const PtrRef<Case> view = new Case(&m_file, "c", 4, 7);
    EXPECT_EQ(8, m_file.unusedDatabaseId());
    EXPECT_EQ(5, m_file.unusedFileCaseId());
    EXPECT_EQ(nullptr, m_file.database(m_file.databaseCount()));
    EXPECT_EQ(nullptr, m_file.fileCase(m_file.fileCaseCount()));
    EXPECT_TRUE(m_file.close());
}

TEST_F(FileTest, LevelsOutsideTheRangeAreClamped) {
    const auto sizeAt = [&](int level) {
        FileSettings settings;
        settings.compressionLevel = level;
        WriteFile(settings);
        return std::filesystem::file_size(m_name.toStdString());
    };
    EXPECT_EQ(sizeAt(0), sizeAt(-3));
    EXPECT_EQ(sizeAt(9), sizeAt(12));
    EXPECT_LT(sizeAt(9), sizeAt(0));
}

TEST_F(FileTest, UserTextsAreStoredReplacedAndRefused) {
    Create();
    const std::string notWritten = "Error writing the user file to the ZRFx file.";
    ExpectRefused(m_file.addUserTextFile("", "x"), {"Given file name string was empty."});
    ExpectRefused(m_file.addUserTextFile("x", ""), {"Given file content string was empty."});
    ExpectRefused(m_file.addUserTextFile("a/b", "x"), {notWritten});
    ExpectRefused(m_file.addUserTextFile("a\\b", "x"), {notWritten});
    ExpectRefused(!m_file.userTextFileName(0).isEmpty(),
                  {"No user text file was found at index 0"});
    ExpectRefused(!m_file.userTextFileContent(9).isEmpty(),
                  {"No user text file was found at index 9"});
    EXPECT_TRUE(m_file.addUserTextFile("log.v1", "old"));
    EXPECT_TRUE(m_file.addUserTextFile("log.v1", "new"));
    EXPECT_EQ(1u, m_file.userTextFileCount());
    EXPECT_EQ(nuo::Str("log.v1"), m_file.userTextFileName(0));
    EXPECT_EQ(nuo::Str("new"), m_file.userTextFileContent(0));
    Reopen();
    ExpectRefused(m_file.addUserTextFile("x", "y"), {notWritten});
}

TEST_F(FileTest, CreatingClosesWhatIsOpen) {
    CreateWithDatabase();
    ASSERT_TRUE(m_file.create(nuo::Str(m_folder.File("other.zrfx")), FileSettings()));
    EXPECT_EQ(0u, m_file.databaseCount());
    Reopen();
    EXPECT_EQ(1u, m_file.databaseCount());
}

TEST_F(FileTest, FileOpenedForReadingTakesNothing) {
    WriteFile();
    ASSERT_TRUE(m_file.open(m_name));
    const std::string mustBeOpen =
        " File must be created or opened for append before adding a case.";
    nuo::Image image = MakeImage(1, 1);
    ExpectRefused(m_file.flush(), {"Error writing file."});
    ExpectRefused(WriteDatabase(m_file, "New", 1)->id() >= 0,
                  {"Given file was in invalid state. (Database id 1)." + mustBeOpen});
    ExpectRefused(PtrRef<Case>(new Case(&m_file, "New", 1, 0))->id() >= 0,
                  {"Given file was in invalid state. (case id 1)." + mustBeOpen});
    ExpectRefused(m_file.database(0)->writeBlock(NodesOf(2, 1).p()),
                  {"Error writing block to database. (block id 2, database id 0)."});
    ExpectRefused(m_file.fileCase(0)->addImage("new", &image),
                  {"Error writing the image to the ZRFx file."});
    EXPECT_EQ(1u, m_file.databaseCount());
    EXPECT_EQ(1u, m_file.fileCaseCount());
    EXPECT_TRUE(m_file.close());
}

struct Entrance {
    const char* password;
    const char* message;
};

// Files that cannot be opened, each for a reason of its own.
struct Unopenable {
    const char* name;
    Error::Code code;
    const char* text;  // With the file in place of %1.
    void (*make)(const std::string& path);
};

const std::vector<Unopenable> kUnopenable = {
    {"Missing", Error::NOT_FOUND, "File not found. '%1'", [](const std::string&) {}},
    {"Folder", Error::NO_REGULAR_FILE, "'%1': not a regular file.",
     [](const std::string& path) { std::filesystem::create_directory(path); }},
    {"Text", Error::NO_ZRFX_FILE, "'%1': not a ZIP archive, or its end is missing.",
     [](const std::string& path) { std::ofstream(path) << "no archive"; }},
    {"Empty", Error::NO_ZRFX_FILE, "'%1' has no main document (ZRF.xml).",
     [](const std::string& path) { std::ofstream(path) << ""; }},
    {"OtherArchive", Error::NO_ZRFX_FILE, "'%1' has no main document (ZRF.xml).",
     [](const std::string& path) {
         EXPECT_EQ("", OutputOf("cd /tmp && echo a | zip -q '" + path + "' -"));
     }},
    {"Damaged", Error::DAMAGED, "'%1', entry 'Database000\\Database.xml': damaged local header.",
     [](const std::string& path) {
         File file;
         FileSettings settings;
         settings.compressionLevel = 0;
         EXPECT_TRUE(file.create(Str(path), settings));
         WriteDatabase(file, "a", 0);
         EXPECT_TRUE(file.close());
         std::string bytes = BytesOf(path);
         bytes[bytes.find("Database000\\Database.xml")] = 'd';
         std::ofstream(path, std::ios::binary) << bytes;
     }},
};

class UnopenableFileTest : public FileTest, public testing::WithParamInterface<Unopenable> {};

TEST_P(UnopenableFileTest, TellsWhy) {
    GetParam().make(m_name.toStdString());
    for (const bool isAppended : {false, true}) {
        EXPECT_FALSE(isAppended ? m_file.openForAppend(m_name) : m_file.open(m_name));
        if (!isAppended) {
            EXPECT_EQ(Filled(GetParam().text), m_file.lastError().text().toStdString());
        }
        EXPECT_STREQ(Error::codeName(GetParam().code), Error::codeName(m_file.lastError().code()));
    }
    TakeTexts();
}

INSTANTIATE_TEST_SUITE_P(All, UnopenableFileTest, testing::ValuesIn(kUnopenable),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_F(FileTest, ReasonsOfOtherFailuresAreToldApart) {
    EXPECT_EQ(Error::NONE, m_file.lastError().code());
    const auto expect = [&](bool isDone, const Error& error, Error::Code code) {
        EXPECT_FALSE(isDone);
        EXPECT_STREQ(Error::codeName(code), Error::codeName(error.code()))
            << error.text().toStdString();
    };
    expect(m_file.open(""), m_file.lastError(), Error::INVALID_ARGUMENT);
    expect(m_file.flush(), m_file.lastError(), Error::NOT_OPEN);
    CreateWithDatabase();
    EXPECT_FALSE(m_file.lastError());
    expect(m_database->read<NodeBlock>(7).notNull(), m_database->lastError(), Error::NOT_FOUND);
    expect(m_database->writeBlock(PtrRef<Block>(new StateInfoBlock).p()), m_database->lastError(),
           Error::INVALID_CONTENT);
    expect(m_database->writeBlock(nullptr), m_database->lastError(), Error::INVALID_ARGUMENT);
    expect(WriteDatabase(m_file, "b", 0)->id() >= 0, WriteDatabase(m_file, "b", 0)->lastError(),
           Error::EXISTS);
    const PtrRef<Database> bare =
        new Database(&m_file, "c", 3, Database::STRUCTURAL, Database::MODAL, "");
    expect(m_file.close(), m_file.lastError(), Error::INCOMPLETE);
    ASSERT_TRUE(WriteFrame(*bare) && m_file.flush());
    File second;
    expect(second.openForAppend(m_name), second.lastError(), Error::IN_USE);
    ASSERT_TRUE(second.open(m_name));
    expect(second.flush(), second.lastError(), Error::READ_ONLY);
    second.setProgressCallback([](double) { return false; });
    expect(second.open(m_name), second.lastError(), Error::CANCELLED);
    ASSERT_TRUE(m_database->writeBlock(NodesOf(1, 100000).p()));
    {
        const FullDisk disk(500);
        expect(m_file.flush(), m_file.lastError(), Error::DISK_FULL);
    }
    const std::string other = m_folder.File("other.zrfx");
    std::ofstream(other) << "someone else's";
    expect(m_file.closeAs(Str(other)), m_file.lastError(), Error::EXISTS);
    std::filesystem::remove(m_name.toStdString());
    expect(m_file.flush(), m_file.lastError(), Error::CHANGED);
    m_file.abandon();
    TakeTexts();
    TakeCauses();
}

class EncryptedFileTest : public FileTest, public testing::WithParamInterface<Entrance> {};

TEST_P(EncryptedFileTest, OnlyTheRightPasswordOpens) {
    FileSettings settings;
    settings.password = "r\u00EFght";
    WriteFile(settings);
    const auto& [password, message] = GetParam();
    ExpectRefused(m_file.open(m_name, password), {Filled(message), "Error opening file."});
    ExpectRefused(m_file.openForAppend(m_name, password),
                  {Filled(message), "Error creating file."});
    const bool isNeeded = password[0] == '\0';
    EXPECT_EQ(isNeeded ? Error::PASSWORD_NEEDED : Error::WRONG_PASSWORD, m_file.lastError().code());
    EXPECT_TRUE(File::isEncrypted(m_name));
    EXPECT_EQ(0u, m_file.databaseCount());
    ASSERT_TRUE(m_file.openForAppend(m_name, settings.password));
    ASSERT_TRUE(m_file.database(0)->writeBlock(NodesOf(2, 5).p()) && m_file.close());
    ASSERT_TRUE(m_file.open(m_name, settings.password));
    EXPECT_EQ(3u, NodeCountOf(m_file, 1));
    EXPECT_EQ(5u, NodeCountOf(m_file, 2));
}

INSTANTIATE_TEST_SUITE_P(Passwords, EncryptedFileTest,
                         testing::Values(Entrance{"", kNeedsPassword},
                                         Entrance{"right", kWrongPassword},
                                         Entrance{"r\u00EFght ", kWrongPassword}));

TEST_F(FileTest, PasswordOfAnOpenFileIsIgnored) {
    WriteFile();
    EXPECT_TRUE(m_file.open(m_name, "any"));
}

// Appending.

TEST_F(FileTest, AppendingAddsReplacesAndKeepsTheRest) {
    WriteFile();
    ASSERT_TRUE(m_file.openForAppend(m_name));
    ASSERT_EQ(1, m_file.unusedDatabaseId());
    const PtrRef<Database> second = WriteDatabase(m_file, "Second", 1);
    const PtrRef<Case> added = new Case(&m_file, "Added", m_file.unusedFileCaseId(), 1);
    EXPECT_TRUE(m_file.database(0)->writeBlock(NodesOf(1, 4).p()));
    EXPECT_TRUE(m_file.database(0)->writeBlock(NodesOf(2, 2).p()));
    m_file.fileCase(0)->setName("Renamed");
    m_file.fileCase(0)->setDescription("");
    ASSERT_TRUE(m_file.close());

    ASSERT_TRUE(m_file.open(m_name));
    ASSERT_EQ(2u, m_file.databaseCount());
    EXPECT_EQ(nuo::Str("Second"), m_file.database(1)->name());
    EXPECT_EQ(2u, m_file.database(0)->blockCount(Block::NODES));
    EXPECT_EQ(4u, NodeCountOf(m_file, 1));
    EXPECT_EQ(2u, NodeCountOf(m_file, 2));
    ASSERT_EQ(2u, m_file.fileCaseCount());
    EXPECT_EQ(nuo::Str("Renamed"), m_file.fileCase(0)->name());
    EXPECT_TRUE(m_file.fileCase(0)->description().isEmpty());
    EXPECT_NE(nullptr, m_file.fileCase(0)->snapshot());
    EXPECT_EQ(nuo::Str("steel"), m_file.fileCase(0)->imageName(0));
    EXPECT_EQ(1, m_file.fileCase(1)->id());
    EXPECT_EQ(1, m_file.fileCase(1)->databaseId());
}

TEST_F(FileTest, SnapshotOfACaseIsReplacedAndTakenAway) {
    WriteFile();
    for (const unsigned int width : {24u, 0u}) {
        File file;
        ASSERT_TRUE(file.openForAppend(m_name));
        nuo::Image image = MakeImage(width, 8);
        file.fileCase(0)->setSnapshot(width ? &image : nullptr);
        ASSERT_TRUE(file.close() && file.open(m_name));
        const nuo::Image* snapshot = file.fileCase(0)->snapshot();
        EXPECT_EQ(width, snapshot ? snapshot->width() : 0);
        if (width > 0) continue;
        EXPECT_THAT(TakeTexts(), ElementsAre("Not able to read snapshot image"));
    }
}

TEST_F(FileTest, AppendingNothingLeavesTheModelAsItIs) {
    Create();
    ASSERT_TRUE(WriteModel(m_file, "x"));
    ASSERT_TRUE(m_file.close() && m_file.openForAppend(m_name));
    Reopen();
    EXPECT_EQ(DescribeModel("x"), Describe(m_file));
}

class AppendedFormTest : public FileTest, public testing::WithParamInterface<bool> {};

// The settings of the file decide, not the defaults.
TEST_P(AppendedFormTest, IsTheFormOfTheFile) {
    FileSettings settings;
    settings.binary = GetParam();
    settings.compressionLevel = GetParam() ? 5 : 0;
    settings.vendorName = "Maker";
    WriteFile(settings);
    const auto sizeBefore = std::filesystem::file_size(m_name.toStdString());
    ASSERT_TRUE(m_file.openForAppend(m_name));
    EXPECT_EQ(GetParam(), m_file.settings()->binary);
    EXPECT_EQ(nuo::Str("Maker"), m_file.settings()->vendorName);
    ASSERT_TRUE(m_file.database(0)->writeBlock(NodesOf(2, 20000).p()));
    const PtrRef<Database> second = WriteDatabase(m_file, "Second", 1);
    ASSERT_TRUE(second->writeBlock(NodesOf(1, 20000).p()) && m_file.close());
    const auto added = std::filesystem::file_size(m_name.toStdString()) - sizeBefore;
    if (GetParam()) {
        EXPECT_LT(added, 20000u);  // compressed
    } else {
        EXPECT_GT(added, 2u * 20000u * sizeof("20000 0 0"));  // stored lines of text
    }
    ASSERT_TRUE(m_file.open(m_name));
    EXPECT_EQ(20000u, NodeCountOf(m_file, 2));
}

INSTANTIATE_TEST_SUITE_P(TextAndBinary, AppendedFormTest, testing::Bool());

// Flushing.

TEST_F(FileTest, FlushingNothingNewWritesNothing) {
    CreateWithDatabase();
    const PtrRef<Case> view = new Case(&m_file, "View", 0, 0);
    ASSERT_TRUE(m_file.flush());
    const auto time = std::filesystem::last_write_time(m_name.toStdString());
    const auto size = std::filesystem::file_size(m_name.toStdString());
    usleep(20000);
    ASSERT_TRUE(m_file.flush());
    EXPECT_EQ(time, std::filesystem::last_write_time(m_name.toStdString()));
    EXPECT_EQ(size, std::filesystem::file_size(m_name.toStdString()));
    EXPECT_TRUE(m_file.close());
}

TEST_F(FileTest, FlushAndCloseThatFailCanBeTriedAgain) {
    CreateWithDatabase(0);
    ASSERT_TRUE(m_file.flush() && m_database->writeBlock(NodesOf(1, 100000).p()));
    {
        const FullDisk disk(50000);
        ExpectRefused(m_file.flush(), {"Error writing file."});
        ExpectRefused(m_file.close(), {"Error writing file."});
    }
    File reader;
    ASSERT_TRUE(reader.open(m_name));  // as of the last flush that went well
    EXPECT_EQ(0u, reader.database(0)->blockCount(Block::NODES));
    ASSERT_TRUE(m_file.flush() && m_file.close() && reader.open(m_name));
    EXPECT_EQ(100000u, NodeCountOf(reader, 1));
}

// The disk is full between two data files of the block.
TEST_F(FileTest, BlockThatWasWrittenInPartCanBeWrittenAgain) {
    CreateWithDatabase(0);
    ASSERT_TRUE(m_file.flush());
    const std::vector<float> coordinates(std::size_t{3} * 1000000, 0.5f);
    const std::vector<int> ids(1000000, 7);
    const PtrRef<NodeBlock> nodes = new NodeBlock(1, true);
    ASSERT_TRUE(nodes->setNodeData(coordinates.data(), ids.size(), ids.data()));
    {
        const FullDisk disk(50000);
        ExpectRefused(m_database->writeBlock(nodes.p()),
                      {"Error writing block to database. (block id 1, database id 0)."});
    }
    EXPECT_EQ(0u, m_database->blockCount(Block::NODES));
    EXPECT_TRUE(m_database->writeBlock(nodes.p()));
    Reopen();
    EXPECT_EQ(ids.size(), NodeCountOf(m_file, 1));
}

TEST_F(FileTest, UnfinishedDatabaseKeepsTheFileOpenUntilItIsFinished) {
    Create();
    const PtrRef<Database> database =
        new Database(&m_file, "Bare", 3, Database::STRUCTURAL, Database::MODAL, "");
    PtrRef<StateInfoBlock> states = new StateInfoBlock;
    states->addStateInfo(0, "", 0, StateInfoBlock::TIME);
    const std::string notWritten = "Could not write database (id 3) to file.";
    ExpectRefused(
        m_file.close(),
        {"No state info block had been written to database (database id 3).", notWritten});
    EXPECT_TRUE(database->writeBlock(states.p()));
    ExpectRefused(m_file.close(),
                  {"No geometry block had been written to database (database id 3).", notWritten});
    EXPECT_TRUE(WriteFrame(*database));
    EXPECT_TRUE(m_file.close());
}

// The models of these files are nodes without elements.
const std::string kNoElements =
    "Geometry block 1, state 0, geometry 0, part 0: there is no block Elements:1. (database id 0)";

TEST_F(FileTest, FileCreatedOverAnotherAndLetGoReplacesNothingAndWarnsOnce) {
    WriteFile();
    const auto size = std::filesystem::file_size(m_name.toStdString());
    {
        File file;
        ASSERT_TRUE(file.create(m_name, FileSettings()));
        const PtrRef<Database> database = WriteDatabase(file, "Unfinished", 0);
        ASSERT_TRUE(database->writeBlock(NodesOf(1, 50000).p()));
    }
    EXPECT_THAT(
        TakeWarnings(),
        ElementsAre(kNoElements,
                    "'" + m_name.toStdString() +
                        "' was not closed, what was written since the last flush is dropped."));
    EXPECT_EQ(size, std::filesystem::file_size(m_name.toStdString()));
    ASSERT_TRUE(m_file.open(m_name));
    EXPECT_EQ(3u, NodeCountOf(m_file, 1));
}

TEST_F(FileTest, FileReplacedBeneathItsWriterIsFinishedUnderAnotherName) {
    const nuo::Str other(m_folder.File("other.zrfx"));
    for (const bool isCreated : {true, false}) {
        std::filesystem::remove(other.toStdString());
        WriteFile();
        if (isCreated) {
            CreateWithDatabase();
            ASSERT_TRUE(m_file.flush());
        } else {
            ASSERT_TRUE(m_file.openForAppend(m_name));
            m_database = m_file.database(0);
        }
        ASSERT_TRUE(m_database->writeBlock(NodesOf(2, 7).p()));
        std::filesystem::remove(m_name.toStdString());
        std::ofstream(m_name.toStdString()) << "someone else's";
        ExpectRefused(m_file.flush(), {"Error writing file."});
        ExpectRefused(m_file.closeAs(m_name), {"Error writing file."});
        ASSERT_TRUE(m_file.closeAs(other));
        EXPECT_EQ(14u, std::filesystem::file_size(m_name.toStdString()));
        ASSERT_TRUE(m_file.open(other));
        EXPECT_EQ(7u, NodeCountOf(m_file, 2));
        ASSERT_TRUE(m_file.close());
    }
    CreateWithDatabase();
    m_file.abandon();
    EXPECT_EQ(14u, std::filesystem::file_size(m_name.toStdString()));
    EXPECT_THAT(TakeWarnings(), Each(kNoElements));
}

TEST_F(FileTest, FileThatIsLetGoKeepsWhatWasFlushed) {
    {
        File file;
        ASSERT_TRUE(file.create(m_name, FileSettings()));
        const PtrRef<Database> database = WriteDatabase(file, "First", 0);
        ASSERT_TRUE(file.flush());
    }
    ASSERT_TRUE(m_file.open(m_name));
    EXPECT_EQ(1u, m_file.databaseCount());
}

}  // namespace
