#pragma once

#include <cstdint>
#include <memory>

#include "ZRArray.h"
#include "ZRIDLookup.h"
#include "blocks/ZRFxBlock.h"

namespace unstruct {

/// The nodes of a model: positions and, optionally, one user id a node.
class ZRFxNodeBlock : public ZRFxBlock {
public:
    static constexpr ZRFxBlockType kType = BLOCK_NODES;

    ZRFxNodeBlock(ZRFxBlockStore* pDatabase, int id);

    /// Replaces the nodes by a copy of `iNumNodes` positions and, unless null, as many ids.
    bool SetNodes(const nuo::Vec3f* pfNodes, std::int64_t iNumNodes, const std::int32_t* piNodeIDs);

    /// Replaces the nodes by the arrays' contents. Null ids mean none; otherwise there must be one
    /// a node.
    bool SetNodes(ZRVec3fArray nodes, std::unique_ptr<ZRIntArray> paiNodeIDs);

    /// Makes room for a number of nodes in all.
    bool Reserve(std::int64_t iNumNodes);

    /// Appends a node, and its id when the nodes have ids.
    bool AddNode(const nuo::Vec3f& node, std::int32_t id);

    const ZRVec3fArray& GetNodes() const { return m_nodes; }

    /// Null when the nodes have no ids.
    const ZRIntArray* GetNodeIDs() const { return m_paiNodeIDs.get(); }

    /// The number of nodes, for which a block that is not loaded reads its document only.
    std::int64_t GetNumNodes() const;

    /// The index of the node of an id; -1 when there is none.
    std::int64_t GetNodeIndex(std::int32_t id) const;

    std::uint64_t GetDataSize() const override;

protected:
    bool DoReadBlock(const nvf::XmlElement& root) override;
    bool DoWriteBlock(nvf::XmlElement root) override;
    void DoOutline(const nvf::XmlElement& root, ZRFxOutline* outline) const override;
    bool FindArray(const nvf::XmlElement& root, ZRFxArrayKind kind, int group,
                   ZRFxArrayFile* file) const override;
    void DoUnloadData() override;

private:
    bool WriteNodes(nvf::XmlElement root);

    ZRVec3fArray m_nodes;
    std::unique_ptr<ZRIntArray> m_paiNodeIDs;
    mutable ZRIDLookup m_indices;  // Of the nodes that were there when one was last asked for.
};

}  // namespace unstruct
