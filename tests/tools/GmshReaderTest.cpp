#include "import/gmsh/GmshReader.h"

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>

#include "support/TemporaryFolder.h"

namespace tools {
namespace {

using Event = ImportReader::Event;

const std::string kView =
    "$NodeData\n1\n\"a view\"\n1\n2.5\n3\n7\n3\n2\n11 1 2 3\n12 4 5 6e-99\n$EndNodeData\n";
const std::string kVersion2 =
    "$MeshFormat\n2.2 0 8\n$EndMeshFormat\n$PhysicalNames\n1\n1 2 \"a bar\"\n$EndPhysicalNames\n"
    "$Nodes\n2\n11 0 0 0\n12 1 0.5 -1e3\n$EndNodes\n"
    "$Elements\n1\n5 1 2 2 1 11 12\n$EndElements\n" +
    kView;
const std::string kVersion4 =
    "$MeshFormat\n4.1 0 8\n$EndMeshFormat\n$PhysicalNames\n1\n1 2 \"a bar\"\n$EndPhysicalNames\n"
    "$Entities\n1 1 0 0\n4 0 0 0 0\n1 0 0 0 1 1 1 1 -2 2 4 5\n$EndEntities\n"
    "$Nodes\n2 2 11 12\n0 4 0 1\n11\n0 0 0\n1 1 1 1\n12\n1 0.5 -1e3 0.7\n$EndNodes\n"
    "$Elements\n1 1 5 5\n1 1 1 1\n5 11 12\n$EndElements\n" +
    kView;

class GmshReaderTest : public testing::Test {
protected:
    std::vector<Event> read(const std::string& content) {
        const std::string path = m_folder.File("a.msh");
        std::ofstream(path, std::ios::binary) << content;
        return readFile(path);
    }

    // All events up to the end, and what was damaged.
    std::vector<Event> readFile(const std::string& path) {
        m_reader = std::make_unique<GmshReader>();
        EXPECT_TRUE(m_reader->open(path));
        std::vector<Event> events;
        m_damage.clear();
        do {
            events.push_back(m_reader->next());
            if (events.back() == ImportReader::DAMAGE) m_damage += data().damage + "\n";
            if (events.back() == ImportReader::INCOMPLETE) m_damage += data().damage + "\n";
        } while (events.back() != ImportReader::END && events.back() != ImportReader::INCOMPLETE &&
                 events.size() < 100);
        return events;
    }

    ImportData& data() { return m_reader->data(); }

