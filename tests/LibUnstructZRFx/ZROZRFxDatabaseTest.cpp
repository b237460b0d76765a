#include "database/ZROZRFxDatabase.h"

#include <algorithm>
#include <functional>
#include <utility>

#include "support/ArchiveTest.h"
#include "support/FaultySystem.h"
#include "support/SampleBlocks.h"
#include "support/TemporaryFolder.h"

namespace unstruct {
namespace {

using test::SampleBlock;

constexpr const char* kTOC = "Database001\\Database-TOC.xml";
constexpr const char* kDescription = "Database001\\Database.xml";
constexpr const char* kParsing = "Parsing ZRFx file...";

class ZRFxDatabaseTest : public test::DatabaseTest {
protected:
    // Type name and id of all blocks, in the order of the database.
    static std::vector<std::string> BlocksOf(const ZRFxDatabase& database) {
        std::vector<std::string> blocks;
        for (int i = 0; i < database.GetNumBlocks(); ++i) {
            const ZRFxBlock* block = database.GetBlock(i);
            blocks.push_back(ZRFxBlockTypeName(block->GetType()).Bytes() + " " +
                             std::to_string(block->GetID()));
        }
        return blocks;
    }

    void ExpectBlocks(const std::vector<std::string>& expected) {
        ZRFxDatabase parsed(&m_access);
        EXPECT_TRUE(parsed.Parse(1));
        EXPECT_EQ(BlocksOf(parsed), expected);
        for (int i = 0; i < parsed.GetNumBlocks(); ++i) {
            EXPECT_TRUE(parsed.GetBlock(i)->ReadBlock());
        }
        ExpectTexts({kParsing});
    }

