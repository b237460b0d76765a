#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "container/ZRFxZipArchive.h"

namespace unstruct {

/// Counts what the dense documents of an archive take together, which ZRFxReadBounds limits. The
/// count is made when it is first asked for, and kept up from then on.
class ZRFxDenseDocuments {
public:
    /// REQUIRES: the archive outlives this.
    explicit ZRFxDenseDocuments(ZRFxZipArchive& archive) : m_archive(archive) {}

    /// To be called when another archive is opened.
    void Forget() { m_total.reset(); }

    /// The length of a dense document; 0 of any other entry.
    std::uint64_t LengthOf(std::string_view name);
    std::uint64_t Total();

    /// To be called before and after an entry changes.
    void TakeOut(std::string_view name);
    void TakeIn(std::string_view name);

private:
    ZRFxZipArchive& m_archive;
    std::optional<std::uint64_t> m_total;
};

}  // namespace unstruct
