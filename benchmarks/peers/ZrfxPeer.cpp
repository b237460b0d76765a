// This library, through its public interface. Small objects also through the container alone, to
// tell what the blocks cost on top.
#include <NuoZRFx/NuoZRFx.h>

#include "Peer.h"
#include "container/ZRFxZipArchive.h"

namespace {

using namespace nuo::zrfx;
using nuo::PtrRef;
using unstruct::ZRFxZipArchive;
using unstruct::ZRFxZipRawData;
using unstruct::ZRZipAccessMode;

int IdOf(size_t i) {
    return static_cast<int>(i) + 1;
}

constexpr const char* kTwoThreads = "2 threads";
constexpr const char* kRounded = "4 digits";

int ThreadsOf(const PeerPacking& packing) {
    return packing.sVariant == kTwoThreads ? 2 : 1;
}

FileSettings SettingsOf(const PeerPacking& packing) {
    FileSettings settings;
    settings.compressionLevel = packing.nLevel;
    settings.password = packing.sPassword.c_str();
    settings.threads = ThreadsOf(packing);
    settings.significantDigits = packing.sVariant == kRounded ? Peer::kRoundedDigits : 0;
    return settings;
}

void Open(File& file, const std::string& sPath, const PeerPacking& packing) {
    file.setThreads(ThreadsOf(packing));
    Require(file.open(sPath.c_str(), packing.sPassword.c_str()), "open");
}

void WriteBlock(Database& database, const Block& block) {
    Require(database.writeBlock(&block), "writeBlock");
}

template <typename BlockClass>
PtrRef<BlockClass> ReadBlock(Database& database, Block::BlockType eType, int nId) {
    const PtrRef<Block> block = database.blockById(eType, nId);
    Require(block.notNull(), "blockById");
    return static_cast<BlockClass*>(block.p());
}

PtrRef<Database> AddDatabase(File& file) {
    PtrRef<Database> database =
        new Database(&file, "Model", 0, Database::STRUCTURAL, Database::TRANSIENT, "");
    PtrRef<GeometryBlock> geometry = new GeometryBlock(1);
    Require(geometry->addElementBlock(0, 1, 1), "addElementBlock");
    WriteBlock(*database, *geometry);
    return database;
}

void WriteValues(Database& database, int nId, size_t nComponents,
                 const std::vector<float>& aValues) {
    PtrRef<ResultValuesBlock> values = new ResultValuesBlock(
        nId, static_cast<ResultValuesBlock::ResultValueDimension>(nComponents), false);
    Require(values->setMapToBlockId(1, Block::NODES) &&
                values->setResultValueData(aValues.data(), aValues.size() / nComponents, nullptr),
            "setResultValueData");
    WriteBlock(database, *values);
}

// The block lives as long as the array that is handed over.
template <typename BlockClass>
void Keep(PeerReceived* pReceived, const PtrRef<BlockClass>& block, const void* pData,
          size_t nBytes) {
    pReceived->Keep(std::make_shared<PtrRef<BlockClass>>(block), pData, nBytes);
}

void KeepValues(PeerReceived* pReceived, Database& database, int nId) {
    const auto values = ReadBlock<ResultValuesBlock>(database, Block::RESULT_VALUES, nId);
    Keep(pReceived, values, values->resultValueData(),
         values->itemCount() * static_cast<size_t>(values->dimension()) * sizeof(float));
}

class ZrfxPeer : public Peer {
public:
    ZrfxPeer() {
        nuo::Instance instance;
        Require(ZRFxComponent::initialize(&instance), "initialize");
    }

    std::string Name() const override { return "zrfx"; }
    std::string Version() const override {
        return "NuoZRFx " + ZRFxComponent::versionString().toStdString();
    }
    bool HasPassword() const override { return true; }
    std::vector<std::string> ModelVariants() const override { return {"", kTwoThreads, kRounded}; }
    bool Takes(const PeerPacking& packing) const override {
        return packing.sVariant.empty() || packing.nLevel == 5;
    }
    bool IsExact(const PeerPacking& packing) const override { return packing.sVariant != kRounded; }
    std::vector<std::string> ObjectVariants() const override { return {"blocks", "data"}; }

    void Prepare(const PeerDataSet& data) override { m_pData = &data; }

    std::vector<PeerBytes> Mesh() const override {
        std::vector<PeerBytes> aArrays{BytesOf(m_pData->aCoordinates)};
        for (const auto& elements : m_pData->aElements) aArrays.push_back(BytesOf(elements.aNodes));
        return aArrays;
    }

    std::vector<PeerBytes> State(size_t nState) const override {
        std::vector<PeerBytes> aArrays;
        for (const auto& field : Fields(nState)) aArrays.push_back(BytesOf(field.aValues));
        return aArrays;
    }

