#include "BlockContent.h"

#include "Text.h"
#include "blocks/mesh/ZRFxCrossSectionsBlock.h"
#include "blocks/mesh/ZRFxElementBlock.h"
#include "blocks/mesh/ZRFxGeometryBlock.h"
#include "blocks/mesh/ZRFxGeometryInfoBlock.h"
#include "blocks/mesh/ZRFxIndexedFaceSetBlock.h"
#include "blocks/mesh/ZRFxNodeBlock.h"
#include "blocks/precomputed/ZRFxPrecomputedCuttingPlaneBlock.h"
#include "blocks/precomputed/ZRFxPrecomputedIsosurfaceBlock.h"
#include "blocks/precomputed/ZRFxPrecomputedIsovolumeBlock.h"
#include "blocks/precomputed/ZRFxPrecomputedItemBlock.h"
#include "blocks/precomputed/ZRFxPrecomputedParticleTraceGroupBlock.h"
#include "blocks/results/ZRFx2DPlotDataBlock.h"
#include "blocks/results/ZRFxPositionResultValuesBlock.h"
#include "blocks/results/ZRFxResultBlock.h"
#include "blocks/results/ZRFxStateInfoBlock.h"
#include "blocks/results/ZRFxTransformationResultValuesBlock.h"
#include "blocks/results/ZRFxTransformationResultsBlock.h"
#include "blocks/sets/ZRFxSetBlock.h"

namespace tools {
namespace {

using namespace unstruct;

// Gathers the fields of a block; places below others are told by a prefix.
class Content {
public:
    std::vector<Field> take() { return std::move(m_fields); }

    /// What is added until the scope ends lies in this place.
    class Scope {
    public:
        Scope(Content& content, const std::string& place)
            : m_content(content), m_before(content.m_prefix) {
            m_content.m_prefix += place + ", ";
        }
        ~Scope() { m_content.m_prefix = m_before; }
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;

    private:
        Content& m_content;
        const std::string m_before;
    };

    template <std::integral T>
    void add(const char* place, T value) {
        addValue(place, static_cast<std::int64_t>(value));
    }
    template <std::floating_point T>
    void add(const char* place, T value) {
        addValue(place, static_cast<double>(value));
    }
    void add(const char* place, const ZRString& text) { addValue(place, text.Bytes()); }
    void add(const char* place, const ZRIntArray& items) { addValue(place, itemsOf(items)); }
    void add(const char* place, const ZRIntArray* items) {
        if (items) add(place, *items);
    }
    void add(const char* place, const ZRFloatArray& items) {
        addValue(place, Reals{itemsOf(items), 1});
    }
    void add(const char* place, const Reals& items) { addValue(place, items); }
    void add(const char* place, const ZRVec3fArray& items) { addValue(place, realsOf(items)); }
    void add(const char* place, const nuo::Color3f& color) {
        add((std::string(place) + " red").c_str(), color.r);
        add((std::string(place) + " green").c_str(), color.g);
        add((std::string(place) + " blue").c_str(), color.b);
    }
    void add(const char* place, const nuo::Vec3d& vector) {
        add((std::string(place) + " x").c_str(), vector.x);
        add((std::string(place) + " y").c_str(), vector.y);
        add((std::string(place) + " z").c_str(), vector.z);
    }

private:
    void addValue(const char* place, Field::Value value) {
        m_fields.push_back({m_prefix + place, std::move(value)});
    }

