// The program as its users meet it: run from outside, on sound files, faulty ones and none.

#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "check/ElementVolume.h"
#include "container/ZRFxZipArchive.h"
#include "support/ArchiveTest.h"
#include "support/SampleBlocks.h"
#include "support/ToolTest.h"
#include "types/ZRFxElementType.h"

namespace tools {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::StartsWith;

class ZrfxTest : public test::ToolTest {};

TEST_F(ZrfxTest, InfoTellsAllThatASoundFileHolds) {
    WriteSound("a.zrfx");
    const json info = json::parse(Output("info a.zrfx --json"));
    json expected = json::parse(R"({
        "file": "a.zrfx", "vendorName": "Maker", "applicationName": "Solver", "vendorId": 0,
        "compressed": true, "encrypted": false, "binary": false, "userTextFiles": ["notes"],
        "databases": [{
            "id": 0, "name": "Beam", "folder": "Database000", "simulationType": "Structural",
            "solutionType": "Transient", "description": "A beam",
            "blocks": {"Elements": [1, 2], "Geometry": [1], "GeometryInfo": [1], "Nodes": [1],
                       "ResultValues": [1, 2, 3, 4], "Results": [1, 2, 3], "Set": [1],
                       "StateInfo": [1], "TransformationResultValues": [1],
                       "TransformationResults": [1]},
            "nodes": 12, "elements": 3, "elementTypes": {"Hexahedron": 2, "Tetrahedron": 1},
            "states": [{"id": 1, "name": "Begin", "value": 0.1, "type": "Time"},
                       {"id": 2, "name": "End", "value": 0.25, "type": "Time"}],
            "results": [
                {"blockId": 1, "id": 1, "name": "Displacement", "type": "Displacement",
                 "mapping": "Node", "states": [1, 2], "min": 0.0, "max": 17.5,
                 "derived": {"magnitude": {"min": 1.118034, "max": 29.453354}}},
                {"blockId": 2, "id": 2, "name": "Energy", "type": "Scalar",
                 "mapping": "Element", "states": [1], "min": 0.0, "max": 0.5, "derived": {}},
                {"blockId": 3, "id": 3, "name": "Stress", "type": "Tensor",
                 "mapping": "ElementNode", "states": [1], "min": 0.0, "max": 47.5,
                 "derived": {"von_mises": {"min": 6.1846585, "max": 141.00798}}}],
            "transformations": [{"blockId": 1, "id": 9, "name": "Transformation result 1",
                                 "states": [1]}],
            "sets": [{"id": 5, "name": "Clamped", "items": 1}],
            "parts": [{"geometry": 0, "id": 1, "name": "Steel, rolled"},
                      {"geometry": 0, "id": 2, "name": "Rubber"}]}],
        "cases": [{"id": 0, "name": "Front", "databaseId": 0, "description": "<p>Front</p>",
                   "derivedResultsDisabled": false, "snapshot": true, "images": ["steel"],
                   "properties": [{"classType": "part_settings",
                                   "values": {"texture_image_name": "steel"}}]}]})");
    expected["exportDateTime"] = info["exportDateTime"];
    EXPECT_EQ(info, expected) << json::diff(expected, info);
    EXPECT_THAT(info["exportDateTime"].get<std::string>(),
                testing::MatchesRegex("....-..-..T..:..:.."));
    const json quick = json::parse(Output("info a.zrfx --json --quick"));
    EXPECT_TRUE(quick["databases"][0]["results"][0]["min"].is_null());
    EXPECT_THAT(Output("info a.zrfx"), HasSubstr("2 \"Energy\", Scalar on Element, 1 state, 0 to"));
}

// A fault in one entry of a sound file, and what is found.
struct Fault {
    const char* entry;
    const char* from;
    const char* to;  // null removes the entry
    const char* finding;
};

