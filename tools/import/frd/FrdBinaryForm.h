#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "import/frd/FrdForm.h"

namespace tools {

/// Records of little-endian numbers, without anything between them: integers of 32 bits, and values
/// of one of two sizes.
class FrdBinaryForm : public FrdForm {
public:
    enum ValueSize : int { FLOATS = 4, DOUBLES = 8 };

    FrdBinaryForm(FrdContent& content, ValueSize valueSize)
        : FrdForm(content), m_valueSize(valueSize) {}

    Outcome readNodes(std::uint64_t count) override;
    Outcome readElements(std::uint64_t count) override;
    Outcome readValues(std::uint64_t count) override;

private:
    Outcome readRecords(std::uint64_t count, std::size_t valueCount, std::vector<int>& ids,
                        std::vector<float>& values);
    Outcome readElement(std::uint64_t count);
    float valueAt(const char* bytes) const;

    const std::size_t m_valueSize;
};

}  // namespace tools