    void ExpectParseFails(const std::vector<std::string>& messages) {
        ZRFxDatabase parsed(&m_access);
        EXPECT_FALSE(parsed.Parse(1));
        EXPECT_EQ(parsed.GetNumBlocks(), 0);
        std::vector<std::string> expected = messages;
        expected.insert(expected.begin(), kParsing);
        ExpectTexts(expected);
    }
};

TEST_F(ZRFxDatabaseTest, DescriptionAndTableOfContentsAreWrittenAsDocumented) {
    Write(SampleBlock(BLOCK_SET, 12));
    Write(SampleBlock(BLOCK_NODES, 3));
    Write(SampleBlock(BLOCK_SET, 2));
    Write(SampleBlock(BLOCK_SET, 12));
    ASSERT_TRUE(m_database.WriteTOC() && m_access.Close());
    test::Entries entries = test::UnpackWithPython(m_file);
    EXPECT_EQ(entries[kDescription],
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<Database xmlns=\"urn:nuo:zrfx\" ID=\"1\" Name=\"Bridge\" Folder=\"Database001\" "
              "SourceName=\"bridge.fem\" SimulationType=\"Structural\" "
              "SolutionType=\"LinearStatic\">\n"
              " <Description>A bridge</Description>\n"
              "</Database>\n");
    EXPECT_EQ(entries[kTOC],
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<DatabaseTOC xmlns=\"urn:nuo:zrfx\" DatabaseID=\"1\">\n"
              " <Set ID=\"12\" File=\"Database001\\Set\\Set0012.xml\" />\n"
              " <Nodes ID=\"3\" File=\"Database001\\Nodes\\Nodes0003.xml\" />\n"
              " <Set ID=\"2\" File=\"Database001\\Set\\Set0002.xml\" />\n"
              "</DatabaseTOC>\n");
}

TEST_F(ZRFxDatabaseTest, BlocksAreOrderedByTypeAndIDFromTableOfContentsAndFromFolder) {
    for (const int id : {12345, 2, 1234, 0}) Write(SampleBlock(BLOCK_NODES, id));
    Write(SampleBlock(BLOCK_RESULTS, 2));
    Write(SampleBlock(BLOCK_ELEMENTS, 9));
    const std::vector<std::string> expected = {"Nodes 0",     "Nodes 2",    "Nodes 1234",
                                               "Nodes 12345", "Elements 9", "Results 2"};
    EXPECT_EQ(BlocksOf(m_database), expected);
    ExpectBlocks(expected);  // as a writer leaves it that was stopped
    ASSERT_TRUE(m_database.WriteTOC());
    ExpectBlocks(expected);
    Reopen(ZRZipAccessMode::READ_ONLY);
    ExpectBlocks(expected);
}

TEST_F(ZRFxDatabaseTest, DatabaseOpenedForUpdateKeepsItsTableOfContents) {
    for (const bool hadTOC : {true, false}) {
        if (hadTOC) {
            Write(SampleBlock(BLOCK_NODES, 1));
            Write(SampleBlock(BLOCK_RESULTS, 4));
            ASSERT_TRUE(m_database.WriteTOC());
        } else {
            ASSERT_TRUE(m_access.RemoveFile(kTOC));
        }
        Reopen(ZRZipAccessMode::UPDATE);
        ZRFxDatabase appended(&m_access);
        ASSERT_TRUE(appended.Parse(1));
        EXPECT_NE(appended.IsTOCModified(), hadTOC);
        ASSERT_TRUE(SampleBlock(BLOCK_RESULTS, 4)->WriteBlock(&appended));
        EXPECT_NE(appended.IsTOCModified(), hadTOC);
        ASSERT_TRUE(SampleBlock(BLOCK_NODES, 2)->WriteBlock(&appended));
        EXPECT_TRUE(appended.IsTOCModified());
        ASSERT_TRUE(appended.WriteTOC());
        ExpectTexts({kParsing});
        ExpectBlocks({"Nodes 1", "Nodes 2", "Results 4"});
        const std::string toc = Get(kTOC);
        EXPECT_EQ(toc.find("Results"), toc.rfind("<Results") + 1);
    }
}

TEST_F(ZRFxDatabaseTest, EntriesUnderSlashesAreFoundAndReplaced) {
    Write(SampleBlock(BLOCK_ELEMENTS, 1));
    Write(SampleBlock(BLOCK_NODES, 1));
    ASSERT_TRUE(m_database.WriteTOC());
    for (const bool hasTOC : {true, false}) {
        if (!hasTOC) {
            ASSERT_TRUE(m_access.RemoveFile(kTOC));
        }
        for (auto& [name, bytes] : test::Unpack(m_access)) {
            ASSERT_TRUE(m_access.RemoveFile(name));
            std::string slashed = name;
            std::replace(slashed.begin(), slashed.end(), '\\', '/');
            Put(slashed, bytes);
        }
        ExpectBlocks({"Nodes 1", "Elements 1"});
        ZRFxDatabase database(&m_access);
        ASSERT_TRUE(database.Parse(1));
        database.SetTextMode(!hasTOC);
        ASSERT_TRUE(SampleBlock(BLOCK_NODES, 1)->WriteBlock(&database) && database.WriteTOC());
        ExpectTexts({kParsing});
        ExpectBlocks({"Nodes 1", "Elements 1"});
        ZRStringArray names;
        EXPECT_TRUE(m_access.FindFilesOfBase("Database001/Nodes/Nodes0001", &names));
        EXPECT_EQ(names.size(), 3u);
    }
}

TEST_F(ZRFxDatabaseTest, TableOfContentsMayNameFilesRelativeToTheFolderAndTwice) {
    Write(SampleBlock(BLOCK_NODES, 1));
    ASSERT_TRUE(m_database.WriteTOC());
    const std::string line = "<Nodes ID=\"1\" File=\"Database001\\Nodes\\Nodes0001.xml\" />";
    Edit(kTOC, line, line + "<Nodes ID=\"1\" File=\"Nodes\\Nodes0001.xml\" />");
    ExpectBlocks({"Nodes 1"});
    Edit(kTOC, line, "");
    ExpectBlocks({"Nodes 1"});
}

TEST_F(ZRFxDatabaseTest, DamagedDocumentsEndTheParseWithTheirMessage) {
    const std::string missing = "Unable to read raw data from '";
    const std::string noDocument = "Database Xml file not found.";
    Write(SampleBlock(BLOCK_SET, 1));
    ASSERT_TRUE(m_database.WriteTOC());
    const auto expectFails = [&](const char* entry, const char* from, const char* to,
                                 const std::vector<std::string>& messages) {
        SCOPED_TRACE(from);
        const std::string before = Get(entry);
        if (*from) Edit(entry, from, to);
        if (!*from) Put(entry, to);
        ExpectParseFails(messages);
        Put(entry, before);
    };
    expectFails("ZRF.xml", "", "<ZRF/>", {"Databases root not found in main document", noDocument});
    expectFails("ZRF.xml", "<Database ID=\"1\"", "<Database ID=\"2\"", {noDocument});
    expectFails(kDescription, "<Database ", "<Base><Database ",
                {"'Database001\\Database.xml' in '': Start-end tags mismatch (at byte 247)",
                 "Error parsing Xml contents", noDocument});
    expectFails(kDescription, "", "<Nodes/>", {"Illegal root element in database.xml file."});
    expectFails(kDescription, " ID=\"1\"", " ID=\"-7\"", {"Invalid Database ID -7 specified"});
    expectFails(kDescription, "=\"Database001\"", "=\" \"", {"Invalid Database Folder, is blank."});
    expectFails(kTOC, "", "<Nodes/>", {"Illegal root element in database TOC file."});
    expectFails(kTOC, "DatabaseID=\"1\"", "", {"Illegal database ID in TOC file."});
    expectFails(kTOC, "DatabaseID=\"1\"", "DatabaseID=\"2\"", {"Illegal database ID in TOC file."});
    expectFails(kTOC, "File=", "No=", {"No filename specified for block."});
    expectFails(kTOC, " ID=\"1\"", " ID=\"99999999999\"", {"Invalid ID -1 specified for block"});
    expectFails(kTOC, "<Set ", "<Sets ", {"Invalid block type 'Sets' specified"});
    expectFails(kTOC, "<Set ", "<Texture ", {"Error create block (type 'Texture', ID 1)"});
    expectFails(kTOC, "Set0001.xml", "Set0002.xml",
                {missing + "Database001\\Set\\Set0002.xml', file not found.", "Invalid XML",
                 "Error reading block meta data."});
    ASSERT_TRUE(m_access.RemoveFile(kDescription));
    ExpectParseFails({missing + kDescription + "', file not found.", noDocument});
}

TEST_F(ZRFxDatabaseTest, FolderScanReportsDocumentsThatAreNoBlocks) {
    const auto expectFails = [&](const char* document, const std::vector<std::string>& messages) {
        Put("Database001\\a\\b\\X.xml", document);
        ExpectParseFails(messages);
    };
    expectFails("<Nodes/>", {"Invalid ID specified for block (type 'Nodes', ID -1)"});
    expectFails("<Notes ID='1'/>", {"Invalid block type 'Notes' specified"});
    expectFails("<User ID='1'/>", {"Error create block (type 'User', ID 1)"});
    expectFails("<Set ID='1'/>", {"Only element sets are supported",
                                  "Error reading block meta data (type 'Set', ID 1)"});
    ASSERT_TRUE(m_access.RemoveFile("Database001\\a\\b\\X.xml"));
    Put("Database001\\DATABASE.xml", "not looked at");
    Put("Database001\\notes.txt", "not looked at");
    Put("Database0010\\Nodes\\Nodes0001.xml", "not looked at");
    ExpectBlocks({});
}

TEST_F(ZRFxDatabaseTest, CreateRefusesAnIDInUseAndABrokenFile) {
    ZRFxDatabase other(&m_access);
    ExpectRefused(test::CreateDatabase(other, -1), {"Invalid Database ID -1 specified"});
    ExpectRefused(test::CreateDatabase(other, 1), {"Database with ID=1 already exists"});
    EXPECT_TRUE(test::CreateDatabase(other, 1000));
    EXPECT_EQ(other.GetFolder(), "Database1000");
    Put("Database007\\Database.xml", "taken");
    ExpectRefused(
        test::CreateDatabase(other, 7),
        {"Xml file 'Database007\\Database.xml' exists in archive, and overwrite flag is not set",
         "Error writing Xml file.", "Error adding database."});
    Put("ZRF.xml", "<ZRF/>");
    ExpectRefused(test::CreateDatabase(other, 2),
                  {"Databases root not found in main document", "File structure error."});
}

TEST_F(ZRFxDatabaseTest, WhatCouldNotBeOpenedAgainIsNotWritten) {
    const std::pair<const char*, int> kBlocks[] = {{"Notes", 1}, {"Texture", 1}, {"Nodes", -1}};
    nvf::XmlDocument doc;
    doc.createRootElement("Nodes", "");
    for (const auto& [type, id] : kBlocks) {
        ExpectRefused(m_database.StoreBlock(type, id, "Database001\\x.xml", doc, true),
                      {"Error writing block xml file (type '" + std::string(type) + "' ID " +
                       std::to_string(id) + ")"});
    }
    ExpectBlocks({});
}

TEST_F(ZRFxDatabaseTest, ReadOnlyAndClosedArchivesAreReported) {
    Write(SampleBlock(BLOCK_NODES, 1));
    Reopen(ZRZipAccessMode::READ_ONLY);
    ExpectRefused(m_database.WriteTOC(),
                  {"The file is read only.", "Cannot write Database TOC to archive."});
    EXPECT_FALSE(SampleBlock(BLOCK_NODES, 2)->WriteBlock(&m_database));
    EXPECT_THAT(TakeTexts(), testing::Contains("The file is read only."));
    ExpectRefused(SampleBlock(BLOCK_NODES, 1)->WriteBlock(&m_database), {"The file is read only."});
    ExpectRefused(SampleBlock(BLOCK_STATE_INFO, 1)->WriteBlock(&m_database),
                  {"The file is read only.", "Error writing block xml file (type 'StateInfo' ID 1)",
                   "File write error"});
    EXPECT_EQ(BlocksOf(m_database), std::vector<std::string>{"Nodes 1"});
    EXPECT_TRUE(m_database.GetBlock(0)->ReadBlock());
    ASSERT_TRUE(m_access.Close());
    ExpectRefused(m_database.WriteTOC(),
                  {"Cannot write Xml file 'Database001\\Database-TOC.xml', archive is not open.",
                   "Cannot write Database TOC to archive."});
}

TEST_F(ZRFxDatabaseTest, WithoutArchiveOrWithBadArgumentsItFailsAnAssertion) {
    ZRFxDatabase nowhere(nullptr);
    ExpectAssertion(test::CreateDatabase(nowhere, 1), "m_pAccess");
    EXPECT_FALSE(nowhere.Parse(1));
    EXPECT_EQ(TakeTexts().back(), "Database Xml file not found.");
    ExpectAssertion(nowhere.WriteTOC(), "m_pTOC");
    EXPECT_EQ(m_database.GetBlock(0), nullptr);
    ExpectAssertion(m_database.GetBlock(-1) != nullptr, "globalIndex >= 0");
    for (const int type : {-1, 23}) EXPECT_EQ(m_database.GetBlockByID(type, 0), nullptr);
    ExpectAssertion(m_database.AddBlock(SampleBlock(BLOCK_NODES, 1).p(), nullptr), "replaced");
    EXPECT_EQ(ZRFxBlockTypeName(23), "INVALID_BLOCK");
    EXPECT_EQ(ZRFxBlockTypeFromName("nodes"), 999999);
}

TEST_F(ZRFxDatabaseTest, LenientParseReportsAllThatDoesNotFitAndKeepsTheRest) {
    Write(SampleBlock(BLOCK_NODES, 1));
    Write(SampleBlock(BLOCK_RESULTS, 4));
    Write(SampleBlock(BLOCK_SET, 2));
    ASSERT_TRUE(m_database.WriteTOC());
    Put("Database001\\Results\\Results0004.xml", "<Results");
    Edit(kTOC, "<Set ID=\"2\"", "<Knots ID=\"2\"");
    Edit(kTOC, "</DatabaseTOC>", "<Nodes ID=\"-3\" File=\"a.xml\"/></DatabaseTOC>");
    ZRFxDatabase parsed(&m_access);
    EXPECT_TRUE(parsed.Parse(1, ZRFxParseMode::LENIENT));
    EXPECT_EQ(BlocksOf(parsed), (std::vector<std::string>{"Nodes 1", "Results 4"}));
    ExpectTexts(
        {kParsing, "Invalid block type 'Knots' specified", "Invalid ID -3 specified for block"});

    Put(kTOC, "<Foo/>");
    Put(kDescription, "");
    ASSERT_TRUE(m_access.RemoveFile("Database001\\Results\\Results0004.xml"));
    EXPECT_TRUE(parsed.Parse(1, ZRFxParseMode::LENIENT));
    EXPECT_EQ(BlocksOf(parsed), (std::vector<std::string>{"Nodes 1", "Set 2"}));
    EXPECT_THAT(TakeTexts(), testing::Contains("Illegal root element in database TOC file."));
}

// A session of a writer on a file while the N-th system call fails, for every N: what fails is
// logged and gives false, and the file opens as it was, as the flush left it, or as it should be.
class FailingSystem : public test::LogCapture {
protected:
    using Step = std::function<bool()>;