TEST_F(ZrfxTest, CheckFindsEachFault) {
    const Fault faults[] = {
        {"Database000\\Nodes\\Nodes0001.txt", "1 0 0", "1 0 0\n7",
         "error: Database000\\Nodes\\Nodes0001.xml: "},
        {"Database000\\Nodes\\Nodes0001.txt", "1 0 0", "UNDEF",
         "Nodes0001.xml: node 1: lies at 2.99e+38"},
        {"Database000\\Nodes\\Nodes0001-IDs.txt", "101", "100",
         "Nodes0001.xml: node 1: id 100 is used before"},
        {"Database000\\Nodes\\Nodes0001.txt", "", nullptr, "Nodes0001.dat', file not found"},
        {"Database000\\Elements\\Elements0001.xml", "NodeBlock=\"1\"", "NodeBlock=\"4\"",
         "Elements0001.xml: node block: there is no block Nodes:4"},
        {"Database000\\Elements\\Elements0001.xml", "NumItems=\"2\"", "NumItems=\"3\"",
         "holds 16 element nodes, expected 24"},
        {"Database000\\Elements\\Elements0001-0001.txt", "1\n2\n", "99\n2\n",
         "Elements0001.xml: element 0 (id 11): node index 98 is beyond the 12 nodes"},
        {"Database000\\Elements\\Elements0002-0001.txt", "104", "204",
         "element 0: there is no node of id 204"},
        {"Database000\\Elements\\Elements0001-0001.txt", "1\n2\n3\n4\n5\n6\n7\n8\n",
         "5\n6\n7\n8\n1\n2\n3\n4\n", "element 0 (id 11): Hexahedron has volume -"},
        {"Database000\\Elements\\Elements0001-0001.txt", "1\n2\n", "2\n2\n",
         "warning: Database000\\Elements\\Elements0001.xml: element 0 (id 11): Hexahedron has a "
         "node more than once"},
        {"Database000\\Elements\\Elements0002-0001.txt", "101", "100",
         "error: Database000\\Elements\\Elements0002.xml: element 0: Tetrahedron has 3 different"},
        {"Database000\\Geometry\\Geometry0001.xml", "BlockID=\"2\"", "BlockID=\"8\"",
         "state 1, geometry 0, part 1: there is no block Elements:8"},
        {"Database000\\Geometry\\Geometry0001.xml", "PartID=\"2\"", "PartID=\"1\"",
         "state 1, geometry 0: part id 1 is used more than once"},
        {"Database000\\Geometry\\Geometry0001.xml", "PartID=\"2\"", "PartID=\"3\"",
         "Geometry0001.xml: state 2: its parts are not those of state 1"},
        {"Database000\\Geometry\\Geometry0001.xml", "State ID=\"2\"", "State ID=\"6\"",
         "record 1: there is no state 6"},
        {"Database000\\GeometryInfo\\GeometryInfo0001.xml", "PartID=\"2\"", "PartID=\"1\"",
         "GeometryInfo0001.xml: geometry 0, part 1: part id 1 is used more than once"},
        {"Database000\\StateInfo\\StateInfo0001.xml", "State ID=\"2\"", "State ID=\"1\"",
         "record 1: state id 1 is used before"},
        {"Database000\\Set\\Set0001-0001.txt", "12", "13",
         "group 0, item 0: there is no element of id 13"},
        {"Database000\\Results\\Results0001.xml", "<Value0>2<", "<Value0>7<",
         "Results0001.xml: state 2: there is no block ResultValues:7"},
        {"Database000\\Results\\Results0001.xml", "State ID=\"2\"", "State ID=\"5\"",
         "Results0001.xml: state 5: there is no state 5"},
        {"Database000\\Results\\Results0002.xml", "ResultID=\"2\"", "ResultID=\"1\"",
         "warning: Database000\\Results\\Results0001.xml: other results have the result id 1"},
        {"Database000\\ResultValues\\ResultValues0003.xml", "MapToBlockID=\"1\"",
         "MapToBlockID=\"2\"", "ResultValues0003.xml: has values of 2 items, its target has 1"},
        {"Database000\\ResultValues\\ResultValues0003.xml", "MapToBlockID=\"1\"",
         "MapToBlockID=\"9\"",
         "target block: there is no block of nodes, elements or faces of id 9"},
        {"Database000\\Results\\Results0003.xml", "\"ElementNode\"", "\"Surface\"",
         "ResultValues0004.xml: has values of 16 items, its target has 12"},
        {"Database000\\Results\\Results0002.xml", "\"Scalar\"", "\"Vector\"",
         "ResultValues0003.xml: has 1 values an item, its result 3"},
        {"Database000\\TransformationResultValues\\TransformationResultValues0001.xml",
         "MapToBlockID=\"2\"", "MapToBlockID=\"6\"", "target block: there is no block Elements:6"},
        {"Database000\\Database-TOC.xml", "<Nodes", "<Knots",
         "Invalid block type 'Knots' specified"},
        {"Database000\\Database-TOC.xml", "<DatabaseTOC", "<", "Database-TOC.xml': "},
        {"ZRF.xml", "DatabaseID=\"0\"", "DatabaseID=\"4\"", "Case.xml: there is no database 4"},
        {"Case0\\Snapshot.jpeg", "", nullptr, "snapshot 'Snapshot.jpeg' is missing"},
        {"Case0\\Snapshot.jpeg", "JFIF", "JF", "error: Case0\\Snapshot.jpeg: "},
        {"Case0\\Description.html", "", nullptr, "description 'Description.html' is missing"},
        {"Case0\\ZRFxProperties.xml", "", nullptr, "properties 'ZRFxProperties.xml' are missing"},
        {"Case0\\ZRFxProperties.xml", ">steel<", ">wood<",
         "part_settings::texture_image_name: there is no texture 'wood'"},
        {"Case0\\ZRFxProperties.xml", "texture_image_name", "texture_name",
         "Property part_settings::texture_name does not exist"},
        {"Case0\\Textures\\PartTexture_steel.raw", "", nullptr, "there is no texture 'steel'"},
    };
    for (const Fault& fault : faults) {
        SCOPED_TRACE(std::string(fault.entry) + " " + fault.from);
        WriteSound("a.zrfx");
        Edit("a.zrfx", fault.entry, fault.from, fault.to);
        const test::Ended run = Zrfx("check a.zrfx");
        EXPECT_THAT(run.out, HasSubstr(fault.finding));
        EXPECT_EQ(run.err, "");
        EXPECT_EQ(run.exitCode, run.out.find("error: ") == std::string::npos ? 0 : 1);
    }
    WriteSound("a.zrfx");
    EXPECT_EQ(Output("check a.zrfx"), "a.zrfx: 0 errors, 0 warnings\n");
}

