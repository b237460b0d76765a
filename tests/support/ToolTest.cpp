#include "support/ToolTest.h"

#include <NuoZRFx/NuoZRFx.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

#include "container/ZRFxZipArchive.h"

namespace test {

using namespace nuo::zrfx;
using nuo::PtrRef;
using unstruct::ZRFxZipArchive;

namespace {

// Without the lines that were taken off the terminal again: from their start to the sequence that
// erases them.
std::string WithoutErased(std::string shown) {
    const std::string erase = "\x1b[K";
    for (std::size_t at = shown.find(erase); at != std::string::npos; at = shown.find(erase)) {
        const std::size_t start = shown.find_last_of("\r\n", at);
        const bool isLine = start != std::string::npos && shown[start] == '\r';
        const std::size_t from = isLine ? start : at;
        shown.erase(from, at + erase.size() - from);
    }
    return shown;
}

std::string contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream content;
    content << file.rdbuf();
    return content.str();
}

bool writeMesh(Database& database) {
    PtrRef<NodeBlock> nodes = new NodeBlock(1, true);
    int id = 100;
    for (const float z : {0.f, 1.f, 2.f}) {
        for (const auto& [x, y] : {std::pair(0.f, 0.f), {1.f, 0.f}, {1.f, 1.f}, {0.f, 1.f}}) {
            if (!nodes->addNode(x, y, z, id++)) return false;
        }
    }
    PtrRef<ElementBlock> hexahedrons = new ElementBlock(1, true, false);
    PtrRef<ElementBlock> tetrahedrons = new ElementBlock(2, false, true);
    hexahedrons->setNodeBlockId(1);
    tetrahedrons->setNodeBlockId(1);
    return hexahedrons->addElement(ElementBlock::HEXAHEDRONS, {0, 1, 2, 3, 4, 5, 6, 7}, 11) &&
           hexahedrons->addElement(ElementBlock::HEXAHEDRONS, {4, 5, 6, 7, 8, 9, 10, 11}, 12) &&
           tetrahedrons->addElement(ElementBlock::TETRAHEDRONS, {100, 101, 103, 104}) &&
           database.writeBlock(nodes.p()) && database.writeBlock(hexahedrons.p()) &&
           database.writeBlock(tetrahedrons.p());
}

bool writeParts(Database& database) {
    PtrRef<GeometryBlock> geometry = new GeometryBlock(1);
    PtrRef<GeometryInfoBlock> info = new GeometryInfoBlock(1);
    PtrRef<StateInfoBlock> states = new StateInfoBlock;
    PtrRef<SetBlock> set = new SetBlock(1, true);
    set->setSetId(5);
    set->setSetName("Clamped");
    set->addItem(12, 1);
    return geometry->setElementBlocksForState(0, {1, 2}, 1, {1, 2}) &&
           geometry->setElementBlocksForState(0, {1, 2}, 2, {1, 2}) &&
           info->addPartInfo(0, 1, "Steel, rolled") && info->addPartInfo(0, 2, "Rubber") &&
           states->addStateInfo(1, "Begin", 0.1f, StateInfoBlock::TIME) &&
           states->addStateInfo(2, "End", 0.25f, StateInfoBlock::TIME) &&
           database.writeBlock(geometry.p()) && database.writeBlock(info.p()) &&
           database.writeBlock(states.p()) && database.writeBlock(set.p());
}

bool writeValues(Database& database, int id, int target, Block::BlockType targetType,
                 ResultValuesBlock::ResultValueDimension dimension, std::size_t count) {
    PtrRef<ResultValuesBlock> values = new ResultValuesBlock(id, dimension, false);
    std::vector<float> numbers(count * dimension);
    for (std::size_t i = 0; i < numbers.size(); ++i) numbers[i] = 0.5f * i;
    return values->setResultValues(numbers, {}) && values->setMapToBlockId(target, targetType) &&
           database.writeBlock(values.p());
}

bool writeResult(Database& database, int id, const char* name, ResultBlock::ResultType type,
                 ResultBlock::ResultMapping mapping, const std::vector<int>& valuesBlocks) {
    PtrRef<ResultBlock> result = new ResultBlock(id, type, mapping);
    result->setName(name);
    result->setResultId(id);
    for (std::size_t i = 0; i < valuesBlocks.size(); ++i) {
        if (!result->addResultValuesBlock(valuesBlocks[i], static_cast<int>(i) + 1)) return false;
    }
    return database.writeBlock(result.p());
}

bool writeResults(Database& database) {
    using Values = ResultValuesBlock;
    PtrRef<TransformationResultValuesBlock> move = new TransformationResultValuesBlock(1);
    PtrRef<TransformationResultBlock> moves = new TransformationResultBlock(1);
    moves->setResultId(9);
    return writeValues(database, 1, 1, Block::NODES, Values::VECTOR3D, 12) &&
           writeValues(database, 2, 1, Block::NODES, Values::VECTOR3D, 12) &&
           writeValues(database, 3, 1, Block::ELEMENTS, Values::SCALAR1D, 2) &&
           writeValues(database, 4, 1, Block::ELEMENTS, Values::TENSOR6D, 16) &&
           writeResult(database, 1, "Displacement", ResultBlock::DISPLACEMENT,
                       ResultBlock::NODE_MAPPING, {1, 2}) &&
           writeResult(database, 2, "Energy", ResultBlock::SCALAR, ResultBlock::ELEMENT_MAPPING,
                       {3}) &&
           writeResult(database, 3, "Stress", ResultBlock::TENSOR,
                       ResultBlock::ELEMENT_NODE_MAPPING, {4}) &&
           move->setMapToBlockId(2, Block::ELEMENTS) && database.writeBlock(move.p()) &&
           moves->addTransformationResultValuesBlock(1, 1) && database.writeBlock(moves.p());
}

bool writeCase(File& file) {
    PtrRef<nuo::PropertySet> part = new nuo::PropertySet("part_settings");
    part->setValue("texture_image_name", "steel");
    PtrRef<nuo::PropertySetCollection> settings = new nuo::PropertySetCollection;
    settings->addPropertySet(part.p());
    nuo::Image picture;
    const std::vector<unsigned char> grey(16 * 16 * 3, 128);
    PtrRef<Case> view = new Case(&file, "Front", 0, 0);
    view->setDescription("<p>Front</p>");
    if (!picture.setFromRgb(grey.data(), 16, 16)) return false;
    view->setSnapshot(&picture);
    return view->setProperties(settings.p()) && view->addImage("steel", &picture) &&
           file.addUserTextFile("notes", "read me");
}

}  // namespace