    const test::TemporaryFolder m_folder;
    std::unique_ptr<GmshReader> m_reader;
    std::string m_damage;
};

const std::vector<Event> kAll{ImportReader::NODES, ImportReader::ELEMENTS, ImportReader::RESULT,
                              ImportReader::END};

std::string withReturns(const std::string& text) {
    std::string lines;
    for (const char c : text) lines += c == '\n' ? std::string(" \r\n") : std::string(1, c);
    return lines;
}

TEST_F(GmshReaderTest, BothVersionsBringTheSame) {
    const std::string withoutLastEnd = kVersion2.substr(0, kVersion2.size() - 1);
    for (const std::string& content :
         {kVersion2, kVersion4, withReturns(kVersion2), withReturns(kVersion4), withoutLastEnd}) {
        SCOPED_TRACE(content);
        ASSERT_EQ(read(content), kAll) << m_damage;
        EXPECT_EQ(data().nodes.ids, (std::vector{11, 12}));
        EXPECT_EQ(data().nodes.coordinates, (std::vector<float>{0, 0, 0, 1, 0.5, -1000}));
        ASSERT_EQ(data().elements.groups.size(), 1u);
        const ImportElementGroup& group = data().elements.groups[0];
        EXPECT_EQ(group.ids, std::vector{5});
        EXPECT_EQ(group.nodes, (std::vector{11, 12}));
        EXPECT_EQ(data().header.partNames, (std::map<int, std::string>{{2, "a bar"}}));
        EXPECT_EQ(group.partId, 2);
        EXPECT_EQ(data().values.fields[0].name, "a view");
        EXPECT_EQ(data().values.state.name, "Step 7");
        EXPECT_EQ(data().values.state.value, 2.5);
        EXPECT_EQ(data().values.values, (std::vector<float>{1, 2, 3, 4, 5, 0}));
    }
}

TEST_F(GmshReaderTest, FileThatEndsWithinASectionIsReportedAndKeepsTheSectionsBefore) {
    for (const std::string& content : {kVersion2, kVersion4}) {
        for (std::size_t size = 0; size + 1 < content.size(); ++size) {
            const std::string cut = content.substr(0, size);
            const std::size_t lastEnd = cut.rfind("$End");
            const std::size_t lineEnd =
                lastEnd == cut.npos ? cut.npos : content.find('\n', lastEnd);
            const bool isBetweenSections = size == 0 || size == lineEnd || size == lineEnd + 1;
            std::vector<Event> events = read(cut);
            ASSERT_EQ(m_damage.empty(), isBetweenSections) << "at " << size << " " << m_damage;
            std::erase(events, ImportReader::DAMAGE);
            ASSERT_TRUE(std::equal(events.begin(), events.end() - 1, kAll.begin())) << size;
        }
    }
}

TEST_F(GmshReaderTest, DamageIsReportedWithItsPlaceAndWhatFollowsIsRead) {
    const struct {
        const std::string& file;
        const char* what;
        const char* replacement;
        const char* damage;
    } kCases[] = {
        {kVersion2, "$MeshFormat\n2.2 0", "$MeshFormat\n2.2 1",
         "line 2: $MeshFormat: the file is binary; only text is imported"},
        {kVersion2, "2.2 0", "4 0",
         "line 2: $MeshFormat: version 4 of the format is not imported, but 2 and 4.1"},
        {kVersion2, "2.2 0", "x", "line 2: $MeshFormat: it cannot be read"},
        {kVersion2, "$MeshFormat", "** Made by hand\n$MeshFormat",
         "line 1: this is no line of a gmsh file"},
        {kVersion2, "1 2 \"a bar\"", "bar", "line 6: $PhysicalNames: this is no name"},
        {kVersion2, "\n2\n11", "\n-2\n11", "line 9: $Nodes: this is no number of items"},
        {kVersion2, "\n2\n11", "\n3\n11", "line 12: $Nodes: this is no node"},
        {kVersion2, "\n2\n11", "\n1\n11", "line 11: $Nodes: $EndNodes is missing"},
        {kVersion2, "12 1 0.5 -1e3", "12 1 0.5", "line 11: $Nodes: this is no node"},
        {kVersion2, "$EndNodes\n", "", "line 12: $Nodes: $EndNodes is missing"},
        {kVersion2, "12 1 0.5", "5000000000 1 0.5", "line 11: $Nodes: this is no node"},
        {kVersion2, "5 1 2 2 1", "5 21 2 2 1",
         "line 15: $Elements: elements of type 21 cannot be imported"},
        {kVersion2, "5 1 2 2 1 11 12", "5 1 2 2 1 11",
         "line 15: $Elements: an element without all its nodes"},
        {kVersion2, "5 1 2 2 1 11 12", "5 1 2147483647 2 1 11",
         "line 15: $Elements: this is no element"},
        {kVersion2, "2.5\n3\n7\n3", "2.5\n3\n7\n-9",
         "line 25: $NodeData \"a view\": it has -9 components, which must be 1, 3 or 9"},
        {kVersion2, "2.5\n3", "inf\n3", "line 25: $NodeData: its tags cannot be read"},
        {kVersion2, "4 5 6e-99", "4 5", "line 27: $NodeData \"a view\": these are no values"},
        {kVersion2, "\n2\n11 1 2 3", "\n2147483647\n11 1 2 3",
         "line 28: $NodeData \"a view\": these are no values"},
        {kVersion4, "1 1 -2", "1 9 -2", "line 11: $Entities: this is no entity"},
        {kVersion4, "1 1 0 0\n4", "1 1\n4", "line 9: $Entities: these are no numbers of entities"},
        {kVersion4, "0 4 0 1", "0 4 0", "line 15: $Nodes: this is no head of nodes"},
        {kVersion4, "1 0.5 -1e3", "1 0.5 x", "line 20: $Nodes: this is no position of a node"},
        {kVersion4, "1 1 1 1\n5", "1 1 1\n5", "line 24: $Elements: this is no head of elements"}};
    for (const auto& [file, what, replacement, damage] : kCases) {
        SCOPED_TRACE(damage);
        std::string content = file;
        ASSERT_NE(content.find(what), content.npos);
        content.replace(content.find(what), std::strlen(what), replacement);
        const std::vector<Event> events = read(content + "$Comments\n$EndComments\n" + kVersion2);
        EXPECT_EQ(m_damage.substr(0, m_damage.find('\n')), damage);
        ASSERT_GE(events.size(), kAll.size());
        EXPECT_TRUE(std::equal(kAll.rbegin(), kAll.rend(), events.rbegin()));
    }
}

TEST_F(GmshReaderTest, DamageIsReportedOnce) {
    read("\n \n$Nodes\n0\n$EndNodes\n");
    EXPECT_EQ(m_damage, "line 3: $Nodes: $MeshFormat does not come before it\n");
    EXPECT_EQ(readFile("/proc/self/mem"), std::vector{ImportReader::INCOMPLETE});
    EXPECT_EQ(m_damage, "line 1: cannot be read: Input/output error\n");
}

TEST_F(GmshReaderTest, NumbersOfGroupsMayBeAnything) {
    for (const char* tags : {"2 -2147483648 1", "2 2147483647 1", "2 0 -2147483648", "0"}) {
        std::string content = kVersion2;
        content.replace(content.find("2 2 1 11 12"), 5, tags);
        EXPECT_EQ(read(content), kAll);
        EXPECT_GE(data().elements.groups[0].partId, 0);
    }
}

}  // namespace
}  // namespace tools