TEST_F(ZrfxTest, DocumentThatIsRegisteredTwiceIsOpenedOnce) {
    WriteSound("a.zrfx");
    Edit("a.zrfx", "ZRF.xml", "<Cases>",
         "<Cases><Case ID=\"1\" Name=\"Again\" DatabaseID=\"0\" Folder=\"Case0\"/>");
    const test::Ended withCase = Zrfx("info a.zrfx --verbose");
    EXPECT_THAT(withCase.out, HasSubstr("Again"));
    EXPECT_THAT(withCase.err, HasSubstr("'Case0\\Case.xml' is registered twice."));
    Edit("a.zrfx", "ZRF.xml", "<Databases>",
         "<Databases><Database ID=\"1\" Name=\"Again\" Folder=\"Database000\"/>");
    const test::Ended withDatabase = Zrfx("info a.zrfx --verbose");
    EXPECT_THAT(withDatabase.err, HasSubstr("'Database000\\Database.xml' is registered twice."));
    EXPECT_EQ(withDatabase.exitCode, 1);
    Edit("a.zrfx", "Database000\\Database-TOC.xml", "<Nodes",
         "<Nodes ID=\"7\" File=\"Database000\\Nodes\\Nodes0001.xml\"/><Nodes");
    const std::string found = Zrfx("check a.zrfx").out;
    for (const char* document :
         {"Case0\\Case.xml", "Database000\\Database.xml", "Database000\\Nodes\\Nodes0001.xml"}) {
        EXPECT_THAT(found, HasSubstr("'" + std::string(document) + "' is registered twice"));
    }
}

