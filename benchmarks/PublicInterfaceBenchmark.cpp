// What the public interface costs on top of what it stands on: the same model written and read
// through the container's own blocks, and as bare arrays and documents, in turn. Counters give the
// best time of each in milliseconds, and what the interface takes over both. TMPDIR decides where
// the files lie.
#include <NuoZRFx/NuoZRFx.h>
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "access/ZROZRFxAccess.h"
#include "blocks/mesh/ZRFxNodeBlock.h"
#include "blocks/results/ZRFxResultValuesBlock.h"
#include "database/ZROZRFxDatabase.h"
#include "documents/ZRFxXml.h"

namespace {

using namespace nuo::zrfx;
using nuo::PtrRef;
using unstruct::ZRFxAccess;
using unstruct::ZRString;
using unstruct::ZRZipAccessMode;

constexpr std::size_t kNodeCount = 10'000'000;
constexpr int kBlockCount = 20'000;
constexpr std::size_t kValueCount = 1'000;

std::string pathOf(const char* name) {
    return (std::filesystem::temp_directory_path() / name).string();
}

void require(bool isDone) {
    if (!isDone) std::abort();
}

// Values that neither compress to nothing nor not at all.
std::vector<float> makeValues(std::size_t count) {
    std::vector<float> values(count);
    for (std::size_t i = 0; i < count; ++i) {
        values[i] = 0.25f * static_cast<float>(i * 7919 % 1000) + static_cast<float>(i / 1000);
    }
    return values;
}

// What a result values block says of itself.
void describe(nvf::XmlDocument& document) {
    nvf::XmlElement root = document.createRootElement("ResultValues", unstruct::kNamespaceUri);
    for (const char* name : {"ID", "MapToBlockID", "NumDimensions"}) root.setAttributeInt(name, 1);
    root.setAttributeBool("WithID", false);
    nvf::XmlElement file = root.addChildElement("File");
    file.setAttributeUtf8("Filename", "ResultValues\\ResultValues0001");
    file.setAttributeInt("NumItems", 1000);
}

template <typename Item>
unstruct::ZRArray<Item> refer(const Item* items, std::size_t count) {
    unstruct::ZRArray<Item> array;
    array.Refer(items, static_cast<std::int64_t>(count));
    return array;
}

double timeOf(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// One load in its three forms.
struct Forms {
    std::function<void()> arrays;
    std::function<void()> blocks;
    std::function<void()> interface;
};

void compare(benchmark::State& state, const Forms& forms) {
    double arrays = std::numeric_limits<double>::max();
    double blocks = arrays;
    double interface = arrays;
    for (auto _ : state) {
        arrays = std::min(arrays, timeOf(forms.arrays));
        blocks = std::min(blocks, timeOf(forms.blocks));
        const double time = timeOf(forms.interface);
        interface = std::min(interface, time);
        state.SetIterationTime(time);
    }
    state.counters["arrays_ms"] = 1e3 * arrays;
    state.counters["blocks_ms"] = 1e3 * blocks;
    state.counters["interface_ms"] = 1e3 * interface;
    state.counters["over_arrays"] = interface / arrays;
    state.counters["over_blocks"] = interface / blocks;
}

// A file of the container alone, open for writing.
void create(ZRFxAccess& access, const std::string& path, int level) {
    require(access.Open(path, ZRZipAccessMode::CREATE));
    access.SetCompression(level, ZRFxAccess::kDefaultSmartness, ZRFxAccess::kDefaultBufferSize,
                          ZRFxAccess::kDefaultBufferSize);
    require(access.WriteXmlFile("ZRF.xml", *ZRFxAccess::CreateMainDocument("", "", 0), true));
}

// The same with a database, for blocks.
void create(ZRFxAccess& access, unstruct::ZRFxDatabase& database, const std::string& path,
            int level) {
    create(access, path, level);
    require(database.Create("a", 0, "", unstruct::ZRFEMSimulationType::STRUCTURAL,
                            unstruct::ZRFEMSolutionType::TRANSIENT, ""));
}

void close(ZRFxAccess& access, unstruct::ZRFxDatabase& database) {
    require(database.WriteTOC() && access.Close());
}

PtrRef<Database> create(File& file, const std::string& path, int level) {
    FileSettings settings;
    settings.compressionLevel = level;
    require(file.create(path, settings));
    PtrRef<Database> database =
        new Database(&file, "a", 0, Database::STRUCTURAL, Database::TRANSIENT, "");
    PtrRef<GeometryBlock> geometry = new GeometryBlock(1);
    PtrRef<StateInfoBlock> states = new StateInfoBlock;
    require(geometry->addElementBlock(0, 1, 1) &&
            states->addStateInfo(1, "", 0, StateInfoBlock::TIME) &&
            database->writeBlock(geometry.p()) && database->writeBlock(states.p()));
    return database;
}

void initialize() {
    nuo::Instance instance;
    require(ZRFxComponent::initialize(&instance));
}

class Nodes {
public:
    explicit Nodes(int level) : m_level(level) {
        initialize();
        for (std::size_t i = 0; i < kNodeCount; ++i) m_ids[i] = static_cast<int>(i + 1);
    }

    void WriteArrays() const {
        ZRFxAccess access;
        create(access, m_arrays, m_level);
        const auto* vectors = reinterpret_cast<const nuo::Vec3f*>(m_coordinates.data());
        require(access.WriteDataVectorAsFloat("Nodes.dat", refer(vectors, kNodeCount)) &&
                access.WriteDataInt("IDs.dat", refer(m_ids.data(), kNodeCount)) && access.Close());
    }

    void WriteBlocks() const {
        ZRFxAccess access;
        unstruct::ZRFxDatabase database(&access);
        create(access, database, m_blocks, m_level);
        unstruct::ZRFxNodeBlock nodes(nullptr, 1);
        const auto* vectors = reinterpret_cast<const nuo::Vec3f*>(m_coordinates.data());
        auto ids = std::make_unique<unstruct::ZRIntArray>(refer(m_ids.data(), kNodeCount));
        require(nodes.SetNodes(refer(vectors, kNodeCount), std::move(ids)) &&
                nodes.WriteBlock(&database));
        close(access, database);
    }

    void WriteInterface() const {
        File file;
        const PtrRef<Database> database = create(file, m_interface, m_level);
        PtrRef<NodeBlock> nodes = new NodeBlock(1, true);
        require(nodes->setNodeData(m_coordinates.data(), kNodeCount, m_ids.data()) &&
                database->writeBlock(nodes.p()) && file.close());
    }

    void ReadArrays() const {
        ZRFxAccess access;
        unstruct::ZRVec3fArray nodes;
        unstruct::ZRIntArray ids;
        require(access.Open(m_arrays, ZRZipAccessMode::READ_ONLY) &&
                access.ReadDataVector("Nodes.dat", &nodes) && access.ReadDataInt("IDs.dat", &ids));
        benchmark::DoNotOptimize(nodes.Data());
    }

    void ReadBlocks() const {
        ZRFxAccess access;
        unstruct::ZRFxDatabase database(&access);
        require(access.Open(m_blocks, ZRZipAccessMode::READ_ONLY) && database.Parse(0));
        const nvf::ref<unstruct::ZRFxBlock> nodes = database.OpenBlock(unstruct::BLOCK_NODES, 1);
        require(nodes.notNull() && nodes->ReadBlock());
    }

    void ReadInterface() const {
        File file;
        require(file.open(m_interface));
        const PtrRef<Block> nodes = file.database(0)->blockById(Block::NODES, 1);
        require(nodes.notNull());
        benchmark::DoNotOptimize(static_cast<const NodeBlock&>(*nodes).nodeData());
    }

private:
    const std::string m_arrays = pathOf("benchmark-arrays.zrfx");
    const std::string m_blocks = pathOf("benchmark-blocks.zrfx");
    const std::string m_interface = pathOf("benchmark-interface.zrfx");
    const int m_level;
    const std::vector<float> m_coordinates = makeValues(3 * kNodeCount);
    std::vector<int> m_ids = std::vector<int>(kNodeCount);
};

class Results {
public:
    explicit Results(int level) : m_level(level) {
        initialize();
        describe(m_document);
    }

    void WriteArrays() const {
        ZRFxAccess access;
        create(access, m_arrays, m_level);
        for (int i = 0; i < kBlockCount; ++i) {
            const std::string name = "Values\\Values" + std::to_string(i);
            require(access.WriteDataFloat(name + ".dat", refer(m_values.data(), kValueCount)) &&
                    access.WriteXmlFile(name + ".xml", m_document, false));
        }
        require(access.Close());
    }

    void WriteBlocks() const {
        ZRFxAccess access;
        unstruct::ZRFxDatabase database(&access);
        create(access, database, m_blocks, m_level);
        for (int i = 0; i < kBlockCount; ++i) {
            nvf::ref<unstruct::ZRFxResultValuesBlock> values =
                new unstruct::ZRFxResultValuesBlock(nullptr, i);
            values->SetNumDimensions(1);
            values->SetMapToBlockID(1);
            values->SetScalars(refer(m_values.data(), kValueCount));
            require(values->WriteBlock(&database));
        }
        close(access, database);
    }

    void WriteInterface() const {
        File file;
        const PtrRef<Database> database = create(file, m_interface, m_level);
        for (int i = 0; i < kBlockCount; ++i) {
            PtrRef<ResultValuesBlock> values =
                new ResultValuesBlock(i, ResultValuesBlock::SCALAR1D, false);
            require(values->setMapToBlockId(1, Block::NODES) &&
                    values->setResultValueData(m_values.data(), kValueCount, nullptr) &&
                    database->writeBlock(values.p()));
        }
        require(file.close());
    }

    void ReadArrays() const {
        ZRFxAccess access;
        require(access.Open(m_arrays, ZRZipAccessMode::READ_ONLY));
        for (int i = 0; i < kBlockCount; ++i) {
            const std::string name = "Values\\Values" + std::to_string(i);
            unstruct::ZRFloatArray values;
            nvf::XmlDocument document;
            require(access.ReadDataFloat(name + ".dat", &values) &&
                    access.InternalReadXmlFile(name + ".xml", unstruct::LogMode::LOG, &document));
        }
    }

    void ReadBlocks() const {
        ZRFxAccess access;
        unstruct::ZRFxDatabase database(&access);
        require(access.Open(m_blocks, ZRZipAccessMode::READ_ONLY) && database.Parse(0));
        for (int i = 0; i < kBlockCount; ++i) {
            const nvf::ref<unstruct::ZRFxBlock> values =
                database.OpenBlock(unstruct::BLOCK_RESULT_VALUES, i);
            require(values.notNull() && values->ReadBlock());
        }
    }

    void ReadInterface() const {
        File file;
        require(file.open(m_interface));
        for (int i = 0; i < kBlockCount; ++i) {
            require(file.database(0)->blockById(Block::RESULT_VALUES, i).notNull());
        }
    }

private:
    const std::string m_arrays = pathOf("benchmark-arrays.zrfx");
    const std::string m_blocks = pathOf("benchmark-blocks.zrfx");
    const std::string m_interface = pathOf("benchmark-interface.zrfx");
    const int m_level;
    const std::vector<float> m_values = makeValues(kValueCount);
    nvf::XmlDocument m_document;
};

template <typename Load>
void Write(benchmark::State& state) {
    const Load load(static_cast<int>(state.range(0)));
    compare(state, {[&] { load.WriteArrays(); }, [&] { load.WriteBlocks(); },
                    [&] { load.WriteInterface(); }});
}

template <typename Load>
void Read(benchmark::State& state) {
    const Load load(static_cast<int>(state.range(0)));
    load.WriteArrays();
    load.WriteBlocks();
    load.WriteInterface();
    compare(state, {[&] { load.ReadArrays(); }, [&] { load.ReadBlocks(); },
                    [&] { load.ReadInterface(); }});
}

// One by one, as a solver adds them; the time of each must not grow with their number.

void addStates(int count) {
    StateInfoBlock block;
    for (int id = 0; id < count; ++id) {
        require(block.addStateInfo(id, "", 0, StateInfoBlock::TIME) && block.stateIndex(id) == id);
    }
}

void addGroups(int count) {
    StateInfoBlock block;
    for (int id = 0; id < count; ++id) {
        require(block.addStateInfo(id, "", 0, StateInfoBlock::TIME));
        require(block.addGroupInfo(count + id, "", {id}));
        require(block.groupStateIds(static_cast<std::size_t>(id)).size() == 1);
    }
}

void addParts(int count) {
    GeometryBlock block(1);
    for (int id = 0; id < count; ++id) require(block.addElementBlock(0, id, id));
}

void addPartsOfStates(int count) {
    GeometryBlock block(1);
    for (int id = 0; id < count; ++id) require(block.addElementBlockForState(0, 1, 1, id));
}

void addResultStates(int count) {
    ResultBlock block(1, ResultBlock::SCALAR, ResultBlock::NODE_MAPPING);
    for (int id = 0; id < count; ++id) {
        require(block.addResultValuesBlock(id, id) && block.stateIndex(id) == id);
    }
}

void addItemsOfBlocks(int count) {
    SetBlock block(1, false);
    for (int id = 0; id < count; ++id) block.addItem(id, id);
}

void Add(benchmark::State& state, void (*add)(int)) {
    initialize();
    const int count = static_cast<int>(state.range(0));
    for (auto _ : state) add(count);
    state.SetItemsProcessed(state.iterations() * count);
}

void counts(benchmark::internal::Benchmark* benchmark) {
    benchmark->ArgName("count")->Arg(1'000)->Arg(100'000)->Unit(benchmark::kMillisecond);
}

BENCHMARK_CAPTURE(Add, States, addStates)->Apply(counts);
BENCHMARK_CAPTURE(Add, Groups, addGroups)->Apply(counts);
BENCHMARK_CAPTURE(Add, Parts, addParts)->Apply(counts);
BENCHMARK_CAPTURE(Add, PartsOfStates, addPartsOfStates)->Apply(counts);
BENCHMARK_CAPTURE(Add, ResultStates, addResultStates)->Apply(counts);
BENCHMARK_CAPTURE(Add, ItemsOfBlocks, addItemsOfBlocks)->Apply(counts);

// Levels: stored, where nothing hides what the interface does, and the default.
void levels(benchmark::internal::Benchmark* benchmark) {
    benchmark->ArgName("level")->Arg(0)->Arg(5)->UseManualTime()->Unit(benchmark::kMillisecond);
}

BENCHMARK_TEMPLATE(Write, Nodes)->Apply(levels)->Iterations(5);
BENCHMARK_TEMPLATE(Read, Nodes)->Apply(levels)->Iterations(5);
BENCHMARK_TEMPLATE(Write, Results)->Apply(levels)->Iterations(5);
BENCHMARK_TEMPLATE(Read, Results)->Apply(levels)->Iterations(5);

}  // namespace