Ended ToolTest::Zrfx(const std::string& arguments) {
    const std::string out = Path("stdout");
    const std::string err = Path("stderr");
    const std::string command = "cd '" + Path("") + "' && " NUO_TOOL " " + arguments + " >'" + out +
                                "' 2>'" + err + "' </dev/null";
    const int status = std::system(command.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, contentOf(out), contentOf(err)};
}

bool ToolTest::HasTerminals() {
    int terminal = -1;
    int other = -1;
    if (openpty(&terminal, &other, nullptr, nullptr, nullptr) != 0) return false;
    close(terminal);
    close(other);
    return true;
}

std::string ToolTest::OnTerminal(const std::string& arguments, const std::string& answers) {
    int terminal = -1;
    const std::string command = "cd '" + Path("") + "' && exec " NUO_TOOL " " + arguments;
    const pid_t process = forkpty(&terminal, nullptr, nullptr, nullptr);
    if (process == 0) {
        execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
        _exit(127);
    }
    // Waits for the question, before which the terminal would show what is typed.
    std::string shown;
    char c = 0;
    std::size_t typed = 0;
    while (read(terminal, &c, 1) == 1) {
        shown += c;
        if (!shown.ends_with(": ") || typed == answers.size()) continue;
        const std::size_t end = answers.find('\n', typed) + 1;
        EXPECT_EQ(write(terminal, answers.data() + typed, end - typed),
                  static_cast<ssize_t>(end - typed));
        typed = end;
    }
    close(terminal);
    waitpid(process, nullptr, 0);
    return WithoutErased(shown);
}

std::string ToolTest::Output(const std::string& arguments) {
    const Ended run = Zrfx(arguments);
    EXPECT_EQ(run.exitCode, 0) << arguments << "\n" << run.out;
    EXPECT_EQ(run.err, "") << arguments;
    return run.out;
}

void ToolTest::WriteSound(const std::string& name) {
    nuo::Instance instance;
    ASSERT_TRUE(ZRFxComponent::initialize(&instance));
    TakeMessages();
    FileSettings settings;
    settings.binary = false;
    settings.vendorName = "Maker";
    settings.applicationName = "Solver";
    File file;
    ASSERT_TRUE(file.create(Path(name), settings));
    PtrRef<Database> database =
        new Database(&file, "Beam", 0, Database::STRUCTURAL, Database::TRANSIENT, "A beam");
    ASSERT_TRUE(writeMesh(*database) && writeParts(*database) && writeResults(*database) &&
                writeCase(file) && file.close());
}

void ToolTest::Edit(const std::string& name, const std::string& entry, const std::string& from,
                    const char* to) {
    ZRFxZipArchive archive;
    unstruct::ZRFxZipRawData raw;
    ASSERT_TRUE(archive.Open(Path(name), unstruct::ZRZipAccessMode::UPDATE)) << archive.LastError();
    ASSERT_TRUE(archive.Read(entry, &raw)) << archive.LastError();
    if (!to) {
        ASSERT_TRUE(archive.Remove(entry) && archive.Close());
        return;
    }
    std::string data(reinterpret_cast<const char*>(raw.Buffer()), raw.Length());
    const std::size_t at = data.find(from);
    ASSERT_NE(at, std::string::npos) << entry << " has no " << from << ":\n" << data;
    data.replace(at, from.size(), to);
    ASSERT_TRUE(archive.Replace(entry, data.data(), data.size()) && archive.Close());
}

}  // namespace test