TEST_F(ZrfxTest, CheckReportsEverythingAndEachOfItsKindOnlySoOften) {
    WriteSound("a.zrfx");
    Edit("a.zrfx", "Database000\\Elements\\Elements0001-0001.txt", "1\n2\n3\n", "91\n92\n93\n");
    Edit("a.zrfx", "Database000\\Results\\Results0001.xml", "<Results", "<");
    Edit("a.zrfx", "Case0\\Case.xml", "Snapshot.jpeg", "Gone.jpeg");
    const json found = json::parse(Zrfx("check a.zrfx --json --limit 2").out);
    EXPECT_EQ(found["errorCount"], 5);
    std::vector<std::string> checks;
    for (const json& error : found["errors"]) checks.push_back(error["check"]);
    EXPECT_THAT(checks, testing::ElementsAre("node-reference", "node-reference", "node-reference",
                                             "block", "snapshot"));
    EXPECT_EQ(found["errors"][2]["message"], "and 1 more of this kind");
    EXPECT_EQ(found["warnings"][0]["check"], "unused-block");
}

TEST_F(ZrfxTest, CheckFindsDamagedBytesInEveryEntry) {
    WriteSound("sound.zrfx");
    unstruct::ZRFxZipArchive archive;
    ASSERT_TRUE(archive.Open(Path("sound.zrfx"), unstruct::ZRZipAccessMode::READ_ONLY));
    std::ifstream file(Path("sound.zrfx"), std::ios::binary);
    const std::string sound(std::istreambuf_iterator<char>(file), {});
    for (std::size_t i = 0; i < archive.EntryCount(); ++i) {
        const std::string name = archive.EntryAt(i).sName;
        SCOPED_TRACE(name);
        std::string damaged = sound;
        const std::size_t data = damaged.find(name) + name.size();
        damaged[data] = static_cast<char>(damaged[data] ^ 0x55);
        std::ofstream(Path("a.zrfx"), std::ios::binary) << damaged;
        const test::Ended run = Zrfx("check a.zrfx");
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_THAT(run.out, HasSubstr(name));
    }
}

// Every kind of block that can be stored, and what lies outside of databases.
TEST_F(ZrfxTest, CopiesMeanTheSameInEveryForm) {
    WriteSound("a.zrfx");
    {
        unstruct::ZRFxAccess access;
        ASSERT_TRUE(access.Open(Path("a.zrfx"), unstruct::ZRZipAccessMode::UPDATE));
        unstruct::ZRFxDatabase database(&access);
        ASSERT_TRUE(test::CreateDatabase(database, 7));
        for (const int type : test::StoredTypes()) {
            ASSERT_TRUE(test::SampleBlock(type, 3)->WriteBlock(&database));
        }
        ASSERT_TRUE(access.WriteDataRaw("Database007\\Nodes\\Unused.dat", "unused", 6, false));
        ASSERT_TRUE(access.WriteDataRaw("Tool\\Foreign", "foreign", 7, false));
        ASSERT_TRUE(database.WriteTOC() && access.Close());
        TakeMessages();
    }
    std::ofstream(Path("secret")) << "open sesame\n";
    const char* const copies[] = {"",
                                  "--level 0",
                                  "--text",
                                  "--binary --level 9",
                                  "--new-password-file secret",
                                  "--no-password"};
    std::string before = "a.zrfx";
    for (const std::string options : copies) {
        SCOPED_TRACE(options);
        EXPECT_EQ(Output("copy " + before + " b.zrfx --password-file secret " + options), "");
        const bool isText = options == "--text";
        EXPECT_EQ(Output("diff --exact a.zrfx b.zrfx --password-file secret" +
                         std::string(isText ? " --relative 1e-5 --absolute 1e-5" : "")),
                  "");
        before = isText ? "a.zrfx" : "b.zrfx";  // text rounds
        const std::string entries = Output("list b.zrfx");
        EXPECT_EQ(entries.find("Unused"), std::string::npos);
        EXPECT_NE(entries.find("Tool\\Foreign"), std::string::npos);
        EXPECT_EQ(entries.find("Nodes0003.txt") != std::string::npos, isText);
    }
}

