// Exodus II on netCDF-4 with its deflate. Node variables are arrays over time; netCDF chooses the
// chunks, one of them a variable and time step.
#include <exodusII.h>

#include "ColumnPeer.h"

namespace {

using Type = nuo::zrfx::ElementBlock::ElementType;

const char* NameOf(Type eType) {
    switch (eType) {
        case Type::POINTS:
            return "SPHERE";
        case Type::BEAMS:
            return "BAR2";
        case Type::BEAMS_3:
            return "BAR3";
        case Type::TRIANGLES:
            return "TRI3";
        case Type::TRIANGLES_6:
            return "TRI6";
        case Type::QUADS:
            return "QUAD4";
        case Type::QUADS_8:
            return "QUAD8";
        case Type::QUADS_9:
            return "QUAD9";
        case Type::PYRAMIDS:
            return "PYRAMID5";
        case Type::PYRAMIDS_13:
            return "PYRAMID13";
        case Type::TETRAHEDRONS:
            return "TETRA4";
        case Type::TETRAHEDRONS_10:
            return "TETRA10";
        case Type::HEXAHEDRONS:
            return "HEX8";
        case Type::HEXAHEDRONS_20:
            return "HEX20";
        case Type::PENTAHEDRONS:
            return "WEDGE6";
        default:
            return "WEDGE15";
    }
}

void Check(int nResult, const char* sWhat) {
    Require(nResult >= 0, sWhat);
}

class ExodusPeer : public ColumnPeer {
public:
    std::string Name() const override { return "exodus"; }
    std::string Version() const override {
        const int nVersion = EX_API_VERS_NODOT;
        return "Exodus II " + std::to_string(nVersion / 100) + "." + std::to_string(nVersion % 100);
    }

    void Write(const std::string& sPath, const PeerPacking& packing, size_t nStates) override {
        int nValueSize = sizeof(float);
        const int nFile = ex_create(sPath.c_str(), EX_CLOBBER | EX_NETCDF4 | EX_NOCLASSIC,
                                    &nValueSize, &nValueSize);
        Check(nFile, "ex_create");
        Check(ex_set_option(nFile, EX_OPT_COMPRESSION_LEVEL, packing.nLevel), "ex_set_option");
        WriteMesh(nFile);
        WriteNames(nFile);
        for (size_t i = 0; i < nStates; ++i) WriteState(nFile, i);
        Check(ex_close(nFile), "ex_close");
    }

    void Append(const std::string& sPath, const PeerPacking&, size_t nState) override {
        const int nFile = Open(sPath, EX_WRITE);
        WriteState(nFile, nState);
        Check(ex_close(nFile), "ex_close");
    }

    void Read(const std::string& sPath, const PeerPacking&, PeerReceived* pReceived) override {
        const int nFile = Open(sPath, EX_READ);
        ReadMesh(nFile, pReceived);
        for (size_t i = 0; i < StateCount(); ++i) {
            for (size_t n = 0; n < ColumnNames().size(); ++n) {
                ReadVariable(nFile, i, n, pReceived);
            }
        }
        Check(ex_close(nFile), "ex_close");
    }

    void ReadField(const std::string& sPath, const PeerPacking&, size_t nState,
                   PeerReceived* pReceived) override {
        const int nFile = Open(sPath, EX_READ);
        ReadVariable(nFile, nState, 0, pReceived);
        Check(ex_close(nFile), "ex_close");
    }

private:
    static int Open(const std::string& sPath, int nMode) {
        int nValueSize = sizeof(float);
        int nStoredSize = 0;
        float fVersion = 0;
        const int nFile = ex_open(sPath.c_str(), nMode, &nValueSize, &nStoredSize, &fVersion);
        Check(nFile, "ex_open");
        return nFile;
    }

    void WriteMesh(int nFile) const {
        const auto nBlocks = static_cast<int64_t>(AllElements().size());
        Check(ex_put_init(nFile, "Model", 3, NodeCount(), ElementCount(), nBlocks, 0, 0),
              "ex_put_init");
        Check(ex_put_coord(nFile, Coordinates()[0].data(), Coordinates()[1].data(),
                           Coordinates()[2].data()),
              "ex_put_coord");
        for (size_t i = 0; i < AllElements().size(); ++i) {
            const Elements& elements = AllElements()[i];
            const auto nId = static_cast<ex_entity_id>(i + 1);
            const auto nCount = static_cast<int64_t>(elements.nCount);
            const auto nNodes = static_cast<int64_t>(elements.aNodes.size());
            Check(ex_put_block(nFile, EX_ELEM_BLOCK, nId, NameOf(elements.eType), nCount,
                               nNodes / nCount, 0, 0, 0),
                  "ex_put_block");
            Check(ex_put_conn(nFile, EX_ELEM_BLOCK, nId, elements.aNodes.data(), nullptr, nullptr),
                  "ex_put_conn");
        }
    }

    void ReadMesh(int nFile, PeerReceived* pReceived) const {
        const auto nNodes = static_cast<size_t>(NodeCount());
        auto* pX = pReceived->Allocate<float>(nNodes);
        auto* pY = pReceived->Allocate<float>(nNodes);
        auto* pZ = pReceived->Allocate<float>(nNodes);
        Check(ex_get_coord(nFile, pX, pY, pZ), "ex_get_coord");
        for (size_t i = 0; i < AllElements().size(); ++i) {
            auto* pNodes = pReceived->Allocate<int>(AllElements()[i].aNodes.size());
            Check(ex_get_conn(nFile, EX_ELEM_BLOCK, static_cast<ex_entity_id>(i + 1), pNodes,
                              nullptr, nullptr),
                  "ex_get_conn");
        }
    }

    void WriteNames(int nFile) const {
        std::vector<char*> asNames;
        for (const std::string& sName : ColumnNames()) {
            asNames.push_back(const_cast<char*>(sName.c_str()));
        }
        const int nNames = static_cast<int>(asNames.size());
        Check(ex_put_variable_param(nFile, EX_NODAL, nNames), "ex_put_variable_param");
        Check(ex_put_variable_names(nFile, EX_NODAL, nNames, asNames.data()),
              "ex_put_variable_names");
    }

    void WriteState(int nFile, size_t nState) const {
        const int nStep = static_cast<int>(nState) + 1;
        const float fTime = Time(nState);
        Check(ex_put_time(nFile, nStep, &fTime), "ex_put_time");
        int nVariable = 0;
        for (const Column& column : Columns(nState)) {
            Check(ex_put_var(nFile, nStep, EX_NODAL, ++nVariable, 1, NodeCount(), column.data()),
                  "ex_put_var");
        }
    }

    void ReadVariable(int nFile, size_t nState, size_t nVariable, PeerReceived* pReceived) const {
        auto* pValues = pReceived->Allocate<float>(static_cast<size_t>(NodeCount()));
        Check(ex_get_var(nFile, static_cast<int>(nState) + 1, EX_NODAL,
                         static_cast<int>(nVariable) + 1, 1, NodeCount(), pValues),
              "ex_get_var");
    }
};

}  // namespace

std::unique_ptr<Peer> MakePeer() {
    return std::make_unique<ExodusPeer>();
}
