#include "import/frd/FrdReader.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <fstream>
#include <limits>

#include "import/frd/FrdText.h"
#include "support/TemporaryFolder.h"

namespace tools {
namespace {

using Event = FrdReader::Event;

std::string blank(std::size_t count) {
    return std::string(count, ' ');
}

// The head of a block of nodes or elements, and of a result: with the form of its numbers.
std::string blockHead(const char* key, const std::string& count, char format) {
    return "    " + std::string(key) + blank(18 + 12 - count.size()) + count + blank(37) + format +
           "\n";
}

std::string resultHead(const std::string& count, char format) {
    return "    1PSTEP" + blank(25) + "1           2           3\n  100CL  101 1.50000E+00" +
           blank(12 - count.size()) + count + blank(20) + " 1    7" + blank(11) + format +
           "\n -4  DISP        4    1\n -5  D1          1    2    1    0\n"
           " -5  D2          1    2    2    0\n -5  D3          1    2    3    0\n"
           " -5  ALL         1    2    0    0    1ALL\n";
}

const std::string kHead = "    1C\n    1UPGM               CalculiX\n    1UMAT    1STEEL\n";
const std::string kTextNodes = blockHead("2C", "2", '1') +
                               " -1         5 0.00000E+00 1.00000E+00-2.50000E+00\n"
                               " -1         9-1.00000E+00-1.00000E+00-1.00000E+00\n -3\n";
const std::string kTextElements = blockHead("3C", "1", '1') +
                                  " -1         3   11    0    1\n"
                                  " -2         5         9\n -3\n";
const std::string kTextResult = resultHead("2", '1') +
                                " -1         5 1.00000E+00-2.00000E+00 3.00000E+00\n"
                                " -1         9-1.00000E+00-1.0000E-101         NaN\n -3\n";
const std::string kText = kHead + kTextNodes + kTextElements + kTextResult + " 9999\n";

template <typename... Values>
std::string packed(Values... values) {
    std::string bytes;
    const auto append = [&](auto value) {
        bytes.append(reinterpret_cast<const char*>(&value), sizeof(value));
    };
    (append(values), ...);
    return bytes;
}

const std::string kBinary = kHead + blockHead("2C", "2", '3') + packed(5, 0.0, 1.0, -2.5) +
                            packed(9, -1.0, -1.0, -1.0) + blockHead("3C", "1", '2') +
                            packed(3, 11, 0, 1, 5, 9) + resultHead("2", '2') +
                            packed(5, 1.0f, -2.0f, 3.0f) + packed(9, -1.0f, 0.0f, NAN) + " 9999\n";

const std::string kShort = kHead + blockHead("2C", "2", '0') +
                           " -1    5 0.00000E+00 1.00000E+00-2.50000E+00\n"
                           " -1    9-1.00000E+00-1.00000E+00-1.00000E+00\n -3\n" +
                           blockHead("3C", "1", '0') +
                           " -1    3   11    0    1\n -2    5    9\n -3\n" + resultHead("2", '0') +
                           " -1    5 1.00000E+00-2.00000E+00 3.00000E+00\n"
                           " -1    9-1.00000E+00 0.00000E+00         NaN\n -3\n 9999\n";

std::string withReturns(const std::string& text) {
    std::string lines;
    for (const char c : text) lines += c == '\n' ? std::string("\r\n") : std::string(1, c);
    return lines;
}

class FrdReaderTest : public testing::Test {
protected:
    // All events up to the end, and what was read.
    std::vector<Event> read(const std::string& content) {
        const std::string path = m_folder.File("a.frd");
        std::ofstream(path, std::ios::binary) << content;
        m_reader = std::make_unique<FrdReader>();
        EXPECT_TRUE(m_reader->open(path));
        std::vector<Event> events;
        m_damage.clear();
        do {
            events.push_back(m_reader->next());
            if (events.back() == FrdReader::DAMAGE) m_damage += m_reader->damage() + "\n";
        } while (events.back() != FrdReader::END && events.back() != FrdReader::INCOMPLETE);
        return events;
    }

