// VTK XML (.vtu) with its zlib compressor, as raw appended data. A file holds the mesh once and the
// arrays of all states under names of their own, which is the shortest that the format allows;
// blocks of 64 KiB are the fastest. A file that is closed takes no further array: the next state
// goes into a file of its own, with the mesh, as in a series of files.
#include <vtkCellArray.h>
#include <vtkCellType.h>
#include <vtkDataArraySelection.h>
#include <vtkFieldData.h>
#include <vtkFloatArray.h>
#include <vtkNew.h>
#include <vtkPointData.h>
#include <vtkPoints.h>
#include <vtkSmartPointer.h>
#include <vtkTypeInt32Array.h>
#include <vtkUnsignedCharArray.h>
#include <vtkUnstructuredGrid.h>
#include <vtkVersion.h>
#include <vtkXMLUnstructuredGridReader.h>
#include <vtkXMLUnstructuredGridWriter.h>
#include <vtkZLibDataCompressor.h>

#include <filesystem>

#include "Peer.h"

namespace {

using Type = nuo::zrfx::ElementBlock::ElementType;
using Grid = vtkSmartPointer<vtkUnstructuredGrid>;
using Arrays = std::vector<vtkSmartPointer<vtkFloatArray>>;

constexpr size_t kBlockBytes = 64 << 10;

unsigned char CellTypeOf(Type eType) {
    constexpr VTKCellType aTypes[] = {VTK_VERTEX,
                                      VTK_LINE,
                                      VTK_QUADRATIC_EDGE,
                                      VTK_TRIANGLE,
                                      VTK_QUADRATIC_TRIANGLE,
                                      VTK_QUAD,
                                      VTK_QUADRATIC_QUAD,
                                      VTK_BIQUADRATIC_QUAD,
                                      VTK_PYRAMID,
                                      VTK_QUADRATIC_PYRAMID,
                                      VTK_TETRA,
                                      VTK_QUADRATIC_TETRA,
                                      VTK_HEXAHEDRON,
                                      VTK_QUADRATIC_HEXAHEDRON,
                                      VTK_WEDGE,
                                      VTK_QUADRATIC_WEDGE};
    return static_cast<unsigned char>(aTypes[eType]);
}

// Refers to the values.
vtkSmartPointer<vtkFloatArray> Wrap(const std::vector<float>& aValues, size_t nComponents,
                                    const char* sName) {
    auto array = vtkSmartPointer<vtkFloatArray>::New();
    array->SetNumberOfComponents(static_cast<int>(nComponents));
    array->SetName(sName);
    array->SetArray(const_cast<float*>(aValues.data()), static_cast<vtkIdType>(aValues.size()), 1);
    return array;
}

PeerBytes BytesOfArray(vtkDataArray* pArray) {
    const auto nItems = static_cast<size_t>(pArray->GetNumberOfValues());
    return {static_cast<const std::byte*>(pArray->GetVoidPointer(0)),
            nItems * static_cast<size_t>(pArray->GetDataTypeSize())};
}

void Keep(PeerReceived* pReceived, vtkDataArray* pArray) {
    Require(pArray != nullptr, "array of VTK");
    const vtkSmartPointer<vtkDataArray> array(pArray);
    const PeerBytes bytes = BytesOfArray(pArray);
    pReceived->Keep(std::make_shared<vtkSmartPointer<vtkDataArray>>(array), bytes.data(),
                    bytes.size());
}

void WriteGrid(const std::string& sPath, const PeerPacking& packing, vtkUnstructuredGrid* pGrid) {
    vtkNew<vtkXMLUnstructuredGridWriter> writer;
    writer->SetFileName(sPath.c_str());
    writer->SetInputData(pGrid);
    writer->SetDataModeToAppended();
    writer->EncodeAppendedDataOff();
    writer->SetHeaderTypeToUInt64();
    writer->SetBlockSize(kBlockBytes);
    if (packing.nLevel == 0) {
        writer->SetCompressorTypeToNone();
    } else {
        writer->SetCompressorTypeToZLib();
        writer->SetCompressionLevel(packing.nLevel);
    }
    Require(writer->Write() == 1, "VTK Write");
}

vtkSmartPointer<vtkXMLUnstructuredGridReader> OpenReader(const std::string& sPath) {
    auto reader = vtkSmartPointer<vtkXMLUnstructuredGridReader>::New();
    reader->SetFileName(sPath.c_str());
    reader->UpdateInformation();
    return reader;
}

class VtkPeer : public Peer {
public:
    std::string Name() const override { return "vtk"; }
    std::string Version() const override {
        return std::string("VTK ") + vtkVersion::GetVTKVersion();
    }
    std::vector<std::string> ObjectVariants() const override { return {"data"}; }