    std::string m_prefix;
    std::vector<Field> m_fields;
};

void describe(const ZRFxNodeBlock& block, Content& content) {
    content.add("coordinates", block.GetNodes());
    content.add("ids", block.GetNodeIDs());
}

void describe(const ZRFxIndexedFaceSetBlock& block, Content& content) {
    content.add("node block", block.GetNodeBlockID());
    content.add("refers to nodes by ids", block.GetMapToNodeIDs());
    content.add("nodes", block.GetConnects());
    content.add("first nodes of the polygons", block.GetPolygonStarts());
    content.add("ids", block.GetIDs());
}

void describe(const ZRFxElementBlockGroup& group, Content& content) {
    content.add("type", ZRFEMElementTypeName(group.m_iElementType));
    content.add("elements", group.m_iNumElements);
    content.add("nodes", group.m_aiConnectivity);
    content.add("ids", group.m_aiIDs);
    content.add("element indices", group.m_aiElementIndices);
    content.add("nodes of each polyhedron", group.m_aiPolyhedronElementNodeCounts);
    content.add("faces of each polyhedron", group.m_aiPolyhedronFaceCounts);
    content.add("nodes of each face", group.m_aiPolyhedronFaceNodeCounts);
    content.add("local nodes of the faces", group.m_aiPolyhedronFaceLocalNodes);
    content.add("cross sections", group.m_aiExpansionMapping);
    content.add("directions", group.m_aDirections);
    content.add("eccentricities", group.m_aEccentricities);
}

void describe(const ZRFxElementBlock& block, Content& content) {
    content.add("node block", block.GetNodeBlockID());
    content.add("refers to nodes by ids", block.GetMapToNodeIDs());
    content.add("cross sections block", block.GetCrossSectionsID());
    content.add("eccentricities of an element", block.GetNumEccPerElement());
    for (std::int64_t i = 0; i < block.GetNumElementGroups(); ++i) {
        const Content::Scope scope(content, numbered("group", i));
        describe(*block.GetElementGroup(i), content);
    }
    for (std::int64_t i = 0; i < block.GetNumUserProperties(); ++i) {
        content.add(numbered("properties", i).c_str(), block.GetUserProperties(i));
    }
}

void describe(const ZRFxGeometryBlock& block, Content& content) {
    content.add("geometries", block.GetGeometryCountPerState());
    for (std::int64_t s = 0; s < block.GetStateCount(); ++s) {
        const ZRFxGeometryState& state = *block.GetState(s);
        const Content::Scope stateScope(content, numbered("record", s));
        content.add("state", state.GetStateID());
        for (int g = 0; g < state.GetGeometryCountPerState(); ++g) {
            for (int p = 0; p < state.GetPartCount(g); ++p) {
                const ZRFxGeometryPart part = state.GetPart(g, p);
                const Content::Scope scope(content,
                                           numbered("geometry", g) + numbered(", part", p));
                content.add("part id", part.partID);
                content.add("block type", ZRFxBlockTypeName(part.blockType));
                content.add("block", part.blockID);
                content.add("geometry id", part.apiGeometryID);
            }
        }
    }
}

void describe(const ZRFxGeometryInfoBlock& block, Content& content) {
    content.add("geometries", block.GetGeometryCountPerState());
    for (int g = 0; g < block.GetGeometryCountPerState(); ++g) {
        const ZRFxPartInfos& parts = *block.GetPartInfos(g);
        for (int p = 0; p < parts.GetPartCount(); ++p) {
            const ZRFxPartInfo part = parts.GetPartInfo(p);
            const Content::Scope scope(content, numbered("geometry", g) + numbered(", part", p));
            content.add("part id", part.partID);
            content.add("name", part.partName);
            content.add("parent part id", part.parentPartID);
            content.add("boundary condition", part.boundaryCondition);
        }
    }
}

void describe(const ZRFxResultValuesBlock& block, Content& content) {
    content.add("target block", block.GetMapToBlockID());
    content.add("dimensions", block.GetNumDimensions());
    content.add("values", realsOf(block));
    content.add("item ids", block.GetIDs());
}

void describeStates(const ZRFxStatesBlock& block, Content& content) {
    for (std::int64_t s = 0; s < block.GetStateCount(); ++s) {
        const ZRFxStateValues& state = *block.GetState(s);
        content.add((numbered("state", state.m_iStateID) + ", values blocks").c_str(),
                    state.m_aiValuesBlockIDs);
    }
}

void describe(const ZRFxResultBlock& block, Content& content) {
    const ZRFxResultDescription& result = block.GetDescription();
    content.add("name", result.name);
    content.add("type", ResultTypeName(result.resultType));
    content.add("strain type", StrainTypeName(result.strainType));
    content.add("mapping", ResultMappingName(result.resultMapping));
    content.add("result id", result.resultID);
    content.add("section id", result.sectionID);
    content.add("default scale factor", result.defaultScaleFactor);
    content.add("relative displacements", result.relativeDisplacements);
    content.add("base result id", result.baseResultID);
    content.add("base result type", ResultTypeName(result.baseResultType));
    content.add("derive operation", ComponentName(result.deriveOperation));
    for (const auto& [name, value] : result.attributes) {
        content.add(("attribute " + name.Bytes()).c_str(), value);
    }
    describeStates(block, content);
}

void describe(const ZRFxTransformationResultsBlock& block, Content& content) {
    content.add("name", block.GetName());
    content.add("result id", block.GetResultID());
    describeStates(block, content);
}

void describe(const ZRFxTransformationResultValuesBlock& block, Content& content) {
    content.add("target block", block.GetMapToBlockID());
    content.add("target block type", ZRFxBlockTypeName(block.GetMapToBlockType()));
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 4; ++column) {
            content.add((numbered("row", row) + numbered(", column", column)).c_str(),
                        block.GetMatrix().rowCol(row, column));
        }
    }
}