    const test::TemporaryFolder m_folder;
    std::unique_ptr<FrdReader> m_reader;
    std::string m_damage;
};

const std::vector<Event> kAll{FrdReader::NODES, FrdReader::ELEMENTS, FrdReader::RESULT,
                              FrdReader::END};

TEST_F(FrdReaderTest, AllFormsBringTheSame) {
    for (const std::string& content : {kText, kBinary, kShort, withReturns(kText)}) {
        SCOPED_TRACE(content);
        ASSERT_EQ(read(content), kAll);
        EXPECT_EQ(m_reader->header().program, "CalculiX");
        EXPECT_EQ(m_reader->header().materialNames.at(1), "STEEL");
        EXPECT_EQ(m_reader->nodes().ids, (std::vector{5, 9}));
        EXPECT_EQ(m_reader->nodes().coordinates, (std::vector<float>{0, 1, -2.5, -1, -1, -1}));
        const FrdElementGroup& group = m_reader->elements().at({1, 11});
        EXPECT_EQ(group.ids, std::vector{3});
        EXPECT_EQ(group.nodes, (std::vector{5, 9}));
        FrdResult& result = m_reader->result();
        EXPECT_EQ(result.step, (FrdStep{FrdStep::TIME_STEP, "", 7, 0, 1.5, 2, 3, {}}));
        EXPECT_EQ(result.components.size(), 3u) << "the derived one is not stored";
        ASSERT_EQ(result.values.size(), 6u);
        EXPECT_TRUE(std::isnan(result.values[5]));
        result.values.pop_back();
        EXPECT_EQ(result.values, (std::vector<float>{1, -2, 3, -1, 0}));
    }
}

TEST_F(FrdReaderTest, FileThatEndsEarlyKeepsItsWholeBlocks) {
    for (const std::string& content : {kText, kBinary}) {
        for (std::size_t size = 0; size + 1 < content.size(); ++size) {
            const std::vector<Event> events = read(content.substr(0, size));
            ASSERT_EQ(m_damage, "") << "at " << size;
            ASSERT_NE(m_reader->damage().find("the file ends w"), std::string::npos);
            ASSERT_TRUE(std::equal(events.begin(), events.end() - 1, kAll.begin())) << size;
        }
    }
}

TEST_F(FrdReaderTest, DamageIsReportedWithItsPlaceAndWhatFollowsIsRead) {
    const struct {
        const char* what;
        const char* replacement;
        const char* damage;
    } kCases[] = {
        {" -1         9-1.00000E+00-1.0000E-101", " -1         9-1.00000E+00-1.0x00E-101",
         "line 20: the result DISP: these are no values"},
        {" -1         9-1.00000E+00-1.0000E-101         NaN\n", " -1         9-1.00000E+00\n",
         "line 20: the result DISP: these are no values"},
        {" -3\n 9999", " 9999", "line 21: the result DISP: these are no values"},
        {" -4  DISP", " -7  DISP", "line 14: a result: its name is missing"},
        {" -4  DISP        4    1", " -4  DISP        4    3",
         "line 14: the result DISP: its values are at elements, which is not imported"},
        {" -5  D2 ", " -6  D2 ", "line 16: the result DISP: this is no component"},
        {"  100CL  101 1.50000E+00", "  100CL  101 rubbish    ",
         "line 13: a result: its state cannot be read"},
        {"   11    0    1", "   13    0    1",
         "line 9: the block of elements: an element of unknown type 13"},
        {" -2         5         9", " -2         5",
         "line 10: the block of elements: an element without all its nodes"},
        {"1.00000E+00-2.50000E+00", "1.00000E+00", "line 5: the block of nodes: this is no node"},
        {"    1C", "PK\3\4", "line 1: this is no line of a CalculiX result file"}};
    for (const auto& [what, replacement, damage] : kCases) {
        SCOPED_TRACE(damage);
        std::string content = kText;
        content.replace(content.find(what), std::strlen(what), replacement);
        content.insert(content.find(" 9999"), kTextResult);
        const std::vector<Event> events = read(content);
        EXPECT_EQ(m_damage, std::string(damage) + "\n");
        EXPECT_EQ(std::count(events.begin(), events.end(), FrdReader::DAMAGE), 1);
        EXPECT_EQ(events[events.size() - 2], FrdReader::RESULT);
        EXPECT_EQ(events.back(), FrdReader::END);
    }
}

TEST_F(FrdReaderTest, HugeCountsOfBinaryBlocksAreTruncationsOnly) {
    std::string content = kBinary;
    content.replace(content.find("           2"), 12, "  2147483647");
    EXPECT_EQ(read(content), std::vector{FrdReader::INCOMPLETE});
}

TEST(FrdText, NumbersOfFortranAreRead) {
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    const struct {
        const char* text;
        float value;
    } kCases[] = {{" 1.00000E+00", 1},   {"-2.50000E-01", -0.25f},  {"      +3.0  ", 3},
                  {"1.5-101", 0},        {"1.5+101", kInfinity},    {"-1.5D+03", -1500},
                  {"Inf", kInfinity},    {"-Infinity", -kInfinity}, {"1.23457E-41", 1.23457e-41f},
                  {"16777217", 16777216}};
    for (const auto& [text, value] : kCases) {
        float found = 0;
        EXPECT_TRUE(readFrdFloat(text, &found)) << text;
        EXPECT_EQ(found, value) << text;
    }
    float ignored = 0;
    for (const char* text : {"", "   ", "*****", "1.0 2.0", "+-1", "E5", "1.0E"}) {
        EXPECT_FALSE(readFrdFloat(text, &ignored)) << text;
    }
}

}  // namespace
}  // namespace tools
