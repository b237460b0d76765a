// Opening a database of many blocks, and data files in text form, on an archive in memory.
#include <benchmark/benchmark.h>

#include <cmath>
#include <string>

#include "access/ZROZRFxAccess.h"
#include "blocks/results/ZRFxResultValuesBlock.h"
#include "database/ZROZRFxDatabase.h"

namespace {

using namespace unstruct;

constexpr int kDatabaseID = 1;

bool createDatabase(ZRFxAccess& access, ZRFxDatabase& database) {
    const auto document = ZRFxAccess::CreateMainDocument("benchmark", "benchmark", 0);
    return access.WriteXmlFile("ZRF.xml", *document, true) &&
           database.Create("Model", kDatabaseID, "", ZRFEMSimulationType::STRUCTURAL,
                           ZRFEMSolutionType::TRANSIENT, "");
}

// A smooth field with a little noise.
ZRFloatArray makeField(std::int64_t count) {
    ZRFloatArray field;
    field.SetSize(count);
    float* values = field.WritableData();
    for (std::int64_t i = 0; i < count; ++i) {
        const float noise = 1e-4f * static_cast<float>((i * 7919) % 1000) / 1000;
        values[i] = std::sin(static_cast<float>(i) * 1e-3f) * (1 + noise);
    }
    return field;
}

void openDatabase(benchmark::State& state) {
    ZRFxZipMemFile file;
    {
        ZRFxAccess access;
        ZRFxDatabase database(&access);
        access.Open(&file, ZRZipAccessMode::CREATE);
        createDatabase(access, database);
        for (int id = 1; id <= state.range(0); ++id) {
            ZRFxResultValuesBlock block(&database, id);
            block.SetScalars(makeField(8));
            if (!block.WriteBlock()) return state.SkipWithError("write");
        }
        if (!database.WriteTOC() || !access.Close()) return state.SkipWithError("close");
    }
    for (auto _ : state) {
        ZRFxAccess access;
        ZRFxDatabase database(&access);
        if (!access.Open(&file, ZRZipAccessMode::READ_ONLY) || !database.Parse(kDatabaseID)) {
            return state.SkipWithError("open");
        }
        benchmark::DoNotOptimize(database.GetNumBlocks());
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(openDatabase)
    ->Arg(25000)
    ->Arg(50000)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity(benchmark::oN);

void writeText(benchmark::State& state) {
    const ZRFloatArray field = makeField(state.range(0));
    for (auto _ : state) {
        ZRFxZipMemFile file;
        ZRFxAccess access;
        ZRFxDatabase database(&access);
        access.Open(&file, ZRZipAccessMode::CREATE);
        access.SetCompression(1, ZRFxAccess::kDefaultSmartness, ZRFxAccess::kDefaultBufferSize,
                              ZRFxAccess::kDefaultBufferSize);
        database.SetTextMode(true);
        if (!createDatabase(access, database) || !database.WriteDataFloat("field", field)) {
            return state.SkipWithError("write");
        }
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(writeText)->Arg(10000000)->Unit(benchmark::kMillisecond);

void readText(benchmark::State& state) {
    ZRFxZipMemFile file;
    ZRFxAccess access;
    ZRFxDatabase database(&access);
    access.Open(&file, ZRZipAccessMode::CREATE);
    database.SetTextMode(true);
    const ZRFloatArray field = makeField(state.range(0));
    if (!createDatabase(access, database) || !database.WriteDataFloat("field", field)) {
        return state.SkipWithError("write");
    }
    for (auto _ : state) {
        ZRFloatArray read;
        if (!database.ReadDataFloat("field", state.range(0), &read)) {
            return state.SkipWithError("read");
        }
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(readText)->Arg(10000000)->Unit(benchmark::kMillisecond);

}  // namespace
