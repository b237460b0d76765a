// CGNS on HDF5; its files are not packed. A flow solution a state, with a field a component.
#include <cgnslib.h>

#include "ColumnPeer.h"

namespace {

using Type = nuo::zrfx::ElementBlock::ElementType;

constexpr const char* kCoordinateNames[] = {"CoordinateX", "CoordinateY", "CoordinateZ"};

ElementType_t TypeOf(Type eType) {
    constexpr ElementType_t aTypes[] = {NODE,   BAR_2,   BAR_3,   TRI_3,   TRI_6,   QUAD_4,
                                        QUAD_8, QUAD_9,  PYRA_5,  PYRA_13, TETRA_4, TETRA_10,
                                        HEXA_8, HEXA_20, PENTA_6, PENTA_15};
    return aTypes[eType];
}

void Check(int nResult, const char* sWhat) {
    Require(nResult == CG_OK, std::string(sWhat) + ": " + cg_get_error());
}

// A file with one base and one zone.
class File {
public:
    File(const std::string& sPath, int nMode) {
        Check(cg_open(sPath.c_str(), nMode, &m_nFile), "cg_open");
    }

    operator int() const { return m_nFile; }

    void Close() const { Check(cg_close(m_nFile), "cg_close"); }

private:
    int m_nFile = 0;
};

class CgnsPeer : public ColumnPeer {
public:
    CgnsPeer() { Check(cg_set_file_type(CG_FILE_HDF5), "cg_set_file_type"); }

    std::string Name() const override { return "cgns"; }
    std::string Version() const override {
        return "CGNS " + std::to_string(CGNS_VERSION / 1000) + "." +
               std::to_string(CGNS_VERSION % 1000 / 100);
    }
    bool HasLevels() const override { return false; }

    void Write(const std::string& sPath, const PeerPacking&, size_t nStates) override {
        const File file(sPath, CG_MODE_WRITE);
        WriteMesh(file);
        for (size_t i = 0; i < nStates; ++i) WriteState(file, i);
        WriteTimes(file, nStates);
        file.Close();
    }

    void Append(const std::string& sPath, const PeerPacking&, size_t nState) override {
        const File file(sPath, CG_MODE_MODIFY);
        WriteState(file, nState);
        WriteTimes(file, nState + 1);
        file.Close();
    }

    void Read(const std::string& sPath, const PeerPacking&, PeerReceived* pReceived) override {
        const File file(sPath, CG_MODE_READ);
        ReadMesh(file, pReceived);
        for (size_t i = 0; i < StateCount(); ++i) {
            for (const std::string& sName : ColumnNames()) ReadColumn(file, i, sName, pReceived);
        }
        file.Close();
    }

    void ReadField(const std::string& sPath, const PeerPacking&, size_t nState,
                   PeerReceived* pReceived) override {
        const File file(sPath, CG_MODE_READ);
        ReadColumn(file, nState, ColumnNames()[0], pReceived);
        file.Close();
    }

private:
    void WriteMesh(int nFile) const {
        int nBase = 0;
        int nZone = 0;
        int nIndex = 0;
        Check(cg_base_write(nFile, "Base", 3, 3, &nBase), "cg_base_write");
        const cgsize_t anSize[] = {NodeCount(), ElementCount(), 0};
        Check(cg_zone_write(nFile, 1, "Zone", anSize, Unstructured, &nZone), "cg_zone_write");
        for (size_t i = 0; i < 3; ++i) {
            Check(cg_coord_write(nFile, 1, 1, RealSingle, kCoordinateNames[i],
                                 Coordinates()[i].data(), &nIndex),
                  "cg_coord_write");
        }
        cgsize_t nFirst = 1;
        for (const Elements& elements : AllElements()) {
            const cgsize_t nLast = nFirst + static_cast<cgsize_t>(elements.nCount) - 1;
            Check(cg_section_write(nFile, 1, 1, ("Elements" + std::to_string(nFirst)).c_str(),
                                   TypeOf(elements.eType), nFirst, nLast, 0, elements.aNodes.data(),
                                   &nIndex),
                  "cg_section_write");
            nFirst = nLast + 1;
        }
    }

    void ReadMesh(int nFile, PeerReceived* pReceived) const {
        for (const char* sName : kCoordinateNames) {
            const cgsize_t nFirst = 1;
            const cgsize_t nLast = NodeCount();
            auto* pValues = pReceived->Allocate<float>(static_cast<size_t>(nLast));
            Check(cg_coord_read(nFile, 1, 1, sName, RealSingle, &nFirst, &nLast, pValues),
                  "cg_coord_read");
        }
        for (size_t i = 0; i < AllElements().size(); ++i) {
            auto* pNodes = pReceived->Allocate<cgsize_t>(AllElements()[i].aNodes.size());
            Check(cg_elements_read(nFile, 1, 1, static_cast<int>(i) + 1, pNodes, nullptr),
                  "cg_elements_read");
        }
    }

    void WriteState(int nFile, size_t nState) const {
        int nSolution = 0;
        int nField = 0;
        const std::string sName = "Solution" + std::to_string(nState);
        Check(cg_sol_write(nFile, 1, 1, sName.c_str(), Vertex, &nSolution), "cg_sol_write");
        for (size_t i = 0; i < ColumnNames().size(); ++i) {
            Check(cg_field_write(nFile, 1, 1, nSolution, RealSingle, ColumnNames()[i].c_str(),
                                 Columns(nState)[i].data(), &nField),
                  "cg_field_write");
        }
    }

    void WriteTimes(int nFile, size_t nStates) const {
        std::vector<float> afTimes;
        for (size_t i = 0; i < nStates; ++i) afTimes.push_back(Time(i));
        const auto nSize = static_cast<cgsize_t>(nStates);
        Check(cg_biter_write(nFile, 1, "Times", static_cast<int>(nStates)), "cg_biter_write");
        Check(cg_goto(nFile, 1, "BaseIterativeData_t", 1, "end"), "cg_goto");
        Check(cg_array_write("TimeValues", RealSingle, 1, &nSize, afTimes.data()),
              "cg_array_write");
    }

    void ReadColumn(int nFile, size_t nState, const std::string& sName,
                    PeerReceived* pReceived) const {
        const cgsize_t nFirst = 1;
        const cgsize_t nLast = NodeCount();
        auto* pValues = pReceived->Allocate<float>(static_cast<size_t>(nLast));
        Check(cg_field_read(nFile, 1, 1, static_cast<int>(nState) + 1, sName.c_str(), RealSingle,
                            &nFirst, &nLast, pValues),
              "cg_field_read");
    }
};

}  // namespace

std::unique_ptr<Peer> MakePeer() {
    return std::make_unique<CgnsPeer>();
}
