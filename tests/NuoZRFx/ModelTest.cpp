#include <tuple>

#include "support/InterfaceTest.h"
#include "support/Model.h"
#include "support/OutputOf.h"

namespace {

using namespace nuo::zrfx;
using namespace test;
using testing::ElementsAreArray;

using Form = std::tuple<bool, std::string, int>;

// How a file can be made: binary or text, its password, its level.
class ModelTest : public InterfaceTest, public testing::WithParamInterface<Form> {
protected:
    FileSettings Settings() const {
        FileSettings settings;
        settings.vendorName = "V\u00E9ndor";
        settings.applicationName = "Solver & Sons <1>";
        std::string password;
        std::tie(settings.binary, password, settings.compressionLevel) = GetParam();
        settings.password = nuo::Str(password);
        return settings;
    }
};

TEST_P(ModelTest, EveryBlockAndCaseComesBackEqual) {
    Create(Settings());
    ASSERT_TRUE(WriteModel(m_file, "Tr\u00E4ger"));
    EXPECT_TRUE(m_file.addUserTextFile("notes", "first\nsecond \u4E2D\u6587"));
    ASSERT_TRUE(m_file.close() && m_file.open(m_name, Settings().password));
    EXPECT_THAT(Describe(m_file), ElementsAreArray(DescribeModel("Tr\u00E4ger")));
    ASSERT_EQ(1u, m_file.userTextFileCount());
    EXPECT_EQ(Str("notes"), m_file.userTextFileName(0));
    EXPECT_EQ(Str("first\nsecond \u4E2D\u6587"), m_file.userTextFileContent(0));
    EXPECT_EQ(Settings().binary, m_file.settings()->binary);
    EXPECT_EQ(Settings().vendorName, m_file.settings()->vendorName);
    EXPECT_EQ(Settings().applicationName, m_file.settings()->applicationName);
}

// What a block was read from may be gone; it is written as if it had been made anew.
TEST_P(ModelTest, BlocksThatWereReadAreWrittenToAnotherFile) {
    Create(Settings());
    ASSERT_TRUE(WriteModel(m_file, "x"));
    ASSERT_TRUE(m_file.close() && m_file.open(m_name, Settings().password));
    std::vector<PtrRef<Block>> blocks;
    for (int type = Block::NODES; type < Block::SET; ++type) {
        const auto blockType = static_cast<Block::BlockType>(type);
        for (std::size_t i = 0; i < m_file.database(0)->blockCount(blockType); ++i) {
            blocks.push_back(m_file.database(0)->blockByIndex(blockType, i));
        }
    }
    for (std::size_t i = 0; i < 2; ++i) blocks.push_back(m_file.database(0)->setBlockByIndex(i));
    ASSERT_TRUE(m_file.close());

    File copy;
    ASSERT_TRUE(copy.create(Str(m_folder.File("copy.zrfx")), FileSettings()));
    const PtrRef<Database> database =
        new Database(&copy, "Model x", 0, Database::MULTIBODY, Database::TRANSIENT, "x described");
    for (const PtrRef<Block>& block : blocks) EXPECT_TRUE(database->writeBlock(block.p()));
    EXPECT_EQ(DescribeModel("x").front(), Describe(*database));
    EXPECT_TRUE(copy.close());
}

using NamesTest = InterfaceTest;

TEST_F(NamesTest, CharactersThatXmlForbidsAreReplacedSoThatEveryReaderTakesTheFile) {
    const std::string forbidden = "\x1B\uFFFF";
    const std::string written = "\uFFFD\uFFFD";
    PtrRef<nuo::PropertySet> set = new nuo::PropertySet(Str(forbidden));
    set->setValue(Str(forbidden), Str(forbidden));
    PtrRef<nuo::PropertySetCollection> properties = new nuo::PropertySetCollection;
    properties->addPropertySet(set.p());
    Create();
    ASSERT_TRUE(WriteModel(m_file, forbidden));
    const PtrRef<Case> view = new Case(&m_file, Str(forbidden), 9, 0);
    view->setProperties(properties.p());  // not of the catalogue
    TakeTexts();
    Reopen();
    EXPECT_EQ(Describe(*m_file.database(0)), DescribeModel(written).front());
    const Case& read = *m_file.fileCase(2);
    EXPECT_EQ(read.name(), Str(written));
    ASSERT_EQ(read.properties()->count(), 1u);
    EXPECT_EQ(read.properties()->propertySet(0)->classType(), Str(written));
    EXPECT_EQ(read.properties()->propertySet(0)->value(Str(written)).toStr(), Str(written));
    if (OutputOf("python3 -c 'print(1)' 2>&1") != "1\n") GTEST_SKIP() << "needs python3";
    EXPECT_EQ(OutputOf("python3 -c \"import sys, zipfile, xml.etree.ElementTree as tree\n"
                       "z = zipfile.ZipFile(sys.argv[1])\n"
                       "names = [n for n in z.namelist() if n.endswith('.xml')]\n"
                       "for n in names: tree.fromstring(z.read(n))\n"
                       "print(len(names) > 40)\" '" +
                       m_name.toStdString() + "' 2>&1"),
              "True\n");
}

std::string nameOf(const testing::TestParamInfo<Form>& info) {
    const auto& [isBinary, password, level] = info.param;
    return std::string(isBinary ? "Binary" : "Text") + (password.empty() ? "Plain" : "Encrypted") +
           "Level" + std::to_string(level);
}

INSTANTIATE_TEST_SUITE_P(
    Forms, ModelTest,
    testing::Combine(testing::Bool(), testing::Values(std::string(), std::string("gehe\u00EFm")),
                     testing::Values(0, 5, 9)),
    nameOf);

}  // namespace