TEST_F(ZrfxTest, DiffPrintsOnlyDifferences) {
    WriteSound("a.zrfx");
    const struct {
        const char* entry;
        const char* from;
        const char* to;
        const char* options;
        const char* difference;
    } edits[] = {
        {"Database000\\Nodes\\Nodes0001.txt", "1 0 2", "1 0 2.01", "",
         "database 0, Nodes:1, coordinates: 1 of 36 values differs, first in item 9: 2 and 2.01\n"},
        {"Database000\\Nodes\\Nodes0001.txt", "1 0 2", "1 0 2.01", "--relative 0.01", ""},
        {"Database000\\Nodes\\Nodes0001.txt", "1 0 2", "1 0 2.01", "--absolute 0.009",
         "database 0, Nodes:1, coordinates: 1 of 36 values differs, first in item 9: 2 and 2.01\n"},
        {"Database000\\Database-TOC.xml", "<Set ID=\"1\" File=\"Database000\\Set\\Set0001.xml\" />",
         "", "", "database 0, Set:1: only in a.zrfx\n"},
        {"Database000\\Results\\Results0002.xml", "Energy", "Power", "",
         "database 0, Results:2, name: \"Energy\" and \"Power\"\n"},
        {"Case0\\ZRFxProperties.xml", "steel", "wood", "",
         "case 0, properties, 0, values, texture_image_name: \"steel\" and \"wood\"\n"},
        {"UserData\\notes.txt", "read", "eat", "", "user text notes: texts differ\n"},
    };
    for (const auto& edit : edits) {
        SCOPED_TRACE(edit.difference);
        std::filesystem::copy_file(Path("a.zrfx"), Path("b.zrfx"),
                                   std::filesystem::copy_options::overwrite_existing);
        Edit("b.zrfx", edit.entry, edit.from, edit.to);
        const test::Ended run = Zrfx("diff --exact a.zrfx b.zrfx " + std::string(edit.options));
        EXPECT_EQ(run.out, edit.difference);
        EXPECT_EQ(run.exitCode, run.out.empty() ? 0 : 1);
    }
}

TEST_F(ZrfxTest, FailedCopyLeavesWhatWasThere) {
    WriteSound("in.zrfx");
    WriteSound("out.zrfx");
    WriteSound("kept.zrfx");
    Edit("in.zrfx", "Database000\\ResultValues\\ResultValues0004.txt", "", nullptr);
    const test::Ended run = Zrfx("copy in.zrfx out.zrfx");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, StartsWith("zrfx: in.zrfx: Unable to read raw data from 'Database000"));
    Output("diff --exact out.zrfx kept.zrfx");
    EXPECT_EQ(Zrfx("copy in.zrfx new.zrfx").exitCode, 1);
    for (const auto& file : std::filesystem::directory_iterator(Path(""))) {
        EXPECT_THAT(file.path().filename().string(), testing::Not(HasSubstr("new")));
    }
}

TEST_F(ZrfxTest, CopyWithFewerDigitsSaysSoAndDiffersByNoMore) {
    WriteSound("a.zrfx");
    Output("copy a.zrfx b.zrfx --digits 1");
    EXPECT_THAT(Zrfx("diff --exact a.zrfx b.zrfx").out, HasSubstr("values"));
    std::istringstream differences(Zrfx("diff --exact a.zrfx b.zrfx --relative 5e-2").out);
    int count = 0;
    for (std::string line; std::getline(differences, line); ++count) {
        EXPECT_THAT(line, HasSubstr("SignificantDigits"));
    }
    EXPECT_EQ(3, count);
}

TEST_F(ZrfxTest, CopyOntoItselfReclaimsSpace) {
    WriteSound("a.zrfx");
    std::filesystem::copy_file(Path("a.zrfx"), Path("before.zrfx"));
    const auto size = std::filesystem::file_size(Path("a.zrfx"));
    {
        unstruct::ZRFxZipArchive archive;
        const std::string waste(50000, '\0');
        ASSERT_TRUE(archive.Open(Path("a.zrfx"), unstruct::ZRZipAccessMode::UPDATE));
        ASSERT_TRUE(archive.Add("Database000\\Waste.dat", waste.data(), waste.size(), 0) &&
                    archive.Close());
    }
    EXPECT_THAT(Output("check a.zrfx"), HasSubstr("Waste.dat: nothing refers to this entry"));
    Output("copy a.zrfx a.zrfx");
    Output("diff --exact before.zrfx a.zrfx");
    EXPECT_LT(std::filesystem::file_size(Path("a.zrfx")), size + 100);
}

