// The program of every peer: runs one case at each level asked for and prints a line of JSON for
// each figure. What is read is compared with what was written, after the clock.
#include <fcntl.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "Peer.h"

namespace {

namespace fs = std::filesystem;

struct Options {
    std::string sCase;
    std::vector<int> anLevels{0, 1, 5, 9};
    size_t nNodes = 1'000'000;
    size_t nStates = 3;
    size_t nObjects = 20'000;
    std::string sData = "solid";
    std::string sZrfx;
    std::string sFolder = ".";
};

// Gone with all that is in it. The copies of the process end without destructors.
class WorkFolder {
public:
    WorkFolder(const std::string& sParent, const char* sName)
        : m_folder(fs::absolute(sParent) / (sName + std::to_string(getpid()))) {
        Clear();
    }
    ~WorkFolder() { fs::remove_all(m_folder); }

    std::string File() const { return (m_folder / "model").string(); }

    void Clear() const {
        fs::remove_all(m_folder);
        fs::create_directories(m_folder);
    }

    size_t Size() const {
        size_t nSize = 0;
        for (const auto& entry : fs::directory_iterator(m_folder)) nSize += entry.file_size();
        return nSize;
    }

    // Nobody's file counts as written before it is on the disk.
    void Flush() const {
        for (const auto& entry : fs::directory_iterator(m_folder)) {
            const int nFile = open(entry.path().c_str(), O_RDONLY);
            Require(nFile >= 0 && fsync(nFile) == 0, "fsync");
            close(nFile);
        }
    }

    void CopyTo(const WorkFolder& other) const {
        other.Clear();
        fs::copy(m_folder, other.m_folder);
        other.Flush();
    }

private:
    fs::path m_folder;
};

size_t TotalSize(const std::vector<PeerBytes>& aArrays) {
    size_t nTotal = 0;
    for (const PeerBytes& array : aArrays) nTotal += array.size();
    return nTotal;
}

size_t LargestSize(const std::vector<PeerBytes>& aArrays) {
    size_t nLargest = 0;
    for (const PeerBytes& array : aArrays) nLargest = std::max(nLargest, array.size());
    return nLargest;
}

std::vector<PeerBytes> AllArrays(const Peer& peer, size_t nStates) {
    std::vector<PeerBytes> aArrays = peer.Mesh();
    for (size_t i = 0; i < nStates; ++i) {
        const std::vector<PeerBytes> aState = peer.State(i);
        aArrays.insert(aArrays.end(), aState.begin(), aState.end());
    }
    return aArrays;
}

// Half a unit of the last digit that was to be kept.
bool AreRounded(PeerBytes written, PeerBytes read) {
    const double dBound = 0.5 * std::pow(10.0, -Peer::kRoundedDigits);
    for (size_t i = 0; i + sizeof(float) <= written.size(); i += sizeof(float)) {
        float fWritten = 0, fRead = 0;
        std::memcpy(&fWritten, written.data() + i, sizeof(float));
        std::memcpy(&fRead, read.data() + i, sizeof(float));
        if (!(std::abs(double{fRead} - fWritten) <= dBound * std::abs(double{fWritten})))
            return false;
    }
    return true;
}

void RequireRounded(const std::vector<PeerBytes>& aWritten, const PeerReceived& received) {
    const std::vector<PeerBytes>& aRead = received.Arrays();
    Require(aRead.size() == aWritten.size(), "number of arrays read");
    for (size_t i = 0; i < aRead.size(); ++i) {
        const bool bSame = aRead[i].size() == aWritten[i].size() &&
                           std::memcmp(aRead[i].data(), aWritten[i].data(), aRead[i].size()) == 0;
        Require(bSame || AreRounded(aWritten[i], aRead[i]),
                "array " + std::to_string(i) + " within the promised error");
    }
}

void RequireEqual(const std::vector<PeerBytes>& aWritten, const PeerReceived& received) {
    const std::vector<PeerBytes>& aRead = received.Arrays();
    Require(aRead.size() == aWritten.size(), "number of arrays read");
    for (size_t i = 0; i < aRead.size(); ++i) {
        Require(aRead[i].size() == aWritten[i].size() &&
                    std::memcmp(aRead[i].data(), aWritten[i].data(), aRead[i].size()) == 0,
                "array " + std::to_string(i) + " as it was written");
    }
}

// One peer and one data set; each operation measures a case.
class Comparison {
public:
    Comparison(const Options& options, const PeerDataSet& data)
        : m_options(options), m_data(data), m_folder(options.sFolder, "peer-"), m_peer(MakePeer()) {
        m_peer->Prepare(data);
    }

