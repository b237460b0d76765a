#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "IdIndex.h"
#include "ToolContext.h"
#include "blocks/mesh/ZRFxElementBlock.h"
#include "blocks/mesh/ZRFxNodeBlock.h"
#include "check/Findings.h"
#include "database/ZRFxModelCheck.h"
#include "database/ZROZRFxDatabase.h"

namespace tools {

/// A database whose blocks are being checked. It holds nodes and element ids of the last blocks
/// asked for, not of all.
class CheckedDatabase {
public:
    CheckedDatabase(unstruct::ZRFxDatabase& database, Findings& findings)
        : m_database(database), m_model(database), m_findings(findings) {}

    unstruct::ZRFxDatabase& database() const { return m_database; }

    /// How its blocks fit together, as far as their documents say.
    unstruct::ZRFxModelCheck& model() { return m_model; }

    /// Adds findings about a block, which lie in its document.
    Reporter reporter(const char* check, const unstruct::ZRFxBlock& block) const {
        return {m_findings, check, block.GetFileName().Bytes()};
    }
    /// Adds findings about the database as a whole.
    Reporter reporter(const char* check) const;

    /// Nodes, and where each id is; null when the block is missing or cannot be read.
    struct Nodes {
        nvf::ref<unstruct::ZRFxNodeBlock> block;
        std::optional<IdIndex> ids;  ///< None when the nodes have none.
    };
    const Nodes* nodes(int blockId);

    /// The ids of the elements of a block; null when the block cannot be read or has none.
    const IdIndex* elementIds(int blockId);

    /// Filled while the blocks are checked, in the order of their types.
    std::set<std::pair<int, int>> referredBlocks;          ///< Type and id.
    std::map<std::pair<int, int>, std::set<int>> partIds;  ///< By geometry block and geometry.

private:
    template <typename Item>
    using Cache = std::vector<std::pair<int, std::unique_ptr<Item>>>;
    template <typename Item, typename Load>
    static const Item* find(Cache<Item>& cache, int id, Load load);

    std::unique_ptr<Nodes> loadNodes(int blockId);
    std::unique_ptr<IdIndex> loadElementIds(int blockId);

    unstruct::ZRFxDatabase& m_database;
    unstruct::ZRFxModelCheck m_model;
    Findings& m_findings;
    Cache<Nodes> m_nodes;
    Cache<IdIndex> m_elementIds;
};

/// Checks one block that has been read. Blocks come in the order of kStoredBlockTypes.
void checkBlock(const unstruct::ZRFxBlock& block, CheckedDatabase& checked);

/// Checks what only the whole database shows, after its blocks.
void checkWhole(CheckedDatabase& checked);

}  // namespace tools