void describe(const ZRFxPositionResultValuesBlock& block, Content& content) {
    content.add("target block", block.m_iMapToBlockID);
    content.add("dimensions", block.GetDimension());
    content.add("global positions", block.m_bGlobalPositions);
    content.add("global results", block.m_bGlobalResults);
    content.add("vector color", block.m_vectorColor);
    content.add("scaling factor", block.m_fScalingFactor);
    content.add("positions", block.m_positions);
    content.add("element indices", block.m_aiElementIndices);
    content.add("scalars", block.m_afScalars);
    content.add("vectors", block.m_vectors);
    content.add("vector types", block.m_aiVectorTypes);
}

void describe(const ZRFxStateInfoBlock& block, Content& content) {
    for (std::int64_t s = 0; s < block.GetStateCount(); ++s) {
        const ZRFxStateInfo& state = *block.GetState(s);
        const Content::Scope scope(content, numbered("state", state.stateID));
        content.add("name", state.name);
        content.add("value", state.referenceValue);
        content.add("type", ReferenceTypeName(state.referenceType));
        content.add("group id", state.parentID);
        content.add("group", state.group);
        content.add("polygon model", state.exportInfo.polygonModel);
        content.add("visible parts only", state.exportInfo.visiblePartsOnly);
        content.add("first order nodes only", state.exportInfo.firstOrderNodesOnly);
        content.add("visible sets", state.exportInfo.visibleSetIDs);
        content.add("part flags", state.exportInfo.partFlags);
    }
}

void describe(const ZRFxSetBlock& block, Content& content) {
    content.add("set id", block.GetSetID());
    content.add("name", block.GetName());
    content.add("items are ids", block.GetItemsSpecifiedAsIDs());
    for (std::int64_t i = 0; i < block.GetItemsCount(); ++i) {
        const ZRFxSetBlockItems& items = *block.GetItems(i);
        const Content::Scope scope(content, numbered("group", i));
        content.add("block", items.m_iBlockID);
        content.add("items", items.m_aiItems);
    }
}

void describe(const ZRFxCrossSectionsBlock& block, Content& content) {
    for (std::int64_t i = 0; i < block.GetCrossSectionCount(); ++i) {
        const ZRFxCrossSection& section = *block.GetCrossSection(i);
        const Content::Scope scope(content, numbered("cross section", i));
        content.add("type", CrossSectionTypeName(section.GetType()));
        for (std::size_t p = 0; p < section.GetParameters().size(); ++p) {
            content.add(section.GetParameterNames()[p].CStr(), section.GetParameters()[p]);
        }
    }
}

void describe(const ZRFx2DPlotDataBlock& block, Content& content) {
    content.add("name", block.GetName());
    for (std::int64_t i = 0; i < block.GetVariableCount(); ++i) {
        const Content::Scope scope(content, numbered("variable", i));
        content.add("name", block.GetVariable(i)->name);
        content.add("values", block.GetVariable(i)->values);
    }
}

