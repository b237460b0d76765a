#include "data/ZRFxReadBounds.h"

#include "support/ArchiveTest.h"
#include "support/SampleBlocks.h"

namespace unstruct {
namespace {

// Small archives that claim much: each of them is one that would take memory or time without end.
using ZRFxReadBoundsTest = test::DatabaseTest;

TEST_F(ZRFxReadBoundsTest, DocumentThatNoFileOfThisLengthNeedsIsNotParsed) {
    const std::string spaces(ZRFxReadBounds::kAnyDocuments, ' ');
    Put("fits.xml", "<a>" + spaces + "</a>");
    Put("large.xml", "<a>" + spaces + spaces + "</a>");
    Reopen(ZRZipAccessMode::READ_ONLY);
    ASSERT_LT(m_file.Length(), std::size_t{200000});
    nvf::XmlDocument document;
    EXPECT_TRUE(m_access.InternalReadXmlFile("fits.xml", LogMode::LOG, &document));
    ExpectRefused(m_access.InternalReadXmlFile("large.xml", LogMode::LOG, &document),
                  {"Xml documents are too large for a file of its length, 'large.xml' in ''"});
}

// Documents that pack to a thousandth: what was written must be read, whatever else is in the file,
// and twice where an operation does so.
TEST_F(ZRFxReadBoundsTest, DocumentsThatPackVeryWellAreRead) {
    constexpr int kCount = 40;
    nvf::XmlDocument document;
    document.createRootElement("a", "b").setTextUtf8(std::string(1 << 20, 'a'));
    const auto nameOf = [](int i) { return ZRString("a" + std::to_string(i) + ".xml"); };
    for (int i = 0; i < kCount; ++i) {
        if (i % 15 == 14) Reopen(ZRZipAccessMode::UPDATE);
        ASSERT_TRUE(m_access.WriteXmlFile(nameOf(0), document, true));
        ASSERT_TRUE(m_access.RemoveFile(nameOf(0)));
        ASSERT_TRUE(m_access.WriteXmlFile(nameOf(0), document, false));
        ASSERT_TRUE(m_access.WriteXmlFile(nameOf(i), document, true));
        if (i == 5) {
            ASSERT_TRUE(m_access.Commit());
            EXPECT_LT(m_file.Length(), std::size_t{100000});  // a few are packed all the same
        }
    }
    Reopen(ZRZipAccessMode::READ_ONLY);
    const ZRFxAccess::BoundedReading bounded(&m_access);
    for (int i = 0; i < 2 * kCount; ++i) {
        EXPECT_TRUE(m_access.InternalReadXmlFile(nameOf(i / 2), LogMode::LOG, &document));
    }
}

TEST_F(ZRFxReadBoundsTest, BlockThatNamesOneDataFileAgainAndAgainIsRefused) {
    Write(test::SampleBlock(BLOCK_ELEMENTS, 1));
    const std::string group =
        "<ElementGroup Type=\"Beam\" NumElementNodes=\"2000000\">"
        "<File Filename=\"many.dat\" NumItems=\"1000000\"/></ElementGroup>";
    const auto documentOf = [&](int count) {
        std::string groups;
        while (count-- > 0) groups += group;
        return "<Elements ID=\"1\" NodeBlock=\"1\">" + groups + "</Elements>";
    };
    Put("many.dat", std::string(8000000, '\1'));
    Put(DocumentOf(BLOCK_ELEMENTS), documentOf(2));
    EXPECT_TRUE(m_database.OpenBlock(BLOCK_ELEMENTS, 1)->ReadBlock());
    Put(DocumentOf(BLOCK_ELEMENTS), documentOf(100));
    ASSERT_TRUE(m_access.Commit());
    ASSERT_LT(m_file.Length(), std::size_t{60000});
    ExpectRefused(m_database.OpenBlock(BLOCK_ELEMENTS, 1)->ReadBlock(),
                  {"Too much data for a file of its length, 'many.dat' in ''",
                   "Could not read binary int data.", "Error reading element data"});
}

TEST_F(ZRFxReadBoundsTest, RegistryIsReadOnceForAllOfItsDatabases) {
    constexpr int kCount = 500;
    std::string lines;
    for (int id = 0; id < kCount; ++id) {
        const std::string number = std::to_string(id);
        lines += "<Database ID=\"" + number + "\" Folder=\"D" + number + "\" Name=\"" +
                 std::string(1000, 'n') + "\"/>";
        Put("D" + number + "\\Database.xml", "<Database Folder=\"D" + number + "\"/>");
    }
    Put("ZRF.xml", "<ZRF><Databases>" + lines + "</Databases></ZRF>");
    Reopen(ZRZipAccessMode::READ_ONLY);
    const ZRFxAccess::BoundedReading bounded(&m_access);
    for (int id = 0; id < kCount; ++id) ASSERT_TRUE(ZRFxDatabase(&m_access).Parse(id));
    TakeTexts();
}

}  // namespace
}  // namespace unstruct