TEST_F(ZrfxTest, CopyRemovesTheJournalOfTheFileThatItReplaces) {
    WriteSound("a.zrfx");
    const std::pair<const char*, bool> journals[] = {
        {"ZRFXJRNL, of a writer of the version before", false}, {"Notes of 3 May", true}};
    for (const auto& [text, isKept] : journals) {
        std::ofstream(Path("b.zrfx.journal")) << text;
        Output("copy a.zrfx b.zrfx");
        EXPECT_EQ(std::filesystem::exists(Path("b.zrfx.journal")), isKept);
    }
}

TEST_F(ZrfxTest, CatPrintsTheValuesOfABlock) {
    WriteSound("a.zrfx");
    const struct {
        const char* block;
        const char* text;
    } blocks[] = {
        {"Nodes:1", "# id x y z\n100 0 0 0\n101 1 0 0\n"},
        {"Nodes:1 --csv", "id,x,y,z\n100,0,0,0\n101,1,0,0\n"},
        {"Elements:1", "# id type node_indices\n11 Hexahedron 0 1 2 3 4 5 6 7\n12 "},
        {"Elements:2 --csv", "type,node_ids\nTetrahedron,100,101,103,104\n"},
        {"ResultValues:3 --csv", "value\n0\n0.5\n"},
        {"ResultValues:4", "# xx yy zz xy yz zx\n0 0.5 1 1.5 2 2.5\n"},
        {"GeometryInfo:1 --csv", "geometry,part_id,name,parent_part_id\n0,1,\"Steel, rolled\",-1"},
        {"StateInfo:1", "# id name value type group_id group\n1 Begin 0.1 Time -1 \"\"\n"},
        {"Set:1", "# block element_id\n1 12\n"},
    };
    for (const auto& [block, text] : blocks) {
        EXPECT_THAT(Output("cat a.zrfx --database 0 --block " + std::string(block)),
                    StartsWith(text));
    }
}

TEST_F(ZrfxTest, PropertiesAreListedByGroup) {
    EXPECT_THAT(Zrfx("properties camera").out,
                HasSubstr("  projection_type: text (perspective, ortho; default perspective)\n"));
    EXPECT_EQ(Zrfx("properties Camera").exitCode, 2);
}

TEST_F(ZrfxTest, ExtractNeverLeavesItsFolder) {
    WriteSound("a.zrfx");
    Output("extract a.zrfx -o all");
    EXPECT_TRUE(std::filesystem::exists(Path("all/Database000/Nodes/Nodes0001.txt")));
    Output("extract a.zrfx 'Case0\\Case.xml' ZRF.xml -o some");
    EXPECT_FALSE(std::filesystem::exists(Path("some/Database000")));

    unstruct::ZRFxZipArchive archive;
    ASSERT_TRUE(archive.Open(Path("evil.zrfx"), unstruct::ZRZipAccessMode::CREATE));
    const char* const names[] = {"..\\evil", "a/../../evil", "/evil", "\\evil",
                                 "C:\\evil", "link\\evil",   "file",  "good\\file"};
    for (const char* name : names) ASSERT_TRUE(archive.Add(name, "evil", 4));
    ASSERT_TRUE(archive.Close());
    std::filesystem::create_directories(Path("box/in"));
    std::filesystem::create_directory_symlink("..", Path("box/in/link"));
    std::filesystem::create_symlink("../evil", Path("box/in/file"));
    const test::Ended run = Zrfx("extract evil.zrfx -o box/in");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 6) << run.err;
    EXPECT_FALSE(std::filesystem::exists(Path("box/evil"))) << run.err;
    EXPECT_FALSE(std::filesystem::exists(Path("evil")));
    EXPECT_FALSE(std::filesystem::is_symlink(Path("box/in/file")));
    EXPECT_TRUE(std::filesystem::exists(Path("box/in/good/file")));
}

