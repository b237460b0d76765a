#include <algorithm>
#include <cstdlib>
#include <thread>

#include "support/CommaLocale.h"
#include "support/InterfaceTest.h"
#include "support/Model.h"

namespace {

using namespace nuo::zrfx;
using namespace test;
using testing::ElementsAreArray;

class PlacesTest : public InterfaceTest {
protected:
    // Writes the model to a file and reads it back equal.
    static void ExpectRoundTrip(const std::string& path, const std::string& text, bool isBinary) {
        FileSettings settings;
        settings.binary = isBinary;
        settings.vendorName = settings.applicationName = nuo::Str(text);
        File file;
        ASSERT_TRUE(file.create(nuo::Str(path), settings) && WriteModel(file, text));
        ASSERT_TRUE(file.addUserTextFile(nuo::Str(text), nuo::Str(text)) && file.close());
        EXPECT_TRUE(File::isZRFxFile(nuo::Str(path)));
        ASSERT_TRUE(file.open(nuo::Str(path)));
        EXPECT_THAT(Describe(file), ElementsAreArray(DescribeModel(text)));
        EXPECT_EQ(nuo::Str(text), file.settings()->vendorName);
        EXPECT_EQ(nuo::Str(text), file.settings()->applicationName);
        EXPECT_EQ(nuo::Str(text), file.userTextFileName(0));
        EXPECT_EQ(nuo::Str(text), file.userTextFileContent(0));
        EXPECT_TRUE(file.close());
    }
};

TEST_F(PlacesTest, EveryTextFieldTakesEveryScript) {
    for (const std::string text :
         {"Gr\u00F6\u00DFe \u0141\u00F3d\u017A", "\u0411\u0430\u043B\u043A\u0430",
          "\u6881\u306E\u5FDC\u529B", "\u0639\u0627\u0631\u0636\u0629",
          "\u0928\u092E\u0938\u094D\u0924\u0947", "e\u0301 \u00E9", "\U0001F600\U00010348",
          "<&\"'> %1 %2", "  blanks  "}) {
        SCOPED_TRACE(text);
        ExpectRoundTrip(m_folder.File("file.zrfx"), text, true);
    }
}

TEST_F(PlacesTest, FileLiesInFoldersOfEveryScript) {
    for (const char* name : {"Tr\u00E4ger", "\u6881\u67F1", "\U0001F4C1 a b", "%1"}) {
        const TemporaryFolder folder(name);
        ExpectRoundTrip(folder.File(std::string(name) + ".zrfx"), "x", true);
    }
}

TEST_F(PlacesTest, LocaleOfTheProcessChangesNothing) {
    const CommaLocale locale;
    if (!locale.IsSet()) GTEST_SKIP() << "localedef cannot make a locale here";
    for (const bool isBinary : {true, false}) {
        ExpectRoundTrip(m_folder.File("file.zrfx"), "1,5", isBinary);
    }
}

TEST_F(PlacesTest, ThreadsWorkOnFilesOfTheirOwn) {
    std::vector<std::thread> threads;
    for (const std::string text : {"first", "second", "third", "fourth"}) {
        threads.emplace_back([&, text] {
            for (int round = 0; round < 3; ++round) {
                ExpectRoundTrip(m_folder.File(text + ".zrfx"), text, round > 0);
                File missing;  // which logs
                EXPECT_FALSE(missing.open(nuo::Str(m_folder.File(text + ".none"))));
                EXPECT_EQ(0.0, nuo::Mat4d().rowCol(7, 7));
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(24u, TakeTexts().size());
}

TEST_F(PlacesTest, ThreadsThatPackAndUnpackChangeNothingThatIsRead) {
    std::vector<float> coordinates(1'500'000);
    for (std::size_t i = 0; i < coordinates.size(); ++i) {
        coordinates[i] = static_cast<float>(i * i % 7919) * 0.3f;
    }
    const nuo::Str path(m_folder.File("file.zrfx"));
    for (const int threads : {1, 0, 3}) {
        FileSettings settings;
        settings.threads = threads;
        File file;
        ASSERT_TRUE(file.create(path, settings));
        EXPECT_EQ(threads, file.settings()->threads);
        const nuo::PtrRef<Database> database =
            new Database(&file, "Model", 0, Database::STRUCTURAL, Database::LINEAR_STATIC, "");
        const nuo::PtrRef<NodeBlock> nodes = new NodeBlock(1, false);
        ASSERT_TRUE(nodes->setNodes(coordinates, {}) && database->writeBlock(nodes.p()));
        ASSERT_TRUE(file.flush());
        File reader;
        reader.setThreads(4 - threads);
        ASSERT_TRUE(reader.open(path));
        EXPECT_EQ(4 - threads, reader.settings()->threads);
        const nuo::PtrRef<Block> read = reader.database(0)->blockById(Block::NODES, 1);
        ASSERT_TRUE(read.notNull());
        const float* values = static_cast<NodeBlock*>(read.p())->nodeData();
        EXPECT_TRUE(std::equal(coordinates.begin(), coordinates.end(), values));
        file.abandon();
    }
}

// Python's own ZIP and XML modules check documents, registries and data files of the file.
TEST_F(PlacesTest, IndependentReaderFindsTheModel) {
    if (std::system("python3 -c 'import zipfile' >/dev/null 2>&1") != 0) {
        GTEST_SKIP() << "no python3";
    }
    Create();
    ASSERT_TRUE(WriteModel(m_file, "Tr\u00E4ger") && m_file.close());
    const std::string command =
        "python3 " NUO_TEST_FOLDER "/support/read_model.py '" + m_name.toStdString() + "'";
    EXPECT_EQ(0, std::system(command.c_str()));
}

}  // namespace