    std::vector<Step> Session(ZRFxAccess& access, ZRFxDatabase& database, bool isNew) {
        const auto write = [&](int type, int id) {
            return [&database, type, id] { return SampleBlock(type, id)->WriteBlock(&database); };
        };
        const Step toc = [&] { return database.WriteTOC(); };
        std::vector<Step> steps;
        if (isNew) {
            steps = {[&] { return access.Open(m_path, ZRZipAccessMode::CREATE); },
                     [&] {
                         const ZRFxDateTime date{2024, 2, 9, 7, 5, 3, 0};
                         const auto document = ZRFxAccess::CreateMainDocument("", "", 0, &date);
                         return access.WriteXmlFile("ZRF.xml", *document, true);
                     },
                     [&] { return test::CreateDatabase(database, 1); }};
        } else {
            steps = {[&] { return access.Open(m_path, ZRZipAccessMode::UPDATE); },
                     [&] { return database.Parse(1); }};
        }
        for (const Step& step :
             {Step(write(BLOCK_SET, 1)), Step(write(BLOCK_ELEMENTS, 1)), toc,
              Step([&] { return access.Commit(); }), Step(write(BLOCK_SET, 1)),
              Step(write(BLOCK_NODES, 2)), toc, Step([&] { return access.Close(); })}) {
            steps.push_back(step);
        }
        return steps;
    }