TEST_F(ZrfxTest, ExtractMakesNoFoldersWithoutEnd) {
    const auto folders = [](std::size_t count, const std::string& first) {
        std::string path = first;
        for (std::size_t i = 1; i < count; ++i) path += "\\d";
        return path + "\\file";
    };
    unstruct::ZRFxZipArchive archive;
    ASSERT_TRUE(archive.Open(Path("deep.zrfx"), unstruct::ZRZipAccessMode::CREATE));
    for (const std::string& name : {folders(30000, "a"), folders(1001, "b"), folders(1000, "c"),
                                    folders(30, "d"), std::string("ZRF.xml"), folders(2, "c")}) {
        ASSERT_TRUE(archive.Add(name, "1", 1));
    }
    ASSERT_TRUE(archive.Close());
    const test::Ended run = Zrfx("extract deep.zrfx -o x");
    EXPECT_EQ(run.exitCode, 1);
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(Path("x"))) {
        count += entry.is_directory();
    }
    EXPECT_EQ(count, 1000u + 4 * 6);
    EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 3) << run.err;
    EXPECT_THAT(run.err, HasSubstr("': is left out, its name has more than 1000 folders\n"));
    EXPECT_THAT(run.err, HasSubstr("': is left out, the archive names more than 1024 folders\n"));
    EXPECT_TRUE(std::filesystem::exists(Path("x/c/d/file")));
    EXPECT_TRUE(std::filesystem::exists(Path("x/ZRF.xml")));
}

TEST_F(ZrfxTest, PasswordComesFromFileOrEnvironment) {
    WriteSound("a.zrfx");
    std::ofstream(Path("right")) << "open sesame\r\nsecond line";
    std::ofstream(Path("wrong")) << "open barley";
    std::ofstream(Path("empty"));
    Output("copy a.zrfx s.zrfx --password-file right");
    Output("diff --exact a.zrfx s.zrfx --password-file right");
    Output("list s.zrfx");
    setenv("ZRFX_PASSWORD", "open sesame", 1);
    for (const char* command : {"info", "check", "extract -o x"}) {
        Output(command + std::string(" s.zrfx"));
    }
    EXPECT_EQ(Zrfx("check s.zrfx --password-file wrong").err,
              "zrfx: s.zrfx: the password is wrong\n");
    unsetenv("ZRFX_PASSWORD");
    EXPECT_EQ(Zrfx("info s.zrfx --password-file wrong").err,
              "zrfx: s.zrfx: the password is wrong, or the file is damaged\n");
    EXPECT_EQ(Zrfx("info s.zrfx --password-file empty").err,
              "zrfx: s.zrfx: password file empty has no password in it\n");
}

TEST_F(ZrfxTest, PasswordIsAskedForOnATerminalAndNotShown) {
    if (!HasTerminals()) GTEST_SKIP() << "no terminals here";
    WriteSound("a.zrfx");
    EXPECT_THAT(OnTerminal("copy a.zrfx s.zrfx --password", "sesame\nsesam\n"),
                HasSubstr("zrfx: s.zrfx: the two passwords differ\r\n"));
    EXPECT_EQ(OnTerminal("copy a.zrfx s.zrfx --password", "sesame\nsesame\n"),
              "New password of s.zrfx: \r\nOnce more: \r\n");
    const std::string shown = OnTerminal("check s.zrfx", "sesame\n");
    EXPECT_THAT(shown, StartsWith("Password of s.zrfx: \r\n"));
    EXPECT_THAT(shown, testing::EndsWith("s.zrfx: 0 errors, 0 warnings\r\n"));
    EXPECT_THAT(shown, testing::Not(HasSubstr("sesame")));
}