    void Models(const std::string& sPassword) {
        if (!sPassword.empty() && !m_peer->HasPassword()) return;
        for (const std::string& sVariant : m_peer->ModelVariants()) {
            for (int nLevel : m_options.anLevels) {
                const PeerPacking packing{nLevel, sVariant, sPassword};
                if ((nLevel > 0 && !m_peer->HasLevels()) || !m_peer->Takes(packing)) continue;
                Model(packing);
            }
        }
    }

    void Objects() {
        const auto aaObjects = PeerDataSet::MakeObjects(m_options.nObjects);
        for (const std::string& sVariant : m_peer->ObjectVariants()) {
            for (int nLevel : m_options.anLevels) {
                if (nLevel == 0 || m_peer->HasLevels()) Objects({nLevel, sVariant, {}}, aaObjects);
            }
        }
    }

    void Append() {
        const size_t nLast = m_data.aStates.size() - 1;
        const PeerPacking packing{
            m_peer->HasLevels() ? m_options.anLevels[0] : 0, m_peer->ModelVariants()[0], {}};
        const WorkFolder original(m_options.sFolder, "before-");
        m_peer->Write(original.File(), packing, nLast);
        PeerCase append;
        append.nMaxRounds = 5;
        append.prepare = [&] { original.CopyTo(m_folder); };
        append.work = [&] {
            m_peer->Append(m_folder.File(), packing, nLast);
            m_folder.Flush();
        };
        append.check = [&] {
            PeerReceived received;
            m_peer->ReadField(m_folder.File(), packing, nLast, &received);
            RequireEqual({m_peer->State(nLast)[0]}, received);
        };
        Print("append", packing, m_peer->State(nLast), Measure(append));
        Field(packing, nLast / 2);
        History(packing, nLast);
    }

private:
    void Model(const PeerPacking& packing) {
        const size_t nStates = m_data.aStates.size();
        const std::vector<PeerBytes> aArrays = AllArrays(*m_peer, nStates);
        const std::string sWhat = packing.sPassword.empty() ? "" : "encrypted ";
        PrintWrite(sWhat + "write", packing, aArrays,
                   [&] { m_peer->Write(m_folder.File(), packing, nStates); });
        PrintRead(sWhat + "read", packing, aArrays, [&](PeerReceived* pReceived) {
            m_peer->Read(m_folder.File(), packing, pReceived);
        });
    }

    void Objects(const PeerPacking& packing, const std::vector<std::vector<float>>& aaObjects) {
        std::vector<PeerBytes> aArrays;
        for (const auto& aObject : aaObjects) aArrays.push_back(BytesOf(aObject));
        PrintWrite("write objects", packing, aArrays,
                   [&] { m_peer->WriteObjects(m_folder.File(), packing, aaObjects); });
        PrintRead("read objects", packing, aArrays, [&](PeerReceived* pReceived) {
            m_peer->ReadObjects(m_folder.File(), packing, aaObjects.size(), pReceived);
        });
    }

    void Field(const PeerPacking& packing, size_t nState) {
        PrintRead("field", packing, {m_peer->State(nState)[0]}, [&](PeerReceived* pReceived) {
            m_peer->ReadField(m_folder.File(), packing, nState, pReceived);
        });
    }

    // One node in all states, and beside it the arrays that it lies in.
    void History(const PeerPacking& packing, size_t nStates) {
        const size_t nNode = m_data.NodeCount() / 2;
        m_peer->Write(m_folder.File(), packing, nStates);
        std::vector<float> aRead = m_peer->ReadHistory(m_folder.File(), nNode);
        if (aRead.empty()) return;
        std::vector<float> aWritten;
        std::vector<PeerBytes> aArrays;
        for (size_t i = 0; i < nStates; ++i) {
            aWritten.push_back(m_data.aStates[i].aFields[0].aValues[nNode]);
            aArrays.push_back(m_peer->State(i)[0]);
        }
        PeerCase peerCase;
        peerCase.work = [&] { aRead = m_peer->ReadHistory(m_folder.File(), nNode); };
        peerCase.check = [&] { Require(aRead == aWritten, "the history as it was written"); };
        Print("history", packing, {BytesOf(aWritten)}, Measure(peerCase));
        PrintRead("history by arrays", packing, aArrays, [&](PeerReceived* pReceived) {
            for (size_t i = 0; i < nStates; ++i) {
                m_peer->ReadField(m_folder.File(), packing, i, pReceived);
            }
        });
    }