void describe(const ZRFxPrecomputedPart& part, Content& content) {
    content.add("face set block", part.ifsBlockID);
    content.add("node block", part.nodeBlockID);
    content.add("fringes block", part.fringesResultBlockID);
    content.add("fringes mapping", ResultMappingName(part.fringesResultMapping));
    content.add("vectors block", part.vectorResultBlockID);
    content.add("surface color", part.surfaceColor);
}

void describe(const ZRFxPrecomputedGrid& grid, Content& content) {
    content.add("node block", grid.nodeBlockID);
    content.add("points in i", grid.numI);
    content.add("points in j", grid.numJ);
    content.add("computed block", grid.computedResultBlockID);
    content.add("scalars block", grid.scalarResultBlockID);
    content.add("vectors block", grid.vectorResultBlockID);
}

void describe(const ZRFxPrecomputedTrace& trace, Content& content) {
    content.add("positions block", trace.positionNodeBlockID);
    content.add("times block", trace.timeResultBlockID);
    content.add("scalars block", trace.scalarResultBlockID);
    content.add("vectors block", trace.vectorResultBlockID);
}

template <typename Items>
void describeEach(const char* what, const Items& items, Content& content) {
    for (std::int64_t i = 0; i < items.GetSize(); ++i) {
        const Content::Scope scope(content, numbered(what, i));
        describe(*items[i], content);
    }
}

void describeStates(const ZRFxPrecomputedBlock& block, Content& content) {
    for (std::int64_t s = 0; s < block.GetStateCount(); ++s) {
        const ZRFxPrecomputedState& state = *block.GetState(s);
        const Content::Scope scope(content, numbered("state", state.m_iStateID));
        describeEach("trace", state.apTraces, content);
        describeEach("part", state.apParts, content);
        describeEach("grid", state.apGrids, content);
    }
}

void describe(const ZRFxPrecomputedItemBlock& block, Content& content) {
    content.add("item type", PrecomputedItemTypeName(block.m_iItemType));
    content.add("item id", block.m_iItemID);
    content.add("case", block.m_iCaseID);
    describeStates(block, content);
}

// What cutting planes, iso-surfaces and iso-volumes have in common.
template <typename Surface>
void describeSurface(const Surface& block, Content& content) {
    content.add("case", block.m_iCaseID);
    content.add("scalar result id", block.m_iMapScalarResultId);
    content.add("vector result id", block.m_iMapVectorResultId);
    content.add("surface visible", block.m_bSurfaceVisible);
    content.add("surface color", block.m_cSurfaceColor);
    content.add("opacity", block.m_fOpacity);
    content.add("specular intensity", block.m_fSpecularIntensity);
    content.add("draw style", block.m_sDrawStyle);
    describeStates(block, content);
}

void describe(const ZRFxPrecomputedCuttingPlaneBlock& block, Content& content) {
    content.add("cutting plane", block.m_iCuttingPlaneID);
    content.add("point", block.m_vPoint);
    content.add("normal", block.m_vNormal);
    content.add("grid spacing", block.m_dGridSpacing);
    content.add("clips", block.m_bUseClipping);
    content.add("grid lines visible", block.m_bGridLinesVisible);
    describeSurface(block, content);
}

void describe(const ZRFxPrecomputedIsosurfaceBlock& block, Content& content) {
    content.add("iso-surface", block.m_iIsosurfaceID);
    content.add("iso-value", block.m_dIsoValue);
    content.add("iso result id", block.m_iIsoScalarResultId);
    describeSurface(block, content);
}

void describe(const ZRFxPrecomputedIsovolumeBlock& block, Content& content) {
    content.add("iso-volume", block.m_iIsovolumeID);
    content.add("lowest iso-value", block.m_dMinIsoValue);
    content.add("highest iso-value", block.m_dMaxIsoValue);
    content.add("iso result id", block.m_iIsoScalarResultId);
    content.add("texture", block.m_sTextureName);
    content.add("environment mapping", block.m_bEnvironmentMapping);
    describeSurface(block, content);
}

