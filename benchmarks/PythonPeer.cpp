// Writes and reads the model of compare_python.py as the package zrfx does, and prints the CPU time
// of the arrays alone, in seconds:
//
//     PythonPeer write|read FILE NODES BLOCKS LEVEL FOLDER
//
// FOLDER holds coordinates.bin, elements.bin and values.bin.
#include <NuoZRFx/NuoZRFx.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <string>
#include <vector>

namespace {

using namespace nuo::zrfx;
using nuo::PtrRef;

struct Task {
    std::string path;
    std::size_t nodeCount;
    int blockCount;
    int level;
    std::string folder;
};

double cpuSeconds() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

template <typename Value>
std::vector<Value> load(const std::string& path) {
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    std::vector<Value> values(static_cast<std::size_t>(file.tellg()) / sizeof(Value));
    file.seekg(0);
    file.read(reinterpret_cast<char*>(values.data()),
              static_cast<std::streamsize>(values.size() * sizeof(Value)));
    return values;
}

bool writeMesh(Database& database, const Task& task) {
    const auto coordinates = load<float>(task.folder + "/coordinates.bin");
    const auto nodes = load<int>(task.folder + "/elements.bin");
    PtrRef<NodeBlock> nodeBlock = new NodeBlock(1, false);
    PtrRef<ElementBlock> elements = new ElementBlock(1, false, false);
    elements->setNodeBlockId(1);
    PtrRef<GeometryBlock> geometry = new GeometryBlock(1);
    return nodeBlock->setNodeData(coordinates, {}) && database.writeBlock(nodeBlock.p()) &&
           elements->addElementData(ElementBlock::HEXAHEDRONS, nodes.data(), nodes.size() / 8,
                                    nullptr) &&
           database.writeBlock(elements.p()) && geometry->addElementBlock(0, 1, 1) &&
           database.writeBlock(geometry.p());
}

bool writeValues(Database& database, const Task& task, const std::vector<float>& values) {
    PtrRef<ResultBlock> result =
        new ResultBlock(1, ResultBlock::DISPLACEMENT, ResultBlock::NODE_MAPPING);
    result->setName("DISP");
    result->setResultId(1);
    PtrRef<StateInfoBlock> states = new StateInfoBlock;
    for (int i = 1; i <= task.blockCount; ++i) {
        PtrRef<ResultValuesBlock> block =
            new ResultValuesBlock(i, ResultValuesBlock::VECTOR3D, false);
        if (!block->setResultValueData(values, {}) || !block->setMapToBlockId(1, Block::NODES) ||
            !database.writeBlock(block.p()) || !result->addResultValuesBlock(i, i) ||
            !states->addStateInfo(i, "", static_cast<float>(i), StateInfoBlock::TIME)) {
            return false;
        }
    }
    return database.writeBlock(result.p()) && database.writeBlock(states.p());
}

double write(const Task& task) {
    const auto values = load<float>(task.folder + "/values.bin");
    FileSettings settings;
    settings.compressionLevel = task.level;
    settings.threads = 1;
    File file;
    if (!file.create(nuo::Str(task.path), settings)) return -1;
    PtrRef<Database> database =
        new Database(&file, "M", 0, Database::STRUCTURAL, Database::TRANSIENT, "");
    if (!writeMesh(*database, task)) return -1;
    const double start = cpuSeconds();
    if (!writeValues(*database, task, values)) return -1;
    const double seconds = cpuSeconds() - start;
    return file.close() ? seconds : -1;
}

double read(const Task& task) {
    File file;
    file.setThreads(1);
    if (!file.open(nuo::Str(task.path))) return -1;
    Database& database = *file.database(0);
    const double start = cpuSeconds();
    for (int i = 1; i <= task.blockCount; ++i) {
        const auto block = database.read<ResultValuesBlock>(i);
        if (!block || block->values().size() != 3 * task.nodeCount) return -1;
    }
    return cpuSeconds() - start;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 7) return 2;
    nuo::Instance instance;
    if (!ZRFxComponent::initialize(&instance)) return 1;
    const Task task{argv[2], std::strtoull(argv[3], nullptr, 10), std::atoi(argv[4]),
                    std::atoi(argv[5]), argv[6]};
    const double seconds = std::string(argv[1]) == "write" ? write(task) : read(task);
    std::printf("%.9f\n", seconds);
    return seconds < 0;
}
