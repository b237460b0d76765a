// What the foundation costs where it is used in bulk: log calls that go nowhere, messages, and the
// viewer properties of a model with 10,000 parts.
#include <benchmark/benchmark.h>

#include <atomic>
#include <cstdlib>
#include <new>

#include "catalogue/ZROZRFxPropDef.h"
#include "nvf/LogManager.h"
#include "nvf/PropertyXmlSerializer.h"
#include "nvf/XmlDocument.h"

namespace {

std::atomic<std::size_t> allocations{0};

}  // namespace

// Not inlined: the compiler would take the pair of malloc and delete for a mistake.
[[gnu::noinline]] void* operator new(std::size_t size) {
    allocations.fetch_add(1, std::memory_order_relaxed);
    if (void* memory = std::malloc(size)) return memory;
    throw std::bad_alloc();
}

[[gnu::noinline]] void operator delete(void* memory) noexcept {
    std::free(memory);
}

[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace {

using nvf::String;
using nvf::Variant;

constexpr int kParts = 10'000;
constexpr std::size_t kKeysPerPart = 20;

// Counts the allocations of the measured loop and shows them for one iteration.
class AllocationCounter {
public:
    explicit AllocationCounter(benchmark::State& state) : m_state(state), m_before(allocations) {}
    ~AllocationCounter() {
        m_state.counters["allocations"] = benchmark::Counter(
            static_cast<double>(allocations - m_before), benchmark::Counter::kAvgIterations);
    }

private:
    benchmark::State& m_state;
    const std::size_t m_before;
};

Variant valueOfPart(const unstruct::PropDef& def, int part) {
    switch (def.type) {
        case Variant::INT:
            return Variant(part);
        case Variant::UINT:
            return Variant(static_cast<nvf::uint>(part % 3));
        case Variant::FLOAT:
            return Variant(0.001f * static_cast<float>(part));
        case Variant::BOOL:
            return Variant(part % 2 == 0);
        case Variant::COLOR3F:
            return Variant(nvf::Color3f(0.1f, 0.5f, 0.0001f * static_cast<float>(part)));
        default:
            return Variant(String::fromUtf8(def.defaultValue));
    }
}

nvf::ref<nvf::PropertySetCollection> partSettings() {
    const auto defs = unstruct::PropClassDef::find("part_settings")->propDefs();
    nvf::ref<nvf::PropertySetCollection> collection = new nvf::PropertySetCollection;
    for (int part = 0; part < kParts; ++part) {
        nvf::ref<nvf::PropertySet> set = new nvf::PropertySet("part_settings");
        for (const unstruct::PropDef& def : defs.first(kKeysPerPart)) {
            set->setValue(String::fromUtf8(def.name), valueOfPart(def, part));
        }
        collection->addPropertySet(set.p());
    }
    return collection;
}

std::string propertiesXml() {
    nvf::XmlDocument document;
    nvf::XmlElement root = document.createRootElement("ZRFxProperties", "");
    nvf::PropertyXmlSerializer::toXml(*partSettings(), &root);
    return document.toUtf8();
}

void LogCallOnDisabledLevel(benchmark::State& state) {
    const nvf::ref<nvf::Logger> logger = nvf::LogManager::instance()->logger("benchmark");
    logger->setLevel(nuo::LL_OFF);
    const AllocationCounter counter(state);
    for (auto _ : state) {
        benchmark::DoNotOptimize(logger->fail("Unable to read %1 of '%2'", 7, "Database.xml"));
    }
}
BENCHMARK(LogCallOnDisabledLevel);

void LogCallWithLookupOnDisabledLevel(benchmark::State& state) {
    nvf::archiveLogger()->setLevel(nuo::LL_OFF);
    const AllocationCounter counter(state);
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            nvf::archiveLogger()->fail("Unable to read %1 of '%2'", 7, "Database.xml"));
    }
}
BENCHMARK(LogCallWithLookupOnDisabledLevel);

void StringArg(benchmark::State& state) {
    const AllocationCounter counter(state);
    for (auto _ : state) {
        benchmark::DoNotOptimize(String("Item %1 of %2").arg(7).arg("Database.xml"));
    }
}
BENCHMARK(StringArg);

void StringArgs(benchmark::State& state) {
    const AllocationCounter counter(state);
    for (auto _ : state) {
        benchmark::DoNotOptimize(String("Item %1 of %2").args({String::number(7), "Database.xml"}));
    }
}
BENCHMARK(StringArgs);

void WritePropertyXml(benchmark::State& state) {
    const auto collection = partSettings();
    const AllocationCounter counter(state);
    for (auto _ : state) {
        nvf::XmlDocument document;
        nvf::XmlElement root = document.createRootElement("ZRFxProperties", "");
        nvf::PropertyXmlSerializer::toXml(*collection, &root);
        benchmark::DoNotOptimize(document.toUtf8());
    }
}
BENCHMARK(WritePropertyXml)->Unit(benchmark::kMillisecond);

void ReadPropertyXml(benchmark::State& state) {
    const std::string xml = propertiesXml();
    const AllocationCounter counter(state);
    for (auto _ : state) {
        nvf::XmlDocument document;
        document.parse(xml);
        nvf::ref<nvf::PropertySetCollection> collection = new nvf::PropertySetCollection;
        nvf::PropertyXmlSerializer::toPropertySetCollection(
            document.getRootElement().firstChildElement("PropertySetCollection"), collection.p());
        if (collection->count() != kParts) state.SkipWithError("sets are missing");
    }
}
BENCHMARK(ReadPropertyXml)->Unit(benchmark::kMillisecond);

void ValidatePartSettings(benchmark::State& state) {
    const auto collection = partSettings();
    const AllocationCounter counter(state);
    for (auto _ : state) {
        std::vector<String> errors;
        if (!unstruct::validateProperties(*collection, errors)) state.SkipWithError("not valid");
    }
}
BENCHMARK(ValidatePartSettings)->Unit(benchmark::kMillisecond);

}  // namespace