void describe(const ZRFxPrecomputedParticleTraceGroupBlock& block, Content& content) {
    content.add("case", block.m_iCaseID);
    content.add("group id", block.m_iGroupID);
    content.add("vector result id", block.m_iVectorResultId);
    content.add("scalar result id", block.m_iMapScalarResultId);
    for (std::int64_t i = 0; i < block.GetTraceCount(); ++i) {
        const ZRFxParticleTrace& trace = *block.GetTrace(i);
        const Content::Scope scope(content, numbered("trace", i));
        content.add("positions block", trace.positionsBlockID);
        content.add("times block", trace.timeStampsBlockID);
        content.add("scalars block", trace.mapScalarsBlockID);
    }
}

template <typename BlockClass>
void describeAs(const ZRFxBlock& block, Content& content) {
    describe(static_cast<const BlockClass&>(block), content);
}

using Describe = void (*)(const ZRFxBlock& block, Content& content);

Describe describerOf(int type) {
    switch (type) {
        case BLOCK_NODES:
            return describeAs<ZRFxNodeBlock>;
        case BLOCK_INDEXED_FACE_SET:
            return describeAs<ZRFxIndexedFaceSetBlock>;
        case BLOCK_ELEMENTS:
            return describeAs<ZRFxElementBlock>;
        case BLOCK_GEOMETRY:
            return describeAs<ZRFxGeometryBlock>;
        case BLOCK_GEOMETRY_INFO:
            return describeAs<ZRFxGeometryInfoBlock>;
        case BLOCK_RESULT_VALUES:
            return describeAs<ZRFxResultValuesBlock>;
        case BLOCK_RESULTS:
            return describeAs<ZRFxResultBlock>;
        case BLOCK_CROSS_SECTIONS:
            return describeAs<ZRFxCrossSectionsBlock>;
        case BLOCK_STATE_INFO:
            return describeAs<ZRFxStateInfoBlock>;
        case BLOCK_SET:
            return describeAs<ZRFxSetBlock>;
        case BLOCK_PLOT_2D:
            return describeAs<ZRFx2DPlotDataBlock>;
        case BLOCK_TRANSFORMATION_RESULT_VALUES:
            return describeAs<ZRFxTransformationResultValuesBlock>;
        case BLOCK_TRANSFORMATION_RESULTS:
            return describeAs<ZRFxTransformationResultsBlock>;
        case BLOCK_POSITION_RESULT_VALUES:
            return describeAs<ZRFxPositionResultValuesBlock>;
        case BLOCK_PRECOMPUTED_ITEM:
            return describeAs<ZRFxPrecomputedItemBlock>;
        case BLOCK_PRECOMPUTED_CUTTING_PLANE:
            return describeAs<ZRFxPrecomputedCuttingPlaneBlock>;
        case BLOCK_PRECOMPUTED_ISOSURFACE:
            return describeAs<ZRFxPrecomputedIsosurfaceBlock>;
        case BLOCK_PRECOMPUTED_ISOVOLUME:
            return describeAs<ZRFxPrecomputedIsovolumeBlock>;
        case BLOCK_PRECOMPUTED_PARTICLE_TRACE_GROUP:
            return describeAs<ZRFxPrecomputedParticleTraceGroupBlock>;
        default:
            return nullptr;
    }
}

}  // namespace

std::vector<Field> contentOf(const ZRFxBlock& block) {
    Content content;
    if (const Describe describeBlock = describerOf(block.GetType())) describeBlock(block, content);
    return content.take();
}

Reals realsOf(const ZRVec3fArray& vectors) {
    return {{reinterpret_cast<const float*>(vectors.Data()),
             3 * static_cast<std::size_t>(vectors.GetSize())},
            3};
}

Reals realsOf(const ZRFxResultValuesBlock& block) {
    if (block.GetNumDimensions() == 3) return realsOf(block.GetVectors());
    return {itemsOf(block.GetScalars()), block.GetNumDimensions()};
}

}  // namespace tools