    test::Entries State() const {
        ZRFxAccess access;
        if (!access.Open(m_path, ZRZipAccessMode::READ_ONLY)) return {{"not opened", ""}};
        return test::Unpack(access);
    }

    // Does the session; false when a step fails. Keeps the states that may be left.
    bool Work(bool isNew, ziptest::FaultySystem* system, std::vector<test::Entries>* states) {
        ZRFxAccess access;
        ZRFxDatabase database(&access);
        TakeTexts();
        for (const Step& step : Session(access, database, isNew)) {
            const bool isDone = step();
            std::vector<std::string> texts = TakeTexts();
            std::erase(texts, kParsing);
            if (!isDone) {
                EXPECT_TRUE(system && system->HasFailed() && !texts.empty());
                access.Abandon();
                return false;
            }
            if (states) states->push_back(State());
        }
        return true;
    }

    const test::TemporaryFolder m_folder;
    const std::string m_path = m_folder.File("model.zrfx");
};

TEST_F(FailingSystem, LeavesTheFileAsBeforeOrAsAfter) {
    using Failing = ziptest::FaultySystem::Failing;
    for (const bool isNew : {true, false}) {
        const std::string before = m_folder.File("before.zrfx");
        if (!isNew) std::filesystem::copy_file(m_path, before);
        const auto restore = [&] {
            std::filesystem::remove(m_path);
            if (!isNew) std::filesystem::copy_file(before, m_path);
        };
        restore();
        std::vector<test::Entries> states;
        if (!isNew) states.push_back(State());
        ASSERT_TRUE(Work(isNew, nullptr, &states));
        for (const Failing failing : {Failing::kOnce, Failing::kFromThenOn}) {
            bool isDone = false;
            for (int call = 1; !isDone; ++call) {
                restore();
                ziptest::FaultySystem system;
                system.FailCall(call, EIO, failing);
                isDone = Work(isNew, &system, nullptr) && !system.HasFailed();
                system.Recover();
                if (!std::filesystem::exists(m_path)) continue;
                EXPECT_TRUE(std::count(states.begin(), states.end(), State()) > 0) << call;
                ASSERT_LT(call, 2000);
            }
        }
    }
    TakeTexts();
}

}  // namespace
}  // namespace unstruct