    void Write(const std::string& sPath, const PeerPacking& packing, size_t nStates) override {
        File file;
        Require(file.create(sPath.c_str(), SettingsOf(packing)), "create");
        const PtrRef<Database> database = AddDatabase(file);
        WriteMesh(*database);
        WriteLists(*database, nStates);
        for (size_t i = 0; i < nStates; ++i) WriteState(*database, i);
        Require(file.close(), "close");
    }

    void Append(const std::string& sPath, const PeerPacking& packing, size_t nState) override {
        File file;
        Require(file.openForAppend(sPath.c_str(), packing.sPassword.c_str()), "openForAppend");
        Database& database = *file.database(0);
        WriteState(database, nState);
        ExtendLists(database, nState);
        Require(file.close(), "close");
    }

    void Read(const std::string& sPath, const PeerPacking& packing,
              PeerReceived* pReceived) override {
        File file;
        Open(file, sPath, packing);
        Database& database = *file.database(0);
        ReadMesh(database, pReceived);
        const auto states = ReadBlock<StateInfoBlock>(database, Block::STATE_INFO, 1);
        std::vector<PtrRef<ResultBlock>> aResults;
        for (size_t i = 0; i < database.blockCount(Block::RESULT); ++i) {
            aResults.push_back(ReadBlock<ResultBlock>(database, Block::RESULT, IdOf(i)));
        }
        for (size_t i = 0; i < states->stateCount(); ++i) {
            for (const auto& result : aResults) {
                KeepState(database, *result, states->stateId(i), pReceived);
            }
        }
    }

    void ReadField(const std::string& sPath, const PeerPacking& packing, size_t nState,
                   PeerReceived* pReceived) override {
        File file;
        Open(file, sPath, packing);
        Database& database = *file.database(0);
        const auto result = ReadBlock<ResultBlock>(database, Block::RESULT, 1);
        KeepState(database, *result, IdOf(nState), pReceived);
    }

    std::vector<float> ReadHistory(const std::string& sPath, size_t nNode) override {
        File file;
        Open(file, sPath, {});
        Database& database = *file.database(0);
        const auto result = ReadBlock<ResultBlock>(database, Block::RESULT, 1);
        std::vector<float> aValues(result->stateCount());
        Require(database.readHistory(*result, 1, nNode, nuo::Span<float>(aValues)), "readHistory");
        return aValues;
    }

    void WriteObjects(const std::string& sPath, const PeerPacking& packing,
                      const std::vector<std::vector<float>>& aaObjects) override {
        if (packing.sVariant == "data") return WriteEntries(sPath, packing, aaObjects);
        File file;
        Require(file.create(sPath.c_str(), SettingsOf(packing)), "create");
        const PtrRef<Database> database = AddDatabase(file);
        WriteObjectMesh(*database, aaObjects[0].size());
        WriteBlock(*database, *StateInfos(1));
        for (size_t i = 0; i < aaObjects.size(); ++i) {
            WriteValues(*database, IdOf(i), 1, aaObjects[i]);
        }
        Require(file.close(), "close");
    }

    void ReadObjects(const std::string& sPath, const PeerPacking& packing, size_t nObjects,
                     PeerReceived* pReceived) override {
        if (packing.sVariant == "data") return ReadEntries(sPath, nObjects, pReceived);
        File file;
        Open(file, sPath, packing);
        for (size_t i = 0; i < nObjects; ++i) KeepValues(pReceived, *file.database(0), IdOf(i));
    }

private:
    const std::vector<PeerDataSet::Field>& Fields(size_t nState) const {
        return m_pData->aStates[nState].aFields;
    }

    int ValuesId(size_t nState, size_t nField) const {
        return IdOf(nState * Fields(nState).size() + nField);
    }

    void WriteMesh(Database& database) const {
        PtrRef<NodeBlock> nodes = new NodeBlock(1, false);
        PtrRef<ElementBlock> elements = new ElementBlock(1, false, false);
        Require(nodes->setNodeData(m_pData->aCoordinates.data(), m_pData->NodeCount(), nullptr),
                "setNodeData");
        elements->setNodeBlockId(1);
        for (const PeerDataSet::Elements& group : m_pData->aElements) {
            Require(
                elements->addElementData(group.eType, group.aNodes.data(), group.Count(), nullptr),
                "addElementData");
        }
        WriteBlock(database, *nodes);
        WriteBlock(database, *elements);
    }

    // What the values of small objects belong to.
    static void WriteObjectMesh(Database& database, size_t nNodes) {
        constexpr int kNodes[] = {0, 1, 2, 3};
        PtrRef<NodeBlock> nodes = new NodeBlock(1, false);
        PtrRef<ElementBlock> elements = new ElementBlock(1, false, false);
        const std::vector<float> aCoordinates(3 * nNodes);
        elements->setNodeBlockId(1);
        Require(nodes->setNodeData(aCoordinates.data(), nNodes, nullptr) &&
                    elements->addElementData(ElementBlock::TETRAHEDRONS, kNodes, 1, nullptr),
                "mesh");
        WriteBlock(database, *nodes);
        WriteBlock(database, *elements);
    }