    void Prepare(const PeerDataSet& data) override {
        vtkNew<vtkPoints> points;
        points->SetData(Wrap(data.aCoordinates, 3, "Points"));
        m_grid = Grid::New();
        m_grid->SetPoints(points);
        PrepareCells(data);
        for (size_t i = 0; i < data.aStates.size(); ++i) {
            Arrays& arrays = m_aStates.emplace_back();
            for (const PeerDataSet::Field& field : data.aStates[i].aFields) {
                const std::string sName = field.sName + "_" + std::to_string(i);
                arrays.push_back(Wrap(field.aValues, field.nComponents, sName.c_str()));
            }
        }
    }

    std::vector<PeerBytes> Mesh() const override {
        return {BytesOfArray(m_grid->GetPoints()->GetData()),
                BytesOfArray(m_grid->GetCells()->GetConnectivityArray())};
    }

    std::vector<PeerBytes> State(size_t nState) const override {
        std::vector<PeerBytes> aArrays;
        for (const auto& array : m_aStates[nState]) aArrays.push_back(BytesOfArray(array));
        return aArrays;
    }

    void Write(const std::string& sPath, const PeerPacking& packing, size_t nStates) override {
        WriteStates(sPath, packing, 0, nStates);
    }

    void Append(const std::string& sPath, const PeerPacking& packing, size_t nState) override {
        WriteStates(StatePath(sPath, nState), packing, nState, nState + 1);
    }

    void Read(const std::string& sPath, const PeerPacking&, PeerReceived* pReceived) override {
        const auto reader = OpenReader(sPath);
        reader->Update();
        vtkUnstructuredGrid* pGrid = reader->GetOutput();
        Keep(pReceived, pGrid->GetPoints()->GetData());
        Keep(pReceived, pGrid->GetCells()->GetConnectivityArray());
        for (const Arrays& arrays : m_aStates) {
            for (const auto& array : arrays) {
                Keep(pReceived, pGrid->GetPointData()->GetArray(array->GetName()));
            }
        }
    }

    void ReadField(const std::string& sPath, const PeerPacking&, size_t nState,
                   PeerReceived* pReceived) override {
        const std::string sStatePath = StatePath(sPath, nState);
        const auto reader = OpenReader(std::filesystem::exists(sStatePath) ? sStatePath : sPath);
        const char* sName = m_aStates[nState][0]->GetName();
        reader->GetPointDataArraySelection()->DisableAllArrays();
        reader->SetPointArrayStatus(sName, 1);
        reader->Update();
        Keep(pReceived, reader->GetOutput()->GetPointData()->GetArray(sName));
    }

    void WriteObjects(const std::string& sPath, const PeerPacking& packing,
                      const std::vector<std::vector<float>>& aaObjects) override {
        const auto grid = Grid::New();
        grid->ShallowCopy(m_grid);
        for (size_t i = 0; i < aaObjects.size(); ++i) {
            grid->GetFieldData()->AddArray(Wrap(aaObjects[i], 1, ObjectName(i).c_str()));
        }
        WriteGrid(sPath, packing, grid);
    }

    void ReadObjects(const std::string& sPath, const PeerPacking&, size_t nObjects,
                     PeerReceived* pReceived) override {
        const auto reader = OpenReader(sPath);
        reader->Update();
        vtkFieldData* pData = reader->GetOutput()->GetFieldData();
        for (size_t i = 0; i < nObjects; ++i) {
            Keep(pReceived, pData->GetArray(ObjectName(i).c_str()));
        }
    }

private:
    static std::string StatePath(const std::string& sPath, size_t nState) {
        return sPath + "-" + std::to_string(nState);
    }

    // The library keeps the cells of all types together.
    void PrepareCells(const PeerDataSet& data) {
        vtkNew<vtkTypeInt32Array> offsets;
        vtkNew<vtkTypeInt32Array> nodes;
        vtkNew<vtkUnsignedCharArray> types;
        offsets->InsertNextValue(0);
        for (const PeerDataSet::Elements& elements : data.aElements) {
            for (int nNode : elements.aNodes) nodes->InsertNextValue(nNode);
            for (size_t i = 0; i < elements.Count(); ++i) {
                const int nLast = offsets->GetValue(offsets->GetNumberOfValues() - 1);
                offsets->InsertNextValue(nLast + static_cast<int>(elements.NodesOfEach()));
                types->InsertNextValue(CellTypeOf(elements.eType));
            }
        }
        vtkNew<vtkCellArray> cells;
        cells->SetData(offsets, nodes);
        m_grid->SetCells(types, cells);
    }

    void WriteStates(const std::string& sPath, const PeerPacking& packing, size_t nFirst,
                     size_t nEnd) {
        const auto grid = Grid::New();
        grid->ShallowCopy(m_grid);
        for (size_t i = nFirst; i < nEnd; ++i) {
            for (const auto& array : m_aStates[i]) grid->GetPointData()->AddArray(array);
        }
        WriteGrid(sPath, packing, grid);
    }

    Grid m_grid;
    std::vector<Arrays> m_aStates;
};

}  // namespace

std::unique_ptr<Peer> MakePeer() {
    return std::make_unique<VtkPeer>();
}