TEST_F(ZrfxTest, FailureIsOneLineThatNamesFileAndCause) {
    WriteSound("a.zrfx");
    std::ofstream(Path("text.zrfx")) << "This is no archive.";
    const struct {
        const char* arguments;
        int exitCode;
        const char* message;
    } failures[] = {
        {"", 2, "zrfx: A subcommand is required"},
        {"inform a.zrfx", 2, "zrfx: "},
        {"info", 2, "zrfx: FILE is required"},
        {"info a.zrfx b.zrfx", 2, "zrfx: The following argument was not expected: b.zrfx"},
        {"copy a.zrfx b.zrfx --level 10", 2, "zrfx: --level: "},
        {"copy a.zrfx b.zrfx --text --binary", 2, "zrfx: --text excludes --binary"},
        {"copy a.zrfx b.zrfx --password --no-password", 2, "zrfx: --"},
        {"cat a.zrfx --database 0 --block Nodes", 2, "zrfx: --block: 'Nodes' is no block"},
        {"cat a.zrfx --database 0 --block Nodes:2", 1, "zrfx: a.zrfx: there is no block Nodes:2"},
        {"cat a.zrfx --database 3 --block Nodes:1", 1, "zrfx: a.zrfx: there is no database 3"},
        {"info missing.zrfx", 1, "zrfx: missing.zrfx: File not found\n"},
        {"check text.zrfx", 1, "zrfx: text.zrfx: not a ZIP archive"},
        {"list text.zrfx", 1, "zrfx: text.zrfx: not a ZIP archive"},
        {"diff a.zrfx text.zrfx", 1, "zrfx: text.zrfx: not a ZIP archive"},
        {"extract a.zrfx nothing -o x", 1, "zrfx: a.zrfx: there is no entry 'nothing'"},
        {"copy a.zrfx no/such/folder.zrfx", 1, "zrfx: no/such/folder.zrfx: cannot be created: "},
        {"copy a.zrfx .", 1, "zrfx: .: is no file that could be replaced"},
    };
    for (const auto& failure : failures) {
        SCOPED_TRACE(failure.arguments);
        const test::Ended run = Zrfx(failure.arguments);
        EXPECT_EQ(run.exitCode, failure.exitCode);
        EXPECT_THAT(run.err, StartsWith(failure.message));
        EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
        EXPECT_EQ(run.out, "");
    }
    EXPECT_THAT(Zrfx("info missing.zrfx --verbose").err,
                HasSubstr("nuo.nvf.unstruct.zrfx: error: File not found. 'missing.zrfx'\n"));
    for (const char* command : {"info", "list", "check", "extract", "cat", "diff", "copy"}) {
        EXPECT_THAT(Output(command + std::string(" --help")), HasSubstr("Examples:\n  zrfx "));
    }
}

// A skewed cube cut into cells, so that no volume comes out right by symmetry.
TEST(ElementVolumeTest, VolumeIsSignedByTheOrderOfTheNodes) {
    const struct {
        int type;
        const char* nodes;  // Of each the digits that are x, y and z.
        double volume;
    } cells[] = {
        {unstruct::ELEMENT_TETRAHEDRON, "000 200 030 001", 1},
        {unstruct::ELEMENT_PYRAMID, "000 100 110 010 993", 1},
        {unstruct::ELEMENT_PENTAHEDRON, "000 010 100 502 512 602", 1},
        {unstruct::ELEMENT_HEXAHEDRON, "000 100 110 010 501 601 611 511", 1},
        {unstruct::ELEMENT_TETRAHEDRON_10, "000 400 060 002 200 230 030 001 201 031", 8},
    };
    for (const auto& cell : cells) {
        SCOPED_TRACE(unstruct::ZRFEMElementTypeName(cell.type).Bytes());
        std::istringstream words(cell.nodes);
        std::vector<nuo::Vec3d> nodes;
        for (std::string word; words >> word;) {
            nodes.emplace_back(1000 + word[0] - '0', word[1] - '0', word[2] - '0');
        }
        EXPECT_NEAR(ElementVolume(cell.type).of(nodes), cell.volume, 1e-9);
        for (nuo::Vec3d& node : nodes) node.z = -node.z;
        EXPECT_NEAR(ElementVolume(cell.type).of(nodes), -cell.volume, 1e-9);
    }
}

}  // namespace
}  // namespace tools