    void ReadMesh(Database& database, PeerReceived* pReceived) const {
        const auto nodes = ReadBlock<NodeBlock>(database, Block::NODES, 1);
        Keep(pReceived, nodes, nodes->nodeData(), 3 * nodes->nodeCount() * sizeof(float));
        const auto elements = ReadBlock<ElementBlock>(database, Block::ELEMENTS, 1);
        for (size_t i = 0; i < elements->elementGroupCount(); ++i) {
            Keep(pReceived, elements, elements->elementNodeData(i),
                 elements->elementGroupElementNodeCount(i) * sizeof(int));
        }
    }

    void WriteState(Database& database, size_t nState) const {
        for (size_t i = 0; i < Fields(nState).size(); ++i) {
            const PeerDataSet::Field& field = Fields(nState)[i];
            WriteValues(database, ValuesId(nState, i), field.nComponents, field.aValues);
        }
    }

    PtrRef<StateInfoBlock> StateInfos(size_t nStates) const {
        PtrRef<StateInfoBlock> states = new StateInfoBlock;
        for (size_t i = 0; i < nStates; ++i) AddState(*states, i);
        return states;
    }

    void AddState(StateInfoBlock& states, size_t nState) const {
        Require(states.addStateInfo(IdOf(nState), "", m_pData->aStates[nState].fTime,
                                    StateInfoBlock::TIME),
                "addStateInfo");
    }

    // What states and results there are.
    void WriteLists(Database& database, size_t nStates) const {
        WriteBlock(database, *StateInfos(nStates));
        for (size_t nField = 0; nField < Fields(0).size(); ++nField) {
            const PeerDataSet::Field& field = Fields(0)[nField];
            const auto eType = field.nComponents == 1   ? ResultBlock::SCALAR
                               : field.nComponents == 3 ? ResultBlock::VECTOR
                                                        : ResultBlock::TENSOR;
            PtrRef<ResultBlock> result =
                new ResultBlock(IdOf(nField), eType, ResultBlock::NODE_MAPPING);
            result->setName(field.sName.c_str());
            result->setResultId(IdOf(nField));
            for (size_t i = 0; i < nStates; ++i) {
                Require(result->addResultValuesBlock(ValuesId(i, nField), IdOf(i)), "add values");
            }
            WriteBlock(database, *result);
        }
    }

    void ExtendLists(Database& database, size_t nState) const {
        const auto states = ReadBlock<StateInfoBlock>(database, Block::STATE_INFO, 1);
        AddState(*states, nState);
        WriteBlock(database, *states);
        for (size_t i = 0; i < Fields(nState).size(); ++i) {
            const auto result = ReadBlock<ResultBlock>(database, Block::RESULT, IdOf(i));
            Require(result->addResultValuesBlock(ValuesId(nState, i), IdOf(nState)), "add values");
            WriteBlock(database, *result);
        }
    }

    static void KeepState(Database& database, const ResultBlock& result, int nStateId,
                          PeerReceived* pReceived) {
        const auto nState = static_cast<size_t>(result.stateIndex(nStateId));
        for (int nId : result.resultValuesBlocks(nState)) KeepValues(pReceived, database, nId);
    }

    static void WriteEntries(const std::string& sPath, const PeerPacking& packing,
                             const std::vector<std::vector<float>>& aaObjects) {
        ZRFxZipArchive archive;
        Require(archive.Open(sPath, ZRZipAccessMode::CREATE), "Open");
        for (size_t i = 0; i < aaObjects.size(); ++i) {
            const PeerBytes bytes = BytesOf(aaObjects[i]);
            Require(archive.Add(ObjectName(i), bytes.data(), bytes.size(), packing.nLevel), "Add");
        }
        Require(archive.Close(), "Close");
    }

    static void ReadEntries(const std::string& sPath, size_t nObjects, PeerReceived* pReceived) {
        ZRFxZipArchive archive;
        Require(archive.Open(sPath, ZRZipAccessMode::READ_ONLY), "Open");
        for (size_t i = 0; i < nObjects; ++i) {
            const auto data = std::make_shared<ZRFxZipRawData>();
            Require(archive.Read(ObjectName(i), data.get()), "Read");
            pReceived->Keep(data, data->Buffer(), data->Length());
        }
    }

    const PeerDataSet* m_pData = nullptr;
};

}  // namespace

std::unique_ptr<Peer> MakePeer() {
    return std::make_unique<ZrfxPeer>();
}
