#pragma once

#include <string>
#include <utility>
#include <vector>

#include "types/ZRFxBlockType.h"

namespace tools {

/// A place in a block that names something outside of it.
struct Reference {
    enum class Kind {
        BLOCK,          ///< A block of one type.
        VALUES_TARGET,  ///< The block that result values belong to: nodes, elements or face set.
        STATE,
        RESULT,  ///< A result by its result id.
        CASE
    };

    Kind kind;
    int id;
    std::string place;
    int blockType = unstruct::kInvalidBlockType;  ///< For Kind::BLOCK.
};

/// Gathers the references of a block.
class References {
public:
    std::vector<Reference> take() { return std::move(m_references); }

    /// References to what must be there.
    void block(int type, int id, const std::string& place) {
        m_references.push_back({Kind::BLOCK, id, place, type});
    }
    void target(int id) { m_references.push_back({Kind::VALUES_TARGET, id, "target block"}); }
    void state(int id, const std::string& place) {
        m_references.push_back({Kind::STATE, id, place});
    }

    /// References in whose place an id below 0 means "none".
    void optionalBlock(int type, int id, const std::string& place) {
        if (id >= 0) block(type, id, place);
    }
    void optionalResult(int id, const std::string& place) {
        if (id >= 0) m_references.push_back({Kind::RESULT, id, place});
    }
    void optionalCase(int id) {
        if (id >= 0) m_references.push_back({Kind::CASE, id, "case"});
    }

private:
    using Kind = Reference::Kind;

    std::vector<Reference> m_references;
};

}  // namespace tools
