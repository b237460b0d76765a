#pragma once

#include <cstdint>
#include <fstream>
#include <span>
#include <string>

#include "Text.h"
#include "view/PackedData.h"

namespace tools {

/// A page that is being written: the page's own text, with the data in its middle. Data go to the
/// disk as they come; what describes them comes last.
class PageFile {
public:
    /// Whether the program was built with the page.
    static bool isAvailable();

    /// False when the file cannot be written.
    bool create(const std::string& path);

    /// Add data; what they give is how the model refers to them.
    Json add(std::span<const std::uint8_t> numbers) { return addPacked(m_packer.pack(numbers)); }
    Json add(std::span<const std::uint16_t> numbers) { return addPacked(m_packer.pack(numbers)); }
    Json add(std::span<const std::uint32_t> numbers) { return addPacked(m_packer.pack(numbers)); }

    /// The same for floats of items that have some components each; with their ranges.
    Json add(std::span<const float> values, std::size_t components);

    /// Writes what describes the data, and the end. False when anything could not be written.
    bool finish(const Json& model);

    std::uint64_t bytes() const { return m_bytes; }

private:
    void write(std::string_view text);
    Json addPacked(const std::string& text);

    std::ofstream m_stream;
    Packer m_packer;
    int m_count = 0;
    std::uint64_t m_bytes = 0;
};

}  // namespace tools
