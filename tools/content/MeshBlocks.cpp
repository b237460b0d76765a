// Nodes, faces, elements, and the parts that are made of them.
#include "Text.h"
#include "check/BlockChecks.h"
#include "content/BlockGroup.h"
#include "content/Content.h"
#include "content/Table.h"

namespace tools {
namespace {

using namespace unstruct;

void describe(const ZRFxNodeBlock& block, Content& content) {
    content.add("coordinates", block.GetNodes());
    content.add("ids", block.GetNodeIDs());
}

void write(const ZRFxNodeBlock& block, Table& table) {
    table.header(block.GetNodeIDs() ? "id" : nullptr, kVectorKind.components);
    writeItems(realsOf(block.GetNodes()), block.GetNodeIDs(), table);
}

void check(const ZRFxNodeBlock& block, CheckedDatabase& checked) {
    checkNodes(block, checked);
}

void describe(const ZRFxIndexedFaceSetBlock& block, Content& content) {
    content.add("node block", block.GetNodeBlockID());
    content.add("refers to nodes by ids", block.GetMapToNodeIDs());
    content.add("nodes", block.GetConnects());
    content.add("first nodes of the polygons", block.GetPolygonStarts());
    content.add("ids", block.GetIDs());
}

void write(const ZRFxIndexedFaceSetBlock& block, Table& table) {
    table.header({block.GetMapToNodeIDs() ? "node_ids" : "node_indices"});
    for (std::int64_t i = 0; i < block.GetNumPolygons(); ++i) {
        const std::int64_t end = i + 1 < block.GetNumPolygons() ? block.GetPolygonStarts()[i + 1]
                                                                : block.GetConnects().GetSize();
        for (std::int64_t n = block.GetPolygonStarts()[i]; n < end; ++n) {
            table.cell(block.GetConnects()[n]);
        }
        table.endRow();
    }
}

void check(const ZRFxIndexedFaceSetBlock& block, CheckedDatabase& checked) {
    checkFaceSet(block, checked);
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

void writeGroup(const ZRFxElementBlockGroup& group, bool hasIds, Table& table) {
    std::int64_t node = 0;
    const std::string type = ZRFEMElementTypeName(group.m_iElementType).Bytes();
    for (std::int64_t i = 0; i < group.m_iNumElements; ++i) {
        const int count = group.IsPolyhedron() ? group.m_aiPolyhedronElementNodeCounts[i]
                                               : ZRFEMNodesPerElement(group.m_iElementType);
        if (hasIds) table.cell(group.m_aiIDs[i]);
        table.cell(type);
        for (int n = 0; n < count; ++n) table.cell(group.m_aiConnectivity[node++]);
        table.endRow();
    }
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

void write(const ZRFxElementBlock& block, Table& table) {
    table.header(block.GetWithIDs() ? "id" : nullptr,
                 {"type", block.GetMapToNodeIDs() ? "node_ids" : "node_indices"});
    for (std::int64_t i = 0; i < block.GetNumElementGroups(); ++i) {
        writeGroup(*block.GetElementGroup(i), block.GetWithIDs(), table);
    }
}

void check(const ZRFxElementBlock& block, CheckedDatabase& checked) {
    checkElements(block, checked);
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

void write(const ZRFxGeometryBlock& block, Table& table) {
    table.header({"state", "geometry", "part_id", "block_type", "block"});
    for (std::int64_t s = 0; s < block.GetStateCount(); ++s) {
        const ZRFxGeometryState& state = *block.GetState(s);
        for (int g = 0; g < state.GetGeometryCountPerState(); ++g) {
            for (int p = 0; p < state.GetPartCount(g); ++p) {
                const ZRFxGeometryPart part = state.GetPart(g, p);
                table.cell(state.GetStateID());
                table.cell(g);
                table.cell(part.partID);
                table.cell(ZRFxBlockTypeName(part.blockType).Bytes());
                table.cell(part.blockID);
                table.endRow();
            }
        }
    }
}

void check(const ZRFxGeometryBlock& block, CheckedDatabase& checked) {
    checkGeometry(block, checked);
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

void write(const ZRFxGeometryInfoBlock& block, Table& table) {
    table.header({"geometry", "part_id", "name", "parent_part_id"});
    for (int g = 0; g < block.GetGeometryCountPerState(); ++g) {
        for (int p = 0; p < block.GetPartInfos(g)->GetPartCount(); ++p) {
            const ZRFxPartInfo part = block.GetPartInfos(g)->GetPartInfo(p);
            table.cell(g);
            table.cell(part.partID);
            table.cell(part.partName.Bytes());
            table.cell(part.parentPartID);
            table.endRow();
        }
    }
}

void check(const ZRFxGeometryInfoBlock& block, CheckedDatabase& checked) {
    checkGeometryInfo(block, checked);
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

void write(const ZRFxCrossSectionsBlock& block, Table& table) {
    writeFields(block, table);
}

void check(const ZRFxCrossSectionsBlock&, CheckedDatabase&) {}

}  // namespace

const BlockGroup kMeshBlocks{
    [](const ZRFxBlock& block, Content& content) {
        Visit<ZRFxMeshBlockClasses>(block, [&](const auto& own) { describe(own, content); });
    },
    [](const ZRFxBlock& block, Table& table) {
        Visit<ZRFxMeshBlockClasses>(block, [&](const auto& own) { write(own, table); });
    },
    [](const ZRFxBlock& block, CheckedDatabase& checked) {
        Visit<ZRFxMeshBlockClasses>(block, [&](const auto& own) { check(own, checked); });
    },
};

}  // namespace tools