    void PrintWrite(const std::string& sCase, const PeerPacking& packing,
                    const std::vector<PeerBytes>& aArrays, const std::function<void()>& write) {
        PeerCase peerCase;
        peerCase.prepare = [&] { m_folder.Clear(); };
        peerCase.work = [&] {
            write();
            m_folder.Flush();
        };
        Print(sCase, packing, aArrays, Measure(peerCase));
    }

    void PrintRead(const std::string& sCase, const PeerPacking& packing,
                   const std::vector<PeerBytes>& aArrays,
                   const std::function<void(PeerReceived*)>& read) {
        PeerReceived received;
        PeerCase peerCase;
        peerCase.work = [&] { read(&received); };
        peerCase.check = [&] {
            m_peer->IsExact(packing) ? RequireEqual(aArrays, received)
                                     : RequireRounded(aArrays, received);
        };
        PeerFigures figures = Measure(peerCase);
        figures.dMemory -= static_cast<double>(TotalSize(aArrays));
        Print(sCase, packing, aArrays, figures);
    }

    void Print(const std::string& sCase, const PeerPacking& packing,
               const std::vector<PeerBytes>& aArrays, const PeerFigures& figures) const {
        std::printf(
            "{\"peer\": \"%s\", \"version\": \"%s\", \"variant\": \"%s\", \"case\": \"%s\", "
            "\"data\": \"%s\", \"nodes\": %zu, \"elements\": %zu, \"states\": %zu, "
            "\"level\": %d, \"bytes\": %zu, \"largest\": %zu, \"size\": %zu, \"wall\": %.6f, "
            "\"user\": %.6f, \"system\": %.6f, \"memory\": %.0f, \"written\": %.0f, "
            "\"rounds\": %d}\n",
            m_peer->Name().c_str(), m_peer->Version().c_str(), packing.sVariant.c_str(),
            sCase.c_str(), m_options.sData.c_str(), m_data.NodeCount(), m_data.ElementCount(),
            m_data.aStates.size(), packing.nLevel, TotalSize(aArrays), LargestSize(aArrays),
            m_folder.Size(), figures.dWall, figures.dUser, figures.dSystem, figures.dMemory,
            figures.dWritten, figures.nRounds);
        std::fflush(stdout);
    }

    const Options& m_options;
    const PeerDataSet& m_data;
    const WorkFolder m_folder;
    const std::unique_ptr<Peer> m_peer;
};

PeerDataSet MakeData(const Options& options) {
    if (!options.sZrfx.empty()) return PeerDataSet::ReadZrfx(options.sZrfx);
    if (options.sCase == "objects") return PeerDataSet::MakeScalarSolid(8, 1);
    if (options.sCase == "append") {
        return PeerDataSet::MakeScalarSolid(options.nNodes, options.nStates + 1);
    }
    return PeerDataSet::MakeSolid(options.nNodes, options.nStates);
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    CLI::App app("Measures one library that stores models.");
    app.add_option("case", options.sCase, "What to measure")
        ->required()
        ->check(CLI::IsMember({"model", "encrypted", "objects", "append"}));
    app.add_option("--levels", options.anLevels, "How far to pack: 0 to 9")->delimiter(',');
    app.add_option("--nodes", options.nNodes, "Nodes of the solid, about");
    app.add_option("--states", options.nStates, "States of the solid; append adds one");
    app.add_option("--objects", options.nObjects, "Small objects");
    app.add_option("--data", options.sData, "What the figures call the model");
    app.add_option("--zrfx", options.sZrfx, "Take the model from a ZRFx file");
    app.add_option("--folder", options.sFolder, "Where the files are written");
    CLI11_PARSE(app, argc, argv);

    const PeerDataSet data = MakeData(options);
    Comparison comparison(options, data);
    if (options.sCase == "model") comparison.Models("");
    if (options.sCase == "encrypted") comparison.Models("geheim");
    if (options.sCase == "objects") comparison.Objects();
    if (options.sCase == "append") comparison.Append();
    return 0;
}
