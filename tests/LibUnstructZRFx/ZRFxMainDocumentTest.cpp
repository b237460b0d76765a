#include "documents/ZRFxMainDocument.h"

#include <utility>

#include "support/ArchiveTest.h"

namespace unstruct {
namespace {

constexpr const char* kHeader = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
constexpr const char* kFileInfo =
    "<ZRF xmlns=\"urn:nuo:zrfx\">\n"
    " <FileInfo>\n"
    "  <ExportDate>2024-02-09</ExportDate>\n"
    "  <ExportTime>07:05:03</ExportTime>\n"
    "  <ExportApplication>Exporter</ExportApplication>\n"
    "  <VendorName>Vendor</VendorName>\n"
    "  <VendorID>42</VendorID>\n"
    "  <ExpressSignature />\n"
    "  <DigitalSignature />\n"
    " </FileInfo>\n";

class ZRFxMainDocumentTest : public test::ArchiveTest {
protected:
    bool AddCase(const std::string& attributes, bool overwrite) {
        nvf::XmlDocument doc;
        EXPECT_TRUE(doc.parse("<Case " + attributes + "/>"));
        return m_access.AddCase(doc, overwrite);
    }

    std::string Registry() {
        const std::string text = Get("ZRF.xml");
        return text.substr(text.find("</FileInfo>") + 12);
    }
};

TEST_F(ZRFxMainDocumentTest, NewDocumentHasItsElementsInOrder) {
    ASSERT_TRUE(m_access.Close());
    EXPECT_EQ(test::UnpackWithPython(m_file)["ZRF.xml"],
              std::string(kHeader) + kFileInfo + " <Cases />\n <Databases />\n</ZRF>\n");
}

TEST_F(ZRFxMainDocumentTest, RegistryLinesCopyTheAttributesAndReplaceTheirOwn) {
    ASSERT_TRUE(AddCase("Folder='C1' ID='1' Other='x'", false));
    ASSERT_TRUE(AddCase("ID='2' Name='B' DatabaseID='7' Folder='C2' FullDatabase='true'", false));
    ASSERT_TRUE(AddCase("ID='1' Name='A' DatabaseID='8' Folder='C3' FullDatabase='TRUE'", true));
    ASSERT_TRUE(AddCase("ID='3' Folder='C4'", true));
    EXPECT_EQ(
        Registry(),
        " <Cases>\n"
        "  <Case ID=\"1\" Name=\"A\" DatabaseID=\"8\" Folder=\"C3\" FullDatabase=\"TRUE\" />\n"
        "  <Case ID=\"2\" Name=\"B\" DatabaseID=\"7\" Folder=\"C2\" FullDatabase=\"true\" />\n"
        "  <Case ID=\"3\" Name=\"\" DatabaseID=\"\" Folder=\"C4\" FullDatabase=\"False\" />\n"
        " </Cases>\n"
        " <Databases />\n"
        "</ZRF>\n");
    ZRFxCaseInfo info;
    ASSERT_TRUE(m_access.GetCaseByID(2, &info));
    EXPECT_EQ(info.databaseId, 7);
    EXPECT_EQ(info.path, "C2\\Case.xml");
    EXPECT_TRUE(info.fullDatabase);
    for (const int index : {0, 2}) {
        ASSERT_TRUE(m_access.GetCaseInfo(index, &info));
        EXPECT_FALSE(info.fullDatabase) << index;
    }
    EXPECT_FALSE(m_access.GetCaseInfo(3, &info));
    EXPECT_FALSE(m_access.GetCaseByID(4, &info));
    int count = 0;
    EXPECT_TRUE(m_access.GetNumCases(&count));
    EXPECT_EQ(count, 3);
}

TEST_F(ZRFxMainDocumentTest, RefusedRegistrationLeavesTheMainDocument) {
    ASSERT_TRUE(AddCase("ID='1' Folder='C1'", false));
    const std::string before = Get("ZRF.xml");
    ExpectRefused(AddCase("ID='1' Folder='C1'", false),
                  {"Xml file 'C1\\Case.xml' exists in archive, and overwrite flag is not set",
                   "Error writing Xml file."});
    nvf::XmlDocument other;
    ASSERT_TRUE(other.parse("<Other/>"));
    ExpectRefused(m_access.AddCase(other, true), {"<Case> not found in case Xml document."});
    ExpectRefused(m_access.AddDatabase(other, true),
                  {"<Database> not found in database Xml document."});
    EXPECT_EQ(Get("ZRF.xml"), before);
}

TEST_F(ZRFxMainDocumentTest, DamagedDocumentIsReportedByEachOperation) {
    nvf::XmlDocument database;
    nvf::XmlDocument aCase;
    ASSERT_TRUE(database.parse("<Database Folder='D' ID='1'/>"));
    ASSERT_TRUE(aCase.parse("<Case Folder='C' ID='1'/>"));
    const std::string missing = "Error reading main document file, <";
    const std::string noFile = "Unable to read raw data from 'ZRF.xml', file not found.";
    const std::string noDatabases = "Databases root not found in main document";
    const std::string noCases = "Cases root not found in main document";
    int count = 0;
    ZRFxDatabaseInfo databaseInfo;
    ZRFxCaseInfo caseInfo;
    ZRFxDateTime date;
    bool isOnly = false;
    ASSERT_TRUE(m_access.RemoveFile("ZRF.xml"));
    ExpectRefused(m_access.SetVendorInfo("a", "v", 1),
                  {noFile, "Main document file (ZRF.xml) is either missing or invalid"});
    ExpectRefused(m_access.AddDatabase(database, true),
                  {noFile, "Error reading main document (ZRF.xml) file."});
    Put("ZRF.xml", "<ZRF/>");
    ExpectRefused(m_access.SetVendorInfo("a", "v", 1), {missing + "FileInfo> missing"});
    Put("ZRF.xml", "<ZRF><FileInfo><VendorID/><VendorName/></FileInfo></ZRF>");
    ExpectRefused(m_access.SetVendorInfo("a", "v", 1), {missing + "ExportApplication> missing"});
    Put("ZRF.xml", "<Zrf/>");
    ExpectRefused(m_access.AddCase(aCase, true),
                  {"Error validating main document file, <ZRF> missing"});
    ASSERT_TRUE(m_access.RemoveFile("C\\Case.xml") && m_access.RemoveFile("D\\Database.xml"));
    Put("ZRF.xml", "<ZRF/>");
    ExpectRefused(m_access.AddDatabase(database, true),
                  {"Database root not found in main document"});
    ExpectRefused(m_access.AddCase(aCase, true),
                  {"Could not find case root element in main document"});
    ExpectRefused(m_access.GetNumDatabases(&count), {noDatabases});
    ExpectRefused(m_access.GetDatabaseByID(1, &databaseInfo), {noDatabases});
    ExpectRefused(m_access.GetNumCases(&count), {noCases});
    ExpectRefused(m_access.GetCaseByID(1, &caseInfo), {noCases});
    ExpectRefused(m_access.GetExportDateTime(&date), {});
    ExpectRefused(m_access.GetDisplayModelOnly(&isOnly), {});
}

TEST_F(ZRFxMainDocumentTest, VendorInfoIsReadInPartsAndReplaced) {
    int id = 0;
    ZRString name;
    ZRString application;
    ASSERT_TRUE(m_access.GetVendorInfo(&id, nullptr, &application));
    EXPECT_EQ(id, 42);
    EXPECT_EQ(application, "Exporter");
    ASSERT_TRUE(m_access.SetVendorInfo("", "N <&>", -2147483647 - 1));
    ASSERT_TRUE(m_access.GetVendorInfo(&id, &name, &application));
    EXPECT_EQ(id, -2147483647 - 1);
    EXPECT_EQ(name, "N <&>");
    EXPECT_EQ(application, "");
    EXPECT_TRUE(m_access.GetVendorInfo(nullptr, nullptr, nullptr));
    ZRFxDateTime date;
    ASSERT_TRUE(m_access.GetExportDateTime(&date));
    EXPECT_EQ(date.month * 100 + date.day, 209);
    EXPECT_EQ(date.hour * 10000 + date.minute * 100 + date.second, 70503);

    Edit("ZRF.xml", "-2147483648", "many");
    Edit("ZRF.xml", "VendorName>", "Name>");
    Edit("ZRF.xml", "/VendorName>", "/Name>");
    Edit("ZRF.xml", "2024-", "x-");
    ASSERT_TRUE(m_access.GetVendorInfo(&id, &name, nullptr));
    EXPECT_EQ(id, -1);
    EXPECT_EQ(name, "");
    EXPECT_FALSE(m_access.GetExportDateTime(&date));
    EXPECT_EQ(date.year, 2024);
}

TEST_F(ZRFxMainDocumentTest, DisplayModelOnlyIsSaidByTheExactText) {
    const std::pair<const char*, bool> kTexts[] = {
        {"DisplayModelOnly", true}, {"displaymodelonly", false}, {"", false}};
    for (const auto& [text, isOnly] : kTexts) {
        Put("ZRF.xml",
            "<ZRF><FileInfo><ExportType>" + std::string(text) + "</ExportType></FileInfo></ZRF>");
        bool found = !isOnly;
        EXPECT_TRUE(m_access.GetDisplayModelOnly(&found));
        EXPECT_EQ(found, isOnly);
    }
}

}  // namespace
}  // namespace unstruct
