#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "import/frd/FrdForm.h"

namespace tools {

/// Lines of text with fields of fixed width, of which those of ids are 5 or 10 columns wide.
class FrdTextForm : public FrdForm {
public:
    enum Width : int { SHORT = 5, LONG = 10 };

    FrdTextForm(FrdContent& content, Width width) : FrdForm(content), m_width(width) {}

    Outcome readNodes(std::uint64_t count) override;
    Outcome readElements(std::uint64_t count) override;
    Outcome readValues(std::uint64_t count) override;

private:
    std::string_view idField(std::string_view line, std::size_t index) const;
    bool readNodeLine(std::string_view line);
    Outcome readElement(std::string_view line, std::uint64_t count);
    int materialNumber(std::string_view field);
    Outcome readElementNodes(std::size_t count, FrdElementGroup& group);
    bool readNodesOfElement(std::string_view line, std::size_t count, FrdElementGroup& group);
    bool readValueLine(std::string_view line, std::size_t count);
    bool readFloats(std::string_view line, std::size_t count, std::vector<float>& values) const;

    const std::size_t m_width;  // of ids
};

}  // namespace tools
