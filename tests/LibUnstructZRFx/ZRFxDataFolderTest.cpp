#include "access/ZRFxDataFolder.h"

#include <limits>

#include "ZRUndefined.h"
#include "support/ArchiveTest.h"
#include "support/HardTexts.h"
#include "support/SampleBlocks.h"

namespace unstruct {
namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

using test::ArrayOf;

ZRIntArray Ints(const std::vector<std::int32_t>& items) {
    return ArrayOf(items);
}

ZRFloatArray Floats(const std::vector<float>& items) {
    return ArrayOf(items);
}

class ZRFxDataFolderTest : public test::DatabaseTest {
protected:
    ZRFxDataFolder& Folder(bool textMode = false) {
        m_database.SetTextMode(textMode);
        return m_database;
    }

    // What a line of floats becomes in a text file, and what it reads as.
    void ExpectFloatText(const std::vector<float>& items, const std::string& text) {
        ASSERT_TRUE(Folder(true).WriteDataFloat("f", Floats(items)));
        EXPECT_EQ(Get("Database001\\f.txt"), text);
        ASSERT_TRUE(m_access.RemoveFile("Database001\\f.txt"));
    }
};

TEST_F(ZRFxDataFolderTest, BinaryFilesHoldPackedLittleEndianValuesAndNothingElse) {
    ASSERT_TRUE(Folder().WriteDataInt("i", Ints({1, -2}), 1));
    ASSERT_TRUE(Folder().WriteDataFloat("f", Floats({1.5f, 3.0e38f})));
    ASSERT_TRUE(Folder().WriteDataVector("v", ArrayOf<nuo::Vec3f>({{1, 2, 0.5f}})));
    ASSERT_TRUE(Folder().WriteDataTensor("t", Floats({1, 2, 3, 4, 5, 6})));
    ASSERT_TRUE(Folder().WriteData("b", ArrayOf<unsigned char>({0, 255})));
    ASSERT_TRUE(Folder().WriteDataString("s", "\u00DC"));
    ASSERT_TRUE(Folder().WriteDataString("e", ""));
    ASSERT_TRUE(Folder().WriteDataInt("empty", ZRIntArray(), 1) && m_access.Close());
    test::Entries entries = test::UnpackWithPython(m_file);
    const auto bytesOf = [&](const char* name) {
        return entries["Database001\\" + std::string(name) + ".dat"];
    };
    EXPECT_EQ(bytesOf("i"), std::string("\1\0\0\0\xFE\xFF\xFF\xFF", 8));
    EXPECT_EQ(bytesOf("f"), std::string("\0\0\xC0\x3F\xE6\xB1\x61\x7F", 8));
    EXPECT_EQ(bytesOf("v"), std::string("\0\0\x80\x3F\0\0\0\x40\0\0\0\x3F", 12));
    EXPECT_EQ(bytesOf("t").size(), 24u);
    EXPECT_EQ(bytesOf("b"), std::string("\0\xFF", 2));
    EXPECT_EQ(bytesOf("s"), "\xC3\x9C");
    EXPECT_EQ(bytesOf("e"), std::string(1, '\0'));
    EXPECT_EQ(entries.count("Database001\\empty.dat"), 1u);
    EXPECT_EQ(bytesOf("empty"), "");
}

TEST_F(ZRFxDataFolderTest, IntegersAreSetInLinesWithTheTailOneALine) {
    const ZRIntArray items = Ints({1, 2, 3, 4, 5, 6, 7});
    const auto expectText = [&](int itemsPerLine, const char* text) {
        ASSERT_TRUE(Folder(true).WriteDataInt("i", items, itemsPerLine));
        EXPECT_EQ(Get("Database001\\i.txt"), text);
        ZRIntArray found;
        EXPECT_TRUE(Folder().ReadDataInt("i", 7, &found));
        EXPECT_EQ(found, items);
        ASSERT_TRUE(m_access.RemoveFile("Database001\\i.txt"));
    };
    expectText(1, "1\n2\n3\n4\n5\n6\n7\n");
    expectText(3, "1 2 3 \n4 5 6 \n7\n");
    expectText(4, "1 2 3 4 \n5\n6\n7\n");
    expectText(7, "1 2 3 4 5 6 7 \n");
    expectText(20, "1\n2\n3\n4\n5\n6\n7\n");
    EXPECT_FALSE(Folder(true).WriteDataInt("i", items, 21));
    EXPECT_EQ(TakeTexts().back(), "Max number of items per line is 20, 21 were requested");
    EXPECT_TRUE(Folder().WriteDataInt("binary", items, 21));  // without lines, of no consequence
    EXPECT_TRUE(Folder().WriteDataInt("binary2", items, 0));
    ExpectTexts({});
    EXPECT_TRUE(Folder(true).WriteDataInt("i", Ints({-2147483647 - 1, 0}), 0));
    ExpectAssertion("itemsPerLine >= 1 && itemsPerLine <= kMostItemsPerLine");
    EXPECT_EQ(Get("Database001\\i.txt"), "-2147483648\n0\n");
}

TEST_F(ZRFxDataFolderTest, FloatsAreWrittenWithSixDigitsAndUndefinedOnesByName) {
    ExpectFloatText({0, -0.0f, 1, -1.5f, 0.1f, 1e6f, 999999.5f, 1234567, 1e-5f, 2.98e38f, -3e38f},
                    "0\n-0\n1\n-1.5\n0.1\n1e+06\n1e+06\n1.23457e+06\n1e-05\n2.98e+38\n-3e+38\n");
    ExpectFloatText({3.0e38f, kUndefinedValue, kInfinity, kNan, -kNan, -kInfinity, 1e-45f},
                    "UNDEF\nUNDEF\nUNDEF\nUNDEF\nUNDEF\n-inf\n1.4013e-45\n");
}

TEST_F(ZRFxDataFolderTest, EveryFloatThatIsWrittenAsTextIsReadBack) {
    const float kU = kUndefinedValue;
    const std::vector<nuo::Vec3f> kVectors = {{kU, kU, kU},
                                              {kNan, kInfinity, 3e38f},
                                              {kU, 1, 2},
                                              {-kInfinity, kNan, 0},
                                              {3.4028235e38f, -3.4028235e38f, 1e-45f}};
    ASSERT_TRUE(Folder(true).WriteDataVector("v", ArrayOf(kVectors)));
    EXPECT_EQ(Get("Database001\\v.txt"),
              "UNDEF\nUNDEF\n2.99e+38 1 2\n-inf nan 0\n3.40282e+38 -3.40282e+38 1.4013e-45\n");
    ZRVec3fArray vectors;
    ASSERT_TRUE(Folder().ReadDataVector("v", 5, &vectors));
    const auto* first = reinterpret_cast<const std::uint32_t*>(vectors.Data());
    EXPECT_EQ(first[0], 0x7F60F14Eu);
    EXPECT_TRUE(IsUndefined(vectors[1].z));
    EXPECT_EQ(vectors[2].z, 2);
    EXPECT_EQ(vectors[3].x, -kInfinity);
    EXPECT_EQ(vectors[4].z, 1e-45f);

    ASSERT_TRUE(
        Folder(true).WriteDataTensor("t", Floats({kU, kU, kU, kU, kU, kU, 1, 2, 3, 4, 5, kU})));
    EXPECT_EQ(Get("Database001\\t.txt"), "UNDEF\n1 2 3 4 5 2.99e+38\n");
    ZRFloatArray tensors;
    ASSERT_TRUE(Folder().ReadDataTensor("t", 2, &tensors));
    EXPECT_EQ(tensors[6], 1);
    ASSERT_TRUE(Folder(true).WriteData("b", ArrayOf<unsigned char>({0, 7, 255})));
    EXPECT_EQ(Get("Database001\\b.txt"), "0\n7\n255\n");
}

TEST_F(ZRFxDataFolderTest, TextOfOtherProgramsIsRead) {
    const auto expectRead = [&](const char* text, const std::vector<std::int32_t>& items) {
        Put("Database001\\i.txt", text);
        ZRIntArray found;
        EXPECT_TRUE(Folder().ReadDataInt("i", static_cast<std::int64_t>(items.size()), &found));
        EXPECT_EQ(found, Ints(items)) << text;
    };
    expectRead("1 2\r\n3\r\n", {1, 2, 3});
    expectRead("  1\t2 \n\n \r\n3", {1, 2, 3});
    expectRead("+1\n-2\n007", {1, -2, 7});
    expectRead("1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20\n1\n",
               {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 1});
    expectRead("", {});
    expectRead("\n\n", {});
    Put("Database001\\f.txt", "UNDEF\r\n+1.5e3\n3.40282347e38\n1e-999\n");
    ZRFloatArray floats;
    ASSERT_TRUE(Folder().ReadDataFloat("f", 4, &floats));
    EXPECT_EQ(floats, Floats({kUndefinedValue, 1500, std::numeric_limits<float>::max(), 0}));
}

enum Kind { INTS, FLOATS, VECTORS, TENSORS, BYTES };

bool Read(const ZRFxDataFolder& folder, Kind kind, const ZRString& name, std::int64_t numItems,
          std::int64_t* numLeft) {
    ZRIntArray ints = Ints({1});
    ZRFloatArray floats = Floats({1});
    ZRVec3fArray vectors = ArrayOf<nuo::Vec3f>({{1, 2, 3}});
    ZRUbyteArray bytes = ArrayOf<unsigned char>({1});
    const bool isRead = kind == INTS      ? folder.ReadDataInt(name, numItems, &ints)
                        : kind == FLOATS  ? folder.ReadDataFloat(name, numItems, &floats)
                        : kind == VECTORS ? folder.ReadDataVector(name, numItems, &vectors)
                        : kind == TENSORS ? folder.ReadDataTensor(name, numItems, &floats)
                                          : folder.ReadData(name, numItems, &bytes);
    const std::int64_t sizes[] = {ints.GetSize(), floats.GetSize(), vectors.GetSize(),
                                  floats.GetSize(), bytes.GetSize()};
    *numLeft = sizes[kind];
    return isRead;
}

TEST_F(ZRFxDataFolderTest, UnreadableFilesAreReportedAndLeaveTheArrayEmpty) {
    const std::string missing =
        "Unable to read raw data from 'Database001\\x.dat', file not found.";
    const std::string items = "Number of specified items (2) does not match number of items (";
    const std::string inText = ") in 'Database001\\x.txt'";
    const std::string inFile = " in file 'Database001\\x.txt' (text: ";
    const auto expectUnreadable = [&](Kind kind, const char* text,
                                      const std::vector<std::string>& messages) {
        ASSERT_TRUE(m_access.RemoveFile("Database001\\x.txt"));
        if (text) Put("Database001\\x.txt", text);
        std::int64_t numLeft = -1;
        ExpectRefused(Read(Folder(true), kind, "x", 2, &numLeft), messages);
        EXPECT_EQ(numLeft, 0);
    };
    expectUnreadable(INTS, nullptr, {missing, "Could not read binary int data."});
    expectUnreadable(VECTORS, nullptr, {missing, "Could not read binary vector data."});
    expectUnreadable(TENSORS, nullptr, {missing, "Could not read binary vector data."});
    expectUnreadable(BYTES, nullptr, {missing, "Could not read binary unsigned byte data."});
    expectUnreadable(INTS, "1", {items + "1" + inText});
    expectUnreadable(
        TENSORS, "1 2 3 4 5 6",
        {"Number of specified tensors (2) does not match number of tensors (1" + inText});
    expectUnreadable(INTS, "1 two\n",
                     {"Could not read integer values '1 two' from file 'Database001\\x.txt'"});
    expectUnreadable(INTS, "4294967296\n",
                     {"Could not read integer values '4294967296' from file 'Database001\\x.txt'"});
    expectUnreadable(
        INTS, "1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20 21\n",
        {"Could not read integer values '1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 1' from file "
         "'Database001\\x.txt'"});
    expectUnreadable(FLOATS, "3\n-1e39\n",
                     {"Could not read one float value" + inFile + "-1e39 ...)"});
    expectUnreadable(FLOATS, "1 2\n", {"Could not read one float value" + inFile + "1 2 ...)"});
    expectUnreadable(VECTORS, "1 UNDEF 2\n",
                     {"Could not read three float values" + inFile + "1 UNDEF 2 ...)"});
    expectUnreadable(TENSORS, "1 2 3 4 5\n",
                     {"Could not read six float values" + inFile + "1 2 3 4 5 ...)"});
    expectUnreadable(BYTES, "1\n256\n", {"Found value 256 (index 1) outside unsigned byte range."});
    expectUnreadable(BYTES, "1 2\n",
                     {"Could not read one unsigned byte value" + inFile + "1 2 ...)"});
    Put("Database001\\x.dat", "12 bytes, so");
    for (const std::int64_t numItems : {std::int64_t{-1}, std::int64_t{2}, std::int64_t{1} << 40}) {
        std::int64_t numLeft = -1;
        EXPECT_FALSE(Read(Folder(), INTS, "x", numItems, &numLeft));
        EXPECT_EQ(numLeft, 0);
        ExpectTexts({"Number of specified items (" + std::to_string(numItems) +
                     ") does not match number of items (3) in 'Database001\\x.dat'"});
    }
}

// A text entry whose file is damaged is reported in the words of text files.
TEST_F(ZRFxDataFolderTest, DamagedTextFileIsReportedAsSuch) {
    const char* const kMessages[] = {
        "Could not read ASCII int data", "Could not read ASCII float data",
        "Could not read ASCII vector data", "Could not read ASCII vector data",
        "Could not read ASCII unsigned byte data"};
    Put("Database001\\x.txt", "the text whose bytes change");
    ASSERT_TRUE(m_access.Commit());
    const std::string whole(reinterpret_cast<const char*>(m_file.Data()), m_file.Length());
    const std::size_t at = whole.find("bytes change");
    ASSERT_NE(at, std::string::npos);
    ASSERT_TRUE(m_file.WriteAt(at, "other", 5));
    for (const Kind kind : {INTS, FLOATS, VECTORS, TENSORS, BYTES}) {
        std::int64_t numLeft = -1;
        EXPECT_FALSE(Read(Folder(), kind, "x", 1, &numLeft));
        const std::vector<std::string> texts = TakeTexts();
        ASSERT_EQ(texts.size(), 3u);
        EXPECT_EQ(texts[1], "Unable to read raw data from 'Database001\\x.txt'.");
        EXPECT_EQ(texts[2], kMessages[kind]);
    }
}

TEST_F(ZRFxDataFolderTest, FilesInTheWayAndClosedArchivesAreReported) {
    Put("Database001\\x.dat", "a");
    Put("Database001\\x.txt", "b");
    for (const bool isOpen : {true, false}) {
        if (!isOpen) m_access.Close();
        const auto expectRefused = [&](bool isWritten, const char* message) {
            EXPECT_FALSE(isWritten) << message;
            const std::vector<std::string> texts = TakeTexts();
            EXPECT_EQ(texts.back(), message);
            EXPECT_EQ(texts.front() == "Archive is not open.", !isOpen);
        };
        expectRefused(Folder(true).WriteDataInt("x", Ints({1}), 1),
                      "Could not open new file for ASCII int data.");
        expectRefused(Folder(true).WriteDataFloat("x", Floats({1})),
                      "Could not open new file for ASCII float data.");
        expectRefused(Folder(true).WriteData("x", {}),
                      "Could not open new file for ASCII unsigned byte data.");
        expectRefused(Folder().WriteDataInt("x", Ints({1}), 1),
                      "CCould not write new file for binary int data.");
        expectRefused(Folder().WriteDataFloat("x", Floats({1})),
                      "Error writing binary float data.");
        expectRefused(Folder().WriteData("x", {}), "Error writing binary unsigned byte data.");
    }
    ExpectAssertion(Folder().WriteDataTensor("y", Floats({1, 2, 3, 4, 5})),
                    "data.GetSize() % kTensorComponents == 0");
    ExpectAssertion(Folder().ReadDataInt("y", 1, nullptr), "data");
}

TEST_F(ZRFxDataFolderTest, FileIsFoundInEitherFormAndUnderItsWholeName) {
    Put("Database001\\x.txt", "7\n");
    Put("Loose.TXT", "8\n");
    ZRIntArray found;
    for (const char* name : {"x", "x.txt", "Database001\\x.txt"}) {
        ASSERT_TRUE(Folder(false).ReadDataInt(name, 1, &found)) << name;
        EXPECT_EQ(found[0], 7);
    }
    ASSERT_TRUE(Folder(true).ReadDataInt("Loose.TXT", 1, &found));
    EXPECT_EQ(found[0], 8);
    Put("Database001\\x.dat", std::string_view("\x09\0\0\0", 4));
    ASSERT_TRUE(Folder(true).ReadDataInt("x", 1, &found));
    EXPECT_EQ(found[0], 9);
}

TEST_F(ZRFxDataFolderTest, TextsComeBackEqual) {
    std::vector<std::string> texts(std::begin(test::kHardXmlTexts), std::end(test::kHardXmlTexts));
    texts.push_back(std::string("a\0b", 3));
    int number = 0;
    for (const std::string& text : texts) {
        const ZRString name = "s" + std::to_string(number++);
        ASSERT_TRUE(Folder(number % 2).WriteDataString(name, text));
        ZRString found = "before";
        ASSERT_TRUE(Folder().ReadDataString(name, &found));
        EXPECT_EQ(found, text);
    }
}

}  // namespace
}  // namespace unstruct
