#include "PeerDataSet.h"

#include <NuoZRFx/NuoZRFx.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "PeerMeasure.h"

using namespace nuo::zrfx;
using nuo::PtrRef;

namespace {

constexpr size_t kValuesOfObject = 128;

// Nodes along each edge of a block of so many nodes.
size_t EdgeOf(size_t nNodes) {
    return std::max<size_t>(2, static_cast<size_t>(std::lround(std::cbrt(nNodes))));
}

std::vector<float> MakeCoordinates(size_t nEdge) {
    std::vector<float> aCoordinates;
    aCoordinates.reserve(3 * nEdge * nEdge * nEdge);
    for (size_t k = 0; k < nEdge; ++k) {
        for (size_t j = 0; j < nEdge; ++j) {
            for (size_t i = 0; i < nEdge; ++i) {
                for (size_t n : {i, j, k}) aCoordinates.push_back(0.01f * static_cast<float>(n));
            }
        }
    }
    return aCoordinates;
}

PeerDataSet::Elements MakeHexahedrons(size_t nEdge) {
    PeerDataSet::Elements hexahedrons;
    const int nRow = static_cast<int>(nEdge);
    const int nLayer = nRow * nRow;
    for (int k = 0; k + 1 < nRow; ++k) {
        for (int j = 0; j + 1 < nRow; ++j) {
            for (int i = 0; i + 1 < nRow; ++i) {
                const int n = i + nRow * j + nLayer * k;
                for (int nCorner : {n, n + nLayer}) {
                    for (int nOffset : {0, 1, nRow + 1, nRow}) {
                        hexahedrons.aNodes.push_back(nCorner + nOffset);
                    }
                }
            }
        }
    }
    return hexahedrons;
}

// One value, vector or tensor a node: a wave of its own for each component.
PeerDataSet::Field MakeField(const char* sName, size_t nComponents, float fTime,
                             const std::vector<float>& aCoordinates, std::minstd_rand& random) {
    std::uniform_real_distribution<float> noise(-1e-4f, 1e-4f);
    PeerDataSet::Field field{sName, nComponents, {}};
    field.aValues.reserve(nComponents * aCoordinates.size() / 3);
    for (size_t n = 0; n < aCoordinates.size(); n += 3) {
        const float* pPoint = aCoordinates.data() + n;
        for (size_t c = 0; c < nComponents; ++c) {
            const float fPhase = 3 * pPoint[0] + 2 * pPoint[1] + pPoint[2] + static_cast<float>(c);
            field.aValues.push_back(std::sin(fPhase + fTime) * (1 + noise(random)));
        }
    }
    return field;
}

PeerDataSet MakeMesh(size_t nNodes) {
    const size_t nEdge = EdgeOf(nNodes);
    PeerDataSet data;
    data.aCoordinates = MakeCoordinates(nEdge);
    data.aElements.push_back(MakeHexahedrons(nEdge));
    return data;
}

void AddStates(PeerDataSet& data, size_t nStates, bool bScalarOnly) {
    std::minstd_rand random(1);
    for (size_t i = 1; i <= nStates; ++i) {
        PeerDataSet::State& state = data.aStates.emplace_back();
        state.fTime = 0.1f * static_cast<float>(i);
        const auto add = [&](const char* sName, size_t nComponents) {
            state.aFields.push_back(
                MakeField(sName, nComponents, state.fTime, data.aCoordinates, random));
        };
        add("von_Mises", 1);
        if (bScalarOnly) continue;
        add("Displacement", 3);
        add("Stress", 6);
    }
}

template <typename BlockClass>
PtrRef<BlockClass> ReadBlock(Database& database, Block::BlockType eType, int nId) {
    const PtrRef<Block> block = database.blockById(eType, nId);
    Require(block.notNull(), "a block of the data set");
    return static_cast<BlockClass*>(block.p());
}

void ReadElements(Database& database, int nNodeBlock, PeerDataSet& data) {
    for (size_t i = 0; i < database.blockCount(Block::ELEMENTS); ++i) {
        const auto block = ReadBlock<ElementBlock>(database, Block::ELEMENTS,
                                                   database.blockId(Block::ELEMENTS, i));
        if (block->nodeBlockId() != nNodeBlock || block->referNodesByIds()) continue;
        for (size_t nGroup = 0; nGroup < block->elementGroupCount(); ++nGroup) {
            if (block->elementGroupType(nGroup) >= ElementBlock::POLYHEDRONS) continue;
            const int* pNodes = block->elementNodeData(nGroup);
            data.aElements.push_back(
                {block->elementGroupType(nGroup),
                 {pNodes, pNodes + block->elementGroupElementNodeCount(nGroup)}});
        }
    }
}

// The values of a result in a state; none where there is not one for each node.
PeerDataSet::Field ReadField(Database& database, const ResultBlock& result, int nStateId,
                             size_t nNodes) {
    // All peers take such a name, as they do not the names of all results.
    PeerDataSet::Field field{"Field" + std::to_string(result.blockId()), 0, {}};
    const int nState = result.stateIndex(nStateId);
    if (nState < 0) return field;
    const std::vector<int> aIds = result.resultValuesBlocks(static_cast<size_t>(nState));
    if (aIds.size() != 1) return field;
    const auto values = ReadBlock<ResultValuesBlock>(database, Block::RESULT_VALUES, aIds[0]);
    if (values->hasMapToItemIds() || values->itemCount() != nNodes) return field;
    field.nComponents = static_cast<size_t>(values->dimension());
    field.aValues = values->resultValues();
    return field;
}

// Adds a field to each state, when the result has it in all.
void ReadResult(Database& database, const ResultBlock& result, PeerDataSet& data) {
    if (result.resultMapping() != ResultBlock::NODE_MAPPING) return;
    std::vector<PeerDataSet::Field> aFields;
    for (const PeerDataSet::State& state : data.aStates) {
        aFields.push_back(
            ReadField(database, result, static_cast<int>(state.fTime), data.NodeCount()));
        if (aFields.back().aValues.empty()) return;
    }
    for (size_t i = 0; i < aFields.size(); ++i) {
        data.aStates[i].aFields.push_back(std::move(aFields[i]));
    }
}

// The states are those of the first result. Their ids serve as their times: peers only store them.
void ReadResults(Database& database, PeerDataSet& data) {
    for (size_t i = 0; i < database.blockCount(Block::RESULT); ++i) {
        const auto result =
            ReadBlock<ResultBlock>(database, Block::RESULT, database.blockId(Block::RESULT, i));
        for (size_t n = 0; i == 0 && n < result->stateCount(); ++n) {
            data.aStates.push_back({static_cast<float>(result->stateId(n)), {}});
        }
        ReadResult(database, *result, data);
    }
}

}  // namespace

