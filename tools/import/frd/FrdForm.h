#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "import/ImportData.h"
#include "import/ImportFile.h"
#include "import/frd/FrdData.h"

namespace tools {

/// A result file, and what was read from its blocks last.
struct FrdContent {
    ImportFile file;
    FrdHeader header;
    ImportNodes nodes;
    FrdElements elements;
    FrdResult result;  ///< With its state, name and components before its values are read.
};

/// How the numbers of a block are written: it reads what follows the head of the block. The content
/// must live as long as this object.
class FrdForm {
public:
    enum Outcome { WHOLE, DAMAGED, OUT_OF_DATA };

    virtual ~FrdForm() = default;

    /// Adds to what the content has, which is none of the kind at first. The count is the one in
    /// the head, which may be anything.
    virtual Outcome readNodes(std::uint64_t count) = 0;
    virtual Outcome readElements(std::uint64_t count) = 0;
    virtual Outcome readValues(std::uint64_t count) = 0;

    /// Of the damage.
    const std::string& reason() const { return m_reason; }

protected:
    explicit FrdForm(FrdContent& content) : m_content(content) {}

    Outcome damaged(const std::string& reason);
    Outcome unknownType(int type);

    /// Null when the type is not known. Memory is reserved for a number of elements, as far as the
    /// file can hold them.
    FrdElementGroup* elementGroup(int type, int material, std::uint64_t count);

    /// The size of the file bounds the memory that a hostile count may reserve.
    template <typename T>
    static void reserve(std::vector<T>& items, std::uint64_t count, std::uint64_t most) {
        items.reserve(static_cast<std::size_t>(std::min(count, most)));
    }

    FrdContent& m_content;

private:
    std::string m_reason;
};

}  // namespace tools
