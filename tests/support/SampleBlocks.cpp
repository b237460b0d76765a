#include "support/SampleBlocks.h"

#include "ZRUndefined.h"

namespace test {

using namespace unstruct;

namespace {

constexpr const char* kName = "Tr\u00E4ger \u4E2D\u6587 \U0001F600 <&\"'>\n%1";

template <typename T>
std::unique_ptr<T> New(T item) {
    return std::make_unique<T>(std::move(item));
}

void Fill(ZRFxNodeBlock& block) {
    block.SetNodes(ArrayOf<nuo::Vec3f>({{0, 0, 0}, {1, 0, -0.5f}, {0, 1.25f, 1e-20f}}),
                   NewInts(7, 3, 5));
}

void Fill(ZRFxIndexedFaceSetBlock& block) {
    constexpr std::int32_t kConnects[] = {0, 1, 2, 2, 1, 3, 4};
    constexpr std::int32_t kStarts[] = {0, 3};
    block.SetNodeBlockID(1);
    block.SetConnects(kConnects, 7);
    block.SetPolygons(kStarts, 2);
    block.SetIDs(NewInts(10, 20));
}

ZRFxElementBlockGroup Group(int type, int count, ZRIntArray connectivity, ZRIntArray ids) {
    ZRFxElementBlockGroup group;
    group.m_iElementType = type;
    group.m_iNumElements = count;
    group.m_aiConnectivity = std::move(connectivity);
    group.m_aiIDs = std::move(ids);
    return group;
}

void AddGroup(ZRFxElementBlock& block, ZRFxElementBlockGroup group) {
    auto pGroup = std::make_unique<ZRFxElementBlockGroup>(std::move(group));
    block.AddElementGroup(pGroup);
}

// Two beams with cross sections, a triangle, and two tetrahedra as polyhedrons.
void Fill(ZRFxElementBlock& block) {
    block.SetNodeBlockID(1);
    block.SetCrossSectionsID(4);
    block.SetNumEccPerElement(2);
    ZRFxElementBlockGroup beams = Group(ELEMENT_BEAM, 2, Ints(0, 1, 1, 2), Ints(11, 12));
    beams.m_aiElementIndices = Ints(1, 0);
    beams.m_aiExpansionMapping = Ints(0, 1);
    beams.m_aDirections = ArrayOf<nuo::Vec3f>({{0, 0, 1}, {0, 1, 0}});
    beams.m_aEccentricities = ArrayOf<nuo::Vec3f>({{0, 0, 1}, {0, 0, 2}, {0, 0, 3}, {0, 0, 4}});
    AddGroup(block, std::move(beams));
    AddGroup(block, Group(ELEMENT_TRIANGLE, 1, Ints(2, 1, 0), Ints(13)));
    ZRFxElementBlockGroup solids =
        Group(ELEMENT_POLYHEDRON, 2, Ints(0, 1, 2, 3, 3, 2, 1, 4), Ints(14, 15));
    const ZRIntArray faces =
        Ints(0, 1, 3, 1, 2, 3, 2, 0, 3, 0, 2, 1, 0, 1, 3, 1, 2, 3, 2, 0, 3, 0, 2, 1);
    solids.m_aiPolyhedronElementNodeCounts = Ints(4, 4);
    solids.m_aiPolyhedronFaceCounts = Ints(4, 4);
    solids.m_aiPolyhedronFaceLocalNodes = faces;
    solids.m_aiPolyhedronFaceNodeCounts = Ints(3, 3, 3, 3, 3, 3, 3, 3);
    AddGroup(block, std::move(solids));
    block.AddUserProperties(NewInts(1, 2, 3, 4, 5));
    block.AddUserProperties(NewInts(-1, -2, -3, -4, -5));
}

void Fill(ZRFxGeometryBlock& block) {
    block.SetGeometryCountPerState(2);
    for (int state : {1, 2}) {
        ZRFxGeometryState* pState = block.AddState(state);
        pState->AddPart(0, {100, 1, BLOCK_ELEMENTS, 5});
        pState->AddPart(0, {100, 2, BLOCK_INDEXED_FACE_SET, 6});
        pState->AddPart(1, {101, 3, BLOCK_ELEMENTS, 7});
    }
}

void Fill(ZRFxResultValuesBlock& block) {
    block.SetMapToBlockID(1);
    block.SetNumDimensions(6);
    constexpr float kU = kUndefinedValue;
    const float tensors[] = {1, 2, 3, 4, 5, 6.5f, kU, kU, kU, kU, kU, kU};
    block.SetScalars(tensors, 12);
    block.SetIDs(NewInts(3, 5));
}

void Fill(ZRFxResultBlock& block) {
    ZRFxResultDescription& result = block.GetDescription();
    result.attributes = {{"Unit", "mm"}, {kName, kName}};
    result = {kName,
              RESULT_DISPLACEMENT,
              STRAIN_ENGINEERING,
              MAPPING_NODE,
              3,
              2,
              0.1f,
              true,
              7,
              RESULT_UNKNOWN,
              18,
              result.attributes};
    block.AddState(1)->m_aiValuesBlockIDs = Ints(1, 2);
    block.AddState(2);
}

void Fill(ZRFxCrossSectionsBlock& block) {
    ZRFxCrossSection box(CROSS_SECTION_BOX);
    box.SetParameters({"Height", "Width"}, {0.1f, 2});
    block.AddCrossSection(box);
    block.AddCrossSection(ZRFxCrossSection(CROSS_SECTION_L));
    block.AddCrossSection(ZRFxCrossSection());
}

void Fill(ZRFxStateInfoBlock& block) {
    block.AddState(
        {1, kName, 0.1f, REFERENCE_TIME, 9, kName, {true, true, true, Ints(4, -5), Ints(1)}});
    block.AddState({2, "", -1e30f, REFERENCE_LOAD_CASE, -1, "", {}});
}

void Fill(ZRFxSetBlock& block) {
    block.SetSetID(8);
    block.SetName(kName);
    block.AddItems(New(ZRFxSetBlockItems{1, BLOCK_ELEMENTS, Ints(2, 0)}));
    block.AddItems(New(ZRFxSetBlockItems{2, BLOCK_ELEMENTS, Ints(1)}));
}

void Fill(ZRFx2DPlotDataBlock& block) {
    block.SetName(kName);
    block.AddVariable(New(ZRFxPlotVariable{"Time", ArrayOf<float>({0.f, 0.5f})}));
    block.AddVariable(New(ZRFxPlotVariable{kName, ArrayOf<float>({kUndefinedValue, -3.f})}));
}

void Fill(ZRFxTransformationResultValuesBlock& block) {
    nuo::Mat4d matrix;
    for (int i = 0; i < 16; ++i) matrix.setRowCol(i / 4, i % 4, i - 0.5);
    block.SetMatrix(matrix);
    block.SetMapToBlock(1, BLOCK_ELEMENTS);
}

void Fill(ZRFxTransformationResultsBlock& block) {
    block.SetName(kName);
    block.SetResultID(4);
    block.AddState(3)->m_aiValuesBlockIDs = Ints(9);
}

void FillState(ZRFxPrecomputedBlock& block) {
    ZRFxPrecomputedState* pState = block.AddState(1);
    pState->apParts.Add(New(ZRFxPrecomputedPart{1, 2, 3, MAPPING_ELEMENT_NODE, 4, {}}));
}

void FillGrid(ZRFxPrecomputedState* pState) {
    pState->apGrids.Add(New(ZRFxPrecomputedGrid{5, 6, 7, 8, 9, 10}));
}

void Fill(ZRFxPrecomputedItemBlock& block) {
    block.m_iItemType = 3;
    block.m_iItemID = 2;
    block.m_iCaseID = 1;
    FillState(block);
    FillGrid(block.GetState(0));
    block.GetState(0)->apTraces.Add(New(ZRFxPrecomputedTrace{1, 2, 3, 4}));
}

void Fill(ZRFxPositionResultValuesBlock& block) {
    block.m_iMapToBlockID = 1;
    block.m_bGlobalPositions = true;
    block.m_vectorColor = {1, 0.1f, 0};
    block.m_fScalingFactor = 0.3f;
    block.m_positions = ArrayOf<nuo::Vec3f>({{0, 0, 0.5f}, {0, 1, 0.25f}});
    block.m_aiElementIndices = Ints(2, 0);
    block.m_vectors =
        ArrayOf<nuo::Vec3f>({{0, 0, 1}, {kUndefinedValue, kUndefinedValue, kUndefinedValue}});
    block.m_aiVectorTypes = Ints(VECTOR_SYMMETRIC_REVERSE_ARROW, VECTOR_NORMAL_ARROW);
}

void Fill(ZRFxGeometryInfoBlock& block) {
    block.SetGeometryCountPerState(2);
    block.GetPartInfos(0)->AddPartInfo({5, -1, kName, true});
    block.GetPartInfos(1)->AddPartInfo({7, 5, "", false});
}

void Fill(ZRFxPrecomputedCuttingPlaneBlock& block) {
    block.m_iCaseID = 1;
    block.m_iCuttingPlaneID = 2;
    block.m_vPoint = {0.1, -1e300, 3};
    block.m_vNormal = {0, 0, 1};
    block.m_dGridSpacing = 0.1;
    block.m_bSurfaceVisible = block.m_bUseClipping = block.m_bGridLinesVisible = true;
    block.m_cSurfaceColor = {0.1f, 0.2f, 0.3f};
    block.m_fOpacity = 0.7f;
    block.m_sDrawStyle = "lines";
    FillState(block);
    block.GetState(0)->apParts[0]->surfaceColor = {1, 0.5f, 0};
    FillGrid(block.GetState(0));
}

void Fill(ZRFxPrecomputedIsosurfaceBlock& block) {
    block.m_iIsosurfaceID = 3;
    block.m_dIsoValue = 0.1;
    block.m_cSurfaceColor = {0.1f, 0.2f, 0.3f};
    FillState(block);
}

void Fill(ZRFxPrecomputedParticleTraceGroupBlock& block) {
    block.m_iCaseID = 1;
    block.m_iGroupID = 2;
    block.AddTrace({1, 2, 3});
    block.AddTrace({});
}

void Fill(ZRFxPrecomputedIsovolumeBlock& block) {
    block.m_iIsovolumeID = 3;
    block.m_dMinIsoValue = -0.1;
    block.m_dMaxIsoValue = 1e-300;
    block.m_sTextureName = kName;
    block.m_bEnvironmentMapping = true;
    FillState(block);
}

template <typename BlockClass>
nvf::ref<ZRFxBlock> Filled(int id) {
    BlockClass* block = new BlockClass(nullptr, id);
    const nvf::ref<ZRFxBlock> result = block;
    Fill(*block);
    return result;
}

struct Sample {
    int type;
    nvf::ref<ZRFxBlock> (*make)(int id);
};

constexpr Sample kSamples[] = {
    {BLOCK_NODES, Filled<ZRFxNodeBlock>},
    {BLOCK_INDEXED_FACE_SET, Filled<ZRFxIndexedFaceSetBlock>},
    {BLOCK_ELEMENTS, Filled<ZRFxElementBlock>},
    {BLOCK_GEOMETRY, Filled<ZRFxGeometryBlock>},
    {BLOCK_RESULT_VALUES, Filled<ZRFxResultValuesBlock>},
    {BLOCK_RESULTS, Filled<ZRFxResultBlock>},
    {BLOCK_CROSS_SECTIONS, Filled<ZRFxCrossSectionsBlock>},
    {BLOCK_STATE_INFO, Filled<ZRFxStateInfoBlock>},
    {BLOCK_SET, Filled<ZRFxSetBlock>},
    {BLOCK_PLOT_2D, Filled<ZRFx2DPlotDataBlock>},
    {BLOCK_TRANSFORMATION_RESULT_VALUES, Filled<ZRFxTransformationResultValuesBlock>},
    {BLOCK_TRANSFORMATION_RESULTS, Filled<ZRFxTransformationResultsBlock>},
    {BLOCK_PRECOMPUTED_ITEM, Filled<ZRFxPrecomputedItemBlock>},
    {BLOCK_POSITION_RESULT_VALUES, Filled<ZRFxPositionResultValuesBlock>},
    {BLOCK_GEOMETRY_INFO, Filled<ZRFxGeometryInfoBlock>},
    {BLOCK_PRECOMPUTED_CUTTING_PLANE, Filled<ZRFxPrecomputedCuttingPlaneBlock>},
    {BLOCK_PRECOMPUTED_ISOSURFACE, Filled<ZRFxPrecomputedIsosurfaceBlock>},
    {BLOCK_PRECOMPUTED_PARTICLE_TRACE_GROUP, Filled<ZRFxPrecomputedParticleTraceGroupBlock>},
    {BLOCK_PRECOMPUTED_ISOVOLUME, Filled<ZRFxPrecomputedIsovolumeBlock>},
};

}  // namespace

nvf::ref<ZRFxBlock> SampleBlock(int type, int id) {
    for (const Sample& sample : kSamples) {
        if (sample.type == type) return sample.make(id);
    }
    return nullptr;
}

std::vector<int> StoredTypes() {
    std::vector<int> types;
    for (const Sample& sample : kSamples) types.push_back(sample.type);
    return types;
}

}  // namespace test