std::vector<int> PeerDataSet::Elements::NodesFromOne() const {
    std::vector<int> aResult(aNodes.size());
    std::transform(aNodes.begin(), aNodes.end(), aResult.begin(), [](int n) { return n + 1; });
    // They give the mid-side nodes of the edges between bottom and top before those of the top.
    const size_t nSides = eType == ElementType::HEXAHEDRONS_20    ? 4
                          : eType == ElementType::PENTAHEDRONS_15 ? 3
                                                                  : 0;
    if (nSides == 0) return aResult;
    for (auto last = aResult.begin(); last != aResult.end();) {
        last += static_cast<std::ptrdiff_t>(NodesOfEach());
        const auto side = static_cast<std::ptrdiff_t>(nSides);
        std::rotate(last - 2 * side, last - side, last);
    }
    return aResult;
}

size_t PeerDataSet::ElementCount() const {
    size_t nCount = 0;
    for (const Elements& elements : aElements) nCount += elements.Count();
    return nCount;
}

PeerDataSet PeerDataSet::MakeSolid(size_t nNodes, size_t nStates) {
    PeerDataSet data = MakeMesh(nNodes);
    AddStates(data, nStates, false);
    return data;
}

PeerDataSet PeerDataSet::MakeScalarSolid(size_t nNodes, size_t nStates) {
    PeerDataSet data = MakeMesh(nNodes);
    AddStates(data, nStates, true);
    return data;
}

PeerDataSet PeerDataSet::ReadZrfx(const std::string& sPath) {
    nuo::Instance instance;
    Require(ZRFxComponent::initialize(&instance), "initialize");
    File file;
    Require(file.open(sPath.c_str()) && file.databaseCount() > 0, sPath);
    Database& database = *file.database(0);
    Require(database.blockCount(Block::NODES) > 0, "nodes in " + sPath);
    const int nNodeBlock = database.blockId(Block::NODES, 0);
    const auto nodes = ReadBlock<NodeBlock>(database, Block::NODES, nNodeBlock);
    PeerDataSet data;
    data.aCoordinates.assign(nodes->nodeData(), nodes->nodeData() + 3 * nodes->nodeCount());
    ReadElements(database, nNodeBlock, data);
    ReadResults(database, data);
    Require(!data.aStates.empty() && !data.aStates[0].aFields.empty(), "results in " + sPath);
    return data;
}

std::vector<std::vector<float>> PeerDataSet::MakeObjects(size_t nObjects) {
    std::minstd_rand random(1);
    std::vector<float> aCoordinates = MakeCoordinates(EdgeOf(kValuesOfObject));
    aCoordinates.resize(3 * kValuesOfObject);
    std::vector<std::vector<float>> aaObjects;
    for (size_t i = 0; i < nObjects; ++i) {
        aaObjects.push_back(
            MakeField("", 1, 0.001f * static_cast<float>(i), aCoordinates, random).aValues);
    }
    return aaObjects;
}
