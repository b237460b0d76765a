#include "access/ZROZRFxAccess.h"

#include <fstream>
#include <functional>

#include "support/ArchiveTest.h"
#include "support/TemporaryFolder.h"

namespace unstruct {
namespace {

template <typename Array, typename Item>
Array One(const Item& item) {
    Array array;
    array.Add(item);
    return array;
}

class ZRFxAccessTest : public test::ArchiveTest {
protected:
    std::vector<std::string> Found(bool (ZRFxAccess::*find)(const ZRString&, bool, ZRStringArray*),
                                   const char* folder, bool descend) {
        ZRStringArray names = {"before"};
        EXPECT_TRUE((m_access.*find)(folder, descend, &names));
        std::vector<std::string> found;
        for (const ZRString& name : names) found.push_back(name.Bytes());
        return found;
    }

    // An archive file with these entries.
    void WriteFile(const std::string& path, const std::vector<std::string>& names,
                   const char* password = "") {
        ZRFxAccess access;
        ASSERT_TRUE(access.Open(path, ZRZipAccessMode::CREATE) && access.SetPassword(password));
        for (const std::string& name : names) {
            ASSERT_TRUE(access.WriteDataRaw(name, "text", 4, false));
        }
        ASSERT_TRUE(access.Close());
    }

    test::TemporaryFolder m_folder;
};

TEST_F(ZRFxAccessTest, CharactersThatXmlForbidsAreWarnedAboutOnceADocument) {
    nvf::XmlDocument document;
    nvf::XmlElement root = document.createRootElement("r", "");
    for (const char* text : {"\x01", "\x02\x03", "good"}) root.addChildElementUtf8("c", text);
    ASSERT_TRUE(m_access.WriteXmlFile("a.xml", document, false));
    const std::vector<test::Logged> messages = TakeMessages();
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_EQ(messages[0].level, nuo::LL_WARNING);
    EXPECT_EQ(messages[0].text, "Characters that Xml cannot hold become U+FFFD in 'a.xml'");
}

TEST_F(ZRFxAccessTest, OpeningTellsWhatIsWrong) {
    const std::string path = m_folder.File("none.zrfx");
    ZRFxAccess access;
    for (const ZRZipAccessMode mode : {ZRZipAccessMode::UPDATE, ZRZipAccessMode::READ_ONLY}) {
        ExpectRefused(access.Open(path, mode), {"File not found. '" + path + "'"});
    }
    ExpectRefused(access.Open(" ", ZRZipAccessMode::CREATE), {"No filename specified."});
    ExpectAssertion(access.Open(nullptr, ZRZipAccessMode::CREATE), "memFile");
    std::ofstream(path) << "not an archive at all, though it is long enough to hold a directory";
    EXPECT_FALSE(access.Open(path, ZRZipAccessMode::READ_ONLY));
    EXPECT_EQ(TakeTexts().back(), "File still closed after opening it.");
    EXPECT_FALSE(access.Open(m_folder.File(""), ZRZipAccessMode::UPDATE));
    EXPECT_EQ(TakeTexts().back(), "File still closed after opening it.");
    EXPECT_FALSE(access.IsOpen());

    ZRFxZipMemFile other;
    EXPECT_FALSE(m_access.Open(path, ZRZipAccessMode::CREATE));
    ExpectRefused(m_access.Open(&other, ZRZipAccessMode::CREATE),
                  {"The archive is open, close it before opening.",
                   "The archive is open, close it before opening."});
    EXPECT_NE(Get("ZRF.xml"), "");
}

TEST_F(ZRFxAccessTest, ClosedAndReadOnlyArchivesRefuseToWrite) {
    nvf::XmlDocument doc;
    const auto expectEachFails = [&](const std::string& message, const std::string& ofXml) {
        ExpectRefused(m_access.WriteDataRaw("a", "b", 1, true), {message});
        ExpectRefused(m_access.RemoveFile("a"), {message});
        ExpectRefused(m_access.OpenNewFile("a"), {message});
        ExpectRefused(m_access.Commit(), {message});
        ExpectRefused(m_access.WriteXmlFile("a", doc, true), {ofXml});
        ExpectRefused(m_access.WriteProperties("a", nvf::PropertySetCollection()),
                      {ofXml, "Unable to write properties Xml to archive"});
    };
    Reopen(ZRZipAccessMode::READ_ONLY);
    expectEachFails("The file is read only.", "The file is read only.");
    ASSERT_TRUE(m_access.Close());
    expectEachFails("Archive is not open.", "Cannot write Xml file 'a', archive is not open.");
    ExpectRefused(m_access.SetPassword("p"), {"Cannot set password, file is closed"});
    EXPECT_EQ(m_access.InternalFindFile("a", LogMode::LOG), -1);
    ExpectTexts({"Archive is not open."});
    ExpectRefused(m_access.Close(), {"Archive is not open."});
    ZRStringArray names;
    ZRFxArchiveInfo info;
    ExpectRefused(m_access.FindFiles("", true, &names), {"Archive is not open."});
    ExpectRefused(m_access.FindSubFolders("", true, &names), {"Archive is not open."});
    ExpectRefused(m_access.GetArchiveInfo(&info), {"Archive is not open."});
}

TEST_F(ZRFxAccessTest, EntriesAreWrittenOnceUnlessToldToReplace) {
    const std::string raw = "Could not add file 'x' to archive";
    ASSERT_TRUE(m_access.WriteDataInt("x", ZRIntArray()));
    const auto expectRefused = [&](bool isWritten, const char* message) {
        EXPECT_FALSE(isWritten) << message;
        EXPECT_EQ(TakeTexts().back(), message);
    };
    expectRefused(m_access.WriteDataRaw("x", "a", 1, false), "Could not add file 'x' to archive");
    expectRefused(m_access.WriteDataRaw("x", "", 0, false),
                  "Could not add empty file 'x' to archive");
    expectRefused(m_access.WriteDataString("x", "a"), "Could not write string.");
    expectRefused(m_access.WriteDataString("x", ""), "Could not write empty replacement string.");
    expectRefused(m_access.WriteDataInt("x", One<ZRIntArray>(1)), "Could not write integer data.");
    expectRefused(m_access.OpenNewFile("x"), "Error opening new file");
    expectRefused(m_access.WriteNewFile("x"), "Error writing new file");
    expectRefused(m_access.CloseNewFile(), "Error closing new file.");
    expectRefused(m_access.WriteXmlFile("x", nvf::XmlDocument(), false),
                  "Xml file 'x' exists in archive, and overwrite flag is not set");
    EXPECT_EQ(Get("x"), "");
    EXPECT_TRUE(m_access.WriteDataRaw("x", "new", 3, true));
    EXPECT_EQ(Get("x"), "new");
    EXPECT_TRUE(m_access.WriteDataRaw("x", nullptr, 0, true));
    EXPECT_EQ(Get("x"), "");
    m_access.SetAlwaysOverwrite(true);
    EXPECT_TRUE(m_access.WriteDataInt("x", One<ZRIntArray>(1)));
    EXPECT_TRUE(m_access.WriteDataInt("x", ZRIntArray()));
    EXPECT_EQ(Get("x"), "");
    EXPECT_TRUE(m_access.WriteDataString("x", "newer"));
    EXPECT_TRUE(m_access.OpenNewFile("x"));
    EXPECT_TRUE(m_access.WriteNewFile("a\n"));
    EXPECT_TRUE(m_access.WriteNewFile(""));
    EXPECT_TRUE(m_access.WriteNewFile("b\n"));
    EXPECT_TRUE(m_access.CloseNewFile());
    EXPECT_EQ(Get("x"), "a\nb\n");
}

TEST_F(ZRFxAccessTest, ReadingTakesWholeItemsAndMissesSilentlyOnDemand) {
    Put("ten", "0123456789");
    ZRIntArray ints;
    ZRVec3fArray vectors;
    ZRFxZipRawData raw;
    EXPECT_TRUE(m_access.ReadDataInt("ten", &ints));
    EXPECT_EQ(ints.GetSize(), 2);
    EXPECT_TRUE(m_access.ReadDataVector("ten", &vectors));
    EXPECT_EQ(vectors.GetSize(), 0);
    EXPECT_FALSE(m_access.InternalReadDataRaw("none", LogMode::SILENT, &raw));
    EXPECT_EQ(m_access.InternalFindFile(" ", LogMode::SILENT), -1);
    ExpectRefused(m_access.ReadDataInt("none", &ints),
                  {"Unable to read raw data from 'none', file not found."});
    EXPECT_EQ(ints.GetSize(), 0);
    EXPECT_EQ(m_access.InternalFindFile(" ", LogMode::LOG), -1);
    EXPECT_FALSE(m_access.WriteDataRaw("\t", "a", 1, true));
    ExpectRefused(m_access.WriteXmlFile("", nvf::XmlDocument(), true),
                  {"No filename specified.", "No filename specified.", "No filename specified."});
    EXPECT_EQ(m_access.InternalFindFile("none", LogMode::SILENT), -1);
    EXPECT_EQ(m_access.InternalFindFile("none", LogMode::LOG), -1);
    ExpectTexts({"There is no file 'none' in the archive."});
}

TEST_F(ZRFxAccessTest, FilesAndFoldersAreFoundUnderEitherSeparator) {
    for (const char* name :
         {"A\\1.xml", "A/2.xml", "A\\B\\3.xml", "A/B/C/4.xml", "AB\\5.xml", "A/D/"}) {
        Put(name, "");
    }
    using testing::ElementsAre;
    EXPECT_THAT(Found(&ZRFxAccess::FindFiles, "A", false), ElementsAre("A\\1.xml", "A/2.xml"));
    EXPECT_THAT(Found(&ZRFxAccess::FindFiles, "A", true),
                ElementsAre("A\\1.xml", "A/2.xml", "A\\B\\3.xml", "A/B/C/4.xml"));
    EXPECT_THAT(Found(&ZRFxAccess::FindFiles, "A\\B", true),
                ElementsAre("A\\B\\3.xml", "A/B/C/4.xml"));
    EXPECT_THAT(Found(&ZRFxAccess::FindFiles, "", false), ElementsAre("ZRF.xml"));
    EXPECT_THAT(Found(&ZRFxAccess::FindFiles, "a", true), ElementsAre());
    EXPECT_THAT(Found(&ZRFxAccess::FindSubFolders, "", false), ElementsAre("A", "AB"));
    EXPECT_THAT(Found(&ZRFxAccess::FindSubFolders, "A", true),
                ElementsAre("A\\B", "A/B", "A/B/C", "A/D"));
    Put("deep" + std::string(3000, '/') + "x", "");
    EXPECT_EQ(Found(&ZRFxAccess::FindSubFolders, "", true).size(), 6u + 1000u);
    EXPECT_GE(m_access.InternalFindFile("A\\2.xml", LogMode::LOG), 0);
    EXPECT_EQ(m_access.InternalFindFile("a\\2.xml", LogMode::SILENT), -1);
    EXPECT_TRUE(m_access.WriteXmlFile("A\\2.xml", nvf::XmlDocument(), true));
    EXPECT_EQ(test::Unpack(m_access).count("A/2.xml"), 0u);
}

TEST_F(ZRFxAccessTest, WhatWasFoundIsFoundAgainAfterEveryChange) {
    const auto found = [&] { return Found(&ZRFxAccess::FindFiles, "A", true); };
    const std::function<bool()> changes[] = {
        [&] { return m_access.WriteDataRaw("A\\empty", nullptr, 0, false); },
        [&] { return m_access.WriteDataRaw("A\\data", "1", 1, false); },
        [&] { return m_access.WriteXmlFile("A\\a.xml", nvf::XmlDocument(), false); },
        [&] { return m_access.OpenNewFile("A\\new") && m_access.CloseNewFile(); },
        [&] { return m_access.Commit(); },
        [&] { return m_access.RemoveFile("A\\empty"); },
        [&] { return m_access.WriteDataRaw("A\\last", "1", 1, false); },
    };
    const std::size_t kCounts[] = {1, 2, 3, 4, 4, 3, 4};
    EXPECT_TRUE(found().empty());
    for (std::size_t i = 0; i < std::size(changes); ++i) {
        ASSERT_TRUE(changes[i]());
        EXPECT_EQ(found().size(), kCounts[i]) << i;
    }
    EXPECT_EQ(found().back(), "A\\last");
}

TEST_F(ZRFxAccessTest, ArchiveTellsWhetherItIsCompressedBinaryAndEncrypted) {
    const struct {
        const char* name;
        int level;
        const char* password;
        const char* told;  // the first letters of what is so
    } kCases[] = {
        {"a.xml", 0, "", ""},           {"a.DaT", 0, "", "b"}, {"a.txt", 0, "", "t"},
        {"UserData\\a.txt", 0, "", ""}, {"a.xml", 5, "", "c"}, {"a.xml", 0, "secret", "e"},
    };
    const std::string text(1000, 'x');
    for (const auto& testCase : kCases) {
        ZRFxZipMemFile file;
        ZRFxAccess access;
        ASSERT_TRUE(access.Open(&file, ZRZipAccessMode::CREATE));
        ASSERT_TRUE(access.SetPassword(testCase.password));
        access.SetCompression(testCase.level, 7, 65536, 65536);
        ASSERT_TRUE(access.WriteDataRaw(testCase.name, text.data(), text.size(), false));
        ZRFxArchiveInfo info;
        ASSERT_TRUE(access.GetArchiveInfo(&info));
        EXPECT_EQ(std::string(info.compressed, 'c') + std::string(info.encrypted, 'e') +
                      std::string(info.binary, 'b') + std::string(info.text, 't'),
                  testCase.told)
            << testCase.name;
    }
}

TEST_F(ZRFxAccessTest, ZRFxFileIsToldByExtensionAndMainDocument) {
    WriteFile(m_folder.File("good.zrfx"), {"ZRF.xml", "a"});
    WriteFile(m_folder.File("other.zip"), {"ZRF.xml"});
    WriteFile(m_folder.File("OTHER.ZRFX"), {"ZRF.xml"});
    WriteFile(m_folder.File("none.zrfx"), {"zrf.xml", "A\\ZRF.xml"});
    WriteFile(m_folder.File("empty.zrfx"), {});
    WriteFile(m_folder.File("Tr\u00E4ger \u4E2D.zrfx"), {"ZRF.xml"}, "secret");
    std::ofstream(m_folder.File("text.zrfx")) << "ZRF.xml";
    std::filesystem::create_directory(m_folder.File("folder.zrfx"));
    const auto before = std::filesystem::last_write_time(m_folder.File("good.zrfx"));
    for (const char* name : {"good.zrfx", "Tr\u00E4ger \u4E2D.zrfx"}) {
        EXPECT_TRUE(ZRFxAccess::IsZRFxFile(m_folder.File(name))) << name;
    }
    for (const char* name : {"other.zip", "OTHER.ZRFX", "none.zrfx", "empty.zrfx", "text.zrfx",
                             "folder.zrfx", "missing.zrfx", ""}) {
        EXPECT_FALSE(ZRFxAccess::IsZRFxFile(m_folder.File(name))) << name;
    }
    EXPECT_EQ(std::filesystem::last_write_time(m_folder.File("good.zrfx")), before);
    EXPECT_FALSE(std::filesystem::exists(m_folder.File("missing.zrfx")));
}

TEST_F(ZRFxAccessTest, SnapshotAndDescriptionAreWhatTheCaseNames) {
    const std::string unreadable = "Unable to read raw data from '";
    nvf::XmlDocument doc;
    ASSERT_TRUE(
        doc.parse("<Case ID='1' Folder='C'><Snapshot>s.raw</Snapshot>"
                  "<Description>d.txt</Description></Case>"));
    ASSERT_TRUE(m_access.AddCase(doc, false));
    nuo::Image image;
    ZRString text;
    ExpectRefused(m_access.GetCaseSnapshot(1, &image),
                  {unreadable + "C\\s.raw', file not found.",
                   "Error reading JPEG image from archive", "Error reading snapshot (case ID 1)"});
    ExpectRefused(m_access.GetCaseDescription(1, &text), {unreadable + "C\\d.txt', file not found.",
                                                          "Error reading description(case ID 1)"});
    Put("C\\s.raw", std::string_view("\1\0\0\0\1\0\0\0abc", 11));
    Put("d.txt", "about");
    EXPECT_TRUE(m_access.GetCaseSnapshot(1, &image));
    EXPECT_EQ(image.width(), 1u);
    EXPECT_TRUE(m_access.GetCaseDescription(1, &text));
    EXPECT_EQ(text, "about");

    const auto expectNothing = [&](int id, const std::vector<std::string>& messages) {
        ExpectRefused(m_access.GetCaseSnapshot(id, &image), messages);
        ExpectRefused(m_access.GetCaseDescription(id, &text), messages);
    };
    expectNothing(2, {"The specified case does not exist (case ID 2)"});
    Put("C\\Case.xml", "<case/>");
    expectNothing(1, {"Invalid Case.xml file (case ID 1)"});
    Put("C\\Case.xml", "<Case/>");
    ExpectRefused(m_access.GetCaseSnapshot(1, &image), {"Cannot find snapshot (case ID 1)"});
    ExpectRefused(m_access.GetCaseDescription(1, &text), {"Cannot find description (case ID 1)"});
    ASSERT_TRUE(m_access.RemoveFile("C\\Case.xml"));
    expectNothing(
        1, {unreadable + "C\\Case.xml', file not found.", "Cannot read Case.xml (case ID 1)"});
}

TEST_F(ZRFxAccessTest, PropertiesComeBackAndDamageIsReported) {
    nvf::PropertySetCollection collection;
    const nvf::ref<nvf::PropertySet> set = new nvf::PropertySet("camera");
    set->setValue("title", nvf::Variant(nvf::String("Tr\u00E4ger")));
    collection.addPropertySet(set.p());
    ASSERT_TRUE(m_access.WriteProperties("C\\ZRFxProperties.xml", collection));
    nvf::PropertySetCollection found;
    ASSERT_TRUE(m_access.ReadProperties("C\\ZRFxProperties.xml", &found));
    ASSERT_EQ(found.count(), 1u);
    EXPECT_EQ(found.propertySet(0)->valuesByKey().size(), set->valuesByKey().size());
    ASSERT_TRUE(m_access.WriteProperties("C\\Again.xml", found));
    EXPECT_EQ(Get("C\\Again.xml"), Get("C\\ZRFxProperties.xml"));

    ExpectRefused(m_access.WriteProperties(" ", collection), {"No file name."});
    Put("p.xml", "<Properties/>");
    ExpectRefused(m_access.ReadProperties("p.xml", &found), {"No valid root element found in Xml"});
    Put("p.xml", "<ZRFxProperties/>");
    ExpectRefused(m_access.ReadProperties("p.xml", &found),
                  {"No PropertySetCollection element found in Xml"});
    ExpectRefused(m_access.ReadProperties("none.xml", &found),
                  {"Unable to read raw data from 'none.xml', file not found.",
                   "Unable to read properties Xml from archive"});
}

}  // namespace
}  // namespace unstruct
